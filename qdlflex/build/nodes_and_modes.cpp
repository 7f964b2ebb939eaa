#include "build/nodes_and_modes.h"

#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "record/derived.h"
#include "record/lookups.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

/// Takes the last node away again unless everything that belongs to adding it succeeded.
class NodeAddition {
 public:
  NodeAddition(QDL_Record &record, std::int32_t id) : record_(record) {
    record.nodes.emplace_back().id = id;
  }
  ~NodeAddition() {
    if (!complete_)
      record_.nodes.pop_back();
  }
  NodeAddition(const NodeAddition &) = delete;
  NodeAddition &operator=(const NodeAddition &) = delete;

  void complete() { complete_ = true; }

 private:
  QDL_Record &record_;
  bool complete_ = false;
};

/// A file's mode shapes do not grow with the nodes: those added later count as mode nodes only once
/// one of them has been given a mode vector.
void keep_mode_nodes_of_file(QDL_Record &record) {
  const auto &file = mode_data(record, kModeShapes).backing.channel.file;
  if (file != nullptr && !file->temporary() && !record.mode_node_limit)
    record.mode_node_limit = node_count(record);
}

}  // namespace

std::int32_t add_node(QDL_Record &record, std::int32_t id) {
  keep_mode_nodes_of_file(record);
  NodeAddition addition(record, id);
  note_added_node(record);
  note_nodes_moved(record);
  addition.complete();
  note_mode_layout_changed(record);
  return node_count(record) - 1;
}

std::int32_t find_or_add_node(QDL_Record &record, std::int32_t id) {
  const std::int32_t index = find_node(record, id);
  return index != kNoIndex ? index : add_node(record, id);
}

std::int32_t add_mode(QDL_Record &record, std::int32_t mode_number) {
  if (mode_count(record) >= record.planned_modes) {
    QDL_Error(
        "Insufficient room for mode %d in temporary mode shape file.  \n"
        "Specify larger number of modes in QDL_Create.\n",
        mode_number);
    return kNoIndex;
  }
  record.mode_numbers.push_back(mode_number);
  note_mode_layout_changed(record);
  drop_derived_invariants(record, {3, 4, 5, 8, 9});
  return mode_count(record) - 1;
}

std::int32_t find_or_add_mode(QDL_Record &record, std::int32_t mode_number) {
  const std::int32_t index = find_mode(record, mode_number);
  return index != kNoIndex ? index : add_mode(record, mode_number);
}

std::int32_t find_or_add_slot(QDL_Record &record, std::int32_t kind, std::int32_t node_index) {
  if (kind == kModeShapes)
    return node_index;
  NodeSet &set = mode_data(record, kind).nodes;
  const auto node = static_cast<std::size_t>(node_index);
  if (node >= set.slot_of_node.size())
    set.slot_of_node.resize(record.nodes.size(), kNoIndex);
  std::int32_t &slot = set.slot_of_node[node];
  if (slot != kNoIndex)
    return slot;
  // A file may name a node that has only now been added.
  slot = find_mode_node(record, kind, node_id(record, node_index));
  if (slot != kNoIndex) {
    set.node_of_slot[static_cast<std::size_t>(slot)] = node_index;
    return slot;
  }
  const auto next = static_cast<std::int32_t>(set.node_of_slot.size());
  set.foreign_ids.resize(set.node_of_slot.size() + 1);
  set.node_of_slot.push_back(node_index);
  slot = next;
  note_mode_layout_changed(record);
  return slot;
}

}  // namespace qdlflex
