#include "support/time_monitor.h"

#include "support/companion.h"

// Supplied by a companion library or by the host program itself, which is why they are only
// referred to weakly.
extern "C" int QDL_TimeMonitor(int total) __attribute__((weak));
extern "C" int QDL_TimeMonitorStamp(void) __attribute__((weak));

namespace qdlflex {

TimeMonitor::TimeMonitor(int total)
    : stamp_(companion_function(QDL_TimeMonitorStamp, "QDL_TimeMonitorStamp")) {
  if (int (*const start)(int) = companion_function(QDL_TimeMonitor, "QDL_TimeMonitor"))
    start(total);
}

void TimeMonitor::stamp() const {
  if (stamp_ != nullptr)
    stamp_();
}

}  // namespace qdlflex
