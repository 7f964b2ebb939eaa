#include "solid_elements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace qdlflex::cli;

namespace {

Point operator+(const Point &a, const Point &b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Point operator-(const Point &a, const Point &b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point operator*(double factor, const Point &a) {
  return {factor * a[0], factor * a[1], factor * a[2]};
}

double dot(const Point &a, const Point &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point cross(const Point &a, const Point &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Nodes written out in the order of the result file, independent of the tables under test.
const std::vector<Point> kTet10 = {{0, 0, 0},   {1, 0, 0},  {0, 1, 0},  {0, 0, 1},   {.5, 0, 0},
                                   {.5, .5, 0}, {0, .5, 0}, {0, 0, .5}, {.5, 0, .5}, {0, .5, .5}};
const std::vector<Point> kWedge15 = {{0, 0, 0},  {1, 0, 0},  {0, 1, 0},   {0, 0, 1},   {1, 0, 1},
                                     {0, 1, 1},  {.5, 0, 0}, {.5, .5, 0}, {0, .5, 0},  {0, 0, .5},
                                     {1, 0, .5}, {0, 1, .5}, {.5, 0, 1},  {.5, .5, 1}, {0, .5, 1}};
const std::vector<Point> kHex20 = {{0, 0, 0},  {1, 0, 0},  {1, 1, 0},  {0, 1, 0},  {0, 0, 1},
                                   {1, 0, 1},  {1, 1, 1},  {0, 1, 1},  {.5, 0, 0}, {1, .5, 0},
                                   {.5, 1, 0}, {0, .5, 0}, {0, 0, .5}, {1, 0, .5}, {1, 1, .5},
                                   {0, 1, .5}, {.5, 0, 1}, {1, .5, 1}, {.5, 1, 1}, {0, .5, 1}};

std::vector<Point> first(const std::vector<Point> &points, size_t count) {
  return {points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count)};
}

struct Element {
  const char *name;
  SolidType type;
  std::vector<Point> nodes;
  size_t corner_count;
  double volume;
  /// The shares of the nodes, in runs of equal ones: (count, share). From the squared textbook
  /// shape functions, integrated as polynomials by hand.
  std::vector<std::pair<size_t, double>> shares;
};

const std::vector<Element> &elements() {
  static const std::vector<Element> all = {
      {"tet4", SolidType::tet4, first(kTet10, 4), 4, 1. / 6, {{4, 1. / 4}}},
      {"wedge6", SolidType::wedge6, first(kWedge15, 6), 6, 1. / 2, {{6, 1. / 6}}},
      {"hex8", SolidType::hex8, first(kHex20, 8), 8, 1., {{8, 1. / 8}}},
      {"tet10", SolidType::tet10, kTet10, 4, 1. / 6, {{4, 1. / 36}, {6, 4. / 27}}},
      {"wedge15",
       SolidType::wedge15,
       kWedge15,
       6,
       1. / 2,
       {{6, 1. / 34}, {3, 4. / 51}, {3, 2. / 17}, {3, 4. / 51}}},
      {"hex20", SolidType::hex20, kHex20, 8, 1., {{8, 7. / 248}, {12, 2. / 31}}},
  };
  return all;
}

/// A skewed and stretched copy far away from the origin; volumes grow by 24.
std::vector<Point> moved(const std::vector<Point> &nodes) {
  std::vector<Point> result;
  for (const Point &p : nodes) {
    result.push_back({1e3 + 2 * p[0] + p[1], -2e3 + 3 * p[1] - p[2], 5e3 + 4 * p[2]});
  }
  return result;
}

}  // namespace

TEST(SolidElements, VolumesAndSharesEqualTheClosedForm) {
  for (const Element &element : elements()) {
    SCOPED_TRACE(element.name);
    ASSERT_EQ(static_cast<size_t>(node_count(element.type)), element.nodes.size());
    for (const bool is_moved : {false, true}) {
      const auto nodes = is_moved ? moved(element.nodes) : element.nodes;
      const MassShares result = mass_shares(element.type, nodes);
      EXPECT_NEAR(result.volume, element.volume * (is_moved ? 24 : 1), 1e-12);
      size_t node = 0;
      for (const auto &[count, share] : element.shares) {
        for (size_t i = 0; i < count; ++i, ++node) {
          EXPECT_NEAR(result.share[node], share, 1e-13) << "node " << node;
        }
      }
      EXPECT_EQ(node, nodes.size());
    }
  }
}

TEST(SolidElements, CurvedEdgesCountInTheVolume) {
  // The midside nodes of the top face moved up by h add the volume under the serendipity surface,
  // to which each contributes h times 1/3, the integral of its function over the unit square.
  std::vector<Point> nodes = kHex20;
  const double h = 0.1;
  for (size_t node = 16; node < 20; ++node) {
    nodes[node][2] += h;
  }
  EXPECT_NEAR(mass_shares(SolidType::hex20, nodes).volume, 1.0 + 4.0 * h / 3.0, 1e-12);
}

TEST(SolidElements, AnElementInsideOutHasNegativeVolume) {
  for (const Element &element : elements()) {
    std::vector<Point> mirrored = element.nodes;
    for (Point &p : mirrored) {
      p[0] = -p[0];
    }
    EXPECT_LT(mass_shares(element.type, mirrored).volume, 0.0) << element.name;
  }
}

TEST(SolidElements, FacesEncloseTheElementAndPointOutward) {
  for (const Element &element : elements()) {
    SCOPED_TRACE(element.name);
    const auto nodes = moved(element.nodes);
    Point centre{};
    for (size_t k = 0; k < element.corner_count; ++k) {
      centre = centre + (1.0 / static_cast<double>(element.corner_count)) * nodes[k];
    }
    Point area_sum{};
    double enclosed = 0.0;
    for (const ElementFace &face : faces(element.type)) {
      // All faces are plane: triangles from the first corner add up to the area.
      const auto corner = [&](int k) {
        return nodes[static_cast<size_t>(face.corners[static_cast<size_t>(k)])] - centre;
      };
      for (int k = 1; k + 1 < face.corner_count; ++k) {
        const Point area = 0.5 * cross(corner(k) - corner(0), corner(k + 1) - corner(0));
        EXPECT_GT(dot(area, corner(0)), 0.0);
        area_sum = area_sum + area;
        enclosed += dot(area, corner(0)) / 3.0;
      }
    }
    EXPECT_NEAR(std::sqrt(dot(area_sum, area_sum)), 0.0, 1e-9);
    EXPECT_NEAR(enclosed, 24.0 * element.volume, 1e-9);
  }
}
