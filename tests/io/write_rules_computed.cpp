// What a write computes: solved modes, invariants, principal axes, fewer nodes, other units.

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <utility>

#include "io/write_rules_steps.h"

namespace qdltest {

// --- Solved modes ------------------------------------------------------------------------------

void Write::orthonormalize() {
  body_.blocks.insert(16);
  if (!model_.stiffness.entries.empty() || !model_.mass.entries.empty())
    return solve();
  if (!model_.transformation.empty())
    return;
  if (model_.eigenvalues.empty())
    return drop_massless_modes();
  for (std::size_t i = 0; i < modes(); ++i) {
    model_.transformation.push_back({0, std::vector<double>(modes())});
    model_.transformation[i].values[i] = 1.0;
  }
}

// Without a table and matrices no mode has a generalized mass that counts.
void Write::drop_massless_modes() {
  for (int i = 1; i <= static_cast<int>(modes()); ++i)
    warn(
        format("Mode %d is not physically meaningful.\nIt is associated with a zero generalized "
               "mass\n",
               i));
  body_.mode_numbers.clear();
  model_.mode_count = 0;
}

void Write::solve() {
  out_.computed = true;
  for (const char *line : {"\nSolving Generalized Eigenvalue Problem to orthogonalize mode shapes.",
                           "  (Finding upper Hessenberg and upper triangular forms)",
                           "  (Converting upper Hessenberg form to quasi-upper triangular)",
                           "  (Calculating Eigenvalues)", "  (Calculating Eigenvectors)"})
    info(line);
  info(std::string(49, ' '));
  info("  Real Eigenvalues and Natural Frequencies [Hz] :");
  info("  ===============================================");
  for (int k = 1; k <= static_cast<int>(modes()); ++k)
    info(format(" %3d : *", k));
  info("\n  Applying Gram-Schmidt to eigenvectors \n ");
  Eigenvectors solution = solve_in_pairs(model_);
  model_.eigenvalues.clear();
  model_.transformation.clear();
  for (std::size_t k = 0; k < modes(); ++k) {
    const double value = solution.values[k];
    const double omega = std::sqrt(value * consistency_factor(model_.units));
    model_.eigenvalues.push_back({0, value, omega / 6.28318530718, omega, 1.0, value});
    adopt_sign(solution.vectors, k);
  }
  for (const auto &row : solution.vectors)
    model_.transformation.push_back({0, row});
  model_.stiffness = model_.mass = {0, {}};
  std::iota(body_.mode_numbers.begin(), body_.mode_numbers.end(), 1);
  transform(solution.vectors);
}

void Write::adopt_sign(Rows &vectors, std::size_t k) const {
  std::size_t largest = 0;
  for (std::size_t a = 0; a < modes(); ++a)
    if (std::abs(vectors[a][k]) > std::abs(vectors[largest][k]))
      largest = a;
  const std::size_t at = largest * modes() + k;
  if (at < found_.size() && vectors[largest][k] * found_[at] < 0.0)
    for (auto &row : vectors)
      row[k] = -row[k];
}

// All that comes mode by mode; loads on the axes of the body keep their rigid part.
void Write::transform(const Rows &t) {
  const std::size_t m = modes();
  const auto combine = [&](std::vector<double> &values, std::size_t inner, std::size_t first = 0) {
    values = combined(values, inner, t, first);
  };
  combine(model_.preload, 1, model_.preload_processed != 0 ? rigid_modes() : 0);
  for (LoadCase &load : model_.load_cases)
    combine(load.values, 1, load.processed != 0 ? rigid_modes() : 0);
  for (MonitorPoint &point : model_.monitor_points)
    combine(point.values, 1);
  for (const auto &[number, inner] :
       {std::pair<int, std::size_t>(3, 1), {4, 1}, {5, 3 * m}, {5, 1}, {8, 9}, {9, 9 * m}, {9, 9}})
    combine(invariant(number), inner);
  for (const auto &[block, table] : std::map<int, ModeTable *>{
           {8, &model_.mode_shapes}, {18, &model_.stress}, {29, &model_.strain}}) {
    if (!has(block))
      continue;
    info("Orthogonal mode file: *");
    const std::size_t length = table->values[0].size();
    std::vector<double> together;
    for (const auto &values : table->values)
      together.insert(together.end(), values.begin(), values.end());
    combine(together, length);
    for (std::size_t i = 0; i < together.size(); ++i)
      table->values[i / length][i % length] =
          body_.single ? static_cast<float>(together[i]) : together[i];
  }
}

// --- Invariants --------------------------------------------------------------------------------

bool Write::knows(const std::set<int> &numbers) const {
  return std::ranges::includes(body_.known, numbers);
}

void Write::obtain(int number) {
  const bool modal = number != 1 && number != 2 && number != 7;
  if (body_.known.contains(number) || (modal && modes() == 0))
    return;
  out_.computed = true;
  // What one pass over the nodes gives.
  std::set<int> together = {number};
  if (has(9) && (number == 5 || number == 9))
    together = {5, 9};
  else if (has(9) && modal)
    together = {3, 4, 8};
  for (const int each : together)
    if (number == 5 || number == 9 || !body_.known.contains(each))
      invariant(each) = summed_invariant(model_, each);
  body_.known.insert(together.begin(), together.end());
  const std::vector<double> &global = model_.global_mass;
  if (has(9) || modal || global.empty() || global[0] == 0.0)
    return;
  std::vector<double> &values = invariant(number);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = number == 1   ? global[0]
                : number == 2 ? global[0] * global[1 + i]
                              : (i % 4 == 0 ? 1.0 : -1.0) * global[4 + i];
}

// --- Principal axes ----------------------------------------------------------------------------

std::size_t Write::rigid_modes() const {
  std::vector<double> f;
  for (const Eigenvalue &mode : model_.eigenvalues)
    f.push_back(mode.frequency);
  if (f.size() > 6)
    return static_cast<std::size_t>(std::count_if(f.begin(), f.begin() + 6, [&](double frequency) {
      return frequency <= 0.001 * std::max(1.0, f[6]);
    }));
  std::size_t last_jump = 0;
  for (std::size_t j = 1; j < f.size(); ++j)
    if ((std::abs(f[0]) < 0.1 && f[j] > 10.0) || std::abs(f[j]) > 10000.0 * std::abs(f[j - 1]))
      last_jump = j;
  return last_jump;
}

// The bodies without nodal masses have no rigid modes: there it only counts whether they have mass.
void Write::project_forces() {
  const std::size_t rigid = rigid_modes();
  bool possible = true;
  if (((has(27) && model_.preload_processed == 0) ||
       std::ranges::count(model_.load_cases, 0, &LoadCase::processed) > 0) &&
      !has(9)) {
    obtain(1);
    possible = invariant(1)[0] != 0.0;
    if (!possible)
      error("LU Decomposition failed.\n");
  }
  const Rows resultants = rigid_resultants(model_, rigid);
  const auto project = [&](std::vector<double> &values, std::int32_t &processed) {
    if (processed != 0 || !possible || values.empty())
      return false;
    std::vector<double> six(6);
    for (std::size_t j = 0; j < rigid; ++j)
      for (std::size_t c = 0; c < 6; ++c)
        six[c] += values[j] * resultants[j][c];
    for (std::size_t c = 0; c < std::min<std::size_t>(6, values.size()); ++c)
      values[c] = std::abs(six[c]) > 1e-10 ? six[c] : 0.0;
    processed = 1;
    out_.computed = true;
    return true;
  };
  if (project(model_.preload, model_.preload_processed))
    for (std::size_t j = 0; j < rigid; ++j)
      if (model_.preload[j] != 0.0)
        warn("QDL contains a preload with a rigid body component which is being ignored");
  if (rigid < 6 && !model_.load_cases.empty())
    warn(
        format("QDL only contains %d rigid body modes.\n  The resultant load vector will be "
               "mishandled.\n",
               static_cast<int>(rigid)));
  for (LoadCase &load : model_.load_cases)
    project(load.values, load.processed);
}

// The six axes take the places of the rigid modes.
void Write::project_damping() {
  std::vector<MatrixEntry> &entries = model_.damping.entries;
  if (entries.empty() || body_.damping_on_axes)
    return;
  body_.damping_on_axes = true;
  out_.computed = true;
  const std::size_t rigid = rigid_modes(), places = modes() - rigid + 6;
  const Rows table = rigid_projection(model_, rigid);
  const auto share = [&](std::size_t place, std::size_t mode) {
    if (mode < rigid)
      return place < 6 ? table[mode][place] : 0.0;
    return place == 6 + mode - rigid ? 1.0 : 0.0;
  };
  std::vector<MatrixEntry> projected;
  for (std::size_t a = 0; a < places; ++a)
    for (std::size_t b = 0; b < places; ++b) {
      double sum = 0.0;
      for (const MatrixEntry &entry : entries) {
        const auto i = static_cast<std::size_t>(entry.row - 1);
        const auto j = static_cast<std::size_t>(entry.column - 1);
        sum += share(a, i) * entry.value * share(b, j);
        if (i != j)
          sum += share(a, j) * entry.value * share(b, i);
      }
      if (std::abs(sum) > 1e-10)
        projected.push_back(
            {static_cast<std::int32_t>(a) + 1, static_cast<std::int32_t>(b) + 1, sum, 0});
    }
  entries = projected;
}

// --- Nodes and units ---------------------------------------------------------------------------

namespace {

void for_each_face_node(std::vector<std::int32_t> &faces, auto function) {
  std::int32_t left = 0;
  for (std::int32_t &entry : faces) {
    if (left-- == 0)
      left = entry;
    else
      function(entry);
  }
}

}  // namespace

// Nodes that nothing shows go; which these are is found once.
void Write::discard_nodes() {
  if (!has(14))
    return warn("Missing element face information.");
  const std::vector<Node> old = model_.nodes;
  const auto id_of = [&](std::int32_t node) { return old[static_cast<std::size_t>(node)].id; };
  std::set<std::int32_t> &used = body_.geometry_nodes;
  if (used.empty()) {
    used.insert(model_.interface_nodes.begin(), model_.interface_nodes.end());
    for_each_face_node(model_.faces, [&](std::int32_t &node) { used.insert(id_of(node)); });
    for (const auto &load_case : model_.nodal_load_cases)
      for (const NodalLoad &load : load_case)
        if (!wishes_.skip_load_nodes)
          used.insert(load.node_id);
  }
  if (used.empty() || used.size() == old.size())
    return;
  const auto unused = [&](const auto &entry) { return !used.contains(entry.node_id); };
  std::erase_if(model_.nodes, [&](const Node &node) { return !used.contains(node.id); });
  std::erase_if(model_.nodal_masses, unused);
  std::erase_if(model_.nodal_inertias, unused);
  for (auto &load_case : model_.nodal_load_cases)
    std::erase_if(load_case, unused);
  for_each_face_node(model_.faces, [&](std::int32_t &node) {
    node = static_cast<std::int32_t>(std::ranges::find(model_.nodes, id_of(node), &Node::id) -
                                     model_.nodes.begin());
  });
  std::vector<double> none;
  shorten(8, model_.mode_shapes, none, "Shape");
  shorten(18, model_.stress, model_.pre_stress, "Stress");
  shorten(29, model_.strain, model_.pre_strain, "Strain");
}

// The nodes that are left, in their order.
void Write::shorten(int block, ModeTable &table, std::vector<double> &pre_vectors,
                    const std::string &word) {
  if (!has(block))
    return;
  std::vector<std::int32_t> kept;
  for (const Node &node : model_.nodes)
    if (std::ranges::count(table.node_ids, node.id) > 0)
      kept.push_back(node.id);
  const auto select = [&](std::vector<double> &values) {
    const std::vector<double> all = std::exchange(values, {});
    for (const std::int32_t id : kept) {
      const auto at =
          all.begin() + 6 * (std::ranges::find(table.node_ids, id) - table.node_ids.begin());
      values.insert(values.end(), at, at + 6);
    }
  };
  std::ranges::for_each(table.values, select);
  if (!pre_vectors.empty())
    select(pre_vectors);
  table.node_ids = kept;
  const int pre_block = block == 18 ? 31 : 32;
  if (!kept.empty()) {
    if (modes() > 0)
      info("Shortened " + word + " mode file: *");
    return;
  }
  for (const std::string &lost : {word + " Mode", "Pre-" + word})
    if (lost.front() != 'P' || has(pre_block))
      warn("All the nodes referenced in " + lost + " have been removed. " + lost +
           " data is eliminated.");
  body_.blocks = without(body_.blocks, {block, pre_block});
}

void Write::convert_to_si() {
  const std::array<std::string, 4> si = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
  if (!model_.units[0].empty() && model_.units != si) {
    convert(model_, ratios_to_si(model_.units), rigid_modes(), body_.damping_on_axes);
    out_.computed = true;
  }
  model_.units = si;
}

}  // namespace qdltest
