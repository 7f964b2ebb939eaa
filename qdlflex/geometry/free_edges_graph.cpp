#include <algorithm>
#include <utility>

#include <qdlflex/free_edges.hpp>

cQDLNode::cQDLNode(int key) : key_(key) {}
cQDLNode::~cQDLNode() = default;

int cQDLNode::ID() const {
  return key_;
}

int cQDLNode::EdgeCount() const {
  return static_cast<int>(edges_.size());
}

void cQDLNode::AddLinkedEdge(cQDLEdge *edge) {
  edges_.emplace(edge->GetAnotherNode(this)->ID(), edge);
}

void cQDLNode::RemoveLinkedEdge(cQDLEdge *edge) {
  auto [at, end] = edges_.equal_range(edge->GetAnotherNode(this)->ID());
  while (at != end)
    at = at->second == edge ? edges_.erase(at) : std::next(at);
}

cQDLNode *cQDLNode::GetConnectedNode() {
  if (edges_.empty())
    return nullptr;
  cQDLEdge *const edge = edges_.begin()->second;
  cQDLNode *const neighbour = edge->GetAnotherNode(this);
  RemoveLinkedEdge(edge);
  neighbour->RemoveLinkedEdge(edge);
  return neighbour;
}

std::list<int> cQDLNode::FindFreeEdge() {
  std::list<int> keys = {key_};
  // The node where a walk from here ends; its key is the last one added. Null without a first step.
  const auto walk = [&](auto add_key) {
    cQDLNode *current = GetConnectedNode();
    while (current != nullptr && current != this && current->EdgeCount() == 1) {
      add_key(current->ID());
      current = current->GetConnectedNode();
    }
    if (current != nullptr)
      add_key(current->ID());
    return current;
  };
  if (walk([&](int key) { keys.push_back(key); }) != this)
    walk([&](int key) { keys.push_front(key); });
  return keys;
}

cQDLEdge::cQDLEdge(cQDLNode *a, cQDLNode *b)
    : first_(a->ID() < b->ID() ? a : b),
      second_(a->ID() < b->ID() ? b : a),
      key_(std::to_string(first_->ID()) + "_" + std::to_string(second_->ID())) {
  first_->AddLinkedEdge(this);
  try {
    second_->AddLinkedEdge(this);
  } catch (...) {
    first_->RemoveLinkedEdge(this);
    throw;
  }
}

cQDLEdge::~cQDLEdge() {
  first_->RemoveLinkedEdge(this);
  second_->RemoveLinkedEdge(this);
}

const std::string &cQDLEdge::Key() const {
  return key_;
}

int cQDLEdge::AddRef() {
  return ++references_;
}

int cQDLEdge::RefCount() const {
  return references_;
}

cQDLNode *cQDLEdge::GetAnotherNode(cQDLNode *node) const {
  return node == first_ ? second_ : first_;
}
