// What of the body goes into the file and what is said of it.

#include <algorithm>

#include "io/write_rules_steps.h"

namespace qdltest {

namespace {

void cut(auto &entries, std::size_t first, std::size_t end) {
  const auto all = entries;
  entries.clear();
  for (std::size_t i = first; i < std::min(end, all.size()); ++i)
    entries.push_back(all[i]);
}

}  // namespace

void Write::cut_to_range() {
  const std::size_t m = modes();
  end_ = std::max(first_, end_);
  SampleModel &file = out_.content = model_;
  file.mode_count = end_ - first_;
  file.coordinates_per_node = 3;
  if (file.units[0].empty())
    file.units = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
  std::vector<std::int32_t> numbers = body_.mode_numbers;
  cut(numbers, first_, end_);
  for (ModeTable *table : {&file.mode_shapes, &file.stress, &file.strain}) {
    table->numbers = numbers;
    cut(table->values, first_, end_);
  }
  cut(file.eigenvalues, first_, end_);
  for (std::size_t i = 0; i < file.eigenvalues.size(); ++i)
    file.eigenvalues[i].mode = numbers[i];
  const auto keep = [&](std::vector<double> &values, std::size_t inner) {
    values = m == 0 ? std::vector<double>() : range_of(values, inner, m, first_, end_);
  };
  cut(file.transformation, first_, end_);
  for (TransformationRow &row : file.transformation)
    keep(row.values, 1);
  for (const auto &[number, inner] : {std::pair<std::size_t, std::size_t>(3, 1),
                                      {4, 1},
                                      {5, 3 * m},
                                      {5, 1},
                                      {8, 9},
                                      {9, 9 * m},
                                      {9, 9}})
    keep(file.invariants[number], inner);
  keep(file.preload, 1);
  for (LoadCase &load : file.load_cases)
    keep(load.values, 1);
  for (MonitorPoint &point : file.monitor_points)
    keep(point.values, 1);
  for (RotorMatrix &matrix : file.rotor_matrices) {
    keep(matrix.values, m);
    keep(matrix.values, 1);
  }
  cut_damping(file.damping.entries);
  imply_matrices(file);
  file.topology_lead = 0;
  file.element_groups = groups_of_faces(file);
  file.statistics = statistics_of(file, out_.blocks);
  file = in_version(file, wishes_.form.code);
}

// The axes go with the first mode alone; behind their six places come the flexible modes.
void Write::cut_damping(std::vector<MatrixEntry> &entries) const {
  if (first_ == 0 && end_ == modes())
    return;
  const auto rigid = static_cast<std::int32_t>(body_.damping_on_axes ? rigid_modes_ : 0);
  const auto first = static_cast<std::int32_t>(first_), end = static_cast<std::int32_t>(end_);
  const std::int32_t axes = body_.damping_on_axes ? 6 : 0;
  const auto is_left = [&](std::int32_t &one_based) {
    if (one_based <= axes)
      return first == 0;
    const std::int32_t mode = one_based - 1 - axes + rigid;
    one_based = axes + 1 + mode - first - std::max(rigid - first, 0);
    return mode >= first && mode < end;
  };
  std::erase_if(entries, [&](MatrixEntry &entry) {
    const bool row = is_left(entry.row), column = is_left(entry.column);
    return !row || !column;
  });
}

// Where no list is stored, the table of eigenvalues implies diagonals.
void Write::imply_matrices(SampleModel &file) const {
  for (std::size_t i = 0; i < modes(); ++i) {
    const auto place = static_cast<std::int32_t>(i) + 1;
    const bool known = !model_.eigenvalues.empty();
    if (model_.stiffness.entries.empty())
      file.stiffness.entries.push_back(
          {place, place, known ? model_.eigenvalues[i].stiffness : 0.0, 0});
    if (model_.mass.entries.empty())
      file.mass.entries.push_back({place, place, known ? model_.eigenvalues[i].mass : 1e-16, 0});
  }
}

// Of generalized stiffness and mass it says what the record has.
void Write::announce() {
  const std::vector<std::pair<const char *, int>> lines = {
      {"Nodal Coords", 4},         {"Element Faces", 14},         {"Eigenvalues", 7},
      {"Mode Shapes", 8},          {"Global Mass Properties", 6}, {"Nodal Masses", 9},
      {"Nodal Inertias", 10},      {"Generalized Stiffness", 12}, {"Generalized Mass", 13},
      {"Generalized Damping", 15}, {"Mode Transformation", 16},   {"Stress Modes", 18},
      {"Interface Nodes", 17},     {"Inertia Invariants", 19},    {"Modal Preload", 27},
      {"Modal Loads", 28},         {"Strain Modes", 29},          {"Nodal Pre-Stress", 31},
      {"Nodal Pre-Strain", 32},    {"Matrix Operators", 34},      {"Modal Load Nodal", 35},
      {"Monitor Points", 36},      {"Rotor Dynamics", 37}};
  info("\nCreating a QDL File with the following information:\n");
  for (const auto &[label, block] : lines) {
    const bool yes = block == 12 || block == 13 ? has(block) : writes(block);
    info(format("%30s %s", label, yes ? "Yes" : "No"));
  }
}

void Write::describe_blocks() {
  const SampleModel &file = out_.content;
  const auto say = [&](int block, const std::string &head, auto... counts) {
    if (!writes(block))
      return;
    std::string text = "\n" + head + ":";
    for (const auto &[name, count] : {counts...})
      text += format("\n   %s: %ld", name, static_cast<long>(count));
    info(text);
  };
  using Count = std::pair<const char *, std::size_t>;
  const Count modes = {"Modes", file.mode_count};
  const auto nodes = [](const ModeTable &table) { return Count{"Nodes", table.node_ids.size()}; };
  say(4, "Node info", Count{"Count", file.nodes.size()});
  if (writes(6)) {
    const std::vector<double> &mass = file.global_mass;
    info("\nGlobal body properties:");
    info(format("Mass          : %lf\n", mass[0]));
    info(format("Center of Mass: %lf %lf %lf", mass[1], mass[2], mass[3]));
    for (const std::size_t row : {4U, 7U, 10U})
      info(format("%s %lf %lf %lf", row == 4 ? "Inertia Tensor:" : "               ", mass[row],
                  mass[row + 1], mass[row + 2]));
  }
  say(7, "Eigenvalue info", modes);
  say(8, "Trans Mode info", modes, nodes(file.mode_shapes));
  if (writes(8))
    info("\nWriting Mode Shapes");
  const auto massless = std::ranges::count_if(
      file.nodal_masses, [](const NodalMass &mass) { return mass.values[0] == 0.0; });
  if (writes(9) && massless > 0)
    warn(format("Found %d massless node(s)", static_cast<int>(massless)));
  say(10, "Nodal inertia info", Count{"Sparse matrix entries", file.nodal_inertias.size()});
  info(format("\nUnits:\n   Mass:   %s\n   Length: %s\n   Time:   %s\n   Force:  %s",
              file.units[0].c_str(), file.units[1].c_str(), file.units[2].c_str(),
              file.units[3].c_str()));
  if (writes(14)) {
    std::size_t faces = 0;
    for (const ElementGroup &group : file.element_groups)
      faces += group.elements.size();
    info(format("\nNumber of Element Faces: %d", static_cast<int>(faces)));
  }
  say(18, "Stress Mode info", modes, nodes(file.stress));
  say(29, "Strain Mode info", modes, nodes(file.strain));
  say(31, "Pre-Stress info", nodes(file.stress));
  say(32, "Pre-Strain info", nodes(file.strain));
  say(34, "Matrix Operator Info", Count{"Count", file.matrix_operators.size()});
  say(35, "Modal Load Nodal Info", Count{"Count", file.nodal_load_cases.size()});
  say(36, "Monitor Point info", Count{"Count", file.monitor_points.size()});
  if (writes(37)) {
    const std::array<double, 6> &axis = file.rotor_axis;
    info("\nRotor Dynamics info:\n");
    info("   Number of Matrices: 3");
    info(format("   Center of Axis: %lf %lf %lf", axis[0], axis[1], axis[2]));
    info(format("   Vector of Axis: %lf %lf %lf", axis[3], axis[4], axis[5]));
  }
}

}  // namespace qdltest
