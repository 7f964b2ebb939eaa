// Nodes, masses, inertias and interface nodes.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

using Xyz = std::array<double, 3>;
using Tensor = std::array<double, 9>;

class NodeData : public MessageFixture {
 protected:
  // Nodes 30, -4 and 7; the second has mass and inertia.
  QDL_Record *three_nodes() {
    QDL_Record *model = QDL_Create(3, 0);
    QDL_SetNodeCoordinates(model, 30, 1.0, 2.0, 3.0);
    QDL_SetNodeCoordinates(model, -4, -0.5, 0.25, 1e300);
    QDL_SetNodeCoordinates(model, 7, 0.0, 0.0, 9.0);
    QDL_SetNodalMass(model, -4, 2.5);
    QDL_SetNodalInertia(model, -4, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    return model;
  }

  static std::vector<std::int32_t> take(std::int32_t *ids, std::int32_t count) {
    std::vector<std::int32_t> list(ids, ids + count);
    QDL_FreeMemory(ids);
    return list;
  }
};

TEST_F(NodeData, AnswersByIndex) {
  QDL_Record *model = three_nodes();
  EXPECT_EQ(QDL_NodeCount(model), 3);
  EXPECT_EQ(QDL_NodeID(model, 0), 30);
  EXPECT_EQ(QDL_NodeID(model, 1), -4);
  EXPECT_EQ(QDL_NodeID(model, 2), 7);
  EXPECT_EQ(QDL_NodalMass(model, 1), 2.5);
  EXPECT_EQ(QDL_NodalMass(model, 2), 0.0);

  Xyz xyz{};
  double mass = -1.0;
  EXPECT_EQ(QDL_NodeCoordinates(model, 1, xyz.data()), 1);
  EXPECT_EQ(xyz, (Xyz{-0.5, 0.25, 1e300}));
  EXPECT_EQ(QDL_NodalMassAndGeometry(model, 1, &mass, xyz.data()), 1);
  EXPECT_EQ(mass, 2.5);
  EXPECT_EQ(xyz, (Xyz{-0.5, 0.25, 1e300}));
  EXPECT_EQ(QDL_NodalMassAndGeometry(model, 0, nullptr, xyz.data()), 1);
  EXPECT_EQ(xyz, (Xyz{1.0, 2.0, 3.0}));

  std::array<double, 10> list{};
  list[9] = 77.0;
  std::int32_t count = -1;
  EXPECT_EQ(QDL_NodeCoordinateList(model, list.data(), &count), 1);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(list, (std::array<double, 10>{1, 2, 3, -0.5, 0.25, 1e300, 0, 0, 9, 77}));
  expect_no_messages();
}

TEST_F(NodeData, HasNoInertiaTensorWithoutInertia) {
  QDL_Record *model = three_nodes();
  Tensor tensor{1};
  for (const std::int32_t without_inertia : {0, 2, 3, -1, kLargest, kSmallest})
    EXPECT_EQ(QDL_NodalInertia(model, without_inertia, tensor.data()), 0) << without_inertia;
  EXPECT_EQ(tensor, Tensor{1});
}

TEST_F(NodeData, GivesZerosForABadIndex) {
  QDL_Record *model = three_nodes();
  for (const std::int32_t bad : {3, -1, kLargest, kSmallest}) {
    Xyz xyz{1, 1, 1};
    EXPECT_EQ(QDL_NodeID(model, bad), 0);
    EXPECT_EQ(QDL_NodalMass(model, bad), 0.0);
    EXPECT_EQ(QDL_NodeCoordinates(model, bad, xyz.data()), 0);
    EXPECT_EQ(xyz, Xyz{});
    xyz = {1, 1, 1};
    double mass = 1.0;
    EXPECT_EQ(QDL_NodalMassAndGeometry(model, bad, &mass, xyz.data()), 0);
    EXPECT_EQ(mass, 0.0);
    EXPECT_EQ(xyz, Xyz{});
  }
  expect_no_messages();
}

TEST_F(NodeData, LeavesOutputsAloneWithoutNodes) {
  for (QDL_Record *model : {QDL_Create(0, 0), static_cast<QDL_Record *>(nullptr)}) {
    Xyz xyz{1, 2, 3};
    double mass = 4.0;
    std::int32_t count = 5;
    EXPECT_EQ(QDL_NodeCount(model), 0);
    EXPECT_EQ(QDL_NodeID(model, 0), 0);
    EXPECT_EQ(QDL_NodeCoordinates(model, 0, xyz.data()), 0);
    EXPECT_EQ(QDL_NodalMassAndGeometry(model, 0, &mass, xyz.data()), 0);
    EXPECT_EQ(QDL_NodalInertia(model, 0, xyz.data()), 0);
    EXPECT_EQ(QDL_NodeCoordinateList(model, xyz.data(), &count), 0);
    EXPECT_EQ(xyz, (Xyz{1, 2, 3}));
    EXPECT_EQ(mass, 4.0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(QDL_InterfaceNodeIDs(model, &count), nullptr);
    EXPECT_EQ(QDL_InterfaceNodes(model, &count), nullptr);
  }
  expect_no_messages();
}

TEST_F(NodeData, FailsForNullArrays) {
  QDL_Record *model = three_nodes();
  EXPECT_EQ(QDL_NodeCoordinates(model, 0, nullptr), 0);
  EXPECT_EQ(QDL_NodeCoordinateList(model, nullptr, nullptr), 0);
  EXPECT_EQ(QDL_NodalInertia(model, 1, nullptr), 0);
  EXPECT_EQ(QDL_NodalMassAndGeometry(model, 0, nullptr, nullptr), 0);
}

TEST_F(NodeData, ListsInterfaceNodesByIdentifier) {
  QDL_Record *model = three_nodes();
  QDL_SetInterfaceNode(model, 7);
  QDL_SetInterfaceNode(model, 30);
  for (const auto list : {QDL_InterfaceNodeIDs, QDL_InterfaceNodes}) {
    std::int32_t count = -1;
    std::int32_t *ids = list(model, &count);
    EXPECT_EQ(take(ids, count), (std::vector<std::int32_t>{7, 30}));
    QDL_FreeMemory(list(model, nullptr));
  }
  // Only a file can bring in an entry that no node belongs to.
  model->interface_nodes = {qdlflex::kUnknownNode, 1, 3, kLargest};
  std::int32_t count = -1;
  std::int32_t *ids = QDL_InterfaceNodeIDs(model, &count);
  EXPECT_EQ(take(ids, count), (std::vector<std::int32_t>{0, -4, 0, 0}));
}

TEST_F(NodeData, ReportsWhenTheInterfaceListFindsNoMemory) {
  QDL_Record *model = three_nodes();
  QDL_SetInterfaceNode(model, 7);
  std::int32_t count = -1;
  {
    const FailAllocation fault(1);
    EXPECT_EQ(QDL_InterfaceNodeIDs(model, &count), nullptr);
  }
  EXPECT_EQ(count, 0);
  expect_no_memory("qdldata");
}

}  // namespace
