#include "geometry/prune.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "geometry/geometry_nodes.h"
#include "geometry/pruned_modes.h"
#include "geometry/strip_faces.h"
#include "modes/mode_cache.h"
#include "record/derived.h"
#include "record/faces.h"
#include "record/foreign_nodes.h"
#include "record/lookups.h"
#include "support/boundary.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

std::vector<std::int32_t> positions_after(const QDL_Record &record,
                                          std::span<const std::int32_t> kept) {
  std::vector<std::int32_t> positions(record.nodes.size(), kNoIndex);
  std::int32_t next = 0;
  for (const std::int32_t node : kept)
    positions[static_cast<std::size_t>(node)] = next++;
  return positions;
}

/// Identifiers among those of the maxima that nothing will have any more. Slots of stress and
/// strain whose node is unknown go as well.
std::unordered_set<std::int32_t> vanishing_maxima(const QDL_Record &record,
                                                  std::span<const std::int32_t> positions) {
  std::unordered_set<std::int32_t> maxima;
  for (const ModalStatistics &mode : record.statistics.modes)
    maxima.insert(mode.node_ids.begin(), mode.node_ids.begin() + kSearchedStatistics);
  std::unordered_set<std::int32_t> vanishing;
  for (std::size_t node = 0; node < positions.size() && !maxima.empty(); ++node) {
    const std::int32_t id = record.nodes[node].id;
    if (positions[node] == kNoIndex && maxima.contains(id))
      vanishing.insert(id);
  }
  for_each_foreign_id(record, [&](std::int32_t id) { vanishing.insert(id); });
  return vanishing;
}

void forget_maxima(StatisticsTable &statistics, const std::unordered_set<std::int32_t> &ids) {
  for (ModalStatistics &mode : statistics.modes) {
    for (std::size_t slot = 0; slot < kSearchedStatistics; ++slot) {
      if (!ids.contains(mode.node_ids[slot]))
        continue;
      mode.node_ids[slot] = 0;
      mode.values[slot] = 0.0;
    }
  }
}

bool carries_mass(const Node &node) {
  return node.mass != 0.0 || node.inertia != nullptr;
}

/// Numbers of nodes in the lists of a record, before and after.
class Renumbering {
 public:
  explicit Renumbering(std::span<const std::int32_t> positions) : positions_(positions) {}

  bool is_node(std::int32_t before) const {
    return before >= 0 && static_cast<std::size_t>(before) < positions_.size();
  }
  bool discards(std::int32_t before) const { return is_node(before) && after(before) == kNoIndex; }
  /// What refers to no node stays as it is.
  void apply(std::int32_t &node) const {
    if (is_node(node))
      node = after(node);
  }

 private:
  std::int32_t after(std::int32_t before) const {
    return positions_[static_cast<std::size_t>(before)];
  }

  std::span<const std::int32_t> positions_;
};

void renumber_faces(FaceList &faces, const Renumbering &numbers) {
  for_each_face(faces, [&](std::span<const std::int32_t> face) {
    const auto first = face.data() - faces.list.data();
    for (std::size_t i = 0; i < face.size(); ++i)
      numbers.apply(faces.list[static_cast<std::size_t>(first) + i]);
  });
}

void renumber_references(QDL_Record &record, const Renumbering &numbers) {
  renumber_faces(record.faces, numbers);
  std::erase_if(record.interface_nodes, [&](std::int32_t node) { return numbers.discards(node); });
  for (std::int32_t &node : record.interface_nodes)
    numbers.apply(node);
  for (NodalLoadCase &load : record.nodal_loads) {
    std::erase_if(load.entries,
                  [&](const NodalLoadEntry &entry) { return numbers.discards(entry.node); });
    for (NodalLoadEntry &entry : load.entries)
      numbers.apply(entry.node);
  }
}

/// Moves the nodes that stay to the front, and their marks with them.
void keep_nodes(QDL_Record &record, std::span<const std::int32_t> kept) {
  std::size_t place = 0;
  std::vector<bool> &marks = record.is_interface_node;
  for (const std::int32_t node : kept) {
    const auto before = static_cast<std::size_t>(node);
    if (place < marks.size())
      marks[place] = before < marks.size() && marks[before];
    if (before != place)
      record.nodes[place] = std::move(record.nodes[before]);
    ++place;
  }
  record.nodes.resize(place);
  marks.resize(std::min(marks.size(), place));
}

/// The mode data of all kinds cut down to the kept nodes, nothing of it adopted yet. Empty after a
/// reported failure.
std::vector<PrunedModes> prune_modes(QDL_Record &record, std::span<const std::int32_t> kept) {
  std::vector<PrunedModes> pruned;
  for (std::int32_t kind = 0; kind < kModeKinds; ++kind) {
    std::optional<PrunedModes> modes = PrunedModes::prepare(record, kind, kept);
    const bool may_be_lost = kind == kModeShapes && std::getenv("OXR_A2A_BDF2SHL_PID") != nullptr;
    if (!modes && may_be_lost)
      modes = PrunedModes::without_values(record, kept);
    if (!modes)
      return {};
    pruned.push_back(std::move(*modes));
  }
  return pruned;
}

}  // namespace

bool discard_unreferenced_nodes(QDL_Record &record) {
  const std::vector<std::int32_t> *used = geometry_nodes(record);
  if (used == nullptr || used->empty())
    return true;
  std::vector<std::int32_t> kept = *used;
  if (kept.size() == record.nodes.size()) {
    if (record.node_lookup.stale)
      drop_node_lookup(record);
    return true;
  }
  const std::vector<std::int32_t> positions = positions_after(record, kept);
  const std::unordered_set<std::int32_t> vanishing = vanishing_maxima(record, positions);
  std::vector<PrunedModes> modes = prune_modes(record, kept);
  if (modes.empty())
    return false;

  // Nothing fails from here on.
  for (std::size_t node = 0; node < positions.size(); ++node)
    record.mass_pruned |= positions[node] == kNoIndex && carries_mass(record.nodes[node]);
  renumber_references(record, Renumbering(positions));
  keep_nodes(record, kept);
  forget_maxima(record.statistics, vanishing);
  drop_node_lookup(record);
  forget_free_edges(record);
  note_nodes_moved(record);
  for (PrunedModes &kind : modes)
    kind.adopt_values(record);
  for (PrunedModes &kind : modes)
    kind.adopt_nodes(record);
  note_mode_layout_changed(record);
  std::iota(kept.begin(), kept.end(), 0);
  record.geometry_nodes = std::move(kept);
  return true;
}

bool remove_internal_geometry(QDL_Record &record) {
  if (record.interior_faces_stripped)
    return true;
  QDL_Info("\n Remove internal geometry of QDL\n");
  strip_common_faces(record);
  if (discard_unreferenced_nodes(record))
    record.interior_faces_stripped = true;
  return record.interior_faces_stripped;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_RemoveInternalGeometry(QDL_Record *model) {
  // The stripping counts also where memory for discarding the nodes can't be had.
  with_model(model, kArea, 0, remove_internal_geometry);
  return model != nullptr && model->interior_faces_stripped ? 1 : 0;
}

int32_t QDL_DiscardUnreferencedNodes(QDL_Record *model) {
  return with_model(model, kArea, 0, discard_unreferenced_nodes);
}
