// The command that compares two files.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>

#include "cli_support.h"
#include "geometry_models.h"
#include "modal_body.h"
#include "record.h"
#include "write_record.h"

using nlohmann::json;
using qdlflex::cli::Record;

namespace {

class DiffTest : public ::testing::Test {
 protected:
  void SetUp() override { write("a.qdl", {}); }

  std::string quoted(const std::string &name) const { return "'" + folder_.path(name) + "'"; }

  void write(const std::string &name, const Body &body) {
    const Record record = make_body(body);
    body.change(record.get());
    qdlflex::cli::write_record(record.get(), folder_.path(name), body.options);
    unsetenv("ZEB_QDLWRITE_OPTIONS");
  }

  CommandResult diff(const std::string &options = {}) {
    return run_qdlflex("diff " + quoted("a.qdl") + " " + quoted("b.qdl") + " " + options);
  }

  json compared(const Body &body, int exit_code) {
    write("b.qdl", body);
    const CommandResult result = diff("--json");
    EXPECT_EQ(result.exit_code, exit_code) << result.errors << diff().output;
    return json::parse(result.output, nullptr, false);
  }

  /// The names of the blocks that differ.
  std::string different_blocks(const Body &body) {
    std::string names;
    const json difference = compared(body, 3);
    for (const json &block : difference["blocks"]) {
      if (block["different"]) {
        names += (names.empty() ? "" : ", ") + block["name"].get<std::string>();
      }
    }
    return names;
  }

  TemporaryFolder folder_;
};

json block(const json &difference, const std::string &name) {
  for (const json &found : difference["blocks"]) {
    if (found["name"] == name) {
      return found;
    }
  }
  return {};
}

const Body kMixed = {{2, 0, 1}, {1.0, -1.0, 2.5}, true};

}  // namespace

TEST_F(DiffTest, RecognisesModesInOtherOrderWithOtherSignsAndScales) {
  write("b.qdl", kMixed);
  const CommandResult result = diff();
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.output.substr(0, result.output.find("same")),
            "mode 7 of A is mode 8 of B, sign flipped, MAC 1.00000\n"
            "mode 8 of A is mode 9 of B, scaled by 2.5, MAC 1.00000\n"
            "mode 9 of A is mode 7 of B, MAC 1.00000\n");
  const json pairs = compared(kMixed, 0)["modes"]["pairs"];
  ASSERT_EQ(pairs.size(), 3u);
  EXPECT_EQ(pairs[0]["factor"], -1.0);
  EXPECT_NEAR(pairs[1]["factor"], 2.5, 1e-12);
  EXPECT_NEAR(pairs[1]["frequency_b"], 100.0 / (2.0 * std::acos(-1.0)), 1e-9);
}

TEST_F(DiffTest, InvariantsFollowTheirModes) {
  Body body;
  Body mixed = kMixed;
  for (Body *const one : {&body, &mixed}) {
    one->loads = false;
    one->options = "no_ortho,full_invar";
  }
  write("a.qdl", body);
  const json same = compared(mixed, 0);
  const std::map<std::string, int> values = {
      {"invariant 1", 1},  {"invariant 2", 3}, {"invariant 3", 9},  {"invariant 4", 9},
      {"invariant 5", 27}, {"invariant 7", 9}, {"invariant 8", 27}, {"invariant 9", 81}};
  for (const auto &[name, count] : values) {
    EXPECT_EQ(block(same, name)["values"], count) << name;
  }
}

TEST_F(DiffTest, NamesWhatDiffersAndWhere) {
  using Change = std::function<void(QDL_Record *)>;
  const auto value = [](auto set, auto... arguments) -> Change {
    return [=](QDL_Record *record) { set(record, arguments...); };
  };
  const std::pair<Change, std::string> cases[] = {
      {value(QDL_SetInterfaceNode, 3), "interface nodes"},
      {value(QDL_SetModalLoad, 0, 8, 11.5), "modal loads"},
      {value(QDL_SetModalPreload, 7, 1.0), "modal preload"},
      {value(QDL_SetGeneralizedDamping, 7, 9, 0.5), "generalized damping"},
      {value(QDL_SetRotorDynamicsMatrix, 1, 0, 1, 0.5), "rotor dynamics"},
      {value(QDL_SetModeEntry, 7, 5, QDL_MODE_STRESS, 4, 9e3), "modal stress, modal statistics"},
      {value(QDL_SetModalLoadNodal, 1, 5, 3, 2.0), "nodal modal loads"},
      {[](QDL_Record *record) { QDL_SetFace(record, 3, 1, 2, 3); }, "element faces"},
      {[](QDL_Record *record) { QDL_SetMatrixOperatorInfo(record, "op", nullptr, 2); },
       "matrix operators"},
      {[](QDL_Record *record) {
         const std::array<double, 6> tension = {1, 2, 3, 4, 5, 6.5};
         QDL_SetPreStressVec(record, 5, tension.data());
       },
       "nodal pre-stress"},
      {[](QDL_Record *record) {
         const std::array<double, 6> tip = {1, -2, 4, 5, 0.75, -3};
         QDL_SetMonitorPointOperator(record, 0, 1, tip.data());
       },
       "monitor points"},
  };
  for (const auto &[change, blocks] : cases) {
    Body body;
    body.change = change;
    EXPECT_EQ(different_blocks(body), blocks);
  }
  Body stiffer;
  stiffer.softest = 1.01;
  EXPECT_EQ(different_blocks(stiffer), "eigenvalues, generalized stiffness");
  EXPECT_EQ(diff().output.find("mode 7 of A is mode 7 of B, MAC 1.00000, "
                               "frequencies 0.1591549431 and 0.1599487383\n"),
            0u);
  Body moved;
  moved.change = value(QDL_SetNodeCoordinates, 3, 30.5, 1.0, -2.25);
  const json difference = block(compared(moved, 3), "nodal coordinates");
  EXPECT_EQ(difference["values"], 18);
  EXPECT_EQ(difference["differing"], 1);
  EXPECT_EQ(difference["largest_absolute"],
            json::parse(R"({"difference": 0.5, "a": 30.0, "b": 30.5, "where": "node 3, x"})"));
  EXPECT_NEAR(difference["largest_relative"]["difference"], 0.5 / 60.0, 1e-12);
}

TEST_F(DiffTest, TellsWhatOneBodyLacks) {
  const Record record(QDL_Create(2, 1));
  QDL_SetUnits(record.get(), "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON");
  QDL_SetNodeCoordinates(record.get(), 2, 20, 0, -1);
  QDL_SetNodeCoordinates(record.get(), 88, 1, 2, 3);
  qdlflex::cli::write_record(record.get(), folder_.path("b.qdl"), "no_ortho");
  unsetenv("ZEB_QDLWRITE_OPTIONS");
  const CommandResult result = diff();
  EXPECT_EQ(result.exit_code, 3) << result.errors;
  for (const char *const text : {
           "nodal coordinates:\n    5 only in A: 1, 3, 4, 5, 6\n    1 only in B: 88\n",
           "nodal masses:\n    only in A\n",
           "element faces:\n    2 only in A: 1-2-5-4, 3-5-4-6\n",
           "interface nodes:\n    2 only in A: 1, 6\n",
           "modes:\n    3 of A without counterpart: 7, 8, 9\n",
           "modal loads:\n    load cases: 1 and 0\n",
           "monitor points:\n    points: 1 and 0\n",
           "rotor dynamics:\n    only in A\n",
       }) {
    EXPECT_NE(result.output.find(text), std::string::npos) << text << "is not in\n"
                                                           << result.output;
  }
}

TEST_F(DiffTest, OneChangedValueDoesNotHideTheModeBehindAScale) {
  Body body;
  body.change = [](QDL_Record *record) {
    QDL_SetModeEntry(record, 8, 4, QDL_MODE_SHAPE, 1, shape(1, 4, 1) + 0.05);
  };
  write("b.qdl", body);
  const CommandResult result = diff();
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_EQ(result.output.find("mode 8 of A is mode 8 of B, MAC 0.99"), 0u) << result.output;
  EXPECT_NE(result.output.find("mode shapes: 1 of 108 values differ\n"), std::string::npos)
      << result.output;
  EXPECT_NE(result.output.find(" difference 0.05 at mode 8, node 4, y: "), std::string::npos);
}

TEST_F(DiffTest, ComparesInTheUnitsOfTheFirst) {
  Body body = kMixed;
  body.options = "no_ortho,MKS,no_xdr";
  write("b.qdl", body);
  const CommandResult result = diff();
  EXPECT_EQ(result.exit_code, 0) << result.output;
  EXPECT_EQ(result.output.find("B is in kg m s N and compared in the units of A, t mm s N\n"), 0u);
  EXPECT_EQ(compared(body, 0)["converted"], true);
}

TEST_F(DiffTest, SinglePrecisionIsWithinTheDefaultTolerance) {
  Body body;
  body.options = "no_ortho,single";
  compared(body, 0);
  EXPECT_EQ(diff("--tolerance 1e-9").exit_code, 3);
  write("b.qdl", {});
  const CommandResult equal = diff("--tolerance 0");
  EXPECT_EQ(equal.exit_code, 0);
  EXPECT_EQ(equal.output.find("same within 0: "), 0u) << equal.output;
}

TEST_F(DiffTest, FailsOnFilesThatCannotBeRead) {
  EXPECT_EQ(diff().exit_code, 1);
  folder_.write("b.qdl", read_text(folder_.path("a.qdl")).substr(0, 3000));
  EXPECT_EQ(diff().exit_code, 1);
  EXPECT_EQ(run_qdlflex("diff " + quoted("a.qdl") + " " + quoted("a.qdl")).exit_code, 0);
  for (const char *const options :
       {"--tolerance -1", "--tolerance nan", "--tolerance x", "c.qdl"}) {
    EXPECT_EQ(diff(options).exit_code, 2) << options;
  }
}

TEST_F(DiffTest, FindsEveryConversionTheSame) {
  write_box(folder_.path("a.qdl"));
  for (const char *const options :
       {"", "no_ortho", "no_ortho,single", "no_ortho,no_xdr", "no_ortho,full_str",
        "no_ortho,full_str,single,no_xdr", "no_ortho,82_comp", "no_ortho,81_comp"}) {
    const CommandResult converted = run_qdlflex("convert " + quoted("a.qdl") + " -o " +
                                                quoted("b.qdl") + " --options '" + options + "'");
    ASSERT_EQ(converted.exit_code, 0) << options << converted.errors;
    const CommandResult result = diff();
    EXPECT_EQ(result.exit_code, 0) << options << "\n" << result.output << result.errors;
  }
}
