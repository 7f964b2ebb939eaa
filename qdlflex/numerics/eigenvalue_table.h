#pragma once

#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Entry of a mode with this eigenvalue; the frequencies follow from it.
EigenEntry eigen_entry(std::int32_t mode_number, double eigenvalue, double generalized_mass,
                       double generalized_stiffness, double unit_factor);

/// A table of all modes, numbered from 1, from the diagonals of the record's generalized stiffness
/// and mass. What is not physical in it is reported.
std::vector<EigenEntry> derive_eigenvalue_table(const QDL_Record &record);

/// Scales every mode with a positive finite generalized mass to a mass of one. Returns what the
/// modes are to be divided by, one scale per mode.
std::vector<double> normalize_masses(std::vector<EigenEntry> &table);

}  // namespace qdlflex
