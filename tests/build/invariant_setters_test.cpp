#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "numerics/qdlinvar.h"
#include "record/invariant_layout.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace {

using Numbers = std::vector<double>;

constexpr double kVector[] = {1.5, 2.5, 3.5};
constexpr double kMatrix[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};

class InvariantSetters : public qdltest::MessageFixture {
 protected:
  // Modes numbered 10, 20, ...
  static QDL_Record *model_with_modes(int modes) {
    QDL_Record *model = QDL_Create(0, 10);
    for (int mode = 1; mode <= modes; ++mode)
      QDL_AddMode(model, 10 * mode);
    return model;
  }

  static const Numbers &values(QDL_Record *model, int number) {
    return model->invariants[static_cast<std::size_t>(number)].values;
  }

  static int flag(int number) { return number < 6 ? number + 17 : number + 16; }

  void expect_unknown_mode(int mode, std::int32_t result) {
    EXPECT_EQ(result, 0);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors[0].starts_with("Mode number " + std::to_string(mode) +
                                      " does not exist.  Requested at line "))
        << errors[0];
    EXPECT_TRUE(errors[0].ends_with(" in file qdlset.\n")) << errors[0];
    clear_messages();
  }
};

}  // namespace

TEST_F(InvariantSetters, TheFirstMustBeAboveZero) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_SetInvar1(model, 2.5), 1);
  EXPECT_EQ(QDL_Exists(model, flag(1)), 1);
  for (const double refused : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), -0.0}) {
    EXPECT_EQ(QDL_SetInvar1(model, refused), 0);
    expect_only_error("Inertia Invariant 1 must be greater than zero");
    clear_messages();
  }
  EXPECT_EQ(QDL_Invar1(model), 2.5);
}

TEST_F(InvariantSetters, RigidOnesReplaceWhatWasDerived) {
  QDL_Record *model = QDL_Create(1, 0);
  QDL_SetNodalMass(model, 1, 4.0);
  EXPECT_EQ(QDL_Invar1(model), 4.0);
  EXPECT_EQ(QDL_SetInvar1(model, 5.0), 1);
  EXPECT_EQ(QDL_SetInvar2(model, kVector), 1);
  const double tensor[] = {11, 22, 33, 12, 13, 23};
  EXPECT_EQ(QDL_SetInvar7(model, tensor), 1);
  QDL_SetNodalMass(model, 1, 6.0);
  EXPECT_EQ(QDL_Invar1(model), 5.0) << "what was set is not derived again";
  EXPECT_EQ(values(model, 2), (Numbers{1.5, 2.5, 3.5}));
  EXPECT_EQ(values(model, 7), (Numbers{11, 12, 13, 12, 22, 23, 13, 23, 33}));
  EXPECT_EQ(QDL_Exists(model, flag(2)), 1);
  EXPECT_EQ(QDL_Exists(model, flag(7)), 1);
  expect_no_messages();
}

TEST_F(InvariantSetters, VectorsOfAModeAreStoredByComponent) {
  for (const int number : {3, 4}) {
    const auto set = number == 3 ? QDL_SetInvar3 : QDL_SetInvar4;
    QDL_Record *model = model_with_modes(3);
    EXPECT_EQ(QDL_Exists(model, flag(number)), 0);
    EXPECT_EQ(set(model, 20, kVector), 1);
    EXPECT_EQ(values(model, number), (Numbers{0, 1.5, 0, 0, 2.5, 0, 0, 3.5, 0}));
    EXPECT_EQ(QDL_Exists(model, flag(number)), 1);
  }
  expect_no_messages();
}

TEST_F(InvariantSetters, TheFifthStaysAntisymmetric) {
  QDL_Record *model = model_with_modes(2);
  EXPECT_EQ(QDL_SetInvar5(model, 20, 10, kVector), 1);
  EXPECT_EQ(values(model, 5), (Numbers{0, -1.5, 0, -2.5, 0, -3.5, 1.5, 0, 2.5, 0, 3.5, 0}));
  const double nearly_zero[] = {1e-8, -1e-8, 0.0};
  EXPECT_EQ(QDL_SetInvar5(model, 10, 10, nearly_zero), 1);
  expect_no_messages();
  EXPECT_EQ(QDL_SetInvar5(model, 20, 20, kVector), 1);
  expect_only_warnings(
      {"I5(20, 20) is not zero.\n   (1.50000000e+00, 2.50000000e+00, 3.50000000e+00)"});
  EXPECT_EQ(values(model, 5),
            (Numbers{-1e-8, -1.5, 1e-8, -2.5, -0.0, -3.5, 1.5, -1.5, 2.5, -2.5, 3.5, -3.5}));
}

TEST_F(InvariantSetters, TheSixthIsRecordedAsUnitMasses) {
  QDL_Record *model = model_with_modes(3);
  const double diagonal[] = {1.0, 1.0, 0.5};
  EXPECT_EQ(QDL_SetInvar6(model, diagonal), 0);
  expect_only_error("Inertia Invariant 6 must be an identity matrix.");
  EXPECT_EQ(QDL_NumberOfGenMass(model), 2);
  EXPECT_EQ(QDL_Exists(model, 12), 1);
  const double ones[] = {1.0, 1.0, 1.0};
  EXPECT_EQ(QDL_SetInvar6(model, ones), 1);
  ASSERT_EQ(QDL_NumberOfGenMass(model), 5);
  double masses[5];
  std::int32_t rows[5];
  std::int32_t columns[5];
  QDL_GenMassSparse(model, masses, rows, columns);
  const std::int32_t expected[] = {0, 1, 0, 1, 2};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(rows[i], expected[i]);
    EXPECT_EQ(columns[i], expected[i]);
    EXPECT_EQ(masses[i], 1.0);
  }

  QDL_Record *without_modes = QDL_Create(0, 0);
  EXPECT_EQ(QDL_SetInvar6(without_modes, nullptr), 1);
  EXPECT_EQ(QDL_Exists(without_modes, 12), 0);
}

TEST_F(InvariantSetters, MatricesOfAModeOrAPair) {
  QDL_Record *model = model_with_modes(2);
  EXPECT_EQ(QDL_SetInvar8(model, 20, kMatrix), 1);
  EXPECT_EQ(values(model, 8), (Numbers{0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(QDL_SetInvar9(model, 20, 10, kMatrix), 1);
  const Numbers pairs = {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 4, 7, 2, 5, 8, 3, 6, 9,
                         1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(values(model, 9), pairs);
  EXPECT_EQ(QDL_Exists(model, flag(8)), 1);
  EXPECT_EQ(QDL_Exists(model, flag(9)), 1);
  expect_no_messages();

  EXPECT_EQ(QDL_SetInvar9(model, 10, 10, kMatrix), 1);
  expect_only_warnings(
      {"I9(10, 10) is not symmetric.\n"
       "   1.00000000e+00 2.00000000e+00 3.00000000e+00\n"
       "   4.00000000e+00 5.00000000e+00 6.00000000e+00\n"
       "   7.00000000e+00 8.00000000e+00 9.00000000e+00\n"});
  const Numbers lower_wins = {1, 4, 7, 4, 5, 8, 7, 8, 9};
  EXPECT_EQ(Numbers(values(model, 9).begin(), values(model, 9).begin() + 9), lower_wins);
}

TEST_F(InvariantSetters, SymmetryOfTheNinthIsRelativeToLargeValues) {
  struct Case {
    std::size_t upper, lower;
    double first, second;
    bool warns;
  };
  const Case cases[] = {
      {1, 3, 0.5, 0.5 + 9e-9, false},
      {1, 3, 0.5, 0.5 + 2e-8, true},
      {2, 6, 1000.0, 1000.0 + 9e-6, false},
      {2, 6, -1000.0, -1000.0 - 2e-5, true},
      {5, 7, 0.0, -2e-8, true},
      {5, 7, 0.0, NAN, true},
  };
  for (const Case &c : cases) {
    QDL_Record *model = model_with_modes(1);
    double matrix[9] = {};
    matrix[c.upper] = c.first;
    matrix[c.lower] = c.second;
    clear_messages();
    EXPECT_EQ(QDL_SetInvar9(model, 10, 10, matrix), 1);
    EXPECT_EQ(warnings.size(), c.warns ? 1U : 0U) << c.first << " against " << c.second;
  }
}

TEST_F(InvariantSetters, UnknownModesAreReportedNotAdded) {
  QDL_Record *model = model_with_modes(1);
  expect_unknown_mode(11, QDL_SetInvar3(model, 11, kVector));
  expect_unknown_mode(12, QDL_SetInvar4(model, 12, kVector));
  expect_unknown_mode(13, QDL_SetInvar5(model, 13, 14, kVector));
  expect_unknown_mode(14, QDL_SetInvar5(model, 10, 14, kVector));
  expect_unknown_mode(15, QDL_SetInvar8(model, 15, kMatrix));
  expect_unknown_mode(16, QDL_SetInvar9(model, 16, 17, kMatrix));
  expect_unknown_mode(17, QDL_SetInvar9(model, 10, 17, kMatrix));
  EXPECT_EQ(QDL_ModeCount(model), 1);
  EXPECT_EQ(model->summary, qdlflex::Summary{});
  for (int number = 1; number <= 9; ++number)
    EXPECT_TRUE(values(model, number).empty()) << number;
}

TEST_F(InvariantSetters, NullHandlesAndArrays) {
  expect_no_model(QDL_SetInvar1(nullptr, 1.0));
  expect_no_model(QDL_SetInvar2(nullptr, kVector));
  expect_no_model(QDL_SetInvar3(nullptr, 10, kVector));
  expect_no_model(QDL_SetInvar4(nullptr, 10, kVector));
  expect_no_model(QDL_SetInvar5(nullptr, 10, 10, kVector));
  expect_no_model(QDL_SetInvar6(nullptr, kVector));
  expect_no_model(QDL_SetInvar7(nullptr, kMatrix));
  expect_no_model(QDL_SetInvar8(nullptr, 10, kMatrix));
  expect_no_model(QDL_SetInvar9(nullptr, 10, 10, kMatrix));

  QDL_Record *model = model_with_modes(1);
  EXPECT_EQ(QDL_SetInvar2(model, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar3(model, 10, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar4(model, 10, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar5(model, 10, 10, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar6(model, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar7(model, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar8(model, 10, nullptr), 0);
  EXPECT_EQ(QDL_SetInvar9(model, 10, 10, nullptr), 0);
  expect_no_messages();
}

// The other modes keep what the file has for them.
TEST_F(InvariantSetters, TheFirstValueOfAReadModelKeepsTheFilesOthers) {
  const std::string name = file("body.qdl", qdltest::build_file(60).bytes);
  const auto sample = qdltest::sample_model();  // modes 7 and 9
  QDL_Record *model = QDL_CreateFromQDL(name.c_str());
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(QDL_SetInvar3(model, 9, kVector), 1);
  EXPECT_EQ(QDL_SetInvar5(model, 7, 9, kVector), 1);
  EXPECT_EQ(QDL_SetInvar9(model, 9, 9, Numbers(9).data()), 1);

  Numbers third = sample.invariants[3];
  Numbers fifth = sample.invariants[5];
  Numbers ninth = sample.invariants[9];
  for (std::size_t c = 0; c < 3; ++c) {
    third[2 * c + 1] = kVector[c];
    fifth[2 * c + 1] = kVector[c];
    fifth[6 + 2 * c] = -kVector[c];
  }
  std::fill(ninth.begin() + 27, ninth.end(), 0.0);
  EXPECT_EQ(values(model, 3), third);
  EXPECT_EQ(values(model, 5), fifth);
  EXPECT_EQ(values(model, 9), ninth);
  expect_no_messages();
}

TEST_F(InvariantSetters, TheFirstValueLeavesADisownedBlockOfTheFileAlone) {
  const std::string name = file("body.qdl", qdltest::build_file(60).bytes);
  QDL_Record *model = QDL_CreateFromQDL(name.c_str());
  ASSERT_EQ(QDL_PermuteQDL(model, nullptr, 2, 1.0, nullptr, nullptr), 1);
  EXPECT_EQ(QDL_SetInvar3(model, 9, kVector), 1);
  EXPECT_EQ(values(model, 3), (Numbers{0, 1.5, 0, 2.5, 0, 3.5}));
}

TEST_F(InvariantSetters, ModesAddedLaterHaveZeros) {
  QDL_Record *model = model_with_modes(1);
  QDL_SetInvar3(model, 10, kVector);
  QDL_AddMode(model, 20);
  QDL_SetInvar4(model, 20, kVector);
  QDL_SetInvar3(model, 20, Numbers(3).data());
  EXPECT_EQ(values(model, 3), (Numbers{1.5, 0, 2.5, 0, 3.5, 0}));
}

// The value that tells its place, or none outside the shape.
double coded(const qdlflex::InvariantShape &known, std::size_t i, std::size_t j, std::size_t k) {
  const auto &[rows, columns, layers] = known.extents;
  return i < rows && j < columns && k < layers ? static_cast<double>(1 + 100 * i + 10 * j + k) : 0;
}

// The largest arrays: one step of the layout for every extent, growing and shrinking.
TEST(InvariantLayout, KeepsWhatBothNumbersOfModesHave) {
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
    QDL_Record record;
    qdlflex::InvariantSlot &slot = record.invariants[static_cast<std::size_t>(number)];
    const qdlflex::InvariantShape first = qdlflex::invariant_shape(number, 3);
    for (const int modes : {3, 5, 2}) {
      const qdlflex::InvariantShape shape = qdlflex::invariant_shape(number, modes);
      qdlflex::lay_out_invariant(record, number, modes);
      ASSERT_EQ(slot.values.size(), shape.size());
      ASSERT_EQ(slot.modes, modes);
      for (std::size_t i = 0; i < shape.extents[0]; ++i) {
        for (std::size_t j = 0; j < shape.extents[1]; ++j) {
          for (std::size_t k = 0; k < shape.extents[2]; ++k) {
            double &value = slot.values[shape.offset(i, j, k)];
            if (modes == 3)
              value = coded(first, i, j, k);
            EXPECT_EQ(value, coded(first, i, j, k)) << "invariant " << number;
          }
        }
      }
    }
  }
}

TEST_F(InvariantSetters, ArraysBeyondAnyMemoryAreAnAllocationFailure) {
  EXPECT_THROW(static_cast<void>(qdlflex::invariant_shape(9, 2000000000).size()),
               std::length_error);
  const double ones[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  const auto count = qdltest::sweep(
      qdltest::Door::kMemory, qdltest::Persistence::kEverAfter,
      [&] {
        clear_messages();
        QDL_Record *model = QDL_Create(0, 2);
        if (model != nullptr && QDL_AddMode(model, 10) == 0)
          QDL_SetInvar9(model, 10, 10, ones);
        return model;
      },
      [&](QDL_Record *model, bool fired) {
        EXPECT_EQ(errors.empty(), !fired);
        if (model == nullptr)
          return;
        EXPECT_EQ(QDL_Exists(model, flag(9)) != 0, !fired);
        EXPECT_EQ(values(model, 9).size(), fired ? 0U : 9U);
        QDL_DeReference(model);
      });
  EXPECT_GT(count, 1U);
}
