#pragma once

#include <cstdint>

#include "record/record.h"

namespace qdlflex {

// Entries are appended in the order of the calls and never merged. Rows and columns are mode
// indices; kNoIndex, left by a refused mode, is stored too.

void append_generalized_stiffness(QDL_Record &record, std::int32_t row, std::int32_t column,
                                  double value);
void append_generalized_mass(QDL_Record &record, std::int32_t row, std::int32_t column,
                             double value);
void append_generalized_damping(QDL_Record &record, std::int32_t row, std::int32_t column,
                                double value);

}  // namespace qdlflex
