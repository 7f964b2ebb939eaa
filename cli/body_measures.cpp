#include "body_measures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace qdlflex::cli {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// One rotation of Jacobi's method: makes the entry (p, q) zero.
void rotate(Matrix3 &a, size_t p, size_t q) {
  const double off = a[3 * p + q];
  if (off == 0.0) {
    return;
  }
  const double theta = (a[4 * q] - a[4 * p]) / (2.0 * off);
  const double t = std::copysign(1.0, theta) / (std::fabs(theta) + std::hypot(theta, 1.0));
  const double c = 1.0 / std::hypot(t, 1.0);
  const double s = t * c;
  const size_t r = 3 - p - q;
  const double rp = a[3 * r + p];
  const double rq = a[3 * r + q];
  a[4 * p] -= t * off;
  a[4 * q] += t * off;
  a[3 * p + q] = a[3 * q + p] = 0.0;
  a[3 * r + p] = a[3 * p + r] = c * rp - s * rq;
  a[3 * r + q] = a[3 * q + r] = s * rp + c * rq;
}

}  // namespace

Vector3 cross(const Vector3 &a, const Vector3 &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Matrix3 inertia_about(const Vector3 &centre, double mass, const Matrix3 &inertia_about_origin) {
  const Vector3 &c = centre;
  const double square = c[0] * c[0] + c[1] * c[1] + c[2] * c[2];
  Matrix3 about_centre{};
  for (size_t i = 0; i < 9; ++i) {
    const double steiner = (i % 4 == 0 ? square : 0.0) - c[i / 3] * c[i % 3];
    about_centre[i] = inertia_about_origin[i] - mass * steiner;
  }
  return about_centre;
}

Vector3 principal_values(Matrix3 matrix) {
  if (!std::ranges::all_of(matrix, [](double value) { return std::isfinite(value); })) {
    return {kNone, kNone, kNone};
  }
  // Cyclic sweeps converge quadratically; a 3 x 3 matrix is diagonal after five or six of them.
  for (int sweep = 0; sweep < 12; ++sweep) {
    rotate(matrix, 0, 1);
    rotate(matrix, 0, 2);
    rotate(matrix, 1, 2);
  }
  Vector3 values = {matrix[0], matrix[4], matrix[8]};
  std::ranges::sort(values);
  return values;
}

Vector3 axis_of_difference(std::span<const double, 9> matrix) {
  return {matrix[7] - matrix[5], matrix[2] - matrix[6], matrix[3] - matrix[1]};
}

double dot(const double *a, const double *b, size_t count) {
  // Several sums at a time do not wait for one another.
  std::array<double, 8> sums{};
  size_t k = 0;
  for (; k + 8 <= count; k += 8) {
    for (size_t lane = 0; lane < 8; ++lane) {
      sums[lane] += a[k + lane] * b[k + lane];
    }
  }
  for (; k < count; ++k) {
    sums[0] += a[k] * b[k];
  }
  return std::accumulate(sums.begin(), sums.end(), 0.0);
}

double larger(double most, double value) {
  const double size = std::fabs(value);
  return std::isnan(most) || size <= most ? most : size;
}

std::array<double, 2> diagonal_range(const std::vector<double> &matrix, size_t order) {
  double least = std::numeric_limits<double>::infinity();
  double most = 0.0;
  for (size_t i = 0; i < order; ++i) {
    const double value = matrix[i * order + i];
    least = std::isnan(least) || value >= least ? least : value;
    most = larger(most, value);
  }
  return {least, most};
}

double coupling(const std::vector<double> &matrix, size_t order, double floor) {
  const double least = floor * diagonal_range(matrix, order)[1];
  double most = 0.0;
  for (size_t i = 0; i < order; ++i) {
    for (size_t k = 0; k < i; ++k) {
      const double value = matrix[i * order + k];
      const double diagonal =
          std::max({std::fabs(matrix[i * order + i]), std::fabs(matrix[k * order + k]), least});
      if (value != 0.0) {
        most = larger(most, value / diagonal);
      }
    }
  }
  return most;
}

std::vector<double> left_over(std::vector<double> products, size_t first, size_t last) {
  // A vector that the others explain to this share of its square is none of its own.
  constexpr double kDependent = 1e-12;
  const auto count = static_cast<size_t>(std::lround(std::sqrt(std::ssize(products))));
  const auto at = [&](size_t row, size_t column) -> double & {
    return products[row * count + column];
  };
  std::vector<double> squares(count);
  for (size_t k = 0; k < count; ++k) {
    squares[k] = at(k, k);
  }
  const auto share = [&](size_t k) { return squares[k] > 0.0 ? at(k, k) / squares[k] : 0.0; };

  std::vector<size_t> waiting;
  for (size_t k = first; k < last; ++k) {
    waiting.push_back(k);
  }
  while (!waiting.empty()) {
    const auto next = std::ranges::max_element(waiting, {}, share);
    const size_t pivot = *next;
    waiting.erase(next);
    if (share(pivot) <= kDependent) {
      break;
    }
    const double divisor = at(pivot, pivot);
    for (size_t i = 0; i < count; ++i) {
      const double factor = at(i, pivot) / divisor;
      for (size_t k = 0; k < count && i != pivot; ++k) {
        at(i, k) -= factor * at(pivot, k);
      }
    }
  }
  std::vector<double> left(count);
  for (size_t k = 0; k < count; ++k) {
    const bool taken = k >= first && k < last;
    left[k] = taken              ? 0.0
              : squares[k] > 0.0 ? std::sqrt(std::max(at(k, k), 0.0) / squares[k])
                                 : kNone;
  }
  return left;
}

EffectiveMasses effective_masses(double mass, const Matrix3 &inertia_about_centre,
                                 const std::vector<ModeMomenta> &modes) {
  // Inertia about the line on which all mass lies is what rounding leaves of it.
  constexpr double kNoInertia = 1e-9;
  EffectiveMasses result;
  const double trace = inertia_about_centre[0] + inertia_about_centre[4] + inertia_about_centre[8];
  for (size_t axis = 0; axis < 3; ++axis) {
    const double inertia = inertia_about_centre[4 * axis];
    result.whole[axis] = mass;
    result.whole[3 + axis] = inertia > kNoInertia * trace ? inertia : 0.0;
  }
  for (const ModeMomenta &mode : modes) {
    Directions shares{};
    for (size_t k = 0; k < 6; ++k) {
      const double momentum = k < 3 ? mode.linear[k] : mode.angular[k - 3];
      shares[k] = result.whole[k] > 0.0
                      ? momentum * momentum / (mode.generalized_mass * result.whole[k])
                      : kNone;
      result.sums[k] += shares[k];
    }
    result.shares.push_back(shares);
  }
  return result;
}

}  // namespace qdlflex::cli
