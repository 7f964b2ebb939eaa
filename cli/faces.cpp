#include "faces.h"

#include "text_input.h"

namespace qdlflex::cli {

namespace {

bool whole(std::span<const int32_t> list, int32_t node_count) {
  for (size_t at = 0; at < list.size();) {
    const auto count = static_cast<size_t>(std::max(list[at], 0));
    if (count > list.size() - at - 1) {
      return false;
    }
    for (const int32_t node : list.subspan(at + 1, count)) {
      if (node < 0 || node >= node_count) {
        return false;
      }
    }
    at += 1 + count;
  }
  return true;
}

}  // namespace

std::vector<int32_t> read_faces(QDL_Record *record) {
  int32_t face_count = 0;
  int32_t length = 0;
  QDL_FaceListSize(record, &face_count, &length);
  std::vector<int32_t> list(static_cast<size_t>(length));
  if (face_count > 0 && QDL_ElementFaces(record, list.data()) == 0) {
    throw Failure("the faces cannot be read");
  }
  if (!whole(list, QDL_NodeCount(record))) {
    throw Failure("the faces use nodes that the model does not have");
  }
  return list;
}

std::vector<int32_t> read_outer_faces(QDL_Record *record) {
  check_faces(record);
  QDL_StripCommonFaces(record);
  return read_faces(record);
}

void check_faces(QDL_Record *record) {
  int32_t face_count = 0;
  int32_t length = 0;
  QDL_FaceListSize(record, &face_count, &length);
  if (face_count == 0) {
    throw Failure("the model has no faces");
  }
  read_faces(record);
}

}  // namespace qdlflex::cli
