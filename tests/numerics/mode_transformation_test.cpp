// Modes combined by a matrix, beside plain loops.

#include "numerics/mode_transformation.h"

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "numerics/linear_combination.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/qdl_bytes.h"
#include "support/read_fixture.h"

namespace {

int announced_stamps = 0;
int stamps = 0;

}  // namespace

extern "C" QDL_API int QDL_TimeMonitor(int total) {
  announced_stamps = total;
  return 1;
}
extern "C" QDL_API int QDL_TimeMonitorStamp(void) {
  ++stamps;
  return 1;
}

namespace qdltest {
namespace {

using Values = std::vector<double>;

Values random_values(std::size_t count, unsigned seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Values values(count);
  for (double &value : values)
    value = uniform(random);
  return values;
}

// Vectors of `length` values one behind the other, by the definition.
Values plain_combination(const Values &old_vectors, const Values &matrix, std::size_t length,
                         std::size_t new_count) {
  Values combined(new_count * length);
  for (std::size_t j = 0; j < new_count; ++j) {
    for (std::size_t v = 0; v < length; ++v) {
      for (std::size_t i = 0; i * length < old_vectors.size(); ++i) {
        const double weight = matrix[i * new_count + j];
        if (weight != 0.0)
          combined[j * length + v] += weight * old_vectors[i * length + v];
      }
    }
  }
  return combined;
}

std::vector<std::uint64_t> bits(const Values &values) {
  std::vector<std::uint64_t> words;
  for (const double value : values)
    words.push_back(std::bit_cast<std::uint64_t>(value));
  return words;
}

}  // namespace

TEST(LinearCombination, EqualsThePlainSumBitForBit) {
  const std::size_t old_count = 13;
  for (const std::size_t new_count : {1U, 2U, 4U, 7U, 16U}) {
    Values matrix = random_values(old_count * new_count, 1);
    // Zeros here and there, and a column and a row of nothing else.
    for (std::size_t k = 0; k < matrix.size(); ++k) {
      if (k % 5 == 1 || k / new_count == 3 || k % new_count == 6)
        matrix[k] = k % 2 == 0 ? 0.0 : -0.0;
    }
    for (const std::size_t length : {1U, 8U, 31U, 32U, 203U}) {
      Values old_vectors = random_values(old_count * length, 2);
      old_vectors[3 * length] = std::numeric_limits<double>::quiet_NaN();  // its row is zero
      Values combined(new_count * length, 99.0);
      qdlflex::LinearCombination(old_count, new_count, matrix)
          .apply(old_vectors.data(), combined.data(), length);
      EXPECT_EQ(bits(combined), bits(plain_combination(old_vectors, matrix, length, new_count)))
          << new_count << " vectors of " << length;
    }
  }
}

namespace {

class Transformation : public ReadFixture {
 protected:
  void SetUp() override {
    ReadFixture::SetUp();
    announced_stamps = 0;
    stamps = 0;
  }

  static QDL_Record *built(const Values &modes, int count) {
    const auto nodes = static_cast<int>(modes.size()) / count / 6;
    QDL_Record *model = QDL_Create(nodes, count);
    const double *six = modes.data();
    for (int mode = 1; mode <= count; ++mode)
      for (int node = 1; node <= nodes; ++node, six += 6)
        QDL_SetModeVec(model, mode, node, QDL_MODE_SHAPE, six);
    return model;
  }

  // All six components of every node, mode after mode.
  static Values fetched(QDL_Record *model, int kind, int first_mode, int modes) {
    const auto nodes = static_cast<std::size_t>(QDL_ModeNodeCount(model, kind));
    Values all;
    Values halves[2] = {Values(3 * nodes), Values(3 * nodes)};
    for (int mode = first_mode; mode < first_mode + modes; ++mode) {
      for (int part = 0; part < 2; ++part) {
        EXPECT_EQ(QDL_Mode(model, QDL_ModeNumber(model, mode), kind, halves[part].data(), part), 1);
      }
      for (std::size_t node = 0; node < nodes; ++node) {
        for (const Values &half : halves)
          all.insert(all.end(), half.begin() + static_cast<std::ptrdiff_t>(3 * node),
                     half.begin() + static_cast<std::ptrdiff_t>(3 * node + 3));
      }
    }
    return all;
  }
};

// Two modes into two: a + 2 b and -b.
const Values kShear = {1, 0, 2, -1};

}  // namespace

TEST_F(Transformation, CombinesModesInAsManySlabsAsMemoryAllows) {
  const ScopedEnvironment limit("QDL_MAX_MODE_MEMORY", "1");
  constexpr int kNodes = 6000;  // 4369 fit beside each other
  const Values modes = random_values(6 * kNodes * 3, 3);
  QDL_Record *model = built(modes, 3);
  const Values matrix = random_values(3 * 2, 4);
  clear_messages();
  ASSERT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 2, matrix.data()), 1);
  EXPECT_EQ(bits(fetched(model, QDL_MODE_SHAPE, 0, 2)),
            bits(plain_combination(modes, matrix, 6 * kNodes, 2)));
  EXPECT_EQ(QDL_ModeCount(model), 3);
  EXPECT_EQ(announced_stamps, 3);
  EXPECT_EQ(stamps, 3);
  EXPECT_EQ(infos, std::vector<std::string>{"Orthogonal mode file: " + temporary_files()[0]});
  EXPECT_EQ(QDL_GetKeepModesInMemory(model, nullptr), 1);
  double half[3 * kNodes];
  EXPECT_EQ(QDL_Mode(model, 3, QDL_MODE_SHAPE, half, 0), 0);
  expect_only_error("Problem reading mode shape 3");
}

TEST_F(Transformation, TheIdentityKeepsEveryBit) {
  const Values modes = random_values(6 * 5 * 2, 5);
  QDL_Record *model = built(modes, 2);
  const ScopedEnvironment silent("ZEB_NO_TIME_MONITOR_STAMP", "");
  const double identity[] = {1, 0, 0, 1};
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 2, identity), 1);
  EXPECT_EQ(bits(fetched(model, QDL_MODE_SHAPE, 0, 2)), bits(modes));
  EXPECT_EQ(stamps, 0);
  EXPECT_EQ(announced_stamps, 0);
}

TEST_F(Transformation, WorksInCurrentUnitsOnEveryKindOfASinglePrecisionFile) {
  QDL_Record *model = open(build_file(60 | kXdrBit | kSingleBit));
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "KNEWTON"), 1);
  for (const int kind : {QDL_MODE_SHAPE, QDL_MODE_STRESS, QDL_MODE_STRAIN}) {
    const Values before = fetched(model, kind, 0, 2);
    ASSERT_EQ(QDL_TransformModes(model, kind, 2, kShear.data()), 1);
    const Values after = fetched(model, kind, 0, 2);
    const Values expected = plain_combination(before, kShear, before.size() / 2, 2);
    for (std::size_t i = 0; i < after.size(); ++i)
      EXPECT_EQ(after[i], static_cast<float>(expected[i])) << kind << " " << i;
  }
  // The new file is converted from the units that it was written in.
  const double before = fetched(model, QDL_MODE_SHAPE, 0, 1)[0];
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "CENTIMETER", "SECOND", "KNEWTON"), 1);
  EXPECT_DOUBLE_EQ(fetched(model, QDL_MODE_SHAPE, 0, 1)[0], 100.0 * before);
}

TEST_F(Transformation, TakesAnyNumberOfNewModes) {
  const Values modes = random_values(6 * 3 * 2, 6);
  QDL_Record *model = built(modes, 2);
  const Values wide = random_values(2 * 5, 7);
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 5, wide.data()), 1);
  Values expected = plain_combination(modes, wide, 18, 5);
  expected.resize(36);
  EXPECT_EQ(fetched(model, QDL_MODE_SHAPE, 0, 2), expected);
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 0, wide.data()), 1);
  clear_messages();
  double half[9];
  EXPECT_EQ(QDL_Mode(model, 1, QDL_MODE_SHAPE, half, 0), 0);
  expect_only_error("Problem reading mode shape 1");
}

// How each one is combined is tested with orthonormal modes.
TEST_F(Transformation, CarriesTheInvariantsOfTheFileOver) {
  const Values before = sample_model().invariants[3];
  QDL_Record *model = open(build_file(60));
  ASSERT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 2, kShear.data()), 1);
  Values expected;
  for (std::size_t i = 0; i < before.size(); i += 2)
    expected.insert(expected.end(), {before[i] + 2 * before[i + 1], -before[i + 1]});
  EXPECT_EQ(taken(QDL_Invar3(model), 6), expected);
}

TEST_F(Transformation, ForgetsTheStatisticsOfItsKindOnly) {
  QDL_Record *model = open(build_file(60));
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_STRESS, 2, kShear.data()), 1);
  for (const auto &mode : model->statistics.modes) {
    EXPECT_NE(mode.node_ids[0], 0);
    EXPECT_EQ(mode.node_ids[2], 0);
    EXPECT_EQ(mode.values[2], 0.0);
    EXPECT_NE(mode.node_ids[3], 0);
  }
}

TEST_F(Transformation, ReportsModesThatAreMissing) {
  QDL_Record *model = built(random_values(6 * 2, 8), 2);
  clear_messages();
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_STRESS, 2, kShear.data()), 0);
  EXPECT_EQ(errors, (std::vector<std::string>{"Problem reading modal stress vector 1",
                                              "Failed to extract mode information for QDL.\n"}));
}

TEST_F(Transformation, RefusesWhatMakesNoSense) {
  QDL_Record *model = built(random_values(6 * 2, 9), 2);
  QDL_Record *empty = QDL_Create(1, 1);
  clear_messages();
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, 2, nullptr), 1);
  EXPECT_EQ(QDL_TransformModes(model, 3, 2, kShear.data()), 0);
  EXPECT_EQ(QDL_TransformModes(model, QDL_MODE_SHAPE, -1, kShear.data()), 0);
  EXPECT_EQ(QDL_TransformModes(empty, QDL_MODE_SHAPE, 2, kShear.data()), 1);
  expect_no_messages();
  EXPECT_EQ(QDL_TransformModes(nullptr, QDL_MODE_SHAPE, 2, kShear.data()), 0);
  EXPECT_EQ(QDL_TransformMonitorPoints(nullptr, kShear.data()), 0);
  EXPECT_EQ(errors.size(), 2u);
}

TEST_F(Transformation, SurvivesFailingDisksAndMemory) {
  for (const Door door : {Door::kFile, Door::kMemory}) {
    QDL_Record *model = open(build_file(60));
    const Values before = fetched(model, QDL_MODE_SHAPE, 0, 2);
    QDL_CleanModesInMemory(model);
    const std::size_t faults = sweep(
        door, Persistence::kOnce,
        [&] { return QDL_TransformModes(model, QDL_MODE_SHAPE, 2, kShear.data()); },
        [&](int32_t result, bool fired) {
          EXPECT_TRUE(result == 1 || fired);
          EXPECT_EQ(errors.empty(), result == 1);
          if (result == 0) {
            EXPECT_EQ(fetched(model, QDL_MODE_SHAPE, 0, 2), before);
            EXPECT_EQ(temporary_files().size(), 0u);
          } else {
            model = open(build_file(60));
          }
          clear_messages();
        });
    EXPECT_GT(faults, 10u);
  }
}

TEST_F(Transformation, MultipliesTheRowsOfMonitorPoints) {
  const SampleModel sample = sample_model();
  QDL_Record *model = open(build_file(60));
  ASSERT_EQ(QDL_TransformMonitorPoints(model, kShear.data()), 1);
  const auto expected = [](const Values &rows) {
    Values combined;
    for (std::size_t i = 0; i < rows.size(); i += 2) {
      combined.push_back(rows[i] + 2 * rows[i + 1]);
      combined.push_back(-rows[i + 1]);
    }
    return combined;
  };
  // Displacement: two rows; load: two operators of two rows behind them.
  const Values all = expected(sample.monitor_points[0].values);
  Values displacement(4);
  Values load(8);
  EXPECT_EQ(QDL_GetMonitorPointOperator(model, 0, 1, displacement.data()), 0);
  EXPECT_EQ(QDL_GetMonitorPointOperator(model, 0, 4, load.data()), 0);
  displacement.insert(displacement.end(), load.begin(), load.end());
  EXPECT_EQ(displacement, all);
  EXPECT_EQ(QDL_TransformMonitorPoints(QDL_Create(1, 1), kShear.data()), 1);
}

}  // namespace qdltest
