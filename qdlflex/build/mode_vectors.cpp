#include <algorithm>
#include <span>

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "record/derived.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

/// Stress of mode number 0 is the pre-stress of the nodes, strain of mode number 0 the pre-strain.
bool is_pre_vector(std::int32_t mode_number, std::int32_t kind) {
  return mode_number == 0 && (kind == kModalStress || kind == kModalStrain);
}

Vector6 pre_vector(QDL_Record &record, std::int32_t node_id, std::int32_t kind) {
  const std::int32_t slot = find_mode_node(record, kind, node_id);
  const auto &vectors = kind == kModalStress ? record.pre_stress : record.pre_strain;
  const bool set = slot != kNoIndex && static_cast<std::size_t>(slot) < vectors.size();
  return set ? vectors[static_cast<std::size_t>(slot)] : Vector6{};
}

std::int32_t set_pre_vector(QDL_Record &record, std::int32_t node_id, std::int32_t kind,
                            std::int32_t component, std::span<const double> values) {
  Vector6 vector = pre_vector(record, node_id, kind);
  std::ranges::copy(values, vector.begin() + component);
  return kind == kModalStress ? QDL_SetPreStressVec(&record, node_id, vector.data())
                              : QDL_SetPreStrainVec(&record, node_id, vector.data());
}

/// A vector at a node that the file's mode shapes do not reach makes every node a mode node.
void reach_node(QDL_Record &record, std::int32_t node_index) {
  if (!record.mode_node_limit || node_index < *record.mode_node_limit)
    return;
  record.mode_node_limit.reset();
  note_mode_layout_changed(record);
}

/// Sets consecutive components, beginning with `component`.
std::int32_t set_components(QDL_Record &record, std::int32_t mode_number, std::int32_t node_id,
                            std::int32_t kind, std::int32_t component,
                            std::span<const double> values) {
  if (is_pre_vector(mode_number, kind))
    return set_pre_vector(record, node_id, kind, component, values);

  const std::int32_t mode = find_or_add_mode(record, mode_number);
  if (mode == kNoIndex || !ensure_temporary_backing(record, kind))
    return 0;
  const std::int32_t node = find_or_add_node(record, node_id);
  const std::int32_t slot = find_or_add_slot(record, kind, node);
  if (!store_values(record, kind, mode, slot, component, values))
    return 0;

  if (kind == kModeShapes) {
    reach_node(record, node);
    drop_derived_invariants(record, {3, 4, 5, 8, 9});
  }
  forget_statistics(record, kind, mode);
  raise(record, mode_block(kind));
  return 1;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetModeVec(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                       const double *values6) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!is_mode_kind(kind) || values6 == nullptr)
      return 0;
    return set_components(record, modeNumber, nodeId, kind, 0, {values6, kComponents});
  });
}

int32_t QDL_SetMode(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind, double v0,
                    double v1, double v2, double v3, double v4, double v5) {
  const double values[kComponents] = {v0, v1, v2, v3, v4, v5};
  return QDL_SetModeVec(model, modeNumber, nodeId, kind, values);
}

int32_t QDL_SetModeEntry(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                         int32_t component, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!is_mode_kind(kind) || component < 0 || component >= kComponents)
      return 0;
    return set_components(record, modeNumber, nodeId, kind, component, {&value, 1});
  });
}
