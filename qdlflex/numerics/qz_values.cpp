// Third stage of the solver (see qz_hessenberg.cpp for the papers): splits the remaining blocks
// that have real eigenvalues and reads the eigenvalues off the diagonals.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

#include "numerics/qz_pencil.h"
#include "numerics/qz_reflections.h"

namespace qdlflex::qz {
namespace {

using Complex = std::complex<double>;

/// A pair of order two with upper triangular B.
struct Block {
  double a11, a12, a21, a22;
  double b11, b12, b22;
};

/// The block at rows and columns `at` and `at + 1`, scaled, and the two scales.
struct ScaledBlock {
  Block block;
  double a_scale, b_scale;
};

ScaledBlock scaled_block(const Pencil &pencil, Index at) {
  const auto &[order, a, b, z] = pencil;
  const Index next = at + 1;
  const double a_scale = std::fabs(a(at, at)) + std::fabs(a(at, next)) + std::fabs(a(next, at)) +
                         std::fabs(a(next, next));
  const double b_scale = std::fabs(b(at, at)) + std::fabs(b(at, next)) + std::fabs(b(next, next));
  return {
      {a(at, at) / a_scale, a(at, next) / a_scale, a(next, at) / a_scale, a(next, next) / a_scale,
       b(at, at) / b_scale, b(at, next) / b_scale, b(next, next) / b_scale},
      a_scale,
      b_scale};
}

/// The two roots: middle +- sqrt(discriminant).
struct Roots {
  double middle;
  double discriminant;
};

Roots roots_of(const Block &block) {
  const auto &[a11, a12, a21, a22, b11, b12, b22] = block;
  const double first_ratio = a11 / b11;
  const double second_ratio = a22 / b22;
  const double s = a21 / (b11 * b22);
  const bool first_is_smaller = std::fabs(first_ratio) <= std::fabs(second_ratio);
  const double e = first_is_smaller ? first_ratio : second_ratio;
  const double t = first_is_smaller ? (a22 - e * b22) / b22 : (a11 - e * b11) / b11;
  const double c = 0.5 * (t - s * b12);
  return {e + c, c * c + s * (a12 - e * b12)};
}

/// A unitary rotation that maps (p, q) to a multiple of (1, 0), with a real cosine.
struct Rotation {
  double cosine;
  Complex sine;

  Rotation(Complex p, Complex q) : cosine(std::abs(p)), sine(1.0) {
    if (cosine == 0.0)
      return;
    sine = std::conj(p) * q / cosine;
    const double length = std::sqrt(cosine * cosine + std::norm(sine));
    cosine /= length;
    sine /= length;
  }
};

double magnitude(Complex value) {
  return std::fabs(value.real()) + std::fabs(value.imag());
}

class Values {
 public:
  Values(const Pencil &pencil, double b_tolerance, double *alfr, double *alfi, double *beta)
      : pencil_(pencil), b_tolerance_(b_tolerance), alfr_(alfr), alfi_(alfi), beta_(beta) {}

  void find_all();

 private:
  void take_real(Index i);
  void find_pair(Index first);
  bool split_infinite(Index first);
  void split(Index first, const ScaledBlock &scaled, double eigenvalue);
  bool take_complex(Index first, const ScaledBlock &scaled, Complex mu);
  void reflect_from_left(Index first, double x, double y);
  void reflect_from_right(Index first, double x, double y);

  const Pencil &pencil_;
  double b_tolerance_;
  double *alfr_;
  double *alfi_;
  double *beta_;
};

void Values::find_all() {
  for (Index last = pencil_.order - 1; last >= 0;) {
    if (last == 0 || pencil_.a(last, last - 1) == 0.0) {
      take_real(last);
      last -= 1;
    } else {
      find_pair(last - 1);
      last -= 2;
    }
  }
}

void Values::take_real(Index i) {
  const double a = pencil_.a(i, i);
  const double b = pencil_.b(i, i);
  alfr_[i] = b < 0.0 ? -a : a;
  alfi_[i] = 0.0;
  beta_[i] = std::fabs(b);
}

void Values::find_pair(Index first) {
  if (!split_infinite(first)) {
    const ScaledBlock scaled = scaled_block(pencil_, first);
    const auto [middle, discriminant] = roots_of(scaled.block);
    const double root = std::sqrt(std::fabs(discriminant));
    const bool complex = discriminant < 0.0;
    if (complex && take_complex(first, scaled, {middle, -root}))
      return;
    split(first, scaled, complex ? middle : middle + std::copysign(root, middle));
  }
  pencil_.a(first + 1, first) = 0.0;
  pencil_.b(first + 1, first) = 0.0;
  take_real(first);
  take_real(first + 1);
}

void Values::reflect_from_left(Index first, double x, double y) {
  if (const auto left = reflection(x, y))
    reflect_rows(*left, pencil_, first, first, pencil_.order);
}

void Values::reflect_from_right(Index first, double x, double y) {
  const auto right = reflection(x, y);
  if (!right)
    return;
  reflect_columns(*right, pencil_.a, first, 0, first + 2);
  reflect_columns(*right, pencil_.b, first, 0, first + 2);
  if (pencil_.has_z())
    reflect_columns(*right, pencil_.z, first, 0, pencil_.order);
}

/// A negligible diagonal element of B splits a block at once.
bool Values::split_infinite(Index first) {
  const auto &[order, a, b, z] = pencil_;
  const Index second = first + 1;
  if (std::fabs(b(first, first)) <= b_tolerance_)
    reflect_from_left(first, a(first, first), a(second, first));
  else if (std::fabs(b(second, second)) <= b_tolerance_)
    reflect_from_right(first, a(second, second), a(second, first));
  else
    return false;
  return true;
}

/// Makes a block with a real eigenvalue triangular: from the right so that a null vector of
/// A - eigenvalue B becomes a unit vector, then from the left.
void Values::split(Index first, const ScaledBlock &scaled, double eigenvalue) {
  const auto &[a11, a12, a21, a22, b11, b12, b22] = scaled.block;
  const double c11 = a11 - eigenvalue * b11;
  const double c12 = a12 - eigenvalue * b12;
  const double c22 = a22 - eigenvalue * b22;
  if (std::fabs(c11) + std::fabs(c12) >= std::fabs(a21) + std::fabs(c22))
    reflect_from_right(first, c12, c11);
  else
    reflect_from_right(first, c22, a21);

  // Taken from the matrix that is not small beside the other.
  const Matrix &source =
      scaled.a_scale < std::fabs(eigenvalue) * scaled.b_scale ? pencil_.a : pencil_.b;
  reflect_from_left(first, source(first, first), source(first + 1, first));
}

/// The eigenvalues of a block that stays as it is: what its diagonals would be, were it made
/// triangular by the rotations (cz, sz) from the right and (cq, sq) from the left. False when an
/// imaginary part is lost to rounding: no pair, but a real eigenvalue twice.
bool Values::take_complex(Index first, const ScaledBlock &scaled, Complex mu) {
  const auto &[a11, a12, a21, a22, b11, b12, b22] = scaled.block;
  const Complex c11 = a11 - mu * b11;
  const Complex c12 = a12 - mu * b12;
  const Complex c22 = a22 - mu * b22;
  const bool second_row = std::fabs(a21) + magnitude(c22) > magnitude(c11) + magnitude(c12);
  const auto [cz, sz] = second_row ? Rotation(c22, -a21) : Rotation(c12, -c11);
  const bool from_a = scaled.a_scale < magnitude(mu) * scaled.b_scale;
  const auto [cq, sq] = from_a ? Rotation(cz * a11 + sz * a12, cz * a21 + sz * a22)
                               : Rotation(cz * b11 + sz * b12, sz * b22);

  const Complex ss = std::conj(sq) * sz;
  const Complex ta = cq * cz * a11 + cq * sz * a12 + std::conj(sq) * cz * a21 + ss * a22;
  const Complex tb = cq * cz * b11 + cq * sz * b12 + ss * b22;
  const Complex ua = std::conj(ss) * a11 - sq * cz * a12 - cq * std::conj(sz) * a21 + cq * cz * a22;
  const Complex ub = std::conj(ss) * b11 - sq * cz * b12 + cq * cz * b22;

  const auto take = [&](Index place, Complex numerator, Complex denominator) {
    const double r = std::abs(denominator);
    const Complex product = numerator * std::conj(denominator);
    alfr_[place] = scaled.a_scale * product.real() / r;
    alfi_[place] = scaled.a_scale * product.imag() / r;
    beta_[place] = scaled.b_scale * r;
  };
  // The one with the positive imaginary part comes first.
  const bool first_is_positive = (ta * std::conj(tb)).imag() >= 0.0;
  take(first, first_is_positive ? ta : ua, first_is_positive ? tb : ub);
  take(first + 1, first_is_positive ? ua : ta, first_is_positive ? ub : tb);
  alfi_[first] = std::fabs(alfi_[first]);
  alfi_[first + 1] = -std::fabs(alfi_[first + 1]);
  return alfi_[first] != 0.0 && alfi_[first + 1] != 0.0;
}

}  // namespace
}  // namespace qdlflex::qz

using namespace qdlflex::qz;

void QDL_QZVALL(const int32_t *nm, const int32_t *n, double *a, double *b, double *alfr,
                double *alfi, double *beta, const int32_t *matz, double *z) {
  if (*n < 1)
    return;
  const WorkingPencil work(*nm, *n, a, b, *matz != 0 ? z : nullptr);
  const BorrowedTolerance b_tolerance(work.pencil());
  Values(work.pencil(), b_tolerance.value(), alfr, alfi, beta).find_all();
}
