// Monitor points, matrix operators and rotor data of two bodies.

#include <array>

#include "body_pair.h"
#include "modal_matrix.h"

namespace qdlflex::cli {

namespace {

void compare_point_texts(BlockDifference &block, const BodyPair &bodies, int32_t point,
                         const std::string &name) {
  using Text = std::array<char, 58>;
  const auto read = [point](QDL_Record *record, Text &short_name, Text &label) {
    QDL_GetMonitorPointNameLabel(record, point, short_name.data(), label.data());
  };
  Text name_a{}, name_b{}, label_a{}, label_b{};
  read(bodies.a, name_a, label_a);
  read(bodies.b, name_b, label_b);
  block.compare_texts(name, name_a.data(), name_b.data());
  block.compare_texts(name + ", label", label_a.data(), label_b.data());
}

void compare_point(BlockDifference &block, const BodyPair &bodies, int32_t point) {
  const std::string name = "point " + std::to_string(point + 1);
  const auto count = [&](const char *what, int32_t (*get)(QDL_Record *, int32_t)) {
    block.compare_counts(name + ", " + what, get(bodies.a, point), get(bodies.b, point));
  };
  compare_point_texts(block, bodies, point, name);
  count("type", QDL_GetMonitorPointType);
  count("result type", QDL_GetMonitorPointResultType);
  count("component", QDL_GetMonitorPointComponent);
  constexpr std::array<const char *, 4> kOperators = {"displacement", "velocity", "acceleration",
                                                      "load"};
  for (int32_t op = 1; op <= 4; ++op) {
    const std::string which = name + ", " + kOperators[static_cast<size_t>(op - 1)];
    if (!block.both(QDL_MonitorPointHasOperator(bodies.a, point, op) != 0,
                    QDL_MonitorPointHasOperator(bodies.b, point, op) != 0, which)) {
      continue;
    }
    size_t rows = 0;
    const auto read = [&](QDL_Record *record) {
      int32_t size = 0;
      int32_t columns = 0;
      QDL_GetMonitorPointOperatorSize(record, point, &size, &columns);
      const int32_t matrices = op == 4 ? QDL_GetMonitorPointNumLoadOperator(record, point) : 1;
      const size_t rows_here = static_cast<size_t>(size) * static_cast<size_t>(matrices);
      rows = rows == 0 ? rows_here : std::min(rows, rows_here);
      std::vector<double> values(rows_here * static_cast<size_t>(columns));
      QDL_GetMonitorPointOperator(record, point, op, values.data());
      return values;
    };
    const std::vector<double> a = read(bodies.a);
    const std::vector<double> b = read(bodies.b);
    compare_modal_rows(block, bodies, a, b, rows, which);
  }
  count("load operators", QDL_GetMonitorPointNumLoadOperator);
}

BlockDifference compare_monitor_points(const BodyPair &bodies) {
  BlockDifference block = bodies.block("monitor points");
  const int32_t count_a = QDL_GetMonitorPointCount(bodies.a);
  const int32_t count_b = QDL_GetMonitorPointCount(bodies.b);
  block.compare_counts("points", count_a, count_b);
  for (int32_t point = 0; point < std::min(count_a, count_b); ++point) {
    compare_point(block, bodies, point);
  }
  return block;
}

std::string row_labels(QDL_Record *record, int32_t op) {
  const auto rows = static_cast<size_t>(QDL_GetMatrixOperatorNumRows(record, op));
  std::vector<std::array<char, 81>> labels(rows);
  std::vector<char *> buffers;
  buffers.reserve(rows);
  for (auto &label : labels) {
    buffers.push_back(label.data());
  }
  QDL_GetMatrixOperatorLabels(record, op, buffers.data());
  std::string all;
  for (const auto &label : labels) {
    all += (all.empty() ? "" : ", ") + std::string(label.data());
  }
  return all;
}

std::vector<double> read_sub_operator(QDL_Record *record, int32_t op, int32_t sub) {
  int32_t columns = 0;
  QDL_GetMatrixOperatorSubNumCols(record, op, sub, &columns);
  std::vector<double> values(static_cast<size_t>(QDL_GetMatrixOperatorNumRows(record, op)) *
                             static_cast<size_t>(columns));
  QDL_GetMatrixOperatorSubData(record, op, sub, values.data());
  return values;
}

void compare_matrix_operator(BlockDifference &block, const BodyPair &bodies, int32_t op) {
  const std::string name = "operator " + std::to_string(op + 1);
  std::array<char, 81> name_a{}, name_b{};
  QDL_GetMatrixOperatorName(bodies.a, op, name_a.data());
  QDL_GetMatrixOperatorName(bodies.b, op, name_b.data());
  block.compare_texts(name, name_a.data(), name_b.data());
  block.compare_texts(name + ", rows", row_labels(bodies.a, op), row_labels(bodies.b, op));
  const int32_t subs_a = QDL_GetMatrixOperatorNumSubOperator(bodies.a, op);
  const int32_t subs_b = QDL_GetMatrixOperatorNumSubOperator(bodies.b, op);
  block.compare_counts(name + ", parts", subs_a, subs_b);
  for (int32_t sub = 0; sub < std::min(subs_a, subs_b); ++sub) {
    const std::string part = name + ", part " + std::to_string(sub + 1);
    std::array<char, 9> tag_a{}, tag_b{};
    QDL_GetMatrixOperatorSubTag(bodies.a, op, sub, tag_a.data());
    QDL_GetMatrixOperatorSubTag(bodies.b, op, sub, tag_b.data());
    block.compare_texts(part, tag_a.data(), tag_b.data());
    const std::vector<double> a = read_sub_operator(bodies.a, op, sub);
    const std::vector<double> b = read_sub_operator(bodies.b, op, sub);
    block.compare_counts(part + ", values", std::ssize(a), std::ssize(b));
    const double largest = largest_magnitude(a);
    for (size_t k = 0; a.size() == b.size() && k < a.size(); ++k) {
      block.compare(a[k], b[k], largest, [&] { return part + ", value " + std::to_string(k + 1); });
    }
  }
}

BlockDifference compare_matrix_operators(const BodyPair &bodies) {
  BlockDifference block = bodies.block("matrix operators");
  const int32_t count_a = QDL_GetMatrixOperatorCount(bodies.a);
  const int32_t count_b = QDL_GetMatrixOperatorCount(bodies.b);
  block.compare_counts("operators", count_a, count_b);
  for (int32_t op = 0; op < std::min(count_a, count_b); ++op) {
    compare_matrix_operator(block, bodies, op);
  }
  return block;
}

BlockDifference compare_rotor(const BodyPair &bodies) {
  BlockDifference block = bodies.block("rotor dynamics");
  std::array<double, 6> a{}, b{};
  if (!block.both(QDL_RotorDynamicsAxis(bodies.a, a.data(), a.data() + 3) != 0,
                  QDL_RotorDynamicsAxis(bodies.b, b.data(), b.data() + 3) != 0)) {
    return block;
  }
  const double length = largest_magnitude({a.begin() + 3, a.end()});
  for (size_t k = 0; k < 6; ++k) {
    block.compare(a[k], b[k], k < 3 ? bodies.size : length,
                  [k] { return std::string(k < 3 ? "point, " : "direction, ") + "xyz"[k % 3]; });
  }
  constexpr std::array<const char *, 3> kMatrices = {"differential stiffness", "circulation",
                                                     "gyroscopic"};
  for (size_t which = 0; which < kMatrices.size(); ++which) {
    const auto read = [which](QDL_Record *record, std::vector<double> &matrix) {
      const auto order = static_cast<size_t>(QDL_ModeCount(record));
      matrix.resize(order * order);
      return QDL_RotorDynamicsMatrix(record, static_cast<int32_t>(which), matrix.data()) != 0;
    };
    std::vector<double> matrix_a;
    std::vector<double> matrix_b;
    const bool in_a = read(bodies.a, matrix_a);
    const bool in_b = read(bodies.b, matrix_b);
    if (block.both(in_a, in_b, kMatrices[which])) {
      compare_modal_matrix(block, bodies, matrix_a, matrix_b, kMatrices[which]);
    }
  }
  return block;
}

}  // namespace

void compare_operators(const BodyPair &bodies, BlockDifferences &blocks) {
  blocks.push_back(compare_monitor_points(bodies));
  blocks.push_back(compare_matrix_operators(bodies));
  blocks.push_back(compare_rotor(bodies));
}

}  // namespace qdlflex::cli
