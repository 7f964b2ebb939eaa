#include "numerics/global_mass.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <qdlflex/qdlflex.h>

#include "numerics/qdlinvar.h"
#include "numerics/rigid_invariants.h"
#include "record/derived.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kSetterArea = "qdlset";
constexpr const char *kToolsArea = "qdltools";

/// Zeros where the block of the record's file can't be read.
template <class Values>
Values invariant(QDL_Record &record, int number) {
  Values values{};
  std::ranges::copy(obtain_invariant(record, number).values, values.begin());
  return values;
}

/// What invariants 1, 2 and 7 imply, with the centre that belongs to a mass.
struct ImpliedMass {
  double mass;
  Vector3 first_moment;
  Matrix3 inertia;  // signs of the global mass properties

  explicit ImpliedMass(QDL_Record &record)
      : mass(invariant<std::array<double, 1>>(record, 1)[0]),
        first_moment(invariant<Vector3>(record, 2)),
        inertia(negate_products(invariant<Matrix3>(record, 7))) {}

  Vector3 centre_for(double divisor) const {
    Vector3 centre = first_moment;
    for (double &value : centre)
      value /= divisor;
    return centre;
  }
};

/// Relative for references above 1, else absolute. Not a number agrees with nothing.
bool agrees(double value, double reference) {
  constexpr double kTolerance = 1e-8;
  const double magnitude = std::fabs(reference);
  return std::fabs(value - reference) / (magnitude > 1.0 ? magnitude : 1.0) <= kTolerance;
}

template <class Values>
bool all_agree(const Values &values, const Values &references) {
  return std::ranges::equal(values, references, agrees);
}

/// The centre to compare with. Without any mass to divide by it is the first moment itself.
Vector3 implied_centre(const ImpliedMass &implied, double given_mass) {
  const double mass = implied.mass != 0.0 ? implied.mass : given_mass;
  if (mass == 0.0) {
    QDL_Info("Global mass is being set to zero.");
    return implied.first_moment;
  }
  return implied.centre_for(mass);
}

void warn_of_contradictions(QDL_Record &record, const GlobalMass &given) {
  const ImpliedMass implied(record);
  if (!agrees(given.mass, implied.mass))
    QDL_Warning("Global mass is inconsistent with INVAR1 setting or sum of nodal masses.");
  if (!all_agree(given.centre, implied_centre(implied, given.mass)))
    QDL_Warning("Global center of mass is inconsistent with INVAR2 setting or nodal data.");
  if (!all_agree(given.inertia, implied.inertia))
    QDL_Warning("Global mass inertia is inconsistent with INVAR7 setting or nodal data.");
}

}  // namespace

void update_global_mass(QDL_Record &record) {
  const ImpliedMass implied(record);
  GlobalMass &global = record.global_mass;
  global.mass = implied.mass;
  global.centre = implied.mass == 0.0 ? Vector3{} : implied.centre_for(implied.mass);
  global.inertia = implied.inertia;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetGlobalMass(QDL_Record *model, double mass, const double *centre3,
                          const double *inertia9) {
  return with_model(model, kSetterArea, 0, [&](QDL_Record &record) {
    if (centre3 == nullptr || inertia9 == nullptr)
      return 0;
    GlobalMass given{mass, {}, {}};
    std::copy_n(centre3, given.centre.size(), given.centre.begin());
    std::copy_n(inertia9, given.inertia.size(), given.inertia.begin());
    warn_of_contradictions(record, given);
    record.global_mass = given;
    // The invariants may have been derived from what was just replaced.
    drop_derived_invariants(record, {1, 2, 7});
    raise(record, Block::kGlobalBodyProperties);
    return 1;
  });
}

int32_t QDL_CalculateGlobalMassFromNodeMass(QDL_Record *model) {
  return with_model(model, kToolsArea, 0, [](QDL_Record &record) {
    update_global_mass(record);
    return 1;
  });
}
