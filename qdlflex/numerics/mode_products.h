#pragma once

#include <cstddef>

namespace qdlflex {

// The inner loops of the modal invariants. Four modes stand side by side, so that four sums run at
// once; each of them adds up its nodes in their order, exactly as a plain loop over one mode would.

constexpr std::size_t kLanes = 4;

/// A vector at one node of each of four modes: component, mode.
struct alignas(32) LaneVectors {
  double of[3][kLanes];
};

/// Sums for four modes: entry, mode.
template <std::size_t Entries>
struct alignas(32) LaneSums {
  double of[Entries][kLanes];
};

/// scaled = mass times vector, at every node.
void scale_vectors(const double *masses, const LaneVectors *vectors, std::size_t nodes,
                   LaneVectors *scaled);

/// sums += m b
void add_moments(const double *masses, const LaneVectors *b, std::size_t nodes, LaneSums<3> &sums);

/// sums[0] += m (a x b) with a from one lane, sums[1] the same with the lane after it. Of two equal
/// vectors every term is exactly zero.
void add_cross_products(const double *masses, const LaneVectors *a, std::size_t lane,
                        const LaneVectors *b, std::size_t nodes, LaneSums<3> *sums);

/// sums += tilde(s) tilde(b), row by row, with s = m a from one lane.
void add_tilde_products(const LaneVectors *scaled_a, std::size_t lane, const LaneVectors *b,
                        std::size_t nodes, LaneSums<9> &sums);

}  // namespace qdlflex
