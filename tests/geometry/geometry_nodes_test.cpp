// The nodes that the geometry uses, and nodes that change places.
#include <gtest/gtest.h>

#include "geometry/surface_fixture.h"

namespace {

using qdltest::Ints;

class GeometryNodes : public qdltest::SurfaceFixture {
 protected:
  // Faces, interface nodes and nodal loads on different nodes of eight.
  static QDL_Record *body() {
    QDL_Record *model = model_of(8);
    QDL_SetFace(model, 3, 7, 2, 3);
    QDL_SetFace(model, 3, 3, 2, 7);
    QDL_SetInterfaceNode(model, 5);
    QDL_SetModalLoadNodal(model, 0, 8, 1, 1.0);
    QDL_SetModalLoadNodal(model, 1, 2, 1, 1.0);
    return model;
  }

  static Ints nodes(QDL_Record *model) {
    std::int32_t count = -1;
    std::int32_t *array = QDL_GeometryNodes(model, &count);
    return taken(array, count);
  }
};

class SwapNodes : public qdltest::SurfaceFixture {};

}  // namespace

TEST_F(GeometryNodes, AreThoseOfFacesInterfaceAndNodalLoads) {
  QDL_Record *model = body();
  EXPECT_EQ(nodes(model), (Ints{1, 2, 4, 6, 7}));
  // What came from a file may refer to nowhere, or to a node whose number is none.
  QDL_SetInterfaceNode(model, -3);
  model->interface_nodes.push_back(qdlflex::kUnknownNode);
  model->nodal_loads[0].entries.push_back({qdlflex::kUnknownNode, 1, 1.0});
  model->faces.list.insert(model->faces.list.end(), {4, 0, -2, 99, 0, 0, 5, 3});
  model->geometry_nodes.reset();
  EXPECT_EQ(nodes(model), (Ints{0, 1, 2, 3, 4, 6, 7}));
  expect_no_messages();
}

TEST_F(GeometryNodes, LeaveOutNodalLoadsOnRequestWhenCollected) {
  QDL_Record *asked_with = body();
  QDL_Record *asked_before = body();
  EXPECT_EQ(nodes(asked_before), (Ints{1, 2, 4, 6, 7}));
  const qdltest::ScopedEnvironment options("ZEB_QDLWRITE_OPTIONS", "MKS,optimize_mforce_nodes");
  EXPECT_EQ(nodes(asked_with), (Ints{1, 2, 4, 6}));
  EXPECT_EQ(nodes(asked_before), (Ints{1, 2, 4, 6, 7}));
}

TEST_F(GeometryNodes, AreCollectedAgainAfterAChange) {
  QDL_Record *model = body();
  nodes(model);
  QDL_SetInterfaceNode(model, 1);
  EXPECT_EQ(nodes(model), (Ints{0, 1, 2, 4, 6, 7}));
  QDL_SetModalLoadNodal(model, 0, 4, 1, 1.0);
  EXPECT_EQ(nodes(model), (Ints{0, 1, 2, 3, 4, 6, 7}));
  QDL_SetFace(model, 2, 6, 7);
  EXPECT_EQ(nodes(model), (Ints{0, 1, 2, 3, 4, 5, 6, 7}));
  QDL_StripCommonFaces(model);
  EXPECT_EQ(nodes(model), (Ints{0, 1, 3, 4, 5, 6, 7}));
  // The answer is the caller's own.
  std::int32_t *array = QDL_GeometryNodes(model, nullptr);
  array[0] = 77;
  QDL_FreeMemory(array);
  EXPECT_EQ(nodes(model)[0], 0);
}

TEST_F(GeometryNodes, NeedAFaceList) {
  QDL_Record *model = model_of(3);
  QDL_SetInterfaceNode(model, 1);
  EXPECT_EQ(nodes(model), Ints{});
  expect_only_warnings({"Missing element face information."});
  clear_messages();
  // An empty list is one.
  model->faces.present = true;
  EXPECT_EQ(nodes(model), Ints{0});
  model->interface_nodes.clear();
  model->geometry_nodes.reset();
  EXPECT_EQ(nodes(model), Ints{});
  expect_no_messages();
}

TEST_F(GeometryNodes, ReportMissingMemory) {
  sweep_job(
      body,
      [](QDL_Record *model) {
        std::int32_t count = -1;
        QDL_FreeMemory(QDL_GeometryNodes(model, &count));
        return count == 0 ? 0 : 1;
      },
      [&](QDL_Record *, bool done) {
        if (!done)
          expect_no_memory("qdltools");
      },
      {qdltest::Door::kMemory});
}

TEST_F(SwapNodes, ExchangesTheNodesAndKeepsTheLookUp) {
  QDL_Record *model = model_of(4);
  QDL_SetNodalMass(model, 2, 20.0);
  QDL_SetNodalInertia(model, 4, 1, 2, 3, 0, 0, 0);
  QDL_SetFace(model, 3, 1, 2, 3);
  QDL_SetInterfaceNode(model, 2);
  model->invariants[4].origin = qdlflex::Origin::kDerived;
  model->invariants[5].origin = qdlflex::Origin::kSupplied;

  QDL_SwapNodesByID(model, 2, 4);
  EXPECT_EQ(QDL_NodeID(model, 1), 4);
  EXPECT_EQ(QDL_NodeID(model, 3), 2);
  EXPECT_EQ(QDL_NodalMass(model, 3), 20.0);
  double xyz[3];
  double tensor[9];
  EXPECT_EQ(QDL_NodeCoordinates(model, 1, xyz), 1);
  EXPECT_EQ(xyz[0], 4.0);
  EXPECT_EQ(QDL_NodalInertia(model, 1, tensor), 1);
  EXPECT_EQ(QDL_NodalInertia(model, 3, tensor), 0);
  EXPECT_EQ(faces_of(model), (std::vector<Ints>{{3, 0, 1, 2}}));
  EXPECT_EQ(model->interface_nodes, Ints{1});
  EXPECT_EQ(model->invariants[4].origin, qdlflex::Origin::kEmpty);
  EXPECT_EQ(model->invariants[5].origin, qdlflex::Origin::kSupplied);

  // The look-up answers as before the swap, until a node is added.
  EXPECT_EQ(QDL_NodeIndex(model, 2), 1);
  EXPECT_EQ(QDL_NodeIndex(model, 4), 3);
  QDL_SwapNodesByID(model, 2, 99);
  QDL_SwapNodesByID(model, 99, 2);
  QDL_SwapNodesByID(model, 2, 4);
  EXPECT_EQ(QDL_NodeID(model, 1), 2);
  QDL_SwapNodesByID(model, 2, 4);
  QDL_AddNode(model, 5);
  EXPECT_EQ(QDL_NodeIndex(model, 2), 3);
  EXPECT_EQ(QDL_NodeIndex(model, 4), 1);
  EXPECT_EQ(QDL_NodeIndex(model, 5), 4);
  expect_no_messages();
}
