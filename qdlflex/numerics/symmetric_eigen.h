#pragma once

#include "numerics/dense_product.h"

namespace qdlflex {

/// Eigenvalues, ascending, and orthonormal eigenvectors of a symmetric matrix, which the vectors
/// replace. False where the iteration does not end, as with values that are not finite.
bool solve_symmetric(Columns a, double *eigenvalues);

}  // namespace qdlflex
