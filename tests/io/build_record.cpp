// Makes records of the content of a file, block by block.

#include <algorithm>

#include "io/write_fixture.h"
#include "record/record.h"

namespace qdltest {

namespace {

using qdlflex::Block;

template <std::size_t N>
void put_text(std::array<char, N> &field, const std::string &text) {
  std::copy(text.begin(), text.end(), field.begin());
}

void build_header(QDL_Record &record, const Header &header) {
  put_text(record.header.title, header.title);
  put_text(record.header.date, header.date);
  put_text(record.header.input_name, header.input_name);
  put_text(record.header.input_type, header.input_type);
  for (std::size_t i = 0; i < 3; ++i)
    put_text(record.header.comments[i], header.comments[i]);
}

void build_nodes(QDL_Record &record, const SampleModel &model) {
  for (const Node &node : model.nodes)
    QDL_SetNodeCoordinates(&record, node.id, node.xyz[0], node.xyz[1], node.xyz[2]);
}

void build_faces(QDL_Record &record, const SampleModel &model) {
  for (std::size_t i = 0; i < model.faces.size();) {
    std::vector<std::int32_t> face(static_cast<std::size_t>(model.faces[i++]));
    for (std::int32_t &node_id : face)
      node_id = model.nodes[static_cast<std::size_t>(model.faces[i++])].id;
    QDL_SetFaceList(&record, static_cast<std::int32_t>(face.size()), face.data());
  }
}

void build_global_mass(QDL_Record &record, const SampleModel &model) {
  record.global_mass.mass = model.global_mass[0];
  std::copy_n(model.global_mass.begin() + 1, 3, record.global_mass.centre.begin());
  std::copy_n(model.global_mass.begin() + 4, 9, record.global_mass.inertia.begin());
  raise(record, Block::kGlobalBodyProperties);
}

void build_eigenvalues(QDL_Record &record, const SampleModel &model) {
  for (const Eigenvalue &e : model.eigenvalues)
    record.eigenvalues.push_back(
        {e.mode, e.eigenvalue, e.frequency, e.circular_frequency, e.mass, e.stiffness});
  raise(record, Block::kEigenvalues);
}

void build_modes(QDL_Record &record, const ModeTable &table, std::int32_t kind) {
  for (std::size_t mode = 0; mode < table.values.size(); ++mode)
    for (std::size_t i = 0; i < table.node_ids.size(); ++i)
      QDL_SetModeVec(&record, table.numbers[mode], table.node_ids[i], kind,
                     table.values[mode].data() + 6 * i);
}

void build_pre_vectors(QDL_Record &record, const ModeTable &table,
                       const std::vector<double> &values,
                       std::int32_t (*set)(QDL_Record *, std::int32_t, const double *)) {
  for (std::size_t i = 0; i < table.node_ids.size(); ++i)
    set(&record, table.node_ids[i], values.data() + 6 * i);
}

void build_masses(QDL_Record &record, const SampleModel &model) {
  for (const NodalMass &mass : model.nodal_masses)
    QDL_SetNodalMass(&record, mass.node_id, mass.values[0]);
}

void build_inertias(QDL_Record &record, const SampleModel &model) {
  for (const NodalInertia &entry : model.nodal_inertias)
    QDL_SetNodalInertiaEntry(&record, entry.node_id, entry.row - 3, entry.column - 3, entry.value);
}

void build_entries(QDL_Record &record, qdlflex::GeneralizedMatrix &matrix, const EntryList &list,
                   Block block) {
  matrix.header = list.second;
  for (const MatrixEntry &entry : list.entries)
    matrix.entries.push_back({entry.row - 1, entry.column - 1, entry.value, entry.tail});
  raise(record, block);
}

void build_transformation(QDL_Record &record, const SampleModel &model) {
  std::vector<double> matrix;
  for (const TransformationRow &row : model.transformation)
    matrix.insert(matrix.end(), row.values.begin(), row.values.end());
  QDL_SetTransformation(&record, matrix.data());
  for (std::size_t i = 0; i < model.transformation.size(); ++i)
    record.transformation.row_integers[i] = model.transformation[i].lead;
}

void build_invariant(QDL_Record &record, const SampleModel &model, int block_id) {
  const auto invariant = static_cast<std::size_t>(block_id < 24 ? block_id - 18 : block_id - 17);
  record.invariants[invariant] = {qdlflex::Origin::kSupplied,
                                  static_cast<std::int32_t>(model.mode_count),
                                  model.invariants[invariant]};
  raise(record, static_cast<Block>(block_id));
}

void build_preload(QDL_Record &record, const SampleModel &model) {
  for (std::size_t mode = 0; mode < model.mode_count; ++mode)
    QDL_SetModalPreload(&record, record.mode_numbers[mode], model.preload[mode]);
  QDL_SetModalPreloadProcessed(&record, model.preload_processed);
}

void build_loads(QDL_Record &record, const SampleModel &model) {
  for (std::size_t i = 0; i < model.load_cases.size(); ++i) {
    const auto number = static_cast<std::int32_t>(i);
    const LoadCase &load_case = model.load_cases[i];
    for (std::size_t mode = 0; mode < model.mode_count; ++mode)
      QDL_SetModalLoad(&record, number, record.mode_numbers[mode], load_case.values[mode]);
    // An empty label would be replaced by the setter.
    record.modal_loads[i].label = {};
    put_text(record.modal_loads[i].label, load_case.label);
    QDL_SetModalLoadProcessed(&record, number, load_case.processed);
  }
}

void build_nodal_loads(QDL_Record &record, const SampleModel &model) {
  for (std::size_t i = 0; i < model.nodal_load_cases.size(); ++i)
    for (const NodalLoad &load : model.nodal_load_cases[i])
      QDL_SetModalLoadNodal(&record, static_cast<std::int32_t>(i), load.node_id, load.component,
                            load.value);
}

void build_monitor_points(QDL_Record &record, const SampleModel &model) {
  for (const MonitorPoint &point : model.monitor_points) {
    const std::array<double, 3> location = {70.5, 71.5, 72.5};  // has no place in a file
    const bool loads = (point.mask & 8) != 0;
    std::size_t others = 0;
    for (const int bit : {1, 2, 4})
      others += (point.mask & bit) != 0 ? 1 : 0;
    const auto load_operators = static_cast<std::int32_t>(loads ? point.row_blocks - others : 0);
    const std::int32_t index = QDL_SetMonitorPointInfo(
        &record, point.type, point.result_type, point.component, load_operators, location.data(),
        point.name.c_str(), point.label.c_str());
    const double *values = point.values.data();
    for (std::int32_t op = 1; op <= 4; ++op) {
      if ((point.mask & (1 << (op - 1))) == 0)
        continue;
      QDL_SetMonitorPointOperator(&record, index, op, values);
      values += point.rows * model.mode_count;
    }
  }
}

void build_matrix_operators(QDL_Record &record, const SampleModel &model) {
  for (const MatrixOperator &matrix : model.matrix_operators) {
    std::vector<const char *> labels;
    for (const std::string &label : matrix.row_labels)
      labels.push_back(label.c_str());
    const std::int32_t index = QDL_SetMatrixOperatorInfo(
        &record, matrix.name.c_str(), labels.data(), static_cast<std::int32_t>(labels.size()));
    for (const SubOperator &sub : matrix.subs)
      QDL_SetMatrixOperatorData(&record, index, sub.tag.c_str(),
                                static_cast<std::int32_t>(sub.columns), sub.data.data());
  }
}

void build_rotor(QDL_Record &record, const SampleModel &model) {
  QDL_SetRotorDynamicsAxis(&record, model.rotor_axis.data(), model.rotor_axis.data() + 3);
  const auto modes = static_cast<std::int32_t>(model.mode_count);
  for (std::size_t i = 0; i < model.rotor_matrices.size(); ++i) {
    const double *value = model.rotor_matrices[i].values.data();
    for (std::int32_t row = 0; row < modes; ++row)
      for (std::int32_t column = 0; column < modes; ++column)
        QDL_SetRotorDynamicsMatrix(&record, static_cast<std::int32_t>(i), row, column, *value++);
    record.rotor.matrices[i].integer = model.rotor_matrices[i].lead;
  }
}

void build_block(QDL_Record &record, const SampleModel &model, int block_id) {
  switch (block_id) {
    case 4:
      return build_nodes(record, model);
    case 6:
      return build_global_mass(record, model);
    case 7:
      return build_eigenvalues(record, model);
    case 8:
      return build_modes(record, model.mode_shapes, QDL_MODE_SHAPE);
    case 9:
      return build_masses(record, model);
    case 10:
      return build_inertias(record, model);
    case 11:
      QDL_SetUnits(&record, model.units[0].c_str(), model.units[1].c_str(), model.units[2].c_str(),
                   model.units[3].c_str());
      return;
    case 12:
      return build_entries(record, record.stiffness, model.stiffness, Block::kGeneralizedStiffness);
    case 13:
      return build_entries(record, record.mass, model.mass, Block::kGeneralizedMass);
    case 14:
      return build_faces(record, model);
    case 15:
      return build_entries(record, record.damping, model.damping, Block::kGeneralizedDamping);
    case 16:
      return build_transformation(record, model);
    case 17:
      for (const std::int32_t node_id : model.interface_nodes)
        QDL_SetInterfaceNode(&record, node_id);
      return;
    case 18:
      return build_modes(record, model.stress, QDL_MODE_STRESS);
    case 27:
      return build_preload(record, model);
    case 28:
      return build_loads(record, model);
    case 29:
      return build_modes(record, model.strain, QDL_MODE_STRAIN);
    case 31:
      return build_pre_vectors(record, model.stress, model.pre_stress, QDL_SetPreStressVec);
    case 32:
      return build_pre_vectors(record, model.strain, model.pre_strain, QDL_SetPreStrainVec);
    case 34:
      return build_matrix_operators(record, model);
    case 35:
      return build_nodal_loads(record, model);
    case 36:
      return build_monitor_points(record, model);
    case 37:
      return build_rotor(record, model);
    default:
      // Statistics are the writer's own.
      if (block_id >= 19 && block_id <= 26)
        build_invariant(record, model, block_id);
  }
}

}  // namespace

QDL_Record *build_record(const SampleModel &content, const std::set<int> &blocks) {
  QDL_Record *record = QDL_Create(static_cast<std::int32_t>(content.nodes.size()),
                                  static_cast<std::int32_t>(content.mode_count));
  build_header(*record, content.header);
  for (const std::int32_t number : content.mode_shapes.numbers)
    QDL_AddMode(record, number);
  for (const int id : blocks)
    build_block(*record, content, id);
  // As reading such a file would take it.
  record->damping_on_principal_axes = blocks.contains(15) && blocks.contains(21);
  return record;
}

}  // namespace qdltest
