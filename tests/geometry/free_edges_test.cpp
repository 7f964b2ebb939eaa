#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <string>
#include <vector>

#include "geometry/free_edges_model.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using qdltest::Chains;
using qdltest::Faces;

class FreeEdges : public qdltest::MessageFixture {
 protected:
  static int id_of(int index) { return 100 - 7 * index; }

  // Faces as they are, which the setters would not let through, and without internal geometry.
  static QDL_Record *make_model(int nodes, const Faces &faces) {
    QDL_Record *model = QDL_Create(0, 0);
    for (int i = 0; i < nodes; ++i)
      QDL_AddNode(model, id_of(i));
    model->faces = {qdltest::face_list(faces), static_cast<int>(faces.size()), true};
    model->interior_faces_stripped = true;
    return model;
  }

  static Chains chains_of(QDL_Record *model) {
    Chains chains(static_cast<std::size_t>(QDL_GetFreeEdgeCount(model)));
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(chains.size()); ++i) {
      auto &chain = chains[static_cast<std::size_t>(i)];
      chain.resize(static_cast<std::size_t>(QDL_GetFreeEdgeSize(model, i)));
      EXPECT_EQ(QDL_GetFreeEdge(model, i, chain.data()), static_cast<int>(chain.size()));
    }
    return chains;
  }
};

const Faces kTwoTriangles = {{0, 1, 2}, {1, 3, 2}};

}  // namespace

TEST_F(FreeEdges, AreThoseOfTheSurfaceAlone) {
  Faces faces = kTwoTriangles;
  faces.push_back({1, 3, 4});  // between two elements, with a node that nothing else uses
  faces.push_back({4, 3, 1});
  QDL_Record *model = make_model(5, faces);
  model->interior_faces_stripped = false;
  EXPECT_EQ(chains_of(model), chains_of(make_model(4, kTwoTriangles)));
  EXPECT_EQ(QDL_NodeCount(model), 4);
}

TEST_F(FreeEdges, AreFoundOnceAndAnewAfterAChangeOfFaces) {
  QDL_Record *model = make_model(4, kTwoTriangles);
  std::int32_t ids[8] = {};
  EXPECT_EQ(QDL_GetFreeEdge(model, 0, ids), 0) << "it does not look for them";
  EXPECT_EQ(QDL_GetFreeEdgeSize(model, 0), 5) << "but this does";
  EXPECT_EQ(QDL_GetFreeEdge(model, 0, ids), 5);
  EXPECT_EQ(ids[3], id_of(2));

  model->faces.list[7] = 0;  // the second triangle is now {1, 3, 0}
  EXPECT_EQ(QDL_GetFreeEdgeSize(model, 0), 5) << "as found before";
  EXPECT_EQ(QDL_GenerateFreeEdges(model), 1);
  EXPECT_EQ(chains_of(model), (Chains{{100, 86, 93, 79, 100}}));
  EXPECT_EQ(QDL_SetFace(model, 3, 1000, 1001, 1002), 1);
  EXPECT_EQ(QDL_GetFreeEdge(model, 0, ids), 0);
  EXPECT_EQ(QDL_GetFreeEdgeCount(model), 2);
  EXPECT_EQ(QDL_TrimGeometry(model, "0.1,10,0"), 1);
  EXPECT_EQ(QDL_GetFreeEdge(model, 0, ids), 0);
}

TEST_F(FreeEdges, OtherFacesAndIndicesDoNoHarm) {
  EXPECT_EQ(QDL_GetFreeEdgeCount(make_model(4, {{0, 1}, {2}})), 0);
  EXPECT_EQ(chains_of(make_model(4, {{0, -1, 4, 3}})), (Chains{{0, 100, 79, 0, 0}}));
  QDL_Record *model = make_model(4, {});
  // The second face is cut short by the end of the list; there is no third one.
  model->faces = {{-2, 5, 0, 1, 2, 3}, 3, true};
  EXPECT_EQ(QDL_GenerateFreeEdges(model), 1);
  EXPECT_EQ(chains_of(model), (Chains{{100, 93, 86, 79, 100}}));

  std::int32_t ids[5] = {};
  for (const std::int32_t chain : {-1, 1}) {
    EXPECT_EQ(QDL_GetFreeEdgeSize(model, chain), 0);
    EXPECT_EQ(QDL_GetFreeEdge(model, chain, ids), 0);
  }
  EXPECT_EQ(QDL_GetFreeEdge(model, 0, nullptr), 0);
  expect_no_messages();
}

TEST_F(FreeEdges, MemoryThatRunsOutIsASilentFailure) {
  QDL_Record *model = make_model(4, kTwoTriangles);
  const std::size_t faults = qdltest::sweep(
      qdltest::Door::kMemory, qdltest::Persistence::kOnce,
      [&] { return QDL_GetFreeEdgeCount(model); },
      [&](std::int32_t count, bool fired) {
        EXPECT_EQ(count, fired ? 0 : 1);
        EXPECT_NE(model->free_edges.has_value(), fired);
      });
  EXPECT_GT(faults, 20U);
  expect_no_messages();
}
