#pragma once

#include <initializer_list>

#include "record/record.h"

namespace qdlflex {

// What setters and other edits must forget, because it was derived from the data that they change.

/// Empties the given invariants where the library derived them; supplied ones stay.
void drop_derived_invariants(QDL_Record &record, std::initializer_list<int> numbers);

/// Makes the statistics of one mode that depend on a kind of mode data unknown.
void forget_statistics(QDL_Record &record, std::int32_t kind, std::int32_t mode_index);

/// For whatever changes faces or node identifiers: the chains are found anew on the next query.
void forget_free_edges(QDL_Record &record);

}  // namespace qdlflex
