#pragma once

#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Translations along x, y and z, then rotations about them through the origin.
constexpr std::size_t kRigidBodyAxes = 6;

/// Number of rigid-body modes, which are the first of the mode list.
std::int32_t rigid_body_mode_count(const QDL_Record &record);

/// The same from an eigenvalue table alone. Modes that it lacks have a frequency of zero, as
/// without generalized matrices.
std::int32_t rigid_body_mode_count(const std::vector<EigenEntry> &table, std::size_t modes);

}  // namespace qdlflex
