#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "block_difference.h"
#include "units.h"

namespace qdlflex::cli {

/// A pair of modes by their numbers.
struct PairedMode {
  int32_t a;
  int32_t b;
  std::optional<double> mac;
  double factor;  // mode of B = factor times mode of A
  bool same_shape;
  std::optional<double> frequency_a;
  std::optional<double> frequency_b;
};

/// What `qdlflex diff` tells of two files.
struct BodyDifference {
  std::string path_a;
  std::string path_b;
  double tolerance = 0.0;
  Units units_a;
  Units units_b;
  bool converted = false;  // B to the units of A
  std::vector<BlockDifference> blocks;
  std::vector<PairedMode> modes;
  std::vector<int32_t> modes_only_a;
  std::vector<int32_t> modes_only_b;

  bool same() const;
};

/// Throws a Failure if a file cannot be opened as a QDL file or read to its end.
BodyDifference compare_bodies(const std::string &path_a, const std::string &path_b,
                              double tolerance);

void print_text(const BodyDifference &difference);
void print_json(const BodyDifference &difference);

}  // namespace qdlflex::cli
