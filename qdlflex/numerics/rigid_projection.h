#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// What is left of a value on the axes: nothing of one that is only rounding, or not a number.
inline double significant(double value) {
  return std::fabs(value) > 1e-10 ? value : 0.0;
}

/// The mode shapes of a record, one at a time.
class ModeShapes {
 public:
  explicit ModeShapes(QDL_Record &record);

  /// Nodes that have mode data: the first of the record's nodes.
  std::size_t nodes() const { return nodes_; }

  /// Six components per node, until the next one is asked for. Null after a reported failure, also
  /// for an index past the modes.
  const double *view(std::int32_t mode_index);

 private:
  QDL_Record &record_;
  std::size_t nodes_;
  std::vector<double> buffer_;
};

/// A mode's translations summed with the nodal masses.
struct MassWeightedMode {
  Vector6 along_axes{};  // against the rigid motion along each axis: momentum and its moment
  double square = 0.0;   // against themselves
};

/// None after a reported failure to read the mode.
std::optional<MassWeightedMode> weigh_mode(const QDL_Record &record, ModeShapes &shapes,
                                           std::int32_t mode_index);

/// How much of each axis the first modes carry: `table[axis][mode]`. False after a reported
/// failure; a model without nodes fails unless no mode is asked for.
bool project_on_rigid_body_axes(QDL_Record &record, std::int32_t modes, double *const *table);

}  // namespace qdlflex
