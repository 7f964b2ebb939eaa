// Orthonormal modes from generalized matrices: results and messages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "numerics/modal_body.h"
#include "record/record.h"

namespace {

using namespace qdltest;

constexpr double kTwoPi = 6.28318530718;
const std::string kRefused = "Failed to mass normalize the eigen vectors\n";

class Orthonormalize : public ModalBody {
 protected:
  // The lines of the report, between its head and the line that follows it.
  std::vector<std::string> report() const {
    const auto begin =
        std::ranges::find(infos, "  ===============================================");
    const auto end = std::ranges::find(infos, "\n  Applying Gram-Schmidt to eigenvectors \n ");
    EXPECT_NE(begin, infos.end());
    EXPECT_NE(end, infos.end());
    return {begin + 1, end};
  }

  bool rewrote_modes() const {
    return std::ranges::any_of(
        infos, [](const std::string &text) { return text.starts_with("Orthogonal mode file: "); });
  }
};

std::string text_of(const char *format, int number, double first, double second = 0.0) {
  char text[200];
  std::snprintf(text, sizeof text, format, number, first, second);  // NOLINT
  return text;
}

Pair diagonal(const Values &stiffness, const Values &mass) {
  return {Matrix::diagonal(stiffness), Matrix::diagonal(mass)};
}

TEST_F(Orthonormalize, MakesDensePairsDiagonal) {
  for (const Index order : {8, 33, 90}) {
    SCOPED_TRACE(order);
    Values masses(static_cast<std::size_t>(order));
    for (std::size_t i = 0; i < masses.size(); ++i)
      masses[i] = std::pow(10.0, static_cast<double>(i % 5) - 2.0);
    Values stiffnesses = elastic_eigenvalues(order);
    for (std::size_t i = 0; i < masses.size(); ++i)
      stiffnesses[i] *= masses[i];
    const Pair pair = congruent(stiffnesses, masses, 7);
    QDL_Record *model = body(pair);
    const std::vector<Values> before = modes_of(model);
    ASSERT_EQ(QDL_OrthoNormalize(model), 1);

    const Matrix t = transformation_of(model);
    const Values eigenvalues = eigenvalues_of(model);
    EXPECT_LE(mass_error(pair.b, t), 1e-9);
    EXPECT_LE(stiffness_error(pair.a, t, eigenvalues), 1e-11);
    EXPECT_TRUE(std::ranges::is_sorted(Values(eigenvalues.begin() + 6, eigenvalues.end())));
    const std::vector<Values> after = modes_of(model);
    const std::vector<Values> wanted = combined(before, t, before.size());
    for (std::size_t k = 0; k < after.size(); ++k)
      expect_near(after[k], wanted[k], 1e-13 * 1e3);
    EXPECT_EQ(QDL_ModeNumber(model, 0), 1);
    EXPECT_TRUE(errors.empty());
    EXPECT_TRUE(warnings.empty());
  }
}

// Eigenspaces of dozens of modes: the solver alone stalls there, or finds vectors that depend on
// each other. Roundoff may give it imaginary parts, which are warned about.
TEST_F(Orthonormalize, ResolvesManyEqualEigenvalues) {
  for (const Index order : {60, 130, 200})
    for (const std::size_t distinct : {1u, 2u, 3u}) {
      SCOPED_TRACE(std::to_string(order) + " modes, distinct: " + std::to_string(distinct));
      Values wanted;
      for (std::size_t i = 0; i < static_cast<std::size_t>(order); ++i)
        wanted.push_back(1e4 * static_cast<double>(1 + i % distinct));
      const Pair pair = congruent(wanted, Values(wanted.size(), 1.0), 3);
      QDL_Record *model = body(pair);
      ASSERT_EQ(QDL_OrthoNormalize(model), 1);
      const Matrix t = transformation_of(model);
      const Values found = eigenvalues_of(model);
      std::ranges::sort(wanted);
      expect_near(found, wanted, 1e-12 * 3e4 * static_cast<double>(order));
      EXPECT_LE(mass_error(pair.b, t), 1e-9);
      EXPECT_LE(stiffness_error(pair.a, t, found), 1e-10);
      EXPECT_TRUE(errors.empty());
      QDL_UnLink(model);
    }
}

TEST_F(Orthonormalize, SortsAndScalesDiagonalMatrices) {
  QDL_Record *model = body(diagonal({9.0, 8.0, 50.0}, {9.0, 4.0, 25.0}));
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(eigenvalues_of(model), (Values{1.0, 2.0, 2.0}));
  // Equal eigenvalues in reverse.
  EXPECT_EQ(transformation_of(model).values,
            (Values{1.0 / 3.0, 0.0, 0.0, 0.0, 0.0, 0.2, 0.0, 0.5, 0.0}));
  double frequency = 0.0;
  double circular = 0.0;
  double mass = 0.0;
  double stiffness = 0.0;
  QDL_Eigenvalue(model, 2, nullptr, &frequency, &circular, &mass, &stiffness);
  EXPECT_EQ(circular, std::sqrt(2.0));
  EXPECT_EQ(frequency, std::sqrt(2.0) / kTwoPi);
  EXPECT_EQ(mass, 1.0);
  EXPECT_EQ(stiffness, 2.0);

  model = body(diagonal({1.0}, {4.0}));
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(transformation_of(model).values, Values{0.5});
  expect_only_warnings({});
}

TEST_F(Orthonormalize, TellsWhatItDoes) {
  QDL_Record *model = body({Matrix::of_rows({{2.0, 1.0}, {1.0, 2.0}}), Matrix::identity(2)});
  clear_messages();
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  ASSERT_EQ(infos.size(), 12u);
  EXPECT_EQ(infos[0], "\nSolving Generalized Eigenvalue Problem to orthogonalize mode shapes.");
  EXPECT_EQ(infos[1], "  (Finding upper Hessenberg and upper triangular forms)");
  EXPECT_EQ(infos[2], "  (Converting upper Hessenberg form to quasi-upper triangular)");
  EXPECT_EQ(infos[3], "  (Calculating Eigenvalues)");
  EXPECT_EQ(infos[4], "  (Calculating Eigenvectors)");
  EXPECT_EQ(infos[5], std::string(49, ' '));
  EXPECT_EQ(infos[6], "  Real Eigenvalues and Natural Frequencies [Hz] :");
  EXPECT_EQ(infos[7], "  ===============================================");
  EXPECT_EQ(infos[10], "\n  Applying Gram-Schmidt to eigenvectors \n ");
  EXPECT_TRUE(infos[11].starts_with("Orthogonal mode file: ")) << infos[11];
}

TEST_F(Orthonormalize, ReportsEigenvaluesByTheirKind) {
  constexpr const char *kPlain = " %3d : %20.14e  %20.14e";
  constexpr const char *kRigid = " %3d : %20.14e  %20.14e (probable rigid body mode)";
  constexpr const char *kBad = " %3d : %20.14e  Sqrt undefined.  Possible problem with input data.";
  constexpr const char *kNoise = " %3d : %20.14e  Sqrt undefined.     (probable rigid body mode)";
  const auto frequency = [](double value) { return std::sqrt(value) / kTwoPi; };

  // The seventh, 400, makes 0.4 the limit of what is small beside it.
  QDL_Record *model = body(diagonal({-2.0, -0.5, -0.25, 0.0, 0.25, 0.5, 400.0, 7.0},
                                    {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 0.0}));
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(report(), (std::vector<std::string>{
                          text_of(kBad, 1, -2.0), text_of(kBad, 2, -0.5), text_of(kNoise, 3, -0.25),
                          text_of(kRigid, 4, 0.0, 0.0), text_of(kRigid, 5, 0.25, frequency(0.25)),
                          text_of(kPlain, 6, 0.5, frequency(0.5)),
                          text_of(kPlain, 7, 400.0, frequency(400.0)),
                          "   8 : Infinity.  Possible mass singularity.  Ignored."}));
  expect_only_warnings(
      {"Mode 8 is not physically meaningful\nIt contains an infinite eigenvalue.  Ignoring this "
       "mode.\n"});

  // Six modes or fewer have nothing to be small beside.
  clear_messages();
  model = body(diagonal({-1.0, 1.0, 1.5}, {1.0, 1.0, 1.0}));
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(report(), (std::vector<std::string>{text_of(kNoise, 1, -1.0),
                                                text_of(kRigid, 2, 1.0, frequency(1.0)),
                                                text_of(kPlain, 3, 1.5, frequency(1.5))}));
}

TEST_F(Orthonormalize, DropsModesOfSingularMass) {
  const Matrix k = Matrix::of_rows({{3.0, 1.0}, {1.0, 2.0}});
  const Matrix m = Matrix::of_rows({{1.0, 2.0}, {2.0, 4.0}});
  QDL_Record *model = body({k, m});
  const std::vector<Values> before = modes_of(model);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  ASSERT_EQ(QDL_ModeCount(model), 1);
  // With M = v v', v = (1, 2): 1 / lambda = v' K^-1 v = (2 - 4 + 12) / 5, and x = K^-1 v.
  EXPECT_NEAR(eigenvalues_of(model)[0], 0.5, 1e-14);
  const std::vector<Values> after = modes_of(model);
  ASSERT_EQ(after.size(), 1u);
  const double sign = after[0][0] * before[1][0] > 0.0 ? 1.0 : -1.0;
  for (std::size_t i = 0; i < after[0].size(); ++i)
    EXPECT_NEAR(sign * after[0][i], before[1][i] / 2.0, 1e-14);
  EXPECT_EQ(warnings.size(), 1u);
  EXPECT_EQ(report().back(), "   2 : Infinity.  Possible mass singularity.  Ignored.");
}

TEST_F(Orthonormalize, KeepsTheFiniteModesOfSingularMass) {
  for (const std::size_t infinite : {1u, 3u, 9u}) {
    SCOPED_TRACE(infinite);
    Values masses(24, 1.0);
    std::fill_n(masses.begin(), infinite, 0.0);
    Values stiffness;
    for (std::size_t i = 0; i < masses.size(); ++i)
      stiffness.push_back(1.0 + 0.5 * static_cast<double>(i));
    QDL_Record *model = body(congruent(stiffness, masses, 2));
    ASSERT_EQ(QDL_OrthoNormalize(model), 1);
    stiffness.erase(stiffness.begin(), stiffness.begin() + static_cast<std::ptrdiff_t>(infinite));
    expect_near(eigenvalues_of(model), stiffness, 1e-11 * stiffness.back());
    EXPECT_EQ(warnings.size(), infinite);
    clear_messages();
  }
}

TEST_F(Orthonormalize, MayLeaveNoModeAtAll) {
  // A stored mass that is zero everywhere.
  for (const Index order : {1, 3}) {
    QDL_Record *model = body({Matrix::identity(order), Matrix(order)});
    for (std::int32_t mode = 0; mode < order; ++mode)
      QDL_SetGeneralizedMass(model, 11 + mode, 11 + mode, 0.0);
    EXPECT_EQ(QDL_OrthoNormalize(model), 1);
    EXPECT_EQ(QDL_ModeCount(model), 0);
    EXPECT_EQ(QDL_OrthoNormalize(model), 0);
  }
  EXPECT_TRUE(errors.empty());
}

TEST_F(Orthonormalize, KeepsWhatAnIndefiniteMassGives) {
  const Matrix k = Matrix::of_rows({{2.0, 1.0}, {1.0, 2.0}});
  const Matrix m = Matrix::diagonal({1.0, -1.0});
  QDL_Record *model = body({k, m});
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(report(), (std::vector<std::string>{
                          text_of(" %3d : %20.14e  Sqrt undefined.  Possible problem with input "
                                  "data.",
                                  1, -std::sqrt(3.0)),
                          text_of(" %3d : %20.14e  %20.14e", 2, std::sqrt(3.0),
                                  std::sqrt(std::sqrt(3.0)) / kTwoPi)}));
  const Matrix t = transformation_of(model);
  const Matrix products = t.transposed() * (m * t);
  EXPECT_LT(products(0, 0), 0.0);
  EXPECT_NEAR(products(1, 1), 1.0, 1e-14);
  // Of the first, whose mass is negative, the table has the stiffness and a mass of one.
  const Matrix stiffness = t.transposed() * (k * t);
  expect_near(eigenvalues_of(model), {stiffness(0, 0), stiffness(1, 1)}, 1e-14);
  expect_only_warnings({});
}

TEST_F(Orthonormalize, IgnoresImaginaryParts) {
  QDL_Record *model = body({Matrix::of_rows({{1.0, 2.0}, {2.0, 1.0}}), Matrix::diagonal({1, -1})});
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  const auto text = [](const char *part) {
    return std::string(
               "Flexible component is not physically meaningful\n"
               "It contains an eigenvalue with a nonzero imaginary part, ") +
           part + "\nThis imaginary part is being ignored.  Please verify that this is acceptable.";
  };
  expect_only_warnings({text("1.732051"), text("-1.732051")});
  EXPECT_EQ(QDL_ModeCount(model), 2);
}

TEST_F(Orthonormalize, LeavesOrthonormalModesInTheirFile) {
  QDL_Record *model = body(diagonal({1.0, 2.0, 3.0}, {1.0, 1.0, 1.0}));
  const std::vector<Values> before = modes_of(model);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(transformation_of(model).values, Matrix::identity(3).values);
  EXPECT_EQ(modes_of(model), before);
  EXPECT_FALSE(rewrote_modes());

  // Nothing is left to be done, also where unit masses are asked for.
  for (const std::int32_t normalize : {0, 1}) {
    clear_messages();
    QDL_SetShouldMassNormalizeModes(model, normalize);
    ASSERT_EQ(QDL_OrthoNormalize(model), 1);
    expect_no_messages();
    EXPECT_TRUE(infos.empty());
    EXPECT_EQ(modes_of(model), before);
    EXPECT_EQ(eigenvalues_of(model), (Values{1.0, 2.0, 3.0}));
  }
}

TEST_F(Orthonormalize, ScalesModesOfATableOnRequestOnly) {
  QDL_Record *model = body(diagonal({0.0, 48.0, 5.0}, {4.0, 16.0, -1.0}));
  for (std::int32_t mode = 11; mode <= 13; ++mode)
    for (std::int32_t other = 11; other <= mode; ++other)
      QDL_SetGeneralizedDamping(model, mode, other, 8.0);
  QDL_SetShouldMassNormalizeModes(model, 1);
  ASSERT_EQ(QDL_RebuildEigenvalues(model), 1);
  QDL_SetShouldMassNormalizeModes(model, 0);
  const std::vector<Values> before = modes_of(model);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(transformation_of(model).values, Matrix::identity(3).values);
  EXPECT_EQ(modes_of(model), before);

  QDL_SetShouldMassNormalizeModes(model, 1);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  const Matrix t = transformation_of(model);
  EXPECT_EQ(t.values, Matrix::diagonal({0.5, 0.25, 1.0}).values);
  EXPECT_EQ(modes_of(model), combined(before, t, 3));
  EXPECT_EQ(eigenvalues_of(model), (Values{0.0, 3.0, -5.0}));
  Values masses(9);
  QDL_GenMassFull(model, masses.data(), 3);
  EXPECT_EQ(masses, Matrix::diagonal({1.0, 1.0, -1.0}).values);
  Values damping(9);
  QDL_GenDampFull(model, damping.data(), 3);
  EXPECT_EQ(damping, (Values{2.0, 1.0, 4.0, 1.0, 0.5, 2.0, 4.0, 2.0, 8.0}));

  // On the principal axes the modes begin behind the six axes, with the first that is not rigid.
  model->eigenvalues[0].generalized_mass = 100.0;
  model->eigenvalues[1].generalized_mass = 4.0;
  model->eigenvalues[1].frequency = 20.0;
  model->damping.entries = {{0, 0, 8.0}, {5, 6, 8.0}, {6, 6, 8.0}};
  model->damping_on_principal_axes = true;
  ASSERT_EQ(QDL_RigidBodyModeCount(model), 1);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(model->damping.entries[i].value, Values({8.0, 4.0, 2.0})[i]);
  expect_only_warnings({});
}

// Coupled modes are none of them rigid, so that all have places behind the axes; the new modes
// would count as rigid.
TEST_F(Orthonormalize, DropsTheDampingOfDroppedModesFromThePrincipalAxes) {
  QDL_Record *model =
      body({Matrix::of_rows({{3, 1, 0}, {1, 2, 0}, {0, 0, 5}}), Matrix::diagonal({1.0, 1.0, 0.0})});
  model->damping.entries = {{0, 6, 1.0}, {6, 6, 2.0}, {7, 7, 3.0}, {6, 8, 4.0}, {8, 8, 5.0}};
  model->damping_on_principal_axes = true;
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  ASSERT_EQ(QDL_ModeCount(model), 2);
  Values left;
  for (const auto &entry : model->damping.entries)
    left.push_back(entry.value);
  EXPECT_EQ(left, (Values{1.0, 2.0, 3.0}));
}

// The modes that a table lacks are rigid, as they are for QDL_RigidBodyModeCount(): four of the
// first six, behind which a load is scaled.
TEST_F(Orthonormalize, CountsModesThatTheTableLacks) {
  constexpr std::size_t kModes = 8;
  QDL_Record *model = body({Matrix(kModes), Matrix(kModes)});
  for (const double frequency : {0.0, 0.0, 20.0, 30.0})
    model->eigenvalues.push_back({.frequency = frequency, .generalized_mass = 4.0});
  model->preload = {.values = Values(kModes, 1.0), .processed = 1, .present = true};
  QDL_SetShouldMassNormalizeModes(model, 1);
  ASSERT_EQ(QDL_RigidBodyModeCount(model), 4);
  ASSERT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(model->preload.values, Values(kModes, 1.0));
  EXPECT_EQ(transformation_of(model)(3, 3), 0.5);
}

// Without any matrix the masses are negligible.
TEST_F(Orthonormalize, DropsModesWithoutMatrices) {
  QDL_Record *model = body({Matrix(2), Matrix(2)});
  EXPECT_EQ(QDL_OrthoNormalize(model), 1);
  EXPECT_EQ(QDL_ModeCount(model), 0);
  expect_only_warnings(
      {"Mode 1 is not physically meaningful.\nIt is associated with a zero "
       "generalized mass\n",
       "Mode 2 is not physically meaningful.\nIt is associated with a zero "
       "generalized mass\n"});
}

TEST_F(Orthonormalize, RefusesValuesThatAreNotFinite) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {std::nan(""), infinity, -infinity})
    for (const bool in_mass : {false, true}) {
      clear_messages();
      Pair pair = {Matrix::of_rows({{2.0, 1.0}, {1.0, 2.0}}), Matrix::identity(2)};
      (in_mass ? pair.b : pair.a)(0, 1) = bad;
      QDL_Record *model = body(pair);
      const std::vector<Values> before = modes_of(model);
      EXPECT_EQ(QDL_OrthoNormalize(model), 0);
      expect_only_error(kRefused);
      EXPECT_EQ(QDL_ModeNumber(model, 0), 11);
      EXPECT_EQ(QDL_NumberOfGenStiff(model), 3);
      EXPECT_EQ(QDL_Transformation(model, Values(4).data()), 0);
      EXPECT_EQ(modes_of(model), before);
    }
}

TEST_F(Orthonormalize, NeedsAModelWithModes) {
  EXPECT_EQ(QDL_OrthoNormalize(QDL_Create(1, 1)), 0);
  expect_no_messages();
  EXPECT_EQ(QDL_OrthoNormalize(nullptr), 0);
  expect_only_error("The database has not been initialized.");
}

}  // namespace
