#include <algorithm>
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

constexpr const char *kArea = "qdlmtxop";
constexpr std::size_t kTextCharacters = 79;
constexpr std::size_t kTagCharacters = 7;

MatrixOperator *operator_at(QDL_Record *model, std::int32_t index) {
  return model == nullptr ? nullptr : item_at(model->matrix_operators, index);
}

const SubOperator *sub_operator_at(QDL_Record *model, std::int32_t index, std::int32_t sub) {
  MatrixOperator *source = operator_at(model, index);
  return source == nullptr ? nullptr : item_at(source->sub_operators, sub);
}

std::int32_t add_operator(QDL_Record &record, const char *name, const char *const *labels,
                          std::int32_t rows) {
  if (rows < 0)
    throw std::bad_alloc();
  MatrixOperator added;
  added.name = bounded_text(name, kTextCharacters);
  added.row_labels.resize(static_cast<std::size_t>(rows));
  for (std::size_t row = 0; labels != nullptr && row < added.row_labels.size(); ++row)
    added.row_labels[row] = bounded_text(labels[row], kTextCharacters);
  record.matrix_operators.push_back(std::move(added));
  raise(record, Block::kMatrixOperators);
  return static_cast<std::int32_t>(record.matrix_operators.size() - 1);
}

std::int32_t add_sub_operator(MatrixOperator &target, const char *tag, std::int32_t columns,
                              const double *data) {
  if (target.row_labels.empty() || columns < 1)
    throw std::bad_alloc();  // a block without values counts as one that could not be held
  if (data == nullptr)
    return -1;
  SubOperator added;
  added.tag = bounded_text(tag, kTagCharacters);
  added.columns = columns;
  added.data.assign(data, data + target.row_labels.size() * static_cast<std::size_t>(columns));
  target.sub_operators.push_back(std::move(added));
  return static_cast<std::int32_t>(target.sub_operators.size() - 1);
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetMatrixOperatorInfo(QDL_Record *model, const char *name, const char *const *labels,
                                  int32_t rows) {
  return with_model(model, kArea, -1,
                    [&](QDL_Record &record) { return add_operator(record, name, labels, rows); });
}

int32_t QDL_SetMatrixOperatorData(QDL_Record *model, int32_t op, const char *tag, int32_t columns,
                                  const double *data) {
  MatrixOperator *target = operator_at(model, op);
  if (target == nullptr) {
    // The text has always been the one for monitor points.
    QDL_Error("Invalid monitor point index: %d.\n", op);
    return -1;
  }
  return guarded(kArea, -1, [&] { return add_sub_operator(*target, tag, columns, data); });
}

int32_t QDL_GetMatrixOperatorCount(QDL_Record *model) {
  return model == nullptr ? -1 : static_cast<int32_t>(model->matrix_operators.size());
}

int32_t QDL_GetMatrixOperatorName(QDL_Record *model, int32_t op, char *name80) {
  const MatrixOperator *source = operator_at(model, op);
  if (source == nullptr)
    return -1;
  copy_text(source->name, name80, kTextCharacters);
  return 0;
}

int32_t QDL_GetMatrixOperatorLabels(QDL_Record *model, int32_t op, char **labels80) {
  const MatrixOperator *source = operator_at(model, op);
  if (source == nullptr || labels80 == nullptr)
    return -1;
  for (std::size_t row = 0; row < source->row_labels.size(); ++row)
    copy_text(source->row_labels[row], labels80[row], kTextCharacters);
  return 0;
}

int32_t QDL_GetMatrixOperatorNumRows(QDL_Record *model, int32_t op) {
  const MatrixOperator *source = operator_at(model, op);
  return source == nullptr ? -1 : static_cast<int32_t>(source->row_labels.size());
}

int32_t QDL_GetMatrixOperatorNumSubOperator(QDL_Record *model, int32_t op) {
  const MatrixOperator *source = operator_at(model, op);
  return source == nullptr ? 0 : static_cast<int32_t>(source->sub_operators.size());
}

int32_t QDL_GetMatrixOperatorSubTag(QDL_Record *model, int32_t op, int32_t sub, char *tag8) {
  const SubOperator *source = sub_operator_at(model, op, sub);
  if (source == nullptr)
    return -1;
  copy_text(source->tag, tag8, kTagCharacters);
  return 0;
}

int32_t QDL_GetMatrixOperatorSubNumCols(QDL_Record *model, int32_t op, int32_t sub,
                                        int32_t *columns) {
  const SubOperator *source = sub_operator_at(model, op, sub);
  if (source == nullptr)
    return -1;
  if (columns != nullptr)
    *columns = source->columns;
  return 0;
}

int32_t QDL_GetMatrixOperatorSubData(QDL_Record *model, int32_t op, int32_t sub, double *data) {
  const SubOperator *source = sub_operator_at(model, op, sub);
  if (source == nullptr || data == nullptr)
    return -1;
  std::ranges::copy(source->data, data);
  return 0;
}
