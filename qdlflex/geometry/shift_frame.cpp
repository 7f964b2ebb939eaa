#include <vector>

#include <qdlflex/qdlflex.h>

#include "numerics/rigid_body_modes.h"
#include "record/derived.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";
constexpr std::size_t kRigidModes = 6;

struct MassCentre {
  double mass = 0.0;
  Vector3 place{};
};

MassCentre centre_of_nodal_masses(const QDL_Record &record) {
  MassCentre centre;
  for (const Node &node : record.nodes) {
    centre.mass += node.mass;
    for (std::size_t c = 0; c < 3; ++c)
      centre.place[c] += node.mass * node.xyz[c];
  }
  for (double &component : centre.place)
    component /= centre.mass;
  return centre;
}

/// A force and moment about the old origin, taken about the new one.
void carry_moment(std::vector<double> &values, const Vector3 &c) {
  if (values.size() < kRigidModes)
    return;
  const double *force = values.data();
  double *moment = values.data() + 3;
  moment[0] -= c[1] * force[2] - c[2] * force[1];
  moment[1] -= c[2] * force[0] - c[0] * force[2];
  moment[2] -= c[0] * force[1] - c[1] * force[0];
}

void shift_frame(QDL_Record &record) {
  const MassCentre centre = centre_of_nodal_masses(record);
  if (centre.mass == 0.0)
    return;
  const Vector3 &c = centre.place;
  for (Node &node : record.nodes) {
    for (std::size_t i = 0; i < 3; ++i)
      node.xyz[i] -= c[i];
  }
  note_nodes_moved(record);
  drop_derived_invariants(record, {2, 4, 7, 8});
  QDL_Info("Shifting LBRF to CM at (%.3e,%.3e,%.3e)\n", c[0], c[1], c[2]);
  // The other two have always been left alone.
  record.global_mass.centre[0] = 0.0;

  if (rigid_body_mode_count(record) != static_cast<std::int32_t>(kRigidModes))
    return;
  carry_moment(record.preload.values, c);
  for (ModalLoadCase &load : record.modal_loads)
    carry_moment(load.values, c);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ShiftLBRFtoCM(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    shift_frame(record);
    return 1;
  });
}
