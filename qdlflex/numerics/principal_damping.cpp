#include "numerics/principal_damping.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "numerics/generalized_matrices.h"
#include "numerics/rigid_body_modes.h"
#include "numerics/rigid_projection.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";
constexpr auto kAxes = static_cast<std::int32_t>(kRigidBodyAxes);

struct Matrix {
  std::size_t rows;
  std::size_t columns;
  std::vector<double> values = std::vector<double>(rows * columns);

  double *row(std::size_t index) { return values.data() + index * columns; }
  const double *row(std::size_t index) const { return values.data() + index * columns; }
};

/// Six rows of a coefficient for each rigid mode. None after a reported failure.
std::optional<Matrix> rigid_projection(QDL_Record &record, std::int32_t rigid_modes) {
  Matrix table{kRigidBodyAxes, static_cast<std::size_t>(rigid_modes)};
  std::array<double *, kRigidBodyAxes> rows{};
  for (std::size_t axis = 0; axis < kRigidBodyAxes; ++axis)
    rows[axis] = table.row(axis);
  if (!project_on_rigid_body_axes(record, rigid_modes, rows.data()))
    return std::nullopt;
  return table;
}

/// The rows of the rigid modes replaced by rows of the axes.
Matrix project_rows(const Matrix &damping, const Matrix &table) {
  const std::size_t rigid = table.columns;
  Matrix projected{damping.rows - rigid + kRigidBodyAxes, damping.columns};
  for (std::size_t axis = 0; axis < kRigidBodyAxes; ++axis) {
    double *target = projected.row(axis);
    for (std::size_t mode = 0; mode < rigid; ++mode) {
      const double coefficient = table.row(axis)[mode];
      const double *source = damping.row(mode);
      for (std::size_t column = 0; column < damping.columns; ++column)
        target[column] += coefficient * source[column];
    }
  }
  std::copy_n(damping.row(rigid), (damping.rows - rigid) * damping.columns,
              projected.row(kRigidBodyAxes));
  return projected;
}

/// One row with the columns of the rigid modes replaced by columns of the axes.
void project_columns(const double *row, const Matrix &table, std::span<double> projected) {
  const std::size_t rigid = table.columns;
  for (std::size_t axis = 0; axis < kRigidBodyAxes; ++axis) {
    projected[axis] = 0.0;
    for (std::size_t mode = 0; mode < rigid; ++mode)
      projected[axis] += row[mode] * table.row(axis)[mode];
  }
  const auto elastic = projected.subspan(kRigidBodyAxes);
  std::copy_n(row + rigid, elastic.size(), elastic.begin());
}

/// The significant entries of the damping on the axes, row by row.
std::vector<GeneralizedEntry> principal_entries(const Matrix &damping, const Matrix &table) {
  const Matrix by_rows = project_rows(damping, table);
  std::vector<double> row(by_rows.rows);
  std::vector<GeneralizedEntry> entries;
  for (std::size_t i = 0; i < by_rows.rows; ++i) {
    project_columns(by_rows.row(i), table, row);
    for (std::size_t j = 0; j < row.size(); ++j) {
      if (significant(row[j]) != 0.0) {
        entries.push_back({static_cast<std::int32_t>(i), static_cast<std::int32_t>(j), row[j]});
      }
    }
  }
  return entries;
}

bool has_off_diagonal_entry(const GeneralizedMatrix &matrix) {
  return std::ranges::any_of(
      matrix.entries, [](const GeneralizedEntry &entry) { return entry.row != entry.column; });
}

/// With coupled stiffness or mass the damping counts as that of modes behind six rigid ones.
bool warn_of_coupled_modes(const QDL_Record &record) {
  if (!has_off_diagonal_entry(record.stiffness) && !has_off_diagonal_entry(record.mass))
    return false;
  QDL_Warning(
      "Stiffness or mass matrix has off-diagonal terms then the damping matrix will assume the "
      "first 6 modes are rigid body modes.");
  return true;
}

void warn_of_rigid_modes(const QDL_Record &record, std::span<const std::int32_t> selection,
                         std::int32_t rigid_modes) {
  for (const std::int32_t number : selection) {
    const std::int32_t index = find_mode(record, number);
    if (index != kNoIndex && index < rigid_modes)
      QDL_Warning("Ignoring damping on requested mode %d because it is a rigid body mode.\n",
                  number);
  }
}

/// From indices of the damping on principal axes to rows and columns of a caller's matrix: the
/// axes, then the selected modes.
struct PrincipalSelection {
  const QDL_Record &record;
  std::span<const std::int32_t> modes;
  std::int64_t missing_rigid_modes;
  std::int64_t index_shift;

  std::int32_t position(std::int32_t stored_index) const {
    if (stored_index < 0)
      return kNoIndex;
    const std::int64_t index = stored_index + index_shift;
    if (index < kAxes)
      return static_cast<std::int32_t>(index);
    const std::int64_t mode = index - missing_rigid_modes;
    if (mode >= mode_count(record))
      return kNoIndex;
    const std::int32_t place =
        position_in_selection(modes, record.mode_numbers[static_cast<std::size_t>(mode)]);
    return place == kNoIndex ? kNoIndex : kAxes + place;
  }
};

bool fill_principal(QDL_Record &record, double **matrix, std::span<const std::int32_t> modes) {
  if (record.damping.entries.empty() || !damping_on_principal_axes(record))
    return false;
  const std::int32_t rigid_modes = rigid_body_mode_count(record);
  const bool coupled = warn_of_coupled_modes(record);
  warn_of_rigid_modes(record, modes, rigid_modes);
  const PrincipalSelection selection{record, modes, std::max(0, kAxes - rigid_modes),
                                     coupled ? kAxes : 0};
  for (const GeneralizedEntry &entry : record.damping.entries) {
    const std::int32_t row = selection.position(entry.row);
    const std::int32_t column = selection.position(entry.column);
    if (row == kNoIndex || column == kNoIndex)
      continue;
    matrix[row][column] = entry.value;
    matrix[column][row] = entry.value;
  }
  return !record.damping.entries.empty();
}

}  // namespace

bool damping_on_principal_axes(QDL_Record &record) {
  if (record.damping.entries.empty() || record.damping_on_principal_axes)
    return true;
  const std::optional<Matrix> table = rigid_projection(record, rigid_body_mode_count(record));
  if (!table)
    return false;
  const std::size_t modes = record.mode_numbers.size();
  Matrix damping{modes, modes};
  fill_full(record, Generalized::kDamping, mode_count(record), damping.values.data());
  record.damping.entries = principal_entries(damping, *table);
  record.damping_on_principal_axes = true;
  return true;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_DampingOnPrincipalAxes(QDL_Record *model) {
  return with_model(model, kArea, 0, damping_on_principal_axes);
}

int32_t QDL_GenDampPrincipalAndSelected(QDL_Record *model, double **matrix, int32_t n,
                                        const int32_t *mode_numbers) {
  return with_model_or(model, kArea, 0, [&](QDL_Record &record) {
    constexpr std::int32_t kMostModes = std::numeric_limits<std::int32_t>::max() - kAxes;
    if (n < 0 || n > kMostModes || !clear_rows(matrix, n + kAxes))
      return false;
    if (n > 0 && mode_numbers == nullptr)
      return false;
    return fill_principal(record, matrix, {mode_numbers, static_cast<std::size_t>(n)});
  });
}
