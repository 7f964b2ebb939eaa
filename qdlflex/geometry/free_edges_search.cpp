#include <algorithm>
#include <span>

#include <qdlflex/free_edges.hpp>

namespace qdlflex {
namespace {

using Ends = std::uint64_t;

Ends pack(int a, int b) {
  const auto [smaller, larger] = std::minmax(a, b);
  return Ends{static_cast<std::uint32_t>(smaller)} << 32 | static_cast<std::uint32_t>(larger);
}

int smaller_key(Ends ends) {
  return static_cast<int>(static_cast<std::uint32_t>(ends >> 32));
}

int larger_key(Ends ends) {
  return static_cast<int>(static_cast<std::uint32_t>(ends));
}

/// Calls `visit` with the keys of every face that has edges.
template <class Visit>
void for_each_face(int face_count, const int *list, Visit visit) {
  constexpr int kFewestNodes = 3;
  for (int face = 0; face < face_count; ++face) {
    const int nodes = std::max(*list++, 0);
    if (nodes >= kFewestNodes)
      visit(std::span(list, static_cast<std::size_t>(nodes)));
    list += nodes;
  }
}

std::size_t edge_count(int face_count, const int *list) {
  std::size_t count = 0;
  for_each_face(face_count, list, [&](std::span<const int> face) { count += face.size(); });
  return count;
}

struct PlacedEdge {
  Ends ends = 0;
  std::size_t place = 0;
};

/// Distributes edges over as many groups as there are edges, by equal ranges of the smaller key:
/// equal edges meet in one group. Where keys are node indices a group has a few edges.
class KeyRanges {
 public:
  explicit KeyRanges(std::span<const Ends> edges) : KeyRanges(extremes(edges), edges.size()) {}

  std::size_t count() const { return count_; }
  std::size_t of(Ends ends) const {
    return static_cast<std::size_t>(smaller_key(ends) - lowest_) >> shift_;
  }

 private:
  struct Extremes {
    std::int64_t lowest = 0;
    std::int64_t highest = 0;
  };

  static Extremes extremes(std::span<const Ends> edges) {
    const auto by_key = [](Ends a, Ends b) { return smaller_key(a) < smaller_key(b); };
    const auto [lowest, highest] = std::ranges::minmax_element(edges, by_key);
    return {smaller_key(*lowest), smaller_key(*highest)};
  }

  KeyRanges(const Extremes &keys, std::size_t edges) : lowest_(keys.lowest) {
    const auto range = static_cast<std::uint64_t>(keys.highest - keys.lowest);
    while (range >> shift_ >= edges)
      ++shift_;
    count_ = static_cast<std::size_t>(range >> shift_) + 1;
  }

  std::int64_t lowest_ = 0;
  int shift_ = 0;
  std::size_t count_ = 0;
};

/// Marks the edges that occur once.
std::vector<bool> single_edges(std::span<const Ends> edges) {
  std::vector<bool> single(edges.size());
  const KeyRanges ranges(edges);
  std::vector<std::size_t> group_ends(ranges.count() + 1);
  for (const Ends ends : edges)
    ++group_ends[ranges.of(ends) + 1];
  for (std::size_t group = 1; group < group_ends.size(); ++group)
    group_ends[group] += group_ends[group - 1];
  // Filling a group moves its begin to its end.
  std::vector<PlacedEdge> grouped(edges.size());
  for (std::size_t place = 0; place < edges.size(); ++place)
    grouped[group_ends[ranges.of(edges[place])]++] = {edges[place], place};

  auto first = grouped.begin();
  for (std::size_t group = 0; group < ranges.count(); ++group) {
    const auto last = grouped.begin() + static_cast<std::ptrdiff_t>(group_ends[group]);
    std::sort(first, last,
              [](const PlacedEdge &a, const PlacedEdge &b) { return a.ends < b.ends; });
    while (first != last) {
      const auto next = std::find_if(
          first + 1, last, [&](const PlacedEdge &edge) { return edge.ends != first->ends; });
      single[first->place] = next - first == 1;
      first = next;
    }
  }
  return single;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

cQDLFreeEdges::cQDLFreeEdges() = default;
cQDLFreeEdges::~cQDLFreeEdges() = default;

void cQDLFreeEdges::FindFreeEdges(int faceCount, int *faceList) {
  free_edges_.clear();
  PopulateEdges(faceCount, faceList);
  RemoveInternalEdges();
  GenerateFreeEdgeList();
}

std::vector<std::list<int>> cQDLFreeEdges::GetFreeEdges() {
  return free_edges_;
}

void cQDLFreeEdges::PopulateEdges(int faceCount, const int *faceList) {
  face_edges_.clear();
  face_edges_.reserve(edge_count(faceCount, faceList));
  for_each_face(faceCount, faceList, [&](std::span<const int> face) {
    for (std::size_t i = 1; i < face.size(); ++i)
      face_edges_.push_back(pack(face[i - 1], face[i]));
    face_edges_.push_back(pack(face.back(), face.front()));
  });
}

void cQDLFreeEdges::RemoveInternalEdges() {
  if (face_edges_.empty())
    return;
  const std::vector<bool> single = single_edges(face_edges_);
  std::size_t kept = 0;
  for (std::size_t place = 0; place < face_edges_.size(); ++place) {
    if (single[place])
      face_edges_[kept++] = face_edges_[place];
  }
  face_edges_.resize(kept);
}

void cQDLFreeEdges::AddNodes() {
  std::vector<int> keys;
  keys.reserve(2 * face_edges_.size());
  for (const Ends ends : face_edges_) {
    keys.push_back(smaller_key(ends));
    keys.push_back(larger_key(ends));
  }
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  for (const int key : keys)
    nodes_.emplace_back(key);
}

cQDLNode *cQDLFreeEdges::FindNode(int key) {
  return &*std::ranges::lower_bound(nodes_, key, {}, &cQDLNode::ID);
}

void cQDLFreeEdges::GenerateFreeEdgeList() {
  edges_.clear();
  nodes_.clear();
  AddNodes();
  for (const Ends ends : face_edges_)
    edges_.emplace_back(FindNode(smaller_key(ends)), FindNode(larger_key(ends)));
  for (cQDLNode &node : nodes_) {
    if (node.EdgeCount() != 0)
      free_edges_.push_back(node.FindFreeEdge());
  }
}
