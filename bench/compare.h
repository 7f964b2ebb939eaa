// Measures what we do beside what somebody else does with the same data, and reports the ratio.
// See README.md in this folder.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

namespace qdlflex::bench {

// One line of the performance table.
struct Comparison {
  std::string job;     // "fetch a half mode, native file"
  std::string beside;  // "fread of the same bytes"
  double at_least;     // the smallest ratio that meets the target
};

inline void describe(benchmark::State &state, const Comparison &comparison) {
  state.SetLabel(comparison.job + " | " + comparison.beside);
  state.counters["target"] = comparison.at_least;
}

template <class Job>
double seconds(Job &job) {
  const auto start = std::chrono::steady_clock::now();
  job();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Runs both jobs in turn, so that whatever disturbs the machine disturbs both, and keeps the best
// time of each. The ratio is the peer's time divided by ours: above 1 we are the faster.
// Preparation belongs outside of the jobs; a job shorter than a microsecond must repeat itself.
template <class Ours, class Peer>
void compare(benchmark::State &state, const Comparison &comparison, Ours ours, Peer peer) {
  constexpr int kMinRounds = 5;
  constexpr int kMaxRounds = 1000;
  constexpr double kEnough = 2.0;
  constexpr double kTooMuch = 30.0;

  describe(state, comparison);
  double ours_best = std::numeric_limits<double>::infinity();
  double peer_best = std::numeric_limits<double>::infinity();
  for (auto _ : state) {
    double spent = 0.0;
    for (int round = 0;
         (round < kMinRounds && spent < kTooMuch) || (spent < kEnough && round < kMaxRounds);
         ++round) {
      const double ours_time = seconds(ours);
      const double peer_time = seconds(peer);
      ours_best = std::min(ours_best, ours_time);
      peer_best = std::min(peer_best, peer_time);
      spent += ours_time + peer_time;
    }
    state.SetIterationTime(ours_best);
  }
  state.counters["ours_s"] = ours_best;
  state.counters["peer_s"] = peer_best;
  state.counters["ratio"] = peer_best / ours_best;
}

// The same for a peer that runs in another process and measures itself. `prepare` runs before each
// of our runs, unmeasured.
template <class Prepare, class Ours>
void compare_with_process(benchmark::State &state, const Comparison &comparison, Prepare prepare,
                          Ours ours, double peer_seconds) {
  constexpr int kMinRounds = 5;
  constexpr double kEnough = 1.0;

  describe(state, comparison);
  double best = std::numeric_limits<double>::infinity();
  for (auto _ : state) {
    double spent = 0.0;
    for (int round = 0; round < kMinRounds || spent < kEnough; ++round) {
      prepare();
      const double time = seconds(ours);
      best = std::min(best, time);
      spent += time;
    }
    state.SetIterationTime(best);
  }
  state.counters["ours_s"] = best;
  state.counters["peer_s"] = peer_seconds;
  state.counters["ratio"] = peer_seconds / best;
}

// Ends the program when `holds` is false: a row must not measure something that does not work.
inline void require(bool holds, const char *what) {
  if (!holds) {
    std::fprintf(stderr, "error: %s\n", what);
    std::exit(EXIT_FAILURE);
  }
}

// For a row that cannot be measured here, with the reason ("netCDF is not installed").
inline void not_measured(benchmark::State &state, const Comparison &comparison,
                         const std::string &reason) {
  describe(state, comparison);
  state.SkipWithError(reason.c_str());
}

// Registers a function `void row(benchmark::State &)` that calls compare() once.
template <class Row>
bool register_row(const char *name, Row row) {
  benchmark::RegisterBenchmark(name, std::move(row))
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  return true;
}

}  // namespace qdlflex::bench
