// LU factors, solution and inverse of small dense systems.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

using Rows = std::vector<std::vector<double>>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Rows of a matrix as the library takes them, with the permutation of its factors.
struct System {
  Rows values;
  std::vector<double *> rows;
  std::vector<std::int32_t> permutation;

  explicit System(Rows matrix) : values(std::move(matrix)), permutation(values.size(), -1) {
    for (std::vector<double> &row : values)
      rows.push_back(row.data());
  }
  System(const System &) = delete;
  System &operator=(const System &) = delete;

  std::int32_t n() const { return static_cast<std::int32_t>(values.size()); }
  std::int32_t decompose() { return QDL_LUPDecomposition(rows.data(), n(), permutation.data()); }
  std::int32_t invert() { return QDL_LUPInvert(rows.data(), n(), permutation.data()); }
  std::int32_t solve(std::vector<double> &rhs) {
    return QDL_LUPSolve(rows.data(), n(), permutation.data(), rhs.data());
  }
};

class DenseAlgebra : public MessageFixture {};

TEST_F(DenseAlgebra, FactorsAndSolutionAreThoseWorkedByHand) {
  System system({{1, 2, 4}, {2, 1, 3}, {4, 2, 2}});
  const std::vector<double *> rows_before = system.rows;
  ASSERT_EQ(system.decompose(), 1);
  EXPECT_EQ(system.permutation, (std::vector<std::int32_t>{2, 0, 1}));
  EXPECT_EQ(system.values, (Rows{{4, 2, 2}, {0.25, 1.5, 3.5}, {0.5, 0, 2}}));
  EXPECT_EQ(system.rows, rows_before) << "contents are exchanged, not the caller's pointers";

  std::vector<double> rhs = {9, 9, 6};
  ASSERT_EQ(system.solve(rhs), 1);
  EXPECT_EQ(rhs, (std::vector<double>{1, -2, 3}));
}

TEST_F(DenseAlgebra, FirstOfEqualPivotsIsTaken) {
  System system({{1, 1}, {-1, 1}});
  ASSERT_EQ(system.decompose(), 1);
  EXPECT_EQ(system.permutation, (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(system.values, (Rows{{1, 1}, {-1, 2}}));
}

TEST_F(DenseAlgebra, OnlyAnExactlyZeroPivotFails) {
  const std::vector<Rows> singular = {
      {{1, 0, 2}, {3, 0, 4}, {5, 0, 7}},  // a zero column
      {{1, 2, 0}, {3, 4, 0}, {5, 7, 0}},  // the last one
      {{1, 2}, {2, 4}},                   // seen at the last pivot
      {{0, 0}, {0, 0}},
      {{kNaN, 1}, {kNaN, 2}},  // no pivot can be found
      {{1, 2, 3}, {1, 2, 3}, {4, 5, 7}},
  };
  for (const auto &matrix : singular) {
    System system(matrix);
    EXPECT_EQ(system.decompose(), 0) << testing::PrintToString(matrix);
  }
  for (const double tiny : {1e-300, -5e-324}) {
    System system({{1, 0}, {0, tiny}});
    EXPECT_EQ(system.decompose(), 1) << tiny;
  }
  expect_no_messages();
}

TEST_F(DenseAlgebra, OrderOneAlwaysSucceeds) {
  System four(Rows{{4}});
  EXPECT_EQ(four.decompose(), 1);
  EXPECT_EQ(four.permutation[0], 0);
  std::vector<double> rhs = {2};
  EXPECT_EQ(four.solve(rhs), 1);
  EXPECT_EQ(rhs[0], 0.5);
  EXPECT_EQ(four.invert(), 1);
  EXPECT_EQ(four.values[0][0], 0.25);

  System zero(Rows{{0}});
  EXPECT_EQ(zero.decompose(), 1);
  EXPECT_EQ(zero.solve(rhs), 1);
  EXPECT_TRUE(std::isinf(rhs[0]));
  expect_no_messages();
}

TEST_F(DenseAlgebra, SolvesAndInvertsRandomSystems) {
  std::mt19937_64 engine(1);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (const std::size_t n : {2U, 3U, 6U, 40U}) {
    Rows matrix(n, std::vector<double>(n));
    std::vector<double> solution(n), rhs(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
      solution[i] = uniform(engine);
      for (double &value : matrix[i])
        value = uniform(engine);
    }
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = 0; j < n; ++j)
        rhs[i] += matrix[i][j] * solution[j];

    System system(matrix);
    ASSERT_EQ(system.decompose(), 1);
    ASSERT_EQ(system.solve(rhs), 1);
    for (std::size_t i = 0; i < n; ++i)
      EXPECT_NEAR(rhs[i], solution[i], 1e-11) << "order " << n;

    ASSERT_EQ(system.invert(), 1);
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = 0; j < n; ++j) {
        double product = 0.0;
        for (std::size_t k = 0; k < n; ++k)
          product += matrix[i][k] * system.rows[k][j];
        EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-11) << "order " << n;
      }
  }
}

TEST_F(DenseAlgebra, DoesNothingBelowOrderOneAndFailsWithoutArrays) {
  for (const std::int32_t n : {0, -3}) {
    EXPECT_EQ(QDL_LUPDecomposition(nullptr, n, nullptr), 1);
    EXPECT_EQ(QDL_LUPSolve(nullptr, n, nullptr, nullptr), 1);
    EXPECT_EQ(QDL_LUPInvert(nullptr, n, nullptr), 1);
  }
  System system({{1, 2}, {3, 4}});
  EXPECT_EQ(QDL_LUPDecomposition(nullptr, 2, system.permutation.data()), 0);
  EXPECT_EQ(QDL_LUPDecomposition(system.rows.data(), 2, nullptr), 0);
  EXPECT_EQ(QDL_LUPSolve(system.rows.data(), 2, system.permutation.data(), nullptr), 0);
  EXPECT_EQ(QDL_LUPInvert(system.rows.data(), 2, nullptr), 0);
  expect_no_messages();
}

TEST_F(DenseAlgebra, ReportsMissingMemoryAndChangesNothing) {
  System system({{1, 2}, {3, 4}});
  ASSERT_EQ(system.decompose(), 1);
  const auto factors = system.values;
  const auto check = [&](std::int32_t result, bool fired) {
    EXPECT_EQ(result, fired ? 0 : 1);
    EXPECT_EQ(errors.size(), fired ? 1U : 0U);
    if (!fired)
      return;
    EXPECT_TRUE(errors[0].starts_with("Failed to allocate memory at line ")) << errors[0];
    EXPECT_TRUE(errors[0].ends_with(" in file qdltools.\n")) << errors[0];
    EXPECT_EQ(system.values, factors);
    clear_messages();
  };
  std::vector<double> rhs = {5, 6};
  EXPECT_GT(sweep(
                Door::kMemory, Persistence::kOnce, [&] { return system.solve(rhs); },
                [&](std::int32_t result, bool fired) {
                  EXPECT_TRUE(!fired || rhs == (std::vector<double>{5, 6}));
                  check(result, fired);
                }),
            0U);
  EXPECT_GT(sweep(
                Door::kMemory, Persistence::kOnce, [&] { return system.invert(); }, check),
            1U);
}

}  // namespace
