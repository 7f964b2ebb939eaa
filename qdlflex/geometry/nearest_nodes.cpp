// Bentley, "Multidimensional binary search trees used for associative searching", Comm. ACM 18
// (1975); here with the box of its points in every node of the tree.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "geometry/node_tree.h"
#include "support/allocate.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A node that a query looks at, by its rank in the order of looking.
struct Hit {
  double distance = kInfinity;  // squared
  std::int32_t rank = std::numeric_limits<std::int32_t>::max();

  // The check takes what the compiler makes of this for a null pointer.
  friend auto operator<=>(const Hit &, const Hit &) = default;  // NOLINT(modernize-use-nullptr)
};

/// The nodes that a query looks at: the interface nodes where they are wanted and there are any,
/// else all nodes. An interface node that the model does not have is left out.
class Candidates {
 public:
  Candidates(QDL_Record &record, bool interface_only)
      : record_(record), interface_only_(interface_only && !record.interface_nodes.empty()) {}

  std::size_t limit() const {
    return interface_only_ ? record_.interface_nodes.size() : record_.nodes.size();
  }

  std::int32_t node(std::int32_t rank) const {
    return interface_only_ ? record_.interface_nodes[static_cast<std::size_t>(rank)] : rank;
  }

  /// Offers all candidates to `hits`, or at least all that they may take. The first query after a
  /// change of the nodes looks at each of them; for more than one it is worth to make a tree.
  template <class Hits>
  void search(const Vector3 &place, Hits &hits) const {
    NodeSearch &kept = interface_only_ ? record_.interface_node_search : record_.node_search;
    if (std::exchange(kept.was_scanned, true) && kept.tree.boxes.empty())
      with_memory([&] { kept.tree = make_node_tree(points()); });
    if (!kept.tree.boxes.empty()) {
      search_tree(kept.tree, place, hits);
      return;
    }
    for_each([&](const Vector3 &xyz, std::int32_t rank) {
      hits.offer(squared_distance(place, xyz), rank);
    });
  }

 private:
  template <class Visit>
  void for_each(Visit visit) const {
    const auto end = static_cast<std::int32_t>(limit());
    for (std::int32_t rank = 0; rank < end; ++rank) {
      if (is_node_index(record_, node(rank)))
        visit(record_.nodes[static_cast<std::size_t>(node(rank))].xyz, rank);
    }
  }

  std::vector<NodeTree::Point> points() const {
    std::vector<NodeTree::Point> points;
    points.reserve(limit());
    for_each([&](const Vector3 &xyz, std::int32_t rank) { points.push_back({xyz, rank}); });
    return points;
  }

  QDL_Record &record_;
  bool interface_only_;
};

class Nearest {
 public:
  bool may_take(double distance, std::int32_t rank) const { return Hit{distance, rank} < best; }
  void offer(double distance, std::int32_t rank) { best = std::min(best, Hit{distance, rank}); }

  Hit best;
};

/// The nearest so many, as a heap whose front is the first to be replaced.
class NearestOf {
 public:
  explicit NearestOf(std::size_t wanted) : wanted_(wanted) { hits.reserve(wanted); }

  bool may_take(double distance, std::int32_t rank) const {
    return hits.size() < wanted_ || Hit{distance, rank} < hits.front();
  }

  void offer(double distance, std::int32_t rank) {
    if (!may_take(distance, rank))
      return;
    if (hits.size() == wanted_) {
      std::ranges::pop_heap(hits);
      hits.back() = {distance, rank};
    } else {
      hits.push_back({distance, rank});
    }
    std::ranges::push_heap(hits);
  }

  std::vector<Hit> hits;

 private:
  std::size_t wanted_;
};

class WithinRadius {
 public:
  explicit WithinRadius(double radius) : limit_(radius * radius) {}

  bool may_take(double distance, std::int32_t /*rank*/) const { return distance <= limit_; }

  void offer(double distance, std::int32_t rank) {
    if (distance <= limit_)
      hits.push_back({distance, rank});
  }

  std::vector<Hit> hits;

 private:
  double limit_;
};

Vector3 place_at(const double *point) {
  return {point[0], point[1], point[2]};
}

CallerArray<std::int32_t> nodes_of(const std::vector<Hit> &hits, const Candidates &candidates) {
  auto nodes = caller_array<std::int32_t>(hits.size());
  std::ranges::transform(hits, nodes.get(),
                         [&](const Hit &hit) { return candidates.node(hit.rank); });
  return nodes;
}

std::int32_t closest_node(QDL_Record &record, const double *point, bool interface_only) {
  const Candidates candidates(record, interface_only);
  Nearest nearest;
  candidates.search(place_at(point), nearest);
  return nearest.best == Hit{} ? kUnknownNode : candidates.node(nearest.best.rank);
}

/// Out of memory, what was found until then is returned.
std::int32_t *nodes_within(QDL_Record &record, const double *point, double radius,
                           bool interface_only, std::int32_t &count) {
  const Candidates candidates(record, interface_only);
  WithinRadius within(radius);
  CallerArray<std::int32_t> nodes;
  const bool found_all = with_memory([&] { candidates.search(place_at(point), within); });
  std::ranges::sort(within.hits, [](const Hit &a, const Hit &b) {
    return a.distance != b.distance ? a.distance < b.distance : a.rank > b.rank;
  });
  const bool copied = with_memory([&] { nodes = nodes_of(within.hits, candidates); });
  if (!found_all || !copied)
    report_allocation_failure(__LINE__, kArea);
  count = nodes == nullptr ? 0 : static_cast<std::int32_t>(within.hits.size());
  return nodes.release();
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ClosestNode(QDL_Record *model, const double *point, int32_t interfaceOnly) {
  return with_model(model, kArea, kUnknownNode, [&](QDL_Record &record) {
    return point == nullptr ? kUnknownNode : closest_node(record, point, interfaceOnly != 0);
  });
}

int32_t *QDL_ClosestNodes(QDL_Record *model, const double *point, int32_t n, int32_t interfaceOnly,
                          int32_t *count) {
  if (count != nullptr)
    *count = 0;
  return with_model(model, kArea, static_cast<int32_t *>(nullptr), [&](QDL_Record &record) {
    const Candidates candidates(record, interfaceOnly != 0);
    const std::size_t wanted =
        std::min(static_cast<std::size_t>(std::max(n, 0)), candidates.limit());
    if (wanted == 0 || point == nullptr)
      return static_cast<int32_t *>(nullptr);
    NearestOf nearest(wanted);
    candidates.search(place_at(point), nearest);
    std::ranges::sort_heap(nearest.hits);
    auto nodes = nodes_of(nearest.hits, candidates);
    if (count != nullptr)
      *count = static_cast<int32_t>(nearest.hits.size());
    return nodes.release();
  });
}

int32_t *QDL_ClosestNodesInNeighborhood(QDL_Record *model, const double *point, double radius,
                                        int32_t interfaceOnly, int32_t *count) {
  int32_t found = 0;
  int32_t *nodes =
      with_model(model, kArea, static_cast<int32_t *>(nullptr), [&](QDL_Record &record) {
        return point == nullptr ? nullptr
                                : nodes_within(record, point, radius, interfaceOnly != 0, found);
      });
  if (count != nullptr)
    *count = found;
  return nodes;
}
