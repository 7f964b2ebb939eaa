// Faces between two elements: named cases, and random lists beside a plain reading of the rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

#include "geometry/surface_fixture.h"

namespace {

using qdltest::Ints;
using Faces = std::vector<Ints>;

class StripFaces : public qdltest::SurfaceFixture {
 protected:
  static Faces stripped(const Faces &faces, int nodes = 9) {
    QDL_Record *model = model_with(nodes, faces);
    QDL_StripCommonFaces(model);
    Faces left = faces_of(model);
    QDL_UnLink(model);
    return left;
  }
};

// A face that was turned to begin at its largest node, and that turned one read the other way.
struct Seen {
  std::int32_t count;
  Ints reading, own;
  bool flag;

  explicit Seen(const Ints &face) : count(face[0]), own(face.begin() + 1, face.end()), flag(false) {
    if (own.empty())
      return;
    std::rotate(own.begin(), std::max_element(own.begin(), own.end()), own.end());
    flag = own.size() > 1 && own[1] > own.back();
    reading = own;
    if (!flag)
      std::reverse(reading.begin() + 1, reading.end());
  }
};

Faces strip_plainly(const Faces &faces) {
  std::vector<Seen> seen(faces.begin(), faces.end());
  std::stable_sort(seen.begin(), seen.end(), [](const Seen &a, const Seen &b) {
    return std::tie(a.count, a.reading) < std::tie(b.count, b.reading);
  });
  const auto same = [&](std::size_t i, std::size_t j) {
    return seen[i].count == seen[j].count && seen[i].reading == seen[j].reading;
  };
  Ints kept;
  const std::size_t n = seen.size();
  std::size_t cursor = 0;
  while (cursor + 1 < n) {
    if (!same(cursor, cursor + 1)) {
      kept.push_back(static_cast<std::int32_t>(cursor));
      cursor += 1;
    } else if (seen[cursor].flag == seen[cursor + 1].flag) {
      cursor += 1;
    } else {
      cursor += 2;
    }
  }
  if (n == 1 || !same(n - 2, n - 1) || seen[n - 2].flag == seen[n - 1].flag)
    kept.push_back(static_cast<std::int32_t>(n - 1));
  Faces left;
  for (const std::int32_t i : kept) {
    const Seen &face = seen[static_cast<std::size_t>(i)];
    left.push_back({face.count});
    left.back().insert(left.back().end(), face.own.begin(), face.own.end());
  }
  return left;
}

}  // namespace

TEST_F(StripFaces, LeavesTheOutsideOfTwoHexahedra) {
  // Nodes 0 to 3, 4 to 7 and 8 to 11 are three layers.
  QDL_Record *model = model_of(12);
  set_faces(model, {{4, 3, 2, 1, 0},
                    {4, 0, 1, 5, 4},
                    {4, 1, 2, 6, 5},
                    {4, 2, 3, 7, 6},
                    {4, 3, 0, 4, 7},
                    {4, 4, 5, 6, 7},
                    {4, 7, 6, 5, 4},
                    {4, 4, 5, 9, 8},
                    {4, 5, 6, 10, 9},
                    {4, 6, 7, 11, 10},
                    {4, 7, 4, 8, 11},
                    {4, 8, 9, 10, 11}});
  QDL_StripCommonFaces(model);
  EXPECT_EQ(infos, std::vector<std::string>{"Stripping interior faces\n"});
  const Faces left = {{4, 3, 2, 1, 0},   {4, 5, 4, 0, 1},  {4, 6, 5, 1, 2},  {4, 7, 3, 0, 4},
                      {4, 7, 6, 2, 3},   {4, 9, 8, 4, 5},  {4, 10, 9, 5, 6}, {4, 11, 7, 4, 8},
                      {4, 11, 10, 6, 7}, {4, 11, 8, 9, 10}};
  EXPECT_EQ(faces_of(model), left);

  // Once is enough, whatever is added later.
  QDL_SetFace(model, 3, 1, 2, 3);
  QDL_SetFace(model, 3, 3, 2, 1);
  QDL_StripCommonFaces(model);
  EXPECT_EQ(faces_of(model).size(), left.size() + 2);
  EXPECT_EQ(infos.size(), 1U);
}

TEST_F(StripFaces, JudgesRepeatedFacesByTheirWinding) {
  const Ints a = {3, 5, 4, 2};
  const Ints b = {3, 2, 4, 5};
  const Ints b_turned = {3, 5, 2, 4};
  EXPECT_EQ(stripped({a}), Faces{a});
  EXPECT_EQ(stripped({a, a}), Faces{a});
  EXPECT_EQ(stripped({a, b}), Faces{});
  EXPECT_EQ(stripped({a, a, b}), Faces{});
  EXPECT_EQ(stripped({b, a, a}), Faces{a});
  EXPECT_EQ(stripped({a, b, a}), Faces{});
  EXPECT_EQ(stripped({b, b}), Faces{b_turned});
  // Lines and points have no winding; a count without nodes is a face of its own kind.
  EXPECT_EQ(stripped({{2, 1, 2}, {2, 2, 1}, {1, 3}, {1, 3}}), (Faces{{1, 3}, {2, 2, 1}}));
  EXPECT_EQ(stripped({{0}, {-7}, {0}, {1, 1}}), (Faces{{-7}, {0}, {1, 1}}));
}

TEST_F(StripFaces, OrdersByCountThenLargestNodeThenReading) {
  EXPECT_EQ(
      stripped({{4, 0, 1, 2, 3}, {3, 8, 1, 0}, {4, 8, 6, 1, 2}, {4, 8, 2, 1, 5}, {3, 0, 1, 7}}),
      (Faces{{3, 7, 0, 1}, {3, 8, 1, 0}, {4, 3, 0, 1, 2}, {4, 8, 2, 1, 5}, {4, 8, 6, 1, 2}}));
}

TEST_F(StripFaces, AgreesWithThePlainReadingOfTheRules) {
  std::mt19937 random(7);
  const auto below = [&](std::uint32_t limit) {
    return static_cast<std::int32_t>(random() % limit);
  };
  for (int round = 0; round < 5000; ++round) {
    // Few nodes make many repeated faces; some lie outside of the model's six.
    const auto nodes = static_cast<std::uint32_t>(3 + below(5));
    const bool hostile = round % 4 == 0;
    Faces faces(static_cast<std::size_t>(1 + below(12)));
    for (Ints &face : faces) {
      face = {hostile ? below(8) - 2 : 3 + below(2)};
      for (int i = 0; i < face[0]; ++i) {
        std::int32_t node = below(nodes);
        if (hostile && below(20) == 0)
          node = below(2) == 0 ? -5 : 2000000000;
        face.push_back(node);
      }
    }
    ASSERT_EQ(stripped(faces, 6), strip_plainly(faces)) << "round " << round;
    clear_messages();
  }
}

TEST_F(StripFaces, ReportsAListWithoutFacesLikeMissingMemory) {
  QDL_Record *model = model_of(3);
  QDL_StripCommonFaces(model);
  EXPECT_EQ(infos, std::vector<std::string>{});
  expect_no_memory("qdltools");
  QDL_SetFace(model, 3, 1, 2, 3);
  QDL_StripCommonFaces(model);
  EXPECT_EQ(faces_of(model), (Faces{{3, 2, 0, 1}}));
}

TEST_F(StripFaces, LeavesTheFacesWhenMemoryRunsOut) {
  const Faces faces = {{3, 0, 1, 2}, {3, 2, 1, 0}, {4, 0, 1, 2, 3}};
  sweep_job([&] { return model_with(4, faces); },
            [](QDL_Record *model) {
              QDL_StripCommonFaces(model);
              return model->interior_faces_stripped ? 1 : 0;
            },
            [&](QDL_Record *model, bool done) {
              EXPECT_EQ(faces_of(model), done ? (Faces{{4, 3, 0, 1, 2}}) : faces);
              EXPECT_EQ(infos.size(), done ? 1U : 0U);
              if (!done)
                expect_no_memory("qdltools");
            },
            {qdltest::Door::kMemory});
}
