#include "support/platform_services.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <qdlflex/qdlflex.h>
#include <sys/utsname.h>

#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";
constexpr std::size_t kTimeTextBytes = 23;

struct LocalTime {
  std::tm utc{};
  std::tm local{};
  int offset_hours = 0;
  int offset_minutes = 0;  // without sign: only the hours tell on which side of UTC
};

LocalTime local_time(std::time_t now) {
  LocalTime time;
  ::tzset();
  ::gmtime_r(&now, &time.utc);
  ::localtime_r(&now, &time.local);
  // The UTC fields read as local time miss the present by the offset.
  std::tm utc_as_local = time.utc;
  utc_as_local.tm_isdst = -1;
  const auto offset = static_cast<int>(std::difftime(now, std::mktime(&utc_as_local)));
  time.offset_hours = offset / 3600;
  time.offset_minutes = std::abs(offset % 3600) / 60;
  return time;
}

using Text = std::array<char, 64>;

std::string date_text(const std::tm &time) {
  Text text{};
  std::snprintf(text.data(), text.size(), "%4d-%02d-%02d", time.tm_year + 1900, time.tm_mon + 1,
                time.tm_mday);
  return text.data();
}

std::string clock_text(const std::tm &time) {
  Text text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d", time.tm_hour, time.tm_min);
  return text.data();
}

std::string offset_text(const LocalTime &time) {
  Text text{};
  std::snprintf(text.data(), text.size(), "%+03d%02d", time.offset_hours, time.offset_minutes);
  return text.data();
}

void trace(const LocalTime &time, std::int64_t form) {
  const auto print = [](const char *zone, const std::tm &fields, const std::string &rest) {
    std::printf("%%utl_23-v-val, %s = %s %s%s\n", zone, date_text(fields).c_str(),
                clock_text(fields).c_str(), rest.c_str());
  };
  print("GMT", time.utc, ", tz_value(" + std::to_string(form) + ")");
  print("Loc", time.local, " " + offset_text(time));
}

std::string text_of(const LocalTime &time, std::int64_t form) {
  const std::string date = date_text(time.local);
  const std::string clock = clock_text(time.local) + " " + offset_text(time);
  return form == 1 ? date : form == 2 ? clock : date + " " + clock;
}

}  // namespace

std::string local_time_text(std::time_t now, std::int64_t form) {
  return text_of(local_time(now), form);
}

std::string system_text(const std::string &name, const char *release, std::int32_t form) {
  char *end = nullptr;
  const long major = std::strtol(release, &end, 10);
  if (end == release)
    return {};
  const long minor = *end == '.' ? std::strtol(end + 1, nullptr, 10) : 0;
  const std::string separator = form > 10 ? "_" : " ";
  std::string text = name;
  if (form == 2 || form == 3 || form == 12 || form == 13)
    text += separator + std::to_string(major) + "_" + std::to_string(minor);
  if (form == 3 || form == 13)
    text += separator + "0";
  return text;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_localtime_ISO8601(int32_t mode, char *text) {
  if (text == nullptr)
    return 0;
  text[0] = '\0';
  return guarded(kArea, 0, [&] {
    const LocalTime time = local_time(std::time(nullptr));
    const std::int64_t form = std::llabs(mode);
    if (mode < 0)
      trace(time, form);
    const std::string result = text_of(time, form).substr(0, kTimeTextBytes - 1);
    std::memcpy(text, result.c_str(), result.size() + 1);
    return 0;
  });
}

double QDL_cputime(void) {
  return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

int32_t QDL_uname(int32_t mode, char *text) {
  if (text == nullptr)
    return 1;
  text[0] = '\0';
  return guarded(kArea, 1, [&] {
    ::utsname system{};
    const bool known = ::uname(&system) == 0;
    const std::string result = known ? system_text(system.sysname, system.release, mode) : "";
    std::memcpy(text, result.c_str(), result.size() + 1);
    return result.empty() ? 1 : 0;
  });
}
