#include <algorithm>
#include <cmath>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "geometry/matrix3.h"
#include "geometry/moved_invariants.h"
#include "geometry/rigid_motion.h"
#include "numerics/qdlinvar.h"
#include "numerics/rigid_body_modes.h"
#include "numerics/rigid_invariants.h"
#include "support/boundary.h"
#include "support/finite.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

/// Not finite where there is no mass, or none that makes sense.
Vector3 centre_of_nodal_masses(const QDL_Record &record) {
  double mass = 0.0;
  for (const Node &node : record.nodes)
    mass += node.mass;
  Vector3 centre = first_moment(record);
  for (double &component : centre)
    component = mass == 0.0 ? NAN : component / mass;
  return centre;
}

/// A force and moment about the old origin, taken about the new one.
void carry_moment(std::vector<double> &values, const Vector3 &origin) {
  if (values.size() < kRigidBodyAxes)
    return;
  const Vector3 change = cross(origin, {values[0], values[1], values[2]});
  for (std::size_t c = 0; c < 3; ++c)
    values[3 + c] -= change[c];
}

/// False, with the record unchanged, when its invariants can't be obtained.
bool shift_frame(QDL_Record &record) {
  const Vector3 centre = centre_of_nodal_masses(record);
  if (!is_finite(centre))
    return true;
  const Vector3 offset = {-centre[0], -centre[1], -centre[2]};
  const bool carries_moments =
      rigid_body_mode_count(record) == static_cast<std::int32_t>(kRigidBodyAxes);
  if (!load_all_invariants(record))
    return false;
  // With it, invariant 8 can follow.
  if (record.invariants[8].origin != Origin::kEmpty && present(record, Block::kNodalMasses))
    obtain_invariant(record, 3);
  InvariantShift shift;
  if (!shift.prepare(record, offset))
    return false;

  // Nothing fails from here on.
  move_nodes(record, offset);
  shift.install(record);
  // The shift has never minded an invariant that stays behind.
  shift.finish(record, offset);
  QDL_Info("Shifting LBRF to CM at (%.3e,%.3e,%.3e)\n", centre[0], centre[1], centre[2]);
  // The other two have always been left alone.
  record.global_mass.centre[0] = 0.0;
  if (carries_moments) {
    carry_moment(record.preload.values, centre);
    for (ModalLoadCase &load : record.modal_loads)
      carry_moment(load.values, centre);
  }
  return true;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ShiftLBRFtoCM(QDL_Record *model) {
  return with_model(model, kArea, 0, shift_frame);
}
