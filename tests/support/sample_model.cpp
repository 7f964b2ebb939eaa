#include "support/qdl_bytes.h"

namespace qdltest {

namespace {

// A number that tells its block and its place in the block, exact in a float.
double number(int block_id, std::size_t place) {
  return block_id * 256.0 + static_cast<double>(place) + 0.25;
}

std::vector<double> numbers(int block_id, std::size_t count, std::size_t first = 0) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i)
    values[i] = number(block_id, first + i);
  return values;
}

ModeTable mode_table(int block_id, std::vector<std::int32_t> node_ids) {
  const std::size_t per_mode = 6 * node_ids.size();
  return {std::move(node_ids),
          {7, 9},
          {numbers(block_id, per_mode), numbers(block_id, per_mode, per_mode)}};
}

ModeStatistics statistics_of_mode(std::size_t mode) {
  ModeStatistics statistics{};
  for (std::size_t slot = 0; slot < statistics.values.size(); ++slot) {
    statistics.node_ids[slot] = static_cast<std::int32_t>(3000 + 100 * mode + slot);
    statistics.values[slot] = number(30, 13 * mode + slot);
  }
  return statistics;
}

void fill_geometry(SampleModel &model) {
  model.nodes = {{101, {0.5, 0.25, 0.125}},
                 {7, {10.5, 0.75, 0.0625}},
                 {40, {11.5, 20.5, 0.375}},
                 {23, {1.5, 21.5, 30.5}}};
  model.topology_lead = 5001;
  model.element_groups = {
      {5002, 4, {{5003, 5004, 101, 7, 40, 23}}},
      {5005, 3, {{5006, 5007, 101, 40, 7}, {5008, 5009, 7, 23, 101}}},
  };
  model.faces = {4, 0, 1, 2, 3, 3, 0, 2, 1, 3, 1, 3, 0};
  model.interface_nodes = {23, 101};
}

void fill_masses(SampleModel &model) {
  model.global_mass = numbers(6, 13);
  for (std::size_t i = 0; i < model.nodes.size(); ++i)
    model.nodal_masses.push_back({model.nodes[i].id, {number(9, i)}});
  model.nodal_inertias = {{7, 4, 4, number(10, 0)}, {7, 5, 5, number(10, 1)},
                          {7, 6, 6, number(10, 2)}, {7, 4, 5, number(10, 3)},
                          {7, 6, 4, number(10, 4)}, {7, 5, 6, number(10, 5)},
                          {23, 5, 5, number(10, 6)}};
}

void fill_modes(SampleModel &model) {
  model.mode_count = 2;
  for (std::size_t mode = 0; mode < 2; ++mode) {
    const auto values = numbers(7, 5, 5 * mode);
    model.eigenvalues.push_back({static_cast<std::int32_t>(7 + 2 * mode), values[0], values[1],
                                 values[2], values[3], values[4]});
    model.transformation.push_back(
        {static_cast<std::int32_t>(1600 + mode), numbers(16, 2, 2 * mode)});
    model.statistics.push_back(statistics_of_mode(mode));
  }
  model.mode_shapes = mode_table(8, {101, 7, 40, 23});
  model.stress = mode_table(18, {40, 7, 23});
  model.strain = mode_table(29, {23, 101});
  model.pre_stress = numbers(31, 18);
  model.pre_strain = numbers(32, 12);
  model.stiffness = {1200, {{1, 1, number(12, 0), 1201}, {1, 2, number(12, 1), 1202}}};
  model.mass = {1300, {{2, 2, number(13, 0), 1301}}};
  model.damping = {
      1500,
      {{1, 1, number(15, 0), 1501}, {2, 2, number(15, 1), 1502}, {2, 1, number(15, 2), 1503}}};
}

void fill_invariants(SampleModel &model) {
  const std::size_t m = model.mode_count;
  const std::array<std::size_t, 10> lengths = {0,         1, 3, 3 * m, 3 * m,
                                               3 * m * m, 0, 9, 9 * m, 9 * m * m};
  for (int invariant = 1; invariant <= 9; ++invariant) {
    const int block_id = invariant < 6 ? invariant + 18 : invariant + 17;
    const auto slot = static_cast<std::size_t>(invariant);
    if (invariant != 6)
      model.invariants[slot] = numbers(block_id, lengths[slot]);
  }
}

void fill_loads(SampleModel &model) {
  model.preload_processed = 1;
  model.preload = numbers(27, 2);
  model.load_cases = {{"gravity along x", 0, numbers(28, 2)},
                      {"thermal case", 1, numbers(28, 2, 2)},
                      {"", 0, numbers(28, 2, 4)}};
  model.nodal_load_cases = {{{7, 1, number(35, 0)}, {23, 6, number(35, 1)}},
                            {{40, 3, number(35, 2)}}};
}

void fill_operators(SampleModel &model) {
  // Displacement (2 rows) and a load operator of two parts; then velocity and acceleration.
  model.monitor_points = {
      {1, 2, 13, "tip", "displacement at the tip", 2, 3, 1 | 8, numbers(36, 2 * 3 * 2)},
      {4, 5, 6, "hub", "rates of the hub", 1, 2, 2 | 4, numbers(36, 1 * 2 * 2, 12)}};
  model.matrix_operators = {{"recover",
                             {"row one", "row two"},
                             {{1, "first", numbers(34, 2)}, {3, "second", numbers(34, 6, 2)}}},
                            {"plain", {"only row"}, {}}};
  model.rotor_axis = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5};
  for (std::size_t i = 0; i < 3; ++i)
    model.rotor_matrices.push_back({static_cast<std::int32_t>(3700 + i), numbers(37, 4, 4 * i)});
}

}  // namespace

SampleModel sample_model() {
  SampleModel model{};
  model.coordinates_per_node = 3;
  model.header = {"Sample body",
                  "2024-05-06 07:08",
                  "/models/sample.inp",
                  "solver",
                  {"first comment", "second comment", "third comment"}};
  model.units = {"KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  fill_geometry(model);
  fill_modes(model);
  fill_masses(model);
  fill_invariants(model);
  fill_loads(model);
  fill_operators(model);
  return model;
}

}  // namespace qdltest
