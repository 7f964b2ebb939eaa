// Every tool tells that there is no model.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/fixture.h"

namespace {

class NullHandle : public qdltest::MessageFixture {};

TEST_F(NullHandle, IsReportedByEveryTool) {
  const double v[] = {1, 0, 0};
  std::int32_t n = 1;
  expect_no_model(QDL_Mirror_Origin(nullptr, v));
  expect_no_model(QDL_Mirror(nullptr, v, v));
  expect_no_model(QDL_Rotate_Origin(nullptr, v, 1.0, nullptr));
  expect_no_model(QDL_Rotate(nullptr, v, v, 1.0));
  expect_no_model(QDL_Translate(nullptr, v, 1.0));
  expect_no_model(QDL_RenumberNodes(nullptr, 1));
  expect_no_model(QDL_RenumberInterfaceNodes(nullptr, 1, &n));
  expect_no_model(QDL_ScaleModes(nullptr, QDL_MODE_SHAPE, 2.0));
  expect_no_model(QDL_ShiftLBRFtoCM(nullptr));
  expect_no_model(QDL_ClosestNode(nullptr, v, 0), -1);
  expect_no_model(QDL_GenerateFreeEdges(nullptr));
  expect_no_model(QDL_GetFreeEdgeCount(nullptr));
  expect_no_model(QDL_GetFreeEdgeSize(nullptr, 0));
  expect_no_model(QDL_GetFreeEdge(nullptr, 0, &n));
  expect_no_model(QDL_TrimGeometry(nullptr, "0.1,5,0"));
  expect_no_model(QDL_RemoveInternalGeometry(nullptr));
  expect_no_model(QDL_DiscardUnreferencedNodes(nullptr));
  expect_no_model(QDL_PermuteQDL(nullptr, nullptr, 1, 1.0, nullptr, nullptr));
  expect_no_model(QDL_PreprocessKVTQDL(nullptr));

  EXPECT_EQ(QDL_ClosestNodes(nullptr, v, 1, 0, &n), nullptr);
  expect_no_model(n);
  n = 1;
  EXPECT_EQ(QDL_ClosestNodesInNeighborhood(nullptr, v, 1.0, 0, &n), nullptr);
  expect_no_model(n);
  n = 1;
  EXPECT_EQ(QDL_GeometryNodes(nullptr, &n), nullptr);
  expect_no_model(n);

  QDL_StripCommonFaces(nullptr);
  QDL_SketchGrid(nullptr, "sketch.txt");
  QDL_SwapNodesByID(nullptr, 1, 2);
  EXPECT_EQ(errors, std::vector<std::string>(3, "The database has not been initialized."));
}

}  // namespace
