#pragma once

#include <qdlflex/qdlflex.h>

namespace qdltest {

// Asks everything of a record that the interface lets one ask without changing it, however odd the
// content. Nothing is expected of the answers but that each buffer suffices.
void exercise(QDL_Record *record);

}  // namespace qdltest
