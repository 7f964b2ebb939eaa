#pragma once

#include <fstream>
#include <limits>
#include <string>

namespace qdlflex::bench {

/// An entry of the kernel's report on this process, in MiB; 0 where it tells none.
inline double process_memory(const std::string &wanted) {
  std::ifstream status("/proc/self/status");
  std::string name;
  double kibibytes = 0.0;
  while (status >> name) {
    if (name == wanted && status >> kibibytes)
      return kibibytes / 1024.0;
    status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return 0.0;
}

/// MiB by which a job raises the memory of the process at most. Goes into the counter `peak_MiB`.
template <class Job>
double peak_memory(Job job) {
  std::ofstream("/proc/self/clear_refs") << "5";
  const double before = process_memory("VmRSS:");
  job();
  return process_memory("VmHWM:") - before;
}

}  // namespace qdlflex::bench
