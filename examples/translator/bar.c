/* Fills a model through the setters and writes it: what a translator of finite-element results
 * does.
 *
 *   bar FILE.qdl
 *
 * The body is a free steel bar of square section. Its mass sits in lumps at the corners of equally
 * spaced stations, which springs join along the bar. The modes of such a chain are cosines, so that
 * every number written here has a closed form and no solver is needed:
 *   shape of elastic mode k at station j    cos(pi k (j + 1/2) / n)
 *   eigenvalue                              4 spring / (station mass) sin^2(pi k / (2 n))
 */
#include <math.h>
#include <qdlflex/qdlflex.h>
#include <stdio.h>
#include <string.h>

enum { stations = 11, corners = 4, nodes = stations * corners, rigid_modes = 6, elastic_modes = 4 };

static const double pi = 3.14159265358979323846;
static const double width = 0.02;    /* m, of the square section */
static const double spacing = 0.05;  /* m, between stations */
static const double density = 7850;  /* kg/m^3 */
static const double modulus = 210e9; /* N/m^2 */

static int64_t print_message(const char *text) {
  fprintf(stderr, "%s\n", text);
  return 0;
}

static int32_t node_id(int station, int corner) {
  return 1 + station * corners + corner;
}

/* The origin is the centre of mass. */
static void position(int station, int corner, double *xyz) {
  xyz[0] = spacing * (station - (stations - 1) / 2.0);
  xyz[1] = corner == 0 || corner == 3 ? -width / 2 : width / 2;
  xyz[2] = corner < 2 ? -width / 2 : width / 2;
}

static double node_mass(void) {
  return density * width * width * spacing / corners;
}

static int set_nodes(QDL_Record *model) {
  int station, corner, good = 1;
  for (station = 0; station < stations; ++station) {
    for (corner = 0; corner < corners; ++corner) {
      double xyz[3];
      position(station, corner, xyz);
      good &= QDL_SetNodeCoordinates(model, node_id(station, corner), xyz[0], xyz[1], xyz[2]);
      good &= QDL_SetNodalMass(model, node_id(station, corner), node_mass());
    }
  }
  return good;
}

/* The skin: four sides of every section and the two ends, seen from outside counterclockwise. */
static int set_faces(QDL_Record *model) {
  const int last = stations - 1;
  const int32_t start[4] = {node_id(0, 0), node_id(0, 3), node_id(0, 2), node_id(0, 1)};
  const int32_t end[4] = {node_id(last, 0), node_id(last, 1), node_id(last, 2), node_id(last, 3)};
  int station, corner;
  int good = QDL_SetFaceList(model, 4, start) & QDL_SetFaceList(model, 4, end);
  for (station = 0; station < last; ++station) {
    for (corner = 0; corner < corners; ++corner) {
      const int next = (corner + 1) % corners;
      const int32_t side[4] = {node_id(station, corner), node_id(station, next),
                               node_id(station + 1, next), node_id(station + 1, corner)};
      good &= QDL_SetFaceList(model, 4, side);
    }
  }
  return good;
}

/* Displacement of a point in a rigid motion: 0 to 2 translations, 3 to 5 small rotations. */
static void rigid_motion(int motion, const double *xyz, double *values6) {
  const int axis = motion % 3, second = (axis + 1) % 3, third = (axis + 2) % 3;
  memset(values6, 0, 6 * sizeof *values6);
  if (motion < 3) {
    values6[axis] = 1;
  } else {
    values6[second] = -xyz[third];
    values6[third] = xyz[second];
    values6[3 + axis] = 1;
  }
}

static void elastic_shape(int order, int station, double *values6) {
  memset(values6, 0, 6 * sizeof *values6);
  values6[0] = cos(pi * order * (station + 0.5) / stations);
}

static void shape(int mode, int station, int corner, double *values6) {
  double xyz[3];
  position(station, corner, xyz);
  if (mode < rigid_modes) {
    rigid_motion(mode, xyz, values6);
  } else {
    elastic_shape(mode - rigid_modes + 1, station, values6);
  }
}

/* Nodal masses resist translations alone. */
static double generalized_mass(int mode) {
  double sum = 0;
  int station, corner, i;
  for (station = 0; station < stations; ++station) {
    for (corner = 0; corner < corners; ++corner) {
      double values6[6];
      shape(mode, station, corner, values6);
      for (i = 0; i < 3; ++i) {
        sum += node_mass() * values6[i] * values6[i];
      }
    }
  }
  return sum;
}

static double eigenvalue(int mode) {
  const double spring = modulus * width * width / spacing;
  const double sine = sin(pi * (mode - rigid_modes + 1) / (2.0 * stations));
  return mode < rigid_modes ? 0 : 4 * spring / (corners * node_mass()) * sine * sine;
}

/* Modes of unit generalized mass: the generalized stiffness is then the eigenvalue. */
static int set_modes(QDL_Record *model) {
  int mode, station, corner, i, good = 1;
  for (mode = 0; mode < rigid_modes + elastic_modes; ++mode) {
    const int32_t number = mode + 1;
    const double scale = 1 / sqrt(generalized_mass(mode));
    for (station = 0; station < stations; ++station) {
      for (corner = 0; corner < corners; ++corner) {
        double values6[6];
        shape(mode, station, corner, values6);
        for (i = 0; i < 6; ++i) {
          values6[i] *= scale;
        }
        good &= QDL_SetModeVec(model, number, node_id(station, corner), QDL_MODE_SHAPE, values6);
      }
    }
    good &= QDL_SetGeneralizedMass(model, number, number, 1);
    good &= QDL_SetGeneralizedStiffness(model, number, number, eigenvalue(mode));
  }
  return good;
}

/* Axial stress: modulus times the strain of the continuous bar of the same shape. */
static int set_stresses(QDL_Record *model) {
  int order, station, corner, good = 1;
  for (order = 1; order <= elastic_modes; ++order) {
    const int32_t number = rigid_modes + order;
    const double scale = 1 / sqrt(generalized_mass(rigid_modes + order - 1));
    const double wave = pi * order / stations;
    for (station = 0; station < stations; ++station) {
      const double strain = -scale * wave / spacing * sin(wave * (station + 0.5));
      for (corner = 0; corner < corners; ++corner) {
        const double xx_yy_zz_xy_xz_yz[6] = {modulus * strain, 0, 0, 0, 0, 0};
        good &= QDL_SetModeVec(model, number, node_id(station, corner), QDL_MODE_STRESS,
                               xx_yy_zz_xy_xz_yz);
      }
    }
  }
  return good;
}

static int set_header(QDL_Record *model) {
  /* The setter takes buffers, because it replaces newlines in them. */
  char title[] = "Free bar", input_name[] = "bar.c", input_type[] = "example", none[] = "";
  return QDL_SetHeader(model, title, input_name, input_type, none, none, none) &
         QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON");
}

/* The two ends, where a multibody model joins the bar to others. */
static int set_interface(QDL_Record *model) {
  int corner, good = 1;
  for (corner = 0; corner < corners; ++corner) {
    good &= QDL_SetInterfaceNode(model, node_id(0, corner));
    good &= QDL_SetInterfaceNode(model, node_id(stations - 1, corner));
  }
  return good;
}

int main(int argc, char **argv) {
  const QDL_MessageHandler handlers[3] = {print_message, print_message, NULL};
  QDL_Record *model;
  int good;
  if (argc != 2) {
    fprintf(stderr, "usage: bar FILE.qdl\n");
    return 2;
  }
  SetMessageHandlers(handlers);

  model = QDL_Create(nodes, rigid_modes + elastic_modes);
  good = model != NULL && set_header(model) && set_nodes(model) && set_faces(model) &&
         set_interface(model) && set_modes(model) && set_stresses(model) &&
         QDL_write_QDL(model, argv[1]);
  QDL_UnLink(model);
  return good ? 0 : 1;
}
