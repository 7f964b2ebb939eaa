#pragma once

#include <algorithm>
#include <cstddef>

namespace qdlflex {

/// Copies a square matrix, row by row, into one of another dimension: what lies outside is cut,
/// what is missing becomes zero.
inline void copy_square(const double *source, std::size_t source_dimension, double *target,
                        std::size_t dimension) {
  const std::size_t common = std::min(source_dimension, dimension);
  std::fill_n(target, dimension * dimension, 0.0);
  for (std::size_t row = 0; row < common; ++row)
    std::copy_n(source + row * source_dimension, common, target + row * dimension);
}

}  // namespace qdlflex
