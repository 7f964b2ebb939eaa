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

/// Gives a new file room for `modes` modes of `nodes` nodes, all zero, and maps it where that can
/// be done. False when there is no space on the disk.
bool lay_out(Backing &backing, std::int64_t modes, std::int64_t nodes);

/// Makes room in the kind's temporary file for this mode and for a node at this position, where it
/// has none. False after a reported failure; the values are then as they were.
bool ensure_room_for(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                     std::int32_t position);

void report_no_disk_space(std::int32_t kind, const std::string &name);

}  // namespace qdlflex
