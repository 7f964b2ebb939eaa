#pragma once

#include <new>
#include <stdexcept>
#include <utility>

#include "support/messages.h"

namespace qdlflex {

/// The one place where exceptions become messages and failure values: no exception leaves an
/// exported function. Memory that could not be had (also a container asked beyond its limit) is
/// reported with the line of the caller and the area's name.
template <class Result, class Body>
Result guarded(const char *area, Result failure, Body &&body,
               int line = __builtin_LINE()) noexcept {
  try {
    return static_cast<Result>(std::forward<Body>(body)());
  } catch (const std::bad_alloc &) {
    report_allocation_failure(line, area);
  } catch (const std::length_error &) {
    report_allocation_failure(line, area);
  } catch (...) {
    // Nothing else is thrown on purpose; the failure value says enough.
  }
  return failure;
}

/// Runs `body` where an area has a message of its own for memory that could not be had; false then.
template <class Body>
bool with_memory(Body &&body) noexcept {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (const std::bad_alloc &) {
    return false;
  } catch (...) {
    return false;
  }
}

/// For functions that act on a model: a null handle is reported, then `failure` returned; otherwise
/// the result of `body(*model)`.
template <class Model, class Result, class Body>
Result with_model(Model *model, const char *area, Result failure, Body &&body,
                  int line = __builtin_LINE()) noexcept {
  if (model == nullptr) {
    report_null_handle();
    return failure;
  }
  return guarded(
      area, failure, [&] { return std::forward<Body>(body)(*model); }, line);
}

/// The same for simple getters, which answer a null handle silently.
template <class Model, class Result, class Body>
Result with_model_or(Model *model, const char *area, Result failure, Body &&body,
                     int line = __builtin_LINE()) noexcept {
  if (model == nullptr)
    return failure;
  return guarded(
      area, failure, [&] { return std::forward<Body>(body)(*model); }, line);
}

}  // namespace qdlflex
