#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "record.h"

namespace qdlflex::cli {

/// The faces of a model by node indices, in the flat form of the library: per face its node count
/// and its nodes. Empty if the model has none. Throws a Failure if a face uses a node that is none.
std::vector<int32_t> read_faces(QDL_Record *record);

/// The same after those that two elements share are gone.
std::vector<int32_t> read_outer_faces(QDL_Record *record);

/// Throws a Failure if the model has no faces, about which the library would be less clear, or if a
/// face uses a node that is none.
void check_faces(QDL_Record *record);

/// Calls `visit` with the node indices of every face that has any.
template <class Visit>
void for_each_face(std::span<const int32_t> list, Visit visit) {
  for (size_t at = 0; at < list.size();) {
    const auto count = static_cast<size_t>(std::max(list[at], 0));
    if (count > 0) {
      visit(list.subspan(at + 1, count));
    }
    at += 1 + count;
  }
}

}  // namespace qdlflex::cli
