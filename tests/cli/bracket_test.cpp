// The solved bracket of examples/calculix, imported by the command and held against laws that the
// importer does not use.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <set>

#include "ccx_tables.h"
#include "cli_support.h"
#include "record.h"

using namespace qdlflex::cli;

namespace {

constexpr const char *kExample = QDLFLEX_SOURCE_DIR "/examples/calculix";
constexpr double kYoung = 210000.0;
constexpr double kPoisson = 0.3;

class BracketTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryFolder;
    const std::string unpack = std::string("cp ") + kExample + "/*.inp '" + folder_->path("") +
                               "' && for f in " + kExample +
                               "/solved/*.gz; do gzip -dc \"$f\" > '" + folder_->path("") +
                               "'\"$(basename \"$f\" .gz)\" || exit 1; done";
    ASSERT_EQ(std::system(unpack.c_str()), 0);
    import("matrix.qdl", "--mass '" + folder_->path("bracket-matrices.mas") + "' --dof '" +
                             folder_->path("bracket-matrices.dof") + "'");
    import("volume.qdl", "");
  }

  static void TearDownTestSuite() { delete folder_; }

  static void import(const std::string &name, const std::string &masses) {
    const CommandResult result = run_qdlflex(
        "import ccx '" + folder_->path("bracket.frd") + "' --inp '" + folder_->path("bracket.inp") +
        "' --dat '" + folder_->path("bracket.dat") + "' " + masses +
        " --units mm-N-t-s --options no_ortho -o '" + folder_->path(name) + "'");
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    ASSERT_EQ(result.errors, "");
  }

  static Record open(const std::string &name = "matrix.qdl") {
    return Record(QDL_CreateFromQDL(folder_->path(name).c_str()));
  }

  static TemporaryFolder *folder_;
};

TemporaryFolder *BracketTest::folder_ = nullptr;

std::vector<double> half_mode(QDL_Record *record, int32_t mode, int32_t kind, int32_t part) {
  std::vector<double> values(static_cast<size_t>(3 * QDL_ModeNodeCount(record, kind)));
  EXPECT_EQ(QDL_Mode(record, mode, kind, values.data(), part), 1);
  return values;
}

double largest(const std::vector<double> &values) {
  return std::accumulate(values.begin(), values.end(), 0.0,
                         [](double most, double v) { return std::max(most, std::abs(v)); });
}

}  // namespace

TEST_F(BracketTest, NodalMassesArePositiveAndTheirTotalIsTheSolvers) {
  const double expected =
      read_ccx_tables(folder_->path("bracket.dat")).masses_of_sets.at("BRACKET");
  // The volume of the CAD body bounds the mesh's from both sides up to the chords of the bores.
  const double pi = std::acos(-1.0);
  const double cad = 7.85e-9 * (80 * 40 * 10 + 10 * 40 * 50 - pi * 9 * 9 * 10 - pi * 8 * 8 * 10);
  EXPECT_NEAR(expected, cad, 0.005 * cad);

  std::map<std::string, std::vector<double>> masses;
  for (const char *const name : {"matrix.qdl", "volume.qdl"}) {
    const Record record = open(name);
    ASSERT_TRUE(record);
    double total = 0.0;
    for (int32_t node = 0; node < QDL_NodeCount(record.get()); ++node) {
      masses[name].push_back(QDL_NodalMass(record.get(), node));
      EXPECT_GT(masses[name].back(), 0.0);
      total += masses[name].back();
    }
    EXPECT_NEAR(total, expected, 1e-6 * expected) << name;
  }
  // Both ways are diagonal scaling, but the solver integrates the mass matrix with four points: at
  // straight elements that gives corners 0.968 and midside nodes 1.004 of the exact share, and at
  // curved ones somewhat more or less.
  const auto &matrix = masses["matrix.qdl"];
  const auto &volume = masses["volume.qdl"];
  for (size_t node = 0; node < matrix.size(); ++node) {
    EXPECT_NEAR(matrix[node], volume[node], 0.07 * volume[node]);
  }
}

TEST_F(BracketTest, StressAndStrainObeyHookesLaw) {
  const Record record = open();
  ASSERT_TRUE(record);
  const double shear_modulus = kYoung / (2.0 * (1.0 + kPoisson));
  for (int32_t mode = 7; mode <= 16; ++mode) {
    const auto normal_stress = half_mode(record.get(), mode, QDL_MODE_STRESS, 0);
    const auto shear_stress = half_mode(record.get(), mode, QDL_MODE_STRESS, 1);
    const auto normal_strain = half_mode(record.get(), mode, QDL_MODE_STRAIN, 0);
    const auto shear_strain = half_mode(record.get(), mode, QDL_MODE_STRAIN, 1);
    const double tolerance = 2e-5 * std::max(largest(normal_stress), largest(shear_stress));
    for (size_t i = 0; i < shear_stress.size(); ++i) {
      ASSERT_NEAR(shear_stress[i], shear_modulus * shear_strain[i], tolerance) << "mode " << mode;
    }
    for (size_t i = 0; i < normal_stress.size(); i += 3) {
      const double trace = normal_stress[i] + normal_stress[i + 1] + normal_stress[i + 2];
      for (size_t k = i; k < i + 3; ++k) {
        const double from_stress = (1.0 + kPoisson) * normal_stress[k] - kPoisson * trace;
        ASSERT_NEAR(from_stress, kYoung * normal_strain[k], tolerance) << "mode " << mode;
      }
    }
  }
}

TEST_F(BracketTest, FacesEncloseTheVolumeAndPointOutward) {
  const Record record = open();
  ASSERT_TRUE(record);
  int32_t face_count = 0;
  int32_t length = 0;
  QDL_FaceListSize(record.get(), &face_count, &length);
  std::vector<int32_t> list(static_cast<size_t>(length));
  ASSERT_EQ(QDL_ElementFaces(record.get(), list.data()), 1);

  // Interior faces come twice with opposite winding and cancel; those left bound the body.
  std::set<std::array<int32_t, 3>> boundary;
  for (size_t at = 0; at < list.size(); at += 4) {
    ASSERT_EQ(list[at], 3);
    std::array<int32_t, 3> face = {list[at + 1], list[at + 2], list[at + 3]};
    std::rotate(face.begin(), std::min_element(face.begin(), face.end()), face.end());
    if (boundary.erase({face[0], face[2], face[1]}) == 0) {
      EXPECT_TRUE(boundary.insert(face).second);
    }
  }
  // With two bores: V - E + F = 2 - 2 * 2, and E = 1.5 F, so that V = F / 2 - 2.
  std::set<int32_t> corners;
  double volume = 0.0;
  for (const auto &face : boundary) {
    std::array<std::array<double, 3>, 3> p{};
    for (size_t k = 0; k < 3; ++k) {
      corners.insert(face[k]);
      QDL_NodeCoordinates(record.get(), face[k], p[k].data());
    }
    volume += (p[0][0] * (p[1][1] * p[2][2] - p[1][2] * p[2][1]) +
               p[0][1] * (p[1][2] * p[2][0] - p[1][0] * p[2][2]) +
               p[0][2] * (p[1][0] * p[2][1] - p[1][1] * p[2][0])) /
              6.0;
  }
  EXPECT_EQ(corners.size(), boundary.size() / 2 - 2);
  // Chords cut the round of the bores short: the faces enclose a little more than the body.
  const double solver_volume = 3.724655e-04 / 7.85e-9;
  EXPECT_NEAR(volume, solver_volume, 0.02 * solver_volume);
}

TEST_F(BracketTest, ModesAreOrthonormalAndRigidModesMoveRigidly) {
  const Record record = open();
  ASSERT_TRUE(record);
  ASSERT_EQ(QDL_ModeCount(record.get()), 16);
  const int32_t node_count = QDL_NodeCount(record.get());
  std::vector<std::vector<double>> modes;
  for (int32_t mode = 1; mode <= 16; ++mode) {
    modes.push_back(half_mode(record.get(), mode, QDL_MODE_SHAPE, 0));
    EXPECT_EQ(largest(half_mode(record.get(), mode, QDL_MODE_SHAPE, 1)), 0.0);
  }
  // The nodal masses are lumped, so the products are those of the consistent matrix to a few
  // percent.
  for (size_t i = 0; i < modes.size(); ++i) {
    for (size_t j = 0; j <= i; ++j) {
      double product = 0.0;
      for (int32_t node = 0; node < node_count; ++node) {
        const double mass = QDL_NodalMass(record.get(), node);
        for (size_t k = 0; k < 3; ++k) {
          const size_t at = 3 * static_cast<size_t>(node) + k;
          product += mass * modes[i][at] * modes[j][at];
        }
      }
      EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 0.15) << i + 1 << ", " << j + 1;
    }
  }
  for (int32_t mode = 1; mode <= 6; ++mode) {
    double eigenvalue = 1.0;
    ASSERT_EQ(QDL_Eigenvalue(record.get(), mode, &eigenvalue, nullptr, nullptr, nullptr, nullptr),
              1);
    EXPECT_LT(std::abs(eigenvalue), 1e-3);
  }
}

TEST_F(BracketTest, FrequenciesAreTheSolvers) {
  const Record record = open();
  ASSERT_TRUE(record);
  const std::array<double, 10> expected = {2693.416, 5395.021, 7296.421, 7571.806, 13604.53,
                                           15150.94, 16735.31, 21444.01, 22938.80, 24665.70};
  for (int32_t mode = 7; mode <= 16; ++mode) {
    double frequency = 0.0;
    ASSERT_EQ(QDL_Eigenvalue(record.get(), mode, nullptr, &frequency, nullptr, nullptr, nullptr),
              1);
    const double solver = expected[static_cast<size_t>(mode - 7)];
    EXPECT_NEAR(frequency, solver, 1e-6 * solver);
  }
}

TEST_F(BracketTest, InterfaceNodesLieAtTheRimsOfTheBores) {
  const Record record = open();
  ASSERT_TRUE(record);
  int32_t count = 0;
  int32_t *const ids = QDL_InterfaceNodeIDs(record.get(), &count);
  EXPECT_GE(count, 16);
  for (int32_t i = 0; i < count; ++i) {
    std::array<double, 3> p{};
    ASSERT_EQ(QDL_NodeCoordinates(record.get(), QDL_NodeIndex(record.get(), ids[i]), p.data()), 1);
    const bool at_foot = std::abs(std::hypot(p[0], p[1]) - 9) < 1e-6;
    const bool at_lug = std::abs(std::hypot(p[1], p[2] - 40) - 8) < 1e-6;
    EXPECT_TRUE(at_foot || at_lug) << "node " << ids[i];
  }
  QDL_FreeMemory(ids);
}
