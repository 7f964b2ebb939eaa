// First stage of the solver of A x = lambda B x: A becomes upper Hessenberg, B upper triangular.
//
// The four stages follow the QZ algorithm of C. B. Moler and G. W. Stewart, "An algorithm for
// generalized matrix eigenvalue problems", SIAM Journal on Numerical Analysis 10 (1973) 241-256,
// with the single and double shifts of R. C. Ward, "The combination shift QZ algorithm", SIAM
// Journal on Numerical Analysis 12 (1975) 835-853.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "numerics/qz_pencil.h"
#include "numerics/qz_reflections.h"

namespace qdlflex::qz {
namespace {

void set_identity(const Matrix &matrix, Index order) {
  for (Index column = 0; column < order; ++column) {
    std::fill_n(matrix.at(0, column), order, 0.0);
    matrix(column, column) = 1.0;
  }
}

/// Subtracts w (w . x) / rho from `kColumns` columns x. Every product sums its terms one after the
/// other; that of several columns is formed at once because they do not wait for each other.
template <Index kColumns>
void subtract_projection(const double *w, Index count, double rho, double *first, Index stride) {
  std::array<double, kColumns> factor{};
  for (Index i = 0; i < count; ++i)
    for (Index column = 0; column < kColumns; ++column)
      factor[static_cast<std::size_t>(column)] += w[i] * first[column * stride + i];
  for (Index column = 0; column < kColumns; ++column) {
    const double t = -factor[static_cast<std::size_t>(column)] / rho;
    for (Index i = 0; i < count; ++i)
      first[column * stride + i] += t * w[i];
  }
}

/// The same for columns `begin` up to `end`, from row `row` down.
void subtract_projections(const double *w, Index count, double rho, const Matrix &matrix, Index row,
                          Index begin, Index end) {
  constexpr Index kTogether = 8;
  Index column = begin;
  for (; column + kTogether <= end; column += kTogether)
    subtract_projection<kTogether>(w, count, rho, matrix.at(row, column), matrix.stride);
  for (; column < end; ++column)
    subtract_projection<1>(w, count, rho, matrix.at(row, column), matrix.stride);
}

/// Householder reflection from the left that clears column `l` of B below the diagonal. The column
/// itself holds the vector meanwhile.
void clear_column(const Pencil &pencil, Index l) {
  const Index count = pencil.order - l;
  double *w = pencil.b.at(l, l);
  double scale = 0.0;
  for (Index i = 1; i < count; ++i)
    scale += std::fabs(w[i]);
  if (scale == 0.0)
    return;

  scale += std::fabs(w[0]);
  double square = 0.0;
  for (Index i = 0; i < count; ++i) {
    w[i] /= scale;
    square += w[i] * w[i];
  }
  const double length = std::copysign(std::sqrt(square), w[0]);
  w[0] += length;
  const double rho = length * w[0];
  subtract_projections(w, count, rho, pencil.b, l, l + 1, pencil.order);
  subtract_projections(w, count, rho, pencil.a, l, 0, pencil.order);

  w[0] = -scale * length;
  std::fill(w + 1, w + count, 0.0);
}

/// Clears element (l + 1, k) of A from the left and, where that fills B below the diagonal, element
/// (l + 1, l) of B from the right.
void clear_element(const Pencil &pencil, Index l, Index k) {
  const auto &[order, a, b, z] = pencil;
  const auto left = reflection(a(l, k), a(l + 1, k));
  if (!left)
    return;
  reflect_rows(*left, a, l, k, l);
  reflect_rows(*left, pencil, l, l, order);
  a(l + 1, k) = 0.0;

  const auto right = reflection(b(l + 1, l + 1), b(l + 1, l));
  if (!right)
    return;
  reflect_columns(*right, b, l, 0, l + 2);
  reflect_columns(*right, a, l, 0, order);
  if (pencil.has_z())
    reflect_columns(*right, z, l, 0, order);
  b(l + 1, l) = 0.0;
}

void reduce_to_hessenberg(const Pencil &pencil) {
  if (pencil.has_z())
    set_identity(pencil.z, pencil.order);
  for (Index l = 0; l < pencil.order - 1; ++l)
    clear_column(pencil, l);
  for (Index k = 0; k < pencil.order - 2; ++k)
    for (Index l = pencil.order - 2; l > k; --l)
      clear_element(pencil, l, k);
}

}  // namespace
}  // namespace qdlflex::qz

using namespace qdlflex::qz;

void QDL_QZHESS(const int32_t *nm, const int32_t *n, double *a, double *b, const int32_t *matz,
                double *z) {
  if (*n < 1)
    return;
  const WorkingPencil work(*nm, *n, a, b, *matz != 0 ? z : nullptr,
                           WorkingMatrix::Content::kOverwrite);
  reduce_to_hessenberg(work.pencil());
}
