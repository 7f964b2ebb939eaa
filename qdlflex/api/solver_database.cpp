#include <qdlflex/qdlflex.h>

#include "support/boundary.h"

int32_t QDL_write_DB(QDL_Record *model, const char * /*path*/) {
  return qdlflex::with_model(model, "qdlwrite", 0, [](const QDL_Record & /*record*/) {
    QDL_Error("Solver-database export is not available in this build.");
    return 0;
  });
}
