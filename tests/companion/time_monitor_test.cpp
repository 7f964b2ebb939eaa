// A host that shows progress: this program, by nothing but defining the two functions for it.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <utility>
#include <vector>

namespace {

std::vector<int> totals;
int stamps = 0;

}  // namespace

extern "C" QDL_API int QDL_TimeMonitor(int total) {
  totals.push_back(total);
  return 0;
}

extern "C" QDL_API int QDL_TimeMonitorStamp(void) {
  return ++stamps;
}

TEST(TimeMonitor, FollowsCoarseningByHundredthsOfTheNodes) {
  for (const auto &[nodes, expected] : {std::pair{100, 0}, {101, 101}, {250, 125}, {1000, 100}}) {
    SCOPED_TRACE(nodes);
    totals.clear();
    stamps = 0;
    QDL_Record *model = QDL_Create(nodes, 0);
    for (int id = 1; id <= nodes; ++id)
      QDL_SetNodeCoordinates(model, id, id, 0.0, 0.0);
    QDL_SetFace(model, 3, 1, 2, 3);
    EXPECT_EQ(QDL_TrimGeometry(model, "0.1,5,0"), 1);
    EXPECT_EQ(totals, std::vector<int>{100});
    EXPECT_EQ(stamps, expected);
    QDL_Terminate();
  }
}
