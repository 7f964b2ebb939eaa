/* Opens a QDL file, writes it in two other forms, opens both and compares everything fetched from
 * them with the first: mode by mode and node by node.
 *
 *   demo IMPORTED.qdl XDR_DOUBLE.qdl NATIVE_SINGLE.qdl
 *
 * Double precision must give the same bits, single precision the nearest float. Ends with 1 if
 * anything differs by more.
 */
#define _POSIX_C_SOURCE 200112L /* setenv */

#include <math.h>
#include <qdlflex/qdlflex.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../example.h"

enum { kinds = 3, parts = 2, numbers_per_node = 3 };

static const char *const kind_names[kinds] = {"mode shapes", "stress modes", "strain modes"};

/* What a comparison found. Values count as wrong when they are not the expected bits. */
typedef struct Comparison {
  long long values;
  long long wrong;
  double largest_difference;
  double largest_value;
} Comparison;

/* The writer takes its options from an environment variable. */
static void write_as(QDL_Record *model, const char *options, const char *path) {
  setenv("ZEB_QDLWRITE_OPTIONS", options, 1);
  if (!QDL_write_QDL(model, path)) {
    fail("cannot write", path);
  }
}

static QDL_Record *open_model(const char *path) {
  QDL_Record *const model = QDL_CreateFromQDL(path);
  if (model == NULL) {
    fail("cannot open", path);
  }
  return model;
}

static void compare(Comparison *result, const double *expected, const double *found, int count,
                    int single) {
  int i;
  for (i = 0; i < count; ++i) {
    const double wanted = single ? (double)(float)expected[i] : expected[i];
    const double difference = fabs(expected[i] - found[i]);
    result->wrong += memcmp(&wanted, &found[i], sizeof wanted) != 0;
    if (!(difference <= result->largest_difference)) {
      result->largest_difference = difference;
    }
    if (fabs(expected[i]) > result->largest_value) {
      result->largest_value = fabs(expected[i]);
    }
    ++result->values;
  }
}

/* Fetches half a mode at a time: all nodes of one mode. */
static Comparison compare_by_mode(QDL_Record *model, QDL_Record *other, int32_t kind, int single) {
  Comparison result = {0, 0, 0.0, 0.0};
  const int32_t count = QDL_ModeNodeCount(model, kind) * numbers_per_node;
  double *const expected = allocate((size_t)count, sizeof *expected);
  double *const found = allocate((size_t)count, sizeof *found);
  int32_t index, part;
  for (index = 0; index < QDL_ModeCount(model); ++index) {
    const int32_t mode = QDL_ModeNumber(model, index);
    for (part = 0; part < parts; ++part) {
      if (!QDL_Mode(model, mode, kind, expected, part) ||
          !QDL_Mode(other, mode, kind, found, part)) {
        fail("cannot fetch", kind_names[kind]);
      }
      compare(&result, expected, found, count, single);
    }
  }
  free(expected);
  free(found);
  return result;
}

/* Fetches three numbers at a time: one node over all modes, straight from the file. */
static Comparison compare_by_node(QDL_Record *model, QDL_Record *other, int32_t kind, int single) {
  Comparison result = {0, 0, 0.0, 0.0};
  int32_t node, index, part;
  for (node = 0; node < QDL_ModeNodeCount(model, kind); ++node) {
    for (index = 0; index < QDL_ModeCount(model); ++index) {
      const int32_t mode = QDL_ModeNumber(model, index);
      for (part = 0; part < parts; ++part) {
        double expected[numbers_per_node], found[numbers_per_node];
        if (!QDL_ModeByNodeWithoutCache(model, mode, kind, node, expected, part) ||
            !QDL_ModeByNodeWithoutCache(other, mode, kind, node, found, part)) {
          fail("cannot fetch a node of the", kind_names[kind]);
        }
        compare(&result, expected, found, numbers_per_node, single);
      }
    }
  }
  return result;
}

static Comparison compare_geometry(QDL_Record *model, QDL_Record *other, int single) {
  Comparison result = {0, 0, 0.0, 0.0};
  int32_t node;
  for (node = 0; node < QDL_NodeCount(model); ++node) {
    double expected[4], found[4];
    QDL_NodeCoordinates(model, node, expected);
    QDL_NodeCoordinates(other, node, found);
    expected[3] = QDL_NodalMass(model, node);
    found[3] = QDL_NodalMass(other, node);
    compare(&result, expected, found, 4, single);
    result.wrong += QDL_NodeID(model, node) != QDL_NodeID(other, node);
  }
  return result;
}

static Comparison compare_eigenvalues(QDL_Record *model, QDL_Record *other, int single) {
  Comparison result = {0, 0, 0.0, 0.0};
  int32_t index;
  for (index = 0; index < QDL_ModeCount(model); ++index) {
    const int32_t mode = QDL_ModeNumber(model, index);
    double expected[2], found[2];
    if (!QDL_Eigenvalue(model, mode, NULL, NULL, NULL, &expected[0], &expected[1]) ||
        !QDL_Eigenvalue(other, mode, NULL, NULL, NULL, &found[0], &found[1])) {
      fail("cannot fetch", "an eigenvalue");
    }
    compare(&result, expected, found, 2, single);
  }
  return result;
}

static long long print_comparison(const char *what, const char *way, Comparison result) {
  printf("  %-14s %-13s %7lld values up to %-12g largest difference %-12g %s\n", what, way,
         result.values, result.largest_value, result.largest_difference,
         result.wrong == 0 ? "as it should be" : "WRONG");
  return result.wrong;
}

/* Compares a file with the model it was written from; returns the number of wrong values. */
static long long compare_file(QDL_Record *model, const char *path, int single) {
  QDL_Record *const other = open_model(path);
  long long wrong = 0;
  int32_t kind;
  printf("%s\n", path);
  if (QDL_NodeCount(other) != QDL_NodeCount(model) ||
      QDL_ModeCount(other) != QDL_ModeCount(model) || QDL_Double_Prec(other) != !single) {
    fail("other counts or precision than expected in", path);
  }
  wrong += print_comparison("nodes, masses", "", compare_geometry(model, other, single));
  wrong += print_comparison("gen. matrices", "", compare_eigenvalues(model, other, single));
  for (kind = 0; kind < kinds; ++kind) {
    if (!QDL_ModeExist(model, kind) || !QDL_ModeExist(other, kind)) {
      fail(path, "lacks a kind of modes");
    }
    if (QDL_ModeNodeCount(model, kind) != QDL_ModeNodeCount(other, kind)) {
      fail(path, "has other nodes");
    }
    wrong += print_comparison(kind_names[kind], "mode by mode",
                              compare_by_mode(model, other, kind, single));
    wrong += print_comparison(kind_names[kind], "node by node",
                              compare_by_node(model, other, kind, single));
  }
  QDL_DeReference(other);
  return wrong;
}

int main(int argc, char **argv) {
  const QDL_MessageHandler handlers[3] = {print_error, print_warning, NULL};
  QDL_Record *model;
  long long wrong;
  if (argc != 4) {
    fprintf(stderr, "usage: demo IMPORTED.qdl XDR_DOUBLE.qdl NATIVE_SINGLE.qdl\n");
    return 2;
  }
  SetMessageHandlers(handlers);

  model = open_model(argv[1]);
  printf("%s: %d nodes, %d modes\n", argv[1], (int)QDL_NodeCount(model), (int)QDL_ModeCount(model));
  write_as(model, "", argv[2]);
  write_as(model, "no_xdr,single", argv[3]);

  printf("\nXDR, double precision: every bit must be the same\n");
  wrong = compare_file(model, argv[2], 0);
  printf("\nnative, single precision: every value must be the nearest float\n");
  wrong += compare_file(model, argv[3], 1);
  QDL_Terminate();

  if (wrong > 0) {
    fprintf(stderr, "demo: %lld values differ\n", wrong);
    return 1;
  }
  return 0;
}
