// Pairs of matrices for the tests of the eigen solver, and a run of its four stages.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qdltest {

using Index = std::ptrdiff_t;

// A square matrix held column by column, as the solver takes it.
struct Matrix {
  Index order = 0;
  std::vector<double> values;

  explicit Matrix(Index n = 0) : order(n), values(static_cast<std::size_t>(n * n)) {}
  double &operator()(Index row, Index column) { return values[at(row, column)]; }
  double operator()(Index row, Index column) const { return values[at(row, column)]; }

  static Matrix diagonal(const std::vector<double> &values);
  static Matrix identity(Index order);
  // Row by row, as one writes it.
  static Matrix of_rows(const std::vector<std::vector<double>> &rows);
  static Matrix random(Index order, unsigned seed);  // uniform in (-1, 1)
  Matrix transposed() const;
  double norm() const;  // Frobenius

 private:
  std::size_t at(Index row, Index column) const {
    return static_cast<std::size_t>(column * order + row);
  }
};

Matrix operator*(const Matrix &left, const Matrix &right);
Matrix operator*(double factor, Matrix matrix);

struct Pair {
  Matrix a, b;
};

// X' diag(k) X and X' diag(m) X with a well-conditioned random X: eigenvalues k / m.
Pair congruent(const std::vector<double> &k, const std::vector<double> &m, unsigned seed);
// Left diag and right random factors that do not depend on each other: P diag(k) Q, P diag(m) Q.
Pair equivalent(const Matrix &k, const Matrix &m, unsigned seed);
// Six zeros, then from 1e3 to 1e12.
std::vector<double> elastic_eigenvalues(Index order);

struct Solution {
  std::int32_t ierr = -1;
  Matrix a, b, z;
  std::vector<double> alfr, alfi, beta;

  std::complex<double> alpha(std::size_t i) const { return {alfr[i], alfi[i]}; }
  std::vector<double> sorted_real_ratios() const;
  // Equal bit by bit.
  bool operator==(const Solution &other) const;
};

struct Options {
  Index leading_dimension = 0;  // 0: the order
  double eps1 = 0.0;
  bool vectors = true;
  bool has_memory = true;  // for the solver
};

Solution solve(const Pair &pair, const Options &options = {});

// The largest |beta A x - alpha B x| over all eigenpairs, component by component, relative to
// |beta| |A| + |alpha| |B| and to the largest component of x. Not a number counts as infinite.
double worst_residual(const Pair &pair, const Solution &solution);

}  // namespace qdltest
