#include "block_difference.h"

namespace qdlflex::cli {

void BlockDifference::compare_texts(std::string_view what, std::string_view a, std::string_view b) {
  if (a != b) {
    remark(std::string(what) + ": \"" + std::string(a) + "\" and \"" + std::string(b) + "\"");
  }
}

void BlockDifference::compare_counts(std::string_view what, int64_t a, int64_t b) {
  if (a != b) {
    remark(std::string(what) + ": " + std::to_string(a) + " and " + std::to_string(b));
  }
}

bool BlockDifference::both(bool a, bool b, std::string_view what) {
  if (a != b) {
    remark(std::string(what) + (what.empty() ? "" : " ") + (a ? "only in A" : "only in B"));
  }
  return a && b;
}

double largest_magnitude(const std::vector<double> &values) {
  double largest = 0.0;
  for (const double value : values) {
    largest = std::isfinite(value) ? std::max(largest, std::abs(value)) : largest;
  }
  return largest;
}

void Listing::add(const std::string &item) {
  constexpr int64_t kNamed = 5;
  if (count_ < kNamed) {
    first_ += (count_ > 0 ? ", " : "") + item;
  } else if (count_ == kNamed) {
    first_ += ", ...";
  }
  ++count_;
}

std::string Listing::text(std::string_view introduction) const {
  return std::to_string(count_) + " " + std::string(introduction) + ": " + first_;
}

}  // namespace qdlflex::cli
