// What the writer computes before it writes: solved modes, invariants, projections, and the edits
// that its options ask for.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <vector>

#include "io/write_fixture.h"
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
constexpr std::int32_t kModes = 3;

double shape(int mode, std::size_t node, int component) {
  const auto place = static_cast<double>(node) + 0.5 * component;
  return std::cos(0.7 * (mode + 1) * place) + 0.1 * mode;
}

constexpr double kStiffness[kModes][kModes] = {{4, 1, 0.5}, {1, 9, -2}, {0.5, -2, 16}};
constexpr double kMass[kModes][kModes] = {{2, 0.5, 0}, {0.5, 1, 0.25}, {0, 0.25, 3}};

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

void add_shapes(QDL_Record *model) {
  for (int mode = 0; mode < kModes; ++mode) {
    for (std::size_t node = 0; node < kPoints.size(); ++node) {
      std::array<double, 6> six{};
      for (int c = 0; c < 6; ++c)
        six[static_cast<std::size_t>(c)] = shape(mode, node, c);
      QDL_SetModeVec(model, mode + 1, static_cast<std::int32_t>(node) + 1, QDL_MODE_SHAPE,
                     six.data());
    }
  }
}

// Modes with full generalized matrices.
QDL_Record *unsolved_body() {
  QDL_Record *model = QDL_Create(static_cast<std::int32_t>(kPoints.size()), kModes);
  add_nodes(model);
  add_shapes(model);
  for (int i = 0; i < kModes; ++i) {
    for (int j = 0; j <= i; ++j) {
      QDL_SetGeneralizedStiffness(model, i + 1, j + 1, kStiffness[i][j]);
      QDL_SetGeneralizedMass(model, i + 1, j + 1, kMass[i][j]);
    }
  }
  return model;
}

class Computed : public WriteFixture {
 protected:
  QDL_Record *write_and_open(QDL_Record *model, const std::string &options,
                             const std::string &name = "written.qdl") {
    EXPECT_EQ(write(model, options, name), 1) << options;
    return QDL_CreateFromQDL(path(name).c_str());
  }

  static std::set<int> blocks_of(QDL_Record *model) {
    std::set<int> found;
    for (int id = 4; id <= 37; ++id) {
      if (QDL_Exists(model, id - 1) != 0)
        found.insert(id);
    }
    return found;
  }
};

TEST_F(Computed, ModesAreOrthonormalInTheFile) {
  QDL_Record *model = unsolved_body();
  QDL_Record *copy = write_and_open(model, "");
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(blocks_of(copy), (std::set<int>{4, 6, 7, 8, 9, 11, 14, 16, 17, 30}));
  double t[kModes][kModes];
  ASSERT_EQ(QDL_Transformation(copy, &t[0][0]), 1);
  for (int j = 0; j < kModes; ++j) {
    for (int k = 0; k < kModes; ++k) {
      double mass = 0.0;
      for (int a = 0; a < kModes; ++a) {
        for (int b = 0; b < kModes; ++b)
          mass += t[a][j] * kMass[a][b] * t[b][k];
      }
      EXPECT_NEAR(mass, j == k ? 1.0 : 0.0, 1e-14);
    }
  }
  // The last node of the last mode, combined by hand.
  constexpr std::size_t kLast = kPoints.size() - 1;
  Point half{};
  QDL_ModeByNode(copy, kModes, QDL_MODE_SHAPE, static_cast<std::int32_t>(kLast), half.data(), 1);
  for (int c = 0; c < 3; ++c) {
    double combined = 0.0;
    for (int a = 0; a < kModes; ++a)
      combined += t[a][kModes - 1] * shape(a, kLast, 3 + c);
    EXPECT_NEAR(half[static_cast<std::size_t>(c)], combined, 1e-14);
  }
}

TEST_F(Computed, ASecondWriteKeepsTheSolvedModes) {
  QDL_Record *model = unsolved_body();
  ASSERT_EQ(write(model, "fast_invar", "first.qdl"), 1);
  QDL_Record *copy = QDL_CreateFromQDL(path("first.qdl").c_str());
  for (QDL_Record *each : {model, copy}) {
    ASSERT_EQ(write(each, "fast_invar", "second.qdl"), 1);
    EXPECT_EQ(read_file(path("second.qdl")), read_file(path("first.qdl")));
  }
}

TEST_F(Computed, InvariantsAskedFor) {
  const std::set<int> fast = {19, 20, 21, 22, 24, 25};
  const std::set<int> full = {19, 20, 21, 22, 23, 24, 25, 26};
  struct Case {
    std::string options;
    std::set<int> expected;
  };
  for (const Case &c : {Case{"", {}},
                        {"fast_invar", fast},
                        {"full_invar", full},
                        {"fast_invar full_invar", full}}) {
    SCOPED_TRACE(c.options);
    QDL_Terminate();
    QDL_Record *copy = write_and_open(unsolved_body(), c.options);
    EXPECT_EQ(errors, std::vector<std::string>{});
    std::set<int> found;
    for (const int id : blocks_of(copy)) {
      if (full.contains(id))
        found.insert(id);
    }
    EXPECT_EQ(found, c.expected);
  }
}

TEST_F(Computed, InvariantsCoverTheNodesThatAreDropped) {
  QDL_Record *copy = write_and_open(unsolved_body(), "full_invar no_ortho");
  EXPECT_EQ(QDL_NodeCount(copy), 4) << "the node inside belongs to no face";
  EXPECT_DOUBLE_EQ(QDL_Invar1(copy), 15.0);
  EXPECT_DOUBLE_EQ(owned(QDL_Invar2(copy)).get()[0], 2 * 4 + 5 * 0.5);
  double momentum = 0.0;
  for (std::size_t node = 0; node < kPoints.size(); ++node)
    momentum += kMasses[node] * shape(2, node, 0);
  EXPECT_NEAR(owned(QDL_Invar3(copy)).get()[2], momentum, 1e-13);
  EXPECT_DOUBLE_EQ(copy->global_mass.mass, 15.0);
}

// Invariant 3 alone has nodes discarded too, and their mass is not in the file's invariants.
TEST_F(Computed, GlobalMassCoversTheNodesThatAreDropped) {
  QDL_Record *model = unsolved_body();
  const Point momentum = {1, 2, 3};
  QDL_SetInvar3(model, 1, momentum.data());
  QDL_Record *copy = write_and_open(model, "no_ortho");
  EXPECT_EQ(QDL_NodeCount(copy), 4);
  EXPECT_EQ(blocks_of(copy).contains(19), false);
  EXPECT_DOUBLE_EQ(copy->global_mass.mass, 15.0);
  EXPECT_DOUBLE_EQ(copy->global_mass.centre[0], (2 * 4 + 5 * 0.5) / 15.0);
}

TEST_F(Computed, InvariantsWithoutMassesAreZeroAndReported) {
  QDL_Record *model = QDL_Create(1, 1);
  QDL_SetNodeCoordinates(model, 1, 1, 2, 3);
  QDL_SetMode(model, 1, 1, QDL_MODE_SHAPE, 1, 0, 0, 0, 0, 0);
  QDL_SetInterfaceNode(model, 1);
  QDL_Record *copy = write_and_open(model, "full_invar no_ortho");
  EXPECT_EQ(errors, std::vector<std::string>{
                        "There is insufficient mass data to compute a full set of mass "
                        "invariants.\nSome or all mass invariants will be set to zero."});
  EXPECT_EQ(QDL_Invar1(copy), 0.0);
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
  QDL_Record *copy = write_and_open(model, "fast_invar no_ortho", "first.qdl");
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

TEST_F(Computed, EmptyBodyHasNoModes) {
  QDL_Record *copy = write_and_open(unsolved_body(), "empty lowpass(5) full_invar MKS");
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(blocks_of(copy), (std::set<int>{4, 6, 9, 11, 14, 17, 19, 20, 24}));
  EXPECT_EQ(QDL_ModeCount(copy), 0);
  EXPECT_EQ(QDL_NodeCount(copy), 5);
  EXPECT_DOUBLE_EQ(QDL_Invar1(copy), 15.0);
}

TEST_F(Computed, EditsComeBeforeTheVersionCode) {
  QDL_Record *shifted = write_and_open(unsolved_body(), "lbrf2cm no_ortho");
  Point first{};
  QDL_NodeCoordinates(shifted, 0, first.data());
  EXPECT_NEAR(first[0], -(2 * 4 + 5 * 0.5) / 15.0, 1e-15);
  EXPECT_NEAR(first[1], -(3 * 3 + 5 * 0.5) / 15.0, 1e-15);
  EXPECT_NEAR(first[2], -(4 * 2 + 5 * 0.25) / 15.0, 1e-15);

  const std::array<std::int32_t, 3> again = {3, 2, 1};
  QDL_Record *doubled = unsolved_body();
  QDL_SetFaceList(doubled, 3, again.data());
  std::int32_t faces = 0;
  QDL_FaceListSize(write_and_open(doubled, "strip_face no_ortho", "stripped.qdl"), &faces, nullptr);
  EXPECT_EQ(faces, 3) << "a face between two elements is gone";

  std::ofstream(path("sketch.txt")) << "1\n3 1 2 5\n";
  QDL_Record *sketched =
      write_and_open(unsolved_body(), "sketch(" + path("sketch.txt") + ") no_ortho", "sketch.qdl");
  QDL_FaceListSize(sketched, &faces, nullptr);
  EXPECT_EQ(faces, 1);

  ASSERT_EQ(write(unsolved_body(), "coarsen(0.5,10,0) no_ortho", "coarse.qdl"), 1);
  EXPECT_EQ(read_file(path("coarse.qdl"))[2], 0x05) << "the bit of coarsened faces";
}

TEST_F(Computed, AFailingShiftFailsTheWrite) {
  QDL_Record *model = open(build_file(60));
  model->contents.offsets[18] = std::int64_t{1} << 40;  // of invariant 1
  expect_refused(model, "lbrf2cm no_ortho", {"Failed to extract mode information for QDL.\n"});
}

}  // namespace
