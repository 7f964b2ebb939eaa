#pragma once

#include <cstdint>
#include <vector>

#include "record.h"

namespace qdlflex::cli {

/// The getters of an invariant give it whole (1 to 4, 6 and 7) or by mode (5, 8 and 9): so many
/// arrays, and one of them. Invariant 9 of a mode is a row of matrices, one for each other mode.
/// Throws a Failure if the library cannot tell.
int32_t invariant_slices(QDL_Record *record, int number);
std::vector<double> read_invariant_slice(QDL_Record *record, int number, int32_t slice);

}  // namespace qdlflex::cli
