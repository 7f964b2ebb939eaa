#pragma once

#include <array>
#include <vector>

#include "record/record.h"

namespace qdlflex {

// The inertia invariants of a body that is moved.

/// Turns every invariant that the record holds; v becomes M^T v. Under a mirror invariants 4 and 5
/// keep the sense of turning where they belong to the nodal masses; as somebody supplied them they
/// are turned like any vector.
void turn_invariants(QDL_Record &record, const Matrix3 &matrix) noexcept;

/// Brings the invariants that the record holds up to date with an offset of the body; those of its
/// file have been loaded. Whatever can fail is done by `prepare`, before the body is turned;
/// `install` belongs immediately before the turning, `finish` after the nodes have been moved.
class InvariantShift {
 public:
  /// `offset` is meant in the frame before the turning. False when the data can't be obtained.
  bool prepare(QDL_Record &record, const Vector3 &offset);
  void install(QDL_Record &record) noexcept;
  /// `offset` is meant in the turned frame. False when an invariant could not follow.
  bool finish(QDL_Record &record, const Vector3 &offset) noexcept;
  /// Reports every invariant that could not.
  void report_left_behind() const;

 private:
  enum class Update { kNone, kFormula, kNodalSum, kImpossible };

  void choose(const QDL_Record &record, int number);
  void choose_held(const QDL_Record &record);
  Update &update(int number) { return updates_[static_cast<std::size_t>(number)]; }

  std::array<Update, 10> updates_{};
  std::vector<double> moments_;  // invariant 4 summed anew
};

}  // namespace qdlflex
