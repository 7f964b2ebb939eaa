#pragma once

#include <cstdint>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Ascending indices of the nodes that the geometry uses, kept in the record until that changes;
/// null after the warning for a record without a face list. See QDL_GeometryNodes().
const std::vector<std::int32_t> *geometry_nodes(QDL_Record &record);

}  // namespace qdlflex
