#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>

#include "build/scale_database.h"
#include "record/units.h"
#include "support/boundary.h"
#include "support/decimal_scaling.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlunits";

struct Quantity {
  UnitName Units::*name;
  double UnitRatios::*ratio;
  const QDL_UnitEntry *table;
  const char *si_unit;
};

constexpr Quantity kMass{&Units::mass, &UnitRatios::mass, QDL_MassUnits, "KILOGRAM"};
constexpr Quantity kLength{&Units::length, &UnitRatios::length, QDL_LengthUnits, "METER"};
constexpr Quantity kTime{&Units::time, &UnitRatios::time, QDL_TimeUnits, "SECOND"};
constexpr Quantity kForce{&Units::force, &UnitRatios::force, QDL_ForceUnits, "NEWTON"};

/// In the order of the arguments of the exported functions.
constexpr std::array kQuantities = {kMass, kLength, kTime, kForce};

using Texts = std::array<const char *, kQuantities.size()>;
using Names = std::array<UnitName, kQuantities.size()>;

/// The names as they will be stored, or none when one is not acceptable.
std::optional<Names> accepted_names(const Texts &texts) {
  Names names{};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (texts[i] == nullptr)
      return std::nullopt;
    names[i] = unit_name(texts[i]);
    if (!accept_unit(names[i], kQuantities[i].table))
      return std::nullopt;
  }
  return names;
}

bool has_no_units(const Units &units) {
  return std::ranges::all_of(
      kQuantities, [&](const Quantity &quantity) { return is_unset(units.*quantity.name); });
}

bool has_names(const Units &units, const Names &names) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (std::strcmp((units.*kQuantities[i].name).data(), names[i].data()) != 0)
      return false;
  }
  return true;
}

void store_names(Units &units, const Names &names) {
  for (std::size_t i = 0; i < names.size(); ++i)
    units.*kQuantities[i].name = names[i];
}

double si_factor(const UnitName &name, const Quantity &quantity) {
  return QDL_UnitsDivider(name.data(), quantity.table);
}

/// Old unit over new unit of each quantity, or none when a name is not in its table.
std::optional<UnitRatios> ratios_to(const Names &names, const Units &units) {
  UnitRatios ratios;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Quantity &quantity = kQuantities[i];
    const double before = si_factor(units.*quantity.name, quantity);
    const double after = si_factor(names[i], quantity);
    if (before == 0.0 || after == 0.0)
      return std::nullopt;
    ratios.*quantity.ratio = before / after;
  }
  return ratios;
}

bool set_units(QDL_Record &record, const Texts &texts) {
  const std::optional<Names> names = accepted_names(texts);
  if (!names)
    return false;
  Units &units = record.units;
  if (has_no_units(units)) {
    store_names(units, *names);
    units.current = UnitRatios{};
    units.cumulative = UnitRatios{};
    return true;
  }
  if (has_names(units, *names))
    return true;
  const std::optional<UnitRatios> ratios = ratios_to(*names, units);
  if (!ratios)
    return false;

  const std::int32_t rigid_modes = rigid_modes_of_processed_loads(record);
  store_names(units, *names);
  units.current = *ratios;
  for (const Quantity &quantity : kQuantities)
    units.cumulative.*quantity.ratio *= units.current.*quantity.ratio;
  scale_database(record, rigid_modes);
  return true;
}

double to_si(const QDL_Record *model, double value, const Quantity &quantity) {
  return model == nullptr ? 0.0 : value * si_factor(model->units.*quantity.name, quantity);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetUnits(QDL_Record *model, const char *mass, const char *length, const char *time,
                     const char *force) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return set_units(record, {mass, length, time, force}) ? 1 : 0;
  });
}

int32_t QDL_SetUnitsByMultiplierOnSI(QDL_Record *model, double mass, double length, double time,
                                     double force) {
  return QDL_SetUnits(model, QDL_UnitsLabel(mass, QDL_MassUnits),
                      QDL_UnitsLabel(length, QDL_LengthUnits), QDL_UnitsLabel(time, QDL_TimeUnits),
                      QDL_UnitsLabel(force, QDL_ForceUnits));
}

int32_t QDL_Units(QDL_Record *model, char *mass16, char *length16, char *time16, char *force16) {
  return with_model_or(model, kArea, 0, [&](const QDL_Record &record) {
    char *const buffers[] = {mass16, length16, time16, force16};
    for (std::size_t i = 0; i < kQuantities.size(); ++i) {
      if (buffers[i] == nullptr)
        continue;
      const UnitName &name = record.units.*kQuantities[i].name;
      std::ranges::copy(is_unset(name) ? unit_name(kQuantities[i].si_unit) : name, buffers[i]);
    }
    return 1;
  });
}

double QDL_Mass2Kilogram(QDL_Record *model, double value) {
  return to_si(model, value, kMass);
}

double QDL_Length2Meter(QDL_Record *model, double value) {
  return to_si(model, value, kLength);
}

double QDL_Time2Second(QDL_Record *model, double value) {
  return to_si(model, value, kTime);
}

double QDL_Force2Newton(QDL_Record *model, double value) {
  return to_si(model, value, kForce);
}

double *QDL_Convert_Units(double *values, int32_t count, double factor) {
  if (values != nullptr && count > 0)
    DecimalFactor(factor).apply({values, static_cast<std::size_t>(count)});
  return values;
}
