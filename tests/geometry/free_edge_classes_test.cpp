#include <gtest/gtest.h>
#include <qdlflex/free_edges.hpp>

#include <climits>
#include <list>
#include <memory>
#include <random>
#include <vector>

#include "geometry/free_edges_model.h"

namespace {

using qdltest::Chains;
using qdltest::Faces;
using Keys = std::list<int>;

Chains find(const Faces &faces) {
  std::vector<int> list = qdltest::face_list(faces);
  cQDLFreeEdges graph;
  graph.FindFreeEdges(static_cast<int>(faces.size()), list.data());
  Chains chains;
  for (const std::list<int> &chain : graph.GetFreeEdges())
    chains.emplace_back(chain.begin(), chain.end());
  return chains;
}

}  // namespace

TEST(FreeEdgeClasses, AnEdgeLinksItselfIntoBothNodesWhileItLives) {
  cQDLNode twelve(12);
  cQDLNode seven(7);
  EXPECT_EQ(seven.ID(), 7);
  {
    cQDLEdge edge(&twelve, &seven);
    EXPECT_EQ(edge.Key(), "7_12");
    EXPECT_EQ(edge.GetAnotherNode(&seven), &twelve);
    EXPECT_EQ(edge.GetAnotherNode(&twelve), &seven);
    EXPECT_EQ(edge.RefCount(), 1);
    EXPECT_EQ(edge.AddRef(), 2);
    EXPECT_EQ(edge.RefCount(), 2);
    EXPECT_EQ(seven.EdgeCount(), 1);
    EXPECT_EQ(twelve.EdgeCount(), 1);

    // Unlinking takes every occurrence.
    seven.AddLinkedEdge(&edge);
    EXPECT_EQ(seven.EdgeCount(), 2);
    seven.RemoveLinkedEdge(&edge);
    EXPECT_EQ(seven.EdgeCount(), 0);
  }
  EXPECT_EQ(twelve.EdgeCount(), 0);

  cQDLNode negative(-3);
  EXPECT_EQ(cQDLEdge(&seven, &negative).Key(), "-3_7");

  // Of equal keys the second node is the first one, which nothing but the other end shows.
  cQDLNode twin(7);
  const cQDLEdge between_twins(&seven, &twin);
  EXPECT_EQ(between_twins.Key(), "7_7");
  EXPECT_EQ(between_twins.GetAnotherNode(&twin), &seven);

  const cQDLEdge loop(&twelve, &twelve);
  EXPECT_EQ(twelve.EdgeCount(), 2);
  EXPECT_EQ(loop.GetAnotherNode(&twelve), &twelve);
}

TEST(FreeEdgeClasses, ANodeCrossesToItsSmallestNeighbourFirst) {
  cQDLNode hub(5);
  cQDLNode one(1);
  cQDLNode nine(9);
  const cQDLEdge first(&hub, &nine);
  auto second = std::make_unique<cQDLEdge>(&one, &hub);
  const cQDLEdge again(&nine, &hub);
  EXPECT_EQ(hub.GetConnectedNode(), &one);
  EXPECT_EQ(one.EdgeCount(), 0);
  second.reset();
  // Two edges to one neighbour go in the order of linking, one at a time.
  EXPECT_EQ(hub.GetConnectedNode(), &nine);
  EXPECT_EQ(nine.EdgeCount(), 1);
  EXPECT_EQ(nine.GetConnectedNode(), &hub);
  EXPECT_EQ(hub.EdgeCount(), 0);
  EXPECT_EQ(hub.GetConnectedNode(), nullptr);
  EXPECT_EQ(hub.FindFreeEdge(), Keys{5});
}

TEST(FreeEdgeClasses, ChainsOfSmallSurfaces) {
  EXPECT_EQ(find({}), Chains{});
  EXPECT_EQ(find({{1, 2, 3, 4}}), (Chains{{1, 2, 3, 4, 1}}));
  EXPECT_EQ(find({{4, 3, 2, 1}}), (Chains{{1, 2, 3, 4, 1}}));
  EXPECT_EQ(find({{0, 1, 2}, {1, 3, 2}}), (Chains{{0, 1, 3, 2, 0}}));
  EXPECT_EQ(find({{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 2}}), Chains{});
  EXPECT_EQ(find({{0, 1}, {5}, {}}), Chains{});
  // Two loops that touch: their common node begins one and lies on the other.
  EXPECT_EQ(find({{0, 1, 2}, {0, 3, 4}}), (Chains{{0, 1, 2, 0}, {3, 0, 4, 3}}));
  // It is passed through last: the first walk stops there, the second one closes.
  EXPECT_EQ(find({{0, 1, 4}, {2, 3, 4}}), (Chains{{4, 0, 1, 4}, {2, 3, 4, 2}}));
  // A face that names a node twice in a row has an edge from it to itself.
  EXPECT_EQ(find({{6, 6, 7}}), (Chains{{6, 6}}));
}

TEST(FreeEdgeClasses, EachSearchStartsAnewAndACountBelowOneStandsAlone) {
  std::vector<int> list = {-5, 3, 1, 2, 3, 0, 2, 8, 9};
  cQDLFreeEdges graph;
  for (int round = 0; round < 2; ++round) {
    graph.FindFreeEdges(4, list.data());
    EXPECT_EQ(graph.GetFreeEdges(), (std::vector<Keys>{{1, 2, 3, 1}}));
  }
  graph.FindFreeEdges(0, nullptr);
  EXPECT_EQ(graph.GetFreeEdges(), std::vector<Keys>{});
}

TEST(FreeEdgeClasses, RandomFacesHaveTheChainsOfTheModel) {
  std::mt19937 random(20);
  const auto below = [&](int limit) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  };
  // Keys of a list, and keys at the ends of the numbers.
  const std::vector<int> ends = {INT_MIN, INT_MIN + 1, -7,      -1,          0,
                                 1,       2,           1 << 30, INT_MAX - 1, INT_MAX};
  for (int round = 0; round < 4000; ++round) {
    const bool at_ends = round % 4 == 0;
    const int nodes = at_ends ? static_cast<int>(ends.size()) : 4 + below(12);
    Faces faces(static_cast<std::size_t>(1 + below(12)));
    for (auto &face : faces) {
      face.resize(static_cast<std::size_t>(below(10) == 0 ? below(9) : 3 + below(2)));
      for (int &key : face) {
        key = below(nodes);
        if (at_ends)
          key = ends[static_cast<std::size_t>(key)];
      }
    }
    ASSERT_EQ(find(faces), qdltest::free_edges_of(faces)) << "round " << round;
  }
}

// Every walk arrives at the hub: a search through all its edges each time would take minutes.
TEST(FreeEdgeClasses, AFanOfSeparateTrianglesIsQuick) {
  constexpr int kTriangles = 100000;
  Faces faces;
  for (int i = 0; i < kTriangles; ++i)
    faces.push_back({2 * kTriangles, 2 * i, 2 * i + 1});
  const Chains chains = find(faces);
  ASSERT_EQ(chains.size(), static_cast<std::size_t>(kTriangles));
  EXPECT_EQ(chains[7], (std::vector<int>{200000, 14, 15, 200000}));
  EXPECT_EQ(chains.back(), (std::vector<int>{199998, 199999, 200000, 199998}));
}
