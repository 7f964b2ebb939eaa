#include <algorithm>
#include <cmath>
#include <map>

#include "io/write_rules_steps.h"

namespace qdltest {

Vec3 cross(const Vec3 &a, const Vec3 &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

std::vector<double> range_of(const std::vector<double> &values, std::size_t inner,
                             std::size_t count, std::size_t first, std::size_t end) {
  std::vector<double> kept;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t place = i / inner % count;
    if (place >= first && place < end)
      kept.push_back(values[i]);
  }
  return kept;
}

std::vector<double> combined(const std::vector<double> &values, std::size_t inner, const Rows &t,
                             std::size_t first) {
  std::vector<double> sums = values;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t k = i / inner % t.size();
    if (k < first)
      continue;
    sums[i] = 0.0;
    for (std::size_t a = first; a < t.size(); ++a)
      sums[i] += t[a][k] * values[i - k * inner + a * inner];
  }
  return sums;
}

// --- Sums over nodes ---------------------------------------------------------------------------

namespace {

Vec3 part(const SampleModel &model, std::size_t mode, std::size_t node, std::size_t first) {
  const double *six = model.mode_shapes.values[mode].data() + 6 * node + first;
  return {six[0], six[1], six[2]};
}

double dot(const Vec3 &a, const Vec3 &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

using Tensor = std::array<double, 9>;

Tensor nodal_inertia(const SampleModel &model, std::int32_t node_id) {
  Tensor tensor{};
  for (const NodalInertia &entry : model.nodal_inertias) {
    if (entry.node_id != node_id)
      continue;
    const auto row = static_cast<std::size_t>(entry.row - 4);
    const auto column = static_cast<std::size_t>(entry.column - 4);
    tensor[3 * row + column] = tensor[3 * column + row] = entry.value;
  }
  return tensor;
}

// The product of the matrices that stand for a x and b x.
void add_double_cross(std::vector<double> &sums, std::size_t at, double factor, const Vec3 &a,
                      const Vec3 &b) {
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      sums[at + 3 * i + j] += factor * (b[i] * a[j] - (i == j ? dot(a, b) : 0.0));
}

}  // namespace

std::vector<double> summed_invariant(const SampleModel &model, int number) {
  const std::size_t m = model.mode_count;
  const std::map<int, std::size_t> sizes = {{1, 1},         {2, 3}, {3, 3 * m}, {4, 3 * m},
                                            {5, 3 * m * m}, {7, 9}, {8, 9 * m}, {9, 9 * m * m}};
  std::vector<double> sums(sizes.at(number));
  for (std::size_t n = 0; n < model.nodal_masses.size(); ++n) {
    const double mass = model.nodal_masses[n].values[0];
    const Vec3 &r = model.nodes[n].xyz;
    const Tensor inertia = nodal_inertia(model, model.nodes[n].id);
    if (number == 1)
      sums[0] += mass;
    for (std::size_t c = 0; number == 2 && c < 3; ++c)
      sums[c] += mass * r[c];
    if (number == 7) {
      add_double_cross(sums, 0, -mass, r, r);
      for (std::size_t i = 0; i < 9; ++i)
        sums[i] += inertia[i];
    }
    for (std::size_t k = 0; number != 1 && number != 2 && number != 7 && k < m; ++k) {
      const Vec3 phi = part(model, k, n, 0), theta = part(model, k, n, 3);
      for (std::size_t c = 0; c < 3; ++c) {
        if (number == 3)
          sums[c * m + k] += mass * phi[c];
        if (number == 4)
          sums[c * m + k] +=
              mass * cross(r, phi)[c] + dot({inertia[c], inertia[3 + c], inertia[6 + c]}, theta);
        for (std::size_t j = 0; number == 5 && j < m; ++j)
          sums[(3 * k + c) * m + j] += mass * cross(phi, part(model, j, n, 0))[c];
      }
      if (number == 8)
        add_double_cross(sums, 9 * k, mass, r, phi);
      for (std::size_t j = 0; number == 9 && j < m; ++j)
        add_double_cross(sums, 9 * (k * m + j), mass, phi, part(model, j, n, 0));
    }
  }
  return sums;
}

Rows rigid_resultants(const SampleModel &model, std::size_t rigid_modes) {
  Rows resultants;
  for (std::size_t j = 0; j < rigid_modes; ++j) {
    std::vector<double> six(6);
    for (std::size_t n = 0; n < model.nodal_masses.size(); ++n) {
      const double share = model.nodal_masses[n].values[0] / model.eigenvalues[j].mass;
      const Vec3 phi = part(model, j, n, 0), moment = cross(model.nodes[n].xyz, phi);
      for (std::size_t c = 0; c < 3; ++c) {
        six[c] += share * phi[c];
        six[3 + c] += share * moment[c];
      }
    }
    resultants.push_back(six);
  }
  return resultants;
}

Rows rigid_projection(const SampleModel &model, std::size_t rigid_modes) {
  Rows table;
  for (std::size_t j = 0; j < rigid_modes; ++j) {
    std::vector<double> six(6);
    double norm = 0.0;
    for (std::size_t n = 0; n < model.nodal_masses.size(); ++n) {
      const double mass = model.nodal_masses[n].values[0];
      const Vec3 phi = part(model, j, n, 0);
      norm += mass * dot(phi, phi);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        Vec3 unit{};
        unit[axis] = 1.0;
        six[axis] += mass * dot(unit, phi);
        six[3 + axis] += mass * dot(cross(unit, model.nodes[n].xyz), phi);
      }
    }
    for (double &coefficient : six)
      coefficient = std::abs(coefficient / norm) > 1e-10 ? coefficient / norm : 0.0;
    table.push_back(six);
  }
  return table;
}

// --- Solved modes ------------------------------------------------------------------------------

Eigenvectors solve_in_pairs(const SampleModel &model) {
  // The lists have the places below the diagonal.
  const auto entry = [](const EntryList &list, std::size_t row, std::size_t column) {
    const auto found = std::ranges::find_if(list.entries, [&](const MatrixEntry &e) {
      return e.row == static_cast<std::int32_t>(row) + 1 &&
             e.column == static_cast<std::int32_t>(column) + 1;
    });
    return found == list.entries.end() ? 0.0 : found->value;
  };
  std::map<double, std::vector<double>> found;
  for (const std::size_t i : {0U, 1U}) {
    const std::size_t j = i + 2;
    const double k11 = entry(model.stiffness, i, i), k12 = entry(model.stiffness, j, i),
                 k22 = entry(model.stiffness, j, j), m11 = entry(model.mass, i, i),
                 m12 = entry(model.mass, j, i), m22 = entry(model.mass, j, j);
    const double a = m11 * m22 - m12 * m12, c = k11 * k22 - k12 * k12,
                 b = (k11 * m22 + k22 * m11) / 2 - k12 * m12;
    const double larger = (b + std::sqrt(b * b - a * c)) / a;
    for (const double value : {larger, c / (a * larger)}) {
      // Orthogonal to the row of stiffness less eigenvalue times mass that is farther from zero.
      const bool first = std::abs(k11 - value * m11) > std::abs(k22 - value * m22);
      const double x = first ? value * m12 - k12 : k22 - value * m22,
                   y = first ? k11 - value * m11 : value * m12 - k12;
      const double length = std::sqrt(m11 * x * x + 2 * m12 * x * y + m22 * y * y);
      auto &vector = found[value] = std::vector<double>(4);
      vector[i] = x / length;
      vector[j] = y / length;
    }
  }
  Eigenvectors solution{{}, Rows(4)};
  for (const auto &[value, vector] : found) {
    solution.values.push_back(value);
    for (std::size_t i = 0; i < 4; ++i)
      solution.vectors[i].push_back(vector[i]);
  }
  return solution;
}

// --- Units -------------------------------------------------------------------------------------

UnitRatios ratios_to_si(const std::array<std::string, 4> &units) {
  const std::map<std::string, double> factors = {{"", 1.0},
                                                 {"KILOGRAM", 1.0},
                                                 {"METER", 1.0},
                                                 {"SECOND", 1.0},
                                                 {"NEWTON", 1.0},
                                                 {"MEGAGRAM", 1000.0},
                                                 {"CENTIMETER", 0.01},
                                                 {"MILLIMETER", 0.001},
                                                 {"MINUTE", 60.0},
                                                 {"MILLISECOND", 0.001},
                                                 {"KNEWTON", 1000.0},
                                                 {"GRAM", 0.001},
                                                 {"KILOGRAM_FORCE", 9.80665}};
  return {factors.at(units[0]), factors.at(units[1]), factors.at(units[2]), factors.at(units[3])};
}

double consistency_factor(const std::array<std::string, 4> &units) {
  const UnitRatios u = ratios_to_si(units);
  return u.force * u.time * u.time / (u.length * u.mass);
}

namespace {

void scale(std::vector<double> &values, double factor, std::size_t first = 0,
           std::size_t end = SIZE_MAX) {
  for (std::size_t i = first; i < std::min(end, values.size()); ++i)
    values[i] *= factor;
}

void scale(Vec3 &vector, double factor) {
  for (double &value : vector)
    value *= factor;
}

void convert_monitor_point(MonitorPoint &point, std::size_t modes, const UnitRatios &r) {
  const std::string digits = std::to_string(point.component);
  std::vector<double> divisors;  // of each block of rows
  for (const auto &[bit, divisor] :
       std::map<int, double>{{1, 1.0}, {2, r.time}, {4, r.time * r.time}})
    if ((point.mask & bit) != 0)
      divisors.push_back(divisor);
  divisors.resize(point.row_blocks, 1.0);  // the others are loads
  for (std::size_t i = 0; i < point.values.size(); ++i) {
    const std::size_t row = i / modes;
    const bool translation = digits[row % point.rows] <= '3';
    const std::map<int, double> base = {{1, translation ? r.length : 1.0},
                                        {2, r.force / (r.length * r.length)},
                                        {3, 1.0},
                                        {4, translation ? r.force : r.force * r.length},
                                        {5, translation ? r.force : r.force * r.length}};
    point.values[i] *= base.at(point.result_type) / divisors[row / point.rows];
  }
}

void convert_forces(std::vector<double> &values, bool processed, std::size_t rigid_modes,
                    const UnitRatios &r) {
  const std::size_t forces = processed ? std::min<std::size_t>(rigid_modes, 3) : 0;
  scale(values, r.force, 0, forces);
  scale(values, r.force * r.length, forces);
}

double damping_factor(const MatrixEntry &entry, bool on_axes, const UnitRatios &r) {
  double factor = r.force * r.length * r.time;
  for (const std::int32_t index : {entry.row - 1, entry.column - 1})
    factor /= on_axes && index < 3 ? r.length : 1.0;
  return factor;
}

}  // namespace

void convert(SampleModel &model, const UnitRatios &r, std::size_t rigid_modes,
             bool damping_on_axes) {
  const double work = r.force * r.length, inertia = r.mass * r.length * r.length,
               stress = r.force / (r.length * r.length);
  for (Node &node : model.nodes)
    scale(node.xyz, r.length);
  for (NodalMass &mass : model.nodal_masses)
    scale(mass.values, r.mass);
  for (NodalInertia &entry : model.nodal_inertias)
    entry.value *= inertia;
  for (std::size_t i = 0; i < model.global_mass.size(); ++i)
    model.global_mass[i] = model.global_mass[i] * (i == 0  ? r.mass
                                                   : i < 4 ? r.length
                                                           : inertia) +
                           0.0;  // no -0
  for (Eigenvalue &mode : model.eigenvalues) {
    mode.eigenvalue *= r.force / (r.mass * r.length);
    mode.frequency /= r.time;
    mode.circular_frequency /= r.time;
    mode.mass *= inertia;
    mode.stiffness *= work;
  }
  for (auto &values : model.mode_shapes.values)
    for (std::size_t i = 0; i < values.size(); ++i)
      values[i] *= i % 6 < 3 ? r.length : 1.0;
  for (auto &values : model.stress.values)
    scale(values, stress);
  scale(model.pre_stress, stress);
  for (MatrixEntry &entry : model.stiffness.entries)
    entry.value *= work;
  for (MatrixEntry &entry : model.mass.entries)
    entry.value *= inertia;
  for (MatrixEntry &entry : model.damping.entries)
    entry.value *= damping_factor(entry, damping_on_axes, r);
  for (int number = 1; number <= 9; ++number)
    scale(model.invariants[static_cast<std::size_t>(number)], number == 1   ? r.mass
                                                              : number <= 3 ? r.mass * r.length
                                                                            : inertia);
  convert_forces(model.preload, model.preload_processed != 0, rigid_modes, r);
  for (LoadCase &load : model.load_cases)
    convert_forces(load.values, load.processed != 0, rigid_modes, r);
  for (auto &load_case : model.nodal_load_cases)
    for (NodalLoad &load : load_case)
      load.value *= load.component <= 3 ? r.force : work;
  for (MonitorPoint &point : model.monitor_points)
    convert_monitor_point(point, model.mode_count, r);
  for (double &coordinate : model.rotor_axis)
    coordinate *= r.length;
  for (std::size_t i = 0; i < model.rotor_matrices.size(); ++i)
    scale(model.rotor_matrices[i].values, work * r.time * (i == 1 ? 1.0 : r.time));
}

}  // namespace qdltest
