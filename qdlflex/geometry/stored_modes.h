#pragma once

#include <algorithm>
#include <cstdint>

#include "modes/mode_store.h"
#include "record/record.h"

namespace qdlflex {

/// Modes of a kind that its backing has values of: none without a backing, and fewer than the
/// record has after a transformation to fewer modes.
inline std::int32_t stored_mode_count(QDL_Record &record, std::int32_t kind) {
  const Backing &backing = mode_data(record, kind).backing;
  const std::size_t stored = backing.channel.file == nullptr ? 0 : backing.starts.size();
  return static_cast<std::int32_t>(std::min(stored, record.mode_numbers.size()));
}

}  // namespace qdlflex
