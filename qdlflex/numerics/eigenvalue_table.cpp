#include "numerics/eigenvalue_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include <qdlflex/qdlflex.h>

#include "numerics/eigenvalue_lookup.h"
#include "record/units.h"
#include "support/allocate.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

struct MassAndStiffness {
  double mass = 0.0;
  double stiffness = 0.0;
};

std::vector<MassAndStiffness> diagonal_values(const QDL_Record &record) {
  const std::int32_t modes = mode_count(record);
  const std::vector<DiagonalValue> stiffness = find_diagonals(record.stiffness, modes);
  const std::vector<DiagonalValue> mass = find_diagonals(record.mass, modes);
  std::vector<MassAndStiffness> values(record.mode_numbers.size());
  for (std::size_t mode = 0; mode < values.size(); ++mode) {
    if (stiffness[mode].blocked || mass[mode].blocked) {
      QDL_Error("Attempting to look at eigenvalues of non-orthogonal data");
      continue;
    }
    const double k = stiffness[mode].value.value_or(0.0);
    values[mode] = {mass[mode].value.value_or(implied_mass(k)), k};
  }
  return values;
}

void build_table(QDL_Record &record) {
  std::vector<EigenEntry> table = derive_eigenvalue_table(record);
  record.eigenvalues = std::move(table);
  std::iota(record.mode_numbers.begin(), record.mode_numbers.end(), 1);
  record.stiffness.entries.clear();
  record.mass.entries.clear();
}

/// Without stored entries the table is all there is to build it from.
void rebuild(QDL_Record &record) {
  const bool only_table = !record.eigenvalues.empty() && record.stiffness.entries.empty() &&
                          record.mass.entries.empty();
  if (!only_table)
    build_table(record);
}

bool normalize_modes(QDL_Record &record, double **scales) {
  if (scales == nullptr)
    return false;
  *scales = nullptr;
  CallerArray<double> given = caller_array<double>(record.mode_numbers.size());
  std::vector<EigenEntry> table = record.eigenvalues;
  std::vector<double> found = normalize_masses(table);
  found.resize(record.mode_numbers.size(), 1.0);
  std::ranges::copy(found, given.get());
  record.eigenvalues = std::move(table);
  *scales = given.release();
  return true;
}

}  // namespace

EigenEntry eigen_entry(std::int32_t mode_number, double eigenvalue, double generalized_mass,
                       double generalized_stiffness, double unit_factor) {
  const double circular_frequency = signed_sqrt(eigenvalue * unit_factor);
  return {.mode_number = mode_number,
          .eigenvalue = eigenvalue,
          .frequency = circular_frequency / kTwoPi,
          .circular_frequency = circular_frequency,
          .generalized_mass = generalized_mass,
          .generalized_stiffness = generalized_stiffness};
}

std::vector<EigenEntry> derive_eigenvalue_table(const QDL_Record &record) {
  constexpr double kNegligibleMass = 1e-15;
  const double unit_factor = frequency_unit_factor(record);
  std::vector<EigenEntry> table;
  table.reserve(record.mode_numbers.size());
  for (const auto &[mass, stiffness] : diagonal_values(record)) {
    const auto number = static_cast<std::int32_t>(table.size()) + 1;
    if (std::fabs(mass) > kNegligibleMass) {
      table.push_back(eigen_entry(number, stiffness / mass,
                                  record.mass_normalize_modes ? mass : 1.0, stiffness,
                                  unit_factor));
      continue;
    }
    QDL_Warning(
        "Mode %d is not physically meaningful.\n"
        "It is associated with a zero generalized mass\n",
        number);
    table.push_back(eigen_entry(number, kInfiniteEigenvalue, mass, stiffness, unit_factor));
  }
  return table;
}

std::vector<double> normalize_masses(std::vector<EigenEntry> &table) {
  std::vector<double> scales;
  scales.reserve(table.size());
  for (EigenEntry &entry : table) {
    const double mass = entry.generalized_mass;
    if (!(mass > 0.0) || !std::isfinite(mass)) {
      scales.push_back(1.0);
      continue;
    }
    scales.push_back(std::sqrt(mass));
    entry.generalized_mass = 1.0;
    entry.generalized_stiffness = entry.eigenvalue;
  }
  return scales;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t build_eigenvalue_table(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    if (record.eigenvalues.empty())
      build_table(record);
    return 1;
  });
}

int32_t QDL_RebuildEigenvalues(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    rebuild(record);
    return 1;
  });
}

int32_t mass_normalize_modes(QDL_Record *model, double **scales) {
  if (scales != nullptr)
    *scales = nullptr;
  return with_model(model, kArea, 0,
                    [&](QDL_Record &record) { return normalize_modes(record, scales) ? 1 : 0; });
}
