// A body given by its generalized matrices, for the tests of orthonormal modes.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <vector>

#include "numerics/qz_pairs.h"
#include "support/fixture.h"

namespace qdltest {

using Values = std::vector<double>;

class ModalBody : public MessageFixture {
 protected:
  // Stiffness pair.a and mass pair.b as entries of the upper triangles, zeros left out; modes 11,
  // 12, ... with random shapes at two nodes.
  QDL_Record *body(const Pair &pair);
};

// No nodes; modes 10, 20, 30, ...
QDL_Record *with_modes(std::int32_t count);

// The entries of symmetric matrices.
void set_matrices(QDL_Record *model, const Pair &pair);

// All six components at all nodes, mode by mode.
std::vector<Values> modes_of(QDL_Record *model, std::int32_t kind = QDL_MODE_SHAPE);

// Rows are old modes, columns new ones; only for as many new as old modes.
Matrix transformation_of(QDL_Record *model);

// The sum over the rows of t: shares of old vectors in new ones.
std::vector<Values> combined(const std::vector<Values> &old, const Matrix &t, std::size_t count);

// Of the eigenvalue table, by mode index.
Values eigenvalues_of(QDL_Record *model);

// The largest entry of |T' M T - I|.
double mass_error(const Matrix &mass, const Matrix &t);
// The largest entry of |T' K T - diag(eigenvalues)|, relative to the largest eigenvalue.
double stiffness_error(const Matrix &stiffness, const Matrix &t, const Values &eigenvalues);

void expect_near(const Values &got, const Values &wanted, double tolerance);

}  // namespace qdltest
