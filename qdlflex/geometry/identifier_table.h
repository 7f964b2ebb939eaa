#pragma once

#include <cstdint>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Identifiers of nodes while they change: which node is the first with an identifier. The record
/// is not touched.
class IdentifierTable {
 public:
  explicit IdentifierTable(const std::vector<Node> &nodes);

  std::int32_t id_of(std::int32_t node) const { return ids_[static_cast<std::size_t>(node)]; }
  /// The first node with the identifier, or kNoIndex.
  std::int32_t first_node(std::int32_t id) const;
  void change(std::int32_t node, std::int32_t id);

  /// Gives the record's nodes and its look-up the identifiers of the table, which is used up.
  void store(QDL_Record &record) noexcept;

 private:
  void remove(std::int32_t node);
  void insert(std::int32_t node);

  std::vector<std::int32_t> ids_;  // by node
  std::unordered_map<std::int32_t, std::int32_t> first_;
  std::set<std::pair<std::int32_t, std::int32_t>> repeated_;  // identifier and node, but the first
};

}  // namespace qdlflex
