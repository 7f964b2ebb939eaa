#include "numerics/qdlinvar.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "format/source.h"
#include "format/toc.h"
#include "numerics/rigid_invariants.h"
#include "record/invariant_layout.h"
#include "support/allocate.h"
#include "support/boundary.h"
#include "support/decimal_scaling.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlinvar";

InvariantSlot &slot_of(QDL_Record &record, int number) {
  return record.invariants[static_cast<std::size_t>(number)];
}

/// As many values as the present modes need, also where the block is laid out for another number
/// of modes: those that the file is too short for are zero then. None when the block can't be read.
std::optional<std::vector<double>> read_values(QDL_Record &record, int number) {
  File &file = *record.source.file;
  Source source(file, source_encoding(record));
  std::int32_t modes = mode_count(record);
  if (is_modal_invariant(number) && !source.i32(modes))
    return std::nullopt;
  const bool other_modes = modes != mode_count(record);
  if (other_modes)
    QDL_Error("nm!=ModeCount at line %d in file %s", __LINE__, kArea);

  std::vector<double> values(invariant_shape(number, mode_count(record)).size());
  const std::int64_t left = (file.size() - file.tell()) / source.encoding().real_bytes();
  const auto held = static_cast<std::size_t>(std::max<std::int64_t>(left, 0));
  const std::size_t count = other_modes ? std::min(values.size(), held) : values.size();
  if (!source.reals(values.data(), count))
    return std::nullopt;
  return values;
}

/// A copy for the caller; null when there are no values.
double *handed_out(const InvariantSlot &slot) {
  auto copy = caller_array<double>(slot.values.size());
  std::ranges::copy(slot.values, copy.get());
  return copy.release();
}

}  // namespace

bool load_invariant(QDL_Record &record, int number) {
  InvariantSlot &slot = slot_of(record, number);
  if (slot.origin == Origin::kEmpty && seek_block(record, invariant_block(number))) {
    std::optional<std::vector<double>> values = read_values(record, number);
    if (!values)
      return false;
    UnitConversion(invariant_unit_factor(number, record.units.cumulative))(*values);
    slot = {Origin::kSupplied, mode_count(record), std::move(*values)};
  }
  return slot.origin == Origin::kSupplied;
}

const InvariantSlot &obtain_invariant(QDL_Record &record, int number) {
  InvariantSlot &slot = slot_of(record, number);
  // A block that can't be read must not be replaced by something else.
  if (slot.origin == Origin::kEmpty && !load_invariant(record, number) &&
      !seek_block(record, invariant_block(number)) && !is_modal_invariant(number)) {
    slot.values = derive_rigid_invariant(record, number);
    slot.origin = Origin::kDerived;
  }
  if (slot.origin != Origin::kEmpty && is_modal_invariant(number))
    lay_out_invariant(record, number, mode_count(record));
  return slot;
}

}  // namespace qdlflex

using namespace qdlflex;

double QDL_Invar1(QDL_Record *model) {
  return with_model(model, kArea, 0.0, [](QDL_Record &record) {
    const std::vector<double> &values = obtain_invariant(record, 1).values;
    return values.empty() ? 0.0 : values[0];
  });
}

double *QDL_Invar2(QDL_Record *model) {
  return with_model(model, kArea, static_cast<double *>(nullptr),
                    [](QDL_Record &record) { return handed_out(obtain_invariant(record, 2)); });
}

double *QDL_Invar7(QDL_Record *model) {
  return with_model(model, kArea, static_cast<double *>(nullptr),
                    [](QDL_Record &record) { return handed_out(obtain_invariant(record, 7)); });
}
