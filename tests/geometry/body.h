// A flexible body as plain numbers, what a rigid motion makes of it, and what a model of it must
// answer. Everything is worked out here with plain loops over the nodes, without the library.
#pragma once

#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <vector>

#include "support/qdl_bytes.h"

namespace qdltest {

using Vec = std::array<double, 3>;
using Six = std::array<double, 6>;
using Mat = std::array<std::array<double, 3>, 3>;

struct BodyNode {
  std::int32_t id;
  Vec xyz;
  double mass;
  bool has_inertia;
  Six inertia;  // xx, yy, zz, xy, xz, yz
};

struct ModeValues {
  std::vector<std::int32_t> node_ids;
  std::vector<std::vector<Six>> modes;
};

struct Body {
  std::vector<BodyNode> nodes;
  std::vector<std::int32_t> mode_numbers;
  std::array<ModeValues, 3> kinds;  // mode shapes, stress, strain
  std::vector<Six> pre_stress;      // by stress node
  std::vector<Six> pre_strain;      // by strain node
};

// Takes v to matrix v + offset.
struct Motion {
  Mat matrix;
  Vec offset;
};

Motion turn(const Vec &axis, double degrees);  // right-hand rule, about the origin
Motion turn(const Vec &axis, const Vec &point, double degrees);
Motion mirror(const Vec &normal, const Vec &point);
Motion shift(const Vec &direction, double distance);

Body moved(const Body &body, const Motion &motion);

// Three nodes with masses and two modes; nothing is symmetric.
Body sample_body();
// What is in a sample file.
Body body_of(const SampleModel &model);
// Lengths, forces and masses times a factor.
Body scaled(const Body &body, double length, double force, double mass);

// A model that is built by the setters.
QDL_Record *build(const Body &body, std::int32_t planned_nodes);

// Invariant 1 to 5 and 7 to 9 in the order of their values.
std::vector<double> invariant(const Body &body, int number);

// `scale` is the largest magnitude that the tolerance is relative to, if the expected values are
// smaller: differences of larger numbers.
void expect_near(const std::vector<double> &values, const std::vector<double> &expected,
                 double tolerance, double scale = 0.0);

// Compares nodes, mode data, pre-stress and pre-strain; invariants as well when they were not
// supplied. The tolerance is relative to the largest number of each kind of data.
void expect_body(QDL_Record *model, const Body &body, double tolerance);
void expect_invariants(QDL_Record *model, const Body &body, double tolerance);

}  // namespace qdltest
