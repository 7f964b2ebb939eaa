#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/fixture.h"

namespace {

constexpr std::int32_t kMatrixOperatorsFlag = 33;

class MatrixOperators : public qdltest::MessageFixture {
 protected:
  static std::vector<std::string> labels_of(QDL_Record *model, int number, std::size_t rows) {
    std::vector<std::array<char, 81>> buffers(rows);
    std::vector<char *> pointers;
    for (auto &buffer : buffers) {
      buffer.fill('#');
      pointers.push_back(buffer.data());
    }
    EXPECT_EQ(QDL_GetMatrixOperatorLabels(model, number, pointers.data()), 0);
    std::vector<std::string> labels;
    for (const auto &buffer : buffers) {
      labels.emplace_back(buffer.data());
      EXPECT_EQ(buffer.back(), '#') << "written beyond 80 characters";
    }
    return labels;
  }
};

}  // namespace

TEST_F(MatrixOperators, KeepNameLabelsAndBlocks) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_GetMatrixOperatorCount(model), 0);
  EXPECT_EQ(QDL_Exists(model, kMatrixOperatorsFlag), 0);
  const char *const labels[] = {"first row", nullptr};
  EXPECT_EQ(QDL_SetMatrixOperatorInfo(model, "recovery", labels, 2), 0);
  EXPECT_EQ(QDL_SetMatrixOperatorInfo(model, nullptr, nullptr, 3), 1);
  EXPECT_EQ(QDL_GetMatrixOperatorCount(model), 2);
  EXPECT_EQ(QDL_Exists(model, kMatrixOperatorsFlag), 1);

  const double first[] = {1, 2, 3, 4, 5, 6};
  const double second[] = {7, 8};
  EXPECT_EQ(QDL_SetMatrixOperatorData(model, 0, "modes", 3, first), 0);
  EXPECT_EQ(QDL_SetMatrixOperatorData(model, 0, nullptr, 1, second), 1);
  EXPECT_EQ(QDL_GetMatrixOperatorNumSubOperator(model, 0), 2);
  EXPECT_EQ(QDL_GetMatrixOperatorNumSubOperator(model, 1), 0);

  char name[80];
  EXPECT_EQ(QDL_GetMatrixOperatorName(model, 0, name), 0);
  EXPECT_STREQ(name, "recovery");
  EXPECT_EQ(QDL_GetMatrixOperatorName(model, 1, name), 0);
  EXPECT_STREQ(name, "");
  EXPECT_EQ(QDL_GetMatrixOperatorNumRows(model, 0), 2);
  EXPECT_EQ(labels_of(model, 0, 2), (std::vector<std::string>{"first row", ""}));
  EXPECT_EQ(labels_of(model, 1, 3), (std::vector<std::string>{"", "", ""}));

  char tag[8];
  std::int32_t columns = 0;
  std::vector<double> data(6);
  EXPECT_EQ(QDL_GetMatrixOperatorSubTag(model, 0, 0, tag), 0);
  EXPECT_STREQ(tag, "modes");
  EXPECT_EQ(QDL_GetMatrixOperatorSubNumCols(model, 0, 0, &columns), 0);
  EXPECT_EQ(columns, 3);
  EXPECT_EQ(QDL_GetMatrixOperatorSubData(model, 0, 0, data.data()), 0);
  EXPECT_EQ(data, std::vector<double>(first, first + 6));
  EXPECT_EQ(QDL_GetMatrixOperatorSubTag(model, 0, 1, tag), 0);
  EXPECT_STREQ(tag, "");
  EXPECT_EQ(QDL_GetMatrixOperatorSubData(model, 0, 1, data.data()), 0);
  EXPECT_EQ(data, (std::vector<double>{7, 8, 3, 4, 5, 6}));
  expect_no_messages();
}

TEST_F(MatrixOperators, LongTextsAreCutSoThatTheBuffersSuffice) {
  QDL_Record *model = QDL_Create(0, 0);
  const std::string text(500, 'x');
  const char *const labels[] = {text.c_str()};
  QDL_SetMatrixOperatorInfo(model, text.c_str(), labels, 1);
  const double value = 1.0;
  QDL_SetMatrixOperatorData(model, 0, text.c_str(), 1, &value);

  std::array<char, 81> name;
  name.fill('#');
  EXPECT_EQ(QDL_GetMatrixOperatorName(model, 0, name.data()), 0);
  EXPECT_EQ(std::string(name.data()), std::string(79, 'x'));
  EXPECT_EQ(name.back(), '#');
  EXPECT_EQ(labels_of(model, 0, 1), std::vector<std::string>{std::string(79, 'x')});
  std::array<char, 9> tag;
  tag.fill('#');
  EXPECT_EQ(QDL_GetMatrixOperatorSubTag(model, 0, 0, tag.data()), 0);
  EXPECT_EQ(std::string(tag.data()), "xxxxxxx");
  EXPECT_EQ(tag.back(), '#');
}

TEST_F(MatrixOperators, WhatHasNoSizeFailsLikeAnAllocation) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_SetMatrixOperatorInfo(model, "negative", nullptr, -1), -1);
  expect_no_memory("qdlmtxop");
  EXPECT_EQ(QDL_GetMatrixOperatorCount(model), 0);
  EXPECT_EQ(QDL_Exists(model, kMatrixOperatorsFlag), 0);

  const double value = 1.0;
  EXPECT_EQ(QDL_SetMatrixOperatorInfo(model, "no rows", nullptr, 0), 0);
  EXPECT_EQ(QDL_SetMatrixOperatorData(model, 0, "tag", 1, nullptr), -1);
  expect_no_memory("qdlmtxop");
  EXPECT_EQ(QDL_SetMatrixOperatorInfo(model, "one row", nullptr, 1), 1);
  for (const int columns : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(QDL_SetMatrixOperatorData(model, 1, "tag", columns, &value), -1);
    expect_no_memory("qdlmtxop");
  }
  EXPECT_EQ(QDL_GetMatrixOperatorNumSubOperator(model, 1), 0);
  EXPECT_EQ(QDL_SetMatrixOperatorData(model, 1, "tag", 1, nullptr), -1);
  expect_no_messages();
}

TEST_F(MatrixOperators, OutOfRange) {
  QDL_Record *model = QDL_Create(0, 0);
  QDL_SetMatrixOperatorInfo(model, "only", nullptr, 1);
  const double value = 1.0;
  QDL_SetMatrixOperatorData(model, 0, "tag", 1, &value);
  char text[80] = "kept";
  char *labels[] = {text};
  double data[2] = {5.0, 6.0};
  std::int32_t columns = 77;
  for (const auto &[target, number] :
       {std::pair{model, 1}, {model, -1}, {static_cast<QDL_Record *>(nullptr), 0}}) {
    EXPECT_EQ(QDL_GetMatrixOperatorName(target, number, text), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorLabels(target, number, labels), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorNumRows(target, number), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorNumSubOperator(target, number), 0);
    EXPECT_EQ(QDL_GetMatrixOperatorSubTag(target, number, 0, text), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorSubNumCols(target, number, 0, &columns), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorSubData(target, number, 0, data), -1);
    expect_no_messages();
    EXPECT_EQ(QDL_SetMatrixOperatorData(target, number, "tag", 1, &value), -1);
    expect_only_error("Invalid monitor point index: " + std::to_string(number) + ".\n");
    clear_messages();
  }
  for (const int sub : {1, -1}) {
    EXPECT_EQ(QDL_GetMatrixOperatorSubTag(model, 0, sub, text), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorSubNumCols(model, 0, sub, &columns), -1);
    EXPECT_EQ(QDL_GetMatrixOperatorSubData(model, 0, sub, data), -1);
  }
  EXPECT_EQ(QDL_GetMatrixOperatorCount(nullptr), -1);
  EXPECT_STREQ(text, "kept");
  EXPECT_EQ(data[0], 5.0);
  EXPECT_EQ(columns, 77);
  expect_no_messages();
  expect_no_model(QDL_SetMatrixOperatorInfo(nullptr, "name", nullptr, 1), -1);
}

TEST_F(MatrixOperators, NullOutputs) {
  QDL_Record *model = QDL_Create(0, 0);
  QDL_SetMatrixOperatorInfo(model, "only", nullptr, 2);
  const double values[] = {1.0, 2.0};
  QDL_SetMatrixOperatorData(model, 0, "tag", 1, values);
  EXPECT_EQ(QDL_GetMatrixOperatorName(model, 0, nullptr), 0);
  EXPECT_EQ(QDL_GetMatrixOperatorLabels(model, 0, nullptr), -1);
  char label[80] = "old";
  char *labels[] = {nullptr, label};
  EXPECT_EQ(QDL_GetMatrixOperatorLabels(model, 0, labels), 0);
  EXPECT_STREQ(label, "");
  EXPECT_EQ(QDL_GetMatrixOperatorSubTag(model, 0, 0, nullptr), 0);
  EXPECT_EQ(QDL_GetMatrixOperatorSubNumCols(model, 0, 0, nullptr), 0);
  EXPECT_EQ(QDL_GetMatrixOperatorSubData(model, 0, 0, nullptr), -1);
  expect_no_messages();
}
