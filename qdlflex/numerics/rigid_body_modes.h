#pragma once

#include "record/record.h"

namespace qdlflex {

/// Number of rigid-body modes, which are the first of the mode list.
std::int32_t rigid_body_mode_count(const QDL_Record &record);

}  // namespace qdlflex
