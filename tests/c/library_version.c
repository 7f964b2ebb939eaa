/* The versions that the header and the library state. */
#include <qdlflex/qdlflex.h>

#include <stdio.h>
#include <string.h>

int main(void) {
  char numbers[40];
  snprintf(numbers, sizeof numbers, "%d.%d.%d", QDLFLEX_VERSION_MAJOR, QDLFLEX_VERSION_MINOR,
           QDLFLEX_VERSION_PATCH);
  printf("numbers %s, text %s, library %s\n", numbers, QDLFLEX_VERSION_STRING,
         QDL_LibraryVersion());
  return strcmp(numbers, QDLFLEX_VERSION_STRING) != 0 ||
         strcmp(QDL_LibraryVersion(), QDLFLEX_VERSION_STRING) != 0;
}
