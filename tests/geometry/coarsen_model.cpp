#include "geometry/coarsen_model.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <set>

namespace qdltest {
namespace {

using Point = std::array<double, 3>;
using Face = std::vector<int>;

struct Model {
  std::vector<Point> xyz;
  std::map<int, std::vector<int>> records;  // by node: its faces
  std::vector<std::optional<Face>> faces;
  std::vector<Point> normals;
  double diagonal = 0.0;

  bool has_record(int node) const { return records.count(node) != 0; }
  const Point &at(int node) const { return xyz[static_cast<std::size_t>(node)]; }
  std::optional<Face> &face(int slot) { return faces[static_cast<std::size_t>(slot)]; }
};

Point minus(const Point &a, const Point &b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double times(const Point &a, const Point &b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < 3; ++i)
    sum += a[i] * b[i];
  return sum;
}

double squared(const Point &a, const Point &b) {
  return times(minus(a, b), minus(a, b));
}

Point normal_of(const Model &model, const Face &face) {
  if (face.size() < 3)
    return {};
  const Point a = minus(model.at(face[0]), model.at(face[1]));
  const Point b = minus(model.at(face[2]), model.at(face[1]));
  Point n = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
  const double length = std::sqrt(times(n, n));
  for (double &component : n)
    component = length == 0.0 ? 0.0 : component / length;
  return n;
}

double diagonal_of(const std::vector<Point> &nodes) {
  Point sides{};
  for (std::size_t i = 0; i < 3; ++i) {
    std::set<double> values;
    for (const Point &node : nodes) {
      if (std::isfinite(node[i]))
        values.insert(node[i]);
    }
    sides[i] = values.empty() ? 0.0 : *values.rbegin() - *values.begin();
  }
  return std::sqrt(times(sides, sides));
}

Model make_model(const Surface &surface, const std::vector<int> &preserved) {
  Model model;
  model.xyz = surface.nodes;
  model.diagonal = diagonal_of(surface.nodes);
  for (std::size_t slot = 0; slot < surface.faces.size(); ++slot) {
    const Face &face = surface.faces[slot];
    model.faces.emplace_back(face);
    model.normals.push_back(normal_of(model, face));
    for (const int node : std::set<int>(face.begin(), face.end()))
      model.records[node].push_back(static_cast<int>(slot));
  }
  for (const int node : preserved)
    model.records.erase(node);
  return model;
}

bool may_go(Model &model, int node, double threshold, double cosine) {
  const std::vector<int> &around = model.records[node];
  if (around.size() < 2)
    return false;
  for (const int slot : around) {
    const Face &face = *model.face(slot);
    for (const int other : face) {
      if (model.has_record(other) && !(squared(model.at(other), model.at(node)) <= threshold))
        return false;
    }
    if (face.size() < 3)
      return false;
    const auto normal = [&](int s) { return model.normals[static_cast<std::size_t>(s)]; };
    if (slot != around[0] && !(std::fabs(times(normal(around[0]), normal(slot))) >= cosine))
      return false;
  }
  return true;
}

// The first node stays, the others change their order.
Face reversed(Face face) {
  std::reverse(face.begin() + 1, face.end());
  return face;
}

std::optional<Face> chain_from(std::vector<Face> faces, int k) {
  const auto start = static_cast<std::size_t>(std::abs(k));
  const Face first = k < 0 ? reversed(faces[start]) : faces[start];
  faces.erase(faces.begin() + std::abs(k));
  Face polygon(first.begin() + 1, first.end());
  while (!faces.empty()) {
    auto found = std::find_if(faces.begin(), faces.end(),
                              [&](const Face &face) { return face[1] == polygon.back(); });
    if (found == faces.end()) {
      found = std::find_if(faces.begin(), faces.end(),
                           [&](const Face &face) { return face.back() == polygon.back(); });
      if (found == faces.end())
        return std::nullopt;
      *found = reversed(*found);
    }
    polygon.insert(polygon.end(), found->begin() + 2, found->end());
    faces.erase(found);
  }
  return polygon;
}

std::optional<Face> chain(const std::vector<Face> &faces) {
  const int count = static_cast<int>(faces.size());
  for (int k = 0; k < count; ++k) {
    if (const auto polygon = chain_from(faces, k))
      return polygon;
  }
  for (int k = 1; k < count; ++k) {
    if (const auto polygon = chain_from(faces, -k))
      return polygon;
  }
  return std::nullopt;
}

void cut_loops(const Model &model, Face &polygon) {
  const int count = static_cast<int>(polygon.size());
  const int limit = static_cast<int>(0.3 * count);
  std::set<int> dropped;
  const auto node_at = [&](int place) { return polygon[static_cast<std::size_t>(place)]; };
  const auto drop = [&](int from, int to) {
    for (int place = from; place < to; ++place) {
      if (model.has_record(node_at(place)))
        dropped.insert(place);
    }
  };
  for (int p = 0; p < count; ++p) {
    for (int q = p + 1; q < count; ++q) {
      if (dropped.count(p) || dropped.count(q) || node_at(p) != node_at(q))
        continue;
      if (q - p < limit) {
        drop(p + 1, q);
      } else if (count - (q - p) < limit) {
        drop(0, p);
        drop(q, count);
      }
    }
  }
  Face kept;
  for (int place = 0; place < count; ++place) {
    if (!dropped.count(place))
      kept.push_back(node_at(place));
  }
  polygon = kept;
}

void remove_node(Model &model, int node) {
  std::vector<int> slots;
  std::vector<Face> faces;
  for (const int slot : model.records[node]) {
    Face face = *model.face(slot);
    const auto place = std::find(face.begin(), face.end(), node);
    if (place == face.end())
      continue;
    std::rotate(face.begin(), place, face.end());
    slots.push_back(slot);
    faces.push_back(face);
  }
  std::optional<Face> polygon = faces.empty() ? std::nullopt : chain(faces);
  if (!polygon)
    return;
  if (polygon->front() == polygon->back())
    model.records.erase(node);
  else
    polygon->push_back(node);
  for (const int slot : slots)
    model.face(slot).reset();
  for (auto &[other, around] : model.records) {
    if (other <= node)
      continue;
    for (int &slot : around) {
      if (std::find(slots.begin(), slots.end(), slot) != slots.end())
        slot = slots[0];
    }
    const std::set<int> different(around.begin(), around.end());
    around.assign(different.begin(), different.end());
  }
  cut_loops(model, *polygon);
  model.face(slots[0]) = polygon;
}

Face without_colinear(const Model &model, const Face &face) {
  const double reach = 0.05 * model.diagonal * (0.05 * model.diagonal);
  const double cosine = std::cos(10.0 * std::numbers::pi / 180.0);
  Face kept;
  int previous = face.back();
  for (std::size_t i = 0; i < face.size(); ++i) {
    const Point back = minus(model.at(previous), model.at(face[i]));
    const Point onward = minus(model.at(face[(i + 1) % face.size()]), model.at(face[i]));
    const double b = times(back, back);
    const double o = times(onward, onward);
    const bool in_line = b <= reach && o <= reach && o != 0.0 &&
                         std::fabs(times(back, onward)) >= cosine * std::sqrt(b) * std::sqrt(o);
    if (model.has_record(face[i]) && (b == 0.0 || in_line))
      continue;
    previous = face[i];
    kept.push_back(previous);
  }
  return kept;
}

}  // namespace

std::vector<Face> coarsened_faces(const Surface &surface, const Coarsening &coarsening) {
  Model model = make_model(surface, coarsening.preserved);
  const double reach = coarsening.resolution * model.diagonal;
  const double cosine = std::cos(coarsening.angle * std::numbers::pi / 180.0);
  for (int node = 0; node < static_cast<int>(surface.nodes.size()); ++node) {
    if (model.has_record(node) && may_go(model, node, reach * reach, cosine))
      remove_node(model, node);
  }
  std::vector<Face> faces;
  for (const std::optional<Face> &face : model.faces) {
    if (!face)
      continue;
    const bool thinned = coarsening.drop_colinear && face->size() >= 4;
    const Face left = thinned ? without_colinear(model, *face) : *face;
    if (!left.empty())
      faces.push_back(left);
  }
  return faces;
}

}  // namespace qdltest
