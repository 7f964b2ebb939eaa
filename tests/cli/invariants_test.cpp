// What `qdlflex invariants` prints.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli_support.h"

namespace {

using nlohmann::json;

const std::string kFullModel = QDLFLEX_SOURCE_DIR "/tests/golden/60_xdr_double.qdl";

// A file with the tetrahedron of `frd_text`, a quarter of the mass 1 t at each node.
std::string import_tetrahedron(const TemporaryFolder &folder, int modes) {
  std::string results;
  for (int mode = 1; mode <= modes; ++mode)
    results += frd_block(mode, "DISP");
  const std::string frd = folder.write("job.frd", frd_text(results));
  const CommandResult result =
      run_qdlflex("import ccx '" + frd + "' --density 6 --options no_ortho --units mm-N-t-s -o '" +
                  folder.path("out.qdl") + "'");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  return "'" + folder.path("out.qdl") + "'";
}

// Numbers in the same arrangement.
void expect_near(const json &values, const std::string &expected) {
  const json flat_values = values.flatten();
  const json flat_expected = json::parse(expected).flatten();
  ASSERT_EQ(flat_values.size(), flat_expected.size()) << values;
  for (const auto &[place, number] : flat_expected.items())
    EXPECT_NEAR(flat_values.at(place).get<double>(), number.get<double>(), 1e-11) << place;
}

}  // namespace

TEST(InvariantsTest, AreSummedOverTheNodes) {
  const TemporaryFolder folder;
  const std::string file = import_tetrahedron(folder, 2);
  const CommandResult result = run_qdlflex("invariants --full --json " + file);
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  const json all = json::parse(result.output);
  EXPECT_EQ(all.at("set"), "full");
  EXPECT_EQ(all.at("units").at("mass"), "MEGAGRAM");
  EXPECT_EQ(all.at("modes"), json::parse("[1, 2]"));
  expect_near(all.at("mass"), "1");
  expect_near(all.at("centre"), "[1.25, 0.25, 0.25]");
  expect_near(all.at("inertia_about_origin"),
              "[[0.5, -0.25, -0.25], [-0.25, 2, 0], [-0.25, 0, 2]]");
  expect_near(all.at("inertia_about_centre"),
              "[[0.375, 0.0625, 0.0625], [0.0625, 0.375, 0.0625], [0.0625, 0.0625, 0.375]]");

  const json &invariants = all.at("invariants");
  EXPECT_EQ(invariants.size(), 9U);
  const auto has = [&](const char *number, const char *shape, size_t count) {
    EXPECT_EQ(invariants.at(number).at("shape"), json::parse(shape)) << number;
    EXPECT_EQ(invariants.at(number).at("values").size(), count) << number;
  };
  has("1", "[]", 1);
  has("2", "[3]", 3);
  has("5", "[2, 3, 2]", 12);
  has("6", "[2, 2]", 4);
  has("7", "[3, 3]", 9);
  has("8", "[2, 3, 3]", 18);
  has("9", "[2, 2, 3, 3]", 36);
  has("3", "[3, 2]", 6);
  expect_near(invariants.at("3").at("values"), "[126, 226, 127, 227, 128, 228]");
  const json &fourth = invariants.at("4").at("values");
  expect_near({fourth[0], fourth[2], fourth[4]}, "[-2.25, -123.5, 124.75]");
}

TEST(InvariantsTest, AreShownInTables) {
  const TemporaryFolder folder;
  const std::string file = import_tetrahedron(folder, 1);
  const CommandResult fast = run_qdlflex("invariants " + file);
  ASSERT_EQ(fast.exit_code, 0) << fast.errors;
  for (const char *const lines : {
           "mass        1 t\ncentre      1.25 0.25 0.25 mm\n",
           "inertia about the centre (t mm^2)\n            0.375           0.0625           0.0625",
           "invariant 3, sum of m p (t mm)\n"
           "  mode                x                y                z\n"
           "     1              126              127              128\n",
           "     1            -2.25           -123.5           124.75\n",
           "the generalized mass where it is not zero (t mm^2)\n  mode  mode\n"
           "     1     1                1\n",
           "\ninvariant 8, ",
       }) {
    EXPECT_NE(fast.output.find(lines), std::string::npos) << lines << "is not in\n" << fast.output;
  }
  EXPECT_EQ(fast.output.find("invariant 9"), std::string::npos);

  const std::string full = run_qdlflex("invariants --full " + file).output;
  EXPECT_NE(full.find("invariant 9, sum of m ~p ~p' (t mm^2)\n"), std::string::npos) << full;
  const std::string rigid = run_qdlflex("invariants --rigid " + file).output;
  EXPECT_NE(rigid.find("inertia about the origin"), std::string::npos) << rigid;
  EXPECT_EQ(rigid.find("invariant"), std::string::npos) << rigid;
}

TEST(InvariantsTest, OfTheFileWin) {
  const json all = json::parse(run_qdlflex("invariants --full --json " + kFullModel).output);
  EXPECT_EQ(all.at("mass"), 4864.25);
  EXPECT_EQ(all.at("invariants").at("8").at("values")[0], 25 * 256 + 0.25);
  EXPECT_EQ(all.at("invariants").at("9").at("values")[35], 26 * 256 + 35.25);
}

TEST(InvariantsTest, FailLikeOtherCommands) {
  EXPECT_EQ(run_qdlflex("invariants").exit_code, 2);
  EXPECT_EQ(run_qdlflex("invariants --full --fast " + kFullModel).exit_code, 2);
  EXPECT_EQ(run_qdlflex("invariants --rigid --full " + kFullModel).exit_code, 2);
  const CommandResult missing = run_qdlflex("invariants none.qdl");
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.errors, "qdlflex: error: none.qdl: No such file or directory\n");
}
