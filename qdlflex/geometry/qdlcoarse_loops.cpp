#include "geometry/qdlcoarse_loops.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qdlflex {
namespace {

std::size_t at(std::int32_t index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

LoopCutter::LoopCutter(const std::vector<CoarseNode> &nodes)
    : nodes_(nodes), visits_(nodes.size()) {}

/// Collects all places of nodes that occur more than once.
bool LoopCutter::find_repeats(std::span<const std::int32_t> polygon) {
  ++polygons_;
  repeats_.clear();
  for (std::size_t place = 0; place < polygon.size(); ++place) {
    const std::int32_t node = polygon[place];
    const Visit before = std::exchange(visits_[at(node)], {polygons_, static_cast<Place>(place)});
    if (before.polygon == polygons_)
      repeats_.insert(repeats_.end(), {{node, before.place}, {node, static_cast<Place>(place)}});
  }
  std::sort(repeats_.begin(), repeats_.end());
  repeats_.erase(std::unique(repeats_.begin(), repeats_.end()), repeats_.end());
  return !repeats_.empty();
}

void LoopCutter::cut(std::vector<std::int32_t> &polygon) {
  if (!find_repeats(polygon))
    return;
  const auto count = static_cast<Place>(polygon.size());
  dropped_.assign(polygon.size(), false);
  droppable_.resize(polygon.size() + 1);
  droppable_.back() = count;
  for (std::size_t place = 0; place < polygon.size(); ++place)
    droppable_[place] = static_cast<Place>(place) + (nodes_[at(polygon[place])].removable ? 0 : 1);

  in_order_ = repeats_;
  std::sort(in_order_.begin(), in_order_.end(),
            [](const Repeat &a, const Repeat &b) { return a.place < b.place; });
  for (const Repeat &repeat : in_order_) {
    if (!dropped_[at(repeat.place)])
      cut_at(repeat, count);
  }
  std::size_t kept = 0;
  for (std::size_t place = 0; place < polygon.size(); ++place) {
    if (!dropped_[place])
      polygon[kept++] = polygon[place];
  }
  polygon.resize(kept);
}

/// All pairs with the given first place at once: what the nearest of the second places drop lies
/// within what the farthest of them drops, and beyond the limit it is the other way round.
void LoopCutter::cut_at(const Repeat &repeat, Place count) {
  const auto limit = static_cast<std::int64_t>(0.3 * count);
  const std::int64_t first = repeat.place;
  const auto own = std::upper_bound(repeats_.begin(), repeats_.end(), repeat);
  const auto is_dropped = [&](const Repeat &other) { return dropped_[at(other.place)]; };
  const auto from = [&](std::int64_t place) {
    const auto limited = static_cast<Place>(std::min<std::int64_t>(place, count));
    return std::lower_bound(own, repeats_.end(), Repeat{repeat.node, limited});
  };
  const auto far = from(first + limit);
  auto inner = far;
  while (inner != own && is_dropped(*std::prev(inner)))
    --inner;
  if (inner != own)
    drop(repeat.place + 1, std::prev(inner)->place);

  const auto outer = std::find_if_not(
      from(first + std::max(limit, count - limit + 1)), repeats_.end(),
      [&](const Repeat &other) { return other.node == repeat.node && is_dropped(other); });
  if (outer != repeats_.end() && outer->node == repeat.node) {
    drop(0, repeat.place);
    drop(outer->place, count);
  }
}

LoopCutter::Place LoopCutter::next_droppable(Place place) {
  while (droppable_[at(place)] != place)
    place = droppable_[at(place)] = droppable_[at(droppable_[at(place)])];
  return place;
}

/// Drops the places from the first to before the second, as far as their nodes may be removed.
void LoopCutter::drop(Place from, Place to) {
  for (Place place = next_droppable(from); place < to; place = next_droppable(place)) {
    dropped_[at(place)] = true;
    droppable_[at(place)] = place + 1;
  }
}

}  // namespace qdlflex
