#pragma once

#include "record/record.h"

namespace qdlflex {

inline Vector3 difference(const Vector3 &a, const Vector3 &b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline double dot(const Vector3 &a, const Vector3 &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

}  // namespace qdlflex
