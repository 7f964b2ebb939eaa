// Last stage of the solver (see qz_hessenberg.cpp for the papers): eigenvectors of the triangular
// pair by back substitution, carried back by Z.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

#include "numerics/qz_pencil.h"
#include "support/vector_clones.h"

namespace qdlflex::qz {
namespace {

using Complex = std::complex<double>;

double quotient(double dividend, double divisor) {
  return dividend / divisor;
}

/// Division that does not overflow on the way: the larger component of the divisor is divided out.
Complex quotient(Complex dividend, Complex divisor) {
  const auto [a, b] = std::array{dividend.real(), dividend.imag()};
  const auto [c, d] = std::array{divisor.real(), divisor.imag()};
  if (std::fabs(c) >= std::fabs(d)) {
    const double ratio = d / c;
    const double scale = c + d * ratio;
    return {(a + b * ratio) / scale, (b - a * ratio) / scale};
  }
  const double ratio = c / d;
  const double scale = d + c * ratio;
  return {(a * ratio + b) / scale, (b * ratio - a) / scale};
}

/// sums += (beta a - alpha b) x, element by element.
QDLFLEX_VECTOR_CLONES void add_column(double *__restrict sums, const double *__restrict a,
                                      const double *__restrict b, Index count, double alpha,
                                      double beta, double x) {
  for (Index i = 0; i < count; ++i)
    sums[i] += (beta * a[i] - alpha * b[i]) * x;
}

QDLFLEX_VECTOR_CLONES void add_column(double *__restrict real_sums, double *__restrict imag_sums,
                                      const double *__restrict a, const double *__restrict b,
                                      Index count, Complex alpha, double beta, Complex x) {
  const double alpha_real = alpha.real();
  const double alpha_imag = alpha.imag();
  const double x_real = x.real();
  const double x_imag = x.imag();
  for (Index i = 0; i < count; ++i) {
    const double real = beta * a[i] - alpha_real * b[i];
    const double imag = alpha_imag * b[i];
    real_sums[i] += real * x_real + imag * x_imag;
    imag_sums[i] += real * x_imag - imag * x_real;
  }
}

/// Solves (beta A - alpha B) x = 0 for one eigenvalue alpha / beta, from a known last component (or
/// two) upwards. The vector grows in columns of B that are no longer needed: above the components
/// that are known these hold the sums of what is known, times the coefficients of the row.
template <class Scalar>
class Substitution {
 public:
  Substitution(const Pencil &pencil, double b_tolerance, Scalar alpha, double beta, Index column)
      : pencil_(pencil), b_tolerance_(b_tolerance), alpha_(alpha), beta_(beta), column_(column) {}

  void solve();

 private:
  Scalar coefficient(Index i, Index j) const {
    return beta_ * pencil_.a(i, j) - alpha_ * pencil_.b(i, j);
  }
  Scalar nonzero(Scalar value) const { return value == 0.0 ? Scalar(b_tolerance_) : value; }

  Scalar get(Index i) const;
  void set(Index i, Scalar value);
  void add(Index j, Index count, Scalar x);
  Index start();
  void solve_row(Index i);
  void solve_block(Index i);

  const Pencil &pencil_;
  double b_tolerance_;
  Scalar alpha_;
  double beta_;
  Index column_;  // of a complex vector, the one with the real parts; the imaginary parts follow
};

template <>
double Substitution<double>::get(Index i) const {
  return pencil_.b(i, column_);
}

template <>
Complex Substitution<Complex>::get(Index i) const {
  return {pencil_.b(i, column_), pencil_.b(i, column_ + 1)};
}

template <>
void Substitution<double>::set(Index i, double value) {
  pencil_.b(i, column_) = value;
}

template <>
void Substitution<Complex>::set(Index i, Complex value) {
  pencil_.b(i, column_) = value.real();
  pencil_.b(i, column_ + 1) = value.imag();
}

/// Adds column j of the coefficients times x to the sums of rows 0 up to `count`.
template <>
void Substitution<double>::add(Index j, Index count, double x) {
  add_column(pencil_.b.at(0, column_), pencil_.a.at(0, j), pencil_.b.at(0, j), count, alpha_, beta_,
             x);
}

template <>
void Substitution<Complex>::add(Index j, Index count, Complex x) {
  add_column(pencil_.b.at(0, column_), pencil_.b.at(0, column_ + 1), pencil_.a.at(0, j),
             pencil_.b.at(0, j), count, alpha_, beta_, x);
}

/// Sets the last component and the sums that follow from it; returns the number of rows to solve.
template <>
Index Substitution<double>::start() {
  for (Index i = 0; i < column_; ++i)
    set(i, coefficient(i, column_));
  set(column_, 1.0);
  return column_;
}

template <>
Index Substitution<Complex>::start() {
  const auto &[order, a, b, z] = pencil_;
  const Index next = column_ + 1;
  const double y = beta_ * a(next, column_);
  const double b_last = b(next, next);
  const Complex x(-alpha_.imag() * b_last / y,
                  (alpha_.real() * b_last - beta_ * a(next, next)) / y);
  const Complex x_last(0.0, 1.0);
  for (Index i = 0; i < column_; ++i)
    set(i, coefficient(i, next) * x_last + coefficient(i, column_) * x);
  set(column_, x);
  set(next, x_last);
  return column_;
}

template <class Scalar>
void Substitution<Scalar>::solve() {
  Index rows = start();
  while (rows > 0) {
    const Index i = rows - 1;
    if (i == 0 || pencil_.a(i, i - 1) == 0.0) {
      solve_row(i);
      rows -= 1;
    } else {
      solve_block(i - 1);
      rows -= 2;
    }
    for (Index j = i; j >= rows; --j)
      add(j, rows, get(j));
  }
}

template <class Scalar>
void Substitution<Scalar>::solve_row(Index i) {
  set(i, quotient(-get(i), nonzero(coefficient(i, i))));
}

template <>
void Substitution<double>::solve_block(Index i) {
  const double w = coefficient(i, i);
  const double x = coefficient(i, i + 1);
  const double y = beta_ * pencil_.a(i + 1, i);
  // Both are zero where the eigenvalue is also one of the block, which rounding left whole.
  double v = coefficient(i + 1, i + 1);
  v = x == 0.0 ? nonzero(v) : v;
  const double r = get(i);
  const double s = get(i + 1);
  const double upper = (x * s - v * r) / nonzero(w * v - x * y);
  const double lower = std::fabs(x) <= std::fabs(v) ? (-s - y * upper) / v : (-r - w * upper) / x;
  set(i, upper);
  set(i + 1, lower);
}

template <>
void Substitution<Complex>::solve_block(Index i) {
  const Complex w = coefficient(i, i);
  const Complex x = coefficient(i, i + 1);
  const double y = beta_ * pencil_.a(i + 1, i);
  const Complex v = coefficient(i + 1, i + 1);
  const Complex r = get(i);
  const Complex s = get(i + 1);
  const Complex lower = quotient(y * r - w * s, nonzero(w * v - x * y));
  const Complex upper = std::fabs(y) > std::fabs(w.real()) + std::fabs(w.imag())
                            ? (-s - v * lower) / y
                            : quotient(-r - x * lower, w);
  set(i, upper);
  set(i + 1, lower);
}

constexpr Index kTileColumns = 4;

/// One tile of Z V: `kRows` rows of Z and the columns `begin` up to `begin` + kTileColumns (those
/// from `end` on are left out). Columns to the right are done, the others not yet.
template <Index kRows>
inline void multiply_tile(double *z, Index z_stride, const Matrix &v, Index begin, Index end) {
  double sums[kTileColumns][kRows] = {};
  for (Index k = 0; k < begin; ++k)
    for (Index c = 0; c < kTileColumns; ++c)
      for (Index row = 0; row < kRows; ++row)
        sums[c][row] += z[k * z_stride + row] * v(k, begin + c);
  for (Index c = 0; c < end - begin; ++c)
    for (Index k = begin; k <= begin + c; ++k)
      for (Index row = 0; row < kRows; ++row)
        sums[c][row] += z[k * z_stride + row] * v(k, begin + c);
  for (Index c = 0; c < end - begin; ++c)
    for (Index row = 0; row < kRows; ++row)
      z[(begin + c) * z_stride + row] = sums[c][row];
}

template <Index kRows>
inline void multiply_rows(double *z, Index z_stride, const Matrix &v, Index order) {
  for (Index end = order; end > 0; end -= kTileColumns)
    multiply_tile<kRows>(z, z_stride, v, std::max<Index>(end - kTileColumns, 0), end);
}

/// Z becomes Z V, where V is upper triangular.
QDLFLEX_VECTOR_CLONES void multiply_by_triangle(const Matrix &z, const Matrix &v, Index order) {
  constexpr Index kTileRows = 8;
  Index row = 0;
  for (; row + kTileRows <= order; row += kTileRows)
    multiply_rows<kTileRows>(z.at(row, 0), z.stride, v, order);
  for (; row < order; ++row)
    multiply_rows<1>(z.at(row, 0), z.stride, v, order);
}

/// Divides by the largest magnitude, which becomes 1.
void normalize(double *vector, Index count) {
  double largest = 0.0;
  for (Index i = 0; i < count; ++i)
    largest = std::max(largest, std::fabs(vector[i]));
  for (Index i = 0; i < count; ++i)
    vector[i] /= largest;
}

void normalize(double *real, double *imag, Index count) {
  double largest = 0.0;
  for (Index i = 0; i < count; ++i)
    largest = std::max(largest, std::hypot(real[i], imag[i]));
  for (Index i = 0; i < count; ++i) {
    real[i] /= largest;
    imag[i] /= largest;
  }
}

class Vectors {
 public:
  Vectors(const Pencil &pencil, const double *alfr, const double *alfi, const double *beta)
      : pencil_(pencil), alfr_(alfr), alfi_(alfi), beta_(beta) {}

  /// Eigenvectors of the triangular pair, in the columns of B.
  void substitute(double b_tolerance) const;
  void normalize_all() const;

 private:
  /// Whether column `last` belongs to the second eigenvalue of a complex pair.
  bool ends_pair(Index last) const { return last > 0 && alfi_[last] != 0.0; }

  const Pencil &pencil_;
  const double *alfr_;
  const double *alfi_;
  const double *beta_;
};

void Vectors::substitute(double b_tolerance) const {
  for (Index last = pencil_.order - 1; last >= 0; --last) {
    if (!ends_pair(last)) {
      Substitution<double>(pencil_, b_tolerance, alfr_[last], beta_[last], last).solve();
      continue;
    }
    --last;
    const Complex alpha(alfr_[last], alfi_[last]);
    Substitution<Complex>(pencil_, b_tolerance, alpha, beta_[last], last).solve();
  }
}

void Vectors::normalize_all() const {
  const auto &[order, a, b, z] = pencil_;
  for (Index last = order - 1; last >= 0; --last) {
    if (!ends_pair(last)) {
      normalize(z.at(0, last), order);
      continue;
    }
    --last;
    normalize(z.at(0, last), z.at(0, last + 1), order);
  }
}

}  // namespace
}  // namespace qdlflex::qz

using namespace qdlflex::qz;

void QDL_QZVECC(const int32_t *nm, const int32_t *n, double *a, double *b, const double *alfr,
                const double *alfi, const double *beta, double *z) {
  if (*n < 1)
    return;
  const WorkingPencil work(*nm, *n, a, b, z);
  const Pencil &pencil = work.pencil();
  const BorrowedTolerance b_tolerance(pencil);
  const Vectors vectors(pencil, alfr, alfi, beta);
  vectors.substitute(b_tolerance.value());
  multiply_by_triangle(pencil.z, pencil.b, pencil.order);
  vectors.normalize_all();
}
