#include "support/environment.h"

#include <cstdlib>

namespace qdlflex {

std::string environment_text(const char *name) {
  const char *value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::int64_t environment_integer(const char *name) {
  const char *value = std::getenv(name);
  return value == nullptr ? 0 : std::strtoll(value, nullptr, 10);
}

std::string temporary_directory() {
  for (const char *name : {"TMP", "TMPDIR"}) {
    std::string directory = environment_text(name);
    if (!directory.empty())
      return directory;
  }
  return "/tmp";
}

}  // namespace qdlflex
