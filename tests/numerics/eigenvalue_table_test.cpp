// The eigenvalue table from diagonal matrices, and masses scaled to one.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numerics/modal_body.h"
#include "record/record.h"
#include "support/fault.h"

namespace {

using namespace qdltest;

constexpr double kTwoPi = 6.28318530718;
constexpr double kInfinite = 1.2345e20;

class EigenvalueTable : public ModalBody {
 protected:
  QDL_Record *diagonal_body() {
    return body({Matrix::diagonal({8.0, -9.0, 7.0}), Matrix::diagonal({2.0, 1.0, 1e-15})});
  }
};

// Mode number, eigenvalue, circular frequency, generalized mass and stiffness.
void expect_entry(const qdlflex::EigenEntry &entry, const Values &wanted) {
  EXPECT_EQ((Values{static_cast<double>(entry.mode_number), entry.eigenvalue,
                    entry.circular_frequency, entry.generalized_mass, entry.generalized_stiffness}),
            wanted);
  EXPECT_EQ(entry.frequency, entry.circular_frequency / kTwoPi);
}

TEST_F(EigenvalueTable, IsMadeFromDiagonals) {
  for (const bool keep_masses : {false, true}) {
    clear_messages();
    QDL_Record *model = diagonal_body();
    QDL_SetShouldMassNormalizeModes(model, keep_masses ? 1 : 0);
    ASSERT_EQ(QDL_RebuildEigenvalues(model), 1);
    const auto &table = model->eigenvalues;
    ASSERT_EQ(table.size(), 3u);
    expect_entry(table[0], {1, 4.0, 2.0, keep_masses ? 2.0 : 1.0, 8.0});
    expect_entry(table[1], {2, -9.0, -3.0, 1.0, -9.0});
    expect_entry(table[2], {3, kInfinite, std::sqrt(kInfinite), 1e-15, 7.0});
    EXPECT_EQ(QDL_ModeNumber(model, 0), 1);
    EXPECT_TRUE(model->stiffness.entries.empty());
    EXPECT_TRUE(model->mass.entries.empty());
    expect_only_warnings(
        {"Mode 3 is not physically meaningful.\nIt is associated with a zero "
         "generalized mass\n"});

    // There is nothing but the table now.
    clear_messages();
    EXPECT_EQ(QDL_RebuildEigenvalues(model), 1);
    EXPECT_EQ(build_eigenvalue_table(model), 1);
    EXPECT_EQ(table[0].eigenvalue, 4.0);
    expect_no_messages();
  }
}

TEST_F(EigenvalueTable, IsNotBuiltTwice) {
  QDL_Record *model = diagonal_body();
  model->eigenvalues = {{11, 1.0, 2.0, 3.0, 4.0, 5.0}};
  EXPECT_EQ(build_eigenvalue_table(model), 1);
  EXPECT_EQ(model->eigenvalues.size(), 1u);
  EXPECT_EQ(model->stiffness.entries.size(), 3u);
  EXPECT_EQ(QDL_RebuildEigenvalues(model), 1);
  EXPECT_EQ(model->eigenvalues.size(), 3u);
}

TEST_F(EigenvalueTable, NeedsDiagonalMatrices) {
  QDL_Record *model = body({Matrix::of_rows({{2.0, 1.0}, {1.0, 2.0}}), Matrix::identity(2)});
  EXPECT_EQ(build_eigenvalue_table(model), 1);
  // The walk for the first mode ends before the entry off the diagonal.
  EXPECT_EQ(errors,
            std::vector<std::string>{"Attempting to look at eigenvalues of non-orthogonal data"});
  EXPECT_EQ(warnings.size(), 1u);
  EXPECT_EQ(model->eigenvalues[0].eigenvalue, 2.0);
  EXPECT_EQ(model->eigenvalues[1].eigenvalue, kInfinite);
  EXPECT_EQ(model->eigenvalues[1].generalized_mass, 0.0);
}

TEST_F(EigenvalueTable, ScalesMassesThatCanBeScaled) {
  QDL_Record *model = diagonal_body();
  const double infinity = std::numeric_limits<double>::infinity();
  model->eigenvalues = {
      {1, 4.0, 0.0, 0.0, 16.0, 64.0}, {2, 5.0, 0.0, 0.0, 0.0, 1.0}, {3, 6.0, 0.0, 0.0, -4.0, 2.0}};
  double *scales = nullptr;
  ASSERT_EQ(mass_normalize_modes(model, &scales), 1);
  EXPECT_EQ(taken(scales, 3), (Values{4.0, 1.0, 1.0}));
  expect_entry(model->eigenvalues[0], {1, 4.0, 0.0, 1.0, 4.0});
  expect_entry(model->eigenvalues[1], {2, 5.0, 0.0, 0.0, 1.0});
  expect_entry(model->eigenvalues[2], {3, 6.0, 0.0, -4.0, 2.0});

  model->eigenvalues = {{1, 4.0, 0.0, 0.0, infinity, 64.0}, {2, 5.0, 0.0, 0.0, std::nan(""), 1.0}};
  ASSERT_EQ(mass_normalize_modes(model, &scales), 1);
  EXPECT_EQ(taken(scales, 3), (Values{1.0, 1.0, 1.0}));
  EXPECT_EQ(mass_normalize_modes(model, nullptr), 0);
  expect_only_warnings({});
}

TEST_F(EigenvalueTable, SurvivesWithoutMemory) {
  double *scales = nullptr;
  const auto run = [&] {
    QDL_Record *model = nullptr;
    {
      const PauseFaults pause;
      clear_messages();
      model = diagonal_body();
    }
    const std::int32_t built = QDL_RebuildEigenvalues(model);
    if (built == 0) {
      const PauseFaults pause;
      EXPECT_EQ(model->stiffness.entries.size(), 3u);
      EXPECT_EQ(QDL_ModeNumber(model, 0), 11);
      return false;
    }
    if (mass_normalize_modes(model, &scales) == 1) {
      QDL_FreeMemory(scales);
      return true;
    }
    EXPECT_EQ(scales, nullptr);
    EXPECT_EQ(model->eigenvalues[0].generalized_stiffness, 8.0);
    return false;
  };
  const auto check = [&](bool done, bool fired) {
    EXPECT_EQ(done, !fired);
    EXPECT_EQ(errors.size(), fired ? 1u : 0u);
  };
  EXPECT_GE(sweep(Door::kMemory, Persistence::kOnce, run, check), 4u);
}

TEST_F(EigenvalueTable, NeedsAModel) {
  double *scales = nullptr;
  EXPECT_EQ(QDL_RebuildEigenvalues(nullptr), 0);
  EXPECT_EQ(build_eigenvalue_table(nullptr), 0);
  EXPECT_EQ(mass_normalize_modes(nullptr, &scales), 0);
  EXPECT_EQ(errors.size(), 3u);
}

}  // namespace
