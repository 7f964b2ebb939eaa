#include "support/allocate.h"

namespace qdlflex {
namespace {

AllocationFault allocation_fault = nullptr;

}  // namespace

void set_allocation_fault(AllocationFault fault) {
  allocation_fault = fault;
}

void *allocate_block(std::size_t count, std::size_t size) {
  if (allocation_fault != nullptr && allocation_fault(count * size))
    throw std::bad_alloc();
  if (count > SIZE_MAX / size)
    throw std::bad_alloc();
  void *block = std::malloc(count * size);
  if (block == nullptr)
    throw std::bad_alloc();
  return block;
}

}  // namespace qdlflex
