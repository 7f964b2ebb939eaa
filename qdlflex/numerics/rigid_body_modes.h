#pragma once

#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Translations along x, y and z, then rotations about them through the origin.
constexpr std::size_t kRigidBodyAxes = 6;

/// Number of rigid-body modes, which are the first of the mode list.
std::int32_t rigid_body_mode_count(const QDL_Record &record);

/// The same for the modes of an eigenvalue table.
std::int32_t rigid_body_mode_count(const std::vector<EigenEntry> &table);

}  // namespace qdlflex
