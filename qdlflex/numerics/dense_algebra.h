#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qdlflex {

/// A square matrix in place: an array of its rows, each of as many values.
using Rows = std::span<double *const>;

/// LU factors with partial pivoting, in place; `permutation` receives for each row where it came
/// from. False when a pivot is exactly zero, but for a matrix of order one, which always passes.
bool factorize(Rows matrix, int32_t *permutation);

/// Solves with the factors. `solution` must not be `right_hand_side`.
void solve_factorized(Rows factors, const int32_t *permutation, const double *right_hand_side,
                      double *solution);

/// Replaces the factors by the inverse of the matrix. Throws std::bad_alloc, factors untouched.
void invert_factorized(Rows factors, const int32_t *permutation);

}  // namespace qdlflex
