#pragma once

#include <cstdint>

#include "record/record.h"

namespace qdlflex {

/// Gives the record another number of modes. Fewer modes: everything that it holds per mode loses
/// its tail: mode list, eigenvalue table, generalized entries, transformation, invariants, loads,
/// statistics, monitor points, rotor matrices, places of mode data. More modes: the mode list gets
/// numbers not in use yet; what is shorter than that counts as zeros everywhere. Cached modes are
/// dropped, mode data keeps its files. On an allocation failure, which is thrown, the record is
/// unchanged.
///
/// `rigid_modes` is the number of rigid-body modes, which takes six places of damping on the
/// principal axes; it matters for nothing else.
void change_mode_count(QDL_Record &record, std::int32_t modes, std::int32_t rigid_modes = 6);

}  // namespace qdlflex
