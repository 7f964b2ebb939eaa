#pragma once

#include <string>

/// Writes a QDL file in native single precision: two hexahedra on top of one another, together
/// 2 x 3 x 4 mm, with the face between them twice. Nodes 11 to 14, 21 to 24 and 31 to 34 stand
/// around the levels z = 0, 2 and 4 from (0, 0) by (2, 0) and (2, 3) to (0, 3). Nodes 98, an
/// interface node, and 99 belong to no face. Modes 3 (5 Hz) and 12 (12.5 Hz), only the latter with
/// rotations; modal stress at the nodes 11 to 14.
void write_box(const std::string &path);

/// Writes a QDL file without modes: a pentagon of the nodes 1 to 5 and a triangle 2, 1, 6 that
/// shares an edge with it, in the plane z = 0. The edges around both measure 16 in all.
void write_panel(const std::string &path);

/// Writes a QDL file without modes: four squares around the node 5 at (5, 5) of a plate of 10 x 10
/// in the plane z = 1.
void write_plate(const std::string &path);
