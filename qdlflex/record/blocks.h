#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qdlflex {

/// The blocks of a QDL file by id.
enum class Block : std::int32_t {
  kVersionCode = 1,
  kHeader,
  kContentSummary,
  kNodalCoordinates,
  kElementTopology,
  kGlobalBodyProperties,
  kEigenvalues,
  kModeShapes,
  kNodalMasses,
  kNodalInertias,
  kUnits,
  kGeneralizedStiffness,
  kGeneralizedMass,
  kElementFaces,
  kGeneralizedDamping,
  kModeShapeTransformation,
  kInterfaceNodes,
  kModalStress,
  kInvariant1,
  kInvariant2,
  kInvariant3,
  kInvariant4,
  kInvariant5,
  kInvariant7,
  kInvariant8,
  kInvariant9,
  kModalPreload,
  kModalLoads,
  kModalStrain,
  kModalStatistics,
  kPreStress,
  kPreStrain,
  kOldMonitorPoints,
  kMatrixOperators,
  kModalLoadNodal,
  kMonitorPoints,
  kRotorDynamics,
};

constexpr std::int32_t kBlockCount = 37;
constexpr std::size_t kSummaryBytes = 100;

/// The presence bytes of a file's content summary.
using Summary = std::array<std::uint8_t, kSummaryBytes>;

/// Zero-based position of a block, as the exported functions count them.
constexpr std::int32_t block_index(Block block) {
  return static_cast<std::int32_t>(block) - 1;
}

constexpr Block block_at(std::int32_t index) {
  return static_cast<Block>(index + 1);
}

/// Blocks 1 to 3 are in every file and have no presence byte.
constexpr bool always_present(Block block) {
  return block <= Block::kContentSummary;
}

/// Where a block's presence byte stands in the content summary. Positions 7 and 11 belong to no
/// block, hence the three offsets.
constexpr std::size_t summary_position(Block block) {
  const auto id = static_cast<std::size_t>(block);
  if (block <= Block::kNodalInertias)
    return id - 4;
  if (block <= Block::kGeneralizedMass)
    return id - 3;
  return id - 2;
}

static_assert(summary_position(Block::kNodalInertias) == 6);
static_assert(summary_position(Block::kUnits) == 8);
static_assert(summary_position(Block::kGeneralizedMass) == 10);
static_assert(summary_position(Block::kElementFaces) == 12);
static_assert(summary_position(Block::kRotorDynamics) == 35);

}  // namespace qdlflex
