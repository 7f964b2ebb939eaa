// Coarsening beside meshoptimizer's simplification of the same surface in triangles to the same
// number of triangles. What becomes of the surface stands in the counters: `_off` is the largest
// distance of an original node from the coarse surface (one way, nodes only) in diagonals, `_area`
// the relative change of its area.

#include <qdlflex/qdlflex.h>

#ifdef QDL_BENCH_HAVE_MESHOPTIMIZER
#include <meshoptimizer.h>
#endif

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "bench/compare.h"
#include "bench/sample.h"
#include "bench/surface.h"
#include "record/record.h"

namespace {

using namespace qdlflex::bench;

Point minus(const Point &a, const Point &b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point cross(const Point &a, const Point &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Point &a, const Point &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double length(const Point &a) {
  return std::sqrt(dot(a, a));
}

using Polygon = std::vector<Point>;

// Twice the area as a vector.
Point area_vector(const Polygon &polygon) {
  Point sum{};
  for (std::size_t i = 2; i < polygon.size(); ++i) {
    const Point part = cross(minus(polygon[i - 1], polygon[0]), minus(polygon[i], polygon[0]));
    for (std::size_t k = 0; k < 3; ++k)
      sum[k] += part[k];
  }
  return sum;
}

double area(const std::vector<Polygon> &surface) {
  double sum = 0.0;
  for (const Polygon &polygon : surface)
    sum += length(area_vector(polygon)) / 2.0;
  return sum;
}

double distance_to_side(const Point &p, const Point &a, const Point &b) {
  const Point side = minus(b, a);
  const double squared = dot(side, side);
  const double along =
      squared == 0.0 ? 0.0 : std::clamp(dot(minus(p, a), side) / squared, 0.0, 1.0);
  return length(minus(p, {a[0] + along * side[0], a[1] + along * side[1], a[2] + along * side[2]}));
}

// From a polygon taken as flat: from its mean plane where the point stands above it as seen along
// z, else from its sides. Exact for triangles of a sheet that is nowhere steep.
double distance_to_polygon(const Point &p, const Polygon &polygon) {
  double nearest = std::numeric_limits<double>::infinity();
  bool inside = false;
  Point centre{};
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Point &a = polygon[i];
    const Point &b = polygon[(i + 1) % polygon.size()];
    nearest = std::min(nearest, distance_to_side(p, a, b));
    if ((a[1] > p[1]) != (b[1] > p[1]) &&
        p[0] < a[0] + (b[0] - a[0]) * (p[1] - a[1]) / (b[1] - a[1]))
      inside = !inside;
    for (std::size_t k = 0; k < 3; ++k)
      centre[k] += a[k] / static_cast<double>(polygon.size());
  }
  const Point normal = area_vector(polygon);
  if (inside && length(normal) != 0.0)
    nearest = std::min(nearest, std::fabs(dot(minus(p, centre), normal)) / length(normal));
  return nearest;
}

double farthest(const QuadSurface &from, const std::vector<Polygon> &to) {
  double most = 0.0;
  for (const Point &node : from.nodes) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const Polygon &polygon : to)
      nearest = std::min(nearest, distance_to_polygon(node, polygon));
    most = std::max(most, nearest);
  }
  return most;
}

// A model with the sheet's nodes, whose faces can be put back.
class Sheet {
 public:
  explicit Sheet(int side) : surface(wavy_sheet(side)), model_(QDL_Create(0, 0)) {
    for (std::size_t i = 0; i < surface.nodes.size(); ++i) {
      const auto &[x, y, z] = surface.nodes[i];
      QDL_SetNodeCoordinates(model_, static_cast<std::int32_t>(i) + 1, x, y, z);
    }
    original_ = {surface.face_list(), static_cast<std::int32_t>(surface.quads.size()), true};
  }

  void coarsen(const std::string &arguments) {
    QDL_Record *record = model_;
    record->faces = original_;
    require(QDL_TrimGeometry(record, arguments.c_str()) == 1, "the sheet can be coarsened");
  }

  std::vector<Polygon> faces() const {
    const QDL_Record *record = model_;
    std::vector<Polygon> polygons;
    const std::vector<std::int32_t> &list = record->faces.list;
    for (std::size_t at = 0; at < list.size(); at += static_cast<std::size_t>(list[at]) + 1) {
      Polygon &polygon = polygons.emplace_back();
      for (std::int32_t i = 1; i <= list[at]; ++i)
        polygon.push_back(
            surface.nodes[static_cast<std::size_t>(list[at + static_cast<std::size_t>(i)])]);
    }
    return polygons;
  }

  // How many triangles the polygons make.
  std::size_t triangles() const {
    const QDL_Record *record = model_;
    return record->faces.list.size() - 3 * static_cast<std::size_t>(record->faces.count);
  }

  const QuadSurface surface;

 private:
  Model model_;
  qdlflex::FaceList original_;
};

const char *const kArguments = "0.02,10,0";

#ifdef QDL_BENCH_HAVE_MESHOPTIMIZER
class Simplifier {
 public:
  Simplifier(const QuadSurface &surface, std::size_t triangles) : wanted_(3 * triangles) {
    for (const Point &node : surface.nodes)
      for (const double coordinate : node)
        positions_.push_back(static_cast<float>(coordinate));
    for (const Quad &quad : surface.quads)
      for (const std::size_t corner : {0U, 1U, 2U, 0U, 2U, 3U})
        indices_.push_back(static_cast<unsigned>(quad[corner]));
    result_.resize(indices_.size());
  }

  void run() {
    constexpr float kAnyError = 1.0F;
    count_ =
        meshopt_simplify(result_.data(), indices_.data(), indices_.size(), positions_.data(),
                         positions_.size() / 3, 3 * sizeof(float), wanted_, kAnyError, 0, nullptr);
  }

  std::size_t triangles() const { return count_ / 3; }

  std::vector<Polygon> faces(const QuadSurface &surface) const {
    std::vector<Polygon> polygons;
    for (std::size_t i = 0; i < count_; i += 3)
      polygons.push_back({surface.nodes[result_[i]], surface.nodes[result_[i + 1]],
                          surface.nodes[result_[i + 2]]});
    return polygons;
  }

 private:
  std::size_t wanted_;
  std::size_t count_ = 0;
  std::vector<float> positions_;
  std::vector<unsigned> indices_;
  std::vector<unsigned> result_;
};

void measure_quality(benchmark::State &state, const Sheet &sheet, const Simplifier &simplifier) {
  constexpr std::size_t kMostNodes = 20000;  // every node is compared with every face
  std::vector<Polygon> original;
  for (const Quad &quad : sheet.surface.quads) {
    Polygon &polygon = original.emplace_back();
    for (const std::int32_t node : quad)
      polygon.push_back(sheet.surface.nodes[static_cast<std::size_t>(node)]);
  }
  const double diagonal = std::sqrt(2.0 + 0.2 * 0.2);
  const auto report = [&](const std::string &who, const std::vector<Polygon> &faces) {
    state.counters[who + "_area"] = area(faces) / area(original) - 1.0;
    if (sheet.surface.nodes.size() <= kMostNodes)
      state.counters[who + "_off"] = farthest(sheet.surface, faces) / diagonal;
  };
  report("ours", sheet.faces());
  report("peer", simplifier.faces(sheet.surface));
  state.counters["triangles"] = static_cast<double>(sheet.triangles());
  state.counters["peer_triangles"] = static_cast<double>(simplifier.triangles());
}
#endif

void coarsen(benchmark::State &state, int side) {
  const Comparison comparison{"coarsen " + with_thousands(side * side) + " quads",
                              "meshoptimizer `simplify` to as many triangles", 1.0};
#ifdef QDL_BENCH_HAVE_MESHOPTIMIZER
  Sheet sheet(side);
  sheet.coarsen(kArguments);
  Simplifier simplifier(sheet.surface, sheet.triangles());
  simplifier.run();
  require(simplifier.triangles() <= sheet.triangles() * 21 / 20, "the peer simplifies as far");
  measure_quality(state, sheet, simplifier);
  compare(
      state, comparison, [&] { sheet.coarsen(kArguments); }, [&] { simplifier.run(); });
#else
  not_measured(state, comparison, "meshoptimizer is not installed");
#endif
}

// Ten times the faces in patches of as many faces each: ten times the time and not more.
void growth(benchmark::State &state) {
  constexpr int kTimes = 10;
  Sheet small(316);
  Sheet large(1000);
  compare(
      state, {"coarsen 1,000,000 quads", "10 times 99,856 quads, to patches of as many", 0.5},
      [&] { large.coarsen("0.00632,10,0"); },
      [&] {
        for (int i = 0; i < kTimes; ++i)
          small.coarsen(kArguments);
      });
}

[[maybe_unused]] const bool registered = [] {
  for (const int side : {100, 316, 1000})
    register_row(("coarsen/" + std::to_string(side * side)).c_str(),
                 [=](benchmark::State &state) { coarsen(state, side); });
  return register_row("coarsen/growth", growth);
}();

}  // namespace
