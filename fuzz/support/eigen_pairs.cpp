#include "support/eigen_pairs.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <complex>

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

// The size of (beta A - alpha B) x beside its terms.
double residual(const Pencil &p, Complex alpha, double beta, const std::vector<Complex> &x) {
  double sum = 0.0;
  for (std::int32_t row = 0; row < p.n; ++row) {
    Complex value = 0.0;
    for (std::int32_t column = 0; column < p.n; ++column)
      value += (beta * p.a[p.at(row, column)] - alpha * p.b[p.at(row, column)]) *
               x[static_cast<std::size_t>(column)];
    sum += std::norm(value);
  }
  const double scale = beta * size_of(p, p.a) + std::abs(alpha) * size_of(p, p.b);
  return scale > 0.0 ? std::sqrt(sum) / scale : 0.0;
}

// Whether an eigenvalue is 0 / 0, or as good as that.
bool is_singular(const Pencil &p, const EigenPairs &pairs) {
  constexpr double kTiny = 1e-10;
  const double a = kTiny * size_of(p, p.a), b = kTiny * size_of(p, p.b);
  for (std::size_t k = 0; k < pairs.beta.size(); ++k) {
    if (std::hypot(pairs.real[k], pairs.imaginary[k]) <= a && pairs.beta[k] <= b)
      return true;
  }
  return false;
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
  if (with_vectors)
    QDL_QZVECC(&pencil.nm, &pencil.n, a, b, real, imaginary, pairs.beta.data(), z);
  return pairs;
}

void require_pairs(const Pencil &pencil, const EigenPairs &pairs) {
  if (is_singular(pencil, pairs))
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
    const double left = residual(pencil, {pairs.real[k], pairs.imaginary[k]}, pairs.beta[k], x);
    require(left <= kRounding * pairs.lost, "an eigenvector leaves a residual");
    j += complex ? 1 : 0;
  }
}

}  // namespace qdlfuzz
