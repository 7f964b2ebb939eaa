// New identifiers for nodes.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <climits>
#include <cstdint>
#include <vector>

#include "geometry/body.h"
#include "geometry/job_fixture.h"
#include "record/record.h"

namespace {

using namespace qdltest;

std::vector<std::int32_t> ids(QDL_Record *model) {
  std::vector<std::int32_t> all;
  for (std::int32_t i = 0; i < QDL_NodeCount(model); ++i)
    all.push_back(QDL_NodeID(model, i));
  return all;
}

// Every look-up agrees with the list of nodes.
void expect_ids(QDL_Record *model, const std::vector<std::int32_t> &expected) {
  EXPECT_EQ(ids(model), expected);
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(QDL_NodeIndex(model, expected[i]), static_cast<std::int32_t>(i)) << expected[i];
  for (const int kind : {1, 2}) {
    for (std::int32_t slot = 0; slot < QDL_ModeNodeCount(model, kind); ++slot)
      EXPECT_EQ(QDL_ModeNodeIndex(model, kind, QDL_ModeNodeID(model, kind, slot)), slot);
  }
}

class Renumbering : public JobFixture {
 protected:
  // Nodes 12, 5, 31; stress nodes 5 and 12, a strain node 31; interface nodes 31 and 12.
  QDL_Record *model() {
    QDL_Record *made = build(sample_body(), 3);
    QDL_SetInterfaceNode(made, 31);
    QDL_SetInterfaceNode(made, 12);
    clear_messages();
    return made;
  }
};

TEST_F(Renumbering, AddsAnOffsetToEveryIdentifier) {
  QDL_Record *made = model();
  std::int32_t largest = 0;
  double value = 0.0;
  ASSERT_EQ(QDL_GetMaxModeDisplacement(made, 4, &largest, &value), 1);
  EXPECT_EQ(QDL_RenumberNodes(made, 100), 1);
  expect_ids(made, {112, 105, 131});
  EXPECT_EQ(QDL_NodeIndex(made, 12), -1);
  EXPECT_EQ(QDL_ModeNodeID(made, 1, 0), 105);
  std::int32_t renumbered = 0;
  EXPECT_EQ(QDL_GetMaxModeDisplacement(made, 4, &renumbered, &value), 1);
  EXPECT_EQ(renumbered, largest + 100);
  EXPECT_EQ(QDL_RenumberNodes(made, -104), 1);
  expect_ids(made, {8, 1, 27});
  expect_no_messages();
}

// Stress at a node that the body does not have, as a file may list it, and its maximum there.
TEST_F(Renumbering, TakesUnknownStressNodesAlong) {
  QDL_Record *made = model();
  qdlflex::NodeSet &set = made->mode_data[1].nodes;
  set.slot_of_node[static_cast<std::size_t>(set.node_of_slot[0])] = -1;
  set.node_of_slot[0] = -1;
  set.foreign_ids = {77, INT_MAX};  // of a known node: not read
  made->statistics.modes.resize(2);
  made->statistics.modes[0].node_ids = {78, 0, 77};
  EXPECT_EQ(QDL_RenumberNodes(made, 100), 1);
  EXPECT_EQ(QDL_ModeNodeID(made, 1, 0), 177);
  EXPECT_EQ(made->statistics.modes[0].node_ids[2], 177);
  EXPECT_EQ(made->statistics.modes[0].node_ids[0], 78) << "neither a node nor a stress node";
  set.foreign_ids[0] = INT_MAX;
  EXPECT_EQ(QDL_RenumberNodes(made, 1), 0);
}

TEST_F(Renumbering, RefusesIdentifiersBelowOneAndBeyondTheRange) {
  QDL_Record *made = model();
  for (const std::int32_t offset : {-5, INT_MIN, INT_MAX - 30, INT_MAX})
    EXPECT_EQ(QDL_RenumberNodes(made, offset), 0) << offset;
  expect_ids(made, {12, 5, 31});
  EXPECT_EQ(QDL_RenumberNodes(made, INT_MAX - 31), 1);
  EXPECT_EQ(QDL_NodeID(made, 2), INT_MAX);
  EXPECT_EQ(QDL_RenumberNodes(QDL_Create(0, 0), -7), 1);
  expect_no_messages();
}

TEST_F(Renumbering, KeepsTheAnswersFromBeforeASwap) {
  QDL_Record *made = model();
  QDL_SwapNodesByID(made, 12, 5);
  EXPECT_EQ(QDL_RenumberNodes(made, 10), 1);
  EXPECT_EQ(ids(made), (std::vector<std::int32_t>{15, 22, 41}));
  EXPECT_EQ(QDL_NodeIndex(made, 22), 0);
  EXPECT_EQ(QDL_NodeIndex(made, 15), 1);
}

TEST_F(Renumbering, GivesInterfaceNodesNewOrExchangedIdentifiers) {
  QDL_Record *made = model();
  const std::vector<std::int32_t> fresh = {70, 12};
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 2, fresh.data()), 1);
  expect_ids(made, {12, 5, 70});
  const std::vector<std::int32_t> exchanged = {5, 70};
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 2, exchanged.data()), 1);
  // 70 becomes 5 and 5 becomes 70; then 12 becomes 70 and the new 70 becomes 12.
  expect_ids(made, {70, 12, 5});
  EXPECT_EQ(QDL_ModeNodeID(made, 1, 0), 12);
  expect_no_messages();
}

TEST_F(Renumbering, WarnsOfTooManyAndKeepsTheRestOfTooFew) {
  QDL_Record *made = model();
  const std::vector<std::int32_t> three = {1, 2, 3};
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 3, three.data()), 1);
  expect_only_warnings({"Too many interface ID are given. Only the first 2 will be used.\n"});
  expect_ids(made, {2, 5, 1});
  clear_messages();
  const std::int32_t one = -8;
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 1, &one), 1);
  expect_ids(made, {2, 5, -8});
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, -1, three.data()), 1);
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 0, nullptr), 1);
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 1, nullptr), 0);
  expect_ids(made, {2, 5, -8});
  expect_no_messages();
}

TEST_F(Renumbering, RebuildsATableThatASwapLeftStaleAndPassesOverUnknownNodes) {
  QDL_Record *made = model();
  QDL_SwapNodesByID(made, 12, 5);
  made->interface_nodes = {-1, 2};
  const std::vector<std::int32_t> given = {44, 12};
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 2, given.data()), 1);
  expect_ids(made, {5, 31, 12});
}

// Identifiers given twice, as a file may: the first node counts.
TEST_F(Renumbering, FindsTheFirstOfEqualIdentifiersAllTheTime) {
  SampleModel sample = sample_model();
  sample.nodes[2].id = 7;  // 101, 7, 7, 23
  sample.interface_nodes = {7, 101};
  QDL_Record *made = open(build_file(60, {4, 17}, sample));
  ASSERT_NE(made, nullptr);
  const std::vector<std::int32_t> given = {50, 7};
  EXPECT_EQ(QDL_RenumberInterfaceNodes(made, 2, given.data()), 1);
  // The first 7 becomes 50, then 101 takes the 7 of the other, which becomes 101.
  expect_ids(made, {7, 50, 101, 23});
}

TEST_F(Renumbering, IsUndoneWhenMemoryRunsOut) {
  const auto make = [&] {
    QDL_Record *made = model();
    made->statistics.modes.resize(2);
    made->statistics.modes[0].node_ids[0] = 31;
    return made;
  };
  const auto expect_after = [](const std::vector<std::int32_t> &after) {
    return [after](QDL_Record *made, bool done) {
      expect_ids(made, done ? after : std::vector<std::int32_t>{12, 5, 31});
      EXPECT_EQ(made->statistics.modes[0].node_ids[0], ids(made)[2]);
    };
  };
  sweep_job(make, [](QDL_Record *made) { return QDL_RenumberNodes(made, 3); },
            expect_after({15, 8, 34}), {Door::kMemory});
  const std::vector<std::int32_t> given = {5, 99};
  sweep_job(make,
            [&](QDL_Record *made) { return QDL_RenumberInterfaceNodes(made, 2, given.data()); },
            expect_after({99, 31, 5}), {Door::kMemory});
}

}  // namespace
