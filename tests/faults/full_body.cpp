#include "faults/full_body.h"

#include <array>
#include <cmath>

namespace qdltest {

namespace {

using Values = std::array<double, 6>;

int32_t id_at(int x, int y, int z) {
  return 10 * (1 + x + 3 * (y + 2 * z));
}

// Different at every place and free of symmetry.
double sample(int a, int b, int c) {
  return std::cos(1.0 + 0.37 * a + 1.91 * b + 0.73 * c) + 0.1 * a;
}

bool set_nodes(QDL_Record *model) {
  bool good = true;
  for (int z = 0; z < 2; ++z)
    for (int y = 0; y < 2; ++y)
      for (int x = 0; x < 3; ++x) {
        const int32_t id = id_at(x, y, z);
        good = good && QDL_SetNodeCoordinates(model, id, x, 1.5 * y, 2.0 * z) == 1 &&
               QDL_SetNodalMass(model, id, 1.0 + 0.1 * x + 0.2 * y) == 1;
      }
  return good && QDL_SetNodalInertia(model, id_at(1, 0, 0), 3, 4, 5, 0.1, 0.2, 0.3) == 1;
}

bool set_faces(QDL_Record *model) {
  bool good = true;
  for (int x = 0; x < 2; ++x) {
    const std::array<int32_t, 8> c = {id_at(x, 0, 0),     id_at(x + 1, 0, 0), id_at(x + 1, 1, 0),
                                      id_at(x, 1, 0),     id_at(x, 0, 1),     id_at(x + 1, 0, 1),
                                      id_at(x + 1, 1, 1), id_at(x, 1, 1)};
    for (const auto &face : {std::array{c[0], c[3], c[2], c[1]},
                             {c[4], c[5], c[6], c[7]},
                             {c[0], c[1], c[5], c[4]},
                             {c[1], c[2], c[6], c[5]},
                             {c[2], c[3], c[7], c[6]},
                             {c[3], c[0], c[4], c[7]}})
      good = good && QDL_SetFaceList(model, 4, face.data()) == 1;
  }
  return good && QDL_SetInterfaceNode(model, id_at(0, 0, 0)) == 1;
}

bool set_modes(QDL_Record *model) {
  bool good = true;
  for (int mode = 1; mode <= kFullBodyModes; ++mode) {
    for (int kind = 0; kind < 3; ++kind) {
      const int32_t nodes = kind == 0 ? kFullBodyNodes : 5;
      for (int32_t node = 0; node < nodes; ++node) {
        Values values{};
        for (std::size_t i = 0; i < values.size(); ++i)
          values[i] = sample(mode, node, static_cast<int>(i) + 7 * kind);
        good = good && QDL_SetModeVec(model, mode, 10 * (node + 1), kind, values.data()) == 1;
      }
    }
    for (int other = 1; other <= mode; ++other) {
      const double diagonal = other == mode ? 10.0 : 0.0;
      good = good &&
             QDL_SetGeneralizedMass(model, mode, other, diagonal + sample(mode, other, 1)) == 1 &&
             QDL_SetGeneralizedStiffness(model, mode, other,
                                         mode * mode * diagonal + sample(mode, other, 2)) == 1 &&
             QDL_SetGeneralizedDamping(model, mode, other, sample(mode, other, 3)) == 1;
    }
  }
  const Values pre = {1, 2, 3, 4, 5, 6};
  return good && QDL_SetPreStressVec(model, 10, pre.data()) == 1 &&
         QDL_SetPreStrainVec(model, 20, pre.data()) == 1;
}

bool set_loads(QDL_Record *model) {
  bool good = true;
  for (int mode = 1; mode <= kFullBodyModes; ++mode)
    good = good && QDL_SetModalLoad(model, 1, mode, sample(mode, 1, 1)) == 1 &&
           QDL_SetModalPreload(model, mode, sample(mode, 2, 2)) == 1;
  return good && QDL_SetModalLoadLabel(model, 0, "gravity") == 1 &&
         QDL_SetModalLoadNodal(model, 0, id_at(2, 1, 1), 2, 5.0) == 1;
}

bool set_operators(QDL_Record *model) {
  const std::array<double, 3> point = {1, 2, 3};
  const std::array<double, 3> axis = {0, 0, 1};
  std::array<double, 2 * kFullBodyModes> rows{};
  for (std::size_t i = 0; i < rows.size(); ++i)
    rows[i] = sample(static_cast<int>(i), 0, 5);
  const int32_t monitor =
      QDL_SetMonitorPointInfo(model, 1, 2, 12, 1, point.data(), "tip", "at the tip");
  const std::array<const char *, 2> labels = {"first", "second"};
  const int32_t matrix = QDL_SetMatrixOperatorInfo(model, "recover", labels.data(), 2);
  return monitor == 0 && matrix == 0 &&
         QDL_SetMonitorPointOperator(model, monitor, 1, rows.data()) == 0 &&
         QDL_SetMatrixOperatorData(model, matrix, "sub", kFullBodyModes, rows.data()) == 0 &&
         QDL_SetRotorDynamicsAxis(model, point.data(), axis.data()) == 1 &&
         QDL_SetRotorDynamicsMatrix(model, 2, 0, 1, 4.0) == 1;
}

}  // namespace

bool fill_full_body(QDL_Record *model) {
  return QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON") == 1 && set_nodes(model) &&
         set_faces(model) && set_modes(model) && set_loads(model) && set_operators(model);
}

}  // namespace qdltest
