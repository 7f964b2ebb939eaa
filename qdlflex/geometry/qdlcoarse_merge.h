#pragma once

#include <cstdint>
#include <vector>

#include "geometry/qdlcoarse_fan.h"
#include "geometry/qdlcoarse_loops.h"
#include "geometry/qdlcoarse_mesh.h"

namespace qdlflex {

/// Removes nodes from nearly flat patches by merging the faces around them.
class FaceMerger {
 public:
  /// The reach is the squared distance up to which the nodes around a removed one may be away.
  FaceMerger(CoarseMesh &mesh, double squared_reach, double angle);

  /// Merges the faces around a node, unless something speaks against it.
  void visit(std::int32_t node);

 private:
  struct FaceAround {
    CoarseMesh::Slot slot = 0;
    std::size_t place = 0;  // of the node
  };

  bool is_flat() const;
  bool is_near(std::int32_t node) const;
  bool chain(std::int32_t node);
  void join_faces();
  void merge(std::int32_t node);

  CoarseMesh &mesh_;
  double squared_reach_;
  double cosine_;
  FanChain fan_;
  LoopCutter loops_;
  // Of the node being visited.
  std::vector<CoarseMesh::Slot> slots_;
  std::vector<FaceAround> faces_;
  std::vector<std::int32_t> polygon_;
};

/// Drops corners that coincide with the one before or lie nearly in line with both neighbours.
void drop_colinear_corners(CoarseMesh &mesh);

}  // namespace qdlflex
