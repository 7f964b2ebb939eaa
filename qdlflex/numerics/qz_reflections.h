#pragma once

#include <optional>

#include "numerics/qz_pencil.h"

namespace qdlflex::qz {

/// Reflection of two elements, in the form in which it is cheapest to apply:
/// t = p + g q, p += t v1, q += t v2.
struct Reflection2 {
  double g;
  double v1, v2;
};

/// The same of three elements: t = p + g2 q + g3 r.
struct Reflection3 {
  double g2, g3;
  double v1, v2, v3;
};

/// The reflection that maps (x, y) to a multiple of (1, 0); none for a zero vector.
std::optional<Reflection2> reflection(double x, double y);

/// The reflection that maps (x, y, z) to a multiple of (1, 0, 0); none for a zero vector.
std::optional<Reflection3> reflection(double x, double y, double z);

/// Applies a reflection to rows `row` and `row + 1` of A and B, columns `begin` up to `end`.
void reflect_rows(const Reflection2 &reflection, const Pencil &pencil, Index row, Index begin,
                  Index end);

/// Applies a reflection to rows `row` to `row + 2` of A and B, columns `begin` up to `end`.
void reflect_rows(const Reflection3 &reflection, const Pencil &pencil, Index row, Index begin,
                  Index end);

/// Applies a reflection to rows `row` and `row + 1` of one matrix, columns `begin` up to `end`.
void reflect_rows(const Reflection2 &reflection, const Matrix &matrix, Index row, Index begin,
                  Index end);

/// Applies a reflection to columns `column + 1` and `column`, in this order, rows `begin` up to
/// `end`.
void reflect_columns(const Reflection2 &reflection, const Matrix &matrix, Index column, Index begin,
                     Index end);

/// Applies a reflection to columns `column + 2`, `column + 1` and `column`, in this order, rows
/// `begin` up to `end`.
void reflect_columns(const Reflection3 &reflection, const Matrix &matrix, Index column, Index begin,
                     Index end);

}  // namespace qdlflex::qz
