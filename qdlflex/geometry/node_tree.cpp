#include "geometry/node_tree.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

#include "support/finite.h"

namespace qdlflex {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kLeafPoints = 8;

NodeTree::Box box_around(std::span<const NodeTree::Point> points) {
  NodeTree::Box box;
  box.low.fill(kInfinity);
  box.high.fill(-kInfinity);
  box.first_rank = std::numeric_limits<std::int32_t>::max();
  for (const NodeTree::Point &point : points) {
    box.first_rank = std::min(box.first_rank, point.rank);
    if (!is_finite(point.xyz))
      continue;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box.low[axis] = std::min(box.low[axis], point.xyz[axis]);
      box.high[axis] = std::max(box.high[axis], point.xyz[axis]);
    }
  }
  return box;
}

std::size_t longest_axis(const NodeTree::Box &box) {
  std::size_t longest = 0;
  for (std::size_t axis = 1; axis < 3; ++axis) {
    if (box.high[axis] - box.low[axis] > box.high[longest] - box.low[longest])
      longest = axis;
  }
  return longest;
}

void add_boxes(NodeTree &tree, std::size_t begin, std::size_t end) {
  const std::span<NodeTree::Point> points = std::span(tree.points).subspan(begin, end - begin);
  const std::size_t index = tree.boxes.size();
  NodeTree::Box &box = tree.boxes.emplace_back(box_around(points));
  box.begin = static_cast<std::int32_t>(begin);
  box.end = static_cast<std::int32_t>(end);
  if (points.size() <= kLeafPoints)
    return;
  // Numbers only: what is no number goes last. Points in one place are halved by rank.
  const auto key = [axis = longest_axis(box)](const NodeTree::Point &point) {
    const double value = point.xyz[axis];
    return std::pair(std::isnan(value) ? kInfinity : value, point.rank);
  };
  const std::size_t half = points.size() / 2;
  std::nth_element(
      points.begin(), points.begin() + static_cast<std::ptrdiff_t>(half), points.end(),
      [&](const NodeTree::Point &a, const NodeTree::Point &b) { return key(a) < key(b); });
  add_boxes(tree, begin, begin + half);
  tree.boxes[index].right = static_cast<std::int32_t>(tree.boxes.size());
  add_boxes(tree, begin + half, end);
}

double squared_length(double x, double y, double z) {
  const double square = x * x + y * y + z * z;
  return std::isnan(square) ? kInfinity : square;
}

}  // namespace

double squared_distance(const Vector3 &a, const Vector3 &b) {
  return squared_length(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
}

/// Each difference is rounded like that to a point in the box and is not larger, and rounding keeps
/// that order through squares and sums.
double squared_distance(const Vector3 &point, const NodeTree::Box &box) {
  const auto outside = [&](std::size_t axis) {
    if (point[axis] < box.low[axis])
      return box.low[axis] - point[axis];
    return point[axis] > box.high[axis] ? point[axis] - box.high[axis] : 0.0;
  };
  return squared_length(outside(0), outside(1), outside(2));
}

NodeTree make_node_tree(std::vector<NodeTree::Point> points) {
  NodeTree tree;
  tree.points = std::move(points);
  tree.boxes.reserve(tree.points.size() / kLeafPoints * 4 + 1);
  if (!tree.points.empty())
    add_boxes(tree, 0, tree.points.size());
  return tree;
}

}  // namespace qdlflex
