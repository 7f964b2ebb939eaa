#include "geometry/free_edges_model.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace qdltest {
namespace {

// By node, the nodes at the other ends of its free edges; a node joined to itself is there twice.
using Graph = std::map<int, std::multiset<int>>;

Graph free_graph(const Faces &faces) {
  std::map<std::pair<int, int>, int> users;
  for (const auto &face : faces) {
    for (std::size_t i = 0; face.size() > 2 && i < face.size(); ++i)
      ++users[std::minmax(face[i], face[(i + 1) % face.size()])];
  }
  Graph graph;
  for (const auto &[edge, count] : users) {
    if (count > 1)
      continue;
    graph[edge.first].insert(edge.second);
    graph[edge.second].insert(edge.first);
  }
  return graph;
}

// The node at the other end of the edge to the smallest neighbour, which is used up.
int cross(Graph &graph, int node) {
  const int other = *graph[node].begin();
  graph[node].erase(graph[node].begin());
  graph[other].erase(graph[other].find(node));
  return other;
}

std::vector<int> walk(Graph &graph, int start) {
  std::vector<int> keys;
  if (graph[start].empty())
    return keys;
  int current = cross(graph, start);
  while (current != start && graph[current].size() == 1) {
    keys.push_back(current);
    current = cross(graph, current);
  }
  keys.push_back(current);
  return keys;
}

}  // namespace

Chains free_edges_of(const Faces &faces) {
  Graph graph = free_graph(faces);
  Chains chains;
  for (auto &[start, neighbours] : graph) {
    if (neighbours.empty())
      continue;
    std::vector<int> forward = walk(graph, start);
    std::vector<int> chain;
    if (forward.back() != start)
      chain = walk(graph, start);
    std::ranges::reverse(chain);
    chain.push_back(start);
    chain.insert(chain.end(), forward.begin(), forward.end());
    chains.push_back(chain);
  }
  return chains;
}

std::vector<int> face_list(const Faces &faces) {
  std::vector<int> list;
  for (const auto &face : faces) {
    list.push_back(static_cast<int>(face.size()));
    list.insert(list.end(), face.begin(), face.end());
  }
  return list;
}

}  // namespace qdltest
