#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "geometry/identifier_table.h"
#include "record/derived.h"
#include "record/foreign_nodes.h"
#include "record/lookups.h"
#include "support/boundary.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlmod";

bool fits(std::int64_t id, std::int64_t least) {
  return id >= least && id <= INT32_MAX;
}

/// Identifiers in mode data that no node has are moved too: otherwise a node could get one.
bool can_add(const QDL_Record &record, std::int32_t offset) {
  const auto node_fits = [&](const Node &node) { return fits(std::int64_t{node.id} + offset, 1); };
  bool foreign_fit = true;
  for_each_foreign_id(
      record, [&](std::int32_t id) { foreign_fit &= fits(std::int64_t{id} + offset, INT32_MIN); });
  return foreign_fit && std::ranges::all_of(record.nodes, node_fits);
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

/// Calls visit(identifier) for every maximum in the statistics that has been found.
template <class Visit>
void for_each_maximum(StatisticsTable &statistics, Visit visit) {
  for (ModalStatistics &mode : statistics.modes) {
    for (std::size_t slot = 0; slot < kSearchedStatistics; ++slot) {
      if (mode.node_ids[slot] != 0)
        visit(mode.node_ids[slot]);
    }
  }
}

/// The identifiers of those maxima that are at a node of the body or of its mode data.
std::vector<std::int32_t *> located_maxima(QDL_Record &record) {
  std::unordered_set<std::int32_t> foreign;
  for_each_foreign_id(record, [&](std::int32_t id) { foreign.insert(id); });
  std::vector<std::int32_t *> located;
  for_each_maximum(record.statistics, [&](std::int32_t &id) {
    if (foreign.contains(id) || find_node(record, id) != kNoIndex)
      located.push_back(&id);
  });
  return located;
}

/// A maximum in the statistics whose identifier is that of a node.
struct NodeOfMaximum {
  std::int32_t *id;
  std::int32_t node;
};

std::vector<NodeOfMaximum> nodes_of_maxima(StatisticsTable &statistics,
                                           const IdentifierTable &table) {
  std::vector<NodeOfMaximum> found;
  for_each_maximum(statistics, [&](std::int32_t &id) {
    const std::int32_t node = table.first_node(id);
    if (node != kNoIndex)
      found.push_back({&id, node});
  });
  return found;
}

bool add_to_identifiers(QDL_Record &record, std::int32_t offset) {
  if (!can_add(record, offset))
    return false;
  const std::vector<std::int32_t *> maxima = located_maxima(record);
  FirstIndex moved = with_offset(record.node_lookup.first_index, offset);

  for (std::int32_t *const maximum : maxima)
    *maximum += offset;
  record.node_lookup.first_index.swap(moved);
  for (Node &node : record.nodes)
    node.id += offset;
  for_each_foreign_id(record, [&](std::int32_t &id) { id += offset; });
  forget_free_edges(record);
  return true;
}

void renumber_interface_nodes(QDL_Record &record, const std::int32_t *ids, std::size_t count) {
  IdentifierTable table(record.nodes);
  const std::vector<NodeOfMaximum> maxima = nodes_of_maxima(record.statistics, table);
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
