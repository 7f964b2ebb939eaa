#include "numerics/qz_reflections.h"

#include <cmath>

#include "support/vector_clones.h"

namespace qdlflex::qz {

std::optional<Reflection2> reflection(double x, double y) {
  const double scale = std::fabs(x) + std::fabs(y);
  if (scale == 0.0)
    return std::nullopt;
  const double u1 = x / scale;
  const double u2 = y / scale;
  const double rho = std::copysign(std::sqrt(u1 * u1 + u2 * u2), u1);
  const double v1 = -(u1 + rho) / rho;
  const double v2 = -u2 / rho;
  return Reflection2{v2 / v1, v1, v2};
}

std::optional<Reflection3> reflection(double x, double y, double z) {
  const double scale = std::fabs(x) + std::fabs(y) + std::fabs(z);
  if (scale == 0.0)
    return std::nullopt;
  const double u1 = x / scale;
  const double u2 = y / scale;
  const double u3 = z / scale;
  const double rho = std::copysign(std::sqrt(u1 * u1 + u2 * u2 + u3 * u3), u1);
  const double v1 = -(u1 + rho) / rho;
  const double v2 = -u2 / rho;
  const double v3 = -u3 / rho;
  return Reflection3{v2 / v1, v3 / v1, v1, v2, v3};
}

namespace {

inline void apply(const Reflection2 &h, double &p, double &q) {
  const double t = p + h.g * q;
  p += t * h.v1;
  q += t * h.v2;
}

inline void apply(const Reflection3 &h, double &p, double &q, double &r) {
  const double t = p + h.g2 * q + h.g3 * r;
  p += t * h.v1;
  q += t * h.v2;
  r += t * h.v3;
}

// Most of the solver's time goes into these and the loops over rows below.

QDLFLEX_VECTOR_CLONES void apply_to_all(const Reflection2 &reflection, double *__restrict p,
                                        double *__restrict q, Index count) {
  const Reflection2 h = reflection;
  for (Index i = 0; i < count; ++i)
    apply(h, p[i], q[i]);
}

QDLFLEX_VECTOR_CLONES void apply_to_all(const Reflection3 &reflection, double *__restrict p,
                                        double *__restrict q, double *__restrict r, Index count) {
  const Reflection3 h = reflection;
  for (Index i = 0; i < count; ++i)
    apply(h, p[i], q[i], r[i]);
}

}  // namespace

void reflect_columns(const Reflection2 &reflection, const Matrix &matrix, Index column, Index begin,
                     Index end) {
  apply_to_all(reflection, matrix.at(begin, column + 1), matrix.at(begin, column), end - begin);
}

void reflect_columns(const Reflection3 &reflection, const Matrix &matrix, Index column, Index begin,
                     Index end) {
  apply_to_all(reflection, matrix.at(begin, column + 2), matrix.at(begin, column + 1),
               matrix.at(begin, column), end - begin);
}

void reflect_rows(const Reflection2 &reflection, const Matrix &matrix, Index row, Index begin,
                  Index end) {
  const Reflection2 h = reflection;
  for (Index j = begin; j < end; ++j) {
    double *p = matrix.at(row, j);
    apply(h, p[0], p[1]);
  }
}

void reflect_rows(const Reflection2 &reflection, const Pencil &pencil, Index row, Index begin,
                  Index end) {
  const Reflection2 h = reflection;
  for (Index j = begin; j < end; ++j) {
    double *p = pencil.a.at(row, j);
    double *q = pencil.b.at(row, j);
    apply(h, p[0], p[1]);
    apply(h, q[0], q[1]);
  }
}

void reflect_rows(const Reflection3 &reflection, const Pencil &pencil, Index row, Index begin,
                  Index end) {
  const Reflection3 h = reflection;
  for (Index j = begin; j < end; ++j) {
    double *p = pencil.a.at(row, j);
    double *q = pencil.b.at(row, j);
    apply(h, p[0], p[1], p[2]);
    apply(h, q[0], q[1], q[2]);
  }
}

}  // namespace qdlflex::qz
