#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace qdlflex {

/// For tests: asked before each block for a caller is allocated; true makes that allocation fail.
using AllocationFault = bool (*)(std::size_t bytes);
void set_allocation_fault(AllocationFault fault);

/// A block from malloc, or std::bad_alloc.
void *allocate_block(std::size_t count, std::size_t size);

struct FreeBlock {
  void operator()(void *block) const { std::free(block); }
};

/// An array that will be handed to the caller, who releases it with QDL_FreeMemory.
template <class T>
using CallerArray = std::unique_ptr<T[], FreeBlock>;

/// A zero length gives a null array.
template <class T>
CallerArray<T> caller_array(std::size_t count) {
  if (count == 0)
    return nullptr;
  return CallerArray<T>(static_cast<T *>(allocate_block(count, sizeof(T))));
}

}  // namespace qdlflex
