#include "numerics/qz_pencil.h"

#include <algorithm>
#include <new>

namespace qdlflex::qz {
namespace {

constexpr std::align_val_t kCacheLine{64};
constexpr Index kLineValues = 8;

/// An odd number of cache lines: steps of that size visit every cache set before one comes again.
Index padded(Index order) {
  const Index lines = (order + kLineValues - 1) / kLineValues;
  return (lines | 1) * kLineValues;
}

void copy(const Matrix &source, const Matrix &target, Index order) {
  for (Index column = 0; column < order; ++column)
    std::copy_n(source.at(0, column), order, target.at(0, column));
}

}  // namespace

WorkingMatrix::WorkingMatrix(double *original, Index leading_dimension, Index order,
                             Content content)
    : original_{original, leading_dimension}, order_(order), work_(original_) {
  if (original == nullptr)
    return;
  const Index stride = padded(order);
  const auto bytes = static_cast<std::size_t>(stride * order) * sizeof(double);
  auto *memory = static_cast<double *>(::operator new(bytes, kCacheLine, std::nothrow));
  if (memory == nullptr)
    return;
  work_ = {memory, stride};
  if (content == Content::kKeep)
    copy(original_, work_, order_);
}

WorkingMatrix::~WorkingMatrix() {
  if (!is_copy())
    return;
  copy(work_, original_, order_);
  ::operator delete(work_.data, kCacheLine);
}

BorrowedTolerance::BorrowedTolerance(const Pencil &pencil)
    : place_(pencil.order > 1 ? pencil.b.at(pencil.order - 1, 0) : nullptr),
      value_(place_ != nullptr ? *place_ : 0.0) {
  if (place_ != nullptr)
    *place_ = 0.0;
}

BorrowedTolerance::~BorrowedTolerance() {
  if (place_ != nullptr)
    *place_ = value_;
}

}  // namespace qdlflex::qz
