#include <algorithm>

#include <qdlflex/qdlflex.h>
#include <qdlflex/free_edges.hpp>

#include "record/faces.h"
#include "support/boundary.h"
#include "support/item_at.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

/// The faces with nothing left out or cut short: what the graph reads without a bound.
FaceList whole_faces(const FaceList &faces) {
  FaceList whole;
  whole.list.reserve(faces.list.size());
  for_each_face(faces, [&](std::span<const std::int32_t> face) {
    whole.list.push_back(static_cast<std::int32_t>(face.size()));
    whole.list.insert(whole.list.end(), face.begin(), face.end());
    ++whole.count;
  });
  return whole;
}

std::vector<std::list<int>> free_edge_chains(const FaceList &faces) {
  FaceList whole = whole_faces(faces);
  cQDLFreeEdges graph;
  graph.FindFreeEdges(whole.count, whole.list.data());
  return graph.GetFreeEdges();
}

void find_free_edges(QDL_Record &record) {
  FreeEdges::value_type chains;
  for (const std::list<int> &keys : free_edge_chains(record.faces)) {
    std::vector<std::int32_t> &ids = chains.emplace_back();
    ids.reserve(keys.size());
    for (const int key : keys)
      ids.push_back(node_id(record, key));
  }
  record.free_edges = std::move(chains);
}

/// Nothing is reported but what removing the internal geometry has to say.
bool generate(QDL_Record &record) {
  return QDL_RemoveInternalGeometry(&record) != 0 && with_memory([&] { find_free_edges(record); });
}

/// The identifiers of a chain; null when there is no such chain.
const std::vector<std::int32_t> *chain_at(const QDL_Record &record, std::int32_t chain) {
  return record.free_edges ? item_at(*record.free_edges, chain) : nullptr;
}

std::int32_t size_of(const std::vector<std::int32_t> *chain) {
  return chain == nullptr ? 0 : static_cast<std::int32_t>(chain->size());
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_GenerateFreeEdges(QDL_Record *model) {
  return with_model(model, kArea, 0, generate);
}

int32_t QDL_GetFreeEdgeCount(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    if (!record.free_edges && !generate(record))
      return 0;
    return static_cast<int32_t>(record.free_edges->size());
  });
}

int32_t QDL_GetFreeEdgeSize(QDL_Record *model, int32_t chain) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!record.free_edges && !generate(record))
      return 0;
    return size_of(chain_at(record, chain));
  });
}

int32_t QDL_GetFreeEdge(QDL_Record *model, int32_t chain, int32_t *nodeIds) {
  return with_model(model, kArea, 0, [&](const QDL_Record &record) {
    const std::vector<std::int32_t> *ids = chain_at(record, chain);
    if (ids == nullptr || nodeIds == nullptr)
      return 0;
    std::ranges::copy(*ids, nodeIds);
    return size_of(ids);
  });
}
