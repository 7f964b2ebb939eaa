#pragma once

#include <optional>

#include "record/record.h"

namespace qdlflex {

/// Every vector v of a body becomes M^T v; positions are then moved by the offset.
struct RigidMotion {
  std::optional<Matrix3> matrix;  // orthogonal
  std::optional<Vector3> offset;
};

/// Moves the body with everything that depends on where it stands and how it is turned. False when
/// something could not be read, written or allocated, with the record as it was. False as well,
/// but with the body moved, when an invariant that was supplied can't follow the offset: reported.
bool move_body(QDL_Record &record, const RigidMotion &motion);

/// Moves the nodes alone.
void move_nodes(QDL_Record &record, const Vector3 &offset) noexcept;

}  // namespace qdlflex
