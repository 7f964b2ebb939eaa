#include "geometry/turned_modes.h"

#include <algorithm>
#include <utility>

#include "geometry/matrix3.h"
#include "geometry/stored_modes.h"
#include "record/lookups.h"

namespace qdlflex {
namespace {

void turn_shape_row(const Matrix3 &matrix, bool mirror, double *six) {
  turn_vector(matrix, six);
  turn_vector(matrix, six + 3);
  for (int c = 3; mirror && c < kComponents; ++c)
    six[c] = -six[c];
}

void turn_tensor_row(const Matrix3 &matrix, double *six) {
  Vector6 tensor{};
  std::copy_n(six, kComponents, tensor.begin());
  turn_symmetric(matrix, tensor);
  std::ranges::copy(tensor, six);
}

/// The last three components are engineering shear, twice those of the tensor.
void turn_strain_row(const Matrix3 &matrix, double *six) {
  for (int c = 3; c < kComponents; ++c)
    six[c] *= 0.5;
  turn_tensor_row(matrix, six);
  for (int c = 3; c < kComponents; ++c)
    six[c] *= 2.0;
}

void turn_rows(std::int32_t kind, const Matrix3 &matrix, std::int64_t rows, double *six) {
  const double *const end = six + rows * kComponents;
  switch (kind) {
    case kModeShapes:
      for (const bool mirror = is_mirror(matrix); six != end; six += kComponents)
        turn_shape_row(matrix, mirror, six);
      break;
    case kModalStress:
      for (; six != end; six += kComponents)
        turn_tensor_row(matrix, six);
      break;
    default:
      for (; six != end; six += kComponents)
        turn_strain_row(matrix, six);
  }
}

std::optional<ModeRewrite> turn_kind(QDL_Record &record, std::int32_t kind, const Matrix3 &matrix) {
  auto turned =
      ModeRewrite::begin(record, kind, stored_mode_count(record, kind),
                         mode_node_count(record, kind), ModeRewrite::Measure::kCurrentUnits);
  const auto turn = [&](std::int64_t rows, double *six) { turn_rows(kind, matrix, rows, six); };
  if (turned && !rewrite_changed(record, kind, *turned, turn))
    return std::nullopt;
  return turned;
}

}  // namespace

void turn_row(std::int32_t kind, const Matrix3 &matrix, double *six) {
  turn_rows(kind, matrix, 1, six);
}

std::optional<std::vector<ModeRewrite>> turn_modes(QDL_Record &record, const Matrix3 &matrix) {
  std::vector<ModeRewrite> all;
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind) {
    if (!present(record, mode_block(kind)) || stored_mode_count(record, kind) == 0)
      continue;
    auto turned = turn_kind(record, kind, matrix);
    if (!turned)
      return std::nullopt;
    all.push_back(std::move(*turned));
  }
  return all;
}

}  // namespace qdlflex
