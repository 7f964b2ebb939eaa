// The eigen solver: residuals, closed forms, conventions of its stages, and bad input.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "qz_pairs.h"

namespace {

using namespace qdltest;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kRoundoff = 0x1p-53;

std::vector<double> ones(Index order) {
  return std::vector<double>(static_cast<std::size_t>(order), 1.0);
}

TEST(UnitRoundoff, IsHalvedDownFromWhatIsPassed) {
  const std::array<std::array<double, 2>, 7> cases = {{
      {1.0, kRoundoff},
      {3.0, 0x1.8p-54},
      {0.0, 0.0},
      {-2.0, -2.0},
      {1e-30, 1e-30},
      {-kInfinity, -kInfinity},
      {kInfinity, 0x1.fffffffffffffp-54},
  }};
  for (const auto &[start, expected] : cases) {
    double x = start;
    EXPECT_EQ(EIGPSN(&x), expected) << start;
    EXPECT_EQ(x, expected) << start;
  }
  double x = kNaN;
  EXPECT_TRUE(std::isnan(EIGPSN(&x)));
}

Matrix with_zero_rows(Matrix matrix) {
  for (Index i = 0; i < matrix.order; i += 3)
    for (Index j = 0; j < matrix.order; ++j)
      matrix(i, j) = 0.0;
  return matrix;
}

// Blocks [[p, q], [-q, p]] with eigenvalues p +- q i.
Matrix rotations(Index order) {
  Matrix result(order);
  for (Index i = 0; i < order; ++i)
    result(i, i) = 1.0 + static_cast<double>(i / 2);
  for (Index i = 0; i + 1 < order; i += 2)
    result(i, i + 1) = -(result(i + 1, i) = -0.5);
  return result;
}

// Jordan blocks of order three.
Matrix jordan(Index order) {
  Matrix result(order);
  for (Index i = 0; i < order; ++i) {
    result(i, i) = 1.0 + static_cast<double>(i / 3);
    if (i % 3 != 0)
      result(i - 1, i) = 1.0;
  }
  return result;
}

Matrix graded(Matrix matrix) {
  for (Index j = 0; j < matrix.order; ++j)
    for (Index i = 0; i < matrix.order; ++i)
      matrix(i, j) *=
          std::pow(10.0, -6.0 * static_cast<double>(i + j) / static_cast<double>(matrix.order));
  return matrix;
}

std::vector<double> alternating(Index order) {
  std::vector<double> result = ones(order);
  for (std::size_t i = 0; i < result.size(); i += 2)
    result[i] = -1.0;
  return result;
}

std::vector<double> half_zero(Index order) {
  std::vector<double> result = ones(order);
  for (std::size_t i = 0; i < result.size() / 2; ++i)
    result[i] = 0.0;
  return result;
}

std::vector<double> counted(Index order) {
  std::vector<double> result;
  for (Index i = 1; i <= order; ++i)
    result.push_back(static_cast<double>(i));
  return result;
}

struct Kind {
  const char *name;
  std::function<Pair(Index)> pair;
};

const std::vector<Kind> &kinds() {
  static const std::vector<Kind> result = {
      {"random",
       [](Index n) {
         return Pair{Matrix::random(n, 1), Matrix::random(n, 2)};
       }},
      {"elastic",
       [](Index n) { return congruent(n > 7 ? elastic_eigenvalues(n) : counted(n), ones(n), 3); }},
      {"singular B", [](Index n) { return congruent(counted(n), half_zero(n), 4); }},
      {"zero rows in B",
       [](Index n) {
         return Pair{Matrix::random(n, 5), with_zero_rows(Matrix::random(n, 6))};
       }},
      {"singular A", [](Index n) { return congruent(half_zero(n), counted(n), 7); }},
      {"complex pairs", [](Index n) { return equivalent(rotations(n), Matrix::identity(n), 8); }},
      {"defective", [](Index n) { return equivalent(jordan(n), Matrix::identity(n), 10); }},
      {"indefinite", [](Index n) { return congruent(counted(n), alternating(n), 12); }},
      {"graded",
       [](Index n) {
         return Pair{graded(Matrix::random(n, 13)), Matrix::random(n, 14)};
       }},
      {"both graded",
       [](Index n) {
         return Pair{graded(Matrix::random(n, 15)), graded(Matrix::random(n, 16))};
       }},
      {"huge A, tiny B",
       [](Index n) {
         return Pair{1e60 * Matrix::random(n, 17), 1e-60 * Matrix::random(n, 18)};
       }},
      {"B zero",
       [](Index n) {
         return Pair{Matrix::random(n, 19), Matrix(n)};
       }},
      {"A zero",
       [](Index n) {
         return Pair{Matrix(n), Matrix::random(n, 20)};
       }},
      {"triangular B",
       [](Index n) {
         Matrix b = Matrix::identity(n);
         for (Index j = 1; j < n; ++j)
           b(0, j) = 1.0;
         return Pair{Matrix::random(n, 21), b};
       }},
  };
  return result;
}

void expect_eigenpairs(const Pair &pair) {
  const Solution solution = solve(pair);
  EXPECT_EQ(solution.ierr, 0);
  EXPECT_LE(worst_residual(pair, solution), 1e-13);
  for (std::size_t i = 0; i < solution.beta.size(); ++i) {
    EXPECT_GE(solution.beta[i], 0.0);
    if (solution.alfi[i] > 0.0) {
      ASSERT_LT(i + 1, solution.beta.size());
      EXPECT_LT(solution.alfi[i + 1], 0.0) << "a complex pair is consecutive";
    }
  }
}

// Largest modulus of a component of every vector.
void expect_normalized(const Solution &solution) {
  for (Index j = 0; j < solution.z.order; ++j) {
    const bool is_complex = solution.alfi[static_cast<std::size_t>(j)] > 0.0;
    double largest = 0.0;
    for (Index i = 0; i < solution.z.order; ++i)
      largest =
          std::max(largest, std::hypot(solution.z(i, j), is_complex ? solution.z(i, j + 1) : 0.0));
    EXPECT_NEAR(largest, 1.0, 1e-15) << "vector " << j;
    j += is_complex ? 1 : 0;
  }
}

TEST(EigenSolver, FindsEigenpairsOfEveryKindOfPair) {
  for (const Kind &kind : kinds())
    for (const Index order : {1, 2, 3, 4, 5, 8, 9, 20, 60}) {
      SCOPED_TRACE(std::string(kind.name) + ", order " + std::to_string(order));
      const Pair pair = kind.pair(order);
      expect_eigenpairs(pair);
      expect_normalized(solve(pair));
    }
}

// Rounding leaves a block whole that has the eigenvalue of the row below it, or twice the same.
TEST(EigenSolver, FindsEigenpairsOfRepeatedEigenvalues) {
  const Matrix b = Matrix::of_rows({{-20, 1, 2}, {-20, 3, -4}, {-20, 0, 0}});
  Matrix a = b;
  a(0, 0) = -16.5;
  const Matrix same = Matrix::of_rows({{11, -15, -20}, {2, 0, -19.25}, {0, 0, -20}});
  for (const Pair &pair : {Pair{a, b}, Pair{same, same}}) {
    expect_eigenpairs(pair);
    expect_normalized(solve(pair));
  }
}

TEST(EigenSolver, FindsKnownRealEigenvalues) {
  for (const Index order : {8, 30, 100}) {
    const std::vector<double> expected = elastic_eigenvalues(order);
    const std::vector<double> found =
        solve(congruent(expected, ones(order), 30)).sorted_real_ratios();
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_NEAR(found[i], expected[i], 1e-13 * expected.back()) << "order " << order;
  }
}

// A cyclic permutation: its steps stand still without the exceptional shift.
TEST(EigenSolver, FindsTheRootsOfUnity) {
  for (const Index order : {3, 4, 5, 8, 12}) {
    Matrix cyclic(order);
    for (Index i = 0; i < order; ++i)
      cyclic((i + 1) % order, i) = 1.0;
    const Pair pair{cyclic, Matrix::identity(order)};
    expect_eigenpairs(pair);
    const Solution solution = solve(pair);
    std::vector<double> found, expected;
    for (std::size_t i = 0; i < solution.beta.size(); ++i) {
      const std::complex<double> root = solution.alpha(i) / solution.beta[i];
      EXPECT_NEAR(std::abs(root), 1.0, 1e-13);
      found.push_back(std::arg(root) < -3.14159 ? std::numbers::pi : std::arg(root));
      const double angle =
          2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(order);
      expected.push_back(angle > 3.1416 ? angle - 2.0 * std::numbers::pi : angle);
    }
    std::ranges::sort(found);
    std::ranges::sort(expected);
    for (std::size_t i = 0; i < found.size(); ++i)
      EXPECT_NEAR(found[i], expected[i], 1e-13) << "order " << order;
  }
}

TEST(EigenSolver, PutsThePositiveImaginaryPartFirst) {
  for (const double sign : {1.0, -1.0}) {
    const Pair pair{Matrix::of_rows({{3.0, -2.0 * sign}, {2.0 * sign, 3.0}}),
                    Matrix::of_rows({{2.0, 0.0}, {0.0, 2.0}})};
    const Solution solution = solve(pair);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_NEAR(solution.alfr[i] / solution.beta[i], 1.5, 1e-15);
      EXPECT_NEAR(solution.alfi[i] / solution.beta[i], i == 0 ? 1.0 : -1.0, 1e-15);
    }
    EXPECT_LE(worst_residual(pair, solution), 1e-15);
  }
}

TEST(EigenSolver, KeepsADiagonalPairInOrder) {
  const std::vector<double> k = {5.0, -3.0, 0.0, 1e12, 7.0, 1e-9, 5.0, 4.0};
  const std::vector<double> m = {1.0, 2.0, 3.0, 1e-3, 0.0, 1e6, -4.0, -2.0};
  const Solution solution = solve({Matrix::diagonal(k), Matrix::diagonal(m)});
  EXPECT_EQ(solution.ierr, 0);
  EXPECT_EQ(solution.z.values, Matrix::identity(8).values);
  for (std::size_t i = 0; i < k.size(); ++i) {
    EXPECT_EQ(solution.alfr[i], m[i] < 0.0 ? -k[i] : k[i]);
    EXPECT_EQ(solution.alfi[i], 0.0);
    EXPECT_EQ(solution.beta[i], std::fabs(m[i]));
  }
}

TEST(EigenSolver, TakesAPairOfOrderOneAsItIs) {
  const Pair pair = {Matrix::diagonal({-3.0}), Matrix::diagonal({-2.0})};
  const Solution solution = solve(pair);
  EXPECT_EQ(solution.ierr, 0);
  EXPECT_EQ(solution.alfr[0], 3.0);
  EXPECT_EQ(solution.alfi[0], 0.0);
  EXPECT_EQ(solution.beta[0], 2.0);
  EXPECT_EQ(solution.z(0, 0), 1.0);
  EXPECT_EQ(solve(pair, {.vectors = false}).b(0, 0), -2.0) << "no tolerance is stored in it";
}

TEST(EigenSolver, ShowsInfiniteEigenvaluesInBeta) {
  struct Case {
    Pair pair;
    int infinite;
  };
  const std::vector<Case> cases = {
      {{Matrix::identity(2), Matrix::of_rows({{1.0, 2.0}, {2.0, 4.0}})}, 1},
      {{Matrix::random(3, 1), Matrix::of_rows({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}})}, 1},
      {congruent(counted(12), half_zero(12), 40), 6},
      {{Matrix::random(5, 2), Matrix(5)}, 5},
  };
  for (const auto &[pair, infinite] : cases) {
    const Solution solution = solve(pair);
    const double tolerance = 8.0 * solution.b(pair.a.order - 1, 0);
    EXPECT_EQ(std::ranges::count_if(solution.beta, [&](double b) { return b <= tolerance; }),
              infinite)
        << "order " << pair.a.order;
  }
}

// The tolerance is left in B, so the norm behind it can be seen. Column sums are 4, 8, 6; row sums
// of the triangle are 12, 5, 1.
TEST(EigenSolver, LeavesTheToleranceFromColumnSumsInB) {
  const Matrix b = Matrix::of_rows({{-4.0, 5.0, 3.0}, {0.0, 3.0, -2.0}, {0.0, 0.0, 1.0}});
  struct Case {
    Matrix b;
    double eps1;
    double expected;
  };
  const std::vector<Case> cases = {
      {b, 0.0, 8.0 * kRoundoff},  {b, -1.0, 8.0 * kRoundoff},
      {b, kNaN, 8.0 * kRoundoff}, {b, 0.25, 2.0},
      {Matrix(3), 0.25, 0.25},    {Matrix::of_rows({{1.0, 5.0}, {0.0, 2.0}}), 0.5, 3.5},
  };
  for (const Case &test : cases) {
    Matrix a = Matrix::identity(test.b.order);
    Matrix reduced = test.b;
    const auto n = static_cast<std::int32_t>(a.order);
    const std::int32_t matz = 0;
    std::int32_t ierr = -1;
    QDL_QZITT(&n, &n, a.values.data(), reduced.values.data(), &test.eps1, &matz, nullptr, &ierr);
    EXPECT_EQ(ierr, 0);
    EXPECT_EQ(reduced(n - 1, 0), test.expected) << test.eps1;
    reduced(n - 1, 0) = 0.0;
    EXPECT_EQ(reduced.values, test.b.values) << "nothing was to be done";
  }
}

// The next two stages borrow the element of B that holds the tolerance.
TEST(EigenSolver, KeepsTheToleranceInBUntilTheEnd) {
  const Pair pair{Matrix::of_rows({{1.0, 2.0}, {3.0, 4.0}}), Matrix::identity(2)};
  const Solution with_tiny = solve(pair);
  EXPECT_EQ(with_tiny.b(1, 0), kRoundoff);
  const Solution with_large = solve(pair, {.eps1 = 0.01});
  EXPECT_EQ(with_large.b(1, 0), 0.01);
  EXPECT_EQ(with_large.z.values, with_tiny.z.values);
}

TEST(EigenSolver, DoesNotTouchZWithoutVectors) {
  for (const Index order : {1, 2, 7, 40}) {
    const Pair pair = congruent(counted(order), ones(order), 50);
    const Solution values_only = solve(pair, {.vectors = false});
    EXPECT_EQ(values_only.z.values, Matrix(order).values);
    EXPECT_EQ(values_only.ierr, 0);
    const std::vector<double> found = values_only.sorted_real_ratios();
    for (std::size_t i = 0; i < found.size(); ++i)
      EXPECT_NEAR(found[i], static_cast<double>(i + 1), 1e-13 * static_cast<double>(order));
  }
}

TEST(EigenSolver, DoesNotDependOnTheLeadingDimension) {
  for (const Index order : {1, 2, 9, 33}) {
    const Pair pair{Matrix::random(order, 1), Matrix::random(order, 2)};
    const Solution dense = solve(pair);
    EXPECT_EQ(solve(pair, {.leading_dimension = order + 3}), dense);
    EXPECT_EQ(solve(pair, {.leading_dimension = 128}), dense);
  }
}

TEST(EigenSolver, WorksInPlaceWithoutMemoryForCopies) {
  const Pair pair{Matrix::random(21, 1), Matrix::random(21, 2)};
  EXPECT_EQ(solve(pair, {.has_memory = false}), solve(pair));
}

// Many equal eigenvalues in a dense pair stall the iteration at the tightest tolerance.
TEST(EigenSolver, ReportsWhereTheIterationEnded) {
  const Pair pair = congruent(ones(100), ones(100), 60);
  const Solution stalled = solve(pair);
  EXPECT_GT(stalled.ierr, 2);
  EXPECT_LE(stalled.ierr, 100);
  EXPECT_GT(stalled.b(99, 0), 0.0) << "the tolerance is stored all the same";
  EXPECT_LT(stalled.b(99, 0), 1e-13);

  const Solution relaxed = solve(pair, {.eps1 = 100 * 0x1p-52});
  EXPECT_EQ(relaxed.ierr, 0);
  for (const double found : relaxed.sorted_real_ratios())
    EXPECT_NEAR(found, 1.0, 1e-12);
}

TEST(EigenSolver, EndsAtOnceOnNumbersThatAreNotFinite) {
  for (const double bad : {kNaN, kInfinity, -kInfinity})
    for (const bool in_a : {true, false}) {
      SCOPED_TRACE(testing::Message() << bad << (in_a ? " in A" : " in B"));
      Pair pair{Matrix::random(40, 1), Matrix::random(40, 2)};
      (in_a ? pair.a : pair.b)(17, 23) = bad;
      const Solution solution = solve(pair);
      EXPECT_EQ(solution.ierr, 40);
    }
  EXPECT_EQ(solve({Matrix::of_rows({{kNaN, 1}, {1, 1}}), Matrix::identity(2)}).ierr, 0)
      << "order two needs no iteration";

  const Matrix before = Matrix::random(40, 1);
  Matrix a = before;
  std::vector<double> b(a.values.size(), kNaN);
  const std::int32_t n = 40;
  const std::int32_t matz = 0;
  const double eps1 = 0.0;
  std::int32_t ierr = 0;
  QDL_QZITT(&n, &n, a.values.data(), b.data(), &eps1, &matz, nullptr, &ierr);
  EXPECT_EQ(ierr, 40);
  EXPECT_EQ(a.values, before.values) << "no step is made";
}

// Every number solves a pair that is singular as a whole; no eigenvalue is right or wrong.
TEST(EigenSolver, SurvivesACommonNullVector) {
  std::vector<Pair> pairs = {{Matrix(4), Matrix(4)}};
  for (const Index order : {2, 3, 10})
    pairs.push_back(congruent(half_zero(order), half_zero(order), 70));
  // A complex pair beside an eigenvalue 0 / 0.
  pairs.push_back(
      {Matrix::of_rows({{1, -1, 3}, {1, 1, 4}, {0, 0, 0}}), Matrix::diagonal({1, 1, 0})});
  for (const Pair &pair : pairs) {
    const Solution solution = solve(pair);
    EXPECT_EQ(solution.ierr, 0);
    for (const auto *values : {&solution.alfr, &solution.alfi, &solution.beta, &solution.z.values})
      EXPECT_TRUE(std::ranges::all_of(*values, [](double x) { return std::isfinite(x); }));
  }
  EXPECT_EQ(solve(pairs[0]).beta, std::vector<double>(4, 0.0));
}

TEST(EigenSolver, DoesNothingBelowOrderOne) {
  for (const std::int32_t n : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    const std::int32_t matz = 1;
    const double eps1 = 0.0;
    std::int32_t ierr = -1;
    QDL_QZHESS(&n, &n, nullptr, nullptr, &matz, nullptr);
    QDL_QZITT(&n, &n, nullptr, nullptr, &eps1, &matz, nullptr, &ierr);
    QDL_QZVALL(&n, &n, nullptr, nullptr, nullptr, nullptr, nullptr, &matz, nullptr);
    QDL_QZVECC(&n, &n, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(ierr, 0);
  }
}

// The first stage alone: Z is orthogonal, A Hessenberg, B triangular, and neither Frobenius norm
// changes under orthogonal transformations.
TEST(EigenSolver, ReducesToHessenbergAndTriangularForm) {
  const Pair pair{Matrix::random(17, 1), Matrix::random(17, 2)};
  Matrix a = pair.a;
  Matrix b = pair.b;
  Matrix z(17);
  const std::int32_t n = 17;
  const std::int32_t matz = 1;
  QDL_QZHESS(&n, &n, a.values.data(), b.values.data(), &matz, z.values.data());
  const Matrix product = z.transposed() * z;
  for (Index j = 0; j < n; ++j)
    for (Index i = 0; i < n; ++i) {
      EXPECT_NEAR(product(i, j), i == j ? 1.0 : 0.0, 1e-14);
      EXPECT_TRUE(i <= j || b(i, j) == 0.0);
      EXPECT_TRUE(i <= j + 1 || a(i, j) == 0.0);
    }
  EXPECT_NEAR(a.norm(), pair.a.norm(), 1e-14 * 17);
  EXPECT_NEAR(b.norm(), pair.b.norm(), 1e-14 * 17);
  // (A Z) and (B Z) were multiplied by the same orthogonal matrix from the left.
  const Matrix before = (pair.a * z).transposed() * (pair.b * z);
  const Matrix after = a.transposed() * b;
  for (std::size_t i = 0; i < before.values.size(); ++i)
    EXPECT_NEAR(after.values[i], before.values[i], 1e-13);
}

}  // namespace
