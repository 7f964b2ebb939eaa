#include "numerics/principal_forces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "numerics/dense_algebra.h"
#include "numerics/dense_product.h"
#include "numerics/eigenvalue_lookup.h"
#include "numerics/global_mass.h"
#include "numerics/rigid_body_modes.h"
#include "numerics/rigid_invariants.h"
#include "numerics/rigid_projection.h"
#include "support/boundary.h"
#include "support/finite.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

/// For each rigid mode the force and the moment that a modal load of one stands for.
using UnitResultants = std::vector<Vector6>;

using Matrix6 = std::array<Vector6, kRigidBodyAxes>;

Vector6 multiply(const Matrix6 &matrix, const Vector6 &vector) {
  Vector6 product{};
  for (std::size_t i = 0; i < product.size(); ++i) {
    for (std::size_t j = 0; j < vector.size(); ++j)
      product[i] += matrix[i][j] * vector[j];
  }
  return product;
}

Vector6 scaled(Vector6 vector, double factor) {
  for (double &value : vector)
    value *= factor;
  return vector;
}

/// [ m I, -tilde(s) ; tilde(s), J ]: mass, first moment and inertia of a rigid body.
Matrix6 rigid_body_matrix(double mass, const Vector3 &s, const Matrix3 &inertia) {
  const Matrix3 tilde = {0.0, -s[2], s[1], s[2], 0.0, -s[0], -s[1], s[0], 0.0};
  Matrix6 matrix{};
  for (std::size_t i = 0; i < 3; ++i) {
    matrix[i][i] = mass;
    for (std::size_t j = 0; j < 3; ++j) {
      matrix[i][3 + j] = -tilde[3 * i + j];
      matrix[3 + i][j] = tilde[3 * i + j];
      matrix[3 + i][3 + j] = inertia[3 * i + j];
    }
  }
  return matrix;
}

/// None where a mode or the body is not finite.
std::optional<UnitResultants> finite_only(UnitResultants resultants) {
  if (!std::ranges::all_of(resultants, [](const Vector6 &six) { return is_finite(six); }))
    return std::nullopt;
  return resultants;
}

/// One over the generalized mass of each rigid mode; zero for a mode without a usable one, which
/// then contributes nothing.
std::vector<double> inverse_masses(const QDL_Record &record) {
  const auto modes = all_eigenvalues(record);
  std::vector<double> inverses(static_cast<std::size_t>(rigid_body_mode_count(record)));
  for (std::size_t mode = 0; mode < inverses.size(); ++mode) {
    const double mass = modes[mode] ? modes[mode]->entry.generalized_mass : 0.0;
    if (mass != 0.0 && std::isfinite(mass))
      inverses[mode] = 1.0 / mass;
  }
  return inverses;
}

std::optional<UnitResultants> mass_weighted_resultants(QDL_Record &record,
                                                       std::span<const double> inverse_masses) {
  ModeShapes shapes(record);
  UnitResultants resultants;
  for (const double inverse_mass : inverse_masses) {
    const auto mode = weigh_mode(record, shapes, static_cast<std::int32_t>(resultants.size()));
    if (!mode)
      return std::nullopt;
    resultants.push_back(scaled(mode->along_axes, inverse_mass));
  }
  return finite_only(std::move(resultants));
}

// Without nodal masses a rigid mode's motion of the body is found first, by least squares over its
// nodes. The body's mass matrix then turns that motion into momentum, which is what the sums with
// nodal masses give.

/// The right-hand sides of the least-squares motions, and which nodes rotate in any mode.
struct NodeSums {
  std::vector<Vector6> of_modes;
  std::vector<bool> rotates;
};

Vector6 sum_nodes(const QDL_Record &record, const double *six, std::vector<bool> &rotates) {
  Vector6 sum{};
  for (std::size_t i = 0; i < rotates.size(); ++i, six += kComponents) {
    const Vector3 &r = record.nodes[i].xyz;
    for (std::size_t c = 0; c < 3; ++c)
      sum[c] += six[c];
    sum[3] += r[1] * six[2] - r[2] * six[1] + six[3];
    sum[4] += r[2] * six[0] - r[0] * six[2] + six[4];
    sum[5] += r[0] * six[1] - r[1] * six[0] + six[5];
    if (six[3] != 0.0 || six[4] != 0.0 || six[5] != 0.0)
      rotates[i] = true;
  }
  return sum;
}

std::optional<NodeSums> sum_rigid_modes(QDL_Record &record, std::size_t rigid_modes) {
  ModeShapes shapes(record);
  NodeSums sums;
  sums.rotates.resize(shapes.nodes());
  while (sums.of_modes.size() < rigid_modes) {
    const double *six = shapes.view(static_cast<std::int32_t>(sums.of_modes.size()));
    if (six == nullptr)
      return std::nullopt;
    sums.of_modes.push_back(sum_nodes(record, six, sums.rotates));
  }
  return sums;
}

/// Normal equations of the least squares: every node's translation counts once, and its rotation
/// too where there is one.
Matrix6 geometric_matrix(const QDL_Record &record, const std::vector<bool> &rotates) {
  const std::size_t nodes = rotates.size();
  Vector3 sum{};
  Matrix3 inertia{};
  for (std::size_t i = 0; i < nodes; ++i) {
    const Vector3 &r = record.nodes[i].xyz;
    for (std::size_t c = 0; c < 3; ++c)
      sum[c] += r[c];
    std::ranges::transform(inertia, point_inertia(1.0, r), inertia.begin(), std::plus());
  }
  const auto rotating = static_cast<double>(std::ranges::count(rotates, true));
  for (std::size_t i = 0; i < 3; ++i)
    inertia[4 * i] += rotating;
  return rigid_body_matrix(static_cast<double>(nodes), sum, inertia);
}

/// False after a report, for a matrix that has no finite inverse.
bool invert(Matrix6 &matrix) {
  std::array<double *, kRigidBodyAxes> rows{};
  std::ranges::transform(matrix, rows.begin(), [](Vector6 &row) { return row.data(); });
  std::array<std::int32_t, kRigidBodyAxes> permutation{};
  if (!factorize(rows, permutation.data())) {
    QDL_Error("LU Decomposition failed.\n");
    return false;
  }
  invert_factorized(rows, permutation.data());
  const bool finite =
      std::ranges::all_of(matrix, [](const Vector6 &row) { return is_finite(row); });
  if (!finite)
    QDL_Error("Failed in invert matrix.\n");
  return finite;
}

/// None, after a report, for a body without mass: it has no momentum.
std::optional<Matrix6> body_matrix(QDL_Record &record) {
  update_global_mass(record);
  const GlobalMass &body = record.global_mass;
  if (body.mass == 0.0) {
    QDL_Error("LU Decomposition failed.\n");
    return std::nullopt;
  }
  Vector3 moment = body.centre;
  for (double &value : moment)
    value *= body.mass;
  return rigid_body_matrix(body.mass, moment, negate_products(body.inertia));
}

std::optional<UnitResultants> simple_resultants(QDL_Record &record,
                                                std::span<const double> inverse_masses) {
  const std::optional<Matrix6> body = body_matrix(record);
  if (!body)
    return std::nullopt;
  const std::optional<NodeSums> sums = sum_rigid_modes(record, inverse_masses.size());
  if (!sums)
    return std::nullopt;
  Matrix6 inverse = geometric_matrix(record, sums->rotates);
  if (!invert(inverse))
    return std::nullopt;
  UnitResultants resultants;
  for (std::size_t mode = 0; mode < inverse_masses.size(); ++mode) {
    const Vector6 motion = multiply(inverse, sums->of_modes[mode]);
    resultants.push_back(scaled(multiply(*body, motion), inverse_masses[mode]));
  }
  auto finite = finite_only(std::move(resultants));
  if (!finite)
    QDL_Error("LU Decomposition failed.\n");
  return finite;
}

std::optional<UnitResultants> unit_resultants(QDL_Record &record,
                                              std::span<const double> inverse_masses) {
  const bool by_nodal_masses =
      std::getenv("ZEB_MFORCE_NO_FEA_MASS") == nullptr && present(record, Block::kNodalMasses);
  return by_nodal_masses ? mass_weighted_resultants(record, inverse_masses)
                         : simple_resultants(record, inverse_masses);
}

/// A vector with entries for all modes. False, with the vector as it was, for a resultant that is
/// not finite.
bool convert(const UnitResultants &resultants, std::span<double> values) {
  Vector6 sum{};
  for (std::size_t mode = 0; mode < resultants.size(); ++mode) {
    for (std::size_t axis = 0; axis < sum.size(); ++axis)
      sum[axis] += values[mode] * resultants[mode][axis];
  }
  if (!is_finite(sum))
    return false;
  const std::size_t kept = std::min(sum.size(), values.size());
  std::transform(sum.begin(), sum.begin() + static_cast<std::ptrdiff_t>(kept), values.begin(),
                 significant);
  return true;
}

bool is_pending(const ModalPreload &preload) {
  return preload.present && preload.processed == 0;
}

bool is_pending(const ModalLoadCase &load) {
  return load.processed == 0;
}

/// Lets the vectors reach all modes; false where there is nothing to convert.
bool prepare(QDL_Record &record) {
  bool pending = false;
  const auto reach_modes = [&](auto &vector) {
    if (!is_pending(vector))
      return;
    pending = true;
    if (vector.values.size() < record.mode_numbers.size())
      vector.values.resize(record.mode_numbers.size());
  };
  reach_modes(record.preload);
  std::ranges::for_each(record.modal_loads, reach_modes);
  return pending;
}

void warn_of_rigid_preload(const ModalPreload &preload, std::size_t rigid_modes) {
  for (const double value : std::span(preload.values).first(rigid_modes)) {
    if (significant(value) != 0.0)
      QDL_Warning("QDL contains a preload with a rigid body component which is being ignored");
  }
}

void warn_of_missing_axes(const QDL_Record &record, std::size_t rigid_modes) {
  if (rigid_modes < kRigidBodyAxes && !record.modal_loads.empty()) {
    QDL_Warning(
        "QDL only contains %d rigid body modes.\n  The resultant load vector will be "
        "mishandled.\n",
        static_cast<int>(rigid_modes));
  }
}

}  // namespace

void forces_on_principal_axes(QDL_Record &record) {
  const std::vector<double> masses = inverse_masses(record);
  std::optional<UnitResultants> resultants;
  if (prepare(record))
    resultants = unit_resultants(record, masses);

  ModalPreload &preload = record.preload;
  if (resultants && is_pending(preload) && convert(*resultants, preload.values)) {
    preload.processed = 1;
    warn_of_rigid_preload(preload, masses.size());
  }
  warn_of_missing_axes(record, masses.size());
  if (!resultants)
    return;
  for (ModalLoadCase &load : record.modal_loads) {
    if (is_pending(load) && convert(*resultants, load.values))
      load.processed = 1;
  }
}

}  // namespace qdlflex

using namespace qdlflex;

void QDL_RigidBodyForcesOnPrincipalAxes(QDL_Record *model) {
  with_model(model, kArea, 0, [](QDL_Record &record) {
    forces_on_principal_axes(record);
    return 1;
  });
}
