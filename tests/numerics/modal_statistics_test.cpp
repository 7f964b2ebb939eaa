// The largest displacement, rotation, von Mises stress and strain of a mode.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMode = 7;

using Six = std::array<double, 6>;

enum Kind : std::int32_t { kShape, kStress, kStrain };

struct Largest {
  std::int32_t result = -1;
  std::int32_t node = -1;
  double value = -1.0;
};

using Getter = int32_t (*)(QDL_Record *, int32_t, int32_t *, double *);

constexpr std::array<Getter, 4> kGetters = {QDL_GetMaxModeDisplacement, QDL_GetMaxModeRotation,
                                            QDL_GetMaxVonMisesStress, QDL_GetMaxVonMisesStrain};

Largest ask(Getter getter, QDL_Record *model, std::int32_t mode = kMode) {
  Largest largest;
  largest.result = getter(model, mode, &largest.node, &largest.value);
  return largest;
}

void expect_largest(const Largest &got, std::int32_t node, double value) {
  EXPECT_EQ(got.result, 1);
  EXPECT_EQ(got.node, node);
  EXPECT_DOUBLE_EQ(got.value, value);
}

class Statistics : public MessageFixture {
 protected:
  // Mode 7 with the given values at nodes 101, 102, ...
  QDL_Record *with_mode(Kind kind, const std::vector<Six> &values) {
    QDL_Record *model = QDL_Create(static_cast<std::int32_t>(values.size()), 3);
    std::int32_t node = 100;
    for (const Six &six : values)
      QDL_SetModeVec(model, kMode, ++node, kind, six.data());
    clear_messages();
    return model;
  }
};

TEST_F(Statistics, LargestDisplacementAndRotation) {
  QDL_Record *model =
      with_mode(kShape, {{1, 0, 0, 0, 0, 0.5}, {2, -3, 6, 0, 0, 0}, {0, 6, 0, -1, 2, 2}});
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 102, 7.0);
  expect_largest(ask(QDL_GetMaxModeRotation, model), 103, 3.0);
  EXPECT_EQ(QDL_GetMaxModeRotation(model, kMode, nullptr, nullptr), 1);
  expect_no_messages();
}

struct TensorCase {
  const char *what;
  Six tensor;
  double value;
};

// Closed forms; the oblique states are uniaxial ones, n n^T with n = (1, 2, 2) / 3, times 9.
TEST_F(Statistics, VonMisesStressOfKnownStates) {
  const std::vector<TensorCase> cases = {
      {"uniaxial", {0, -250, 0, 0, 0, 0}, 250.0},
      {"pressure", {80, 80, 80, 0, 0, 0}, 0.0},
      {"biaxial", {100, 100, 0, 0, 0, 0}, 100.0},
      {"shear xy", {0, 0, 0, 50, 0, 0}, 50.0 * std::sqrt(3.0)},
      {"shear xz", {0, 0, 0, 0, -50, 0}, 50.0 * std::sqrt(3.0)},
      {"shear yz", {0, 0, 0, 0, 0, 50}, 50.0 * std::sqrt(3.0)},
      {"oblique", {1, 4, 4, 2, 2, 4}, 9.0},
      {"oblique and pressure", {101, 104, 104, 2, 2, 4}, 9.0},
      {"general", {100, 50, -20, 30, 10, -40}, std::sqrt(18700.0)},
  };
  for (const TensorCase &test : cases) {
    SCOPED_TRACE(test.what);
    QDL_Record *model = with_mode(kStress, {Six{}, test.tensor});
    const std::int32_t node = test.value == 0.0 ? 0 : 102;
    expect_largest(ask(QDL_GetMaxVonMisesStress, model), node, test.value);
  }
}

// Incompressible states, where the equivalent strain is that of the axis; shear is engineering
// shear.
TEST_F(Statistics, VonMisesStrainOfKnownStates) {
  const std::vector<TensorCase> cases = {
      {"uniaxial", {-0.001, 0.002, -0.001, 0, 0, 0}, 0.002},
      {"dilation", {0.5, 0.5, 0.5, 0, 0, 0}, 0.0},
      {"shear", {0, 0, 0, 0, 0.003, 0}, 0.003 / std::sqrt(3.0)},
      {"oblique", {-3, 1.5, 1.5, 6, 6, 12}, 9.0},
  };
  for (const TensorCase &test : cases) {
    SCOPED_TRACE(test.what);
    QDL_Record *model = with_mode(kStrain, {Six{}, test.tensor});
    const std::int32_t node = test.value == 0.0 ? 0 : 102;
    expect_largest(ask(QDL_GetMaxVonMisesStrain, model), node, test.value);
  }
}

TEST_F(Statistics, TheFirstOfEqualNodesIsReported) {
  std::vector<Six> values(5000, Six{0, 3, 4, 0, 0, 0});
  values[0] = {0, 3, 3, 0, 0, 0};
  expect_largest(ask(QDL_GetMaxModeDisplacement, with_mode(kShape, values)), 102, 5.0);
  values[4999] = {0, 0, 5.5, 0, 0, 0};
  expect_largest(ask(QDL_GetMaxModeDisplacement, with_mode(kShape, values)), 5100, 5.5);
}

TEST_F(Statistics, NaNIsIgnoredAndInfinityFound) {
  QDL_Record *model = with_mode(
      kShape, {{kNaN, 9, 9, 0, 0, 0}, {1, 0, 0, kNaN, 0, 0}, {0, 0, 0, 0, -kInfinity, 0}});
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 102, 1.0);
  expect_largest(ask(QDL_GetMaxModeRotation, model), 103, kInfinity);
}

TEST_F(Statistics, AModeOfZerosIsSearchedAgain) {
  QDL_Record *model = with_mode(kShape, {Six{}, Six{}});
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 0, 0.0);
  QDL_SetModeEntry(model, kMode, 102, kShape, 1, -2.0);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 102, 2.0);
}

TEST_F(Statistics, SetVectorsReplaceWhatWasFound) {
  QDL_Record *model = with_mode(kShape, {{5, 0, 0, 0, 0, 1}, {0, 0, 0, 0, 0, 0}});
  QDL_SetMode(model, kMode, 101, kStress, 30, 0, 0, 0, 0, 0);
  for (const Getter getter :
       {QDL_GetMaxModeDisplacement, QDL_GetMaxModeRotation, QDL_GetMaxVonMisesStress}) {
    EXPECT_EQ(ask(getter, model).node, 101);
  }
  QDL_SetMode(model, kMode, 101, kShape, 1, 0, 0, 0, 0, 0.5);
  QDL_SetMode(model, kMode, 102, kShape, 0, 2, 0, 0, 0.75, 0);
  QDL_SetMode(model, kMode, 102, kStress, 0, 0, 40, 0, 0, 0);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 102, 2.0);
  expect_largest(ask(QDL_GetMaxModeRotation, model), 102, 0.75);
  expect_largest(ask(QDL_GetMaxVonMisesStress, model), 102, 40.0);
}

TEST_F(Statistics, ValuesFollowTheUnits) {
  QDL_Record *model = with_mode(kShape, {{5000, 0, 0, 0.25, 0, 0}});
  QDL_SetMode(model, kMode, 101, kStress, 4, 0, 0, 0, 0, 0);
  ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 101, 5000.0);
  ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 101, 5.0);  // converted
  expect_largest(ask(QDL_GetMaxModeRotation, model), 101, 0.25);     // searched
  expect_largest(ask(QDL_GetMaxVonMisesStress, model), 101, 4e6);
}

TEST_F(Statistics, TheTableOfAFileAnswers) {
  QDL_Record *model = QDL_CreateFromQDL(QDLFLEX_SOURCE_DIR "/tests/golden/60_native_double.qdl");
  EXPECT_EQ(QDL_ModalStatisticsExist(model), 1);
  std::int32_t slot = 0;
  for (const Getter getter : kGetters) {
    expect_largest(ask(getter, model, 7), 3000 + slot, 7680.25 + slot);
    expect_largest(ask(getter, model, 9), 3100 + slot, 7693.25 + slot);
    ++slot;
  }
  expect_no_messages();
}

TEST_F(Statistics, AFileWithoutTableIsSearched) {
  QDL_Record *model = QDL_CreateFromQDL(QDLFLEX_SOURCE_DIR "/tests/golden/31_xdr_double.qdl");
  EXPECT_EQ(QDL_ModalStatisticsExist(model), 0);
  // Values grow from node to node; the last one of mode 7 has 2048.25 + 18, 19 and 20.
  const double x = 2066.25;
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 23,
                 std::sqrt(x * x + (x + 1) * (x + 1) + (x + 2) * (x + 2)));
  EXPECT_EQ(QDL_ModalStatisticsExist(model), 0);
}

TEST_F(Statistics, TheTableGrowsWithTheModes) {
  QDL_Record *model = with_mode(kShape, {{1, 0, 0, 0, 0, 0}});
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 101, 1.0);
  QDL_SetMode(model, 8, 101, kShape, 0, 0, 3, 0, 0, 0);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model, 8), 101, 3.0);
  expect_largest(ask(QDL_GetMaxModeDisplacement, model), 101, 1.0);
}

TEST_F(Statistics, ATableForOtherModesIsReportedEachTime) {
  QDL_Record *model = with_mode(kShape, {{1, 0, 0, 0, 0, 0}});
  model->statistics.inconsistent = true;
  for (const Getter getter : kGetters) {
    EXPECT_EQ(ask(getter, model).result, 0);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors[0].starts_with("Inconsistent number of modes detected at line "));
    EXPECT_TRUE(errors[0].ends_with(" in file qdldata"));
    clear_messages();
  }
}

TEST_F(Statistics, FailWithoutModelModeOrData) {
  for (const Getter getter : kGetters) {
    const Largest none = ask(getter, nullptr);
    EXPECT_EQ(none.result, 0);
    EXPECT_EQ(none.node, -1);
    EXPECT_EQ(none.value, -1.0);
    expect_only_error("The database has not been initialized.");
    clear_messages();
  }
  QDL_Record *model = with_mode(kShape, {{1, 0, 0, 0, 0, 0}});
  EXPECT_EQ(ask(QDL_GetMaxModeDisplacement, model, 8).result, 0);
  expect_no_messages();
  EXPECT_EQ(ask(QDL_GetMaxVonMisesStress, model).result, 0);
  expect_only_error("Problem reading modal stress vector 7");
}

TEST_F(Statistics, SurviveFailingMemoryAndDisks) {
  QDL_Record *model = QDL_CreateFromQDL(QDLFLEX_SOURCE_DIR "/tests/golden/31_xdr_double.qdl");
  const auto forget = [&] { model->statistics = {}; };
  for (const Door door : {Door::kMemory, Door::kFile}) {
    const std::size_t faults = sweep(
        door, Persistence::kOnce, [&] { return ask(QDL_GetMaxModeRotation, model).result; },
        [&](std::int32_t result, bool fired) {
          EXPECT_EQ(result, fired ? 0 : 1);
          EXPECT_EQ(errors.size(), fired ? 1U : 0U);
          clear_messages();
          forget();
        });
    EXPECT_GT(faults, 0U);
  }
}

}  // namespace
