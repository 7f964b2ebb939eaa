#pragma once

#include <cstdint>
#include <string>

#include "record/record.h"

namespace qdlflex {

/// A new temporary file for a kind of mode data, with all values zero and its disk space taken.
/// Its name comes from the kind's environment variable where that is set and names no file in use,
/// else it is a fresh one. No file in the result after a reported failure.
Backing create_temporary_backing(const QDL_Record &record, std::int32_t kind, std::int64_t modes,
                                 std::int64_t nodes);

/// Lays the kind's temporary file out anew when it has no room for a node at this position. False
/// after a reported failure; the values are then as they were.
bool ensure_room_for(QDL_Record &record, std::int32_t kind, std::int32_t position);

void report_no_disk_space(std::int32_t kind, const std::string &name);

}  // namespace qdlflex
