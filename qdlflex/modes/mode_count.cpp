#include "modes/mode_count.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "modes/mode_cache.h"
#include "record/invariant_layout.h"
#include "record/row_layout.h"

namespace qdlflex {
namespace {

template <class Value>
void cut(std::vector<Value> &values, std::size_t count) {
  if (values.size() > count)
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(count), values.end());
}

void cut_square(std::vector<double> &matrix, std::int32_t &dimension, std::int32_t modes) {
  if (dimension <= modes)
    return;
  const auto kept = static_cast<std::size_t>(modes);
  cut_rows(matrix, static_cast<std::size_t>(dimension), kept);
  cut(matrix, kept * kept);
  dimension = modes;
}

/// Entries of places that never belonged to a mode stay.
void drop_entries(GeneralizedMatrix &matrix, std::int32_t first, std::int32_t end) {
  const auto is_dropped = [&](std::int32_t index) { return index >= first && index < end; };
  std::erase_if(matrix.entries, [&](const GeneralizedEntry &entry) {
    return is_dropped(entry.row) || is_dropped(entry.column);
  });
}

void drop_generalized_entries(QDL_Record &record, std::int32_t modes, std::int32_t rigid_modes) {
  const std::int32_t before = mode_count(record);
  drop_entries(record.stiffness, modes, before);
  drop_entries(record.mass, modes, before);
  // On the principal axes the flexible modes begin behind the six axes.
  constexpr std::int32_t kAxes = 6;
  const std::int32_t shift = record.damping_on_principal_axes ? kAxes - rigid_modes : 0;
  const std::int32_t first = record.damping_on_principal_axes ? kAxes : 0;
  drop_entries(record.damping, std::max(modes + shift, first), before + shift);
}

void cut_invariants(QDL_Record &record, std::int32_t modes) {
  for (int number = 1; number <= kLastInvariant; ++number) {
    if (is_modal_invariant(number))
      cut_invariant(record, number, modes);
  }
}

void cut_to(QDL_Record &record, std::int32_t modes, std::int32_t rigid_modes) {
  const auto count = static_cast<std::size_t>(modes);
  drop_generalized_entries(record, modes, rigid_modes);
  cut(record.mode_numbers, count);
  cut(record.eigenvalues, count);
  cut_square(record.transformation.matrix, record.transformation.dimension, modes);
  cut(record.transformation.row_integers, count);
  cut_invariants(record, modes);
  cut(record.preload.values, count);
  for (ModalLoadCase &load : record.modal_loads)
    cut(load.values, count);
  cut(record.statistics.modes, count);
  for (MonitorPoint &point : record.monitor_points)
    cut_columns(point, modes);
  for (RotorMatrix &matrix : record.rotor.matrices)
    cut_square(matrix.values, matrix.dimension, modes);
  for (ModeData &data : record.mode_data)
    cut(data.backing.starts, count);
}

/// New modes are numbered by their place where that number is free.
void extend_to(QDL_Record &record, std::int32_t modes) {
  std::vector<std::int32_t> numbers = record.mode_numbers;
  std::unordered_set<std::int32_t> used(numbers.begin(), numbers.end());
  std::int32_t next = mode_count(record) + 1;
  while (numbers.size() < static_cast<std::size_t>(modes)) {
    if (used.insert(next).second)
      numbers.push_back(next);
    ++next;
  }
  record.mode_numbers = std::move(numbers);
}

}  // namespace

void change_mode_count(QDL_Record &record, std::int32_t modes, std::int32_t rigid_modes) {
  if (modes < mode_count(record))
    cut_to(record, modes, rigid_modes);
  else
    extend_to(record, modes);
  note_mode_layout_changed(record);
}

}  // namespace qdlflex
