#include "geometry/qdlcoarse_arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include <qdlflex/qdlflex.h>

namespace qdlflex {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kSigns = "+-";

/// Takes numbers off the front of a text.
class NumberReader {
 public:
  explicit NumberReader(std::string_view text) : rest_(text) {}

  /// 0 where no number stands.
  double real() {
    const std::string_view number = take([this] { skip_real(); });
    double value = 0.0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
    return read.ec == std::errc::result_out_of_range ? beyond_range(number) : value;
  }

  /// None where no number stands. What 64 bits cannot hold becomes their limit.
  std::optional<std::int64_t> integer() {
    const std::string_view number = take([this] { skip_signed_digits(); });
    if (number.empty())
      return std::nullopt;
    std::int64_t value = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
    return read.ec == std::errc() ? value : std::numeric_limits<std::int64_t>::max();
  }

 private:
  /// Zero or infinity, by the place of the first digit that counts.
  static double beyond_range(std::string_view number) {
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    const auto point = static_cast<double>(std::min(mantissa.find('.'), mantissa.size()));
    const auto leading = static_cast<double>(mantissa.find_first_of("123456789"));

    std::string_view power = number.substr(std::min(mantissa.size() + 1, number.size()));
    const bool is_root = power.starts_with('-');
    power.remove_prefix(is_root ? 1 : 0);
    const auto exponent = static_cast<double>(NumberReader(power).integer().value_or(0));

    const double places = point - leading + (is_root ? -exponent : exponent);
    const double magnitude = places > 0.0 ? HUGE_VAL : 0.0;
    return number.starts_with('-') ? -magnitude : magnitude;
  }

  bool skip_one_of(std::string_view characters) {
    const bool found = !rest_.empty() && characters.find(rest_.front()) != characters.npos;
    if (found)
      rest_.remove_prefix(1);
    return found;
  }

  bool skip_digits() {
    const std::size_t count = std::min(rest_.find_first_not_of(kDigits), rest_.size());
    rest_.remove_prefix(count);
    return count != 0;
  }

  bool skip_signed_digits() {
    const std::string_view before = rest_;
    skip_one_of(kSigns);
    const bool found = skip_digits();
    if (!found)
      rest_ = before;
    return found;
  }

  bool skip_real() {
    const std::string_view before = rest_;
    skip_one_of(kSigns);
    bool found = skip_digits();
    if (skip_one_of("."))
      found = skip_digits() || found;
    if (!found) {
      rest_ = before;
      return false;
    }
    const std::string_view mantissa_end = rest_;
    if (skip_one_of("eE") && !skip_signed_digits())
      rest_ = mantissa_end;
    return true;
  }

  /// The number that `skip` finds behind blanks, without a plus sign; then also takes the character
  /// behind it. Where there is none the blanks count as not read.
  template <class Skip>
  std::string_view take(Skip skip) {
    const std::string_view before = rest_;
    while (skip_one_of(" \t\n\v\f\r")) {}
    const std::string_view start = rest_;
    skip();
    std::string_view number = start.substr(0, start.size() - rest_.size());
    if (number.empty())
      rest_ = before;
    if (number.starts_with('+'))
      number.remove_prefix(1);
    if (!rest_.empty())
      rest_.remove_prefix(1);
    return number;
  }

  std::string_view rest_;
};

double checked_resolution(double value) {
  constexpr double kMost = 0.5;
  constexpr double kDefault = 0.02;
  if (value > 0.0 && value <= kMost)
    return value;
  QDL_Warning(
      "Coarsening resolution outside the 0-50 percent range not supported.  You selected %lf\n",
      value * 100.0);
  return kDefault;
}

double checked_angle(double value) {
  constexpr double kMost = 45.0;
  constexpr double kDefault = 10.0;
  if (value > 0.0 && value <= kMost)
    return value;
  QDL_Warning("Face angles outside the 0-45 degree range not supported.  You selected %lf\n",
              value);
  return kDefault;
}

}  // namespace

TrimArguments parse_trim_arguments(std::string_view text) {
  NumberReader reader(text);
  TrimArguments arguments;
  arguments.resolution = checked_resolution(reader.real());
  arguments.angle = checked_angle(reader.real());
  arguments.drop_colinear = reader.integer().value_or(0) != 0;
  for (auto id = reader.integer(); id && *id != 0; id = reader.integer()) {
    if (*id == static_cast<std::int32_t>(*id))
      arguments.preserved_ids.push_back(static_cast<std::int32_t>(*id));
  }
  arguments.preserve_stress = text.find("preserve_str") != text.npos;
  return arguments;
}

}  // namespace qdlflex
