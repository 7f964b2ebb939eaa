#include "numerics/mode_chunks.h"

#include <algorithm>

#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "record/lookups.h"

namespace qdlflex {
namespace {

/// Rows per read: enough for a read to be cheap, few enough to stay in the processor's caches.
constexpr std::size_t kMostRows = 1024;

/// Nodes that have mode vectors: the first ones where a file lists fewer of them than nodes.
std::size_t nodes_with_modes(const QDL_Record &record) {
  return static_cast<std::size_t>(
      std::min(node_count(record), mode_node_count(record, kModeShapes)));
}

std::size_t rows_within_limit(std::size_t panels) {
  const auto limit = static_cast<std::size_t>(mode_memory_limit());
  return std::clamp<std::size_t>(limit / (panels * sizeof(LaneVectors)), 1, kMostRows);
}

}  // namespace

ModeChunks::ModeChunks(QDL_Record &record)
    : record_(record),
      modes_(record.mode_numbers.size()),
      panels_((modes_ + kLanes - 1) / kLanes),
      nodes_(nodes_with_modes(record)),
      most_rows_(std::min(nodes_, rows_within_limit(std::max<std::size_t>(panels_, 1)))),
      masses_(most_rows_),
      positions_(most_rows_),
      six_(most_rows_ * kComponents),
      vectors_(most_rows_ * panels_),
      rotational_(modes_),
      lost_(modes_) {}

bool ModeChunks::next() {
  first_ += rows_;
  rows_ = std::min(most_rows_, nodes_ - first_);
  if (rows_ == 0)
    return false;
  take_nodes();
  for (std::size_t mode = 0; mode < modes_; ++mode) {
    if (!lost_[mode])
      read_mode(mode);
  }
  return true;
}

std::size_t ModeChunks::block_rows(std::size_t block) const {
  return std::min(kBlockRows, rows_ - block * kBlockRows);
}

/// The last block of a chunk may be short.
std::size_t ModeChunks::panel_start(std::size_t block, std::size_t panel) const {
  return block * kBlockRows * panels_ + panel * block_rows(block);
}

void ModeChunks::take_nodes() {
  with_inertia_.clear();
  for (std::size_t row = 0; row < rows_; ++row) {
    const Node &node = record_.nodes[first_ + row];
    masses_[row] = node.mass;
    for (std::size_t c = 0; c < 3; ++c)
      positions_[row].of[c][0] = node.xyz[c];
    if (node.inertia != nullptr)
      with_inertia_.push_back({row, symmetric_matrix(*node.inertia)});
  }
}

void ModeChunks::read_mode(std::size_t mode) {
  lost_[mode] =
      !read_rows(record_, kModeShapes, static_cast<std::int32_t>(mode),
                 static_cast<std::int64_t>(first_), static_cast<std::int64_t>(rows_), six_.data());
  if (lost_[mode]) {
    report_unreadable_mode(kModeShapes, record_.mode_numbers[mode]);
    return;
  }

  const std::size_t lane = mode % kLanes;
  const double *row = six_.data();
  for (std::size_t block = 0; block < blocks(); ++block) {
    LaneVectors *vectors = &vectors_[panel_start(block, mode / kLanes)];
    for (std::size_t n = 0; n < block_rows(block); ++n, row += kComponents) {
      for (std::size_t c = 0; c < 3; ++c)
        vectors[n].of[c][lane] = row[c];
    }
  }
  for (const InertiaRow &node : with_inertia_) {
    const double *rotation = &six_[node.row * kComponents + 3];
    for (std::size_t c = 0; c < 3; ++c) {
      rotational_[mode][c] += node.inertia[c] * rotation[0] + node.inertia[3 + c] * rotation[1] +
                              node.inertia[6 + c] * rotation[2];
    }
  }
}

}  // namespace qdlflex
