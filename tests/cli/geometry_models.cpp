#include "geometry_models.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>
#include <cmath>

#include "record.h"
#include "write_record.h"

using qdlflex::cli::Record;

namespace {

constexpr double kTwoPi = 6.283185307179586;

void add_box_faces(QDL_Record *record, int32_t below, int32_t above) {
  const auto add = [&](std::array<int32_t, 4> nodes) {
    ASSERT_EQ(QDL_SetFaceList(record, 4, nodes.data()), 1);
  };
  add({below + 1, below + 4, below + 3, below + 2});
  add({above + 1, above + 2, above + 3, above + 4});
  for (int32_t k = 1; k <= 4; ++k) {
    const int32_t next = k % 4 + 1;
    add({below + k, below + next, above + next, above + k});
  }
}

void add_mode(QDL_Record *record, int32_t mode, double frequency, bool rotates) {
  for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
    const int32_t node = QDL_NodeID(record, index);
    const double value = 100.0 * mode + node;
    const double turn = rotates ? 0.001 * value : 0.0;
    QDL_SetMode(record, mode, node, QDL_MODE_SHAPE, value, value + 0.25, value + 0.5, turn, -turn,
                2.0 * turn);
    if (node < 20) {
      QDL_SetMode(record, mode, node, QDL_MODE_STRESS, value, -value, 3.0 * value, 10.0 + node,
                  20.0 + node, 30.0 + node);
    }
  }
  QDL_SetGeneralizedMass(record, mode, mode, 1.0);
  QDL_SetGeneralizedStiffness(record, mode, mode, std::pow(kTwoPi * frequency, 2));
}

void write(QDL_Record *record, const std::string &path, const std::string &options) {
  qdlflex::cli::write_record(record, path, options);
  unsetenv("ZEB_QDLWRITE_OPTIONS");  // a command that the test runs must not find them
}

}  // namespace

void write_box(const std::string &path) {
  const Record record(QDL_Create(14, 2));
  QDL_SetUnits(record.get(), "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON");
  for (int32_t level = 0; level < 3; ++level) {
    const int32_t base = 10 * (level + 1);
    const double z = 2.0 * level;
    QDL_SetNodeCoordinates(record.get(), base + 1, 0, 0, z);
    QDL_SetNodeCoordinates(record.get(), base + 2, 2, 0, z);
    QDL_SetNodeCoordinates(record.get(), base + 3, 2, 3, z);
    QDL_SetNodeCoordinates(record.get(), base + 4, 0, 3, z);
  }
  QDL_SetNodeCoordinates(record.get(), 98, 1, 1.5, 6);
  QDL_SetNodeCoordinates(record.get(), 99, 1, 1, 1);
  QDL_SetInterfaceNode(record.get(), 98);
  add_box_faces(record.get(), 10, 20);
  add_box_faces(record.get(), 20, 30);
  add_mode(record.get(), 3, 5.0, false);
  add_mode(record.get(), 12, 12.5, true);
  write(record.get(), path, "no_ortho,no_xdr,single");
}

void write_panel(const std::string &path) {
  const Record record(QDL_Create(6, 0));
  const std::array<std::array<double, 2>, 6> places = {
      {{0, 0}, {4, 0}, {4, 3}, {2, 4.5}, {0, 3}, {2, -1.5}}};
  for (size_t k = 0; k < places.size(); ++k) {
    QDL_SetNodeCoordinates(record.get(), static_cast<int32_t>(k) + 1, places[k][0], places[k][1],
                           0.0);
  }
  QDL_SetFace(record.get(), 5, 1, 2, 3, 4, 5);
  QDL_SetFace(record.get(), 3, 2, 1, 6);
  write(record.get(), path, "no_ortho");
}

void write_plate(const std::string &path) {
  const Record record(QDL_Create(9, 1));
  for (int32_t node = 1; node <= 9; ++node) {
    QDL_SetNodeCoordinates(record.get(), node, 5.0 * ((node - 1) % 3), 5.0 * ((node - 1) / 3), 1.0);
  }
  for (const int32_t node : {1, 2, 4, 5}) {
    QDL_SetFace(record.get(), 4, node, node + 1, node + 4, node + 3);
  }
  for (const int32_t node : {1, 5}) {
    QDL_SetMode(record.get(), 1, node, QDL_MODE_SHAPE, 1, 2, 3, 0, 0, 0);
  }
  write(record.get(), path, "no_ortho");
}
