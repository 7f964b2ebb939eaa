// The eigenvalues beside those of LAPACK.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <string>
#include <vector>

#include "qz_pairs.h"

#ifdef QDLFLEX_TEST_LAPACK

extern "C" void dggev_(const char *, const char *, const int *, double *, const int *, double *,
                       const int *, double *, double *, double *, double *, const int *, double *,
                       const int *, double *, const int *, int *, std::size_t, std::size_t);

#endif

namespace {

using namespace qdltest;

// alpha / beta, infinite ones included.
struct Ratio {
  std::complex<double> alpha;
  double beta;
};

#ifdef QDLFLEX_TEST_LAPACK

std::vector<Ratio> lapack_eigenvalues(Pair pair) {
  const int n = static_cast<int>(pair.a.order);
  const int one = 1;
  const auto order = static_cast<std::size_t>(n);
  std::vector<double> alfr(order), alfi(order), beta(order), work(order * 64 + 64);
  const int work_size = static_cast<int>(work.size());
  int info = -1;
  dggev_("N", "N", &n, pair.a.values.data(), &n, pair.b.values.data(), &n, alfr.data(), alfi.data(),
         beta.data(), nullptr, &one, nullptr, &one, work.data(), &work_size, &info, 1, 1);
  EXPECT_EQ(info, 0);
  std::vector<Ratio> result;
  for (std::size_t i = 0; i < order; ++i)
    result.push_back({{alfr[i], alfi[i]}, beta[i]});
  return result;
}

#else

std::vector<Ratio> lapack_eigenvalues(const Pair &) {
  return {};
}

#endif

// Distance on the sphere of numbers, between 0 and 1, with `unit` in the role of 1.
double distance(const Ratio &x, const Ratio &y, double unit) {
  const double x_length = std::hypot(std::abs(x.alpha), unit * x.beta);
  const double y_length = std::hypot(std::abs(y.alpha), unit * y.beta);
  return std::abs(x.alpha * y.beta - y.alpha * x.beta) * unit / (x_length * y_length);
}

// Takes the nearest of `others` for each, none twice.
double worst_distance(const std::vector<Ratio> &ratios, std::vector<Ratio> others, double unit) {
  double worst = 0.0;
  for (const Ratio &ratio : ratios) {
    const auto nearest = std::ranges::min_element(
        others, {}, [&](const Ratio &other) { return distance(ratio, other, unit); });
    worst = std::max(worst, distance(ratio, *nearest, unit));
    others.erase(nearest);
  }
  return worst;
}

void expect_same_eigenvalues(const Pair &pair, double tolerance) {
  const Solution solution = solve(pair);
  ASSERT_EQ(solution.ierr, 0);
  std::vector<Ratio> ours;
  for (std::size_t i = 0; i < solution.beta.size(); ++i)
    ours.push_back({solution.alpha(i), solution.beta[i]});
  const double unit = pair.a.norm() / pair.b.norm();
  EXPECT_LE(worst_distance(ours, lapack_eigenvalues(pair), unit), tolerance);
}

class EigenSolverBesideLapack : public testing::Test {
 protected:
  void SetUp() override {
#ifndef QDLFLEX_TEST_LAPACK
    GTEST_SKIP() << "LAPACK is not installed";
#endif
  }
};

std::vector<double> values_of(Index order, double first, double step) {
  std::vector<double> result;
  for (Index i = 0; i < order; ++i)
    result.push_back(first + step * static_cast<double>(i));
  return result;
}

TEST_F(EigenSolverBesideLapack, GivesTheSameForRandomPairs) {
  for (const Index order : {1, 2, 3, 4, 5, 7, 10, 16, 33, 80})
    for (const unsigned seed : {1U, 11U, 21U, 31U, 41U}) {
      SCOPED_TRACE("order " + std::to_string(order) + ", seed " + std::to_string(seed));
      expect_same_eigenvalues({Matrix::random(order, seed), Matrix::random(order, seed + 1)},
                              1e-11);
    }
}

TEST_F(EigenSolverBesideLapack, GivesTheSameForSymmetricPairs) {
  for (const Index order : {8, 26, 90}) {
    const auto size = static_cast<std::size_t>(order);
    std::vector<double> masses(size, 1.0);
    expect_same_eigenvalues(congruent(elastic_eigenvalues(order), masses, 1), 1e-12);
    std::fill_n(masses.begin(), size / 4, 0.0);
    expect_same_eigenvalues(congruent(values_of(order, 1.0, 0.5), masses, 2), 1e-12);
    std::fill_n(masses.begin(), size / 4, -2.0);
    expect_same_eigenvalues(congruent(values_of(order, 1.0, 0.5), masses, 3), 1e-10);
  }
}

}  // namespace
