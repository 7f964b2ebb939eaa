#include "io/write_fixture.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace qdltest {

namespace {

// A number that tells its block, its place there and its modes, exact in a float.
double number(int block_id, std::size_t place, int mode = 0, int other_mode = 0) {
  return block_id * 1024.0 + 32.0 * static_cast<double>(place) + 5.0 * mode + other_mode + 0.25;
}

constexpr std::array<double, 4> kFrequencies = {0.5, 5.0, 50.0, 150.0};

ModeTable mode_table(int block_id, std::vector<std::int32_t> node_ids,
                     const std::vector<int> &modes, std::int32_t first_number) {
  ModeTable table{std::move(node_ids), {}, {}};
  for (std::size_t i = 0; i < modes.size(); ++i) {
    table.numbers.push_back(first_number + 2 * static_cast<std::int32_t>(i));
    auto &values = table.values.emplace_back();
    for (std::size_t place = 0; place < 6 * table.node_ids.size(); ++place)
      values.push_back(number(block_id, place, modes[i]));
  }
  return table;
}

// Rows of one number per mode.
std::vector<double> rows(int block_id, std::size_t first, std::size_t count,
                         const std::vector<int> &modes) {
  std::vector<double> values;
  for (std::size_t row = first; row < first + count; ++row)
    for (const int mode : modes)
      values.push_back(number(block_id, row, mode));
  return values;
}

std::vector<double> square(int block_id, std::size_t place, const std::vector<int> &modes) {
  std::vector<double> values;
  for (const int row : modes)
    for (const int column : modes)
      values.push_back(number(block_id, place, row, column));
  return values;
}

void fill_rigid_invariants(SampleModel &model) {
  model.invariants[1] = {8.0};
  model.invariants[2] = {4.0, -2.0, 16.0};
  model.global_mass = {8.0, 0.5, -0.25, 2.0};
  model.invariants[7].clear();
  for (std::size_t place = 0; place < 9; ++place) {
    const double value = number(24, place);
    model.invariants[7].push_back(value);
    model.global_mass.push_back(place % 4 == 0 ? value : -value);
  }
}

void fill_modal_invariants(SampleModel &model, const std::vector<int> &modes) {
  model.invariants[3] = rows(21, 0, 3, modes);
  model.invariants[4] = rows(22, 0, 3, modes);
  for (const std::size_t invariant : {5U, 8U, 9U})
    model.invariants[invariant].clear();
  for (const int mode : modes) {
    for (std::size_t c = 0; c < 3; ++c)
      for (const int other : modes)
        model.invariants[5].push_back(number(23, c, mode, other));
    for (std::size_t place = 0; place < 9; ++place)
      model.invariants[8].push_back(number(25, place, mode));
    for (const int other : modes)
      for (std::size_t place = 0; place < 9; ++place)
        model.invariants[9].push_back(number(26, place, mode, other));
  }
}

void fill_per_mode(SampleModel &model, const std::vector<int> &modes, std::int32_t first_number) {
  model.eigenvalues.clear();
  model.transformation.clear();
  for (std::size_t i = 0; i < modes.size(); ++i) {
    const int mode = modes[i];
    model.eigenvalues.push_back({first_number + 2 * static_cast<std::int32_t>(i),
                                 number(7, 0, mode),
                                 kFrequencies.at(static_cast<std::size_t>(mode)),
                                 number(7, 2, mode), number(7, 3, mode), number(7, 4, mode)});
    TransformationRow row{1600 + mode, {}};
    for (const int column : modes)
      row.values.push_back(number(16, 0, mode, column));
    model.transformation.push_back(row);
  }
  model.preload = rows(27, 0, 1, modes);
  for (std::size_t i = 0; i < model.load_cases.size(); ++i) {
    model.load_cases[i].processed = 1;
    model.load_cases[i].values = rows(28, i, 1, modes);
  }
  // Two rows of displacement and of each of two load operators; then one of velocity and one of
  // acceleration.
  model.monitor_points[0].values = rows(36, 0, 6, modes);
  model.monitor_points[1].values = rows(36, 6, 2, modes);
  for (std::size_t i = 0; i < 3; ++i)
    model.rotor_matrices[i].values = square(37, i, modes);
}

struct Largest {
  std::int32_t node_id = 0;
  double value = 0.0;
};

// The von Mises value of a stress tensor xx, yy, zz, xy, xz, yz. The numbers of the sample are such
// that no operation rounds before the root.
double von_mises_stress(const double *s) {
  const double normal =
      (std::pow(s[0] - s[1], 2) + std::pow(s[1] - s[2], 2) + std::pow(s[2] - s[0], 2)) / 2;
  return std::sqrt(normal + 3 * (s[3] * s[3] + s[4] * s[4] + s[5] * s[5]));
}

// With engineering shear.
double von_mises_strain(const double *e) {
  const double normal =
      (std::pow(e[0] - e[1], 2) + std::pow(e[1] - e[2], 2) + std::pow(e[2] - e[0], 2)) / 2;
  const double shear = e[3] * e[3] + e[4] * e[4] + e[5] * e[5];
  return std::sqrt(0.4444444444444444 * normal + 0.3333333333333333 * shear);
}

Largest largest(const ModeTable &table, std::size_t mode, double (*measure)(const double *)) {
  Largest found;
  for (std::size_t i = 0; i < table.node_ids.size(); ++i) {
    const double value = measure(table.values[mode].data() + 6 * i);
    if (value > found.value)
      found = {table.node_ids[i], value};
  }
  return found;
}

// The values node by node in the order of `nodes`, zeros where the list has none.
std::vector<double> spread(const std::vector<double> &values,
                           const std::vector<std::int32_t> &node_ids,
                           const std::vector<Node> &nodes) {
  std::vector<double> all;
  for (const Node &node : nodes) {
    const auto found = std::find(node_ids.begin(), node_ids.end(), node.id);
    const auto at = 6 * (found - node_ids.begin());
    for (std::ptrdiff_t c = 0; c < 6; ++c)
      all.push_back(found == node_ids.end() ? 0.0 : values[static_cast<std::size_t>(at + c)]);
  }
  return all;
}

void spread_over_nodes(ModeTable &table, std::vector<double> &pre_vectors,
                       const std::vector<Node> &nodes) {
  for (auto &values : table.values)
    values = spread(values, table.node_ids, nodes);
  pre_vectors = spread(pre_vectors, table.node_ids, nodes);
  table.node_ids.clear();
  for (const Node &node : nodes)
    table.node_ids.push_back(node.id);
}

}  // namespace

const std::vector<WriteForm> &every_write_form() {
  static const std::vector<WriteForm> forms = {
      {"", 316},
      {"single", 828},
      {"no_xdr", 60},
      {"no_xdr single", 572},
      {"full_str", 41},
      {"full_str single", 51},
      {"full_str no_xdr", 40},
      {"full_str single no_xdr", 50},
      {"82_comp", 20},
      {"81_comp", 10},
  };
  return forms;
}

SampleModel body_with_modes(const std::vector<int> &modes, std::int32_t first_number) {
  SampleModel model = sample_model();
  model.mode_count = modes.size();
  model.mode_shapes = mode_table(8, {101, 7, 40, 23}, modes, first_number);
  model.stress = mode_table(18, {40, 7, 23}, modes, first_number);
  model.strain = mode_table(29, {23, 101}, modes, first_number);
  // In the order of the six components, as the writer has them.
  model.nodal_inertias[4] = {7, 4, 6, number(10, 4)};
  fill_per_mode(model, modes, first_number);
  fill_rigid_invariants(model);
  fill_modal_invariants(model, modes);
  model.statistics = statistics_of(model, {18, 29});
  model.topology_lead = 0;
  model.element_groups = groups_of_faces(model);
  return model;
}

std::vector<ModeStatistics> statistics_of(const SampleModel &model, const std::set<int> &blocks) {
  std::vector<ModeStatistics> statistics(model.mode_count);
  for (std::size_t mode = 0; mode < model.mode_count; ++mode) {
    const auto keep = [&](std::size_t slot, const Largest &found) {
      statistics[mode].node_ids[slot] = found.node_id;
      statistics[mode].values[slot] = found.value;
    };
    if (blocks.contains(18))
      keep(2, largest(model.stress, mode, von_mises_stress));
    if (blocks.contains(29))
      keep(3, largest(model.strain, mode, von_mises_strain));
  }
  return statistics;
}

SampleModel in_version(SampleModel model, std::int32_t version_code) {
  if ((version_code & 0xff) < 60) {
    spread_over_nodes(model.stress, model.pre_stress, model.nodes);
    spread_over_nodes(model.strain, model.pre_strain, model.nodes);
  }
  return model;
}

std::set<int> written_blocks(std::int32_t version_code, bool solved) {
  std::set<int> blocks;
  for (int id = 4; id <= 37; ++id)
    blocks.insert(id);
  const std::int32_t version = version_code & 0xff;
  blocks = without(blocks, {33, version == 10 || version == 20 ? 14 : 5});
  return without(blocks, solved ? std::set<int>{12, 13} : std::set<int>{7, 16});
}

std::vector<ElementGroup> groups_of_faces(const SampleModel &model) {
  std::vector<ElementGroup> groups;
  for (std::size_t i = 0; i < model.faces.size();) {
    const auto count = static_cast<std::size_t>(model.faces[i++]);
    if (groups.empty() || groups.back().nodes_per_element != count)
      groups.push_back({0, count, {}});
    auto &element = groups.back().elements.emplace_back(2, 0);
    for (std::size_t node = 0; node < count; ++node)
      element.push_back(model.nodes[static_cast<std::size_t>(model.faces[i++])].id);
  }
  return groups;
}

std::string difference(const std::vector<std::uint8_t> &written, const SampleFile &expected) {
  const auto [a, b] =
      std::mismatch(written.begin(), written.end(), expected.bytes.begin(), expected.bytes.end());
  if (a == written.end() && b == expected.bytes.end())
    return "";
  const auto at = static_cast<std::size_t>(a - written.begin());
  int block = 1;
  while (block < 37 && expected.offset[static_cast<std::size_t>(block) + 1] <= at)
    ++block;
  return "byte " + std::to_string(at - expected.offset[static_cast<std::size_t>(block)]) +
         " of block " + std::to_string(block) + " differs; " + std::to_string(written.size()) +
         " bytes instead of " + std::to_string(expected.bytes.size());
}

std::set<int> without(std::set<int> blocks, const std::set<int> &dropped) {
  for (const int id : dropped)
    blocks.erase(id);
  return blocks;
}

void WriteFixture::expect_written(QDL_Record *record, const std::string &options,
                                  const SampleFile &expected, const std::string &name) {
  EXPECT_EQ(write(record, options, name), 1);
  EXPECT_EQ(errors, std::vector<std::string>{});
  ASSERT_TRUE(exists(name));
  EXPECT_EQ(difference(read_file(path(name)), expected), "");
}

void WriteFixture::expect_refused(QDL_Record *record, const std::string &options,
                                  const std::vector<std::string> &texts) {
  clear_messages();
  EXPECT_EQ(write(record, options), 0);
  EXPECT_EQ(errors, texts);
  EXPECT_FALSE(exists("written.qdl"));
}

}  // namespace qdltest
