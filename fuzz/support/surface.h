// Faces of all kinds for the targets about geometry.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <vector>

#include "support/harness.h"

namespace qdlfuzz {

struct Surface {
  std::vector<double> coordinates;               // three per node
  std::vector<std::vector<std::int32_t>> faces;  // node indices, some of which are no nodes
  std::vector<std::int32_t> interface_nodes;     // node indices
};

// A sheet of quadrilaterals, or nothing, with any faces added to it and any nodes moved.
Surface take_surface(Bytes &in);

// The face list as a file could hold it.
std::vector<std::int32_t> face_list(const Surface &surface);

// The identifier of a node index in the models below; 0 where there is no such node.
std::int32_t identifier(const Surface &surface, std::int32_t index);

// A model with these nodes and exactly these faces.
QDL_Record *make_model(const Surface &surface);

// The faces of a model.
std::vector<std::vector<std::int32_t>> faces_of(QDL_Record *model);

}  // namespace qdlfuzz
