// Every tool tells that there is no model.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <functional>

#include "support/fixture.h"

namespace {

class NullHandle : public qdltest::MessageFixture {};

TEST_F(NullHandle, IsReportedByEveryTool) {
  const double v[] = {1, 0, 0};
  std::int32_t n = 1;
  const std::function<bool()> failures[] = {
      [&] { return QDL_Mirror_Origin(nullptr, v) == 0; },
      [&] { return QDL_Mirror(nullptr, v, v) == 0; },
      [&] { return QDL_Rotate_Origin(nullptr, v, 1.0, nullptr) == 0; },
      [&] { return QDL_Rotate(nullptr, v, v, 1.0) == 0; },
      [&] { return QDL_Translate(nullptr, v, 1.0) == 0; },
      [&] { return QDL_RenumberNodes(nullptr, 1) == 0; },
      [&] { return QDL_RenumberInterfaceNodes(nullptr, 1, &n) == 0; },
      [&] { return QDL_ScaleModes(nullptr, QDL_MODE_SHAPE, 2.0) == 0; },
      [&] { return QDL_ShiftLBRFtoCM(nullptr) == 0; },
      [&] { return QDL_StripCommonFaces(nullptr), true; },
      [&] { return QDL_SketchGrid(nullptr, "sketch.txt"), true; },
      [&] { return QDL_ClosestNode(nullptr, v, 0) == -1; },
      [&] { return QDL_ClosestNodes(nullptr, v, 1, 0, &(n = 5)) == nullptr && n == 0; },
      [&] {
        return QDL_ClosestNodesInNeighborhood(nullptr, v, 1.0, 0, &(n = 5)) == nullptr && n == 0;
      },
      [&] { return QDL_GeometryNodes(nullptr, &(n = 5)) == nullptr && n == 0; },
      [&] { return QDL_SwapNodesByID(nullptr, 1, 2), true; },
      [&] { return QDL_GenerateFreeEdges(nullptr) == 0; },
      [&] { return QDL_GetFreeEdgeCount(nullptr) == 0; },
      [&] { return QDL_GetFreeEdgeSize(nullptr, 0) == 0; },
      [&] { return QDL_GetFreeEdge(nullptr, 0, &n) == 0; },
      [&] { return QDL_TrimGeometry(nullptr, "0.1,5,0") == 0; },
      [&] { return QDL_RemoveInternalGeometry(nullptr) == 0; },
      [&] { return QDL_DiscardUnreferencedNodes(nullptr) == 0; },
      [&] { return QDL_PermuteQDL(nullptr, nullptr, 1, 1.0, nullptr, nullptr) == 0; },
      [&] { return QDL_PreprocessKVTQDL(nullptr) == 0; },
  };
  int tool = 0;
  for (const auto &fails : failures) {
    SCOPED_TRACE(tool++);
    EXPECT_TRUE(fails());
    expect_only_error("The database has not been initialized.");
    clear_messages();
  }
}

}  // namespace
