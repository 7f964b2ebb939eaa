#pragma once

#include <algorithm>
#include <cmath>
#include <span>

namespace qdlflex {

/// Whether none of the values is infinite or not a number.
inline bool is_finite(std::span<const double> values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

}  // namespace qdlflex
