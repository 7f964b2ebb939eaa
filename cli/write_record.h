#pragma once

#include <optional>
#include <string>

#include "record.h"

namespace qdlflex::cli {

/// The options for the writer that the user keeps in the environment; none when that is empty.
std::optional<std::string> user_write_options();

/// Options that write all that a record just read holds, in the encoding and precision of its file.
std::string faithful_write_options(QDL_Record *record);

/// Throws a Failure if the file cannot be written.
void write_record(QDL_Record *record, const std::string &path, const std::string &options);

}  // namespace qdlflex::cli
