#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "geometry/matrix3.h"
#include "geometry/rigid_motion.h"
#include "support/boundary.h"
#include "support/finite.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlmod";
/// Shifts below these are rounding: no translation is made.
constexpr double kLeastSquaredRotationShift = 1e-14;
constexpr double kLeastMirrorShift = 1e-10;

/// None for a null pointer and for a component that is no finite number.
std::optional<Vector3> finite_vector(const double *values) {
  if (values == nullptr || !is_finite({values, 3}))
    return std::nullopt;
  return Vector3{values[0], values[1], values[2]};
}

/// A direction, not of unit length; none for a zero vector as well.
std::optional<Vector3> direction_of(const double *values) {
  const std::optional<Vector3> vector = finite_vector(values);
  if (!vector || *vector == Vector3{})
    return std::nullopt;
  return scaled_direction(*vector);
}

Vector3 times(double factor, Vector3 vector) {
  for (double &value : vector)
    value *= factor;
  return vector;
}

Matrix3 product(const Matrix3 &a, const Matrix3 &b) {
  Matrix3 c{};
  Matrix_Multiply(a.data(), b.data(), c.data());
  return c;
}

/// The matrix in the frame whose x axis is the direction, expressed in the present frame.
Matrix3 about_axis(const Vector3 &axis, const Matrix3 &in_axis_frame) {
  const double rho = std::hypot(axis[0], axis[1]);
  const double c1 = rho == 0.0 ? 1.0 : axis[0] / rho;
  const double s1 = rho == 0.0 ? 0.0 : axis[1] / rho;
  const Matrix3 about_z = {c1, -s1, 0.0, s1, c1, 0.0, 0.0, 0.0, 1.0};
  const double across = axis[0] * c1 + axis[1] * s1;
  const double r = std::hypot(axis[2], across);
  const double c2 = across / r;
  const double s2 = axis[2] / r;
  const Matrix3 about_y = {c2, 0.0, -s2, 0.0, 1.0, 0.0, s2, 0.0, c2};
  const Matrix3 there = product(product(about_z, about_y), in_axis_frame);
  return product(product(there, transposed(about_y)), transposed(about_z));
}

Matrix3 rotation_matrix(const Vector3 &axis, double degrees) {
  const double angle = degrees / 180.0 * std::numbers::pi;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return about_axis(axis, {1.0, 0.0, 0.0, 0.0, c, -s, 0.0, s, c});
}

Matrix3 mirror_matrix(const Vector3 &normal) {
  return about_axis(normal, {-1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0});
}

/// The part of a point's position that lies across the axis through the origin.
Vector3 part_across(const Vector3 &axis, const Vector3 &point) {
  const Vector3 unit = times(1.0 / length_of(axis), axis);
  return difference(point, times(dot(point, unit), unit));
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_Mirror_Origin(QDL_Record *model, const double *normal) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::optional<Vector3> across = direction_of(normal);
    return across && move_body(record, {mirror_matrix(*across), std::nullopt});
  });
}

int32_t QDL_Mirror(QDL_Record *model, const double *normal, const double *point) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::optional<Vector3> across = direction_of(normal);
    const std::optional<Vector3> on_plane = finite_vector(point);
    if (!across || !on_plane)
      return false;
    RigidMotion motion{mirror_matrix(*across), std::nullopt};
    const Vector3 unit = times(1.0 / length_of(*across), *across);
    const double distance = 2.0 * dot(unit, *on_plane);
    if (std::fabs(distance) > kLeastMirrorShift)
      motion.offset = times(distance, unit);
    return std::isfinite(distance) && move_body(record, motion);
  });
}

int32_t QDL_Rotate_Origin(QDL_Record *model, const double *axis, double angleDeg, double *R) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::optional<Vector3> along = direction_of(axis);
    if (!along || !std::isfinite(angleDeg))
      return false;
    const Matrix3 matrix = rotation_matrix(*along, angleDeg);
    if (R != nullptr)
      std::ranges::copy(matrix, R);
    return move_body(record, {matrix, std::nullopt});
  });
}

int32_t QDL_Rotate(QDL_Record *model, const double *axis, const double *point, double angleDeg) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::optional<Vector3> along = direction_of(axis);
    const std::optional<Vector3> on_axis = finite_vector(point);
    if (!along || !on_axis || !std::isfinite(angleDeg))
      return false;
    RigidMotion motion{rotation_matrix(*along, -angleDeg), std::nullopt};
    const Vector3 across = part_across(*along, *on_axis);
    Vector3 turned = across;
    turn_vector(*motion.matrix, turned.data());
    const Vector3 offset = difference(across, turned);
    if (dot(offset, offset) > kLeastSquaredRotationShift)
      motion.offset = offset;
    return is_finite(offset) && move_body(record, motion);
  });
}

int32_t QDL_Translate(QDL_Record *model, const double *direction, double distance) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::optional<Vector3> along = direction_of(direction);
    if (!along || !std::isfinite(distance))
      return false;
    return move_body(record,
                     {std::nullopt, times(distance, times(1.0 / length_of(*along), *along))});
  });
}
