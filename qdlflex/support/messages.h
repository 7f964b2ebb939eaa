#pragma once

#include <qdlflex/qdlflex.h>

namespace qdlflex {

// Messages themselves go through QDL_Error, QDL_Warning and QDL_Info of the public header, which
// check their formats at compile time.

/// The error that every function acting on a model gives for a null handle.
void report_null_handle();

/// The error for memory that could not be had, with the source line and the name of the area.
void report_allocation_failure(int line, const char *area);

}  // namespace qdlflex
