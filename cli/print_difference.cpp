// What `qdlflex diff` prints.

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "body_difference.h"

namespace qdlflex::cli {

namespace {

constexpr size_t kMostModeLines = 20;

std::string abbreviated(const Units &units) {
  return abbreviation_of(units.mass) + " " + abbreviation_of(units.length) + " " +
         abbreviation_of(units.time) + " " + abbreviation_of(units.force);
}

bool same_frequency(const PairedMode &mode, double tolerance) {
  BlockDifference frequency("", tolerance);
  if (mode.frequency_a && mode.frequency_b) {
    frequency.compare(*mode.frequency_a, *mode.frequency_b, 0.0, [] { return ""; });
  }
  return !frequency.different();
}

/// Nothing about the pair but, perhaps, its numbers and the sign.
bool same_but_named(const PairedMode &mode, double tolerance) {
  return std::abs(mode.factor) == 1.0 && mode.same_shape && same_frequency(mode, tolerance);
}

bool plain(const PairedMode &mode, double tolerance) {
  return mode.a == mode.b && mode.factor == 1.0 && same_but_named(mode, tolerance);
}

/// Tells whether a line can tell of both pairs.
bool continues(const PairedMode &last, const PairedMode &next, double tolerance) {
  return same_but_named(last, tolerance) && same_but_named(next, tolerance) &&
         next.factor == last.factor && next.a == last.a + 1 && next.b == last.b + 1;
}

std::string formatted(const char *format, auto... values) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

std::string line_about(const PairedMode &first, const PairedMode &last, double tolerance) {
  std::string line = first.a == last.a ? formatted("mode %d of A is mode %d of B", first.a, first.b)
                                       : formatted("modes %d to %d of A are modes %d to %d of B",
                                                   first.a, last.a, first.b, last.b);
  if (first.factor < 0.0) {
    line += ", sign flipped";
  }
  if (std::abs(first.factor) != 1.0) {
    line += formatted(", scaled by %.6g", std::abs(first.factor));
  }
  if (first.mac && first.a == last.a) {
    line += formatted(", MAC %.5f", *first.mac);
  }
  if (!first.same_shape) {
    line += ", shapes differ";
  }
  if (!same_frequency(first, tolerance)) {
    line += formatted(", frequencies %.10g and %.10g", *first.frequency_a, *first.frequency_b);
  }
  return line;
}

void print_modes(const BodyDifference &difference) {
  const std::vector<PairedMode> &modes = difference.modes;
  std::vector<std::string> lines;
  for (size_t first = 0; first < modes.size();) {
    size_t last = first;
    while (last + 1 < modes.size() &&
           continues(modes[last], modes[last + 1], difference.tolerance)) {
      ++last;
    }
    if (!plain(modes[first], difference.tolerance)) {
      lines.push_back(line_about(modes[first], modes[last], difference.tolerance));
    }
    first = last + 1;
  }
  for (size_t k = 0; k < std::min(lines.size(), kMostModeLines); ++k) {
    std::printf("%s\n", lines[k].c_str());
  }
  if (lines.size() > kMostModeLines) {
    std::printf("... and %zu more lines about modes\n", lines.size() - kMostModeLines);
  }
}

void print_extreme(const char *kind, const Extreme &extreme) {
  std::printf("    largest %s %.3g at %s: %.10g and %.10g\n", kind, extreme.difference,
              extreme.where.c_str(), extreme.a, extreme.b);
}

void print_block(const BlockDifference &block) {
  std::printf("%s:", block.name().c_str());
  if (block.differing() > 0) {
    std::printf(" %lld of %lld values differ", static_cast<long long>(block.differing()),
                static_cast<long long>(block.compared()));
  }
  std::printf("\n");
  for (const std::string &remark : block.remarks()) {
    std::printf("    %s\n", remark.c_str());
  }
  if (block.differing() > 0) {
    print_extreme("relative difference", block.largest_relative());
    print_extreme("absolute difference", block.largest_absolute());
  }
}

void print_summary(const BodyDifference &difference) {
  int64_t values = 0;
  int64_t differing = 0;
  const BlockDifference *furthest = nullptr;
  for (const BlockDifference &block : difference.blocks) {
    values += block.compared();
    differing += block.different() ? 1 : 0;
    if (furthest == nullptr ||
        block.largest_relative().difference > furthest->largest_relative().difference) {
      furthest = &block;
    }
  }
  if (differing > 0) {
    std::printf("different: %lld of %zu blocks differ", static_cast<long long>(differing),
                difference.blocks.size());
  } else {
    std::printf("same within %g: %lld values", difference.tolerance,
                static_cast<long long>(values));
  }
  if (furthest != nullptr && furthest->largest_relative().difference > 0.0) {
    const Extreme &extreme = furthest->largest_relative();
    std::printf(", largest relative difference %.3g (%s, %s)", extreme.difference,
                furthest->name().c_str(), extreme.where.c_str());
  }
  std::printf("\n");
}

using Json = nlohmann::ordered_json;

/// An infinite difference has no number in JSON.
Json extreme_json(const Extreme &extreme) {
  return {{"difference", extreme.difference},
          {"a", extreme.a},
          {"b", extreme.b},
          {"where", extreme.where}};
}

Json block_json(const BlockDifference &block) {
  Json json = {{"name", block.name()},       {"different", block.different()},
               {"values", block.compared()}, {"differing", block.differing()},
               {"remarks", block.remarks()}, {"largest_relative", nullptr},
               {"largest_absolute", nullptr}};
  if (block.largest_relative().difference > 0.0) {
    json["largest_relative"] = extreme_json(block.largest_relative());
    json["largest_absolute"] = extreme_json(block.largest_absolute());
  }
  return json;
}

Json number_json(const std::optional<double> &value) {
  return value ? Json(*value) : Json(nullptr);
}

Json mode_json(const PairedMode &mode) {
  return {{"a", mode.a},
          {"b", mode.b},
          {"mac", number_json(mode.mac)},
          {"factor", mode.factor},
          {"same_shape", mode.same_shape},
          {"frequency_a", number_json(mode.frequency_a)},
          {"frequency_b", number_json(mode.frequency_b)}};
}

Json units_json(const Units &units) {
  return {
      {"mass", units.mass}, {"length", units.length}, {"time", units.time}, {"force", units.force}};
}

}  // namespace

void print_text(const BodyDifference &difference) {
  if (difference.converted) {
    std::printf("B is in %s and compared in the units of A, %s\n",
                abbreviated(difference.units_b).c_str(), abbreviated(difference.units_a).c_str());
  }
  print_modes(difference);
  for (const BlockDifference &block : difference.blocks) {
    if (block.different()) {
      print_block(block);
    }
  }
  print_summary(difference);
}

void print_json(const BodyDifference &difference) {
  Json blocks = Json::array();
  for (const BlockDifference &block : difference.blocks) {
    blocks.push_back(block_json(block));
  }
  Json pairs = Json::array();
  for (const PairedMode &mode : difference.modes) {
    pairs.push_back(mode_json(mode));
  }
  const Json all = {{"a", difference.path_a},
                    {"b", difference.path_b},
                    {"same", difference.same()},
                    {"tolerance", difference.tolerance},
                    {"units_a", units_json(difference.units_a)},
                    {"units_b", units_json(difference.units_b)},
                    {"converted", difference.converted},
                    {"modes",
                     {{"pairs", pairs},
                      {"only_a", difference.modes_only_a},
                      {"only_b", difference.modes_only_b}}},
                    {"blocks", blocks}};
  // Text in a file need not be UTF-8.
  std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace qdlflex::cli
