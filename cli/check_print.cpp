// What `qdlflex check` prints.

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "check.h"

namespace qdlflex::cli {

namespace {

// Modes that carry less are left out of the table.
constexpr double kWorthALine = 0.01;

const char *name_of(Verdict verdict) {
  switch (verdict) {
    case Verdict::kOk:
      return "ok";
    case Verdict::kNotApplicable:
      return "not applicable";
    case Verdict::kDoubtful:
      return "doubtful";
    case Verdict::kFailed:
      break;
  }
  return "failed";
}

const char *summary_of(Verdict verdict) {
  return verdict == Verdict::kFailed     ? "failed"
         : verdict == Verdict::kDoubtful ? "doubtful"
                                         : "trustworthy";
}

std::string spaced(std::string name) {
  for (char &letter : name) {
    letter = letter == '_' ? ' ' : letter;
  }
  return name;
}

/// "doubtful: units, zero modes"
std::string summary(const CheckReport &report) {
  const Verdict verdict = overall(report);
  std::string text = summary_of(verdict);
  const char *separator = ": ";
  for (const Check &check : report.checks) {
    if (verdict != Verdict::kOk && check.verdict == verdict) {
      text += separator + spaced(check.name);
      separator = ", ";
    }
  }
  return text;
}

template <class Value>
std::string text_of(const Value &value) {
  if constexpr (std::is_same_v<Value, std::string>) {
    return value;
  } else if constexpr (std::is_integral_v<Value>) {
    return std::to_string(value);
  } else {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
  }
}

template <class Value>
std::string text_of(const std::vector<Value> &values) {
  constexpr size_t kMost = 6;
  std::string all;
  for (size_t k = 0; k < std::min(values.size(), kMost); ++k) {
    all += (k == 0 ? "" : " ") + text_of(values[k]);
  }
  return values.size() > kMost ? all + " ..." : values.empty() ? "none" : all;
}

/// "mass 2, centre 1 0 0"
std::string numbers_text(const std::vector<Number> &numbers) {
  std::string all;
  for (const auto &[name, value] : numbers) {
    all += (all.empty() ? "" : ", ") + spaced(name) + " " +
           std::visit([](const auto &held) { return text_of(held); }, value);
  }
  return all;
}

bool worth_a_line(const ModeShares &mode) {
  for (const double share : mode.shares) {
    if (share >= kWorthALine) {
      return true;
    }
  }
  return false;
}

void print_shares(const std::vector<ModeShares> &modes) {
  std::printf(
      "\neffective mass in percent of the whole; modes below 1 percent are left out\n"
      "%6s %16s %8s %8s %8s %8s %8s %8s\n",
      "mode", "frequency", "x", "y", "z", "rx", "ry", "rz");
  Directions sums{};
  for (const ModeShares &mode : modes) {
    const bool shown = worth_a_line(mode);
    if (shown) {
      std::printf("%6d %16.8g", mode.number, mode.frequency);
    }
    for (size_t k = 0; k < sums.size(); ++k) {
      sums[k] += mode.shares[k];
      if (shown) {
        std::printf(" %8.2f", 100.0 * mode.shares[k]);
      }
    }
    if (shown) {
      std::printf("\n");
    }
  }
  std::printf("%6s %16s", "all", "");
  for (const double sum : sums) {
    std::printf(" %8.2f", 100.0 * sum);
  }
  std::printf("\n");
}

nlohmann::ordered_json shares_json(const Directions &shares) {
  return {{"x", shares[0]},  {"y", shares[1]},  {"z", shares[2]},
          {"rx", shares[3]}, {"ry", shares[4]}, {"rz", shares[5]}};
}

}  // namespace

void print_tables(const CheckReport &report) {
  std::printf("%-16s%s\n%-16s%s\n", "file", report.path.c_str(), "verdict",
              summary(report).c_str());
  for (const Check &check : report.checks) {
    std::printf("\n%-16s%s\n", name_of(check.verdict), spaced(check.name).c_str());
    const std::string numbers = numbers_text(check.numbers);
    if (!numbers.empty()) {
      std::printf("%-16s%s\n", "", numbers.c_str());
    }
    std::printf("%-16s%s\n", "", check.advice.c_str());
  }
  if (!report.modes.empty()) {
    print_shares(report.modes);
  }
}

void print_json(const CheckReport &report) {
  nlohmann::ordered_json checks = nlohmann::ordered_json::array();
  for (const Check &check : report.checks) {
    nlohmann::ordered_json numbers = nlohmann::ordered_json::object();
    for (const auto &number : check.numbers) {
      std::visit([&](const auto &held) { numbers[number.name] = held; }, number.value);
    }
    checks.push_back({{"name", check.name},
                      {"verdict", name_of(check.verdict)},
                      {"numbers", numbers},
                      {"advice", check.advice}});
  }
  nlohmann::ordered_json modes = nlohmann::ordered_json::array();
  for (const ModeShares &mode : report.modes) {
    modes.push_back({{"number", mode.number},
                     {"frequency", mode.frequency},
                     {"shares", shares_json(mode.shares)}});
  }
  const nlohmann::ordered_json all = {{"file", report.path},
                                      {"verdict", summary_of(overall(report))},
                                      {"checks", checks},
                                      {"effective_masses", modes}};
  // Text in a file need not be UTF-8.
  std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace qdlflex::cli
