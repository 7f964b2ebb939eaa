#include "qz_pairs.h"

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <random>

#include "support/fault.h"

namespace qdltest {

Matrix Matrix::diagonal(const std::vector<double> &values) {
  Matrix result(static_cast<Index>(values.size()));
  for (Index i = 0; i < result.order; ++i)
    result(i, i) = values[static_cast<std::size_t>(i)];
  return result;
}

Matrix Matrix::identity(Index order) {
  return diagonal(std::vector<double>(static_cast<std::size_t>(order), 1.0));
}

Matrix Matrix::of_rows(const std::vector<std::vector<double>> &rows) {
  Matrix result(static_cast<Index>(rows.size()));
  for (Index i = 0; i < result.order; ++i)
    for (Index j = 0; j < result.order; ++j)
      result(i, j) = rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  return result;
}

Matrix Matrix::random(Index order, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Matrix result(order);
  for (double &value : result.values)
    value = uniform(engine);
  return result;
}

Matrix Matrix::transposed() const {
  Matrix result(order);
  for (Index j = 0; j < order; ++j)
    for (Index i = 0; i < order; ++i)
      result(j, i) = (*this)(i, j);
  return result;
}

double Matrix::norm() const {
  double sum = 0.0;
  for (const double value : values)
    sum = std::hypot(sum, value);
  return sum;
}

Matrix operator*(const Matrix &left, const Matrix &right) {
  Matrix result(left.order);
  for (Index j = 0; j < left.order; ++j)
    for (Index k = 0; k < left.order; ++k)
      for (Index i = 0; i < left.order; ++i)
        result(i, j) += left(i, k) * right(k, j);
  return result;
}

Matrix operator*(double factor, Matrix matrix) {
  for (double &value : matrix.values)
    value *= factor;
  return matrix;
}

namespace {

Matrix well_conditioned(Index order, unsigned seed) {
  Matrix result = 0.5 / std::sqrt(static_cast<double>(order)) * Matrix::random(order, seed);
  for (Index i = 0; i < order; ++i)
    result(i, i) += 1.0;
  return result;
}

}  // namespace

Pair congruent(const std::vector<double> &k, const std::vector<double> &m, unsigned seed) {
  const Matrix x = well_conditioned(static_cast<Index>(k.size()), seed);
  const Matrix xt = x.transposed();
  return {xt * (Matrix::diagonal(k) * x), xt * (Matrix::diagonal(m) * x)};
}

Pair equivalent(const Matrix &k, const Matrix &m, unsigned seed) {
  const Matrix p = well_conditioned(k.order, seed);
  const Matrix q = well_conditioned(k.order, seed + 1);
  return {p * (k * q), p * (m * q)};
}

std::vector<double> elastic_eigenvalues(Index order) {
  std::vector<double> result(static_cast<std::size_t>(order), 0.0);
  for (Index i = 6; i < order; ++i)
    result[static_cast<std::size_t>(i)] =
        std::pow(10.0, 3.0 + 9.0 * static_cast<double>(i - 6) / static_cast<double>(order - 7));
  return result;
}

std::vector<double> Solution::sorted_real_ratios() const {
  std::vector<double> result;
  for (std::size_t i = 0; i < alfr.size(); ++i)
    result.push_back(alfr[i] / beta[i]);
  std::ranges::sort(result);
  return result;
}

namespace {

bool same_bits(const std::vector<double> &left, const std::vector<double> &right) {
  return left.size() == right.size() &&
         std::memcmp(left.data(), right.data(), left.size() * sizeof(double)) == 0;
}

constexpr double kOutside = -77.25;  // in the rows that are not the matrix's

std::vector<double> spread(const Matrix &matrix, Index leading_dimension) {
  std::vector<double> result(static_cast<std::size_t>(leading_dimension * matrix.order), kOutside);
  for (Index j = 0; j < matrix.order; ++j)
    std::copy_n(&matrix.values[static_cast<std::size_t>(j * matrix.order)], matrix.order,
                &result[static_cast<std::size_t>(j * leading_dimension)]);
  return result;
}

Matrix gather(const std::vector<double> &values, Index order, Index leading_dimension) {
  Matrix result(order);
  for (Index j = 0; j < order; ++j)
    for (Index i = 0; i < leading_dimension; ++i) {
      const double value = values[static_cast<std::size_t>(j * leading_dimension + i)];
      if (i < order)
        result(i, j) = value;
      else
        EXPECT_EQ(value, kOutside) << "outside of the matrix, row " << i << ", column " << j;
    }
  return result;
}

}  // namespace

bool Solution::operator==(const Solution &other) const {
  return ierr == other.ierr && same_bits(a.values, other.a.values) &&
         same_bits(b.values, other.b.values) && same_bits(z.values, other.z.values) &&
         same_bits(alfr, other.alfr) && same_bits(alfi, other.alfi) && same_bits(beta, other.beta);
}

Solution solve(const Pair &pair, const Options &options) {
  const Index order = pair.a.order;
  const Index leading = std::max(order, options.leading_dimension);
  const auto nm = static_cast<std::int32_t>(leading);
  const auto n = static_cast<std::int32_t>(order);
  const std::int32_t matz = options.vectors ? 1 : 0;
  std::vector<double> a = spread(pair.a, leading);
  std::vector<double> b = spread(pair.b, leading);
  std::vector<double> z = spread(Matrix(order), leading);
  Solution solution;
  solution.alfr = solution.alfi = solution.beta =
      std::vector<double>(static_cast<std::size_t>(order), kOutside);
  double *alfr = solution.alfr.data();
  double *alfi = solution.alfi.data();
  double *beta = solution.beta.data();

  std::optional<FailAllocation> fault;
  if (!options.has_memory)
    fault.emplace(1, Persistence::kEverAfter);
  QDL_QZHESS(&nm, &n, a.data(), b.data(), &matz, z.data());
  QDL_QZITT(&nm, &n, a.data(), b.data(), &options.eps1, &matz, z.data(), &solution.ierr);
  QDL_QZVALL(&nm, &n, a.data(), b.data(), alfr, alfi, beta, &matz, z.data());
  if (options.vectors)
    QDL_QZVECC(&nm, &n, a.data(), b.data(), alfr, alfi, beta, z.data());
  EXPECT_EQ(fault && fault->fired(), !options.has_memory);
  fault.reset();

  solution.a = gather(a, order, leading);
  solution.b = gather(b, order, leading);
  solution.z = gather(z, order, leading);
  return solution;
}

namespace {

using Complex = std::complex<double>;

// Eigenvector j: of a complex pair the second one is the conjugate of the first.
std::vector<Complex> eigenvector(const Solution &solution, Index j) {
  const double imaginary = solution.alfi[static_cast<std::size_t>(j)];
  const Index first = imaginary < 0.0 ? j - 1 : j;
  std::vector<Complex> result;
  for (Index i = 0; i < solution.z.order; ++i) {
    const double real = solution.z(i, first);
    const double other = imaginary == 0.0 ? 0.0 : solution.z(i, first + 1);
    result.emplace_back(real, imaginary < 0.0 ? -other : other);
  }
  return result;
}

Complex row_times(const Matrix &matrix, Index row, const std::vector<Complex> &x) {
  Complex sum = 0.0;
  for (Index k = 0; k < matrix.order; ++k)
    sum += matrix(row, k) * x[static_cast<std::size_t>(k)];
  return sum;
}

}  // namespace

double worst_residual(const Pair &pair, const Solution &solution) {
  const double a_norm = pair.a.norm();
  const double b_norm = pair.b.norm();
  double worst = 0.0;
  for (Index j = 0; j < pair.a.order; ++j) {
    const Complex alpha = solution.alpha(static_cast<std::size_t>(j));
    const double beta = solution.beta[static_cast<std::size_t>(j)];
    const std::vector<Complex> x = eigenvector(solution, j);
    double largest = 0.0;
    for (const Complex &component : x)
      largest = std::max(largest, std::abs(component));
    const double allowed = (beta * a_norm + std::abs(alpha) * b_norm) * largest;
    for (Index i = 0; i < pair.a.order; ++i) {
      const double residual =
          std::abs(beta * row_times(pair.a, i, x) - alpha * row_times(pair.b, i, x));
      if (std::isnan(residual))
        return std::numeric_limits<double>::infinity();
      // Of a zero matrix nothing is allowed and nothing remains.
      if (residual > 0.0)
        worst = std::max(worst, residual / allowed);
    }
  }
  return worst;
}

}  // namespace qdltest
