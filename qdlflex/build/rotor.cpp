#include <algorithm>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "record/record.h"
#include "record/square_matrix.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

/// Lays the matrix out for the present modes; what it has for them stays.
void fit(RotorMatrix &matrix, std::int32_t modes) {
  if (matrix.dimension == modes)
    return;
  const auto size = static_cast<std::size_t>(modes);
  std::vector<double> values(size * size);
  copy_square(matrix.values.data(), static_cast<std::size_t>(matrix.dimension), values.data(),
              size);
  matrix.values = std::move(values);
  matrix.dimension = modes;
}

bool is_mode_index(const QDL_Record &record, std::int32_t index) {
  return index >= 0 && index < mode_count(record);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetRotorDynamicsAxis(QDL_Record *model, const double *centre3, const double *vector3) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (centre3 == nullptr || vector3 == nullptr)
      return 0;
    std::copy_n(centre3, 3, record.rotor.centre.begin());
    std::copy_n(vector3, 3, record.rotor.direction.begin());
    raise(record, Block::kRotorDynamics);
    return 1;
  });
}

int32_t QDL_SetRotorDynamicsMatrix(QDL_Record *model, int32_t matrix, int32_t rowModeIndex,
                                   int32_t columnModeIndex, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (matrix < 0 || matrix >= static_cast<std::int32_t>(kRotorMatrices) ||
        !is_mode_index(record, rowModeIndex) || !is_mode_index(record, columnModeIndex)) {
      return 0;
    }
    RotorMatrix &target = record.rotor.matrices[static_cast<std::size_t>(matrix)];
    fit(target, mode_count(record));
    target.values[static_cast<std::size_t>(rowModeIndex) * record.mode_numbers.size() +
                  static_cast<std::size_t>(columnModeIndex)] = value;
    target.present = true;
    raise(record, Block::kRotorDynamics);
    return 1;
  });
}
