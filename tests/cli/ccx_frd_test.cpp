#include "ccx_frd.h"

#include <gtest/gtest.h>

#include "cli_support.h"

using namespace qdlflex::cli;

namespace {

std::string two_modes() {
  std::string text;
  for (const int mode : {1, 2}) {
    for (const char *const name : {"DISP", "STRESS", "TOSTRAIN"}) {
      text += frd_block(mode, name);
    }
  }
  return frd_text(text);
}

std::string with_line_ends(const std::string &text, const std::string &end) {
  std::string result;
  for (const char c : text) {
    c == '\n' ? result += end : result += c;
  }
  return result;
}

class FrdFileTest : public ::testing::Test {
 protected:
  FrdFile open(const std::string &text) { return FrdFile(folder_.write("job.frd", text)); }

  std::string failure(const std::string &text) {
    const std::string path = folder_.write("job.frd", text);
    const std::string message = failure_of([&] {
      FrdFile file(path);
      for (const auto &[number, mode] : file.modes()) {
        for (const FrdField field : {frd_displacement, frd_stress, frd_strain}) {
          if (mode.fields[field]) {
            file.read(field, *mode.fields[field]);
          }
        }
      }
    });
    return message.starts_with(path) ? message.substr(path.size()) : message;
  }

  TemporaryFolder folder_;
};

void expect_two_modes(FrdFile &file) {
  EXPECT_EQ(file.title(), "A tetrahedron");
  EXPECT_EQ(file.materials().at(1), "STEEL");
  ASSERT_EQ(file.nodes().size(), 4U);
  EXPECT_EQ(file.position(4), (Point{1, 0, 1}));
  ASSERT_EQ(file.elements().size(), 1U);
  EXPECT_EQ(file.elements()[0].id, 7);
  EXPECT_EQ(file.elements()[0].material, 1);
  ASSERT_EQ(file.modes().size(), 2U);
  const FrdMode &second = file.modes().at(2);
  EXPECT_EQ(second.frequency, 1.0);
  EXPECT_EQ(second.generalized_mass, 1.0);
  EXPECT_EQ(second.generalized_stiffness, 2000.0);
  const auto displacement = file.read(frd_displacement, *second.fields[frd_displacement]);
  ASSERT_EQ(displacement.size(), 4U);
  EXPECT_EQ(displacement[2].node, 3);
  EXPECT_EQ(displacement[2].components, (std::array<double, 6>{231, 232, 233, 0, 0, 0}));
  const FrdMode &first = file.modes().at(1);
  EXPECT_EQ(file.read(frd_strain, *first.fields[frd_strain])[0].components,
            (std::array<double, 6>{111, 112, 113, 114, 115, 116}));
}

}  // namespace

TEST_F(FrdFileTest, ReadsMeshAndModes) {
  FrdFile file = open(two_modes());
  expect_two_modes(file);
}

TEST_F(FrdFileTest, TakesWindowsLineEnds) {
  FrdFile file = open(with_line_ends(two_modes(), "\r\n"));
  expect_two_modes(file);
}

TEST_F(FrdFileTest, TakesAMaterialWithoutName) {
  FrdFile file = open(replaced(two_modes(), "    1UMAT    1STEEL\n", "    1UMAT   1\n"));
  EXPECT_EQ(file.materials().at(1), "");
}

TEST_F(FrdFileTest, TakesTheLastOfRepeatedBlocks) {
  FrdFile file =
      open(frd_text(frd_block(1, "DISP") + frd_block(2, "DISP") + frd_block(1, "DISP", 0.5)));
  ASSERT_EQ(file.modes().size(), 2U);
  EXPECT_EQ(file.modal_step_count(), 1);
  const auto values = file.read(frd_displacement, *file.modes().at(1).fields[frd_displacement]);
  EXPECT_EQ(values[0].components[0], 55.5);
}

TEST_F(FrdFileTest, TakesTheLastStepWithModesAndNoOther) {
  // A static step before (no mode parameters), two steps of modes, and results of no use here.
  std::string before = frd_block(9, "DISP");
  for (const char *const line :
       {"    1PGM                1.000000E+00\n", "    1PGK                9.000000E+03\n",
        "    1PMODE                         9\n"}) {
    before = replaced(before, line, "");
  }
  const std::string error = replaced(frd_block(1, "STRESS", 1.0, 3), "STRESS", "ERROR ");
  FrdFile file =
      open(frd_text(before + frd_block(1, "DISP", 1.0, 2) + frd_block(2, "DISP", 1.0, 2) +
                    frd_block(1, "DISP", 2.0, 3) + error));
  ASSERT_EQ(file.modes().size(), 1U);
  EXPECT_EQ(file.modal_step_count(), 2);
  const FrdMode &mode = file.modes().at(1);
  EXPECT_FALSE(mode.fields[frd_stress]);
  EXPECT_EQ(file.read(frd_displacement, *mode.fields[frd_displacement])[0].components[0], 222.0);
}

TEST_F(FrdFileTest, CountsOtherElementsAndPassesOverThem) {
  const std::string text =
      replaced(replaced(two_modes(), "    3C                             1",
                        "    3C                             2"),
               " -1         7",
               " -1         5    7    0    1\n -2         1         2         3\n -1         7");
  FrdFile file = open(text);
  EXPECT_EQ(file.other_element_count(), 1);
  EXPECT_EQ(file.elements().size(), 1U);
}

TEST_F(FrdFileTest, RefinesCoordinatesOnlyWhereTheyRoundToTheFiles) {
  FrdFile file = open(replaced(two_modes(), "4 1.00000E+00 0.00000E+00 1.00000E+00",
                               "4 1.00000E+00-1.23457E-01 1.00000E+03"));
  file.refine_positions({{4, {1.0, -0.123456789, 999.9951}},
                         {2, {2.0, 0.0, 1e-9}},  // the file says 0: another point
                         {3, {1.0, 2.0, 0.0}},
                         {99, {0.0, 0.0, 0.0}}});
  EXPECT_EQ(file.position(4), (Point{1.0, -0.123456789, 999.9951}));
  EXPECT_EQ(file.position(2), (Point{2.0, 0.0, 0.0}));
  EXPECT_EQ(file.position(3), (Point{1.0, 1.0, 0.0}));
}

TEST_F(FrdFileTest, EveryTruncatedFileFails) {
  const std::string text = frd_text(frd_block(1, "DISP") + frd_block(1, "STRESS"));
  // The closing line counts from its last digit on.
  for (size_t length = 0; length + 1 < text.size(); ++length) {
    ASSERT_NE(failure(text.substr(0, length)), "") << "cut to " << length << " bytes";
  }
  EXPECT_EQ(failure(text.substr(0, text.size() - 1)), "");
  EXPECT_EQ(failure(text.substr(0, text.size() - 6)),
            ": the file ends before its closing line (9999): truncated?");
}

TEST_F(FrdFileTest, SaysWhatIsWrongAndWhere) {
  const struct {
    const char *from;
    const char *to;
    const char *message;
  } cases[] = {
      {"    1C\n", "*NODE\n",
       ":1: this is not a CalculiX result file in text form (no 1C in the first line)"},
      {"    1UMAT    1STEEL\n", "    1UMAT    x\n", ":4: \"x\" is not an integer"},
      {"4                                     1", "4                                     3",
       ":5: only the long text format is read (*NODE FILE, not *NODE OUTPUT)"},
      {"    2C                             4", "    2C                     123456789",
       ":10: the block announces 123456789 nodes and holds 4"},
      {"    2C                             4", "    2C                            -4",
       ":10: the block announces -4 nodes and holds 4"},
      {" -1         4", " -1         3", ":9: node 3 comes twice"},
      {" -1         4", " -19999999999", ":9: \"9999999999\" is not an integer"},
      {"4 1.00000E+00 0.00000E+00 1.00000E+00", "4 1.00000E+00         NAN 1.00000E+00",
       ":9: \"NAN\" is not a number"},
      {"4 1.00000E+00 0.00000E+00 1.00000E+00", "4 1.00000E+00 0.00000E+00",
       ":9: \"\" is not a number"},
      {"    3C                             1", "    3C                             2",
       ":14: the block announces 2 elements and holds 1"},
      {"         3         4\n", "         3         5\n",
       ":13: element 7 has the node 5, which is not in the mesh"},
      {"         3         4\n", "         3\n", ":13: \"\" is not an integer"},
      {" -1         7    3", " -1         7    9", ": no solid elements"},
      {"1PMODE                         1", "1PMODE                         0",
       ":19: mode number 0 is not positive"},
      {"1PGK                1.000000E+03", "1PGK                         x",
       ":19: \"x\" is not a number"},
      {" -5  D2  ", " -5  V2  ", ":25: the components of DISP are not the expected ones"},
      {" -1         4 1.41", " -1         5 1.41", ":28: node 5 is not in the mesh"},
      {" -1         4 1.41", " -1         3 1.41", ":28: node 3 comes twice"},
      {" -1         4 1.41", " -9         4 1.41", ":28: a line of values was expected"},
      {"1.41000E+02", "1.410E+2222", ":28: \"1.410E+2222\" is not a number"},
      {" -4  DISP", " -6  DISP", ":20: the name of a result was expected"},
      {" 9999\n", " 9998\n", ":113: unexpected line \"9998\""},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(failure(replaced(two_modes(), c.from, c.to)), c.message);
  }
  EXPECT_EQ(failure(frd_text("")), ": no modes (the deck needs *FREQUENCY and *NODE FILE with U)");
  EXPECT_EQ(failure(std::string(200000, '\0')),
            ":1: this is not a text file: the line does not end");
  EXPECT_EQ(failure_of([&] { FrdFile(folder_.path("none.frd")); }),
            folder_.path("none.frd") + ": No such file or directory");
}
