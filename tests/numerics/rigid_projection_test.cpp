// Rigid modes projected on the rigid-body axes, and the damping moved there.

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

#include "numerics/modal_body.h"
#include "principal_axes_body.h"
#include "support/fault.h"

namespace {

using namespace qdltest;

using Table = std::array<Values, kAxes>;
using Square = std::vector<Values>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMarker = -77.0;

Table project(QDL_Record *model, std::int32_t n, std::int32_t result = 1) {
  Table table;
  std::array<double *, kAxes> rows{};
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    table[axis].assign(static_cast<std::size_t>(std::max(n, 0)), kMarker);
    rows[axis] = table[axis].data();
  }
  EXPECT_EQ(QDL_RigidModes2KORVO(model, rows.data(), n), result);
  return table;
}

class RigidProjection : public PrincipalAxes {};

TEST_F(RigidProjection, OfTheRigidMotionsIsTheIdentity) {
  const Body body = symmetric_body();
  std::vector<Mode> modes;
  for (std::size_t axis = 0; axis < kAxes; ++axis)
    modes.push_back(body.rigid_motion(axis, true));
  for (Six &six : modes[1])
    six[1] *= -4.0;
  const Table table = project(make(body, modes, Values(6)), 6);
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    for (std::size_t mode = 0; mode < kAxes; ++mode)
      EXPECT_EQ(table[axis][mode], axis != mode ? 0.0 : mode == 1 ? -0.25 : 1.0) << axis << mode;
  }
  expect_no_messages();
}

TEST_F(RigidProjection, WeighsWithTheNodalMasses) {
  const Body body = lopsided_body();
  std::vector<Mode> modes = random_modes(body, 4);
  modes[2].assign(body.points.size(), Six{});  // at rest
  modes[3][4][0] = kNaN;                       // not a number anywhere
  const Table table = project(make(body, modes, Values(4)), 4);
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    for (std::size_t mode = 0; mode < 2; ++mode) {
      const double along = body.product(body.rigid_motion(axis, false), modes[mode]);
      EXPECT_NEAR(table[axis][mode], along / body.product(modes[mode], modes[mode]), 1e-14);
    }
    EXPECT_EQ(table[axis][2], 0.0);
    EXPECT_EQ(table[axis][3], 0.0);
  }
}

TEST_F(RigidProjection, DropsWhatIsOnlyRounding) {
  const Body body = {{{{0, 0, 0}, 1.0}}};
  const Table table = project(make(body, {{{1, 0.9e-10, 1.1e-10, 0, 0, 0}}}, {0}), 1);
  EXPECT_EQ(table[0][0], 1.0);
  EXPECT_EQ(table[1][0], 0.0);
  EXPECT_EQ(table[2][0], 1.1e-10);
}

TEST_F(RigidProjection, FailsWithoutNodesOrModeOrTable) {
  QDL_Record *empty = make({}, {}, {0});
  EXPECT_EQ(QDL_RigidModes2KORVO(empty, nullptr, 0), 1);
  EXPECT_EQ(QDL_RigidModes2KORVO(empty, nullptr, 1), 0);
  expect_no_messages();
  EXPECT_EQ(project(empty, 1, 0)[0], Values{kMarker});
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_TRUE(errors[0].starts_with("Failed to allocate memory at line ")) << errors[0];
  EXPECT_TRUE(errors[0].ends_with(" in file qdltools.\n")) << errors[0];

  const Body body = symmetric_body();
  clear_messages();
  project(make(body, random_modes(body, 2), Values(2)), 3, 0);
  expect_only_error("Problem reading mode shape -1");
  clear_messages();
  project(make(body, {}, {0}), 1, 0);
  expect_only_error("Problem reading mode shape 10");
  clear_messages();
  project(nullptr, 1, 0);
  expect_only_error("The database has not been initialized.");
}

class PrincipalDamping : public PrincipalAxes {
 protected:
  // A full symmetric damping of all modes.
  static Square set_damping(QDL_Record *model) {
    Numbers numbers(3);
    const auto modes = model->mode_numbers.size();
    Square damping(modes, Values(modes));
    for (std::size_t i = 0; i < modes; ++i) {
      for (std::size_t j = 0; j <= i; ++j) {
        damping[i][j] = damping[j][i] = numbers.next();
        QDL_SetGeneralizedDamping(model, model->mode_numbers[i], model->mode_numbers[j],
                                  damping[i][j]);
      }
    }
    return damping;
  }

  // By plain sums: each index of the result is a combination of modes.
  static Square expected(const Square &damping, const Table &table) {
    const std::size_t rigid = table[0].size();
    const auto weight = [&](std::size_t index, std::size_t mode) {
      if (index < kAxes)
        return mode < rigid ? table[index][mode] : 0.0;
      return mode == index - kAxes + rigid ? 1.0 : 0.0;
    };
    const std::size_t order = damping.size() - rigid + kAxes;
    Square result(order, Values(order));
    for (std::size_t a = 0; a < order; ++a)
      for (std::size_t b = 0; b < order; ++b)
        for (std::size_t i = 0; i < damping.size(); ++i)
          for (std::size_t j = 0; j < damping.size(); ++j)
            result[a][b] += weight(a, i) * damping[i][j] * weight(b, j);
    return result;
  }

  static Square full(QDL_Record *model, std::size_t order) {
    Values values(order * order);
    EXPECT_EQ(QDL_GenDampFull(model, values.data(), static_cast<std::int32_t>(order)), 1);
    Square matrix;
    for (std::size_t i = 0; i < order; ++i) {
      const auto row = values.begin() + static_cast<std::ptrdiff_t>(i * order);
      matrix.emplace_back(row, row + static_cast<std::ptrdiff_t>(order));
    }
    return matrix;
  }

  static void expect_near(const Square &found, const Square &wanted) {
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t i = 0; i < found.size(); ++i)
      qdltest::expect_near(found[i], wanted[i], 1e-13);
  }

  static Square selected(QDL_Record *model, const std::vector<std::int32_t> &modes,
                         std::int32_t result = 1) {
    const std::size_t order = modes.size() + kAxes;
    Square matrix(order, Values(order, kMarker));
    std::vector<double *> rows;
    for (Values &row : matrix)
      rows.push_back(row.data());
    EXPECT_EQ(QDL_GenDampPrincipalAndSelected(
                  model, rows.data(), static_cast<std::int32_t>(modes.size()), modes.data()),
              result);
    return matrix;
  }
};

// With six rigid modes, with three, and with none, where there is nothing to project.
TEST_F(PrincipalDamping, ReplacesTheRigidModesByTheAxes) {
  const Body body = lopsided_body();
  const std::vector<std::pair<Values, std::int32_t>> cases = {
      {{0, 0, 0, 0, 0, 0, 12, 15}, 6}, {{0, 0, 20, 30, 40}, 4}, {{10, 11, 12, 13, 14, 15, 16}, 0}};
  for (const auto &[frequencies, rigid] : cases) {
    QDL_Record *model = make(body, random_modes(body, frequencies.size()), frequencies);
    ASSERT_EQ(QDL_RigidBodyModeCount(model), rigid);
    const Square damping = set_damping(model);
    const Square wanted = expected(damping, project(model, rigid));
    EXPECT_EQ(QDL_DampingOnPrincipalAxes(model), 1);
    expect_near(full(model, wanted.size()), wanted);

    const auto entries = model->damping.entries.size();
    const auto order = wanted.size();
    EXPECT_EQ(entries, rigid == 0 ? damping.size() * damping.size() : order * order);
    EXPECT_EQ(QDL_DampingOnPrincipalAxes(model), 1);
    EXPECT_EQ(model->damping.entries.size(), entries);
    expect_near(full(model, order), wanted);
  }
  expect_no_messages();
}

TEST_F(PrincipalDamping, ListsSignificantEntriesRowByRow) {
  QDL_Record *model = make({}, {}, {10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(QDL_DampingOnPrincipalAxes(model), 1);
  EXPECT_FALSE(model->damping_on_principal_axes);  // nothing was there to move
  QDL_SetGeneralizedDamping(model, 30, 10, 5.0);
  QDL_SetGeneralizedDamping(model, 20, 20, 1e-10);
  QDL_SetGeneralizedDamping(model, 10, 10, -2e-10);
  EXPECT_EQ(QDL_DampingOnPrincipalAxes(model), 1);
  ASSERT_EQ(QDL_NumberOfGenDamp(model), 3);
  Values values(3);
  std::vector<std::int32_t> rows(3);
  std::vector<std::int32_t> columns(3);
  EXPECT_EQ(QDL_GenDampSparse(model, values.data(), rows.data(), columns.data()), 1);
  EXPECT_EQ(values, (Values{-2e-10, 5, 5}));
  EXPECT_EQ(rows, (std::vector<std::int32_t>{6, 6, 8}));
  EXPECT_EQ(columns, (std::vector<std::int32_t>{6, 8, 6}));
}

TEST_F(PrincipalDamping, OfAxesAndSelectedModes) {
  const Body body = lopsided_body();
  for (const Values &frequencies :
       {Values{0, 0, 0, 0, 0, 0, 12, 15, 18}, Values{0, 0, 0, 20, 30}}) {
    QDL_Record *model = make(body, random_modes(body, frequencies.size()), frequencies);
    const auto last = static_cast<std::int32_t>(10 * frequencies.size());
    const auto rigid = static_cast<std::size_t>(QDL_RigidBodyModeCount(model));
    const Square wanted =
        expected(set_damping(model), project(model, QDL_RigidBodyModeCount(model)));
    const Square found = selected(model, {20, 33, last});
    expect_only_warnings(
        {"Ignoring damping on requested mode 20 because it is a rigid body mode.\n"});
    clear_messages();
    // Places 6 and 7 are a rigid mode and no mode at all.
    const std::size_t last_index = frequencies.size() - 1 - rigid + kAxes;
    const std::array<std::optional<std::size_t>, 9> place = {0, 1, 2, 3, 4, 5, {}, {}, last_index};
    for (std::size_t i = 0; i < place.size(); ++i) {
      for (std::size_t j = 0; j < place.size(); ++j)
        EXPECT_NEAR(found[i][j], place[i] && place[j] ? wanted[*place[i]][*place[j]] : 0.0, 1e-13);
    }
    EXPECT_EQ(selected(model, {})[2][5], found[2][5]);
    expect_no_messages();
  }
}

// The count is 0 then, and the entries' indices are raised once by the move and once more.
TEST_F(PrincipalDamping, CountsAsBehindSixRigidModesWhenModesAreCoupled) {
  for (const auto set : {QDL_SetGeneralizedStiffness, QDL_SetGeneralizedMass}) {
    QDL_Record *model = make({}, {}, {});
    model->planned_modes = 14;
    for (std::int32_t mode = 1; mode <= 14; ++mode)
      QDL_AddMode(model, mode);
    set(model, 1, 2, 1.0);
    QDL_SetGeneralizedDamping(model, 2, 3, 7.0);
    QDL_SetGeneralizedDamping(model, 13, 13, 4.0);  // beyond the modes when raised
    const Square found = selected(model, {8, 9, 13});
    expect_only_warnings(
        {"Stiffness or mass matrix has off-diagonal terms then the damping matrix will assume the "
         "first 6 modes are rigid body modes."});
    Square wanted(9, Values(9));
    wanted[6][7] = wanted[7][6] = 7.0;
    EXPECT_EQ(found, wanted);
    clear_messages();
  }
}

// As read from a file that somebody else made.
TEST_F(PrincipalDamping, SkipsIndicesThatNameNothing) {
  constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();
  QDL_Record *model = make({}, {}, {0, 0, 20});
  model->damping.entries = {{-1, 0, 1.0}, {kHuge, kHuge, 2.0}, {9, 9, 3.0}, {0, 0, 4.0}};
  model->damping_on_principal_axes = true;
  Square wanted(7, Values(7));
  wanted[0][0] = 4.0;
  EXPECT_EQ(selected(model, {30}), wanted);
  QDL_SetGeneralizedStiffness(model, 10, 20, 1.0);
  wanted[0][0] = 0.0;
  wanted[6][6] = 4.0;  // 6 + 0 is the first mode behind two rigid ones
  EXPECT_EQ(selected(model, {30}), wanted);
}

TEST_F(PrincipalDamping, StaysAsItWasWhenAModeIsMissing) {
  const Body body = symmetric_body();
  QDL_Record *model = make(body, {}, {0, 0, 20});
  const Square zeros(7, Values(7));
  EXPECT_EQ(selected(model, {30}, 0), zeros);  // no damping yet
  expect_no_messages();
  const Square damping = set_damping(model);
  EXPECT_EQ(QDL_DampingOnPrincipalAxes(model), 0);
  expect_only_error("Problem reading mode shape 10");
  EXPECT_EQ(full(model, 3), damping);
  EXPECT_EQ(selected(model, {30}, 0), zeros);

  clear_messages();
  double *rows[7] = {};
  const std::int32_t number = 30;
  EXPECT_EQ(QDL_GenDampPrincipalAndSelected(nullptr, rows, 1, &number), 0);
  EXPECT_EQ(QDL_GenDampPrincipalAndSelected(model, rows, 1, &number), 0);
  EXPECT_EQ(QDL_GenDampPrincipalAndSelected(model, nullptr, 1, &number), 0);
  EXPECT_EQ(QDL_GenDampPrincipalAndSelected(model, rows, -1, &number), 0);
  EXPECT_EQ(QDL_GenDampPrincipalAndSelected(model, rows, 0x7FFFFFFF, &number), 0);
  expect_no_messages();
  EXPECT_EQ(QDL_DampingOnPrincipalAxes(nullptr), 0);
  expect_only_error("The database has not been initialized.");
}

TEST_F(PrincipalDamping, IsUnchangedWhenMemoryRunsOut) {
  const Body body = lopsided_body();
  QDL_Record *model = make(body, random_modes(body, 8), {0, 0, 0, 0, 0, 0, 12, 15});
  const Square damping = set_damping(model);
  const std::size_t faults = sweep(
      Door::kMemory, Persistence::kOnce, [&] { return QDL_DampingOnPrincipalAxes(model); },
      [&](std::int32_t result, bool fired) {
        EXPECT_EQ(result, fired ? 0 : 1);
        EXPECT_EQ(errors.size(), fired ? 1U : 0U);
        clear_messages();
        if (fired) {
          EXPECT_EQ(full(model, 8), damping);
        }
      });
  EXPECT_GT(faults, 4U);
}

}  // namespace
