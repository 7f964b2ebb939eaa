// Generalized stiffness, mass and damping as lists, full matrices and matrices of selected modes.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <vector>

#include "numerics/modal_body.h"
#include "record/record.h"
#include "support/fault.h"

namespace {

using namespace qdltest;

using Matrix = std::vector<double>;
using Integers = std::vector<std::int32_t>;

constexpr double kMarker = -77.0;

struct Functions {
  const char *name;
  int32_t (*count)(QDL_Record *);
  int32_t (*sparse)(QDL_Record *, double *, int32_t *, int32_t *);
  int32_t (*full)(QDL_Record *, double *, int32_t);
  int32_t (*selected)(QDL_Record *, double **, int32_t, const int32_t *);
};

constexpr Functions kStiffness = {"stiffness", QDL_NumberOfGenStiff, QDL_GenStiffSparse,
                                  QDL_GenStiffFull, QDL_GenStiffSelected};
constexpr Functions kMass = {"mass", QDL_NumberOfGenMass, QDL_GenMassSparse, QDL_GenMassFull,
                             QDL_GenMassSelected};
constexpr Functions kDamping = {"damping", QDL_NumberOfGenDamp, QDL_GenDampSparse, QDL_GenDampFull,
                                nullptr};

struct Entries {
  std::int32_t result = -1;
  Matrix values;
  Integers rows, columns;
};

// One place more than the count, which has to stay as it is.
Entries sparse(const Functions &matrix, QDL_Record *model) {
  const auto count = static_cast<std::size_t>(matrix.count(model));
  Entries entries{-1, Matrix(count + 1, kMarker), Integers(count + 1, -9), Integers(count + 1, -9)};
  entries.result =
      matrix.sparse(model, entries.values.data(), entries.rows.data(), entries.columns.data());
  EXPECT_EQ(entries.values.back(), kMarker);
  EXPECT_EQ(entries.rows.back(), -9);
  EXPECT_EQ(entries.columns.back(), -9);
  entries.values.pop_back();
  entries.rows.pop_back();
  entries.columns.pop_back();
  return entries;
}

Matrix full(const Functions &matrix, QDL_Record *model, std::int32_t n, std::int32_t result = 1) {
  Matrix values(static_cast<std::size_t>(n * n), kMarker);
  EXPECT_EQ(matrix.full(model, values.data(), n), result);
  return values;
}

Matrix selected(const Functions &matrix, QDL_Record *model, const Integers &modes) {
  const std::size_t n = modes.size();
  Matrix values(n * n, kMarker);
  std::vector<double *> rows;
  for (std::size_t i = 0; i < n; ++i)
    rows.push_back(values.data() + i * n);
  EXPECT_EQ(matrix.selected(model, rows.data(), static_cast<std::int32_t>(n), modes.data()), 1);
  return values;
}

class GeneralizedMatrices : public MessageFixture {
 protected:
  // Entries out of order; the place (0, 2) twice.
  QDL_Record *with_entries(const Functions &matrix) {
    QDL_Record *model = with_modes(3);
    const auto set = &matrix == &kStiffness ? QDL_SetGeneralizedStiffness
                     : &matrix == &kMass    ? QDL_SetGeneralizedMass
                                            : QDL_SetGeneralizedDamping;
    set(model, 30, 30, 9.0);
    set(model, 30, 10, 5.0);
    set(model, 10, 10, 1.0);
    set(model, 10, 30, 7.0);
    return model;
  }
};

TEST_F(GeneralizedMatrices, StoredEntriesComeInEveryShape) {
  for (const Functions *matrix : {&kStiffness, &kMass, &kDamping}) {
    SCOPED_TRACE(matrix->name);
    QDL_Record *model = with_entries(*matrix);
    EXPECT_EQ(matrix->count(model), 4);
    const Entries list = sparse(*matrix, model);
    EXPECT_EQ(list.result, 1);
    EXPECT_EQ(list.values, (Matrix{9, 5, 1, 7}));
    EXPECT_EQ(list.rows, (Integers{2, 2, 0, 0}));
    EXPECT_EQ(list.columns, (Integers{2, 0, 0, 2}));
    EXPECT_EQ(full(*matrix, model, 3), (Matrix{1, 0, 7, 0, 0, 0, 7, 0, 9}));
    EXPECT_EQ(full(*matrix, model, 2), (Matrix{1, 0, 0, 0}));
    EXPECT_EQ(full(*matrix, model, 4), (Matrix{1, 0, 7, 0, 0, 0, 0, 0, 7, 0, 9, 0, 0, 0, 0, 0}));
    if (matrix->selected != nullptr) {
      EXPECT_EQ(selected(*matrix, model, {10, 20, 30}), (Matrix{1, 0, 7, 0, 0, 0, 7, 0, 9}));
      EXPECT_EQ(selected(*matrix, model, {20, 30}), (Matrix{0, 0, 0, 9}));
      EXPECT_EQ(selected(*matrix, model, {-5, 10, 11, 30}),
                (Matrix{0, 0, 0, 0, 0, 1, 0, 7, 0, 0, 0, 0, 0, 7, 0, 9}));
    }
  }
  expect_no_messages();
}

// A binary search begins in the middle, at 20, and looks for 10 and 30 on the wrong side.
TEST_F(GeneralizedMatrices, AnUnsortedSelectionLosesEntries) {
  QDL_Record *model = with_entries(kStiffness);
  const Matrix values = selected(kStiffness, model, {30, 20, 10});
  EXPECT_EQ(values, (Matrix{0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(GeneralizedMatrices, EntriesOutsideTheMatrixAreLeftOut) {
  QDL_Record *model = with_modes(2);
  model->mode_numbers = {-1, 5};
  for (qdlflex::GeneralizedMatrix *matrix : {&model->stiffness, &model->mass, &model->damping})
    matrix->entries = {{-1, 0, 3.0}, {0, 7, 3.0}, {2, 2, 3.0}, {-1, -1, 3.0}, {1, 1, 4.0}};
  for (const Functions &matrix : {kStiffness, kMass, kDamping}) {
    EXPECT_EQ(full(matrix, model, 2), (Matrix{0, 0, 0, 4})) << matrix.name;
    EXPECT_EQ(sparse(matrix, model).values.size(), 5U);
  }
  EXPECT_EQ(selected(kMass, model, {-1, 5}), (Matrix{0, 0, 0, 4}));
}

TEST_F(GeneralizedMatrices, TheEigenvalueTableStandsInForMissingLists) {
  QDL_Record *model = with_modes(2);
  model->eigenvalues = {{10, 0, 0, 0, 2.0, 3.0}, {20, 0, 0, 0, 4.0, 5.0}};
  EXPECT_EQ(full(kStiffness, model, 2), (Matrix{3, 0, 0, 5}));
  EXPECT_EQ(full(kMass, model, 2), (Matrix{2, 0, 0, 4}));
  EXPECT_EQ(selected(kMass, model, {20}), (Matrix{4}));
  EXPECT_EQ(sparse(kMass, model).columns, (Integers{0, 1}));
  EXPECT_EQ(QDL_NumberOfGenMass(model), 2);
}

TEST_F(GeneralizedMatrices, MissingMassIsNegligibleBesideTheStiffness) {
  QDL_Record *model = with_modes(4);
  EXPECT_EQ(sparse(kMass, model).values, (Matrix{1e-16, 1e-16, 1e-16, 1e-16}));
  EXPECT_EQ(sparse(kStiffness, model).values, (Matrix{0, 0, 0, 0}));

  QDL_SetGeneralizedStiffness(model, 10, 10, 400.0);
  QDL_SetGeneralizedStiffness(model, 20, 20, 0.5);
  QDL_SetGeneralizedStiffness(model, 20, 30, 1.0);
  QDL_SetGeneralizedStiffness(model, 30, 30, 900.0);  // out of sight behind the off-diagonal entry
  EXPECT_EQ(sparse(kMass, model).values, (Matrix{400.0 * 1e-16, 1e-16, 1e-16, 1e-16}));

  // Only the modes that the table lacks.
  model->eigenvalues = {{10, 0, 0, 0, 2.0, 3.0}};
  EXPECT_EQ(sparse(kMass, model).values, (Matrix{2.0, 1e-16, 1e-16, 1e-16}));
}

TEST_F(GeneralizedMatrices, ModelsWithoutEntriesGiveZeros) {
  QDL_Record *empty = with_modes(0);
  for (const Functions &matrix : {kStiffness, kMass, kDamping}) {
    EXPECT_EQ(full(matrix, empty, 2, 0), (Matrix{0, 0, 0, 0})) << matrix.name;
    EXPECT_EQ(matrix.count(empty), 0);
  }
  QDL_Record *undamped = with_modes(2);
  EXPECT_EQ(QDL_GenDampExist(undamped), 0);
  EXPECT_EQ(sparse(kDamping, undamped).result, 0);
  EXPECT_EQ(full(kDamping, undamped, 2, 0), (Matrix{0, 0, 0, 0}));
  EXPECT_EQ(QDL_GenDampExist(with_entries(kDamping)), 1);
  expect_no_messages();
}

TEST_F(GeneralizedMatrices, BadArgumentsFailSilently) {
  QDL_Record *model = with_entries(kStiffness);
  double value = kMarker;
  std::int32_t index = 10;
  std::array<double *, 2> rows = {&value, nullptr};
  const std::array<std::int32_t, 2> modes = {10, 20};
  EXPECT_EQ(QDL_GenStiffSparse(model, nullptr, &index, &index), 0);
  EXPECT_EQ(QDL_GenStiffSparse(model, &value, &index, nullptr), 0);
  for (const std::int32_t n : {0, -1}) {
    EXPECT_EQ(QDL_GenStiffFull(model, &value, n), 0);
    EXPECT_EQ(QDL_GenStiffSelected(model, rows.data(), n, modes.data()), 0);
  }
  EXPECT_EQ(QDL_GenStiffFull(model, nullptr, 2), 0);
  EXPECT_EQ(QDL_GenStiffSelected(model, rows.data(), 2, modes.data()), 0);
  EXPECT_EQ(QDL_GenStiffSelected(model, nullptr, 2, modes.data()), 0);
  EXPECT_EQ(value, kMarker);
  EXPECT_EQ(QDL_GenStiffSelected(model, rows.data(), 1, nullptr), 0);
  for (const Functions &matrix : {kStiffness, kMass, kDamping}) {
    EXPECT_EQ(matrix.count(nullptr), 0);
    EXPECT_EQ(matrix.sparse(nullptr, &value, &index, &index), 0);
    EXPECT_EQ(matrix.full(nullptr, &value, 1), 0);
  }
  EXPECT_EQ(QDL_GenMassSelected(nullptr, rows.data(), 1, modes.data()), 0);
  EXPECT_EQ(QDL_GenDampExist(nullptr), 0);
  expect_no_messages();
}

TEST_F(GeneralizedMatrices, MissingMemoryIsReported) {
  QDL_Record *model = with_modes(3);
  QDL_SetGeneralizedStiffness(model, 10, 10, 4.0);
  std::array<double, 3> values{};
  std::array<double *, 1> rows = {values.data()};
  std::array<std::int32_t, 3> indices{};
  const std::int32_t mode = 10;
  const std::size_t faults = sweep(
      Door::kMemory, Persistence::kOnce,
      [&] {
        return QDL_GenMassSparse(model, values.data(), indices.data(), indices.data()) +
               QDL_GenMassSelected(model, rows.data(), 1, &mode);
      },
      [&](std::int32_t successes, bool fired) {
        EXPECT_EQ(successes, fired ? 1 : 2);
        EXPECT_EQ(errors.size(), fired ? 1U : 0U);
        clear_messages();
      });
  EXPECT_GT(faults, 2U);
}

}  // namespace
