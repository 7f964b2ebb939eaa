#include "geometry/qdlcoarse_fan.h"

// The faces are edges of a small graph, each between the two nodes beside the common one, and the
// polygon is a path through all of them. What is known about such paths (one part, not more than
// two nodes with an odd number of edges, one of which is the start) leaves out the tries that can
// only fail. Those that are left are few, unless many surfaces cross at the node.

namespace qdlflex {
namespace {

std::size_t at(std::int32_t index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

void FanChain::clear() {
  for (const std::int32_t node : nodes_)
    vertex_of_node_[at(node)] = kNone;
  nodes_.clear();
  faces_.clear();
  odd_.clear();
  parent_.clear();
  odd_count_ = 0;
  part_count_ = 0;
}

std::int32_t FanChain::vertex(std::int32_t node) {
  std::int32_t &vertex = vertex_of_node_[at(node)];
  if (vertex == kNone) {
    nodes_.push_back(node);
    vertex = static_cast<std::int32_t>(nodes_.size()) - 1;
    parent_.push_back(vertex);
    odd_.push_back(false);
    ++part_count_;
  }
  return vertex;
}

std::int32_t FanChain::root(std::int32_t vertex) {
  while (parent_[at(vertex)] != vertex)
    vertex = parent_[at(vertex)] = parent_[at(parent_[at(vertex)])];
  return vertex;
}

void FanChain::add_face(std::int32_t second, std::int32_t last) {
  const Pair ends = {vertex(second), vertex(last)};
  faces_.push_back(ends);
  for (const std::int32_t end : ends) {
    odd_count_ += odd_[at(end)] ? -1 : 1;
    odd_[at(end)] = !odd_[at(end)];
  }
  const std::int32_t from = root(ends[kSecond]);
  const std::int32_t to = root(ends[kLast]);
  part_count_ -= from == to ? 0 : 1;
  parent_[at(from)] = to;
}

void FanChain::link() {
  heads_.assign(nodes_.size(), {kNone, kNone});
  next_.resize(faces_.size());
  for (std::size_t face = faces_.size(); face-- > 0;) {
    for (const Side side : {kSecond, kLast}) {
      std::int32_t &head = heads_[at(faces_[face][side])][side];
      next_[face][side] = head;
      head = static_cast<std::int32_t>(face);
    }
  }
}

bool FanChain::find() {
  constexpr std::int32_t kMostOdd = 2;
  if (part_count_ != 1 || odd_count_ > kMostOdd)
    return false;
  link();
  const auto may_start = [this](std::int32_t vertex) {
    return odd_count_ == 0 || odd_[at(vertex)];
  };
  for (std::size_t face = 0; face < faces_.size(); ++face) {
    if (may_start(faces_[face][kSecond]) && try_from(face, false))
      return true;
  }
  for (std::size_t face = 1; face < faces_.size(); ++face) {
    if (may_start(faces_[face][kLast]) && try_from(face, true))
      return true;
  }
  return false;
}

bool FanChain::try_from(std::size_t face, bool reversed) {
  heads_left_ = heads_;
  taken_.assign(faces_.size(), false);
  steps_.clear();
  take(face, reversed);
  while (steps_.size() < faces_.size()) {
    const auto [before, backward] = steps_.back();
    const std::int32_t end = faces_[before][backward ? kSecond : kLast];
    if (!take_next(end, kSecond) && !take_next(end, kLast))
      return false;
  }
  return true;
}

void FanChain::take(std::size_t face, bool reversed) {
  taken_[face] = true;
  steps_.push_back({face, reversed});
}

/// Takes the first face left whose node on the side is the given one.
bool FanChain::take_next(std::int32_t end, Side side) {
  std::int32_t &face = heads_left_[at(end)][side];
  while (face != kNone && taken_[at(face)])
    face = next_[at(face)][side];
  if (face != kNone)
    take(at(face), side == kLast);
  return face != kNone;
}

}  // namespace qdlflex
