#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "geometry/coarsen_model.h"
#include "geometry/free_edges_model.h"
#include "geometry/random_surface.h"
#include "geometry/surface_fixture.h"

namespace {

using qdltest::Coarsening;
using qdltest::face_list;
using qdltest::Faces;
using qdltest::Surface;
using Texts = std::vector<std::string>;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr const char *kProblem = "Problem encountered while trimming geometry\n";
constexpr const char *kMemory = "Failed to allocate memory";

// Squares of side 1 in the plane z = 0, row by row.
Surface plate(int columns, int rows) {
  Surface surface;
  for (int y = 0; y <= rows; ++y) {
    for (int x = 0; x <= columns; ++x)
      surface.nodes.push_back({double(x), double(y), 0.0});
  }
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      const int corner = y * (columns + 1) + x;
      surface.faces.push_back({corner, corner + 1, corner + columns + 2, corner + columns + 1});
    }
  }
  return surface;
}

// Triangles between node 0 and a circle of the others.
Surface wheel(int spokes) {
  Surface surface;
  surface.nodes.push_back({0.0, 0.0, 0.0});
  for (int i = 0; i < spokes; ++i) {
    const double turn = 6.28 * i / spokes;
    surface.nodes.push_back({std::cos(turn), std::sin(turn), 0.0});
    surface.faces.push_back({0, i + 1, (i + 1) % spokes + 1});
  }
  return surface;
}

class Coarsen : public qdltest::SurfaceFixture {
 protected:
  // Identifiers are ten times the index, and one more.
  static QDL_Record *make_model(const Surface &surface) {
    QDL_Record *model = QDL_Create(0, 1);
    for (std::size_t i = 0; i < surface.nodes.size(); ++i) {
      const auto &[x, y, z] = surface.nodes[i];
      QDL_SetNodeCoordinates(model, id_of(static_cast<int>(i)), x, y, z);
    }
    model->faces = {face_list(surface.faces), static_cast<int>(surface.faces.size()), true};
    return model;
  }

  static int id_of(int index) { return 10 * index + 1; }

  static std::string arguments(const Coarsening &coarsening) {
    std::ostringstream text;
    text << coarsening.resolution << ',' << coarsening.angle << ',' << coarsening.drop_colinear;
    for (const int node : coarsening.preserved)
      text << ',' << id_of(node);
    return text.str();
  }

  static Faces trimmed(const Surface &surface, const char *text) {
    QDL_Record *model = make_model(surface);
    EXPECT_EQ(QDL_TrimGeometry(model, text), 1);
    return polygons_of(model);
  }

  // Faces without their counts.
  static Faces polygons_of(QDL_Record *model) {
    Faces faces = faces_of(model);
    for (auto &face : faces)
      face.erase(face.begin());
    return faces;
  }

  void expect_model_agrees(const Surface &surface, const Coarsening &coarsening) {
    QDL_Terminate();
    QDL_Record *model = make_model(surface);
    ASSERT_EQ(QDL_TrimGeometry(model, arguments(coarsening).c_str()), 1);
    ASSERT_EQ(polygons_of(model), coarsened_faces(surface, coarsening));
    infos.clear();
  }
};

}  // namespace

TEST_F(Coarsen, RandomSurfacesBecomeWhatTheModelMakesOfThem) {
  qdltest::RandomSurfaces random(5);
  const auto run = [&](int rounds, auto surfaces) {
    int merged = 0;
    for (int round = 0; round < rounds && !HasFatalFailure(); ++round) {
      SCOPED_TRACE(round);
      const Surface surface = surfaces();
      const Coarsening coarsening = random.coarsening(surface);
      expect_model_agrees(surface, coarsening);
      merged += coarsened_faces(surface, coarsening).size() < surface.faces.size() ? 1 : 0;
    }
    EXPECT_GT(merged, rounds / 8) << "few of the surfaces have anything to merge";
  };
  run(3000, [&] { return random.plate(); });
  run(1000, [&] { return random.cone(); });
  run(2000, [&] { return random.tangle(); });
}

TEST_F(Coarsen, APlateBecomesFewPolygons) {
  const Faces faces = trimmed(plate(10, 10), "0.5,10,0");
  EXPECT_LT(faces.size(), 100U);
  EXPECT_TRUE(std::ranges::any_of(faces, [](const auto &face) { return face.size() > 4; }));

  // The four squares around the only node that may go become their outline.
  const Coarsening inner = {0.5, 10.0, false, {0, 1, 2, 3, 5, 6, 7, 8}};
  QDL_Record *model = make_model(plate(2, 2));
  EXPECT_EQ(QDL_IsCoarsened(model), 0);
  EXPECT_EQ(QDL_TrimGeometry(model, arguments(inner).c_str()), 1);
  EXPECT_EQ(polygons_of(model), (Faces{{3, 0, 1, 2, 5, 8, 7, 6, 3}}));
  EXPECT_EQ(QDL_IsCoarsened(model), 1);
}

TEST_F(Coarsen, AClosedPolygonRepeatsItsFirstNodeWhenItIsSmall) {
  EXPECT_EQ(trimmed(wheel(6), "0.5,10,0"), (Faces{{1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(trimmed(wheel(6), "0.5,10,0,11"), (Faces{{1, 2, 3, 4, 5, 6, 1}})) << "preserved";
  EXPECT_EQ(trimmed(wheel(5), "0.5,10,0"), (Faces{{1, 2, 3, 4, 5, 1}}));
  EXPECT_EQ(trimmed(wheel(5), "0.5,10,1"), (Faces{{2, 3, 4, 5, 1}}));
}

TEST_F(Coarsen, NodesOnAFoldAndInterfaceNodesStay) {
  static constexpr int middle = 4;
  const auto has_middle = [](const Faces &faces) {
    return std::ranges::any_of(
        faces, [](const auto &face) { return std::ranges::count(face, middle) != 0; });
  };
  const char *const kCorners = "0.5,44,0,1,21,61,81";  // corners are too far away to go by
  Surface folded = plate(2, 2);
  for (auto &node : folded.nodes)
    node[2] = std::fabs(node[0] - 1.0);
  EXPECT_TRUE(has_middle(trimmed(folded, kCorners)));
  for (auto &node : folded.nodes)
    node[2] *= 0.1;
  EXPECT_FALSE(has_middle(trimmed(folded, kCorners)));

  QDL_Record *model = make_model(folded);
  QDL_SetInterfaceNode(model, id_of(middle));
  QDL_TrimGeometry(model, kCorners);
  EXPECT_TRUE(has_middle(polygons_of(model)));
}

TEST_F(Coarsen, ColinearCornersAreDroppedWhereTheyLieClose) {
  // A square with points along its sides and one twice; a far point makes the model large. The
  // last face is a spike, of which nothing is left.
  Surface square;
  square.nodes = {{0, 0, 0}, {0.5, 0, 0}, {1, 0, 0},     {1, 0, 0},   {1, 1, 0},
                  {0, 1, 0}, {0, 0.5, 0}, {30, 30, 0.0}, {0, 0.3, 0}, {0.05, 0.5, 0}};
  square.faces = {{0, 1, 2, 3, 4, 5, 6}, {0, 4, 1}, {1, 0, 8, 5, 9, 0}};
  EXPECT_EQ(trimmed(square, "0.02,10,1"), (Faces{{0, 2, 4, 5}, {0, 4, 1}}));
  EXPECT_EQ(trimmed(square, "0.02,10,1,61,31"), (Faces{{0, 2, 3, 4, 5, 6}, {0, 4, 1}}));
  // In a small model nothing is close but what coincides.
  square.nodes[7] = {0, 0, 0};
  EXPECT_EQ(trimmed(square, "0.02,10,1")[0], (Faces::value_type{0, 1, 2, 4, 5, 6}));
}

TEST_F(Coarsen, ReportsWhatItDoes) {
  const Surface surface = plate(2, 1);
  QDL_Record *model = make_model(surface);
  EXPECT_EQ(QDL_TrimGeometry(model, "0.29,12.5,1"), 1);
  EXPECT_EQ(infos, (Texts{"Coarsening to resolution 28%% with face-angle 12.50 deg and co-linear "
                          "vertex removal",
                          "Preserving nodes: ", " NONE", "\nFace reduction from 2 to 2"}));
  expect_only_warnings({});
  EXPECT_EQ(QDL_IsCoarsened(model), 1) << "also when nothing is merged";
  infos.clear();

  // Interface nodes, then those of the text, stress, strain; none twice.
  QDL_AddNode(model, 99);
  const double six[6] = {};
  QDL_SetModeVec(model, 1, 51, 2, six);
  QDL_SetModeVec(model, 1, 41, 1, six);
  QDL_SetInterfaceNode(model, 31);
  infos.clear();
  EXPECT_EQ(QDL_TrimGeometry(model, "0.5 9 0 99 31 7 1 0 11 preserve_str"), 1);
  EXPECT_EQ(infos, (Texts{"Coarsening to resolution 50%% with face-angle  9.00 deg",
                          "Preserving nodes: ", "31 ", "99 ", "1 ", "41 ", "51 ",
                          "\nFace reduction from 2 to 1"}));
}

TEST_F(Coarsen, ReadsItsArguments) {
  const auto resolution = [](const std::string &percent) {
    return "Coarsening resolution outside the 0-50 percent range not supported.  You selected " +
           percent + "\n";
  };
  const auto angle = [](const std::string &degrees) {
    return "Face angles outside the 0-45 degree range not supported.  You selected " + degrees +
           "\n";
  };
  const auto start = [](const std::string &values) {
    return "Coarsening to resolution " + values + " deg";
  };
  const std::string colinear = " and co-linear vertex removal";
  const std::string usual = start("2%% with face-angle 10.00");
  struct Case {
    const char *text;
    Texts warnings;
    std::string start;
    Texts preserved = {" NONE"};
  };
  const std::string zeros(400, '0');
  const std::string none = "0." + zeros + "1,-1e+99999999999999999999";
  const std::string many = "1" + zeros + "e-5,-1e-99999999999999999999";
  const Case cases[] = {
      {"", {resolution("0.000000"), angle("0.000000")}, usual},
      {"0.7,60,0", {resolution("70.000000"), angle("60.000000")}, usual},
      {"0.8,60,1", {resolution("80.000000"), angle("60.000000")}, usual + colinear},
      {"-0.1;-5", {resolution("-10.000000"), angle("-5.000000")}, usual},
      {"0.5,45,0", {}, start("50%% with face-angle 45.00")},
      {" +1e-1/ 1.5E1 -3", {}, start("10%% with face-angle 15.00") + colinear},
      {".25,5.,0", {}, start("25%% with face-angle  5.00")},
      // What is no decimal number ends before it becomes one, and one more character goes.
      {"0x1,5", {resolution("0.000000")}, start("2%% with face-angle  1.00") + colinear},
      {"0.1e,5,1", {angle("0.000000")}, start("10%% with face-angle 10.00") + colinear, {"1 "}},
      {"inf,nan,1", {resolution("0.000000"), angle("0.000000")}, usual},
      {"1e999,1e-999", {resolution("inf"), angle("0.000000")}, usual},
      {none.c_str(), {resolution("0.000000"), angle("-inf")}, usual},
      {many.c_str(), {resolution("inf"), angle("-0.000000")}, usual},
      // Identifiers, up to 0 or the first text that is none.
      {"0.1,5,0,21,11", {}, start("10%% with face-angle  5.00"), {"21 ", "11 "}},
      {"0.1,5,0,99999999999,4294967307,11,0,21", {}, start("10%% with face-angle  5.00"), {"11 "}},
      {"0.1,5,0,preserve_str,11", {}, start("10%% with face-angle  5.00")},
      {"0.1,5,99999999999999999999,-11,11,x,21",
       {},
       start("10%% with face-angle  5.00") + colinear,
       {"11 "}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.text);
    clear_messages();
    EXPECT_EQ(QDL_TrimGeometry(make_model(plate(2, 1)), c.text), 1);
    EXPECT_EQ(warnings, c.warnings);
    Texts expected = {c.start, "Preserving nodes: "};
    expected.insert(expected.end(), c.preserved.begin(), c.preserved.end());
    infos.pop_back();  // the reduction
    EXPECT_EQ(infos, expected);
  }
}

TEST_F(Coarsen, RefusesFacesThatAreNotWhole) {
  struct Case {
    std::vector<int> list;
    int count;
  };
  const Case cases[] = {
      {{}, 0},           {{3, 0, 1, 6}, 1}, {{3, 0, 1, -1}, 1},
      {{4, 0, 1, 4}, 1}, {{3, 0, 1, 4}, 2}, {{3}, 1},
  };
  QDL_Record *model = make_model(plate(2, 1));
  for (const auto &[list, count] : cases) {
    model->faces = {list, count, true};
    EXPECT_EQ(QDL_TrimGeometry(model, "0.7"), 0) << "before its arguments are looked at";
    expect_only_error(kProblem);
    EXPECT_EQ(infos, Texts{});
    EXPECT_EQ(model->faces.list, list);
    EXPECT_EQ(QDL_IsCoarsened(model), 0);
    EXPECT_EQ(QDL_TrimGeometry(model, nullptr), 1);
    clear_messages();
  }
  EXPECT_EQ(QDL_TrimGeometry(QDL_Create(0, 0), "0.1,5,0"), 0);
  expect_only_error(kProblem);
}

TEST_F(Coarsen, BrokenFacesAndCoordinatesDoNoHarm) {
  // Counts below 1 have no nodes and do not come back.
  QDL_Record *model = make_model(plate(2, 1));
  model->faces = {{-4, 0, 1, 5, 2, 3, 4, 3, 0, 1, 4}, 5, true};
  EXPECT_EQ(QDL_TrimGeometry(model, "0.5,10,0"), 1);
  EXPECT_EQ(polygons_of(model), (Faces{{5}, {3, 4}, {0, 1, 4}}));

  for (const double value : {kNotANumber, HUGE_VAL, 1e150}) {
    Surface surface = plate(5, 5);
    surface.nodes[14] = {1.0, value, 2.0};
    surface.nodes[28] = {value, value, -value};
    expect_model_agrees(surface, {0.5, 10.0, true, {}});
  }
  Surface point = plate(3, 3);
  for (auto &node : point.nodes)
    node = {1.0, 1.0, 1.0};
  expect_model_agrees(point, {0.5, 10.0, false, {}});
}

// Work that grew with the square of the faces around a node or of the nodes of a face would take
// minutes here.
TEST_F(Coarsen, LargeFansAndFacesAreQuick) {
  constexpr int kSpokes = 60000;
  Surface open = wheel(kSpokes);
  open.faces.pop_back();
  std::mt19937 random(3);
  std::ranges::shuffle(open.faces, random);
  EXPECT_EQ(trimmed(open, "0.5,10,0,11").size(), 1U);

  // Two fans that have only the hub in common cannot be chained from anywhere.
  Surface two = wheel(kSpokes);
  std::erase_if(two.faces, [](const auto &face) {
    return face[1] == 1 || face[1] == kSpokes / 2 || face[1] == kSpokes / 3;
  });
  std::string all = "0.5,10,0";
  for (int i = 1; i <= kSpokes; ++i)
    all += "," + std::to_string(id_of(i));
  EXPECT_EQ(trimmed(two, all.c_str()), two.faces);

  // A face that has two nodes over and over, joined to another one by a node between them.
  Surface repeats = plate(2, 1);
  auto &face = repeats.faces[0] = {1, 4, 3};
  for (int i = 0; i < kSpokes; ++i)
    face.insert(face.end(), {0, 3});
  EXPECT_EQ(trimmed(repeats, "0.5,10,0,1,31,41,51,21").size(), 1U);
}

TEST_F(Coarsen, MemoryThatRunsOutLeavesTheFaces) {
  const Surface surface = plate(4, 4);
  bool while_preparing = false;
  sweep_job([&] { return make_model(surface); },
            [](QDL_Record *model) { return QDL_TrimGeometry(model, "0.5,10,1,11,preserve_str"); },
            [&](QDL_Record *model, bool done) {
              if (done)
                return;
              EXPECT_EQ(polygons_of(model), surface.faces);
              EXPECT_EQ(QDL_IsCoarsened(model), 0);
              EXPECT_TRUE(errors[0].starts_with(kMemory));
              EXPECT_TRUE(errors.size() == 1 || errors[1] == kProblem);
              while_preparing = while_preparing || errors.size() == 2;
            },
            {qdltest::Door::kMemory});
  EXPECT_TRUE(while_preparing);
}
