#include <algorithm>

#include <qdlflex/qdlflex.h>

#include "record/record.h"
#include "support/allocate.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdldata";

/// The node at an index, or null.
const Node *node_at(const QDL_Record *model, std::int32_t index) {
  if (model == nullptr || !is_node_index(*model, index))
    return nullptr;
  return &model->nodes[static_cast<std::size_t>(index)];
}

bool has_nodes(const QDL_Record *model) {
  return model != nullptr && !model->nodes.empty();
}

}  // namespace

int32_t QDL_NodeCount(QDL_Record *model) {
  return model == nullptr ? 0 : node_count(*model);
}

int32_t QDL_NodeID(QDL_Record *model, int32_t index) {
  return model == nullptr ? 0 : node_id(*model, index);
}

int32_t QDL_NodeCoordinates(QDL_Record *model, int32_t index, double *xyz) {
  if (!has_nodes(model) || xyz == nullptr)
    return 0;
  const Node *node = node_at(model, index);
  std::ranges::copy(node == nullptr ? Vector3{} : node->xyz, xyz);
  return node == nullptr ? 0 : 1;
}

int32_t QDL_NodeCoordinateList(QDL_Record *model, double *xyz, int32_t *count) {
  if (count != nullptr)
    *count = QDL_NodeCount(model);
  if (!has_nodes(model) || xyz == nullptr)
    return 0;
  for (const Node &node : model->nodes)
    xyz = std::ranges::copy(node.xyz, xyz).out;
  return 1;
}

double QDL_NodalMass(QDL_Record *model, int32_t index) {
  const Node *node = node_at(model, index);
  return node == nullptr ? 0.0 : node->mass;
}

int32_t QDL_NodalInertia(QDL_Record *model, int32_t index, double *tensor) {
  const Node *node = node_at(model, index);
  if (node == nullptr || node->inertia == nullptr || tensor == nullptr)
    return 0;
  std::ranges::copy(symmetric_matrix(*node->inertia), tensor);
  return 1;
}

int32_t QDL_NodalMassAndGeometry(QDL_Record *model, int32_t index, double *mass, double *xyz) {
  if (!has_nodes(model) || xyz == nullptr)
    return 0;
  if (mass != nullptr)
    *mass = QDL_NodalMass(model, index);
  return QDL_NodeCoordinates(model, index, xyz);
}

int32_t *QDL_InterfaceNodeIDs(QDL_Record *model, int32_t *count) {
  if (count != nullptr)
    *count = 0;
  return with_model_or(model, kArea, static_cast<int32_t *>(nullptr), [&](QDL_Record &record) {
    auto ids = caller_array<int32_t>(record.interface_nodes.size());
    std::ranges::transform(record.interface_nodes, ids.get(),
                           [&](std::int32_t index) { return node_id(record, index); });
    if (count != nullptr)
      *count = static_cast<int32_t>(record.interface_nodes.size());
    return ids.release();
  });
}

int32_t *QDL_InterfaceNodes(QDL_Record *model, int32_t *count) {
  return QDL_InterfaceNodeIDs(model, count);
}
