#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "modes/mode_rewrite.h"
#include "record/record.h"

namespace qdlflex {

/// Turns the six values that one mode has at one node: two vectors of a mode shape, where rotations
/// keep the sense of turning under a mirror, or a stress or strain tensor.
void turn_row(std::int32_t kind, const Matrix3 &matrix, double *six);

/// All mode data of the record turned, one finished rewrite for each kind that it has. None after a
/// reported failure.
std::optional<std::vector<ModeRewrite>> turn_modes(QDL_Record &record, const Matrix3 &matrix);

}  // namespace qdlflex
