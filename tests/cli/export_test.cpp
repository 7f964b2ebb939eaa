// Exported files, read back by VTK and held against what the library gives.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>

#include "cli_support.h"
#include "geometry_models.h"
#include "record.h"
#include "vtk_xml.h"
#include "write_record.h"

using nlohmann::json;
using qdlflex::cli::Record;

namespace {

constexpr const char *kPython = "/usr/bin/python3";  // Debian's own, for which its VTK is built

class ExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    write_box(folder_.path("box.qdl"));
    write_panel(folder_.path("panel.qdl"));
  }

  CommandResult run(const std::string &form, const std::string &model, const std::string &options) {
    return run_qdlflex("export " + form + " '" + folder_.path(model + ".qdl") + "' -o '" +
                       folder_.path(model + "." + form) + "' " + options);
  }

  std::string exported(const std::string &form, const std::string &model,
                       const std::string &options = "") {
    const CommandResult result = run(form, model, options);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return folder_.path(model + "." + form);
  }

  bool exists(const std::string &name) const { return std::filesystem::exists(folder_.path(name)); }

  Record open_box() const { return Record(QDL_CreateFromQDL(folder_.path("box.qdl").c_str())); }

  TemporaryFolder folder_;
};

class VtkTest : public ExportTest {
 protected:
  void SetUp() override {
    const std::string probe = std::string(kPython) + " -c 'import vtkmodules' 2> /dev/null";
    if (std::system(probe.c_str()) != 0) {
      GTEST_SKIP() << "skipped: needs the Debian package python3-vtk9";
    }
    ExportTest::SetUp();
  }

  json read(const std::string &path) {
    const std::string output = folder_.path("read.json");
    const std::string command = std::string(kPython) +
                                " " QDLFLEX_SOURCE_DIR "/tests/cli/read_vtk.py '" + path + "' > '" +
                                output + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    json read = json::parse(read_text(output), nullptr, false);
    EXPECT_FALSE(read.is_discarded());
    EXPECT_EQ(read.value("error", -1), 0);
    return read;
  }
};

std::array<double, 6> mode_values(QDL_Record *record, int32_t mode, int32_t kind, int32_t node) {
  std::array<double, 6> values{};
  const int32_t place = QDL_ModeNodeIndex(record, kind, node);
  EXPECT_EQ(QDL_ModeByNode(record, mode, kind, place, values.data(), 0), 1);
  EXPECT_EQ(QDL_ModeByNode(record, mode, kind, place, values.data() + 3, 1), 1);
  return values;
}

std::vector<double> tuple(const json &file, const std::string &array, size_t point) {
  return file.at("point_data").at(array).at(point).get<std::vector<double>>();
}

void expect_points(const json &file, QDL_Record *record, size_t count) {
  ASSERT_EQ(file.at("points").size(), count);
  for (size_t k = 0; k < count; ++k) {
    const auto node = static_cast<int32_t>(tuple(file, "Node", k)[0]);
    std::vector<double> position(3);
    QDL_NodeCoordinates(record, QDL_NodeIndex(record, node), position.data());
    EXPECT_EQ(file["points"][k].get<std::vector<double>>(), position) << "node " << node;
  }
}

void expect_shapes(const json &file, QDL_Record *record, double scale, const std::string &factor) {
  for (const auto &[mode, title] : {std::pair(3, "Mode 03 (5 Hz)"), {12, "Mode 12 (12.5 Hz)"}}) {
    for (size_t k = 0; k < file.at("points").size(); ++k) {
      const auto node = static_cast<int32_t>(tuple(file, "Node", k)[0]);
      const auto v = mode_values(record, mode, QDL_MODE_SHAPE, node);
      EXPECT_EQ(tuple(file, title + (" displacement" + factor) + " [mm]", k),
                (std::vector<double>{scale * v[0], scale * v[1], scale * v[2]}));
      if (mode == 12) {
        EXPECT_EQ(tuple(file, "Mode 12 (12.5 Hz) rotation [rad]", k),
                  (std::vector<double>{v[3], v[4], v[5]}));
      }
    }
  }
  EXPECT_FALSE(file["point_data"].contains("Mode 03 (5 Hz) rotation [rad]"));
}

/// Von Mises from the principal axes' independent form: the second invariant of the deviator.
double equivalent(const std::array<double, 6> &s) {
  const double mean = (s[0] + s[1] + s[2]) / 3.0;
  double sum = 0.0;
  for (size_t k = 0; k < 3; ++k) {
    sum += std::pow(s[k] - mean, 2) + 2.0 * std::pow(s[k + 3], 2);
  }
  return std::sqrt(1.5 * sum);
}

void expect_stresses(const json &file, QDL_Record *record) {
  const std::string title = "Mode 12 (12.5 Hz) ";
  EXPECT_EQ(file["order"][title + "stress [N/mm^2]"],
            json::parse(R"(["XX", "YY", "ZZ", "XY", "YZ", "XZ"])"));
  for (size_t k = 0; k < file.at("points").size(); ++k) {
    const auto node = static_cast<int32_t>(tuple(file, "Node", k)[0]);
    const json &stress = file["point_data"][title + "stress [N/mm^2]"][k];
    const json &mises = file["point_data"][title + "von Mises stress [N/mm^2]"][k];
    if (node < 20) {
      const auto s = mode_values(record, 12, QDL_MODE_STRESS, node);
      EXPECT_EQ(stress, json({s[0], s[1], s[2], s[3], s[5], s[4]}));
      EXPECT_NEAR(mises[0].get<double>(), equivalent(s), 1e-12 * equivalent(s));
    } else {
      EXPECT_EQ(stress, json(std::vector<json>(6)));
      EXPECT_EQ(mises, json(std::vector<json>(1)));
    }
  }
}

std::vector<int32_t> nodes_of(const json &file, const json &cell) {
  std::vector<int32_t> nodes;
  for (const json &point : cell.at("points")) {
    nodes.push_back(static_cast<int32_t>(tuple(file, "Node", point.get<size_t>())[0]));
  }
  return nodes;
}

/// How many cells of each VTK type there are.
std::map<int, int> types_of(const json &file) {
  std::map<int, int> counts;
  for (const json &cell : file.at("cells")) {
    ++counts[cell.at("type").get<int>()];
  }
  return counts;
}

constexpr int kVertex = 1;
constexpr int kPolyLine = 4;
constexpr int kTriangle = 5;
constexpr int kPolygon = 7;
constexpr int kQuad = 9;

// --- Binary triangles -------------------------------------------------------------------------

using Point = std::array<double, 3>;

struct Triangle {
  Point normal;
  std::array<Point, 3> corners;
};

uint32_t word(const std::string &bytes, size_t at) {
  uint32_t value = 0;
  for (size_t k = 4; k-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(at + k));
  }
  return value;
}

std::vector<Triangle> read_triangles(const std::string &bytes) {
  std::vector<Triangle> triangles(word(bytes, 80));
  EXPECT_EQ(bytes.size(), 84 + 50 * triangles.size());
  EXPECT_NE(bytes.substr(0, 5), "solid");
  for (size_t k = 0; k < triangles.size(); ++k) {
    std::array<double, 12> values{};
    for (size_t i = 0; i < 12; ++i) {
      values[i] = static_cast<double>(std::bit_cast<float>(word(bytes, 84 + 50 * k + 4 * i)));
    }
    std::memcpy(&triangles[k], values.data(), sizeof values);
  }
  return triangles;
}

double dot(const Point &a, const Point &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point cross(const Point &a, const Point &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double signed_volume(const std::vector<Triangle> &triangles) {
  double sum = 0.0;
  for (const Triangle &t : triangles) {
    sum += dot(t.corners[0], cross(t.corners[1], t.corners[2])) / 6.0;
  }
  return sum;
}

}  // namespace

TEST_F(VtkTest, AnUnstructuredGridHoldsAllNodesAndFaces) {
  const json file = read(exported("vtu", "box", "--stress"));
  const Record record = open_box();
  ASSERT_NO_FATAL_FAILURE(expect_points(file, record.get(), 14));
  EXPECT_EQ(types_of(file), (std::map<int, int>{{kVertex, 2}, {kQuad, 12}}));
  EXPECT_EQ(nodes_of(file, file["cells"][2]), (std::vector<int32_t>{11, 12, 22, 21}));
  EXPECT_EQ(nodes_of(file, file["cells"][12]), (std::vector<int32_t>{98}));
  expect_shapes(file, record.get(), 1.0, "");
  expect_stresses(file, record.get());

  EXPECT_EQ(types_of(read(exported("vtu", "panel"))),
            (std::map<int, int>{{kPolygon, 1}, {kTriangle, 1}}));
}

TEST_F(VtkTest, NodesWithoutModeShapesHaveNoValues) {
  const Record record = open_box();
  QDL_SetNodeCoordinates(record.get(), 200, 9, 9, 9);
  qdlflex::cli::write_record(record.get(), folder_.path("more.qdl"), "no_ortho");
  unsetenv("ZEB_QDLWRITE_OPTIONS");
  const json points = read(exported("vtu", "more", "--stress"))["point_data"];
  for (const char *const name : {"displacement [mm]", "rotation [rad]"}) {
    const json &values = points["Mode 12 (12.5 Hz) " + std::string(name)];
    ASSERT_EQ(values.size(), 15U) << name;
    EXPECT_TRUE(values[13][2].is_number()) << name;
    EXPECT_EQ(values[14], json(std::vector<json>(3))) << name;
  }
}

TEST(VtkXmlTest, NamesHaveNoCharactersThatXmlForbids) {
  const TemporaryFolder folder;
  qdlflex::cli::OutputFile file(folder.path("names.vtp"));
  const auto array = qdlflex::cli::vtk_array("a\t\x7f\xc3\xa9<&\"", 1, std::vector<double>());
  write_vtk({"PolyData", {}, {{"PointData", {array}}}}, file);
  file.finish();
  const std::string text = read_text(folder.path("names.vtp"));
  EXPECT_NE(text.find("Name=\"a????&lt;&amp;&quot;\""), std::string::npos) << text;
}

TEST_F(VtkTest, ASurfaceHasOuterFacesFreeEdgesAndInterfaceNodes) {
  const json box = read(exported("vtp", "box", "--stress --scale -2.5"));
  const Record record = open_box();
  ASSERT_NO_FATAL_FAILURE(expect_points(box, record.get(), 13));
  EXPECT_EQ(types_of(box), (std::map<int, int>{{kVertex, 1}, {kQuad, 10}}));
  EXPECT_EQ(nodes_of(box, box["cells"][0]), (std::vector<int32_t>{98}));
  expect_shapes(box, record.get(), -2.5, " x -2.5");
  expect_stresses(box, record.get());

  const json panel = read(exported("vtp", "panel"));
  EXPECT_EQ(types_of(panel), (std::map<int, int>{{kPolyLine, 1}, {kPolygon, 1}, {kTriangle, 1}}));
  EXPECT_EQ(nodes_of(panel, panel["cells"][0]), (std::vector<int32_t>{1, 5, 4, 3, 2, 6, 1}));
  EXPECT_EQ(panel["cell_data"]["Free edge"], json::parse("[[1], [0], [0]]"));
}

TEST_F(VtkTest, TheModesAreThoseOfTheList) {
  const auto names = [&](const std::string &modes) {
    std::vector<std::string> names;
    const json file = read(exported("vtu", "box", "--modes " + modes));
    for (const auto &[name, values] : file["point_data"].items()) {
      names.push_back(name);
    }
    return names;
  };
  EXPECT_EQ(names("none"), std::vector<std::string>{"Node"});
  EXPECT_EQ(names("1-5"), (std::vector<std::string>{"Mode 3 (5 Hz) displacement [mm]", "Node"}));
  EXPECT_EQ(names("12,3").size(), 4U);
}

TEST_F(VtkTest, TrianglesEncloseTheBox) {
  const json file = read(exported("stl", "box"));
  EXPECT_NEAR(file["area"], 2.0 * (2 * 3 + 3 * 4 + 4 * 2), 1e-5);
  EXPECT_NEAR(file["volume"], 2.0 * 3.0 * 4.0, 1e-5);
}

TEST_F(ExportTest, TrianglesHaveOutwardNormals) {
  const auto triangles = read_triangles(read_text(exported("stl", "box")));
  ASSERT_EQ(triangles.size(), 20U);
  const Point centre = {1.0, 1.5, 2.0};
  for (const Triangle &t : triangles) {
    const Point from_centre = {t.corners[0][0] - centre[0], t.corners[0][1] - centre[1],
                               t.corners[0][2] - centre[2]};
    EXPECT_DOUBLE_EQ(dot(t.normal, t.normal), 1.0);
    const double half_width = std::abs(dot(t.normal, centre));
    EXPECT_DOUBLE_EQ(dot(t.normal, from_centre), half_width);
  }
  EXPECT_DOUBLE_EQ(signed_volume(triangles), 24.0);
  EXPECT_EQ(read_triangles(read_text(exported("stl", "panel"))).size(), 4U);
}

TEST_F(ExportTest, TrianglesFollowOneMode) {
  const auto triangles = read_triangles(read_text(exported("stl", "box", "--modes 3 --scale 2")));
  // Node 11, in the origin, moves by 311, 311.25, 311.5.
  const Point moved = {622.0, 622.5, 623.0};
  EXPECT_TRUE(std::ranges::any_of(triangles, [&](const Triangle &t) {
    return std::ranges::find(t.corners, moved) != t.corners.end();
  }));
}

TEST_F(ExportTest, RefusalsLeaveNoFile) {
  const struct {
    std::string form;
    std::string options;
    int exit_code;
    std::string message;
  } cases[] = {
      {"vtu", "--modes 7", 1, "qdlflex: error: the model has no mode 7\n"},
      {"vtp", "--modes 3,4-6", 1, "qdlflex: error: the model has no mode 4 to 6\n"},
      {"stl", "--modes 3,12", 1,
       "qdlflex: error: triangles can show one mode only; 2 are selected\n"},
      {"vtu", "--modes 3,x", 2,
       "--modes: \"3,x\" is no list of modes: all, none, or numbers and ranges such as 1,7-12\n"
       "Run with --help for more information.\n"},
  };
  for (const auto &c : cases) {
    const CommandResult result = run(c.form, "box", c.options);
    EXPECT_EQ(result.exit_code, c.exit_code);
    EXPECT_EQ(result.errors, c.message);
    EXPECT_FALSE(exists("box." + c.form));
  }
  EXPECT_EQ(run("vtu", "panel", "--stress").errors,
            "qdlflex: error: the model has no modal stress\n");
  EXPECT_EQ(run("stl", "box", "--scale 2").exit_code, 2);
  EXPECT_EQ(run_qdlflex("export vtu '" + folder_.path("box.qdl") + "' -o /dev/full").errors,
            "qdlflex: error: /dev/full: No space left on device\n");

  const std::string before = read_text(folder_.path("box.qdl"));
  std::filesystem::create_hard_link(folder_.path("box.qdl"), folder_.path("box.vtu"));
  EXPECT_EQ(run("vtu", "box", "").exit_code, 1);
  EXPECT_EQ(read_text(folder_.path("box.qdl")), before);
}
