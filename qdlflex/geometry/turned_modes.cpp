#include "geometry/turned_modes.h"

#include <algorithm>
#include <utility>

#include "geometry/matrix3.h"
#include "geometry/stored_modes.h"
#include "modes/mode_store.h"
#include "record/lookups.h"

namespace qdlflex {
namespace {

/// Rows that are read, turned and written at a time: 1.5 MiB.
constexpr std::int64_t kChunkRows = 32768;

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

bool turn_mode(QDL_Record &record, std::int32_t kind, std::int32_t mode, const Matrix3 &matrix,
               std::vector<double> &chunk, ModeRewrite &turned) {
  const std::int64_t nodes = mode_node_count(record, kind);
  for (std::int64_t first = 0; first < nodes; first += kChunkRows) {
    const std::int64_t rows = std::min(kChunkRows, nodes - first);
    if (!read_rows(record, kind, mode, first, rows, chunk.data())) {
      report_unreadable_mode(kind, record.mode_numbers[static_cast<std::size_t>(mode)]);
      return false;
    }
    turn_rows(kind, matrix, rows, chunk.data());
    if (!turned.write_rows(mode, first, rows, chunk.data()))
      return false;
  }
  return true;
}

std::optional<ModeRewrite> turn_kind(QDL_Record &record, std::int32_t kind, const Matrix3 &matrix) {
  const std::int32_t nodes = mode_node_count(record, kind);
  const std::int32_t modes = stored_mode_count(record, kind);
  auto turned = ModeRewrite::begin(record, kind, modes, nodes, ModeRewrite::Measure::kCurrentUnits);
  std::vector<double> chunk(
      static_cast<std::size_t>(std::min<std::int64_t>(kChunkRows, nodes) * kComponents));
  for (std::int32_t mode = 0; turned && mode < modes; ++mode) {
    if (!turn_mode(record, kind, mode, matrix, chunk, *turned))
      return std::nullopt;
  }
  if (turned && !turned->finish())
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
