#include <algorithm>

#include <qdlflex/qdlflex.h>

#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "record/lookups.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdldata";

/// What every reader of half-modes is asked for. Constructed from a mode number; the kind must be
/// checked before anything is looked at.
struct HalfRequest {
  QDL_Record &record;
  std::int32_t mode_number;
  std::int32_t kind;
  std::int32_t part;
  std::int32_t mode_index;

  HalfRequest(QDL_Record &model, std::int32_t number, std::int32_t mode_kind, std::int32_t half)
      : record(model),
        mode_number(number),
        kind(mode_kind),
        part(half),
        mode_index(find_mode(model, number)) {
    // Whatever is asked for may leave something in memory.
    mode_data(record, kind).may_be_cached = true;
  }

  std::size_t length() const { return static_cast<std::size_t>(mode_node_count(record, kind)) * 3; }

  template <class Real>
  Real *cached() const {
    return is_mode_part(part) ? cached_half<Real>(record, kind, part, mode_index) : nullptr;
  }
};

/// From the backing file. A part that does not exist fails after the read, without a message.
template <class Real>
bool read_from_file(const HalfRequest &request, Real *values) {
  const bool valid_part = is_mode_part(request.part);
  std::vector<Real> ignored(valid_part ? 0 : request.length());
  Real *target = valid_part ? values : ignored.data();
  if (!read_half(request.record, request.kind, request.mode_index, valid_part ? request.part : 0,
                 target)) {
    report_unreadable_mode(request.kind, request.mode_number);
    return false;
  }
  return valid_part;
}

/// A vector that could not be kept for lack of memory is reported, but the caller still has it.
template <class Real>
Real *offer_to_cache(const HalfRequest &request, const Real *values) {
  return guarded(kArea, static_cast<Real *>(nullptr), [&] {
    return cache_half(request.record, request.kind, request.part, request.mode_index, values);
  });
}

std::int32_t fetch_half(const HalfRequest &request, double *values) {
  const bool keep = request.record.keep_modes_in_memory;
  if (keep) {
    if (const double *cached = request.cached<double>()) {
      std::copy_n(cached, request.length(), values);
      return 1;
    }
  }
  if (!read_from_file(request, values))
    return 0;
  if (keep)
    offer_to_cache(request, values);
  return 1;
}

template <class Real>
std::int32_t fetch_by_reference(const HalfRequest &request, Real **values) {
  if (!is_mode_part(request.part))
    return 0;
  const bool keep = request.record.keep_modes_in_memory;
  if (keep && (*values = request.cached<Real>()) != nullptr)
    return 1;

  auto read = std::make_unique_for_overwrite<Real[]>(request.length());
  if (!read_from_file(request, read.get()))
    return 0;
  if (keep && (*values = offer_to_cache(request, read.get())) != nullptr)
    return 1;
  auto &overflow = half_modes<Real>(request.record, request.kind, request.part).overflow;
  overflow = std::move(read);
  *values = overflow.get();
  return 1;
}

bool read_row(const HalfRequest &request, std::int32_t node, double *six) {
  if (read_rows(request.record, request.kind, request.mode_index, node, 1, six))
    return true;
  report_unreadable_mode(request.kind, request.mode_number);
  return false;
}

bool read_node(const HalfRequest &request, std::int32_t node, double *values) {
  double six[kComponents];
  if (!read_row(request, node, six) || !is_mode_part(request.part))
    return false;
  std::copy_n(six + 3 * request.part, 3, values);
  return true;
}

/// Callers mostly want both halves of a node, so its six components are kept for the second one.
bool read_node_through_last_row(const HalfRequest &request, std::int32_t node, double *values) {
  NodeRow &last = mode_data(request.record, request.kind).last_row;
  if (last.mode_index != request.mode_index || last.node != node) {
    last = NodeRow{};
    if (!read_row(request, node, last.six.data()))
      return false;
    last.mode_index = request.mode_index;
    last.node = node;
  }
  std::copy_n(last.six.data() + 3 * request.part, 3, values);
  return true;
}

/// A loop over all nodes of one mode would read the file once per node. After as many misses as
/// reading the whole half would cost, the half is loaded instead.
bool worth_loading(const HalfRequest &request) {
  auto &misses = mode_data(request.record, request.kind).misses;
  misses.resize(request.record.mode_numbers.size());
  if (request.mode_index < 0)
    return false;
  const std::int32_t limit = std::max(32, mode_node_count(request.record, request.kind) / 32);
  std::int32_t &count = misses[static_cast<std::size_t>(request.mode_index)];
  if (++count <= limit)
    return false;
  count = 0;
  return has_room<double>(request.record, request.kind, request.part);
}

void load_half(const HalfRequest &request) {
  guarded(kArea, 0, [&] {
    std::vector<double> half(request.length());
    if (read_half(request.record, request.kind, request.mode_index, request.part, half.data())) {
      cache_half(request.record, request.kind, request.part, request.mode_index, half.data());
    }
    return 1;
  });
}

std::int32_t fetch_node(const HalfRequest &request, std::int32_t node, double *values) {
  const bool keep = request.record.keep_modes_in_memory && is_mode_part(request.part);
  if (!keep)
    return read_node(request, node, values) ? 1 : 0;
  if (request.cached<double>() == nullptr && worth_loading(request))
    load_half(request);
  if (const double *cached = request.cached<double>()) {
    std::copy_n(cached + std::ptrdiff_t{3} * node, 3, values);
    return 1;
  }
  return read_node_through_last_row(request, node, values) ? 1 : 0;
}

bool is_position(QDL_Record &record, std::int32_t kind, std::int32_t node) {
  return node >= 0 && node < mode_node_count(record, kind);
}

/// Runs a look-up that touches the cache only, where every argument must fit.
template <class Body>
std::int32_t in_cache(QDL_Record *model, std::int32_t modeNumber, std::int32_t kind,
                      const void *out, std::int32_t part, Body body) {
  if (!is_mode_kind(kind) || !is_mode_part(part) || out == nullptr)
    return 0;
  return with_model_or(model, kArea, 0, [&](QDL_Record &record) {
    const HalfRequest request(record, modeNumber, kind, part);
    return request.mode_index == kNoIndex ? 0 : body(request);
  });
}

/// Runs a reader of the backing file.
template <class Body>
std::int32_t reading(QDL_Record *model, std::int32_t modeNumber, std::int32_t kind, const void *out,
                     std::int32_t part, Body body) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!is_mode_kind(kind) || out == nullptr)
      return 0;
    return static_cast<int>(body(HalfRequest(record, modeNumber, kind, part)));
  });
}

}  // namespace

int32_t QDL_Mode(QDL_Record *model, int32_t modeNumber, int32_t kind, double *values,
                 int32_t part) {
  return reading(model, modeNumber, kind, values, part,
                 [&](const HalfRequest &request) { return fetch_half(request, values); });
}

int32_t QDL_ModeByNode(QDL_Record *model, int32_t modeNumber, int32_t kind, int32_t node,
                       double *values, int32_t part) {
  return reading(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    return is_position(request.record, kind, node) ? fetch_node(request, node, values) : 0;
  });
}

int32_t QDL_ModeByNodeWithoutCache(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                   int32_t node, double *values, int32_t part) {
  return reading(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    return is_position(request.record, kind, node) && read_node(request, node, values);
  });
}

int32_t QDL_ModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, double **values,
                      int32_t part) {
  if (values != nullptr)
    *values = nullptr;
  return reading(model, modeNumber, kind, values, part,
                 [&](const HalfRequest &request) { return fetch_by_reference(request, values); });
}

int32_t QDL_SModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, float **values,
                       int32_t part) {
  if (values != nullptr)
    *values = nullptr;
  return reading(model, modeNumber, kind, values, part,
                 [&](const HalfRequest &request) { return fetch_by_reference(request, values); });
}

int32_t QDL_Read_Mode_Double(QDL_Record *model, int32_t modeNumber, int32_t kind, double *values,
                             int32_t part) {
  return reading(model, modeNumber, kind, values, part,
                 [&](const HalfRequest &request) { return read_from_file(request, values); });
}

int32_t QDL_Read_Mode_Single(QDL_Record *model, int32_t modeNumber, int32_t kind, float *values,
                             int32_t part) {
  return reading(model, modeNumber, kind, values, part,
                 [&](const HalfRequest &request) { return read_from_file(request, values); });
}

int32_t QDL_ModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind, const double *values,
                         int32_t part) {
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    return cache_half(request.record, kind, part, request.mode_index, values) != nullptr;
  });
}

int32_t QDL_SModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind, const float *values,
                          int32_t part) {
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    return cache_half(request.record, kind, part, request.mode_index, values) != nullptr;
  });
}

int32_t QDL_ModeFromMemory(QDL_Record *model, int32_t modeNumber, int32_t kind, double *values,
                           int32_t part) {
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    const double *cached = request.cached<double>();
    if (cached == nullptr)
      return 0;
    std::copy_n(cached, request.length(), values);
    return 1;
  });
}

int32_t QDL_ModeFromMemoryByNode(QDL_Record *model, int32_t modeNumber, int32_t kind, int32_t node,
                                 double *values, int32_t part) {
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    const double *cached = request.cached<double>();
    if (cached == nullptr || !is_position(request.record, kind, node))
      return 0;
    std::copy_n(cached + std::ptrdiff_t{3} * node, 3, values);
    return 1;
  });
}

int32_t QDL_ModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                double **values, int32_t part) {
  if (values != nullptr)
    *values = nullptr;
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    *values = request.cached<double>();
    return *values != nullptr;
  });
}

int32_t QDL_SModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                 float **values, int32_t part) {
  if (values != nullptr)
    *values = nullptr;
  return in_cache(model, modeNumber, kind, values, part, [&](const HalfRequest &request) {
    *values = request.cached<float>();
    return *values != nullptr;
  });
}

int32_t QDL_InitializeModeMemory(QDL_Record *model) {
  return with_model_or(model, kArea, 0, [](QDL_Record &record) {
    record.cache_capacity = compute_double_capacity(record);
    return static_cast<int32_t>(record.cache_capacity);
  });
}

int32_t QDL_InitializeSModeMemory(QDL_Record *model, int32_t kind, int32_t part) {
  if (!is_mode_kind(kind) || !is_mode_part(part))
    return 0;
  return with_model_or(model, kArea, 0, [&](QDL_Record &record) {
    HalfModes<float> &halves = half_modes<float>(record, kind, part);
    halves.capacity = compute_single_capacity(record, kind);
    return static_cast<int32_t>(halves.capacity);
  });
}

int32_t QDL_SetKeepModesInMemory(QDL_Record *model, int32_t keep) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (record.keep_modes_in_memory && keep == 0) {
      clean_double_cache(record);
      clean_single_cache(record);
    }
    record.keep_modes_in_memory = keep != 0;
    return 1;
  });
}

int32_t QDL_GetKeepModesInMemory(QDL_Record *model, int32_t *flag) {
  if (model == nullptr)
    return 0;
  const int32_t keep = model->keep_modes_in_memory ? 1 : 0;
  if (flag != nullptr)
    *flag = keep;
  return keep;
}

int32_t QDL_CleanModesInMemory(QDL_Record *model) {
  return with_model_or(model, kArea, 0, [](QDL_Record &record) {
    clean_double_cache(record);
    return 1;
  });
}

int32_t QDL_CleanSModesInMemory(QDL_Record *model) {
  return with_model_or(model, kArea, 0, [](QDL_Record &record) {
    clean_single_cache(record);
    return 1;
  });
}
