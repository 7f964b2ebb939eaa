#include <cstdarg>
#include <span>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "record/derived.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";
constexpr std::size_t kFewestNodes = 2;

/// The face as the list holds it: node count, then indices, without repeated neighbours and
/// without the first node at the end of a closed polygon.
std::vector<std::int32_t> make_face(QDL_Record &record, std::span<const std::int32_t> node_ids) {
  std::vector<std::int32_t> face = {0};
  face.reserve(node_ids.size() + 1);
  for (const std::int32_t id : node_ids) {
    const std::int32_t index = find_or_add_node(record, id);
    if (face.size() == 1 || face.back() != index)
      face.push_back(index);
  }
  while (face.size() > kFewestNodes && face.back() == face[1])
    face.pop_back();
  face[0] = static_cast<std::int32_t>(face.size() - 1);
  return face;
}

std::int32_t add_face(QDL_Record &record, std::span<const std::int32_t> node_ids) {
  const std::vector<std::int32_t> face = make_face(record, node_ids);
  if (face.size() - 1 < kFewestNodes)
    return 0;
  FaceList &faces = record.faces;
  faces.list.insert(faces.list.end(), face.begin(), face.end());
  ++faces.count;
  faces.present = true;
  raise(record, Block::kElementFaces);
  note_faces_changed(record);
  return 1;
}

std::vector<std::int32_t> listed(std::int32_t count, std::va_list arguments) {
  std::vector<std::int32_t> values(static_cast<std::size_t>(count));
  for (std::int32_t &value : values)
    value = va_arg(arguments, std::int32_t);
  return values;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetFace(QDL_Record *model, int32_t count, ...) {
  std::va_list arguments;
  va_start(arguments, count);
  const int32_t result = with_model(model, kArea, 0, [&](QDL_Record &record) {
    return count < 1 ? 0 : add_face(record, listed(count, arguments));
  });
  va_end(arguments);
  return result;
}

int32_t QDL_SetFaceList(QDL_Record *model, int32_t count, const int32_t *nodeIds) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (count < 1 || nodeIds == nullptr)
      return 0;
    return add_face(record, {nodeIds, static_cast<std::size_t>(count)});
  });
}
