// Nodes near a point, beside a plain list of all distances.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "geometry/surface_fixture.h"

namespace {

using qdltest::Ints;
using Point = std::array<double, 3>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

class NearestNodes : public qdltest::SurfaceFixture {
 protected:
  static QDL_Record *model_at(const std::vector<Point> &places) {
    QDL_Record *model = QDL_Create(0, 0);
    for (const Point &place : places)
      set(model, QDL_NodeCount(model) + 1, place);
    return model;
  }

  static void set(QDL_Record *model, int id, const Point &place) {
    QDL_SetNodeCoordinates(model, id, place[0], place[1], place[2]);
  }

  static Ints closest(QDL_Record *model, const Point &point, int n, int interface_only = 0) {
    std::int32_t count = -1;
    std::int32_t *nodes = QDL_ClosestNodes(model, point.data(), n, interface_only, &count);
    return taken(nodes, count);
  }

  static Ints within(QDL_Record *model, const Point &point, double radius, int interface_only = 0) {
    std::int32_t count = -1;
    std::int32_t *nodes =
        QDL_ClosestNodesInNeighborhood(model, point.data(), radius, interface_only, &count);
    return taken(nodes, count);
  }
};

// All nodes, or the interface nodes, with their distance and their turn.
struct Candidate {
  double distance;
  std::int32_t turn, node;
};

std::vector<Candidate> candidates(const QDL_Record *model, const Point &point,
                                  bool interface_only) {
  Ints nodes = model->interface_nodes;
  if (!interface_only || nodes.empty()) {
    nodes.clear();
    for (std::int32_t node = 0; node < qdlflex::node_count(*model); ++node)
      nodes.push_back(node);
  }
  std::vector<Candidate> list;
  for (const std::int32_t node : nodes) {
    if (node == qdlflex::kUnknownNode)
      continue;
    const Point &place = model->nodes[static_cast<std::size_t>(node)].xyz;
    double sum = 0.0;
    for (std::size_t i = 0; i < 3; ++i)
      sum += (point[i] - place[i]) * (point[i] - place[i]);
    list.push_back(
        {std::isnan(sum) ? kInfinity : sum, static_cast<std::int32_t>(list.size()), node});
  }
  return list;
}

Ints nodes_of(const std::vector<Candidate> &list) {
  Ints nodes;
  for (const Candidate &candidate : list)
    nodes.push_back(candidate.node);
  return nodes;
}

Ints scan_closest(const QDL_Record *model, const Point &point, bool interface_only) {
  auto list = candidates(model, point, interface_only);
  std::ranges::stable_sort(list, {}, &Candidate::distance);
  return nodes_of(list);
}

Ints scan_within(const QDL_Record *model, const Point &point, double radius, bool interface_only) {
  auto list = candidates(model, point, interface_only);
  std::erase_if(list, [&](const Candidate &one) { return !(one.distance <= radius * radius); });
  std::ranges::reverse(list);
  std::ranges::stable_sort(list, {}, &Candidate::distance);
  return nodes_of(list);
}

}  // namespace

// On a grid most distances are shared; some places are taken twice and some are no places.
TEST_F(NearestNodes, AgreeWithAScanOfAllDistances) {
  std::mt19937 random(3);
  const std::array<double, 4> odd = {kNaN, kInfinity, -kInfinity, 1e200};
  const auto coordinate = [&](bool fine) {
    return fine ? std::uniform_real_distribution<double>(-1.0, 6.0)(random)
                : static_cast<double>(random() % 5);
  };
  for (int round = 0; round < 60; ++round) {
    std::vector<Point> places(1 + random() % (round % 2 == 0 ? 12 : 400));
    for (Point &place : places) {
      for (double &value : place)
        value = coordinate(round % 3 == 0);
      if (round % 5 == 0 && random() % 6 == 0)
        place[random() % 3] = odd[random() % odd.size()];
    }
    QDL_Record *model = model_at(places);
    for (std::size_t i = random() % 9; i > 0; --i)
      model->interface_nodes.push_back(static_cast<std::int32_t>(random() % (places.size() + 1)) -
                                       1);
    for (int query = 0; query < 40; ++query) {
      Point point = {coordinate(query % 2 == 0), coordinate(false), coordinate(query % 2 == 0)};
      if (query % 13 == 12)
        point[random() % 3] = odd[random() % odd.size()];
      const bool interface_only = query % 3 == 1;
      const Ints all = scan_closest(model, point, interface_only);
      const auto n = static_cast<std::int32_t>(1 + random() % (places.size() + 2));
      const double radius = static_cast<double>(random() % 5);
      SCOPED_TRACE(testing::Message() << "round " << round << " query " << query);
      ASSERT_EQ(QDL_ClosestNode(model, point.data(), interface_only), all.empty() ? -1 : all[0]);
      ASSERT_EQ(closest(model, point, n, interface_only),
                Ints(all.begin(), all.begin() + std::min<std::ptrdiff_t>(n, std::ssize(all))));
      ASSERT_EQ(within(model, point, radius, interface_only),
                scan_within(model, point, radius, interface_only));
    }
    EXPECT_FALSE(model->node_search.tree.boxes.empty());
    QDL_UnLink(model);
  }
  expect_no_messages();
}

TEST_F(NearestNodes, OrderEqualDistancesBothWays) {
  QDL_Record *model = model_at({{2, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {1, 0, 0}});
  for (int query = 0; query < 3; ++query) {
    EXPECT_EQ(QDL_ClosestNode(model, Point{}.data(), 0), 1);
    EXPECT_EQ(QDL_ClosestNode(model, Point{1, 0, 0}.data(), 0), 1);
    EXPECT_EQ(closest(model, {}, 3), (Ints{1, 2, 3}));
    EXPECT_EQ(closest(model, {}, std::numeric_limits<std::int32_t>::max()), (Ints{1, 2, 3, 4, 0}));
    EXPECT_EQ(within(model, {}, 1.0), (Ints{4, 3, 2, 1}));
    EXPECT_EQ(within(model, {}, -2.0), (Ints{4, 3, 2, 1, 0}));
    EXPECT_EQ(within(model, {}, 0.5), Ints{});
    EXPECT_EQ(within(model, {}, kNaN), Ints{});
  }
}

TEST_F(NearestNodes, LookAtTheInterfaceNodesWhereThereAreAny) {
  QDL_Record *model = model_at({{0, 0, 0}, {5, 0, 0}, {3, 0, 0}});
  EXPECT_EQ(QDL_ClosestNode(model, Point{}.data(), 1), 0);
  QDL_SetInterfaceNode(model, 2);
  EXPECT_EQ(QDL_ClosestNode(model, Point{}.data(), 1), 1);
  EXPECT_EQ(QDL_ClosestNode(model, Point{}.data(), 1), 1);
  QDL_SetInterfaceNode(model, 3);
  EXPECT_EQ(closest(model, {}, 9, 1), (Ints{2, 1}));
  EXPECT_EQ(closest(model, {}, 9, 0), (Ints{0, 2, 1}));
  // A list in which no entry is a node of the model leaves nothing to look at.
  model->interface_nodes = {qdlflex::kUnknownNode};
  model->interface_node_search = {};
  EXPECT_EQ(QDL_ClosestNode(model, Point{}.data(), 1), -1);
  EXPECT_EQ(closest(model, {}, 9, 1), Ints{});
}

TEST_F(NearestNodes, SeeNodesThatWereAddedMovedOrSwapped) {
  QDL_Record *model = model_at(std::vector<Point>(40, Point{9, 9, 9}));
  const auto nearest = [&] {
    for (int warm = 0; warm < 2; ++warm)
      QDL_ClosestNode(model, Point{}.data(), 0);
    EXPECT_FALSE(model->node_search.tree.boxes.empty());
    return QDL_ClosestNode(model, Point{}.data(), 0);
  };
  EXPECT_EQ(nearest(), 0);
  set(model, 31, {1, 0, 0});
  EXPECT_EQ(nearest(), 30);
  QDL_AddNode(model, 41);
  EXPECT_EQ(nearest(), 40);
  QDL_SwapNodesByID(model, 41, 8);
  EXPECT_EQ(nearest(), 7);
  std::array<char, 16> kilogram{"KILOGRAM"}, metre{"METER"}, second{"SECOND"}, newton{"NEWTON"},
      inch{"INCH"};
  QDL_SetUnits(model, kilogram.data(), metre.data(), second.data(), newton.data());
  EXPECT_EQ(within(model, {}, 1.0), (Ints{7, 30}));
  EXPECT_EQ(nearest(), 7);
  QDL_SetUnits(model, kilogram.data(), inch.data(), second.data(), newton.data());
  EXPECT_EQ(within(model, {}, 1.0), Ints{7});
}

TEST_F(NearestNodes, AnswerNothingWithoutPointOrNodes) {
  const Point origin{};
  QDL_Record *model = model_at({});
  for (const double *point : {origin.data(), static_cast<const double *>(nullptr)}) {
    EXPECT_EQ(QDL_ClosestNode(model, point, 0), -1);
    EXPECT_EQ(QDL_ClosestNodes(model, point, 1, 0, nullptr), nullptr);
    EXPECT_EQ(QDL_ClosestNodesInNeighborhood(model, point, 1.0, 0, nullptr), nullptr);
    set(model, 1, origin);
  }
  EXPECT_EQ(closest(model, origin, 0), Ints{});
  EXPECT_EQ(closest(model, origin, -1), Ints{});
  expect_no_messages();
}

// A tree that can't be made costs time only, a list cut short is still right as far as it goes.
TEST_F(NearestNodes, WithoutMemoryReportAndAnswerWhatTheyCan) {
  QDL_Record *model = model_of(50);
  const Point origin{};
  Ints one, several, around;
  const auto query = [&] {
    std::array<std::int32_t, 2> counts{};
    const std::int32_t first = QDL_ClosestNode(model, origin.data(), 0);
    std::int32_t *nodes = QDL_ClosestNodes(model, origin.data(), 4, 0, &counts[0]);
    std::int32_t *hits = QDL_ClosestNodesInNeighborhood(model, origin.data(), 30.0, 0, &counts[1]);
    const qdltest::PauseFaults pause;
    one = {first};
    several = taken(nodes, counts[0]);
    around = taken(hits, counts[1]);
    return 0;
  };
  const std::size_t faults = qdltest::sweep(
      qdltest::Door::kMemory, qdltest::Persistence::kOnce, query, [&](int, bool fired) {
        EXPECT_EQ(one, Ints{0});
        EXPECT_TRUE(several.empty() || several == (Ints{0, 1, 2, 3}));
        EXPECT_TRUE(std::ranges::is_sorted(around));
        EXPECT_TRUE(std::ranges::includes(scan_within(model, origin, 30.0, false), around));
        EXPECT_LE(errors.size(), 1U);
        if (!fired) {
          EXPECT_EQ(several.size(), 4U);
          EXPECT_EQ(around.size(), 30U);
          EXPECT_EQ(errors.size(), 0U);
        }
        clear_messages();
        model->node_search = {};
      });
  EXPECT_GE(faults, 6U);
}
