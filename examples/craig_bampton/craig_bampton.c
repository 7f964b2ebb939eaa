/* Makes a QDL file from a Craig-Bampton set and holds what the library makes of it against two
 * other solvers.
 *
 *   craig_bampton REDUCED.txt OUTPUT.qdl SOLVER.dat
 *
 * REDUCED.txt is what reduce.py wrote: nodes, interface nodes, dense stiffness and mass, modes, and
 * the frequencies of the reduced pair. The library makes the modes orthogonal while it writes the
 * file. From the file come then frequencies, compared with those of reduce.py and with those of the
 * unreduced model in SOLVER.dat, the transformation, which must make the dense pair diagonal, and
 * the modes, which must be the given ones combined by it. Ends with 1 if anything differs.
 */
#include <math.h>
#include <qdlflex/qdlflex.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "../example.h"

/* The reduced pair is one and the same for both; the reduction itself is not exact. */
static const double reduced_tolerance = 1e-8;
static const double solver_tolerance = 1e-3;
/* Of the frequency of the first elastic mode; what is below is a rigid mode. */
static const double rigid_share = 1e-3;
static const double diagonal_tolerance = 1e-8;
static const double mode_tolerance = 1e-10;

enum { node_values = 4, directions = 3, rigid_modes = 6 };

typedef struct Reduced {
  int nodes;
  int interface_nodes;
  int modes;
  int *ids;
  int *interface_ids;
  double *places_and_masses; /* four per node */
  double *stiffness;
  double *mass;
  double *shapes; /* by node, mode, direction */
  double *frequencies;
} Reduced;

static int wrong = 0;

static void require(int ok, const char *what) {
  if (!ok) {
    fail("the library refuses", what);
  }
}

static void read_integers(FILE *file, const char *path, int *values, size_t count) {
  size_t i;
  for (i = 0; i < count; ++i) {
    if (fscanf(file, "%d", &values[i]) != 1) {
      fail("cannot read", path);
    }
  }
}

static double *read_numbers(FILE *file, const char *path, double *values, size_t count) {
  size_t i;
  for (i = 0; i < count; ++i) {
    if (fscanf(file, "%lf", &values[i]) != 1) {
      fail("cannot read", path);
    }
  }
  return values;
}

static Reduced read_reduced(const char *path) {
  FILE *const file = fopen(path, "r");
  Reduced set;
  int counts[3];
  size_t nodes, modes, i;
  if (file == NULL) {
    fail("cannot open", path);
  }
  read_integers(file, path, counts, 3);
  set.nodes = counts[0];
  set.interface_nodes = counts[1];
  set.modes = counts[2];
  if (set.nodes < 1 || set.interface_nodes < 0 || set.modes < 1) {
    fail("there is nothing in", path);
  }
  nodes = (size_t)set.nodes;
  modes = (size_t)set.modes;
  set.ids = allocate(nodes, sizeof *set.ids);
  set.interface_ids = allocate((size_t)set.interface_nodes, sizeof *set.interface_ids);
  set.places_and_masses = allocate(nodes * node_values, sizeof(double));
  for (i = 0; i < nodes; ++i) {
    read_integers(file, path, &set.ids[i], 1);
    read_numbers(file, path, &set.places_and_masses[node_values * i], node_values);
  }
  read_integers(file, path, set.interface_ids, (size_t)set.interface_nodes);
  set.stiffness = read_numbers(file, path, allocate(modes * modes, sizeof(double)), modes * modes);
  set.mass = read_numbers(file, path, allocate(modes * modes, sizeof(double)), modes * modes);
  set.shapes = read_numbers(file, path, allocate(nodes * modes * directions, sizeof(double)),
                            nodes * modes * directions);
  set.frequencies = read_numbers(file, path, allocate(modes, sizeof(double)), modes);
  fclose(file);
  return set;
}

static void free_reduced(Reduced *set) {
  free(set->ids);
  free(set->interface_ids);
  free(set->places_and_masses);
  free(set->stiffness);
  free(set->mass);
  free(set->shapes);
  free(set->frequencies);
}

static const double *shape_of(const Reduced *set, int node, int mode) {
  return set->shapes + ((size_t)node * (size_t)set->modes + (size_t)mode) * directions;
}

static void set_nodes(QDL_Record *model, const Reduced *set) {
  int i;
  for (i = 0; i < set->nodes; ++i) {
    const double *const values = set->places_and_masses + node_values * (size_t)i;
    require(QDL_SetNodeCoordinates(model, set->ids[i], values[0], values[1], values[2]), "a node");
    require(QDL_SetNodalMass(model, set->ids[i], values[3]), "a nodal mass");
  }
  for (i = 0; i < set->interface_nodes; ++i) {
    require(QDL_SetInterfaceNode(model, set->interface_ids[i]), "an interface node");
  }
}

/* Each pair of modes once: an entry off the diagonal stands for both places. */
static void set_matrices(QDL_Record *model, const Reduced *set) {
  int row, column;
  for (row = 0; row < set->modes; ++row) {
    for (column = 0; column <= row; ++column) {
      const size_t place = (size_t)row * (size_t)set->modes + (size_t)column;
      require(QDL_SetGeneralizedStiffness(model, row + 1, column + 1, set->stiffness[place]),
              "a generalized stiffness");
      require(QDL_SetGeneralizedMass(model, row + 1, column + 1, set->mass[place]),
              "a generalized mass");
    }
  }
}

static void set_modes(QDL_Record *model, const Reduced *set) {
  int mode, node;
  for (mode = 0; mode < set->modes; ++mode) {
    for (node = 0; node < set->nodes; ++node) {
      /* Solid elements: no rotations. */
      double six[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
      memcpy(six, shape_of(set, node, mode), directions * sizeof *six);
      require(QDL_SetModeVec(model, mode + 1, set->ids[node], QDL_MODE_SHAPE, six), "a mode");
    }
  }
}

static void write_model(const Reduced *set, const char *path) {
  QDL_Record *const model = QDL_Create(set->nodes, set->modes);
  require(model != NULL, "a model");
  require(QDL_SetUnits(model, "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"), "the units");
  set_nodes(model, set);
  set_modes(model, set);
  set_matrices(model, set);
  require(QDL_write_QDL(model, path), "to write the file");
  QDL_DeReference(model);
}

/* The frequencies in the table at the head of the solver's output; returns how many there are. */
static int read_solver(const char *path, double *frequencies, int most) {
  FILE *const file = fopen(path, "r");
  char line[256];
  int count = 0;
  if (file == NULL) {
    fail("cannot open", path);
  }
  while (fgets(line, sizeof line, file) != NULL && strstr(line, "P A R T I C") == NULL) {
    int mode;
    double eigenvalue, circular, frequency, growth;
    if (sscanf(line, "%d %lf %lf %lf %lf", &mode, &eigenvalue, &circular, &frequency, &growth) ==
            5 &&
        mode == count + 1 && count < most) {
      frequencies[count++] = frequency;
    }
  }
  fclose(file);
  return count;
}

static double relative(double value, double reference) {
  return fabs(value - reference) / fabs(reference);
}

static const char *judge(int good) {
  wrong += !good;
  return good ? "" : "  WRONG";
}

/* What is not a number stays and fails every comparison. */
static void keep_largest(double *largest, double value) {
  if (isnan(value) || value > *largest) {
    *largest = value;
  }
}

static double frequency_of(QDL_Record *model, int mode) {
  double frequency = 0.0;
  require(QDL_Eigenvalue(model, mode, NULL, &frequency, NULL, NULL, NULL), "an eigenvalue");
  return frequency;
}

static void compare_rigid_modes(QDL_Record *model, const Reduced *set, const double *solver) {
  const double limit = rigid_share * frequency_of(model, rigid_modes + 1);
  int mode;
  for (mode = 1; mode <= rigid_modes; ++mode) {
    const double found = frequency_of(model, mode);
    printf("%5d %16.6g %16.6g %16.6g %34s%s\n", mode, found, set->frequencies[mode - 1],
           solver[mode - 1], "rigid", judge(fabs(found) <= limit));
  }
}

/* Rigid modes have frequencies of rounding size, which no two solvers share. */
static void compare_frequencies(QDL_Record *model, const Reduced *set, const double *solver,
                                int solved) {
  double worst = 0.0;
  int mode;
  printf("%5s %16s %16s %16s %16s %16s\n", "mode", "library [Hz]", "scipy [Hz]", "solver [Hz]",
         "to scipy", "to solver");
  compare_rigid_modes(model, set, solver);
  for (mode = rigid_modes + 1; mode <= set->modes; ++mode) {
    const double found = frequency_of(model, mode);
    const double difference = relative(found, set->frequencies[mode - 1]);
    keep_largest(&worst, difference);
    if (mode <= solved) {
      const double to_solver = relative(found, solver[mode - 1]);
      printf("%5d %16.6f %16.6f %16.6f %16.2e %16.2e%s\n", mode, found, set->frequencies[mode - 1],
             solver[mode - 1], difference, to_solver, judge(to_solver <= solver_tolerance));
    }
  }
  printf("all %d elastic modes: at most %.2e from scipy%s\n", set->modes - rigid_modes, worst,
         judge(worst <= reduced_tolerance));
}

/* Entry (i, j) of T' A T; `order` is that of all three. */
static double projected(const double *transformation, const double *matrix, int order, int i,
                        int j) {
  const size_t n = (size_t)order;
  double sum = 0.0;
  size_t a, b;
  for (a = 0; a < n; ++a) {
    double along_row = 0.0;
    for (b = 0; b < n; ++b) {
      along_row += matrix[a * n + b] * transformation[b * n + (size_t)j];
    }
    sum += transformation[a * n + (size_t)i] * along_row;
  }
  return sum;
}

/* The stiffness between two modes counts beside their own; a rigid mode has none of its own. */
static void check_diagonal(const Reduced *set, const double *transformation) {
  const size_t modes = (size_t)set->modes;
  double *const own = allocate(modes, sizeof *own);
  double mass_error = 0.0;
  double stiffness_error = 0.0;
  int i, j;
  for (i = 0; i < set->modes; ++i) {
    own[i] = projected(transformation, set->stiffness, set->modes, i, i);
    for (j = 0; j <= i; ++j) {
      const double mass = projected(transformation, set->mass, set->modes, i, j);
      keep_largest(&mass_error, fabs(mass - (i == j ? 1.0 : 0.0)));
    }
    for (j = rigid_modes; j < i; ++j) {
      const double stiffness = projected(transformation, set->stiffness, set->modes, i, j);
      keep_largest(&stiffness_error, fabs(stiffness) / sqrt(own[i] * own[j]));
    }
  }
  printf("the transformation leaves %.2e of the mass and %.2e of the stiffness coupled%s\n",
         mass_error, stiffness_error,
         judge(mass_error <= diagonal_tolerance && stiffness_error <= diagonal_tolerance));
  free(own);
}

/* The displacement of a node in the given modes, summed with the coefficients of a new mode. */
static void combine(const Reduced *set, const double *transformation, int node, int mode,
                    double *sum) {
  int old, direction;
  memset(sum, 0, directions * sizeof *sum);
  for (old = 0; old < set->modes; ++old) {
    const double factor = transformation[(size_t)old * (size_t)set->modes + (size_t)mode];
    for (direction = 0; direction < directions; ++direction) {
      sum[direction] += factor * shape_of(set, node, old)[direction];
    }
  }
}

/* Each mode of the file against the given modes that its column of the transformation combines. */
static void check_modes(QDL_Record *model, const Reduced *set, const double *transformation) {
  const size_t count = (size_t)QDL_ModeNodeCount(model, QDL_MODE_SHAPE) * directions;
  double *const found = allocate(count, sizeof *found);
  double worst = 0.0;
  int mode, node, direction;
  for (mode = 0; mode < set->modes; ++mode) {
    double largest = 0.0;
    double error = 0.0;
    require(QDL_Mode(model, mode + 1, QDL_MODE_SHAPE, found, 0), "a mode of the file");
    for (node = 0; node < set->nodes; ++node) {
      const int place = QDL_ModeNodeIndex(model, QDL_MODE_SHAPE, set->ids[node]);
      double sum[directions];
      require(place >= 0, "a node of the file");
      combine(set, transformation, node, mode, sum);
      for (direction = 0; direction < directions; ++direction) {
        keep_largest(&largest, fabs(sum[direction]));
        keep_largest(&error, fabs(sum[direction] - found[place * directions + direction]));
      }
    }
    keep_largest(&worst, error / largest);
  }
  printf("its modes are the given ones combined, to %.2e%s\n", worst,
         judge(worst <= mode_tolerance));
  free(found);
}

static void check_file(const Reduced *set, const char *path, const double *solver, int solved) {
  QDL_Record *const model = QDL_CreateFromQDL(path);
  double *const transformation = allocate((size_t)set->modes * (size_t)set->modes, sizeof(double));
  require(model != NULL, "the file that it wrote");
  if (QDL_ModeCount(model) != set->modes || QDL_NodeCount(model) != set->nodes) {
    fail("another number of nodes or modes in", path);
  }
  compare_frequencies(model, set, solver, solved);
  require(QDL_Transformation(model, transformation), "the transformation");
  check_diagonal(set, transformation);
  check_modes(model, set, transformation);
  printf("%d rigid-body modes%s\n", (int)QDL_RigidBodyModeCount(model),
         judge(QDL_RigidBodyModeCount(model) == rigid_modes));
  free(transformation);
}

int main(int argc, char **argv) {
  const QDL_MessageHandler handlers[3] = {print_error, print_warning, NULL};
  double solver[64];
  Reduced set;
  int solved;
  if (argc != 4) {
    fprintf(stderr, "usage: craig_bampton REDUCED.txt OUTPUT.qdl SOLVER.dat\n");
    return 2;
  }
  SetMessageHandlers(handlers);
  set = read_reduced(argv[1]);
  solved = read_solver(argv[3], solver, (int)(sizeof solver / sizeof *solver));
  if (solved <= rigid_modes || solved > set.modes) {
    fail("too few or too many modes in", argv[3]);
  }
  write_model(&set, argv[2]);
  check_file(&set, argv[2], solver, solved);
  free_reduced(&set);
  QDL_Terminate();
  if (wrong > 0) {
    fprintf(stderr, "craig_bampton: %d comparisons failed\n", wrong);
    return 1;
  }
  return 0;
}
