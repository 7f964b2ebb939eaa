// A free body with exact rigid modes, for the tests of what is moved onto its rigid-body axes.
#pragma once

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "record/record.h"
#include "support/fixture.h"

namespace qdltest {

using Three = std::array<double, 3>;
using Six = std::array<double, 6>;
using Values = std::vector<double>;

constexpr std::size_t kAxes = 6;

inline Three cross(const Three &a, const Three &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double dot(const Six &a, const Six &b, std::size_t components = 3) {
  double sum = 0.0;
  for (std::size_t c = 0; c < components; ++c)
    sum += a[c] * b[c];
  return sum;
}

// The same numbers on every machine.
class Numbers {
 public:
  explicit Numbers(std::uint32_t seed = 1) : state_(seed) {}
  double next() {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<double>(state_ >> 8) / 8388608.0 - 1.0;
  }
  Three three() { return {next(), next(), next()}; }
  Six six() { return {next(), next(), next(), next(), next(), next()}; }

 private:
  std::uint32_t state_;
};

struct PointMass {
  Three place;
  double mass;
};

using Mode = std::vector<Six>;  // by node

struct Body {
  std::vector<PointMass> points;

  // The motion with unit translation or rotation; with nodal rotations or without.
  Mode rigid_motion(std::size_t axis, bool rotations) const {
    Three e{};
    e[axis % 3] = 1.0;
    Mode mode;
    for (const PointMass &point : points) {
      const Three u = axis < 3 ? e : cross(e, point.place);
      Six six{u[0], u[1], u[2]};
      if (axis >= 3 && rotations)
        six[axis] = 1.0;
      mode.push_back(six);
    }
    return mode;
  }

  double product(const Mode &a, const Mode &b) const {
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i)
      sum += points[i].mass * dot(a[i], b[i]);
    return sum;
  }

  // Six combinations of the rigid motions with generalized masses of one.
  std::vector<Mode> orthonormal_rigid_modes(bool rotations) const {
    std::vector<Mode> modes;
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
      Mode mode = rigid_motion(axis, rotations);
      for (const Mode &before : modes)
        add(mode, -product(mode, before), before);
      const double norm = std::sqrt(product(mode, mode));
      for (Six &six : mode) {
        for (double &value : six)
          value /= norm;
      }
      modes.push_back(mode);
    }
    return modes;
  }

  static void add(Mode &mode, double factor, const Mode &other) {
    for (std::size_t i = 0; i < mode.size(); ++i) {
      for (std::size_t c = 0; c < kAxes; ++c)
        mode[i][c] += factor * other[i][c];
    }
  }
};

// Two masses on each axis at different distances: translations and rotations about the origin are
// orthogonal to each other.
inline Body symmetric_body() {
  return {{{{1, 0, 0}, 2},
           {{-1, 0, 0}, 2},
           {{0, 3, 0}, 1},
           {{0, -3, 0}, 1},
           {{0, 0, 2}, 3},
           {{0, 0, -2}, 3}}};
}

inline Body lopsided_body() {
  Numbers numbers(7);
  Body body;
  for (int i = 0; i < 9; ++i) {
    const Three place = numbers.three();
    body.points.push_back({{3.0 + place[0], place[1] - 1.0, 2.0 * place[2]}, 1.5 + numbers.next()});
  }
  return body;
}

class PrincipalAxes : public MessageFixture {
 protected:
  // Nodes 1, 2, ... with their masses, modes 10, 20, ... with these frequencies and generalized
  // masses of one.
  QDL_Record *make(const Body &body, const std::vector<Mode> &modes, const Values &frequencies) {
    QDL_Record *model = QDL_Create(static_cast<std::int32_t>(body.points.size()),
                                   static_cast<std::int32_t>(frequencies.size()));
    for (std::size_t i = 0; i < body.points.size(); ++i) {
      const auto &[place, mass] = body.points[i];
      const auto node = static_cast<std::int32_t>(i) + 1;
      QDL_SetNodeCoordinates(model, node, place[0], place[1], place[2]);
      if (mass != 0.0)
        QDL_SetNodalMass(model, node, mass);
    }
    for (std::size_t mode = 0; mode < frequencies.size(); ++mode) {
      const auto number = 10 * (static_cast<std::int32_t>(mode) + 1);
      QDL_AddMode(model, number);
      model->eigenvalues.push_back(
          {.mode_number = number, .frequency = frequencies[mode], .generalized_mass = 1.0});
      for (std::size_t i = 0; mode < modes.size() && i < body.points.size(); ++i) {
        QDL_SetModeVec(model, number, static_cast<std::int32_t>(i) + 1, QDL_MODE_SHAPE,
                       modes[mode][i].data());
      }
    }
    infos.clear();
    return model;
  }

  static std::vector<Mode> random_modes(const Body &body, std::size_t count) {
    Numbers numbers;
    std::vector<Mode> modes(count, Mode(body.points.size()));
    for (Mode &mode : modes)
      std::ranges::generate(mode, [&] { return numbers.six(); });
    return modes;
  }
};

}  // namespace qdltest
