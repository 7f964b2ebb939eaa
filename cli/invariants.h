#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "units.h"

namespace qdlflex::cli {

/// Which inertia invariants are computed: all of them, all but the ones of pairs of modes (5 and
/// 9), or only those of the undeformed body (1, 2 and 7).
enum class InvariantSet { kFull, kFast, kRigid };

/// An invariant row by row; invariant 1 has no extents and one value.
struct Invariant {
  int number;
  std::vector<size_t> shape;
  std::vector<double> values;
};

/// What `qdlflex invariants` tells of a file.
struct Invariants {
  std::string path;
  InvariantSet set = InvariantSet::kFast;
  Units units;
  std::vector<int32_t> modes;  // their numbers
  std::vector<Invariant> all;  // ascending

  double mass = 0.0;
  std::optional<std::array<double, 3>> centre;  // none without mass
  std::array<double, 9> inertia_about_origin{};
  std::optional<std::array<double, 9>> inertia_about_centre;
};

/// Throws a Failure if the file cannot be opened as a QDL file or an invariant cannot be had.
Invariants read_invariants(const std::string &path, InvariantSet set);

void print_tables(const Invariants &invariants);
void print_json(const Invariants &invariants);

}  // namespace qdlflex::cli
