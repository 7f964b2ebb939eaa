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
#include "support/fixture.h"

namespace {

using namespace qdltest;
using qdlflex::GeneralizedEntry;

constexpr double kTwoPi = 6.28318530718;
constexpr double kUntouched = -77.0;

struct Answer {
  std::int32_t result = -1;
  double eigenvalue = kUntouched;
  double frequency = kUntouched;
  double circular = kUntouched;
  double mass = kUntouched;
  double stiffness = kUntouched;
};

Answer ask(QDL_Record *model, std::int32_t mode_number) {
  Answer answer;
  answer.result = QDL_Eigenvalue(model, mode_number, &answer.eigenvalue, &answer.frequency,
                                 &answer.circular, &answer.mass, &answer.stiffness);
  return answer;
}

void expect_answer(const Answer &got, const Answer &wanted) {
  EXPECT_EQ(got.result, wanted.result);
  EXPECT_EQ(got.eigenvalue, wanted.eigenvalue);
  EXPECT_EQ(got.frequency, wanted.frequency);
  EXPECT_EQ(got.circular, wanted.circular);
  EXPECT_EQ(got.mass, wanted.mass);
  EXPECT_EQ(got.stiffness, wanted.stiffness);
}

class Eigenvalue : public MessageFixture {
 protected:
  // Modes 10, 20, 30, ...
  QDL_Record *with_modes(std::int32_t count) {
    QDL_Record *model = QDL_Create(0, count);
    for (std::int32_t mode = 1; mode <= count; ++mode)
      QDL_AddMode(model, 10 * mode);
    return model;
  }
};

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
  const Answer untouched{0};
  expect_answer(ask(with_modes(2), 11), untouched);
  expect_answer(ask(nullptr, 10), untouched);
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
    Answer got = ask(model, 20);
    if (test.wanted.circular != 0.0) {
      EXPECT_DOUBLE_EQ(got.circular, test.wanted.circular);
      EXPECT_DOUBLE_EQ(got.frequency, test.wanted.frequency);
      EXPECT_DOUBLE_EQ(got.eigenvalue, test.wanted.eigenvalue);
      got.circular = test.wanted.circular;
      got.frequency = test.wanted.frequency;
      got.eigenvalue = test.wanted.eigenvalue;
    }
    expect_answer(got, test.wanted);
  }
}

TEST_F(Eigenvalue, ZeroMassHasNoEigenvalue) {
  QDL_Record *model = with_modes(2);
  model->stiffness.entries = {{0, 0, 5.0}};
  model->mass.entries = {{0, 0, 0.0}, {1, 1, 0.0}};
  expect_answer(ask(model, 10), {1, kUntouched, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::infinity(), 0.0, 5.0});
  const Answer none = ask(model, 20);
  EXPECT_EQ(none.result, 1);
  EXPECT_EQ(none.eigenvalue, kUntouched);
  EXPECT_TRUE(std::isnan(none.frequency));
  EXPECT_TRUE(std::isnan(none.circular));
}

// In kilogram, millimetre, second and newton a stiffness of 1 N mm over 1 kg mm^2 is 1000 / s^2.
TEST_F(Eigenvalue, FrequencyAllowsForInconsistentUnits) {
  QDL_Record *model = with_modes(1);
  ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  model->stiffness.entries = {{0, 0, 40.0}};
  model->mass.entries = {{0, 0, 1.0}};
  const Answer got = ask(model, 10);
  EXPECT_EQ(got.eigenvalue, 40.0);
  EXPECT_DOUBLE_EQ(got.circular, 200.0);
  EXPECT_DOUBLE_EQ(got.frequency, 200.0 / kTwoPi);
}

TEST_F(Eigenvalue, FirstOfEqualModeNumbersAnswers) {
  QDL_Record *model = with_modes(2);
  model->mode_numbers = {20, 20};
  model->eigenvalues = {{20, 1.0, 2.0, 3.0, 4.0, 5.0}, {20, 6.0, 7.0, 8.0, 9.0, 10.0}};
  EXPECT_EQ(ask(model, 20).eigenvalue, 1.0);
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
