#include "geometry/pruned_modes.h"

#include <algorithm>
#include <utility>

#include "geometry/stored_modes.h"
#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "record/lookups.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

/// Rows that are read and written at a time: 1.5 MiB.
constexpr std::int64_t kChunkRows = 32768;

Block pre_vector_block(std::int32_t kind) {
  return kind == kModalStress ? Block::kPreStress : Block::kPreStrain;
}

std::vector<Vector6> &pre_vectors(QDL_Record &record, std::int32_t kind) {
  return kind == kModalStress ? record.pre_stress : record.pre_strain;
}

/// Copies rows of one mode as they are stored. Rows in ascending order are read in one sequential
/// pass; any other order needs the mode as a whole in memory.
class RowCopy {
 public:
  RowCopy(QDL_Record &record, std::int32_t kind, const std::vector<std::int32_t> &rows)
      : record_(record),
        kind_(kind),
        rows_(rows),
        all_(std::ranges::max(rows) + std::int64_t{1}),
        chunk_rows_(std::ranges::is_sorted(rows) ? std::min(kChunkRows, all_) : all_),
        read_(static_cast<std::size_t>(chunk_rows_ * kComponents)),
        kept_(static_cast<std::size_t>(
            std::min(chunk_rows_, static_cast<std::int64_t>(rows.size())) * kComponents)) {}

  bool copy(std::int32_t mode, ModeRewrite &target) {
    std::size_t done = 0;
    for (std::int64_t first = 0; first < all_; first += chunk_rows_) {
      const std::int64_t end = std::min(first + chunk_rows_, all_);
      if (rows_[done] >= end && chunk_rows_ != all_)
        continue;
      if (!read_stored_rows(record_, kind_, mode, first, end - first, read_.data())) {
        report_unreadable_mode(kind_, record_.mode_numbers[static_cast<std::size_t>(mode)]);
        return false;
      }
      const std::size_t written = done;
      done = gather(done, first, end);
      const auto count = static_cast<std::int64_t>(done - written);
      if (!target.write_rows(mode, static_cast<std::int64_t>(written), count, kept_.data()))
        return false;
    }
    return true;
  }

 private:
  /// Collects the rows from the chunk that begins with `first`. The place of the next row.
  std::size_t gather(std::size_t place, std::int64_t first, std::int64_t end) {
    double *to = kept_.data();
    for (; place < rows_.size() && rows_[place] < end; ++place, to += kComponents)
      std::copy_n(read_.data() + (rows_[place] - first) * kComponents, kComponents, to);
    return place;
  }

  QDL_Record &record_;
  std::int32_t kind_;
  const std::vector<std::int32_t> &rows_;
  std::int64_t all_;
  std::int64_t chunk_rows_;
  std::vector<double> read_;
  std::vector<double> kept_;
};

const char *word_of(std::int32_t kind) {
  switch (kind) {
    case kModeShapes:
      return "Shape";
    case kModalStress:
      return "Stress";
    default:
      return "Strain";
  }
}

void warn_of_lost_modes(std::int32_t kind) {
  if (kind == kModalStress) {
    QDL_Warning(
        "All the nodes referenced in Stress Mode have been removed. Stress Mode data is "
        "eliminated.");
  } else {
    QDL_Warning(
        "All the nodes referenced in Strain Mode have been removed. Strain Mode data is "
        "eliminated.");
  }
}

void warn_of_lost_pre_vectors(std::int32_t kind) {
  if (kind == kModalStress) {
    QDL_Warning(
        "All the nodes referenced in Pre-Stress have been removed. Pre-Stress data is "
        "eliminated.");
  } else {
    QDL_Warning(
        "All the nodes referenced in Pre-Strain have been removed. Pre-Strain data is "
        "eliminated.");
  }
}

/// Drops what a record has of a kind whose nodes are all gone.
void eliminate(QDL_Record &record, std::int32_t kind) {
  mode_data(record, kind).backing = Backing{};
  mode_data(record, kind).nodes = NodeSet{};
  pre_vectors(record, kind).clear();
  if (present(record, mode_block(kind)))
    warn_of_lost_modes(kind);
  if (present(record, pre_vector_block(kind)))
    warn_of_lost_pre_vectors(kind);
  lower(record, mode_block(kind));
  lower(record, pre_vector_block(kind));
}

}  // namespace

std::optional<PrunedModes> PrunedModes::prepare(QDL_Record &record, std::int32_t kind,
                                                std::span<const std::int32_t> kept) {
  PrunedModes pruned(kind);
  pruned.choose_rows(record, kept);
  if (kind != kModeShapes)
    pruned.choose_pre_vectors(pre_vectors(record, kind));
  const bool has_values = present(record, mode_block(kind)) && stored_mode_count(record, kind) > 0;
  if (has_values && !pruned.rows_.empty() && !pruned.rewrite(record))
    return std::nullopt;
  return pruned;
}

PrunedModes PrunedModes::without_values(QDL_Record &record, std::span<const std::int32_t> kept) {
  PrunedModes pruned(kModeShapes);
  pruned.choose_rows(record, kept);
  pruned.lost_ = true;
  return pruned;
}

void PrunedModes::choose_rows(const QDL_Record &record, std::span<const std::int32_t> kept) {
  if (kind_ == kModeShapes) {
    const std::int32_t limit = mode_node_count(record, kind_);
    rows_.assign(kept.begin(), std::ranges::lower_bound(kept, limit));
    return;
  }
  const NodeSet &set = record.mode_data[static_cast<std::size_t>(kind_)].nodes;
  nodes_.slot_of_node.assign(kept.size(), kNoIndex);
  for (std::size_t node = 0; node < kept.size(); ++node) {
    const auto before = static_cast<std::size_t>(kept[node]);
    if (before >= set.slot_of_node.size() || set.slot_of_node[before] == kNoIndex)
      continue;
    nodes_.slot_of_node[node] = static_cast<std::int32_t>(rows_.size());
    nodes_.node_of_slot.push_back(static_cast<std::int32_t>(node));
    rows_.push_back(set.slot_of_node[before]);
  }
  nodes_.foreign_ids.resize(rows_.size());
}

void PrunedModes::choose_pre_vectors(const std::vector<Vector6> &vectors) {
  if (vectors.empty())
    return;
  for (const std::int32_t slot : rows_) {
    const auto index = static_cast<std::size_t>(slot);
    pre_vectors_.push_back(index < vectors.size() ? vectors[index] : Vector6{});
  }
}

bool PrunedModes::rewrite(QDL_Record &record) {
  const std::int32_t modes = stored_mode_count(record, kind_);
  values_ = ModeRewrite::begin(record, kind_, modes, static_cast<std::int32_t>(rows_.size()),
                               ModeRewrite::Measure::kAsStored);
  if (!values_)
    return false;
  RowCopy rows(record, kind_, rows_);
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    if (!rows.copy(mode, *values_))
      return false;
  }
  return values_->finish();
}

void PrunedModes::adopt_values(QDL_Record &record) noexcept {
  if (values_) {
    values_->adopt(record);
    const std::string &name = mode_data(record, kind_).backing.channel.file->name();
    QDL_Info("Shortened %s mode file: %s\n", word_of(kind_), name.c_str());
  }
  if (lost_)
    mode_data(record, kind_).backing = Backing{};
}

void PrunedModes::adopt_nodes(QDL_Record &record) noexcept {
  if (kind_ == kModeShapes) {
    if (record.mode_node_limit)
      record.mode_node_limit = static_cast<std::int32_t>(rows_.size());
    return;
  }
  NodeSet &set = mode_data(record, kind_).nodes;
  if (set.node_of_slot.empty())
    return;
  if (rows_.empty()) {
    eliminate(record, kind_);
    return;
  }
  set = std::move(nodes_);
  pre_vectors(record, kind_) = std::move(pre_vectors_);
}

}  // namespace qdlflex
