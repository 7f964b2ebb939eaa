#include "numerics/gram_schmidt.h"

#include <algorithm>
#include <cmath>

namespace qdlflex {
namespace {

// What earlier vectors take out of a block of later ones are products of matrices. Within a block
// the vectors depend on each other one by one.
constexpr std::size_t kBlock = 32;

// Where less than this share of a vector's square remains, it has lost more than four digits.
constexpr double kSmallRemainder = 1e-8;

Columns square_of(std::vector<double> &values, std::size_t order) {
  return {values.data(), order, order};
}

void divide(double divisor, double *x, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    x[i] /= divisor;
}

}  // namespace

GramSchmidt::GramSchmidt(ConstColumns b)
    : b_(b),
      original_(b.rows * b.rows),
      images_(original_.size()),
      coefficients_(b.rows * kBlock),
      projected_(b.rows),
      normalized_(b.rows),
      first_dependent_(b.rows) {}

void GramSchmidt::orthonormalize(Columns t) {
  const std::size_t order = b_.rows;
  std::copy_n(t.data, original_.size(), original_.begin());
  const Columns original = square_of(original_, order);
  const Columns images = square_of(images_, order);
  for (std::size_t first = 0; first < order; first += kBlock) {
    const std::size_t count = std::min(kBlock, order - first);
    const Columns coefficients{coefficients_.data(), first, count};
    multiply_transposed(images.range(0, first), original.range(first, count), coefficients);
    subtract_product(t.range(0, first), coefficients, t.range(first, count));
    for (std::size_t j = 0; j < count; ++j)
      projected_[first + j] = dot(coefficients.column(j), coefficients.column(j), first);
    multiply(b_, t.range(first, count), images.range(first, count));
    finish_block(t, first, count);
  }
}

/// The images follow the changes of their vectors, so that the block needs one product with B.
void GramSchmidt::finish_block(Columns t, std::size_t first, std::size_t count) {
  const std::size_t order = b_.rows;
  const Columns original = square_of(original_, order);
  const Columns images = square_of(images_, order);
  for (std::size_t j = first; j < first + count; ++j) {
    const double square = dot(t.column(j), images.column(j), order);
    if (!(square > kSmallRemainder * projected_[j]))
      first_dependent_ = std::min(first_dependent_, j);
    normalized_[j] = square > 0.0;
    if (!normalized_[j]) {
      std::fill_n(images.column(j), order, 0.0);
      continue;
    }
    divide(std::sqrt(square), t.column(j), order);
    divide(std::sqrt(square), images.column(j), order);
    for (std::size_t later = j + 1; later < first + count; ++later) {
      const double coefficient = dot(images.column(j), original.column(later), order);
      projected_[later] += coefficient * coefficient;
      add_multiple(-coefficient, t.column(j), t.column(later), order);
      add_multiple(-coefficient, images.column(j), images.column(later), order);
    }
  }
}

double GramSchmidt::largest_error(ConstColumns t, std::size_t count) {
  const std::size_t order = b_.rows;
  const Columns images{images_.data(), order, count};
  const Columns products{original_.data(), count, count};
  multiply(b_, t.range(0, count), images);
  multiply_transposed(t.range(0, count), images, products);
  double largest = 0.0;
  for (std::size_t j = 0; j < count; ++j)
    for (std::size_t i = 0; i < count; ++i) {
      if (!normalized_[i] || !normalized_[j])
        continue;
      const double error = std::fabs(products.column(j)[i] - (i == j ? 1.0 : 0.0));
      if (!(error <= largest))
        largest = error;
      if (std::isnan(error))
        return error;
    }
  return largest;
}

}  // namespace qdlflex
