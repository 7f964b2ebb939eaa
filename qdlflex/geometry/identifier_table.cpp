#include "geometry/identifier_table.h"

namespace qdlflex {

IdentifierTable::IdentifierTable(const std::vector<Node> &nodes) {
  ids_.reserve(nodes.size());
  first_.reserve(nodes.size());
  for (const Node &node : nodes) {
    ids_.push_back(node.id);
    insert(static_cast<std::int32_t>(ids_.size()) - 1);
  }
}

std::int32_t IdentifierTable::first_node(std::int32_t id) const {
  const auto found = first_.find(id);
  return found == first_.end() ? kNoIndex : found->second;
}

void IdentifierTable::change(std::int32_t node, std::int32_t id) {
  remove(node);
  ids_[static_cast<std::size_t>(node)] = id;
  insert(node);
}

void IdentifierTable::remove(std::int32_t node) {
  const std::int32_t id = id_of(node);
  const auto first = first_.find(id);
  if (first->second != node) {
    repeated_.erase({id, node});
    return;
  }
  const auto next = repeated_.lower_bound({id, 0});
  if (next == repeated_.end() || next->first != id) {
    first_.erase(first);
    return;
  }
  first->second = next->second;
  repeated_.erase(next);
}

void IdentifierTable::insert(std::int32_t node) {
  const std::int32_t id = id_of(node);
  const auto [first, is_new] = first_.try_emplace(id, node);
  if (is_new)
    return;
  if (node < first->second)
    std::swap(node, first->second);
  repeated_.emplace(id, node);
}

void IdentifierTable::store(QDL_Record &record) noexcept {
  for (std::size_t node = 0; node < ids_.size(); ++node)
    record.nodes[node].id = ids_[node];
  record.node_lookup = NodeLookup{};
  record.node_lookup.first_index.swap(first_);
  record.node_lookup.built = true;
}

}  // namespace qdlflex
