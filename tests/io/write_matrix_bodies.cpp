// Bodies of every kind for the matrix of write options.

#include <algorithm>
#include <cmath>

#include "io/write_matrix_bodies.h"
#include "io/write_rules_steps.h"

namespace qdltest {

namespace {

// Numbers without order, exact in a float.
double number(int block_id, std::size_t place, std::size_t mode = 0, std::size_t other = 0) {
  const std::size_t mixed = static_cast<std::size_t>(block_id) * 7919 + place * 104729 +
                            mode * 1299709 + other * 15485863;
  return (static_cast<double>(mixed % 4093) - 2046.0) / 64.0;
}

std::vector<double> numbers(int block_id, std::size_t count) {
  std::vector<double> values;
  for (std::size_t i = 0; i < count; ++i)
    values.push_back(number(block_id, i, i / 7));
  return values;
}

// A plate of four faces around the first node, the two sides of a triangle far away, a node that
// nothing refers to and one that only a load does.
void add_geometry(SampleModel &model) {
  model.nodes = {{101, {2, 3, 1}}, {7, {1, 2, 1}},   {40, {2, 2, 1}},  {23, {3, 2, 1}},
                 {31, {3, 3, 1}},  {32, {3, 4, 1}},  {33, {2, 4, 1}},  {34, {1, 4, 1}},
                 {35, {1, 3, 1}},  {90, {10, 3, 1}}, {91, {3, 11, 2}}, {92, {2, 2, 9}},
                 {55, {3, 4, 2}},  {60, {4, 2, 3}}};
  model.faces = {4, 0, 8, 1, 2, 4, 0, 2, 3,  4,  4, 0,  4,  5,
                 6, 4, 0, 6, 7, 8, 3, 9, 10, 11, 3, 11, 10, 9};
  model.interface_nodes = {23, 90};
  model.nodal_load_cases = {{{7, 1, number(35, 0)}, {60, 6, number(35, 1)}},
                            {{40, 3, number(35, 2)}}};
  for (std::size_t i = 0; i < model.nodes.size(); ++i)
    model.nodal_masses.push_back(
        {model.nodes[i].id, {i == 6 ? 0.0 : 0.25 * static_cast<double>(i + 1)}});
  model.nodal_inertias = {{7, 4, 4, 5.5},  {7, 5, 5, 6.5},   {7, 6, 6, 7.5}, {7, 4, 5, 0.5},
                          {7, 4, 6, 0.25}, {7, 5, 6, -0.75}, {55, 5, 5, 3.5}};
}

ModeTable table(int block_id, const std::vector<std::int32_t> &node_ids, std::size_t modes) {
  ModeTable table{node_ids, {}, {}};
  for (std::size_t mode = 0; mode < modes; ++mode) {
    table.numbers.push_back(static_cast<std::int32_t>(3 + 2 * mode));
    auto &values = table.values.emplace_back();
    for (std::size_t place = 0; place < 6 * node_ids.size(); ++place)
      values.push_back(number(block_id, place, mode));
  }
  return table;
}

void add_modes(SampleModel &model, const std::vector<double> &frequencies) {
  const std::size_t modes = model.mode_count = frequencies.size();
  std::vector<std::int32_t> all;
  for (const Node &node : model.nodes)
    all.push_back(node.id);
  model.mode_shapes = table(8, all, modes);
  model.stress = table(18, {40, 55, 23}, modes);
  model.strain = table(29, {101, 92}, modes);
  model.pre_stress = numbers(31, 18);
  model.pre_strain = numbers(32, 12);
  model.eigenvalues.clear();
  model.transformation.clear();
  for (std::size_t mode = 0; mode < modes; ++mode) {
    model.eigenvalues.push_back({model.mode_shapes.numbers[mode], number(7, 0, mode),
                                 frequencies[mode], number(7, 1, mode),
                                 2.0 + 0.5 * static_cast<double>(mode), number(7, 2, mode)});
    TransformationRow row{1600 + static_cast<std::int32_t>(mode), {}};
    for (std::size_t other = 0; other < modes; ++other)
      row.values.push_back(number(16, mode, other));
    model.transformation.push_back(row);
  }
  model.preload = numbers(27, modes);
  model.preload_processed = 0;
  for (LoadCase &load : model.load_cases)
    load = {load.label, 0, numbers(28, modes)};
  model.monitor_points[0].result_type = 4;
  model.monitor_points[0].component = 15;
  for (MonitorPoint &point : model.monitor_points)
    point.values = numbers(36, point.rows * point.row_blocks * modes);
  for (RotorMatrix &matrix : model.rotor_matrices)
    matrix.values = numbers(37, modes * modes);
  model.damping = {
      1500, {{1, 1, 1.5, 11}, {2, 1, 2.5, 0}, {3, 3, 3.5, 12}, {4, 3, 4.5, 0}, {4, 4, 5.5, 13}}};
  for (std::size_t i = 1; i <= 9; ++i) {
    const std::array<std::size_t, 10> sizes = {
        0, 1, 3, 3 * modes, 3 * modes, 3 * modes * modes, 0, 9, 9 * modes, 9 * modes * modes};
    model.invariants[i] = numbers(static_cast<int>(18 + i), sizes[i]);
  }
  model.invariants[1] = {12.5};
}

// The frequencies of the modes that are to be found, in another order and nearly uncoupled.
void add_matrices(SampleModel &model) {
  const std::array<double, 4> frequencies = {50, 150, 0.5, 5};
  std::array<double, 4> diagonal{};
  for (std::int32_t i = 1; i <= 4; ++i) {
    const auto mode = static_cast<std::size_t>(i - 1);
    const double omega = 6.28318530718 * frequencies.at(mode);
    diagonal.at(mode) = static_cast<float>(4.0 * omega * omega / consistency_factor(model.units));
    model.stiffness.entries.push_back({i, i, diagonal.at(mode), 1200 + i});
    model.mass.entries.push_back({i, i, 4.0, 0});
  }
  for (const std::int32_t i : {1, 2}) {
    const auto mode = static_cast<std::size_t>(i - 1);
    const double coupled = 0.125 * std::sqrt(diagonal.at(mode) * diagonal.at(mode + 2));
    model.stiffness.entries.push_back({i + 2, i, static_cast<float>(coupled), 0});
    model.mass.entries.push_back({i + 2, i, 0.25, 0});
  }
}

// What is not in a block is not in the body.
void keep_blocks(SampleModel &model, const std::set<int> &blocks) {
  const SampleModel all = model;
  const auto drop = [&](int block, auto &part) {
    if (!blocks.contains(block))
      part = {};
  };
  drop(4, model.nodes);
  drop(6, model.global_mass);
  drop(7, model.eigenvalues);
  drop(8, model.mode_shapes);
  drop(9, model.nodal_masses);
  drop(10, model.nodal_inertias);
  drop(11, model.units);
  drop(12, model.stiffness);
  drop(13, model.mass);
  drop(14, model.faces);
  drop(15, model.damping);
  drop(16, model.transformation);
  drop(17, model.interface_nodes);
  drop(18, model.stress);
  drop(27, model.preload);
  drop(28, model.load_cases);
  drop(29, model.strain);
  drop(31, model.pre_stress);
  drop(32, model.pre_strain);
  drop(34, model.matrix_operators);
  drop(35, model.nodal_load_cases);
  drop(36, model.monitor_points);
  for (int block = 19; block <= 26; ++block)
    drop(block, model.invariants[static_cast<std::size_t>(block < 24 ? block - 18 : block - 17)]);
}

const std::vector<double> kClamped = {0.5, 5, 50, 150};

}  // namespace

Body body_of(const Kind &kind) {
  Body body{};
  body.content = sample_model();
  body.blocks = kind.blocks;
  SampleModel &model = body.content;
  model.units = kind.units;
  model.stiffness = {kind.blocks.contains(12) ? 1200 : 0, {}};
  model.mass = {kind.blocks.contains(13) ? 1300 : 0, {}};
  model.nodal_masses.clear();
  model.invariants = {};
  model.global_mass = {6.5, 1.5, -2.5, 3.5, 40, 1, 2, 1, 50, 3, 2, 3, 60};
  add_geometry(model);
  add_modes(model, kind.frequencies);
  if (kind.blocks.contains(12))
    add_matrices(model);
  if (kind.blocks.contains(21)) {
    model.preload_processed = 1;
    for (LoadCase &load : model.load_cases)
      load.processed = 1;
    model.damping.entries.push_back({7, 1, 5.5, 0});
    model.damping.entries.push_back({9, 8, 6.5, 0});
  }
  if (kind.strain_inside) {
    model.strain = table(29, {55}, kind.frequencies.size());
    model.pre_strain = numbers(32, 6);
  }
  keep_blocks(model, kind.blocks);
  body.mode_numbers = model.mode_shapes.numbers;
  body.damping_on_axes = kind.blocks.contains(15) && kind.blocks.contains(21);
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9})
    if (kind.blocks.contains(number < 6 ? number + 18 : number + 17))
      body.known.insert(number);
  return body;
}

const std::vector<Kind> &every_kind() {
  const std::array<std::string, 4> cgs = {"MEGAGRAM", "CENTIMETER", "MILLISECOND",
                                          "KILOGRAM_FORCE"};
  const std::array<std::string, 4> slow = {"GRAM", "MILLIMETER", "MINUTE", "KNEWTON"};
  const std::set<int> everything = without(written_blocks(60), {30});
  const std::set<int> invariants = {19, 20, 21, 22, 23, 24, 25, 26};
  std::set<int> unsolved = without(everything, invariants);
  unsolved = without(unsolved, {7, 16});
  unsolved.insert({12, 13});
  static const std::vector<Kind> kinds = {
      {"Everything", everything, kClamped, cgs},
      {"Unsolved", unsolved, kClamped, cgs},
      {"Solved", without(without(everything, invariants), {6, 16}), kClamped, cgs},
      {"HalfFree", without(without(everything, invariants), {6}), {0, 0, 20, 30}, slow},
      {"Free", without(without(everything, invariants), {10}), {0, 0, 0, 0, 0, 0, 20, 30}, cgs},
      {"MomentumAlone", {4, 7, 8, 9, 10, 11, 14, 17, 21}, kClamped, cgs},
      {"GlobalMassAlone", {4, 6, 7, 8, 11, 14, 15, 16, 28}, kClamped, cgs},
      {"WithoutMass", {4, 7, 8, 14, 17, 27, 28}, kClamped, {}},
      {"StressAndStrain", {4, 7, 8, 9, 14, 17, 18, 29, 31, 32}, kClamped, {}, true},
      {"ShapesAlone", {4, 8, 9, 11, 14}, kClamped, cgs},
      {"Operators", {4, 7, 8, 11, 14, 34, 35, 36, 37}, kClamped, cgs},
      {"Geometry", {4, 9, 11, 14, 17}, {}, cgs},
      {"Bare", {}, {}, {}},
  };
  return kinds;
}

const Kind &kind_named(const std::string &name) {
  return *std::ranges::find(every_kind(), name, &Kind::name);
}

}  // namespace qdltest
