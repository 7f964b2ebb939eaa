#include "record/units.h"

#include <strings.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "support/boundary.h"
#include "support/companion.h"

// Supplied by a companion library or by the host program itself, which is why it is only referred
// to weakly.
extern "C" int QDL_ConvertUnitsLabel(char *label) __attribute__((weak));

const QDL_UnitEntry QDL_MassUnits[13] = {
    {"MEGAGRAM", 1000},
    {"KILOGRAM", 1},
    {"GRAM", 0.001},
    {"MILLIGRAM", 1e-6},
    {"MICROGRAM", 1e-9},
    {"NANOGRAM", 1e-12},
    {"USTON", 907.18474},
    {"KPOUND_MASS", 453.59237},
    {"POUND_MASS", 0.45359237},
    {"OUNCE_MASS", 0.02834952},
    {"SLUG", 14.593902937206366},
    {"SLINCH", 175.1268352464764},
    {nullptr, 0},
};

const QDL_UnitEntry QDL_ForceUnits[11] = {
    {"KNEWTON", 1000},
    {"NEWTON", 1},
    {"MILLINEWTON", 0.001},
    {"DYNE", 1e-5},
    {"MICRONEWTON", 1e-6},
    {"NANONEWTON", 1e-9},
    {"KPOUND_FORCE", 4448.2216152605},
    {"POUND_FORCE", 4.4482216152605},
    {"KILOGRAM_FORCE", 9.80665},
    {"OUNCE_FORCE", 0.2780138509537812},
    {nullptr, 0},
};

const QDL_UnitEntry QDL_LengthUnits[14] = {
    {"KILOMETER", 1000},    {"METER", 1},        {"CENTIMETER", 0.01}, {"MILLIMETER", 0.001},
    {"MICROMETER", 1e-6},   {"NANOMETER", 1e-9}, {"ANGSTROM", 1e-10},  {"MILE", 1609.344},
    {"YARD", 0.9144},       {"FOOT", 0.3048},    {"INCH", 0.0254},     {"MIL", 2.54e-5},
    {"MICROINCH", 2.54e-8}, {nullptr, 0},
};

const QDL_UnitEntry QDL_TimeUnits[8] = {
    {"SECOND", 1},  {"MILLISECOND", 0.001}, {"MICROSECOND", 1e-6}, {"NANOSECOND", 1e-9},
    {"DAY", 86400}, {"HOUR", 3600},         {"MINUTE", 60},        {nullptr, 0},
};

namespace qdlflex {
namespace {

bool is_end(const QDL_UnitEntry &entry) {
  return entry.name == nullptr || entry.name[0] == '\0';
}

const QDL_UnitEntry *find_unit(const char *name, const QDL_UnitEntry *table) {
  for (; !is_end(*table); ++table) {
    if (::strcasecmp(name, table->name) == 0)
      return table;
  }
  return nullptr;
}

}  // namespace

UnitName unit_name(const char *text) {
  UnitName name{};
  std::copy_n(text, ::strnlen(text, name.size() - 1), name.begin());
  return name;
}

bool accept_unit(UnitName &name, const QDL_UnitEntry *table) {
  if (auto *convert = companion_function(&QDL_ConvertUnitsLabel, "QDL_ConvertUnitsLabel")) {
    const bool accepted = convert(name.data()) != 0;
    name.back() = '\0';
    return accepted;
  }
  const QDL_UnitEntry *entry = find_unit(name.data(), table);
  if (entry == nullptr)
    return false;
  name = unit_name(entry->name);
  return true;
}

double unit_consistency_factor(const QDL_Record &record) {
  const Units &units = record.units;
  const double time = QDL_UnitsDivider(units.time.data(), QDL_TimeUnits);
  return QDL_UnitsDivider(units.force.data(), QDL_ForceUnits) * (time * time) /
         (QDL_UnitsDivider(units.length.data(), QDL_LengthUnits) *
          QDL_UnitsDivider(units.mass.data(), QDL_MassUnits));
}

double frequency_unit_factor(const QDL_Record &record) {
  const double factor = unit_consistency_factor(record);
  return std::isfinite(factor) && factor > 0.0 ? factor : 1.0;
}

double signed_sqrt(double value) {
  return value >= 0.0 ? std::sqrt(value) : -std::sqrt(-value);
}

}  // namespace qdlflex

using namespace qdlflex;

double QDL_UnitsDivider(const char *name, const QDL_UnitEntry *table) {
  if (name == nullptr || name[0] == '\0')
    return 1.0;
  if (table == nullptr)
    return 0.0;
  const QDL_UnitEntry *entry = find_unit(name, table);
  return entry == nullptr ? 0.0 : entry->factor;
}

const char *QDL_UnitsLabel(double factor, const QDL_UnitEntry *table) {
  constexpr double kTolerance = 1e-4;
  if (table == nullptr)
    return nullptr;
  for (; !is_end(*table); ++table) {
    const double larger = std::max(table->factor, factor);
    if (std::fabs(table->factor - factor) / larger < kTolerance)
      return table->name;
  }
  return nullptr;
}

double QDL_UCF(QDL_Record *model) {
  return model == nullptr ? 0.0 : unit_consistency_factor(*model);
}
