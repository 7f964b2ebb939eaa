#pragma once

#include <cstddef>
#include <cstdint>

namespace qdlflex::qz {

using Index = std::ptrdiff_t;

/// A square matrix held column by column; rows and columns count from zero.
struct Matrix {
  double *data = nullptr;
  Index stride = 0;  // from one column to the next

  double &operator()(Index row, Index column) const { return data[column * stride + row]; }
  double *at(Index row, Index column) const { return data + column * stride + row; }
};

/// The pair A - lambda B and the transformations Z collected from the right, if they are wanted.
struct Pencil {
  Index order;
  Matrix a;
  Matrix b;
  Matrix z;

  bool has_z() const { return z.data != nullptr; }
};

/// A matrix of a caller, worked on in a copy whose columns are a little longer than the order, so
/// that walking along a row does not hit one cache set over and over, as it would where columns are
/// a multiple of a large power of two apart. Without memory for a copy the caller's own array is
/// used: slower, with the same result.
class WorkingMatrix {
 public:
  enum class Content { kKeep, kOverwrite };

  WorkingMatrix(double *original, Index leading_dimension, Index order,
                Content content = Content::kKeep);
  WorkingMatrix(const WorkingMatrix &) = delete;
  WorkingMatrix &operator=(const WorkingMatrix &) = delete;
  /// Copies the result back.
  ~WorkingMatrix();

  const Matrix &matrix() const { return work_; }

 private:
  bool is_copy() const { return work_.data != original_.data; }

  Matrix original_;
  Index order_;
  Matrix work_;
};

/// The arguments that the four stages share, in working copies. `z` may be null.
class WorkingPencil {
 public:
  WorkingPencil(Index leading_dimension, Index order, double *a, double *b, double *z,
                WorkingMatrix::Content content_of_z = WorkingMatrix::Content::kKeep)
      : a_(a, leading_dimension, order),
        b_(b, leading_dimension, order),
        z_(z, leading_dimension, order, content_of_z),
        pencil_{order, a_.matrix(), b_.matrix(), z_.matrix()} {}

  const Pencil &pencil() const { return pencil_; }

 private:
  WorkingMatrix a_;
  WorkingMatrix b_;
  WorkingMatrix z_;
  Pencil pencil_;
};

/// The iteration leaves the tolerance for B in the last element of B's first column. The later
/// stages borrow it: while this lives the element is the zero of the triangle that it belongs to.
class BorrowedTolerance {
 public:
  explicit BorrowedTolerance(const Pencil &pencil);
  BorrowedTolerance(const BorrowedTolerance &) = delete;
  BorrowedTolerance &operator=(const BorrowedTolerance &) = delete;
  ~BorrowedTolerance();

  double value() const { return value_; }

 private:
  double *place_;  // null for order 1, which has no such element
  double value_;
};

}  // namespace qdlflex::qz
