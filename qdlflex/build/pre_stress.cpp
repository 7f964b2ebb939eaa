#include <algorithm>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

/// Stores one vector by the node's slot in the stress or strain modes, which share their nodes with
/// the vectors.
std::int32_t set_vector(QDL_Record *model, std::vector<Vector6> QDL_Record::*vectors,
                        std::int32_t kind, Block block, std::int32_t node_id, const double *six) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (six == nullptr)
      return 0;
    const std::int32_t node = find_or_add_node(record, node_id);
    const auto slot = static_cast<std::size_t>(find_or_add_slot(record, kind, node));
    std::vector<Vector6> &by_slot = record.*vectors;
    if (slot >= by_slot.size())
      by_slot.resize(slot + 1);
    std::copy_n(six, kComponents, by_slot[slot].begin());
    raise(record, block);
    return 1;
  });
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetPreStressVec(QDL_Record *model, int32_t nodeId, const double *v6) {
  return set_vector(model, &QDL_Record::pre_stress, kModalStress, Block::kPreStress, nodeId, v6);
}

int32_t QDL_SetPreStrainVec(QDL_Record *model, int32_t nodeId, const double *v6) {
  return set_vector(model, &QDL_Record::pre_strain, kModalStrain, Block::kPreStrain, nodeId, v6);
}
