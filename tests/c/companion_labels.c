/* A host that brings its own QDL_ConvertUnitsLabel, linked with the shared library without any
 * further flag. */
#include <qdlflex/qdlflex.h>

#include <stdio.h>
#include <string.h>

int QDL_ConvertUnitsLabel(char *label);

static int calls = 0;

int QDL_ConvertUnitsLabel(char *label) {
  ++calls;
  if (strcmp(label, "mm") == 0)
    strcpy(label, "MILLIMETER");
  return strcmp(label, "REFUSED") != 0;
}

int main(void) {
  char length[16] = "";
  QDL_Record *model = QDL_Create(0, 0);
  const int accepted = QDL_SetUnits(model, "KILOGRAM", "mm", "SECOND", "NEWTON");
  const int calls_of_accepted = calls;
  const int refused = QDL_SetUnits(model, "REFUSED", "METER", "SECOND", "NEWTON");
  QDL_Units(model, NULL, length, NULL, NULL);
  QDL_Terminate();
  if (accepted == 1 && calls_of_accepted == 4 && refused == 0 &&
      strcmp(length, "MILLIMETER") == 0) {
    return 0;
  }
  printf("accepted %d after %d calls, refused %d, length unit %s\n", accepted, calls_of_accepted,
         refused, length);
  return 1;
}
