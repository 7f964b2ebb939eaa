#pragma once

#include "record/record.h"

namespace qdlflex {

/// Makes the modes orthogonal with respect to generalized mass and stiffness, of unit generalized
/// mass and ascending in eigenvalue, and carries over to them everything that the record holds per
/// mode. Modes of infinite eigenvalue are dropped. A record without stiffness and mass entries
/// keeps its modes, but for a requested mass normalization. False without modes and after a
/// reported failure; the record is unchanged then, as it is when memory runs out.
bool orthonormalize(QDL_Record &record);

}  // namespace qdlflex
