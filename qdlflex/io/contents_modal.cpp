#include <qdlflex/qdlflex.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "io/contents.h"
#include "numerics/generalized_matrices.h"
#include "numerics/qdlinvar.h"
#include "record/invariant_layout.h"

namespace qdlflex {
namespace {

struct Free {
  void operator()(double *values) const { std::free(values); }
};
using CallerArray = std::unique_ptr<double, Free>;

/// The word for a number from 1 on; empty for one that has none.
template <std::size_t count>
const char *word(const char *const (&words)[count], std::int32_t number) {
  return number >= 1 && static_cast<std::size_t>(number) <= count ? words[number - 1] : "";
}

void print_entries(std::FILE *out, std::span<const GeneralizedEntry> entries) {
  for (const GeneralizedEntry &entry : entries)
    std::fprintf(out, "%5d   %5d   %20.10le\n", entry.row, entry.column, entry.value);
}

}  // namespace

void ContentsReport::generalized_stiffness() {
  with_generalized_entries(record_, Generalized::kStiffness, [this](auto entries) {
    if (entries.empty())
      std::fprintf(out_, "No generalized stiffness information.\n");
    print_entries(out_, entries);
  });
}

void ContentsReport::generalized_mass() {
  with_generalized_entries(record_, Generalized::kMass, [this](auto entries) {
    if (entries.empty())
      std::fprintf(out_, "No generalized mass information in QDL\n");
    print_entries(out_, entries);
  });
}

void ContentsReport::generalized_damping() {
  if (record_.damping.entries.empty()) {
    std::fprintf(out_, "No generalized damping information in QDL.\n");
    return;
  }
  if (record_.damping_on_principal_axes) {
    std::fprintf(out_,
                 "The matrix has been projected onto principal coordinates: its first 6 rows and\n"
                 "columns correspond to the KORVO principal rigid-body degrees of freedom.\n\n");
  } else {
    std::fprintf(out_, "The matrix has not been projected onto principal coordinates.\n\n");
  }
  print_entries(out_, record_.damping.entries);
}

void ContentsReport::transformation() {
  const auto modes = static_cast<std::size_t>(mode_count());
  std::vector<double> matrix(modes * modes);
  if (modes == 0 || QDL_Transformation(&record_, matrix.data()) == 0) {
    std::fprintf(out_, "\tNo Mode Shape Transformation, modes used as is.\n\n");
    return;
  }
  std::fprintf(out_, "Number of modes: %d\n\n", mode_count());
  for (std::size_t i = 0; i < matrix.size(); ++i)
    std::fprintf(out_, (i + 1) % modes == 0 ? "%10.5le \n" : "%10.5le ", matrix[i]);
}

/// Null where there is nothing to tell.
const double *ContentsReport::invariant(int number) {
  const InvariantSlot &slot = obtain_invariant(record_, number);
  return slot.values.empty() ? nullptr : slot.values.data();
}

/// A rigid invariant that nothing was known about is zero.
bool ContentsReport::is_known(int number) const {
  const InvariantSlot &slot = slot_of(record_, number);
  return slot.origin == Origin::kSupplied || present(record_, Block::kNodalMasses) ||
         record_.global_mass.mass != 0.0;
}

void ContentsReport::rows_of_three(const double *values) {
  for (int row = 0; row < 3; ++row, values += 3)
    std::fprintf(out_, "%18.10le%18.10le%18.10le \n", values[0], values[1], values[2]);
}

/// Columns of a matrix of three rows.
void ContentsReport::vectors_per_mode(const double *matrix) {
  const auto modes = static_cast<std::size_t>(mode_count());
  for (std::size_t mode = 0; mode < modes; ++mode)
    std::fprintf(out_, "%5d, %18.10le%18.10le%18.10le \n", mode_number(mode), matrix[mode],
                 matrix[modes + mode], matrix[2 * modes + mode]);
}

void ContentsReport::invariant_1() {
  const double *const value = invariant(1);
  if (value != nullptr)
    std::fprintf(out_, "\t%f \n\n", *value);
  else
    std::fprintf(out_, "\tNo Invariant 1 information\n\n");
}

void ContentsReport::invariant_2() {
  const double *const values = invariant(2);
  if (values != nullptr && is_known(2))
    std::fprintf(out_, "\t%f\t%f\t%f \n\n", values[0], values[1], values[2]);
  else
    std::fprintf(out_, "\tNo Invariant 2 information\n\n");
}

void ContentsReport::invariant_3() {
  if (const double *const matrix = invariant(3); matrix != nullptr)
    vectors_per_mode(matrix);
  else
    std::fprintf(out_, "\tNo Invariant 3 information\n\n");
}

void ContentsReport::invariant_4() {
  if (const double *const matrix = invariant(4); matrix != nullptr)
    vectors_per_mode(matrix);
  else
    std::fprintf(out_, "\tNo Invariant 4 information\n\n");
}

void ContentsReport::invariant_5() {
  const double *const matrices = invariant(5);
  const auto modes = static_cast<std::size_t>(mode_count());
  for (std::size_t mode = 0; mode < modes; ++mode) {
    if (matrices == nullptr) {
      std::fprintf(out_, "\tNo Invariant 5 information for mode %d.\n\n", mode_number(mode));
      continue;
    }
    std::fprintf(out_, "\nMode: %d \n", mode_number(mode));
    vectors_per_mode(matrices + mode * 3 * modes);
  }
}

void ContentsReport::invariant_7() {
  const double *const values = invariant(7);
  if (values != nullptr && is_known(7))
    rows_of_three(values);
  else
    std::fprintf(out_, "\tNo Invariant 7 information\n\n");
}

void ContentsReport::invariant_8() {
  const double *const tensors = invariant(8);
  for (std::size_t mode = 0; mode < record_.mode_numbers.size(); ++mode) {
    if (tensors == nullptr) {
      std::fprintf(out_, "\tNo Invariant 8 information for mode %d.\n\n", mode_number(mode));
      continue;
    }
    std::fprintf(out_, "\nMode: %d\n", mode_number(mode));
    rows_of_three(tensors + 9 * mode);
  }
}

void ContentsReport::invariant_9() {
  const double *tensor = invariant(9);
  for (const std::int32_t row : record_.mode_numbers) {
    for (const std::int32_t column : record_.mode_numbers) {
      if (tensor == nullptr) {
        std::fprintf(out_, "\tNo Invariant 9 information for mode pair (%d, %d).\n\n", row, column);
        continue;
      }
      std::fprintf(out_, "\nModes: %d %d\n", row, column);
      rows_of_three(tensor);
      tensor += 9;
    }
  }
}

void ContentsReport::modal_preload() {
  std::int32_t count = 0;
  const CallerArray values(QDL_GetModalPreload(&record_, &count));
  if (values == nullptr)
    std::fprintf(out_, "\tNo Preload information.\n\n");
  for (std::int32_t mode = 0; mode < count; ++mode)
    std::fprintf(out_, "\n%d % 17.10lf\n", mode_number(static_cast<std::size_t>(mode)),
                 values.get()[mode]);
}

void ContentsReport::modal_loads() {
  if (record_.modal_loads.empty())
    std::fprintf(out_, "\tNo Modal Load information.\n\n");
  for (std::size_t i = 0; i < record_.modal_loads.size(); ++i) {
    const ModalLoadCase &load = record_.modal_loads[i];
    std::fprintf(
        out_, "\nCase: %s     (%s on principal axes)\n",
        std::string(load.label.data(), ::strnlen(load.label.data(), load.label.size())).c_str(),
        load.processed != 0 ? "already projected" : "not yet projected");
    std::int32_t count = 0;
    const CallerArray values(QDL_GetModalLoad(&record_, static_cast<std::int32_t>(i), &count));
    for (std::int32_t mode = 0; mode < count; ++mode)
      std::fprintf(out_, "%d % 17.10lf\n", mode_number(static_cast<std::size_t>(mode)),
                   values.get()[mode]);
  }
}

void ContentsReport::nodal_loads() {
  if (record_.nodal_loads.empty()) {
    std::fprintf(out_, "\tNo Modal Load Nodal Information.\n\n");
    return;
  }
  std::fprintf(out_, "Number of Modal Load Nodal: %d\n",
               static_cast<int>(record_.nodal_loads.size()));
  for (std::size_t i = 0; i < record_.nodal_loads.size(); ++i) {
    std::fprintf(out_, "\nCase Number %d ===========================\n\n", static_cast<int>(i) + 1);
    std::fprintf(out_, " node_id     coord         load       \n%s\n",
                 std::string(38, '~').c_str());
    for (const NodalLoadEntry &entry : record_.nodal_loads[i].entries)
      std::fprintf(out_, "%8d  %8d    % 16.9e\n", node_id(record_, entry.node), entry.coordinate,
                   entry.value);
  }
}

void ContentsReport::matrix_operator(const MatrixOperator &matrix) {
  std::fprintf(out_, "Name of operator:     %s\n", matrix.name.c_str());
  std::fprintf(out_, "Size of row:          %d\n", static_cast<int>(matrix.row_labels.size()));
  std::fprintf(out_, "Size of sub operator: %d\n", static_cast<int>(matrix.sub_operators.size()));
  for (std::size_t row = 0; row < matrix.row_labels.size(); ++row)
    std::fprintf(out_, "Label of row %d:      %s\n", static_cast<int>(row) + 1,
                 matrix.row_labels[row].c_str());
  for (std::size_t i = 0; i < matrix.sub_operators.size(); ++i) {
    const SubOperator &sub = matrix.sub_operators[i];
    std::fprintf(out_, "\n Sub Matrix Operator Number %d ---------------------\n\n",
                 static_cast<int>(i) + 1);
    std::fprintf(out_, " Tag:            %s\n Size of column: %d\n Data:\n", sub.tag.c_str(),
                 sub.columns);
    print_rows(sub.data, static_cast<std::size_t>(sub.columns));
  }
}

void ContentsReport::matrix_operators() {
  if (record_.matrix_operators.empty()) {
    std::fprintf(out_, "\tNo Matrix Operator Information.\n\n");
    return;
  }
  std::fprintf(out_, "Number of Matrix Operator: %d\n",
               static_cast<int>(record_.matrix_operators.size()));
  for (std::size_t i = 0; i < record_.matrix_operators.size(); ++i) {
    std::fprintf(out_, "\nMatrix Operator Number %d ===========================\n\n",
                 static_cast<int>(i) + 1);
    matrix_operator(record_.matrix_operators[i]);
  }
}

void ContentsReport::print_rows(std::span<const double> values, std::size_t columns) {
  for (std::size_t i = 0; i < values.size(); ++i)
    std::fprintf(out_, (i + 1) % columns == 0 ? " % 16.9e\n" : " % 16.9e", values[i]);
}

void ContentsReport::monitor_operator(std::int32_t point, std::int32_t number) {
  constexpr std::int32_t kLoad = 4;
  constexpr const char *kNames[] = {"Displacement", "Velocity", "Acceleration", "Load"};
  const MonitorPoint &source = record_.monitor_points[static_cast<std::size_t>(point)];
  const std::int32_t modes = mode_count();
  const auto matrices = static_cast<std::size_t>(number == kLoad ? source.load_operators : 1);
  std::fprintf(out_, "Modal %s Operator: %8d X %-8d ", word(kNames, number), source.rows, modes);
  if (number == kLoad)
    std::fprintf(out_, "X %-8d CORDER\n ", source.load_operators);
  else
    std::fprintf(out_, " CORDER\n ");
  std::vector<double> values(static_cast<std::size_t>(source.rows) * matrices *
                             static_cast<std::size_t>(modes));
  QDL_GetMonitorPointOperator(&record_, point, number, values.data());
  for (std::size_t i = 0; i < values.size(); ++i)
    std::fprintf(out_, (i + 1) % static_cast<std::size_t>(modes) == 0 ? " %16.9e \n " : " %16.9e ",
                 values[i]);
}

void ContentsReport::monitor_points() {
  constexpr const char *kTypes[] = {"MONPNT1", "MONPNT2", "MONPNT3", "MONDSP1"};
  constexpr const char *kResults[] = {"DISP", "STRESS", "STRAIN", "FORCE", "GENERAL"};
  if (record_.monitor_points.empty()) {
    std::fprintf(out_, "\tNo Monitor Point Information\n\n");
    return;
  }
  const auto count = static_cast<std::int32_t>(record_.monitor_points.size());
  std::fprintf(out_, " Number of Monitor Points: %d\n ", count);
  for (std::int32_t i = 0; i < count; ++i) {
    const MonitorPoint &point = record_.monitor_points[static_cast<std::size_t>(i)];
    std::fprintf(out_, "\n=======      Monitor Point: %-8d=======\n \n ", i + 1);
    std::fprintf(out_, "Name: %-8s\n Label: %-56s\n Type: %-8s\n ", point.name.c_str(),
                 point.label.c_str(), word(kTypes, point.type));
    std::fprintf(out_, "Result Type: %-8s\n Component: %-6d\n ", word(kResults, point.result_type),
                 point.component);
    for (std::int32_t number = 1; number <= 4; ++number) {
      if (QDL_MonitorPointHasOperator(&record_, i, number) != 0)
        monitor_operator(i, number);
    }
  }
}

void ContentsReport::rotor_matrix(const char *title, std::int32_t index) {
  const auto modes = static_cast<std::size_t>(mode_count());
  std::vector<double> values(modes * modes);
  QDL_RotorDynamicsMatrix(&record_, index, values.data());
  std::fprintf(out_, "%s", title);
  for (std::size_t row = 0; row < modes; ++row) {
    std::fprintf(out_, "\nRow Number: %d ------------------------\n", static_cast<int>(row) + 1);
    for (std::size_t column = 0; column < modes; ++column)
      std::fprintf(out_, "% 16.9e", values[row * modes + column]);
    std::fprintf(out_, "\n");
  }
}

void ContentsReport::rotor_dynamics() {
  Vector3 centre{}, direction{};
  if (QDL_RotorDynamicsAxis(&record_, centre.data(), direction.data()) == 0) {
    std::fprintf(out_, "\tNo Rotor Dynamics Information\n\n");
    return;
  }
  std::fprintf(out_, "Center of Axis: % 17.10lf % 17.10lf % 17.10lf\n", centre[0], centre[1],
               centre[2]);
  std::fprintf(out_, "Vector of Axis: % 17.10lf % 17.10lf % 17.10lf\n", direction[0], direction[1],
               direction[2]);
  rotor_matrix("\nDifferential Stiffness Matrix ===============\n", 0);
  rotor_matrix("\nCirculation Matrix ==========================\n", 1);
  rotor_matrix("\nGyroscopic Matrix ===========================\n", 2);
}

}  // namespace qdlflex
