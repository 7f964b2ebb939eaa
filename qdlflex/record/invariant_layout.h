#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "record/record.h"

namespace qdlflex {

// How the values of the cached inertia invariants are laid out. Each is an array of three extents,
// row by row:
//
//   1: one value     2: 3 components     3, 4: component, mode     5: mode, component, mode
//   7: 3 x 3         8: mode, 3 x 3      9: mode, mode, 3 x 3      6: not stored

constexpr int kLastInvariant = 9;

/// The slot of the invariant with this number.
inline InvariantSlot &slot_of(QDL_Record &record, int number) {
  return record.invariants[static_cast<std::size_t>(number)];
}
inline const InvariantSlot &slot_of(const QDL_Record &record, int number) {
  return record.invariants[static_cast<std::size_t>(number)];
}

struct InvariantShape {
  std::array<std::size_t, 3> extents{};

  /// Number of values. Throws std::length_error where no memory could ever hold them.
  std::size_t size() const;

  std::size_t offset(std::size_t i, std::size_t j, std::size_t k) const {
    return (i * extents[1] + j) * extents[2] + k;
  }
};

InvariantShape invariant_shape(int number, std::int32_t modes);

/// The block of a file that holds the invariant; number 6 has none.
Block invariant_block(int number);

/// Whether the invariant depends on the number of modes.
bool is_modal_invariant(int number);

/// Whether the invariant has been obtained or the record's file supplies it.
bool is_known(const QDL_Record &record, int number);

/// Lays a slot out for `modes` modes: values of modes that it had stay, new ones are zero. An empty
/// slot becomes all zeros. The origin stays as it is. On failure the slot is unchanged.
void lay_out_invariant(QDL_Record &record, int number, std::int32_t modes);

/// Cuts a slot laid out for more modes to the first `modes`; no other slot changes.
void cut_invariant(QDL_Record &record, int number, std::int32_t modes);

/// Factor of an invariant's values under a change of units.
double invariant_unit_factor(int number, const UnitRatios &ratios);

}  // namespace qdlflex
