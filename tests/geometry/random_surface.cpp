#include "geometry/random_surface.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace qdltest {
namespace {

using Face = std::vector<int>;

std::size_t at(int index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

double RandomSurfaces::noise(double size) {
  return std::uniform_real_distribution<double>(-size, size)(random_);
}

// Other windings, other first nodes, repeated nodes, faces of too few nodes.
void RandomSurfaces::disturb(Surface &surface) {
  for (Face &face : surface.faces) {
    if (one_in(8))
      std::ranges::reverse(face);
    std::rotate(face.begin(), face.begin() + below(static_cast<int>(face.size())), face.end());
    if (one_in(60))
      face.insert(face.begin() + below(static_cast<int>(face.size())), face.front());
    if (one_in(100))
      face.resize(at(below(3)));
  }
}

// New numbers for nodes and faces, or for the nodes of a few places only.
void RandomSurfaces::shuffle(Surface &surface) {
  std::vector<int> number(surface.nodes.size());
  std::iota(number.begin(), number.end(), 0);
  std::ranges::shuffle(number, random_);
  const auto nodes = surface.nodes;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    surface.nodes[at(number[i])] = nodes[i];
  for (Face &face : surface.faces) {
    for (int &node : face)
      node = number[at(node)];
  }
  std::ranges::shuffle(surface.faces, random_);
}

Surface RandomSurfaces::plate() {
  const int most = one_in(40) ? 25 : 8;
  const int columns = 2 + below(most);
  const int rows = 1 + below(most);
  const double bump = one_in(2) ? 0.0 : 0.3;
  const double shift = one_in(3) ? 0.0 : 0.2;
  Surface surface;
  for (int i = 0; i < (columns + 1) * (rows + 1); ++i) {
    const int column = i % (columns + 1);
    surface.nodes.push_back({column + noise(shift), i / (columns + 1) + noise(shift), noise(bump)});
  }
  const int hole = one_in(2) ? 12 : 1000;
  for (int i = 0; i < columns * rows; ++i) {
    const int corner = i / columns * (columns + 1) + i % columns;
    const int above = corner + columns + 1;
    if (i > 0 && one_in(hole))
      continue;
    if (one_in(3)) {
      surface.faces.push_back({corner, corner + 1, above + 1});
      surface.faces.push_back({corner, above + 1, above});
    } else {
      surface.faces.push_back({corner, corner + 1, above + 1, above});
    }
  }
  // A seam: two nodes become one, wherever they are.
  if (one_in(4)) {
    const int from = below(static_cast<int>(surface.nodes.size()));
    const int to = below(static_cast<int>(surface.nodes.size()));
    for (Face &face : surface.faces)
      std::ranges::replace(face, from, to);
  }
  disturb(surface);
  if (!one_in(3))
    shuffle(surface);
  return surface;
}

Surface RandomSurfaces::cone() {
  Surface surface;
  surface.nodes.push_back({0.0, 0.0, 0.1});
  const int fans = one_in(2) ? 1 : 1 + below(3);
  for (int fan = 0; fan < fans; ++fan) {
    const int first = static_cast<int>(surface.nodes.size());
    const int count = 3 + below(30);
    for (int i = 0; i < count; ++i)
      surface.nodes.push_back({std::cos(0.2 * i), std::sin(0.2 * i), noise(0.05)});
    const int closed = below(2);
    for (int i = 0; i < count - 1 + closed; ++i)
      surface.faces.push_back({0, first + i, first + (i + 1) % count});
  }
  disturb(surface);
  if (!one_in(4))
    shuffle(surface);
  return surface;
}

Surface RandomSurfaces::tangle() {
  Surface surface;
  const int nodes = 3 + below(8);
  for (int i = 0; i < nodes; ++i)
    surface.nodes.push_back({noise(0.5), noise(0.5), 0.0});
  // Two far nodes in no face make the others close to each other.
  surface.nodes.insert(surface.nodes.end(), {{-2.0, -2.0, 0.0}, {2.0, 2.0, 0.0}});
  surface.faces.resize(at(1 + below(10)));
  for (Face &face : surface.faces) {
    face.resize(at(one_in(10) ? below(20) : 3 + below(3)));
    for (int &node : face)
      node = below(nodes);
  }
  return surface;
}

Coarsening RandomSurfaces::coarsening(const Surface &surface) {
  const double resolutions[] = {0.05, 0.15, 0.3, 0.5};
  const double angles[] = {7.5, 20.0, 45.0};
  Coarsening coarsening;
  coarsening.resolution = resolutions[below(4)];
  coarsening.angle = angles[below(3)];
  coarsening.drop_colinear = one_in(2);
  for (int i = one_in(2) ? below(6) : 0; i > 0; --i)
    coarsening.preserved.push_back(below(static_cast<int>(surface.nodes.size())));
  return coarsening;
}

}  // namespace qdltest
