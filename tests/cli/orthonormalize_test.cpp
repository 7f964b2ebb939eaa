// qdlflex orthonormalize: from modes with full matrices to modes by frequency.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "cli_support.h"

namespace {

class OrthonormalizeCommand : public testing::Test {
 protected:
  void SetUp() override {
    // Frequencies 1, 2, 3 and 4 once the modes, coupled in mass and stiffness, are taken apart:
    // K = diag(s), M = 1 of the modes, each of which is the sum of itself and those before it.
    constexpr int kModes = 4;
    QDL_Record *model = QDL_Create(1, kModes);
    QDL_SetNodeCoordinates(model, 1, 0.0, 0.0, 0.0);
    for (int i = 1; i <= kModes; ++i) {
      const double shape[6] = {static_cast<double>(i), 0.0, 0.0, 0.0, 0.0, 0.0};
      ASSERT_EQ(QDL_SetModeVec(model, i, 1, QDL_MODE_SHAPE, shape), 1);
      for (int j = 1; j <= i; ++j) {
        double stiffness = 0.0;
        for (int k = 1; k <= j; ++k)
          stiffness += std::pow(6.28318530718 * k, 2.0);
        QDL_SetGeneralizedStiffness(model, i, j, stiffness);
        QDL_SetGeneralizedMass(model, i, j, j);
      }
    }
    setenv("ZEB_QDLWRITE_OPTIONS", "no_ortho,no_xdr", 1);
    ASSERT_EQ(QDL_write_QDL(model, input_.c_str()), 1);
    unsetenv("ZEB_QDLWRITE_OPTIONS");
    QDL_UnLink(model);
  }

  CommandResult run(const std::string &options) const {
    return run_qdlflex("orthonormalize " + input_ + " -o " + output_ + " " + options);
  }

  TemporaryFolder folder_;
  std::string input_ = folder_.path("coupled.qdl");
  std::string output_ = folder_.path("modes.qdl");
};

TEST_F(OrthonormalizeCommand, WritesModesByFrequency) {
  const CommandResult result = run("");
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_EQ(result.output, output_ +
                               ": 4 modes\n"
                               "  mode          frequency\n"
                               "     1                  1\n"
                               "     2                  2\n"
                               "     3                  3\n"
                               "     4                  4\n");
  // Each mode is its own difference to the one before: of unit shape but for the sign.
  QDL_Record *model = QDL_CreateFromQDL(output_.c_str());
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(QDL_Exists(model, 6), 1);
  EXPECT_EQ(QDL_Exists(model, 11), 0);
  for (int mode = 1; mode <= 4; ++mode) {
    double shape[3] = {};
    ASSERT_EQ(QDL_Mode(model, mode, QDL_MODE_SHAPE, shape, 0), 1);
    EXPECT_NEAR(std::fabs(shape[0]), 1.0, 1e-12);
  }
  QDL_UnLink(model);
}

TEST_F(OrthonormalizeCommand, TakesABandOfFrequencies) {
  const CommandResult result = run("--highpass 1.5 --lowpass 3.5e0");
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  EXPECT_NE(result.output.find(": 2 modes\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("     1                  2\n     2                  3\n"),
            std::string::npos)
      << result.output;
}

TEST_F(OrthonormalizeCommand, TransformingTheResultKeepsItsTable) {
  ASSERT_EQ(run("").exit_code, 0);
  const std::string moved = folder_.path("moved.qdl");
  const CommandResult result =
      run_qdlflex("transform " + output_ + " -o " + moved + " --renumber 0");
  ASSERT_EQ(result.exit_code, 0) << result.errors;
  QDL_Record *model = QDL_CreateFromQDL(moved.c_str());
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(QDL_Exists(model, 6), 1);
  EXPECT_EQ(QDL_Exists(model, 11), 0);
  ASSERT_EQ(QDL_ModeCount(model), 4);
  for (int mode = 1; mode <= 4; ++mode) {
    double frequency = 0.0;
    double mass = 0.0;
    double shape[3] = {};
    ASSERT_EQ(QDL_Eigenvalue(model, mode, nullptr, &frequency, nullptr, &mass, nullptr), 1);
    EXPECT_NEAR(frequency, mode, 1e-9);
    EXPECT_NEAR(mass, 1.0, 1e-12);
    ASSERT_EQ(QDL_Mode(model, mode, QDL_MODE_SHAPE, shape, 0), 1);
    EXPECT_NEAR(std::fabs(shape[0]), 1.0, 1e-12);
  }
  QDL_UnLink(model);
}

TEST_F(OrthonormalizeCommand, RefusesWhatItCannotDo) {
  const CommandResult nothing_left = run("--lowpass 0.5");
  EXPECT_EQ(nothing_left.exit_code, 1);
  EXPECT_TRUE(nothing_left.errors.ends_with("qdlflex: error: none of the modes would be left\n"));
  EXPECT_FALSE(std::filesystem::exists(output_));
  std::filesystem::copy(input_, output_);
  EXPECT_EQ(run("--lowpass 0.5").exit_code, 1);
  EXPECT_EQ(read_text(output_), read_text(input_)) << "the file that was there is gone";
  std::filesystem::remove(output_);
  std::filesystem::create_symlink("/dev/null", output_);
  EXPECT_EQ(run("").exit_code, 1);
  EXPECT_TRUE(std::filesystem::is_symlink(output_)) << "took away what is no file";
  std::filesystem::remove(output_);
  EXPECT_EQ(run("--lowpass nan").exit_code, 2);
  const CommandResult onto_itself = run_qdlflex("orthonormalize " + input_ + " -o " + input_);
  EXPECT_EQ(onto_itself.exit_code, 1);
  EXPECT_EQ(run_qdlflex("orthonormalize " + output_ + " -o x.qdl").exit_code, 1);
}

}  // namespace
