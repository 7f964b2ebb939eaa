#pragma once

#include <string>

#include "record/record.h"

namespace qdlflex {

/// Coarsens the faces as the text of QDL_TrimGeometry asks for. False after a reported failure,
/// which leaves the faces as they were.
bool trim_geometry(QDL_Record &record, const std::string &arguments);

}  // namespace qdlflex
