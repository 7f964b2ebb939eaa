#include <array>
#include <cstddef>
#include <cstring>

#include "support/harness.h"
#include "support/snapshot.h"

namespace qdlfuzz {

namespace {

std::size_t size_of(std::int32_t count) {
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// A new array of the library: its values, or that there is none.
void take(Snapshot &out, double *values, std::size_t count) {
  out.put(values != nullptr ? 1 : 0);
  if (values != nullptr)
    out.put_reals(values, count);
  QDL_FreeMemory(values);
}

template <std::size_t N>
std::string_view text_of(const std::array<char, N> &buffer) {
  return {buffer.data(), ::strnlen(buffer.data(), N)};
}

void put_frame(Snapshot &out, QDL_Record *model) {
  std::array<char, 128> title{}, input_name{};
  std::array<char, 32> date{};
  std::array<char, 16> input_type{}, mass{}, length{}, time{}, force{};
  std::array<std::array<char, 80>, 3> comments{};
  QDL_Header(model, title.data(), date.data(), input_name.data(), input_type.data(),
             comments[0].data(), comments[1].data(), comments[2].data());
  out.begin("header");
  for (const std::string_view text :
       {text_of(title), text_of(date), text_of(input_name), text_of(input_type),
        text_of(comments[0]), text_of(comments[1]), text_of(comments[2])})
    out.put_text(text);
  QDL_Units(model, mass.data(), length.data(), time.data(), force.data());
  out.begin("units");
  for (const std::string_view text :
       {text_of(mass), text_of(length), text_of(time), text_of(force)})
    out.put_text(text);
  out.put_real(QDL_UCF(model));
  out.begin("version");
  out.put(QDL_Version(model));
  out.put(QDL_Double_Prec(model));
  out.put(QDL_IsCoarsened(model));
}

void put_nodes(Snapshot &out, QDL_Record *model) {
  out.begin("nodes");
  const std::int32_t nodes = QDL_NodeCount(model);
  out.put(nodes);
  for (std::int32_t i = 0; i < nodes; ++i) {
    std::array<double, 3> xyz{};
    std::array<double, 9> inertia{};
    out.put(QDL_NodeID(model, i));
    QDL_NodeCoordinates(model, i, xyz.data());
    QDL_NodalInertia(model, i, inertia.data());
    out.put_reals(xyz.data(), xyz.size());
    out.put_reals(inertia.data(), inertia.size());
    out.put_real(QDL_NodalMass(model, i));
  }
  out.begin("interface");
  std::int32_t count = 0;
  std::int32_t *const ids = QDL_InterfaceNodeIDs(model, &count);
  out.put(count);
  for (std::int32_t i = 0; i < count; ++i)
    out.put(ids[i]);
  QDL_FreeMemory(ids);
}

void put_faces(Snapshot &out, QDL_Record *model) {
  out.begin("faces");
  std::int32_t count = 0;
  std::int32_t length = 0;
  QDL_FaceListSize(model, &count, &length);
  std::vector<std::int32_t> list(size_of(length));
  QDL_ElementFaces(model, list.data());
  out.put(count);
  for (const std::int32_t entry : list)
    out.put(entry);
}

void put_modes(Snapshot &out, QDL_Record *model) {
  const std::int32_t modes = QDL_ModeCount(model);
  out.begin("modes");
  out.put(modes);
  for (std::int32_t mode = 0; mode < modes; ++mode)
    out.put(QDL_ModeNumber(model, mode));
  out.begin("eigenvalues");
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    std::array<double, 5> values{};
    out.put(QDL_Eigenvalue(model, QDL_ModeNumber(model, mode), &values[0], &values[1], &values[2],
                           &values[3], &values[4]));
    out.put_reals(values.data(), values.size());
  }
  out.begin("transformation");
  std::vector<double> matrix(size_of(modes) * size_of(modes));
  out.put(QDL_Transformation(model, matrix.data()));
  out.put_reals(matrix.data(), matrix.size());
}

void put_mode_data(Snapshot &out, QDL_Record *model, std::int32_t kind) {
  out.put(QDL_ModeExist(model, kind));
  if (QDL_ModeExist(model, kind) == 0)
    return;  // nodes with pre-stress alone are not in files
  const std::int32_t nodes = QDL_ModeNodeCount(model, kind);
  std::vector<double> values(3 * size_of(nodes));
  out.put(nodes);
  for (std::int32_t position = 0; position < nodes; ++position)
    out.put(QDL_ModeNodeID(model, kind, position));
  for (std::int32_t mode = 0; mode < QDL_ModeCount(model); ++mode) {
    for (const std::int32_t part : {0, 1}) {
      const bool read =
          QDL_Mode(model, QDL_ModeNumber(model, mode), kind, values.data(), part) == 1;
      out.put(read ? 1 : 0);
      out.put_reals(values.data(), read ? values.size() : 0);
    }
  }
}

using CountEntries = std::int32_t (*)(QDL_Record *);
using ListEntries = std::int32_t (*)(QDL_Record *, double *, std::int32_t *, std::int32_t *);

void put_entries(Snapshot &out, QDL_Record *model, CountEntries count_entries, ListEntries list) {
  const std::size_t count = size_of(count_entries(model));
  std::vector<double> values(count);
  std::vector<std::int32_t> rows(count), columns(count);
  out.put(list(model, values.data(), rows.data(), columns.data()));
  out.put_reals(values.data(), count);
  for (std::size_t i = 0; i < count; ++i) {
    out.put(rows[i]);
    out.put(columns[i]);
  }
}

void put_invariants(Snapshot &out, QDL_Record *model) {
  const std::int32_t modes = QDL_ModeCount(model);
  const std::size_t three_each = 3 * size_of(modes);
  out.begin("invariants");
  out.put_real(QDL_Invar1(model));
  take(out, QDL_Invar2(model), 3);
  take(out, QDL_Invar3(model), three_each);
  take(out, QDL_Invar4(model), three_each);
  take(out, QDL_Invar7(model), 9);
  for (std::int32_t i = 0; i < modes; ++i) {
    take(out, QDL_Invar5(model, i), three_each);
    take(out, QDL_Invar8(model, i), 9);
    take(out, QDL_Invar9(model, i, 0), 9);
    take(out, QDL_Invar9(model, i, modes - 1), 9);
  }
  out.begin("global");
  double mass = 0.0;
  std::array<double, 3> centre{};
  std::array<double, 9> inertia{};
  out.put(QDL_TotalMassInertia(model, &mass, centre.data(), inertia.data()));
  out.put_real(mass);
  out.put_reals(centre.data(), centre.size());
  out.put_reals(inertia.data(), inertia.size());
}

void put_statistics(Snapshot &out, QDL_Record *model) {
  out.begin("statistics");
  out.put(QDL_RigidBodyModeCount(model));
  for (std::int32_t mode = 0; mode < QDL_ModeCount(model); ++mode) {
    for (const auto largest : {QDL_GetMaxModeDisplacement, QDL_GetMaxModeRotation,
                               QDL_GetMaxVonMisesStress, QDL_GetMaxVonMisesStrain}) {
      std::int32_t node = 0;
      double value = 0.0;
      out.put(largest(model, QDL_ModeNumber(model, mode), &node, &value));
      out.put(node);
      out.put_real(value);
    }
  }
}

void put_loads(Snapshot &out, QDL_Record *model) {
  std::int32_t count = 0;
  out.begin("preload");
  double *const preload = QDL_GetModalPreload(model, &count);
  out.put(QDL_ModalPreloadProcessed(model));
  take(out, preload, size_of(count));
  out.begin("loads");
  const std::int32_t cases = QDL_GetModalLoadCaseCount(model);
  out.put(cases);
  for (std::int32_t i = 0; i < cases; ++i) {
    std::array<char, 256> label{};
    QDL_GetModalLoadCaseLabel(model, i, label.data());
    out.put_text(text_of(label));
    out.put(QDL_ModalLoadProcessed(model, i));
    double *const values = QDL_GetModalLoad(model, i, &count);
    take(out, values, size_of(count));
  }
  out.begin("nodal loads");
  const std::int32_t nodal_cases = QDL_GetModalLoadNodalCaseCount(model);
  out.put(nodal_cases);
  for (std::int32_t i = 0; i < nodal_cases; ++i) {
    const std::int32_t entries = QDL_GetModalLoadNodalCount(model, i);
    out.put(entries);
    for (std::int32_t j = 0; j < entries; ++j) {
      out.put(QDL_GetModalLoadNodalNode(model, i, j));
      out.put(QDL_GetModalLoadNodalCoord(model, i, j));
      out.put_real(QDL_GetModalLoadNodalLoad(model, i, j));
    }
  }
}

void put_rotor(Snapshot &out, QDL_Record *model) {
  out.begin("rotor");
  std::array<double, 6> axis{};
  out.put(QDL_RotorDynamicsAxis(model, &axis[0], &axis[3]));
  out.put_reals(axis.data(), axis.size());
  const std::size_t modes = size_of(QDL_ModeCount(model));
  for (std::int32_t i = 0; i < 3; ++i) {
    std::vector<double> matrix(modes * modes);
    QDL_RotorDynamicsMatrix(model, i, matrix.data());
    out.put_reals(matrix.data(), matrix.size());
  }
}

void put_monitor_points(Snapshot &out, QDL_Record *model) {
  out.begin("monitors");
  const std::int32_t points = QDL_GetMonitorPointCount(model);
  out.put(points);
  for (std::int32_t i = 0; i < points; ++i) {
    std::array<char, 9> name{};
    std::array<char, 57> label{};
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    QDL_GetMonitorPointNameLabel(model, i, name.data(), label.data());
    QDL_GetMonitorPointOperatorSize(model, i, &rows, &columns);
    out.put_text(text_of(name));
    out.put_text(text_of(label));
    for (const std::int32_t value :
         {QDL_GetMonitorPointType(model, i), QDL_GetMonitorPointResultType(model, i),
          QDL_GetMonitorPointComponent(model, i), rows, columns})
      out.put(value);
    const std::size_t values = size_of(rows) * size_of(columns);
    const std::size_t loads = size_of(QDL_GetMonitorPointNumLoadOperator(model, i));
    for (std::int32_t op = 1; op <= 4; ++op) {
      out.put(QDL_MonitorPointHasOperator(model, i, op));
      if (QDL_MonitorPointHasOperator(model, i, op) == 0)
        continue;
      std::vector<double> data(op == 4 ? loads * values : values);
      out.put(QDL_GetMonitorPointOperator(model, i, op, data.data()));
      out.put_reals(data.data(), data.size());
    }
  }
}

void put_matrix_operators(Snapshot &out, QDL_Record *model) {
  out.begin("operators");
  const std::int32_t count = QDL_GetMatrixOperatorCount(model);
  out.put(count);
  for (std::int32_t i = 0; i < count; ++i) {
    std::array<char, 80> name{};
    QDL_GetMatrixOperatorName(model, i, name.data());
    out.put_text(text_of(name));
    const std::size_t rows = size_of(QDL_GetMatrixOperatorNumRows(model, i));
    std::vector<std::array<char, 80>> labels(rows);
    std::vector<char *> pointers;
    for (auto &label : labels)
      pointers.push_back(label.data());
    QDL_GetMatrixOperatorLabels(model, i, pointers.data());
    for (const auto &label : labels)
      out.put_text(text_of(label));
    const std::int32_t subs = QDL_GetMatrixOperatorNumSubOperator(model, i);
    out.put(subs);
    for (std::int32_t sub = 0; sub < subs; ++sub) {
      std::array<char, 8> tag{};
      std::int32_t columns = 0;
      QDL_GetMatrixOperatorSubTag(model, i, sub, tag.data());
      QDL_GetMatrixOperatorSubNumCols(model, i, sub, &columns);
      std::vector<double> data(rows * size_of(columns));
      QDL_GetMatrixOperatorSubData(model, i, sub, data.data());
      out.put_text(text_of(tag));
      out.put_reals(data.data(), data.size());
    }
  }
}

}  // namespace

Snapshot snapshot(QDL_Record *model) {
  Snapshot out;
  put_frame(out, model);
  put_nodes(out, model);
  put_faces(out, model);
  put_modes(out, model);
  out.begin("stiffness");
  put_entries(out, model, QDL_NumberOfGenStiff, QDL_GenStiffSparse);
  out.begin("mass");
  put_entries(out, model, QDL_NumberOfGenMass, QDL_GenMassSparse);
  out.begin("damping");
  put_entries(out, model, QDL_NumberOfGenDamp, QDL_GenDampSparse);
  out.begin("shapes");
  put_mode_data(out, model, QDL_MODE_SHAPE);
  out.begin("stress");
  put_mode_data(out, model, QDL_MODE_STRESS);
  out.begin("strain");
  put_mode_data(out, model, QDL_MODE_STRAIN);
  out.begin("prestress");  // for which there is no getter
  out.put_text(report(model, 31));
  out.begin("prestrain");
  out.put_text(report(model, 32));
  put_invariants(out, model);
  put_statistics(out, model);
  put_loads(out, model);
  put_rotor(out, model);
  put_monitor_points(out, model);
  put_matrix_operators(out, model);
  return out;
}

}  // namespace qdlfuzz
