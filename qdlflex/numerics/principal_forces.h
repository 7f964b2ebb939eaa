#pragma once

#include "record/record.h"

namespace qdlflex {

/// Replaces the rigid-body part of the modal preload and of every modal load by the force and the
/// moment about the origin that it stands for, in the first six entries. Done once for each; what
/// fails is reported and stays as it was, to be tried again.
void forces_on_principal_axes(QDL_Record &record);

}  // namespace qdlflex
