// Second stage of the solver (see qz_hessenberg.cpp for the papers): QZ steps with single and
// double shifts until A has nothing but blocks of order one and two on its diagonal.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "numerics/qz_pencil.h"
#include "numerics/qz_reflections.h"

namespace qdlflex::qz {
namespace {

/// Largest sum of magnitudes of a column, rows 0 to column + `below`. Not a number stays one.
double column_norm(const Matrix &matrix, Index order, Index below) {
  double norm = 0.0;
  for (Index column = 0; column < order; ++column) {
    double sum = 0.0;
    for (Index row = 0; row <= std::min(column + below, order - 1); ++row)
      sum += std::fabs(matrix(row, column));
    if (sum > norm || std::isnan(sum))
      norm = sum;
  }
  return norm;
}

double nonzero(double norm) {
  return norm == 0.0 ? 1.0 : norm;
}

/// The pair being reduced and where the work on it stands. Rows and columns `low` to `last` are the
/// block that is still unreduced; a step works from `start` on, which is not above `low`.
class Iteration {
 public:
  Iteration(const Pencil &pencil, double relative_tolerance)
      : pencil_(pencil),
        a_norm_(nonzero(column_norm(pencil.a, pencil.order, 1))),
        b_norm_(nonzero(column_norm(pencil.b, pencil.order, 0))),
        a_tolerance_(relative_tolerance * a_norm_),
        b_tolerance_(relative_tolerance * b_norm_),
        last_(pencil.order - 1),
        steps_left_(30 * pencil.order) {}

  double b_tolerance() const { return b_tolerance_; }

  /// True when everything is reduced; otherwise last() is the index that was being sought.
  bool run();
  Index last() const { return last_; }

 private:
  using StartVector = std::array<double, 3>;

  /// The last two rows and columns of A times the inverse of those of B.
  struct TrailingBlock {
    double a33, a34, a43, a44, b34;
    double half_trace;  // negative half of the sum of the eigenvalues
    double discriminant;
  };

  Index block_start() const;
  bool split_off();
  bool clear_tiny_diagonal();
  void pass();
  TrailingBlock trailing_block() const;
  StartVector double_shift_vector(const TrailingBlock &block) const;
  Index single_shift_start(double shift) const;
  double diagonal_of_b(Index i) const;

  void single_step(double shift);
  void double_step(const StartVector &start_vector);
  void count_step();
  bool clear_from_left(Index k, double x, double y);
  bool clear_from_left(Index k, double x, double y, double z);
  void clear_two_of_b(Index k);
  void clear_one_of_b(Index k, Index rows_below);

  // Without Z only the block itself has to be right.
  Index row_begin() const { return pencil_.has_z() ? 0 : low_; }
  Index column_end() const { return pencil_.has_z() ? pencil_.order : last_ + 1; }

  const Pencil &pencil_;
  double a_norm_;
  double b_norm_;
  double a_tolerance_;
  double b_tolerance_;
  Index low_ = 0;
  Index start_ = 0;
  Index last_;
  Index steps_left_;
  Index steps_here_ = 0;  // spent on this `last_`
};

bool Iteration::run() {
  // Nothing converges on numbers that are not finite.
  if (last_ >= 2 && !(std::isfinite(a_norm_) && std::isfinite(b_norm_)))
    return false;
  while (last_ >= 2) {
    start_ = block_start();
    if (start_ > 0)
      pencil_.a(start_, start_ - 1) = 0.0;
    if (split_off())
      continue;
    low_ = start_;
    if (clear_tiny_diagonal())
      continue;
    if (steps_left_ == 0)
      return false;
    pass();
  }
  return true;
}

/// The row of the lowest negligible subdiagonal element.
Index Iteration::block_start() const {
  Index row = last_;
  while (row > 0 && !(std::fabs(pencil_.a(row, row - 1)) <= a_tolerance_))
    --row;
  return row;
}

/// Takes leave of a block of order one or two.
bool Iteration::split_off() {
  if (start_ < last_ - 1)
    return false;
  last_ = start_ - 1;
  steps_here_ = 0;
  return true;
}

/// A negligible first diagonal element of B belongs to an infinite eigenvalue, which is split off
/// at the top of the block. True when that was the end of the block.
bool Iteration::clear_tiny_diagonal() {
  const auto &[order, a, b, z] = pencil_;
  while (std::fabs(b(start_, start_)) <= b_tolerance_) {
    b(start_, start_) = 0.0;
    if (const auto left = reflection(a(start_, start_), a(start_ + 1, start_)))
      reflect_rows(*left, pencil_, start_, start_, column_end());
    if (start_ > 0)
      a(start_, start_ - 1) = -a(start_, start_ - 1);
    ++start_;
    a(start_, start_ - 1) = 0.0;
    if (split_off())
      return true;
    low_ = start_;
  }
  return false;
}

/// One step with the shifts that the trailing block suggests.
void Iteration::pass() {
  constexpr Index kExceptional = 10;
  if (steps_here_ == kExceptional)
    return double_step({0.0, 1.0, 1.1605});

  const TrailingBlock block = trailing_block();
  if (block.discriminant < 0.0)
    return double_step(double_shift_vector(block));

  const double root = std::sqrt(block.discriminant);
  const double first = -block.half_trace + root;
  const double second = -block.half_trace - root;
  const double shift =
      std::fabs(second - block.a44) < std::fabs(first - block.a44) ? second : first;
  start_ = single_shift_start(shift);
  if (!clear_tiny_diagonal())
    single_step(shift);
}

/// A diagonal element of B as a divisor.
double Iteration::diagonal_of_b(Index i) const {
  const double value = pencil_.b(i, i);
  return std::fabs(value) < b_tolerance_ ? b_tolerance_ : value;
}

Iteration::TrailingBlock Iteration::trailing_block() const {
  const auto &[order, a, b, z] = pencil_;
  const Index next = last_ - 1;
  const double b33 = diagonal_of_b(next);
  const double b44 = diagonal_of_b(last_);
  TrailingBlock block{};
  block.a33 = a(next, next) / b33;
  block.a34 = a(next, last_) / b44;
  block.a43 = a(last_, next) / b33;
  block.a44 = a(last_, last_) / b44;
  block.b34 = b(next, last_) / b44;
  block.half_trace = 0.5 * (block.a43 * block.b34 - block.a33 - block.a44);
  block.discriminant =
      block.half_trace * block.half_trace + block.a34 * block.a43 - block.a33 * block.a44;
  return block;
}

/// First column of the product of both shifted matrices, but for a factor.
Iteration::StartVector Iteration::double_shift_vector(const TrailingBlock &block) const {
  const auto &[order, a, b, z] = pencil_;
  const Index l = start_;
  const double b11 = b(l, l);
  const double b22 = diagonal_of_b(l + 1);
  const double a11 = a(l, l) / b11;
  const double a21 = a(l + 1, l) / b11;
  const double a12 = a(l, l + 1) / b22;
  const double a22 = a(l + 1, l + 1) / b22;
  const double b12 = b(l, l + 1) / b22;
  const auto &[a33, a34, a43, a44, b34, half_trace, discriminant] = block;
  return {((a33 - a11) * (a44 - a11) - a34 * a43 + a43 * b34 * a11) / a21 + a12 - a11 * b12,
          (a22 - a11) - a21 * b12 - (a33 - a11) - (a44 - a11) + a43 * b34, a(l + 2, l + 1) / b22};
}

/// A step may start below two subdiagonal elements whose product is negligible.
Index Iteration::single_shift_start(double shift) const {
  const auto &[order, a, b, z] = pencil_;
  for (Index l = last_ - 2; l > low_; --l) {
    double t = a(l, l);
    if (std::fabs(b(l, l)) > b_tolerance_)
      t -= shift * b(l, l);
    if (std::fabs(a(l, l - 1)) <= std::fabs(t / a(l + 1, l)) * a_tolerance_)
      return l;
  }
  return low_;
}

void Iteration::count_step() {
  ++steps_here_;
  --steps_left_;
}

void Iteration::single_step(double shift) {
  count_step();
  const auto &[order, a, b, z] = pencil_;
  const double b11 = b(start_, start_);
  double x = a(start_, start_) / b11 - shift;
  double y = a(start_ + 1, start_) / b11;
  if (start_ > low_)
    a(start_, start_ - 1) = -a(start_, start_ - 1);

  for (Index k = start_; k < last_; ++k) {
    if (k > start_) {
      x = a(k, k - 1);
      y = a(k + 1, k - 1);
    }
    if (!clear_from_left(k, x, y))
      return;
    clear_one_of_b(k, 1);
  }
}

void Iteration::double_step(const StartVector &start_vector) {
  count_step();
  const Matrix &a = pencil_.a;
  auto [x, y, z] = start_vector;
  for (Index k = start_; k < last_ - 1; ++k) {
    if (k > start_) {
      x = a(k, k - 1);
      y = a(k + 1, k - 1);
      z = a(k + 2, k - 1);
    }
    if (!clear_from_left(k, x, y, z))
      continue;
    clear_two_of_b(k);
    clear_one_of_b(k, 2);
  }
  const Index k = last_ - 1;
  if (clear_from_left(k, a(k, k - 1), a(k + 1, k - 1)))
    clear_one_of_b(k, 2);
}

/// Reflects rows k and k + 1 so that (x, y) becomes a multiple of (1, 0); false for a zero vector.
bool Iteration::clear_from_left(Index k, double x, double y) {
  const auto left = reflection(x, y);
  if (!left)
    return false;
  reflect_rows(*left, pencil_, k, std::max(k - 1, start_), column_end());
  if (k > start_)
    pencil_.a(k + 1, k - 1) = 0.0;
  return true;
}

bool Iteration::clear_from_left(Index k, double x, double y, double z) {
  const auto left = reflection(x, y, z);
  if (!left)
    return false;
  reflect_rows(*left, pencil_, k, std::max(k - 1, start_), column_end());
  if (k > start_) {
    pencil_.a(k + 1, k - 1) = 0.0;
    pencil_.a(k + 2, k - 1) = 0.0;
  }
  return true;
}

/// Clears elements (k + 2, k) and (k + 2, k + 1) of B from the right.
void Iteration::clear_two_of_b(Index k) {
  const auto &[order, a, b, z] = pencil_;
  const auto right = reflection(b(k + 2, k + 2), b(k + 2, k + 1), b(k + 2, k));
  if (!right)
    return;
  const Index end = std::min(last_, k + 3) + 1;
  reflect_columns(*right, a, k, row_begin(), end);
  reflect_columns(*right, b, k, row_begin(), end);
  if (pencil_.has_z())
    reflect_columns(*right, z, k, 0, order);
  b(k + 2, k) = 0.0;
  b(k + 2, k + 1) = 0.0;
}

/// Clears element (k + 1, k) of B from the right, in a step that reaches `rows_below` rows below.
void Iteration::clear_one_of_b(Index k, Index rows_below) {
  const auto &[order, a, b, z] = pencil_;
  const auto right = reflection(b(k + 1, k + 1), b(k + 1, k));
  if (!right)
    return;
  const Index end = std::min(last_, k + 1 + rows_below) + 1;
  reflect_columns(*right, a, k, row_begin(), end);
  reflect_columns(*right, b, k, row_begin(), end);
  if (pencil_.has_z())
    reflect_columns(*right, z, k, 0, order);
  b(k + 1, k) = 0.0;
}

double unit_roundoff() {
  double one = 1.0;
  return EIGPSN(&one);
}

}  // namespace
}  // namespace qdlflex::qz

using namespace qdlflex::qz;

double EIGPSN(double *x) {
  // Infinity would stay infinity.
  double value = std::min(*x, std::numeric_limits<double>::max());
  while (1.0 + value > 1.0)
    value *= 0.5;
  *x = value;
  return value;
}

void QDL_QZITT(const int32_t *nm, const int32_t *n, double *a, double *b, const double *eps1,
               const int32_t *matz, double *z, int32_t *ierr) {
  *ierr = 0;
  if (*n < 1)
    return;
  const WorkingPencil work(*nm, *n, a, b, *matz != 0 ? z : nullptr);
  Iteration iteration(work.pencil(), *eps1 > 0.0 ? *eps1 : unit_roundoff());
  if (!iteration.run())
    *ierr = static_cast<int32_t>(iteration.last() + 1);
  if (*n > 1)
    work.pencil().b(*n - 1, 0) = iteration.b_tolerance();
}
