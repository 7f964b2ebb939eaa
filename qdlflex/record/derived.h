#pragma once

#include <initializer_list>

#include "record/record.h"

namespace qdlflex {

// What setters and other edits must forget, because it was derived from the data that they change.

/// Empties the given invariants where the library derived them; supplied ones stay.
void drop_derived_invariants(QDL_Record &record, std::initializer_list<int> numbers);

/// Makes the statistics of one mode that depend on a kind of mode data unknown.
void forget_statistics(QDL_Record &record, std::int32_t kind, std::int32_t mode_index);
/// The same for all modes.
void forget_statistics(QDL_Record &record, std::int32_t kind);

/// For whatever changes faces or node identifiers: the chains are found anew on the next query.
void forget_free_edges(QDL_Record &record);

/// For whatever adds, moves or removes nodes or changes their order.
void note_nodes_moved(QDL_Record &record);

/// For whatever changes the list of faces.
void note_faces_changed(QDL_Record &record);

/// For whatever changes the list of interface nodes.
void note_interface_nodes_changed(QDL_Record &record);

/// For whatever changes the nodes at which modal loads act.
void note_nodal_loads_changed(QDL_Record &record);

}  // namespace qdlflex
