#pragma once

#include "record/record.h"

namespace qdlflex {

/// Removes the faces that lie between two elements, once per record; false after a reported
/// failure, which leaves the faces as they were. See QDL_StripCommonFaces().
bool strip_common_faces(QDL_Record &record);

}  // namespace qdlflex
