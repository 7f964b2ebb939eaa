#include "support/allocate.h"
#include "support/failing_operators.h"
#include "support/file.h"

namespace {

bool caller_array_fails(std::size_t) {
  return must_fail(qdltest::Door::kMemory);
}

bool file_operation_fails(qdlflex::FileOperation) {
  return must_fail(qdltest::Door::kFile);
}

[[maybe_unused]] const bool connected = [] {
  qdlflex::set_allocation_fault(caller_array_fails);
  qdlflex::set_file_fault(file_operation_fails);
  return true;
}();

}  // namespace
