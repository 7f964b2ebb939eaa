#include "numerics/mode_products.h"

#include "support/vector_clones.h"

namespace qdlflex {
namespace {

/// One number of each of four modes.
using Lanes [[gnu::vector_size(kLanes * sizeof(double)), gnu::may_alias]] = double;

/// Two vectors a at a time: the six sums then hide the time that an addition takes.
QDLFLEX_VECTOR_CLONES void add_cross(const double *masses, const LaneVectors *a, std::size_t lane,
                                     const LaneVectors *b, std::size_t nodes,
                                     double (*first_sums)[kLanes], double (*second_sums)[kLanes]) {
  auto *const first = reinterpret_cast<Lanes *>(first_sums);
  auto *const second = reinterpret_cast<Lanes *>(second_sums);
  Lanes x = first[0];
  Lanes y = first[1];
  Lanes z = first[2];
  Lanes u = second[0];
  Lanes v = second[1];
  Lanes w = second[2];
  for (std::size_t n = 0; n < nodes; ++n) {
    const double mass = masses[n];
    const double *p = &a[n].of[0][lane];
    const double *q = p + 1;
    const auto *r = reinterpret_cast<const Lanes *>(b[n].of);
    x += mass * (p[kLanes] * r[2] - p[2 * kLanes] * r[1]);
    y += mass * (p[2 * kLanes] * r[0] - p[0] * r[2]);
    z += mass * (p[0] * r[1] - p[kLanes] * r[0]);
    u += mass * (q[kLanes] * r[2] - q[2 * kLanes] * r[1]);
    v += mass * (q[2 * kLanes] * r[0] - q[0] * r[2]);
    w += mass * (q[0] * r[1] - q[kLanes] * r[0]);
  }
  first[0] = x;
  first[1] = y;
  first[2] = z;
  second[0] = u;
  second[1] = v;
  second[2] = w;
}

QDLFLEX_VECTOR_CLONES void add_tilde(const LaneVectors *scaled_a, std::size_t lane,
                                     const LaneVectors *b, std::size_t nodes,
                                     double (*sums)[kLanes]) {
  auto *const sum = reinterpret_cast<Lanes *>(sums);
  Lanes xx = sum[0], xy = sum[1], xz = sum[2];
  Lanes yx = sum[3], yy = sum[4], yz = sum[5];
  Lanes zx = sum[6], zy = sum[7], zz = sum[8];
  for (std::size_t n = 0; n < nodes; ++n) {
    const double s0 = scaled_a[n].of[0][lane];
    const double s1 = scaled_a[n].of[1][lane];
    const double s2 = scaled_a[n].of[2][lane];
    const auto *v = reinterpret_cast<const Lanes *>(b[n].of);
    const Lanes square0 = s0 * v[0];
    const Lanes square1 = s1 * v[1];
    const Lanes square2 = s2 * v[2];
    xx -= square1 + square2;
    xy += s1 * v[0];
    xz += s2 * v[0];
    yx += s0 * v[1];
    yy -= square2 + square0;
    yz += s2 * v[1];
    zx += s0 * v[2];
    zy += s1 * v[2];
    zz -= square1 + square0;
  }
  sum[0] = xx, sum[1] = xy, sum[2] = xz;
  sum[3] = yx, sum[4] = yy, sum[5] = yz;
  sum[6] = zx, sum[7] = zy, sum[8] = zz;
}

}  // namespace

void scale_vectors(const double *masses, const LaneVectors *vectors, std::size_t nodes,
                   LaneVectors *scaled) {
  for (std::size_t n = 0; n < nodes; ++n) {
    for (std::size_t c = 0; c < 3; ++c) {
      for (std::size_t lane = 0; lane < kLanes; ++lane)
        scaled[n].of[c][lane] = masses[n] * vectors[n].of[c][lane];
    }
  }
}

void add_moments(const double *masses, const LaneVectors *b, std::size_t nodes, LaneSums<3> &sums) {
  LaneSums<3> total = sums;
  for (std::size_t n = 0; n < nodes; ++n) {
    for (std::size_t c = 0; c < 3; ++c) {
      for (std::size_t lane = 0; lane < kLanes; ++lane)
        total.of[c][lane] += masses[n] * b[n].of[c][lane];
    }
  }
  sums = total;
}

void add_cross_products(const double *masses, const LaneVectors *a, std::size_t lane,
                        const LaneVectors *b, std::size_t nodes, LaneSums<3> *sums) {
  add_cross(masses, a, lane, b, nodes, sums[0].of, sums[1].of);
}

void add_tilde_products(const LaneVectors *scaled_a, std::size_t lane, const LaneVectors *b,
                        std::size_t nodes, LaneSums<9> &sums) {
  add_tilde(scaled_a, lane, b, nodes, sums.of);
}

}  // namespace qdlflex
