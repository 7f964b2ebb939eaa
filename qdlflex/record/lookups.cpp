#include "record/lookups.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "record/derived.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

void build(NodeLookup &lookup, const std::vector<Node> &nodes) {
  lookup.first_index.clear();
  lookup.first_index.reserve(nodes.size());
  std::int32_t index = 0;
  for (const Node &node : nodes)
    lookup.first_index.try_emplace(node.id, index++);
  lookup.built = true;
  lookup.stale = false;
}

/// Callers mostly walk the nodes in order, so the node found last and its successor are tried
/// before the table. With identifiers given twice only the table knows which came first.
std::int32_t guess(const QDL_Record &record, std::int32_t id) {
  const NodeLookup &lookup = record.node_lookup;
  if (lookup.stale || lookup.first_index.size() != record.nodes.size())
    return kNoIndex;
  for (const std::int32_t index : {lookup.last_found + 1, lookup.last_found}) {
    if (is_node_index(record, index) && node_id(record, index) == id)
      return index;
  }
  return kNoIndex;
}

/// Every mode vector that is set or fetched by a mode number looks the number up. Blocks of a fixed
/// length are compared with vector instructions, which a search that may stop anywhere is not.
constexpr std::size_t kModeBlock = 32;

bool block_contains(const std::int32_t *numbers, std::int32_t number) {
  std::int32_t hits = 0;
  for (std::size_t i = 0; i < kModeBlock; ++i)
    hits += numbers[i] == number ? 1 : 0;
  return hits != 0;
}

/// The slot of an identifier that no node had when the file was read.
std::int32_t find_foreign(const NodeSet &set, std::int32_t id) {
  for (std::size_t slot = 0; slot < set.node_of_slot.size(); ++slot) {
    if (set.node_of_slot[slot] == kUnknownNode && set.foreign_ids[slot] == id) {
      return static_cast<std::int32_t>(slot);
    }
  }
  return kNoIndex;
}

}  // namespace

std::int32_t find_node(QDL_Record &record, std::int32_t id) {
  NodeLookup &lookup = record.node_lookup;
  if (!lookup.built)
    build(lookup, record.nodes);
  std::int32_t index = guess(record, id);
  if (index == kNoIndex) {
    const auto found = lookup.first_index.find(id);
    if (found == lookup.first_index.end())
      return kNoIndex;
    index = found->second;
  }
  lookup.last_found = index;
  return index;
}

void note_added_node(QDL_Record &record) {
  NodeLookup &lookup = record.node_lookup;
  if (!lookup.built)
    return;
  if (lookup.stale) {
    drop_node_lookup(record);
    return;
  }
  lookup.first_index.try_emplace(record.nodes.back().id, node_count(record) - 1);
  lookup.last_found = node_count(record) - 1;
}

void drop_node_lookup(QDL_Record &record) {
  record.node_lookup = NodeLookup{};
}

std::int32_t find_mode(const QDL_Record &record, std::int32_t mode_number) {
  const std::span<const std::int32_t> numbers(record.mode_numbers);
  std::size_t passed = 0;
  while (passed + kModeBlock <= numbers.size() &&
         !block_contains(numbers.data() + passed, mode_number)) {
    passed += kModeBlock;
  }
  const auto found =
      std::find(numbers.begin() + static_cast<std::ptrdiff_t>(passed), numbers.end(), mode_number);
  return found == numbers.end() ? kNoIndex : static_cast<std::int32_t>(found - numbers.begin());
}

std::int32_t mode_node_count(const QDL_Record &record, std::int32_t kind) {
  if (kind == kModeShapes) {
    return std::min(record.mode_node_limit.value_or(node_count(record)), node_count(record));
  }
  if (!is_mode_kind(kind))
    return 0;
  const NodeSet &set = record.mode_data[static_cast<std::size_t>(kind)].nodes;
  return static_cast<std::int32_t>(set.node_of_slot.size());
}

std::int32_t find_mode_node(QDL_Record &record, std::int32_t kind, std::int32_t id) {
  if (kind == kModeShapes)
    return find_node(record, id);
  if (!is_mode_kind(kind))
    return kNoIndex;
  const NodeSet &set = record.mode_data[static_cast<std::size_t>(kind)].nodes;
  const std::int32_t node = find_node(record, id);
  if (node == kNoIndex)
    return find_foreign(set, id);
  const auto index = static_cast<std::size_t>(node);
  const bool known = index < set.slot_of_node.size() && set.slot_of_node[index] != kNoIndex;
  return known ? set.slot_of_node[index] : find_foreign(set, id);
}

std::int32_t mode_node_id(const QDL_Record &record, std::int32_t kind, std::int32_t position) {
  if (position < 0 || position >= mode_node_count(record, kind))
    return 0;
  if (kind == kModeShapes)
    return node_id(record, position);
  const NodeSet &set = record.mode_data[static_cast<std::size_t>(kind)].nodes;
  const auto slot = static_cast<std::size_t>(position);
  const std::int32_t node = set.node_of_slot[slot];
  return node == kUnknownNode ? set.foreign_ids[slot] : node_id(record, node);
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_NodeIndex(QDL_Record *model, int32_t nodeId) {
  return with_model(model, kArea, -1,
                    [&](QDL_Record &record) { return find_node(record, nodeId); });
}

int32_t QDL_ModeIndex(QDL_Record *model, int32_t modeNumber) {
  return model == nullptr ? -1 : find_mode(*model, modeNumber);
}

int32_t QDL_ModeNumber(QDL_Record *model, int32_t modeIndex) {
  if (model == nullptr || modeIndex < 0 || modeIndex >= mode_count(*model))
    return -1;
  return model->mode_numbers[static_cast<std::size_t>(modeIndex)];
}

int32_t QDL_ModeNodeIndex(QDL_Record *model, int32_t kind, int32_t nodeId) {
  if (kind == kModeShapes)
    return QDL_NodeIndex(model, nodeId);
  return with_model_or(model, kArea, -1,
                       [&](QDL_Record &record) { return find_mode_node(record, kind, nodeId); });
}

void QDL_SwapNodesByID(QDL_Record *model, int32_t idA, int32_t idB) {
  with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::int32_t a = find_node(record, idA);
    const std::int32_t b = find_node(record, idB);
    if (a == kNoIndex || b == kNoIndex)
      return 0;
    std::swap(record.nodes[static_cast<std::size_t>(a)], record.nodes[static_cast<std::size_t>(b)]);
    // The table keeps answering the positions from before: callers rely on it.
    record.node_lookup.stale = true;
    note_nodes_moved(record);
    forget_free_edges(record);
    // Masses have changed places while the mode vectors stayed where they were.
    drop_derived_invariants(record, {3, 4, 5, 8, 9});
    return 1;
  });
}
