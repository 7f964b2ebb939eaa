#include "build/scale_database.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

#include "modes/mode_cache.h"
#include "numerics/rigid_body_modes.h"
#include "record/derived.h"
#include "record/invariant_layout.h"
#include "support/boundary.h"
#include "support/decimal_scaling.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlunits";

void scale_nodes(QDL_Record &record, const UnitRatios &ratios) {
  const UnitConversion length(ratios.length);
  const UnitConversion mass(ratios.mass);
  const UnitConversion inertia(ratios.mass * ratios.length * ratios.length);
  for (Node &node : record.nodes) {
    length(node.xyz);
    mass(node.mass);
    if (node.inertia != nullptr)
      inertia(*node.inertia);
  }
  length(record.body_size);
  note_nodes_moved(record);
}

void scale_global_mass(GlobalMass &global, const UnitRatios &ratios) {
  UnitConversion(ratios.mass)(global.mass);
  UnitConversion(ratios.length)(global.centre);
  UnitConversion(ratios.mass * ratios.length * ratios.length)(global.inertia);
}

void scale_entries(GeneralizedMatrix &matrix, const UnitConversion &convert) {
  for (GeneralizedEntry &entry : matrix.entries)
    convert(entry.value);
}

/// On the principal axes the first three indices are translations of the body.
void scale_damping_on_principal_axes(GeneralizedMatrix &damping, const UnitRatios &ratios) {
  const auto is_translation = [](std::int32_t index) { return index < 3; };
  const UnitConversion both(ratios.force * ratios.time / ratios.length);
  const UnitConversion one(ratios.force * ratios.time);
  const UnitConversion none(ratios.force * ratios.length * ratios.time);
  for (GeneralizedEntry &entry : damping.entries) {
    const bool row = is_translation(entry.row);
    const bool column = is_translation(entry.column);
    const UnitConversion &convert = row && column ? both : row || column ? one : none;
    convert(entry.value);
  }
}

void scale_eigenvalues(QDL_Record &record, const UnitRatios &ratios) {
  const UnitConversion eigenvalue(ratios.force / (ratios.mass * ratios.length));
  const UnitConversion frequency(1.0 / ratios.time);
  const UnitConversion mass(ratios.mass * ratios.length * ratios.length);
  const UnitConversion stiffness(ratios.force * ratios.length);
  for (EigenEntry &entry : record.eigenvalues) {
    if (entry.eigenvalue != kInfiniteEigenvalue)
      eigenvalue(entry.eigenvalue);
    frequency(entry.frequency);
    frequency(entry.circular_frequency);
    mass(entry.generalized_mass);
    stiffness(entry.generalized_stiffness);
  }
}

/// The rigid-body part of a processed vector begins with forces along the principal axes.
void scale_modal_forces(std::vector<double> &values, bool processed, std::int32_t rigid_modes,
                        const UnitRatios &ratios) {
  const std::size_t forces =
      processed ? std::min<std::size_t>(static_cast<std::size_t>(std::clamp(rigid_modes, 0, 3)),
                                        values.size())
                : 0;
  const std::span<double> all(values);
  UnitConversion(ratios.force)(all.first(forces));
  UnitConversion(ratios.force * ratios.length)(all.subspan(forces));
}

void scale_loads(QDL_Record &record, const UnitRatios &ratios, std::int32_t rigid_modes) {
  scale_modal_forces(record.preload.values, record.preload.processed != 0, rigid_modes, ratios);
  for (ModalLoadCase &load : record.modal_loads)
    scale_modal_forces(load.values, load.processed != 0, rigid_modes, ratios);

  const UnitConversion force(ratios.force);
  const UnitConversion moment(ratios.force * ratios.length);
  for (NodalLoadCase &load : record.nodal_loads) {
    for (NodalLoadEntry &entry : load.entries)
      (entry.coordinate <= 3 ? force : moment)(entry.value);
  }
}

void scale_invariants(QDL_Record &record, const UnitRatios &ratios) {
  for (int number = 1; number <= kLastInvariant; ++number) {
    const UnitConversion convert(invariant_unit_factor(number, ratios));
    convert(slot_of(record, number).values);
  }
}

/// Stress statistics and pre-stress; strains have no unit.
void scale_stresses(QDL_Record &record, const UnitRatios &ratios) {
  const UnitConversion length(ratios.length);
  const UnitConversion stress(ratios.force / (ratios.length * ratios.length));
  for (ModalStatistics &mode : record.statistics.modes) {
    length(mode.values[0]);
    stress(mode.values[2]);
  }
  for (Vector6 &vector : record.pre_stress)
    stress(vector);
}

/// Factor of the monitor-point rows of a component digit; none where they have no known unit.
std::optional<double> monitor_row_factor(std::int32_t result_type, char digit,
                                         const UnitRatios &ratios) {
  if (digit < '1' || digit > '6')
    return std::nullopt;
  const bool translation = digit <= '3';
  switch (result_type) {
    case 1:
      return translation ? ratios.length : 1.0;
    case 2:
      return ratios.force / (ratios.length * ratios.length);
    case 3:
      return 1.0;
    case 4:
    case 5:
      return translation ? ratios.force : ratios.force * ratios.length;
    default:
      return std::nullopt;
  }
}

/// One row of each of an operator's matrices.
void scale_monitor_row(MonitorPoint &point, std::size_t number, std::size_t row,
                       const UnitConversion &convert) {
  const std::span<double> values(point.operators[number]);
  const auto columns = static_cast<std::size_t>(point.columns);
  const std::size_t matrix = static_cast<std::size_t>(point.rows) * columns;
  for (std::size_t start = row * columns; start < values.size(); start += matrix)
    convert(values.subspan(start, columns));
}

void scale_monitor_point(MonitorPoint &point, const UnitRatios &ratios) {
  UnitConversion{ratios.length}(point.location);
  const std::string digits = std::to_string(point.component);
  const std::size_t rows = std::min(digits.size(), static_cast<std::size_t>(point.rows));
  const double time_factors[] = {1.0, ratios.time, ratios.time * ratios.time, 1.0};
  for (std::size_t row = 0; row < rows; ++row) {
    const auto factor = monitor_row_factor(point.result_type, digits[row], ratios);
    for (std::size_t number = 0; factor && number < point.operators.size(); ++number)
      scale_monitor_row(point, number, row, UnitConversion(*factor / time_factors[number]));
  }
}

/// The direction of the axis is scaled like a point; users normalize it.
void scale_rotor(RotorDynamics &rotor, const UnitRatios &ratios) {
  const UnitConversion length(ratios.length);
  length(rotor.centre);
  length(rotor.direction);
  const double damping = ratios.force * ratios.length * ratios.time;
  const double factors[kRotorMatrices] = {damping * ratios.time, damping, damping * ratios.time};
  for (std::size_t i = 0; i < kRotorMatrices; ++i)
    UnitConversion{factors[i]}(rotor.matrices[i].values);
}

}  // namespace

void scale_stiffness(GeneralizedMatrix &stiffness, const UnitRatios &ratios) {
  scale_entries(stiffness, UnitConversion(ratios.force * ratios.length));
}

void scale_mass(GeneralizedMatrix &mass, const UnitRatios &ratios) {
  scale_entries(mass, UnitConversion(ratios.mass * ratios.length * ratios.length));
}

void scale_damping(QDL_Record &record, const UnitRatios &ratios) {
  if (record.damping_on_principal_axes)
    scale_damping_on_principal_axes(record.damping, ratios);
  else
    scale_entries(record.damping, UnitConversion(ratios.force * ratios.length * ratios.time));
}

std::int32_t rigid_modes_of_processed_loads(const QDL_Record &record) {
  const bool needed = record.preload.processed != 0 ||
                      std::ranges::any_of(record.modal_loads, [](const ModalLoadCase &load) {
                        return load.processed != 0;
                      });
  return needed ? rigid_body_mode_count(record) : 0;
}

void scale_database(QDL_Record &record, std::int32_t rigid_modes) {
  clean_double_cache(record);
  clean_single_cache(record);

  const UnitRatios &ratios = record.units.current;
  scale_nodes(record, ratios);
  scale_global_mass(record.global_mass, ratios);
  scale_stiffness(record.stiffness, ratios);
  scale_mass(record.mass, ratios);
  scale_damping(record, ratios);
  scale_eigenvalues(record, ratios);
  scale_loads(record, ratios, rigid_modes);
  scale_invariants(record, ratios);
  scale_stresses(record, ratios);
  for (MonitorPoint &point : record.monitor_points)
    scale_monitor_point(point, ratios);
  scale_rotor(record.rotor, ratios);
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ScaleDatabase(QDL_Record *model) {
  return with_model(model, kArea, 0, [](QDL_Record &record) {
    scale_database(record, rigid_modes_of_processed_loads(record));
    return 1;
  });
}
