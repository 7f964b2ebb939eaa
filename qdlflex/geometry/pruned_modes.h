#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "modes/mode_rewrite.h"
#include "record/record.h"

namespace qdlflex {

/// One kind of mode data, with the set of its nodes, cut down to the nodes that stay.
class PrunedModes {
 public:
  /// `kept` are the node indices that stay, ascending. None after a reported failure; the record is
  /// as it was.
  static std::optional<PrunedModes> prepare(QDL_Record &record, std::int32_t kind,
                                            std::span<const std::int32_t> kept);

  /// Leaves the mode shapes without values: for those that could not be rewritten.
  static PrunedModes without_values(QDL_Record &record, std::span<const std::int32_t> kept);

  /// Takes the new values over and tells their file's name.
  void adopt_values(QDL_Record &record) noexcept;
  /// Takes the nodes over that the values belong to, with a warning where none is left.
  void adopt_nodes(QDL_Record &record) noexcept;

 private:
  explicit PrunedModes(std::int32_t kind) : kind_(kind) {}

  void choose_rows(const QDL_Record &record, std::span<const std::int32_t> kept);
  void choose_pre_vectors(const std::vector<Vector6> &vectors);
  bool rewrite(QDL_Record &record);

  std::int32_t kind_;
  std::vector<std::int32_t> rows_;  // present position of each row that stays
  NodeSet nodes_;                   // kinds 1 and 2
  std::vector<Vector6> pre_vectors_;
  std::optional<ModeRewrite> values_;
  bool lost_ = false;
};

}  // namespace qdlflex
