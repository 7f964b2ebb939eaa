#include "support/time_monitor.h"

#include <dlfcn.h>

// Supplied by a companion library or by the host program itself, which is why they are only
// referred to weakly.
extern "C" int QDL_TimeMonitor(int total) __attribute__((weak));
extern "C" int QDL_TimeMonitorStamp(void) __attribute__((weak));

namespace qdlflex {
namespace {

/// A library that was loaded later than this one is only found by name.
template <class Function>
Function *found(Function *linked, const char *name) {
  return linked != nullptr ? linked : reinterpret_cast<Function *>(::dlsym(RTLD_DEFAULT, name));
}

}  // namespace

TimeMonitor::TimeMonitor(int total) : stamp_(found(QDL_TimeMonitorStamp, "QDL_TimeMonitorStamp")) {
  if (int (*const start)(int) = found(QDL_TimeMonitor, "QDL_TimeMonitor"))
    start(total);
}

void TimeMonitor::stamp() const {
  if (stamp_ != nullptr)
    stamp_();
}

}  // namespace qdlflex
