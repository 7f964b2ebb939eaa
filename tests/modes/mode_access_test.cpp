// Fetching mode data through the caches and past them. The expected values come from the function
// that the modes are set with.

#include <gtest/gtest.h>

#include <qdlflex/qdlflex.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace qdltest {
namespace {

double component(int mode, int node, int i) {
  return 100.0 * mode + node + 0.125 * i;
}

class ModeAccess : public MessageFixture {
 protected:
  static constexpr int kNodes = 4;
  static constexpr int kModes = 3;

  QDL_Record *built(int kinds = 3) {
    QDL_Record *model = QDL_Create(kNodes, kModes);
    for (int node = 0; node < kNodes; ++node)
      QDL_SetNodeCoordinates(model, 10 + node, node, 0, 0);
    for (int kind = 0; kind < kinds; ++kind) {
      for (int mode = 1; mode <= kModes; ++mode) {
        for (int node = 0; node < kNodes; ++node) {
          double six[6];
          for (int i = 0; i < 6; ++i)
            six[i] = component(mode, node, i) + 1000 * kind;
          EXPECT_EQ(QDL_SetModeVec(model, mode, 10 + node, kind, six), 1);
        }
      }
    }
    clear_messages();
    return model;
  }

  QDL_Record *reopened(QDL_Record *model, const char *options) {
    const ScopedEnvironment environment("ZEB_QDLWRITE_OPTIONS", options);
    const std::string name = path("modes.qdl");
    EXPECT_EQ(QDL_write_QDL(model, name.c_str()), 1);
    QDL_Record *read = QDL_CreateFromQDL(name.c_str());
    clear_messages();
    return read;
  }

  static std::vector<double> expected_half(int mode, int kind, int part) {
    std::vector<double> half;
    for (int node = 0; node < kNodes; ++node) {
      for (int i = 0; i < 3; ++i)
        half.push_back(component(mode, node, 3 * part + i) + 1000 * kind);
    }
    return half;
  }

  static std::vector<double> fetched(QDL_Record *model, int mode, int kind, int part) {
    std::vector<double> half(3 * kNodes, -1.0);
    EXPECT_EQ(QDL_Mode(model, mode, kind, half.data(), part), 1);
    return half;
  }

  /// Cuts the file, so that nothing can be read from it any more.
  void cut_file() { std::filesystem::resize_file(path("modes.qdl"), 700); }
};

TEST_F(ModeAccess, EveryReaderGivesTheSameValues) {
  for (const char *options :
       {"no_ortho no_xdr", "no_ortho", "no_ortho single no_xdr", "no_ortho single"}) {
    SCOPED_TRACE(options);
    QDL_Record *model = reopened(built(), options);
    for (int kind = 0; kind < 3; ++kind) {
      for (int mode = 1; mode <= kModes; ++mode) {
        for (int part = 0; part < 2; ++part) {
          const std::vector<double> expected = expected_half(mode, kind, part);
          std::vector<double> values(3 * kNodes);
          std::vector<float> singles(3 * kNodes);
          ASSERT_EQ(QDL_Read_Mode_Double(model, mode, kind, values.data(), part), 1);
          EXPECT_EQ(values, expected);
          ASSERT_EQ(QDL_Read_Mode_Single(model, mode, kind, singles.data(), part), 1);
          EXPECT_EQ(std::vector<double>(singles.begin(), singles.end()), expected);
          for (int node = 0; node < kNodes; ++node) {
            double three[3];
            ASSERT_EQ(QDL_ModeByNodeWithoutCache(model, mode, kind, node, three, part), 1);
            EXPECT_EQ(three[2], expected[static_cast<std::size_t>(3 * node + 2)]);
            ASSERT_EQ(QDL_ModeByNode(model, mode, kind, node, three, part), 1);
            EXPECT_EQ(three[0], expected[static_cast<std::size_t>(3 * node)]);
          }
          EXPECT_EQ(fetched(model, mode, kind, part), expected);
          double *reference = nullptr;
          ASSERT_EQ(QDL_ModeByRef(model, mode, kind, &reference, part), 1);
          EXPECT_EQ(std::vector<double>(reference, reference + 3 * kNodes), expected);
          float *single = nullptr;
          ASSERT_EQ(QDL_SModeByRef(model, mode, kind, &single, part), 1);
          EXPECT_EQ(std::vector<double>(single, single + 3 * kNodes), expected);
        }
      }
    }
    QDL_UnLink(model);
  }
}

TEST_F(ModeAccess, AFetchedHalfIsKeptAndNothingElse) {
  QDL_Record *model = reopened(built(), "no_ortho");
  std::vector<double> half(3 * kNodes);
  EXPECT_EQ(QDL_ModeFromMemory(model, 2, 0, half.data(), 1), 0);
  fetched(model, 2, 0, 1);
  cut_file();
  EXPECT_EQ(fetched(model, 2, 0, 1), expected_half(2, 0, 1));
  double three[3];
  EXPECT_EQ(QDL_ModeByNode(model, 2, 0, 3, three, 1), 1);
  EXPECT_EQ(QDL_ModeFromMemoryByNode(model, 2, 0, 3, three, 1), 1);
  EXPECT_EQ(three[1], component(2, 3, 4));
  expect_no_messages();

  EXPECT_EQ(QDL_Mode(model, 2, 0, half.data(), 0), 0);
  expect_only_error("Problem reading mode shape 2");
  clear_messages();
  EXPECT_EQ(QDL_Mode(model, 3, 1, half.data(), 0), 0);
  expect_only_error("Problem reading modal stress vector 3");
  clear_messages();
  EXPECT_EQ(QDL_ModeByNodeWithoutCache(model, 2, 2, 0, three, 1), 0);
  expect_only_error("Problem reading modal strain vector 2");
}

TEST_F(ModeAccess, WithoutKeepingEveryFetchReadsTheFile) {
  QDL_Record *model = reopened(built(), "no_ortho");
  fetched(model, 1, 0, 0);
  EXPECT_EQ(QDL_SetKeepModesInMemory(model, 0), 1);
  int32_t flag = -1;
  EXPECT_EQ(QDL_GetKeepModesInMemory(model, &flag), 0);
  EXPECT_EQ(flag, 0);
  fetched(model, 1, 0, 0);
  cut_file();
  double half[3 * kNodes];
  EXPECT_EQ(QDL_Mode(model, 1, 0, half, 0), 0);
  expect_only_error("Problem reading mode shape 1");
}

TEST_F(ModeAccess, CapacityFollowsTheLimits) {
  QDL_Record *model = QDL_Create(10000, 1);
  for (int node = 1; node <= 10000; ++node)
    QDL_AddNode(model, node);
  QDL_AddMode(model, 1);
  const auto capacity = [&](const char *mebibytes) {
    const ScopedEnvironment limit("QDL_MAX_MODE_MEMORY", mebibytes);
    return QDL_InitializeModeMemory(model);
  };
  EXPECT_EQ(capacity("1"), 4);  // 1048576 / 10000 / 3 / 8
  for (const char *otherwise : {"0", "-3", "many", ""})
    EXPECT_EQ(capacity(otherwise), 6);
  EXPECT_EQ(capacity("99999999999999999999"), 6);
  const ScopedEnvironment limit("QDL_MAX_SMODE_MEMORY", "1");
  EXPECT_EQ(QDL_InitializeSModeMemory(model, 0, 0), 1);  // 8 would fit, but there is one mode
  EXPECT_EQ(QDL_InitializeSModeMemory(model, 1, 0), 0);  // no stress nodes
  EXPECT_EQ(QDL_InitializeSModeMemory(model, 3, 0), 0);
  EXPECT_EQ(QDL_InitializeModeMemory(QDL_Create(1, 1)), 0);
}

TEST_F(ModeAccess, AFullCacheKeepsWhatItHasAndReadsTheRest) {
  constexpr int kMany = 10000;
  QDL_Record *model = QDL_Create(kMany, 3);
  double six[6] = {};
  for (int mode = 1; mode <= 3; ++mode) {
    six[0] = mode;
    for (int node = 1; node <= kMany; ++node)
      QDL_SetModeVec(model, mode, node, 0, six);
  }
  const ScopedEnvironment limit("QDL_MAX_MODE_MEMORY", "1");
  std::vector<double> half(3 * kMany);
  for (int mode = 1; mode <= 3; ++mode) {
    for (int part = 0; part < 2; ++part)
      ASSERT_EQ(QDL_Mode(model, mode, 0, half.data(), part), 1);
  }
  // Four fit: both halves of modes 1 and 2.
  EXPECT_EQ(QDL_ModeFromMemory(model, 2, 0, half.data(), 1), 1);
  EXPECT_EQ(QDL_ModeFromMemory(model, 3, 0, half.data(), 0), 0);
  // One that is held already is written over.
  half.assign(half.size(), 8.0);
  EXPECT_EQ(QDL_ModetoMemory(model, 1, 0, half.data(), 0), 1);
  EXPECT_EQ(QDL_ModetoMemory(model, 3, 0, half.data(), 0), 0);
  double three[3];
  EXPECT_EQ(QDL_ModeByNode(model, 1, 0, 5, three, 0), 1);
  EXPECT_EQ(three[0], 8.0);
  // By reference beyond the cache: one vector of the record's, replaced by the next.
  double *reference = nullptr;
  ASSERT_EQ(QDL_ModeByRef(model, 3, 0, &reference, 0), 1);
  EXPECT_EQ(reference[3 * 77], 3.0);
  EXPECT_EQ(QDL_CleanModesInMemory(model), 1);
  EXPECT_EQ(QDL_ModeFromMemory(model, 2, 0, half.data(), 1), 0);
}

TEST_F(ModeAccess, SingleCacheIsSeparate) {
  QDL_Record *model = built();
  std::vector<float> values(3 * kNodes, 2.5f);
  float *reference = nullptr;
  EXPECT_EQ(QDL_SModeFromMemoryByRef(model, 1, 1, &reference, 0), 0);
  EXPECT_EQ(reference, nullptr);
  EXPECT_EQ(QDL_SModetoMemory(model, 1, 1, values.data(), 0), 1);
  ASSERT_EQ(QDL_SModeFromMemoryByRef(model, 1, 1, &reference, 0), 1);
  EXPECT_EQ(reference[5], 2.5f);
  double *other = nullptr;
  EXPECT_EQ(QDL_ModeFromMemoryByRef(model, 1, 1, &other, 0), 0);
  EXPECT_EQ(QDL_CleanSModesInMemory(model), 1);
  EXPECT_EQ(QDL_SModeFromMemoryByRef(model, 1, 1, &reference, 0), 0);
}

TEST_F(ModeAccess, WalkingTheNodesOfAModeLoadsItsHalf) {
  constexpr int kMany = 100;
  QDL_Record *model = QDL_Create(kMany, 1);
  double six[6] = {};
  for (int node = 1; node <= kMany; ++node) {
    six[0] = node;
    QDL_SetModeVec(model, 1, node, 0, six);
  }
  double half[3 * kMany];
  double three[3];
  for (int node = 0; node < kMany; ++node) {
    ASSERT_EQ(QDL_ModeByNode(model, 1, 0, node, three, 0), 1);
    ASSERT_EQ(three[0], node + 1.0);
  }
  EXPECT_EQ(QDL_ModeFromMemory(model, 1, 0, half, 0), 1);
}

TEST_F(ModeAccess, ArgumentsThatDoNotFit) {
  QDL_Record *model = built();
  double half[3 * kNodes];
  EXPECT_EQ(QDL_Mode(model, 1, 3, half, 0), 0);
  EXPECT_EQ(QDL_Mode(model, 1, -1, half, 0), 0);
  EXPECT_EQ(QDL_Mode(model, 1, 0, half, 2), 0);
  EXPECT_EQ(QDL_Mode(model, 1, 0, nullptr, 0), 0);
  EXPECT_EQ(QDL_ModeByNode(model, 1, 0, kNodes, half, 0), 0);
  EXPECT_EQ(QDL_ModeByNode(model, 1, 0, -1, half, 0), 0);
  EXPECT_EQ(QDL_ModetoMemory(model, 1, 0, half, 2), 0);
  EXPECT_EQ(QDL_ModetoMemory(model, 99, 0, half, 0), 0);
  EXPECT_EQ(QDL_ModeFromMemoryByNode(model, 1, 0, kNodes, half, 0), 0);
  expect_no_messages();
  EXPECT_EQ(QDL_Mode(model, 99, 0, half, 0), 0);
  expect_only_error("Problem reading mode shape 99");
  clear_messages();
  EXPECT_EQ(QDL_Mode(built(1), 1, 1, half, 0), 0);
  expect_only_error("Problem reading modal stress vector 1");
}

TEST_F(ModeAccess, NullHandles) {
  double half[3];
  float single[3];
  double *reference = half;
  float *single_reference = single;
  EXPECT_EQ(QDL_Mode(nullptr, 1, 0, half, 0), 0);
  EXPECT_EQ(QDL_ModeByNode(nullptr, 1, 0, 0, half, 0), 0);
  EXPECT_EQ(QDL_ModeByNodeWithoutCache(nullptr, 1, 0, 0, half, 0), 0);
  EXPECT_EQ(QDL_ModeByRef(nullptr, 1, 0, &reference, 0), 0);
  EXPECT_EQ(QDL_SModeByRef(nullptr, 1, 0, &single_reference, 0), 0);
  EXPECT_EQ(QDL_Read_Mode_Double(nullptr, 1, 0, half, 0), 0);
  EXPECT_EQ(QDL_Read_Mode_Single(nullptr, 1, 0, single, 0), 0);
  EXPECT_EQ(QDL_SetKeepModesInMemory(nullptr, 0), 0);
  EXPECT_EQ(reference, nullptr);
  EXPECT_EQ(single_reference, nullptr);
  EXPECT_EQ(errors, std::vector<std::string>(8, "The database has not been initialized."));
  clear_messages();
  EXPECT_EQ(QDL_ModeFromMemory(nullptr, 1, 0, half, 0), 0);
  EXPECT_EQ(QDL_CleanModesInMemory(nullptr), 0);
  EXPECT_EQ(QDL_CleanSModesInMemory(nullptr), 0);
  EXPECT_EQ(QDL_InitializeModeMemory(nullptr), 0);
  expect_no_messages();
}

TEST_F(ModeAccess, AnUnknownModeNeverAnswersWithTheLastNodeRead) {
  QDL_Record *model = reopened(built(), "no_ortho");
  double three[3];
  ASSERT_EQ(QDL_ModeByNode(model, 1, 0, 3, three, 0), 1);
  EXPECT_EQ(QDL_ModeByNode(model, 99, 0, 2, three, 0), 0);
  EXPECT_EQ(QDL_ModeByNode(model, 99, 0, 3, three, 0), 0);
}

TEST_F(ModeAccess, ACacheThatRanOutOfMemoryStaysSound) {
  QDL_Record *model = QDL_Create(kNodes, kModes + 1);
  const double six[6] = {1, 2, 3, 4, 5, 6};
  for (int mode = 1; mode <= kModes; ++mode)
    QDL_SetModeVec(model, mode, 10, 0, six);
  double half[3];
  const auto fetch = [&] { return QDL_Mode(model, 1, 0, half, 0); };
  const auto check = [&](int, bool) {
    // A further mode needs a longer table than the one that the failed attempt may have left.
    QDL_AddMode(model, kModes + 1);
    QDL_SetModeVec(model, kModes + 1, 10, 0, six);
    double of_new_mode[3] = {};
    EXPECT_EQ(QDL_Mode(model, kModes + 1, 0, of_new_mode, 1), 1);
    EXPECT_EQ(of_new_mode[2], 6.0);
    QDL_CleanModesInMemory(model);
  };
  EXPECT_GT(sweep(Door::kMemory, Persistence::kOnce, fetch, check), 0u);
}

TEST_F(ModeAccess, ValuesSurviveAFailedGrowthOfTheirFile) {
  constexpr int kMany = 8;
  for (const Door door : {Door::kMemory, Door::kFile}) {
    const auto grown = [&] {
      QDL_Record *model = QDL_Create(1, kMany);
      QDL_AddNode(model, 1);
      for (int mode = 1; mode <= kMany; ++mode) {
        const double six[6] = {1.0 * mode, 2, 3, 4, 5, 6};
        QDL_SetModeVec(model, mode, 1, 0, six);
      }
      return model;
    };
    QDL_Record *model = grown();
    const auto grow = [&] {
      const double six[6] = {-1, -2, -3, -4, -5, -6};
      return QDL_SetModeVec(model, 3, 2, 0, six);
    };
    const auto check = [&](int, bool) {
      for (int mode = 1; mode <= kMany; ++mode) {
        double half[6] = {};
        ASSERT_EQ(QDL_Mode(model, mode, 0, half, 0), 1);
        EXPECT_EQ(half[0], mode);
        EXPECT_EQ(half[2], 3.0);
      }
      const double six[6] = {7, 7, 7, 7, 7, 7};
      EXPECT_EQ(QDL_SetModeVec(model, kMany, 2, 0, six), 1);
      QDL_UnLink(model);
      model = grown();
    };
    EXPECT_GT(sweep(door, Persistence::kOnce, grow, check), 0u);
  }
}

TEST_F(ModeAccess, PositionsBeyondFourGibibytes) {
  // Sparse: only the last node's values take space on the disk.
  constexpr std::int64_t kFar = (std::int64_t{5} << 30) + 4;
  QDL_Record *model = reopened(built(1), "no_ortho no_xdr");
  const std::string name = path("modes.qdl");
  std::FILE *file = std::fopen(name.c_str(), "r+b");
  ASSERT_NE(file, nullptr);
  std::vector<double> row(6 * kNodes, 0.5);
  row[7] = 42.0;
  ASSERT_EQ(FileSeek_Win32(file, kFar, 0), 0);
  ASSERT_EQ(FileTell_Win32(file), kFar);
  ASSERT_EQ(std::fwrite(row.data(), 8, row.size(), file), row.size());
  std::fclose(file);
  model->mode_data[0].backing.starts[1] = kFar;
  EXPECT_EQ(fetched(model, 2, 0, 0)[4], 42.0);
}

}  // namespace
}  // namespace qdltest
