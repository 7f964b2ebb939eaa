#include "numerics/eigenproblem.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include <qdlflex/qdlflex.h>

#include "numerics/definite_problem.h"
#include "numerics/generalized_matrices.h"
#include "numerics/gram_schmidt.h"
#include "numerics/rigid_body_modes.h"
#include "record/units.h"
#include "support/boundary.h"
#include "support/finite.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

/// What the stages of the solver leave: eigenvalues (alfr + i alfi) / beta and vectors.
struct QzResult {
  std::vector<double> alfr, alfi, beta;
  std::vector<double> vectors;
  double negligible_beta = 0.0;
  bool converged = true;
};

bool is_diagonal(ConstColumns matrix) {
  for (std::size_t j = 0; j < matrix.columns; ++j)
    for (std::size_t i = 0; i < j; ++i)
      if (matrix.column(j)[i] != 0.0)
        return false;
  return true;
}

/// Of a diagonal pair the stages would only copy the diagonals.
QzResult take_diagonals(const GeneralizedPair &pair) {
  const std::size_t n = pair.order;
  QzResult result{.alfr = std::vector<double>(n),
                  .alfi = std::vector<double>(n),
                  .beta = std::vector<double>(n),
                  .vectors = std::vector<double>(n * n)};
  for (std::size_t k = 0; k < n; ++k) {
    const double mass = pair.m().column(k)[k];
    const double stiffness = pair.k().column(k)[k];
    result.alfr[k] = std::signbit(mass) ? -stiffness : stiffness;
    result.beta[k] = std::fabs(mass);
    result.vectors[k * n + k] = 1.0;
  }
  return result;
}

/// A `tolerance` of zero is the solver's own.
void run_stages(const GeneralizedPair &pair, double tolerance, void (*announce)(const char *),
                QzResult &result) {
  const auto n = static_cast<std::int32_t>(pair.order);
  const std::int32_t with_vectors = 1;
  std::int32_t unsolved = 0;
  std::vector<double> a = pair.stiffness;
  std::vector<double> b = pair.mass;
  double *z = result.vectors.data();
  double *alfr = result.alfr.data();
  double *alfi = result.alfi.data();
  double *beta = result.beta.data();
  announce("  (Finding upper Hessenberg and upper triangular forms)");
  QDL_QZHESS(&n, &n, a.data(), b.data(), &with_vectors, z);
  announce("  (Converting upper Hessenberg form to quasi-upper triangular)");
  QDL_QZITT(&n, &n, a.data(), b.data(), &tolerance, &with_vectors, z, &unsolved);
  announce("  (Calculating Eigenvalues)");
  QDL_QZVALL(&n, &n, a.data(), b.data(), alfr, alfi, beta, &with_vectors, z);
  // A singular mass leaves a beta of the size of the roundoff.
  result.negligible_beta = 8.0 * b[pair.order - 1];
  announce("  (Calculating Eigenvectors)");
  QDL_QZVECC(&n, &n, a.data(), b.data(), alfr, alfi, beta, z);
  result.converged = unsolved == 0;
}

void announce_stage(const char *stage) {
  QDL_Info("%s", stage);
}

void stay_silent(const char *) {}

QzResult run_solver(const GeneralizedPair &pair) {
  const std::size_t n = pair.order;
  QzResult result{.alfr = std::vector<double>(n),
                  .alfi = std::vector<double>(n),
                  .beta = std::vector<double>(n),
                  .vectors = std::vector<double>(n * n)};
  // Where one eigenvalue is repeated dozens of times its copies differ by more than the solver's
  // own tolerance and the iteration stalls.
  run_stages(pair, 0.0, announce_stage, result);
  if (!result.converged)
    run_stages(pair, std::ldexp(static_cast<double>(n), -52), stay_silent, result);
  return result;
}

void announce_stages_of_diagonal() {
  for (const char *stage : {"  (Finding upper Hessenberg and upper triangular forms)",
                            "  (Converting upper Hessenberg form to quasi-upper triangular)",
                            "  (Calculating Eigenvalues)", "  (Calculating Eigenvectors)"})
    QDL_Info("%s", stage);
}

double real_eigenvalue(const QzResult &result, std::size_t k) {
  const double value = result.alfr[k] / result.beta[k];
  if (result.alfi[k] != 0.0) {
    QDL_Warning(
        "Flexible component is not physically meaningful\n"
        "It contains an eigenvalue with a nonzero imaginary part, %lf\n"
        "This imaginary part is being ignored.  Please verify that this is acceptable.",
        result.alfi[k] / result.beta[k]);
    return std::isfinite(value) ? value : kInfiniteEigenvalue;
  }
  if (result.beta[k] > result.negligible_beta && std::isfinite(value))
    return value;
  QDL_Warning(
      "Mode %d is not physically meaningful\n"
      "It contains an infinite eigenvalue.  Ignoring this mode.\n",
      static_cast<std::int32_t>(k) + 1);
  return kInfiniteEigenvalue;
}

/// Positions in ascending order of the values, equal ones from the last to the first.
std::vector<std::size_t> ascending_order(const std::vector<double> &values) {
  std::vector<std::size_t> order(values.size());
  std::iota(order.rbegin(), order.rend(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return values[i]; });
  return order;
}

}  // namespace

GeneralizedPair generalized_pair(const QDL_Record &record) {
  GeneralizedPair pair;
  pair.order = record.mode_numbers.size();
  pair.stiffness.resize(pair.order * pair.order);
  pair.mass.resize(pair.stiffness.size());
  fill_full(record, Generalized::kStiffness, mode_count(record), pair.stiffness.data());
  fill_full(record, Generalized::kMass, mode_count(record), pair.mass.data());
  pair.diagonal = is_diagonal(pair.k()) && is_diagonal(pair.m());
  pair.finite = is_finite(pair.stiffness) && is_finite(pair.mass);
  return pair;
}

EigenSolution solve_eigenproblem(const GeneralizedPair &pair) {
  if (pair.diagonal)
    announce_stages_of_diagonal();
  const QzResult result = pair.diagonal ? take_diagonals(pair) : run_solver(pair);
  const std::size_t n = pair.order;
  std::vector<double> eigenvalues(n);
  for (std::size_t k = 0; k < n; ++k)
    eigenvalues[k] = real_eigenvalue(result, k);
  EigenSolution sorted{.eigenvalues = {}, .vectors = {}, .converged = result.converged};
  sorted.vectors.resize(n * n);
  for (const std::size_t k : ascending_order(eigenvalues)) {
    std::copy_n(&result.vectors[k * n], n, &sorted.vectors[sorted.eigenvalues.size() * n]);
    sorted.eigenvalues.push_back(eigenvalues[k]);
  }
  return sorted;
}

void report_eigenvalues(const std::vector<double> &eigenvalues, double unit_factor) {
  const bool has_flexible = eigenvalues.size() > kRigidBodyAxes;
  const double small = has_flexible ? eigenvalues[kRigidBodyAxes] / 1000.0 : 0.0;
  QDL_Info("%49s", "");
  QDL_Info("  Real Eigenvalues and Natural Frequencies [Hz] :");
  QDL_Info("  ===============================================");
  std::int32_t number = 0;
  for (const double value : eigenvalues) {
    ++number;
    const bool beside_flexible = has_flexible && std::fabs(value) > small;
    if (value == kInfiniteEigenvalue) {
      QDL_Info(" %3d : Infinity.  Possible mass singularity.  Ignored.", number);
    } else if (value >= 0.0) {
      const double frequency = signed_sqrt(value * unit_factor) / kTwoPi;
      if (value <= 1.0 && !beside_flexible)
        QDL_Info(" %3d : %20.14e  %20.14e (probable rigid body mode)", number, value, frequency);
      else
        QDL_Info(" %3d : %20.14e  %20.14e", number, value, frequency);
    } else if (value < -1.0 || beside_flexible) {
      QDL_Info(" %3d : %20.14e  Sqrt undefined.  Possible problem with input data.", number, value);
    } else {
      QDL_Info(" %3d : %20.14e  Sqrt undefined.     (probable rigid body mode)", number, value);
    }
  }
}

namespace {

/// Each vector has one entry.
void normalize_diagonal(const GeneralizedPair &pair, Columns t) {
  for (std::size_t k = 0; k < t.columns; ++k) {
    double *entry =
        std::find_if(t.column(k), t.column(k) + t.rows, [](double value) { return value != 0.0; });
    const auto mode = static_cast<std::size_t>(entry - t.column(k));
    const double mass = pair.m().column(mode)[mode];
    if (mass > 0.0)
      *entry /= std::sqrt(mass);
  }
}

/// By Gram-Schmidt or, where that fails, by the method for definite problems.
void combine_vectors(const GeneralizedPair &pair, EigenSolution &solution) {
  constexpr double kGood = 1e-10;
  constexpr double kUseless = 1e-6;
  constexpr int kMostRepeats = 2;
  const Columns t = solution.columns();
  // Infinite ones come last and will be dropped.
  const std::size_t count = finite_count(solution.eigenvalues);
  GramSchmidt method(pair.m());
  method.orthonormalize(t);
  double error = method.largest_error(t, count);
  for (int repeat = 0; repeat < kMostRepeats && !(error <= kGood); ++repeat) {
    method.orthonormalize(t);
    error = method.largest_error(t, count);
  }
  // Vectors of an eigenvalue repeated dozens of times can depend on each other: no combination of
  // them spans its space.
  const bool useless = !solution.converged || method.found_dependent(count) || !(error <= kUseless);
  if (useless && count == pair.order)
    solve_definite(pair.k(), pair.m(), t, solution.eigenvalues);
}

}  // namespace

void orthonormalize_vectors(const GeneralizedPair &pair, EigenSolution &solution) {
  QDL_Info("\n  Applying Gram-Schmidt to eigenvectors \n ");
  if (pair.diagonal) {
    normalize_diagonal(pair, solution.columns());
    return;
  }
  // Out of memory here is reported and no failure.
  guarded(kArea, 0, [&] {
    EigenSolution orthonormal = solution;
    combine_vectors(pair, orthonormal);
    solution = std::move(orthonormal);
    return 1;
  });
}

std::size_t finite_count(const std::vector<double> &eigenvalues) {
  return static_cast<std::size_t>(std::ranges::find(eigenvalues, kInfiniteEigenvalue) -
                                  eigenvalues.begin());
}

}  // namespace qdlflex
