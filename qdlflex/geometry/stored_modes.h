#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "modes/mode_rewrite.h"
#include "modes/mode_store.h"
#include "record/lookups.h"
#include "record/record.h"

namespace qdlflex {

/// Modes of a kind that its backing has values of: none without a backing, and fewer than the
/// record has after a transformation to fewer modes.
inline std::int32_t stored_mode_count(QDL_Record &record, std::int32_t kind) {
  const Backing &backing = mode_data(record, kind).backing;
  const std::size_t stored = backing.channel.file == nullptr ? 0 : backing.starts.size();
  return static_cast<std::int32_t>(std::min(stored, record.mode_numbers.size()));
}

/// Writes and finishes all stored modes of a kind with `change(rows, six)` applied to so many rows
/// of six values at a time. False after a reported failure.
template <class Change>
bool rewrite_changed(QDL_Record &record, std::int32_t kind, ModeRewrite &target, Change change) {
  constexpr std::int64_t kPieceRows = 32768;  // 1.5 MiB
  const std::int64_t nodes = mode_node_count(record, kind);
  std::vector<double> piece(static_cast<std::size_t>(std::min(kPieceRows, nodes) * kComponents));
  const std::int32_t modes = stored_mode_count(record, kind);
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    for (std::int64_t first = 0; first < nodes; first += kPieceRows) {
      const std::int64_t rows = std::min(kPieceRows, nodes - first);
      if (!read_rows(record, kind, mode, first, rows, piece.data())) {
        report_unreadable_mode(kind, record.mode_numbers[static_cast<std::size_t>(mode)]);
        return false;
      }
      change(rows, piece.data());
      if (!target.write_rows(mode, first, rows, piece.data()))
        return false;
    }
  }
  return target.finish();
}

}  // namespace qdlflex
