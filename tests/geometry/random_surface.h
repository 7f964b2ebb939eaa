// Small random surfaces with everything that makes coarsening hard.
#pragma once

#include <random>

#include "geometry/coarsen_model.h"

namespace qdltest {

class RandomSurfaces {
 public:
  explicit RandomSurfaces(unsigned seed) : random_(seed) {}

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  bool one_in(int count) { return below(count) == 0; }

  // A bumpy or flat plate of quadrilaterals and triangles with holes and seams, faces and nodes in
  // any order, some faces broken.
  Surface plate();
  // Triangles around one node: a cone, or several fans that meet in its tip.
  Surface cone();
  // Polygons between any nodes of a plane.
  Surface tangle();

  Coarsening coarsening(const Surface &surface);

 private:
  double noise(double size);
  void disturb(Surface &surface);
  void shuffle(Surface &surface);

  std::mt19937 random_;
};

}  // namespace qdltest
