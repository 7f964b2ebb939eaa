// Faces between elements beside VTK, nodes near a point beside nanoflann.

#include <qdlflex/qdlflex.h>

#if __has_include(<nanoflann.hpp>)
#define QDL_BENCH_HAVE_NANOFLANN
#include <nanoflann.hpp>
#endif

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/sample.h"
#include "bench/vtk_peer.h"
#include "record/record.h"

namespace {

using namespace qdlflex::bench;

// The solid cells of a cube of n x n x n boxes, and what a list of all their faces looks like.
struct Solid {
  VtkMesh mesh;
  std::vector<std::vector<int>> faces;  // corners of each face of a cell, outward
};

std::vector<double> cube_points(std::int64_t n) {
  std::vector<double> points;
  for (std::int64_t i = 0; i < (n + 1) * (n + 1) * (n + 1); ++i) {
    for (const std::int64_t index : {i % (n + 1), i / (n + 1) % (n + 1), i / (n + 1) / (n + 1)})
      points.push_back(static_cast<double>(index));
  }
  return points;
}

// `cells` by the corners of a box, numbered as in a hexahedron.
std::vector<std::int64_t> cube_cells(std::int64_t n, const std::vector<std::vector<int>> &cells) {
  std::vector<std::int64_t> indices;
  const std::int64_t row = n + 1;
  const std::int64_t layer = row * row;
  const std::array<std::int64_t, 8> corners = {0,     1,         row + 1,         row,
                                               layer, layer + 1, layer + row + 1, layer + row};
  for (std::int64_t i = 0; i < n * n * n; ++i) {
    const std::int64_t first = i % n + i / n % n * row + i / n / n * layer;
    for (const std::vector<int> &cell : cells) {
      for (const int corner : cell)
        indices.push_back(first + corners[static_cast<std::size_t>(corner)]);
    }
  }
  return indices;
}

Solid hexahedra(std::int64_t n) {
  return {{cube_points(n), cube_cells(n, {{0, 1, 2, 3, 4, 5, 6, 7}}), 8, kVtkHexahedron},
          {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}};
}

// Six around the long diagonal of each box.
Solid tetrahedra(std::int64_t n) {
  const std::vector<std::vector<int>> six = {{0, 1, 2, 6}, {0, 2, 3, 6}, {0, 3, 7, 6},
                                             {0, 7, 4, 6}, {0, 4, 5, 6}, {0, 5, 1, 6}};
  return {{cube_points(n), cube_cells(n, six), 4, kVtkTetrahedron},
          {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {0, 3, 2}}};
}

std::vector<std::int32_t> all_faces(const Solid &solid) {
  std::vector<std::int32_t> list;
  const auto step = static_cast<std::size_t>(solid.mesh.points_per_cell);
  for (std::size_t cell = 0; cell < solid.mesh.cells.size(); cell += step) {
    for (const std::vector<int> &face : solid.faces) {
      list.push_back(static_cast<std::int32_t>(face.size()));
      for (const int corner : face) {
        list.push_back(
            static_cast<std::int32_t>(solid.mesh.cells[cell + static_cast<std::size_t>(corner)]));
      }
    }
  }
  return list;
}

void set_places(QDL_Record *model, const std::vector<double> &points) {
  for (std::size_t i = 0; i < points.size(); i += 3) {
    QDL_SetNodeCoordinates(model, static_cast<std::int32_t>(i / 3 + 1), points[i], points[i + 1],
                           points[i + 2]);
  }
}

void ignore_messages() {
  const QDL_MessageHandler ignore = [](const char *) { return std::int64_t{0}; };
  const QDL_MessageHandler handlers[3] = {ignore, ignore, ignore};
  SetMessageHandlers(handlers);
}

// VTK finds the faces of the cells itself; ours begins with a list of them.
void strip(benchmark::State &state, const Solid &solid, const std::string &job) {
  const Comparison comparison = {job, "VTK surface filter", 1.0};
  const std::optional<VtkRun> vtk = run_vtk("surface_filter", solid.mesh);
  if (!vtk) {
    not_measured(state, comparison, kNoVtk);
    return;
  }
  ignore_messages();
  const Model model(QDL_Create(0, 0));
  set_places(model, solid.mesh.points);
  const std::vector<std::int32_t> list = all_faces(solid);
  QDL_Record &record = *static_cast<QDL_Record *>(model);
  const auto count = static_cast<std::int32_t>(list.size() / (solid.faces[0].size() + 1));
  compare_with_process(
      state, comparison,
      [&] {
        record.faces = {list, count, true};
        record.interior_faces_stripped = false;
      },
      [&] { QDL_StripCommonFaces(model); }, vtk->seconds);
  require(record.faces.count == vtk->cells, "the same number of faces is left");
}

#ifdef QDL_BENCH_HAVE_NANOFLANN

struct Cloud {
  std::vector<double> places;

  std::size_t kdtree_get_point_count() const { return places.size() / 3; }
  double kdtree_get_pt(std::size_t index, std::size_t axis) const {
    return places[3 * index + axis];
  }
  template <class Box>
  bool kdtree_get_bbox(Box & /*box*/) const {
    return false;
  }
};

using PeerTree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>,
                                                     Cloud, 3, std::uint32_t>;

// Nodes spread evenly, or on the surface of a sphere as a shell model has them.
Cloud random_cloud(std::size_t nodes, bool sphere) {
  std::mt19937_64 random(11);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Cloud cloud;
  for (std::size_t i = 0; i < nodes; ++i) {
    std::array<double, 3> place{};
    for (double &value : place)
      value = sphere ? normal(random) : uniform(random);
    const double length = sphere ? std::hypot(place[0], place[1], place[2]) : 1.0;
    for (const double value : place)
      cloud.places.push_back(value / length);
  }
  return cloud;
}

void nearest(benchmark::State &state, std::int32_t wanted, bool sphere, const std::string &job) {
  constexpr std::size_t kNodes = 1000000;
  constexpr std::size_t kQueries = 20000;
  const Cloud cloud = random_cloud(kNodes, sphere);
  const std::vector<double> points = random_cloud(kQueries, sphere).places;
  const Model model(QDL_Create(0, 0));
  set_places(model, cloud.places);
  for (int first = 0; first < 2; ++first)
    QDL_ClosestNode(model, points.data(), 0);
  const PeerTree peer(3, cloud);

  const auto n = static_cast<std::size_t>(wanted);
  std::vector<std::uint32_t> peer_nodes(n * kQueries);
  std::vector<std::int32_t> our_nodes(n * kQueries);
  std::vector<double> distances(n);
  const auto ours = [&] {
    for (std::size_t query = 0; query < kQueries; ++query) {
      if (wanted == 1) {
        our_nodes[query] = QDL_ClosestNode(model, &points[3 * query], 0);
        continue;
      }
      std::int32_t count = 0;
      std::int32_t *nodes = QDL_ClosestNodes(model, &points[3 * query], wanted, 0, &count);
      std::copy_n(nodes, n, &our_nodes[n * query]);
      QDL_FreeMemory(nodes);
    }
  };
  compare(state, {job, "nanoflann", 0.33}, ours, [&] {
    for (std::size_t query = 0; query < kQueries; ++query)
      peer.knnSearch(&points[3 * query], n, &peer_nodes[n * query], distances.data());
  });
  require(std::ranges::equal(
              our_nodes, peer_nodes,
              [](std::int32_t a, std::uint32_t b) { return static_cast<std::uint32_t>(a) == b; }),
          "the same nodes are found");
}

#else

void nearest(benchmark::State &state, std::int32_t, bool, const std::string &job) {
  not_measured(state, {job, "nanoflann", 0.33}, "nanoflann is not installed");
}

#endif

void register_strip(const char *name, Solid (*make)(std::int64_t), std::int64_t n,
                    const std::string &job) {
  register_row(name, [=](benchmark::State &state) { strip(state, make(n), job); });
}

void register_nearest(const char *name, std::int32_t wanted, bool sphere, const std::string &job) {
  register_row(name, [=](benchmark::State &state) { nearest(state, wanted, sphere, job); });
}

const bool registered = [] {
  register_strip("strip_10000", hexahedra, 12, "strip common faces, 10,000 quads");
  register_strip("strip_100000", hexahedra, 26, "strip common faces, 100,000 quads");
  register_strip("strip_1000000", hexahedra, 55, "strip common faces, 1,000,000 quads");
  register_strip("strip_tetrahedra", tetrahedra, 35, "strip common faces, 1,000,000 triangles");
  register_nearest("nearest", 1, false, "nearest of 1,000,000 nodes in a cube");
  register_nearest("nearest_sphere", 1, true, "nearest of 1,000,000 nodes on a sphere");
  register_nearest("nearest_10", 10, false, "10 nearest of 1,000,000 nodes in a cube");
  register_nearest("nearest_100", 100, false, "100 nearest of 1,000,000 nodes in a cube");
  return true;
}();

}  // namespace
