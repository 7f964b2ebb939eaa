#include "geometry/qdlcoarse_mesh.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "geometry/vector3.h"
#include "record/faces.h"

namespace qdlflex {
namespace {

std::size_t at(std::int32_t index) {
  return static_cast<std::size_t>(index);
}

Vector3 unit_normal(const Vector3 &p0, const Vector3 &p1, const Vector3 &p2) {
  const Vector3 a = difference(p0, p1);
  const Vector3 b = difference(p2, p1);
  Vector3 normal = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                    a[0] * b[1] - a[1] * b[0]};
  const double length = std::sqrt(dot(normal, normal));
  if (length != 0.0) {
    for (double &component : normal)
      component /= length;
  }
  return normal;
}

}  // namespace

bool CoarseMesh::accepts(const QDL_Record &record) {
  bool accepted = true;
  std::int32_t count = 0;
  for_each_face(record.faces, [&](std::span<const std::int32_t> face) {
    ++count;
    const auto stored = static_cast<std::size_t>(std::max(*(face.data() - 1), 0));
    accepted =
        accepted && stored == face.size() &&
        std::ranges::all_of(face, [&](std::int32_t node) { return is_node_index(record, node); });
  });
  return accepted && count != 0 && count >= record.faces.count && !record.nodes.empty();
}

CoarseMesh::CoarseMesh(const QDL_Record &record) : nodes(record.nodes.size()) {
  for (std::size_t node = 0; node < nodes.size(); ++node)
    nodes[node].xyz = record.nodes[node].xyz;
  find_diagonal();
  faces_.reserve(at(std::max(record.faces.count, 0)));
  for_each_face(record.faces, [&](std::span<const std::int32_t> face) { faces_.push_back(face); });
  polygons_.resize(faces_.size());
  merged_into_.resize(faces_.size());
  for (Slot slot = 0; slot < slot_count(); ++slot)
    merged_into_[at(slot)] = slot;
  link_faces_to_nodes();
  find_normals();
}

void CoarseMesh::find_diagonal() {
  Vector3 low{};
  Vector3 high{};
  low.fill(std::numeric_limits<double>::infinity());
  high.fill(-std::numeric_limits<double>::infinity());
  for (const CoarseNode &node : nodes) {
    for (std::size_t i = 0; i < node.xyz.size(); ++i) {
      if (!std::isfinite(node.xyz[i]))
        continue;
      low[i] = std::min(low[i], node.xyz[i]);
      high[i] = std::max(high[i], node.xyz[i]);
    }
  }
  double squared = 0.0;
  for (std::size_t i = 0; i < low.size(); ++i) {
    const double side = std::max(high[i] - low[i], 0.0);
    squared += side * side;
  }
  diagonal_ = std::sqrt(squared);
}

/// A face that names a node twice uses it once.
void CoarseMesh::link_faces_to_nodes() {
  std::vector<Slot> last_user(nodes.size(), -1);
  const auto for_each_use = [&](auto visit) {
    std::ranges::fill(last_user, -1);
    for (Slot slot = 0; slot < slot_count(); ++slot) {
      for (const std::int32_t node : face(slot)) {
        if (std::exchange(last_user[at(node)], slot) != slot)
          visit(at(node), slot);
      }
    }
  };
  first_use_.assign(nodes.size() + 1, 0);
  for_each_use([&](std::size_t node, Slot) { ++first_use_[node + 1]; });
  for (std::size_t node = 0; node < nodes.size(); ++node) {
    nodes[node].removable = first_use_[node + 1] != 0;
    first_use_[node + 1] += first_use_[node];
  }
  uses_.resize(first_use_.back());
  std::vector<std::size_t> next(first_use_.begin(), first_use_.end() - 1);
  for_each_use([&](std::size_t node, Slot slot) { uses_[next[node]++] = slot; });
}

void CoarseMesh::find_normals() {
  constexpr std::size_t kFewestNodes = 3;
  normals_.resize(faces_.size());
  for (Slot slot = 0; slot < slot_count(); ++slot) {
    const std::span<const std::int32_t> corners = face(slot);
    if (corners.size() >= kFewestNodes)
      normals_[at(slot)] = unit_normal(nodes[at(corners[0])].xyz, nodes[at(corners[1])].xyz,
                                       nodes[at(corners[2])].xyz);
  }
}

std::span<const std::int32_t> CoarseMesh::face(Slot slot) const {
  return faces_[at(slot)];
}

void CoarseMesh::set_face(Slot slot, std::span<const std::int32_t> polygon) {
  polygons_[at(slot)].assign(polygon.begin(), polygon.end());
  faces_[at(slot)] = polygons_[at(slot)];
}

void CoarseMesh::merge(Slot slot, Slot into) {
  merged_into_[at(slot)] = into;
  faces_[at(slot)] = {};
  polygons_[at(slot)] = {};
}

CoarseMesh::Slot CoarseMesh::final_slot(Slot slot) {
  while (merged_into_[at(slot)] != slot)
    slot = merged_into_[at(slot)] = merged_into_[at(merged_into_[at(slot)])];
  return slot;
}

void CoarseMesh::slots_around(std::int32_t node, std::vector<Slot> &slots) {
  slots.clear();
  for (std::size_t use = first_use_[at(node)]; use < first_use_[at(node) + 1]; ++use)
    slots.push_back(final_slot(uses_[use]));
  std::sort(slots.begin(), slots.end());
  slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
}

FaceList CoarseMesh::face_list() const {
  FaceList faces;
  faces.present = true;
  std::size_t length = 0;
  for (const auto &nodes_of_face : faces_)
    length += nodes_of_face.empty() ? 0 : nodes_of_face.size() + 1;
  faces.list.reserve(length);
  for (const auto &nodes_of_face : faces_) {
    if (nodes_of_face.empty())
      continue;
    faces.list.push_back(static_cast<std::int32_t>(nodes_of_face.size()));
    faces.list.insert(faces.list.end(), nodes_of_face.begin(), nodes_of_face.end());
    ++faces.count;
  }
  return faces;
}

}  // namespace qdlflex
