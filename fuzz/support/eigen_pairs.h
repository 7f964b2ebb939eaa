// The generalized eigenproblem by the four stages of the library, and what its pairs have to hold.
#pragma once

#include <cstdint>
#include <vector>

namespace qdlfuzz {

// A x = lambda B x in column order.
struct Pencil {
  std::int32_t n = 0, nm = 0;
  std::vector<double> a, b;

  std::size_t at(std::int32_t row, std::int32_t column) const {
    return static_cast<std::size_t>(column * nm + row);
  }
};

struct EigenPairs {
  std::vector<double> real, imaginary, beta, vectors;
  std::int32_t failed = 0;
  double lost = 1.0;  // factor by which residuals may be above rounding
  double tiny = 0.0;  // the divisor in place of zero where eigenvalues are equal
};

EigenPairs solve(Pencil pencil, bool with_vectors);

// Every vector is scaled to 1 and solves its equation but for rounding. Asks nothing of pencils
// that are singular or as good as that, where vectors need not even be finite.
void require_pairs(const Pencil &pencil, const EigenPairs &pairs);

}  // namespace qdlfuzz
