// The command from outside: exit codes, messages, and what stands in the files it writes.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "ccx_deck.h"
#include "ccx_frd.h"
#include "ccx_tables.h"
#include "cli_support.h"
#include "record.h"

using namespace qdlflex::cli;

namespace {

constexpr const char *kNoOrtho = " --options no_ortho --units mm-N-t-s -o ";

class CommandTest : public ::testing::Test {
 protected:
  std::string quoted(const std::string &name) const { return "'" + folder_.path(name) + "'"; }

  CommandResult import(const std::string &options) {
    return run_qdlflex("import ccx " + quoted("job.frd") + " " + options + kNoOrtho +
                       quoted("out.qdl"));
  }

  Record open(const std::string &name = "out.qdl") {
    return Record(QDL_CreateFromQDL(folder_.path(name).c_str()));
  }

  bool exists(const std::string &name) const { return std::filesystem::exists(folder_.path(name)); }

  /// The path of the job's file before a message is that of the temporary folder.
  std::string error(const std::string &text) const {
    return "qdlflex: error: " + folder_.path("job.frd") + text + "\n";
  }

  TemporaryFolder folder_;
};

std::string one_mode() {
  return frd_text(frd_block(1, "DISP") + frd_block(1, "STRESS") + frd_block(1, "TOSTRAIN"));
}

std::array<double, 6> vector_of(QDL_Record *record, int32_t mode, int32_t kind, int32_t node) {
  std::array<double, 6> result{};
  for (const int32_t part : {0, 1}) {
    EXPECT_EQ(QDL_ModeByNode(record, mode, kind, node, result.data() + 3 * part, part), 1);
  }
  return result;
}

}  // namespace

TEST_F(CommandTest, WrongUsageEndsWithTwo) {
  for (const char *const arguments :
       {"", "expand", "export", "export vtu a", "export stl a -o b --stress", "import",
        "import ccx", "info", "info a b", "info --xml a", "edges", "surface a --strip",
        "import ccx a.frd -o b.qdl", "import ccx a.frd --units mm-N-t-s",
        "import ccx a.frd --units mm-N-t -o b.qdl",
        "import ccx a.frd --units mm-N-t-s -o b --mass m",
        "import ccx a.frd --units mm-N-t-s -o b --dof m",
        "import ccx a.frd --units mm-N-t-s -o b --interface S",
        "import ccx a.frd --units mm-N-t-s -o b --density -1"}) {
    const CommandResult result = run_qdlflex(arguments);
    EXPECT_EQ(result.exit_code, 2) << arguments;
    EXPECT_NE(result.errors, "") << arguments;
    EXPECT_EQ(result.output, "") << arguments;
  }
}

TEST_F(CommandTest, HelpAndVersionEndWithZero) {
  for (const char *const arguments :
       {"--help", "edges --help", "export --help", "export stl --help", "import --help",
        "import ccx --help", "info --help", "surface --help", "transform --help", "--version"}) {
    const CommandResult result = run_qdlflex(arguments);
    EXPECT_EQ(result.exit_code, 0) << arguments;
    EXPECT_NE(result.output, "") << arguments;
    EXPECT_EQ(result.errors, "") << arguments;
  }
  EXPECT_EQ(run_qdlflex("--version").output, "qdlflex " QDLFLEX_VERSION_STRING "\n");
}

TEST_F(CommandTest, ImportsATetrahedron) {
  folder_.write("job.frd", one_mode());
  folder_.write("job.inp",
                "*NODE\n4,1,0,1.000004\n*NSET,NSET=INTERFACE\n3\n*NSET,NSET=TIP\n4,1\n"
                "*MATERIAL,NAME=STEEL\n*DENSITY\n12.\n");
  const CommandResult result = import("--inp " + quoted("job.inp"));
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output, folder_.path("out.qdl") +
                               ": 4 nodes, 1 elements, 1 modes up to 0.5 cycles per unit of time, "
                               "mass 2.000008\n");

  const Record record = open();
  ASSERT_TRUE(record);
  ASSERT_EQ(QDL_NodeCount(record.get()), 4);
  std::array<double, 3> xyz{};
  ASSERT_EQ(QDL_NodeCoordinates(record.get(), 3, xyz.data()), 1);
  EXPECT_EQ(xyz, (std::array<double, 3>{1, 0, 1.000004}));
  EXPECT_DOUBLE_EQ(QDL_NodalMass(record.get(), 2), 12.0 * 1.000004 / 6.0 / 4.0);

  EXPECT_EQ(vector_of(record.get(), 1, 0, 0), (std::array<double, 6>{111, 112, 113, 0, 0, 0}));
  // Shear in the file: xy, yz, zx; in the model xy, xz, yz, strains twice the tensor's.
  EXPECT_EQ(vector_of(record.get(), 1, 1, 0),
            (std::array<double, 6>{111, 112, 113, 114, 116, 115}));
  EXPECT_EQ(vector_of(record.get(), 1, 2, 0),
            (std::array<double, 6>{111, 112, 113, 228, 232, 230}));

  double eigenvalue = 0.0;
  double mass = 0.0;
  ASSERT_EQ(QDL_Eigenvalue(record.get(), 1, &eigenvalue, nullptr, nullptr, &mass, nullptr), 1);
  EXPECT_EQ(eigenvalue, 1000.0);
  EXPECT_EQ(mass, 1.0);

  int32_t face_count = 0;
  int32_t length = 0;
  QDL_FaceListSize(record.get(), &face_count, &length);
  ASSERT_EQ(face_count, 4);
  ASSERT_EQ(length, 16);
  std::array<int32_t, 16> list{};
  QDL_ElementFaces(record.get(), list.data());
  EXPECT_EQ(list, (std::array<int32_t, 16>{3, 0, 2, 1, 3, 0, 1, 3, 3, 1, 2, 3, 3, 2, 0, 3}));

  int32_t count = 0;
  int32_t *const interface = QDL_InterfaceNodeIDs(record.get(), &count);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(interface[0], 3);
  QDL_FreeMemory(interface);

  std::array<std::array<char, 17>, 4> units{};
  QDL_Units(record.get(), units[0].data(), units[1].data(), units[2].data(), units[3].data());
  EXPECT_STREQ(units[0].data(), "MEGAGRAM");
  EXPECT_STREQ(units[1].data(), "MILLIMETER");
  EXPECT_STREQ(units[2].data(), "SECOND");
  EXPECT_STREQ(units[3].data(), "NEWTON");
}

TEST_F(CommandTest, TakesTheNamedInterfaceSetAndWarnsOfNodesThatAreNotThere) {
  folder_.write("job.frd", one_mode());
  folder_.write("job.inp", "*NSET,NSET=TIP\n4,1,88\n");
  const CommandResult result = import("--density 1 --interface tip --inp " + quoted("job.inp"));
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.errors,
            "qdlflex: warning: 1 of 3 nodes of the set TIP are not in the results\n");
  const Record record = open();
  ASSERT_TRUE(record);
  int32_t count = 0;
  QDL_FreeMemory(QDL_InterfaceNodeIDs(record.get(), &count));
  EXPECT_EQ(count, 2);

  const CommandResult missing = import("--density 1 --interface hip --inp " + quoted("job.inp"));
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.errors,
            "qdlflex: error: " + folder_.path("job.inp") + ": there is no node set HIP\n");
}

TEST_F(CommandTest, EigenvaluesComeFromTheMostExactSource) {
  // Mode 1: the frequency has ten digits. Mode 2: too few, the table counts. Mode 3: negative.
  // Mode 4: frequency and table disagree.
  const auto block = [](int mode, const char *stiffness, const char *frequency) {
    char from[40];
    std::snprintf(from, sizeof from, "1PGK                %.6E", 1000.0 * mode);
    std::string text =
        replaced(frd_block(mode, "DISP"), from, std::string("1PGK                ") + stiffness);
    std::snprintf(from, sizeof from, "%11.5E", 0.5 * mode);
    return replaced(text, std::string("  101 ") + from, std::string("  101 ") + frequency);
  };
  folder_.write(
      "job.frd",
      frd_text(block(1, "2.864295E+08", "2693.575002") + block(2, "8.791646E-05", "1.49230E-03") +
               block(3, "0.000000E+00", "0.00000E+00") + block(4, "9.000000E+00", "7.000000000")));
  folder_.write("job.dat",
                "     E I G E N V A L U E   O U T P U T\n\n"
                "      1   0.2864295E+09\n      2   0.8791646E-04\n"
                "      3  -0.1402378E-03\n      4   0.9000000E+01\n");
  const double exact = std::pow(2.0 * std::acos(-1.0) * 2693.575002, 2);
  for (const bool with_table : {true, false}) {
    const CommandResult result =
        import("--density 1" + (with_table ? " --dat " + quoted("job.dat") : std::string()));
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    const Record record = open();
    ASSERT_TRUE(record);
    const std::array<double, 4> expected = {exact, 8.791646e-05, with_table ? -1.402378e-04 : 0.0,
                                            9.0};
    for (int32_t mode = 1; mode <= 4; ++mode) {
      double stiffness = 0.0;
      ASSERT_EQ(QDL_Eigenvalue(record.get(), mode, nullptr, nullptr, nullptr, nullptr, &stiffness),
                1);
      EXPECT_DOUBLE_EQ(stiffness, expected[static_cast<size_t>(mode - 1)]) << "mode " << mode;
    }
  }
}

TEST_F(CommandTest, DensitiesGoByTheMaterialsOfTheElements) {
  std::string text =
      replaced(one_mode(), "    1UMAT    1STEEL\n", "    1UMAT    1STEEL\n    1UMAT    2LEAD\n");
  text = replaced(text, " -1         7    3    0    1", " -1         7    3    0    2");
  folder_.write("job.frd", text);
  const std::string deck =
      "*MATERIAL,NAME=steel\n*DENSITY\n1.\n*MATERIAL,NAME=lead\n*DENSITY\n6.\n";
  folder_.write("job.inp", deck);
  const CommandResult result = import("--inp " + quoted("job.inp"));
  EXPECT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_NE(result.output.find("mass 1\n"), std::string::npos) << result.output;

  folder_.write("job.inp", replaced(deck, "lead", "gold"));
  EXPECT_EQ(import("--inp " + quoted("job.inp")).errors,
            error(": element 7: the density of its material is not known"));
}

TEST_F(CommandTest, BadInputEndsWithOneAndLeavesNoFile) {
  const std::string good = one_mode();
  const struct {
    std::string text;
    std::string options;
    std::string message;
  } cases[] = {
      {good.substr(0, good.size() / 2), "--density 1",
       ": the file ends before its closing line (9999): truncated?"},
      {good.substr(0, good.size() - 20), "--density 1",
       ": the file ends before its closing line (9999): truncated?"},
      {replaced(good, "         3         4\n", "         4         3\n"), "--density 1",
       ": element 7 has no positive volume"},
      {frd_text(frd_block(1, "STRESS")), "--density 1",
       ": mode 1 has no displacements (*NODE FILE with U)"},
      {frd_text(frd_block(1, "DISP") + frd_block(1, "STRESS") + frd_block(2, "DISP")),
       "--density 1", ": mode 2 lacks stresses, unlike mode 1"},
      {frd_text(
           replaced(replaced(frd_block(1, "DISP"), "           4        ", "           3        "),
                    " -1         4 1.41000E+02 1.42000E+02 1.43000E+02\n", "")),
       "--density 1",
       ": mode 1 has displacements at 3 of 4 nodes: *NODE FILE must not be limited to a set"},
      {replaced(frd_text(frd_block(1, "DISP")), "1PGM                1.000000E+00",
                "1PGM                2.000000E+00"),
       "--density 1", ": mode 1 has a generalized mass other than 1"},
  };
  for (const auto &c : cases) {
    folder_.write("job.frd", c.text);
    const CommandResult result = import(c.options);
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, error(c.message));
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(exists("out.qdl"));
  }
  folder_.write("job.frd", good);
  EXPECT_EQ(import("").errors,
            "qdlflex: error: no masses: give the mass matrix (--mass, --dof), a deck with *DENSITY "
            "(--inp) or --density\n");
  EXPECT_EQ(import("--density 1 --inp " + quoted("none.inp")).errors,
            "qdlflex: error: " + folder_.path("none.inp") + ": No such file or directory\n");
  EXPECT_FALSE(exists("out.qdl"));
}

TEST_F(CommandTest, RefusesUnitsThatAreNotConsistent) {
  folder_.write("job.frd", one_mode());
  const CommandResult result =
      run_qdlflex("import ccx " + quoted("job.frd") +
                  " --density 1 --options no_ortho --units mm-N-kg-ms -o " + quoted("out.qdl"));
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.errors,
            "qdlflex: error: these units are not consistent, as a solver's are: with KILOGRAM, "
            "MILLIMETER and MILLISECOND the unit of force is 1000 times NEWTON\n");
  EXPECT_FALSE(exists("out.qdl"));
}

TEST_F(CommandTest, RefusesToOverwriteAnInput) {
  folder_.write("job.frd", one_mode());
  const CommandResult result = run_qdlflex("import ccx " + quoted("job.frd") + " --density 1" +
                                           kNoOrtho + quoted("job.frd"));
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(read_text(folder_.path("job.frd")), one_mode());
}

TEST_F(CommandTest, ComparesTheMassWithTheSolversTotal) {
  folder_.write("job.frd", one_mode());
  const auto errors = [&](const char *totals) {
    folder_.write("job.dat", totals);
    return import("--density 6 --dat " + quoted("job.dat")).errors;
  };
  EXPECT_EQ(errors(" total mass for set A and time  0.1E+01\n\n  1.00009E+00\n"), "");
  EXPECT_EQ(errors(" total mass for set A and time  0.1E+01\n\n  1.00011E+00\n"),
            "qdlflex: warning: the nodal masses add up to 1, the solver's total is 1.00011\n");
  EXPECT_EQ(errors(" total mass for set A and time  0.1E+01\n\n  0.25\n"
                   " total mass for set B and time  0.1E+01\n\n  0.75\n"),
            "");
}

TEST_F(CommandTest, InfoTellsWhatAFileHolds) {
  folder_.write("job.frd", one_mode());
  ASSERT_EQ(import("--density 6").exit_code, 0);
  const CommandResult result = run_qdlflex("info --json " + quoted("out.qdl"));
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  const auto json = nlohmann::json::parse(result.output);
  EXPECT_EQ(json["version"], "6.0");
  EXPECT_EQ(json["encoding"], "XDR");
  EXPECT_EQ(json["precision"], "double");
  EXPECT_EQ(json["size"], std::filesystem::file_size(folder_.path("out.qdl")));
  EXPECT_EQ(json["header"]["title"], "A tetrahedron");
  EXPECT_EQ(json["header"]["input_file"], "job.frd");
  EXPECT_EQ(json["counts"]["nodes"], 4);
  EXPECT_EQ(json["counts"]["modes"], 1);
  EXPECT_EQ(json["counts"]["stress_nodes"], 4);
  EXPECT_EQ(json["counts"]["strain_nodes"], 4);
  EXPECT_EQ(json["counts"]["faces"], 4);
  EXPECT_EQ(json["counts"]["interface_nodes"], 0);
  EXPECT_EQ(json["units"]["mass"], "MEGAGRAM");
  EXPECT_EQ(json["modes"][0]["number"], 1);
  EXPECT_DOUBLE_EQ(json["modes"][0]["frequency"], std::sqrt(1000.0) / 6.28318530718);

  // Version, header and summary have fixed sizes; nodes: two counts, then identifier and three
  // reals each. The blocks fill the file without gaps.
  const auto &blocks = json["blocks"];
  EXPECT_EQ(blocks[0]["size"], 4);
  EXPECT_EQ(blocks[1]["offset"], 4);
  EXPECT_EQ(blocks[1]["size"], 2176);
  EXPECT_EQ(blocks[2]["offset"], 2180);
  EXPECT_EQ(blocks[3]["id"], 4);
  EXPECT_EQ(blocks[3]["offset"], 2580);
  EXPECT_EQ(blocks[3]["size"], 8 + 4 * (4 + 3 * 8));
  int64_t end = 0;
  for (const auto &block : blocks) {
    EXPECT_EQ(block["offset"], end);
    end += block["size"].get<int64_t>();
  }
  EXPECT_EQ(json["size"], end);

  const std::string table = run_qdlflex("info " + quoted("out.qdl")).output;
  for (const char *const line :
       {"version     6.0\n", "encoding    XDR\n", "precision   double\n", "nodes       4\n",
        "     4  nodal coordinates                  2580          120\n"}) {
    EXPECT_NE(table.find(line), std::string::npos) << line << "is not in\n" << table;
  }
}

TEST_F(CommandTest, OutputThatCannotBeWrittenEndsWithOne) {
  folder_.write("job.frd", one_mode());
  ASSERT_EQ(import("--density 6").exit_code, 0);
  for (const char *const command : {"info ", "report "}) {
    const CommandResult result =
        run_qdlflex(command + quoted("out.qdl") + " > /dev/full 2> " + quoted("errors") + " #");
    EXPECT_EQ(result.exit_code, 1) << command;
    EXPECT_EQ(read_text(folder_.path("errors")),
              "qdlflex: error: standard output: No space left on device\n");
  }
}

TEST_F(CommandTest, InfoRefusesWhatIsNoFileOfItsKind) {
  const CommandResult missing = run_qdlflex("info " + quoted("none.qdl"));
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_EQ(missing.errors,
            "qdlflex: error: " + folder_.path("none.qdl") + ": No such file or directory\n");
  EXPECT_EQ(run_qdlflex("report " + quoted("none.qdl")).errors, missing.errors);
  folder_.write("text.qdl", "no body at all");
  const CommandResult text = run_qdlflex("info " + quoted("text.qdl"));
  EXPECT_EQ(text.exit_code, 1);
  EXPECT_EQ(text.output, "");
  EXPECT_NE(text.errors.find("Not a valid QDL format."), std::string::npos) << text.errors;
}
