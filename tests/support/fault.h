// Makes chosen allocations and file operations of the library fail, and measures its memory. The
// test binaries replace the global operator new and delete for this. One thread only.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

namespace qdltest {

// What fails: memory (operator new and the arrays for callers), or an operation on a file.
enum class Door { kMemory, kFile };

// Twice: the next use fails too, which is often what handles the first failure.
enum class Persistence { kOnce, kTwice, kEverAfter };

// While it lives, the n-th use of the door from its creation on fails (and the next one, or all
// later ones, too).
class Fault {
 public:
  Fault(Door door, std::size_t n, Persistence persistence);
  ~Fault();
  Fault(const Fault &) = delete;
  Fault &operator=(const Fault &) = delete;

  bool fired() const;

 private:
  Door door_;
};

class FailAllocation : public Fault {
 public:
  explicit FailAllocation(std::size_t n, Persistence persistence = Persistence::kOnce)
      : Fault(Door::kMemory, n, persistence) {}
};

class FailFileOperation : public Fault {
 public:
  explicit FailFileOperation(std::size_t n, Persistence persistence = Persistence::kOnce)
      : Fault(Door::kFile, n, persistence) {}
};

// Lets code of the test allocate and use files freely while a Fault lives, and keeps its memory out
// of the measurement. Used by the message handlers.
class PauseFaults {
 public:
  PauseFaults();
  ~PauseFaults();
  PauseFaults(const PauseFaults &) = delete;
  PauseFaults &operator=(const PauseFaults &) = delete;
};

// The most memory from operator new that was in use at once since its creation, beyond what was in
// use then.
class PeakMemory {
 public:
  PeakMemory();
  std::size_t bytes() const;

 private:
  std::size_t start_;
};

// Calls `run` with the first, the second, ... use of the door failing, until a run gets through
// without meeting the fault. After each run, with nothing failing any more, `check(result, fired)`
// judges what `run` returned. Returns the number of faults met; gives up after a failed check.
template <class Run, class Check>
std::size_t sweep(Door door, Persistence persistence, Run run, Check check) {
  constexpr std::size_t kLimit = 1000000;
  for (std::size_t n = 1; n < kLimit; ++n) {
    SCOPED_TRACE(testing::Message()
                 << (door == Door::kMemory ? "allocation " : "file operation ") << n << " fails"
                 << (persistence == Persistence::kOnce    ? ""
                     : persistence == Persistence::kTwice ? " and the next"
                                                          : " and all later"));
    bool fired = false;
    const auto result = [&] {
      const Fault fault(door, n, persistence);
      auto value = run();
      fired = fault.fired();
      return value;
    }();
    check(result, fired);
    if (!fired || testing::Test::HasFailure())
      return n - 1;
  }
  ADD_FAILURE() << "the scenario never gets through";
  return kLimit;
}

}  // namespace qdltest
