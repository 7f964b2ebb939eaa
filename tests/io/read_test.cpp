// What the reader makes of well-formed files that are out of the ordinary. That the usual blocks of
// every version, encoding and precision arrive whole is the business of the golden files.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/expect_record.h"
#include "support/read_fixture.h"

namespace {

using namespace qdltest;

constexpr std::array<std::int32_t, 4> kEncodings = {60, 60 | kSingleBit, 60 | kXdrBit,
                                                    60 | kXdrBit | kSingleBit};

std::set<int> without(std::set<int> blocks, const std::set<int> &dropped) {
  for (const int id : dropped)
    blocks.erase(id);
  return blocks;
}

class Reading : public ReadFixture {
 protected:
  // Reads one content in every encoding and expects it back without any message.
  void expect_reads(const std::set<int> &blocks, const SampleModel &model = sample_model()) {
    for (const std::int32_t code : kEncodings) {
      SCOPED_TRACE(version_name(code));
      const SampleFile sample = build_file(code, blocks, model);
      QDL_Record *record = open(sample);
      expect_no_messages();
      expect_record(record, model, sample);
    }
  }
};

// --- Version code and table of contents -----------------------------------------------------

TEST_F(Reading, BareFileGivesAnEmptyRecord) {
  for (const auto &[code, summary, end] : {std::array{60, 548, 648}, {60 | kXdrBit, 2180, 2580}}) {
    QDL_Record *record = open(build_file(code, {}));
    ASSERT_NE(record, nullptr);
    expect_no_messages();
    EXPECT_EQ(QDL_NodeCount(record), 0);
    EXPECT_EQ(QDL_ModeCount(record), 0);
    std::array<std::int64_t, 37> offsets{};
    offsets.fill(end);
    offsets[0] = 0;
    offsets[1] = 4;
    offsets[2] = summary;
    EXPECT_EQ(record->contents.offsets, offsets);
  }
}

// The code that a file is laid out for, bits added to it, and what is kept of them.
TEST_F(Reading, OldVersionsIgnoreTheUpperBitsAndNewOnesKeepThem) {
  struct Case {
    std::int32_t base, extra;
    std::uint32_t kept;
  };
  for (const Case &c : {Case{10, kSingleBit | kCoarsenedBit, 10},
                        {20, kXdrBit, 20},
                        {30, kSingleBit, 30},
                        {40, 0x7fffff00, 40},
                        {50, kXdrBit, 50},
                        {31, kSingleBit, 31},
                        {41, kCoarsenedBit, 41},
                        {51, 0x00ffff00, 51},
                        {61, 0, 61},
                        {60 | kSingleBit | kCoarsenedBit, 0, 0x63c},
                        {99 | kXdrBit, 0, 0x163},
                        {255 | kXdrBit | kCoarsenedBit, 0, 0x5ff},
                        {60 | 0x40000000, 0, 0x4000003c}}) {
    SCOPED_TRACE(c.base);
    SampleFile sample = build_file(c.base);
    sample.patch_i32(0, c.base | c.extra);
    QDL_Record *record = open(sample);
    expect_no_messages();
    expect_record(record, sample_model(), sample);
    EXPECT_EQ(record->version_code, c.kept);
  }
}

TEST_F(Reading, OldVersionsHoldNothingBeyondBlockEighteen) {
  for (const std::int32_t code : {10, 20, 30, 31}) {
    SCOPED_TRACE(code);
    SampleFile sample = build_file(code);
    const std::size_t width = sample.encoding == Encoding::kXdr ? 4 : 1;
    for (std::size_t i = 17; i < 100; ++i)
      sample.bytes[sample.offset[3] + width * i + width - 1] = 1;
    QDL_Record *record = open(sample);
    expect_no_messages();
    expect_record(record, sample_model(), sample);
    for (std::size_t i = 17; i < 100; ++i)
      EXPECT_EQ(record->summary[i], i == 98 ? 1 : 0) << i;
  }
}

TEST_F(Reading, AnySummaryByteButZeroIsPresence) {
  SampleFile sample = build_file(60, {4, 11});
  sample.bytes[sample.offset[3]] = 0xff;
  QDL_Record *record = open(sample);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(QDL_Exists(record, 3), 255);
  EXPECT_EQ(QDL_NodeCount(record), 4);

  // Of an XDR character only the low eight bits count.
  sample = build_file(60 | kXdrBit, {4, 11});
  sample.patch_i32(sample.offset[3], 0x12345600 | 2);
  sample.patch_i32(sample.offset[3] + 4, 0x12345600);
  record = open(sample);
  ASSERT_NE(record, nullptr);
  expect_no_messages();
  EXPECT_EQ(QDL_Exists(record, 3), 2);
  EXPECT_EQ(QDL_Exists(record, 4), 0);
}

TEST_F(Reading, UnusedSummaryBytesAndBytesAfterTheLastBlockMeanNothing) {
  SampleFile sample = build_file(60);
  for (const std::size_t byte : {7U, 11U, 36U, 99U})
    sample.bytes[sample.offset[3] + byte] = 1;
  sample.bytes.insert(sample.bytes.end(), 1000, 0xee);
  QDL_Record *record = open(sample);
  expect_no_messages();
  expect_record(record, sample_model(), sample);
}

// --- Text -----------------------------------------------------------------------------------

TEST_F(Reading, CleansTexts) {
  SampleModel model = sample_model();
  model.header.title = std::string(128, 't');
  model.header.date = "2024-05-06   ";
  model.header.comments[0] = "tab\there, \x01\x02\x7f end \t";
  model.header.comments[1] =
      "Gr\xc3\xb6\xc3\x9f"
      "e";
  model.units[1] = "CUBIT\x1bS  ";
  model.load_cases[0].label = std::string(250, 'x') + "      ";
  model.load_cases[1].label = std::string(256, 'y');
  model.monitor_points[0].name = "eightchr";
  model.monitor_points[0].label = std::string(56, 'z');
  model.matrix_operators[0].row_labels[1] = std::string(80, 'w');
  model.matrix_operators[0].subs[1].tag = "tag     ";
  const std::set<int> blocks = {4, 7, 8, 11, 28, 34, 36};

  SampleModel cleaned = model;
  cleaned.header.title = std::string(127, 't');
  cleaned.header.date = "2024-05-06   ";  // the blanks do not end the field
  cleaned.header.comments[0] = "tabhere,  end ";
  cleaned.units[1] = "CUBITS  ";
  cleaned.load_cases[0].label = std::string(250, 'x');
  cleaned.load_cases[1].label = std::string(255, 'y');
  cleaned.monitor_points[0].name = "eightch";
  cleaned.monitor_points[0].label = std::string(55, 'z');
  cleaned.matrix_operators[0].row_labels[1] = std::string(79, 'w');
  cleaned.matrix_operators[0].subs[1].tag = "tag";
  for (const std::int32_t code : kEncodings) {
    SCOPED_TRACE(version_name(code));
    const SampleFile sample = build_file(code, blocks, model);
    QDL_Record *record = open(sample);
    expect_no_messages();
    expect_record(record, cleaned, sample);
  }
}

TEST_F(Reading, UnitsAreThoseOfTheTableAsReadOrSi) {
  SampleModel model = sample_model();
  model.units = {"Kilogram", "millimeter", "parsec", "KiloPond"};
  const std::array<std::set<int>, 2> blocks = {usual_blocks(60), without(usual_blocks(60), {11})};
  const std::array<std::string, 4> expected[] = {{"KILOGRAM", "MILLIMETER", "parsec", "KiloPond"},
                                                 {"KILOGRAM", "METER", "SECOND", "NEWTON"}};
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    QDL_Record *record = open(build_file(60, blocks[i], model));
    ASSERT_NE(record, nullptr);
    expect_no_messages();
    EXPECT_EQ(record->units.mass.data(), expected[i][0]);
    EXPECT_EQ(record->units.length.data(), expected[i][1]);
    EXPECT_EQ(record->units.time.data(), expected[i][2]);
    EXPECT_EQ(record->units.force.data(), expected[i][3]);
  }
}

// --- Nodes ----------------------------------------------------------------------------------

TEST_F(Reading, NodesFollowTheOrderOfTheModeShapes) {
  SampleModel model = sample_model();
  model.mode_shapes.node_ids = {23, 101, 40, 7};
  SampleModel expected = model;
  expected.nodes = {model.nodes[3], model.nodes[0], model.nodes[2], model.nodes[1]};
  for (const std::int32_t code : every_version_code()) {
    SCOPED_TRACE(version_name(code));
    const SampleFile sample = build_file(code, usual_blocks(code), model);
    QDL_Record *record = open(sample);
    expect_no_messages();
    expect_record(record, expected, sample);
  }
}

TEST_F(Reading, ModeShapesMayCoverFewerNodes) {
  SampleModel model = sample_model();
  model.mode_shapes = {
      {40, 101}, {7, 9}, {std::vector<double>(12, 1.5), std::vector<double>(12, 2.5)}};
  // The listed nodes come first; the others follow in some order.
  QDL_Record *record = open(build_file(60, {4, 7, 8, 11}, model));
  ASSERT_NE(record, nullptr);
  expect_no_messages();
  ASSERT_EQ(QDL_NodeCount(record), 4);
  EXPECT_EQ(QDL_NodeID(record, 0), 40);
  EXPECT_EQ(QDL_NodeID(record, 1), 101);
  EXPECT_EQ(record->nodes[0].xyz, model.nodes[2].xyz);
  EXPECT_EQ(record->nodes[1].xyz, model.nodes[0].xyz);
  EXPECT_EQ(QDL_NodeIndex(record, 7) + QDL_NodeIndex(record, 23), 2 + 3);
  EXPECT_EQ(QDL_ModeNodeCount(record, QDL_MODE_SHAPE), 2);
}

TEST_F(Reading, ModeShapesAloneMakeTheirNodes) {
  SampleModel expected = sample_model();
  for (Node &node : expected.nodes)
    node.xyz = {0.0, 0.0, 0.0};
  const SampleFile sample = build_file(60, {8, 11});
  QDL_Record *record = open(sample);
  expect_no_messages();
  expect_record(record, expected, sample);
  ASSERT_EQ(record->nodes.size(), 4U);
  EXPECT_EQ(QDL_NodeID(record, 3), 23);
}

TEST_F(Reading, MassesAloneMakeTheirNodes) {
  const SampleFile sample = build_file(60, {9, 10, 11});
  QDL_Record *record = open(sample);
  expect_no_messages();
  expect_record(record, sample_model(), sample);
  EXPECT_EQ(QDL_NodeCount(record), 4);

  record = open(build_file(60, {10, 11}));
  expect_no_messages();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(QDL_NodeCount(record), 2);
  EXPECT_EQ(QDL_NodeID(record, 0), 7);
}

TEST_F(Reading, OtherThanThreeCoordinatesAreReportedAndThreeRead) {
  for (const std::int32_t d : {2, 4, 0}) {
    SampleModel model = sample_model();
    model.coordinates_per_node = d;
    const SampleFile sample = build_file(60, {4}, model);
    QDL_Record *record = open(sample);
    ASSERT_NE(record, nullptr);
    expect_only_error("Node location should only be specified with 3 coordinates, not " +
                      std::to_string(d));
    ASSERT_EQ(record->nodes.size(), 4U);
    EXPECT_EQ(record->nodes[3].xyz, model.nodes[3].xyz);
  }
}

TEST_F(Reading, SeveralMassesPerNodeAreAveraged) {
  SampleModel model = sample_model();
  for (NodalMass &mass : model.nodal_masses)
    mass.values.push_back(mass.values[0] + 2.0);
  for (const std::int32_t code : kEncodings) {
    SCOPED_TRACE(version_name(code));
    const SampleFile sample = build_file(code, usual_blocks(code), model);
    QDL_Record *record = open(sample);
    expect_only_warnings(
        {"Each node must possess a single scalar mass", "Generating scalar by averaging 2 values"});
    expect_record(record, model, sample);
  }
}

TEST_F(Reading, RedefinedMassesAndInertiasAreWarnedAbout) {
  SampleModel model = sample_model();
  model.nodal_masses.push_back({7, {0.5}});
  model.nodal_inertias.push_back({23, 5, 5, 0.75});
  model.nodal_inertias.push_back({7, 5, 4, 0.875});  // the transpose of an entry that is there
  QDL_Record *record = open(build_file(60, usual_blocks(60), model));
  ASSERT_NE(record, nullptr);
  expect_only_warnings({"Redefining mass of Node 7", "Redefining mass of Nodal inertia 23",
                        "Redefining mass of Nodal inertia 7"});
  EXPECT_EQ(QDL_NodalMass(record, 1), 0.5);
  EXPECT_EQ(record->nodes[3].inertia->at(1), 0.75);
  EXPECT_EQ(record->nodes[1].inertia->at(3), 0.875);
}

// --- Modes ----------------------------------------------------------------------------------

TEST_F(Reading, OldVersionsTakeModeNumbersFromTheEigenvaluesOrCount) {
  SampleModel model = sample_model();
  SampleModel written = model;
  written.mode_shapes.numbers = {-1, 77777};
  SampleModel counted = model;
  counted.mode_shapes.numbers = {1, 2};
  for (const std::int32_t code : {10, 20}) {
    SampleFile sample = build_file(code, usual_blocks(code), written);
    expect_record(open(sample), model, sample);
    expect_no_messages();
    sample = build_file(code, {4, 8, 11}, written);
    expect_record(open(sample), counted, sample);
    expect_no_messages();
  }
}

TEST_F(Reading, VersionTenRecomputesFrequenciesWithTheirSign) {
  SampleModel model = sample_model();
  model.eigenvalues[0].eigenvalue = -16.0;
  model.eigenvalues[1].eigenvalue = 25.0;
  const SampleFile sample = build_file(10, usual_blocks(10), model);
  QDL_Record *record = open(sample);
  expect_record(record, model, sample);
  EXPECT_EQ(record->eigenvalues[0].circular_frequency, -4.0);
  EXPECT_EQ(record->eigenvalues[1].circular_frequency, 5.0);
  EXPECT_EQ(record->eigenvalues[1].frequency, 5.0 / 6.28318530718);
}

TEST_F(Reading, ModesAreCountedByTheBlocksThatAreThere) {
  struct Case {
    std::set<int> blocks;
    std::vector<std::int32_t> numbers;
  };
  const std::vector<Case> cases = {{{4, 7, 27}, {7, 9}},
                                   {{4, 8, 27}, {7, 9}},
                                   {{4, 8, 18, 27, 28, 29}, {7, 9}},
                                   {{4, 27, 30}, {1, 2}}};
  for (const Case &c : cases) {
    QDL_Record *record = open(build_file(60, c.blocks));
    ASSERT_NE(record, nullptr) << errors.at(0);
    expect_no_messages();
    EXPECT_EQ(record->mode_numbers, c.numbers);
    EXPECT_EQ(record->preload.values.size(), 2U);
  }
}

TEST_F(Reading, StressBeforeModeShapesIsWarnedAbout) {
  const SampleFile sample = build_file(60, {4, 7, 18, 29, 31, 32});
  QDL_Record *record = open(sample);
  expect_only_warnings({"Stress modes are being processed before mode shapes",
                        "Strain modes are being processed before mode shapes"});
  expect_record(record, sample_model(), sample);
}

// --- Other blocks ---------------------------------------------------------------------------

TEST_F(Reading, EmptyListsAreContent) {
  SampleModel model = sample_model();
  model.faces.clear();
  model.element_groups.clear();
  model.interface_nodes.clear();
  model.stiffness.entries.clear();
  model.damping.entries.clear();
  model.nodal_inertias.clear();
  model.load_cases.clear();
  model.nodal_load_cases = {{}, {}};
  model.monitor_points.clear();
  model.matrix_operators = {{"none", {}, {}}, {"rows", {"one"}, {{0, "empty", {}}}}};
  model.rotor_matrices.clear();
  expect_reads(usual_blocks(60), model);
  std::set<int> older = without(usual_blocks(60), {14});
  older.insert(5);
  expect_reads(older, model);
}

// Nodes that the file does not list, positions outside the matrix and the nodes, a transformation
// and statistics of other modes.
TEST_F(Reading, WhatFitsNothingElseIsKept) {
  SampleModel model = sample_model();
  model.interface_nodes = {23, 999, 101};
  model.nodal_load_cases[0][1].node_id = 998;
  model.stress.node_ids[1] = 997;
  model.element_groups[1].elements[0][3] = 996;
  model.faces = {3, -1, 99, INT32_MAX, 0, 2, 0, 1};
  model.stiffness.entries = {{0, 1, 1.5, 0}, {-5, 99, 2.5, 1}, {2, 2, 3.5, -1}};
  model.transformation = {{5, {1.5, 2.5, 3.5}}, {6, {4.5, 5.5, 6.5}}, {7, {7.5, 8.5, 9.5}}};
  model.statistics.push_back(model.statistics[0]);
  expect_reads(usual_blocks(60), model);
  std::set<int> older = without(usual_blocks(60), {14});
  older.insert(5);
  expect_reads(older, model);
  EXPECT_TRUE(open(build_file(60, older, model))->statistics.inconsistent);
  EXPECT_FALSE(open(build_file(60))->statistics.inconsistent);

  model.stiffness.entries = {{INT32_MIN, 1, 1.5, 0}};
  QDL_Record *record = open(build_file(60, {7, 12}, model));
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->stiffness.entries[0].row, INT32_MAX);
}

TEST_F(Reading, MonitorPointRowsAreSharedOutWithoutAMask) {
  SampleModel model = sample_model();
  model.monitor_points[0].mask = 0;
  QDL_Record *record = open(build_file(60, usual_blocks(60), model));
  ASSERT_NE(record, nullptr);
  expect_no_messages();
  const auto &point = record->monitor_points.at(0);
  const std::vector<double> &values = model.monitor_points[0].values;
  for (std::size_t op = 0; op < 3; ++op)
    EXPECT_EQ(point.operators[op],
              std::vector<double>(values.begin() + static_cast<std::ptrdiff_t>(4 * op),
                                  values.begin() + static_cast<std::ptrdiff_t>(4 * op + 4)));
  EXPECT_TRUE(point.operators[3].empty());

  // Five row blocks: the load operator takes what is left after the first three.
  model.monitor_points[0].row_blocks = 5;
  model.monitor_points[0].values.resize(20, 0.5);
  record = open(build_file(60, usual_blocks(60), model));
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->monitor_points.at(0).load_operators, 2);
  EXPECT_EQ(record->monitor_points.at(0).operators[3].size(), 8U);
}

TEST_F(Reading, RotorBlockHoldsUpToThreeMatrices) {
  for (const std::size_t count : {0U, 1U, 2U}) {
    SampleModel model = sample_model();
    model.rotor_matrices.resize(count);
    expect_reads(usual_blocks(60), model);
  }
  SampleModel model = sample_model();
  model.rotor_matrices.resize(5, {1, {1.5, 2.5, 3.5, 4.5}});
  SampleModel expected = model;
  expected.rotor_matrices.resize(3);
  SampleFile sample = build_file(60, usual_blocks(60), model);
  for (const std::int32_t count : {5, INT32_MAX}) {
    sample.patch_count("37.count", count);
    QDL_Record *record = open(sample);
    expect_no_messages();
    expect_record(record, expected, sample);
  }
}

// --- The reading functions themselves -------------------------------------------------------

TEST_F(Reading, GeneralizedMatricesCanBeReadAgain) {
  for (const std::int32_t code : kEncodings) {
    const SampleFile sample = build_file(code);
    QDL_Record *record = open(sample);
    ASSERT_NE(record, nullptr);
    ASSERT_EQ(QDL_goto_block(record, 10), 1);
    record->stiffness = {};
    record->mass = {};
    record->damping = {};
    EXPECT_EQ(QDL_ReadGeneralizedStiffness(record), 1);
    EXPECT_EQ(QDL_ReadGeneralizedStiffness(record), 1);
    EXPECT_EQ(QDL_ReadGeneralizedMass(record), 1);
    EXPECT_EQ(QDL_ReadGeneralizedDamping(record), 1);
    EXPECT_EQ(record->source.file->tell(), static_cast<std::int64_t>(sample.offset[11]));
    expect_record(record, sample_model(), sample);
  }
  QDL_Record *record = open(build_file(60, {4}));
  EXPECT_EQ(QDL_ReadGeneralizedStiffness(record), 0);
  EXPECT_EQ(QDL_ReadGeneralizedMass(record), 0);
  EXPECT_EQ(QDL_ReadGeneralizedDamping(record), 0);
  expect_no_messages();
}

TEST_F(Reading, NullHandlesAreReportedAndBadBlockIndicesRefused) {
  EXPECT_EQ(QDL_ReadQDL(nullptr, stderr, "name"), 0);
  EXPECT_EQ(QDL_ReadGeneralizedStiffness(nullptr), 0);
  EXPECT_EQ(QDL_ReadGeneralizedMass(nullptr), 0);
  EXPECT_EQ(QDL_ReadGeneralizedDamping(nullptr), 0);
  EXPECT_EQ(QDL_Exists(nullptr, 0), 0);
  EXPECT_EQ(QDL_goto_block(nullptr, 0), 0);
  EXPECT_EQ(QDL_size_of_block(nullptr, 0), 0);
  EXPECT_EQ(errors, std::vector<std::string>(7, "The database has not been initialized."));

  QDL_Record *record = open(build_file(60));
  for (const std::int32_t index : {-1, 37, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(QDL_Exists(record, index), 0);
    EXPECT_EQ(QDL_goto_block(record, index), 0);
    EXPECT_EQ(QDL_size_of_block(record, index), 0);
  }
  expect_no_messages();
}

// Without a node in the block nothing is read, but the block has its size.
TEST_F(Reading, SizesAreKnownEvenWhereReadingFails) {
  const std::string name = path("no_nodes.qdl");
  SampleFile sample = build_file(60, {4, 11});
  sample.patch_count("4.N", 0);
  write_file(name, sample.bytes);
  QDL_Record *record = QDL_Create(0, 0);
  EXPECT_EQ(QDL_ReadQDL(record, File_Open(name.c_str(), "rb"), name.c_str()), 0);
  EXPECT_EQ(QDL_size_of_block(record, 3), 8);
}

TEST_F(Reading, ReadsIntoARecordOfTheCaller) {
  const SampleFile sample = build_file(60);
  const std::string name = file("own.qdl", sample.bytes);
  QDL_Record *record = QDL_Create(0, 0);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(QDL_ReadQDL(record, File_Open(name.c_str(), "rb"), name.c_str()), 1);
  expect_no_messages();
  expect_record(record, sample_model(), sample);
  EXPECT_EQ(QDL_FindQDL(name.c_str()), record);

  QDL_Record *nameless = QDL_Create(0, 0);
  EXPECT_EQ(QDL_ReadQDL(nameless, File_Open(name.c_str(), "rb"), nullptr), 1);
  expect_no_messages();
  expect_record(nameless, sample_model(), sample);

  EXPECT_EQ(QDL_ReadQDL(QDL_Create(0, 0), nullptr, name.c_str()), 0);
  expect_only_error("Not a valid QDL format.");
}

}  // namespace
