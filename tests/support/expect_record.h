// Compares a record with the content it was read from.
#pragma once

#include <qdlflex/qdlflex.h>

#include "support/qdl_bytes.h"

namespace qdltest {

// Expects that the record holds exactly the blocks of the file, with the content of the model, in
// memory and behind the table of contents. The model's node order has to be that of its mode
// shapes.
void expect_record(QDL_Record *record, const SampleModel &model, const SampleFile &file);

}  // namespace qdltest
