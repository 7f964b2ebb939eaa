#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numerics/mode_products.h"
#include "record/record.h"

namespace qdlflex {

/// A node with an inertia tensor, by its row in a chunk.
struct InertiaRow {
  std::size_t row;
  Matrix3 inertia;
};

/// Walks once through the mode shapes, all modes of one range of nodes after the other, so that
/// every value is read once and the memory for it stays within the limit of mode data. A mode that
/// can't be read is reported and lost: what stands in its lane then means nothing.
class ModeChunks {
 public:
  /// Nodes of a block: the vectors of two panels stay in the processor's first cache.
  static constexpr std::size_t kBlockRows = 128;

  explicit ModeChunks(QDL_Record &record);

  /// Goes on to the next nodes and reads their modes; false behind the last node.
  bool next();

  std::size_t modes() const { return modes_; }
  /// Four modes make a panel; the last one may have lanes without a mode.
  std::size_t panels() const { return panels_; }
  std::size_t blocks() const { return (rows_ + kBlockRows - 1) / kBlockRows; }
  std::size_t block_rows(std::size_t block) const;

  // By node of a block.
  const double *masses(std::size_t block) const { return &masses_[block * kBlockRows]; }
  const LaneVectors *panel(std::size_t block, std::size_t panel) const {
    return &vectors_[panel_start(block, panel)];
  }
  /// Coordinates in lane 0 and zeros in the others.
  const LaneVectors *positions(std::size_t block) const { return &positions_[block * kBlockRows]; }

  /// J^T q summed over all nodes so far that have an inertia J, with the rotations q of a mode.
  const Vector3 &rotational_moment(std::size_t mode) const { return rotational_[mode]; }

  bool is_lost(std::size_t mode) const { return lost_[mode]; }

 private:
  std::size_t panel_start(std::size_t block, std::size_t panel) const;
  void take_nodes();
  void read_mode(std::size_t mode);

  QDL_Record &record_;
  std::size_t modes_;
  std::size_t panels_;
  std::size_t nodes_;
  std::size_t most_rows_;
  std::size_t first_ = 0;
  std::size_t rows_ = 0;
  std::vector<double> masses_;
  std::vector<LaneVectors> positions_;
  std::vector<InertiaRow> with_inertia_;
  std::vector<double> six_;
  std::vector<LaneVectors> vectors_;  // block, panel, node
  std::vector<Vector3> rotational_;
  std::vector<bool> lost_;
};

}  // namespace qdlflex
