#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "geometry/matrix3.h"
#include "modes/mode_count.h"
#include "modes/mode_rewrite.h"
#include "modes/mode_store.h"
#include "numerics/mode_transformation.h"
#include "numerics/rigid_body_modes.h"
#include "record/derived.h"
#include "record/invariant_layout.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

/// The combined modes of all kinds that the record has. None after a reported failure.
std::optional<std::vector<ModeRewrite>> combine_all_modes(QDL_Record &record,
                                                          std::int32_t new_modes,
                                                          const double *coefficients) {
  std::vector<ModeRewrite> combined;
  if (coefficients == nullptr || mode_count(record) == 0)
    return combined;
  const std::span<const double> matrix(coefficients, static_cast<std::size_t>(mode_count(record)) *
                                                         static_cast<std::size_t>(new_modes));
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind) {
    if (kind != kModeShapes && !present(record, mode_block(kind)))
      continue;
    auto modes = combine_modes(record, kind, new_modes, matrix);
    if (!modes)
      return std::nullopt;
    combined.push_back(std::move(*modes));
  }
  return combined;
}

void scale_nodal_masses(QDL_Record &record, double factor) {
  for (Node &node : record.nodes) {
    node.mass *= factor;
    if (node.inertia == nullptr)
      continue;
    for (double &value : *node.inertia)
      value *= factor;
  }
}

/// None for the null pointers that leave positions where they are.
void change_frame(QDL_Record &record, const double *origin, const double *rotation) {
  const auto change = [&](Vector3 &place) {
    for (std::size_t c = 0; c < 3 && origin != nullptr; ++c)
      place[c] -= origin[c];
    if (rotation != nullptr)
      Vector_Transform(place.data(), rotation, 1);
  };
  change(record.global_mass.centre);
  for (Node &node : record.nodes)
    change(node.xyz);
  note_nodes_moved(record);
}

/// Neither what is known nor what the file has belongs to the new modes and masses.
void forget_invariants_and_statistics(QDL_Record &record) {
  for (int number = 1; number <= kLastInvariant; ++number) {
    slot_of(record, number) = InvariantSlot{};
    if (number != 6)
      lower(record, invariant_block(number));
  }
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind)
    forget_statistics(record, kind);
}

bool permute(QDL_Record &record, const double *origin, std::int32_t new_modes, double mass_factor,
             const double *coefficients, const double *rotation) {
  if (new_modes < 0)
    return false;
  auto modes = combine_all_modes(record, new_modes, coefficients);
  if (!modes)
    return false;
  if (coefficients != nullptr || new_modes < mode_count(record))
    change_mode_count(record, new_modes, rigid_body_mode_count(record));

  // Nothing fails from here on.
  if (mass_factor != 1.0)
    scale_nodal_masses(record, mass_factor);
  for (ModeRewrite &kind : *modes)
    kind.adopt(record);
  change_frame(record, origin, rotation);
  forget_invariants_and_statistics(record);
  record.mass_pruned = false;
  return true;
}

void prepare_for_new_masses(QDL_Record &record) {
  record.eigenvalues.clear();
  record.transformation = Transformation{};
  for (GeneralizedMatrix *matrix : {&record.stiffness, &record.mass, &record.damping})
    *matrix = GeneralizedMatrix{};
  record.damping_on_principal_axes = false;
  lower(record, Block::kNodalMasses);
  lower(record, Block::kNodalInertias);
  drop_derived_invariants(record, {1, 2, 3, 4, 5, 7, 8, 9});
  record.mass_pruned = false;
  // A channel that backs data still has to be read as it was written.
  Channel &channel = mode_data(record, kModeShapes).backing.channel;
  if (channel.file == nullptr)
    channel = Channel{};
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_PermuteQDL(QDL_Record *model, const double *origin, int32_t newModeCount,
                       double massFactor, const double *coeff, const double *rotation) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return permute(record, origin, newModeCount, massFactor, coeff, rotation);
  });
}

int32_t QDL_PreprocessKVTQDL(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    prepare_for_new_masses(record);
    return 1;
  });
}
