// A CAD part of a Debian package on its whole way: meshed, solved, imported, written, read back.
// Skipped where the mesher, the solver or the part is missing.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>
#include <stdlib.h>

#include <array>
#include <cmath>
#include <cstdio>

#include "ccx_frd.h"
#include "ccx_tables.h"
#include "cli_support.h"
#include "record.h"

using namespace qdlflex::cli;

namespace {

constexpr const char *kPart = "/usr/share/opencascade/data/step/linkrods.step";
constexpr int32_t kModeCount = 26;

constexpr const char *kGeometry =
    "SetFactory(\"OpenCASCADE\");\n"
    "Merge \"/usr/share/opencascade/data/step/linkrods.step\";\n"
    "Physical Volume(\"ROD\") = {1};\n"
    "Mesh.CharacteristicLengthMin = 0.15;\n"
    "Mesh.CharacteristicLengthMax = 0.15;\n"
    "Mesh.ElementOrder = 2;\n"
    "Mesh.HighOrderOptimize = 1;\n"
    "Mesh.ScalingFactor = 25.4;\n";

constexpr const char *kMaterial =
    "*INCLUDE,INPUT=mesh.inp\n"
    "*MATERIAL,NAME=STEEL\n*ELASTIC\n210000.,0.3\n*DENSITY\n7.85E-9\n"
    "*SOLID SECTION,ELSET=ROD,MATERIAL=STEEL\n*STEP\n";
constexpr const char *kModeStep =
    "*FREQUENCY\n26\n*NODE FILE\nU\n*EL FILE\nS\n*EL PRINT,ELSET=ROD,TOTALS=ONLY\nEMAS,EVOL\n"
    "*END STEP\n";
constexpr const char *kMatrixStep = "*FREQUENCY,SOLVER=MATRIXSTORAGE\n26\n*END STEP\n";

class SlowLinkRodTest : public ::testing::Test {
 protected:
  static bool shell(const std::string &command) { return std::system(command.c_str()) == 0; }

  void run(const std::string &command, const std::string &log) {
    shell("cd '" + folder_.path("") + "' && OMP_NUM_THREADS=1 " + command + " > " + log + " 2>&1");
  }

  /// The solver's exit code tells nothing.
  void solve(const std::string &job) {
    run("ccx " + job, job + ".log");
    const std::string log = read_text(folder_.path(job + ".log"));
    ASSERT_NE(log.find("Job finished"), std::string::npos) << log;
    ASSERT_EQ(log.find("*ERROR"), std::string::npos) << log;
  }

  void make_results() {
    folder_.write("rod.geo", kGeometry);
    folder_.write("rod.inp", std::string(kMaterial) + kModeStep);
    folder_.write("matrices.inp", std::string(kMaterial) + kMatrixStep);
    run("gmsh -3 rod.geo -nt 1 -format inp -o mesh.inp", "gmsh.log");
    ASSERT_TRUE(std::filesystem::exists(folder_.path("mesh.inp")))
        << read_text(folder_.path("gmsh.log"));
    solve("rod");
    solve("matrices");
  }

  void import() {
    const CommandResult result =
        run_qdlflex("import ccx '" + folder_.path("rod.frd") + "' --inp '" +
                    folder_.path("rod.inp") + "' --dat '" + folder_.path("rod.dat") + "' --mass '" +
                    folder_.path("matrices.mas") + "' --dof '" + folder_.path("matrices.dof") +
                    "' --units mm-N-t-s --options no_ortho -o '" + folder_.path("rod.qdl") + "'");
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    ASSERT_EQ(result.errors, "");
  }

  Record open(const char *name) const {
    return Record(QDL_CreateFromQDL(folder_.path(name).c_str()));
  }

  TemporaryFolder folder_;
};

void expect_frequencies(QDL_Record *record, const CcxTables &tables) {
  ASSERT_EQ(tables.eigenvalues.size(), static_cast<size_t>(kModeCount));
  for (const auto &[mode, expected] : tables.eigenvalues) {
    double eigenvalue = 0.0;
    double frequency = 0.0;
    ASSERT_EQ(QDL_Eigenvalue(record, mode, &eigenvalue, &frequency, nullptr, nullptr, nullptr), 1);
    EXPECT_NEAR(eigenvalue, expected, 1e-6 * std::abs(expected)) << "mode " << mode;
    if (mode <= 6) {
      EXPECT_LT(std::abs(frequency), 0.1);
    } else {
      EXPECT_GT(frequency, 2500.0);
    }
  }
}

/// Values as the file's single precision would hold them.
double stored(double value, bool single) {
  return single ? static_cast<double>(static_cast<float>(value)) : value;
}

void expect_field(QDL_Record *record, FrdFile &results, const FrdMode &mode, FrdField field,
                  bool single) {
  const int32_t kind = field == frd_displacement ? QDL_MODE_SHAPE : QDL_MODE_STRESS;
  std::array<std::vector<double>, 2> halves;
  for (const int32_t part : {0, 1}) {
    auto &half = halves[static_cast<size_t>(part)];
    half.resize(static_cast<size_t>(3 * QDL_ModeNodeCount(record, kind)));
    ASSERT_EQ(QDL_Mode(record, mode.number, kind, half.data(), part), 1);
  }
  int64_t wrong = 0;
  for (const FrdValue &value : results.read(field, *mode.fields[field])) {
    const int32_t position = QDL_ModeNodeIndex(record, kind, value.node);
    ASSERT_GE(position, 0);
    const auto &c = value.components;
    // Displacements have no rotations; the file orders shear xy, yz, zx.
    const std::array<double, 6> expected = {c[0], c[1], c[2], c[3], c[5], c[4]};
    for (size_t k = 0; k < 6; ++k) {
      const double found = halves[k / 3][3 * static_cast<size_t>(position) + k % 3];
      wrong += found != stored(expected[k], single) ? 1 : 0;
    }
  }
  EXPECT_EQ(wrong, 0) << "mode " << mode.number << ", kind " << kind;
}

void expect_modes(QDL_Record *record, FrdFile &results, bool single) {
  ASSERT_EQ(QDL_ModeCount(record), kModeCount);
  ASSERT_EQ(results.modes().size(), static_cast<size_t>(kModeCount));
  for (const auto &[number, mode] : results.modes()) {
    for (const FrdField field : {frd_displacement, frd_stress}) {
      ASSERT_TRUE(mode.fields[field]);
      expect_field(record, results, mode, field, single);
    }
  }
}

double total_mass(QDL_Record *record) {
  double total = 0.0;
  for (int32_t node = 0; node < QDL_NodeCount(record); ++node) {
    EXPECT_GT(QDL_NodalMass(record, node), 0.0);
    total += QDL_NodalMass(record, node);
  }
  return total;
}

}  // namespace

TEST_F(SlowLinkRodTest, EveryModeComesBackAsTheSolverWroteIt) {
  if (!shell("command -v gmsh > /dev/null") || !shell("command -v ccx > /dev/null") ||
      !std::filesystem::exists(kPart)) {
    GTEST_SKIP() << "needs the Debian packages gmsh, calculix-ccx and occt-misc";
  }
  ASSERT_NO_FATAL_FAILURE(make_results());
  ASSERT_NO_FATAL_FAILURE(import());

  FrdFile results(folder_.path("rod.frd"));
  const CcxTables tables = read_ccx_tables(folder_.path("rod.dat"));
  EXPECT_GT(results.nodes().size(), 10000U);

  const Record record = open("rod.qdl");
  ASSERT_TRUE(record);
  ASSERT_NO_FATAL_FAILURE(expect_frequencies(record.get(), tables));
  const double solver_mass = tables.masses_of_sets.at("ROD");
  EXPECT_NEAR(total_mass(record.get()), solver_mass, 1e-6 * solver_mass);
  ASSERT_NO_FATAL_FAILURE(expect_modes(record.get(), results, false));

  for (const bool single : {false, true}) {
    setenv("ZEB_QDLWRITE_OPTIONS", single ? "no_ortho,no_xdr,single" : "no_ortho,no_xdr", 1);
    const char *const name = single ? "single.qdl" : "native.qdl";
    ASSERT_EQ(QDL_write_QDL(record.get(), folder_.path(name).c_str()), 1);
    unsetenv("ZEB_QDLWRITE_OPTIONS");
    const Record again = open(name);
    ASSERT_TRUE(again);
    EXPECT_EQ(QDL_Double_Prec(again.get()), single ? 0 : 1);
    EXPECT_NEAR(total_mass(again.get()), solver_mass, 1e-6 * solver_mass);
    ASSERT_NO_FATAL_FAILURE(expect_modes(again.get(), results, single));
  }
  double frequency = 0.0;
  QDL_Eigenvalue(record.get(), 7, nullptr, &frequency, nullptr, nullptr, nullptr);
  std::printf("%zu nodes, mode 7 at %.4f Hz, mass %.7g t (solver %.7g t)\n", results.nodes().size(),
              frequency, total_mass(record.get()), solver_mass);
}
