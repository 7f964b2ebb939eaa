#include "numerics/rigid_invariants.h"

#include "record/invariant_layout.h"

namespace qdlflex {
namespace {

double total_mass(const QDL_Record &record) {
  double mass = 0.0;
  for (const Node &node : record.nodes)
    mass += node.mass;
  return mass;
}

void add(Matrix3 &sum, const Matrix3 &term) {
  for (std::size_t i = 0; i < sum.size(); ++i)
    sum[i] += term[i];
}

template <class Values>
std::vector<double> list_of(const Values &values) {
  return {values.begin(), values.end()};
}

std::vector<double> from_nodes(const QDL_Record &record, int number) {
  switch (number) {
    case 1:
      return {total_mass(record)};
    case 2:
      return list_of(first_moment(record));
    default:
      return list_of(inertia_about_origin(record));
  }
}

/// Without a global mass the centre and the inertia count as unknown too.
std::vector<double> from_global_mass(const QDL_Record &record, int number) {
  const GlobalMass &global = record.global_mass;
  if (global.mass == 0.0)
    return std::vector<double>(invariant_shape(number, 0).size());
  switch (number) {
    case 1:
      return {global.mass};
    case 2: {
      Vector3 moment = global.centre;
      for (double &value : moment)
        value *= global.mass;
      return list_of(moment);
    }
    default:
      return list_of(negate_products(global.inertia));
  }
}

}  // namespace

Matrix3 point_inertia(double mass, const Vector3 &r) {
  const double square = r[0] * r[0] + r[1] * r[1] + r[2] * r[2];
  Matrix3 inertia;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column)
      inertia[3 * row + column] = mass * ((row == column ? square : 0.0) - r[row] * r[column]);
  }
  return inertia;
}

Matrix3 negate_products(Matrix3 inertia) {
  for (std::size_t i = 0; i < inertia.size(); ++i) {
    if (i % 4 != 0)
      inertia[i] = -inertia[i];
  }
  return inertia;
}

Vector3 first_moment(const QDL_Record &record) {
  Vector3 moment{};
  for (const Node &node : record.nodes) {
    for (std::size_t c = 0; c < 3; ++c)
      moment[c] += node.mass * node.xyz[c];
  }
  return moment;
}

Matrix3 inertia_about_origin(const QDL_Record &record) {
  Matrix3 inertia{};
  for (const Node &node : record.nodes) {
    add(inertia, point_inertia(node.mass, node.xyz));
    if (node.inertia != nullptr)
      add(inertia, symmetric_matrix(*node.inertia));
  }
  return inertia;
}

std::vector<double> derive_rigid_invariant(const QDL_Record &record, int number) {
  return present(record, Block::kNodalMasses) ? from_nodes(record, number)
                                              : from_global_mass(record, number);
}

}  // namespace qdlflex
