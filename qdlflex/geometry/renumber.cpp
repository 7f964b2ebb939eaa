#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "geometry/identifier_table.h"
#include "record/derived.h"
#include "record/lookups.h"
#include "support/boundary.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlmod";
/// Slots of the statistics whose node the library looks for; what stands in others is the file's.
constexpr std::size_t kSearchedStatistics = 4;

bool fits(std::int64_t id, std::int64_t least) {
  return id >= least && id <= INT32_MAX;
}

/// Identifiers in mode data that no node has are moved too: otherwise a node could get one.
bool can_add(const QDL_Record &record, std::int32_t offset) {
  const auto node_fits = [&](const Node &node) { return fits(std::int64_t{node.id} + offset, 1); };
  const auto foreign_fits = [&](std::int32_t id) {
    return fits(std::int64_t{id} + offset, INT32_MIN);
  };
  return std::ranges::all_of(record.nodes, node_fits) &&
         std::ranges::all_of(record.mode_data, [&](const ModeData &data) {
           return std::ranges::all_of(data.nodes.foreign_ids, foreign_fits);
         });
}

using FirstIndex = std::unordered_map<std::int32_t, std::int32_t>;

/// A look-up that a swap left stale answers as before, under the new identifiers.
FirstIndex with_offset(const FirstIndex &table, std::int32_t offset) {
  FirstIndex moved;
  moved.reserve(table.size());
  for (const auto &[id, node] : table)
    moved.emplace(id + offset, node);
  return moved;
}

/// A maximum in the statistics whose identifier is that of a node.
struct NodeOfMaximum {
  std::int32_t *id;
  std::int32_t node;
};

template <class Find>
std::vector<NodeOfMaximum> nodes_of_maxima(StatisticsTable &statistics, Find find) {
  std::vector<NodeOfMaximum> found;
  for (ModalStatistics &mode : statistics.modes) {
    for (std::size_t slot = 0; slot < kSearchedStatistics; ++slot) {
      std::int32_t &id = mode.node_ids[slot];
      const std::int32_t node = id == 0 ? kNoIndex : find(id);
      if (node != kNoIndex)
        found.push_back({&id, node});
    }
  }
  return found;
}

bool add_to_identifiers(QDL_Record &record, std::int32_t offset) {
  if (!can_add(record, offset))
    return false;
  const auto maxima =
      nodes_of_maxima(record.statistics, [&](std::int32_t id) { return find_node(record, id); });
  FirstIndex moved = with_offset(record.node_lookup.first_index, offset);

  for (const NodeOfMaximum &maximum : maxima)
    *maximum.id += offset;
  record.node_lookup.first_index.swap(moved);
  for (Node &node : record.nodes)
    node.id += offset;
  for (ModeData &data : record.mode_data) {
    for (std::int32_t &id : data.nodes.foreign_ids)
      id += offset;
  }
  forget_free_edges(record);
  return true;
}

void renumber_interface_nodes(QDL_Record &record, const std::int32_t *ids, std::size_t count) {
  IdentifierTable table(record.nodes);
  const auto maxima =
      nodes_of_maxima(record.statistics, [&](std::int32_t id) { return table.first_node(id); });
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t node = record.interface_nodes[i];
    const std::int32_t id = ids[i];
    if (!is_node_index(record, node) || table.id_of(node) == id)
      continue;
    const std::int32_t other = table.first_node(id);
    const std::int32_t before = table.id_of(node);
    table.change(node, id);
    if (other != kNoIndex)
      table.change(other, before);
  }
  for (const NodeOfMaximum &maximum : maxima)
    *maximum.id = table.id_of(maximum.node);
  table.store(record);
  forget_free_edges(record);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_RenumberNodes(QDL_Record *model, int32_t offset) {
  return with_model(model, kArea, 0,
                    [&](QDL_Record &record) { return add_to_identifiers(record, offset); });
}

int32_t QDL_RenumberInterfaceNodes(QDL_Record *model, int32_t count, const int32_t *ids) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (count <= 0)
      return 1;
    if (ids == nullptr)
      return 0;
    const std::size_t interface_nodes = record.interface_nodes.size();
    const auto given = static_cast<std::size_t>(count);
    if (given > interface_nodes) {
      QDL_Warning("Too many interface ID are given. Only the first %d will be used.\n",
                  static_cast<int>(interface_nodes));
    }
    renumber_interface_nodes(record, ids, std::min(given, interface_nodes));
    return 1;
  });
}
