#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "record/record.h"

namespace qdlflex {

/// Calls `visit` with the node indices of every face, in list order. A count below 1 stands for no
/// nodes; a face that the end of the list cuts short has the nodes that are left. The indices may
/// lie outside the nodes.
template <class Visit>
void for_each_face(const FaceList &faces, Visit visit) {
  const std::span<const std::int32_t> list(faces.list);
  for (std::size_t at = 0; at < list.size();) {
    const auto stored = static_cast<std::size_t>(std::max(list[at], 0));
    ++at;
    const std::size_t count = std::min(stored, list.size() - at);
    visit(list.subspan(at, count));
    at += count;
  }
}

}  // namespace qdlflex
