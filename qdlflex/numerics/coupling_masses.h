#pragma once

#include <cstdint>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Generalized masses that couple the modes numbered from 1 to `normal_modes` with the
/// `additional_modes` numbered after them, from nodal masses and inertias: one row per normal mode.
/// Zeros for a mode that can't be read, which is reported.
std::vector<double> coupling_masses(QDL_Record &record, std::int32_t normal_modes,
                                    std::int32_t additional_modes);

}  // namespace qdlflex
