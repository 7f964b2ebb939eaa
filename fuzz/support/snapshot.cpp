#include "support/snapshot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/harness.h"

namespace qdlfuzz {

namespace {

// As an integer and as a real, as a word doesn't tell what it is.
std::string word(std::vector<std::uint64_t>::const_iterator place,
                 const std::vector<std::uint64_t> &words) {
  if (place == words.end())
    return "the end";
  double real = 0.0;
  std::memcpy(&real, &*place, sizeof real);
  return std::to_string(static_cast<std::int64_t>(*place)) + " (" + std::to_string(real) + ")";
}

}  // namespace

void Snapshot::put_real(double value) {
  std::uint64_t word = ~std::uint64_t{0};
  value += 0.0;
  if (!std::isnan(value))
    std::memcpy(&word, &value, sizeof word);
  sections_.back().words.push_back(word);
}

void Snapshot::put_reals(const double *values, std::size_t count) {
  put(static_cast<std::int64_t>(count));
  for (std::size_t i = 0; i < count; ++i)
    put_real(values[i]);
}

void Snapshot::put_text(std::string_view text) {
  put(static_cast<std::int64_t>(text.size()));
  for (const char character : text)
    put(character);
}

std::string Snapshot::difference(const Snapshot &other,
                                 const std::set<std::string_view> &ignored) const {
  require(sections_.size() == other.sections_.size(), "snapshots of different kinds");
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    const Section &section = sections_[i];
    const Section &its = other.sections_[i];
    if (section == its || ignored.contains(section.name))
      continue;
    const auto [mine, yours] = std::ranges::mismatch(section.words, its.words);
    return section.name + " at word " + std::to_string(mine - section.words.begin()) + " of " +
           std::to_string(section.words.size()) + ": " + word(mine, section.words) + " against " +
           word(yours, its.words);
  }
  return "";
}

std::string report(QDL_Record *model, std::int32_t block) {
  char *text = nullptr;
  std::size_t size = 0;
  std::FILE *const stream = ::open_memstream(&text, &size);
  require(stream != nullptr, "no stream for a report");
  QDL_Contents(model, block, stream);
  std::fclose(stream);
  std::string copy(text, size);
  std::free(text);
  return copy;
}

}  // namespace qdlfuzz
