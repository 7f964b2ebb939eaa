#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <span>

#include "format/version.h"
#include "io/block_writer.h"
#include "modes/mode_store.h"
#include "numerics/eigenvalue_lookup.h"
#include "numerics/modal_statistics.h"
#include "record/lookups.h"

namespace qdlflex {
namespace {

/// Whether the root of the sum of squares is zero: components whose squares vanish count as zero.
/// As no square is negative, the first that is not zero decides.
bool is_zero(std::span<const double> values) {
  return std::ranges::all_of(values, [](double value) { return value * value == 0.0; });
}

void warn_of_zero_mode(std::int32_t kind, std::int32_t number) {
  switch (kind) {
    case kModeShapes:
      QDL_Warning("The mode shape for mode %d has only zero entries\n", number);
      break;
    case kModalStress:
      QDL_Warning("The modal stresses for mode %d have only zero entries\n", number);
      break;
    default:
      QDL_Warning("The modal strains for mode %d have only zero entries\n", number);
      break;
  }
}

/// The rows of a mode that are written, zeros where the kind has none.
void select_rows(const double *six, const std::vector<std::int32_t> &rows,
                 std::vector<double> &selected) {
  auto target = selected.begin();
  for (const std::int32_t row : rows) {
    if (row == kNoIndex) {
      target = std::fill_n(target, kComponents, 0.0);
    } else {
      target = std::copy_n(six + std::ptrdiff_t{row} * kComponents, kComponents, target);
    }
  }
}

bool is_everything(const std::vector<std::int32_t> &rows, std::int32_t count) {
  if (static_cast<std::int32_t>(rows.size()) != count)
    return false;
  for (std::int32_t row = 0; row < count; ++row) {
    if (rows[static_cast<std::size_t>(row)] != row)
      return false;
  }
  return true;
}

}  // namespace

bool BlockWriter::eigenvalues() {
  QDL_Info("\nEigenvalue info:\n   Modes: %ld", static_cast<long>(modes()));
  if (!sink_.i32(modes()))
    return false;
  const auto table = all_eigenvalues(record_);
  for (std::int32_t mode = plan_.first_mode; mode < plan_.end_mode; ++mode) {
    const auto index = static_cast<std::size_t>(mode);
    const EigenEntry entry = table[index] ? table[index]->entry : EigenEntry{};
    if (!sink_.i32(record_.mode_numbers[index]) || !sink_.real(entry.eigenvalue) ||
        !sink_.real(entry.frequency) || !sink_.real(entry.circular_frequency) ||
        !sink_.real(entry.generalized_mass) || !sink_.real(entry.generalized_stiffness)) {
      return false;
    }
  }
  return true;
}

bool BlockWriter::mode_shapes() {
  std::vector<std::int32_t> rows(static_cast<std::size_t>(mode_node_count(record_, kModeShapes)));
  std::iota(rows.begin(), rows.end(), 0);
  QDL_Info("\nTrans Mode info:\n   Modes: %ld\n   Nodes: %ld", static_cast<long>(modes()),
           static_cast<long>(rows.size()));
  QDL_Info("\nWriting Mode Shapes");
  return write_modes(kModeShapes, rows);
}

bool BlockWriter::modal_stress() {
  const std::vector<std::int32_t> rows = written_rows(kModalStress);
  QDL_Info("\nStress Mode info:\n   Modes: %ld\n   Nodes: %ld", static_cast<long>(modes()),
           static_cast<long>(rows.size()));
  return write_modes(kModalStress, rows);
}

bool BlockWriter::modal_strain() {
  const std::vector<std::int32_t> rows = written_rows(kModalStrain);
  QDL_Info("\nStrain Mode info:\n   Modes: %ld\n   Nodes: %ld", static_cast<long>(modes()),
           static_cast<long>(rows.size()));
  return write_modes(kModalStrain, rows);
}

std::vector<std::int32_t> BlockWriter::written_rows(std::int32_t kind) const {
  const NodeSet &set = record_.mode_data[static_cast<std::size_t>(kind)].nodes;
  if (plan_.full_stress()) {
    std::vector<std::int32_t> rows = set.slot_of_node;
    rows.resize(record_.nodes.size(), kNoIndex);
    return rows;
  }
  std::vector<std::int32_t> rows(set.node_of_slot.size());
  std::iota(rows.begin(), rows.end(), 0);
  return rows;
}

std::vector<std::int32_t> BlockWriter::written_ids(std::int32_t kind, std::size_t count) const {
  const bool node_order = kind == kModeShapes || plan_.full_stress();
  std::vector<std::int32_t> ids(count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto position = static_cast<std::int32_t>(i);
    ids[i] = node_order ? node_id(record_, position) : mode_node_id(record_, kind, position);
  }
  return ids;
}

/// Only one mode is held at a time.
bool BlockWriter::write_modes(std::int32_t kind, const std::vector<std::int32_t> &rows) {
  const std::vector<std::int32_t> ids = written_ids(kind, rows.size());
  if (!sink_.i32(modes()) || !sink_.i32(static_cast<std::int32_t>(ids.size())) ||
      !sink_.i32s(ids.data(), ids.size())) {
    return false;
  }
  const std::int32_t nodes = mode_node_count(record_, kind);
  const auto length = static_cast<std::size_t>(nodes) * kComponents;
  const auto buffer = std::make_unique_for_overwrite<double[]>(length);
  const bool as_it_is = is_everything(rows, nodes);
  std::vector<double> selected(as_it_is ? 0 : rows.size() * kComponents);
  for (std::int32_t mode = plan_.first_mode; mode < plan_.end_mode; ++mode) {
    const double *six = view_mode(record_, kind, mode, buffer.get());
    if (six == nullptr)
      return false;
    keep_statistic(kind, mode, six);
    if (!as_it_is)
      select_rows(six, rows, selected);
    const std::span<const double> values = as_it_is ? std::span(six, length) : selected;
    const std::int32_t number = record_.mode_numbers[static_cast<std::size_t>(mode)];
    if (is_zero(values))
      warn_of_zero_mode(kind, number);
    if (has_mode_numbers(version_number(plan_.version_code)) && !sink_.i32(number))
      return false;
    if (!sink_.reals(values.data(), values.size()))
      return false;
  }
  return true;
}

void BlockWriter::keep_statistic(std::int32_t kind, std::int32_t mode, const double *six) {
  if (kind == kModeShapes)
    return;
  const Statistic statistic =
      kind == kModalStress ? Statistic::kVonMisesStress : Statistic::kVonMisesStrain;
  const LargestValue largest = largest_of(record_, statistic, six);
  ModalStatistics &slots = plan_.statistics[static_cast<std::size_t>(mode - plan_.first_mode)];
  slots.node_ids[static_cast<std::size_t>(statistic)] = largest.node_id;
  slots.values[static_cast<std::size_t>(statistic)] = largest.value;
}

bool BlockWriter::modal_statistics() {
  if (!sink_.i32(modes()))
    return false;
  return std::ranges::all_of(plan_.statistics, [&](const ModalStatistics &mode) {
    return sink_.i32s(mode.node_ids.data(), mode.node_ids.size()) &&
           sink_.reals(mode.values.data(), mode.values.size());
  });
}

bool BlockWriter::pre_stress() {
  const std::vector<std::int32_t> rows = written_rows(kModalStress);
  QDL_Info("\nPre-Stress info:\n   Nodes: %ld", static_cast<long>(rows.size()));
  return pre_vectors(rows, record_.pre_stress);
}

bool BlockWriter::pre_strain() {
  const std::vector<std::int32_t> rows = written_rows(kModalStrain);
  QDL_Info("\nPre-Strain info:\n   Nodes: %ld", static_cast<long>(rows.size()));
  return pre_vectors(rows, record_.pre_strain);
}

/// Nodes that were never given a vector have zeros.
bool BlockWriter::pre_vectors(const std::vector<std::int32_t> &rows,
                              const std::vector<Vector6> &vectors) {
  if (!sink_.i32(static_cast<std::int32_t>(rows.size())))
    return false;
  constexpr Vector6 kZeros{};
  return std::ranges::all_of(rows, [&](std::int32_t row) {
    const auto slot = static_cast<std::size_t>(row);
    const bool known = row != kNoIndex && slot < vectors.size();
    return sink_.reals(known ? vectors[slot].data() : kZeros.data(), kComponents);
  });
}

}  // namespace qdlflex
