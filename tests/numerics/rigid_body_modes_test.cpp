// The number of rigid-body modes.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class RigidBodyModes : public MessageFixture {
 protected:
  QDL_Record *with_frequencies(const std::vector<double> &frequencies) {
    QDL_Record *model = QDL_Create(0, static_cast<std::int32_t>(frequencies.size()));
    std::int32_t number = 0;
    for (const double frequency : frequencies) {
      QDL_AddMode(model, ++number);
      model->eigenvalues.push_back({.mode_number = number, .frequency = frequency});
    }
    return model;
  }
};

struct CountCase {
  std::vector<double> frequencies;
  std::int32_t count;
  const char *threshold = nullptr;
};

TEST_F(RigidBodyModes, AreCountedBelowTheThresholdAmongTheFirstSix) {
  const std::vector<CountCase> cases = {
      {{0, 0, 0, 0, 0, 0, 12, 15}, 6},
      {{0, 0, 0, 0, 0, 0, 0, 15}, 6},
      {{0.012, 0.0121, 0, 0, 0, 0, 12, 15}, 5},   // 0.001 of the seventh
      {{0.001, 0.0011, 0, 0, 0, 0, 0.5, 15}, 5},  // never less than 0.001
      {{0.001, 0.0011, 0, 0, 0, 0, -900, 1}, 5},
      {{0, 0, 0, 0, 100, 0, 200, 300}, 5},    // no stop at the first that is not
      {{-50, -kInfinity, 0, 3, 4, 5, 6}, 3},  // a negative frequency always counts
      {{kNaN, 0, 0, 0, 0, 0, 6}, 5},
      {{0.001, 0.0011, 0, 0, 0, 0, kNaN}, 5},
      {{10, 20, 30, 40, 50, 60, 70}, 0},
      {{10, 20, 30, 1000, 1001, 5, 2000, 3}, 5, "1e3"},
      {{0, 1e-9, -1, 0, 0, 0, 12}, 5, "0"},
      {{0, 1e-9, -1, 0, 0, 0, 12}, 5, ""},
      {{0, 1e-9, -1, 0, 0, 0, 12}, 5, "none"},
      {{0, 1, 2, 3, 4, 5, 6}, 3, " 2.5Hz"},
      {{0, -1, -2, -3, -4, -5, 6}, 3, "-3"},
  };
  for (const CountCase &test : cases) {
    const ScopedEnvironment threshold("QDL_RIGID_BODY_THRESHOLD", test.threshold);
    EXPECT_EQ(QDL_RigidBodyModeCount(with_frequencies(test.frequencies)), test.count)
        << testing::PrintToString(test.frequencies);
  }
}

TEST_F(RigidBodyModes, AreThoseBeforeTheLastJumpOfSixOrFewer) {
  // The variable is for models with more modes.
  const ScopedEnvironment threshold("QDL_RIGID_BODY_THRESHOLD", "1e9");
  const std::vector<CountCase> cases = {
      {{}, 0},
      {{0}, 0},
      {{0, 0, 20, 30}, 3},  // after a first one near zero all above 10
      {{0.099, 9, 10, 10.1}, 3},
      {{0.1, 9, 10, 10.1}, 0},
      {{-0.05, 11, 5}, 1},
      {{-5, 11}, 0},
      {{0.05, 10}, 0},
      {{0, 0, 0, 0, 0, 0}, 0},
      {{0, 0, 1e-9}, 2},  // more than 10000 times nothing
      {{1, 10000, 10001}, 0},
      {{1, 10000.5, 5}, 1},
      {{1, 2, -20001}, 2},
      {{1e-3, 2e-3, 100}, 2},
      {{5, kNaN, 7}, 0},
  };
  for (const CountCase &test : cases) {
    EXPECT_EQ(QDL_RigidBodyModeCount(with_frequencies(test.frequencies)), test.count)
        << testing::PrintToString(test.frequencies);
  }
}

// Without a table the frequencies come from generalized stiffness and mass; an off-diagonal entry
// hides those behind it.
TEST_F(RigidBodyModes, NeedDiagonalMatrices) {
  const auto with_lists = [](std::int32_t modes, std::int32_t last_visible) {
    QDL_Record *model = QDL_Create(0, modes);
    for (std::int32_t mode = 1; mode <= modes; ++mode) {
      QDL_SetGeneralizedMass(model, mode, mode, 1.0);
      QDL_SetGeneralizedStiffness(model, mode, mode, mode == modes ? 1e6 : 0.0);
      if (mode == last_visible)
        QDL_SetGeneralizedStiffness(model, 1, 2, 0.0);
    }
    return model;
  };
  EXPECT_EQ(QDL_RigidBodyModeCount(with_lists(7, 7)), 6);
  EXPECT_EQ(QDL_RigidBodyModeCount(with_lists(8, 7)), 6);
  EXPECT_EQ(QDL_RigidBodyModeCount(with_lists(7, 6)), 0);
  EXPECT_EQ(QDL_RigidBodyModeCount(with_lists(3, 3)), 2);
  EXPECT_EQ(QDL_RigidBodyModeCount(with_lists(3, 2)), 0);
  expect_no_messages();
}

TEST_F(RigidBodyModes, NullHandleIsSilentAndMissingMemoryReported) {
  EXPECT_EQ(QDL_RigidBodyModeCount(nullptr), 0);
  expect_no_messages();
  QDL_Record *model = with_frequencies({0, 0, 0, 0, 0, 0, 12});
  sweep(
      Door::kMemory, Persistence::kOnce, [&] { return QDL_RigidBodyModeCount(model); },
      [&](std::int32_t count, bool fired) {
        EXPECT_EQ(count, fired ? 0 : 6);
        EXPECT_EQ(errors.size(), fired ? 1U : 0U);
        clear_messages();
      });
}

}  // namespace
