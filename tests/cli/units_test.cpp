#include "units.h"

#include <gtest/gtest.h>

#include "cli_support.h"

using namespace qdlflex::cli;

TEST(ParseUnits, TakesAbbreviationsAndNamesInAnyOrder) {
  const struct {
    const char *text;
    Units units;
  } cases[] = {
      {"mm-N-t-s", {"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"}},
      {"m-N-kg-s", {"KILOGRAM", "METER", "SECOND", "NEWTON"}},
      {"mm-kN-kg-ms", {"KILOGRAM", "MILLIMETER", "MILLISECOND", "KNEWTON"}},
      {"in-lbf-slinch-s", {"SLINCH", "INCH", "SECOND", "POUND_FORCE"}},
      {"min-mN-Mg-mil", {"MEGAGRAM", "MIL", "MINUTE", "MILLINEWTON"}},
      {"newton-Kilogram-METER-second", {"KILOGRAM", "METER", "SECOND", "NEWTON"}},
  };
  for (const auto &c : cases) {
    const Units units = parse_units(c.text);
    EXPECT_EQ(units.mass, c.units.mass) << c.text;
    EXPECT_EQ(units.length, c.units.length) << c.text;
    EXPECT_EQ(units.time, c.units.time) << c.text;
    EXPECT_EQ(units.force, c.units.force) << c.text;
  }
}

TEST(ParseUnits, SaysWhatIsWrong) {
  const auto failure = [](const char *text) { return failure_of([&] { parse_units(text); }); };
  EXPECT_EQ(failure("mm-N-t"),
            "units \"mm-N-t\": one unit each of mass, length, time and force is needed, such as "
            "mm-N-t-s");
  EXPECT_EQ(failure("mm-N-T-s"), "units \"mm-N-T-s\": \"T\" is not a known unit");
  EXPECT_EQ(failure("mm-m-N-t-s"),
            "units \"mm-m-N-t-s\": MILLIMETER and METER measure the same quantity");
  EXPECT_EQ(failure(""), "units \"\": \"\" is not a known unit");
}
