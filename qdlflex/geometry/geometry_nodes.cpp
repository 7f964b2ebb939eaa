#include "geometry/geometry_nodes.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <qdlflex/qdlflex.h>

#include "record/faces.h"
#include "support/allocate.h"
#include "support/boundary.h"
#include "support/environment.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

/// Whether the nodes at which modal loads act belong to the geometry.
bool nodal_loads_count() {
  constexpr const char *kLeaveOut = "optimize_mforce_nodes";
  return environment_text("ZEB_QDLWRITE_OPTIONS").find(kLeaveOut) == std::string::npos;
}

std::vector<std::int32_t> collect(const QDL_Record &record) {
  std::vector<bool> used(record.nodes.size());
  const auto use = [&](std::int32_t node) {
    if (is_node_index(record, node))
      used[static_cast<std::size_t>(node)] = true;
  };
  for_each_face(record.faces,
                [&](std::span<const std::int32_t> face) { std::ranges::for_each(face, use); });
  for (const std::int32_t node : record.interface_nodes) {
    if (node_id(record, node) > 0)
      use(node);
  }
  if (nodal_loads_count()) {
    for (const NodalLoadCase &load_case : record.nodal_loads)
      std::ranges::for_each(load_case.entries, use, &NodalLoadEntry::node);
  }
  std::vector<std::int32_t> nodes;
  nodes.reserve(static_cast<std::size_t>(std::ranges::count(used, true)));
  for (std::int32_t node = 0; node < node_count(record); ++node) {
    if (used[static_cast<std::size_t>(node)])
      nodes.push_back(node);
  }
  return nodes;
}

}  // namespace

const std::vector<std::int32_t> *geometry_nodes(QDL_Record &record) {
  if (!record.geometry_nodes && !record.faces.present) {
    QDL_Warning("Missing element face information.");
    return nullptr;
  }
  if (!record.geometry_nodes)
    record.geometry_nodes = collect(record);
  return &*record.geometry_nodes;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t *QDL_GeometryNodes(QDL_Record *model, int32_t *count) {
  if (count != nullptr)
    *count = 0;
  return with_model(model, kArea, static_cast<int32_t *>(nullptr), [&](QDL_Record &record) {
    const std::vector<std::int32_t> *nodes = geometry_nodes(record);
    if (nodes == nullptr)
      return static_cast<int32_t *>(nullptr);
    auto copy = caller_array<std::int32_t>(nodes->size());
    std::ranges::copy(*nodes, copy.get());
    if (count != nullptr)
      *count = static_cast<int32_t>(nodes->size());
    return copy.release();
  });
}
