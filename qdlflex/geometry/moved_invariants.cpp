#include "geometry/moved_invariants.h"

#include <algorithm>
#include <initializer_list>
#include <span>

#include "geometry/matrix3.h"
#include "geometry/stored_modes.h"
#include "modes/mode_store.h"
#include "numerics/qdlinvar.h"
#include "numerics/rigid_invariants.h"
#include "record/invariant_layout.h"
#include "record/lookups.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

bool is_held(const QDL_Record &record, int number) {
  return slot_of(record, number).origin != Origin::kEmpty;
}

/// Columns of matrices of three rows and one column per mode, one matrix after the other.
template <class Change>
void for_each_column(InvariantSlot &slot, Change change) {
  const auto modes = static_cast<std::size_t>(slot.modes);
  for (std::size_t at = 0; at + 3 * modes <= slot.values.size() && modes > 0; at += 3 * modes) {
    for (std::size_t mode = 0; mode < modes; ++mode) {
      double *const top = slot.values.data() + at + mode;
      Vector3 column = {top[0], top[modes], top[2 * modes]};
      change(mode, column);
      for (std::size_t c = 0; c < 3; ++c)
        top[c * modes] = column[c];
    }
  }
}

void turn_columns(InvariantSlot &slot, const Matrix3 &matrix, double sign) {
  for_each_column(slot, [&](std::size_t, Vector3 &column) {
    turn_vector(matrix, column.data());
    for (double &value : column)
      value *= sign;
  });
}

void turn_tensors(InvariantSlot &slot, const Matrix3 &matrix) {
  for (std::size_t at = 0; at + 9 <= slot.values.size(); at += 9)
    turn_tensor(matrix, slot.values.data() + at);
}

Vector3 column(const InvariantSlot &slot, std::size_t mode) {
  const auto modes = static_cast<std::size_t>(slot.modes);
  return {slot.values[mode], slot.values[modes + mode], slot.values[2 * modes + mode]};
}

/// The part of invariant 4 that one mode has at one node.
Vector3 nodal_moment(const Node &node, const Vector3 &offset, const double *six) {
  const Vector3 place = {node.xyz[0] + offset[0], node.xyz[1] + offset[1], node.xyz[2] + offset[2]};
  Vector3 moment = cross(place, {six[0], six[1], six[2]});
  for (double &value : moment)
    value *= node.mass;
  if (node.inertia != nullptr) {
    Vector3 rotation = {six[3], six[4], six[5]};
    turn_vector(symmetric_matrix(*node.inertia), rotation.data());
    for (std::size_t c = 0; c < 3; ++c)
      moment[c] += rotation[c];
  }
  return moment;
}

/// Invariant 4 from the nodes at `offset` from where they are. Empty after a reported failure.
std::vector<double> nodal_moments(QDL_Record &record, const Vector3 &offset) {
  const auto nodes = static_cast<std::size_t>(mode_node_count(record, kModeShapes));
  const auto modes = static_cast<std::size_t>(mode_count(record));
  std::vector<double> moments(3 * modes);
  std::vector<double> buffer(nodes * kComponents);
  const std::int32_t stored =
      present(record, Block::kModeShapes) ? stored_mode_count(record, kModeShapes) : 0;
  for (std::size_t mode = 0; mode < static_cast<std::size_t>(stored); ++mode) {
    const double *six =
        view_mode(record, kModeShapes, static_cast<std::int32_t>(mode), buffer.data());
    if (six == nullptr)
      return {};
    for (std::size_t node = 0; node < nodes; ++node, six += kComponents) {
      const Vector3 moment = nodal_moment(record.nodes[node], offset, six);
      for (std::size_t c = 0; c < 3; ++c)
        moments[c * modes + mode] += moment[c];
    }
  }
  return moments;
}

/// Inertia about a point from which the centre has moved away by the offset.
void shift_inertia(std::span<double> inertia, double mass, const Vector3 &first_moment,
                   const Vector3 &offset) {
  const double diagonal = 2.0 * dot(offset, first_moment) + mass * dot(offset, offset);
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c) {
      inertia[3 * row + c] += (row == c ? diagonal : 0.0) -
                              (first_moment[row] * offset[c] + offset[row] * first_moment[c]) -
                              mass * offset[row] * offset[c];
    }
  }
}

/// Adds ~a ~b = b a^T - (a . b) E.
void add_tilde_product(std::span<double> matrix, const Vector3 &a, const Vector3 &b) {
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c)
      matrix[3 * row + c] += b[row] * a[c] - (row == c ? dot(a, b) : 0.0);
  }
}

void shift_by_formula(QDL_Record &record, int number, const Vector3 &first_moment,
                      const Vector3 &offset) {
  InvariantSlot &slot = slot_of(record, number);
  const double mass = slot_of(record, 1).values[0];
  const InvariantSlot &translations = slot_of(record, 3);
  switch (number) {
    case 2:
      for (std::size_t c = 0; c < 3; ++c)
        slot.values[c] += mass * offset[c];
      break;
    case 4:
      for_each_column(slot, [&](std::size_t mode, Vector3 &moment) {
        const Vector3 change = cross(offset, column(translations, mode));
        for (std::size_t c = 0; c < 3; ++c)
          moment[c] += change[c];
      });
      break;
    case 7:
      shift_inertia(slot.values, mass, first_moment, offset);
      break;
    default:
      for (std::size_t mode = 0; 9 * mode < slot.values.size(); ++mode) {
        add_tilde_product(std::span(slot.values).subspan(9 * mode, 9), offset,
                          column(translations, mode));
      }
  }
}

void report_impossible(int number) {
  switch (number) {
    case 2:
      QDL_Error("Can not Compute Invar2.\n");
      break;
    case 4:
      QDL_Error(
          "Can not compute Invar4. \n"
          "Invar3 or Nodal Mass inforamtion is needed to compute Invar4.");
      break;
    case 7:
      QDL_Error("Can not Compute Invar7.\n");
      break;
    default:
      QDL_Error("Can not compute Invar8. \nInvar3 is needed to compute Invar8.");
  }
}

/// Those that depend on the place of the body.
constexpr auto kPlaced = {2, 4, 7, 8};

}  // namespace

void turn_invariants(QDL_Record &record, const Matrix3 &matrix) noexcept {
  const double axial_sign = is_mirror(matrix) ? -1.0 : 1.0;
  const bool nodal = present(record, Block::kNodalMasses);
  const auto sign = [&](int number, bool belongs_to_nodes) {
    const bool derived = slot_of(record, number).origin == Origin::kDerived;
    return derived || belongs_to_nodes ? axial_sign : 1.0;
  };
  if (is_held(record, 2))
    turn_vector(matrix, slot_of(record, 2).values.data());
  turn_columns(slot_of(record, 3), matrix, 1.0);
  turn_columns(slot_of(record, 4), matrix, sign(4, nodal));
  turn_columns(slot_of(record, 5), matrix, sign(5, false));
  for (const int number : {7, 8, 9})
    turn_tensors(slot_of(record, number), matrix);
}

void InvariantShift::choose(const QDL_Record &record, int number) {
  const bool derived = slot_of(record, number).origin == Origin::kDerived;
  const bool nodal = present(record, Block::kNodalMasses);
  // Sums over the nodes that pruning has left would miss the mass of the others.
  const bool summable = nodal && !record.mass_pruned;
  switch (number) {
    case 2:
    case 7:
      update(number) = summable           ? Update::kNodalSum
                       : derived || nodal ? Update::kFormula
                                          : Update::kImpossible;
      break;
    case 4:
      update(number) = summable && !derived                     ? Update::kNodalSum
                       : derived || nodal || is_held(record, 3) ? Update::kFormula
                                                                : Update::kImpossible;
      break;
    default:
      update(number) = derived || is_held(record, 3) ? Update::kFormula : Update::kImpossible;
  }
}

void InvariantShift::choose_held(const QDL_Record &record) {
  for (const int number : kPlaced) {
    if (update(number) == Update::kNone && is_held(record, number))
      choose(record, number);
  }
}

bool InvariantShift::prepare(QDL_Record &record, const Vector3 &offset) {
  // What is derived further down follows too, but is nothing that the record is known to hold.
  choose_held(record);
  for (const int number : {1, 2, 7}) {
    if (obtain_invariant(record, number).values.empty())
      return false;
  }
  if (update(4) == Update::kFormula || update(8) == Update::kFormula) {
    if (obtain_invariant(record, 3).values.empty() && mode_count(record) > 0)
      return false;
  }
  choose_held(record);
  for (const int number : {4, 8}) {
    if (is_held(record, number))
      lay_out_invariant(record, number, mode_count(record));
  }
  if (update(4) != Update::kNodalSum)
    return true;
  moments_ = nodal_moments(record, offset);
  return !moments_.empty() || mode_count(record) == 0;
}

void InvariantShift::install(QDL_Record &record) noexcept {
  if (update(4) == Update::kNodalSum)
    slot_of(record, 4).values.swap(moments_);
}

bool InvariantShift::finish(QDL_Record &record, const Vector3 &offset) noexcept {
  Vector3 moment_before{};
  std::copy_n(slot_of(record, 2).values.begin(), 3, moment_before.begin());
  bool complete = true;
  for (const int number : kPlaced) {
    switch (update(number)) {
      case Update::kNone:
        break;
      case Update::kFormula:
        shift_by_formula(record, number, moment_before, offset);
        break;
      case Update::kNodalSum:
        if (number == 2)
          std::ranges::copy(first_moment(record), slot_of(record, 2).values.begin());
        if (number == 7)
          std::ranges::copy(inertia_about_origin(record), slot_of(record, 7).values.begin());
        break;
      case Update::kImpossible:
        complete = false;
    }
  }
  return complete;
}

void InvariantShift::report_left_behind() const {
  for (const int number : kPlaced) {
    if (updates_[static_cast<std::size_t>(number)] == Update::kImpossible)
      report_impossible(number);
  }
}

}  // namespace qdlflex
