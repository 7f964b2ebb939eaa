#include "numerics/definite_problem.h"

#include <algorithm>
#include <cmath>

#include "numerics/symmetric_eigen.h"
#include "support/finite.h"

namespace qdlflex {
namespace {

/// The factor L of M = L L', in the lower triangle of `m`. False where M is not positive definite.
bool factorize_definite(Columns m) {
  const std::size_t n = m.rows;
  for (std::size_t j = 0; j < n; ++j) {
    double *column = m.column(j);
    for (std::size_t k = 0; k < j; ++k)
      add_multiple(-m.column(k)[j], m.column(k) + j, column + j, n - j);
    if (!(column[j] > 0.0))
      return false;
    const double root = std::sqrt(column[j]);
    for (std::size_t i = j; i < n; ++i)
      column[i] /= root;
  }
  return true;
}

/// x becomes the solution of L y = x.
void solve_lower(ConstColumns l, double *x) {
  const std::size_t n = l.rows;
  for (std::size_t k = 0; k < n; ++k) {
    x[k] /= l.column(k)[k];
    add_multiple(-x[k], l.column(k) + k + 1, x + k + 1, n - k - 1);
  }
}

/// x becomes the solution of L' y = x.
void solve_upper(ConstColumns l, double *x) {
  const std::size_t n = l.rows;
  for (std::size_t k = n; k-- > 0;) {
    x[k] -= dot(l.column(k) + k + 1, x + k + 1, n - k - 1);
    x[k] /= l.column(k)[k];
  }
}

void transpose(Columns a) {
  for (std::size_t j = 0; j < a.columns; ++j)
    for (std::size_t i = 0; i < j; ++i)
      std::swap(a.column(j)[i], a.column(i)[j]);
}

/// K becomes L^-1 K L^-T, exactly symmetric.
void reduce(ConstColumns l, Columns k) {
  for (int side = 0; side < 2; ++side) {
    for (std::size_t j = 0; j < k.columns; ++j)
      solve_lower(l, k.column(j));
    transpose(k);
  }
  for (std::size_t j = 0; j < k.columns; ++j)
    for (std::size_t i = 0; i < j; ++i)
      k.column(j)[i] = k.column(i)[j] = 0.5 * (k.column(j)[i] + k.column(i)[j]);
}

}  // namespace

bool solve_definite(ConstColumns k, ConstColumns m, Columns vectors,
                    std::vector<double> &eigenvalues) {
  const std::size_t n = k.rows;
  std::vector<double> factor(m.data, m.data + n * n);
  const Columns l{factor.data(), n, n};
  if (!factorize_definite(l))
    return false;
  std::vector<double> reduced(k.data, k.data + n * n);
  const Columns a{reduced.data(), n, n};
  reduce(l, a);
  std::vector<double> values(n);
  if (!solve_symmetric(a, values.data()))
    return false;
  for (std::size_t j = 0; j < n; ++j)
    solve_upper(l, a.column(j));
  if (!is_finite(reduced))
    return false;
  std::ranges::copy(reduced, vectors.data);
  eigenvalues = std::move(values);
  return true;
}

}  // namespace qdlflex
