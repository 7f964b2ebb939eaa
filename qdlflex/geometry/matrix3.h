#pragma once

#include <cstddef>

#include "geometry/vector3.h"
#include "record/record.h"

namespace qdlflex {

// Vectors and tensors under a 3 x 3 matrix, as an orthogonal one re-expresses them in a new frame.

Matrix3 transposed(const Matrix3 &matrix);
double determinant(const Matrix3 &matrix);

/// Brings the components within the range where their squares neither overflow nor vanish, without
/// rounding. Only the direction of the vector stays.
Vector3 scaled_direction(const Vector3 &direction);
double length_of(const Vector3 &vector);

inline bool is_mirror(const Matrix3 &matrix) {
  return determinant(matrix) < 0.0;
}

inline Vector3 cross(const Vector3 &a, const Vector3 &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// v becomes M^T v.
inline void turn_vector(const Matrix3 &matrix, double *v) {
  const double x = v[0];
  const double y = v[1];
  const double z = v[2];
  for (std::size_t c = 0; c < 3; ++c)
    v[c] = matrix[c] * x + matrix[3 + c] * y + matrix[6 + c] * z;
}

/// T becomes M^T T M.
inline void turn_tensor(const Matrix3 &matrix, double *tensor) {
  Matrix3 right{};  // T M
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c) {
      right[3 * row + c] = tensor[3 * row] * matrix[c] + tensor[3 * row + 1] * matrix[3 + c] +
                           tensor[3 * row + 2] * matrix[6 + c];
    }
  }
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t c = 0; c < 3; ++c) {
      tensor[3 * row + c] =
          matrix[row] * right[c] + matrix[3 + row] * right[3 + c] + matrix[6 + row] * right[6 + c];
    }
  }
}

/// The same for a symmetric tensor given as xx, yy, zz, xy, xz, yz.
inline void turn_symmetric(const Matrix3 &matrix, Vector6 &six) {
  Matrix3 tensor = symmetric_matrix(six);
  turn_tensor(matrix, tensor.data());
  six = {tensor[0], tensor[4], tensor[8], tensor[1], tensor[2], tensor[5]};
}

}  // namespace qdlflex
