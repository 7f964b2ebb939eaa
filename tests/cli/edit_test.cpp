// The commands that change the geometry of a file, and the one that shows its free edges.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <nlohmann/json.hpp>

#include "cli_support.h"
#include "geometry_models.h"
#include "record.h"

using nlohmann::json;
using qdlflex::cli::Record;

namespace {

const std::string kNoGeometry = QDLFLEX_SOURCE_DIR "/tests/golden/60_native_double_bare.qdl";

class EditTest : public ::testing::Test {
 protected:
  void SetUp() override {
    write_box(folder_.path("box.qdl"));
    write_panel(folder_.path("panel.qdl"));
    write_plate(folder_.path("plate.qdl"));
  }

  std::string quoted(const std::string &name) const { return "'" + folder_.path(name) + "'"; }

  CommandResult run(const std::string &command, const std::string &options,
                    const std::string &input = "box.qdl") {
    return run_qdlflex(command + " " + quoted(input) + " -o " + quoted("out.qdl") + " " + options);
  }

  Record edited(const std::string &command, const std::string &options) {
    const CommandResult result = run(command, options);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    return Record(QDL_CreateFromQDL(folder_.path("out.qdl").c_str()));
  }

  json info(const std::string &name) {
    const CommandResult result = run_qdlflex("info --json " + quoted(name));
    return json::parse(result.output, nullptr, false);
  }

  bool written() const { return std::filesystem::exists(folder_.path("out.qdl")); }

  TemporaryFolder folder_;
};

using Vector = std::array<double, 3>;

void expect_near(const Vector &found, const Vector &expected) {
  for (size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(found[k], expected[k], 1e-4) << "component " << k;
  }
}

Vector position(QDL_Record *record, int32_t node) {
  Vector xyz{};
  EXPECT_EQ(QDL_NodeCoordinates(record, QDL_NodeIndex(record, node), xyz.data()), 1);
  return xyz;
}

Vector displacement(QDL_Record *record, int32_t mode, int32_t node) {
  Vector values{};
  EXPECT_EQ(
      QDL_ModeByNode(record, mode, QDL_MODE_SHAPE, QDL_NodeIndex(record, node), values.data(), 0),
      1);
  return values;
}

}  // namespace

TEST_F(EditTest, TransformsInTheOrderOfTheCommandLine) {
  // Node 12 stands at (2, 0, 0) and moves by (312, 312.25, 312.5) in mode 3.
  const std::string turn = " --rotate 0,0,2 0,0,-7 90 ";
  const struct {
    std::string operations;
    Vector position;
    Vector displacement;
  } cases[] = {
      {"--translate 1 2 3" + turn, {-2, 3, 3}, {-312.25, 312, 312.5}},
      {turn + "--translate 1 2 3", {1, 4, 3}, {-312.25, 312, 312.5}},
      {"--translate 1 0 0" + turn + "--translate 0 0 5" + turn, {-3, 0, 5}, {-312, -312.25, 312.5}},
      {"--rotate 0,0,1 2,1,0 180 --mirror 1,0,0 3,0,0", {4, 2, 0}, {312, -312.25, 312.5}},
      {"--units t m s N --translate -1 0 0", {-0.998, 0, 0}, {0.312, 0.31225, 0.3125}},
  };
  for (const auto &c : cases) {
    const Record record = edited("transform", c.operations);
    ASSERT_TRUE(record) << c.operations;
    SCOPED_TRACE(c.operations);
    expect_near(position(record.get(), 12), c.position);
    expect_near(displacement(record.get(), 3, 12), c.displacement);
  }
}

TEST_F(EditTest, KeepsWhatItDoesNotTransform) {
  ASSERT_TRUE(edited("transform", "--renumber 1000 --units kg m s N"));
  const json before = info("box.qdl");
  const json after = info("out.qdl");
  for (const char *const part : {"version", "encoding", "precision", "counts"}) {
    EXPECT_EQ(after[part], before[part]) << part;
  }
  for (size_t k = 0; k < 2; ++k) {
    EXPECT_EQ(after["modes"][k]["number"], before["modes"][k]["number"]);
    EXPECT_NEAR(after["modes"][k]["frequency"], before["modes"][k]["frequency"], 1e-5);
  }
  EXPECT_EQ(after["units"]["mass"], "KILOGRAM");
  EXPECT_EQ(after["units"]["length"], "METER");
  const Record record(QDL_CreateFromQDL(folder_.path("out.qdl").c_str()));
  EXPECT_EQ(QDL_NodeID(record.get(), 0), 1011);
  EXPECT_EQ(QDL_NodeID(record.get(), 13), 1099);
}

TEST_F(EditTest, RefusedTransformationsLeaveNoFile) {
  const std::pair<const char *, int> cases[] = {
      {"", 2},
      {"--rotate 0,0,1 0,0,0", 2},
      {"--rotate 0,1 0,0,0 90", 2},
      {"--rotate 0,0,1 0,0,0 right", 2},
      {"--mirror 1,0,x 0,0,0", 2},
      {"--translate 1 2 z", 2},
      {"--renumber 1.5", 2},
      {"--units t mm s", 2},
      {"--units t mm s pound", 2},
      {"--rotate 0,0,0 0,0,0 90", 1},
      {"--mirror 0,0,0 0,0,0", 1},
      {"--renumber -11", 1},
  };
  for (const auto &[options, exit_code] : cases) {
    const CommandResult result = run("transform", options);
    EXPECT_EQ(result.exit_code, exit_code) << options;
    EXPECT_NE(result.errors, "") << options;
    EXPECT_FALSE(written()) << options;
  }
  EXPECT_EQ(run("transform", "--renumber -11").errors,
            "qdlflex: error: --renumber -11 cannot be done\n");
  const std::string before = read_text(folder_.path("box.qdl"));
  EXPECT_EQ(run_qdlflex("transform " + quoted("box.qdl") + " -o " + quoted("box.qdl") +
                        " --translate 1 0 0")
                .exit_code,
            1);
  EXPECT_EQ(read_text(folder_.path("box.qdl")), before);
}

TEST_F(EditTest, StripsAndPrunes) {
  const CommandResult result = run("surface", "--prune --strip");
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output,
            folder_.path("out.qdl") + ": 13 nodes (before: 14), 10 faces (before: 12)\n");
  const json counts = info("out.qdl")["counts"];
  EXPECT_EQ(counts["nodes"], 13);
  EXPECT_EQ(counts["faces"], 10);
  EXPECT_EQ(counts["interface_nodes"], 1);
  EXPECT_EQ(counts["stress_nodes"], 4);
}

TEST_F(EditTest, CoarsensAroundNodesThatMayGo) {
  const auto coarsened = [&](const char *arguments) {
    const CommandResult result =
        run("surface", std::string("--prune --coarsen ") + arguments, "plate.qdl");
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(info("out.qdl")["coarsened"], true);
    return info("out.qdl")["counts"];
  };
  const json merged = coarsened("0.5,10,1");
  EXPECT_EQ(merged["faces"], 1);
  EXPECT_EQ(merged["nodes"], 8);
  EXPECT_EQ(coarsened("0.5,10,1,5")["nodes"], 9);
}

TEST_F(EditTest, RefusesSurfaceStepsThatMakeNoSense) {
  for (const char *const options :
       {"", "--coarsen", "--coarsen 0.1,10", "--coarsen a,10,1", "--coarsen 0.1,10,1,node"}) {
    EXPECT_EQ(run("surface", options).exit_code, 2) << options;
    EXPECT_FALSE(written());
  }
  for (const char *const options : {"--strip", "--coarsen 0.1,10,1"}) {
    EXPECT_EQ(
        run_qdlflex("surface " + kNoGeometry + " -o " + quoted("out.qdl") + " " + options).errors,
        "qdlflex: error: the model has no faces\n");
    EXPECT_FALSE(written());
  }
}

TEST_F(EditTest, ShowsFreeEdges) {
  EXPECT_EQ(run_qdlflex("edges " + quoted("box.qdl")).output, "free edges: 0 chains\n");
  const CommandResult lines = run_qdlflex("edges " + quoted("panel.qdl"));
  EXPECT_EQ(lines.errors, "");
  EXPECT_EQ(lines.output, "free edges: 1 chains\nchain 1, closed, length 16 m: 1 5 4 3 2 6 1\n");
  const json read = json::parse(run_qdlflex("edges --json " + quoted("panel.qdl")).output);
  EXPECT_EQ(read["length_unit"], "METER");
  EXPECT_EQ(read["count"], 1);
  EXPECT_EQ(read["chains"], json::parse(R"([{"closed": true, "length": 16.0,
                                             "nodes": [1, 5, 4, 3, 2, 6, 1]}])"));
  EXPECT_EQ(run_qdlflex("edges " + kNoGeometry).errors, "qdlflex: error: the model has no faces\n");
}
