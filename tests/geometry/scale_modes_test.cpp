// Modes multiplied by a factor, and the reference frame moved to the centre of mass.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "geometry/job_fixture.h"
#include "record/record.h"

namespace qdltest {
namespace {

using Values = std::vector<double>;
using Texts = std::vector<std::string>;

class ScaleModes : public JobFixture {
 protected:
  static Values fetched(QDL_Record *model, int kind) {
    const auto half = 3 * static_cast<std::size_t>(QDL_ModeNodeCount(model, kind));
    Values all(4 * half);
    for (std::size_t i = 0; i < 4; ++i) {
      const int number = QDL_ModeNumber(model, static_cast<int>(i / 2));
      EXPECT_EQ(QDL_Mode(model, number, kind, all.data() + i * half, static_cast<int>(i % 2)), 1);
    }
    return all;
  }

  static Values times(double factor, Values values) {
    for (double &value : values)
      value *= factor;
    return values;
  }

  static Values flat(const std::vector<qdlflex::Vector6> &vectors) {
    Values values;
    for (const auto &vector : vectors)
      values.insert(values.end(), vector.begin(), vector.end());
    return values;
  }
};

}  // namespace

TEST_F(ScaleModes, ScalesEveryKindAndItsPreVectors) {
  const SampleModel sample = sample_model();
  for (const int version : {60, 60 | kXdrBit | kSingleBit}) {
    QDL_Record *model = open(build_file(version));
    EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    const Values pre_stress = flat(model->pre_stress);
    for (const int kind : {QDL_MODE_SHAPE, QDL_MODE_STRESS, QDL_MODE_STRAIN}) {
      const Values before = fetched(model, kind);
      EXPECT_EQ(QDL_ScaleModes(model, kind, -2.0), 1);
      // A power of two is exact in single precision as well, but the units' conversion is not.
      const Values after = fetched(model, kind);
      for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_FLOAT_EQ(static_cast<float>(after[i]), static_cast<float>(-2.0 * before[i]));
      if (version == 60) {
        EXPECT_EQ(after, times(-2.0, before));
      }
      EXPECT_EQ(flat(model->pre_stress), times(kind == QDL_MODE_SHAPE ? 1.0 : -2.0, pre_stress));
      EXPECT_EQ(flat(model->pre_strain),
                times(kind == QDL_MODE_STRAIN ? -2.0 : 1.0, sample.pre_strain));
      for (const auto &mode : model->statistics.modes)
        EXPECT_EQ(mode.node_ids[static_cast<std::size_t>(kind) + 1], 0);
    }
    EXPECT_EQ(QDL_GetKeepModesInMemory(model, nullptr), 1);
    EXPECT_EQ(errors, Texts{});
    EXPECT_EQ(warnings, Texts{});
  }
}

TEST_F(ScaleModes, ScalesTheInvariantsWithTheModeShapesOnly) {
  const SampleModel sample = sample_model();
  QDL_Record *model = open(build_file(60));
  EXPECT_EQ(QDL_ScaleModes(model, QDL_MODE_STRESS, 3.0), 1);
  EXPECT_EQ(QDL_ScaleModes(model, QDL_MODE_SHAPE, 3.0), 1);
  for (const std::size_t number : {3U, 4U, 8U})
    EXPECT_EQ(model->invariants[number].values, times(3.0, sample.invariants[number]));
  for (const std::size_t number : {5U, 9U})
    EXPECT_EQ(model->invariants[number].values, times(9.0, sample.invariants[number]));
}

TEST_F(ScaleModes, WarnsWithoutModesAndScalesThePreVectorAllTheSame) {
  QDL_Record *model = QDL_Create(1, 1);
  const double six[] = {1, 2, 3, 4, 5, 6};
  QDL_SetPreStressVec(model, 1, six);
  EXPECT_EQ(QDL_ScaleModes(model, QDL_MODE_STRESS, 2.0), 1);
  expect_only_warnings({"No Mode Shape Data found in this QDL file. \n"});
  EXPECT_EQ(flat(model->pre_stress), times(2.0, Values(six, six + 6)));
  EXPECT_EQ(temporary_files(), Texts{});
  clear_messages();
  EXPECT_EQ(QDL_ScaleModes(model, 3, 2.0), 0);
  expect_no_messages();
}

TEST_F(ScaleModes, NamesTheFileThatCannotBeMadeWithoutAFullStop) {
  QDL_Record *model = open(build_file(60));
  const ScopedEnvironment nowhere("TMP", "/no/such/directory");
  EXPECT_EQ(QDL_ScaleModes(model, QDL_MODE_SHAPE, 2.0), 0);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_TRUE(errors[0].ends_with("setting the TMP environment variable"));
}

TEST_F(ScaleModes, LeavesTheModesWhenItFails) {
  const SampleFile sample = build_file(60);
  const Values values = fetched(open(sample), QDL_MODE_SHAPE);
  sweep_job([&] { return open(sample); },
            [](QDL_Record *model) { return QDL_ScaleModes(model, QDL_MODE_SHAPE, 2.0); },
            [&](QDL_Record *model, bool done) {
              EXPECT_EQ(fetched(model, QDL_MODE_SHAPE), times(done ? 2.0 : 1.0, values));
            });
}

namespace {

class ShiftFrame : public MessageFixture {
 protected:
  // Masses 1 and 3 with their centre at (1, 2, 3), and as many rigid-body modes as wanted.
  static QDL_Record *body(int rigid_modes, double mass = 1.0) {
    QDL_Record *model = QDL_Create(2, 8);
    QDL_SetNodeCoordinates(model, 1, -2, 5, 3);
    QDL_SetNodeCoordinates(model, 2, 2, 1, 3);
    QDL_SetNodalMass(model, 1, mass);
    QDL_SetNodalMass(model, 2, 3 * mass);
    for (int mode = 1; mode <= 7; ++mode) {
      QDL_AddMode(model, mode);
      QDL_SetGeneralizedMass(model, mode, mode, 1.0);
      QDL_SetGeneralizedStiffness(model, mode, mode, mode <= rigid_modes ? 0.0 : 1e6);
      QDL_SetModalPreload(model, mode, mode);
      QDL_SetModalLoad(model, 1, mode, 10.0 * mode);
    }
    return model;
  }

  static std::array<double, 3> place(QDL_Record *model, int node) {
    std::array<double, 3> xyz{};
    QDL_NodeCoordinates(model, node, xyz.data());
    return xyz;
  }
};

}  // namespace

TEST_F(ShiftFrame, TakesTheCentreOffEveryNodeAndOneComponentOffTheGlobalCentre) {
  QDL_Record *model = body(5);
  const double centre[] = {1, 2, 3};
  const double inertia[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  QDL_SetGlobalMass(model, 4.0, centre, inertia);
  // Derived before the shift, and anew after it.
  QDL_FreeMemory(QDL_Invar2(model));
  clear_messages();
  EXPECT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  double *const moment = QDL_Invar2(model);
  EXPECT_EQ(Values(moment, moment + 3), Values(3));
  QDL_FreeMemory(moment);
  EXPECT_EQ(place(model, 0), (std::array{-3.0, 3.0, 0.0}));
  EXPECT_EQ(place(model, 1), (std::array{1.0, -1.0, 0.0}));
  EXPECT_EQ(model->global_mass.centre, (qdlflex::Vector3{0, 2, 3}));
  EXPECT_EQ(infos, Texts{"Shifting LBRF to CM at (1.000e+00,2.000e+00,3.000e+00)\n"});
  EXPECT_EQ(model->preload.values, (Values{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(ShiftFrame, CarriesMomentsWithSixRigidBodyModes) {
  QDL_Record *model = body(6);
  EXPECT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  // (1, 2, 3) x (1, 2, 3) = 0, but also for the load, a multiple; so tilt the load first.
  EXPECT_EQ(model->preload.values, (Values{1, 2, 3, 4, 5, 6, 7}));
  QDL_SetNodeCoordinates(model, 1, -3, 3 + 4, 0);  // the centre goes to (0, 1, 0)
  EXPECT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  // (0, 1, 0) x (1, 2, 3) = (3, 0, -1)
  EXPECT_EQ(model->preload.values, (Values{1, 2, 3, 1, 5, 7, 7}));
  EXPECT_EQ(model->modal_loads[1].values, (Values{10, 20, 30, 10, 50, 70, 70}));
  EXPECT_TRUE(model->modal_loads[0].values.empty());
}

TEST_F(ShiftFrame, DoesNothingWithoutMass) {
  QDL_Record *model = body(6, 0.0);
  QDL_Record *empty = QDL_Create(0, 0);
  clear_messages();
  EXPECT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  EXPECT_EQ(place(model, 0), (std::array{-2.0, 5.0, 3.0}));
  EXPECT_EQ(QDL_ShiftLBRFtoCM(empty), 1);
  expect_no_messages();
}

}  // namespace qdltest
