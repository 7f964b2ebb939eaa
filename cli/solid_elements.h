#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace qdlflex::cli {

/// The six solid elements. Nodes count from 0: the corners first, then the midside nodes; those of
/// wedges and bricks run round the bottom, up the sides, round the top.
enum class SolidType { tet4, wedge6, hex8, tet10, wedge15, hex20 };

constexpr int kMostElementNodes = 20;

/// A face by its corners, counter-clockwise seen from outside.
struct ElementFace {
  int corner_count;
  std::array<int, 4> corners;
};

using Point = std::array<double, 3>;

int node_count(SolidType type);
std::span<const ElementFace> faces(SolidType type);

/// Volume of an element and the shares of its nodes in its mass.
struct MassShares {
  double volume = 0.0;
  std::array<double, kMostElementNodes> share{};
};

/// Diagonal scaling (Hinton, Rock and Zienkiewicz 1976): a node's share is its diagonal term of
/// the consistent mass matrix over the sum of these terms. All shares are positive and add up to 1.
/// (Row sums give negative masses at the corners of quadratic elements.)
/// `nodes` must hold node_count(type) points. A volume that is not positive says that the element
/// is degenerate or inside out; the shares mean nothing then.
MassShares mass_shares(SolidType type, std::span<const Point> nodes);

}  // namespace qdlflex::cli
