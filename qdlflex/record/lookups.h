#pragma once

#include <cstdint>

#include "record/record.h"

namespace qdlflex {

/// Index of the node that was first added with this identifier, or kNoIndex.
std::int32_t find_node(QDL_Record &record, std::int32_t id);

/// Keeps the look-up in step with a node just appended. One that a swap left stale is dropped.
void note_added_node(QDL_Record &record);

void drop_node_lookup(QDL_Record &record);

/// Index of the first mode with this number, or kNoIndex.
std::int32_t find_mode(const QDL_Record &record, std::int32_t mode_number);

/// Number of nodes that the values of a kind of mode data belong to.
std::int32_t mode_node_count(const QDL_Record &record, std::int32_t kind);

/// Position of a node in a kind's order of nodes, or kNoIndex.
std::int32_t find_mode_node(QDL_Record &record, std::int32_t kind, std::int32_t id);

/// Identifier of the node at a position of a kind's order; 0 outside.
std::int32_t mode_node_id(const QDL_Record &record, std::int32_t kind, std::int32_t position);

}  // namespace qdlflex
