#include "support/available_memory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace qdlflex {
namespace {

std::int64_t free_pages() {
  return static_cast<std::int64_t>(::sysconf(_SC_AVPHYS_PAGES)) * ::sysconf(_SC_PAGESIZE);
}

/// The kernel's own estimate counts memory that caches would give back; the free pages alone don't.
std::int64_t kernel_estimate() {
  std::FILE *file = std::fopen("/proc/meminfo", "re");
  if (file == nullptr)
    return free_pages();
  char line[128];
  long long kilobytes = -1;
  while (kilobytes < 0 && std::fgets(line, sizeof line, file) != nullptr) {
    std::sscanf(line, "MemAvailable: %lld kB", &kilobytes);
  }
  std::fclose(file);
  return kilobytes < 0 ? free_pages() : kilobytes * 1024;
}

}  // namespace

std::int64_t available_memory() {
  const std::int64_t estimate = kernel_estimate();
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
    return estimate;
  return std::min(estimate, static_cast<std::int64_t>(limit.rlim_cur));
}

}  // namespace qdlflex
