#include "geometry/matrix3.h"

#include <algorithm>
#include <cmath>

#include <qdlflex/qdlflex.h>

namespace qdlflex {

Matrix3 transposed(const Matrix3 &matrix) {
  return {matrix[0], matrix[3], matrix[6], matrix[1], matrix[4],
          matrix[7], matrix[2], matrix[5], matrix[8]};
}

double determinant(const Matrix3 &matrix) {
  return matrix[0] * (matrix[4] * matrix[8] - matrix[5] * matrix[7]) -
         matrix[1] * (matrix[3] * matrix[8] - matrix[5] * matrix[6]) +
         matrix[2] * (matrix[3] * matrix[7] - matrix[4] * matrix[6]);
}

Vector3 scaled_direction(const Vector3 &direction) {
  double largest = 0.0;
  for (const double value : direction)
    largest = std::max(largest, std::fabs(value));
  Vector3 scaled = direction;
  if (largest > 0.0 && std::isfinite(largest)) {
    for (double &value : scaled)
      value = std::scalbn(value, -std::ilogb(largest));
  }
  return scaled;
}

double length_of(const Vector3 &vector) {
  return std::hypot(vector[0], vector[1], vector[2]);
}

}  // namespace qdlflex

using namespace qdlflex;

void Matrix_Multiply(const double *A, const double *B, double *C) {
  if (A == nullptr || B == nullptr || C == nullptr)
    return;
  Matrix3 product{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c)
      product[3 * row + c] =
          A[3 * row] * B[c] + A[3 * row + 1] * B[3 + c] + A[3 * row + 2] * B[6 + c];
  }
  std::ranges::copy(product, C);
}

void Vector_Transform(double *v, const double *M, int32_t s) {
  if (v == nullptr || M == nullptr)
    return;
  Matrix3 matrix{};
  std::copy_n(M, matrix.size(), matrix.begin());
  turn_vector(matrix, v);
  for (int c = 0; c < 3; ++c)
    v[c] *= s;
}

void Tensor_Transform(double *T, const double *M, int32_t s) {
  if (T == nullptr || M == nullptr)
    return;
  Matrix3 matrix{};
  std::copy_n(M, matrix.size(), matrix.begin());
  turn_tensor(matrix, T);
  for (int i = 0; s == -1 && i < 9; ++i)
    T[i] = -T[i];
}

void Move_Vector(double *v, const double *d) {
  if (v == nullptr || d == nullptr)
    return;
  for (int c = 0; c < 3; ++c)
    v[c] += d[c];
}
