// Modal loads, preload and nodal loads.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

constexpr std::array<std::int32_t, 4> kBadCases = {-1, 3, std::numeric_limits<std::int32_t>::max(),
                                                   std::numeric_limits<std::int32_t>::min()};

using Values = std::vector<double>;

Values take(double *array, std::int32_t count) {
  Values values(array, array + count);
  QDL_FreeMemory(array);
  return values;
}

Values modal_load(QDL_Record *model, std::int32_t load_case) {
  std::int32_t count = -1;
  double *array = QDL_GetModalLoad(model, load_case, &count);
  return take(array, count);
}

Values preload(QDL_Record *model) {
  std::int32_t count = -1;
  double *array = QDL_GetModalPreload(model, &count);
  return take(array, count);
}

class LoadData : public MessageFixture {
 protected:
  // Modes 7 and 9, three modal cases, two nodal cases; every value tells its place in the file.
  QDL_Record *golden() {
    return QDL_CreateFromQDL(QDLFLEX_SOURCE_DIR "/tests/golden/60_xdr_double.qdl");
  }
};

TEST_F(LoadData, VectorsFollowTheModeCount) {
  QDL_Record *model = golden();
  model->mode_numbers = {7, 9, 11, 12};
  EXPECT_EQ(preload(model), (Values{6912.25, 6913.25, 0, 0}));
  EXPECT_EQ(modal_load(model, 0), (Values{7168.25, 7169.25, 0, 0}));
  model->mode_numbers = {7};
  EXPECT_EQ(preload(model), (Values{6912.25}));
  EXPECT_EQ(modal_load(model, 1), (Values{7170.25}));
  model->mode_numbers.clear();
  std::int32_t count = -1;
  EXPECT_EQ(QDL_GetModalPreload(model, &count), nullptr);
  EXPECT_EQ(count, 0);
}

TEST_F(LoadData, BadCasesAndEntriesGiveFailureValues) {
  QDL_Record *model = golden();
  std::array<char, 256> label{'k', 'e', 'p', 't'};
  for (const std::int32_t bad : kBadCases) {
    std::int32_t count = -1;
    EXPECT_EQ(QDL_GetModalLoad(model, bad, &count), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(QDL_GetModalLoad(model, bad, nullptr), nullptr);
    EXPECT_EQ(QDL_GetModalLoadCaseLabel(model, bad, label.data()), 0);
    EXPECT_EQ(QDL_ModalLoadProcessed(model, bad), 0);
    EXPECT_EQ(QDL_SetModalLoadProcessed(model, bad, 1), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalCount(model, bad), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalNode(model, bad, 0), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 0, bad), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalCoord(model, 0, bad), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalLoad(model, 0, bad), 0.0);
  }
  EXPECT_EQ(std::string(label.data()), "kept");
  EXPECT_EQ(QDL_GetModalLoadCaseLabel(model, 0, nullptr), 0);
  expect_no_messages();
}

TEST_F(LoadData, LabelsArePaddedAndMayBeFull) {
  QDL_Record *model = golden();
  std::array<char, 257> label{};
  std::ranges::fill(label, '!');
  EXPECT_EQ(QDL_GetModalLoadCaseLabel(model, 1, label.data()), 1);
  EXPECT_EQ(std::string(label.data()), "thermal case");
  EXPECT_TRUE(std::all_of(label.begin() + 12, label.begin() + 256, [](char c) { return c == 0; }));
  EXPECT_EQ(label[256], '!');

  std::ranges::fill(model->modal_loads[1].label, 'x');
  EXPECT_EQ(QDL_GetModalLoadCaseLabel(model, 1, label.data()), 1);
  EXPECT_EQ(std::string(label.data(), 257), std::string(256, 'x') + "!");
}

TEST_F(LoadData, ProcessedFlagsAreSetAndCleared) {
  QDL_Record *model = golden();
  EXPECT_EQ(QDL_SetModalLoadProcessed(model, 2, 17), 1);
  EXPECT_EQ(QDL_ModalLoadProcessed(model, 2), 1);
  EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 0);
  EXPECT_EQ(QDL_SetModalLoadProcessed(model, 1, 0), 1);
  EXPECT_EQ(QDL_ModalLoadProcessed(model, 1), 0);
  EXPECT_EQ(QDL_SetModalPreloadProcessed(model, 0), 1);
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 0);
  EXPECT_EQ(QDL_SetModalPreloadProcessed(model, -1), 1);
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 1);
  expect_no_messages();
}

TEST_F(LoadData, NodalLoadOfAForeignNodeNamesNone) {
  QDL_Record *model = QDL_Create(0, 0);
  model->nodal_loads = {{{{.node = qdlflex::kUnknownNode, .coordinate = 2, .value = 3.0},
                          {.node = 44, .coordinate = 1, .value = 4.0}}}};
  for (const std::int32_t entry : {0, 1})
    EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 0, entry), 0);
  EXPECT_EQ(QDL_GetModalLoadNodalCoord(model, 0, 0), 2);
  EXPECT_EQ(QDL_GetModalLoadNodalLoad(model, 0, 1), 4.0);
}

TEST_F(LoadData, AModelWithoutLoadsOrNoModelHasNone) {
  for (QDL_Record *model : {QDL_Create(0, 0), static_cast<QDL_Record *>(nullptr)}) {
    std::int32_t count = -1;
    EXPECT_EQ(QDL_ModalPreloadExist(model), 0);
    EXPECT_EQ(QDL_ModalPreloadProcessed(model), 0);
    EXPECT_EQ(QDL_GetModalPreload(model, &count), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 0);
    EXPECT_EQ(QDL_GetModalLoad(model, 0, &count), nullptr);
    EXPECT_EQ(QDL_ModalLoadProcessed(model, 0), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalCaseCount(model), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 0), 0);
    EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 0, 0), 0);
  }
  expect_no_messages();
  expect_no_model(QDL_SetModalLoadProcessed(nullptr, 0, 1));
  expect_no_model(QDL_SetModalPreloadProcessed(nullptr, 1));
}

TEST_F(LoadData, MissingMemoryIsReported) {
  QDL_Record *model = golden();
  std::int32_t count = -1;
  {
    const FailAllocation fault(1, Persistence::kEverAfter);
    EXPECT_EQ(QDL_GetModalLoad(model, 0, &count), nullptr);
    EXPECT_EQ(QDL_GetModalPreload(model, &count), nullptr);
  }
  EXPECT_EQ(count, 0);
  EXPECT_EQ(errors.size(), 2U);
  EXPECT_EQ(modal_load(model, 0), (Values{7168.25, 7169.25}));
}

}  // namespace
