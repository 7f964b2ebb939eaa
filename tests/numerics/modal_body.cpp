#include "numerics/modal_body.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace qdltest {

namespace {

std::int32_t number_of(QDL_Record *model, Index mode) {
  return QDL_ModeNumber(model, static_cast<std::int32_t>(mode));
}

}  // namespace

void set_matrices(QDL_Record *model, const Pair &pair) {
  for (Index column = 0; column < pair.a.order; ++column)
    for (Index row = 0; row <= column; ++row) {
      const std::int32_t i = number_of(model, row);
      const std::int32_t j = number_of(model, column);
      if (pair.a(row, column) != 0.0) {
        ASSERT_EQ(QDL_SetGeneralizedStiffness(model, i, j, pair.a(row, column)), 1);
      }
      if (pair.b(row, column) != 0.0) {
        ASSERT_EQ(QDL_SetGeneralizedMass(model, i, j, pair.b(row, column)), 1);
      }
    }
}

QDL_Record *with_modes(std::int32_t count) {
  QDL_Record *model = QDL_Create(0, count);
  for (std::int32_t mode = 1; mode <= count; ++mode)
    QDL_AddMode(model, 10 * mode);
  return model;
}

QDL_Record *ModalBody::body(const Pair &pair) {
  constexpr std::int32_t kNodes = 2;
  const auto modes = static_cast<std::int32_t>(pair.a.order);
  QDL_Record *model = QDL_Create(kNodes, modes);
  const Matrix shapes = Matrix::random(std::max<Index>(pair.a.order, 12), 99);
  for (std::int32_t mode = 0; mode < modes; ++mode)
    for (std::int32_t node = 0; node < kNodes; ++node)
      EXPECT_EQ(QDL_SetModeVec(model, 11 + mode, 1 + node, QDL_MODE_SHAPE,
                               &shapes.values[static_cast<std::size_t>(12 * mode + 6 * node)]),
                1);
  set_matrices(model, pair);
  return model;
}

std::vector<Values> modes_of(QDL_Record *model, std::int32_t kind) {
  std::vector<Values> modes;
  const auto nodes = static_cast<std::size_t>(QDL_ModeNodeCount(model, kind));
  for (std::int32_t mode = 0; mode < QDL_ModeCount(model); ++mode) {
    Values six;
    for (const std::int32_t part : {0, 1}) {
      Values half(3 * nodes);
      EXPECT_EQ(QDL_Mode(model, QDL_ModeNumber(model, mode), kind, half.data(), part), 1);
      six.insert(six.end(), half.begin(), half.end());
    }
    modes.push_back(six);
  }
  return modes;
}

Matrix transformation_of(QDL_Record *model) {
  Matrix rows(QDL_ModeCount(model));
  EXPECT_EQ(QDL_Transformation(model, rows.values.data()), 1);
  return rows.transposed();
}

std::vector<Values> combined(const std::vector<Values> &old, const Matrix &t, std::size_t count) {
  std::vector<Values> result;
  for (std::size_t k = 0; k < count; ++k) {
    Values sum(old.front().size());
    for (std::size_t a = 0; a < old.size(); ++a)
      for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += t(static_cast<Index>(a), static_cast<Index>(k)) * old[a][i];
    result.push_back(sum);
  }
  return result;
}

Values eigenvalues_of(QDL_Record *model) {
  Values values;
  for (std::int32_t mode = 0; mode < QDL_ModeCount(model); ++mode) {
    double value = std::nan("");
    EXPECT_EQ(QDL_Eigenvalue(model, QDL_ModeNumber(model, mode), &value, nullptr, nullptr, nullptr,
                             nullptr),
              1);
    values.push_back(value);
  }
  return values;
}

double mass_error(const Matrix &mass, const Matrix &t) {
  const Matrix product = t.transposed() * (mass * t);
  double largest = 0.0;
  for (Index j = 0; j < product.order; ++j)
    for (Index i = 0; i < product.order; ++i)
      largest = std::max(largest, std::fabs(product(i, j) - (i == j ? 1.0 : 0.0)));
  return largest;
}

double stiffness_error(const Matrix &stiffness, const Matrix &t, const Values &eigenvalues) {
  const Matrix product = t.transposed() * (stiffness * t);
  const double scale = std::fabs(
      *std::ranges::max_element(eigenvalues, {}, [](double value) { return std::fabs(value); }));
  double largest = 0.0;
  for (Index j = 0; j < product.order; ++j)
    for (Index i = 0; i < product.order; ++i) {
      const double wanted = i == j ? eigenvalues[static_cast<std::size_t>(i)] : 0.0;
      largest = std::max(largest, std::fabs(product(i, j) - wanted));
    }
  return largest / scale;
}

void expect_near(const Values &got, const Values &wanted, double tolerance) {
  ASSERT_EQ(got.size(), wanted.size());
  for (std::size_t i = 0; i < got.size(); ++i)
    EXPECT_NEAR(got[i], wanted[i], tolerance) << "at " << i;
}

}  // namespace qdltest
