#include "numerics/orthonormalize.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "modes/mode_count.h"
#include "modes/mode_rewrite.h"
#include "numerics/mode_transformation.h"
#include "numerics/new_modes.h"
#include "numerics/rigid_body_modes.h"
#include "record/derived.h"
#include "record/square_matrix.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

bool has_generalized_entries(const QDL_Record &record) {
  return !record.stiffness.entries.empty() || !record.mass.entries.empty();
}

/// Whether the modes have been orthonormalized before and nothing is left to be normalized.
bool is_done(const QDL_Record &record) {
  const auto has_final_mass = [](const EigenEntry &entry) {
    return entry.generalized_mass == 0.0 || entry.generalized_mass == 1.0;
  };
  return !has_generalized_entries(record) && record.transformation.present &&
         (!record.mass_normalize_modes || std::ranges::all_of(record.eigenvalues, has_final_mass));
}

/// The shares in the first `count` new modes, row by row.
std::vector<double> leading_shares(const NewModes &modes, std::size_t count) {
  std::vector<double> shares;
  shares.reserve(modes.modes * count);
  for (std::size_t row = 0; row < modes.modes; ++row) {
    const auto first = modes.shares.begin() + static_cast<std::ptrdiff_t>(row * modes.modes);
    shares.insert(shares.end(), first, first + static_cast<std::ptrdiff_t>(count));
  }
  return shares;
}

/// Whether the first new modes are the first present ones, unchanged.
bool keeps_modes(const NewModes &modes, std::size_t count) {
  for (std::size_t row = 0; row < modes.modes; ++row)
    for (std::size_t column = 0; column < count; ++column)
      if (modes.shares[row * modes.modes + column] != (row == column ? 1.0 : 0.0))
        return false;
  return true;
}

/// A vector of modal forces for the first `count` new modes. Its first `fixed` entries belong to
/// the axes of the body, no longer to modes.
std::vector<double> carry_forces(const NewModes &modes, std::span<const double> forces,
                                 std::size_t fixed, std::size_t count) {
  if (forces.empty())
    return {};
  std::vector<double> carried(modes.modes);
  std::ranges::copy(forces.first(std::min({fixed, forces.size(), modes.modes})), carried.begin());
  for (std::size_t row = fixed; row < std::min(forces.size(), modes.modes); ++row)
    for (std::size_t column = fixed; column < modes.modes; ++column)
      carried[column] += modes.shares[row * modes.modes + column] * forces[row];
  carried.resize(count);
  return carried;
}

struct Forces {
  std::vector<double> preload;
  std::vector<std::vector<double>> cases;
};

Forces carry_all_forces(const QDL_Record &record, const NewModes &modes, std::size_t rigid_modes,
                        std::size_t count) {
  const auto carry = [&](const std::vector<double> &values, std::int32_t processed) {
    return carry_forces(modes, values, processed != 0 ? rigid_modes : 0, count);
  };
  Forces forces;
  forces.preload = carry(record.preload.values, record.preload.processed);
  for (const ModalLoadCase &load : record.modal_loads)
    forces.cases.push_back(carry(load.values, load.processed));
  return forces;
}

void adopt_forces(QDL_Record &record, Forces &forces) noexcept {
  record.preload.values.swap(forces.preload);
  for (std::size_t i = 0; i < forces.cases.size(); ++i)
    record.modal_loads[i].values.swap(forces.cases[i]);
}

/// On the principal axes the first six indices are those of the body, which has no scale.
void scale_damping(QDL_Record &record, const std::vector<double> &scales,
                   std::int32_t rigid_modes) noexcept {
  constexpr auto kBodyAxes = static_cast<std::int32_t>(kRigidBodyAxes);
  const auto scale = [&](std::int32_t index) {
    if (record.damping_on_principal_axes)
      index = index < kBodyAxes ? kNoIndex : index - kBodyAxes + rigid_modes;
    return index >= 0 && static_cast<std::size_t>(index) < scales.size()
               ? scales[static_cast<std::size_t>(index)]
               : 1.0;
  };
  for (GeneralizedEntry &entry : record.damping.entries)
    entry.value /= scale(entry.row) * scale(entry.column);
}

using Rewrites = std::array<std::optional<ModeRewrite>, kModeKinds>;

/// The new modes of every kind that the record holds. False after a reported failure.
bool combine_all_modes(QDL_Record &record, std::int32_t count, const std::vector<double> &shares,
                       Rewrites &rewrites) {
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind) {
    if (!present(record, mode_block(kind)))
      continue;
    auto &rewrite = rewrites[static_cast<std::size_t>(kind)];
    rewrite = combine_modes(record, kind, count, shares);
    if (!rewrite)
      return false;
  }
  return true;
}

Transformation make_transformation(std::int32_t modes, std::vector<double> matrix) {
  return {.dimension = modes,
          .matrix = std::move(matrix),
          .row_integers = std::vector<std::int32_t>(static_cast<std::size_t>(modes)),
          .present = true};
}

/// What the record will hold per new mode, complete before any of it is adopted.
struct Carried {
  Transformation transformation;
  Forces forces;
  Rewrites rewrites;
  std::optional<MonitorOperators> operators;
};

/// Everything that can fail, the invariants last: these are exchanged at once. None after a
/// reported failure.
std::optional<Carried> carry_over(QDL_Record &record, const NewModes &modes,
                                  std::size_t rigid_modes, std::size_t kept) {
  const auto count = static_cast<std::int32_t>(kept);
  std::vector<double> square(kept * kept);
  copy_square(modes.shares.data(), modes.modes, square.data(), kept);
  Carried carried;
  carried.transformation = make_transformation(count, std::move(square));
  carried.forces = carry_all_forces(record, modes, rigid_modes, kept);
  if (keeps_modes(modes, kept)) {
    // The file has invariants of all modes: they can't be read once some are dropped.
    if (kept != modes.modes && !load_modal_invariants(record))
      return std::nullopt;
    return carried;
  }
  const std::vector<double> shares = leading_shares(modes, kept);
  if (!combine_all_modes(record, count, shares, carried.rewrites))
    return std::nullopt;
  carried.operators = combine_operators(record, count, shares);
  if (!combine_invariants(record, count, shares))
    return std::nullopt;
  return carried;
}

void adopt_rewrites(QDL_Record &record, Rewrites &rewrites) noexcept {
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind) {
    auto &rewrite = rewrites[static_cast<std::size_t>(kind)];
    if (!rewrite)
      continue;
    rewrite->adopt(record);
    forget_statistics(record, kind);
  }
}

bool adopt(QDL_Record &record, NewModes modes) {
  const std::size_t kept = modes.finite();
  const auto count = static_cast<std::int32_t>(kept);
  // Damping that is on the principal axes already was put there with the present number.
  const std::int32_t present_rigid_modes = rigid_body_mode_count(record);
  const std::int32_t rigid_modes = rigid_body_mode_count(modes.eigenvalues, modes.modes);
  std::optional<Carried> carried =
      carry_over(record, modes, static_cast<std::size_t>(rigid_modes), kept);
  if (!carried)
    return false;

  if (kept != modes.modes)
    change_mode_count(record, count, present_rigid_modes);
  std::swap(record.transformation, carried->transformation);
  modes.eigenvalues.resize(std::min(kept, modes.eigenvalues.size()));
  record.eigenvalues.swap(modes.eigenvalues);
  modes.numbers.resize(kept);
  record.mode_numbers.swap(modes.numbers);
  adopt_forces(record, carried->forces);
  scale_damping(record, modes.scales, present_rigid_modes);
  record.stiffness = {};
  record.mass = {};
  adopt_rewrites(record, carried->rewrites);
  if (carried->operators)
    adopt_operators(record, *carried->operators, count);
  return true;
}

}  // namespace

bool orthonormalize(QDL_Record &record) {
  if (record.mode_numbers.empty())
    return false;
  if (is_done(record))
    return true;
  std::optional<NewModes> modes =
      has_generalized_entries(record) ? solve_modes(record) : std::optional(keep_modes(record));
  return modes && adopt(record, std::move(*modes));
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_OrthoNormalize(QDL_Record *model) {
  return with_model(model, kArea, 0,
                    [](QDL_Record &record) { return orthonormalize(record) ? 1 : 0; });
}
