#include "build/generalized_entries.h"

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

using AppendEntry = void (*)(QDL_Record &, std::int32_t row, std::int32_t column, double value);

std::int32_t set_entry(QDL_Record *model, AppendEntry append, std::int32_t mode_i,
                       std::int32_t mode_j, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::int32_t row = find_or_add_mode(record, mode_i);
    const std::int32_t column = find_or_add_mode(record, mode_j);
    append(record, row, column, value);
    return 1;
  });
}

}  // namespace

void append_generalized_stiffness(QDL_Record &record, std::int32_t row, std::int32_t column,
                                  double value) {
  record.stiffness.entries.push_back({row, column, value});
  raise(record, Block::kGeneralizedStiffness);
}

void append_generalized_mass(QDL_Record &record, std::int32_t row, std::int32_t column,
                             double value) {
  record.mass.entries.push_back({row, column, value});
  raise(record, Block::kGeneralizedMass);
}

void append_generalized_damping(QDL_Record &record, std::int32_t row, std::int32_t column,
                                double value) {
  const bool first = record.damping.entries.empty();
  record.damping.entries.push_back({row, column, value});
  if (first)
    record.damping_on_principal_axes = false;
  raise(record, Block::kGeneralizedDamping);
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetGeneralizedStiffness(QDL_Record *model, int32_t modeI, int32_t modeJ, double value) {
  return set_entry(model, append_generalized_stiffness, modeI, modeJ, value);
}

int32_t QDL_SetGeneralizedMass(QDL_Record *model, int32_t modeI, int32_t modeJ, double value) {
  return set_entry(model, append_generalized_mass, modeI, modeJ, value);
}

int32_t QDL_SetGeneralizedDamping(QDL_Record *model, int32_t modeI, int32_t modeJ, double value) {
  return set_entry(model, append_generalized_damping, modeI, modeJ, value);
}
