// The exported band of modes: which modes it takes and what is left of every block.

#include <gtest/gtest.h>

#include "io/write_fixture.h"
#include "record/record.h"

namespace {

using namespace qdltest;

// Everything that depends on modes is there.
const std::set<int> kBlocks = without(written_blocks(316), {15});

struct Band {
  std::string options;
  std::vector<int> modes;  // those exported
};

// The frequencies are 0.5, 5, 50 and 150.
const std::vector<Band> &bands() {
  static const std::vector<Band> all = {
      {"lowpass(100)", {0, 1, 2}},
      {"highpass(10) lowpass(100)", {2}},
      {"highpass(1)lowpass(60", {1, 2}},
      {"highpass(1)", {1, 2, 3}},
      {"highpass(100)", {3}},
      {"lowpass(50)", {0, 1, 2}},       // a mode at the upper limit is in
      {"highpass(5)", {2, 3}},          // one at the lower limit is not
      {"highpass(500)", {0, 1, 2, 3}},  // nothing is left out below then
      {"highpass(500)lowpass(10)", {0, 1}},
      {"highpass(0.5)lowpass(1e8)", {1, 2, 3}},
      {"", {0, 1, 2, 3}},
  };
  return all;
}

class Range : public WriteFixture {
 protected:
  SampleModel content_ = body_with_modes({0, 1, 2, 3}, 7);

  static SampleFile exported(const std::vector<int> &modes, std::int32_t code = 316) {
    const std::set<int> blocks = without(written_blocks(code), {15});
    return build_file(code, blocks, in_version(body_with_modes(modes, 1), code));
  }
};

TEST_F(Range, EveryBlockIsCut) {
  for (const Band &band : bands()) {
    SCOPED_TRACE(band.options);
    QDL_Terminate();
    expect_written(build_record(content_, kBlocks), band.options, exported(band.modes));
    // The same from a file.
    expect_written(open(build_file(316, kBlocks, content_)), band.options, exported(band.modes));
  }
}

TEST_F(Range, EveryVersionIsCut) {
  for (const WriteForm &form : every_write_form()) {
    SCOPED_TRACE(form.options);
    QDL_Terminate();
    expect_written(build_record(content_, kBlocks), form.options + "highpass(1)lowpass(60)",
                   exported({1, 2}, form.code));
  }
}

// The numbers of the record change with the first write, what it holds does not.
TEST_F(Range, ModesOfTheRecordAreRenumbered) {
  QDL_Record *record = build_record(content_, kBlocks);
  expect_written(record, "highpass(10)lowpass(100)", exported({2}));
  EXPECT_EQ(record->mode_numbers, (std::vector<std::int32_t>{-3, -1, 1, 3}));
  EXPECT_EQ(record->eigenvalues[0].mode_number, -3);
  expect_written(record, "highpass(1)lowpass(60)", exported({1, 2}));
  expect_written(record, "", exported({0, 1, 2, 3}));
  EXPECT_EQ(record->mode_numbers, (std::vector<std::int32_t>{1, 3, 5, 7}));
}

// The export ends before the first mode without generalized mass.
TEST_F(Range, MasslessModesEndTheBand) {
  for (auto &[massless, modes] :
       std::map<std::size_t, std::vector<int>>{{3, {0, 1, 2}}, {2, {0, 1}}, {1, {0}}}) {
    SCOPED_TRACE(massless);
    QDL_Record *record = build_record(content_, kBlocks);
    record->eigenvalues[massless].generalized_mass = -0.0;
    expect_written(record, "", exported(modes));
  }
}

// --- Empty bands ------------------------------------------------------------------------------

TEST_F(Range, EmptyBandLeavesNothingModal) {
  const std::set<int> blocks = {4, 6, 9, 10, 11, 14, 17, 19, 20, 24, 34, 35, 36, 37};
  SampleModel written = body_with_modes({}, 1);
  const auto expect_empty = [&](QDL_Record *record, const std::string &options) {
    expect_written(record, options, build_file(316, blocks, written));
    SCOPED_TRACE("read again");
    EXPECT_EQ(QDL_ModeCount(QDL_CreateFromQDL(path("written.qdl").c_str())), 0);
    EXPECT_EQ(errors, std::vector<std::string>{});
    QDL_Terminate();
  };
  expect_empty(build_record(content_, written_blocks(60)), "lowpass(0.1)");
  expect_empty(build_record(content_, written_blocks(60)), "highpass(10)lowpass(20)");
  QDL_Record *massless = build_record(content_, written_blocks(60));
  massless->eigenvalues[0].generalized_mass = 0.0;
  expect_empty(massless, "highpass(10)");
}

// --- Damping ----------------------------------------------------------------------------------

TEST_F(Range, DampingKeepsEntriesOfExportedModes) {
  using Entries = std::vector<MatrixEntry>;
  // On principal axes the first six positions are axes, with no rigid mode the next are the modes.
  const Entries all = {{1, 1, 1.5, 0}, {1, 2, 2.5, 11},   {3, 2, 3.5, 0},   {3, 3, 4.5, 12},
                       {4, 4, 5.5, 0}, {0, 1, 6.5, 0},    {7, 6, 7.5, 0},   {8, 8, 8.5, 13},
                       {9, 8, 9.5, 0}, {10, 10, 10.5, 0}, {11, 10, 11.5, 0}};
  const Entries on_axes = {{1, 1, 1.5, 0}, {1, 2, 2.5, 11}, {3, 2, 3.5, 0}, {3, 3, 4.5, 12},
                           {4, 4, 5.5, 0}, {7, 6, 7.5, 0},  {8, 8, 8.5, 13}};
  struct Case {
    bool on_principal_axes;
    std::string options;
    std::vector<int> modes;
    Entries left;
  };
  for (const Case &c :
       {Case{false, "lowpass(10)", {0, 1}, {{1, 1, 1.5, 0}, {1, 2, 2.5, 11}}},
        {false, "highpass(1)lowpass(60)", {1, 2}, {{2, 1, 3.5, 0}, {2, 2, 4.5, 12}}},
        {false, "highpass(100)", {3}, {{1, 1, 5.5, 0}}},
        {true, "lowpass(10)", {0, 1}, on_axes},
        {true, "highpass(1)lowpass(60)", {1, 2}, {{7, 7, 8.5, 13}, {8, 7, 9.5, 0}}}}) {
    SCOPED_TRACE(c.options + (c.on_principal_axes ? " on principal axes" : ""));
    QDL_Terminate();
    content_.damping = {77, all};
    std::set<int> blocks = written_blocks(316);
    if (!c.on_principal_axes)
      blocks = without(blocks, {21, 22, 23, 25, 26});
    QDL_Record *record = build_record(content_, blocks);
    ASSERT_EQ(record->damping_on_principal_axes, c.on_principal_axes);
    ASSERT_EQ(QDL_RigidBodyModeCount(record), 0);
    SampleModel written = body_with_modes(c.modes, 1);
    written.damping = {77, c.left};
    expect_written(record, c.options, build_file(316, blocks, written));
  }
}

// With two rigid modes the seventh position is the third mode.
TEST_F(Range, DampingOnPrincipalAxesSkipsRigidModes) {
  // Modes 0 and 1 at rest, mode 2 above 10: the jump is at mode 2.
  content_.damping = {0, {{1, 7, 1.5, 0}, {7, 7, 2.5, 0}, {8, 7, 3.5, 0}, {8, 8, 4.5, 0}}};
  const std::vector<double> frequencies = {0.0, 0.0, 20.0, 5.0};
  for (std::size_t i = 0; i < 4; ++i)
    content_.eigenvalues[i].frequency = frequencies[i];
  const auto written_with = [&](const std::vector<int> &modes, const EntryList &damping) {
    SampleModel written = body_with_modes(modes, 1);
    for (std::size_t i = 0; i < modes.size(); ++i)
      written.eigenvalues[i].frequency = frequencies[static_cast<std::size_t>(modes[i])];
    written.damping = damping;
    return build_file(316, written_blocks(316), written);
  };
  QDL_Record *record = build_record(content_, written_blocks(60));
  ASSERT_EQ(QDL_RigidBodyModeCount(record), 2);
  // From mode 2 on: position 7 is that mode, position 8 the next, behind the places of the axes.
  expect_written(record, "highpass(1)",
                 written_with({2, 3}, {0, {{7, 7, 2.5, 0}, {8, 7, 3.5, 0}, {8, 8, 4.5, 0}}}));
  // Up to mode 1 no flexible mode is left.
  content_.damping.entries.push_back({2, 6, 5.5, 0});
  record = build_record(content_, written_blocks(60));
  expect_written(record, "lowpass(10)", written_with({0, 1}, {0, {{2, 6, 5.5, 0}}}));
}

}  // namespace
