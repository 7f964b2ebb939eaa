#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace qdlflex {

/// Local date (form 1), time with its offset from UTC (form 2), or both, of a point in time.
std::string local_time_text(std::time_t now, std::int64_t form);

/// Name, release ("major_minor") and platform number of a system, as `form` selects; empty when the
/// release does not begin with a number.
std::string system_text(const std::string &name, const char *release, std::int32_t form);

}  // namespace qdlflex
