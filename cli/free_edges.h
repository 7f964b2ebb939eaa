#pragma once

#include <cstdint>
#include <vector>

#include "record.h"

namespace qdlflex::cli {

/// Chains of edges that one face only uses, by node identifiers; a closed one ends with its first
/// node. The model must have faces. Where the interior faces have not been stripped before, finding
/// the edges strips them and removes the nodes that nothing refers to.
std::vector<std::vector<int32_t>> read_free_edges(QDL_Record *record);

}  // namespace qdlflex::cli
