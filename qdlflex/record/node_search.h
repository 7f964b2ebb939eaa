#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace qdlflex {

/// A binary tree over the places of some nodes. Every box spans the points from `begin` to `end`;
/// its left half is the next box, its right half the box at `right`. A box without halves has 0
/// there.
struct NodeTree {
  struct Point {
    std::array<double, 3> xyz{};
    std::int32_t rank = 0;  // place in the order in which the nodes are looked at
  };
  struct Box {
    std::array<double, 3> low{};
    std::array<double, 3> high{};
    std::int32_t first_rank = 0;  // smallest among its points
    std::int32_t begin = 0;
    std::int32_t end = 0;
    std::int32_t right = 0;
  };
  std::vector<Point> points;
  std::vector<Box> boxes;
};

/// What queries for near nodes keep for the next one.
struct NodeSearch {
  NodeTree tree;             // empty until it is worth its making
  bool was_scanned = false;  // a query has looked at every node
};

}  // namespace qdlflex
