#include "io/write_options.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "format/version.h"

namespace qdlflex {
namespace {

bool has(std::string_view text, std::string_view keyword) {
  return text.find(keyword) != std::string_view::npos;
}

/// What follows the first place of `opening`; none when it is not there.
std::optional<std::string_view> after(std::string_view text, std::string_view opening) {
  const std::size_t place = text.find(opening);
  if (place == std::string_view::npos)
    return std::nullopt;
  return text.substr(place + opening.size());
}

/// The text up to the first character of `stop`; none when nothing stands before it.
std::optional<std::string> until(std::string_view text, char stop) {
  const std::string_view scanned = text.substr(0, text.find(stop));
  if (scanned.empty())
    return std::nullopt;
  return std::string(scanned);
}

/// The leading characters of the set.
std::string_view only(std::string_view text, std::string_view set) {
  return text.substr(0, text.find_first_not_of(set));
}

/// The three forms of naming a sketch file behind the first place of the keyword; the first that
/// yields text wins.
std::optional<std::string> sketch_argument(std::string_view text) {
  const auto argument = after(text, "sketch");
  if (!argument || !argument->starts_with('('))
    return std::nullopt;
  const std::string_view inside = argument->substr(1);
  for (const char quote : {'"', '\''}) {
    if (!inside.starts_with(quote))
      continue;
    if (auto name = until(inside.substr(1), quote))
      return name;
  }
  return until(inside, ')');
}

std::optional<std::string> coarsen_argument(std::string_view text) {
  const auto argument = after(text, "coarsen(");
  if (!argument)
    return std::nullopt;
  const std::string_view scanned = only(*argument, " 0123456789.,preserve_str");
  if (scanned.empty())
    return std::nullopt;
  return std::string(scanned);
}

/// A frequency as the leading decimal number of what was scanned, 0 without one. The scanned
/// characters leave no place for a locale's decimal point, hence the fixed one.
std::optional<double> frequency_argument(std::string_view text, std::string_view keyword) {
  const auto argument = after(text, keyword);
  if (!argument)
    return std::nullopt;
  std::string_view number = only(*argument, " 0123456789.e-");
  number.remove_prefix(std::min(number.find_first_not_of(' '), number.size()));
  double value = 0.0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec != std::errc::result_out_of_range)
    return value;
  const double limit = number.find("e-") == std::string_view::npos ? HUGE_VAL : 0.0;
  return number.starts_with('-') ? -limit : limit;
}

/// Refusals of the two versions of old, each of which fails the write.
bool report_refusals(const WriteOptions &options, const char *release) {
  bool refused = false;
  const auto refuse = [&](bool condition, const char *what) {
    if (!condition)
      return;
    QDL_Error("%s compatible QDL cannot %s", release, what);
    refused = true;
  };
  refuse(options.invariants, "contain Invariants");
  refuse(options.single, "be single precision");
  refuse(options.sparse_stress, "have sparse stress or strain modes");
  return refused;
}

}  // namespace

WriteOptions parse_write_options(const std::string &text) {
  WriteOptions options;
  options.shift_frame = has(text, "lbrf2cm");
  options.sketch = sketch_argument(text);
  options.strip_faces = has(text, "strip_face");
  options.coarsen = coarsen_argument(text);
  options.no_ortho = has(text, "no_ortho");
  options.full_stress = has(text, "full_str");
  options.sparse_stress = has(text, "sparse_str");
  options.single = has(text, "single");
  options.no_xdr = has(text, "no_xdr");
  options.compatible_82 = has(text, "82_comp");
  options.compatible_81 = has(text, "81_comp");
  options.lowpass = frequency_argument(text, "lowpass(");
  options.highpass = frequency_argument(text, "highpass(");
  options.invariants = has(text, "invar");
  options.full_invariants = has(text, "full_invar");
  options.fast_invariants = has(text, "fast_invar");
  options.empty = has(text, "empty");
  options.mks = has(text, "MKS");
  return options;
}

std::optional<std::uint32_t> choose_version_code(const WriteOptions &options) {
  std::uint32_t code = kCurrentVersion | kXdrBit;
  bool refused = false;
  if (options.full_stress) {
    code = 41;
    if (options.sparse_stress) {
      QDL_Error("Cannot specify full and sparse stress and strain modes.");
      refused = true;
    }
  }
  if (options.single)
    code = code == 41 ? 51 : code | kSingleBit;
  if (options.no_xdr)
    code = is_old_xdr(code) ? code - 1 : code & ~kXdrBit;
  if (options.compatible_82) {
    refused = report_refusals(options, "8.2") || refused;
    code = 20;
  }
  if (options.compatible_81) {
    refused = report_refusals(options, "8.1") || refused;
    code = 10;
  }
  return refused ? std::nullopt : std::optional(code);
}

}  // namespace qdlflex
