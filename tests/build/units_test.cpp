// Unit names, tables and factors. What a change of units does to a record stands beside this file.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "support/fixture.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Name and factor of each unit in turn.
void expect_table(const QDL_UnitEntry *table, const std::string &expected) {
  std::istringstream units(expected);
  std::string name;
  for (double factor = 0.0; units >> name >> factor; ++table) {
    ASSERT_NE(table->name, nullptr) << name;
    EXPECT_EQ(table->name, name);
    EXPECT_EQ(table->factor, factor) << name;
  }
  EXPECT_EQ(table->name, nullptr);
}

class Units : public qdltest::MessageFixture {
 protected:
  // mass, length, time, force
  static std::vector<std::string> names_of(QDL_Record *model) {
    std::array<std::array<char, 16>, 4> buffers;
    for (auto &buffer : buffers)
      buffer.fill('#');
    EXPECT_EQ(QDL_Units(model, buffers[0].data(), buffers[1].data(), buffers[2].data(),
                        buffers[3].data()),
              1);
    std::vector<std::string> names;
    for (const auto &buffer : buffers)
      names.emplace_back(buffer.data());
    return names;
  }

  using Names = std::vector<std::string>;
};

}  // namespace

TEST(UnitTables, HoldTheKnownUnitsInSearchOrder) {
  expect_table(QDL_MassUnits,
               "MEGAGRAM 1000 KILOGRAM 1 GRAM 0.001 MILLIGRAM 1e-6 MICROGRAM 1e-9 NANOGRAM 1e-12 "
               "USTON 907.18474 KPOUND_MASS 453.59237 POUND_MASS 0.45359237 "
               "OUNCE_MASS 0.02834952 SLUG 14.593902937206366 SLINCH 175.1268352464764");
  expect_table(QDL_ForceUnits,
               "KNEWTON 1000 NEWTON 1 MILLINEWTON 0.001 DYNE 1e-5 MICRONEWTON 1e-6 "
               "NANONEWTON 1e-9 KPOUND_FORCE 4448.2216152605 POUND_FORCE 4.4482216152605 "
               "KILOGRAM_FORCE 9.80665 OUNCE_FORCE 0.2780138509537812");
  expect_table(QDL_LengthUnits,
               "KILOMETER 1000 METER 1 CENTIMETER 0.01 MILLIMETER 0.001 MICROMETER 1e-6 "
               "NANOMETER 1e-9 ANGSTROM 1e-10 MILE 1609.344 YARD 0.9144 FOOT 0.3048 INCH 0.0254 "
               "MIL 2.54e-5 MICROINCH 2.54e-8");
  expect_table(QDL_TimeUnits,
               "SECOND 1 MILLISECOND 0.001 MICROSECOND 1e-6 NANOSECOND 1e-9 DAY 86400 HOUR 3600 "
               "MINUTE 60");
}

TEST(UnitTables, DividerFindsWholeNamesInAnyCase) {
  EXPECT_EQ(QDL_UnitsDivider("inch", QDL_LengthUnits), 0.0254);
  EXPECT_EQ(QDL_UnitsDivider("SlInCh", QDL_MassUnits), 175.1268352464764);
  for (const char *unknown : {"INC", "INCHES", "SECOND", " INCH", "x"})
    EXPECT_EQ(QDL_UnitsDivider(unknown, QDL_LengthUnits), 0.0) << unknown;
  EXPECT_EQ(QDL_UnitsDivider("", QDL_LengthUnits), 1.0);
  EXPECT_EQ(QDL_UnitsDivider(nullptr, QDL_LengthUnits), 1.0);
  EXPECT_EQ(QDL_UnitsDivider("INCH", nullptr), 0.0);

  const QDL_UnitEntry own_table[] = {{"CUBIT", 0.4572}, {"", 0.0}, {"SPAN", 0.2286}};
  EXPECT_EQ(QDL_UnitsDivider("cubit", own_table), 0.4572);
  EXPECT_EQ(QDL_UnitsDivider("span", own_table), 0.0) << "an empty name ends a table";
}

TEST(UnitTables, LabelOfAFactorIsTheFirstWithinTolerance) {
  const auto length = [](double factor) { return QDL_UnitsLabel(factor, QDL_LengthUnits); };
  EXPECT_STREQ(length(0.0254), "INCH");
  EXPECT_STREQ(length(0.02540001), "INCH");
  EXPECT_STREQ(length(0.0254 * (1 + 0.99e-4)), "INCH");
  EXPECT_STREQ(length(0.0254 * (1 - 0.99e-4)), "INCH");
  EXPECT_STREQ(length(1e-10), "ANGSTROM");
  for (const double factor : {0.0255, 0.0254 * (1 + 1.02e-4), 0.0254 * (1 - 1.01e-4), 0.0, -0.0254,
                              kNaN, kInfinity, -kInfinity}) {
    EXPECT_EQ(length(factor), nullptr) << factor;
  }
  EXPECT_EQ(QDL_UnitsLabel(1.0, nullptr), nullptr);
}

TEST_F(Units, AModelWithoutUnitsReportsSi) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(names_of(model), (Names{"KILOGRAM", "METER", "SECOND", "NEWTON"}));
  EXPECT_EQ(QDL_UCF(model), 1.0);
  EXPECT_EQ(QDL_Length2Meter(model, 3.5), 3.5);
  char time[16] = {};
  EXPECT_EQ(QDL_Units(model, nullptr, nullptr, time, nullptr), 1);
  EXPECT_STREQ(time, "SECOND");
}

TEST_F(Units, NamesAreTakenInAnyCaseAndKeptInTheSpellingOfTheTable) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_SetUnits(model, "pound_mass", "Inch", "second", "POUND_FORCE"), 1);
  EXPECT_EQ(names_of(model), (Names{"POUND_MASS", "INCH", "SECOND", "POUND_FORCE"}));
  EXPECT_NEAR(QDL_UCF(model), 386.0885826771653, 386 * 1e-15);
  EXPECT_EQ(QDL_Mass2Kilogram(model, 2.0), 2.0 * 0.45359237);
  EXPECT_EQ(QDL_Length2Meter(model, 2.0), 2.0 * 0.0254);
  EXPECT_EQ(QDL_Time2Second(model, 2.0), 2.0);
  EXPECT_EQ(QDL_Force2Newton(model, 2.0), 2.0 * 4.4482216152605);
  expect_no_messages();
}

TEST_F(Units, ARefusedNameChangesNothing) {
  struct Case {
    const char *names[4];
  };
  const std::string endless(100000, 'M');
  const Case cases[] = {
      {{nullptr, "METER", "SECOND", "NEWTON"}},
      {{"KILOGRAM", nullptr, "SECOND", "NEWTON"}},
      {{"KILOGRAM", "METER", nullptr, "NEWTON"}},
      {{"KILOGRAM", "METER", "SECOND", nullptr}},
      {{"KILOGRAM", "", "SECOND", "NEWTON"}},
      {{"METER", "METER", "SECOND", "NEWTON"}},
      {{"KILOGRAM", "KILOGRAM", "SECOND", "NEWTON"}},
      {{"KILOGRAM", "METER", "FORTNIGHT", "NEWTON"}},
      {{"KILOGRAM", "METER", "SECOND", endless.c_str()}},
  };
  QDL_Record *without = QDL_Create(0, 0);
  QDL_Record *with = QDL_Create(0, 0);
  ASSERT_EQ(QDL_SetUnits(with, "GRAM", "INCH", "HOUR", "DYNE"), 1);
  QDL_SetNodeCoordinates(with, 1, 2.0, 3.0, 4.0);
  for (const Case &names : cases) {
    for (QDL_Record *model : {without, with}) {
      EXPECT_EQ(QDL_SetUnits(model, names.names[0], names.names[1], names.names[2], names.names[3]),
                0);
    }
  }
  EXPECT_EQ(names_of(without), (Names{"KILOGRAM", "METER", "SECOND", "NEWTON"}));
  EXPECT_EQ(names_of(with), (Names{"GRAM", "INCH", "HOUR", "DYNE"}));
  double xyz[3] = {};
  EXPECT_EQ(QDL_NodeCoordinates(with, 0, xyz), 1);
  EXPECT_EQ(xyz[0], 2.0);
  expect_no_messages();
}

TEST_F(Units, FactorsSelectTheUnitsOfTheTables) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_SetUnitsByMultiplierOnSI(model, 1, 0.0255, 1, 1), 0);
  EXPECT_EQ(QDL_SetUnitsByMultiplierOnSI(model, 1, 0.0254, 1, kNaN), 0);
  EXPECT_EQ(QDL_SetUnitsByMultiplierOnSI(model, 0, 0.0254, 1, 1), 0);
  EXPECT_EQ(names_of(model), (Names{"KILOGRAM", "METER", "SECOND", "NEWTON"}));
  EXPECT_EQ(QDL_SetUnitsByMultiplierOnSI(model, 1, 0.02540001, 60, 0.001), 1);
  EXPECT_EQ(names_of(model), (Names{"KILOGRAM", "INCH", "MINUTE", "MILLINEWTON"}));
  expect_no_messages();
}

TEST_F(Units, NullHandles) {
  expect_no_model(QDL_SetUnits(nullptr, "KILOGRAM", "METER", "SECOND", "NEWTON"));
  expect_no_model(QDL_SetUnitsByMultiplierOnSI(nullptr, 1, 1, 1, 1));
  expect_no_model(QDL_ScaleDatabase(nullptr));

  char untouched[16] = "as it was";
  EXPECT_EQ(QDL_Units(nullptr, untouched, untouched, untouched, untouched), 0);
  EXPECT_STREQ(untouched, "as it was");
  EXPECT_EQ(QDL_Mass2Kilogram(nullptr, 2.0), 0.0);
  EXPECT_EQ(QDL_Length2Meter(nullptr, 2.0), 0.0);
  EXPECT_EQ(QDL_Time2Second(nullptr, 2.0), 0.0);
  EXPECT_EQ(QDL_Force2Newton(nullptr, 2.0), 0.0);
  EXPECT_EQ(QDL_UCF(nullptr), 0.0);
  expect_no_messages();
}
