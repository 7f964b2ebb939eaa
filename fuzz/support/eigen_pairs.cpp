#include "support/eigen_pairs.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <utility>

#include "support/harness.h"

namespace qdlfuzz {

namespace {

using Complex = std::complex<double>;

constexpr double kRounding = 1e-12;  // the unit roundoff times what growth there is up to order 6

// The third stage splits a block of order two that has real eigenvalues by reflecting the first
// column of A or of B, of which it means the larger one. Its published rule compares the eigenvalue
// of the scaled block with the sizes of the blocks as they are; where these are far apart it can
// take the smaller one, which leaves a residual by as much above rounding as that is smaller.
double lost_by_splitting(const Pencil &reduced, const EigenPairs &pairs) {
  const auto a = [&](std::int32_t i, std::int32_t j) {
    return std::abs(reduced.a[reduced.at(i, j)]);
  };
  const auto b = [&](std::int32_t i, std::int32_t j) {
    return std::abs(reduced.b[reduced.at(i, j)]);
  };
  const double tolerance = b(reduced.n - 1, 0);
  double lost = 1.0;
  for (std::int32_t i = 0, j = 1; j < reduced.n; ++i, ++j) {
    const auto k = static_cast<std::size_t>(i);
    if (a(j, i) == 0.0 || pairs.imaginary[k] != 0.0 || std::min(b(i, i), b(j, j)) <= tolerance)
      continue;
    const double a_size = a(i, i) + a(i, j) + a(j, i) + a(j, j);
    const double b_size = b(i, i) + b(i, j) + b(j, j);
    const double eigenvalue = (std::abs(pairs.real[k]) / a_size) / (pairs.beta[k] / b_size);
    lost = std::max(lost, a_size < eigenvalue * b_size ? 1.0 / eigenvalue : eigenvalue);
  }
  return lost;
}

// The size of a matrix of the pencil.
double size_of(const Pencil &p, const std::vector<double> &matrix) {
  double sum = 0.0;
  for (std::int32_t column = 0; column < p.n; ++column) {
    for (std::int32_t row = 0; row < p.n; ++row)
      sum += matrix[p.at(row, column)] * matrix[p.at(row, column)];
  }
  return std::sqrt(sum);
}

struct Residual {
  double value;  // the size of (beta A - alpha B) x
  double terms;  // the sizes of what it is made of
};

Residual residual(const Pencil &p, Complex alpha, double beta, const std::vector<Complex> &x) {
  double sum = 0.0;
  for (std::int32_t row = 0; row < p.n; ++row) {
    Complex value = 0.0;
    for (std::int32_t column = 0; column < p.n; ++column)
      value += (beta * p.a[p.at(row, column)] - alpha * p.b[p.at(row, column)]) *
               x[static_cast<std::size_t>(column)];
    sum += std::norm(value);
  }
  const double scale = beta * size_of(p, p.a) + std::abs(alpha) * size_of(p, p.b);
  return {std::sqrt(sum), scale};
}

// The last pivot of an elimination with complete pivoting beside the first one.
double last_pivot(std::vector<Complex> matrix, std::size_t n) {
  double first = 0.0, last = 0.0;
  const auto at = [&](std::size_t row, std::size_t column) -> Complex & {
    return matrix[column * n + row];
  };
  for (std::size_t step = 0; step < n; ++step) {
    std::size_t pivot_row = step, pivot_column = step;
    for (std::size_t column = step; column < n; ++column) {
      for (std::size_t row = step; row < n; ++row) {
        if (std::abs(at(row, column)) > std::abs(at(pivot_row, pivot_column)))
          pivot_row = row, pivot_column = column;
      }
    }
    for (std::size_t k = 0; k < n; ++k)
      std::swap(at(step, k), at(pivot_row, k));
    for (std::size_t k = 0; k < n; ++k)
      std::swap(at(k, step), at(k, pivot_column));
    last = std::abs(at(step, step));
    first = step == 0 ? last : first;
    if (last == 0.0)
      return 0.0;
    for (std::size_t row = step + 1; row < n; ++row) {
      const Complex factor = at(row, step) / at(step, step);
      for (std::size_t column = step; column < n; ++column)
        at(row, column) -= factor * at(step, column);
    }
  }
  return last / first;
}

// Whether A - lambda B is singular for every lambda, or as good as that: eigenvalues are then
// arbitrary, and a perturbation of rounding moves them by its root.
bool is_singular(const Pencil &p) {
  constexpr double kTiny = 1e-10;
  const auto n = static_cast<std::size_t>(p.n);
  const double a_size = size_of(p, p.a), b_size = size_of(p, p.b);
  const double scale = a_size > 0.0 && b_size > 0.0 ? a_size / b_size : 1.0;
  for (const double angle : {0.7, 1.9, 4.1}) {
    const Complex lambda = std::polar(scale, angle);
    std::vector<Complex> matrix;
    for (std::int32_t column = 0; column < p.n; ++column) {
      for (std::int32_t row = 0; row < p.n; ++row)
        matrix.push_back(p.a[p.at(row, column)] - lambda * p.b[p.at(row, column)]);
    }
    if (last_pivot(std::move(matrix), n) > kTiny)
      return false;
  }
  return true;
}

}  // namespace

EigenPairs solve(Pencil pencil, bool with_vectors) {
  const auto n = static_cast<std::size_t>(pencil.n);
  const std::int32_t vectors = with_vectors ? 1 : 0;
  EigenPairs pairs{std::vector<double>(n), std::vector<double>(n), std::vector<double>(n),
                   std::vector<double>(pencil.a.size())};
  double *const a = pencil.a.data(), *const b = pencil.b.data(), *const z = pairs.vectors.data();
  double *const real = pairs.real.data(), *const imaginary = pairs.imaginary.data();
  const double eps = 0.0;
  QDL_QZHESS(&pencil.nm, &pencil.n, a, b, &vectors, z);
  QDL_QZITT(&pencil.nm, &pencil.n, a, b, &eps, &vectors, z, &pairs.failed);
  const Pencil reduced = pencil;
  QDL_QZVALL(&pencil.nm, &pencil.n, a, b, real, imaginary, pairs.beta.data(), &vectors, z);
  if (n > 1)
    pairs.lost = lost_by_splitting(reduced, pairs);
  pairs.tiny = n > 0 ? std::abs(b[n - 1]) : 0.0;
  if (with_vectors)
    QDL_QZVECC(&pencil.nm, &pencil.n, a, b, real, imaginary, pairs.beta.data(), z);
  return pairs;
}

void require_pairs(const Pencil &pencil, const EigenPairs &pairs) {
  if (is_singular(pencil))
    return;
  for (std::int32_t j = 0; j < pencil.n; ++j) {
    const auto k = static_cast<std::size_t>(j);
    const bool complex = pairs.imaginary[k] != 0.0;
    std::vector<Complex> x;
    for (std::int32_t row = 0; row < pencil.n; ++row)
      x.emplace_back(pairs.vectors[pencil.at(row, j)],
                     complex ? pairs.vectors[pencil.at(row, j + 1)] : 0.0);
    const double largest = std::abs(*std::ranges::max_element(
        x, {}, [](const Complex &component) { return std::abs(component); }));
    require(std::abs(largest - 1.0) < 1e-12, "an eigenvector is not scaled to 1");
    const Residual left = residual(pencil, {pairs.real[k], pairs.imaginary[k]}, pairs.beta[k], x);
    require(left.value <= kRounding * pairs.lost * left.terms + pairs.tiny * pencil.n,
            "an eigenvector leaves a residual");
    j += complex ? 1 : 0;
  }
}

}  // namespace qdlfuzz
