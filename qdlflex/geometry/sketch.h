#pragma once

#include "record/record.h"

namespace qdlflex {

/// Replaces the faces by those of a sketch file, null: the file's name is missing; false after a
/// reported failure, which leaves the faces as they were. See QDL_SketchGrid().
bool sketch_grid(QDL_Record &record, const char *path);

}  // namespace qdlflex
