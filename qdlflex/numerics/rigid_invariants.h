#pragma once

#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Inertia tensor of a mass at a place, about the origin: m ((r . r) I - r r^T).
Matrix3 point_inertia(double mass, const Vector3 &r);

/// Turns the products of inertia of a tensor, its off-diagonal entries, into their negatives: from
/// the signs of an invariant to those of the global mass properties and back.
Matrix3 negate_products(Matrix3 inertia);

/// Invariants 2 and 7 as sums over the nodes, zero where none has a mass.
Vector3 first_moment(const QDL_Record &record);
Matrix3 inertia_about_origin(const QDL_Record &record);

/// Invariant 1, 2 or 7: summed over the nodes where there are nodal masses, else from the global
/// mass properties, else zeros.
std::vector<double> derive_rigid_invariant(const QDL_Record &record, int number);

}  // namespace qdlflex
