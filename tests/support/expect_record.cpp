#include "support/expect_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "record/record.h"

namespace qdltest {

namespace {

using qdlflex::Vector6;

std::string text_of(const auto &field) {
  return std::string(field.data());
}

std::int32_t index_of(const SampleModel &model, std::int32_t node_id) {
  const auto found = std::find_if(model.nodes.begin(), model.nodes.end(),
                                  [&](const Node &node) { return node.id == node_id; });
  return found == model.nodes.end() ? -1 : static_cast<std::int32_t>(found - model.nodes.begin());
}

std::vector<std::int32_t> indices_of(const SampleModel &model,
                                     const std::vector<std::int32_t> &node_ids) {
  std::vector<std::int32_t> indices;
  for (const std::int32_t id : node_ids)
    indices.push_back(index_of(model, id));
  return indices;
}

void expect_frame(QDL_Record &record, const SampleModel &model, const SampleFile &file) {
  const std::int32_t number = file.version_code & 0xff;
  EXPECT_EQ(QDL_Version(&record), number);
  EXPECT_EQ(record.version_code,
            static_cast<std::uint32_t>(number < 60 ? number : file.version_code));
  EXPECT_EQ(QDL_Double_Prec(&record), file.precision == Precision::kDouble ? 1 : 0);
  EXPECT_EQ(QDL_IsCoarsened(&record), number >= 60 && (file.version_code & kCoarsenedBit) ? 1 : 0);
  EXPECT_EQ(text_of(record.header.title), model.header.title);
  EXPECT_EQ(text_of(record.header.date), model.header.date);
  EXPECT_EQ(text_of(record.header.input_name), model.header.input_name);
  EXPECT_EQ(text_of(record.header.input_type), model.header.input_type);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(text_of(record.header.comments[i]), model.header.comments[i]);
}

void expect_table_of_contents(QDL_Record &record, const SampleFile &file) {
  for (std::int32_t id = 1; id <= 37; ++id) {
    SCOPED_TRACE(testing::Message() << "block " << id);
    const auto slot = static_cast<std::size_t>(id);
    const bool present = id <= 3 || file.blocks.contains(id);
    const auto start = static_cast<std::int64_t>(file.offset[slot]);
    const auto size = static_cast<std::int64_t>(file.offset[slot + 1]) - start;
    EXPECT_EQ(QDL_Exists(&record, id - 1), present ? 1 : 0);
    EXPECT_EQ(record.contents.offsets[slot - 1], start);
    EXPECT_EQ(QDL_size_of_block(&record, id - 1), id == 37 ? 0 : size);
    EXPECT_EQ(QDL_goto_block(&record, id - 1), present ? 1 : 0);
    if (present) {
      EXPECT_EQ(record.source.file->tell(), start);
    }
  }
}

void expect_nodes(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.nodes.size(), model.nodes.size());
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    EXPECT_EQ(record.nodes[i].id, model.nodes[i].id);
    EXPECT_EQ(record.nodes[i].xyz, model.nodes[i].xyz);
    EXPECT_EQ(QDL_NodeIndex(&record, model.nodes[i].id), static_cast<std::int32_t>(i));
  }
}

void expect_topology(QDL_Record &record, const SampleModel &model, const SampleFile &file) {
  if (file.blocks.contains(14))
    return;  // only the faces are read then
  std::vector<std::int32_t> list;
  std::int32_t count = 0;
  for (const ElementGroup &group : model.element_groups) {
    for (const auto &element : group.elements) {
      list.push_back(static_cast<std::int32_t>(group.nodes_per_element));
      for (std::size_t i = 2; i < element.size(); ++i)
        list.push_back(index_of(model, element[i]));
      ++count;
    }
  }
  EXPECT_TRUE(record.faces.present);
  EXPECT_EQ(record.faces.list, list);
  EXPECT_EQ(record.faces.count, count);
}

void expect_global_mass(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  std::vector<double> values = {record.global_mass.mass};
  values.insert(values.end(), record.global_mass.centre.begin(), record.global_mass.centre.end());
  values.insert(values.end(), record.global_mass.inertia.begin(), record.global_mass.inertia.end());
  EXPECT_EQ(values, model.global_mass);
}

void expect_eigenvalues(QDL_Record &record, const SampleModel &model, const SampleFile &file) {
  ASSERT_EQ(record.eigenvalues.size(), model.eigenvalues.size());
  for (std::size_t i = 0; i < model.eigenvalues.size(); ++i) {
    Eigenvalue expected = model.eigenvalues[i];
    if ((file.version_code & 0xff) == 10) {
      const double circular_frequency =
          std::copysign(std::sqrt(std::abs(expected.eigenvalue)), expected.eigenvalue);
      expected = {expected.mode,
                  expected.eigenvalue,
                  circular_frequency / 6.28318530718,
                  circular_frequency,
                  1.0,
                  expected.eigenvalue};
    }
    const qdlflex::EigenEntry &entry = record.eigenvalues[i];
    EXPECT_EQ(entry.mode_number, expected.mode);
    EXPECT_EQ(entry.eigenvalue, expected.eigenvalue);
    EXPECT_EQ(entry.frequency, expected.frequency);
    EXPECT_EQ(entry.circular_frequency, expected.circular_frequency);
    EXPECT_EQ(entry.generalized_mass, expected.mass);
    EXPECT_EQ(entry.generalized_stiffness, expected.stiffness);
  }
}

void expect_half_mode(QDL_Record &record, std::int32_t kind, std::int32_t number,
                      const std::vector<double> &six_per_node, std::int32_t part) {
  std::vector<double> expected;
  for (std::size_t i = 0; i < six_per_node.size(); i += 6)
    for (std::size_t c = 0; c < 3; ++c)
      expected.push_back(six_per_node[i + 3 * static_cast<std::size_t>(part) + c]);
  std::vector<double> values(expected.size());
  EXPECT_EQ(QDL_Mode(&record, number, kind, values.data(), part), 1);
  EXPECT_EQ(values, expected);
}

void expect_modes(QDL_Record &record, const ModeTable &table, std::int32_t kind) {
  SCOPED_TRACE(testing::Message() << "mode data of kind " << kind);
  EXPECT_EQ(record.mode_numbers, table.numbers);
  EXPECT_EQ(QDL_ModeExist(&record, kind), 1);
  ASSERT_EQ(QDL_ModeNodeCount(&record, kind), static_cast<std::int32_t>(table.node_ids.size()));
  for (std::size_t i = 0; i < table.node_ids.size(); ++i)
    EXPECT_EQ(QDL_ModeNodeID(&record, kind, static_cast<std::int32_t>(i)), table.node_ids[i]);
  for (std::size_t mode = 0; mode < table.values.size(); ++mode)
    for (const std::int32_t part : {0, 1})
      expect_half_mode(record, kind, table.numbers[mode], table.values[mode], part);
}

void expect_shapes(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_modes(record, model.mode_shapes, QDL_MODE_SHAPE);
}

void expect_stress(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_modes(record, model.stress, QDL_MODE_STRESS);
}

void expect_strain(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_modes(record, model.strain, QDL_MODE_STRAIN);
}

void expect_nodal_masses(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  for (const NodalMass &mass : model.nodal_masses) {
    double sum = 0.0;
    for (const double value : mass.values)
      sum += value;
    EXPECT_EQ(QDL_NodalMass(&record, index_of(model, mass.node_id)),
              sum / static_cast<double>(mass.values.size()));
  }
}

void expect_nodal_inertias(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  std::map<std::int32_t, Vector6> expected;
  for (const NodalInertia &entry : model.nodal_inertias) {
    constexpr std::array<std::array<std::size_t, 3>, 3> kPlace = {
        {{0, 3, 4}, {3, 1, 5}, {4, 5, 2}}};
    const auto place = kPlace.at(static_cast<std::size_t>(entry.row - 4))
                           .at(static_cast<std::size_t>(entry.column - 4));
    expected[entry.node_id].at(place) = entry.value;
  }
  for (const qdlflex::Node &node : record.nodes) {
    ASSERT_EQ(node.inertia != nullptr, expected.contains(node.id));
    if (node.inertia) {
      EXPECT_EQ(*node.inertia, expected.at(node.id));
    }
  }
}

void expect_units(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  EXPECT_EQ(text_of(record.units.mass), model.units[0]);
  EXPECT_EQ(text_of(record.units.length), model.units[1]);
  EXPECT_EQ(text_of(record.units.time), model.units[2]);
  EXPECT_EQ(text_of(record.units.force), model.units[3]);
}

void expect_entries(const qdlflex::GeneralizedMatrix &matrix, const EntryList &expected) {
  EXPECT_EQ(matrix.header, expected.second);
  ASSERT_EQ(matrix.entries.size(), expected.entries.size());
  for (std::size_t i = 0; i < expected.entries.size(); ++i) {
    EXPECT_EQ(matrix.entries[i].row, expected.entries[i].row - 1);
    EXPECT_EQ(matrix.entries[i].column, expected.entries[i].column - 1);
    EXPECT_EQ(matrix.entries[i].value, expected.entries[i].value);
    EXPECT_EQ(matrix.entries[i].trailing, expected.entries[i].tail);
  }
}

void expect_stiffness(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_entries(record.stiffness, model.stiffness);
}

void expect_mass(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_entries(record.mass, model.mass);
}

void expect_damping(QDL_Record &record, const SampleModel &model, const SampleFile &file) {
  expect_entries(record.damping, model.damping);
  EXPECT_EQ(record.damping_on_principal_axes, file.blocks.contains(21));
}

void expect_faces(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  std::int32_t count = 0;
  for (std::size_t i = 0; i < model.faces.size(); i += 1 + static_cast<std::size_t>(model.faces[i]))
    ++count;
  EXPECT_TRUE(record.faces.present);
  EXPECT_EQ(record.faces.list, model.faces);
  EXPECT_EQ(record.faces.count, count);
}

void expect_transformation(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  std::vector<double> matrix;
  std::vector<std::int32_t> leads;
  for (const TransformationRow &row : model.transformation) {
    leads.push_back(row.lead);
    matrix.insert(matrix.end(), row.values.begin(), row.values.end());
  }
  EXPECT_EQ(record.transformation.matrix, matrix);
  EXPECT_EQ(record.transformation.row_integers, leads);
}

void expect_interface_nodes(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  EXPECT_EQ(record.interface_nodes, indices_of(model, model.interface_nodes));
}

void expect_preload(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  EXPECT_TRUE(record.preload.present);
  EXPECT_EQ(record.preload.processed, model.preload_processed);
  EXPECT_EQ(record.preload.values, model.preload);
}

void expect_loads(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.modal_loads.size(), model.load_cases.size());
  for (std::size_t i = 0; i < model.load_cases.size(); ++i) {
    EXPECT_EQ(text_of(record.modal_loads[i].label), model.load_cases[i].label);
    EXPECT_EQ(record.modal_loads[i].processed, model.load_cases[i].processed);
    EXPECT_EQ(record.modal_loads[i].values, model.load_cases[i].values);
  }
}

void expect_statistics(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.statistics.modes.size(), model.statistics.size());
  for (std::size_t i = 0; i < model.statistics.size(); ++i) {
    EXPECT_EQ(record.statistics.modes[i].node_ids, model.statistics[i].node_ids);
    EXPECT_EQ(record.statistics.modes[i].values, model.statistics[i].values);
  }
}

void expect_prestress(const std::vector<Vector6> &values, const std::vector<double> &expected) {
  std::vector<double> flat;
  for (const Vector6 &six : values)
    flat.insert(flat.end(), six.begin(), six.end());
  EXPECT_EQ(flat, expected);
}

void expect_pre_stress(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_prestress(record.pre_stress, model.pre_stress);
}

void expect_pre_strain(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  expect_prestress(record.pre_strain, model.pre_strain);
}

void expect_matrix_operators(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.matrix_operators.size(), model.matrix_operators.size());
  for (std::size_t i = 0; i < model.matrix_operators.size(); ++i) {
    const MatrixOperator &expected = model.matrix_operators[i];
    const qdlflex::MatrixOperator &matrix = record.matrix_operators[i];
    EXPECT_EQ(matrix.name, expected.name);
    EXPECT_EQ(matrix.row_labels, expected.row_labels);
    ASSERT_EQ(matrix.sub_operators.size(), expected.subs.size());
    for (std::size_t j = 0; j < expected.subs.size(); ++j) {
      EXPECT_EQ(matrix.sub_operators[j].tag, expected.subs[j].tag);
      EXPECT_EQ(matrix.sub_operators[j].columns,
                static_cast<std::int32_t>(expected.subs[j].columns));
      EXPECT_EQ(matrix.sub_operators[j].data, expected.subs[j].data);
    }
  }
}

void expect_nodal_loads(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.nodal_loads.size(), model.nodal_load_cases.size());
  for (std::size_t i = 0; i < model.nodal_load_cases.size(); ++i) {
    const auto &expected = model.nodal_load_cases[i];
    const auto &entries = record.nodal_loads[i].entries;
    ASSERT_EQ(entries.size(), expected.size());
    for (std::size_t j = 0; j < expected.size(); ++j) {
      EXPECT_EQ(entries[j].node, index_of(model, expected[j].node_id));
      EXPECT_EQ(entries[j].coordinate, expected[j].component);
      EXPECT_EQ(entries[j].value, expected[j].value);
    }
  }
}

void expect_monitor_points(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  ASSERT_EQ(record.monitor_points.size(), model.monitor_points.size());
  for (std::size_t i = 0; i < model.monitor_points.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "monitor point " << i);
    const MonitorPoint &expected = model.monitor_points[i];
    const qdlflex::MonitorPoint &point = record.monitor_points[i];
    EXPECT_EQ(point.type, expected.type);
    EXPECT_EQ(point.result_type, expected.result_type);
    EXPECT_EQ(point.component, expected.component);
    EXPECT_EQ(point.location, (qdlflex::Vector3{0.0, 0.0, 0.0}));
    EXPECT_EQ(point.name, expected.name);
    EXPECT_EQ(point.label, expected.label);
    EXPECT_EQ(point.rows, static_cast<std::int32_t>(expected.rows));
    EXPECT_EQ(point.mask, expected.mask);
    std::vector<double> values;
    for (std::size_t op = 0; op < 4; ++op) {
      EXPECT_EQ(point.operators[op].empty(), (expected.mask >> op & 1) == 0);
      values.insert(values.end(), point.operators[op].begin(), point.operators[op].end());
    }
    EXPECT_EQ(values, expected.values);
    EXPECT_EQ(point.operators[3].size(),
              static_cast<std::size_t>(point.load_operators) * expected.rows * model.mode_count);
  }
}

void expect_rotor(QDL_Record &record, const SampleModel &model, const SampleFile &) {
  std::vector<double> axis(record.rotor.centre.begin(), record.rotor.centre.end());
  axis.insert(axis.end(), record.rotor.direction.begin(), record.rotor.direction.end());
  EXPECT_EQ(axis, std::vector<double>(model.rotor_axis.begin(), model.rotor_axis.end()));
  for (std::size_t i = 0; i < 3; ++i) {
    const qdlflex::RotorMatrix &matrix = record.rotor.matrices[i];
    ASSERT_EQ(matrix.present, i < model.rotor_matrices.size());
    if (!matrix.present)
      continue;
    EXPECT_EQ(matrix.dimension, static_cast<std::int32_t>(model.mode_count));
    EXPECT_EQ(matrix.integer, model.rotor_matrices[i].lead);
    EXPECT_EQ(matrix.values, model.rotor_matrices[i].values);
  }
}

using Expectation = void (*)(QDL_Record &, const SampleModel &, const SampleFile &);

const std::map<int, Expectation> &expectations() {
  static const std::map<int, Expectation> by_block = {
      {4, expect_nodes},
      {5, expect_topology},
      {6, expect_global_mass},
      {7, expect_eigenvalues},
      {8, expect_shapes},
      {9, expect_nodal_masses},
      {10, expect_nodal_inertias},
      {11, expect_units},
      {12, expect_stiffness},
      {13, expect_mass},
      {14, expect_faces},
      {15, expect_damping},
      {16, expect_transformation},
      {17, expect_interface_nodes},
      {18, expect_stress},
      {27, expect_preload},
      {28, expect_loads},
      {29, expect_strain},
      {30, expect_statistics},
      {31, expect_pre_stress},
      {32, expect_pre_strain},
      {33, expect_monitor_points},
      {34, expect_matrix_operators},
      {35, expect_nodal_loads},
      {36, expect_monitor_points},
      {37, expect_rotor},
  };
  return by_block;
}

}  // namespace

void expect_content(QDL_Record *record, const SampleModel &model, const SampleFile &file) {
  ASSERT_NE(record, nullptr);
  expect_frame(*record, model, file);
  for (const auto &[id, expect_block] : expectations()) {
    if (!file.blocks.contains(id))
      continue;
    SCOPED_TRACE(testing::Message() << "content of block " << id);
    expect_block(*record, model, file);
  }
}

void expect_record(QDL_Record *record, const SampleModel &model, const SampleFile &file) {
  ASSERT_NE(record, nullptr);
  expect_table_of_contents(*record, file);
  expect_content(record, model, file);
}

}  // namespace qdltest
