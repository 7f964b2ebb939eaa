#pragma once

#include <memory>

#include "record/record.h"

namespace qdlflex {

/// Reads an open file into the record, whose former contents are dropped. The file stays with the
/// record, also after a failure, which has been reported.
bool read_file(QDL_Record &record, std::shared_ptr<File> file);

}  // namespace qdlflex
