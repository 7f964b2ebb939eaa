#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace qdlflex::cli {

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<double, 9>;

Vector3 cross(const Vector3 &a, const Vector3 &b);
double dot(const double *a, const double *b, size_t count);

/// An inertia tensor about the centre of mass from that about the origin.
Matrix3 inertia_about(const Vector3 &centre, double mass, const Matrix3 &inertia_about_origin);

/// The principal values of a symmetric matrix, ascending; not numbers if an entry is none.
Vector3 principal_values(Matrix3 matrix);

/// The vector v for which ~v is the antisymmetric matrix `matrix` minus its transpose.
Vector3 axis_of_difference(std::span<const double, 9> matrix);

/// The larger of two magnitudes. Not a number is larger than everything.
double larger(double most, double value);

/// The smallest value on the diagonal of a square matrix and the largest magnitude there; not
/// numbers if one of them is none.
std::array<double, 2> diagonal_range(const std::vector<double> &matrix, size_t order);

/// The largest entry off the diagonal relative to the larger of the two on it, which counts as
/// `floor` times the largest of all at least.
double coupling(const std::vector<double> &matrix, size_t order, double floor);

/// Of some vectors, by their inner products (a square matrix row by row), what is left of each
/// when the parts along those from `first` up to `last` are taken away, relative to its length.
/// 0 for the latter, not a number for a vector of length zero.
std::vector<double> left_over(std::vector<double> products, size_t first, size_t last);

/// Translations along and rotations about the three axes.
using Directions = std::array<double, 6>;

/// How much of the body's mass (inertia) each mode carries in each direction, as shares of the
/// whole; not a number where there is nothing to share.
struct EffectiveMasses {
  Directions whole{};
  std::vector<Directions> shares;  // by mode
  Directions sums{};
};

struct ModeMomenta {
  double generalized_mass;
  Vector3 linear;   // of the mode with unit velocity
  Vector3 angular;  // about the centre of mass
};

EffectiveMasses effective_masses(double mass, const Matrix3 &inertia_about_centre,
                                 const std::vector<ModeMomenta> &modes);

}  // namespace qdlflex::cli
