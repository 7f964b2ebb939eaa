#pragma once

#include <cstdint>

#include "record/record.h"

namespace qdlflex {

// Nodes, modes and slots that setters find or make on the way.

/// Appends a node at the origin without mass, whether or not the identifier is taken; its index.
std::int32_t add_node(QDL_Record &record, std::int32_t id);

/// Index of the first node with the identifier, added if there is none.
std::int32_t find_or_add_node(QDL_Record &record, std::int32_t id);

/// Appends a mode, whether or not the number is taken; its index. Beyond the planned number of
/// modes, for which the temporary files have no place, an error is reported and kNoIndex returned.
std::int32_t add_mode(QDL_Record &record, std::int32_t mode_number);

/// Index of the first mode with the number, added if there is none; kNoIndex as for add_mode.
std::int32_t find_or_add_mode(QDL_Record &record, std::int32_t mode_number);

/// Position of a node in a kind's order of nodes. A node that has no stress (strain) slot yet is
/// given the next one; for mode shapes it is the node's index.
std::int32_t find_or_add_slot(QDL_Record &record, std::int32_t kind, std::int32_t node_index);

}  // namespace qdlflex
