#include "record/derived.h"

#include "record/invariant_layout.h"

namespace qdlflex {
namespace {

/// Models are filled node by node without a query in between: then there is nothing to forget.
void forget(NodeSearch &search) {
  if (search.was_scanned)
    search = {};
}

}  // namespace

void drop_derived_invariants(QDL_Record &record, std::initializer_list<int> numbers) {
  for (const int number : numbers) {
    InvariantSlot &slot = slot_of(record, number);
    if (slot.origin == Origin::kDerived)
      slot = InvariantSlot{};
  }
}

void forget_statistics(QDL_Record &record, std::int32_t kind, std::int32_t mode_index) {
  const auto mode = static_cast<std::size_t>(mode_index);
  if (mode >= record.statistics.modes.size())
    return;
  ModalStatistics &statistics = record.statistics.modes[mode];
  const auto forget = [&](std::size_t slot) {
    statistics.node_ids[slot] = 0;
    statistics.values[slot] = 0.0;
  };
  // Displacement and rotation come from the mode shapes, slots 2 and 3 from stress and strain.
  if (kind == kModeShapes)
    forget(0);
  forget(static_cast<std::size_t>(kind) + 1);
}

void forget_statistics(QDL_Record &record, std::int32_t kind) {
  const auto modes = static_cast<std::int32_t>(record.statistics.modes.size());
  for (std::int32_t mode = 0; mode < modes; ++mode)
    forget_statistics(record, kind, mode);
}

void forget_free_edges(QDL_Record &record) {
  record.free_edges.reset();
}

void note_nodes_moved(QDL_Record &record) {
  forget(record.node_search);
  forget(record.interface_node_search);
}

void note_faces_changed(QDL_Record &record) {
  record.geometry_nodes.reset();
  forget_free_edges(record);
}

void note_interface_nodes_changed(QDL_Record &record) {
  record.geometry_nodes.reset();
  forget(record.interface_node_search);
}

void note_nodal_loads_changed(QDL_Record &record) {
  record.geometry_nodes.reset();
}

}  // namespace qdlflex
