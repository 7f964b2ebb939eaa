/* What the examples share: the library's messages go to standard error, and a step that fails ends
 * the program.
 */
#ifndef QDLFLEX_EXAMPLE_H
#define QDLFLEX_EXAMPLE_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

static inline int64_t print_error(const char *text) {
  fprintf(stderr, "error: %s\n", text);
  return 0;
}

static inline int64_t print_warning(const char *text) {
  fprintf(stderr, "warning: %s\n", text);
  return 0;
}

static inline void fail(const char *what, const char *name) {
  fprintf(stderr, "failed: %s %s\n", what, name);
  exit(1);
}

/* Zeros; never null. */
static inline void *allocate(size_t count, size_t size) {
  void *const memory = calloc(count > 0 ? count : 1, size);
  if (memory == NULL) {
    fail("no memory for", "the values");
  }
  return memory;
}

#endif
