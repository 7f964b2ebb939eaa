// Eigenvalue data of modes, from the table or from generalized stiffness and mass.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "numerics/eigenvalue_lookup.h"
#include "numerics/modal_body.h"

namespace {

using namespace qdltest;
using qdlflex::GeneralizedEntry;

constexpr double kTwoPi = 6.28318530718;
constexpr double kUntouched = -77.0;

// Result, eigenvalue, frequency, circular frequency, generalized mass and stiffness.
using Answer = std::array<double, 6>;

constexpr Answer kNoAnswer = {0, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};

Answer ask(QDL_Record *model, std::int32_t mode_number) {
  Answer answer = kNoAnswer;
  auto &[result, eigenvalue, frequency, circular, mass, stiffness] = answer;
  result =
      QDL_Eigenvalue(model, mode_number, &eigenvalue, &frequency, &circular, &mass, &stiffness);
  return answer;
}

void expect_answer(const Answer &got, const Answer &wanted) {
  for (std::size_t i = 0; i < got.size(); ++i)
    EXPECT_DOUBLE_EQ(got[i], wanted[i]) << i;
}

class Eigenvalue : public MessageFixture {};

TEST_F(Eigenvalue, TableAnswersForTheModesThatItHas) {
  QDL_Record *model = with_modes(2);
  model->eigenvalues = {{10, 1.0, 2.0, 3.0, 4.0, 5.0}};
  QDL_SetGeneralizedStiffness(model, 10, 10, 900.0);
  QDL_SetGeneralizedStiffness(model, 20, 20, 9.0);
  QDL_SetGeneralizedMass(model, 20, 20, 4.0);
  expect_answer(ask(model, 10), {1, 1.0, 2.0, 3.0, 4.0, 5.0});
  expect_answer(ask(model, 20), {1, 2.25, 1.5 / kTwoPi, 1.5, 4.0, 9.0});
  EXPECT_EQ(QDL_Eigenvalue(model, 20, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
}

TEST_F(Eigenvalue, UnknownModeLeavesOutputsAlone) {
  EXPECT_EQ(ask(with_modes(2), 11), kNoAnswer);
  EXPECT_EQ(ask(nullptr, 10), kNoAnswer);
  expect_no_messages();
}

struct ListCase {
  const char *what;
  std::vector<GeneralizedEntry> stiffness, mass;
  Answer wanted;  // of the second of three modes
};

TEST_F(Eigenvalue, WalksTheListsToTheModeOrAnOffDiagonalEntry) {
  const Answer nothing{0, 0.0, 0.0, 0.0, 0.0, 0.0};
  const Answer nine_by_four{1, 2.25, 1.5 / kTwoPi, 1.5, 4.0, 9.0};
  const std::vector<ListCase> cases = {
      {"first of equal entries",
       {{0, 0, 1.0}, {1, 1, 9.0}, {1, 1, 100.0}},
       {{1, 1, 4.0}},
       nine_by_four},
      {"off-diagonal behind", {{1, 1, 9.0}, {0, 1, 5.0}}, {{1, 1, 4.0}, {2, 0, 5.0}}, nine_by_four},
      {"off-diagonal stiffness before", {{0, 2, 5.0}, {1, 1, 9.0}}, {{1, 1, 4.0}}, nothing},
      {"off-diagonal mass before", {{1, 1, 9.0}}, {{0, 1, 0.0}, {1, 1, 4.0}}, nothing},
      {"off-diagonal without the mode", {{1, 1, 9.0}}, {{0, 0, 1.0}, {0, 1, 1.0}}, nothing},
      {"negative stiffness",
       {{1, 1, -9.0}},
       {{1, 1, 4.0}},
       {1, -2.25, -1.5 / kTwoPi, -1.5, 4.0, -9.0}},
      {"no stiffness", {{0, 0, 3.0}}, {{1, 1, 4.0}}, {1, 0.0, 0.0, 0.0, 4.0, 0.0}},
      {"no mass, stiff", {{1, 1, 4.0}}, {}, {1, 1e16, 1e8 / kTwoPi, 1e8, 4e-16, 4.0}},
      {"no mass, soft", {{1, 1, 0.25}}, {}, {1, 2.5e15, 5e7 / kTwoPi, 5e7, 1e-16, 0.25}},
      {"nothing", {}, {}, {1, 0.0, 0.0, 0.0, 1e-16, 0.0}},
      {"foreign indices",
       {{-1, -1, 7.0}, {1, 1, 9.0}},
       {{500, 500, 1.0}, {1, 1, 4.0}},
       nine_by_four},
  };
  for (const ListCase &test : cases) {
    SCOPED_TRACE(test.what);
    QDL_Record *model = with_modes(3);
    model->stiffness.entries = test.stiffness;
    model->mass.entries = test.mass;
    expect_answer(ask(model, 20), test.wanted);
  }
}

TEST_F(Eigenvalue, ZeroMassHasNoEigenvalue) {
  QDL_Record *model = with_modes(2);
  model->stiffness.entries = {{0, 0, 5.0}};
  model->mass.entries = {{0, 0, 0.0}, {1, 1, 0.0}};
  expect_answer(ask(model, 10), {1, kUntouched, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::infinity(), 0.0, 5.0});
  const auto [result, eigenvalue, frequency, circular, mass, stiffness] = ask(model, 20);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(eigenvalue, kUntouched);
  EXPECT_TRUE(std::isnan(frequency) && std::isnan(circular));
}

// In kilogram, millimetre, second and newton a stiffness of 1 N mm over 1 kg mm^2 is 1000 / s^2.
TEST_F(Eigenvalue, FrequencyAllowsForInconsistentUnits) {
  QDL_Record *model = with_modes(1);
  ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  model->stiffness.entries = {{0, 0, 40.0}};
  model->mass.entries = {{0, 0, 1.0}};
  expect_answer(ask(model, 10), {1, 40.0, 200.0 / kTwoPi, 200.0, 1.0, 40.0});
}

TEST_F(Eigenvalue, FirstOfEqualModeNumbersAnswers) {
  QDL_Record *model = with_modes(2);
  model->mode_numbers = {20, 20};
  model->eigenvalues = {{20, 1.0, 2.0, 3.0, 4.0, 5.0}, {20, 6.0, 7.0, 8.0, 9.0, 10.0}};
  EXPECT_EQ(ask(model, 20)[1], 1.0);
}

// Bits instead of values, so that NaN equals itself.
std::array<std::uint64_t, 5> bits(const qdlflex::EigenEntry &entry) {
  return {std::bit_cast<std::uint64_t>(entry.eigenvalue),
          std::bit_cast<std::uint64_t>(entry.frequency),
          std::bit_cast<std::uint64_t>(entry.circular_frequency),
          std::bit_cast<std::uint64_t>(entry.generalized_mass),
          std::bit_cast<std::uint64_t>(entry.generalized_stiffness)};
}

TEST_F(Eigenvalue, AllAtOnceEqualsOneByOne) {
  std::mt19937 random(4711);  // NOLINT: the same lists in every run
  const auto below = [&](int limit) {
    return static_cast<std::int32_t>(random() % static_cast<std::mt19937::result_type>(limit));
  };
  const auto list = [&](std::int32_t modes) {
    std::vector<GeneralizedEntry> entries(random() % 9);
    for (GeneralizedEntry &entry : entries) {
      entry.row = below(modes + 2) - 1;
      entry.column = below(6) == 0 ? below(modes) : entry.row;
      entry.value = below(5) - 1.0;
    }
    return entries;
  };
  for (int round = 0; round < 500; ++round) {
    const std::int32_t modes = 1 + below(6);
    QDL_Record *model = with_modes(modes);
    model->stiffness.entries = list(modes);
    model->mass.entries = list(modes);
    model->eigenvalues.resize(static_cast<std::size_t>(below(3)), {1, 2, 3, 4, 5, 6});
    const auto all = qdlflex::all_eigenvalues(*model);
    ASSERT_EQ(all.size(), static_cast<std::size_t>(modes));
    for (std::int32_t mode = 0; mode < modes; ++mode) {
      const auto one = qdlflex::eigenvalue_of(*model, mode);
      const auto &same = all[static_cast<std::size_t>(mode)];
      ASSERT_EQ(one.has_value(), same.has_value());
      if (one) {
        EXPECT_EQ(bits(one->entry), bits(same->entry));
        EXPECT_EQ(one->entry.mode_number, same->entry.mode_number);
        EXPECT_EQ(one->has_eigenvalue, same->has_eigenvalue);
      }
    }
    QDL_UnLink(model);
  }
}

}  // namespace
