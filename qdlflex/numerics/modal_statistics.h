#pragma once

#include "record/record.h"

namespace qdlflex {

enum class Statistic : std::size_t { kDisplacement, kRotation, kVonMisesStress, kVonMisesStrain };

struct LargestValue {
  std::int32_t node_id = 0;
  double value = 0.0;
};

/// Searches the nodes of a mode for the largest value of a statistic: the first of equal nodes, no
/// node where all are zero. False after a reported failure to read the mode.
bool find_largest(QDL_Record &record, Statistic statistic, std::int32_t mode_index,
                  LargestValue &largest);

/// The same among values at hand: six components for each node of the statistic's kind.
LargestValue largest_of(const QDL_Record &record, Statistic statistic, const double *six);

/// The largest value from the record's table, searched and kept there when not known yet. False
/// after a reported failure.
bool modal_statistic(QDL_Record &record, Statistic statistic, std::int32_t mode_index,
                     LargestValue &largest);

}  // namespace qdlflex
