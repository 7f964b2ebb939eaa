/* Writes a body made here, and bodies read from files, in every encoding and precision:
 *
 *   rewrite FOLDER FILE...
 *
 * scripts/byte-order-test runs it on hosts of either byte order and compares the files. */
#define _POSIX_C_SOURCE 200112L
#include <qdlflex/qdlflex.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kNodes = 5, kModes = 3 };

static int failures = 0;

static int64_t print(const char *text) {
  fprintf(stderr, "%s\n", text);
  return 0;
}

static int64_t ignore(const char *text) {
  (void)text;
  return 0;
}

static void expect(int holds, const char *what) {
  if (!holds) {
    fprintf(stderr, "failed: %s\n", what);
    ++failures;
  }
}

static QDL_Record *make_body(void) {
  static const int32_t face[4] = {1, 2, 3, 4};
  QDL_Record *model = QDL_Create(kNodes, kModes);
  int32_t node, mode;
  int set = QDL_SetUnits(model, "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON");
  for (node = 1; node <= kNodes; ++node) {
    set &= QDL_SetNodeCoordinates(model, node, 1.0 / node, node * node, -0.1 * node);
    set &= QDL_SetNodalMass(model, node, 0.1 * node);
    set &= QDL_SetNodalInertia(model, node, 1, 2, 3, 0.1, 0.2, 0.3);
  }
  set &= QDL_SetFaceList(model, 4, face);
  set &= QDL_SetInterfaceNode(model, 5);
  for (mode = 1; mode <= kModes; ++mode) {
    set &= QDL_SetGeneralizedMass(model, mode, mode, 1.0);
    set &= QDL_SetGeneralizedStiffness(model, mode, mode, 1e6 * mode);
    set &= QDL_SetModalPreload(model, mode, 1.0 / 3.0);
    for (node = 1; node <= kNodes; ++node) {
      set &= QDL_SetMode(model, mode, node, QDL_MODE_SHAPE, 1.0 / mode, node, 1e-300, -0.1, 7, 0);
      set &= QDL_SetMode(model, mode, node, QDL_MODE_STRESS, node, mode, -1e30, 2, 3.5, 1e-30);
    }
  }
  expect(set, "a body is made");
  return model;
}

static void write_all(QDL_Record *model, const char *folder, const char *name) {
  static const char *const forms[][2] = {{"xdr-double", "no_ortho"},
                                         {"xdr-single", "no_ortho single"},
                                         {"native-double", "no_ortho no_xdr"},
                                         {"native-single", "no_ortho no_xdr single"}};
  char path[4096];
  size_t i;
  for (i = 0; i < sizeof forms / sizeof *forms; ++i) {
    snprintf(path, sizeof path, "%s/%s.%s", folder, name, forms[i][0]);
    setenv("ZEB_QDLWRITE_OPTIONS", forms[i][1], 1);
    expect(QDL_write_QDL(model, path) == 1, path);
  }
}

static void rewrite(const char *file, const char *folder) {
  const char *slash = strrchr(file, '/');
  QDL_Record *model = QDL_CreateFromQDL(file);
  expect(model != NULL, file);
  if (model)
    write_all(model, folder, slash ? slash + 1 : file);
}

int main(int argc, char **argv) {
  const QDL_MessageHandler handlers[3] = {print, ignore, ignore};
  int i;
  if (argc < 2) {
    fprintf(stderr, "usage: rewrite FOLDER FILE...\n");
    return 2;
  }
  SetMessageHandlers(handlers);
  write_all(make_body(), argv[1], "made");
  for (i = 2; i < argc; ++i)
    rewrite(argv[i], argv[1]);
  QDL_Terminate();
  return failures != 0;
}
