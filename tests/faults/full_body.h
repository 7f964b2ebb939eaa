#pragma once

#include <qdlflex/qdlflex.h>

namespace qdltest {

// Two hexahedra side by side, with a piece of everything that setters take: masses and rotary
// inertias, all six faces of both elements, modes with full generalized matrices, stress and strain
// at some of the nodes, loads, monitor points, matrix operators and a rotor. False once a setter
// fails.
bool fill_full_body(QDL_Record *model);

inline constexpr int32_t kFullBodyNodes = 12;
inline constexpr int32_t kFullBodyModes = 8;

}  // namespace qdltest
