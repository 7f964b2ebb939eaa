#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// What a walk through a list of generalized entries finds for a mode. It ends at the mode's
/// diagonal entry or at an off-diagonal entry, whichever comes first.
struct DiagonalValue {
  std::optional<double> value;
  bool blocked = false;  // by an off-diagonal entry; neither: the list lacks the entry
};

DiagonalValue find_diagonal(const GeneralizedMatrix &matrix, std::int32_t mode_index);

/// The answers for all modes from one walk.
std::vector<DiagonalValue> find_diagonals(const GeneralizedMatrix &matrix, std::int32_t modes);

/// The generalized mass of a mode for which none is stored: negligible beside its stiffness.
double implied_mass(double stiffness);

/// Eigenvalue data of a mode.
struct ModeEigenvalue {
  EigenEntry entry;
  bool has_eigenvalue = true;  // not with a generalized mass of zero
};

/// From the eigenvalue table or, where that has no entry for the mode, from the generalized
/// stiffness and mass; none where these are not diagonal.
std::optional<ModeEigenvalue> eigenvalue_of(const QDL_Record &record, std::int32_t mode_index);

/// The same for all modes in time linear in modes and entries.
std::vector<std::optional<ModeEigenvalue>> all_eigenvalues(const QDL_Record &record);

}  // namespace qdlflex
