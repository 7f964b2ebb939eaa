#include "units.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <utility>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

using Abbreviation = std::pair<std::string_view, std::string_view>;

constexpr std::array<Abbreviation, 13> kMass = {{{"t", "MEGAGRAM"},
                                                 {"Mg", "MEGAGRAM"},
                                                 {"kg", "KILOGRAM"},
                                                 {"g", "GRAM"},
                                                 {"mg", "MILLIGRAM"},
                                                 {"ug", "MICROGRAM"},
                                                 {"ng", "NANOGRAM"},
                                                 {"ton", "USTON"},
                                                 {"klbm", "KPOUND_MASS"},
                                                 {"lbm", "POUND_MASS"},
                                                 {"ozm", "OUNCE_MASS"},
                                                 {"slug", "SLUG"},
                                                 {"slinch", "SLINCH"}}};
constexpr std::array<Abbreviation, 10> kForce = {{{"kN", "KNEWTON"},
                                                  {"N", "NEWTON"},
                                                  {"mN", "MILLINEWTON"},
                                                  {"dyn", "DYNE"},
                                                  {"uN", "MICRONEWTON"},
                                                  {"nN", "NANONEWTON"},
                                                  {"klbf", "KPOUND_FORCE"},
                                                  {"lbf", "POUND_FORCE"},
                                                  {"kgf", "KILOGRAM_FORCE"},
                                                  {"ozf", "OUNCE_FORCE"}}};
constexpr std::array<Abbreviation, 12> kLength = {{{"km", "KILOMETER"},
                                                   {"m", "METER"},
                                                   {"cm", "CENTIMETER"},
                                                   {"mm", "MILLIMETER"},
                                                   {"um", "MICROMETER"},
                                                   {"nm", "NANOMETER"},
                                                   {"mi", "MILE"},
                                                   {"yd", "YARD"},
                                                   {"ft", "FOOT"},
                                                   {"in", "INCH"},
                                                   {"mil", "MIL"},
                                                   {"uin", "MICROINCH"}}};
constexpr std::array<Abbreviation, 7> kTime = {{{"s", "SECOND"},
                                                {"ms", "MILLISECOND"},
                                                {"us", "MICROSECOND"},
                                                {"ns", "NANOSECOND"},
                                                {"d", "DAY"},
                                                {"h", "HOUR"},
                                                {"min", "MINUTE"}}};

template <size_t n>
std::string_view find_abbreviation(std::string_view name,
                                   const std::array<Abbreviation, n> &abbreviations) {
  const auto *const found = std::ranges::find(abbreviations, name, &Abbreviation::second);
  return found == abbreviations.end() ? std::string_view() : found->first;
}

/// The library's name of a unit of one quantity; empty if it is none.
template <size_t n>
std::string find_unit(std::string_view text, const std::array<Abbreviation, n> &abbreviations,
                      const QDL_UnitEntry *table) {
  for (const auto &[abbreviation, name] : abbreviations) {
    if (text == abbreviation) {
      return std::string(name);
    }
  }
  const std::string name = upper(text);
  return !name.empty() && QDL_UnitsDivider(name.c_str(), table) != 0.0 ? name : std::string();
}

void store(std::string &unit, const std::string &name, std::string_view text) {
  if (!unit.empty()) {
    throw Failure("units \"" + std::string(text) + "\": " + unit + " and " + name +
                  " measure the same quantity");
  }
  unit = name;
}

}  // namespace

Units parse_units(std::string_view text) {
  Units units;
  for (const std::string_view word : split(text, '-')) {
    if (const auto mass = find_unit(word, kMass, QDL_MassUnits); !mass.empty()) {
      store(units.mass, mass, text);
    } else if (const auto length = find_unit(word, kLength, QDL_LengthUnits); !length.empty()) {
      store(units.length, length, text);
    } else if (const auto time = find_unit(word, kTime, QDL_TimeUnits); !time.empty()) {
      store(units.time, time, text);
    } else if (const auto force = find_unit(word, kForce, QDL_ForceUnits); !force.empty()) {
      store(units.force, force, text);
    } else {
      throw Failure("units \"" + std::string(text) + "\": \"" + std::string(word) +
                    "\" is not a known unit");
    }
  }
  if (units.mass.empty() || units.length.empty() || units.time.empty() || units.force.empty()) {
    throw Failure("units \"" + std::string(text) +
                  "\": one unit each of mass, length, time and force is needed, such as mm-N-t-s");
  }
  return units;
}

Units read_units(QDL_Record *record) {
  std::array<std::array<char, 17>, 4> names{};
  QDL_Units(record, names[0].data(), names[1].data(), names[2].data(), names[3].data());
  return {names[0].data(), names[1].data(), names[2].data(), names[3].data()};
}

std::string abbreviation_of(const std::string &name) {
  for (const std::string_view found :
       {find_abbreviation(name, kMass), find_abbreviation(name, kLength),
        find_abbreviation(name, kTime), find_abbreviation(name, kForce)}) {
    if (!found.empty()) {
      return std::string(found);
    }
  }
  return name;
}

}  // namespace qdlflex::cli
