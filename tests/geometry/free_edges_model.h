// Free edges as they are described, with plain maps: what the library is compared with.
#pragma once

#include <vector>

namespace qdltest {

using Faces = std::vector<std::vector<int>>;
using Chains = std::vector<std::vector<int>>;

// Chains of node keys.
Chains free_edges_of(const Faces &faces);

// Node count, then the nodes, face after face.
std::vector<int> face_list(const Faces &faces);

}  // namespace qdltest
