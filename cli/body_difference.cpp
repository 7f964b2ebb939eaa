#include "body_difference.h"

#include <algorithm>

#include "body_pair.h"
#include "console.h"
#include "mode_pairs.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr int32_t kUnits = 10;  // index of the block

/// The library converts; a body without units keeps its numbers.
void align_units(const BodyPair &bodies, BodyDifference &difference) {
  BlockDifference block = bodies.block("units");
  difference.units_a = read_units(bodies.a);
  difference.units_b = read_units(bodies.b);
  if (block.both(QDL_Exists(bodies.a, kUnits) != 0, QDL_Exists(bodies.b, kUnits) != 0) &&
      difference.units_a != difference.units_b) {
    const Units &units = difference.units_a;
    difference.converted = true;
    if (QDL_SetUnits(bodies.b, units.mass.c_str(), units.length.c_str(), units.time.c_str(),
                     units.force.c_str()) == 0) {
      throw Failure(difference.path_b + " cannot be converted to the units of " +
                    difference.path_a);
    }
  }
  difference.blocks.push_back(block);
}

std::optional<double> frequency_of(QDL_Record *record, int32_t number) {
  double frequency = 0.0;
  return QDL_Eigenvalue(record, number, nullptr, &frequency, nullptr, nullptr, nullptr) != 0
             ? std::optional(frequency)
             : std::nullopt;
}

void list_modes(const BodyPair &bodies, BodyDifference &difference) {
  for (const ModePair &mode : bodies.modes) {
    const int32_t a = QDL_ModeNumber(bodies.a, mode.a);
    const int32_t b = QDL_ModeNumber(bodies.b, mode.b);
    difference.modes.push_back({a, b, mode.mac, mode.factor, mode.same_shape,
                                frequency_of(bodies.a, a), frequency_of(bodies.b, b)});
  }
  difference.modes_only_a = lonely_modes(bodies, bodies.a, &ModePair::a);
  difference.modes_only_b = lonely_modes(bodies, bodies.b, &ModePair::b);
}

}  // namespace

bool BodyDifference::same() const {
  return std::ranges::none_of(blocks, &BlockDifference::different);
}

BodyDifference compare_bodies(const std::string &path_a, const std::string &path_b,
                              double tolerance) {
  BodyDifference difference;
  difference.path_a = path_a;
  difference.path_b = path_b;
  difference.tolerance = tolerance;
  const Record a = open_record(path_a);
  const Record b = open_record(path_b);
  BodyPair bodies{a.get(), b.get(), tolerance, 0.0, {}, {}};
  // A few modes here are all that is needed; the library's cache would keep every mode.
  QDL_SetKeepModesInMemory(a.get(), 0);
  QDL_SetKeepModesInMemory(b.get(), 0);
  align_units(bodies, difference);
  compare_header(bodies, difference.blocks);
  compare_nodes(bodies, difference.blocks);
  compare_faces(bodies, difference.blocks);
  compare_mode_data(bodies, difference.blocks);
  compare_pre_vectors(bodies, difference.blocks);
  compare_generalized(bodies, difference.blocks);
  compare_invariants(bodies, difference.blocks);
  compare_loads(bodies, difference.blocks);
  compare_operators(bodies, difference.blocks);
  list_modes(bodies, difference);
  if (reported_error_count() > 0) {
    throw Failure("the comparison is not complete");
  }
  return difference;
}

}  // namespace qdlflex::cli
