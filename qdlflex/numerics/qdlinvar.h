#pragma once

#include <span>

#include "record/record.h"

namespace qdlflex {

// Invariant 6 has no slot: it is the generalized mass.

/// Fills an empty slot from the invariant's block of the record's file, converted to the model's
/// units. Whether the slot now holds values that were supplied, by a setter or the file.
bool load_invariant(QDL_Record &record, int number);

/// Loads those invariants that only the record's file has so far. False after a reported failure:
/// the block of one of them can't be read.
bool load_invariants(QDL_Record &record, std::span<const int> numbers);
bool load_all_invariants(QDL_Record &record);

/// For modes and invariants of the record's file that can't be read.
void report_unextractable();

/// The inertia invariant, obtained on first use: from the record's file, else derived from its
/// other data. A modal one is laid out for the present modes. Empty for a modal one without modes,
/// and where its block of the file can't be read.
const InvariantSlot &obtain_invariant(QDL_Record &record, int number);

}  // namespace qdlflex
