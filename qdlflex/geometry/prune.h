#pragma once

#include "record/record.h"

namespace qdlflex {

/// Discards every node that the geometry does not use, with everything that belongs to it. False
/// after a reported failure, with the record as it was.
bool discard_unreferenced_nodes(QDL_Record &record);

/// Strips inner faces and then discards nodes, once in a record's life. Whether the faces have been
/// stripped.
bool remove_internal_geometry(QDL_Record &record);

}  // namespace qdlflex
