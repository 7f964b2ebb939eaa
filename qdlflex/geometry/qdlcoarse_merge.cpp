#include "geometry/qdlcoarse_merge.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "geometry/vector3.h"

namespace qdlflex {
namespace {

std::size_t at(std::int32_t index) {
  return static_cast<std::size_t>(index);
}

double squared_distance(const Vector3 &a, const Vector3 &b) {
  const Vector3 way = difference(a, b);
  return dot(way, way);
}

double cosine_of_degrees(double degrees) {
  return std::cos(degrees * std::numbers::pi / 180.0);
}

}  // namespace

FaceMerger::FaceMerger(CoarseMesh &mesh, double squared_reach, double angle)
    : mesh_(mesh),
      squared_reach_(squared_reach),
      cosine_(cosine_of_degrees(angle)),
      fan_(mesh.nodes.size()),
      loops_(mesh.nodes) {}

void FaceMerger::visit(std::int32_t node) {
  constexpr std::size_t kFewestFaces = 2;
  if (!mesh_.nodes[at(node)].removable)
    return;
  mesh_.slots_around(node, slots_);
  if (slots_.size() >= kFewestFaces && is_flat() && is_near(node) && chain(node))
    merge(node);
}

// Comparisons are written so that what is not a number speaks against merging.

bool FaceMerger::is_flat() const {
  constexpr std::size_t kFewestNodes = 3;
  const Vector3 &first = mesh_.normal(slots_.front());
  return std::ranges::all_of(slots_, [&](CoarseMesh::Slot slot) {
    return mesh_.face(slot).size() >= kFewestNodes &&
           (slot == slots_.front() || std::fabs(dot(first, mesh_.normal(slot))) >= cosine_);
  });
}

bool FaceMerger::is_near(std::int32_t node) const {
  const Vector3 &centre = mesh_.nodes[at(node)].xyz;
  return std::ranges::all_of(slots_, [&](CoarseMesh::Slot slot) {
    return std::ranges::all_of(mesh_.face(slot), [&](std::int32_t other_index) {
      const CoarseNode &other = mesh_.nodes[at(other_index)];
      return !other.removable || squared_distance(other.xyz, centre) <= squared_reach_;
    });
  });
}

/// Chains the faces that have the node; a loop that was cut may have taken it out of some.
bool FaceMerger::chain(std::int32_t node) {
  faces_.clear();
  fan_.clear();
  for (const CoarseMesh::Slot slot : slots_) {
    const std::span<const std::int32_t> face = mesh_.face(slot);
    const auto found = std::ranges::find(face, node);
    if (found == face.end())
      continue;
    const auto place = static_cast<std::size_t>(found - face.begin());
    faces_.push_back({slot, place});
    fan_.add_face(face[place + 1 == face.size() ? 0 : place + 1],
                  face[(place == 0 ? face.size() : place) - 1]);
  }
  return fan_.find();
}

/// The nodes of all faces in turn, each without the common node and, after the first, without the
/// node that the one before ends with.
void FaceMerger::join_faces() {
  polygon_.clear();
  for (const FanChain::Step &step : fan_.steps()) {
    const auto [slot, place] = faces_[step.face];
    const std::span<const std::int32_t> face = mesh_.face(slot);
    const auto before = face.first(place);
    const auto behind = face.subspan(place + 1);
    if (!polygon_.empty())
      polygon_.pop_back();
    if (step.reversed) {
      polygon_.insert(polygon_.end(), before.rbegin(), before.rend());
      polygon_.insert(polygon_.end(), behind.rbegin(), behind.rend());
    } else {
      polygon_.insert(polygon_.end(), behind.begin(), behind.end());
      polygon_.insert(polygon_.end(), before.begin(), before.end());
    }
  }
}

void FaceMerger::merge(std::int32_t node) {
  join_faces();
  if (polygon_.front() == polygon_.back())
    mesh_.nodes[at(node)].removable = false;
  else
    polygon_.push_back(node);  // on the border of the surface
  loops_.cut(polygon_);
  const CoarseMesh::Slot kept = faces_.front().slot;
  for (const FaceAround &face : faces_) {
    if (face.slot != kept)
      mesh_.merge(face.slot, kept);
  }
  mesh_.set_face(kept, polygon_);
}

namespace {

class CornerTest {
 public:
  explicit CornerTest(const CoarseMesh &mesh)
      : mesh_(mesh), squared_reach_(0.05 * mesh.diagonal() * (0.05 * mesh.diagonal())) {}

  bool is_kept(std::int32_t previous, std::int32_t node, std::int32_t next) const {
    const CoarseNode &corner = mesh_.nodes[at(node)];
    if (!corner.removable)
      return true;
    const Vector3 back = difference(mesh_.nodes[at(previous)].xyz, corner.xyz);
    const Vector3 onward = difference(mesh_.nodes[at(next)].xyz, corner.xyz);
    const double back_squared = dot(back, back);
    const double onward_squared = dot(onward, onward);
    if (back_squared == 0.0)
      return false;
    const bool near = back_squared <= squared_reach_ && onward_squared <= squared_reach_;
    return !near || onward_squared == 0.0 ||
           !(std::fabs(dot(back, onward)) / std::sqrt(back_squared) / std::sqrt(onward_squared) >=
             cosine_);
  }

 private:
  const CoarseMesh &mesh_;
  double squared_reach_;
  double cosine_ = cosine_of_degrees(10.0);
};

}  // namespace

void drop_colinear_corners(CoarseMesh &mesh) {
  constexpr std::size_t kFewestNodes = 4;
  const CornerTest test(mesh);
  std::vector<std::int32_t> kept;
  for (CoarseMesh::Slot slot = 0; slot < mesh.slot_count(); ++slot) {
    const std::span<const std::int32_t> face = mesh.face(slot);
    if (face.size() < kFewestNodes)
      continue;
    kept.clear();
    std::int32_t previous = face.back();
    for (std::size_t place = 0; place < face.size(); ++place) {
      const std::int32_t next = face[place + 1 == face.size() ? 0 : place + 1];
      if (!test.is_kept(previous, face[place], next))
        continue;
      previous = face[place];
      kept.push_back(previous);
    }
    if (kept.size() != face.size())
      mesh.set_face(slot, kept);
  }
}

}  // namespace qdlflex
