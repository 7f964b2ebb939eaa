#pragma once

#include <cstdint>
#include <vector>

#include "numerics/dense_product.h"
#include "record/record.h"

namespace qdlflex {

/// Generalized stiffness and mass of all modes as full matrices.
struct GeneralizedPair {
  std::size_t order = 0;
  std::vector<double> stiffness;
  std::vector<double> mass;
  bool diagonal = true;  // both of them
  bool finite = true;    // all values

  ConstColumns k() const { return {stiffness.data(), order, order}; }
  ConstColumns m() const { return {mass.data(), order, order}; }
};

GeneralizedPair generalized_pair(const QDL_Record &record);

/// Eigenvalues in ascending order, with kInfiniteEigenvalue for infinite ones, and as column k the
/// present modes' shares in eigenvector k.
struct EigenSolution {
  std::vector<double> eigenvalues;
  std::vector<double> vectors;
  bool converged = true;

  Columns columns() { return {vectors.data(), eigenvalues.size(), eigenvalues.size()}; }
};

/// Solves the eigenproblem and reports what is not physical in it. Equal eigenvalues come in the
/// reverse of the solver's order.
EigenSolution solve_eigenproblem(const GeneralizedPair &pair);

/// Reports eigenvalues and frequencies; `unit_factor` is that of frequency_unit_factor().
void report_eigenvalues(const std::vector<double> &eigenvalues, double unit_factor);

/// Replaces the eigenvectors by orthonormal combinations with respect to the mass and, where they
/// turn out to depend on each other, by those of a method for definite problems. A vector whose
/// generalized mass is not positive stays as it is, and so do all without memory for the step,
/// which is reported.
void orthonormalize_vectors(const GeneralizedPair &pair, EigenSolution &solution);

/// Number of eigenvalues before the first infinite one.
std::size_t finite_count(const std::vector<double> &eigenvalues);

}  // namespace qdlflex
