#include "modes/mode_cache.h"

#include <algorithm>
#include <type_traits>

#include "record/lookups.h"
#include "support/available_memory.h"
#include "support/environment.h"

namespace qdlflex {
namespace {

constexpr std::int64_t kMebibyte = 1048576;
constexpr std::int64_t kDefaultDoubleLimit = 200 * kMebibyte;

std::int64_t memory_limit(const char *variable, std::int64_t otherwise) {
  const std::int64_t mebibytes = environment_integer(variable);
  if (mebibytes <= 0)
    return otherwise;
  return std::min(mebibytes, INT64_MAX / kMebibyte) * kMebibyte;
}

/// Vectors of three numbers per node within the limit.
std::int64_t vectors_within(std::int64_t limit, std::int64_t nodes, std::int64_t number_bytes) {
  return limit / nodes / 3 / number_bytes;
}

template <class Real>
constexpr bool kIsDouble = std::is_same_v<Real, double>;

template <class Real>
void drop_halves(QDL_Record &record, HalfModes<Real> &halves) {
  if constexpr (kIsDouble<Real>)
    record.cached_halves -= halves.count;
  if (!halves.by_mode.empty() || halves.overflow != nullptr)
    halves = HalfModes<Real>{};
}

void forget_node_reads(ModeData &data) {
  data.misses.clear();
  data.last_row = NodeRow{};
}

}  // namespace

template <class Real>
HalfModes<Real> &half_modes(QDL_Record &record, std::int32_t kind, std::int32_t part) {
  ModeData &data = record.mode_data[static_cast<std::size_t>(kind)];
  const auto half = static_cast<std::size_t>(part);
  if constexpr (kIsDouble<Real>) {
    return data.doubles[half];
  } else {
    return data.singles[half];
  }
}

/// All double-precision vectors share one limit; single precision has one per kind and part.
template <class Real>
bool has_room(QDL_Record &record, std::int32_t kind, std::int32_t part) {
  if constexpr (kIsDouble<Real>) {
    if (record.cache_capacity == 0)
      record.cache_capacity = compute_double_capacity(record);
    return record.cached_halves < record.cache_capacity;
  } else {
    HalfModes<float> &halves = half_modes<float>(record, kind, part);
    if (halves.capacity == 0)
      halves.capacity = compute_single_capacity(record, kind);
    return halves.count < halves.capacity;
  }
}

template <class Real>
Real *cached_half(QDL_Record &record, std::int32_t kind, std::int32_t part,
                  std::int32_t mode_index) {
  const auto &by_mode = half_modes<Real>(record, kind, part).by_mode;
  const auto index = static_cast<std::size_t>(mode_index);
  return mode_index >= 0 && index < by_mode.size() ? by_mode[index].get() : nullptr;
}

template <class Real>
Real *cache_half(QDL_Record &record, std::int32_t kind, std::int32_t part, std::int32_t mode_index,
                 const Real *values) {
  const auto length = static_cast<std::size_t>(mode_node_count(record, kind)) * 3;
  Real *held = cached_half<Real>(record, kind, part, mode_index);
  if (held == nullptr) {
    if (!has_room<Real>(record, kind, part))
      return nullptr;
    HalfModes<Real> &halves = half_modes<Real>(record, kind, part);
    auto vector = std::make_unique_for_overwrite<Real[]>(length);
    if (halves.by_mode.size() < record.mode_numbers.size())
      halves.by_mode.resize(record.mode_numbers.size());
    held = vector.get();
    halves.by_mode[static_cast<std::size_t>(mode_index)] = std::move(vector);
    ++halves.count;
    if constexpr (kIsDouble<Real>)
      ++record.cached_halves;
  }
  std::copy_n(values, length, held);
  return held;
}

std::int64_t mode_memory_limit() {
  return memory_limit("QDL_MAX_MODE_MEMORY", kDefaultDoubleLimit);
}

std::int64_t compute_double_capacity(const QDL_Record &record) {
  const std::int64_t nodes =
      std::max({mode_node_count(record, kModeShapes), mode_node_count(record, kModalStress),
                mode_node_count(record, kModalStrain)});
  if (nodes <= 0)
    return 0;
  const std::int64_t every_half = std::int64_t{kModeKinds} * kModeParts * mode_count(record);
  return std::min(vectors_within(mode_memory_limit(), nodes, 8), every_half);
}

std::int64_t compute_single_capacity(const QDL_Record &record, std::int32_t kind) {
  const std::int64_t nodes = mode_node_count(record, kind);
  if (nodes <= 0)
    return 0;
  const std::int64_t limit = memory_limit("QDL_MAX_SMODE_MEMORY", available_memory());
  return std::min<std::int64_t>(vectors_within(limit, nodes, 4), mode_count(record));
}

void drop_cached_modes(QDL_Record &record, std::int32_t kind) {
  ModeData &data = record.mode_data[static_cast<std::size_t>(kind)];
  if (!data.may_be_cached)
    return;
  data.may_be_cached = false;
  for (std::int32_t part = 0; part < kModeParts; ++part) {
    drop_halves(record, half_modes<double>(record, kind, part));
    drop_halves(record, half_modes<float>(record, kind, part));
  }
  forget_node_reads(data);
}

void note_mode_layout_changed(QDL_Record &record) {
  clean_double_cache(record);
  clean_single_cache(record);
}

void clean_double_cache(QDL_Record &record) {
  for (ModeData &data : record.mode_data) {
    for (auto &halves : data.doubles)
      drop_halves(record, halves);
    forget_node_reads(data);
  }
  record.cache_capacity = 0;
}

void clean_single_cache(QDL_Record &record) {
  for (ModeData &data : record.mode_data) {
    for (auto &halves : data.singles) {
      drop_halves(record, halves);
      halves.capacity = 0;
    }
  }
}

template HalfModes<double> &half_modes(QDL_Record &, std::int32_t, std::int32_t);
template HalfModes<float> &half_modes(QDL_Record &, std::int32_t, std::int32_t);
template bool has_room<double>(QDL_Record &, std::int32_t, std::int32_t);
template bool has_room<float>(QDL_Record &, std::int32_t, std::int32_t);
template double *cached_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t);
template float *cached_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t);
template double *cache_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t, const double *);
template float *cache_half(QDL_Record &, std::int32_t, std::int32_t, std::int32_t, const float *);

}  // namespace qdlflex
