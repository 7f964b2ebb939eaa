#pragma once

#include <cstddef>
#include <vector>

namespace qdlflex {

/// Columns of a dense matrix, one after the other without gaps.
template <class Value>
struct ColumnsOf {
  Value *data = nullptr;
  std::size_t rows = 0;
  std::size_t columns = 0;

  Value *column(std::size_t index) const { return data + index * rows; }
  /// The columns from `first` on.
  ColumnsOf range(std::size_t first, std::size_t count) const {
    return {column(first), rows, count};
  }
  // NOLINTNEXTLINE(google-explicit-constructor): as implicit as a pointer to const
  operator ColumnsOf<const Value>() const { return {data, rows, columns}; }
};

using Columns = ColumnsOf<double>;
using ConstColumns = ColumnsOf<const double>;

/// The matrix row by row.
std::vector<double> transposed(ConstColumns a);

// Products of dense matrices. C must not overlap the factors.

/// C = A B.
void multiply(ConstColumns a, ConstColumns b, Columns c);

/// C = A' B.
void multiply_transposed(ConstColumns a, ConstColumns b, Columns c);

/// C = C - A B.
void subtract_product(ConstColumns a, ConstColumns b, Columns c);

double dot(const double *x, const double *y, std::size_t count);

/// y = y + factor x.
void add_multiple(double factor, const double *x, double *y, std::size_t count);

}  // namespace qdlflex
