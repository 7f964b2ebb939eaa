// Householder reduction to tridiagonal form and the implicit QL iteration; see G. H. Golub and
// C. F. Van Loan, "Matrix Computations", chapter 8.

#include "numerics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "support/finite.h"

namespace qdlflex {
namespace {

/// A - v w' - w v' in the rows and columns from `first` on; v and w count from there.
void subtract_symmetric(Columns a, std::size_t first, const std::vector<double> &v,
                        const std::vector<double> &w) {
  const std::size_t count = a.rows - first;
  for (std::size_t j = 0; j < count; ++j) {
    double *column = a.column(first + j) + first;
    for (std::size_t i = 0; i < count; ++i)
      column[i] -= v[i] * w[j] + w[i] * v[j];
  }
}

/// The reflection I - 2 v v' that maps the vector to a multiple of its first unit vector; returns
/// that multiple. Zero, with v zero, where only the first component of the vector is not.
double reflect(const double *x, std::size_t count, std::vector<double> &v) {
  double scale = 0.0;
  for (std::size_t i = 1; i < count; ++i)
    scale = std::max(scale, std::fabs(x[i]));
  std::fill(v.begin(), v.end(), 0.0);
  if (scale == 0.0)
    return x[0];
  scale = std::max(scale, std::fabs(x[0]));
  double square = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    v[i] = x[i] / scale;
    square += v[i] * v[i];
  }
  const double length = std::copysign(std::sqrt(square), v[0]);
  v[0] += length;
  const double norm = std::sqrt(dot(v.data(), v.data(), count));
  for (std::size_t i = 0; i < count; ++i)
    v[i] /= norm;
  return -length * scale;
}

/// Leaves the tridiagonal matrix in `diagonal` and `below`, and in A the product of the
/// reflections.
void make_tridiagonal(Columns a, double *diagonal, double *below) {
  const std::size_t n = a.rows;
  std::vector<double> v(n);
  std::vector<double> w(n);
  for (std::size_t k = 0; k + 1 < n; ++k) {
    const std::size_t first = k + 1;
    const std::size_t count = n - first;
    diagonal[k] = a.column(k)[k];
    below[k] = reflect(a.column(k) + first, count, v);
    // A v, from which the two-sided reflection A - v w' - w v' with w = 2 (A v - (v' A v) v) comes.
    std::fill(w.begin(), w.end(), 0.0);
    for (std::size_t j = 0; j < count; ++j)
      add_multiple(v[j], a.column(first + j) + first, w.data(), count);
    add_multiple(-dot(v.data(), w.data(), count), v.data(), w.data(), count);
    for (double &value : w)
      value *= 2.0;
    subtract_symmetric(a, first, v, w);
    std::copy_n(v.data(), count, a.column(k) + first);
  }
  diagonal[n - 1] = a.column(n - 1)[n - 1];
}

/// Multiplies the reflections out, the last one first: each concerns a larger block than those
/// before.
void collect_reflections(Columns a) {
  const std::size_t n = a.rows;
  std::vector<double> v(n);
  const auto set_unit = [&](std::size_t k) {
    std::fill_n(a.column(k), n, 0.0);
    a.column(k)[k] = 1.0;
  };
  set_unit(n - 1);
  for (std::size_t k = n - 1; k-- > 0;) {
    const std::size_t first = k + 1;
    const std::size_t count = n - first;
    std::copy_n(a.column(k) + first, count, v.data());
    set_unit(k);
    for (std::size_t j = first; j < n; ++j) {
      double *column = a.column(j) + first;
      add_multiple(-2.0 * dot(v.data(), column, count), v.data(), column, count);
    }
  }
}

struct Rotation {
  double c;
  double s;
};

void rotate(Rotation rotation, double *x, double *y, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const double kept = x[i];
    x[i] = rotation.c * kept - rotation.s * y[i];
    y[i] = rotation.s * kept + rotation.c * y[i];
  }
}

/// One QL step on rows `first` to `last` of the tridiagonal matrix, shifted towards the eigenvalue
/// of its upper left corner; the columns of A turn with it.
void ql_step(Columns a, double *d, double *e, std::size_t first, std::size_t last) {
  const double half = (d[first + 1] - d[first]) / (2.0 * e[first]);
  const double root = std::hypot(half, 1.0);
  double g = d[last] - d[first] + e[first] / (half + std::copysign(root, half));
  double s = 1.0;
  double c = 1.0;
  double p = 0.0;
  for (std::size_t i = last; i-- > first;) {
    const double f = s * e[i];
    const double b = c * e[i];
    const double r = std::hypot(f, g);
    e[i + 1] = r;
    if (r == 0.0) {
      // The matrix has split here.
      d[i + 1] -= p;
      e[last] = 0.0;
      return;
    }
    s = f / r;
    c = g / r;
    g = d[i + 1] - p;
    const double t = (d[i] - g) * s + 2.0 * c * b;
    p = s * t;
    d[i + 1] = g + p;
    g = c * t - b;
    rotate({c, s}, a.column(i), a.column(i + 1), a.rows);
  }
  d[first] -= p;
  e[first] = g;
  e[last] = 0.0;
}

/// The last row of the block that begins at `first`: behind it the matrix has split.
std::size_t block_end(const double *d, const double *e, std::size_t first, std::size_t n) {
  std::size_t last = first;
  while (last + 1 < n && std::fabs(e[last]) > std::numeric_limits<double>::epsilon() *
                                                  (std::fabs(d[last]) + std::fabs(d[last + 1])))
    ++last;
  return last;
}

bool iterate(Columns a, double *d, double *e) {
  constexpr int kMostSteps = 60;
  for (std::size_t first = 0; first < a.rows; ++first) {
    for (int steps = 0;; ++steps) {
      const std::size_t last = block_end(d, e, first, a.rows);
      if (last == first)
        break;
      if (steps == kMostSteps)
        return false;
      ql_step(a, d, e, first, last);
    }
  }
  return true;
}

void sort(Columns a, double *eigenvalues) {
  const std::size_t n = a.rows;
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return eigenvalues[i]; });
  const std::vector<double> vectors(a.data, a.data + n * n);
  const std::vector<double> values(eigenvalues, eigenvalues + n);
  for (std::size_t k = 0; k < n; ++k) {
    eigenvalues[k] = values[order[k]];
    std::copy_n(&vectors[order[k] * n], n, a.column(k));
  }
}

}  // namespace

bool solve_symmetric(Columns a, double *eigenvalues) {
  const std::size_t n = a.rows;
  if (n == 0)
    return true;
  std::vector<double> below(n);
  make_tridiagonal(a, eigenvalues, below.data());
  collect_reflections(a);
  if (!iterate(a, eigenvalues, below.data()) || !is_finite({eigenvalues, n}))
    return false;
  sort(a, eigenvalues);
  return true;
}

}  // namespace qdlflex
