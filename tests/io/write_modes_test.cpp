// Mode data on its way into a file: node sets of every sort, modes never set, other units.

#include <gtest/gtest.h>

#include "io/write_fixture.h"
#include "record/record.h"

namespace {

using namespace qdltest;

using Ids = std::vector<std::int32_t>;

// The values of some nodes of a mode, in another order or with gaps.
std::vector<double> values_of(const ModeTable &table, std::size_t mode, const Ids &node_ids) {
  std::vector<double> values;
  for (const std::int32_t id : node_ids) {
    const auto found = std::find(table.node_ids.begin(), table.node_ids.end(), id);
    const auto at = 6 * static_cast<std::size_t>(found - table.node_ids.begin());
    for (std::size_t c = 0; c < 6; ++c)
      values.push_back(found == table.node_ids.end() ? 0.0 : table.values[mode][at + c]);
  }
  return values;
}

ModeTable with_nodes(const ModeTable &table, const Ids &node_ids) {
  ModeTable other{node_ids, table.numbers, {}};
  for (std::size_t mode = 0; mode < table.values.size(); ++mode)
    other.values.push_back(values_of(table, mode, node_ids));
  return other;
}

class WriteModes : public WriteFixture {
 protected:
  SampleModel content_ = body_with_modes({0, 1}, 1);
  const std::set<int> blocks_ = {4, 7, 8, 11, 16, 18, 29, 30, 31, 32};
};

// --- Built models -----------------------------------------------------------------------------

TEST_F(WriteModes, NodesWithoutVectorsHaveZeros) {
  SampleModel set = content_;
  set.mode_shapes = with_nodes(content_.mode_shapes, {7, 23});
  set.mode_shapes.values[1].resize(6);  // the second mode at one node
  SampleModel written = content_;
  written.mode_shapes.values = {
      values_of(set.mode_shapes, 0, {101, 7, 40, 23}),
      values_of(with_nodes(content_.mode_shapes, {7}), 1, {101, 7, 40, 23})};
  QDL_Record *record = build_record(content_, without(blocks_, {8}));
  for (const std::int32_t node_id : {7, 23})
    QDL_SetModeVec(record, 1, node_id, QDL_MODE_SHAPE,
                   values_of(content_.mode_shapes, 0, {node_id}).data());
  QDL_SetModeVec(record, 3, 7, QDL_MODE_SHAPE, values_of(content_.mode_shapes, 1, {7}).data());
  expect_written(record, "", build_file(316, blocks_, written));
  expect_only_warnings({});
}

TEST_F(WriteModes, NodesAndModesAddedLater) {
  // Planned are two nodes and three modes; there come four and three, of which one has no vector.
  QDL_Record *record = QDL_Create(2, 3);
  SampleModel written = body_with_modes({0, 1, 2}, 1);
  written.header = {};
  const ModeTable &table = written.mode_shapes;
  std::fill(written.mode_shapes.values[1].begin(), written.mode_shapes.values[1].end(), 0.0);
  for (const std::size_t mode : {2U, 0U, 1U}) {
    const auto number = table.numbers[mode == 2 ? 0 : mode == 0 ? 1 : 2];
    QDL_AddMode(record, number);
  }
  for (std::size_t i = 0; i < written.nodes.size(); ++i) {
    const Node &node = written.nodes[i];
    QDL_SetNodeCoordinates(record, node.id, node.xyz[0], node.xyz[1], node.xyz[2]);
    for (const std::size_t mode : {0U, 2U})
      QDL_SetModeVec(record, table.numbers[mode], node.id, QDL_MODE_SHAPE,
                     table.values[mode].data() + 6 * i);
  }
  for (const Eigenvalue &e : written.eigenvalues)
    record->eigenvalues.push_back(
        {e.mode, e.eigenvalue, e.frequency, e.circular_frequency, e.mass, e.stiffness});
  QDL_SetUnits(record, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON");
  written.transformation = {{0, {1, 0, 0}}, {0, {0, 1, 0}}, {0, {0, 0, 1}}};
  written.statistics = statistics_of(written, {});
  expect_written(record, "", build_file(316, {4, 7, 8, 11, 16, 30}, written));
  expect_only_warnings({"The mode shape for mode 3 has only zero entries\n"});
}

// The order of stress values is that in which nodes first had one; pre-stress adds a node to it.
TEST_F(WriteModes, StressNodesKeepTheirOrder) {
  QDL_Record *record = build_record(content_, without(blocks_, {31}));
  const std::vector<double> vector = {1, 2, 3, 4, 5, 6};
  QDL_SetPreStressVec(record, 101, vector.data());
  SampleModel written = content_;
  written.stress = with_nodes(content_.stress, {40, 7, 23, 101});
  written.pre_stress.assign(18, 0.0);
  written.pre_stress.insert(written.pre_stress.end(), vector.begin(), vector.end());
  expect_written(record, "", build_file(316, blocks_, written));
  expect_written(record, "full_str no_xdr", build_file(40, blocks_, in_version(written, 40)));
}

// --- Models from files ------------------------------------------------------------------------

TEST_F(WriteModes, FewerModeNodesThanNodes) {
  SampleModel source = content_;
  source.mode_shapes = with_nodes(content_.mode_shapes, {101, 7});
  QDL_Record *record = open(build_file(60, blocks_, source));
  expect_written(record, "", build_file(316, blocks_, source));
  // A vector at one of the others makes all of them mode nodes.
  const std::vector<double> vector = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(QDL_SetModeVec(record, 3, 40, QDL_MODE_SHAPE, vector.data()), 1);
  SampleModel written = source;
  written.mode_shapes = with_nodes(source.mode_shapes, {101, 7, 40, 23});
  std::copy(vector.begin(), vector.end(), written.mode_shapes.values[1].begin() + 12);
  expect_written(record, "", build_file(316, blocks_, written));
}

// Stress of nodes that the body does not have: kept with their identifiers where a version lists
// its own nodes, left out where it lists those of the body.
TEST_F(WriteModes, ForeignStressNodes) {
  SampleModel source = content_;
  source.stress.node_ids = {40, 999, 23};
  source.strain.node_ids = {888, 101};
  source.statistics = statistics_of(source, blocks_);
  ASSERT_EQ(source.statistics[0].node_ids[2], 23);
  for (const WriteForm &form : every_write_form()) {
    SCOPED_TRACE(form.options);
    const std::set<int> blocks = blocks_;
    expect_written(open(build_file(60, blocks_, source)), form.options,
                   build_file(form.code, blocks, in_version(source, form.code)));
  }
}

TEST_F(WriteModes, ValuesInTheCacheAreNotPreferred) {
  QDL_Record *record = open(build_file(60, blocks_, content_));
  std::vector<double> half(12, 7.0);
  ASSERT_EQ(QDL_Mode(record, 1, QDL_MODE_SHAPE, half.data(), 0), 1);
  ASSERT_EQ(QDL_Mode(record, 3, QDL_MODE_STRESS, half.data(), 1), 1);
  expect_written(record, "", build_file(316, blocks_, content_));
  QDL_SetKeepModesInMemory(record, 0);
  expect_written(record, "", build_file(316, blocks_, content_));
}

// --- Units ------------------------------------------------------------------------------------

// Modes lie in their file as they were set; what is written is in the units of the model.
TEST_F(WriteModes, AreInCurrentUnits) {
  for (const bool from_file : {true, false}) {
    SCOPED_TRACE(from_file ? "from a file" : "from setters");
    QDL_Record *record =
        from_file ? open(build_file(60, blocks_, content_)) : build_record(content_, blocks_);
    ASSERT_EQ(QDL_SetUnits(record, "GRAM", "METER", "MILLISECOND", "MILLINEWTON"), 1);
    // After the change values are set in the new units.
    const std::vector<double> vector = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(QDL_SetModeVec(record, 1, 40, QDL_MODE_SHAPE, vector.data()), 1);
    ASSERT_EQ(QDL_SetModeVec(record, 1, 40, QDL_MODE_STRESS, vector.data()), 1);
    for (const std::string options : {"", "full_str no_xdr"}) {
      SCOPED_TRACE(options);
      ASSERT_EQ(write(record, options), 1);
      QDL_Record *copy = QDL_CreateFromQDL(path("written.qdl").c_str());
      ASSERT_NE(copy, nullptr);
      const auto expect_node = [&](std::int32_t kind, std::int32_t number, std::int32_t node_id,
                                   const std::vector<double> &expected) {
        SCOPED_TRACE(testing::Message()
                     << "kind " << kind << ", mode " << number << ", node " << node_id);
        std::array<double, 6> six{};
        const std::int32_t node = QDL_ModeNodeIndex(copy, kind, node_id);
        EXPECT_EQ(QDL_ModeByNode(copy, number, kind, node, six.data(), 0), 1);
        EXPECT_EQ(QDL_ModeByNode(copy, number, kind, node, six.data() + 3, 1), 1);
        for (std::size_t c = 0; c < 6; ++c)
          EXPECT_DOUBLE_EQ(six[c], expected[c]);
      };
      const auto scaled = [](std::vector<double> six, double first, double second) {
        for (std::size_t c = 0; c < 6; ++c)
          six[c] *= c < 3 ? first : second;
        return six;
      };
      expect_node(QDL_MODE_SHAPE, 1, 40, vector);
      expect_node(QDL_MODE_STRESS, 1, 40, vector);
      // Lengths by 1/1000; a newton per square millimetre is 1e9 millinewton per square metre.
      expect_node(QDL_MODE_SHAPE, 3, 23,
                  scaled(values_of(content_.mode_shapes, 1, {23}), 1e-3, 1.0));
      expect_node(QDL_MODE_STRESS, 3, 7, scaled(values_of(content_.stress, 1, {7}), 1e9, 1e9));
      expect_node(QDL_MODE_STRAIN, 3, 23, values_of(content_.strain, 1, {23}));
      // Statistics are of what is written.
      EXPECT_DOUBLE_EQ(copy->statistics.modes[1].values[2], 1e9 * content_.statistics[1].values[2]);
      QDL_UnLink(copy);
    }
  }
}

// A stress node that the file's nodes lack, until it is added: one slot, before and after.
TEST_F(WriteModes, AForeignStressNodeThatIsAddedKeepsItsPlace) {
  SampleModel foreign = content_;
  foreign.stress.node_ids.back() = 999;
  QDL_Record *record = open(build_file(316, without(blocks_, {31, 32}), foreign));
  ASSERT_NE(record, nullptr);
  const std::int32_t place = QDL_ModeNodeIndex(record, QDL_MODE_STRESS, 999);
  EXPECT_EQ(place, static_cast<std::int32_t>(foreign.stress.node_ids.size()) - 1);
  ASSERT_EQ(QDL_SetNodeCoordinates(record, 999, 1, 2, 3), 1);
  EXPECT_EQ(QDL_ModeNodeIndex(record, QDL_MODE_STRESS, 999), place);
  const double six[6] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(QDL_SetModeVec(record, QDL_ModeNumber(record, 0), 999, QDL_MODE_STRESS, six), 1);
  EXPECT_EQ(QDL_ModeNodeCount(record, QDL_MODE_STRESS), place + 1);
  const ScopedEnvironment options("ZEB_QDLWRITE_OPTIONS", "no_ortho");
  ASSERT_EQ(QDL_write_QDL(record, path("again.qdl").c_str()), 1);
  EXPECT_NE(QDL_CreateFromQDL(path("again.qdl").c_str()), nullptr);
}

}  // namespace
