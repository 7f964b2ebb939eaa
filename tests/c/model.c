/* Builds a model from C, writes it and reads it back. */
#define _POSIX_C_SOURCE 200112L
#include <qdlflex/qdlflex.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define NODES 4
#define MODES 2

static int failures = 0;

#define CHECK(condition)                                           \
  do {                                                             \
    if (!(condition)) {                                            \
      printf("line %d: %s does not hold\n", __LINE__, #condition); \
      ++failures;                                                  \
    }                                                              \
  } while (0)

static int64_t on_error(const char *text) {
  printf("error: %s\n", text);
  return 0;
}

static int64_t on_other(const char *text) {
  (void)text;
  return 0;
}

static double component(int mode, int node, int kind, int i) {
  return 100.0 * mode + 10.0 * node + 1000.0 * kind + i;
}

static void set_geometry(QDL_Record *model) {
  static const int32_t face[3] = {11, 12, 13};
  int node;
  CHECK(QDL_SetUnits(model, "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON") == 1);
  for (node = 1; node <= NODES; ++node) {
    const int32_t id = 10 + node;
    CHECK(QDL_SetNodeCoordinates(model, id, node, node * node, 0.5) == 1);
    CHECK(QDL_SetNodalMass(model, id, 0.25) == 1);
    CHECK(QDL_AddNodalMass(model, id, 0.25) == 1);
    CHECK(QDL_SetNodalInertia(model, id, 1, 2, 3, 0.1, 0.2, 0.3) == 1);
  }
  CHECK(QDL_SetFaceList(model, 3, face) == 1);
  CHECK(QDL_SetFace(model, 4, 11, 12, 14, 13) == 1);
  CHECK(QDL_SetInterfaceNode(model, 14) == 1);
}

static void set_modes(QDL_Record *model) {
  int mode, node, kind, i;
  for (mode = 1; mode <= MODES; ++mode) {
    CHECK(QDL_SetGeneralizedMass(model, mode, mode, 1.0) == 1);
    CHECK(QDL_SetGeneralizedStiffness(model, mode, mode, 1e6 * mode) == 1);
    CHECK(QDL_SetGeneralizedDamping(model, mode, mode, 2.0 * mode) == 1);
    for (kind = 0; kind < 3; ++kind) {
      for (node = 1; node <= NODES; ++node) {
        double six[6];
        for (i = 0; i < 6; ++i)
          six[i] = component(mode, node, kind, i);
        CHECK(QDL_SetModeVec(model, mode, 10 + node, kind, six) == 1);
      }
    }
  }
}

/* Texts, and an array that the caller has to release. */
static void set_loads(QDL_Record *model) {
  char title[] = "model\nfrom C", name[] = "model.c", type[] = "C";
  char first[] = "one", second[] = "", third[] = "three";
  CHECK(QDL_SetHeader(model, title, name, type, first, second, third) == 1);
  CHECK(QDL_SetModalPreload(model, 2, 0.5) == 1);
  CHECK(QDL_SetModalLoad(model, 1, 1, 7.5) == 1);
  CHECK(QDL_SetModalLoadLabel(model, 0, "dead weight") == 1);
}

static void check_geometry(QDL_Record *model) {
  char mass[16], length[16], time[16], force[16];
  double xyz[3], tensor[9];
  int32_t faces = 0, entries = 0, count = 0, list[9];
  int32_t *interface_nodes;
  CHECK(QDL_Units(model, mass, length, time, force) == 1);
  CHECK(strcmp(mass, "MEGAGRAM") == 0 && strcmp(length, "MILLIMETER") == 0);
  CHECK(QDL_NodeCount(model) == NODES && QDL_NodeIndex(model, 13) == 2);
  CHECK(QDL_NodeCoordinates(model, 2, xyz) == 1 && xyz[0] == 3 && xyz[1] == 9 && xyz[2] == 0.5);
  CHECK(QDL_NodalMass(model, 3) == 0.5);
  CHECK(QDL_NodalInertia(model, 0, tensor) == 1 && tensor[4] == 2 && tensor[5] == 0.3);
  CHECK(QDL_FaceListSize(model, &faces, &entries) == 1 && faces == 2 && entries == 9);
  CHECK(QDL_ElementFaces(model, list) == 1 && list[4] == 4 && list[7] == 3);
  interface_nodes = QDL_InterfaceNodeIDs(model, &count);
  CHECK(count == 1 && interface_nodes != NULL && interface_nodes[0] == 14);
  QDL_FreeMemory(interface_nodes);
}

static void check_modes(QDL_Record *model) {
  double half[3 * NODES], full[MODES * MODES];
  int mode, node, kind, part, i;
  CHECK(QDL_ModeCount(model) == MODES);
  for (mode = 1; mode <= MODES; ++mode) {
    double eigenvalue = 0, frequency = 0;
    CHECK(QDL_Eigenvalue(model, mode, &eigenvalue, &frequency, NULL, NULL, NULL) == 1);
    CHECK(eigenvalue == 1e6 * mode);
    /* 1 N/(t mm) is one per second squared, so that no factor comes in. */
    CHECK(fabs(frequency - sqrt(1e6 * mode) / 6.28318530718) < 1e-10 * frequency);
    for (kind = 0; kind < 3; ++kind) {
      CHECK(QDL_ModeExist(model, kind) == 1 && QDL_ModeNodeCount(model, kind) == NODES);
      for (part = 0; part < 2; ++part) {
        CHECK(QDL_Mode(model, mode, kind, half, part) == 1);
        for (node = 1; node <= NODES; ++node)
          for (i = 0; i < 3; ++i)
            CHECK(half[3 * (node - 1) + i] == component(mode, node, kind, 3 * part + i));
      }
    }
  }
  CHECK(QDL_GenStiffFull(model, full, MODES) == 1 && full[3] == 2e6 && full[1] == 0);
  CHECK(QDL_GenDampFull(model, full, MODES) == 1 && full[0] == 2);
}

static void check_loads(QDL_Record *model) {
  char title[128], comment[80], label[257] = "";
  int32_t count = 0;
  double *values;
  CHECK(QDL_Header(model, title, NULL, NULL, NULL, comment, NULL, NULL) == 1);
  CHECK(strcmp(title, "model from C") == 0 && strcmp(comment, "one") == 0);
  values = QDL_GetModalPreload(model, &count);
  CHECK(count == MODES && values != NULL && values[0] == 0 && values[1] == 0.5);
  QDL_FreeMemory(values);
  CHECK(QDL_GetModalLoadCaseCount(model) == 2);
  CHECK(QDL_GetModalLoadCaseLabel(model, 0, label) == 1 && strcmp(label, "dead weight") == 0);
}

static void check_all(QDL_Record *model) {
  check_geometry(model);
  check_modes(model);
  check_loads(model);
}

int main(void) {
  const QDL_MessageHandler handlers[3] = {on_error, on_other, on_other};
  const char *path = "model_test.qdl";
  QDL_Record *model, *read;
  SetMessageHandlers(handlers);
  model = QDL_Create(NODES, MODES);
  CHECK(model != NULL);
  set_geometry(model);
  set_modes(model);
  set_loads(model);
  check_all(model);
  setenv("ZEB_QDLWRITE_OPTIONS", "no_ortho", 1);
  CHECK(QDL_write_QDL(model, path) == 1);
  QDL_UnLink(model);
  read = QDL_CreateFromQDL(path);
  CHECK(read != NULL);
  if (read != NULL)
    check_all(read);
  QDL_Terminate();
  remove(path);
  return failures;
}
