#include "modes/mode_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <type_traits>

#include "modes/mode_cache.h"
#include "modes/temporary_backing.h"
#include "record/lookups.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

/// Rows are read in chunks that stay in the processor's cache until they are decoded.
constexpr std::int64_t kChunkRows = 2048;

bool holds_mode(const Backing &backing, std::int32_t mode_index) {
  return backing.channel.file != nullptr && mode_index >= 0 &&
         static_cast<std::size_t>(mode_index) < backing.starts.size();
}

std::int64_t row_position(const Backing &backing, std::int32_t mode_index, std::int64_t row) {
  const std::int64_t row_bytes = kComponents * encoding_of(backing.channel).real_bytes();
  return backing.starts[static_cast<std::size_t>(mode_index)] + row * row_bytes;
}

/// Rows that the backing really holds.
bool read_backed_rows(const Backing &backing, std::int32_t mode_index, std::int64_t first,
                      std::int64_t rows, double *six) {
  const Encoding encoding = encoding_of(backing.channel);
  const std::int64_t most_rows = stands_as_in_memory(encoding) ? rows : kChunkRows;
  std::int64_t position = row_position(backing, mode_index, first);
  for (std::int64_t done = 0; done < rows; done += most_rows) {
    const auto reals = static_cast<std::size_t>(std::min(rows - done, most_rows) * kComponents);
    const std::size_t bytes = reals * static_cast<std::size_t>(encoding.real_bytes());
    double *values = six + done * kComponents;
    if (!backing.channel.file->read_at(position, packed_reals(values, reals, encoding), bytes)) {
      return false;
    }
    decode_packed_reals(values, reals, encoding);
    position += static_cast<std::int64_t>(bytes);
  }
  return true;
}

/// Two rows at a time make three moves of two numbers each.
void copy_halves(const double *row, std::int64_t rows, double *values) {
  for (; rows >= 2; rows -= 2, row += 2 * kComponents, values += 6) {
    const double second[3] = {row[kComponents], row[kComponents + 1], row[kComponents + 2]};
    values[0] = row[0];
    values[1] = row[1];
    values[2] = row[2];
    values[3] = second[0];
    values[4] = second[1];
    values[5] = second[2];
  }
  if (rows == 1)
    std::copy_n(row, 3, values);
}

/// Three of the six components of each row, times the factor.
template <class Real>
void take_half(const double *row, std::int64_t rows, double factor, Real *values) {
  if constexpr (std::is_same_v<Real, double>) {
    if (factor == 1.0) {
      copy_halves(row, rows, values);
      return;
    }
  }
  for (std::int64_t i = 0; i < rows; ++i, row += kComponents, values += 3) {
    for (int c = 0; c < 3; ++c) {
      values[c] = static_cast<Real>(factor == 1.0 ? row[c] : row[c] * factor);
    }
  }
}

void scale_rows(double *six, std::int64_t rows, double first_half, double second_half) {
  // A factor of exactly one leaves every bit alone, NaN payloads included.
  if (first_half == 1.0 && second_half == 1.0)
    return;
  for (std::int64_t row = 0; row < rows; ++row, six += kComponents) {
    for (int i = 0; i < 3; ++i)
      six[i] *= first_half;
    for (int i = 3; i < 6; ++i)
      six[i] *= second_half;
  }
}

/// For a whole vector or one component of it.
void report_out_of_reach(const QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                         std::int32_t position, std::int32_t component, bool whole) {
  const long mode = record.mode_numbers[static_cast<std::size_t>(mode_index)];
  const long node =
      kind == kModeShapes ? node_id(record, position) : mode_node_id(record, kind, position);
  if (whole) {
    QDL_Error("Couldn't seek to mode %ld node %ld position in temporary file", mode, node);
  } else {
    QDL_Error("Couldn't seek to mode %ld node %ld dof %ld position in temporary file", mode, node,
              static_cast<long>(component));
  }
}

}  // namespace

Encoding encoding_of(const Channel &channel) {
  return {channel.xdr, channel.double_precision};
}

double mode_factor(const QDL_Record &record, std::int32_t kind, std::int32_t part) {
  const UnitRatios &now = record.units.cumulative;
  const UnitRatios &base = record.mode_data[static_cast<std::size_t>(kind)].backing.base;
  if (now.length == base.length && now.force == base.force)
    return 1.0;
  const double length = now.length / base.length;
  if (kind == kModalStress)
    return now.force / base.force / (length * length);
  return kind == kModeShapes && part == 0 ? length : 1.0;
}

bool read_stored_rows(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                      std::int64_t first, std::int64_t rows, double *six) {
  const Backing &backing = mode_data(record, kind).backing;
  if (!holds_mode(backing, mode_index))
    return false;
  const std::int64_t backed = std::clamp<std::int64_t>(backing.stride - first, 0, rows);
  std::fill(six + backed * kComponents, six + rows * kComponents, 0.0);
  return backed == 0 || read_backed_rows(backing, mode_index, first, backed, six);
}

bool read_rows(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, std::int64_t first,
               std::int64_t rows, double *six) {
  if (!read_stored_rows(record, kind, mode_index, first, rows, six))
    return false;
  scale_rows(six, rows, mode_factor(record, kind, 0), mode_factor(record, kind, 1));
  return true;
}

template <class Real>
bool read_half(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, std::int32_t part,
               Real *values) {
  const std::int64_t nodes = mode_node_count(record, kind);
  const double factor = mode_factor(record, kind, part);
  const auto chunk = std::make_unique_for_overwrite<double[]>(
      static_cast<std::size_t>(std::min(nodes, kChunkRows) * kComponents));
  for (std::int64_t first = 0; first < nodes; first += kChunkRows) {
    const std::int64_t rows = std::min(nodes - first, kChunkRows);
    if (!read_stored_rows(record, kind, mode_index, first, rows, chunk.get()))
      return false;
    take_half(chunk.get() + 3 * part, rows, factor, values + 3 * first);
  }
  return nodes > 0 || holds_mode(mode_data(record, kind).backing, mode_index);
}

template bool read_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t, double *);
template bool read_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t, float *);

void report_unreadable_mode(std::int32_t kind, std::int32_t mode_number) {
  switch (kind) {
    case kModeShapes:
      QDL_Error("Problem reading mode shape %d", mode_number);
      break;
    case kModalStress:
      QDL_Error("Problem reading modal stress vector %d", mode_number);
      break;
    default:
      QDL_Error("Problem reading modal strain vector %d", mode_number);
      break;
  }
}

bool fetch_mode(QDL_Record &record, std::int32_t kind, std::int32_t mode_index, double *six) {
  if (read_rows(record, kind, mode_index, 0, mode_node_count(record, kind), six))
    return true;
  report_unreadable_mode(kind, record.mode_numbers[static_cast<std::size_t>(mode_index)]);
  return false;
}

const double *view_mode(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                        double *buffer) {
  const Backing &backing = mode_data(record, kind).backing;
  const Encoding encoding = encoding_of(backing.channel);
  const bool as_wanted = stands_as_in_memory(encoding) && mode_factor(record, kind, 0) == 1.0 &&
                         mode_factor(record, kind, 1) == 1.0;
  const bool complete = backing.stride >= mode_node_count(record, kind);
  if (backing.mapping != nullptr && as_wanted && complete && holds_mode(backing, mode_index)) {
    return reinterpret_cast<const double *>(backing.mapping + row_position(backing, mode_index, 0));
  }
  return fetch_mode(record, kind, mode_index, buffer) ? buffer : nullptr;
}

bool store_values(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                  std::int32_t position, std::int32_t component, std::span<const double> values) {
  if (!ensure_temporary_backing(record, kind) ||
      !ensure_room_for(record, kind, mode_index, position)) {
    return false;
  }
  drop_cached_modes(record, kind);

  const Backing &backing = mode_data(record, kind).backing;
  const Encoding encoding = encoding_of(backing.channel);
  const double factors[kModeParts] = {mode_factor(record, kind, 0), mode_factor(record, kind, 1)};
  const std::int64_t place =
      row_position(backing, mode_index, position) + component * encoding.real_bytes();
  const bool as_given = stands_as_in_memory(encoding) && factors[0] == 1.0 && factors[1] == 1.0;
  if (backing.mapping != nullptr && as_given) {
    std::memcpy(backing.mapping + place, values.data(), values.size_bytes());
    return true;
  }

  std::array<double, kComponents> stored{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double factor = factors[(static_cast<std::size_t>(component) + i) / 3];
    stored[i] = factor == 1.0 ? values[i] : values[i] / factor;
  }
  std::array<unsigned char, kComponents * sizeof(double)> bytes{};
  encode_reals(bytes.data(), stored.data(), values.size(), encoding);
  const std::size_t length = values.size() * static_cast<std::size_t>(encoding.real_bytes());
  if (backing.mapping != nullptr) {
    std::memcpy(backing.mapping + place, bytes.data(), length);
    return true;
  }
  File &file = *backing.channel.file;
  if (!file.reaches(place)) {
    report_out_of_reach(record, kind, mode_index, position, component,
                        values.size() == kComponents);
    return false;
  }
  if (file.write_at(place, bytes.data(), length))
    return true;
  report_no_disk_space(kind, file.name());
  return false;
}

}  // namespace qdlflex
