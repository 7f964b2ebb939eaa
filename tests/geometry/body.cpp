#include "geometry/body.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "numerics/qdlinvar.h"
#include "record/record.h"

namespace qdltest {

namespace {

double dot(const Vec &a, const Vec &b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec cross(const Vec &a, const Vec &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec unit(const Vec &a) {
  const double length = std::sqrt(dot(a, a));
  return {a[0] / length, a[1] / length, a[2] / length};
}

Vec image_of(const Mat &m, const Vec &v) {
  return {dot(m[0], v), dot(m[1], v), dot(m[2], v)};
}

Mat tilde(const Vec &a) {
  return {{{0, -a[2], a[1]}, {a[2], 0, -a[0]}, {-a[1], a[0], 0}}};
}

Mat times(const Mat &a, const Mat &b) {
  Mat c{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k)
        c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

Mat transposed(const Mat &a) {
  return {{{a[0][0], a[1][0], a[2][0]}, {a[0][1], a[1][1], a[2][1]}, {a[0][2], a[1][2], a[2][2]}}};
}

Mat tensor(const Six &s, double shear) {
  return {{{s[0], shear * s[3], shear * s[4]},
           {shear * s[3], s[1], shear * s[5]},
           {shear * s[4], shear * s[5], s[2]}}};
}

Six moved_tensor(const Mat &m, const Six &six, double shear) {
  const Mat t = times(times(m, tensor(six, shear)), transposed(m));
  return {t[0][0], t[1][1], t[2][2], t[0][1] / shear, t[0][2] / shear, t[1][2] / shear};
}

Six moved_shape(const Mat &m, const Six &six) {
  const double sense = dot(m[0], cross(m[1], m[2]));
  const Vec translation = image_of(m, {six[0], six[1], six[2]});
  const Vec rotation = image_of(m, {six[3], six[4], six[5]});
  return {translation[0],      translation[1],      translation[2],
          sense * rotation[0], sense * rotation[1], sense * rotation[2]};
}

double largest_of(const std::vector<double> &values) {
  double largest = 0.0;
  for (const double value : values)
    largest = std::max(largest, std::fabs(value));
  return largest;
}

const BodyNode &node_with(const Body &body, std::int32_t id) {
  return *std::ranges::find(body.nodes, id, &BodyNode::id);
}

Vec translation(const Six &six) {
  return {six[0], six[1], six[2]};
}

// Calls visit(node, modes' values at the node) for every node with mode shapes.
template <class Visit>
void for_each_mode_node(const Body &body, Visit visit) {
  for (std::size_t row = 0; row < body.kinds[0].node_ids.size(); ++row) {
    std::vector<Six> values;
    for (const auto &mode : body.kinds[0].modes)
      values.push_back(mode[row]);
    visit(node_with(body, body.kinds[0].node_ids[row]), values);
  }
}

void add_tilde_tilde(double *sum, double mass, const Vec &a, const Vec &b) {
  const Mat product = times(tilde(a), tilde(b));
  for (std::size_t i = 0; i < 9; ++i)
    sum[i] += mass * product[i / 3][i % 3];
}

std::vector<double> rigid_invariant(const Body &body, int number) {
  std::vector<double> sum(number == 1 ? 1 : number == 2 ? 3 : 9);
  for (const BodyNode &node : body.nodes) {
    for (std::size_t c = 0; number == 2 && c < 3; ++c)
      sum[c] += node.mass * node.xyz[c];
    if (number == 1)
      sum[0] += node.mass;
    if (number != 7)
      continue;
    add_tilde_tilde(sum.data(), -node.mass, node.xyz, node.xyz);
    const Mat own = tensor(node.inertia, 1.0);
    for (std::size_t i = 0; i < 9 && node.has_inertia; ++i)
      sum[i] += own[i / 3][i % 3];
  }
  return sum;
}

void add_vector(std::vector<double> &sum, std::size_t at, std::size_t stride, double factor,
                const Vec &v) {
  for (std::size_t c = 0; c < 3; ++c)
    sum[at + c * stride] += factor * v[c];
}

void expect_sixes(const std::vector<qdlflex::Vector6> &values, const std::vector<Six> &expected,
                  double tolerance) {
  std::vector<double> flat;
  std::vector<double> flat_expected;
  for (const auto &six : values)
    flat.insert(flat.end(), six.begin(), six.end());
  for (const auto &six : expected)
    flat_expected.insert(flat_expected.end(), six.begin(), six.end());
  expect_near(flat, flat_expected, tolerance);
}

void expect_mode(QDL_Record *model, int kind, std::int32_t number, const std::vector<Six> &expected,
                 double tolerance) {
  for (std::size_t part = 0; part < 2; ++part) {
    SCOPED_TRACE(testing::Message() << "kind " << kind << " mode " << number << " part " << part);
    std::vector<double> values(3 * expected.size());
    ASSERT_EQ(QDL_Mode(model, number, kind, values.data(), static_cast<int>(part)), 1);
    std::vector<double> half;
    for (const Six &six : expected)
      half.insert(half.end(), {six[3 * part], six[3 * part + 1], six[3 * part + 2]});
    expect_near(values, half, tolerance);
  }
}

void expect_von_mises(QDL_Record *model, std::int32_t number, const ModeValues &stress,
                      const std::vector<Six> &rows, double tolerance) {
  double largest = -1.0;
  std::int32_t where = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Six &s = rows[i];
    const double squares = (s[0] - s[1]) * (s[0] - s[1]) + (s[1] - s[2]) * (s[1] - s[2]) +
                           (s[2] - s[0]) * (s[2] - s[0]) +
                           6.0 * (s[3] * s[3] + s[4] * s[4] + s[5] * s[5]);
    if (std::sqrt(squares / 2.0) > largest) {
      largest = std::sqrt(squares / 2.0);
      where = stress.node_ids[i];
    }
  }
  std::int32_t node = 0;
  double value = 0.0;
  ASSERT_EQ(QDL_GetMaxVonMisesStress(model, number, &node, &value), 1);
  EXPECT_EQ(node, where);
  EXPECT_NEAR(value, largest, std::max(tolerance, 1e-14) * largest);
}

}  // namespace

Motion turn(const Vec &axis, double degrees) {
  const Vec a = unit(axis);
  const double angle = degrees * std::numbers::pi / 180.0;
  Motion motion{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      motion.matrix[i][j] = (i == j ? std::cos(angle) : 0.0) + std::sin(angle) * tilde(a)[i][j] +
                            (1.0 - std::cos(angle)) * a[i] * a[j];
    }
  }
  return motion;
}

Motion turn(const Vec &axis, const Vec &point, double degrees) {
  Motion motion = turn(axis, degrees);
  const Vec image = image_of(motion.matrix, point);
  motion.offset = {point[0] - image[0], point[1] - image[1], point[2] - image[2]};
  return motion;
}

Motion mirror(const Vec &normal, const Vec &point) {
  const Vec n = unit(normal);
  Motion motion{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j)
      motion.matrix[i][j] = (i == j ? 1.0 : 0.0) - 2.0 * n[i] * n[j];
    motion.offset[i] = 2.0 * dot(n, point) * n[i];
  }
  return motion;
}

Motion shift(const Vec &direction, double distance) {
  const Vec d = unit(direction);
  return {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {distance * d[0], distance * d[1], distance * d[2]}};
}

Body moved(const Body &body, const Motion &motion) {
  Body result = body;
  for (BodyNode &node : result.nodes) {
    node.xyz = image_of(motion.matrix, node.xyz);
    for (std::size_t c = 0; c < 3; ++c)
      node.xyz[c] += motion.offset[c];
    node.inertia = moved_tensor(motion.matrix, node.inertia, 1.0);
  }
  const auto change = [&](std::size_t kind, Six &six) {
    six = kind == 0   ? moved_shape(motion.matrix, six)
          : kind == 1 ? moved_tensor(motion.matrix, six, 1.0)
                      : moved_tensor(motion.matrix, six, 0.5);
  };
  for (std::size_t kind = 0; kind < 3; ++kind) {
    for (auto &mode : result.kinds[kind].modes) {
      for (Six &six : mode)
        change(kind, six);
    }
  }
  for (Six &six : result.pre_stress)
    change(1, six);
  for (Six &six : result.pre_strain)
    change(2, six);
  return result;
}

Body sample_body() {
  Body body;
  body.nodes = {{12, {0.5, -1.25, 2.0}, 3.0, true, {0.5, 0.75, 1.25, 0.125, -0.25, 0.0625}},
                {5, {4.0, 0.25, -0.5}, 0.75, false, {}},
                {31, {-2.5, 3.0, 1.5}, 1.5, true, {0.25, 0.5, 0.375, -0.0625, 0.03125, 0.125}}};
  body.mode_numbers = {4, 9};
  body.kinds[0] = {{12, 5, 31},
                   {{{0.5, 0.25, -1.0, 0.125, 0.0, 0.75},
                     {1.5, -0.5, 0.25, 0.0, 0.375, -0.25},
                     {-0.75, 2.0, 0.5, 0.625, -0.125, 0.25}},
                    {{1.0, 0.0, 0.5, -0.25, 0.125, 0.5},
                     {-0.25, 0.75, 1.25, 0.5, 0.25, 0.0},
                     {0.375, -1.5, 2.5, 0.25, 0.75, -0.375}}}};
  body.kinds[1] = {{5, 12},
                   {{{2.0, -1.0, 4.0, 0.5, 1.5, -0.25}, {1.0, 3.0, -2.0, 0.75, -1.25, 2.5}},
                    {{-3.0, 0.5, 1.0, 2.0, -0.5, 1.75}, {0.25, 6.0, 1.5, -1.0, 0.125, 3.0}}}};
  body.kinds[2] = {{31},
                   {{{0.5, 0.25, -0.125, 0.75, -0.5, 1.0}}, {{1.5, -0.25, 0.5, 0.125, 1.25, 2.0}}}};
  body.pre_stress = {{1.0, 2.0, 3.0, 4.0, 5.0, 6.0}, {-1.0, 0.5, 2.5, 1.5, -2.0, 0.25}};
  body.pre_strain = {{0.5, 1.5, -0.5, 2.0, 0.75, -1.0}};
  return body;
}

Body body_of(const SampleModel &model) {
  Body body;
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    body.nodes.push_back(
        {model.nodes[i].id, model.nodes[i].xyz, model.nodal_masses[i].values[0], false, {}});
  }
  for (const NodalInertia &entry : model.nodal_inertias) {
    BodyNode &node = *std::ranges::find(body.nodes, entry.node_id, &BodyNode::id);
    const auto row = static_cast<std::size_t>(std::min(entry.row, entry.column) - 4);
    const auto column = static_cast<std::size_t>(std::max(entry.row, entry.column) - 4);
    node.has_inertia = true;
    node.inertia[row == column ? row : row + column + 2] = entry.value;
  }
  body.mode_numbers = model.mode_shapes.numbers;
  const auto sixes = [](const std::vector<double> &values) {
    std::vector<Six> rows(values.size() / 6);
    for (std::size_t i = 0; i < values.size(); ++i)
      rows[i / 6][i % 6] = values[i];
    return rows;
  };
  const std::array<const ModeTable *, 3> tables = {&model.mode_shapes, &model.stress,
                                                   &model.strain};
  for (std::size_t kind = 0; kind < 3; ++kind) {
    body.kinds[kind].node_ids = tables[kind]->node_ids;
    for (const auto &values : tables[kind]->values)
      body.kinds[kind].modes.push_back(sixes(values));
  }
  body.pre_stress = sixes(model.pre_stress);
  body.pre_strain = sixes(model.pre_strain);
  return body;
}

Body scaled(const Body &body, double length, double force, double mass) {
  Body result = body;
  const auto scale = [](Six &six, std::size_t from, std::size_t to, double factor) {
    for (std::size_t i = from; i < to; ++i)
      six[i] *= factor;
  };
  for (BodyNode &node : result.nodes) {
    for (double &value : node.xyz)
      value *= length;
    node.mass *= mass;
    scale(node.inertia, 0, 6, mass * length * length);
  }
  for (auto &mode : result.kinds[0].modes) {
    for (Six &six : mode)
      scale(six, 0, 3, length);
  }
  for (auto &mode : result.kinds[1].modes) {
    for (Six &six : mode)
      scale(six, 0, 6, force / length / length);
  }
  for (Six &six : result.pre_stress)
    scale(six, 0, 6, force / length / length);
  return result;
}

QDL_Record *build(const Body &body, std::int32_t planned_nodes) {
  QDL_Record *model = QDL_Create(planned_nodes, 4);
  for (const BodyNode &node : body.nodes) {
    const Six &j = node.inertia;
    QDL_SetNodeCoordinates(model, node.id, node.xyz[0], node.xyz[1], node.xyz[2]);
    QDL_SetNodalMass(model, node.id, node.mass);
    if (node.has_inertia)
      QDL_SetNodalInertia(model, node.id, j[0], j[1], j[2], j[3], j[4], j[5]);
  }
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const ModeValues &data = body.kinds[kind];
    for (std::size_t mode = 0; mode < data.modes.size(); ++mode) {
      for (std::size_t row = 0; row < data.node_ids.size(); ++row) {
        EXPECT_EQ(QDL_SetModeVec(model, body.mode_numbers[mode], data.node_ids[row],
                                 static_cast<int>(kind), data.modes[mode][row].data()),
                  1);
      }
    }
  }
  for (std::size_t i = 0; i < body.pre_stress.size(); ++i)
    QDL_SetPreStressVec(model, body.kinds[1].node_ids[i], body.pre_stress[i].data());
  for (std::size_t i = 0; i < body.pre_strain.size(); ++i)
    QDL_SetPreStrainVec(model, body.kinds[2].node_ids[i], body.pre_strain[i].data());
  return model;
}

std::vector<double> invariant(const Body &body, int number) {
  if (number == 1 || number == 2 || number == 7)
    return rigid_invariant(body, number);
  const std::size_t m = body.mode_numbers.size();
  std::vector<double> sum(number < 5    ? 3 * m
                          : number == 5 ? 3 * m * m
                          : number == 8 ? 9 * m
                                        : 9 * m * m);
  for_each_mode_node(body, [&](const BodyNode &node, const std::vector<Six> &values) {
    for (std::size_t j = 0; j < m; ++j) {
      const Vec phi = translation(values[j]);
      if (number == 3)
        add_vector(sum, j, m, node.mass, phi);
      if (number == 4) {
        add_vector(sum, j, m, node.mass, cross(node.xyz, phi));
        const Vec theta = {values[j][3], values[j][4], values[j][5]};
        add_vector(sum, j, m, node.has_inertia ? 1.0 : 0.0,
                   image_of(transposed(tensor(node.inertia, 1.0)), theta));
      }
      if (number == 8)
        add_tilde_tilde(&sum[9 * j], node.mass, node.xyz, phi);
      for (std::size_t k = 0; k < m; ++k) {
        const Vec other = translation(values[k]);
        if (number == 5)
          add_vector(sum, 3 * m * k + j, m, node.mass, cross(other, phi));
        if (number == 9)
          add_tilde_tilde(&sum[9 * (j * m + k)], node.mass, phi, other);
      }
    }
  });
  return sum;
}

void expect_near(const std::vector<double> &values, const std::vector<double> &expected,
                 double tolerance, double scale) {
  ASSERT_EQ(values.size(), expected.size());
  const double largest = std::max(scale, largest_of(expected));
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_NEAR(values[i], expected[i], tolerance * largest) << "value " << i;
}

void expect_invariants(QDL_Record *model, const Body &body, double tolerance) {
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
    SCOPED_TRACE(testing::Message() << "invariant " << number);
    // Invariant 5 has the differences of what invariant 9 has the sums of.
    expect_near(qdlflex::obtain_invariant(*model, number).values, invariant(body, number),
                tolerance, number == 5 ? largest_of(invariant(body, 9)) : 0.0);
  }
}

void expect_body(QDL_Record *model, const Body &body, double tolerance) {
  ASSERT_EQ(QDL_NodeCount(model), static_cast<std::int32_t>(body.nodes.size()));
  for (std::size_t i = 0; i < body.nodes.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "node " << i);
    const BodyNode &expected = body.nodes[i];
    const qdlflex::Node &node = model->nodes[i];
    EXPECT_EQ(node.id, expected.id);
    EXPECT_EQ(node.mass, expected.mass);
    expect_near({node.xyz.begin(), node.xyz.end()}, {expected.xyz.begin(), expected.xyz.end()},
                tolerance);
    ASSERT_EQ(node.inertia != nullptr, expected.has_inertia);
    if (expected.has_inertia)
      expect_sixes({*node.inertia}, {expected.inertia}, tolerance);
  }
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const auto k = static_cast<int>(kind);
    ASSERT_EQ(QDL_ModeNodeCount(model, k),
              static_cast<std::int32_t>(body.kinds[kind].node_ids.size()));
    for (std::size_t i = 0; i < body.kinds[kind].node_ids.size(); ++i)
      EXPECT_EQ(QDL_ModeNodeID(model, k, static_cast<int>(i)), body.kinds[kind].node_ids[i]);
    for (std::size_t mode = 0; mode < body.kinds[kind].modes.size(); ++mode)
      expect_mode(model, k, body.mode_numbers[mode], body.kinds[kind].modes[mode], tolerance);
  }
  for (std::size_t mode = 0; mode < body.kinds[1].modes.size(); ++mode) {
    expect_von_mises(model, body.mode_numbers[mode], body.kinds[1], body.kinds[1].modes[mode],
                     tolerance);
  }
  expect_sixes(model->pre_stress, body.pre_stress, tolerance);
  expect_sixes(model->pre_strain, body.pre_strain, tolerance);
}

}  // namespace qdltest
