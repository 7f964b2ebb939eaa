#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// What the modes are to become, before those of infinite eigenvalue are dropped.
struct NewModes {
  std::size_t modes = 0;
  std::vector<double> shares;  // row by row: of every present mode in every new one
  std::vector<EigenEntry> eigenvalues;
  std::vector<std::int32_t> numbers;
  std::vector<double> scales;  // that generalized damping is divided by; none: not at all

  /// Number of modes before the first of infinite eigenvalue.
  std::size_t finite() const;
};

/// Orthonormal modes in ascending order, from the eigenproblem of generalized stiffness and mass.
/// None after a reported failure.
std::optional<NewModes> solve_modes(const QDL_Record &record);

/// The present modes, of unit generalized mass where that is requested.
NewModes keep_modes(const QDL_Record &record);

}  // namespace qdlflex
