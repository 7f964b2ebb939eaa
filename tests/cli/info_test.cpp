// What `qdlflex info` tells of a file with every block.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli_support.h"

namespace {

const std::string kFullModel = QDLFLEX_SOURCE_DIR "/tests/golden/60_xdr_double.qdl";

TEST(InfoTest, ShowsLoadsPointsAndOperators) {
  const CommandResult result = run_qdlflex("info " + kFullModel);
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  for (const char *line : {
           "mass        4864.25\n",
           "matrices    2 stiffness, 1 mass, 3 damping entries\n",
           "invariants  1 2 3 4 5 7 8 9",
           "preload     on principal axes\n",
           "load case   gravity along x, not yet on principal axes\n",
           "load case   thermal case, on principal axes\n",
           "nodal loads 2 entries\n",
           "monitor     tip (displacement at the tip), MONPNT1, STRESS, component 13, operators: "
           "displacement, load\n",
           "operator    recover, 2 rows, first with 1 columns, second with 3 columns\n",
           "rotor axis  through (1.5, 2.5, 3.5) along (4.5, 5.5, 6.5)\n",
       }) {
    EXPECT_NE(result.output.find(line), std::string::npos) << line;
  }
}

TEST(InfoTest, TellsTheSameAsJson) {
  const CommandResult result = run_qdlflex("info --json " + kFullModel);
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  const nlohmann::json data = nlohmann::json::parse(result.output).at("model_data");
  EXPECT_EQ(data.at("mass"), 4864.25);
  EXPECT_EQ(data.at("damping_entries"), 3);
  EXPECT_EQ(data.at("preload").at("on_principal_axes"), true);
  EXPECT_EQ(data.at("load_cases").size(), 3u);
  EXPECT_EQ(data.at("load_cases")[1].at("on_principal_axes"), true);
  EXPECT_EQ(data.at("nodal_load_entries"), nlohmann::json::parse("[2, 1]"));
  EXPECT_EQ(data.at("monitor_points")[1].at("result"), "GENERAL");
  EXPECT_EQ(data.at("matrix_operators")[0].at("sub_operators")[1].at("columns"), 3);
  EXPECT_EQ(data.at("rotor_axis").at("direction")[2], 6.5);
}

}  // namespace
