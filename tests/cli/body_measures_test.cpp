// The numerical side of `qdlflex check`.

#include "body_measures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "nodal_metric.h"
#include "record.h"

using namespace qdlflex::cli;

TEST(BodyMeasuresTest, PrincipalValuesAscend) {
  const auto expect = [](const Matrix3 &matrix, const Vector3 &expected) {
    const Vector3 values = principal_values(matrix);
    for (size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(values[k], expected[k], 1e-14 * std::fabs(expected[2]));
    }
  };
  expect({5, 0, 0, 0, 2, 1, 0, 1, 2}, {1, 3, 5});
  expect({2, 1, 1, 1, 2, 1, 1, 1, 2}, {1, 1, 4});
  expect({1e9, 1e3, 0, 1e3, 1e-3, 0, 0, 0, 1}, {1e-3 - 1e-3, 1, 1e9 + 1e-3});
  EXPECT_TRUE(std::isnan(principal_values({1, 0, 0, 0, NAN, 0, 0, 0, 1})[0]));
}

TEST(BodyMeasuresTest, LeftOverIsTheSineOfTheAngle) {
  // Of (1, 0, 0), (2, 0, 0), (1, 1, 0), (0, 0, 3) and nothing, the first two span a line.
  const std::vector<double> products = {1, 2, 1, 0, 0, 2, 4, 2, 0, 0, 1, 2, 2,
                                        0, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0};
  const std::vector<double> left = left_over(products, 0, 2);
  EXPECT_EQ(left[0], 0.0);
  EXPECT_NEAR(left[2], std::sqrt(0.5), 1e-15);
  EXPECT_EQ(left[3], 1.0);
  EXPECT_TRUE(std::isnan(left[4]));
}

TEST(BodyMeasuresTest, CouplingIsRelativeToTheDiagonal) {
  const std::vector<double> matrix = {4, 0, 1, 0, 1e-9, 1e-9, 1, 1e-9, 2};
  EXPECT_EQ(coupling(matrix, 3, 0.0), 0.25);
  const std::vector<double> rigid = {1e-9, 1e-8, 0, 1e-8, 1e-9, 0, 0, 0, 100};
  EXPECT_NEAR(coupling(rigid, 3, 0.0), 10.0, 1e-12);
  EXPECT_NEAR(coupling(rigid, 3, 1e-6), 1e-4, 1e-16);
}

TEST(BodyMeasuresTest, EffectiveMassesShareTheWhole) {
  // A mass of 4 on a line along x; one mode moves half of it.
  const EffectiveMasses masses =
      effective_masses(4.0, {0, 0, 0, 0, 6, 0, 0, 0, 6}, {{2.0, {2, 0, 0}, {0, 0, 3}}});
  EXPECT_DOUBLE_EQ(masses.sums[0], 4.0 / 2.0 / 4.0);
  EXPECT_DOUBLE_EQ(masses.sums[5], 9.0 / 2.0 / 6.0);
  EXPECT_TRUE(std::isnan(masses.sums[3]));
}

TEST(BodyMeasuresTest, ProductsAreTheSameInBlocksOfAnySize) {
  const Record record(QDL_Create(2, 3));
  for (int32_t node = 1; node <= 2; ++node) {
    QDL_SetNodalMass(record.get(), node, node);
    QDL_SetNodeCoordinates(record.get(), node, node, 0, 0);
    for (int32_t mode = 1; mode <= 3; ++mode) {
      const double v = mode * node;
      QDL_SetMode(record.get(), mode, node, QDL_MODE_SHAPE, v, -v, 1.0, 0.5 * mode, 0, 0);
    }
  }
  QDL_SetNodalInertia(record.get(), 2, 4, 0, 0, 0, 0, 0);
  const NodalMetric metric(record.get(), NodalMetric::Weights::kMasses);
  for (const size_t memory : {size_t{0}, 2 * 8 * metric.size(), kMotionMemory}) {
    int calls = 0;
    for_each_product(
        metric, 3, [&](size_t k) { return metric.mode(static_cast<int32_t>(k) + 1); },
        [&](size_t i, size_t k, double product) {
          ++calls;
          // Masses 1 and 2, then the rotary inertia 4 of half a radian each.
          const auto a = static_cast<double>(i + 1);
          const auto b = static_cast<double>(k + 1);
          EXPECT_DOUBLE_EQ(product, (2 * a * b + 1) + 2 * (8 * a * b + 1) + a * b);
        },
        memory);
    EXPECT_EQ(calls, 6);
  }
}
