#pragma once

#include <vector>

#include "numerics/dense_product.h"

namespace qdlflex {

/// Makes vectors orthonormal with respect to a symmetric matrix B, which need not be definite.
class GramSchmidt {
 public:
  /// `b` must outlive this.
  explicit GramSchmidt(ConstColumns b);

  /// Classical Gram-Schmidt: the projections use the vectors as they were given, the subtractions
  /// what has become of them. A vector whose square t' B t is not positive stays as it is, and
  /// nothing is projected on it.
  void orthonormalize(Columns t);

  /// The largest entry of |T' B T - I|, over those of the first `count` vectors that the last
  /// orthonormalization has normalized. Not a number where one of them holds none.
  double largest_error(ConstColumns t, std::size_t count);

  /// Whether one of the first `count` vectors as they were first given was nearly a combination of
  /// those before it. What is left of it then points nowhere in particular.
  bool found_dependent(std::size_t count) const { return first_dependent_ < count; }

 private:
  void finish_block(Columns t, std::size_t first, std::size_t count);

  ConstColumns b_;
  std::vector<double> original_;      // the vectors as given
  std::vector<double> images_;        // B t for every finished t; zero where nothing is projected
  std::vector<double> coefficients_;  // of one block of vectors
  std::vector<double> projected_;     // of each vector, the squares taken out by earlier ones
  std::vector<bool> normalized_;
  std::size_t first_dependent_;
};

}  // namespace qdlflex
