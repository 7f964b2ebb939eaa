// The commands that change the geometry of a file, and the one that shows its free edges.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <functional>
#include <nlohmann/json.hpp>

#include "cli_support.h"
#include "geometry_models.h"
#include "record.h"
#include "write_record.h"

using nlohmann::json;
using qdlflex::cli::Record;

namespace {

const std::string kFullModel = QDLFLEX_SOURCE_DIR "/tests/golden/60_xdr_double.qdl";
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

  /// Writes the file again after a change.
  void change(const std::string &name, const std::function<void(QDL_Record *)> &edit) {
    {
      const Record record(QDL_CreateFromQDL(folder_.path(name).c_str()));
      edit(record.get());
      qdlflex::cli::write_record(record.get(), folder_.path("changed.qdl"), "no_ortho,no_xdr");
      unsetenv("ZEB_QDLWRITE_OPTIONS");
    }
    std::filesystem::rename(folder_.path("changed.qdl"), folder_.path(name));
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

TEST_F(EditTest, KeepsModesWithoutEigenvalues) {
  std::string bytes = read_text(folder_.path("box.qdl"));
  const json blocks = info("box.qdl")["blocks"];
  for (size_t k = blocks.size(); k-- > 0;) {
    const int id = blocks[k]["id"];
    if (id == 12 || id == 13) {
      bytes.erase(blocks[k]["offset"].get<size_t>(), blocks[k]["size"].get<size_t>());
      bytes[blocks[2]["offset"].get<size_t>() + static_cast<size_t>(id) - 3] = 0;
    }
  }
  folder_.write("box.qdl", bytes);
  const CommandResult result = run("transform", "--renumber 0");
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(info("out.qdl")["counts"]["modes"], 2);
}

TEST_F(EditTest, TellsWhatAFileWithInvariantsLoses) {
  const std::string refusal =
      "qdlflex: error: with invariants, loads are written on the six rigid axes";
  const auto renumbered = [&](const std::string &options) {
    return run_qdlflex("transform " + kFullModel + " -o " + quoted("out.qdl") + " --renumber 0 " +
                       options);
  };
  const CommandResult refused = renumbered("");
  EXPECT_EQ(refused.exit_code, 1);
  EXPECT_FALSE(written());
  for (const std::string &line :
       {std::string("qdlflex: warning: the mode shape transformation is not written\n"),
        std::string("qdlflex: warning: the table of eigenvalues is not written, only "), refusal}) {
    EXPECT_NE(refused.errors.find(line), std::string::npos) << line << "is not in\n"
                                                            << refused.errors;
  }
  EXPECT_EQ(renumbered("--options no_ortho").errors.find(refusal), std::string::npos);

  change("plate.qdl", [](QDL_Record *record) {
    const Vector moment = {1, 2, 3};
    QDL_SetInvar3(record, 1, moment.data());
  });
  const CommandResult coarsened = run("surface", "--coarsen 0.5,10,1", "plate.qdl");
  EXPECT_EQ(coarsened.exit_code, 0) << coarsened.errors;
  EXPECT_NE(coarsened.errors.find("qdlflex: warning: as there are invariants, nodes without use "
                                  "are not written: 1\n"),
            std::string::npos)
      << coarsened.errors;
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

TEST_F(EditTest, PruningKeepsTheMassOfTheBody) {
  change("box.qdl", [](QDL_Record *record) {
    for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
      QDL_SetNodalMass(record, QDL_NodeID(record, index), 0.5);
    }
  });
  const auto invariants = [&](const std::string &name) {
    return json::parse(run_qdlflex("invariants --json " + quoted(name)).output);
  };
  const json before = invariants("box.qdl");
  EXPECT_EQ(before["mass"], 7.0);
  for (const char *const options : {"", " --options no_ortho,fast_invar"}) {
    const CommandResult result = run("surface", std::string("--strip --prune") + options);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(info("out.qdl")["counts"]["nodes"], 13);
    const json after = invariants("out.qdl");
    for (const char *const part : {"mass", "centre", "inertia_about_origin"}) {
      EXPECT_EQ(after[part], before[part]) << part << options;
    }
    EXPECT_EQ(after["invariants"]["3"] == before["invariants"]["3"], *options != '\0');
  }
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
  EXPECT_EQ(coarsened("'5e-1 , +10, 1, 5, preserve_str'")["nodes"], 9);
  const CommandResult unknown = run("surface", "--coarsen 0.5,10,1,5,77", "plate.qdl");
  EXPECT_EQ(unknown.exit_code, 1);
  EXPECT_EQ(unknown.errors, "qdlflex: error: the model has no node 77\n");
}

TEST_F(EditTest, RefusesSurfaceStepsThatMakeNoSense) {
  for (const char *const options :
       {"", "--coarsen", "--coarsen 0.1,10", "--coarsen a,10,1", "--coarsen 0.1,10,1,node",
        "--coarsen 1d-1,10,1", "--coarsen 0.1,10,1,0"}) {
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
  EXPECT_EQ(lines.output, "free edges: 1 chain\nchain 1, closed, length 16 m: 1 5 4 3 2 6 1\n");
  const json read = json::parse(run_qdlflex("edges --json " + quoted("panel.qdl")).output);
  EXPECT_EQ(read["length_unit"], "METER");
  EXPECT_EQ(read["count"], 1);
  EXPECT_EQ(read["chains"], json::parse(R"([{"closed": true, "length": 16.0,
                                             "nodes": [1, 5, 4, 3, 2, 6, 1]}])"));
  EXPECT_EQ(run_qdlflex("edges " + kNoGeometry).errors, "qdlflex: error: the model has no faces\n");

  using namespace std::string_literals;
  const std::string triangle = "\0\0\0\3\0\0\0\1\0\0\0\0\0\0\0"s;
  folder_.write("panel.qdl",
                replaced(read_text(folder_.path("panel.qdl")), triangle + "\5", triangle + "\6"));
  EXPECT_EQ(run_qdlflex("edges " + quoted("panel.qdl")).errors,
            "qdlflex: error: the faces use nodes that the model does not have\n");
}
