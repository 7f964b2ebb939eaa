// Coarsening as it is described, node by node with plain lists that are always up to date: what the
// library is compared with.
#pragma once

#include <array>
#include <vector>

namespace qdltest {

struct Surface {
  std::vector<std::array<double, 3>> nodes;
  std::vector<std::vector<int>> faces;
};

struct Coarsening {
  double resolution = 0.02;
  double angle = 10.0;
  bool drop_colinear = false;
  std::vector<int> preserved;  // node indices
};

std::vector<std::vector<int>> coarsened_faces(const Surface &surface, const Coarsening &coarsening);

}  // namespace qdltest
