#pragma once

#include <cstdint>
#include <string>

namespace qdlflex {

/// The value of an environment variable, read at the moment of use; empty when not set.
std::string environment_text(const char *name);

/// The leading decimal integer of a variable; 0 when it is not set or does not begin with one.
std::int64_t environment_integer(const char *name);

/// The directory for temporary files: TMP taken as it is (so that a missing directory fails visibly
/// instead of filling another disk), else TMPDIR, else /tmp.
std::string temporary_directory();

}  // namespace qdlflex
