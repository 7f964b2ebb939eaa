#pragma once

#include "record/record.h"

#include <qdlflex/qdlflex.h>

namespace qdlflex {

/// Copies at most 15 characters.
UnitName unit_name(const char *text);

/// Whether the unit is known; the name may be rewritten to the table's spelling. A companion
/// library's QDL_ConvertUnitsLabel decides where the host has one.
bool accept_unit(UnitName &name, const QDL_UnitEntry *table);

inline bool is_unset(const UnitName &name) {
  return name[0] == '\0';
}

/// Force x time^2 / (length x mass) of the record's units: 1 for consistent units.
double unit_consistency_factor(const QDL_Record &record);

/// The factor between eigenvalue and squared circular frequency; 1 where the units are unknown.
double frequency_unit_factor(const QDL_Record &record);

/// sqrt, carrying the sign of a negative argument over to the result.
double signed_sqrt(double value);

}  // namespace qdlflex
