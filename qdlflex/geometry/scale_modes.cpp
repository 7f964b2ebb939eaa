#include <algorithm>
#include <optional>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "geometry/stored_modes.h"
#include "modes/mode_cache.h"
#include "numerics/mode_transformation.h"
#include "record/derived.h"
#include "record/invariant_layout.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

void scale(std::vector<double> &values, double factor) {
  for (double &value : values)
    value *= factor;
}

/// Those of pairs of modes have the factor twice.
void scale_invariants(QDL_Record &record, double factor) {
  for (const int number : {3, 4, 8})
    scale(slot_of(record, number).values, factor);
  for (const int number : {5, 9})
    scale(slot_of(record, number).values, factor * factor);
}

/// Pre-stress goes with the stress modes, pre-strain with the strain modes.
void scale_pre_vectors(QDL_Record &record, std::int32_t kind, double factor) {
  if (kind == kModeShapes)
    return;
  for (Vector6 &vector : kind == kModalStress ? record.pre_stress : record.pre_strain) {
    for (double &component : vector)
      component *= factor;
  }
}

bool scale_modes(QDL_Record &record, std::int32_t kind, double factor) {
  const ModesNotKept not_kept(record);
  const std::int32_t modes = stored_mode_count(record, kind);
  std::optional<ModeRewrite> scaled = ModeRewrite::begin(
      record, kind, modes, mode_node_count(record, kind), ModeRewrite::Measure::kCurrentUnits, "");
  if (!scaled)
    return false;
  if (modes == 0) {
    QDL_Warning("No Mode Shape Data found in this QDL file. \n");
  } else {
    const auto scale_rows = [&](std::int64_t rows, double *six) {
      std::for_each(six, six + rows * kComponents, [&](double &value) { value *= factor; });
    };
    if (!rewrite_changed(record, kind, *scaled, scale_rows))
      return false;
    if (kind == kModeShapes) {
      if (!load_modal_invariants(record))
        return false;
      scale_invariants(record, factor);
    }
    scaled->adopt(record);
    forget_statistics(record, kind);
  }
  scale_pre_vectors(record, kind, factor);
  return true;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ScaleModes(QDL_Record *model, int32_t kind, double factor) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return is_mode_kind(kind) && scale_modes(record, kind, factor) ? 1 : 0;
  });
}
