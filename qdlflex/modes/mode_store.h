#pragma once

#include <cstdint>
#include <span>

#include "format/codec.h"
#include "record/record.h"

namespace qdlflex {

// The one door to mode data. Modes are addressed by index, nodes by their position in the kind's
// order of nodes. Fetched values are in the model's current units; nodes beyond what the backing
// holds have zeros.

inline ModeData &mode_data(QDL_Record &record, std::int32_t kind) {
  return record.mode_data[static_cast<std::size_t>(kind)];
}

Encoding encoding_of(const Channel &channel);

/// Whether reals stand in a file as they do in memory.
inline bool stands_as_in_memory(const Encoding &encoding) {
  return encoding.double_precision && !encoding.swapped();
}

/// Factor from the units of a kind's backing to the model's, for one half of the components.
double mode_factor(const QDL_Record &record, std::int32_t kind, std::int32_t part);

/// Six components of `rows` nodes from `first` on, as stored or in current units. False, without a
/// message, for a mode that the backing does not hold and for a failed read.
bool read_stored_rows(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                      std::int64_t first, std::int64_t rows, double *six);
bool read_rows(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, std::int64_t first,
               std::int64_t rows, double *six);

/// Three components of every node of the kind.
template <class Real>
bool read_half(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, std::int32_t part,
               Real *values);

/// The error for a mode that could not be read.
void report_unreadable_mode(std::int32_t kind, std::int32_t mode_number);

/// Six components of every node; a failure is reported.
bool fetch_mode(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, double *six);

/// The same for a caller that only looks at the values: where they lie in memory as they are
/// wanted, their place, else `buffer` after fetching them. Null after a reported failure. Valid
/// until the mode data is changed.
const double *view_mode(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                        double *buffer);

/// Stores components of one node, given in current units. The kind's temporary file is made on
/// first use and laid out anew when the nodes outgrow it. Failures are reported. Cached vectors of
/// the kind are dropped.
bool store_values(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                  std::int32_t position, std::int32_t component, std::span<const double> values);

/// Makes sure that the kind's backing is a temporary file; a kind that lies in the record's source
/// is copied there first. False after a reported failure.
bool ensure_temporary_backing(QDL_Record &record, std::int32_t kind);

}  // namespace qdlflex
