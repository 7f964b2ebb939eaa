#include "numerics/linear_combination.h"

#include <algorithm>
#include <cstring>

#include "support/vector_clones.h"

namespace qdlflex {
namespace {

using Strip = LinearCombination::Strip;
using Term = LinearCombination::Term;
constexpr std::size_t kGroup = LinearCombination::kGroup;

constexpr std::size_t kStripValues = sizeof(Strip) / sizeof(double);
/// A panel of so many strips of all old vectors stays in the processor's cache while every new
/// vector is computed from it.
constexpr std::size_t kPanelStrips = 4;
constexpr std::size_t kPanelValues = kPanelStrips * kStripValues;

using Panel = std::array<std::array<Strip, kGroup>, kPanelStrips>;

inline void add(Strip &sum, double weight, const Strip &values) {
  sum.low += weight * values.low;
  sum.high += weight * values.high;
}

/// Four sums, in registers from the first term to the last.
struct Sums {
  Strip a{}, b{}, c{}, d{};

  void add_to_all(const Term &term, const Strip &values) {
    add(a, term.weights[0], values);
    add(b, term.weights[1], values);
    add(c, term.weights[2], values);
    add(d, term.weights[3], values);
  }

  void add_to_some(const Term &term, const Strip &values) {
    if (term.weights[0] != 0.0)
      add(a, term.weights[0], values);
    if (term.weights[1] != 0.0)
      add(b, term.weights[1], values);
    if (term.weights[2] != 0.0)
      add(c, term.weights[2], values);
    if (term.weights[3] != 0.0)
      add(d, term.weights[3], values);
  }
};

/// The sums of one group in every strip; `packed` has the old vectors' strips, `pitch` apart.
QDLFLEX_VECTOR_CLONES
void combine(const Strip *packed, std::size_t pitch, std::size_t strips,
             const std::vector<Term> &terms, Panel &panel) {
  const Term *const end = terms.data() + terms.size();
  for (std::size_t strip = 0; strip < strips; ++strip, packed += pitch) {
    Sums sums;
    for (const Term *term = terms.data(); term != end;) {
      // A loop of their own makes the usual terms a third faster.
      for (; term != end && term->in_all; ++term)
        sums.add_to_all(*term, packed[term->vector]);
      for (; term != end && !term->in_all; ++term)
        sums.add_to_some(*term, packed[term->vector]);
    }
    panel[strip] = {sums.a, sums.b, sums.c, sums.d};
  }
}

/// Copies a strip; a whole one takes two moves and no call.
inline void copy_strip(void *target, const void *source, std::size_t values) {
  if (values == kStripValues)
    std::memcpy(target, source, sizeof(Strip));
  else
    std::memcpy(target, source, values * sizeof(double));
}

std::vector<Term> terms_of_group(std::size_t old_count, std::size_t new_count, std::size_t first,
                                 std::span<const double> coefficients) {
  const std::size_t used = std::min(kGroup, new_count - first);
  std::vector<Term> terms;
  for (std::size_t i = 0; i < old_count; ++i) {
    const auto row = coefficients.subspan(i * new_count + first, used);
    const auto zeros = std::ranges::count(row, 0.0);
    if (static_cast<std::size_t>(zeros) == used)
      continue;
    Term &term = terms.emplace_back();
    std::ranges::copy(row, term.weights.begin());
    term.vector = i;
    // Places that no new vector uses may be computed in vain.
    term.in_all = zeros == 0;
  }
  return terms;
}

}  // namespace

LinearCombination::LinearCombination(std::size_t old_vectors, std::size_t new_vectors,
                                     std::span<const double> coefficients)
    : old_count_(old_vectors), new_count_(new_vectors), packed_(old_vectors * kPanelStrips) {
  for (std::size_t first = 0; first < new_vectors; first += kGroup)
    groups_.push_back(terms_of_group(old_vectors, new_vectors, first, coefficients));
}

void LinearCombination::pack(const double *old_vectors, std::size_t length, std::size_t first,
                             std::size_t count) {
  for (std::size_t strip = 0; strip * kStripValues < count; ++strip) {
    const std::size_t start = strip * kStripValues;
    const std::size_t values = std::min(kStripValues, count - start);
    const double *source = old_vectors + first + start;
    for (std::size_t i = 0; i < old_count_; ++i, source += length)
      copy_strip(&packed_[strip * old_count_ + i], source, values);
  }
}

void LinearCombination::store(const std::array<Strip, kGroup> *panel, std::size_t group,
                              std::size_t length, std::size_t first, std::size_t count,
                              double *new_vectors) const {
  const std::size_t end = std::min((group + 1) * kGroup, new_count_);
  for (std::size_t j = group * kGroup; j < end; ++j) {
    double *target = new_vectors + j * length + first;
    for (std::size_t start = 0; start < count; start += kStripValues) {
      const std::size_t values = std::min(kStripValues, count - start);
      copy_strip(target + start, &panel[start / kStripValues][j - group * kGroup], values);
    }
  }
}

void LinearCombination::apply(const double *old_vectors, double *new_vectors, std::size_t length) {
  Panel panel;
  for (std::size_t first = 0; first < length; first += kPanelValues) {
    const std::size_t count = std::min(kPanelValues, length - first);
    const std::size_t strips = (count + kStripValues - 1) / kStripValues;
    pack(old_vectors, length, first, count);
    for (std::size_t group = 0; group < groups_.size(); ++group) {
      combine(packed_.data(), old_count_, strips, groups_[group], panel);
      store(panel.data(), group, length, first, count, new_vectors);
    }
  }
}

}  // namespace qdlflex
