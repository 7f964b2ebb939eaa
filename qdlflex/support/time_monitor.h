#pragma once

namespace qdlflex {

/// Progress of a long operation, shown by the companion library or the host program where one of
/// them offers to.
class TimeMonitor {
 public:
  /// Announces how many stamps are to come.
  explicit TimeMonitor(int total);
  void stamp() const;

 private:
  int (*stamp_)();
};

}  // namespace qdlflex
