// Compares a record with the content it was read from.
#pragma once

#include <qdlflex/qdlflex.h>

#include "support/qdl_bytes.h"

namespace qdltest {

// Expects that the record holds the content of the model in the blocks of the file. The model's
// node order has to be that of its mode shapes.
void expect_content(QDL_Record *record, const SampleModel &model, const SampleFile &file);

// The same, and that the table of contents has every block of the file and no other.
void expect_record(QDL_Record *record, const SampleModel &model, const SampleFile &file);

}  // namespace qdltest
