#include "numerics/new_modes.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <qdlflex/qdlflex.h>

#include "numerics/eigenproblem.h"
#include "numerics/eigenvalue_table.h"
#include "record/units.h"
#include "support/finite.h"

namespace qdlflex {
namespace {

void report_failure() {
  QDL_Error("Failed to mass normalize the eigen vectors\n");
}

std::vector<double> identity(std::size_t order) {
  std::vector<double> matrix(order * order);
  for (std::size_t i = 0; i < order; ++i)
    matrix[i * order + i] = 1.0;
  return matrix;
}

std::vector<std::int32_t> numbered_from_one(std::size_t modes) {
  std::vector<std::int32_t> numbers(modes);
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

/// t' K t of every vector.
std::vector<double> generalized_stiffnesses(const GeneralizedPair &pair, ConstColumns t) {
  const std::size_t n = pair.order;
  std::vector<double> forces(n * n);
  const Columns images{forces.data(), n, n};
  if (pair.diagonal) {
    for (std::size_t k = 0; k < n; ++k)
      for (std::size_t i = 0; i < n; ++i)
        images.column(k)[i] = pair.k().column(i)[i] * t.column(k)[i];
  } else {
    multiply(pair.k(), t, images);
  }
  std::vector<double> stiffnesses(n);
  for (std::size_t k = 0; k < n; ++k)
    stiffnesses[k] = dot(t.column(k), images.column(k), n);
  return stiffnesses;
}

/// The table that goes with the vectors. An infinite eigenvalue stays what the solver found.
std::vector<EigenEntry> solved_table(const GeneralizedPair &pair, EigenSolution &solution,
                                     double unit_factor) {
  const std::vector<double> stiffnesses = generalized_stiffnesses(pair, solution.columns());
  std::vector<EigenEntry> table;
  table.reserve(pair.order);
  for (std::size_t k = 0; k < pair.order; ++k) {
    const bool infinite = solution.eigenvalues[k] == kInfiniteEigenvalue;
    table.push_back(eigen_entry(static_cast<std::int32_t>(k) + 1,
                                infinite ? kInfiniteEigenvalue : stiffnesses[k], 1.0,
                                stiffnesses[k], unit_factor));
  }
  return table;
}

}  // namespace

std::size_t NewModes::finite() const {
  const auto infinite =
      std::ranges::find(eigenvalues, kInfiniteEigenvalue, &EigenEntry::eigenvalue);
  return infinite == eigenvalues.end()
             ? modes
             : std::min(modes, static_cast<std::size_t>(infinite - eigenvalues.begin()));
}

std::optional<NewModes> solve_modes(const QDL_Record &record) {
  const GeneralizedPair pair = generalized_pair(record);
  if (!pair.finite) {
    report_failure();
    return std::nullopt;
  }
  QDL_Info("\nSolving Generalized Eigenvalue Problem to orthogonalize mode shapes.");
  const double unit_factor = frequency_unit_factor(record);
  EigenSolution solution = solve_eigenproblem(pair);
  report_eigenvalues(solution.eigenvalues, unit_factor);
  orthonormalize_vectors(pair, solution);
  const std::size_t finite = finite_count(solution.eigenvalues);
  if (!is_finite({solution.vectors.data(), finite * pair.order})) {
    report_failure();
    return std::nullopt;
  }
  return NewModes{.modes = pair.order,
                  .shares = transposed(solution.columns()),
                  .eigenvalues = solved_table(pair, solution, unit_factor),
                  .numbers = numbered_from_one(pair.order),
                  .scales = {}};
}

NewModes keep_modes(const QDL_Record &record) {
  const std::size_t modes = record.mode_numbers.size();
  const bool has_table = !record.eigenvalues.empty();
  NewModes kept{
      .modes = modes,
      .shares = identity(modes),
      .eigenvalues = has_table ? record.eigenvalues : derive_eigenvalue_table(record),
      .numbers = has_table ? record.mode_numbers : numbered_from_one(modes),
      .scales = {},
  };
  if (!record.mass_normalize_modes)
    return kept;
  kept.scales = normalize_masses(kept.eigenvalues);
  kept.scales.resize(modes, 1.0);
  for (std::size_t mode = 0; mode < modes; ++mode)
    kept.shares[mode * modes + mode] /= kept.scales[mode];
  return kept;
}

}  // namespace qdlflex
