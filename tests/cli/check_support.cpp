#include "check_support.h"

#include <stdlib.h>

#include <cmath>

#include "record.h"
#include "write_record.h"

using nlohmann::json;
using qdlflex::cli::Record;

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kMass = 0.5;

std::array<double, 3> place_of(int32_t node) {
  std::array<double, 3> place{};
  const int32_t axis = (node - 1) / 2;
  place[static_cast<size_t>(axis)] = (node % 2 == 0 ? 1.0 : -1.0) * (axis + 1);
  return place;
}

void add_octahedron(QDL_Record *record) {
  for (const int32_t x : {1, 2}) {
    for (const int32_t y : {3, 4}) {
      for (const int32_t z : {5, 6}) {
        QDL_SetFace(record, 3, x, y, z);
      }
    }
  }
}

}  // namespace

std::array<double, 6> shape_of(const Jack &jack, int32_t mode, int32_t node) {
  const std::array<double, 3> r = place_of(node);
  const auto axis = static_cast<size_t>((mode - 1) % 3);
  const size_t next = (axis + 1) % 3;
  const size_t last = (axis + 2) % 3;
  std::array<double, 6> shape{};
  if (mode <= 3) {
    shape[axis] = 1.0 / std::sqrt(6.0 * kMass);
  } else if (mode <= 6) {
    const double a = static_cast<double>(next + 1);
    const double b = static_cast<double>(last + 1);
    const double inertia = 2.0 * kMass * (a * a + b * b) + 6.0 * jack.rotary_inertia;
    shape[last] = r[next] / std::sqrt(inertia);
    shape[next] = -r[last] / std::sqrt(inertia);
    shape[3 + axis] = 1.0 / std::sqrt(inertia);
  } else if (r[axis] != 0.0) {
    shape[axis] = std::copysign(1.0, r[axis]);  // of mass 2 kMass = 1
  }
  for (double &value : shape) {
    value *= jack.scale[static_cast<size_t>(mode - 1)];
  }
  return shape;
}

void write_jack(const Jack &jack, const std::string &path) {
  const Record record(QDL_Create(6, kJackModes));
  for (int32_t node = 1; node <= 6; ++node) {
    const auto [x, y, z] = place_of(node);
    QDL_SetNodeCoordinates(record.get(), node, x, y, z);
    if (jack.has_masses) {
      QDL_SetNodalMass(record.get(), node, kMass);
    }
    if (jack.has_masses && jack.rotary_inertia != 0.0) {
      const double j = jack.rotary_inertia;
      QDL_SetNodalInertia(record.get(), node, j, j, j, 0, 0, 0);
    }
  }
  add_octahedron(record.get());
  QDL_SetInterfaceNode(record.get(), 2);
  for (int32_t mode = 1; mode <= kJackModes; ++mode) {
    const auto k = static_cast<size_t>(mode - 1);
    for (int32_t node = 1; node <= 6; ++node) {
      QDL_SetModeVec(record.get(), mode, node, QDL_MODE_SHAPE, shape_of(jack, mode, node).data());
    }
    const double omega = kTwoPi * jack.frequency[k];
    QDL_SetGeneralizedMass(record.get(), mode, mode, jack.generalized_mass[k]);
    QDL_SetGeneralizedStiffness(record.get(), mode, mode, omega * std::fabs(omega));
  }
  QDL_SetUnits(record.get(), jack.units[0], jack.units[1], jack.units[2], jack.units[3]);
  jack.change(record.get());
  qdlflex::cli::write_record(record.get(), path, jack.options);
  unsetenv("ZEB_QDLWRITE_OPTIONS");  // a command that the test runs must not find them
}

Jack changed(const std::function<void(QDL_Record *)> &change) {
  Jack jack;
  jack.change = change;
  return jack;
}

Jack with(const std::function<void(Jack &)> &set) {
  Jack jack;
  set(jack);
  return jack;
}

const json &check_named(const json &report, const std::string &name) {
  for (const json &check : report.at("checks")) {
    if (check.at("name") == name) {
      return check;
    }
  }
  ADD_FAILURE() << "no check " << name;
  return report;
}

CommandResult CheckTest::run(const Jack &jack, const std::string &options) const {
  write_jack(jack, path_);
  return run_qdlflex("check " + options + " '" + path_ + "'");
}

void CheckTest::expect_verdict(const char *what, const Jack &jack, const std::string &name,
                               const std::string &verdict) const {
  const CommandResult result = run(jack);
  ASSERT_FALSE(result.output.empty()) << what << result.errors;
  const json report = json::parse(result.output);
  EXPECT_EQ(check_named(report, name).at("verdict"), verdict)
      << what << ": " << check_named(report, name);
  const int expected = report.at("verdict") == "failed"     ? 1
                       : report.at("verdict") == "doubtful" ? 3
                                                            : 0;
  EXPECT_EQ(result.exit_code, expected) << what;
  if (verdict == "failed") {
    EXPECT_EQ(report.at("verdict"), "failed") << what;
  } else if (verdict == "doubtful") {
    EXPECT_NE(report.at("verdict"), "trustworthy") << what;
  }
}
