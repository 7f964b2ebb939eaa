#include "geometry/coarsened.h"

#include <qdlflex/qdlflex.h>

#include "record/faces.h"

namespace qdlflex {

bool is_coarsened(QDL_Record &record) {
  constexpr std::size_t kMostNodesOfElementFace = 4;
  if (!record.coarsened) {
    for_each_face(record.faces, [&](std::span<const std::int32_t> face) {
      record.coarsened |= face.size() > kMostNodesOfElementFace;
    });
  }
  return record.coarsened;
}

}  // namespace qdlflex

int32_t QDL_IsCoarsened(QDL_Record *model) {
  return model != nullptr && qdlflex::is_coarsened(*model) ? 1 : 0;
}
