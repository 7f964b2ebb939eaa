#include "numerics/qdlinvar.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "format/source.h"
#include "format/toc.h"
#include "numerics/generalized_matrices.h"
#include "numerics/modal_invariants.h"
#include "numerics/rigid_invariants.h"
#include "record/invariant_layout.h"
#include "support/allocate.h"
#include "support/boundary.h"
#include "support/decimal_scaling.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlinvar";

/// Whether a getter would read the block.
bool is_still_in_file(const QDL_Record &record, Block block) {
  return present(record, block) && in_file(record, block) && has_known_offset(record, block);
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

  const std::size_t wanted = invariant_shape(number, mode_count(record)).size();
  const std::int64_t left = (file.size() - file.tell()) / source.encoding().real_bytes();
  const auto held = static_cast<std::size_t>(std::max<std::int64_t>(left, 0));
  if (!other_modes && held < wanted)
    return std::nullopt;
  std::vector<double> values(wanted);
  const std::size_t count = std::min(wanted, held);
  if (!source.reals(values.data(), count))
    return std::nullopt;
  return values;
}

bool is_mode_index(const QDL_Record &record, std::int32_t index) {
  return index >= 0 && index < mode_count(record);
}

/// Values of an invariant from a place of its shape on, as a copy for the caller; null when there
/// are none.
double *handed_out(QDL_Record &record, int number, std::size_t first, std::size_t count) {
  const std::vector<double> &values = obtain_invariant(record, number).values;
  if (values.empty())
    return nullptr;
  auto copy = caller_array<double>(count);
  std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), count, copy.get());
  return copy.release();
}

double *whole_invariant(QDL_Record *model, int number) {
  return with_model(model, kArea, static_cast<double *>(nullptr), [&](QDL_Record &record) {
    const std::size_t size = invariant_shape(number, mode_count(record)).size();
    return size == 0 ? nullptr : handed_out(record, number, 0, size);
  });
}

/// Whether 5 and 9 are about to be derived from nodal masses that no node has: the first call that
/// meets this fails, later ones find zeros.
bool lacks_nodes(QDL_Record &record, int number) {
  return number != 8 && !is_known(record, number) && present(record, Block::kNodalMasses) &&
         record.nodes.empty();
}

/// The part of invariant 5, 8 or 9 that belongs to one mode or one pair of modes.
double *part_of_invariant(QDL_Record *model, int number, std::int32_t index_i,
                          std::int32_t index_k) {
  return with_model(model, kArea, static_cast<double *>(nullptr), [&](QDL_Record &record) {
    if (!is_mode_index(record, index_i) || !is_mode_index(record, index_k))
      return static_cast<double *>(nullptr);
    if (lacks_nodes(record, number)) {
      obtain_invariant(record, number);
      return static_cast<double *>(nullptr);
    }
    const InvariantShape shape = invariant_shape(number, mode_count(record));
    const auto i = static_cast<std::size_t>(index_i);
    const auto k = static_cast<std::size_t>(index_k);
    return number == 5 ? handed_out(record, 5, shape.offset(i, 0, 0), 3 * shape.extents[2])
                       : handed_out(record, number, shape.offset(i, k, 0), 9);
  });
}

/// What a bulk function needs and obtains.
struct BulkRequest {
  std::span<const int> needed;
  std::span<const int> obtained;
  bool needs_modes;
  const char *insufficient;
  const char *announcement;
};

constexpr const char *kInsufficientForAll =
    "There is insufficient mass data to compute a full set of mass invariants.\nSome or all mass "
    "invariants will be set to zero.";

constexpr int kRigidNumbers[] = {1, 2, 7};
constexpr int kRigidObtained[] = {1, 2, 3, 7};
constexpr int kFastNumbers[] = {1, 2, 3, 4, 7, 8};
constexpr int kFullNumbers[] = {1, 2, 3, 4, 5, 7, 8, 9};

bool is_sufficient(const QDL_Record &record, const BulkRequest &request) {
  const auto is_filled = [&](int number) {
    return slot_of(record, number).origin != Origin::kEmpty;
  };
  const auto has_block = [&](int number) { return present(record, invariant_block(number)); };
  return std::ranges::all_of(request.needed, is_filled) ||
         std::ranges::all_of(request.needed, has_block) ||
         (present(record, Block::kNodalMasses) && (mode_count(record) > 0 || !request.needs_modes));
}

void obtain_in_bulk(QDL_Record *model, const BulkRequest &request) {
  with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!is_sufficient(record, request))
      QDL_Error("%s", request.insufficient);
    QDL_Info("%s", request.announcement);
    // One that fails does not keep the others back.
    for (const int number : request.obtained) {
      guarded(kArea, 0, [&] {
        obtain_invariant(record, number);
        return 1;
      });
    }
    return 1;
  });
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

void report_unextractable() {
  QDL_Error("Failed to extract mode information for QDL.\n");
}

bool load_invariants(QDL_Record &record, std::span<const int> numbers) {
  const bool complete = std::ranges::all_of(numbers, [&](int number) {
    return load_invariant(record, number) || slot_of(record, number).origin != Origin::kEmpty ||
           !is_still_in_file(record, invariant_block(number));
  });
  if (!complete)
    report_unextractable();
  return complete;
}

bool load_all_invariants(QDL_Record &record) {
  return load_invariants(record, kFullNumbers);
}

const InvariantSlot &obtain_invariant(QDL_Record &record, int number) {
  InvariantSlot &slot = slot_of(record, number);
  // A block that can't be read must not be replaced by something else.
  if (slot.origin == Origin::kEmpty && !load_invariant(record, number) &&
      !seek_block(record, invariant_block(number))) {
    if (is_modal_invariant(number)) {
      derive_modal_invariant(record, number);
    } else {
      slot.values = derive_rigid_invariant(record, number);
      slot.origin = Origin::kDerived;
    }
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
  return whole_invariant(model, 2);
}

double *QDL_Invar3(QDL_Record *model) {
  return whole_invariant(model, 3);
}

double *QDL_Invar4(QDL_Record *model) {
  return whole_invariant(model, 4);
}

double *QDL_Invar5(QDL_Record *model, int32_t mode_index) {
  return part_of_invariant(model, 5, mode_index, mode_index);
}

double *QDL_Invar6(QDL_Record *model) {
  return with_model(model, kArea, static_cast<double *>(nullptr), [](QDL_Record &record) {
    const std::size_t modes = record.mode_numbers.size();
    auto mass = caller_array<double>(modes * modes);
    fill_full(record, Generalized::kMass, mode_count(record), mass.get());
    return mass.release();
  });
}

double *QDL_Invar7(QDL_Record *model) {
  return whole_invariant(model, 7);
}

double *QDL_Invar8(QDL_Record *model, int32_t mode_index) {
  return part_of_invariant(model, 8, 0, mode_index);
}

double *QDL_Invar9(QDL_Record *model, int32_t index_i, int32_t index_k) {
  return part_of_invariant(model, 9, index_i, index_k);
}

void QDL_FastComputeInvars(QDL_Record *model) {
  obtain_in_bulk(model, {kFastNumbers, kFastNumbers, true,
                         "There is insufficient mass data to compute a partial set of mass "
                         "invariants.\nSome or all mass invariants will be set to zero.",
                         "Computing fast set of invariants"});
}

void QDL_FullComputeInvars(QDL_Record *model) {
  obtain_in_bulk(
      model, {kFullNumbers, kFullNumbers, true, kInsufficientForAll, "Computing *all* invariants"});
}

void QDL_RigidComputeInvars(QDL_Record *model) {
  obtain_in_bulk(model, {kRigidNumbers, kRigidObtained, false, kInsufficientForAll,
                         "Computing *rigid* invariants"});
}

void incr_scalar_tilde_tilde(double acc[9], double s, const double a[3], const double b[3]) {
  if (acc == nullptr || a == nullptr || b == nullptr)
    return;
  const double s0 = s * a[0];
  const double s1 = s * a[1];
  const double s2 = s * a[2];
  acc[0] -= s1 * b[1] + s2 * b[2];
  acc[1] += s1 * b[0];
  acc[2] += s2 * b[0];
  acc[3] += s0 * b[1];
  acc[4] -= s2 * b[2] + s0 * b[0];
  acc[5] += s2 * b[1];
  acc[6] += s0 * b[2];
  acc[7] += s1 * b[2];
  acc[8] -= s1 * b[1] + s0 * b[0];
}

void incr_scalar_tilde_vec(double acc[3], double s, const double a[3], const double b[3]) {
  if (acc == nullptr || a == nullptr || b == nullptr)
    return;
  acc[0] += s * (a[1] * b[2] - a[2] * b[1]);
  acc[1] += s * (a[2] * b[0] - a[0] * b[2]);
  acc[2] += s * (a[0] * b[1] - a[1] * b[0]);
}
