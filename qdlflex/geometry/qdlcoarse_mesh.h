#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// A node of a run. One that may not be removed (to be preserved, removed already, or in no face)
/// takes no part in distance tests either.
struct CoarseNode {
  Vector3 xyz{};
  bool removable = false;
};

/// Nodes and faces on the way from elements to merged polygons. Every face has a slot; merging
/// leaves the polygon in the first slot of its faces and the others empty.
class CoarseMesh {
 public:
  using Slot = std::int32_t;

  /// Whether the faces are whole, there are some, and all their nodes exist.
  static bool accepts(const QDL_Record &record);
  /// For a record that is accepted.
  explicit CoarseMesh(const QDL_Record &record);

  /// Of the bounding box of all nodes; coordinates that are not finite are left out.
  double diagonal() const { return diagonal_; }

  std::vector<CoarseNode> nodes;

  Slot slot_count() const { return static_cast<Slot>(faces_.size()); }
  /// The nodes in a slot; none where the face was merged away.
  std::span<const std::int32_t> face(Slot slot) const;
  void set_face(Slot slot, std::span<const std::int32_t> nodes);
  void merge(Slot slot, Slot into);

  /// The slots of the faces that use a node or are merged with such a face, ascending.
  void slots_around(std::int32_t node, std::vector<Slot> &slots);

  /// Unit normals of the faces as they were at first, by slot; zero for a face without an area.
  const Vector3 &normal(Slot slot) const { return normals_[static_cast<std::size_t>(slot)]; }

  FaceList face_list() const;

 private:
  void find_diagonal();
  void link_faces_to_nodes();
  void find_normals();
  Slot final_slot(Slot slot);

  double diagonal_ = 0.0;
  std::vector<std::span<const std::int32_t>> faces_;  // into the list or into a polygon
  std::vector<std::vector<std::int32_t>> polygons_;   // by slot, where the face is not an element
  std::vector<Slot> merged_into_;                     // by slot; itself at the end of the way
  std::vector<std::size_t> first_use_;                // by node, and one more
  std::vector<Slot> uses_;                            // faces as they were at first, by node
  std::vector<Vector3> normals_;
};

}  // namespace qdlflex
