#include "numerics/dense_product.h"

#include "numerics/linear_combination.h"

namespace qdlflex {

std::vector<double> transposed(ConstColumns a) {
  std::vector<double> result(a.rows * a.columns);
  for (std::size_t j = 0; j < a.columns; ++j)
    for (std::size_t i = 0; i < a.rows; ++i)
      result[i * a.columns + j] = a.column(j)[i];
  return result;
}

void multiply(ConstColumns a, ConstColumns b, Columns c) {
  LinearCombination(a.columns, b.columns, transposed(b)).apply(a.data, c.data, a.rows);
}

void multiply_transposed(ConstColumns a, ConstColumns b, Columns c) {
  const std::vector<double> rows = transposed(a);
  multiply({rows.data(), a.columns, a.rows}, b, c);
}

void subtract_product(ConstColumns a, ConstColumns b, Columns c) {
  std::vector<double> product(c.rows * c.columns);
  multiply(a, b, {product.data(), c.rows, c.columns});
  add_multiple(-1.0, product.data(), c.data, product.size());
}

double dot(const double *x, const double *y, std::size_t count) {
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i)
    sum += x[i] * y[i];
  return sum;
}

void add_multiple(double factor, const double *x, double *y, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    y[i] += factor * x[i];
}

}  // namespace qdlflex
