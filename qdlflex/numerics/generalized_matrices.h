#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "record/record.h"

namespace qdlflex {

enum class Generalized { kStiffness, kMass, kDamping };

const GeneralizedMatrix &generalized_matrix(const QDL_Record &record, Generalized which);

/// What a stiffness or mass without stored entries stands for: one diagonal entry per mode.
std::vector<GeneralizedEntry> implied_diagonal(const QDL_Record &record, Generalized which);

/// Result of `body` for the entries, stored or implied, as a span.
template <class Body>
auto with_generalized_entries(const QDL_Record &record, Generalized which, Body body) {
  using Entries = std::span<const GeneralizedEntry>;
  const std::vector<GeneralizedEntry> &stored = generalized_matrix(record, which).entries;
  return stored.empty() ? body(Entries(implied_diagonal(record, which))) : body(Entries(stored));
}

/// Fills a symmetric n x n matrix, row by row; entries outside it are left out, and of several for
/// one place the last stays. False, with all zeros, where there is no entry at all.
bool fill_full(const QDL_Record &record, Generalized which, std::int32_t n, double *matrix);

/// Zeros in a caller's n x n matrix, given as an array of rows. False where a row is missing or n
/// is not positive.
bool clear_rows(double **matrix, std::int32_t n);

/// Position of a mode number in an ascending list, or kNoIndex.
std::int32_t position_in_selection(std::span<const std::int32_t> selection,
                                   std::int32_t mode_number);

}  // namespace qdlflex
