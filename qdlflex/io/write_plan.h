#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "format/codec.h"
#include "io/write_options.h"
#include "record/record.h"

namespace qdlflex {

/// What a write decides for itself; the record keeps its own version code and presence bytes.
struct WritePlan {
  std::uint32_t version_code = 0;
  Summary summary{};
  // The exported modes, a contiguous range.
  std::int32_t first_mode = 0;
  std::int32_t end_mode = 0;
  /// Where damping is on principal axes: the rigid modes that these stand for. A change of units
  /// may lead to another count, as its limits are frequencies.
  std::int32_t rigid_modes = 0;
  /// False after a step that went wrong without failing the write.
  bool may_convert_units = true;
  /// Of the exported modes; filled while stress and strain are written.
  std::vector<ModalStatistics> statistics;

  std::int32_t modes() const { return end_mode - first_mode; }
  bool writes(Block block) const { return summary[summary_position(block)] != 0; }
  void set(Block block, bool present) { summary[summary_position(block)] = present ? 1 : 0; }
  Encoding encoding() const;
  /// Older versions hold a value of stress and strain for every node.
  bool full_stress() const;
};

/// Applies the options that change the model itself. False when the write has to fail, because the
/// frame could not be shifted; the reason has been reported.
bool edit_model(QDL_Record &record, const WriteOptions &options);

/// Decides which blocks are written and computes what the record lacks for them. False when the
/// write has to fail; the reason has been reported.
bool prepare_blocks(QDL_Record &record, const WriteOptions &options, WritePlan &plan);

}  // namespace qdlflex
