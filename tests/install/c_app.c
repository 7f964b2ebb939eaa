/* A C program that knows only the installed library: messages, one record, one node. */
#include <qdlflex/qdlflex.h>
#include <stdio.h>
#include <string.h>

static char last_error[1008];

static int64_t keep_error(const char *text) {
  strncpy(last_error, text, sizeof last_error - 1);
  return 0;
}

static int64_t print_text(const char *text) {
  printf("%s\n", text);
  return 0;
}

static int expect(int holds, const char *what) {
  if (!holds) {
    fprintf(stderr, "failed: %s\n", what);
  }
  return holds;
}

int main(void) {
  const QDL_MessageHandler handlers[3] = {keep_error, print_text, print_text};
  double xyz[3] = {0.0, 0.0, 0.0};
  QDL_Record *model;
  int good = expect(SetMessageHandlers(handlers) == 1, "the handlers are accepted");

  good &= expect(QDL_SetNodeCoordinates(NULL, 7, 1.0, 2.0, 3.0) == 0, "no record, no node");
  good &= expect(strstr(last_error, "not been initialized") != NULL, "the error was reported");

  model = QDL_Create(1, 0);
  good &= expect(model != NULL, "a record is created");
  good &= expect(QDL_SetNodeCoordinates(model, 7, 1.0, 2.0, 3.0) == 1, "a node is set");
  good &= expect(QDL_NodeCount(model) == 1, "there is one node");
  good &= expect(QDL_NodeID(model, 0) == 7, "it is number 7");
  good &=
      expect(QDL_NodeCoordinates(model, 0, xyz) == 1 && xyz[2] == 3.0, "it is where it was set");

  QDL_Terminate();
  good &= expect(QDL_IsValid(model) == 0, "the record is gone");

  good &= expect(strcmp(QDL_LibraryVersion(), QDLFLEX_VERSION_STRING) == 0,
                 "the library is that of the header");

  printf("qdlflex %s from C: %s\n", QDLFLEX_VERSION_STRING, good ? "good" : "failed");
  return good ? 0 : 1;
}
