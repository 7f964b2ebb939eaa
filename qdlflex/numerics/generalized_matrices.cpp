#include "numerics/generalized_matrices.h"

#include <algorithm>
#include <cstddef>

#include <qdlflex/qdlflex.h>

#include "numerics/eigenvalue_lookup.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdldata";

bool is_inside(std::int32_t index, std::int32_t n) {
  return index >= 0 && index < n;
}

/// The table speaks for the modes that it has; for others the stored stiffness does, which also
/// scales the mass.
double implied_value(const QDL_Record &record, Generalized which, std::size_t mode,
                     const DiagonalValue &stiffness) {
  if (mode < record.eigenvalues.size()) {
    const EigenEntry &entry = record.eigenvalues[mode];
    return which == Generalized::kMass ? entry.generalized_mass : entry.generalized_stiffness;
  }
  const double k = stiffness.value.value_or(0.0);
  return which == Generalized::kMass ? implied_mass(k) : k;
}

std::int32_t entry_count(const QDL_Record &record, Generalized which) {
  const auto &stored = generalized_matrix(record, which).entries;
  return stored.empty() && which != Generalized::kDamping
             ? mode_count(record)
             : static_cast<std::int32_t>(stored.size());
}

bool copy_sparse(const QDL_Record &record, Generalized which, double *values, std::int32_t *rows,
                 std::int32_t *columns) {
  return with_generalized_entries(record, which, [&](std::span<const GeneralizedEntry> entries) {
    if (!entries.empty() && (values == nullptr || rows == nullptr || columns == nullptr))
      return false;
    for (const GeneralizedEntry &entry : entries) {
      *values++ = entry.value;
      *rows++ = entry.row;
      *columns++ = entry.column;
    }
    return true;
  });
}

/// For every mode index the position in the caller's selection, or kNoIndex.
std::vector<std::int32_t> positions_of_modes(const QDL_Record &record,
                                             std::span<const std::int32_t> selection) {
  std::vector<std::int32_t> positions(record.mode_numbers.size());
  std::ranges::transform(record.mode_numbers, positions.begin(), [&](std::int32_t mode_number) {
    return position_in_selection(selection, mode_number);
  });
  return positions;
}

bool fill_selected(const QDL_Record &record, Generalized which, double **matrix, std::int32_t n,
                   const std::int32_t *mode_numbers) {
  if (!clear_rows(matrix, n) || mode_numbers == nullptr)
    return false;
  const auto positions = positions_of_modes(record, {mode_numbers, static_cast<std::size_t>(n)});
  const auto position = [&](std::int32_t mode_index) {
    return is_inside(mode_index, mode_count(record))
               ? positions[static_cast<std::size_t>(mode_index)]
               : kNoIndex;
  };
  return with_generalized_entries(record, which, [&](std::span<const GeneralizedEntry> entries) {
    for (const GeneralizedEntry &entry : entries) {
      const std::int32_t row = position(entry.row);
      const std::int32_t column = position(entry.column);
      if (row == kNoIndex || column == kNoIndex)
        continue;
      matrix[row][column] = entry.value;
      matrix[column][row] = entry.value;
    }
    return !entries.empty();
  });
}

std::int32_t count(const QDL_Record *model, Generalized which) {
  return model == nullptr ? 0 : entry_count(*model, which);
}

std::int32_t sparse(QDL_Record *model, Generalized which, double *values, std::int32_t *rows,
                    std::int32_t *columns) {
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    return copy_sparse(record, which, values, rows, columns);
  });
}

std::int32_t full(QDL_Record *model, Generalized which, double *matrix, std::int32_t n) {
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    return matrix != nullptr && n > 0 && fill_full(record, which, n, matrix);
  });
}

std::int32_t selected(QDL_Record *model, Generalized which, double **matrix, std::int32_t n,
                      const std::int32_t *mode_numbers) {
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    return fill_selected(record, which, matrix, n, mode_numbers);
  });
}

}  // namespace

const GeneralizedMatrix &generalized_matrix(const QDL_Record &record, Generalized which) {
  switch (which) {
    case Generalized::kStiffness:
      return record.stiffness;
    case Generalized::kMass:
      return record.mass;
    default:
      return record.damping;
  }
}

std::vector<GeneralizedEntry> implied_diagonal(const QDL_Record &record, Generalized which) {
  if (which == Generalized::kDamping)
    return {};
  const std::int32_t modes = mode_count(record);
  const std::vector<DiagonalValue> stiffness = find_diagonals(record.stiffness, modes);
  std::vector<GeneralizedEntry> entries;
  entries.reserve(record.mode_numbers.size());
  for (std::int32_t index = 0; index < modes; ++index) {
    const auto mode = static_cast<std::size_t>(index);
    entries.push_back({index, index, implied_value(record, which, mode, stiffness[mode])});
  }
  return entries;
}

bool fill_full(const QDL_Record &record, Generalized which, std::int32_t n, double *matrix) {
  const auto size = static_cast<std::size_t>(n);
  std::fill_n(matrix, size * size, 0.0);
  return with_generalized_entries(record, which, [&](std::span<const GeneralizedEntry> entries) {
    for (const GeneralizedEntry &entry : entries) {
      if (!is_inside(entry.row, n) || !is_inside(entry.column, n))
        continue;
      const auto row = static_cast<std::size_t>(entry.row);
      const auto column = static_cast<std::size_t>(entry.column);
      matrix[row * size + column] = entry.value;
      matrix[column * size + row] = entry.value;
    }
    return !entries.empty();
  });
}

bool clear_rows(double **matrix, std::int32_t n) {
  if (matrix == nullptr || n <= 0)
    return false;
  const std::span<double *> rows(matrix, static_cast<std::size_t>(n));
  if (std::ranges::find(rows, nullptr) != rows.end())
    return false;
  for (double *row : rows)
    std::fill_n(row, n, 0.0);
  return true;
}

std::int32_t position_in_selection(std::span<const std::int32_t> selection,
                                   std::int32_t mode_number) {
  const auto found = std::ranges::lower_bound(selection, mode_number);
  if (found == selection.end() || *found != mode_number)
    return kNoIndex;
  return static_cast<std::int32_t>(found - selection.begin());
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_NumberOfGenStiff(QDL_Record *model) {
  return count(model, Generalized::kStiffness);
}

int32_t QDL_NumberOfGenMass(QDL_Record *model) {
  return count(model, Generalized::kMass);
}

int32_t QDL_NumberOfGenDamp(QDL_Record *model) {
  return count(model, Generalized::kDamping);
}

int32_t QDL_GenDampExist(QDL_Record *model) {
  return QDL_NumberOfGenDamp(model) > 0 ? 1 : 0;
}

int32_t QDL_GenStiffSparse(QDL_Record *model, double *values, int32_t *rows, int32_t *columns) {
  return sparse(model, Generalized::kStiffness, values, rows, columns);
}

int32_t QDL_GenMassSparse(QDL_Record *model, double *values, int32_t *rows, int32_t *columns) {
  return sparse(model, Generalized::kMass, values, rows, columns);
}

int32_t QDL_GenDampSparse(QDL_Record *model, double *values, int32_t *rows, int32_t *columns) {
  return QDL_GenDampExist(model) != 0 ? sparse(model, Generalized::kDamping, values, rows, columns)
                                      : 0;
}

int32_t QDL_GenStiffFull(QDL_Record *model, double *matrix, int32_t n) {
  return full(model, Generalized::kStiffness, matrix, n);
}

int32_t QDL_GenMassFull(QDL_Record *model, double *matrix, int32_t n) {
  return full(model, Generalized::kMass, matrix, n);
}

int32_t QDL_GenDampFull(QDL_Record *model, double *matrix, int32_t n) {
  return full(model, Generalized::kDamping, matrix, n);
}

int32_t QDL_GenStiffSelected(QDL_Record *model, double **matrix, int32_t n,
                             const int32_t *mode_numbers) {
  return selected(model, Generalized::kStiffness, matrix, n, mode_numbers);
}

int32_t QDL_GenMassSelected(QDL_Record *model, double **matrix, int32_t n,
                            const int32_t *mode_numbers) {
  return selected(model, Generalized::kMass, matrix, n, mode_numbers);
}
