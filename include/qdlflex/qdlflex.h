/** @file
 * The C interface of qdlflex: one modal flexible body in memory, read from and written to a QDL
 * file. C99 and C++.
 *
 * Rules of the interface (the functions do not repeat them)
 *
 * 1. Handles. A model handle points to an opaque record on a process-wide list of open models and
 *    is valid until QDL_DeReference(), QDL_UnLink() or QDL_Terminate() destroys the record. Only
 *    QDL_IsValid() and the functions that end a record look a handle up in that list; every other
 *    function trusts it, so a stale handle is the caller's fault.
 * 2. Null handles. "Null handle: reported" means: the error "The database has not been
 *    initialized." goes to the error handler and the failure value is returned. "Null handle:
 *    silent" means the failure value alone.
 * 3. Arrays. Arrays handed in are copied, never kept. Arrays to be filled belong to the caller and
 *    must have the stated size. An array that a function returns as new belongs to the caller, who
 *    releases it with QDL_FreeMemory(). Pointers that stay the library's say so. A null pointer
 *    for a scalar output is skipped; a null array makes the function fail.
 * 4. Nodes. A node identifier is the finite-element node number (any 32-bit value); a node index
 *    is the zero-based position in the node list. Setters take identifiers, getters take indices
 *    where they say "index", and lists of nodes are identifiers except in face lists. Of equal
 *    identifiers the node added first is found.
 * 5. Modes. A mode number is the number that the caller or the file gave a mode; a mode index is
 *    the zero-based position in the mode list. M stands for the current mode count.
 * 6. Results. 1 is success and 0 failure. Exceptions: monitor-point and matrix-operator functions
 *    return 0 for success and -1 for failure; functions that find or create an item return its
 *    zero-based index or -1; counts are returned as such. A failed call leaves the model
 *    consistent; a node or mode that it added on the way may stay.
 * 7. Units. Values go in and come out in the model's current units (QDL_SetUnits()); "length",
 *    "mass", "time" and "force" name those units. Mode data is converted when it is fetched.
 *    Rotations of modes are in radians; angles given as arguments are in degrees.
 * 8. Components. Symmetric tensors of six values are ordered xx, yy, zz, xy, xz, yz. Strains carry
 *    engineering shear (twice the tensor component). Matrices are stored row by row.
 * 9. Kinds and parts. Mode data has three kinds (#QDL_ModeKind) of six values per node: three
 *    translations and three rotations, or six stress or strain components. Part 0 is the first
 *    three of the six values, part 1 the last three. Each kind has its own ordered node set.
 * 10. Presence. A setter that stores a datum raises the presence flag of the block that holds it
 *     in a file (QDL_Exists()), after the datum is stored.
 * 11. Messages. The library prints nothing (but the trace that QDL_localtime_ISO8601() is asked
 *     for); texts go to the three handlers of SetMessageHandlers(), which a host installs before
 *     it calls anything else. Until then messages are dropped.
 * 12. Memory. When memory runs out, the error `Failed to allocate memory at line %d in file %s.`
 *     is reported and the failure value returned. No exception leaves a function.
 * 13. Threads. One thread at a time uses the library; nothing is locked.
 * 14. Names. File names and texts are UTF-8; file names are compared byte for byte.
 * 15. Environment. All configuration is by the variables below, read at the moment of use.
 *
 * - QDL_MAX_MODE_MEMORY: size in MiB (integer) of the double-precision mode cache; 200 when not
 *   a positive number. Read when QDL_InitializeModeMemory() runs: on a call, or before the first
 *   vector is cached.
 * - QDL_MAX_SMODE_MEMORY: the same for the single-precision cache, per kind and part; all
 *   available memory when not a positive number. Read when QDL_InitializeSModeMemory() runs.
 * - ZEB_TMP_MOD, ZEB_TMP_STR, ZEB_TMP_STN: full path of the temporary file for mode shapes,
 *   modal stress and modal strain. Read when the first vector of that kind is set. Empty, or
 *   naming a file that an open model uses: ignored.
 * - TMP: directory of temporary files; when unset or empty TMPDIR, else /tmp. Read when a
 *   temporary file is named.
 * - ZEB_QDLWRITE_OPTIONS: options of the writer, read once per QDL_write_QDL(), and by
 *   QDL_GeometryNodes() when it collects the nodes.
 * - OXR_A2A_BDF2SHL_PID: set to anything, lets QDL_DiscardUnreferencedNodes() go on without mode
 *   shapes that can't be rewritten.
 * - QDL_RIGID_BODY_THRESHOLD: frequency, as QDL_Eigenvalue() gives it, up to which a mode counts
 *   as rigid. Read by every QDL_RigidBodyModeCount() of a model with more than six modes.
 * - ZEB_MFORCE_NO_FEA_MASS: when set, whatever to, QDL_RigidBodyForcesOnPrincipalAxes() does
 *   without nodal masses.
 */
#ifndef QDLFLEX_QDLFLEX_H
#define QDLFLEX_QDLFLEX_H

#include <qdlflex/body.h>
#include <qdlflex/files.h>
#include <qdlflex/invariants.h>
#include <qdlflex/loads.h>
#include <qdlflex/matrices.h>
#include <qdlflex/modes.h>
#include <qdlflex/records.h>
#include <qdlflex/setters.h>
#include <qdlflex/transformation.h>
#include <qdlflex/types.h>
#include <qdlflex/units.h>

#endif
