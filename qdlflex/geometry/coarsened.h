#pragma once

#include "record/record.h"

namespace qdlflex {

/// Whether the faces are coarse: by the flag, or because a face has more than four nodes, which
/// raises the flag.
bool is_coarsened(QDL_Record &record);

}  // namespace qdlflex
