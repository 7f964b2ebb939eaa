#include "numerics/dense_algebra.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

/// The row with the largest magnitude in column k, from row k down: the first of equals. The order
/// of the matrix when there is none above zero.
std::size_t pivot_row(Rows matrix, std::size_t k) {
  std::size_t found = matrix.size();
  double largest = 0.0;
  for (std::size_t i = k; i < matrix.size(); ++i) {
    const double magnitude = std::fabs(matrix[i][k]);
    if (magnitude > largest) {
      largest = magnitude;
      found = i;
    }
  }
  return found;
}

void eliminate_below(Rows matrix, std::size_t k) {
  const std::size_t n = matrix.size();
  const double *pivot = matrix[k];
  for (std::size_t i = k + 1; i < n; ++i) {
    double *row = matrix[i];
    row[k] /= pivot[k];
    for (std::size_t j = k + 1; j < n; ++j)
      row[j] -= row[k] * pivot[j];
  }
}

}  // namespace

bool factorize(Rows matrix, int32_t *permutation) {
  const std::size_t n = matrix.size();
  std::iota(permutation, permutation + n, 0);
  if (n < 2)
    return true;
  for (std::size_t k = 0; k + 1 < n; ++k) {
    const std::size_t p = pivot_row(matrix, k);
    if (p == n)
      return false;
    if (p != k) {
      // The contents change places, not the rows' addresses, which belong to the caller.
      std::swap_ranges(matrix[k], matrix[k] + n, matrix[p]);
      std::swap(permutation[k], permutation[p]);
    }
    eliminate_below(matrix, k);
  }
  return matrix[n - 1][n - 1] != 0.0;
}

void solve_factorized(Rows factors, const int32_t *permutation, const double *right_hand_side,
                      double *solution) {
  const std::size_t n = factors.size();
  for (std::size_t i = 0; i < n; ++i) {
    double value = right_hand_side[permutation[i]];
    for (std::size_t j = 0; j < i; ++j)
      value -= factors[i][j] * solution[j];
    solution[i] = value;
  }
  for (std::size_t i = n; i-- > 0;) {
    double value = solution[i];
    for (std::size_t j = i + 1; j < n; ++j)
      value -= factors[i][j] * solution[j];
    solution[i] = value / factors[i][i];
  }
}

void invert_factorized(Rows factors, const int32_t *permutation) {
  const std::size_t n = factors.size();
  std::vector<double> columns(n * n);
  std::vector<double> unit(n, 0.0);
  for (std::size_t j = 0; j < n; ++j) {
    unit[j] = 1.0;
    solve_factorized(factors, permutation, unit.data(), &columns[j * n]);
    unit[j] = 0.0;
  }
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 0; j < n; ++j)
      factors[i][j] = columns[j * n + i];
}

namespace {

/// What the three functions have in common: nothing to do below order one, and the failure value
/// for a missing array or memory that could not be had.
template <class Body>
int32_t with_rows(double **rows, int32_t n, bool has_arrays, Body &&body,
                  int line = __builtin_LINE()) {
  if (n < 1)
    return 1;
  if (rows == nullptr || !has_arrays)
    return 0;
  return guarded(
      kArea, 0, [&] { return body(Rows(rows, static_cast<std::size_t>(n))); }, line);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_LUPDecomposition(double **matrix, int32_t n, int32_t *permutation) {
  return with_rows(matrix, n, permutation != nullptr,
                   [&](Rows rows) { return factorize(rows, permutation) ? 1 : 0; });
}

int32_t QDL_LUPSolve(double **factors, int32_t n, const int32_t *permutation, double *rhs) {
  return with_rows(factors, n, permutation != nullptr && rhs != nullptr, [&](Rows rows) {
    const std::vector<double> right_hand_side(rhs, rhs + n);
    solve_factorized(rows, permutation, right_hand_side.data(), rhs);
    return 1;
  });
}

int32_t QDL_LUPInvert(double **factors, int32_t n, const int32_t *permutation) {
  return with_rows(factors, n, permutation != nullptr, [&](Rows rows) {
    invert_factorized(rows, permutation);
    return 1;
  });
}
