#pragma once

#include <cstdint>
#include <utility>

#include "record/record.h"

namespace qdlflex {

// Half-mode vectors kept in memory, in double and in single precision. Vectors are never evicted:
// once a cache is full, further modes are read from their file each time.

/// The cache of one kind and part in the wanted precision.
template <class Real>
HalfModes<Real> &half_modes(QDL_Record &record, std::int32_t kind, std::int32_t part);

/// The cached vector, or null.
template <class Real>
Real *cached_half(QDL_Record &record, std::int32_t kind, std::int32_t part,
                  std::int32_t mode_index);

/// Whether the cache of a kind and part takes one more vector.
template <class Real>
bool has_room(QDL_Record &record, std::int32_t kind, std::int32_t part);

/// Copies the vector into the cache, or over the one already there; null when it is full.
template <class Real>
Real *cache_half(QDL_Record &record, std::int32_t kind, std::int32_t part, std::int32_t mode_index,
                 const Real *values);

/// Bytes that modes in double precision may take in memory: QDL_MAX_MODE_MEMORY, else 200 MiB.
std::int64_t mode_memory_limit();

/// Number of vectors that fit the limits of memory; computed anew.
std::int64_t compute_double_capacity(const QDL_Record &record);
std::int64_t compute_single_capacity(const QDL_Record &record, std::int32_t kind);

/// Forgets what is cached of one kind. Cheap when there is nothing.
void drop_cached_modes(QDL_Record &record, std::int32_t kind);

/// To be called when nodes or modes have been added or removed: cached vectors no longer fit, and
/// the capacities are computed again.
void note_mode_layout_changed(QDL_Record &record);

void clean_double_cache(QDL_Record &record);
void clean_single_cache(QDL_Record &record);

/// Switches keeping modes in memory off while it lives; what is cached stays.
class ModesNotKept {
 public:
  explicit ModesNotKept(QDL_Record &record)
      : record_(record), before_(std::exchange(record.keep_modes_in_memory, false)) {}
  ~ModesNotKept() { record_.keep_modes_in_memory = before_; }
  ModesNotKept(const ModesNotKept &) = delete;
  ModesNotKept &operator=(const ModesNotKept &) = delete;

 private:
  QDL_Record &record_;
  bool before_;
};

}  // namespace qdlflex
