#pragma once

#include <vector>

#include "body_pair.h"

namespace qdlflex::cli {

/// Compares square matrices of modal values, whose unit may change from mode to mode: an entry is
/// measured by the diagonal entries of its two modes.
inline void compare_modal_matrix(BlockDifference &block, const BodyPair &bodies,
                                 const std::vector<double> &a, const std::vector<double> &b,
                                 const std::string &name) {
  const auto order_a = static_cast<size_t>(QDL_ModeCount(bodies.a));
  const auto order_b = static_cast<size_t>(QDL_ModeCount(bodies.b));
  const auto diagonal = [&](int32_t mode) {
    return std::abs(a[static_cast<size_t>(mode) * (order_a + 1)]);
  };
  for (const ModePair &row : bodies.modes) {
    for (const ModePair &column : bodies.modes) {
      block.compare(
          a[static_cast<size_t>(row.a) * order_a + static_cast<size_t>(column.a)],
          b[static_cast<size_t>(row.b) * order_b + static_cast<size_t>(column.b)] /
              (row.factor * column.factor),
          std::sqrt(diagonal(row.a)) * std::sqrt(diagonal(column.a)),
          [&] { return name + ", " + mode_name(bodies, row) + ", " + mode_name(bodies, column); });
    }
  }
}

/// Compares rows of one value a mode.
inline void compare_modal_rows(BlockDifference &block, const BodyPair &bodies,
                               const std::vector<double> &a, const std::vector<double> &b,
                               size_t rows, const std::string &name) {
  const auto columns_a = static_cast<size_t>(QDL_ModeCount(bodies.a));
  const auto columns_b = static_cast<size_t>(QDL_ModeCount(bodies.b));
  const double largest = largest_magnitude(a);
  for (size_t row = 0; row < rows; ++row) {
    for (const ModePair &mode : bodies.modes) {
      block.compare(a[row * columns_a + static_cast<size_t>(mode.a)],
                    b[row * columns_b + static_cast<size_t>(mode.b)] / mode.factor, largest, [&] {
                      return name + (rows > 1 ? ", row " + std::to_string(row + 1) : "") + ", " +
                             mode_name(bodies, mode);
                    });
    }
  }
}

}  // namespace qdlflex::cli
