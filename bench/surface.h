// The surface that the geometry benchmarks measure on.
#pragma once

#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

namespace qdlflex::bench {

// 1000 as "1,000".
inline std::string with_thousands(int number) {
  std::string text = std::to_string(number);
  for (int at = static_cast<int>(text.size()) - 3; at > 0; at -= 3)
    text.insert(static_cast<std::size_t>(at), ",");
  return text;
}

using Point = std::array<double, 3>;
using Quad = std::array<std::int32_t, 4>;

struct QuadSurface {
  std::vector<Point> nodes;
  std::vector<Quad> quads;

  // Node count, then nodes, face after face.
  std::vector<std::int32_t> face_list() const {
    std::vector<std::int32_t> list;
    list.reserve(5 * quads.size());
    for (const Quad &quad : quads) {
      list.push_back(4);
      list.insert(list.end(), quad.begin(), quad.end());
    }
    return list;
  }
};

// A wavy sheet of side 1 with as many quadrilaterals on each side, row by row.
inline QuadSurface wavy_sheet(int side) {
  QuadSurface surface;
  const double turn = 2.0 * std::numbers::pi;
  for (int i = 0; i <= side; ++i) {
    for (int j = 0; j <= side; ++j) {
      const double x = double(j) / side;
      const double y = double(i) / side;
      surface.nodes.push_back({x, y, 0.1 * std::sin(turn * x) * std::cos(turn * y)});
    }
  }
  for (int i = 0; i < side; ++i) {
    for (int j = 0; j < side; ++j) {
      const int corner = i * (side + 1) + j;
      surface.quads.push_back({corner, corner + 1, corner + side + 2, corner + side + 1});
    }
  }
  return surface;
}

// Nodes are numbered from 1.
inline void set_surface(QDL_Record *model, const QuadSurface &surface) {
  std::int32_t id = 0;
  for (const Point &node : surface.nodes)
    QDL_SetNodeCoordinates(model, ++id, node[0], node[1], node[2]);
  for (const Quad &quad : surface.quads) {
    const Quad ids = {quad[0] + 1, quad[1] + 1, quad[2] + 1, quad[3] + 1};
    QDL_SetFaceList(model, 4, ids.data());
  }
}

}  // namespace qdlflex::bench
