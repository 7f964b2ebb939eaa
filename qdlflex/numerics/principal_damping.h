#pragma once

#include "record/record.h"

namespace qdlflex {

/// Replaces the generalized damping of the rigid-body modes by that of the six rigid-body axes.
/// Their entries have the indices 0 to 5 from then on, those of the other modes follow: with r
/// rigid-body modes mode r + f has the index 6 + f. Done once. False, with the damping as it was,
/// after a reported failure.
bool damping_on_principal_axes(QDL_Record &record);

}  // namespace qdlflex
