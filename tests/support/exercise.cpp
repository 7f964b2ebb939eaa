#include "support/exercise.h"

#include <array>
#include <cstdint>
#include <vector>

namespace qdltest {

namespace {

std::size_t size_of(std::int32_t count) {
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void ask_blocks(QDL_Record *record) {
  for (std::int32_t index = -1; index <= 37; ++index) {
    QDL_Exists(record, index);
    QDL_size_of_block(record, index);
    QDL_goto_block(record, index);
  }
}

void ask_frame(QDL_Record *record) {
  std::array<char, 128> title{}, input_name{};
  std::array<char, 32> date{};
  std::array<char, 16> input_type{}, mass{}, length{}, time{}, force{};
  std::array<std::array<char, 80>, 3> comments{};
  QDL_Header(record, title.data(), date.data(), input_name.data(), input_type.data(),
             comments[0].data(), comments[1].data(), comments[2].data());
  QDL_Units(record, mass.data(), length.data(), time.data(), force.data());
  QDL_UCF(record);
  QDL_Version(record);
  QDL_Double_Prec(record);
  QDL_IsCoarsened(record);
}

void ask_nodes(QDL_Record *record) {
  const std::int32_t nodes = QDL_NodeCount(record);
  std::vector<double> list(3 * size_of(nodes));
  std::array<double, 9> tensor{};
  std::int32_t count = 0;
  QDL_NodeCoordinateList(record, list.data(), &count);
  for (std::int32_t i = -1; i <= nodes; ++i) {
    QDL_NodeIndex(record, QDL_NodeID(record, i));
    QDL_NodeCoordinates(record, i, tensor.data());
    QDL_NodalMass(record, i);
    QDL_NodalInertia(record, i, tensor.data());
  }
  QDL_FreeMemory(QDL_InterfaceNodeIDs(record, &count));
  QDL_FreeMemory(QDL_InterfaceNodes(record, &count));
  std::int32_t length = 0;
  QDL_FaceListSize(record, &count, &length);
  std::vector<std::int32_t> faces(size_of(length));
  QDL_ElementFaces(record, faces.data());
  QDL_BodySize(record);
  if (length > 0)
    QDL_FreeMemory(QDL_GeometryNodes(record, &count));
  for (const std::int32_t interface_only : {0, 1, 0, 1}) {
    QDL_ClosestNode(record, tensor.data(), interface_only);
    QDL_FreeMemory(QDL_ClosestNodes(record, tensor.data(), 3, interface_only, &count));
    QDL_FreeMemory(
        QDL_ClosestNodesInNeighborhood(record, tensor.data(), 1.0, interface_only, &count));
  }
}

void ask_modes(QDL_Record *record) {
  const std::int32_t modes = QDL_ModeCount(record);
  std::array<double, 5> out{};
  for (std::int32_t mode = -1; mode <= modes; ++mode) {
    const std::int32_t number = QDL_ModeNumber(record, mode);
    QDL_ModeIndex(record, number);
    QDL_Eigenvalue(record, number, &out[0], &out[1], &out[2], &out[3], &out[4]);
    for (std::int32_t kind = 0; kind < 3; ++kind) {
      const std::int32_t nodes = QDL_ModeNodeCount(record, kind);
      std::vector<double> values(3 * size_of(nodes));
      QDL_ModeNodeID(record, kind, nodes - 1);
      for (const std::int32_t part : {0, 1}) {
        QDL_Mode(record, number, kind, values.data(), part);
        QDL_Mode(record, number, kind, values.data(), part);
        if (nodes > 0)
          QDL_ModeByNode(record, number, kind, 0, values.data(), part);
      }
    }
  }
  std::vector<double> matrix(size_of(modes) * size_of(modes));
  QDL_Transformation(record, matrix.data());
}

void ask_invariants(QDL_Record *record) {
  const std::int32_t last = QDL_ModeCount(record) - 1;
  QDL_Invar1(record);
  for (double *values :
       {QDL_Invar2(record), QDL_Invar3(record), QDL_Invar4(record), QDL_Invar6(record),
        QDL_Invar7(record), QDL_Invar5(record, 0), QDL_Invar8(record, 0), QDL_Invar9(record, 0, 0),
        QDL_Invar5(record, last), QDL_Invar8(record, last), QDL_Invar9(record, last, 0)})
    QDL_FreeMemory(values);
}

void ask_loads(QDL_Record *record) {
  std::int32_t count = 0;
  std::array<char, 256> label{};
  QDL_FreeMemory(QDL_GetModalPreload(record, &count));
  const std::int32_t cases = QDL_GetModalLoadCaseCount(record);
  for (std::int32_t i = -1; i <= cases; ++i) {
    QDL_FreeMemory(QDL_GetModalLoad(record, i, &count));
    QDL_ModalLoadProcessed(record, i);
    if (i >= 0 && i < cases)
      QDL_GetModalLoadCaseLabel(record, i, label.data());
  }
  for (std::int32_t i = -1; i <= QDL_GetModalLoadNodalCaseCount(record); ++i) {
    for (std::int32_t j = -1; j <= QDL_GetModalLoadNodalCount(record, i); ++j) {
      QDL_GetModalLoadNodalNode(record, i, j);
      QDL_GetModalLoadNodalCoord(record, i, j);
      QDL_GetModalLoadNodalLoad(record, i, j);
    }
  }
  std::array<double, 6> axis{};
  QDL_RotorDynamicsAxis(record, &axis[0], &axis[3]);
  const std::size_t modes = size_of(QDL_ModeCount(record));
  std::vector<double> matrix(modes * modes);
  for (std::int32_t i = -1; i <= 3; ++i)
    QDL_RotorDynamicsMatrix(record, i, matrix.data());
}

void ask_monitor_points(QDL_Record *record) {
  std::array<char, 9> name{};
  std::array<char, 57> label{};
  std::array<double, 3> location{};
  std::int32_t rows = 0;
  std::int32_t columns = 0;
  for (std::int32_t i = -1; i <= QDL_GetMonitorPointCount(record); ++i) {
    QDL_GetMonitorPointType(record, i);
    QDL_GetMonitorPointResultType(record, i);
    QDL_GetMonitorPointComponent(record, i);
    QDL_GetMonitorPointLocation(record, i, location.data());
    QDL_GetMonitorPointNameLabel(record, i, name.data(), label.data());
    QDL_GetMonitorPointOperatorSize(record, i, &rows, &columns);
    const std::size_t values = size_of(rows) * size_of(columns);
    const std::size_t loads = size_of(QDL_GetMonitorPointNumLoadOperator(record, i));
    for (std::int32_t op = 0; op <= 5; ++op) {
      if (QDL_MonitorPointHasOperator(record, i, op) == 0)
        continue;
      std::vector<double> data(op == 4 ? loads * values : values);
      QDL_GetMonitorPointOperator(record, i, op, data.data());
    }
  }
}

void ask_matrix_operators(QDL_Record *record) {
  std::array<char, 80> name{};
  std::array<char, 8> tag{};
  for (std::int32_t i = -1; i <= QDL_GetMatrixOperatorCount(record); ++i) {
    QDL_GetMatrixOperatorName(record, i, name.data());
    const std::size_t rows = size_of(QDL_GetMatrixOperatorNumRows(record, i));
    std::vector<std::array<char, 80>> labels(rows);
    std::vector<char *> pointers;
    for (auto &label : labels)
      pointers.push_back(label.data());
    QDL_GetMatrixOperatorLabels(record, i, pointers.data());
    for (std::int32_t sub = 0; sub < QDL_GetMatrixOperatorNumSubOperator(record, i); ++sub) {
      std::int32_t columns = 0;
      QDL_GetMatrixOperatorSubTag(record, i, sub, tag.data());
      QDL_GetMatrixOperatorSubNumCols(record, i, sub, &columns);
      std::vector<double> data(rows * size_of(columns));
      QDL_GetMatrixOperatorSubData(record, i, sub, data.data());
    }
  }
}

}  // namespace

void exercise(QDL_Record *record) {
  ask_blocks(record);
  ask_frame(record);
  ask_nodes(record);
  ask_modes(record);
  ask_invariants(record);
  ask_loads(record);
  ask_monitor_points(record);
  ask_matrix_operators(record);
}

}  // namespace qdltest
