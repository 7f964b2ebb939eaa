// Setting mode shapes, stress and strain modes: values, temporary files, what is fetched
// afterwards.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "modes/mode_store.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"
#include "support/read_fixture.h"

namespace {

using qdlflex::Block;
using Six = std::array<double, 6>;

constexpr std::int32_t kAllModeKinds[] = {0, 1, 2};
constexpr Block kBlocks[] = {Block::kModeShapes, Block::kModalStress, Block::kModalStrain};

// How messages speak of the kinds' files.
constexpr struct {
  const char *variable, *what;
} kKindNames[] = {{"ZEB_TMP_MOD", "mode shape"},
                  {"ZEB_TMP_STR", "modal stress"},
                  {"ZEB_TMP_STN", "modal strain"}};

Six numbered(double mode, double node) {
  Six six{};
  for (std::size_t c = 0; c < six.size(); ++c)
    six[c] = 1000 * mode + 10 * node + static_cast<double>(c);
  return six;
}

class ModeVectors : public qdltest::ReadFixture {
 protected:
  static std::int32_t set(QDL_Record *model, std::int32_t mode, std::int32_t node,
                          std::int32_t kind, const Six &six) {
    return QDL_SetModeVec(model, mode, node, kind, six.data());
  }

  // All components of all nodes of the kind.
  static std::vector<Six> fetch(QDL_Record *model, std::int32_t mode, std::int32_t kind) {
    const auto nodes = static_cast<std::size_t>(QDL_ModeNodeCount(model, kind));
    std::vector<Six> values(nodes);
    std::vector<double> half(3 * nodes);
    for (std::size_t part = 0; part < 2; ++part) {
      EXPECT_EQ(QDL_Mode(model, mode, kind, half.data(), static_cast<std::int32_t>(part)), 1);
      for (std::size_t node = 0; node < nodes; ++node)
        std::copy_n(&half[3 * node], 3, &values[node][3 * part]);
    }
    return values;
  }

  static Six fetch(QDL_Record *model, std::int32_t mode, std::int32_t kind, std::int32_t node) {
    return fetch(model, mode, kind)
        .at(static_cast<std::size_t>(QDL_ModeNodeIndex(model, kind, node)));
  }

  void remove_temporary_files() const {
    for (const std::string &file : temporary_files())
      std::filesystem::remove(file);
  }
};

}  // namespace

TEST_F(ModeVectors, AreFetchedAsTheyWereSet) {
  for (const std::int32_t kind : kAllModeKinds) {
    SCOPED_TRACE(kind);
    QDL_Record *model = QDL_Create(10, 3);
    // Nodes in another order than the slots of stress and strain.
    for (const std::int32_t node : {4, 3, 2, 1})
      QDL_AddNode(model, node);
    for (const std::int32_t mode : {20, 10}) {
      for (const std::int32_t node : {2, 4, 1}) {
        EXPECT_EQ(set(model, mode, node, kind, numbered(mode, node)), 1);
      }
    }
    EXPECT_EQ(QDL_SetMode(model, 10, 4, kind, 1, 2, 3, 4, 5, 6), 1);
    EXPECT_EQ(QDL_SetModeEntry(model, 20, 1, kind, 4, -7.0), 1);

    EXPECT_EQ(QDL_ModeNodeCount(model, kind), kind == 0 ? 4 : 3);
    EXPECT_EQ(fetch(model, 20, kind, 2), numbered(20, 2));
    EXPECT_EQ(fetch(model, 20, kind, 4), numbered(20, 4));
    Six edited = numbered(20, 1);
    edited[4] = -7.0;
    EXPECT_EQ(fetch(model, 20, kind, 1), edited);
    EXPECT_EQ(fetch(model, 10, kind, 2), numbered(10, 2));
    EXPECT_EQ(fetch(model, 10, kind, 4), (Six{1, 2, 3, 4, 5, 6}));
    if (kind == 0) {
      EXPECT_EQ(fetch(model, 10, kind, 3), Six{}) << "never set";
    }
    for (const std::int32_t other : kAllModeKinds) {
      const Block block = kBlocks[other];
      EXPECT_EQ(QDL_Exists(model, qdlflex::block_index(block)), other == kind ? 1 : 0);
    }
    EXPECT_EQ(errors, std::vector<std::string>{});
  }
}

TEST_F(ModeVectors, StressNodesKeepTheOrderOfTheirFirstUse) {
  QDL_Record *model = QDL_Create(4, 1);
  for (const std::int32_t node : {1, 2, 3})
    QDL_AddNode(model, node);
  EXPECT_EQ(set(model, 5, 3, 1, numbered(5, 3)), 1);
  EXPECT_EQ(set(model, 0, 1, 1, numbered(0, 1)), 1);  // a pre-stress takes a slot as well
  EXPECT_EQ(set(model, 5, 2, 1, numbered(5, 2)), 1);
  ASSERT_EQ(QDL_ModeNodeCount(model, 1), 3);
  EXPECT_EQ(QDL_ModeNodeID(model, 1, 0), 3);
  EXPECT_EQ(QDL_ModeNodeID(model, 1, 1), 1);
  EXPECT_EQ(QDL_ModeNodeID(model, 1, 2), 2);
  EXPECT_EQ(fetch(model, 5, 1), (std::vector<Six>{numbered(5, 3), Six{}, numbered(5, 2)}));
  EXPECT_EQ(QDL_ModeNodeCount(model, 2), 0);
}

TEST_F(ModeVectors, OfModeZeroAreThePreStressAndPreStrain) {
  QDL_Record *model = QDL_Create(4, 0);
  for (const auto &[kind, block, vectors] :
       {std::tuple{1, Block::kPreStress, &QDL_Record::pre_stress},
        std::tuple{2, Block::kPreStrain, &QDL_Record::pre_strain}}) {
    SCOPED_TRACE(kind);
    EXPECT_EQ(set(model, 0, 7, kind, numbered(kind, 7)), 1);
    EXPECT_EQ(QDL_SetMode(model, 0, 8, kind, 1, 2, 3, 4, 5, 6), 1);
    EXPECT_EQ(QDL_SetModeEntry(model, 0, 8, kind, 2, 30), 1);
    EXPECT_EQ(QDL_SetModeEntry(model, 0, 9, kind, 5, 60), 1);
    EXPECT_EQ(model->*vectors, (std::vector<qdlflex::Vector6>{
                                   numbered(kind, 7), {1, 2, 30, 4, 5, 6}, {0, 0, 0, 0, 0, 60}}));
    EXPECT_EQ(QDL_Exists(model, qdlflex::block_index(block)), 1);
    EXPECT_EQ(QDL_Exists(model, qdlflex::block_index(kBlocks[kind])), 0);
  }
  EXPECT_EQ(QDL_ModeCount(model), 0);
  expect_no_messages();

  // Of the mode shapes, 0 is a mode number like others.
  EXPECT_EQ(set(QDL_Create(1, 1), 0, 1, 0, numbered(0, 1)), 1);
}

TEST_F(ModeVectors, ChangeNothingForArgumentsOutOfRange) {
  QDL_Record *model = QDL_Create(4, 2);
  for (const std::int32_t kind : {-1, 3}) {
    EXPECT_EQ(set(model, 1, 1, kind, Six{}), 0);
    EXPECT_EQ(QDL_SetMode(model, 1, 1, kind, 1, 2, 3, 4, 5, 6), 0);
    EXPECT_EQ(QDL_SetModeEntry(model, 1, 1, kind, 0, 1), 0);
  }
  for (const std::int32_t component : {-1, 6}) {
    EXPECT_EQ(QDL_SetModeEntry(model, 1, 1, 0, component, 1), 0);
  }
  EXPECT_EQ(QDL_ModeCount(model) + QDL_NodeCount(model), 0);
  EXPECT_EQ(temporary_files().size(), 0u);
  expect_no_messages();
}

TEST_F(ModeVectors, KeepTheirValuesWhenNodesOutgrowThePlan) {
  for (const std::int32_t planned : {0, 1, 3, -4}) {
    SCOPED_TRACE(planned);
    for (const std::int32_t kind : kAllModeKinds) {
      QDL_Record *model = QDL_Create(planned, 3);
      for (std::int32_t node = 1; node <= 50; ++node) {
        for (const std::int32_t mode : {1, 2, 3}) {
          ASSERT_EQ(set(model, mode, node, kind, numbered(mode, node)), 1);
        }
      }
      for (const std::int32_t mode : {1, 2, 3}) {
        const std::vector<Six> values = fetch(model, mode, kind);
        ASSERT_EQ(values.size(), 50u);
        for (std::int32_t node = 1; node <= 50; ++node) {
          ASSERT_EQ(values[static_cast<std::size_t>(node - 1)], numbered(mode, node));
        }
      }
    }
  }
}

TEST_F(ModeVectors, ShowInEverythingThatWasFetchedBefore) {
  QDL_Record *model = QDL_Create(2, 2);
  set(model, 1, 1, 0, {3, 4, 0, 0, 0, 1});
  set(model, 1, 2, 0, {0, 0, 1, 0, 0, 0});
  QDL_SetNodalMass(model, 1, 2.0);
  const auto displacement = [&](std::int32_t &node) {
    double value = -1;
    EXPECT_EQ(QDL_GetMaxModeDisplacement(model, 1, &node, &value), 1);
    return value;
  };
  std::int32_t node = 0;
  EXPECT_EQ(displacement(node), 5.0);
  EXPECT_EQ(node, 1);
  double *doubles = nullptr;
  float *floats = nullptr;
  ASSERT_EQ(QDL_ModeByRef(model, 1, 0, &doubles, 0), 1);
  ASSERT_EQ(QDL_SModeByRef(model, 1, 0, &floats, 0), 1);
  EXPECT_EQ(doubles[1], 4.0);

  ASSERT_EQ(QDL_SetModeEntry(model, 1, 2, 0, 0, 12), 1);
  EXPECT_EQ(fetch(model, 1, 0, 2), (Six{12, 0, 1, 0, 0, 0}));
  ASSERT_EQ(QDL_ModeByRef(model, 1, 0, &doubles, 0), 1);
  EXPECT_EQ(doubles[3], 12.0);
  ASSERT_EQ(QDL_SModeByRef(model, 1, 0, &floats, 0), 1);
  EXPECT_EQ(floats[3], 12.0f);
  EXPECT_EQ(displacement(node), std::sqrt(145.0));
  EXPECT_EQ(node, 2);

  // Vectors cached before a node and a mode came have the wrong length.
  ASSERT_EQ(set(model, 2, 3, 0, numbered(2, 3)), 1);
  EXPECT_EQ(fetch(model, 1, 0), (std::vector<Six>{{3, 4, 0, 0, 0, 1}, {12, 0, 1, 0, 0, 0}, {}}));
  EXPECT_EQ(fetch(model, 2, 0, 3), numbered(2, 3));
  ASSERT_EQ(QDL_ModeByRef(model, 2, 0, &doubles, 1), 1);
  EXPECT_EQ(doubles[8], numbered(2, 3)[5]);
}

TEST_F(ModeVectors, GoToTemporaryFilesOfTheirKind) {
  QDL_Record *model = QDL_Create(3, 2);
  const std::string starts[] = {
      "Temp modeshape file: ", "Temp modal stress file: ", "Temp modal strain file: "};
  std::vector<std::string> names;
  for (const std::int32_t kind : kAllModeKinds) {
    clear_messages();
    EXPECT_EQ(set(model, 1, 1, kind, numbered(1, 1)), 1);
    EXPECT_EQ(set(model, 2, 1, kind, numbered(2, 1)), 1);
    ASSERT_EQ(infos.size(), 1u);
    ASSERT_TRUE(infos[0].starts_with(starts[kind] + path("qdl_"))) << infos[0];
    names.push_back(infos[0].substr(starts[kind].size()));
    EXPECT_EQ(std::filesystem::file_size(names.back()), 3u * 2 * 6 * 8);
  }
  EXPECT_EQ(temporary_files().size(), 3u);
  QDL_UnLink(model);
  EXPECT_EQ(temporary_files().size(), 0u);
}

TEST_F(ModeVectors, GoToTheFilesNamedByTheEnvironment) {
  const qdltest::ScopedEnvironment mode("ZEB_TMP_MOD", path("m.tmp").c_str());
  const qdltest::ScopedEnvironment stress("ZEB_TMP_STR", path("s.tmp").c_str());
  const qdltest::ScopedEnvironment strain("ZEB_TMP_STN", path("n.tmp").c_str());
  QDL_Record *model = QDL_Create(1, 1);
  for (const std::int32_t kind : kAllModeKinds) {
    EXPECT_EQ(set(model, 1, 1, kind, numbered(kind + 1, 1)), 1);
  }
  EXPECT_EQ(infos, (std::vector<std::string>{"Temp modeshape file: " + path("m.tmp"),
                                             "Temp modal stress file: " + path("s.tmp"),
                                             "Temp modal strain file: " + path("n.tmp")}));
  // A second model takes other files and leaves the values of the first alone.
  QDL_Record *other = QDL_Create(1, 1);
  for (const std::int32_t kind : kAllModeKinds) {
    EXPECT_EQ(set(other, 1, 1, kind, numbered(9, 1)), 1);
  }
  for (const std::int32_t kind : kAllModeKinds) {
    EXPECT_EQ(fetch(model, 1, kind, 1), numbered(kind + 1, 1));
  }
  QDL_Terminate();
  for (const char *name : {"m.tmp", "s.tmp", "n.tmp"}) {
    EXPECT_FALSE(std::filesystem::exists(path(name))) << name;
  }
}

TEST_F(ModeVectors, TellThatATemporaryFileCannotBeOpened) {
  const std::string missing = path("missing/file");
  QDL_Record *model = QDL_Create(1, 1);
  for (const std::int32_t kind : kAllModeKinds) {
    const auto &[variable, what] = kKindNames[kind];
    const qdltest::ScopedEnvironment named(variable, missing.c_str());
    clear_messages();
    EXPECT_EQ(set(model, 1, 1, kind, Six{}), 0);
    expect_only_error(std::string("Unable to open temporary ") + what + " file " + missing +
                      ".\nTo write elsewhere, specify directory name in environment variable TMP,\n"
                      "or specify path name (file name) in environment variable " +
                      variable + ".");
  }
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_ModeCount(model), 1);
  EXPECT_EQ(QDL_Exists(model, qdlflex::block_index(Block::kModeShapes)), 0);

  const qdltest::ScopedEnvironment directory("TMP", path("missing").c_str());
  clear_messages();
  EXPECT_EQ(set(model, 1, 1, 0, Six{}), 0);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_TRUE(
      errors[0].starts_with("Unable to open temporary mode shape file " + path("missing/qdl_")))
      << errors[0];
}

TEST_F(ModeVectors, TellThatTheDiskIsFull) {
  if (!std::filesystem::exists("/dev/full")) {
    GTEST_SKIP() << "no /dev/full";
  }
  for (const std::int32_t kind : kAllModeKinds) {
    const auto &[variable, what] = kKindNames[kind];
    const qdltest::ScopedEnvironment named(variable, "/dev/full");
    QDL_Record *model = QDL_Create(10, 10);
    clear_messages();
    EXPECT_EQ(set(model, 1, 1, kind, Six{}), 0);
    expect_only_error(
        std::string("Insufficient disk space for temporary ") + what + " file " +
        (kind == 0 ? " " : "") +
        "/dev/full.\nTo write elsewhere, specify directory name in environment variable TMP,\n"
        "or specify path name (file name) in environment variable " +
        variable);
    QDL_UnLink(model);
  }
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(ModeVectors, TellThatTheirPlaceCannotBeReached) {
  // Takes everything, but has no positions.
  const qdltest::ScopedEnvironment named("ZEB_TMP_STR", "/dev/null");
  QDL_Record *model = QDL_Create(2, 2);
  QDL_AddMode(model, 3);
  EXPECT_EQ(set(model, 5, 7, 1, Six{}), 0);
  expect_only_error("Couldn't seek to mode 5 node 7 position in temporary file");
  clear_messages();
  EXPECT_EQ(QDL_SetModeEntry(model, 5, 7, 1, 4, 1.0), 0);
  expect_only_error("Couldn't seek to mode 5 node 7 dof 4 position in temporary file");
  EXPECT_EQ(QDL_ModeExist(model, 1), 0);
}

TEST_F(ModeVectors, FailCleanlyWhenFileOperationsFail) {
  const auto build = [&] {
    QDL_Record *model = QDL_Create(1, 2);
    std::int32_t stored = 0;
    for (std::int32_t node = 1; node <= 4; ++node)
      stored += set(model, 2, node, 0, numbered(2, node));
    return stored;
  };
  for (const auto persistence : {qdltest::Persistence::kOnce, qdltest::Persistence::kEverAfter}) {
    const auto check = [&](std::int32_t stored, bool fired) {
      EXPECT_EQ(errors.size(), static_cast<std::size_t>(4 - stored));
      EXPECT_TRUE(fired || stored == 4);
      QDL_Terminate();
      // Where nothing works any more, removing a file doesn't either.
      if (persistence == qdltest::Persistence::kEverAfter)
        remove_temporary_files();
      EXPECT_EQ(temporary_files(), std::vector<std::string>{});
      clear_messages();
    };
    EXPECT_GT(qdltest::sweep(qdltest::Door::kFile, persistence, build, check), 3u);
  }
}

TEST_F(ModeVectors, OfAFileAreEditedInACopy) {
  for (const std::int32_t code : {0x23c, 0x33c, 60, 0x13c}) {
    SCOPED_TRACE(qdltest::version_name(code));
    const qdltest::SampleFile sample = qdltest::build_file(code);
    QDL_Record *model = open(sample);
    ASSERT_NE(model, nullptr);
    std::array<std::array<std::vector<Six>, 2>, 3> before;
    for (const std::int32_t kind : kAllModeKinds) {
      for (std::size_t i = 0; i < 2; ++i)
        before[static_cast<std::size_t>(kind)][i] = fetch(model, i == 0 ? 7 : 9, kind);
    }
    const Six values = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
    const bool single = code & 0x200;
    for (const std::int32_t kind : kAllModeKinds) {
      const auto slot = static_cast<std::size_t>(QDL_ModeNodeIndex(model, kind, 23));
      ASSERT_EQ(set(model, 9, 23, kind, values), 1);
      auto &expected = before[static_cast<std::size_t>(kind)];
      for (std::size_t c = 0; c < 6; ++c)
        expected[1][slot][c] = single ? static_cast<float>(values[c]) : values[c];
      EXPECT_EQ(fetch(model, 7, kind), expected[0]) << kind;
      EXPECT_EQ(fetch(model, 9, kind), expected[1]) << kind;
    }
    EXPECT_EQ(temporary_files().size(), 3u);
    EXPECT_EQ(qdltest::read_file(path("body.qdl")), sample.bytes);
  }
}

TEST_F(ModeVectors, OfARefusedModeLeaveNoTrace) {
  QDL_Record *read = open(qdltest::build_file(60));
  for (QDL_Record *model : {read, QDL_Create(4, 0)}) {
    const std::int32_t nodes = QDL_NodeCount(model);
    const std::int32_t modes = QDL_ModeCount(model);
    clear_messages();
    EXPECT_EQ(set(model, 6, 1, 1, Six{}), 0);
    expect_only_error(
        "Insufficient room for mode 6 in temporary mode shape file.  \n"
        "Specify larger number of modes in QDL_Create.\n");
    EXPECT_EQ(QDL_NodeCount(model), nodes);
    EXPECT_EQ(QDL_ModeCount(model), modes);
  }
  EXPECT_EQ(temporary_files().size(), 0u);
}

TEST_F(ModeVectors, OfAFileReachAddedNodesOnceOneIsSetThere) {
  QDL_Record *model = open(qdltest::build_file(60));
  ASSERT_NE(model, nullptr);
  const std::vector<Six> before = fetch(model, 7, 0);
  QDL_AddNode(model, 500);
  QDL_AddNode(model, 600);
  EXPECT_EQ(QDL_ModeNodeCount(model, 0), 4);
  EXPECT_EQ(fetch(model, 7, 0), before);
  ASSERT_EQ(set(model, 9, 101, 0, numbered(9, 1)), 1);
  EXPECT_EQ(QDL_ModeNodeCount(model, 0), 4);
  ASSERT_EQ(set(model, 7, 500, 0, numbered(7, 5)), 1);
  EXPECT_EQ(QDL_ModeNodeCount(model, 0), 6);
  std::vector<Six> expected = before;
  expected.push_back(numbered(7, 5));
  expected.push_back(Six{});
  EXPECT_EQ(fetch(model, 7, 0), expected);
}

TEST_F(ModeVectors, OfAFileWithFewerModeNodesKeepThem) {
  qdltest::SampleModel content = qdltest::sample_model();
  content.mode_shapes.node_ids = {101, 7};
  for (auto &mode : content.mode_shapes.values)
    mode.resize(12);
  QDL_Record *model = open(qdltest::build_file(60, {4, 7, 8, 11}, content));
  ASSERT_NE(model, nullptr);
  const std::vector<Six> before = fetch(model, 9, 0);
  ASSERT_EQ(before.size(), 2u);
  ASSERT_EQ(set(model, 9, 7, 0, numbered(9, 7)), 1);
  EXPECT_EQ(fetch(model, 9, 0), (std::vector<Six>{before[0], numbered(9, 7)}));
  ASSERT_EQ(QDL_SetModeEntry(model, 9, 23, 0, 1, 5.0), 1);
  EXPECT_EQ(fetch(model, 9, 0),
            (std::vector<Six>{before[0], numbered(9, 7), Six{}, Six{0, 5, 0, 0, 0, 0}}));
}
