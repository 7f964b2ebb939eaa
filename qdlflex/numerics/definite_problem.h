#pragma once

#include <vector>

#include "numerics/dense_product.h"

namespace qdlflex {

/// Solves K x = lambda M x of symmetric matrices with M positive definite. The vectors, in place of
/// `vectors`, are orthonormal with respect to M however often an eigenvalue is repeated; the
/// eigenvalues ascend. False, with nothing changed, where M is not positive definite or a result is
/// not finite.
bool solve_definite(ConstColumns k, ConstColumns m, Columns vectors,
                    std::vector<double> &eigenvalues);

}  // namespace qdlflex
