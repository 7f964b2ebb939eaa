#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cstring>

#include "io/block_writer.h"
#include "numerics/generalized_matrices.h"
#include "numerics/qdlinvar.h"
#include "record/invariant_layout.h"

// Generalized matrices, invariants, loads, monitor points and operators.

namespace qdlflex {
namespace {

template <std::size_t N>
std::string_view field_text(const std::array<char, N> &field) {
  return {field.data(), ::strnlen(field.data(), N)};
}

/// Damping on principal axes: indices 0 to 5 are the rigid-body axes, index 6 + f the mode of index
/// r + f, with r rigid modes.
struct DampingIndices {
  bool on_principal_axes = false;
  std::int32_t rigid_modes = 0;
  std::int32_t first_mode = 0;
  std::int32_t end_mode = 0;

  bool exports_mode(std::int32_t mode) const { return mode >= first_mode && mode < end_mode; }

  /// The index in the file, or kNoIndex for one that is left out.
  std::int32_t written(std::int32_t index) const {
    if (!on_principal_axes)
      return exports_mode(index) ? index - first_mode : kNoIndex;
    if (index < 0)
      return kNoIndex;
    const bool axis = index < 6;
    const std::int32_t mode = index - 6 + rigid_modes;
    if (first_mode == 0)
      return axis || mode < end_mode ? index : kNoIndex;
    // The axes mean nothing to a part of the modes, but readers expect their places.
    const std::int32_t rigid_left = std::max(rigid_modes - first_mode, 0);
    return !axis && exports_mode(mode) ? 6 + mode - first_mode - rigid_left : kNoIndex;
  }
};

}  // namespace

bool BlockWriter::entries(std::span<const GeneralizedEntry> entries, std::int32_t header) {
  if (entries.size() > INT32_MAX)
    return false;
  if (!sink_.i32(static_cast<std::int32_t>(entries.size())) || !sink_.i32(header))
    return false;
  const auto one_based = [](std::int32_t index) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + 1u);
  };
  return std::ranges::all_of(entries, [&](const GeneralizedEntry &entry) {
    return sink_.i32(one_based(entry.row)) && sink_.i32(one_based(entry.column)) &&
           sink_.real(entry.value) && sink_.i32(entry.trailing);
  });
}

bool BlockWriter::generalized_stiffness() {
  return with_generalized_entries(record_, Generalized::kStiffness, [&](auto stored_or_implied) {
    return entries(stored_or_implied, record_.stiffness.header);
  });
}

bool BlockWriter::generalized_mass() {
  return with_generalized_entries(record_, Generalized::kMass, [&](auto stored_or_implied) {
    return entries(stored_or_implied, record_.mass.header);
  });
}

bool BlockWriter::generalized_damping() {
  const bool every_mode = modes() == mode_count(record_);
  if (every_mode)
    return entries(record_.damping.entries, record_.damping.header);
  const DampingIndices indices{record_.damping_on_principal_axes, plan_.rigid_modes,
                               plan_.first_mode, plan_.end_mode};
  std::vector<GeneralizedEntry> written;
  for (GeneralizedEntry entry : record_.damping.entries) {
    entry.row = indices.written(entry.row);
    entry.column = indices.written(entry.column);
    if (entry.row != kNoIndex && entry.column != kNoIndex)
      written.push_back(entry);
  }
  return entries(written, record_.damping.header);
}

bool BlockWriter::transformation() {
  const Transformation &transformation = record_.transformation;
  const auto dimension = static_cast<std::size_t>(transformation.dimension);
  if (!sink_.i32(modes()))
    return false;
  for (auto row = static_cast<std::size_t>(plan_.first_mode);
       row < static_cast<std::size_t>(plan_.end_mode); ++row) {
    const bool stored = row < dimension;
    const bool has_integer = row < transformation.row_integers.size();
    if (!sink_.i32(has_integer ? transformation.row_integers[row] : 0))
      return false;
    const double *values = stored ? transformation.matrix.data() + row * dimension : nullptr;
    if (!mode_range(values, stored ? dimension : 0))
      return false;
  }
  return true;
}

// Invariants. The modal ones are cut to the exported modes in each of their mode dimensions.

bool BlockWriter::rigid_invariant(int number) {
  const std::vector<double> &values = obtain_invariant(record_, number).values;
  return !values.empty() && sink_.reals(values.data(), values.size());
}

bool BlockWriter::modal_invariant(int number) {
  if (!sink_.i32(modes()))
    return false;
  const std::vector<double> &values = obtain_invariant(record_, number).values;
  const InvariantShape shape = invariant_shape(number, mode_count(record_));
  if (values.size() < shape.size())
    return false;
  const InvariantShape one_mode = invariant_shape(number, 1);
  const InvariantShape two_modes = invariant_shape(number, 2);
  std::array<std::size_t, 3> first{};
  std::array<std::size_t, 3> end = shape.extents;
  for (std::size_t d = 0; d < end.size(); ++d) {
    const bool counts_modes = one_mode.extents[d] != two_modes.extents[d];
    if (!counts_modes)
      continue;
    first[d] = static_cast<std::size_t>(plan_.first_mode);
    end[d] = static_cast<std::size_t>(plan_.end_mode);
  }
  for (std::size_t i = first[0]; i < end[0]; ++i) {
    for (std::size_t j = first[1]; j < end[1]; ++j) {
      const double *run = values.data() + shape.offset(i, j, first[2]);
      if (!sink_.reals(run, end[2] - first[2]))
        return false;
    }
  }
  return true;
}

bool BlockWriter::invariant_1() {
  return rigid_invariant(1);
}
bool BlockWriter::invariant_2() {
  return rigid_invariant(2);
}
bool BlockWriter::invariant_3() {
  return modal_invariant(3);
}
bool BlockWriter::invariant_4() {
  return modal_invariant(4);
}
bool BlockWriter::invariant_5() {
  return modal_invariant(5);
}
bool BlockWriter::invariant_7() {
  return rigid_invariant(7);
}
bool BlockWriter::invariant_8() {
  return modal_invariant(8);
}
bool BlockWriter::invariant_9() {
  return modal_invariant(9);
}

bool BlockWriter::modal_preload() {
  const ModalPreload &preload = record_.preload;
  return sink_.i32(modes()) && sink_.i32(preload.processed) &&
         mode_range(preload.values.data(), preload.values.size());
}

bool BlockWriter::modal_loads() {
  const std::vector<ModalLoadCase> &cases = record_.modal_loads;
  if (!sink_.i32(modes()) || !sink_.i32(static_cast<std::int32_t>(cases.size())))
    return false;
  return std::ranges::all_of(cases, [&](const ModalLoadCase &load_case) {
    return sink_.characters(field_text(load_case.label), load_case.label.size()) &&
           sink_.i32(load_case.processed) &&
           mode_range(load_case.values.data(), load_case.values.size());
  });
}

bool BlockWriter::matrix_operators() {
  const std::vector<MatrixOperator> &operators = record_.matrix_operators;
  QDL_Info("\nMatrix Operator Info:\n   Count: %ld", static_cast<long>(operators.size()));
  if (!sink_.i32(static_cast<std::int32_t>(operators.size())))
    return false;
  return std::ranges::all_of(operators,
                             [&](const MatrixOperator &each) { return matrix_operator(each); });
}

bool BlockWriter::matrix_operator(const MatrixOperator &matrix_operator) {
  const std::vector<std::string> &labels = matrix_operator.row_labels;
  const std::vector<SubOperator> &subs = matrix_operator.sub_operators;
  return sink_.i32(static_cast<std::int32_t>(labels.size())) &&
         sink_.characters(matrix_operator.name, 8) &&
         std::ranges::all_of(
             labels, [&](const std::string &label) { return sink_.characters(label, 80); }) &&
         sink_.i32(static_cast<std::int32_t>(subs.size())) &&
         std::ranges::all_of(subs, [&](const SubOperator &sub) {
           return sink_.i32(sub.columns) && sink_.characters(sub.tag, 8) &&
                  sink_.reals(sub.data.data(), sub.data.size());
         });
}

bool BlockWriter::nodal_loads() {
  const std::vector<NodalLoadCase> &cases = record_.nodal_loads;
  QDL_Info("\nModal Load Nodal Info:\n   Count: %ld", static_cast<long>(cases.size()));
  if (!sink_.i32(static_cast<std::int32_t>(cases.size())))
    return false;
  return std::ranges::all_of(cases, [&](const NodalLoadCase &load_case) {
    return sink_.i32(static_cast<std::int32_t>(load_case.entries.size())) &&
           std::ranges::all_of(load_case.entries, [&](const NodalLoadEntry &entry) {
             return sink_.i32(node_id(record_, entry.node)) && sink_.i32(entry.coordinate) &&
                    sink_.real(entry.value);
           });
  });
}

bool BlockWriter::monitor_points() {
  const std::vector<MonitorPoint> &points = record_.monitor_points;
  QDL_Info("\nMonitor Point info:\n   Count: %ld", static_cast<long>(points.size()));
  if (!sink_.i32(static_cast<std::int32_t>(points.size())))
    return false;
  return std::ranges::all_of(points, [&](const MonitorPoint &each) { return monitor_point(each); });
}

bool BlockWriter::monitor_point(const MonitorPoint &point) {
  // Without modes the rows are empty, and nothing bounds how many a file says there are.
  const auto rows = static_cast<std::size_t>(modes() == 0 ? 0 : std::max(point.rows, 0));
  const auto columns = static_cast<std::size_t>(point.columns);
  std::int32_t blocks = 0;
  for (std::int32_t number = 0; number < 4; ++number) {
    if ((point.mask & (1 << number)) != 0)
      blocks += number == 3 ? point.load_operators : 1;
  }
  if (!sink_.i32(point.type) || !sink_.i32(point.result_type) || !sink_.i32(point.component) ||
      !sink_.characters(point.name, 8) || !sink_.characters(point.label, 56) ||
      !sink_.i32(point.rows) || !sink_.i32(blocks) || !sink_.i32(point.mask)) {
    return false;
  }
  for (std::size_t number = 0; number < point.operators.size(); ++number) {
    if ((point.mask & (1 << number)) == 0)
      continue;
    const std::size_t all_rows =
        number == 3 ? rows * static_cast<std::size_t>(point.load_operators) : rows;
    for (std::size_t row = 0; row < all_rows; ++row) {
      if (!mode_range(point.operators[number].data() + row * columns, columns))
        return false;
    }
  }
  return true;
}

bool BlockWriter::rotor_dynamics() {
  const RotorDynamics &rotor = record_.rotor;
  const Vector3 &centre = rotor.centre;
  const Vector3 &direction = rotor.direction;
  if (!sink_.i32(static_cast<std::int32_t>(kRotorMatrices)) ||
      !sink_.reals(centre.data(), centre.size()) ||
      !sink_.reals(direction.data(), direction.size())) {
    return false;
  }
  for (const RotorMatrix &matrix : rotor.matrices) {
    if (!sink_.i32(matrix.integer))
      return false;
    const auto dimension = static_cast<std::size_t>(matrix.dimension);
    for (std::int32_t mode = plan_.first_mode; mode < plan_.end_mode; ++mode) {
      const auto row = static_cast<std::size_t>(mode);
      const bool stored = row < dimension;
      const double *values = stored ? matrix.values.data() + row * dimension : nullptr;
      if (!mode_range(values, stored ? dimension : 0))
        return false;
    }
  }
  QDL_Info("\nRotor Dynamics info:\n");
  QDL_Info("   Number of Matrices: %ld", static_cast<long>(kRotorMatrices));
  QDL_Info("   Center of Axis: %lf %lf %lf", centre[0], centre[1], centre[2]);
  QDL_Info("   Vector of Axis: %lf %lf %lf", direction[0], direction[1], direction[2]);
  return true;
}

}  // namespace qdlflex
