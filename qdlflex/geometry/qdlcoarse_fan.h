#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qdlflex {

/// Joins the faces around a node to one polygon: finds an order, and for each face a direction, in
/// which every face begins behind the common node with the node that the one before ends with.
class FanChain {
 public:
  struct Step {
    std::size_t face = 0;  // in the order of adding
    bool reversed = false;
  };

  /// For nodes of indices below a limit.
  explicit FanChain(std::size_t node_limit) : vertex_of_node_(node_limit, kNone) {}

  void clear();
  /// A face by the nodes on both sides of the common one: the node behind it and the node before
  /// it.
  void add_face(std::int32_t second, std::int32_t last);

  /// Each face in turn is tried as the first one, then each but the first in reverse; each further
  /// face is the first one that fits as it is, or else the first one that fits in reverse.
  bool find();
  /// What was found.
  std::span<const Step> steps() const { return steps_; }

 private:
  static constexpr std::int32_t kNone = -1;
  enum Side : std::size_t { kSecond, kLast, kSides };
  using Pair = std::array<std::int32_t, kSides>;

  std::int32_t vertex(std::int32_t node);
  std::int32_t root(std::int32_t vertex);
  void link();
  bool try_from(std::size_t face, bool reversed);
  void take(std::size_t face, bool reversed);
  bool take_next(std::int32_t end, Side side);

  std::vector<std::int32_t> vertex_of_node_;
  std::vector<std::int32_t> nodes_;   // by vertex
  std::vector<Pair> faces_;           // the vertices that each joins
  std::vector<bool> odd_;             // by vertex: whether an odd number of faces ends there
  std::vector<std::int32_t> parent_;  // by vertex: union-find over what faces join
  std::int32_t odd_count_ = 0;
  std::int32_t part_count_ = 0;

  // Faces with the vertex on a side, as chained lists in order; -1 ends them.
  std::vector<Pair> heads_;       // by vertex
  std::vector<Pair> next_;        // by face
  std::vector<Pair> heads_left_;  // of the present try
  std::vector<bool> taken_;       // of the present try
  std::vector<Step> steps_;
};

}  // namespace qdlflex
