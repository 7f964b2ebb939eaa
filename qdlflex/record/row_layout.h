#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// Cuts every row of so many columns to the first `kept` of them, in place.
inline void cut_rows(std::vector<double> &values, std::size_t columns, std::size_t kept) {
  if (kept >= columns)
    return;
  const std::size_t rows = values.size() / columns;
  for (std::size_t row = 0; row < rows; ++row)
    std::copy_n(values.data() + row * columns, kept, values.data() + row * kept);
  values.erase(values.begin() + static_cast<std::ptrdiff_t>(rows * kept), values.end());
}

/// Cuts a monitor point's operators to the first modes.
inline void cut_columns(MonitorPoint &point, std::int32_t modes) {
  if (point.columns <= modes)
    return;
  for (std::vector<double> &values : point.operators)
    cut_rows(values, static_cast<std::size_t>(point.columns), static_cast<std::size_t>(modes));
  point.columns = modes;
}

}  // namespace qdlflex
