#include <memory>

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "record/derived.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

Node &node_to_set(QDL_Record &record, std::int32_t id) {
  return record.nodes[static_cast<std::size_t>(find_or_add_node(record, id))];
}

void note_changed_mass(QDL_Record &record) {
  drop_derived_invariants(record, {1, 2, 3, 4, 5, 7, 8, 9});
  raise(record, Block::kNodalMasses);
}

void note_changed_inertia(QDL_Record &record) {
  drop_derived_invariants(record, {4, 7});
  raise(record, Block::kNodalInertias);
}

Vector6 &inertia_to_set(Node &node) {
  if (node.inertia == nullptr)
    node.inertia = std::make_unique<Vector6>();
  return *node.inertia;
}

void add_interface_node(QDL_Record &record, std::int32_t node_index) {
  const auto node = static_cast<std::size_t>(node_index);
  if (node >= record.is_interface_node.size())
    record.is_interface_node.resize(record.nodes.size());
  if (record.is_interface_node[node])
    return;
  record.interface_nodes.push_back(node_index);
  record.is_interface_node[node] = true;
  note_interface_nodes_changed(record);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_AddNode(QDL_Record *model, int32_t nodeId) {
  return with_model(model, kArea, -1, [&](QDL_Record &record) { return add_node(record, nodeId); });
}

int32_t QDL_LookupOrAddNode(QDL_Record *model, int32_t nodeId) {
  return with_model(model, kArea, -1,
                    [&](QDL_Record &record) { return find_or_add_node(record, nodeId); });
}

int32_t QDL_AddMode(QDL_Record *model, int32_t modeNumber) {
  return with_model(model, kArea, -1,
                    [&](QDL_Record &record) { return add_mode(record, modeNumber); });
}

int32_t QDL_LookupOrAddMode(QDL_Record *model, int32_t modeNumber) {
  return with_model(model, kArea, -1,
                    [&](QDL_Record &record) { return find_or_add_mode(record, modeNumber); });
}

int32_t QDL_SetNodeCoordinates(QDL_Record *model, int32_t nodeId, double x, double y, double z) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    node_to_set(record, nodeId).xyz = {x, y, z};
    note_nodes_moved(record);
    drop_derived_invariants(record, {2, 4, 7, 8});
    raise(record, Block::kNodalCoordinates);
    return 1;
  });
}

int32_t QDL_SetNodalMass(QDL_Record *model, int32_t nodeId, double mass) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    node_to_set(record, nodeId).mass = mass;
    note_changed_mass(record);
    return 1;
  });
}

int32_t QDL_AddNodalMass(QDL_Record *model, int32_t nodeId, double mass) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    node_to_set(record, nodeId).mass += mass;
    note_changed_mass(record);
    return 1;
  });
}

int32_t QDL_SetNodalInertia(QDL_Record *model, int32_t nodeId, double xx, double yy, double zz,
                            double xy, double xz, double yz) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    inertia_to_set(node_to_set(record, nodeId)) = {xx, yy, zz, xy, xz, yz};
    note_changed_inertia(record);
    return 1;
  });
}

int32_t QDL_SetNodalInertiaEntry(QDL_Record *model, int32_t nodeId, int32_t row, int32_t column,
                                 double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (row < 1 || row > 3 || column < 1 || column > 3)
      return 0;
    const std::size_t place =
        symmetric_place(static_cast<std::size_t>(row - 1), static_cast<std::size_t>(column - 1));
    inertia_to_set(node_to_set(record, nodeId))[place] = value;
    note_changed_inertia(record);
    return 1;
  });
}

int32_t QDL_SetInterfaceNode(QDL_Record *model, int32_t nodeId) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::int32_t index = find_node(record, nodeId);
    if (index == kNoIndex)
      return 0;
    add_interface_node(record, index);
    raise(record, Block::kInterfaceNodes);
    return 1;
  });
}
