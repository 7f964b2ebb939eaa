// Every element here is a product of simplices: a tetrahedron is one, a wedge a triangle times a
// segment, a brick three segments. A corner is a vertex in each factor, and its linear shape
// function the product of the barycentric coordinates of these vertices. The two ends of an edge
// differ in one factor only, which gives the midside node the function 4 a b times the product
// over the other factors; taking half of it from the linear functions of both ends completes the
// serendipity family. So a table of corners and edges is all that tells the elements apart.

#include "solid_elements.h"

#include <vector>

namespace qdlflex::cli {

namespace {

struct Shape {
  std::array<int, 3> factor_dimensions;     // 0: no further factor
  std::vector<std::array<int, 3>> corners;  // the vertex in each factor
  std::vector<std::array<int, 2>> edges;    // the corners that a midside node lies between
  std::vector<ElementFace> faces;
};

const Shape &tetrahedron() {
  static const Shape shape = {
      {3, 0, 0},
      {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}},
      {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}},
      {{3, {0, 2, 1}}, {3, {0, 1, 3}}, {3, {1, 2, 3}}, {3, {2, 0, 3}}},
  };
  return shape;
}

const Shape &wedge() {
  static const Shape shape = {
      {2, 1, 0},
      {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}},
      {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 4}, {2, 5}, {3, 4}, {4, 5}, {5, 3}},
      {{3, {0, 2, 1}}, {3, {3, 4, 5}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}},
  };
  return shape;
}

const Shape &brick() {
  static const Shape shape = {
      {1, 1, 1},
      {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
      {{0, 1},
       {1, 2},
       {2, 3},
       {3, 0},
       {0, 4},
       {1, 5},
       {2, 6},
       {3, 7},
       {4, 5},
       {5, 6},
       {6, 7},
       {7, 4}},
      {{4, {0, 3, 2, 1}},
       {4, {4, 5, 6, 7}},
       {4, {0, 1, 5, 4}},
       {4, {1, 2, 6, 5}},
       {4, {2, 3, 7, 6}},
       {4, {3, 0, 4, 7}}},
  };
  return shape;
}

const Shape &shape_of(SolidType type) {
  switch (type) {
    case SolidType::tet4:
    case SolidType::tet10:
      return tetrahedron();
    case SolidType::wedge6:
    case SolidType::wedge15:
      return wedge();
    default:
      return brick();
  }
}

bool is_quadratic(SolidType type) {
  return type == SolidType::tet10 || type == SolidType::wedge15 || type == SolidType::hex20;
}

/// A value with its gradient in the natural coordinates.
struct Dual {
  double value = 0.0;
  Point gradient{};

  Dual &operator*=(const Dual &other) {
    for (size_t k = 0; k < 3; ++k) {
      gradient[k] = gradient[k] * other.value + value * other.gradient[k];
    }
    value *= other.value;
    return *this;
  }

  Dual &add(double factor, const Dual &other) {
    for (size_t k = 0; k < 3; ++k) {
      gradient[k] += factor * other.gradient[k];
    }
    value += factor * other.value;
    return *this;
  }
};

/// The barycentric coordinates of each factor at a point.
using Barycentric = std::array<std::array<Dual, 4>, 3>;

struct Quadrature {
  Barycentric at;
  double weight;
};

Barycentric barycentric(const Shape &shape, const Point &natural) {
  Barycentric result;
  size_t axis = 0;
  for (size_t factor = 0; factor < 3; ++factor) {
    Dual &first = result[factor][0];
    first.value = 1.0;
    for (size_t k = 0; k < static_cast<size_t>(shape.factor_dimensions[factor]); ++k, ++axis) {
      Dual &coordinate = result[factor][k + 1];
      coordinate.value = natural[axis];
      coordinate.gradient[axis] = 1.0;
      first.add(-1.0, coordinate);
    }
  }
  return result;
}

/// Squeezes the unit cube onto the product of simplices: within each factor a coordinate runs up to
/// what the ones before it leave. Returns the point and multiplies `weight` by the change of
/// volume.
Point collapse(const Shape &shape, const Point &cube, double &weight) {
  Point natural{};
  size_t axis = 0;
  for (const int dimension : shape.factor_dimensions) {
    double room = 1.0;
    for (int k = 0; k < dimension; ++k, ++axis) {
      natural[axis] = cube[axis] * room;
      weight *= room;
      room -= natural[axis];
    }
  }
  return natural;
}

/// Gauss points, four in each direction: exact for the squared shape functions of every element
/// with straight edges.
std::vector<Quadrature> make_rule(const Shape &shape) {
  constexpr std::array<double, 4> at = {0.069431844202973712, 0.33000947820757187,
                                        0.66999052179242813, 0.93056815579702629};
  constexpr std::array<double, 4> weights = {0.17392742256872693, 0.32607257743127307,
                                             0.32607257743127307, 0.17392742256872693};
  std::vector<Quadrature> rule;
  for (size_t i = 0; i < 4; ++i) {
    for (size_t j = 0; j < 4; ++j) {
      for (size_t k = 0; k < 4; ++k) {
        double weight = weights[i] * weights[j] * weights[k];
        const Point natural = collapse(shape, {at[i], at[j], at[k]}, weight);
        rule.push_back({barycentric(shape, natural), weight});
      }
    }
  }
  return rule;
}

const std::vector<Quadrature> &rule_of(const Shape &shape) {
  static const std::array<std::vector<Quadrature>, 3> rules = {
      make_rule(tetrahedron()), make_rule(wedge()), make_rule(brick())};
  return &shape == &tetrahedron() ? rules[0] : &shape == &wedge() ? rules[1] : rules[2];
}

Dual corner_function(const Shape &shape, const Barycentric &at, size_t corner) {
  Dual result = {1.0, {}};
  for (size_t factor = 0; factor < 3; ++factor) {
    result *= at[factor][static_cast<size_t>(shape.corners[corner][factor])];
  }
  return result;
}

Dual midside_function(const Shape &shape, const Barycentric &at, const std::array<int, 2> &edge) {
  const auto &from = shape.corners[static_cast<size_t>(edge[0])];
  const auto &to = shape.corners[static_cast<size_t>(edge[1])];
  Dual result = {1.0, {}};
  for (size_t factor = 0; factor < 3; ++factor) {
    result *= at[factor][static_cast<size_t>(from[factor])];
    if (from[factor] != to[factor]) {
      result *= at[factor][static_cast<size_t>(to[factor])];
      result *= Dual{4.0, {}};
    }
  }
  return result;
}

using ShapeFunctions = std::array<Dual, kMostElementNodes>;

ShapeFunctions shape_functions(SolidType type, const Shape &shape, const Barycentric &at) {
  ShapeFunctions result;
  const size_t corner_count = shape.corners.size();
  for (size_t corner = 0; corner < corner_count; ++corner) {
    result[corner] = corner_function(shape, at, corner);
  }
  if (is_quadratic(type)) {
    for (size_t i = 0; i < shape.edges.size(); ++i) {
      const Dual midside = midside_function(shape, at, shape.edges[i]);
      result[corner_count + i] = midside;
      for (const int end : shape.edges[i]) {
        result[static_cast<size_t>(end)].add(-0.5, midside);
      }
    }
  }
  return result;
}

double jacobian_determinant(const ShapeFunctions &functions, std::span<const Point> nodes) {
  std::array<Point, 3> j{};
  for (size_t node = 0; node < nodes.size(); ++node) {
    for (size_t row = 0; row < 3; ++row) {
      for (size_t column = 0; column < 3; ++column) {
        j[row][column] += functions[node].gradient[row] * nodes[node][column];
      }
    }
  }
  return j[0][0] * (j[1][1] * j[2][2] - j[1][2] * j[2][1]) -
         j[0][1] * (j[1][0] * j[2][2] - j[1][2] * j[2][0]) +
         j[0][2] * (j[1][0] * j[2][1] - j[1][1] * j[2][0]);
}

}  // namespace

int node_count(SolidType type) {
  const Shape &shape = shape_of(type);
  return static_cast<int>(shape.corners.size() + (is_quadratic(type) ? shape.edges.size() : 0));
}

std::span<const ElementFace> faces(SolidType type) {
  return shape_of(type).faces;
}

MassShares mass_shares(SolidType type, std::span<const Point> nodes) {
  const Shape &shape = shape_of(type);
  // Moving the origin to a node keeps the digits of a small element far from the origin.
  std::array<Point, kMostElementNodes> local{};
  for (size_t node = 0; node < nodes.size(); ++node) {
    for (size_t k = 0; k < 3; ++k) {
      local[node][k] = nodes[node][k] - nodes[0][k];
    }
  }

  MassShares result;
  double sum = 0.0;
  for (const Quadrature &point : rule_of(shape)) {
    const ShapeFunctions functions = shape_functions(type, shape, point.at);
    const double volume =
        point.weight * jacobian_determinant(functions, std::span(local).first(nodes.size()));
    result.volume += volume;
    for (size_t node = 0; node < nodes.size(); ++node) {
      const double term = functions[node].value * functions[node].value * volume;
      result.share[node] += term;
      sum += term;
    }
  }
  for (double &share : result.share) {
    share /= sum;
  }
  return result;
}

}  // namespace qdlflex::cli
