#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "block_difference.h"
#include "record.h"

namespace qdlflex::cli {

/// A node that both bodies have, by its indices.
struct NodePair {
  int32_t id;
  int32_t a;
  int32_t b;
};

/// Modes that are the same but for order, sign and scale, by their indices.
struct ModePair {
  int32_t a;
  int32_t b;
  std::optional<double> mac;  // none for modes that do not move
  double factor = 1.0;        // mode of B = factor times mode of A
  bool same_shape = true;     // within the tolerance
};

/// Two bodies and what belongs together in them.
struct BodyPair {
  QDL_Record *a = nullptr;
  QDL_Record *b = nullptr;
  double tolerance = 0.0;
  double size = 0.0;  // the largest coordinate of a common node
  std::vector<NodePair> nodes;
  std::vector<ModePair> modes;

  BlockDifference block(std::string name) const { return {std::move(name), tolerance}; }
};

using BlockDifferences = std::vector<BlockDifference>;

/// The name of a mode of A in the place of a difference.
std::string mode_name(const BodyPair &bodies, const ModePair &mode);

void compare_header(const BodyPair &bodies, BlockDifferences &blocks);
void compare_nodes(BodyPair &bodies, BlockDifferences &blocks);
void compare_faces(const BodyPair &bodies, BlockDifferences &blocks);
void compare_mode_data(BodyPair &bodies, BlockDifferences &blocks);
void compare_pre_vectors(const BodyPair &bodies, BlockDifferences &blocks);
void compare_generalized(const BodyPair &bodies, BlockDifferences &blocks);
void compare_invariants(const BodyPair &bodies, BlockDifferences &blocks);
void compare_loads(const BodyPair &bodies, BlockDifferences &blocks);
void compare_operators(const BodyPair &bodies, BlockDifferences &blocks);

}  // namespace qdlflex::cli
