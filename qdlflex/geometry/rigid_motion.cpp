#include "geometry/rigid_motion.h"

#include <utility>
#include <vector>

#include "geometry/matrix3.h"
#include "geometry/moved_invariants.h"
#include "geometry/turned_modes.h"
#include "numerics/global_mass.h"
#include "numerics/qdlinvar.h"
#include "numerics/rigid_invariants.h"
#include "record/derived.h"

namespace qdlflex {
namespace {

void turn_nodes(QDL_Record &record, const Matrix3 &matrix) {
  for (Node &node : record.nodes) {
    turn_vector(matrix, node.xyz.data());
    if (node.inertia != nullptr)
      turn_symmetric(matrix, *node.inertia);
  }
  note_nodes_moved(record);
}

/// The products of inertia are no components of a tensor before their signs are changed.
void turn_global_mass(GlobalMass &global, const Matrix3 &matrix) {
  turn_vector(matrix, global.centre.data());
  if (global.mass == 0.0)
    return;
  Matrix3 inertia = negate_products(global.inertia);
  turn_tensor(matrix, inertia.data());
  global.inertia = negate_products(inertia);
}

void adopt_turned_modes(QDL_Record &record, const Matrix3 &matrix,
                        std::vector<ModeRewrite> &modes) {
  for (ModeRewrite &kind : modes)
    kind.adopt(record);
  for (Vector6 &stress : record.pre_stress)
    turn_row(kModalStress, matrix, stress.data());
  for (Vector6 &strain : record.pre_strain)
    turn_row(kModalStrain, matrix, strain.data());
}

/// The parallel-axis rule, with products of inertia positive.
void move_global_mass(GlobalMass &global, const Vector3 &offset) {
  if (global.mass == 0.0)
    return;
  const Vector3 before = global.centre;
  for (std::size_t c = 0; c < 3; ++c)
    global.centre[c] += offset[c];
  const Vector3 &after = global.centre;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c) {
      const double product = after[row] * after[c] - before[row] * before[c];
      const double square = dot(after, after) - dot(before, before);
      global.inertia[3 * row + c] += global.mass * (row == c ? square - product : product);
    }
  }
}

/// The offset in the frame that the body has before it is turned.
Vector3 offset_before_turning(const RigidMotion &motion) {
  Vector3 offset = *motion.offset;
  if (motion.matrix)
    turn_vector(transposed(*motion.matrix), offset.data());
  return offset;
}

}  // namespace

void move_nodes(QDL_Record &record, const Vector3 &offset) noexcept {
  for (Node &node : record.nodes) {
    for (std::size_t c = 0; c < 3; ++c)
      node.xyz[c] += offset[c];
  }
  note_nodes_moved(record);
}

bool move_body(QDL_Record &record, const RigidMotion &motion) {
  InvariantShift shift;
  std::vector<ModeRewrite> modes;
  if (!load_all_invariants(record))
    return false;
  if (motion.offset && !shift.prepare(record, offset_before_turning(motion)))
    return false;
  if (motion.matrix) {
    auto turned = turn_modes(record, *motion.matrix);
    if (!turned)
      return false;
    modes = std::move(*turned);
  }

  // Nothing fails from here on.
  shift.install(record);
  if (motion.matrix) {
    turn_nodes(record, *motion.matrix);
    turn_global_mass(record.global_mass, *motion.matrix);
    turn_invariants(record, *motion.matrix);
    adopt_turned_modes(record, *motion.matrix, modes);
  }
  if (!motion.offset)
    return true;
  update_global_mass(record);
  move_global_mass(record.global_mass, *motion.offset);
  move_nodes(record, *motion.offset);
  if (shift.finish(record, *motion.offset))
    return true;
  shift.report_left_behind();
  return false;
}

}  // namespace qdlflex
