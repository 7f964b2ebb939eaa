#pragma once

#include <cstdint>

#include "record/record.h"

namespace qdlflex {

/// Number of rigid-body modes, where a processed preload or load case needs it for its units,
/// else 0. It depends on the units and on numbers that a change of units converts, so it has to be
/// taken before.
std::int32_t rigid_modes_of_processed_loads(const QDL_Record &record);

// Conversion of one generalized matrix.
void scale_stiffness(GeneralizedMatrix &stiffness, const UnitRatios &ratios);
void scale_mass(GeneralizedMatrix &mass, const UnitRatios &ratios);
void scale_damping(QDL_Record &record, const UnitRatios &ratios);

/// Applies the current unit ratios to every stored number. Mode data stays as it is stored, only
/// its caches are emptied. Invariants and statistics that still lie in the file are converted when
/// they are read.
void scale_database(QDL_Record &record, std::int32_t rigid_modes);

}  // namespace qdlflex
