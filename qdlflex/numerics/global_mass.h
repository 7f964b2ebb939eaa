#pragma once

#include "record/record.h"

namespace qdlflex {

/// Brings the global mass properties up to date with invariants 1, 2 and 7.
void update_global_mass(QDL_Record &record);

}  // namespace qdlflex
