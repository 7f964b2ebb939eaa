// Every error of the reader, from a file damaged in one place. The text is exact and comes once.

#include <gtest/gtest.h>

#include <algorithm>
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
const std::string kHeader = "Problem reading Header information";
const std::string kCoordinates = "Problem reading Node Coordinates Data";
const std::string kNoNodes = "Out of memory while reading Nodal Coordinate block";
const std::string kOldTopology = "Problem when reading old style element block";
const std::string kGlobal = "Problem reading Global Body Properties";
const std::string kEigenvalues = "Problem reading Eigenvalue Data";
const std::string kShapes = "Problem encountered while caching Mode shape Data";
const std::string kMasses = "Problem reading Nodal Mass information";
const std::string kStiffness = "Problem reading Generalized Stiffness information";
const std::string kMass = "Problem reading Generalized Mass information";
const std::string kFaces = "Problem reading Element Faces";
const std::string kDamping = "Problem reading Generalized Damping information";
const std::string kTransformation = "Problem when reading Mode Shape Transformation";
const std::string kInterface = "Problem when reading Interface Nodes";
const std::string kStress = "Problem when reading Modal Stress info";
const std::string kPreload = "Problem when reading Modal Preloads Block";
const std::string kLoads = "Problem when reading Modal Loads Block";
const std::string kStrain = "Problem when reading Modal Strain info";
const std::string kStatistics = "Problem when reading Modal Statistics Block";
const std::string kPreStressHead = "Problem occurred while reading Pre-Stress info";
const std::string kPreStress = "Problem when reading Pre-Stress Block";
const std::string kPreStrainHead = "Problem occurred while reading Pre-Strain info";
const std::string kPreStrain = "Problem when reading Pre-Strain Block";
const std::string kOperators = "Problem when reading Matrix Operator Block";
const std::string kNodalLoads = "Problem when reading Modal Load Nodal Block";
const std::string kMonitor = "Problem when reading Monitor Point Block";
const std::string kRotor = "Problem when reading Rotor Dynamics Block";

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

// A count given another value.
Failure count(const std::string &field, std::int32_t value, const std::string &error,
              const Blocks &blocks = {}) {
  return {field + " = " + std::to_string(value),
          blocks,
          {},
          [=](SampleFile &file) { file.patch_count(field, value); },
          {error}};
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

std::vector<Failure> failures() {
  return {
      // Nodes and masses
      count("4.N", 0, kNoNodes),
      count("4.N", -1, kNoNodes),
      count("4.N", INT_MIN, kNoNodes),
      count("4.N", 100000, kCoordinates),
      count("4.N", kHuge, kCoordinates),
      count("9.N", -1, kMasses),
      count("9.N", kHuge, kMasses),
      count("9.k", 0, kMasses),
      count("9.k", -1, kMasses),
      content("mass of an unknown node", [](SampleModel &m) { m.nodal_masses[2].node_id = 999; },
              {kMasses}),
      count("10.E", -1, kMasses),
      count("10.E", kHuge, kMasses),
      content("inertia of an unknown node",
              [](SampleModel &m) { m.nodal_inertias[0].node_id = 999; }, {kMasses}),
      inertia_index(3, 4, {with_index(kRow, 3)}),
      inertia_index(6, 7, {with_index(kColumn, 7)}),
      inertia_index(-1, -128, {with_index(kRow, -1), with_index(kColumn, -128)}),
      inertia_index(127, 0, {with_index(kRow, 127), with_index(kColumn, 0)}),
      // Eigenvalues and mode shapes
      count("7.M", -1, kEigenvalues),
      count("7.M", kHuge, kEigenvalues),
      count("8.M", 1, "Number of mode shapes does not match the number of eigenvalues"),
      count("8.M", 3, "Number of mode shapes does not match the number of eigenvalues"),
      count("8.M", -1, kShapes, {4, 8, 11}),
      count("8.M", kHuge, kShapes, {4, 8, 11}),
      count("8.N", -1, kShapes),
      count("8.N", 100, kShapes),
      count("8.N", kHuge, kShapes),
      content("unknown mode node", [](SampleModel &m) { m.mode_shapes.node_ids[1] = 999; },
              {kShapes}),
      content("mode node twice", [](SampleModel &m) { m.mode_shapes.node_ids[1] = 101; },
              {kShapes}),
      // Generalized matrices
      count("12.E", -1, kStiffness),
      count("12.E", kHuge, kStiffness),
      count("13.E", -1, kMass),
      count("13.E", kHuge, kMass),
      count("15.E", -1, kDamping),
      count("15.E", kHuge, kDamping),
      // Faces
      count("14.T", 0, kFaces),
      count("14.T", 3, kFaces),
      count("14.T", -4, kFaces),
      count("14.T", 54, kFaces),
      count("14.T", kHuge & ~3, kFaces),
      count("14.T", 48, kFaces),  // ends inside the last face
      count("14.k", -1, kFaces),
      count("14.k", 99, kFaces),
      count("14.k", kHuge, kFaces),
      count("5.G", -1, kOldTopology, kOlder),
      count("5.G", kHuge, kOldTopology, kOlder),
      count("5.e", -1, kOldTopology, kOlder),
      count("5.k", -1, kOldTopology, kOlder),
      // Transformation, interface nodes
      count("16.M", -1, kTransformation),
      count("16.M", kHuge, kTransformation),
      count("16.M", 40000, kTransformation),
      count("17.K", -1, kInterface),
      count("17.K", kHuge, kInterface),
      // Stress and strain modes
      count("18.M", 1, "Number of stress modes does not match the number of eigenvalues"),
      count("18.M", 3, "Number of stress modes does not match the number of eigenvalues"),
      count("18.M", 2, "Number of stress modes does not match the number of eigenvalues", {4, 18}),
      count("18.N", -1, kStress),
      count("18.N", kHuge, kStress),
      content("stress node twice", [](SampleModel &m) { m.stress.node_ids[1] = 40; }, {kStress}),
      content("stress modes in another order",
              [](SampleModel &m) {
                m.stress.numbers = {9, 7};
              },
              {"Stress modes are in a different order than mode shapes"}),
      count("29.M", 0, "Number of strain modes does not match the number of eigenvalues"),
      count("29.M", 2, "Number of strain modes does not match the number of eigenvalues", {4, 29}),
      count("29.N", -1, kStrain),
      count("29.N", kHuge, kStrain),
      content("strain node twice", [](SampleModel &m) { m.strain.node_ids[1] = 23; }, {kStrain}),
      content("strain modes in another order",
              [](SampleModel &m) {
                m.strain.numbers = {7, 8};
              },
              {"Strain modes are in a different order than mode shapes"}),
      count("31.N", 4, "Number of nodes in pre-stress does not match that in stress modes"),
      count("31.N", -1, "Number of nodes in pre-stress does not match that in stress modes"),
      count("31.N", 3, "Number of nodes in pre-stress does not match that in stress modes",
            {4, 7, 8, 31}),
      count("32.N", 0, "Number of nodes in pre-strain does not match that in strain modes"),
      count("32.N", 2, "Number of nodes in pre-strain does not match that in strain modes",
            {4, 7, 8, 32}),
      // An invariant that cannot be measured hides the next block
      count("21.M", -1, kPreload),
      count("26.M", -1, kPreload),
      count("23.M", kHuge, kPreload),
      // Loads and statistics
      count("27.M", 3, "Number of modal preloads does not match the number of modes"),
      count("27.M", -1, "Number of modal preloads does not match the number of modes"),
      count("28.M", 1, "Number of modal load components does not match the number of modes"),
      count("28.L", -1, kLoads),
      count("28.L", kHuge, kLoads),
      count("30.M", -1, kStatistics),
      count("30.M", kHuge, kStatistics),
      count("35.count", -1, kNodalLoads),
      count("35.count", kHuge, kNodalLoads),
      count("35.n", -1, kNodalLoads),
      count("35.n", kHuge, kNodalLoads),
      // Operators, monitor points, rotor
      count("34.count", -1, kOperators),
      count("34.count", kHuge, kOperators),
      count("34.r", -1, kOperators),
      count("34.r", kHuge, kOperators),
      count("34.subs", -1, kOperators),
      count("34.subs", kHuge, kOperators),
      count("34.c", -1, kOperators),
      count("34.c", kHuge, kOperators),
      count("36.count", -1, kMonitor),
      count("36.count", kHuge, kMonitor),
      count("36.a", -1, kMonitor),
      count("36.a", kHuge, kMonitor),
      count("36.b", -1, kMonitor),
      count("36.b", kHuge, kMonitor),
      count("33.b", kHuge, kMonitor, {4, 7, 8, 33}),
      count("37.count", -1, kRotor),
  };
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
    expect_only_error(kShapes);
  }
}

using Truncation = ReadFixture;

// The block whose loss the reader reports when the file ends inside `block`, and how.
std::string error_of_cut(const SampleFile &file, int block, std::size_t length) {
  static const std::map<int, std::string> by_block = {
      {2, kHeader},      {3, kHeader},      {4, kCoordinates},     {5, kOldTopology},
      {6, kGlobal},      {7, kEigenvalues}, {8, kShapes},          {9, kMasses},
      {10, kMasses},     {11, kHeader},     {12, kStiffness},      {13, kMass},
      {14, kFaces},      {15, kDamping},    {16, kTransformation}, {17, kInterface},
      {18, kStress},     {27, kPreload},    {28, kLoads},          {29, kStrain},
      {30, kStatistics}, {31, kPreStress},  {32, kPreStrain},      {33, kMonitor},
      {34, kOperators},  {35, kNodalLoads}, {36, kMonitor},        {37, kRotor},
  };
  if (length < 4)
    return kNotQdl;
  const bool in_head = length < file.offset[static_cast<std::size_t>(block)] + 4;
  if (block == 31 && in_head)
    return kPreStressHead;
  if (block == 32 && in_head)
    return kPreStrainHead;
  // Invariants are not read at opening; the block after them is missed first.
  if (block >= 19 && block <= 26)
    block = 27;
  return by_block.at(block);
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
      if (block == 5 && errors == std::vector<std::string>{kGlobal})
        continue;
      ASSERT_EQ(errors, std::vector<std::string>{error_of_cut(whole, block, length)});
      ASSERT_EQ(warnings, std::vector<std::string>{});
    }
    EXPECT_NE(open(whole), nullptr);
    QDL_Terminate();
  }
}

// A block at the end of the file that lost its last byte.
TEST_F(Truncation, LastBlocksReportThemselves) {
  for (const std::int32_t code : {60, 60 | kXdrBit | kSingleBit}) {
    SCOPED_TRACE(version_name(code));
    for (const int last : usual_blocks(code)) {
      if (last >= 19 && last <= 26)
        continue;  // read on demand
      SCOPED_TRACE(testing::Message() << "block " << last);
      Blocks blocks;
      for (const int id : usual_blocks(code))
        if (id <= last)
          blocks.insert(id);
      SampleFile sample = build_file(code, blocks);
      sample.cut(sample.bytes.size() - 1);
      EXPECT_EQ(open(sample), nullptr);
      EXPECT_EQ(errors, std::vector<std::string>{error_of_cut(sample, last, sample.bytes.size())});
    }
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

TEST_F(NotQdl, DirectoriesAndMissingFiles) {
  EXPECT_EQ(QDL_CreateFromQDL(directory().c_str()), nullptr);
  expect_only_error(kNotQdl);
  clear_messages();
  EXPECT_EQ(QDL_CreateFromQDL(path("missing.qdl").c_str()), nullptr);
  EXPECT_EQ(QDL_CreateFromQDL(""), nullptr);
  expect_no_messages();
}

}  // namespace
