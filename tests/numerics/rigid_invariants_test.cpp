// Invariants 1, 2 and 7 from each of their sources, and the global mass properties.
#include <gtest/gtest.h>

#include <qdlflex/qdlflex.h>
#include <filesystem>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "numerics/qdlinvar.h"
#include "support/fixture.h"
#include "support/read_fixture.h"

namespace {

using qdltest::taken;
using Values = std::vector<double>;

Values invariant2(QDL_Record *model) {
  return taken(QDL_Invar2(model), 3);
}
Values invariant7(QDL_Record *model) {
  return taken(QDL_Invar7(model), 9);
}

struct GlobalMass {
  double mass = -1;
  Values centre = Values(3, -1);
  Values inertia = Values(9, -1);
  bool operator==(const GlobalMass &) const = default;
};

class RigidInvariants : public qdltest::ReadFixture {
 protected:
  static void add_node(QDL_Record *model, std::int32_t id, double mass,
                       const std::array<double, 3> &xyz) {
    QDL_SetNodeCoordinates(model, id, xyz[0], xyz[1], xyz[2]);
    QDL_SetNodalMass(model, id, mass);
  }

  static GlobalMass total(QDL_Record *model) {
    GlobalMass global;
    EXPECT_EQ(
        QDL_TotalMassInertia(model, &global.mass, global.centre.data(), global.inertia.data()), 1);
    return global;
  }

  static std::int32_t set(QDL_Record *model, const GlobalMass &global) {
    return QDL_SetGlobalMass(model, global.mass, global.centre.data(), global.inertia.data());
  }
};

const GlobalMass kBody = {4, {1, 2, -3}, {50, 1, 2, 1, 60, 3, 2, 3, 70}};

const std::string kMassWarning =
    "Global mass is inconsistent with INVAR1 setting or sum of nodal masses.";
const std::string kCentreWarning =
    "Global center of mass is inconsistent with INVAR2 setting or nodal data.";
const std::string kInertiaWarning =
    "Global mass inertia is inconsistent with INVAR7 setting or nodal data.";

}  // namespace

TEST_F(RigidInvariants, ReportANullHandle) {
  EXPECT_EQ(QDL_Invar1(nullptr), 0.0);
  EXPECT_EQ(QDL_Invar2(nullptr), nullptr);
  EXPECT_EQ(QDL_Invar7(nullptr), nullptr);
  EXPECT_EQ(errors, std::vector<std::string>(3, "The database has not been initialized."));
}

TEST_F(RigidInvariants, AreSumsOverTheNodes) {
  QDL_Record *model = QDL_Create(3, 0);
  add_node(model, 1, 2.0, {1, 2, 3});
  add_node(model, 2, 0.5, {-4, 0, 2});
  QDL_SetNodeCoordinates(model, 3, 100, 100, 100);  // without mass
  EXPECT_EQ(QDL_Invar1(model), 2.5);
  EXPECT_EQ(invariant2(model), (Values{0, 4, 7}));
  // m (y^2 + z^2) = 2 * 13 + 0.5 * 4 and so on; products negative.
  EXPECT_EQ(invariant7(model), (Values{28, -4, -2, -4, 30, -12, -2, -12, 18}));
  QDL_SetNodalInertia(model, 3, 1, 2, 3, 0.25, 0.5, 0.75);
  EXPECT_EQ(invariant7(model), (Values{29, -3.75, -1.5, -3.75, 32, -11.25, -1.5, -11.25, 21}));
  expect_no_messages();
}

TEST_F(RigidInvariants, ComeFromTheGlobalMassWithoutNodalMasses) {
  QDL_Record *model = QDL_Create(3, 0);
  QDL_SetNodeCoordinates(model, 1, 1, 1, 1);
  EXPECT_EQ(QDL_Invar1(model), 0.0);
  EXPECT_EQ(QDL_Invar1(model), 0.0);
  EXPECT_EQ(invariant2(model), Values(3));
  EXPECT_EQ(invariant7(model), Values(9));
  expect_no_messages();
  set(model, kBody);
  EXPECT_EQ(QDL_Invar1(model), 4.0);
  EXPECT_EQ(invariant2(model), (Values{4, 8, -12}));
  EXPECT_EQ(invariant7(model), (Values{50, -1, -2, -1, 60, -3, -2, -3, 70}));

  // Without a mass, centre and inertia count for nothing.
  set(model, {0, kBody.centre, kBody.inertia});
  EXPECT_EQ(invariant2(model), Values(3));
  EXPECT_EQ(invariant7(model), Values(9));

  // Nodal masses count even when they sum up to nothing.
  set(model, kBody);
  QDL_SetNodalMass(model, 1, 0.0);
  EXPECT_EQ(QDL_Invar1(model), 0.0);
}

TEST_F(RigidInvariants, FollowEverySetterTheyDependOn) {
  QDL_Record *model = QDL_Create(3, 0);
  add_node(model, 1, 2.0, {1, 0, 0});
  EXPECT_EQ(QDL_Invar1(model), 2.0);
  EXPECT_EQ(invariant2(model), (Values{2, 0, 0}));
  EXPECT_EQ(invariant7(model)[4], 2.0);
  QDL_SetNodeCoordinates(model, 1, 3, 0, 0);
  EXPECT_EQ(invariant2(model)[0], 6.0);
  EXPECT_EQ(invariant7(model)[4], 18.0);
  QDL_AddNodalMass(model, 1, 1.0);
  EXPECT_EQ(QDL_Invar1(model), 3.0);
  EXPECT_EQ(invariant2(model)[0], 9.0);
  EXPECT_EQ(invariant7(model)[4], 27.0);
  QDL_SetNodalInertiaEntry(model, 1, 2, 2, 0.5);
  EXPECT_EQ(invariant7(model)[4], 27.5);
  QDL_SetNodalMass(model, 2, 1.0);
  EXPECT_EQ(QDL_Invar1(model), 4.0);
}

TEST_F(RigidInvariants, GivenByASetterStay) {
  QDL_Record *model = QDL_Create(3, 0);
  const double moment[] = {7, 8, 9};
  const double inertia[] = {1, 2, 3, 4, 5, 6};
  QDL_SetInvar1(model, 11);
  QDL_SetInvar2(model, moment);
  QDL_SetInvar7(model, inertia);
  add_node(model, 1, 2.0, {1, 0, 0});
  QDL_SetNodalInertia(model, 1, 1, 1, 1, 1, 1, 1);
  set(model, kBody);
  EXPECT_EQ(QDL_Invar1(model), 11.0);
  EXPECT_EQ(invariant2(model), (Values{7, 8, 9}));
  EXPECT_EQ(invariant7(model), (Values{1, 4, 5, 4, 2, 6, 5, 6, 3}));
}

TEST_F(RigidInvariants, OfAFileAreConvertedOnceToTheModelsUnits) {
  const qdltest::SampleModel content = qdltest::sample_model();
  // Read before the change of units, and after it.
  for (const bool early : {true, false}) {
    QDL_Record *model = open(qdltest::build_file(60));
    ASSERT_NE(model, nullptr);
    if (early) {
      for (const int number : {1, 2, 3, 4, 5, 7, 8, 9})
        qdlflex::obtain_invariant(*model, number);
    }
    ASSERT_EQ(QDL_SetUnits(model, "GRAM", "METER", "SECOND", "NEWTON"), 1);
    const std::array<int, 10> length_powers = {0, 0, 1, 1, 2, 2, 0, 2, 2, 2};
    for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
      const auto index = static_cast<std::size_t>(number);
      const Values values = qdlflex::obtain_invariant(*model, number).values;
      const Values &stored = content.invariants[index];
      ASSERT_EQ(values.size(), stored.size());
      const double factor = 1000 * std::pow(0.001, length_powers[index]);
      for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(values[i], stored[i] * factor, 1e-13 * std::fabs(values[i])) << number;
      }
    }
  }
}

TEST_F(RigidInvariants, OfAFileThatLacksThemAreSummed) {
  QDL_Record *model = open(qdltest::build_file(60, {4, 7, 8, 9, 11}));
  ASSERT_NE(model, nullptr);
  double mass = 0.0;
  for (const auto &node : qdltest::sample_model().nodal_masses)
    mass += node.values[0];
  EXPECT_EQ(QDL_Invar1(model), mass);
}

TEST_F(RigidInvariants, OfABlockForOtherModesAreReportedAndRead) {
  qdltest::SampleModel content = qdltest::sample_model();
  qdltest::SampleFile sample = qdltest::build_file(60, {4, 7, 8, 11, 26}, content);
  sample.patch_i32(sample.offset[26], 3);
  QDL_Record *model = open(sample);
  ASSERT_NE(model, nullptr);
  clear_messages();
  EXPECT_EQ(qdlflex::obtain_invariant(*model, 9).values, content.invariants[9]);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_TRUE(errors[0].starts_with("nm!=ModeCount at line ")) << errors[0];
  EXPECT_TRUE(errors[0].ends_with(" in file qdlinvar")) << errors[0];
  qdlflex::obtain_invariant(*model, 9);
  EXPECT_EQ(errors.size(), 1u) << "read once";
}

// Zeros, or values derived from the nodes, would pass for what the file holds.
TEST_F(RigidInvariants, OfABlockThatCannotBeReadAreNotReplaced) {
  for (const std::int32_t code : {60, 0x33c}) {
    const qdltest::SampleFile sample = qdltest::build_file(code);
    for (const int number : {1, 3, 7, 9}) {
      SCOPED_TRACE(number);
      QDL_Record *model = open(sample);
      ASSERT_NE(model, nullptr);
      const int block = number < 6 ? 18 + number : 17 + number;
      std::filesystem::resize_file(path("body.qdl"),
                                   sample.offset[static_cast<std::size_t>(block)] + 3);
      EXPECT_TRUE(qdlflex::obtain_invariant(*model, number).values.empty());
      // Nothing behind the cut can be read: the global mass properties are zero there.
      const GlobalMass global = total(model);
      EXPECT_EQ(global.mass == 0.0, number == 1);
      EXPECT_EQ(global.centre == Values(3), number == 1);
      EXPECT_EQ(global.inertia == Values(9), number != 9);
      clear_messages();
      EXPECT_EQ(QDL_write_QDL(model, path("copy.qdl").c_str()), 0);
      EXPECT_FALSE(std::filesystem::exists(path("copy.qdl")));
      EXPECT_EQ(errors.empty(), false);
    }
  }
}

TEST_F(RigidInvariants, ImplyTheGlobalMass) {
  QDL_Record *model = QDL_Create(3, 0);
  add_node(model, 1, 2.0, {1, 2, 3});
  add_node(model, 2, 0.5, {-4, 0, 2});
  ASSERT_EQ(QDL_CalculateGlobalMassFromNodeMass(model), 1);
  EXPECT_EQ(total(model), (GlobalMass{2.5, {0, 1.6, 2.8}, {28, 4, 2, 4, 30, 12, 2, 12, 18}}));

  QDL_Record *massless = QDL_Create(1, 0);
  add_node(massless, 1, 0.0, {1, 2, 3});
  EXPECT_EQ(total(massless), (GlobalMass{0, Values(3), Values(9)}));
  expect_no_messages();
}

TEST_F(RigidInvariants, GlobalMassThatIsSetIsReadBack) {
  QDL_Record *model = QDL_Create(0, 0);
  ASSERT_EQ(set(model, kBody), 1);
  expect_only_warnings({kMassWarning, kCentreWarning, kInertiaWarning});
  EXPECT_EQ(total(model), kBody);
  EXPECT_EQ(QDL_Exists(model, 5), 1);
  clear_messages();
  ASSERT_EQ(set(model, kBody), 1);
  expect_no_messages();
}

TEST_F(RigidInvariants, GlobalMassIsComparedWithWhatTheModelImplies) {
  const auto changed = [](auto change) {
    GlobalMass body = kBody;
    change(body);
    return body;
  };
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const struct {
    GlobalMass given;
    std::vector<std::string> warnings;
  } cases[] = {
      {kBody, {}},
      {changed([](auto &b) { b.mass *= 1 + 0.9e-8; }), {}},
      {changed([](auto &b) { b.mass *= 1 + 1.1e-8; }), {kMassWarning}},
      {changed([](auto &b) { b.mass = kNaN; }), {kMassWarning}},
      {changed([](auto &b) { b.centre[2] += 2.7e-8; }), {}},
      {changed([](auto &b) { b.centre[2] += 3.3e-8; }), {kCentreWarning}},
      {changed([](auto &b) {
         b.centre = {0, 0, 0};
       }),
       {kCentreWarning}},
      {changed([](auto &b) { b.inertia[8] = kNaN; }), {kInertiaWarning}},
      {changed([](auto &b) { b.inertia[5] = -b.inertia[5]; }), {kInertiaWarning}},
      {changed([](auto &b) { b.mass = 1, b.centre[0] = 0, b.inertia[0] = 0; }),
       {kMassWarning, kCentreWarning, kInertiaWarning}},
  };
  for (const auto &[given, expected] : cases) {
    QDL_Record *model = QDL_Create(0, 0);
    const double moment[] = {4, 8, -12};
    const double inertia[] = {50, 60, 70, -1, -2, -3};
    QDL_SetInvar1(model, 4);
    QDL_SetInvar2(model, moment);
    QDL_SetInvar7(model, inertia);
    clear_messages();
    EXPECT_EQ(set(model, given), 1);
    expect_only_warnings(expected);
  }
}

TEST_F(RigidInvariants, GlobalMassOfZeroIsAnnounced) {
  QDL_Record *model = QDL_Create(0, 0);
  ASSERT_EQ(set(model, {0, {0, 0, 0}, Values(9)}), 1);
  expect_only_warnings({});
  EXPECT_EQ(infos, std::vector<std::string>{"Global mass is being set to zero."});

  // With a moment but no mass the centre is that of the given mass.
  const double moment[] = {4, 8, -12};
  QDL_SetInvar2(model, moment);
  clear_messages();
  ASSERT_EQ(set(model, {4, {1, 2, -3}, Values(9)}), 1);
  expect_only_warnings({kMassWarning});
}

TEST_F(RigidInvariants, NodalMassesOverrideAGlobalMassThatWasSet) {
  QDL_Record *model = QDL_Create(1, 0);
  add_node(model, 1, 2.0, {1, 0, 0});
  set(model, kBody);
  EXPECT_EQ(total(model), (GlobalMass{2, {1, 0, 0}, {0, 0, 0, 0, 2, 0, 0, 0, 2}}));
}
