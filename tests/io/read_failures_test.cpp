// Every error of the reader, from a file damaged in one place. The text is exact and comes once.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/read_fixture.h"

namespace {

using namespace qdltest;

const std::string kNotQdl = "Not a valid QDL format.";
const std::string kNoNodes = "Out of memory while reading Nodal Coordinate block";

// The text for a block that is damaged.
const std::string &problem_of(int block) {
  static const std::map<int, std::string> by_block = {
      {2, "Problem reading Header information"},
      {3, "Problem reading Header information"},
      {4, "Problem reading Node Coordinates Data"},
      {5, "Problem when reading old style element block"},
      {6, "Problem reading Global Body Properties"},
      {7, "Problem reading Eigenvalue Data"},
      {8, "Problem encountered while caching Mode shape Data"},
      {9, "Problem reading Nodal Mass information"},
      {10, "Problem reading Nodal Mass information"},
      {11, "Problem reading Header information"},
      {12, "Problem reading Generalized Stiffness information"},
      {13, "Problem reading Generalized Mass information"},
      {14, "Problem reading Element Faces"},
      {15, "Problem reading Generalized Damping information"},
      {16, "Problem when reading Mode Shape Transformation"},
      {17, "Problem when reading Interface Nodes"},
      {18, "Problem when reading Modal Stress info"},
      {27, "Problem when reading Modal Preloads Block"},
      {28, "Problem when reading Modal Loads Block"},
      {29, "Problem when reading Modal Strain info"},
      {30, "Problem when reading Modal Statistics Block"},
      {31, "Problem when reading Pre-Stress Block"},
      {32, "Problem when reading Pre-Strain Block"},
      {33, "Problem when reading Monitor Point Block"},
      {34, "Problem when reading Matrix Operator Block"},
      {35, "Problem when reading Modal Load Nodal Block"},
      {36, "Problem when reading Monitor Point Block"},
      {37, "Problem when reading Rotor Dynamics Block"},
  };
  // Invariants are not read at opening; the block after them is missed first.
  return by_block.at(block >= 19 && block <= 26 ? 27 : block);
}

constexpr std::int32_t kHuge = INT_MAX;

using Blocks = std::set<int>;
using ChangeModel = std::function<void(SampleModel &)>;
using ChangeFile = std::function<void(SampleFile &)>;

struct Failure {
  std::string name;
  Blocks blocks;  // empty: the usual ones
  ChangeModel change_model;
  ChangeFile change_file;
  std::vector<std::string> errors;
};

// A count given another value, with the text of its block if no other is given.
Failure count(const std::string &field, std::int32_t value, const std::string &error = "",
              const Blocks &blocks = {}) {
  return {field + " = " + std::to_string(value),
          blocks,
          {},
          [=](SampleFile &file) { file.patch_count(field, value); },
          {error.empty() ? problem_of(std::stoi(field)) : error}};
}

Failure content(const std::string &name, ChangeModel change, const std::vector<std::string> &errors,
                const Blocks &blocks = {}) {
  return {name, blocks, std::move(change), {}, errors};
}

const std::string kRow =
    "Row index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n";
const std::string kColumn =
    "Column index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n";

std::string with_index(std::string text, std::int32_t index) {
  return text.replace(text.find("%d"), 2, std::to_string(index));
}

Failure inertia_index(std::int32_t row, std::int32_t column,
                      const std::vector<std::string> &errors) {
  return content(
      "inertia row " + std::to_string(row) + " column " + std::to_string(column),
      [=](SampleModel &model) {
        model.nodal_inertias[2].row = row;
        model.nodal_inertias[2].column = column;
      },
      errors);
}

const Blocks kOlder = {4, 5, 6, 7, 8, 9, 10, 11};

const std::string kModesDiffer = "Number of mode shapes does not match the number of eigenvalues";
const std::string kStressDiffers =
    "Number of stress modes does not match the number of eigenvalues";
const std::string kStrainDiffers =
    "Number of strain modes does not match the number of eigenvalues";
const std::string kPreStressDiffers =
    "Number of nodes in pre-stress does not match that in stress modes";
const std::string kPreStrainDiffers =
    "Number of nodes in pre-strain does not match that in strain modes";
const std::string kPreloadDiffers = "Number of modal preloads does not match the number of modes";
const std::string kLoadsDiffer =
    "Number of modal load components does not match the number of modes";

std::vector<Failure> failures() {
  std::vector<Failure> all = {
      count("4.N", 0, kNoNodes),
      count("4.N", -1, kNoNodes),
      count("4.N", INT_MIN, kNoNodes),
      count("4.N", 100000),
      count("4.N", kHuge),
      count("9.k", 0),
      count("9.k", -1),
      content("mass of an unknown node", [](SampleModel &m) { m.nodal_masses[2].node_id = 999; },
              {problem_of(9)}),
      content("inertia of an unknown node",
              [](SampleModel &m) { m.nodal_inertias[0].node_id = 999; }, {problem_of(10)}),
      inertia_index(3, 4, {with_index(kRow, 3)}),
      inertia_index(6, 7, {with_index(kColumn, 7)}),
      inertia_index(-1, -128, {with_index(kRow, -1), with_index(kColumn, -128)}),
      inertia_index(127, 0, {with_index(kRow, 127), with_index(kColumn, 0)}),
      count("8.M", 1, kModesDiffer),
      count("8.M", 3, kModesDiffer),
      count("8.M", -1, "", {4, 8, 11}),
      count("8.M", kHuge, "", {4, 8, 11}),
      count("8.N", 100),
      content("unknown mode node", [](SampleModel &m) { m.mode_shapes.node_ids[1] = 999; },
              {problem_of(8)}),
      content("mode node twice", [](SampleModel &m) { m.mode_shapes.node_ids[1] = 101; },
              {problem_of(8)}),
      count("14.T", 0),
      count("14.T", 3),
      count("14.T", -4),
      count("14.T", 54),
      count("14.T", kHuge & ~3),
      count("14.T", 48),  // ends inside the last face
      count("14.k", 99),
      count("5.G", -1, "", kOlder),
      count("5.G", kHuge, "", kOlder),
      count("5.e", -1, "", kOlder),
      count("5.k", -1, "", kOlder),
      count("16.M", 40000),
      count("18.M", 1, kStressDiffers),
      count("18.M", 3, kStressDiffers),
      count("18.M", 2, kStressDiffers, {4, 18}),
      content("stress node twice", [](SampleModel &m) { m.stress.node_ids[1] = 40; },
              {problem_of(18)}),
      content("stress modes in another order",
              [](SampleModel &m) {
                m.stress.numbers = {9, 7};
              },
              {"Stress modes are in a different order than mode shapes"}),
      count("29.M", 0, kStrainDiffers),
      count("29.M", 2, kStrainDiffers, {4, 29}),
      content("strain node twice", [](SampleModel &m) { m.strain.node_ids[1] = 23; },
              {problem_of(29)}),
      content("strain modes in another order",
              [](SampleModel &m) {
                m.strain.numbers = {7, 8};
              },
              {"Strain modes are in a different order than mode shapes"}),
      count("31.N", 4, kPreStressDiffers),
      count("31.N", -1, kPreStressDiffers),
      count("31.N", 3, kPreStressDiffers, {4, 7, 8, 31}),
      count("32.N", 0, kPreStrainDiffers),
      count("32.N", 2, kPreStrainDiffers, {4, 7, 8, 32}),
      // An invariant that cannot be measured hides the next block
      count("21.M", -1),
      count("26.M", -1),
      count("23.M", kHuge),
      count("27.M", 3, kPreloadDiffers),
      count("27.M", -1, kPreloadDiffers),
      count("28.M", 1, kLoadsDiffer),
      count("33.b", kHuge, "", {4, 7, 8, 33}),
      count("37.count", -1),
  };
  for (const char *field :
       {"7.M",      "8.N",     "9.N",  "10.E",     "12.E",     "13.E", "14.k", "15.E",
        "16.M",     "17.K",    "18.N", "28.L",     "29.N",     "30.M", "34.r", "34.c",
        "34.count", "34.subs", "35.n", "35.count", "36.count", "36.a", "36.b"}) {
    all.push_back(count(field, -1));
    all.push_back(count(field, kHuge));
  }
  return all;
}

using ReadFailure = ReadFixture;

TEST_F(ReadFailure, EveryDamageIsReportedOnce) {
  for (const Failure &failure : failures()) {
    for (const std::int32_t code : {60, 60 | kSingleBit, 60 | kXdrBit, 60 | kXdrBit | kSingleBit}) {
      SCOPED_TRACE(failure.name + " in " + version_name(code));
      SampleModel model = sample_model();
      if (failure.change_model)
        failure.change_model(model);
      SampleFile sample =
          build_file(code, failure.blocks.empty() ? usual_blocks(code) : failure.blocks, model);
      if (failure.change_file)
        failure.change_file(sample);
      EXPECT_EQ(open(sample), nullptr);
      EXPECT_EQ(errors, failure.errors);
      EXPECT_EQ(warnings, std::vector<std::string>{});
      EXPECT_EQ(QDL_FindQDL(path("body.qdl").c_str()), nullptr);
    }
  }
}

// In version 10 a mode without nodes takes no bytes, so that nothing bounds the count of modes.
TEST_F(ReadFailure, VersionTenModesWithoutNodes) {
  SampleModel model = sample_model();
  model.mode_shapes = {{}, {}, {}};
  for (const std::int32_t modes : {1, 1000000000, INT_MAX}) {
    SampleFile sample = build_file(10, {4, 8, 11}, model);
    sample.patch_count("8.M", modes);
    EXPECT_EQ(open(sample), nullptr);
    expect_only_error(problem_of(8));
  }
}

using Truncation = ReadFixture;

// What the reader reports when the file ends inside `block`.
std::string error_of_cut(const SampleFile &file, int block, std::size_t length) {
  if (length < 4)
    return kNotQdl;
  const bool in_head = length < file.offset[static_cast<std::size_t>(block)] + 4;
  if (block == 31 && in_head)
    return "Problem occurred while reading Pre-Stress info";
  if (block == 32 && in_head)
    return "Problem occurred while reading Pre-Strain info";
  return problem_of(block);
}

int block_at(const SampleFile &file, std::size_t position) {
  int block = 1;
  while (file.offset[static_cast<std::size_t>(block) + 1] <= position)
    ++block;
  return block;
}

TEST_F(Truncation, EveryPrefixReportsTheBlockThatIsCut) {
  for (const std::int32_t code : every_version_code()) {
    SCOPED_TRACE(version_name(code));
    const SampleFile whole = build_file(code);
    const std::string name = file("body.qdl", whole.bytes);
    const std::vector<std::size_t> places = telling_places(whole);
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
      const std::size_t length = *place;
      std::filesystem::resize_file(name, length);
      const int block = block_at(whole, length);
      SCOPED_TRACE(testing::Message() << "cut to " << length << " bytes, inside block " << block);
      clear_messages();
      ASSERT_EQ(QDL_CreateFromQDL(name.c_str()), nullptr);
      // A cut element topology is missed either by itself or through the block behind it.
      if (block == 5 && errors == std::vector<std::string>{problem_of(6)})
        continue;
      ASSERT_EQ(errors, std::vector<std::string>{error_of_cut(whole, block, length)});
      ASSERT_EQ(warnings, std::vector<std::string>{});
    }
    EXPECT_NE(open(whole), nullptr);
    QDL_Terminate();
  }
}

using NotQdl = ReadFixture;

TEST_F(NotQdl, CodesThatFitNeitherEncoding) {
  using Bytes = std::vector<std::uint8_t>;
  const std::vector<Bytes> words = {
      {0, 0, 0, 0},     {11, 0, 0, 0},        {32, 0, 0, 0},
      {59, 0, 0, 0},    {0x3c, 0x01, 0, 0},  // XDR bit in a native word
      {31, 0, 0, 0},                         // 31, 41 and 51 exist in XDR only
      {0, 0, 0, 60},                         // 60 in XDR without its bit
      {0, 0, 0, 10},    {0, 0, 0, 50},        {0, 0, 1, 59},
      {'P', 'K', 3, 4}, {0x7f, 'E', 'L', 'F'}};
  for (const Bytes &word : words) {
    SampleFile sample = build_file(60);
    std::copy(word.begin(), word.end(), sample.bytes.begin());
    SCOPED_TRACE(testing::PrintToString(word));
    EXPECT_EQ(open(sample), nullptr);
    expect_only_error(kNotQdl);
  }
}

// None of them may keep the caller waiting.
TEST_F(NotQdl, WhatIsNoRegularFile) {
  const std::string pipe = path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string &name : {directory().string(), pipe, std::string("/dev/null"),
                                  std::string("/dev/zero"), std::string("/dev/full")}) {
    SCOPED_TRACE(name);
    clear_messages();
    EXPECT_EQ(QDL_CreateFromQDL(name.c_str()), nullptr);
    expect_only_error(kNotQdl);
  }
}

TEST_F(NotQdl, NamesThatLeadNowhere) {
  std::filesystem::create_symlink(path("second"), path("first"));
  std::filesystem::create_symlink(path("first"), path("second"));
  for (const std::string &name : {path("missing.qdl"), path("first"), std::string()})
    EXPECT_EQ(QDL_CreateFromQDL(name.c_str()), nullptr) << name;
  expect_no_messages();
}

TEST_F(NotQdl, DescriptorsExhausted) {
  const SampleFile sample = build_file(60);
  const std::string name = file("body.qdl", sample.bytes);
  QDL_Record *other = QDL_Create(1, 1);
  const std::array<double, 6> values = {1, 2, 3, 4, 5, 6};
  {
    const ResourceLimit none_left(RLIMIT_NOFILE, 0);
    EXPECT_EQ(QDL_CreateFromQDL(name.c_str()), nullptr);
    expect_no_messages();
    EXPECT_EQ(QDL_write_QDL(other, path("written.qdl").c_str()), 0);
    EXPECT_EQ(QDL_SetModeVec(other, 1, 1, QDL_MODE_SHAPE, values.data()), 0);
    EXPECT_EQ(errors.size(), 2U);
  }
  clear_messages();
  EXPECT_NE(QDL_CreateFromQDL(name.c_str()), nullptr);
  EXPECT_EQ(QDL_SetModeVec(other, 1, 1, QDL_MODE_SHAPE, values.data()), 1);
  EXPECT_EQ(errors, std::vector<std::string>{});
}

}  // namespace
