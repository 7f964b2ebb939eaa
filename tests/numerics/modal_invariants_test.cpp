// Invariants 3, 4, 5, 6, 8 and 9, those of a file, and the functions that obtain several at once.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"
#include "support/read_fixture.h"

namespace {

using qdltest::taken;
using Values = std::vector<double>;
using Vector = std::array<double, 3>;

constexpr std::size_t size(std::int32_t count) {
  return static_cast<std::size_t>(count);
}

Values operator+(Values values, const Values &more) {
  values.insert(values.end(), more.begin(), more.end());
  return values;
}

// Invariants 3, 4, 5, 8 and 9 as the functions give them, mode by mode.
struct Modal {
  Values third, fourth, fifth, eighth, ninth;
};

Modal obtained(QDL_Record *model) {
  const std::int32_t modes = QDL_ModeCount(model);
  const std::size_t m = size(modes);
  Modal all;
  all.third = taken(QDL_Invar3(model), 3 * m);
  all.fourth = taken(QDL_Invar4(model), 3 * m);
  for (std::int32_t k = 0; k < modes; ++k) {
    all.fifth = all.fifth + taken(QDL_Invar5(model, k), 3 * m);
    all.eighth = all.eighth + taken(QDL_Invar8(model, k), 9);
    for (std::int32_t i = 0; i < modes; ++i)
      all.ninth = all.ninth + taken(QDL_Invar9(model, k, i), 9);
  }
  return all;
}

// What the interface tells of nodes and modes, for plain loops over them.
struct Body {
  std::size_t nodes, modes;
  Values masses, positions, inertias;
  std::vector<bool> has_inertia;
  std::vector<Values> translations, rotations;

  explicit Body(QDL_Record *model)
      : nodes(size(QDL_NodeCount(model))),
        modes(size(QDL_ModeCount(model))),
        positions(3 * nodes),
        inertias(9 * nodes),
        translations(modes, Values(3 * nodes)),
        rotations(translations) {
    for (std::size_t n = 0; n < nodes; ++n) {
      const auto index = static_cast<std::int32_t>(n);
      masses.push_back(QDL_NodalMass(model, index));
      QDL_NodeCoordinates(model, index, &positions[3 * n]);
      has_inertia.push_back(QDL_NodalInertia(model, index, &inertias[9 * n]) == 1);
    }
    for (std::size_t j = 0; j < modes; ++j) {
      const std::int32_t number = QDL_ModeNumber(model, static_cast<std::int32_t>(j));
      EXPECT_EQ(QDL_Mode(model, number, 0, translations[j].data(), 0), 1);
      EXPECT_EQ(QDL_Mode(model, number, 0, rotations[j].data(), 1), 1);
    }
  }
};

// The definitions, summed node by node: one loop over the nodes for each mode or pair of modes.
Modal summed(const Body &body) {
  const std::size_t m = body.modes;
  Modal all{Values(3 * m), Values(3 * m), Values(3 * m * m), Values(9 * m), Values(9 * m * m)};
  for (std::size_t j = 0; j < m; ++j) {
    Vector cross{};
    Vector rotational{};
    for (std::size_t n = 0; n < body.nodes; ++n) {
      const double mass = body.masses[n];
      const double *phi = &body.translations[j][3 * n];
      for (std::size_t c = 0; c < 3; ++c)
        all.third[c * m + j] += mass * phi[c];
      incr_scalar_tilde_vec(cross.data(), mass, &body.positions[3 * n], phi);
      incr_scalar_tilde_tilde(&all.eighth[9 * j], mass, &body.positions[3 * n], phi);
      const double *theta = &body.rotations[j][3 * n];
      const double *inertia = &body.inertias[9 * n];
      for (std::size_t c = 0; c < 3 && body.has_inertia[n]; ++c)
        rotational[c] +=
            inertia[c] * theta[0] + inertia[3 + c] * theta[1] + inertia[6 + c] * theta[2];
    }
    for (std::size_t c = 0; c < 3; ++c)
      all.fourth[c * m + j] = cross[c] + rotational[c];
  }
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t k = i; k < m; ++k) {
      Vector cross{};
      std::array<double, 9> tilde{};
      for (std::size_t n = 0; n < body.nodes; ++n) {
        const double *a = &body.translations[i][3 * n];
        const double *b = &body.translations[k][3 * n];
        incr_scalar_tilde_vec(cross.data(), body.masses[n], a, b);
        incr_scalar_tilde_tilde(tilde.data(), body.masses[n], a, b);
      }
      for (std::size_t c = 0; c < 3; ++c) {
        all.fifth[(k * 3 + c) * m + i] = -cross[c];
        all.fifth[(i * 3 + c) * m + k] = cross[c];
        // The last entry written stays: of a mode with itself that of the lower triangle.
        for (std::size_t d = 0; d < 3; ++d) {
          all.ninth[9 * (i * m + k) + 3 * c + d] = tilde[3 * c + d];
          all.ninth[9 * (k * m + i) + 3 * d + c] = tilde[3 * c + d];
        }
      }
    }
  }
  return all;
}

void expect_equal(const Modal &values, const Modal &expected) {
  EXPECT_EQ(values.third, expected.third);
  EXPECT_EQ(values.fourth, expected.fourth);
  EXPECT_EQ(values.fifth, expected.fifth);
  EXPECT_EQ(values.eighth, expected.eighth);
  EXPECT_EQ(values.ninth, expected.ninth);
}

void expect_near(const Values &values, const Values &expected, const char *what,
                 double tolerance = 1e-13) {
  ASSERT_EQ(values.size(), expected.size()) << what;
  double scale = 0.0;
  for (const double value : expected)
    scale = std::max(scale, std::fabs(value));
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_NEAR(values[i], expected[i], tolerance * scale) << what << " value " << i;
}

void expect_near(const Modal &values, const Modal &expected, double tolerance = 1e-13) {
  expect_near(values.third, expected.third, "invariant 3", tolerance);
  expect_near(values.fourth, expected.fourth, "invariant 4", tolerance);
  expect_near(values.fifth, expected.fifth, "invariant 5", tolerance);
  expect_near(values.eighth, expected.eighth, "invariant 8", tolerance);
  expect_near(values.ninth, expected.ninth, "invariant 9", tolerance);
}

// Masses, coordinates, modes and, at every third node, inertias without any pattern.
QDL_Record *irregular_model(std::int32_t nodes, std::int32_t modes) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  QDL_Record *model = QDL_Create(nodes, modes);
  for (std::int32_t n = 1; n <= nodes; ++n) {
    QDL_SetNodeCoordinates(model, n, uniform(random), uniform(random), uniform(random));
    QDL_SetNodalMass(model, n, uniform(random) + 1.5);
    if (n % 3 == 0) {
      QDL_SetNodalInertia(model, n, 1.5, 2.5, 3.5, uniform(random), uniform(random),
                          uniform(random));
    }
  }
  for (std::int32_t j = 1; j <= modes; ++j) {
    QDL_AddMode(model, j);
    for (std::int32_t n = 1; n <= nodes; ++n) {
      double six[6];
      std::ranges::generate(six, [&] { return uniform(random); });
      QDL_SetModeVec(model, j, n, 0, six);
    }
  }
  return model;
}

class ModalInvariants : public qdltest::ReadFixture {
 protected:
  // The sample file without its invariants but with nodal masses and, on demand, some blocks.
  QDL_Record *open_sample(std::set<int> more = {}) {
    more.insert({4, 7, 8, 9, 10, 11});
    QDL_Record *model = open(qdltest::build_file(60, more));
    EXPECT_NE(model, nullptr);
    clear_messages();
    return model;
  }
};

const Values kZeros(9);

}  // namespace

// A beam along x with powers of x as modes. Its nodes are the points of Gauss' quadrature and its
// masses the weights, so that the sums are the integrals.
TEST_F(ModalInvariants, OfABeamAreIntegralsOfItsModes) {
  constexpr double kMass = 12, kLength = 4, kGyration = 0.5;
  const double points[] = {-std::sqrt(0.6), 0, std::sqrt(0.6)};
  const double weights[] = {5.0 / 9, 8.0 / 9, 5.0 / 9};
  QDL_Record *model = QDL_Create(3, 3);
  for (std::int32_t n = 0; n < 3; ++n) {
    const double s = (1 + points[n]) / 2;
    const double mass = kMass * weights[n] / 2;
    const double rotary = mass * kGyration * kGyration;
    QDL_SetNodeCoordinates(model, n, kLength * s, 0, 0);
    QDL_SetNodalMass(model, n, mass);
    QDL_SetNodalInertia(model, n, 0, rotary, rotary, 0, 0, 0);
    // Bending s^2 along y with its slope about z, bending s^3 along z, stretch s.
    const double bending_y[] = {0, s * s, 0, 0, 0, 2 * s / kLength};
    const double bending_z[] = {0, 0, s * s * s, 0, -3 * s * s / kLength, 0};
    const double stretch[] = {s, 0, 0, 0, 0, 0};
    QDL_SetModeVec(model, 1, n, 0, bending_y);
    QDL_SetModeVec(model, 2, n, 0, bending_z);
    QDL_SetModeVec(model, 3, n, 0, stretch);
  }
  const double rotary = kMass * kGyration * kGyration / kLength;
  expect_near(taken(QDL_Invar3(model), 9), {0, 0, kMass / 2, kMass / 3, 0, 0, 0, kMass / 4, 0},
              "invariant 3");
  expect_near(taken(QDL_Invar4(model), 9),
              {0, 0, 0, 0, -kMass * kLength / 5 - rotary, 0, kMass * kLength / 4 + rotary, 0, 0},
              "invariant 4");
  // y x z = x, y x x = -z
  expect_near(taken(QDL_Invar5(model, 0), 9), {0, kMass / 6, 0, 0, 0, 0, 0, 0, -kMass / 4},
              "invariant 5");
  // ~x ~y = y x^T
  expect_near(taken(QDL_Invar8(model, 0), 9), {0, 0, 0, kMass * kLength / 4, 0, 0, 0, 0, 0},
              "invariant 8");
  expect_near(taken(QDL_Invar9(model, 2, 1), 9), {0, 0, 0, 0, 0, 0, kMass / 5, 0, 0},
              "invariant 9");
  expect_near(taken(QDL_Invar9(model, 0, 0), 9), {-kMass / 5, 0, 0, 0, 0, 0, 0, 0, -kMass / 5},
              "invariant 9");
}

// Numbers of nodes and modes on both sides of the sizes that the sums are cut into.
TEST_F(ModalInvariants, AreTheVeryNumbersOfPlainLoops) {
  for (const auto &[nodes, modes] :
       {std::pair{1, 1}, {127, 4}, {128, 5}, {130, 3}, {1025, 7}, {2200, 2}}) {
    SCOPED_TRACE(testing::Message() << nodes << " nodes, " << modes << " modes");
    QDL_Record *model = irregular_model(nodes, modes);
    expect_equal(obtained(model), summed(Body(model)));
    QDL_Record *in_bulk = irregular_model(nodes, modes);
    QDL_FullComputeInvars(in_bulk);
    expect_equal(obtained(in_bulk), obtained(model));
  }
}

TEST_F(ModalInvariants, OfModesInAFileAreThoseOfPlainLoops) {
  for (const char *const options : {"no_ortho", "no_ortho,single,no_xdr"}) {
    SCOPED_TRACE(options);
    const qdltest::ScopedEnvironment environment("ZEB_QDLWRITE_OPTIONS", options);
    ASSERT_EQ(QDL_write_QDL(irregular_model(300, 5), path("body.qdl").c_str()), 1);
    QDL_Record *read = QDL_CreateFromQDL(path("body.qdl").c_str());
    ASSERT_NE(read, nullptr);
    expect_equal(obtained(read), summed(Body(read)));
    QDL_UnLink(read);
  }
}

TEST_F(ModalInvariants, StayWithinTheMemoryForModes) {
  constexpr std::int32_t kNodes = 1100;
  constexpr std::size_t kModes = 50;
  const qdltest::ScopedEnvironment environment("QDL_MAX_MODE_MEMORY", "1");
  QDL_Record *model = irregular_model(kNodes, kModes);
  const qdltest::PeakMemory peak;
  QDL_FullComputeInvars(model);
  // Results, sums of half of the pairs, modes, and what belongs to single nodes.
  EXPECT_LT(peak.bytes(), (kModes * kModes * 12 + 52 * 54 * 6) * sizeof(double) + 1048576 + 300000);
  expect_equal(obtained(model), summed(Body(model)));
}

TEST_F(ModalInvariants, OfTheFileWinOverItsNodes) {
  const qdltest::SampleModel content = qdltest::sample_model();
  for (const std::int32_t code : {60, 0x13c, 0x23c, 0x33c}) {
    SCOPED_TRACE(qdltest::version_name(code));
    QDL_Record *model = open(qdltest::build_file(code));
    ASSERT_NE(model, nullptr);
    clear_messages();
    QDL_SetNodalMass(model, 7, 1000.0);
    EXPECT_EQ(QDL_Invar1(model), content.invariants[1][0]);
    EXPECT_EQ(taken(QDL_Invar2(model), 3), content.invariants[2]);
    EXPECT_EQ(taken(QDL_Invar7(model), 9), content.invariants[7]);
    const Modal values = obtained(model);
    expect_equal(values, {content.invariants[3], content.invariants[4], content.invariants[5],
                          content.invariants[8], content.invariants[9]});
    QDL_FullComputeInvars(model);
    expect_equal(obtained(model), values);
    EXPECT_EQ(errors, std::vector<std::string>{});
  }
}

TEST_F(ModalInvariants, TheFifthAndTheNinthAreDerivedTogether) {
  const qdltest::SampleModel content = qdltest::sample_model();
  QDL_Record *plain = open_sample();
  const Modal derived = obtained(plain);
  const Values fifth = {derived.fifth.begin(), derived.fifth.begin() + 6};
  const Values supplied = {content.invariants[5].begin(), content.invariants[5].begin() + 6};

  QDL_Record *model = open_sample({23});
  EXPECT_EQ(taken(QDL_Invar5(model, 0), 6), supplied);
  EXPECT_EQ(taken(QDL_Invar9(model, 0, 1), 9), (Values{&derived.ninth[9], &derived.ninth[9] + 9}));
  EXPECT_EQ(taken(QDL_Invar5(model, 0), 6), fifth) << "replaced";

  model = open(qdltest::build_file(60, {4, 7, 8, 11, 23}));
  EXPECT_EQ(taken(QDL_Invar9(model, 0, 1), 9), kZeros);
  EXPECT_EQ(taken(QDL_Invar5(model, 0), 6), supplied) << "nothing to replace it with";
}

TEST_F(ModalInvariants, SuppliedOnesSurviveTheDerivationOfOthers) {
  const qdltest::SampleModel content = qdltest::sample_model();
  QDL_Record *model = open_sample({22});
  const double moment[] = {1, 2, 3};
  EXPECT_EQ(QDL_SetInvar3(model, 9, moment), 1);
  EXPECT_NE(taken(QDL_Invar8(model, 0), 9), kZeros);
  EXPECT_EQ(taken(QDL_Invar3(model), 6), (Values{0, 1, 0, 2, 0, 3}));
  EXPECT_EQ(taken(QDL_Invar4(model), 6), content.invariants[4]);
}

TEST_F(ModalInvariants, FollowTheModesAndTheUnits) {
  QDL_Record *model = irregular_model(20, 3);
  const Modal before = obtained(model);
  const double six[] = {9, 8, 7, 6, 5, 4};
  QDL_SetModeVec(model, 2, 20, 0, six);
  EXPECT_NE(obtained(model).third, before.third);
  expect_equal(obtained(model), summed(Body(model)));

  for (const bool early : {true, false}) {
    QDL_Record *changed = irregular_model(20, 3);
    ASSERT_EQ(QDL_SetUnits(changed, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    const Modal in_meters = early ? obtained(changed) : Modal{};
    ASSERT_EQ(QDL_SetUnits(changed, "GRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
    const Modal values = obtained(changed);
    expect_near(values, summed(Body(changed)), 1e-12);
    for (std::size_t i = 0; i < in_meters.third.size(); ++i)
      EXPECT_NEAR(values.third[i], 1e6 * in_meters.third[i], 1e-7);
    for (std::size_t i = 0; i < in_meters.ninth.size(); ++i)
      EXPECT_NEAR(values.ninth[i], 1e9 * in_meters.ninth[i], 1e-4);
  }
}

TEST_F(ModalInvariants, AModeThatCannotBeReadCountsAsZero) {
  const Modal whole = obtained(open_sample());
  const qdltest::SampleFile sample = qdltest::build_file(60, {4, 7, 8, 9, 10, 11});
  QDL_Record *model = open_sample();
  // The second mode stands last in its block.
  std::filesystem::resize_file(path("body.qdl"), sample.offset[9] - 8);
  const Modal values = obtained(model);
  EXPECT_EQ(errors, std::vector<std::string>(2, "Problem reading mode shape 9"))
      << "once for each walk through the modes";
  const auto first_of = [](const Values &both) {
    return Values{both[0], 0, both[2], 0, both[4], 0};
  };
  EXPECT_EQ(values.third, first_of(whole.third));
  EXPECT_EQ(values.fourth, first_of(whole.fourth));
  EXPECT_EQ(values.fifth, Values(12));
  EXPECT_EQ(values.eighth, (Values{whole.eighth.begin(), whole.eighth.begin() + 9} + kZeros));
  EXPECT_EQ(values.ninth, (Values{whole.ninth.begin(), whole.ninth.begin() + 9} + Values(27)));
}

TEST_F(ModalInvariants, ANaNStaysWithItsMode) {
  QDL_Record *model = irregular_model(10, 3);
  const Modal before = obtained(model);
  const double six[] = {NAN, 1, 2, 3, 4, 5};
  QDL_SetModeVec(model, 2, 4, 0, six);
  const Modal values = obtained(model);
  EXPECT_TRUE(std::isnan(values.third[1]));
  EXPECT_TRUE(std::isnan(values.ninth[9 * 1 + 1]));
  EXPECT_EQ(values.third[2], before.third[2]);
  EXPECT_EQ(taken(QDL_Invar9(model, 0, 2), 9), (Values{&before.ninth[18], &before.ninth[18] + 9}));
}

TEST_F(ModalInvariants, AreNullForNothing) {
  EXPECT_EQ(QDL_Invar3(nullptr), nullptr);
  EXPECT_EQ(QDL_Invar5(nullptr, 0), nullptr);
  EXPECT_EQ(QDL_Invar6(nullptr), nullptr);
  EXPECT_EQ(QDL_Invar9(nullptr, 0, 0), nullptr);
  QDL_FullComputeInvars(nullptr);
  EXPECT_EQ(errors, std::vector<std::string>(5, "The database has not been initialized."));
  clear_messages();

  QDL_Record *model = irregular_model(2, 0);
  for (double *const values : {QDL_Invar3(model), QDL_Invar4(model), QDL_Invar5(model, 0),
                               QDL_Invar6(model), QDL_Invar8(model, 0), QDL_Invar9(model, 0, 0)})
    EXPECT_EQ(values, nullptr);
  EXPECT_EQ(taken(QDL_Invar7(model), 9).size(), 9U);

  model = irregular_model(2, 2);
  for (double *const values :
       {QDL_Invar5(model, -1), QDL_Invar5(model, 2), QDL_Invar8(model, -1), QDL_Invar8(model, 2),
        QDL_Invar9(model, 0, 2), QDL_Invar9(model, -1, 0)})
    EXPECT_EQ(values, nullptr);
  expect_only_warnings({});
}

TEST_F(ModalInvariants, TheSixthIsTheGeneralizedMass) {
  QDL_Record *model = irregular_model(1, 2);
  QDL_SetGeneralizedMass(model, 1, 1, 4.0);
  QDL_SetGeneralizedMass(model, 1, 2, 0.5);
  EXPECT_EQ(taken(QDL_Invar6(model), 4), (Values{4, 0.5, 0.5, 0}));
}

TEST_F(ModalInvariants, WithoutNodesAreZerosOrNull) {
  QDL_Record *model = irregular_model(0, 2);
  qdlflex::raise(*model, qdlflex::Block::kNodalMasses);
  EXPECT_EQ(taken(QDL_Invar3(model), 6), Values(6));
  EXPECT_EQ(taken(QDL_Invar4(model), 6), Values(6));
  EXPECT_EQ(QDL_Invar9(model, 0, 1), nullptr) << "the first of the pairs fails";
  EXPECT_EQ(taken(QDL_Invar9(model, 0, 1), 9), kZeros);
  EXPECT_EQ(taken(QDL_Invar5(model, 1), 6), Values(6));
  expect_no_messages();
  EXPECT_EQ(QDL_Invar8(model, 0), nullptr);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_TRUE(errors[0].starts_with("Failed to allocate memory at line ")) << errors[0];
}

TEST_F(ModalInvariants, InBulkSayWhatTheyDoAndWhatIsMissing) {
  const std::string zeros =
      " set of mass invariants.\nSome or all mass invariants will be set to "
      "zero.";
  const std::string full = "There is insufficient mass data to compute a full" + zeros;
  const struct {
    void (*compute)(QDL_Record *);
    std::string insufficient, announcement;
    std::set<int> blocks;
    bool needs_modes;
  } cases[] = {
      {QDL_FastComputeInvars,
       "There is insufficient mass data to compute a partial" + zeros,
       "Computing fast set of invariants",
       {19, 20, 21, 22, 24, 25},
       true},
      {QDL_FullComputeInvars,
       full,
       "Computing *all* invariants",
       {19, 20, 21, 22, 23, 24, 25, 26},
       true},
      {QDL_RigidComputeInvars, full, "Computing *rigid* invariants", {19, 20, 24}, false},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.announcement);
    const auto expect = [&](QDL_Record *model, bool sufficient) {
      clear_messages();
      c.compute(model);
      EXPECT_EQ(errors, std::vector<std::string>(sufficient ? 0 : 1, c.insufficient));
      EXPECT_EQ(infos, std::vector<std::string>{c.announcement});
    };
    expect(open_sample(), true);
    QDL_Record *without_modes = irregular_model(2, 0);
    expect(without_modes, !c.needs_modes);

    std::set<int> blocks = c.blocks;
    blocks.insert({4, 7, 8, 11});
    expect(open(qdltest::build_file(60, blocks)), true);
    blocks.erase(24);
    QDL_Record *incomplete = open(qdltest::build_file(60, blocks));
    expect(incomplete, false);
    expect(incomplete, true);  // zeros count as obtained
    EXPECT_EQ(taken(QDL_Invar7(incomplete), 9), kZeros);
  }
}

TEST_F(ModalInvariants, SurviveEveryFailedAllocation) {
  QDL_Record *model = irregular_model(3, 2);
  const Modal expected = summed(Body(model));
  for (const qdltest::Persistence persistence :
       {qdltest::Persistence::kOnce, qdltest::Persistence::kEverAfter}) {
    const std::size_t faults = qdltest::sweep(
        qdltest::Door::kMemory, persistence,
        [&] {
          QDL_Record *fresh = nullptr;
          {
            const qdltest::PauseFaults pause;
            clear_messages();
            fresh = irregular_model(3, 2);
          }
          QDL_FullComputeInvars(fresh);
          QDL_FreeMemory(QDL_Invar3(fresh));
          QDL_FreeMemory(QDL_Invar6(fresh));
          QDL_FreeMemory(QDL_Invar9(fresh, 0, 1));
          return fresh;
        },
        [&](QDL_Record *fresh, bool fired) {
          EXPECT_EQ(errors.empty(), !fired);
          for (const std::string &error : errors)
            EXPECT_TRUE(error.starts_with("Failed to allocate memory at line ")) << error;
          expect_equal(obtained(fresh), expected);
          QDL_UnLink(fresh);
        });
    EXPECT_GT(faults, 10U);
  }
}

TEST_F(ModalInvariants, TildeProductsAreAddedUp) {
  const double a[] = {1, 2, 3};
  const double b[] = {5, 7, 11};
  double tensor[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  incr_scalar_tilde_tilde(tensor, 2.0, a, b);
  // 1 + 2 (b a^T - (a . b) E), with a . b = 52
  EXPECT_EQ(Values(tensor, tensor + 9), (Values{-93, 21, 31, 15, -75, 43, 23, 45, -37}));
  double vector[3] = {1, 1, 1};
  incr_scalar_tilde_vec(vector, 2.0, a, b);
  EXPECT_EQ(Values(vector, vector + 3), (Values{3, 9, -5}));
  incr_scalar_tilde_tilde(nullptr, 2.0, a, b);
  incr_scalar_tilde_vec(vector, 2.0, nullptr, b);
}
