#pragma once

#include "record/record.h"

namespace qdlflex {

/// Derives a modal invariant whose slot is empty and that the record's file does not have: summed
/// over the nodes where there are nodal masses, else zeros. What the same walk through the modes
/// gives besides is kept: of invariants 3, 4 and 8 those that are not known yet, and with 5 always
/// 9 and the other way round. The slot stays empty without modes. On an allocation failure, which
/// is thrown (also for invariant 8 of a model without nodes), the record is unchanged.
void derive_modal_invariant(QDL_Record &record, int number);

}  // namespace qdlflex
