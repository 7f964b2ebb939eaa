// What `qdlflex check` tells of a body whose numbers are known, and of damaged copies.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "check_support.h"
#include "record.h"
#include "write_record.h"

namespace {

using nlohmann::json;
using qdlflex::cli::Record;

void expect_numbers(const json &values, const std::vector<double> &expected) {
  ASSERT_EQ(values.size(), expected.size()) << values;
  for (size_t k = 0; k < expected.size(); ++k) {
    EXPECT_NEAR(values[k].get<double>(), expected[k], 1e-9) << values;
  }
}

TEST_F(CheckTest, TrustsABodyWhoseNumbersAgree) {
  Jack jack;
  jack.options = "no_ortho,full_invar";
  const CommandResult result = run(jack);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.errors, "");
  const json report = json::parse(result.output);
  EXPECT_EQ(report.at("verdict"), "trustworthy");
  for (const json &check : report.at("checks")) {
    EXPECT_NE(check.at("verdict"), "doubtful") << check;
    EXPECT_NE(check.at("verdict"), "failed") << check;
  }
  const auto number = [&](const char *check, const char *name) {
    return check_named(report, check).at("numbers").at(name);
  };
  EXPECT_EQ(number("units", "force_ratio"), 1.0);
  EXPECT_NEAR(number("mass_properties", "mass"), 3.0, 1e-12);
  expect_numbers(number("mass_properties", "centre"), {0, 0, 0});
  expect_numbers(number("mass_properties", "principal_inertias"), {8, 13, 16});
  expect_numbers(number("mass_properties", "radii_of_gyration"),
                 {std::sqrt(8.0 / 3), std::sqrt(13.0 / 3), std::sqrt(16.0 / 3)});
  EXPECT_LT(number("mode_products", "diagonal"), 1e-12);
  EXPECT_LT(number("mode_products", "off_diagonal"), 1e-12);
  EXPECT_EQ(number("rigid_modes", "count"), 6);
  EXPECT_NEAR(number("rigid_modes", "lowest_elastic_frequency"), 10.0, 1e-9);
  EXPECT_LT(number("rigid_motion", "motions_missed"), 1e-7);
  for (const char *const direction : {"x", "y", "z", "rx", "ry", "rz"}) {
    EXPECT_NEAR(number("effective_mass", direction), 1.0, 1e-12);
  }
  EXPECT_NEAR(report.at("effective_masses")[3].at("shares").at("rx"), 1.0, 1e-12);
  EXPECT_NEAR(report.at("effective_masses")[6].at("shares").at("x"), 0.0, 1e-12);
  for (const char *const invariant : {"invariant_1", "invariant_2", "invariant_3", "invariant_4",
                                      "invariant_5", "invariant_7", "invariant_8", "invariant_9"}) {
    EXPECT_LT(number("invariants", invariant), 1e-12) << invariant;
  }
  EXPECT_EQ(number("finite", "not_finite"), 0);
}

TEST_F(CheckTest, PrintsAVerdictWithNumbersAndAdvice) {
  Jack jack;
  jack.units[1] = "MILLIMETER";
  jack.scale[8] = 0.0;
  const CommandResult result = run(jack, "");
  EXPECT_EQ(result.exit_code, 1);
  for (const char *const lines : {
           "verdict         failed: mode products\n",
           "\ndoubtful        units\n                force ratio 1000, ",
           "\nok              mass properties\n                mass 3, centre ",
           "\ndoubtful        zero modes\n                count 1, modes 9\n"
           "                Mode 9 moves no node",
           "\n     4                0     0.00     0.00     0.00   100.00     0.00     0.00\n",
           "\n   all                    100.00   100.00   100.00   100.00   100.00   100.00\n",
       }) {
    EXPECT_NE(result.output.find(lines), std::string::npos) << lines << " in\n" << result.output;
  }
}

TEST_F(CheckTest, WeighsWithInvariantsWhereInnerNodesAreGone) {
  Jack jack;
  jack.rotary_inertia = 0.0;
  jack.options = "no_ortho,full_invar";
  jack.change = [](QDL_Record *record) {
    // A mass at the centre, which moves in the translations only.
    QDL_SetNodeCoordinates(record, 7, 0, 0, 0);
    QDL_SetNodalMass(record, 7, 1.0);
    for (int32_t mode = 1; mode <= 3; ++mode) {
      for (int32_t node = 1; node <= 7; ++node) {
        for (int32_t axis = 0; axis < 3; ++axis) {
          QDL_SetModeEntry(record, mode, node, QDL_MODE_SHAPE, axis, axis == mode - 1 ? 0.5 : 0.0);
        }
      }
    }
  };
  const CommandResult result = run(jack);
  EXPECT_EQ(result.exit_code, 0) << result.output;
  const json report = json::parse(result.output);
  EXPECT_NEAR(check_named(report, "nodal_masses").at("numbers").at("share_of_mass"), 0.75, 1e-12);
  const json &products = check_named(report, "mode_products").at("numbers");
  EXPECT_EQ(products.at("source"), "invariant 9");
  EXPECT_LT(products.at("diagonal"), 1e-12);
  const json &invariants = check_named(report, "invariants").at("numbers");
  EXPECT_EQ(invariants.size(), 3U) << invariants;
  EXPECT_LT(invariants.at("invariant_4"), 1e-12);
  EXPECT_LT(invariants.at("invariant_5"), 1e-12);
}

TEST_F(CheckTest, FindsNumbersThatAreNone) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const std::vector<std::pair<std::string, Jack>> damaged = {
      {"coordinates",
       changed([](QDL_Record *record) { QDL_SetNodeCoordinates(record, 1, kNone, 0, 0); })},
      {"nodal_masses", changed([](QDL_Record *record) { QDL_SetNodalMass(record, 1, kInfinite); })},
      {"mode_shapes", changed([](QDL_Record *record) {
         QDL_SetModeEntry(record, 9, 1, QDL_MODE_SHAPE, 5, kNone);
       })},
      {"modal_stress", changed([](QDL_Record *record) {
         QDL_SetModeEntry(record, 3, 1, QDL_MODE_STRESS, 0, kInfinite);
       })},
      {"generalized_damping",
       changed([](QDL_Record *record) { QDL_SetGeneralizedDamping(record, 1, 1, kNone); })},
      {"modal_loads",
       changed([](QDL_Record *record) { QDL_SetModalLoad(record, 0, 1, kInfinite); })}};
  for (const auto &[place, jack] : damaged) {
    const CommandResult result = run(jack);
    EXPECT_EQ(result.exit_code, 1) << place;
    const json report = json::parse(result.output);
    const json &check = check_named(report, "finite");
    EXPECT_EQ(check.at("verdict"), "failed") << place;
    EXPECT_TRUE(check.at("numbers").contains(place)) << check;
  }
}

TEST_F(CheckTest, FailsWhereTrustIsImpossible) {
  EXPECT_EQ(run_qdlflex("check").exit_code, 2);
  const CommandResult missing = run_qdlflex("check none.qdl");
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.errors, "qdlflex: error: none.qdl: No such file or directory\n");

  const Record empty(QDL_Create(0, 0));
  qdlflex::cli::write_record(empty.get(), path_, "no_ortho");
  unsetenv("ZEB_QDLWRITE_OPTIONS");
  const CommandResult nothing = run_qdlflex("check --json '" + path_ + "'");
  EXPECT_EQ(nothing.exit_code, 1);
  EXPECT_EQ(check_named(json::parse(nothing.output), "contents").at("verdict"), "failed");

  const Record repeated(QDL_Create(2, 0));
  QDL_SetNodeCoordinates(repeated.get(), 1, 1.0, 2.0, 3.0);
  QDL_AddNode(repeated.get(), 1);
  qdlflex::cli::write_record(repeated.get(), path_, "no_ortho");
  unsetenv("ZEB_QDLWRITE_OPTIONS");
  const CommandResult ambiguous = run_qdlflex("check --json '" + path_ + "'");
  EXPECT_EQ(ambiguous.exit_code, 3);
  const json contents = check_named(json::parse(ambiguous.output), "contents");
  EXPECT_EQ(contents.at("verdict"), "doubtful");
  EXPECT_EQ(contents.at("numbers").at("repeated_nodes"), 1);

  write_jack(Jack{}, path_);
  const std::string whole = read_text(path_);
  const std::string shapes_cut = folder_.write("cut.qdl", whole.substr(0, whole.size() - 3000));
  EXPECT_EQ(run_qdlflex("check '" + shapes_cut + "'").exit_code, 1);
  folder_.write("jack.qdl", replaced(whole, "NEWTON", "NEWTUN"));
  const CommandResult unknown_unit = run_qdlflex("check --json '" + path_ + "'");
  EXPECT_EQ(unknown_unit.exit_code, 1);
  EXPECT_EQ(check_named(json::parse(unknown_unit.output), "units").at("verdict"), "failed");
}

}  // namespace
