#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "build/bounded_text.h"
#include "record/record.h"
#include "support/boundary.h"
#include "support/item_at.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlmonpnt";
constexpr std::size_t kNameCharacters = 8;
constexpr std::size_t kLabelCharacters = 56;
constexpr std::int32_t kOperators = 4;
constexpr std::int32_t kLoadOperator = 4;

constexpr bool is_operator(std::int32_t number) {
  return number >= 1 && number <= kOperators;
}

constexpr std::size_t place(std::int32_t number) {
  return static_cast<std::size_t>(number - 1);
}

constexpr std::int32_t mask_bit(std::int32_t number) {
  return 1 << (number - 1);
}

MonitorPoint *point_at(QDL_Record *model, std::int32_t index) {
  return model == nullptr ? nullptr : item_at(model->monitor_points, index);
}

/// Rows of all matrices of one operator; 0 where the point has none.
std::size_t operator_rows(const MonitorPoint &point, std::int32_t number) {
  const std::int32_t matrices = number == kLoadOperator ? point.load_operators : 1;
  return static_cast<std::size_t>(point.rows) * static_cast<std::size_t>(std::max(matrices, 0));
}

/// Copies rows into ones of another length: cut, or filled up with zeros.
void copy_rows(const std::vector<double> &from, std::size_t from_columns, double *to,
               std::size_t to_columns) {
  const std::size_t common = std::min(from_columns, to_columns);
  const std::size_t rows = from_columns == 0 ? 0 : from.size() / from_columns;
  for (std::size_t row = 0; row < rows; ++row, to += to_columns) {
    std::copy_n(from.data() + row * from_columns, common, to);
    std::fill(to + common, to + to_columns, 0.0);
  }
}

/// Lays the operators out for the present modes.
void fit_columns(MonitorPoint &point, std::int32_t modes) {
  if (point.columns == modes)
    return;
  const auto before = static_cast<std::size_t>(point.columns);
  const auto columns = static_cast<std::size_t>(modes);
  std::array<std::vector<double>, kOperators> operators;
  for (std::size_t i = 0; i < operators.size(); ++i) {
    const std::vector<double> &values = point.operators[i];
    operators[i].resize(before == 0 ? 0 : values.size() / before * columns);
    copy_rows(values, before, operators[i].data(), columns);
  }
  point.operators = std::move(operators);
  point.columns = modes;
}

std::int32_t add_point(QDL_Record &record, MonitorPoint point) {
  point.rows = static_cast<std::int32_t>(std::to_string(point.component).size());
  record.monitor_points.push_back(std::move(point));
  raise(record, Block::kMonitorPoints);
  return static_cast<std::int32_t>(record.monitor_points.size() - 1);
}

std::int32_t set_operator(QDL_Record &record, MonitorPoint &point, std::int32_t number,
                          const double *data) {
  const std::size_t size = operator_rows(point, number) * record.mode_numbers.size();
  if (size > 0 && data == nullptr)
    return -1;
  std::vector<double> &values = point.operators[place(number)];
  values = {};
  point.mask &= ~mask_bit(number);

  fit_columns(point, mode_count(record));
  if (size == 0)
    throw std::bad_alloc();  // an operator without values counts as one that could not be held
  values.assign(data, data + size);
  point.mask |= mask_bit(number);
  return 0;
}

bool has_operator(const MonitorPoint *point, std::int32_t number) {
  return point != nullptr && is_operator(number) && (point->mask & mask_bit(number)) != 0;
}

/// A field of the point, or -1 without one.
std::int32_t field(QDL_Record *model, std::int32_t index, std::int32_t MonitorPoint::*member) {
  const MonitorPoint *point = point_at(model, index);
  return point == nullptr ? -1 : point->*member;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetMonitorPointInfo(QDL_Record *model, int32_t type, int32_t resultType,
                                int32_t component, int32_t loadOperatorCount,
                                const double *location3, const char *name, const char *label) {
  return with_model(model, kArea, -1, [&](QDL_Record &record) {
    MonitorPoint point;
    point.type = type;
    point.result_type = resultType;
    point.component = component;
    point.load_operators = loadOperatorCount;
    if (location3 != nullptr)
      std::copy_n(location3, 3, point.location.begin());
    point.name = bounded_text(name, kNameCharacters);
    point.label = bounded_text(label, kLabelCharacters);
    return add_point(record, std::move(point));
  });
}

int32_t QDL_SetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op,
                                    const double *data) {
  MonitorPoint *target = point_at(model, point);
  if (target == nullptr) {
    QDL_Error("Invalid monitor point index: %d.\n", point);
    return -1;
  }
  if (!is_operator(op)) {
    QDL_Error(
        "Invalid operator type. Valid choices are: 1 for disp operator, 2 for load operator.\n");
    return -1;
  }
  return guarded(kArea, -1, [&] { return set_operator(*model, *target, op, data); });
}

int32_t QDL_GetMonitorPointCount(QDL_Record *model) {
  return model == nullptr ? -1 : static_cast<int32_t>(model->monitor_points.size());
}

int32_t QDL_GetMonitorPointType(QDL_Record *model, int32_t point) {
  return field(model, point, &MonitorPoint::type);
}

int32_t QDL_GetMonitorPointResultType(QDL_Record *model, int32_t point) {
  return field(model, point, &MonitorPoint::result_type);
}

int32_t QDL_GetMonitorPointComponent(QDL_Record *model, int32_t point) {
  return field(model, point, &MonitorPoint::component);
}

int32_t QDL_GetMonitorPointLocation(QDL_Record *model, int32_t point, double *location3) {
  const MonitorPoint *source = point_at(model, point);
  if (source == nullptr || location3 == nullptr)
    return -1;
  std::ranges::copy(source->location, location3);
  return 0;
}

int32_t QDL_GetMonitorPointNameLabel(QDL_Record *model, int32_t point, char *name9, char *label57) {
  const MonitorPoint *source = point_at(model, point);
  if (source == nullptr)
    return -1;
  copy_text(source->name, name9, kNameCharacters);
  copy_text(source->label, label57, kLabelCharacters);
  return 0;
}

int32_t QDL_GetMonitorPointNumLoadOperator(QDL_Record *model, int32_t point) {
  const MonitorPoint *source = point_at(model, point);
  return source == nullptr ? 0 : source->load_operators;
}

int32_t QDL_GetMonitorPointOperatorSize(QDL_Record *model, int32_t point, int32_t *rows,
                                        int32_t *columns) {
  const MonitorPoint *source = point_at(model, point);
  if (source == nullptr)
    return -1;
  if (rows != nullptr)
    *rows = source->rows;
  if (columns != nullptr)
    *columns = mode_count(*model);
  return 0;
}

int32_t QDL_MonitorPointHasOperator(QDL_Record *model, int32_t point, int32_t op) {
  return has_operator(point_at(model, point), op) ? mask_bit(op) : 0;
}

int32_t QDL_GetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op, double *data) {
  const MonitorPoint *source = point_at(model, point);
  if (!has_operator(source, op) || data == nullptr)
    return -1;
  copy_rows(source->operators[place(op)], static_cast<std::size_t>(source->columns), data,
            model->mode_numbers.size());
  return 0;
}
