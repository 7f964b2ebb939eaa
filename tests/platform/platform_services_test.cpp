// Time of day, processor time and the name of the system.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string>

#include "support/fixture.h"
#include "support/platform_services.h"

namespace {

using namespace qdltest;

struct ZoneCase {
  const char *zone;  // POSIX form, which counts hours west of UTC; needs no table of zones
  std::time_t now;
  const char *text;
};

constexpr std::time_t kWinter = 1763198130;  // 2025-11-15 09:15:30 UTC
constexpr std::time_t kSummer = 1751328000;  // 2025-07-01 00:00:00 UTC

TEST(LocalTime, CarriesTheOffsetFromUtc) {
  const ZoneCase cases[] = {
      {"UTC0", kWinter, "2025-11-15 09:15 +0000"},
      {"IST-5:30", kWinter, "2025-11-15 14:45 +0530"},
      {"NST3:30", kWinter, "2025-11-15 05:45 -0330"},
      {"XST5:30", kWinter, "2025-11-15 03:45 -0530"},
      {"LINT-14", kWinter, "2025-11-15 23:15 +1400"},
      {"SST11", kSummer, "2025-06-30 13:00 -1100"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", kWinter, "2025-11-15 10:15 +0100"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", kSummer, "2025-07-01 02:00 +0200"},
      // The sign stands with the hours, so half an hour behind looks like half an hour ahead.
      {"HALF0:30", kWinter, "2025-11-15 08:45 +0030"},
      {"UTC0", 0, "1970-01-01 00:00 +0000"},
  };
  for (const ZoneCase &test : cases) {
    const ScopedEnvironment zone("TZ", test.zone);
    const std::string text = test.text;
    EXPECT_EQ(qdlflex::local_time_text(test.now, 3), text) << test.zone;
    EXPECT_EQ(qdlflex::local_time_text(test.now, 1), text.substr(0, 10));
    EXPECT_EQ(qdlflex::local_time_text(test.now, 2), text.substr(11));
    EXPECT_EQ(qdlflex::local_time_text(test.now, 0), text);
  }
}

TEST(LocalTime, IsThePresent) {
  const ScopedEnvironment zone("TZ", "IST-5:30");
  std::array<char, 24> text{};
  text.back() = '!';
  const std::time_t before = std::time(nullptr);
  ASSERT_EQ(QDL_localtime_ISO8601(0, text.data()), 0);
  std::tm fields{};
  ASSERT_EQ(strptime(text.data(), "%Y-%m-%d %H:%M +0530", &fields),
            text.data() + std::string("2025-11-15 14:45 +0530").size())
      << text.data();
  const std::time_t told = timegm(&fields) - 19800;
  EXPECT_GT(told, before - 60);
  EXPECT_LE(told, std::time(nullptr));
  EXPECT_EQ(text.back(), '!');
}

TEST(LocalTime, NegativeModeTracesAndMeansItsAbsoluteValue) {
  const ScopedEnvironment zone("TZ", "NST3:30");
  std::array<char, 23> text{};
  testing::internal::CaptureStdout();
  EXPECT_EQ(QDL_localtime_ISO8601(-1, text.data()), 0);
  const std::string trace = testing::internal::GetCapturedStdout();
  const std::string date(text.data());
  EXPECT_EQ(date.size(), 10U);
  // A pattern of the two lines: d a digit.
  const std::string pattern =
      "%utl_23-v-val, GMT = dddd-dd-dd dd:dd, tz_value(1)\n"
      "%utl_23-v-val, Loc = " +
      date + " dd:dd -0330\n";
  ASSERT_EQ(trace.size(), pattern.size()) << trace;
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const bool digit = pattern[i] == 'd' && trace[i] >= '0' && trace[i] <= '9';
    EXPECT_TRUE(digit || pattern[i] == trace[i]) << i << " in " << trace;
  }

  testing::internal::CaptureStdout();
  QDL_localtime_ISO8601(std::numeric_limits<std::int32_t>::min(), text.data());
  EXPECT_NE(testing::internal::GetCapturedStdout().find("tz_value(2147483648)\n"),
            std::string::npos);
  EXPECT_EQ(std::string(text.data()).size(), 22U);
  EXPECT_EQ(QDL_localtime_ISO8601(1, nullptr), 0);
}

TEST(ProcessorTime, GrowsWithWork) {
  const double start = QDL_cputime();
  const std::clock_t until = std::clock() + CLOCKS_PER_SEC / 50;
  while (std::clock() < until) {}
  const double spent = QDL_cputime() - start;
  EXPECT_GE(spent, 0.019);
  EXPECT_LT(spent, 5.0);
}

struct SystemCase {
  std::int32_t mode;
  const char *text;
};

TEST(SystemName, HasAFormForEachMode) {
  const SystemCase cases[] = {
      {1, "Linux"},        {11, "Linux"}, {2, "Linux 6_1"}, {3, "Linux 6_1 0"}, {12, "Linux_6_1"},
      {13, "Linux_6_1_0"}, {0, "Linux"},  {-2, "Linux"},    {99, "Linux"},
  };
  for (const auto &[mode, text] : cases)
    EXPECT_EQ(qdlflex::system_text("Linux", "6.1.0-13-amd64", mode), text) << mode;
  EXPECT_EQ(qdlflex::system_text("Linux", "7", 12), "Linux_7_0");
  EXPECT_EQ(qdlflex::system_text("Linux", "5.15-rc2", 2), "Linux 5_15");
  for (const char *unclear : {"", "rolling", "."})
    EXPECT_EQ(qdlflex::system_text("Linux", unclear, 1), "");
}

TEST(SystemName, IsThatOfThisSystem) {
  std::array<char, 128> text{};
  EXPECT_EQ(QDL_uname(1, text.data()), 0);
  EXPECT_EQ(std::string(text.data()), "Linux");
  EXPECT_EQ(QDL_uname(12, text.data()), 0);
  EXPECT_TRUE(std::string(text.data()).starts_with("Linux_")) << text.data();
  EXPECT_EQ(QDL_uname(1, nullptr), 1);
}

}  // namespace
