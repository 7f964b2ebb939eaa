#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

constexpr std::int32_t kMonitorPointsFlag = 35;

std::vector<double> counted(std::size_t count, double first = 1.0) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i)
    values[i] = first + static_cast<double>(i);
  return values;
}

class MonitorPoints : public qdltest::MessageFixture {
 protected:
  static QDL_Record *model_with_modes(int modes) {
    QDL_Record *model = QDL_Create(0, 10);
    for (int mode = 1; mode <= modes; ++mode)
      QDL_AddMode(model, mode);
    return model;
  }

  static int add(QDL_Record *model, int component, int load_operators = 0) {
    return QDL_SetMonitorPointInfo(model, 1, 5, component, load_operators, nullptr, "", "");
  }

  static std::vector<double> fetched(QDL_Record *model, int point, int number, std::size_t count) {
    std::vector<double> values(count + 1, -1.0);
    EXPECT_EQ(QDL_GetMonitorPointOperator(model, point, number, values.data()), 0);
    EXPECT_EQ(values.back(), -1.0) << "written beyond the operator";
    values.pop_back();
    return values;
  }
};

}  // namespace

TEST_F(MonitorPoints, KeepTheirDescription) {
  QDL_Record *model = model_with_modes(2);
  EXPECT_EQ(QDL_GetMonitorPointCount(model), 0);
  EXPECT_EQ(QDL_Exists(model, kMonitorPointsFlag), 0);
  const double location[3] = {1.5, 2.5, 3.5};
  EXPECT_EQ(QDL_SetMonitorPointInfo(model, 2, 3, 135, 4, location, "tip", "the tip of the wing"),
            0);
  EXPECT_EQ(QDL_SetMonitorPointInfo(model, -7, 99, 0, -2, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(QDL_GetMonitorPointCount(model), 2);
  EXPECT_EQ(QDL_Exists(model, kMonitorPointsFlag), 1);

  EXPECT_EQ(QDL_GetMonitorPointType(model, 0), 2);
  EXPECT_EQ(QDL_GetMonitorPointResultType(model, 0), 3);
  EXPECT_EQ(QDL_GetMonitorPointComponent(model, 0), 135);
  EXPECT_EQ(QDL_GetMonitorPointNumLoadOperator(model, 0), 4);
  double xyz[3] = {};
  EXPECT_EQ(QDL_GetMonitorPointLocation(model, 0, xyz), 0);
  EXPECT_EQ(xyz[2], 3.5);
  char name[9];
  char label[57];
  EXPECT_EQ(QDL_GetMonitorPointNameLabel(model, 0, name, label), 0);
  EXPECT_STREQ(name, "tip");
  EXPECT_STREQ(label, "the tip of the wing");

  EXPECT_EQ(QDL_GetMonitorPointType(model, 1), -7);
  EXPECT_EQ(QDL_GetMonitorPointResultType(model, 1), 99);
  EXPECT_EQ(QDL_GetMonitorPointNumLoadOperator(model, 1), -2);
  EXPECT_EQ(QDL_GetMonitorPointLocation(model, 1, xyz), 0);
  EXPECT_EQ(xyz[2], 0.0);
  EXPECT_EQ(QDL_GetMonitorPointNameLabel(model, 1, name, nullptr), 0);
  EXPECT_STREQ(name, "");
  expect_no_messages();
}

TEST_F(MonitorPoints, LongTextsAreCutSoThatTheBuffersSuffice) {
  QDL_Record *model = model_with_modes(1);
  const std::string name(1000, 'n');
  const std::string label(1000, 'l');
  QDL_SetMonitorPointInfo(model, 1, 1, 1, 0, nullptr, name.c_str(), label.c_str());
  std::array<char, 10> name_buffer{};
  std::array<char, 58> label_buffer{};
  name_buffer.back() = label_buffer.back() = '#';
  EXPECT_EQ(QDL_GetMonitorPointNameLabel(model, 0, name_buffer.data(), label_buffer.data()), 0);
  EXPECT_EQ(std::string(name_buffer.data()), std::string(8, 'n'));
  EXPECT_EQ(std::string(label_buffer.data()), std::string(56, 'l'));
  EXPECT_EQ(name_buffer.back(), '#');
  EXPECT_EQ(label_buffer.back(), '#');
}

TEST_F(MonitorPoints, HaveARowForEveryDigitOfTheComponent) {
  QDL_Record *model = model_with_modes(3);
  const std::vector<std::pair<int, int>> rows_of_component = {
      {123456, 6}, {3, 1}, {0, 1}, {-12, 3}, {std::numeric_limits<int>::min(), 11}};
  for (const auto &[component, expected] : rows_of_component) {
    const int point = add(model, component);
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    EXPECT_EQ(QDL_GetMonitorPointOperatorSize(model, point, &rows, &columns), 0);
    EXPECT_EQ(rows, expected) << component;
    EXPECT_EQ(columns, 3);
  }
}

TEST_F(MonitorPoints, ReturnTheOperatorsAsTheyWereSet) {
  QDL_Record *model = model_with_modes(2);
  const int point = add(model, 123, 4);
  const std::size_t sizes[] = {6, 6, 6, 24};
  const std::int32_t bits[] = {1, 2, 4, 8};
  for (int number = 1; number <= 4; ++number) {
    EXPECT_EQ(QDL_MonitorPointHasOperator(model, point, number), 0);
    const auto values = counted(sizes[number - 1], 100.0 * number);
    EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, number, values.data()), 0);
    EXPECT_EQ(QDL_MonitorPointHasOperator(model, point, number), bits[number - 1]);
  }
  for (int number = 1; number <= 4; ++number) {
    const std::size_t size = sizes[number - 1];
    EXPECT_EQ(fetched(model, point, number, size), counted(size, 100.0 * number));
  }
  const auto second = counted(6, -50.0);
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, 1, second.data()), 0);
  EXPECT_EQ(fetched(model, point, 1, 6), second);
  EXPECT_EQ(model->monitor_points[0].mask, 15);
  expect_no_messages();
}

TEST_F(MonitorPoints, OperatorsFollowTheNumberOfModes) {
  QDL_Record *model = model_with_modes(2);
  const int point = add(model, 12, 2);
  QDL_SetMonitorPointOperator(model, point, 1, counted(4).data());
  QDL_SetMonitorPointOperator(model, point, 4, counted(8, 11.0).data());
  QDL_AddMode(model, 3);
  EXPECT_EQ(fetched(model, point, 1, 6), (std::vector<double>{1, 2, 0, 3, 4, 0}));

  // Another operator lays all of them out for the modes there are now.
  QDL_SetMonitorPointOperator(model, point, 2, counted(6, 21.0).data());
  EXPECT_EQ(fetched(model, point, 1, 6), (std::vector<double>{1, 2, 0, 3, 4, 0}));
  EXPECT_EQ(fetched(model, point, 2, 6), counted(6, 21.0));
  EXPECT_EQ(fetched(model, point, 4, 12),
            (std::vector<double>{11, 12, 0, 13, 14, 0, 15, 16, 0, 17, 18, 0}));

  model->mode_numbers.resize(1);
  EXPECT_EQ(fetched(model, point, 2, 2), (std::vector<double>{21, 24}));
}

TEST_F(MonitorPoints, AnOperatorOfNoSizeFailsLikeAnAllocation) {
  QDL_Record *model = model_with_modes(1);
  const int point = add(model, 123, 1);
  const auto values = counted(3);
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, 4, values.data()), 0);
  model->monitor_points[0].load_operators = -1;
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, 4, nullptr), -1);
  expect_no_memory("qdlmonpnt");
  // What it was to replace is gone.
  EXPECT_EQ(QDL_MonitorPointHasOperator(model, point, 4), 0);
  EXPECT_EQ(QDL_GetMonitorPointOperator(model, point, 4, nullptr), -1);

  QDL_Record *without_modes = model_with_modes(0);
  EXPECT_EQ(QDL_SetMonitorPointOperator(without_modes, add(without_modes, 1), 1, values.data()),
            -1);
  expect_no_memory("qdlmonpnt");
}

TEST_F(MonitorPoints, RefuseWhatDoesNotExist) {
  QDL_Record *model = model_with_modes(1);
  const double values[6] = {};
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, 0, 1, values), -1);
  expect_only_error("Invalid monitor point index: 0.\n");
  add(model, 1);
  for (const auto &[target, index] :
       {std::pair{model, 1}, {model, -1}, {static_cast<QDL_Record *>(nullptr), 0}}) {
    clear_messages();
    EXPECT_EQ(QDL_SetMonitorPointOperator(target, index, 1, values), -1);
    expect_only_error("Invalid monitor point index: " + std::to_string(index) + ".\n");
  }
  for (const int number : {0, 5, -1}) {
    clear_messages();
    EXPECT_EQ(QDL_SetMonitorPointOperator(model, 0, number, values), -1);
    expect_only_error(
        "Invalid operator type. Valid choices are: 1 for disp operator, 2 for load operator.\n");
  }
  clear_messages();
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, 0, 1, values), 0);
  EXPECT_EQ(QDL_SetMonitorPointOperator(model, 0, 1, nullptr), -1);
  EXPECT_EQ(QDL_MonitorPointHasOperator(model, 0, 1), 1) << "no data must replace nothing";
  expect_no_messages();

  expect_no_model(QDL_SetMonitorPointInfo(nullptr, 1, 1, 1, 0, nullptr, "", ""), -1);
}

TEST_F(MonitorPoints, GettersAreSilentOutOfRange) {
  QDL_Record *model = model_with_modes(1);
  add(model, 1);
  const double one = 1.0;
  QDL_SetMonitorPointOperator(model, 0, 1, &one);
  char name[9] = "kept";
  double values[6] = {5.0};
  std::int32_t rows = 77;
  std::int32_t columns = 78;
  for (const auto &[target, point] :
       {std::pair{model, 1}, {model, -1}, {static_cast<QDL_Record *>(nullptr), 0}}) {
    EXPECT_EQ(QDL_GetMonitorPointType(target, point), -1);
    EXPECT_EQ(QDL_GetMonitorPointResultType(target, point), -1);
    EXPECT_EQ(QDL_GetMonitorPointComponent(target, point), -1);
    EXPECT_EQ(QDL_GetMonitorPointLocation(target, point, values), -1);
    EXPECT_EQ(QDL_GetMonitorPointNameLabel(target, point, name, nullptr), -1);
    EXPECT_EQ(QDL_GetMonitorPointNumLoadOperator(target, point), 0);
    EXPECT_EQ(QDL_GetMonitorPointOperatorSize(target, point, &rows, &columns), -1);
    EXPECT_EQ(QDL_MonitorPointHasOperator(target, point, 1), 0);
    EXPECT_EQ(QDL_GetMonitorPointOperator(target, point, 1, values), -1);
  }
  for (const int number : {0, 2, 5, 33, -1}) {
    EXPECT_EQ(QDL_MonitorPointHasOperator(model, 0, number), 0);
    EXPECT_EQ(QDL_GetMonitorPointOperator(model, 0, number, values), -1);
  }
  EXPECT_EQ(QDL_GetMonitorPointOperator(model, 0, 1, nullptr), -1);
  EXPECT_EQ(QDL_GetMonitorPointLocation(model, 0, nullptr), -1);
  EXPECT_EQ(QDL_GetMonitorPointOperatorSize(model, 0, nullptr, nullptr), 0);
  EXPECT_EQ(QDL_GetMonitorPointCount(nullptr), -1);
  EXPECT_STREQ(name, "kept");
  EXPECT_EQ(values[0], 5.0);
  EXPECT_EQ(rows, 77);
  EXPECT_EQ(columns, 78);
  expect_no_messages();
}

TEST_F(MonitorPoints, AFailedAllocationLeavesTheListConsistent) {
  const auto count = qdltest::sweep(
      qdltest::Door::kMemory, qdltest::Persistence::kOnce,
      [&] {
        clear_messages();
        QDL_Record *model = QDL_Create(0, 3);
        if (model == nullptr)
          return model;
        QDL_AddMode(model, 1);
        const int point = QDL_SetMonitorPointInfo(model, 1, 1, 12, 1, nullptr, "name",
                                                  "a label too long for the short form");
        const double values[] = {1, 2, 3, 4};
        if (point == 0)
          QDL_SetMonitorPointOperator(model, point, 1, values);
        QDL_AddMode(model, 2);
        QDL_SetMonitorPointOperator(model, point, 2, values);
        return model;
      },
      [&](QDL_Record *model, bool fired) {
        EXPECT_EQ(errors.empty(), !fired);
        if (model == nullptr)
          return;
        for (int number = 1; number <= 2 && QDL_GetMonitorPointCount(model) == 1; ++number) {
          double values[4] = {};
          const bool has = QDL_MonitorPointHasOperator(model, 0, number) != 0;
          EXPECT_EQ(QDL_GetMonitorPointOperator(model, 0, number, values), has ? 0 : -1);
          EXPECT_EQ(values[0], has ? 1.0 : 0.0);
        }
        QDL_DeReference(model);
      });
  EXPECT_GT(count, 5U);
}
