#include <algorithm>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "record/lookups.h"
#include "record/record.h"
#include "record/square_matrix.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdldata";

}  // namespace

int32_t QDL_ModeCount(QDL_Record *model) {
  return model == nullptr ? 0 : mode_count(*model);
}

int32_t QDL_ModeExist(QDL_Record *model, int32_t kind) {
  if (model == nullptr || !is_mode_kind(kind))
    return 0;
  return present(*model, mode_block(kind)) ? 1 : 0;
}

int32_t QDL_ModeNodeCount(QDL_Record *model, int32_t kind) {
  return model == nullptr ? 0 : mode_node_count(*model, kind);
}

int32_t QDL_ModeNodeID(QDL_Record *model, int32_t kind, int32_t position) {
  return model == nullptr ? 0 : mode_node_id(*model, kind, position);
}

int32_t QDL_Transformation(QDL_Record *model, double *matrix) {
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    const Transformation &stored = record.transformation;
    if (!stored.present || stored.dimension < mode_count(record) || matrix == nullptr)
      return 0;
    copy_square(stored.matrix.data(), static_cast<std::size_t>(stored.dimension), matrix,
                record.mode_numbers.size());
    return 1;
  });
}

int32_t QDL_SetTransformation(QDL_Record *model, const double *matrix) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::size_t modes = record.mode_numbers.size();
    if (modes == 0 || matrix == nullptr)
      return 0;
    Transformation replacement{.dimension = mode_count(record),
                               .matrix = {matrix, matrix + modes * modes},
                               .row_integers = std::vector<std::int32_t>(modes),
                               .present = true};
    record.transformation = std::move(replacement);
    raise(record, Block::kModeShapeTransformation);
    return 1;
  });
}

int32_t QDL_RotorDynamicsAxis(QDL_Record *model, double *point, double *direction) {
  return with_model(model, kArea, 0, [&](const QDL_Record &record) {
    if (!present(record, Block::kRotorDynamics) || point == nullptr || direction == nullptr)
      return 0;
    std::ranges::copy(record.rotor.centre, point);
    std::ranges::copy(record.rotor.direction, direction);
    return 1;
  });
}

int32_t QDL_RotorDynamicsMatrix(QDL_Record *model, int32_t matrix, double *values) {
  return with_model(model, kArea, 0, [&](const QDL_Record &record) {
    if (!present(record, Block::kRotorDynamics) || matrix < 0 ||
        matrix >= static_cast<std::int32_t>(kRotorMatrices) || values == nullptr) {
      return 0;
    }
    const RotorMatrix &stored = record.rotor.matrices[static_cast<std::size_t>(matrix)];
    if (!stored.present)
      return 0;
    copy_square(stored.values.data(), static_cast<std::size_t>(stored.dimension), values,
                record.mode_numbers.size());
    return 1;
  });
}

int32_t QDL_SetShouldMassNormalizeModes(QDL_Record *model, int32_t flag) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    record.mass_normalize_modes = flag != 0;
    return 1;
  });
}
