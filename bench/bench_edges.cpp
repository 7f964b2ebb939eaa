// Free edges beside VTK, which only lists them and does not join them to chains.

#include <algorithm>
#include <numeric>
#include <optional>
#include <random>
#include <string>

#include <qdlflex/free_edges.hpp>

#include "bench/compare.h"
#include "bench/sample.h"
#include "bench/surface.h"
#include "bench/vtk_peer.h"

namespace {

using namespace qdlflex::bench;

// Other numbers for the nodes and another order of the faces.
void shuffle(QuadSurface &surface) {
  std::mt19937 random(1);
  std::vector<std::int32_t> number(surface.nodes.size());
  std::iota(number.begin(), number.end(), 0);
  std::ranges::shuffle(number, random);
  const std::vector<Point> nodes = surface.nodes;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    surface.nodes[static_cast<std::size_t>(number[i])] = nodes[i];
  for (Quad &quad : surface.quads) {
    for (std::int32_t &node : quad)
      node = number[static_cast<std::size_t>(node)];
  }
  std::ranges::shuffle(surface.quads, random);
}

QuadSurface sheet(int side, bool shuffled) {
  QuadSurface surface = wavy_sheet(side);
  if (shuffled)
    shuffle(surface);
  return surface;
}

VtkMesh vtk_mesh(const QuadSurface &surface) {
  VtkMesh mesh{{}, {}, 4, kVtkQuad};
  for (const Point &node : surface.nodes)
    mesh.points.insert(mesh.points.end(), node.begin(), node.end());
  for (const Quad &quad : surface.quads)
    mesh.cells.insert(mesh.cells.end(), quad.begin(), quad.end());
  return mesh;
}

// VTK 9.1 asks for memory by the square of the points, so that it gets surfaces of this size at
// most; its time is taken as often as they are needed.
constexpr int kLongestPeerSide = 500;

void free_edges(benchmark::State &state, int side, bool shuffled) {
  const int peer_side = std::min(side, kLongestPeerSide);
  const int parts = (side / peer_side) * (side / peer_side);
  const Comparison comparison{"free edges of " + with_thousands(side * side) + " quads, " +
                                  (shuffled ? "shuffled" : "in mesh order"),
                              parts == 1 ? "VTK feature edges"
                                         : std::to_string(parts) + " times VTK feature edges of " +
                                               with_thousands(peer_side * peer_side),
                              1.0};
  const std::optional<VtkRun> peer = run_vtk("feature_edges", vtk_mesh(sheet(peer_side, shuffled)));
  if (!peer) {
    not_measured(state, comparison, kNoVtk);
    return;
  }
  std::vector<std::int32_t> list = sheet(side, shuffled).face_list();
  const auto find = [&] {
    cQDLFreeEdges graph;
    graph.FindFreeEdges(side * side, list.data());
    return graph.GetFreeEdges();
  };
  const auto chains = find();
  require(chains.size() == 1 && chains[0].size() == static_cast<std::size_t>(4 * side + 1),
          "the outline of the sheet");
  require(peer->cells == 4 * peer_side, "the peer's outline of the sheet");
  compare_with_process(
      state, comparison, [] {}, [&] { benchmark::DoNotOptimize(find()); }, parts * peer->seconds);
}

[[maybe_unused]] const bool registered = [] {
  for (const int side : {100, 316, 1000}) {
    for (const bool shuffled : {false, true})
      register_row(
          ("free_edges/" + std::to_string(side * side) + (shuffled ? "/shuffled" : "")).c_str(),
          [=](benchmark::State &state) { free_edges(state, side, shuffled); });
  }
  return true;
}();

}  // namespace
