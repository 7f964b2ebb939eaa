#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "geometry/qdlcoarse_mesh.h"

namespace qdlflex {

/// Cuts loops out of polygons: what stands between two places of one node that are close to each
/// other along the polygon, on either way round.
class LoopCutter {
 public:
  explicit LoopCutter(const std::vector<CoarseNode> &nodes);

  /// For each two places of equal nodes, in order: the nodes between them are dropped where these
  /// are less than three tenths of the polygon, else those outside where these are less. Places
  /// dropped no longer count, and nodes that may not be removed stay.
  void cut(std::vector<std::int32_t> &polygon);

 private:
  using Place = std::int32_t;
  struct Visit {
    std::uint32_t polygon = 0;  // the polygon in which the node was last seen
    Place place = 0;
  };
  struct Repeat {
    std::int32_t node = 0;
    Place place = 0;
    // The check takes what the compiler makes of this for a null pointer.
    auto operator<=>(const Repeat &) const = default;  // NOLINT(modernize-use-nullptr)
  };

  bool find_repeats(std::span<const std::int32_t> polygon);
  void cut_at(const Repeat &repeat, Place count);
  Place next_droppable(Place place);
  void drop(Place from, Place to);

  const std::vector<CoarseNode> &nodes_;
  std::vector<Visit> visits_;  // by node
  std::uint32_t polygons_ = 0;
  std::vector<Repeat> repeats_;   // ascending
  std::vector<Repeat> in_order_;  // by place
  std::vector<bool> dropped_;     // by place
  std::vector<Place> droppable_;  // by place: itself or a place not beyond the next droppable one
};

}  // namespace qdlflex
