#include "ccx_tables.h"

#include <gtest/gtest.h>

#include "cli_support.h"

using namespace qdlflex::cli;

namespace {

const char *const kTables =
    "\n"
    "     E I G E N V A L U E   O U T P U T\n"
    "\n"
    " MODE NO    EIGENVALUE                       FREQUENCY   \n"
    "                                     REAL PART            IMAGINARY PART\n"
    "                           (RAD/TIME)      (CYCLES/TIME     (RAD/TIME)\n"
    "\n"
    "      1  -0.1402378E-03   0.0000000E+00   0.0000000E+00   0.1184220E-01\n"
    "      2   0.2864295E+09   0.1692423E+05   0.2693575E+04   0.0000000E+00\n"
    "\n"
    "     P A R T I C I P A T I O N   F A C T O R S\n"
    "\n"
    "      1   0.1411668E-01  -0.5677402E-04  -0.3406950E-02\n"
    "\n"
    " total mass for set BODY and time  0.1000000E+01\n"
    "\n"
    "        3.724655E-04\n"
    "\n"
    " total mass moment of inertia (xx,yy,zz,xy,xz,yz) for set BODY and time  0.1000000E+01\n"
    "\n"
    "        4.798092E-01  2.027570E-01  2.072524E-01  1.931236E-01  6.907066E-02  1.204054E-01\n"
    "\n";

class CcxTablesTest : public ::testing::Test {
 protected:
  std::string mass_failure(const std::string &matrix, const std::string &rows) {
    return failure_of([&] {
      read_ccx_nodal_masses(folder_.write("m.mas", matrix), folder_.write("m.dof", rows));
    });
  }

  TemporaryFolder folder_;
};

}  // namespace

TEST_F(CcxTablesTest, ReadsEigenvaluesAndTotals) {
  const CcxTables tables = read_ccx_tables(folder_.write("job.dat", kTables));
  EXPECT_EQ(tables.eigenvalues,
            (std::map<int32_t, double>{{1, -0.1402378e-03}, {2, 0.2864295e+09}}));
  EXPECT_EQ(tables.masses_of_sets, (std::map<std::string, double>{{"BODY", 3.724655e-04}}));
}

TEST_F(CcxTablesTest, TakesTheEigenvaluesOfTheLastStep) {
  const std::string later = replaced(replaced(kTables, "      1  -0.1402378E-03", "      1   7.0"),
                                     "      2   0.2864295E+09", "\n      2   8.0");
  const CcxTables tables = read_ccx_tables(folder_.write("job.dat", kTables + later));
  EXPECT_EQ(tables.eigenvalues, (std::map<int32_t, double>{{1, 7.0}}));
}

TEST_F(CcxTablesTest, SaysWhatIsWrongInTheTables) {
  const std::string path = folder_.write("job.dat", replaced(kTables, "-0.1402378E-03", "*****"));
  EXPECT_EQ(failure_of([&] { read_ccx_tables(path); }), path + ":8: \"*****\" is not a number");
  const std::string text = kTables;
  folder_.write("job.dat", text.substr(0, text.find("        3.724655E-04")));
  EXPECT_EQ(failure_of([&] { read_ccx_tables(path); }),
            path + ":16: the file ends before the total mass");
}

TEST_F(CcxTablesTest, ScalesTheDiagonalOfTheMassMatrix) {
  // Two nodes of a rod of mass 6: consistent mass 2 1 / 1 2 in x and y; in z node 1 is fixed, and
  // node 2 keeps its diagonal. Couplings between directions and row 6 (a temperature) do not count.
  const std::string matrix =
      "1 1  2.0\n1 2  0.5\n2 2  2.0\n1 3  1.0\n3 3  2.0\n2 4  1.0\r\n4 4  2.0\n5 5  3.0\n"
      "3 6  9.0\n6 6  -9.0\n";
  const auto masses = read_ccx_nodal_masses(
      folder_.write("m.mas", matrix), folder_.write("m.dof", "1.1\n1.2\n12.1\n12.2\n12.3\n12.0\n"));
  ASSERT_EQ(masses.size(), 2U);
  EXPECT_DOUBLE_EQ(masses.at(1), 3.0);
  EXPECT_DOUBLE_EQ(masses.at(12), 3.0);
}

TEST_F(CcxTablesTest, SaysWhatIsWrongInTheMatrix) {
  const std::string matrix = folder_.path("m.mas");
  const std::string rows = folder_.path("m.dof");
  EXPECT_EQ(mass_failure("1 1 1.0\n", "1.1.1\n"),
            rows + ":1: a node and a direction (node.direction) were expected");
  EXPECT_EQ(mass_failure("1 1\n", "1.1\n"),
            matrix + ":1: a row, a column and a value were expected");
  EXPECT_EQ(mass_failure("1 2 1.0\n", "1.1\n"),
            matrix + ":1: row or column 2 of a matrix of 1 rows");
  EXPECT_EQ(mass_failure("0 1 1.0\n", "1.1\n"),
            matrix + ":1: row or column 0 of a matrix of 1 rows");
  EXPECT_EQ(mass_failure("1 1 1.0.0\n", "1.1\n"), matrix + ":1: \"1.0.0\" is not a number");
  // A file cut short lacks diagonal terms.
  EXPECT_EQ(mass_failure("1 1 1.0\n", "1.1\n5.1\n"),
            matrix +
                ": the mass of node 5 is not positive; is this the mass matrix that belongs to " +
                rows + "?");
  EXPECT_EQ(mass_failure("1 1 1e308\n1 2 1e308\n2 2 1e308\n", "5.1\n5.1\n"),
            matrix + ": the mass of node 5 is not finite");
}
