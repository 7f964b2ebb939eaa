#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "record/record.h"

namespace qdlflex {

/// Calls `visit` with the place of every face's count in the list and its node indices, in list
/// order. A count below 1 stands for no nodes; a face that the end of the list cuts short has the
/// nodes that are left. The indices may lie outside the nodes.
template <class Visit>
void for_each_face_at(std::span<const std::int32_t> list, Visit visit) {
  for (std::size_t at = 0; at < list.size();) {
    const auto stored = static_cast<std::size_t>(std::max(list[at], 0));
    const std::size_t count = std::min(stored, list.size() - at - 1);
    visit(at, list.subspan(at + 1, count));
    at += 1 + count;
  }
}

/// The same with the node indices alone.
template <class Visit>
void for_each_face(const FaceList &faces, Visit visit) {
  for_each_face_at(faces.list,
                   [&](std::size_t, std::span<const std::int32_t> face) { visit(face); });
}

}  // namespace qdlflex
