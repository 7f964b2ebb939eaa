#include <qdlflex/qdlflex.h>

const char *QDL_LibraryVersion(void) {
  return QDLFLEX_VERSION_STRING;
}
