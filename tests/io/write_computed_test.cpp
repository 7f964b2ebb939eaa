// What the writer computes before it writes is computed once.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <vector>

#include "io/write_matrix_bodies.h"
#include "record/record.h"

namespace {

using namespace qdltest;

using Numbers = std::unique_ptr<double, decltype(&std::free)>;

Numbers owned(double *values) {
  return {values, &std::free};
}

using Point = std::array<double, 3>;

// A tetrahedron with a fifth node inside. Masses 1 to 5, faces around the first four.
constexpr std::array<Point, 5> kPoints = {
    {{0, 0, 0}, {4, 0, 0}, {0, 3, 0}, {0, 0, 2}, {0.5, 0.5, 0.25}}};
constexpr std::array<double, 5> kMasses = {1, 2, 3, 4, 5};
void add_nodes(QDL_Record *model) {
  for (std::size_t node = 0; node < kPoints.size(); ++node) {
    const auto id = static_cast<std::int32_t>(node) + 1;
    const Point &at = kPoints[node];
    QDL_SetNodeCoordinates(model, id, at[0], at[1], at[2]);
    QDL_SetNodalMass(model, id, kMasses[node]);
  }
  for (const auto &face : {std::array{1, 2, 3}, {1, 4, 2}, {2, 4, 3}, {1, 3, 4}})
    QDL_SetFaceList(model, 3, face.data());
  QDL_SetInterfaceNode(model, 2);
}

class Computed : public WriteFixture {};

TEST_F(Computed, ASecondWriteKeepsTheSolvedModes) {
  const Body body = body_of(kind_named("Unsolved"));
  QDL_Record *model = build_record(body.content, body.blocks);
  ASSERT_EQ(write(model, "fast_invar", "first.qdl"), 1);
  QDL_Record *copy = QDL_CreateFromQDL(path("first.qdl").c_str());
  for (QDL_Record *each : {model, copy}) {
    ASSERT_EQ(write(each, "fast_invar", "second.qdl"), 1);
    EXPECT_EQ(read_file(path("second.qdl")), read_file(path("first.qdl")));
  }
}

// Six modes that move the body as a whole and one that bends it, all with generalized mass 1.
QDL_Record *free_body() {
  QDL_Record *model = QDL_Create(static_cast<std::int32_t>(kPoints.size()), 7);
  add_nodes(model);
  for (int mode = 0; mode < 7; ++mode) {
    for (std::size_t node = 0; node < kPoints.size(); ++node) {
      const Point &p = kPoints[node];
      const std::array<Point, 7> moves = {{{1, 0, 0},
                                           {0, 1, 0},
                                           {0, 0, 1},
                                           {0, -p[2], p[1]},
                                           {p[2], 0, -p[0]},
                                           {-p[1], p[0], 0},
                                           {p[0] * p[1], p[2], 1}}};
      const Point &move = moves[static_cast<std::size_t>(mode)];
      QDL_SetMode(model, mode + 1, static_cast<std::int32_t>(node) + 1, QDL_MODE_SHAPE, move[0],
                  move[1], move[2], 0, 0, 0);
    }
    QDL_SetGeneralizedMass(model, mode + 1, mode + 1, 1.0);
    QDL_SetGeneralizedStiffness(model, mode + 1, mode + 1, mode < 6 ? 0.0 : 1e8);
  }
  return model;
}

TEST_F(Computed, LoadsAndDampingAreProjectedOnceBesideInvariants) {
  QDL_Record *model = free_body();
  // A load on the first translation alone.
  QDL_SetModalLoad(model, 0, 1, 2.0);
  QDL_SetModalLoad(model, 0, 7, 5.0);
  QDL_SetGeneralizedDamping(model, 1, 1, 0.5);
  QDL_SetGeneralizedDamping(model, 7, 7, 0.25);
  ASSERT_EQ(write(model, "fast_invar no_ortho", "first.qdl"), 1);
  QDL_Record *copy = QDL_CreateFromQDL(path("first.qdl").c_str());
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(QDL_ModalLoadProcessed(copy, 0), 1);
  std::int32_t count = 0;
  const Numbers load = owned(QDL_GetModalLoad(copy, 0, &count));
  ASSERT_EQ(count, 7);
  // The resultant of two units of uniform acceleration: the mass, and the moment about the origin.
  const std::array<double, 7> resultant = {
      30, 0, 0, 0, 2 * (4 * 2 + 5 * 0.25), -2 * (3 * 3 + 5 * 0.5), 5};
  for (std::size_t i = 0; i < 7; ++i)
    EXPECT_NEAR(load.get()[i], resultant[i], 1e-12) << i;
  // The damped translation has a moment about two of the axes.
  EXPECT_EQ(QDL_NumberOfGenDamp(copy), 3 * 3 + 1);
  // Neither is projected again when the file is written once more.
  EXPECT_EQ(write(copy, "no_ortho", "second.qdl"), 1);
  EXPECT_EQ(read_file(path("second.qdl")), read_file(path("first.qdl")));
}

TEST_F(Computed, AFailingShiftFailsTheWrite) {
  QDL_Record *model = open(build_file(60));
  model->contents.offsets[18] = std::int64_t{1} << 40;  // of invariant 1
  expect_refused(model, "lbrf2cm no_ortho", {"Failed to extract mode information for QDL.\n"});
}

}  // namespace
