/* Compares what the library makes of a body with what the finite-element solver printed of it:
 * mass, centre of mass, inertia and frequencies.
 *
 *   compare_with_solver BODY.qdl TABLES.dat
 *
 * The body's mass properties come from its inertia invariants, which the library sums over nodal
 * masses; the solver integrates over the elements. The total mass is therefore the same, while
 * centre and inertia differ by what lumping the mass costs. Ends with 1 beyond these limits:
 */
static const double mass_limit = 1e-6;      /* relative */
static const double centre_limit = 2e-3;    /* of the radius of gyration */
static const double inertia_limit = 2e-2;   /* of the largest entry */
static const double frequency_limit = 1e-6; /* relative, elastic modes; the tables have 7 digits */

#include <math.h>
#include <qdlflex/qdlflex.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../example.h"

enum { most_modes = 1000, line_size = 256 };

/* What the solver printed. Eigenvalues in (rad/s)^2, negative ones too. */
typedef struct Tables {
  double mass;
  double second_moments[6]; /* about the origin: xx, yy, zz, xy, xz, yz */
  double centre[3];
  double eigenvalues[most_modes];
  int modes;
} Tables;

static int begins_with(const char *line, const char *text) {
  return strncmp(line, text, strlen(text)) == 0;
}

/* The numbers of the next line that is not blank. */
static void read_numbers(FILE *file, double *values, int count) {
  char line[line_size];
  while (fgets(line, sizeof line, file) != NULL) {
    char *rest = line;
    char *end = line;
    int i;
    for (i = 0; i < count; ++i) {
      values[i] = strtod(rest, &end);
      if (end == rest) {
        break;
      }
      rest = end;
    }
    if (i == count) {
      return;
    }
  }
}

/* The tables repeat the totals for each mode; all are the same. */
static Tables read_tables(const char *path) {
  static const Tables nothing;
  Tables tables = nothing;
  char line[line_size];
  int in_eigenvalues = 0;
  FILE *const file = fopen(path, "r");
  if (file == NULL) {
    fail("cannot open", path);
  }
  while (fgets(line, sizeof line, file) != NULL) {
    int number;
    double eigenvalue;
    if (strstr(line, "E I G E N V A L U E   O U T P U T") != NULL) {
      in_eigenvalues = 1;
    } else if (strstr(line, "P A R T I C I P A T I O N") != NULL) {
      in_eigenvalues = 0;
    } else if (begins_with(line, " total mass moment of inertia (")) {
      read_numbers(file, tables.second_moments, 6);
    } else if (begins_with(line, " center of gravity for")) {
      read_numbers(file, tables.centre, 3);
    } else if (begins_with(line, " total mass for")) {
      read_numbers(file, &tables.mass, 1);
    } else if (in_eigenvalues && tables.modes < most_modes &&
               sscanf(line, "%d %lf", &number, &eigenvalue) == 2) {
      tables.eigenvalues[tables.modes++] = eigenvalue;
    }
  }
  fclose(file);
  if (tables.modes == 0 || tables.mass == 0.0) {
    fail("no eigenvalues or no total mass in", path);
  }
  return tables;
}

static int print_row(const char *what, double library, double solver, double scale, double limit) {
  const double difference = fabs(library - solver) / scale;
  const int holds = difference <= limit;
  printf("  %-16s %16.8g %16.8g   %9.2e   %s\n", what, library, solver, difference,
         holds ? "" : "BEYOND THE LIMIT");
  return !holds;
}

static int compare_mass(QDL_Record *model, const Tables *tables) {
  static const char *const axes[] = {"x", "y", "z"};
  static const char *const entries[] = {"inertia xx", "inertia yy", "inertia zz",
                                        "product xy", "product xz", "product yz"};
  static const int places[] = {0, 4, 8, 1, 2, 5};
  const double *const s = tables->second_moments;
  /* The solver prints second moments, the library the inertia with positive products. */
  const double solver[] = {s[1] + s[2], s[0] + s[2], s[0] + s[1], s[3], s[4], s[5]};
  const double size = sqrt((s[0] + s[1] + s[2]) / tables->mass);
  const double largest = fmax(solver[0], fmax(solver[1], solver[2]));
  double mass, centre[3], inertia[9];
  int i, beyond;
  if (!QDL_TotalMassInertia(model, &mass, centre, inertia)) {
    fail("no mass properties in", "the body");
  }
  printf("  %-16s %16s %16s   %9s\n", "", "library", "solver", "difference");
  beyond = print_row("mass", mass, tables->mass, tables->mass, mass_limit);
  for (i = 0; i < 3; ++i) {
    char name[] = "centre x";
    name[7] = axes[i][0];
    beyond += print_row(name, centre[i], tables->centre[i], size, centre_limit);
  }
  for (i = 0; i < 6; ++i) {
    beyond += print_row(entries[i], inertia[places[i]], solver[i], largest, inertia_limit);
  }
  return beyond;
}

/* Rigid modes have frequencies around zero, with any sign: they are compared with the first
 * elastic one. */
static int compare_frequencies(QDL_Record *model, const Tables *tables) {
  const double two_pi = 6.283185307179586;
  const int rigid = QDL_RigidBodyModeCount(model);
  int beyond = 0;
  int i;
  if (QDL_ModeCount(model) != tables->modes || rigid >= tables->modes) {
    fail("other modes than in the tables in", "the body");
  }
  printf("  %d rigid modes, %d elastic ones, in Hz\n", rigid, tables->modes - rigid);
  for (i = 0; i < tables->modes; ++i) {
    const double solver =
        copysign(sqrt(fabs(tables->eigenvalues[i])), tables->eigenvalues[i]) / two_pi;
    const double scale = i < rigid ? sqrt(tables->eigenvalues[rigid]) / two_pi : solver;
    double frequency;
    char name[24];
    if (!QDL_Eigenvalue(model, QDL_ModeNumber(model, i), NULL, &frequency, NULL, NULL, NULL)) {
      fail("no eigenvalue of a mode in", "the body");
    }
    snprintf(name, sizeof name, "mode %d", i + 1);
    beyond += print_row(name, frequency, solver, scale, frequency_limit);
  }
  return beyond;
}

int main(int argc, char **argv) {
  const QDL_MessageHandler handlers[3] = {print_error, print_warning, NULL};
  QDL_Record *model;
  Tables tables;
  int beyond;
  if (argc != 3) {
    fprintf(stderr, "usage: compare_with_solver BODY.qdl TABLES.dat\n");
    return 2;
  }
  SetMessageHandlers(handlers);
  tables = read_tables(argv[2]);
  model = QDL_CreateFromQDL(argv[1]);
  if (model == NULL) {
    fail("cannot open", argv[1]);
  }
  beyond = compare_mass(model, &tables);
  beyond += compare_frequencies(model, &tables);
  QDL_Terminate();
  return beyond > 0 ? 1 : 0;
}
