// Written files byte for byte against files spelled out by the builder.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

#include "io/write_fixture.h"
#include "record/record.h"

namespace {

using namespace qdltest;

class WriteBytes : public WriteFixture {};

TEST_F(WriteBytes, FacesOfMoreThanFourNodesMarkTheFileAsCoarsened) {
  SampleModel content = body_with_modes({0, 1}, 1);
  content.faces = {3, 0, 1, 2, 5, 0, 1, 2, 3, 1};
  expect_written(build_record(content, written_blocks(60)), "",
                 build_file(316 | kCoarsenedBit, written_blocks(316), content));
}

// The export ends before the first mode without generalized mass.
TEST_F(WriteBytes, MasslessModesEndTheBand) {
  for (auto &[massless, modes] :
       std::map<std::size_t, std::vector<int>>{{3, {0, 1, 2}}, {2, {0, 1}}, {1, {0}}}) {
    SCOPED_TRACE(massless);
    QDL_Record *record = build_record(body_with_modes({0, 1, 2, 3}, 7), written_blocks(60));
    record->damping.entries.clear();
    record->eigenvalues[massless].generalized_mass = -0.0;
    SampleModel written = body_with_modes(modes, 1);
    written.damping.entries.clear();
    expect_written(record, "", build_file(316, written_blocks(316), written));
  }
}

// --- What is left out -------------------------------------------------------------------------

// Monitor points and rotor are there but have no values.
TEST_F(WriteBytes, BodyWithoutModes) {
  SampleModel content = body_with_modes({}, 1);
  const std::set<int> blocks = {4, 6, 9, 10, 11, 14, 17, 19, 20, 24, 34, 35, 36, 37};
  std::set<int> built = blocks;
  built.insert({15, 18, 31});  // with nothing or for nodes alone
  QDL_Record *record = build_record(content, built);
  clear_messages();  // operators without modes are refused
  for (MonitorPoint &point : content.monitor_points) {
    point.row_blocks = 0;
    point.mask = 0;
  }
  expect_written(record, "", build_file(316, blocks, content));
  // A file may tell of any number of rows then.
  content.monitor_points[0].rows = INT32_MAX;
  content.monitor_points[0].row_blocks = INT32_MAX;
  content.monitor_points[0].mask = 15;
  const SampleFile rows_without_values = build_file(316, blocks, content);
  expect_written(open(rows_without_values), "", rows_without_values);
}

// Each block left out in turn: none depends on its neighbours, but without stress modes the nodes
// of pre-stress are not in the file either.
TEST_F(WriteBytes, EachBlockMayBeAbsent) {
  const SampleModel content = body_with_modes({0, 1}, 1);
  for (const int absent : written_blocks(60)) {
    // These the writer makes itself or others are made of.
    if (std::set<int>{6, 7, 11, 16, 19, 20, 24, 30}.contains(absent))
      continue;
    SCOPED_TRACE(testing::Message() << "without block " << absent);
    QDL_Terminate();
    std::set<int> left_out = {absent};
    if (absent == 18)
      left_out.insert(31);
    if (absent == 29)
      left_out.insert(32);
    const std::set<int> blocks = without(written_blocks(60), left_out);
    SampleModel written = content;
    written.statistics = statistics_of(content, blocks);
    QDL_Record *record = build_record(content, without(written_blocks(60), {absent}));
    expect_written(record, "no_xdr", build_file(60, blocks, written));
  }
}

// --- Values -----------------------------------------------------------------------------------

TEST_F(WriteBytes, RealsAreKeptOrNarrowedToTheNearestFloat) {
  SampleModel content = body_with_modes({0, 1}, 1);
  const double inf = std::numeric_limits<double>::infinity();
  const std::vector<double> odd = {1.0 / 3.0, -1e-320, 1e300, -1e-50, -0.0, inf};
  for (std::size_t i = 0; i < 24; ++i)
    content.mode_shapes.values[0][i] = i < odd.size() ? odd[i] : 0.1 * static_cast<double>(i);
  content.nodes[0].xyz = {1.0 / 7.0, std::nextafter(16777217.0, inf), -2.0e38 / 3.0};
  content.nodal_masses[0].values[0] = 0.1;
  content.nodal_inertias[0].value = 0.7;
  const std::set<int> blocks = {4, 6, 7, 8, 9, 10, 11, 16, 30};
  content.statistics = statistics_of(content, {});
  for (const WriteForm &form : every_write_form()) {
    SCOPED_TRACE(form.options);
    QDL_Terminate();
    expect_written(build_record(content, blocks), form.options,
                   build_file(form.code, blocks, content));
  }
}

// Fields are filled up with NUL and cut at their width; bytes of UTF-8 are characters as any.
TEST_F(WriteBytes, TextsOfFullWidth) {
  SampleModel content = body_with_modes({0}, 1);
  content.header.title = "Gr\xc3\xb6\xc3\x9f\x65 " + std::string(119, 't');
  content.header.date = std::string(31, 'd');
  content.header.input_name = std::string(127, 'n');
  content.header.input_type = std::string(15, 'y');
  content.header.comments = {std::string(79, 'a'), "", std::string(79, 'c')};
  content.load_cases[0].label = std::string(255, 'l');
  content.monitor_points[0].name = std::string(8, 'm');
  content.monitor_points[0].label = std::string(56, 'p');
  content.matrix_operators[0].row_labels[1] = std::string(79, 'r');
  for (const char *options : {"", "no_xdr"}) {
    QDL_Record *record = build_record(content, written_blocks(60));
    record->matrix_operators[0].name = "recoverlong";
    SampleModel written = content;
    written.matrix_operators[0].name = "recoverl";
    const std::int32_t code = *options == '\0' ? 316 : 60;
    expect_written(record, options, build_file(code, written_blocks(code), written));
  }
}

// Inertias that are not zero, node 0 for nodes that the model does not have, and zeros for what was
// never set: one of the rotor's matrices, the end of another, of the preload and of a load.
TEST_F(WriteBytes, GapsAreFilledOrLeftOut) {
  SampleModel content = body_with_modes({0, 1}, 1);
  content.nodal_inertias = {{101, 6, 6, 3.5}, {40, 4, 5, -1.5}, {40, 5, 6, 2.5}};
  QDL_Record *record = build_record(content, written_blocks(60));
  EXPECT_EQ(QDL_SetNodalInertia(record, 23, 0.0, 0.0, 0.0, 0.0, 0.0, -0.0), 1);
  record->interface_nodes[1] = qdlflex::kUnknownNode;
  record->nodal_loads[0].entries[1].node = 77;
  record->rotor.matrices[0] = {};
  record->rotor.matrices[2].values.resize(1);
  record->rotor.matrices[2].dimension = 1;
  record->preload.values.resize(1);
  record->modal_loads[1].values.clear();
  content.interface_nodes[1] = 0;
  content.nodal_load_cases[0][1].node_id = 0;
  content.rotor_matrices[0] = {0, {0.0, 0.0, 0.0, 0.0}};
  for (const std::size_t i : {1U, 2U, 3U})
    content.rotor_matrices[2].values[i] = 0.0;
  content.preload[1] = 0.0;
  content.load_cases[1].values = {0.0, 0.0};
  expect_written(record, "", build_file(316, written_blocks(316), content));
}

TEST_F(WriteBytes, MassesSetBetweenTwoWritesCount) {
  QDL_Record *record = build_record(body_with_modes({0}, 1), {4, 7, 8, 9, 11});
  const std::string first = path("first.qdl");
  const std::string second = path("second.qdl");
  ASSERT_EQ(QDL_write_QDL(record, first.c_str()), 1);
  const double before = QDL_Invar1(record);
  ASSERT_EQ(QDL_AddNodalMass(record, QDL_NodeID(record, 0), 100.0), 1);
  ASSERT_EQ(QDL_write_QDL(record, second.c_str()), 1);
  EXPECT_EQ(QDL_CreateFromQDL(first.c_str())->global_mass.mass, before);
  EXPECT_EQ(QDL_CreateFromQDL(second.c_str())->global_mass.mass, before + 100.0);
}

}  // namespace
