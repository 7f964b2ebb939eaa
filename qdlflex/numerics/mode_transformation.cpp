#include "numerics/mode_transformation.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "numerics/linear_combination.h"
#include "numerics/qdlinvar.h"
#include "record/derived.h"
#include "record/invariant_layout.h"
#include "record/lookups.h"
#include "support/boundary.h"
#include "support/time_monitor.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";
constexpr std::array<int, 5> kModalInvariants = {3, 4, 5, 8, 9};

void announce_file(const std::string &name) {
  QDL_Info("Orthogonal mode file: %s", name.c_str());
}

/// Old and new modes of a range of nodes that are in memory together.
class Slab {
 public:
  Slab(std::int32_t old_modes, std::int32_t new_modes, std::int64_t rows)
      : old_modes_(old_modes),
        new_modes_(new_modes),
        old_(std::make_unique_for_overwrite<double[]>(values(old_modes, rows))),
        new_(std::make_unique_for_overwrite<double[]>(values(new_modes, rows))) {}

  bool read(QDL_Record &record, std::int32_t kind, std::int64_t first, std::int64_t rows) {
    for (std::int32_t mode = 0; mode < old_modes_; ++mode) {
      if (!read_rows(record, kind, mode, first, rows, old_.get() + values(mode, rows))) {
        report_unreadable_mode(kind, record.mode_numbers[static_cast<std::size_t>(mode)]);
        report_unextractable();
        return false;
      }
    }
    return true;
  }

  void combine(LinearCombination &combination, std::int64_t rows) {
    combination.apply(old_.get(), new_.get(), values(1, rows));
  }

  bool write(ModeRewrite &rewrite, std::int64_t first, std::int64_t rows) const {
    for (std::int32_t mode = 0; mode < new_modes_; ++mode) {
      if (!rewrite.write_rows(mode, first, rows, new_.get() + values(mode, rows)))
        return false;
    }
    return true;
  }

 private:
  static std::size_t values(std::int32_t modes, std::int64_t rows) {
    return static_cast<std::size_t>(modes) * static_cast<std::size_t>(rows) * kComponents;
  }

  std::int32_t old_modes_;
  std::int32_t new_modes_;
  std::unique_ptr<double[]> old_;
  std::unique_ptr<double[]> new_;
};

/// One stamp per old mode, spread over the slabs.
class Progress {
 public:
  explicit Progress(std::int32_t modes) : modes_(modes) {
    if (std::getenv("ZEB_NO_TIME_MONITOR_STAMP") == nullptr)
      monitor_.emplace(modes);
  }

  void reach(std::int64_t rows, std::int64_t all_rows) {
    const std::int64_t due = rows == all_rows ? modes_ : modes_ * rows / all_rows;
    for (; monitor_ && stamped_ < due; ++stamped_)
      monitor_->stamp();
  }

 private:
  std::int64_t modes_;
  std::int64_t stamped_ = 0;
  std::optional<TimeMonitor> monitor_;
};

/// Slabs are far smaller than they might be: what stays in the processor's cache from reading to
/// writing is combined faster.
std::int64_t slab_rows(std::int64_t modes, std::int64_t nodes) {
  constexpr std::int64_t kSlabBytes = std::int64_t{16} << 20;
  const std::int64_t row_bytes = modes * kComponents * std::int64_t{sizeof(double)};
  const std::int64_t rows = std::min(mode_memory_limit(), kSlabBytes) / row_bytes;
  return std::clamp<std::int64_t>(rows, 1, std::max<std::int64_t>(nodes, 1));
}

/// Combines the modes in slabs of nodes, so that each is read once.
bool combine_slabs(QDL_Record &record, std::int32_t kind, std::int32_t new_modes,
                   std::span<const double> coefficients, ModeRewrite &rewrite) {
  const std::int32_t old_modes = mode_count(record);
  const std::int64_t nodes = mode_node_count(record, kind);
  const std::int64_t most_rows = slab_rows(std::int64_t{old_modes} + new_modes, nodes);
  LinearCombination combination(static_cast<std::size_t>(old_modes),
                                static_cast<std::size_t>(new_modes), coefficients);
  Slab slab(old_modes, new_modes, most_rows);
  Progress progress(old_modes);
  std::int64_t first = 0;
  do {  // once for modes without nodes, too: they must be there all the same
    const std::int64_t rows = std::min(most_rows, nodes - first);
    if (!slab.read(record, kind, first, rows))
      return false;
    slab.combine(combination, rows);
    if (!slab.write(rewrite, first, rows))
      return false;
    first += rows;
    progress.reach(first, nodes);
  } while (first < nodes);
  return true;
}

/// Dense coefficients, one row per old mode.
struct Coefficients {
  std::size_t old_modes;
  std::size_t new_modes;
  std::span<const double> values;

  std::span<const double> row(std::size_t old_mode) const {
    return values.subspan(old_mode * new_modes, new_modes);
  }
};

void add_scaled(double factor, std::span<const double> values, double *sums) {
  for (const double value : values)
    *sums++ += factor * value;
}

/// Rows of one value per mode, carried over to the new modes.
std::vector<double> combine_columns(std::span<const double> rows, std::size_t columns,
                                    const Coefficients &coefficients) {
  const std::size_t count = columns == 0 ? 0 : rows.size() / columns;
  std::vector<double> combined(count * coefficients.new_modes);
  for (std::size_t row = 0; row < count; ++row) {
    for (std::size_t i = 0; i < std::min(columns, coefficients.old_modes); ++i) {
      add_scaled(rows[row * columns + i], coefficients.row(i),
                 combined.data() + row * coefficients.new_modes);
    }
  }
  return combined;
}

/// `width` values per mode, carried over to the new modes.
std::vector<double> combine_rows(std::span<const double> values, std::size_t width,
                                 const Coefficients &coefficients) {
  std::vector<double> combined(coefficients.new_modes * width);
  for (std::size_t i = 0; i < coefficients.old_modes; ++i) {
    for (std::size_t j = 0; j < coefficients.new_modes; ++j) {
      const double factor = coefficients.row(i)[j];
      if (factor != 0.0)
        add_scaled(factor, values.subspan(i * width, width), combined.data() + j * width);
    }
  }
  return combined;
}

std::vector<double> combine_invariant(int number, std::span<const double> values,
                                      const Coefficients &coefficients) {
  const std::size_t modes = coefficients.old_modes;
  switch (number) {
    case 5:
      return combine_columns(combine_rows(values, 3 * modes, coefficients), modes, coefficients);
    case 8:
      return combine_rows(values, 9, coefficients);
    case 9: {
      // Each row of the pairs by itself, after the rows themselves.
      const std::vector<double> half = combine_rows(values, 9 * modes, coefficients);
      std::vector<double> combined;
      for (std::size_t j = 0; j < coefficients.new_modes; ++j) {
        const auto row = std::span(half).subspan(j * 9 * modes, 9 * modes);
        const std::vector<double> pairs = combine_rows(row, 9, coefficients);
        combined.insert(combined.end(), pairs.begin(), pairs.end());
      }
      return combined;
    }
    default:
      return combine_columns(values, modes, coefficients);
  }
}

bool transform_modes(QDL_Record &record, std::int32_t kind, std::int32_t new_modes,
                     std::span<const double> coefficients) {
  std::optional<ModeRewrite> combined = combine_modes(record, kind, new_modes, coefficients);
  if (!combined)
    return false;
  if (kind == kModeShapes && !combine_invariants(record, new_modes, coefficients))
    return false;
  combined->adopt(record);
  forget_statistics(record, kind);
  return true;
}

}  // namespace

std::optional<ModeRewrite> combine_modes(QDL_Record &record, std::int32_t kind,
                                         std::int32_t new_modes,
                                         std::span<const double> coefficients) {
  const ModesNotKept not_kept(record);
  std::optional<ModeRewrite> rewrite =
      ModeRewrite::begin(record, kind, new_modes, mode_node_count(record, kind),
                         ModeRewrite::Measure::kCurrentUnits, ".", announce_file);
  if (!rewrite)
    return std::nullopt;
  const bool combined =
      new_modes == 0 || combine_slabs(record, kind, new_modes, coefficients, *rewrite);
  return combined && rewrite->finish() ? std::move(rewrite) : std::nullopt;
}

bool load_modal_invariants(QDL_Record &record) {
  return load_invariants(record, kModalInvariants);
}

bool combine_invariants(QDL_Record &record, std::int32_t new_modes,
                        std::span<const double> coefficients) {
  if (!load_modal_invariants(record))
    return false;
  const Coefficients matrix{record.mode_numbers.size(), static_cast<std::size_t>(new_modes),
                            coefficients};
  std::array<std::vector<double>, kModalInvariants.size()> combined;
  for (std::size_t i = 0; i < kModalInvariants.size(); ++i) {
    const InvariantSlot &slot = slot_of(record, kModalInvariants[i]);
    if (slot.origin == Origin::kEmpty)
      continue;
    lay_out_invariant(record, kModalInvariants[i], mode_count(record));
    combined[i] = combine_invariant(kModalInvariants[i], slot.values, matrix);
  }
  for (std::size_t i = 0; i < kModalInvariants.size(); ++i) {
    InvariantSlot &slot = slot_of(record, kModalInvariants[i]);
    if (slot.origin == Origin::kEmpty)
      continue;
    slot.values = std::move(combined[i]);
    slot.modes = new_modes;
  }
  return true;
}

MonitorOperators combine_operators(const QDL_Record &record, std::int32_t new_modes,
                                   std::span<const double> coefficients) {
  const Coefficients matrix{record.mode_numbers.size(), static_cast<std::size_t>(new_modes),
                            coefficients};
  MonitorOperators combined(record.monitor_points.size());
  for (std::size_t i = 0; i < combined.size(); ++i) {
    const MonitorPoint &point = record.monitor_points[i];
    const auto columns = static_cast<std::size_t>(point.columns);
    std::ranges::transform(point.operators, combined[i].begin(), [&](const auto &rows) {
      return combine_columns(rows, columns, matrix);
    });
  }
  return combined;
}

void adopt_operators(QDL_Record &record, MonitorOperators &operators,
                     std::int32_t new_modes) noexcept {
  for (std::size_t i = 0; i < operators.size(); ++i) {
    record.monitor_points[i].operators.swap(operators[i]);
    record.monitor_points[i].columns = new_modes;
  }
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_TransformModes(QDL_Record *model, int32_t kind, int32_t newModeCount,
                           const double *coefficients) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (coefficients == nullptr)
      return 1;
    if (!is_mode_kind(kind) || newModeCount < 0)
      return 0;
    if (mode_count(record) == 0)
      return 1;
    const auto count = record.mode_numbers.size() * static_cast<std::size_t>(newModeCount);
    return transform_modes(record, kind, newModeCount, {coefficients, count}) ? 1 : 0;
  });
}

int32_t QDL_TransformMonitorPoints(QDL_Record *model, const double *coefficients) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (coefficients == nullptr)
      return 1;
    const std::size_t modes = record.mode_numbers.size();
    const std::int32_t new_modes = mode_count(record);
    MonitorOperators combined = combine_operators(record, new_modes, {coefficients, modes * modes});
    adopt_operators(record, combined, new_modes);
    return 1;
  });
}
