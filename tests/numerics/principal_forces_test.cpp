// The rigid-body part of modal loads and preload as force and moment on the body.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "numerics/modal_body.h"
#include "principal_axes_body.h"
#include "support/fault.h"

namespace {

using namespace qdltest;

const Values kFreeFrequencies = {0, 0, 0, 0, 0, 0, 12, 15};
constexpr const char *kIgnored =
    "QDL contains a preload with a rigid body component which is being ignored";

std::string mishandled(int rigid_modes) {
  return "QDL only contains " + std::to_string(rigid_modes) +
         " rigid body modes.\n  The resultant load vector will be mishandled.\n";
}

class PrincipalForces : public PrincipalAxes {
 protected:
  static void set_load(QDL_Record *model, std::int32_t load_case, const Values &values) {
    for (std::size_t mode = 0; mode < values.size(); ++mode)
      QDL_SetModalLoad(model, load_case, model->mode_numbers[mode], values[mode]);
  }

  static Values load(QDL_Record *model, std::int32_t load_case) {
    std::int32_t count = 0;
    double *values = QDL_GetModalLoad(model, load_case, &count);
    return taken(values, static_cast<std::size_t>(count));
  }

  // What the body is as a whole, by plain sums, for a model without nodal masses.
  static void set_global_mass(QDL_Record *model, const Body &body) {
    double mass = 0.0;
    Three moment{};
    std::array<double, 9> inertia{};
    for (const auto &[r, m] : body.points) {
      mass += m;
      for (std::size_t i = 0; i < 3; ++i) {
        moment[i] += m * r[i];
        inertia[4 * i] += m * (r[(i + 1) % 3] * r[(i + 1) % 3] + r[(i + 2) % 3] * r[(i + 2) % 3]);
        for (std::size_t j = 0; j < 3; ++j)
          inertia[3 * i + j] += i == j ? 0.0 : m * r[i] * r[j];
      }
    }
    for (double &value : moment)
      value /= mass;
    QDL_SetGlobalMass(model, mass, moment.data(), inertia.data());
  }
};

// Forces at two nodes, taken to modal loads of mass-normalized rigid modes, come back as their sum
// and their moment about the origin, however the body's mass is known.
TEST_F(PrincipalForces, AreTheResultantOfTheNodalForces) {
  enum class Source { kNodalMasses, kNodalMassesUnused, kGlobalMass };
  const Body body = lopsided_body();
  Body massless = body;
  for (PointMass &point : massless.points)
    point.mass = 0.0;
  const Six force2 = {1, -2, 3};
  const Six force5 = {0.5, 4, -1};
  Values wanted = {1.5, 2, 2, 0, 0, 0, 0.25, -0.75};
  for (const auto &[node, force] : {std::pair(2, force2), std::pair(5, force5)}) {
    const Three moment =
        cross(body.points[static_cast<std::size_t>(node)].place, {force[0], force[1], force[2]});
    for (std::size_t c = 0; c < 3; ++c)
      wanted[3 + c] += moment[c];
  }
  for (const Source source :
       {Source::kNodalMasses, Source::kNodalMassesUnused, Source::kGlobalMass}) {
    for (const bool rotations : {false, true}) {
      const ScopedEnvironment unused("ZEB_MFORCE_NO_FEA_MASS",
                                     source == Source::kNodalMassesUnused ? "" : nullptr);
      std::vector<Mode> modes = body.orthonormal_rigid_modes(rotations);
      QDL_Record *model =
          make(source == Source::kGlobalMass ? massless : body, modes, kFreeFrequencies);
      if (source == Source::kGlobalMass)
        set_global_mass(model, body);
      clear_messages();
      Values modal;
      for (const Mode &mode : modes)
        modal.push_back(dot(mode[2], force2) + dot(mode[5], force5));
      modal.insert(modal.end(), {0.25, -0.75});
      set_load(model, 1, modal);
      QDL_RigidBodyForcesOnPrincipalAxes(model);
      expect_near(load(model, 1), wanted, 1e-11);
      EXPECT_EQ(load(model, 0), (Values{0, 0, 0, 0, 0, 0, 0, 0}));
      EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 1);
      EXPECT_EQ(QDL_ModalLoadProcessed(model, 1), 1);

      QDL_RigidBodyForcesOnPrincipalAxes(model);
      expect_near(load(model, 1), wanted, 1e-11);
      expect_no_messages();
    }
  }
}

// Three rigid modes; generalized masses other than one, of which one is unusable; the moment
// overwrites the values of modes that are not rigid.
TEST_F(PrincipalForces, AreDividedByTheGeneralizedMasses) {
  const Body body = lopsided_body();
  const std::vector<Mode> modes = random_modes(body, 8);
  QDL_Record *model = make(body, modes, {0, 0, 0, 5, 6, 7, 12, 15});
  model->eigenvalues[0].generalized_mass = 0.5;
  model->eigenvalues[1].generalized_mass = 0.0;
  model->eigenvalues[2].generalized_mass = -4.0;
  const Values modal = {3, 5, 7, 11, 13, 17, 19, 23};
  set_load(model, 0, modal);
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_only_warnings({mishandled(3)});
  Values wanted = modal;
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    const Mode motion = body.rigid_motion(axis, false);
    wanted[axis] =
        3 / 0.5 * body.product(motion, modes[0]) - 7 / 4.0 * body.product(motion, modes[2]);
  }
  expect_near(load(model, 0), wanted, 1e-12);

  clear_messages();
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_only_warnings({mishandled(3)});
}

TEST_F(PrincipalForces, FillTheEntriesThatThereAre) {
  const Body body = {{{{0, 2, 0}, 4.0}}};
  // Two modes of which one is rigid, along x; then one without any.
  QDL_Record *model = make(body, {{{0.5, 0, 0}}, {{1, 1, 1}}}, {0, 20});
  set_load(model, 0, {3, 9});
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  EXPECT_EQ(load(model, 0), (Values{6, 0}));
  QDL_Record *held = make(body, {{{0.5, 0, 0}}}, {20});
  set_load(held, 0, {3});
  QDL_RigidBodyForcesOnPrincipalAxes(held);
  EXPECT_EQ(load(held, 0), (Values{0}));
  expect_only_warnings({mishandled(1), mishandled(0)});
}

TEST_F(PrincipalForces, LetAVectorReachTheModesAddedSinceItWasSet) {
  const Body body = symmetric_body();
  QDL_Record *model = make(body, body.orthonormal_rigid_modes(false), kFreeFrequencies);
  model->modal_loads.resize(1);
  model->modal_loads[0].values = {2.0};
  model->preload = {.values = {}, .processed = 0, .present = true};
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_near(load(model, 0), {2.0 * std::sqrt(12.0), 0, 0, 0, 0, 0, 0, 0}, 1e-13);
  EXPECT_EQ(model->preload.processed, 1);
  expect_no_messages();
}

TEST_F(PrincipalForces, WarnOfEveryRigidComponentOfThePreload) {
  const Body body = symmetric_body();
  QDL_Record *model = make(body, body.orthonormal_rigid_modes(true), kFreeFrequencies);
  QDL_SetModalPreload(model, 20, 1.0);
  QDL_SetModalPreload(model, 60, -1.0);
  QDL_SetModalPreload(model, 30, 1e-11);
  QDL_SetModalPreload(model, 70, 8.0);
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_only_warnings({kIgnored, kIgnored});
  std::int32_t count = 0;
  double *values = QDL_GetModalPreload(model, &count);
  // The motions are orthogonal: the load's factor is the root of the body's mass or inertia.
  expect_near(taken(values, static_cast<std::size_t>(count)),
              {0, std::sqrt(12.0), 0, 0, 0, -std::sqrt(22.0), 8.0, 0}, 1e-12);
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 1);
  clear_messages();
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_no_messages();
}

struct FailureCase {
  const char *what;
  Body body;
  bool has_modes;
  const char *message;
};

TEST_F(PrincipalForces, AreLeftForLaterWhereTheyCannotBeFound) {
  const ScopedEnvironment unused("ZEB_MFORCE_NO_FEA_MASS", "1");
  const std::vector<FailureCase> cases = {
      {"one node", {{{{1, 2, 3}, 1.0}}}, true, "LU Decomposition failed.\n"},
      {"nodes in a row",
       {{{{1, 0, 0}, 1.0}, {{2, 0, 0}, 1.0}}},
       true,
       "LU Decomposition failed.\n"},
      {"no mass",
       {{{{1, 0, 0}, 0.0}, {{0, 2, 0}, 0.0}, {{0, 0, 1}, 0.0}}},
       true,
       "LU Decomposition failed.\n"},
      {"a speck",
       {{{{1e-160, 0, 0}, 1.0}, {{0, 2e-160, 0}, 1.0}, {{0, 0, 1e-160}, 1.0}}},
       true,
       "Failed in invert matrix.\n"},
      {"no modes", symmetric_body(), false, "Problem reading mode shape 10"},
  };
  for (const FailureCase &test : cases) {
    SCOPED_TRACE(test.what);
    // Without rotations a single node, or nodes in a row, can't show every motion.
    const std::vector<Mode> modes(test.has_modes ? 8 : 0, test.body.rigid_motion(0, false));
    QDL_Record *model = make(test.body, modes, kFreeFrequencies);
    const Values modal = {1, 2, 3, 4, 5, 6, 7, 8};
    set_load(model, 0, modal);
    QDL_SetModalPreload(model, 10, 1.0);
    QDL_RigidBodyForcesOnPrincipalAxes(model);
    expect_only_error(test.message);
    clear_messages();
    EXPECT_EQ(load(model, 0), modal);
    EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 0);
    EXPECT_EQ(QDL_ModalPreloadProcessed(model), 0);
  }
  const double infinity = std::numeric_limits<double>::infinity();
  for (const char *variable : {static_cast<const char *>(nullptr), "1"}) {
    const ScopedEnvironment masses("ZEB_MFORCE_NO_FEA_MASS", variable);
    for (const char *bad : {"mass", "mode", "load"}) {
      SCOPED_TRACE(bad);
      Body body = symmetric_body();
      std::vector<Mode> modes = body.orthonormal_rigid_modes(true);
      Values modal = {1, 2, 3, 4, 5, 6, 7, 8};
      if (bad == std::string("mass"))
        body.points[0].mass = infinity;
      if (bad == std::string("mode"))
        modes[2][1][0] = std::nan("");
      if (bad == std::string("load"))
        modal[2] = infinity;
      QDL_Record *model = make(body, modes, kFreeFrequencies);
      set_load(model, 0, modal);
      QDL_RigidBodyForcesOnPrincipalAxes(model);
      if (variable != nullptr && bad != std::string("load"))
        expect_only_error("LU Decomposition failed.\n");
      else
        expect_no_messages();
      clear_messages();
      EXPECT_EQ(load(model, 0), modal);
      EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 0);
    }
  }
  const ScopedEnvironment used("ZEB_MFORCE_NO_FEA_MASS", nullptr);
  QDL_Record *model = make(symmetric_body(), {}, kFreeFrequencies);
  set_load(model, 0, {1});
  QDL_RigidBodyForcesOnPrincipalAxes(model);
  expect_only_error("Problem reading mode shape 10");
  EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 0);
  clear_messages();
  QDL_RigidBodyForcesOnPrincipalAxes(nullptr);
  expect_only_error("The database has not been initialized.");
}

TEST_F(PrincipalForces, AreUnchangedWhenMemoryRunsOut) {
  const Body body = symmetric_body();
  for (const char *variable : {static_cast<const char *>(nullptr), "1"}) {
    const ScopedEnvironment unused("ZEB_MFORCE_NO_FEA_MASS", variable);
    QDL_Record *model = make(body, body.orthonormal_rigid_modes(true), kFreeFrequencies);
    const Values modal = {1, 2, 3, 4, 5, 6, 7, 8};
    set_load(model, 0, modal);
    const std::size_t faults = sweep(
        Door::kMemory, Persistence::kOnce,
        [&] {
          QDL_RigidBodyForcesOnPrincipalAxes(model);
          return 0;
        },
        [&](int, bool fired) {
          EXPECT_EQ(errors.size(), fired ? 1U : 0U);
          clear_messages();
          EXPECT_EQ(load(model, 0) == modal, fired);
          EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), fired ? 0 : 1);
        });
    EXPECT_GT(faults, 4U);
  }
}

}  // namespace
