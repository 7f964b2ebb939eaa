// Writes that fail half-way: one clear failure, no file, and a model that can be written elsewhere.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <map>

#include "io/write_fixture.h"
#include "numerics/qdlinvar.h"
#include "support/fault.h"

namespace {

using namespace qdltest;
namespace fs = std::filesystem;

const std::string &error_of_block(int block) {
  static const std::map<int, std::string> by_block = {
      {1, "Problem writing version number."},
      {2, "Problem writing header information."},
      {3, "Problem writing content summary.\n"},
      {4, "Problem writing nodal coordinates.\n"},
      {5, "Problem writing element topology map."},
      {6, "Problem writing Global Body Properties."},
      {7, "Problem writing eigenvalues."},
      {8, "Problem writing Mode Shapes."},
      {9, "Problem writing Nodal Masses.\n"},
      {10, "Problem writing Nodal Inertia info."},
      {11, "Problem writing Units strings."},
      {12, "Problem writing Generalized Stiffness info."},
      {13, "Problem writing Generalized Mass info."},
      {14, "Problem writing element face info."},
      {15, "Problem writing Generalized Damping info."},
      {16, "Problem writing Mode Shape Transformation."},
      {17, "Problem writing Interface Nodes."},
      {18, "Problem writing Modal Stress.\n"},
      {19, "Problem writing Invariant 1.\n"},
      {20, "Problem writing Invariant 2.\n"},
      {21, "Problem writing Invariant 3.\n"},
      {22, "Problem writing Invariant 4.\n"},
      {23, "Problem writing Invariant 5.\n"},
      {24, "Problem writing Invariant 7.\n"},
      {25, "Problem writing Invariant 8.\n"},
      {26, "Problem writing Invariant 9.\n"},
      {27, "Problem writing Preload.\n"},
      {28, "Problem writing Modal Loads.\n"},
      {29, "Problem writing Modal Strain."},
      {30, "Problem writing Modal Statistics.\n"},
      {31, "Problem writing Pre-Stress.\n"},
      {32, "Problem writing Pre-Strain.\n"},
      {34, "Problem writing Matrix Operator Data.\n"},
      {35, "Problem writing Modal Load Nodal.\n"},
      {36, "Problem writing Monitor Point Data.\n"},
      {37, "Problem writing Rotor Dynamics Data.\n"},
  };
  return by_block.at(block);
}

bool is_allocation_error(const std::string &text) {
  return text.starts_with("Failed to allocate memory at line ");
}

bool is_block_error(const std::string &text) {
  return text.starts_with("Problem writing ");
}

bool is_mode_error(const std::string &text) {
  return text.starts_with("Problem reading mod");
}

;

class WriteFaults : public WriteFixture {
 protected:
  SampleModel content_ = body_with_modes({0, 1}, 1);

  // The body read from a file, in which its modes still are. Invariants are read from it when
  // they are first needed, which is now.
  QDL_Record *opened_body() {
    QDL_Record *record = open(build_file(316, written_blocks(316), content_));
    for (const int invariant : {1, 2, 3, 4, 5, 7, 8, 9})
      qdlflex::obtain_invariant(*record, invariant);
    return record;
  }

  // Every operation failing in turn, in one form.
  void sweep_write(Door door, const WriteForm &form) {
    SCOPED_TRACE(form.options);
    content_ = body_with_modes({0}, 1);
    const ScopedEnvironment variable("ZEB_QDLWRITE_OPTIONS", form.options.c_str());
    const std::string name = path("written.qdl");
    const SampleFile expected =
        build_file(form.code, written_blocks(form.code), in_version(content_, form.code));
    const std::size_t faults = sweep(
        door, Persistence::kOnce,
        [&] {
          QDL_Record *record = nullptr;
          {
            const PauseFaults pause;
            record = opened_body();
          }
          return QDL_write_QDL(record, name.c_str());
        },
        [&](std::int32_t result, bool fired) {
          judge(result, fired, door);
          fs::remove(name);
          clear_messages();
          QDL_Record *record = QDL_FindQDL(path("body.qdl").c_str());
          if (fired)
            expect_written(record, form.options, expected, "again.qdl");
        });
    EXPECT_GT(faults, 20U);
  }

  void judge(std::int32_t result, bool fired, Door door) {
    if (result != 0) {
      EXPECT_EQ(errors, std::vector<std::string>{});
      EXPECT_FALSE(fired) << "the fault went unnoticed";
      return;
    }
    ASSERT_GE(errors.size(), 1U);
    ASSERT_LE(errors.size(), 2U) << testing::PrintToString(errors);
    if (door == Door::kMemory) {
      EXPECT_TRUE(is_allocation_error(errors[0]) || errors[0].starts_with("Unable to open "))
          << errors[0];
    }
    if (errors.size() == 2) {
      EXPECT_TRUE(is_allocation_error(errors[0]) || is_mode_error(errors[0])) << errors[0];
      EXPECT_TRUE(is_block_error(errors[1])) << errors[1];
    }
    EXPECT_FALSE(exists("written.qdl"));
  }
};

const WriteForm kXdr = {"", 316};
const WriteForm kNativeSingleFull = {"full_str no_xdr single", 50};

TEST_F(WriteFaults, EveryOperationFails) {
  for (const Door door : {Door::kMemory, Door::kFile}) {
    for (const WriteForm &form : {kXdr, kNativeSingleFull})
      sweep_write(door, form);
  }
}

// --- Disks ------------------------------------------------------------------------------------

// A disk that fills up in a block, with its first, a middle and its last byte.
TEST_F(WriteFaults, FullDiskIsReportedByTheBlockThatDoesNotFit) {
  const WriteForm forms[] = {kXdr, {"82_comp", 20}, {"no_xdr single", 572}};
  for (const bool solved : {true, false}) {
    for (const WriteForm &form : forms) {
      const std::string options = form.options + (solved ? "" : " no_ortho");
      QDL_Record *record = open(build_file(60, written_blocks(60, solved), content_));
      const SampleFile whole =
          build_file(form.code, written_blocks(form.code, solved), in_version(content_, form.code));
      for (int block = 1; block <= 37; ++block) {
        const std::size_t start = whole.offset[static_cast<std::size_t>(block)];
        const std::size_t end = whole.offset[static_cast<std::size_t>(block) + 1];
        for (const std::size_t limit : std::set<std::size_t>{start, (start + end) / 2, end - 1}) {
          if (start == end)
            continue;
          SCOPED_TRACE(testing::Message()
                       << options << ": " << limit << " bytes, in block " << block);
          const ResourceLimit size_limit(RLIMIT_FSIZE, limit);
          expect_refused(record, options, {error_of_block(block)});
        }
      }
      clear_messages();
      expect_written(record, options, whole);
      fs::remove(path("written.qdl"));
    }
  }
}

TEST_F(WriteFaults, DevicesStay) {
  if (!fs::is_character_file("/dev/full"))
    GTEST_SKIP() << "skipped: there is no /dev/full";
  QDL_Record *record = opened_body();
  clear_messages();
  EXPECT_EQ(QDL_write_QDL(record, "/dev/full"), 0);
  expect_only_error(error_of_block(1));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_EQ(QDL_write_QDL(record, "/dev/null"), 1);
}

// --- The model's own file ---------------------------------------------------------------------

TEST_F(WriteFaults, SourceCutShortWhileOpen) {
  const SampleFile source = build_file(316, written_blocks(316), content_);
  struct Case {
    int block;
    std::string mode_error;
  };
  // Each lacks the last byte of the last mode.
  const std::vector<Case> cases = {{8, "Problem reading mode shape 3"},
                                   {18, "Problem reading modal stress vector 3"},
                                   {29, "Problem reading modal strain vector 3"}};
  for (const Case &c : cases) {
    SCOPED_TRACE(c.mode_error);
    QDL_Record *record = opened_body();
    fs::resize_file(path("body.qdl"), source.offset[static_cast<std::size_t>(c.block) + 1] - 1);
    expect_refused(record, "", {c.mode_error, error_of_block(c.block)});
    write_file(path("body.qdl"), source.bytes);
    clear_messages();
    expect_written(record, "", build_file(316, written_blocks(316), content_));
    fs::remove(path("written.qdl"));
  }
}

// --- Memory -----------------------------------------------------------------------------------

TEST_F(WriteFaults, OnlyOneModeIsInMemory) {
  constexpr std::int32_t kNodes = 3000;
  constexpr std::int32_t kModes = 6;
  QDL_Record *built = QDL_Create(kNodes, kModes);
  const std::array<double, 6> six = {1, 2, 3, 4, 5, 6};
  for (std::int32_t node = 1; node <= kNodes; ++node) {
    QDL_SetNodeCoordinates(built, node, node, 2, 3);
    for (std::int32_t mode = 1; mode <= kModes; ++mode)
      QDL_SetModeVec(built, mode, node, QDL_MODE_SHAPE, six.data());
  }
  ASSERT_EQ(write(built, "no_ortho", "modes.qdl"), 1);
  QDL_Record *record = QDL_CreateFromQDL(path("modes.qdl").c_str());
  constexpr std::size_t kModeBytes = 6 * kNodes * sizeof(double);
  for (const WriteForm &form : {kXdr, kNativeSingleFull}) {
    const PeakMemory peak;
    EXPECT_EQ(write(record, form.options + " no_ortho"), 1);
    EXPECT_LT(peak.bytes(), 2 * kModeBytes + (1 << 18));
  }
}

}  // namespace
