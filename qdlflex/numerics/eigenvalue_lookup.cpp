#include "numerics/eigenvalue_lookup.h"

#include <algorithm>
#include <span>

#include <qdlflex/qdlflex.h>

#include "record/lookups.h"
#include "record/units.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdldata";

bool is_off_diagonal(const GeneralizedEntry &entry) {
  return entry.row != entry.column;
}

/// The entries that a walk can see.
std::span<const GeneralizedEntry> leading_diagonal(const GeneralizedMatrix &matrix) {
  const auto end = std::ranges::find_if(matrix.entries, is_off_diagonal);
  return {matrix.entries.begin(), end};
}

bool has_table_entry(const QDL_Record &record, std::int32_t mode_index) {
  return static_cast<std::size_t>(mode_index) < record.eigenvalues.size();
}

ModeEigenvalue table_entry(const QDL_Record &record, std::int32_t mode_index) {
  return {record.eigenvalues[static_cast<std::size_t>(mode_index)]};
}

/// A stored mass of zero gives frequencies that are infinite or not a number.
std::optional<ModeEigenvalue> derive(std::int32_t mode_number, const DiagonalValue &stiffness,
                                     const DiagonalValue &mass, double unit_factor) {
  if (stiffness.blocked || mass.blocked)
    return std::nullopt;
  const double k = stiffness.value.value_or(0.0);
  const double m = mass.value.value_or(implied_mass(k));
  ModeEigenvalue result;
  EigenEntry &entry = result.entry;
  result.has_eigenvalue = m != 0.0;
  entry.mode_number = mode_number;
  entry.eigenvalue = result.has_eigenvalue ? k / m : 0.0;
  entry.circular_frequency = signed_sqrt(unit_factor * k / m);
  entry.frequency = entry.circular_frequency / kTwoPi;
  entry.generalized_mass = m;
  entry.generalized_stiffness = k;
  return result;
}

}  // namespace

DiagonalValue find_diagonal(const GeneralizedMatrix &matrix, std::int32_t mode_index) {
  const auto end =
      std::ranges::find_if(matrix.entries, [mode_index](const GeneralizedEntry &entry) {
        return is_off_diagonal(entry) || entry.row == mode_index;
      });
  if (end == matrix.entries.end())
    return {};
  if (is_off_diagonal(*end))
    return {.value = std::nullopt, .blocked = true};
  return {.value = end->value};
}

std::vector<DiagonalValue> find_diagonals(const GeneralizedMatrix &matrix, std::int32_t modes) {
  const auto visible = leading_diagonal(matrix);
  const DiagonalValue not_found{.value = std::nullopt,
                                .blocked = visible.size() < matrix.entries.size()};
  std::vector<DiagonalValue> found(static_cast<std::size_t>(modes), not_found);
  for (const GeneralizedEntry &entry : visible) {
    const auto mode = static_cast<std::size_t>(entry.row);
    if (entry.row >= 0 && entry.row < modes && !found[mode].value)
      found[mode] = {.value = entry.value};
  }
  return found;
}

double implied_mass(double stiffness) {
  return std::max(stiffness, 1.0) * 1e-16;
}

std::optional<ModeEigenvalue> eigenvalue_of(const QDL_Record &record, std::int32_t mode_index) {
  if (has_table_entry(record, mode_index))
    return table_entry(record, mode_index);
  return derive(record.mode_numbers[static_cast<std::size_t>(mode_index)],
                find_diagonal(record.stiffness, mode_index), find_diagonal(record.mass, mode_index),
                frequency_unit_factor(record));
}

std::vector<std::optional<ModeEigenvalue>> all_eigenvalues(const QDL_Record &record) {
  const std::int32_t modes = mode_count(record);
  const auto stiffness = find_diagonals(record.stiffness, modes);
  const auto mass = find_diagonals(record.mass, modes);
  const double unit_factor = frequency_unit_factor(record);
  std::vector<std::optional<ModeEigenvalue>> all;
  all.reserve(record.mode_numbers.size());
  for (std::int32_t index = 0; index < modes; ++index) {
    const auto mode = static_cast<std::size_t>(index);
    all.push_back(
        has_table_entry(record, index)
            ? table_entry(record, index)
            : derive(record.mode_numbers[mode], stiffness[mode], mass[mode], unit_factor));
  }
  return all;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_Eigenvalue(QDL_Record *model, int32_t modeNumber, double *eigenvalue, double *frequency,
                       double *circularFrequency, double *generalizedMass,
                       double *generalizedStiffness) {
  const auto give = [](double *out, double value) {
    if (out != nullptr)
      *out = value;
  };
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    const std::int32_t index = find_mode(record, modeNumber);
    if (index == kNoIndex)
      return 0;
    const std::optional<ModeEigenvalue> found = eigenvalue_of(record, index);
    const ModeEigenvalue answer = found.value_or(ModeEigenvalue{});
    if (answer.has_eigenvalue)
      give(eigenvalue, answer.entry.eigenvalue);
    give(frequency, answer.entry.frequency);
    give(circularFrequency, answer.entry.circular_frequency);
    give(generalizedMass, answer.entry.generalized_mass);
    give(generalizedStiffness, answer.entry.generalized_stiffness);
    return found ? 1 : 0;
  });
}
