#pragma once

#include <functional>
#include <optional>
#include <string>

#include "record.h"

namespace qdlflex::cli {

/// The options for the writer that the user keeps in the environment; none when that is empty.
std::optional<std::string> user_write_options();

/// Options for the encoding and precision of the file that a record was read from, to be added to
/// others.
std::string same_form_options(QDL_Record *record);

/// Options that write what a record just read holds, in the encoding and precision of its file.
/// Warns of what no options can write.
std::string faithful_write_options(QDL_Record *record);

/// Puts the options in force: the writer reads them, and some edits do.
void set_write_options(const std::string &options);

/// Throws a Failure if the file cannot be written; one that existed before is then still there.
/// `accept`, if given, looks at the new file before it takes that one's place, and may refuse it by
/// a Failure.
void write_record(QDL_Record *record, const std::string &path, const std::string &options,
                  const std::function<void(const std::string &written)> &accept = {});

}  // namespace qdlflex::cli
