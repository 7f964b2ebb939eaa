// The 3 x 3 helpers of the interface.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<double, 9>;

constexpr Matrix kA = {1, 2, 3, 4, 5, 6, 7, 8, 10};
constexpr Matrix kB = {0, 1, -1, 2, 0, 3, 1, 1, 1};
constexpr Matrix kProduct = {7, 4, 8, 16, 10, 17, 26, 17, 27};
constexpr Matrix kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

TEST(MatrixHelpers, MultiplyIntoAnyOfTheMatrices) {
  Matrix c{};
  Matrix_Multiply(kA.data(), kB.data(), c.data());
  EXPECT_EQ(c, kProduct);
  Matrix a = kA;
  Matrix_Multiply(a.data(), kB.data(), a.data());
  EXPECT_EQ(a, kProduct);
  Matrix b = kB;
  Matrix_Multiply(kA.data(), b.data(), b.data());
  EXPECT_EQ(b, kProduct);
  Matrix square = kB;
  Matrix_Multiply(square.data(), square.data(), square.data());
  EXPECT_EQ(square, (Matrix{1, -1, 2, 3, 5, 1, 3, 2, 3}));
}

TEST(MatrixHelpers, TransformVectorsByTheTransposeTimesAnyFactor) {
  Vector v = {1, -1, 2};
  Vector_Transform(v.data(), kA.data(), 1);
  EXPECT_EQ(v, (Vector{11, 13, 17}));
  Vector_Transform(v.data(), kIdentity.data(), -1);
  EXPECT_EQ(v, (Vector{-11, -13, -17}));
  Vector_Transform(v.data(), kIdentity.data(), 2);
  EXPECT_EQ(v, (Vector{-22, -26, -34}));
  Vector_Transform(v.data(), kA.data(), 0);
  EXPECT_EQ(v, (Vector{0, 0, 0}));
}

// The first index stands for the rows of the matrix, so that a tensor which is not symmetric tells
// the transpose from the matrix.
TEST(MatrixHelpers, TransformTensorsFromBothSidesNegatedForMinusOneOnly) {
  const Matrix expected = {11, 11, 9, 5, 6, 2, 12, 13, 10};
  for (const int sign : {1, 0, 2, -1}) {
    Matrix t = {1, 2, 0, 0, 1, 3, 4, 0, 1};
    Tensor_Transform(t.data(), kB.data(), sign);
    for (std::size_t i = 0; i < 9; ++i)
      EXPECT_EQ(t[i], sign == -1 ? -expected[i] : expected[i]) << "entry " << i << " of " << sign;
  }
}

TEST(MatrixHelpers, MoveVectorsAndLeaveNullPointersAlone) {
  Vector v = {1, 2, 3};
  const Vector d = {0.5, -2, 4};
  Move_Vector(v.data(), d.data());
  EXPECT_EQ(v, (Vector{1.5, 0, 7}));
  Move_Vector(nullptr, d.data());
  Move_Vector(v.data(), nullptr);
  Vector_Transform(nullptr, kA.data(), 1);
  Vector_Transform(v.data(), nullptr, 1);
  Tensor_Transform(nullptr, kA.data(), 1);
  Matrix_Multiply(kA.data(), nullptr, v.data());
  EXPECT_EQ(v, (Vector{1.5, 0, 7}));
}

}  // namespace
