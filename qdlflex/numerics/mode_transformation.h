#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "modes/mode_rewrite.h"
#include "record/record.h"

namespace qdlflex {

// Modes replaced by linear combinations of themselves. Coefficients stand row by row, one row per
// present mode and one column per new mode. The number of modes itself stays the caller's business.

/// The combined modes of one kind, written and finished but not yet adopted; each old mode is read
/// once, whatever its size. None after a reported failure.
std::optional<ModeRewrite> combine_modes(QDL_Record &record, std::int32_t kind,
                                         std::int32_t new_modes,
                                         std::span<const double> coefficients);

/// Loads the modal invariants that only the record's file has so far. False after a reported
/// failure.
bool load_modal_invariants(QDL_Record &record);

/// Carries every invariant that the record holds or that its file has over to the combined modes.
/// False after a reported failure, with everything as it was; so it is when memory is short, which
/// is thrown.
bool combine_invariants(QDL_Record &record, std::int32_t new_modes,
                        std::span<const double> coefficients);

/// By monitor point.
using MonitorOperators = std::vector<decltype(MonitorPoint::operators)>;

/// The operators of all monitor points for the combined modes.
MonitorOperators combine_operators(const QDL_Record &record, std::int32_t new_modes,
                                   std::span<const double> coefficients);
void adopt_operators(QDL_Record &record, MonitorOperators &operators,
                     std::int32_t new_modes) noexcept;

}  // namespace qdlflex
