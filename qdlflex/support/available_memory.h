#pragma once

#include <cstdint>

namespace qdlflex {

/// Bytes of physical memory that a process can have without swapping, within its own limit of
/// address space where one is set.
std::int64_t available_memory();

}  // namespace qdlflex
