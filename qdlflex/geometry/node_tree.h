#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "record/node_search.h"
#include "record/record.h"

namespace qdlflex {

/// The square of the distance between two points; infinite where it is not a number.
double squared_distance(const Vector3 &a, const Vector3 &b);

/// A lower bound of squared_distance(), rounding included, between a point and what the box holds.
/// Points without a finite place are in no box but infinitely far from everything.
double squared_distance(const Vector3 &point, const NodeTree::Box &box);

NodeTree make_node_tree(std::vector<NodeTree::Point> points);

/// Offers the points of the tree to `hits`, nearer boxes first, except for boxes in which
/// `hits.may_take(distance, rank)` is false for a lower bound of both. The order of the calls
/// `hits.offer(distance, rank)` is not that of the ranks.
template <class Hits>
void search_tree(const NodeTree &tree, const Vector3 &place, Hits &hits) {
  struct Pending {
    std::int32_t box;
    double distance;
  };
  // Halving leaves no tree deeper than the bits of an index.
  Pending pending[64];
  std::size_t count = 0;
  if (!tree.boxes.empty())
    pending[count++] = {0, squared_distance(place, tree.boxes[0])};
  while (count > 0) {
    auto [index, distance] = pending[--count];
    const NodeTree::Box *box = &tree.boxes[static_cast<std::size_t>(index)];
    while (hits.may_take(distance, box->first_rank) && box->right != 0) {
      Pending near = {index + 1, 0.0};
      Pending far = {box->right, 0.0};
      for (Pending *half : {&near, &far})
        half->distance = squared_distance(place, tree.boxes[static_cast<std::size_t>(half->box)]);
      if (far.distance < near.distance)
        std::swap(near, far);
      pending[count++] = far;
      index = near.box;
      distance = near.distance;
      box = &tree.boxes[static_cast<std::size_t>(index)];
    }
    if (box->right != 0 || !hits.may_take(distance, box->first_rank))
      continue;
    for (std::int32_t i = box->begin; i < box->end; ++i) {
      const NodeTree::Point &point = tree.points[static_cast<std::size_t>(i)];
      hits.offer(squared_distance(place, point.xyz), point.rank);
    }
  }
}

}  // namespace qdlflex
