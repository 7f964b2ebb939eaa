#pragma once

#include <qdlflex/qdlflex.h>

#include <string>

#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace qdltest {

// For tests that read files of the builder.
class ReadFixture : public MessageFixture {
 protected:
  // Writes the file and opens it. Models that are open are ended first and earlier messages
  // forgotten.
  QDL_Record *open(const SampleFile &sample) {
    QDL_Terminate();
    clear_messages();
    return QDL_CreateFromQDL(file("body.qdl", sample.bytes).c_str());
  }
};

}  // namespace qdltest
