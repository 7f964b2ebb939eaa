/** @file
 * The C interface of qdlflex: one modal flexible body in memory, read from and written to a QDL
 * file. C99 and C++.
 *
 * Rules of the interface (the functions below do not repeat them)
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

#include <stdint.h>
#include <stdio.h>

#define QDLFLEX_VERSION_MAJOR 0        /**< Version of the library; files have their own. */
#define QDLFLEX_VERSION_MINOR 1        /**< Minor version of the library. */
#define QDLFLEX_VERSION_PATCH 0        /**< Patch level of the library. */
#define QDLFLEX_VERSION_STRING "0.1.0" /**< Version of the library as text. */

/** @def QDL_API
 * Marks what the shared library exports. */
/** @def QDL_PRINTF
 * Lets the compiler check a format at argument position `text` against arguments from `rest`. */
#if defined(__GNUC__)
#define QDL_API __attribute__((visibility("default")))
#define QDL_PRINTF(text, rest) __attribute__((format(printf, text, rest)))
#else
#define QDL_API
#define QDL_PRINTF(text, rest)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** One flexible body; opaque. */
typedef struct QDL_Record QDL_Record;

/** A host's message handler: takes the finished text, which may end in a newline and is only valid
 * during the call; its result becomes the result of QDL_Error(), QDL_Warning() or QDL_Info(). */
typedef int64_t (*QDL_MessageHandler)(const char *text);

/** Generic function pointer of the interface table; cast to the function's own type before a call.
 */
typedef void (*QDL_Function)(void);

/** One line of a unit table: a unit's name and its size in SI units. */
typedef struct QDL_UnitEntry {
  const char *name; /**< upper-case name; null or empty in the entry that ends a table */
  double factor;    /**< SI value of one unit */
} QDL_UnitEntry;

/** Kinds of mode data. */
enum QDL_ModeKind {
  QDL_MODE_SHAPE = 0,  /**< translations (length) and rotations (radians) */
  QDL_MODE_STRESS = 1, /**< stress tensor (force / length^2) */
  QDL_MODE_STRAIN = 2  /**< strain tensor with engineering shear (no unit) */
};

/** Fixed sizes. */
enum {
  QDL_BLOCK_COUNT = 37,     /**< blocks of a file, by index 0 to 36 */
  QDL_INTERFACE_SLOTS = 188 /**< slots of the table that PopulateInterface() fills */
};

/** @defgroup records Records
 * Creating, sharing and ending models.
 * @{ */

/** Creates an empty model at the end of the list of open models; touches no disk.
 * @param plannedNodes expected node count, sizes the temporary mode files; more nodes are accepted
 * @param plannedModes most modes that the model will take; a further mode is refused (negative
 *   counts act as 0)
 * @return handle with reference count 1; null when memory runs out. @since 0.1, slot 0 */
QDL_API QDL_Record *QDL_Create(int32_t plannedNodes, int32_t plannedModes);

/** Opens a QDL file, or finds the open model of exactly this name (no further reference is
 * counted). The file stays open while the model lives, and mode data is read from it on demand.
 * @param fileName path of the file
 * @return handle; null without a message when the name is null or the file can't be opened,
 *   null after the reader's message when it can't be read. @since 0.1, slot 2 */
QDL_API QDL_Record *QDL_CreateFromQDL(const char *fileName);

/** Opens a QDL file for its surface alone, or finds the open model that this function has made of
 * exactly this name. A new model loses its internal geometry (QDL_RemoveInternalGeometry()); when
 * that fails after a message, the model keeps all nodes. The same file opened by
 * QDL_CreateFromQDL() is a model of its own.
 * @param fileName path of the file
 * @return as QDL_CreateFromQDL(). @since 0.1, slot 3 */
QDL_API QDL_Record *QDL_CreateFromQDL_SurfaceMesh(const char *fileName);

/** Finds the open model that QDL_CreateFromQDL() would return without reading.
 * @param fileName path, compared byte for byte @return handle, or null. @since 0.1, slot 1 */
QDL_API QDL_Record *QDL_FindQDL(const char *fileName);

/** Tells whether a handle is on the list of open models.
 * @param model any pointer, also stale or null; not dereferenced
 * @return 1 or 0. @since 0.1, slot 142 */
QDL_API int32_t QDL_IsValid(const QDL_Record *model);

/** Drops one reference; destroys the model when it was the last.
 * @param model handle; not listed: ignored
 * @return references left; 0 when it was destroyed or is not listed. @since 0.1, slot 106 */
QDL_API int32_t QDL_DeReference(QDL_Record *model);

/** Destroys a model whatever its reference count: closes its file, removes its temporary files.
 * @param model handle; not listed: ignored. @since 0.1, slot 105 */
QDL_API void QDL_UnLink(QDL_Record *model);

/** Destroys every open model. @since 0.1, slot 107 */
QDL_API void QDL_Terminate(void);

/** Does nothing; kept for the interface table. QDL_UnLink() destroys a model.
 * @param model not used. @since 0.1, slot 104 */
QDL_API void QDL_Destroy(QDL_Record *model);

/** Releases an array that a function of this interface returned as new.
 * @param pointer array, or null. @since 0.1, slot 108 */
QDL_API void QDL_FreeMemory(void *pointer);

/** @} */
/** @defgroup messages Messages and run-time binding
 * @{ */

/** Installs the process-wide message handlers.
 * @param table three handlers: error, warning, information; null entries drop their messages
 * @return 1; null table: 0, nothing changed. @since 0.1 */
QDL_API int32_t SetMessageHandlers(const QDL_MessageHandler *table);

/** Fills a host's function table for binding at run time. A function's slot stands with its
 * `since`; slots never move. Slots without a function (45, 109-111, 127, 138-141, 177-183 in every
 * version) keep what the host put there.
 * @param table #QDL_INTERFACE_SLOTS pointers, the host's own
 * @return 1; null table: 0. @since 0.1 */
QDL_API int32_t PopulateInterface(QDL_Function *table);

/** Sends a text to the error handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Error(const char *format, ...) QDL_PRINTF(1, 2);

/** Sends a text to the warning handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Warning(const char *format, ...) QDL_PRINTF(1, 2);

/** Sends a text to the information handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Info(const char *format, ...) QDL_PRINTF(1, 2);

/** @} */
/** @defgroup modes Mode data
 * A half-mode vector holds three values per node of the kind's node set, node by node in that set's
 * order (QDL_ModeNodeCount(), QDL_ModeNodeID()). `node` is the zero-based position in that order.
 * Mode data lives in the QDL file or in temporary files; two bounded caches (double and single
 * precision) keep half-mode vectors in memory. A failed read or an unknown mode number is reported
 * as `Problem reading mode shape %d`, `Problem reading modal stress vector %d` or
 * `Problem reading modal strain vector %d`, and the output is then unspecified. A bad kind, part or
 * node fails silently.
 * @{ */

/** Fetches a half-mode, from the cache or the file, and offers it to the cache.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives 3 * QDL_ModeNodeCount(model, kind) values @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 56 */
QDL_API int32_t QDL_Mode(QDL_Record *model, int32_t modeNumber, int32_t kind, double *values,
                         int32_t part);

/** Fetches the half-mode values of one node, from the cache or the file.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param node position in the kind's node set @param values receives 3 values @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 60 */
QDL_API int32_t QDL_ModeByNode(QDL_Record *model, int32_t modeNumber, int32_t kind, int32_t node,
                               double *values, int32_t part);

/** QDL_ModeByNode() that always reads the file and never touches a cache.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param node position in the kind's node set @param values receives 3 values @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 61 */
QDL_API int32_t QDL_ModeByNodeWithoutCache(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                           int32_t node, double *values, int32_t part);

/** Gives the library's own copy of a half-mode. It is valid until the next setter, cleaning of the
 * caches, change of units or modes, or the model's end; a vector that found no room in the cache
 * also ends with the next call of this function for the same kind and part.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives the vector, not to be released; null on failure @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 143 */
QDL_API int32_t QDL_ModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, double **values,
                              int32_t part);

/** QDL_ModeByRef() in single precision, over the single-precision cache.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives the vector, not to be released; null on failure @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 144 */
QDL_API int32_t QDL_SModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, float **values,
                               int32_t part);

/** Reads a half-mode from the file, past the caches; a single-precision file is widened.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives 3 * QDL_ModeNodeCount(model, kind) values @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 59 */
QDL_API int32_t QDL_Read_Mode_Double(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                     double *values, int32_t part);

/** Reads a half-mode from the file, past the caches; a double-precision file is narrowed.
 * @param model handle; null: reported @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives 3 * QDL_ModeNodeCount(model, kind) values @param part 0 or 1
 * @return 1 or 0. @since 0.1, slot 58 */
QDL_API int32_t QDL_Read_Mode_Single(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                     float *values, int32_t part);

/** Puts a copy of a half-mode into the double-precision cache, whatever the keep flag is; a vector
 * already held is overwritten. Nothing is ever evicted.
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values 3 * QDL_ModeNodeCount(model, kind) values in current units @param part 0 or 1
 * @return 1 cached; 0 not (no room, unknown mode, bad kind or part, no memory). @since 0.1 */
QDL_API int32_t QDL_ModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                 const double *values, int32_t part);

/** QDL_ModetoMemory() for the single-precision cache.
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values 3 * QDL_ModeNodeCount(model, kind) values in current units @param part 0 or 1
 * @return 1 cached; 0 not. @since 0.1 */
QDL_API int32_t QDL_SModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                  const float *values, int32_t part);

/** Copies a half-mode from the double-precision cache; never reads the file.
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives 3 * QDL_ModeNodeCount(model, kind) values @param part 0 or 1
 * @return 1; 0 when not cached, silent, `values` untouched. @since 0.1 */
QDL_API int32_t QDL_ModeFromMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                   double *values, int32_t part);

/** Copies the half-mode values of one node from the double-precision cache.
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param node position in the kind's node set @param values receives 3 values @param part 0 or 1
 * @return 1; 0 when not cached, silent, `values` untouched. @since 0.1 */
QDL_API int32_t QDL_ModeFromMemoryByNode(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                         int32_t node, double *values, int32_t part);

/** Gives the double-precision cache's own vector; valid as with QDL_ModeByRef().
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives the vector, not to be released; null when not cached @param part 0 or 1
 * @return 1; 0 when not cached, silent. @since 0.1 */
QDL_API int32_t QDL_ModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                        double **values, int32_t part);

/** Gives the single-precision cache's own vector; valid as with QDL_ModeByRef().
 * @param model handle; null: silent @param modeNumber mode number @param kind #QDL_ModeKind
 * @param values receives the vector, not to be released; null when not cached @param part 0 or 1
 * @return 1; 0 when not cached, silent. @since 0.1 */
QDL_API int32_t QDL_SModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                         float **values, int32_t part);

/** Computes the capacity of the double-precision cache from QDL_MAX_MODE_MEMORY and the largest of
 * the three node sets; at most all six halves of every mode.
 * @param model handle; null: silent
 * @return capacity in half-mode vectors, shared by all kinds and parts; 0 for null, no nodes,
 *   or when nothing fits. @since 0.1 */
QDL_API int32_t QDL_InitializeModeMemory(QDL_Record *model);

/** Computes the capacity of the single-precision cache of one kind and part from
 * QDL_MAX_SMODE_MEMORY; at most the mode count.
 * @param model handle; null: silent @param kind #QDL_ModeKind @param part 0 or 1
 * @return capacity in half-mode vectors, or 0. @since 0.1 */
QDL_API int32_t QDL_InitializeSModeMemory(QDL_Record *model, int32_t kind, int32_t part);

/** Sets the flag that lets fetches use the caches (1 in a new model). Changing it from 1 to 0
 * releases both caches.
 * @param model handle; null: reported @param keep 0, or anything else for 1
 * @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_SetKeepModesInMemory(QDL_Record *model, int32_t keep);

/** The flag of QDL_SetKeepModesInMemory().
 * @param model handle; null: silent, `flag` untouched @param flag receives the flag; may be null
 * @return the flag; 0 for a null handle. @since 0.1 */
QDL_API int32_t QDL_GetKeepModesInMemory(QDL_Record *model, int32_t *flag);

/** Releases the double-precision cache; its capacity is computed again when it is next used.
 * @param model handle; null: silent @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_CleanModesInMemory(QDL_Record *model);

/** Releases the single-precision cache; its capacities are computed again when it is next used.
 * @param model handle; null: silent @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_CleanSModesInMemory(QDL_Record *model);

/** @} */
/** @defgroup nodes Nodes and mass
 * @{ */

/** Number of nodes.
 * @param model handle; null: silent @return the count; 0 for null. @since 0.1, slot 32 */
QDL_API int32_t QDL_NodeCount(QDL_Record *model);

/** Identifier of a node.
 * @param model handle; null: silent @param index node index
 * @return the identifier; 0 for a bad index. @since 0.1, slot 26 */
QDL_API int32_t QDL_NodeID(QDL_Record *model, int32_t index);

/** Index of a node.
 * @param model handle; null: reported @param nodeId node identifier
 * @return the index; -1 when no node has the identifier. @since 0.1, slot 25 */
QDL_API int32_t QDL_NodeIndex(QDL_Record *model, int32_t nodeId);

/** Coordinates of a node.
 * @param model handle; null: silent @param index node index @param xyz receives x, y, z (length)
 * @return 1; bad index: 0 and zeros; null or no nodes: 0, `xyz` untouched. @since 0.1, slot 34 */
QDL_API int32_t QDL_NodeCoordinates(QDL_Record *model, int32_t index, double *xyz);

/** Coordinates of all nodes in node order.
 * @param model handle; null: silent @param xyz receives 3 * QDL_NodeCount() values (length)
 * @param count receives the node count
 * @return 1; no nodes: 0, `count` 0, `xyz` untouched. @since 0.1, slot 35 */
QDL_API int32_t QDL_NodeCoordinateList(QDL_Record *model, double *xyz, int32_t *count);

/** Mass of a node.
 * @param model handle; null: silent @param index node index
 * @return the mass; 0.0 for a bad index. @since 0.1, slot 40 */
QDL_API double QDL_NodalMass(QDL_Record *model, int32_t index);

/** Rotary inertia of a node.
 * @param model handle; null: silent @param index node index
 * @param tensor receives the symmetric 3 x 3 tensor (mass length^2), 9 values
 * @return 1; 0, untouched, for a bad index or a node without inertia. @since 0.1, slot 42 */
QDL_API int32_t QDL_NodalInertia(QDL_Record *model, int32_t index, double *tensor);

/** Mass and coordinates of a node.
 * @param model handle; null: silent @param index node index @param mass receives the mass
 * @param xyz receives x, y, z (length)
 * @return 1; bad index: 0 and zeros; null handle or no nodes: 0, outputs untouched. @since 0.1 */
QDL_API int32_t QDL_NodalMassAndGeometry(QDL_Record *model, int32_t index, double *mass,
                                         double *xyz);

/** Identifiers of the interface nodes.
 * @param model handle; null: silent @param count receives their number
 * @return new array of identifiers, 0 for an entry that names no node of the model; null,
 *   `count` 0 when there are none. @since 0.1, slot 51 */
QDL_API int32_t *QDL_InterfaceNodeIDs(QDL_Record *model, int32_t *count);

/** Identifiers of the interface nodes; the same list as QDL_InterfaceNodeIDs().
 * @param model handle; null: silent @param count receives their number
 * @return new array of identifiers; null, `count` 0 when there are none. @since 0.1, slot 130 */
QDL_API int32_t *QDL_InterfaceNodes(QDL_Record *model, int32_t *count);

/** Exchanges two nodes (identifier, coordinates, mass, inertia) in the node list. Faces, interface
 * nodes and mode data keep their positions, so they now use the other node. QDL_NodeIndex() goes
 * on answering the old positions until its table is rebuilt.
 * @param model handle; null: reported @param idA identifier; unknown: nothing happens
 * @param idB identifier; unknown: nothing happens. @since 0.1 */
QDL_API void QDL_SwapNodesByID(QDL_Record *model, int32_t idA, int32_t idB);

/** The node nearest to a point; of equally near ones the first. Looks at the interface nodes, in
 * their order, where only they are wanted and the model has any, else at all nodes. A node whose
 * distance is not a number counts as infinitely far. Here as in the two functions below, queries
 * after the first one take time logarithmic in the number of nodes until nodes are added or moved
 * (Bentley, Comm. ACM 18 (1975) 509).
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param interfaceOnly 0: all nodes
 * @return node index; -1 for null or when there is no node to look at. @since 0.1, slot 36 */
QDL_API int32_t QDL_ClosestNode(QDL_Record *model, const double *point, int32_t interfaceOnly);

/** The n nodes nearest to a point, nearest first; of equally near ones the first come first. Looks
 * at the same nodes as QDL_ClosestNode().
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param n number of nodes wanted @param interfaceOnly 0: all nodes
 * @param count receives the number found, at most n; 0 on failure
 * @return new array of node indices; null on failure, also for n < 1 or when there is no node to
 *   look at. @since 0.1, slot 37 */
QDL_API int32_t *QDL_ClosestNodes(QDL_Record *model, const double *point, int32_t n,
                                  int32_t interfaceOnly, int32_t *count);

/** All nodes at most `radius` from a point, nearest first; of equally near ones, unlike in
 * QDL_ClosestNodes(), the last come first. Looks at the same nodes as QDL_ClosestNode(). When
 * memory runs out, this is reported and what was found until then is returned.
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param radius distance (length), of which only the square counts @param interfaceOnly 0: all
 * nodes
 * @param count receives the number found; 0 on failure
 * @return new array of node indices; null on failure, also when there are none.
 * @since 0.1, slot 38 */
QDL_API int32_t *QDL_ClosestNodesInNeighborhood(QDL_Record *model, const double *point,
                                                double radius, int32_t interfaceOnly,
                                                int32_t *count);

/** Diagonal of the axis-parallel box around the first node and all nodes of the face list. The
 * first result other than zero is kept when coordinates change later.
 * @param model handle; null: silent
 * @return length; 0.0 for null or no nodes. @since 0.1, slot 24 */
QDL_API double QDL_BodySize(QDL_Record *model);

/** Global mass properties, first brought up to date by QDL_CalculateGlobalMassFromNodeMass().
 * @param model handle; null: silent @param mass receives the mass
 * @param centre receives the centre of mass, 3 values (length)
 * @param inertia receives the inertia about the origin, 9 values (mass length^2), with positive
 *   products of inertia off the diagonal
 * @return 1; failure: 0 and zeros in all outputs. @since 0.1, slot 23 */
QDL_API int32_t QDL_TotalMassInertia(QDL_Record *model, double *mass, double *centre,
                                     double *inertia);

/** Derives the global mass properties from invariants 1, 2 and 7: centre of mass = invariant 2 /
 * invariant 1 (zero without mass), inertia = invariant 7 with the off-diagonal entries negated.
 * @param model handle; null: reported @return 1; 0 for null or when memory runs out. @since 0.1 */
QDL_API int32_t QDL_CalculateGlobalMassFromNodeMass(QDL_Record *model);

/** @} */
/** @defgroup faces Faces
 * A face list is a flat array: per face its node count k, then k node indices in winding order.
 * @{ */

/** Sizes of the face list.
 * @param model handle; null: silent, outputs 0 @param faceCount receives the number of faces
 * @param listLength receives the number of integers in the list
 * @return 1; 0 for null. @since 0.1, slot 46 */
QDL_API int32_t QDL_FaceListSize(QDL_Record *model, int32_t *faceCount, int32_t *listLength);

/** Copies the face list.
 * @param model handle; null: silent @param list receives the list's integers
 * @return 1, also for an empty list; 0 when the model has no face list. @since 0.1, slot 47 */
QDL_API int32_t QDL_ElementFaces(QDL_Record *model, int32_t *list);

/** Removes the faces inside the body: a face that two elements share is listed twice with opposite
 * windings, and both go. Of faces listed more than once with one winding one stays. The faces left
 * begin at their largest node index and are ordered by number of nodes, then by largest node, then
 * by the nodes from there on towards the larger neighbour of the largest node. Runs once per model;
 * later calls do nothing, also when faces were added. "Stripping interior faces" goes to the
 * information handler.
 * @param model handle; null: reported. Without faces the error is that of memory that ran out and
 *   a later call may strip. @since 0.1 */
QDL_API void QDL_StripCommonFaces(QDL_Record *model);

/** Replaces the faces by those of a sketch file: a text file of decimal integers apart by white
 * space, the number of faces (below 1: none), then per face its node count and as many node
 * identifiers. What follows is ignored. Node counts are taken as they are (below 1: no identifiers
 * follow) and repeated nodes stay. The model counts as coarsened afterwards. A file that can't be
 * opened, a missing number and an identifier that no node has are warned about; the faces then stay
 * as they were.
 * @param model handle; null: reported @param path name of the file; null: warned about.
 * @since 0.1 */
QDL_API void QDL_SketchGrid(QDL_Record *model, const char *path);

/** The nodes that the geometry uses: nodes of faces, interface nodes with an identifier above 0
 * and, unless the environment variable ZEB_QDLWRITE_OPTIONS contains "optimize_mforce_nodes", the
 * nodes at which modal loads act. Collected once; collected again after faces, interface nodes or
 * such loads have changed.
 * @param model handle; null: reported
 * @param count receives the number of nodes; 0 on failure
 * @return new array of node indices, ascending; null on failure, also when there are none, and with
 *   a warning for a model without a face list. @since 0.1 */
QDL_API int32_t *QDL_GeometryNodes(QDL_Record *model, int32_t *count);

/** Tells whether the faces were coarsened or replaced by a sketch.
 * @param model handle; null: silent @return 1 or 0. @since 0.1, slot 49 */
QDL_API int32_t QDL_IsCoarsened(QDL_Record *model);

/** Coarsens the faces: nodes in nearly flat patches are removed and the faces around each of them
 * merged into one polygon; then, if asked for, nearly co-linear corners are dropped. Interface
 * nodes stay. The faces' new order and their first nodes follow from the order of the nodes.
 * @param model handle; null: reported
 * @param arguments `resolution,angle,switch,node,node,...` with any single character between the
 *   numbers; null: nothing is done. The resolution is the reach of a removed node's faces as a
 *   fraction of the model's diagonal, above 0 to 0.5, else a warning and 0.02. The angle between
 *   the faces around a removed node, above 0 to 45 degrees, else a warning and 10. A switch other
 *   than 0 drops co-linear corners. Then identifiers of nodes to be kept; the word `preserve_str`
 *   anywhere keeps the nodes of modal stress and strain.
 * @return 1; 0 when there are no faces or no nodes, when faces name nodes that do not exist, or
 *   when memory runs out. @since 0.1 */
QDL_API int32_t QDL_TrimGeometry(QDL_Record *model, const char *arguments);

/** Finds the free edges, those that a single face uses, and joins them to chains of nodes. Internal
 * geometry is removed first, which changes faces and nodes. The chains are kept until faces or node
 * identifiers change. The classes of qdlflex/free_edges.hpp do the same for any face list.
 * @param model handle; null: reported @return 1; 0 when memory runs out, silently. @since 0.1 */
QDL_API int32_t QDL_GenerateFreeEdges(QDL_Record *model);

/** Number of chains of free edges; they are found first unless they are known.
 * @param model handle; null: reported @return the count; 0 for null. @since 0.1, slot 162 */
QDL_API int32_t QDL_GetFreeEdgeCount(QDL_Record *model);

/** Number of nodes in a chain of free edges; the chains are found first unless they are known.
 * @param model handle; null: reported @param chain zero-based
 * @return the count; no such chain: 0. @since 0.1, slot 163 */
QDL_API int32_t QDL_GetFreeEdgeSize(QDL_Record *model, int32_t chain);

/** Nodes of a chain of free edges that is known already. A closed chain begins with its smallest
 * node index, runs towards the smaller neighbour and ends with the node it began with; an open one
 * runs from end to end. Where chains meet, one ends.
 * @param model handle; null: reported @param chain zero-based
 * @param nodeIds receives as many identifiers as QDL_GetFreeEdgeSize() says
 * @return the number of identifiers; no such chain: 0. @since 0.1, slot 164 */
QDL_API int32_t QDL_GetFreeEdge(QDL_Record *model, int32_t chain, int32_t *nodeIds);

/** @} */
/** @defgroup modelist Mode list, header and model properties
 * @{ */

/** Texts of the file header, each whole with its terminator.
 * @param model handle; null: silent
 * @param title receives 128 characters; may be null, as the others
 * @param date receives 32; one newline at its end is cut @param inputName receives 128
 * @param inputType receives 16 @param comment1 receives 80 @param comment2 receives 80
 * @param comment3 receives 80 @return 1; 0 for null. @since 0.1, slot 21 */
QDL_API int32_t QDL_Header(QDL_Record *model, char *title, char *date, char *inputName,
                           char *inputType, char *comment1, char *comment2, char *comment3);

/** Eigenvalue data of a mode, from the eigenvalue table or, without an entry there, from diagonal
 * generalized matrices (missing stiffness 0, missing mass max(k, 1) * 1e-16).
 * @param model handle; null: silent @param modeNumber mode number
 * @param eigenvalue receives k / m (force / (mass length)); each output may be null
 * @param frequency receives cycles per time; negative for a negative eigenvalue
 * @param circularFrequency receives radians per time, with the sign of `frequency`
 * @param generalizedMass receives m (mass length^2)
 * @param generalizedStiffness receives k (force length)
 * @return 1; unknown mode: 0, outputs untouched; an off-diagonal entry before the one wanted: 0
 *   and zeros. @since 0.1, slot 79 */
QDL_API int32_t QDL_Eigenvalue(QDL_Record *model, int32_t modeNumber, double *eigenvalue,
                               double *frequency, double *circularFrequency,
                               double *generalizedMass, double *generalizedStiffness);

/** Number of modes, M.
 * @param model handle; null: silent @return the count; 0 for null. @since 0.1, slot 54 */
QDL_API int32_t QDL_ModeCount(QDL_Record *model);

/** Index of a mode.
 * @param model handle; null: silent @param modeNumber mode number
 * @return index of the first mode of that number, or -1. @since 0.1, slot 27 */
QDL_API int32_t QDL_ModeIndex(QDL_Record *model, int32_t modeNumber);

/** Number of a mode.
 * @param model handle; null: silent @param modeIndex mode index
 * @return the mode number; -1 for a bad index. @since 0.1, slot 28 */
QDL_API int32_t QDL_ModeNumber(QDL_Record *model, int32_t modeIndex);

/** Tells whether the model holds mode data of a kind.
 * @param model handle; null: silent @param kind #QDL_ModeKind
 * @return the presence byte of block 8, 18 or 29; 0 for a bad kind. @since 0.1, slot 55 */
QDL_API int32_t QDL_ModeExist(QDL_Record *model, int32_t kind);

/** Size of a kind's node set.
 * @param model handle; null: silent @param kind #QDL_ModeKind
 * @return the count; 0 for a bad kind. @since 0.1, slot 29 */
QDL_API int32_t QDL_ModeNodeCount(QDL_Record *model, int32_t kind);

/** Identifier of a node of a kind's node set.
 * @param model handle; null: silent @param kind #QDL_ModeKind @param position zero-based position
 * @return the identifier; 0 for a bad position. @since 0.1, slot 31 */
QDL_API int32_t QDL_ModeNodeID(QDL_Record *model, int32_t kind, int32_t position);

/** Position of a node in a kind's node set; for mode shapes the node index.
 * @param model handle; null: silent, for mode shapes reported @param kind #QDL_ModeKind
 * @param nodeId node identifier @return the position, or -1. @since 0.1, slot 30 */
QDL_API int32_t QDL_ModeNodeIndex(QDL_Record *model, int32_t kind, int32_t nodeId);

/** Mode-shape transformation matrix.
 * @param model handle; null: silent @param matrix receives M x M values
 * @return 1; 0 when none is set. @since 0.1, slot 80 */
QDL_API int32_t QDL_Transformation(QDL_Record *model, double *matrix);

/** Sets the mode-shape transformation matrix.
 * @param model handle; null: reported @param matrix M x M values
 * @return 1; 0 without modes, for a null matrix or without memory. @since 0.1, slot 81 */
QDL_API int32_t QDL_SetTransformation(QDL_Record *model, const double *matrix);

/** Version number of the model.
 * @param model handle; null: silent
 * @return ten times the format version, 31 in new models; 0 for null. @since 0.1, slot 103 */
QDL_API int32_t QDL_Version(QDL_Record *model);

/** Sets the version number; changes neither how data is read nor QDL_Double_Prec().
 * @param model handle; null: reported
 * @param version low byte stored; for 10, 20, 30, 31, 40, 41, 50, 51 the flag bits are cleared
 * @return 1 or 0. @since 0.1, slot 133 */
QDL_API int32_t QDL_SetVersion(QDL_Record *model, int32_t version);

/** Precision of the stored mode shapes.
 * @param model handle; null: silent @return 1 double, 0 single; 0 for null. @since 0.1, slot 57 */
QDL_API int32_t QDL_Double_Prec(QDL_Record *model);

/** Discretization method; there is only one.
 * @param model handle; not used @return 0. @since 0.1 */
QDL_API int32_t QDL_DiscreteMethod(QDL_Record *model);

/** Type of the flexible body.
 * @param model handle; null: silent
 * @return 1 when the model holds mode shapes, else 0. @since 0.1, slot 145 */
QDL_API int32_t QDL_GetFlexType(QDL_Record *model);

/** Requests (1) or declines (0, new models) that orthonormalization scales modes to unit mass.
 * @param model handle; null: reported @param flag 0, or anything else for 1
 * @return 1 or 0. @since 0.1, slot 137 */
QDL_API int32_t QDL_SetShouldMassNormalizeModes(QDL_Record *model, int32_t flag);

/** @} */
/** @defgroup setters Setters
 * A node or mode that a setter names is added when the model lacks it, unless the setter says
 * otherwise. An added node has coordinates (0, 0, 0), no mass and no inertia. A mode beyond the
 * planned count of QDL_Create(), and every new mode of a model that was read, is refused with an
 * error that begins `Insufficient room for mode %d in temporary mode shape file.`. A model that was
 * read may be edited; its file is never written.
 * @{ */

/** Sets the header texts and dates the header now. Longer texts are cut with a warning; each
 * stored text is repeated as information.
 * @param model handle; null: reported
 * @param title up to 127 characters; in all six texts newlines become blanks in the caller's
 *   buffer, and null counts as empty @param inputName up to 127 @param inputType up to 15
 * @param comment1 up to 79 @param comment2 up to 79 @param comment3 up to 79
 * @return 1 or 0. @since 0.1, slot 20 */
QDL_API int32_t QDL_SetHeader(QDL_Record *model, char *title, char *inputName, char *inputType,
                              char *comment1, char *comment2, char *comment3);

/** Appends a node without looking for the identifier.
 * @param model handle; null: reported @param nodeId node identifier
 * @return node index, or -1. @since 0.1 */
QDL_API int32_t QDL_AddNode(QDL_Record *model, int32_t nodeId);

/** Finds a node, or appends it.
 * @param model handle; null: reported @param nodeId node identifier
 * @return node index, or -1. @since 0.1 */
QDL_API int32_t QDL_LookupOrAddNode(QDL_Record *model, int32_t nodeId);

/** Appends a mode without looking for the number.
 * @param model handle; null: reported @param modeNumber mode number
 * @return mode index; -1 when the mode list is full. @since 0.1 */
QDL_API int32_t QDL_AddMode(QDL_Record *model, int32_t modeNumber);

/** Finds a mode, or appends it.
 * @param model handle; null: reported @param modeNumber mode number
 * @return mode index; -1 when the mode list is full. @since 0.1 */
QDL_API int32_t QDL_LookupOrAddMode(QDL_Record *model, int32_t modeNumber);

/** Sets the coordinates of a node.
 * @param model handle; null: reported @param nodeId node identifier @param x,y,z length
 * @return 1 or 0. @since 0.1, slot 33 */
QDL_API int32_t QDL_SetNodeCoordinates(QDL_Record *model, int32_t nodeId, double x, double y,
                                       double z);

/** Sets the mass of a node.
 * @param model handle; null: reported @param nodeId node identifier @param mass mass
 * @return 1 or 0. @since 0.1, slot 39 */
QDL_API int32_t QDL_SetNodalMass(QDL_Record *model, int32_t nodeId, double mass);

/** Adds to the mass of a node.
 * @param model handle; null: reported @param nodeId node identifier @param mass mass to add
 * @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_AddNodalMass(QDL_Record *model, int32_t nodeId, double mass);

/** Sets the rotary inertia of a node (mass length^2), with the signs of an inertia tensor: the
 * values enter invariant 7 as they are.
 * @param model handle; null: reported @param nodeId node identifier
 * @param xx,yy,zz,xy,xz,yz entries of the symmetric tensor @return 1 or 0. @since 0.1, slot 41 */
QDL_API int32_t QDL_SetNodalInertia(QDL_Record *model, int32_t nodeId, double xx, double yy,
                                    double zz, double xy, double xz, double yz);

/** Sets one entry of the symmetric rotary inertia of a node; the others stay.
 * @param model handle; null: reported @param nodeId node identifier
 * @param row,column 1 to 3; otherwise 0, silent, no node added @param value mass length^2
 * @return 1 or 0. @since 0.1, slot 43 */
QDL_API int32_t QDL_SetNodalInertiaEntry(QDL_Record *model, int32_t nodeId, int32_t row,
                                         int32_t column, double value);

/** Appends a face given as arguments; otherwise as QDL_SetFaceList().
 * @param model handle; null: reported @param count number of identifiers that follow
 * @param ... `count` node identifiers of type int32_t @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_SetFace(QDL_Record *model, int32_t count, ...);

/** Appends a face. Repeated neighbours and a last node equal to the first are dropped.
 * @param model handle; null: reported @param count number of identifiers
 * @param nodeIds `count` node identifiers in winding order
 * @return 1; 0, no face stored, for a count below 1 or fewer than two nodes kept (nodes may
 *   have been added). @since 0.1, slot 44 */
QDL_API int32_t QDL_SetFaceList(QDL_Record *model, int32_t count, const int32_t *nodeIds);

/** Appends an entry of the symmetric generalized stiffness (force length). Entries are never
 * merged. A refused mode leaves an entry that belongs to no mode.
 * @param model handle; null: reported @param modeI,modeJ mode numbers
 * @param value entry (i, j) and (j, i) @return 1 or 0. @since 0.1, slot 64 */
QDL_API int32_t QDL_SetGeneralizedStiffness(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                            double value);

/** Appends an entry of the symmetric generalized mass (mass length^2), as
 * QDL_SetGeneralizedStiffness().
 * @param model handle; null: reported @param modeI,modeJ mode numbers
 * @param value entry (i, j) and (j, i) @return 1 or 0. @since 0.1, slot 63 */
QDL_API int32_t QDL_SetGeneralizedMass(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                       double value);

/** Appends an entry of the symmetric generalized damping (force length time), as
 * QDL_SetGeneralizedStiffness().
 * @param model handle; null: reported @param modeI,modeJ mode numbers
 * @param value entry (i, j) and (j, i) @return 1 or 0. @since 0.1, slot 65 */
QDL_API int32_t QDL_SetGeneralizedDamping(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                          double value);

/** Sets the global mass properties; values that contradict the model's invariants or nodal masses
 * are warned about and stored all the same.
 * @param model handle; null: reported @param mass mass
 * @param centre3 centre of mass, 3 values (length)
 * @param inertia9 inertia about the origin, 9 values (mass length^2), with positive products of
 *   inertia off the diagonal
 * @return 1; 0, nothing stored, for a null array. @since 0.1, slot 22 */
QDL_API int32_t QDL_SetGlobalMass(QDL_Record *model, double mass, const double *centre3,
                                  const double *inertia9);

/** Makes an existing node an interface node; once is enough.
 * @param model handle; null: reported @param nodeId node identifier
 * @return 1; unknown node: 0, silent, nothing added. @since 0.1, slot 50 */
QDL_API int32_t QDL_SetInterfaceNode(QDL_Record *model, int32_t nodeId);

/** Sets the six values of a mode at a node. The first vector of a kind creates its temporary file;
 * values never set or read are zero. Mode number 0 of stress or strain sets the pre-stress or
 * pre-strain of the node instead.
 * @param model handle; null: reported @param modeNumber mode number @param nodeId node identifier
 * @param kind #QDL_ModeKind @param values6 6 values in the units and order of the kind
 * @return 1; 0 for a bad kind (silent), a full mode list or a failing temporary file
 *   (reported). @since 0.1, slot 52 */
QDL_API int32_t QDL_SetModeVec(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                               const double *values6);

/** QDL_SetModeVec() with separate values.
 * @param model handle; null: reported @param modeNumber mode number @param nodeId node identifier
 * @param kind #QDL_ModeKind @param v0,v1,v2,v3,v4,v5 values in the units and order of the kind
 * @return 1 or 0. @since 0.1, slot 53 */
QDL_API int32_t QDL_SetMode(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                            double v0, double v1, double v2, double v3, double v4, double v5);

/** QDL_SetModeVec() for one of the six values; the others stay.
 * @param model handle; null: reported @param modeNumber mode number @param nodeId node identifier
 * @param kind #QDL_ModeKind @param component 0 to 5 @param value value in the units of the kind
 * @return 1; 0, silent, nothing added, for a bad kind or component. @since 0.1, slot 62 */
QDL_API int32_t QDL_SetModeEntry(QDL_Record *model, int32_t modeNumber, int32_t nodeId,
                                 int32_t kind, int32_t component, double value);

/** @} */
/** @defgroup rotor Rotor dynamics
 * @{ */

/** Sets the rotor axis.
 * @param model handle; null: reported @param centre3 point on the axis, 3 values (length)
 * @param vector3 direction, 3 values, stored as given; a change of units scales it like a length
 * @return 1; 0 for a null array. @since 0.1, slot 184 */
QDL_API int32_t QDL_SetRotorDynamicsAxis(QDL_Record *model, const double *centre3,
                                         const double *vector3);

/** Sets one entry of a rotor matrix, which is created with zeros on first use.
 * @param model handle; null: reported
 * @param matrix 0 differential stiffness, 1 circulation, 2 gyroscopic
 * @param rowModeIndex,columnModeIndex mode indices (not numbers)
 * @param value entry; changes of units scale matrices 0 and 2 as force length time^2, matrix 1 as
 *   force length time
 * @return 1; 0, silent, nothing created, for a bad matrix or index. @since 0.1, slot 185 */
QDL_API int32_t QDL_SetRotorDynamicsMatrix(QDL_Record *model, int32_t matrix, int32_t rowModeIndex,
                                           int32_t columnModeIndex, double value);

/** Rotor axis.
 * @param model handle; null: reported @param point receives a point on the axis, 3 values (length)
 * @param direction receives the direction, 3 values
 * @return 1; 0, outputs untouched, without rotor data. @since 0.1, slot 186 */
QDL_API int32_t QDL_RotorDynamicsAxis(QDL_Record *model, double *point, double *direction);

/** Rotor matrix.
 * @param model handle; null: reported @param matrix 0 to 2, see QDL_SetRotorDynamicsMatrix()
 * @param values receives M x M values
 * @return 1; 0, `values` untouched, when that matrix is absent. @since 0.1, slot 187 */
QDL_API int32_t QDL_RotorDynamicsMatrix(QDL_Record *model, int32_t matrix, double *values);

/** @} */
/** @defgroup loads Loads, preload, pre-stress
 * Load cases are numbered from 0; modal and nodal cases are separate lists. Modal loads and the
 * modal preload are generalized forces (force length). Nodal loads are forces (coordinates 1 to 3)
 * and moments (4 to 6). Vectors follow the mode count: missing entries are zero. A processed flag
 * tells that the rigid-body part has been moved onto the body's principal axes.
 * @{ */

/** Sets one value of a modal load case; the cases up to it are created, labelled "Load Case 1",
 * ...
 * @param model handle; null: reported @param loadCase case, not negative (reported)
 * @param modeNumber mode number @param value generalized force
 * @return 1 or 0. @since 0.1, slot 87 */
QDL_API int32_t QDL_SetModalLoad(QDL_Record *model, int32_t loadCase, int32_t modeNumber,
                                 double value);

/** Labels a modal load case; the cases up to it are created.
 * @param model handle; null: reported @param loadCase case, not negative (reported)
 * @param label up to 255 characters, more are cut with a warning; empty or null: the case number
 *   counted from 1 @return 1 or 0. @since 0.1, slot 85 */
QDL_API int32_t QDL_SetModalLoadLabel(QDL_Record *model, int32_t loadCase, const char *label);

/** Appends a nodal load; the nodal cases up to its case are created.
 * @param model handle; null: reported @param loadCase nodal case, not negative (reported)
 * @param nodeId node identifier @param coordinate 1 to 6, else reported and no node added
 * @param value force or force length @return 1 or 0. @since 0.1, slot 90 */
QDL_API int32_t QDL_SetModalLoadNodal(QDL_Record *model, int32_t loadCase, int32_t nodeId,
                                      int32_t coordinate, double value);

/** Sets one value of the modal preload; the first one creates it and clears its processed flag.
 * @param model handle; null: reported @param modeNumber mode number @param value generalized force
 * @return 1; 0 when the mode is refused. @since 0.1, slot 82 */
QDL_API int32_t QDL_SetModalPreload(QDL_Record *model, int32_t modeNumber, double value);

/** Sets the pre-stress of a node. The node joins the node set of the stress modes.
 * @param model handle; null: reported @param nodeId node identifier
 * @param v6 stress tensor, 6 values (force / length^2) @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_SetPreStressVec(QDL_Record *model, int32_t nodeId, const double *v6);

/** Sets the pre-strain of a node. The node joins the node set of the strain modes.
 * @param model handle; null: reported @param nodeId node identifier
 * @param v6 strain tensor with engineering shear, 6 values @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_SetPreStrainVec(QDL_Record *model, int32_t nodeId, const double *v6);

/** The modal preload.
 * @param model handle; null: silent @param count receives M
 * @return new array of M values; null, `count` 0 when there is none. @since 0.1, slot 83 */
QDL_API double *QDL_GetModalPreload(QDL_Record *model, int32_t *count);

/** Tells whether the model has a modal preload.
 * @param model handle; null: silent @return 1 or 0. @since 0.1, slot 84 */
QDL_API int32_t QDL_ModalPreloadExist(QDL_Record *model);

/** Processed flag of the modal preload.
 * @param model handle; null: silent @return the flag; 0 without preload. @since 0.1, slot 135 */
QDL_API int32_t QDL_ModalPreloadProcessed(QDL_Record *model);

/** Sets the processed flag of the modal preload.
 * @param model handle; null: reported @param processed 0 or 1
 * @return 1 or 0. @since 0.1, slot 136 */
QDL_API int32_t QDL_SetModalPreloadProcessed(QDL_Record *model, int32_t processed);

/** Number of modal load cases.
 * @param model handle; null: silent @return the count. @since 0.1, slot 89 */
QDL_API int32_t QDL_GetModalLoadCaseCount(QDL_Record *model);

/** Values of a modal load case.
 * @param model handle; null: silent @param loadCase case @param count receives M
 * @return new array of M values; null, `count` 0 for a bad case. @since 0.1, slot 88 */
QDL_API double *QDL_GetModalLoad(QDL_Record *model, int32_t loadCase, int32_t *count);

/** Label of a modal load case.
 * @param model handle; null: silent @param loadCase case
 * @param label receives 256 characters, padded with zeros; a full label has no terminator
 * @return 1; 0, `label` untouched, for a bad case. @since 0.1, slot 86 */
QDL_API int32_t QDL_GetModalLoadCaseLabel(QDL_Record *model, int32_t loadCase, char *label);

/** Processed flag of a modal load case.
 * @param model handle; null: silent @param loadCase case
 * @return the flag; 0 for a bad case. @since 0.1, slot 129 */
QDL_API int32_t QDL_ModalLoadProcessed(QDL_Record *model, int32_t loadCase);

/** Sets the processed flag of a modal load case.
 * @param model handle; null: reported @param loadCase case @param processed 0 or 1
 * @return 1; 0 for a bad case. @since 0.1, slot 134 */
QDL_API int32_t QDL_SetModalLoadProcessed(QDL_Record *model, int32_t loadCase, int32_t processed);

/** Number of nodal load cases.
 * @param model handle; null: silent @return the count. @since 0.1, slot 91 */
QDL_API int32_t QDL_GetModalLoadNodalCaseCount(QDL_Record *model);

/** Number of entries of a nodal load case.
 * @param model handle; null: silent @param loadCase nodal case
 * @return the count; 0 for a bad case. @since 0.1, slot 92 */
QDL_API int32_t QDL_GetModalLoadNodalCount(QDL_Record *model, int32_t loadCase);

/** Node of a nodal load.
 * @param model handle; null: silent @param loadCase nodal case @param entry zero-based entry
 * @return node identifier; 0 for a bad case or entry. @since 0.1, slot 93 */
QDL_API int32_t QDL_GetModalLoadNodalNode(QDL_Record *model, int32_t loadCase, int32_t entry);

/** Coordinate of a nodal load.
 * @param model handle; null: silent @param loadCase nodal case @param entry zero-based entry
 * @return 1 to 6; 0 for a bad case or entry. @since 0.1, slot 94 */
QDL_API int32_t QDL_GetModalLoadNodalCoord(QDL_Record *model, int32_t loadCase, int32_t entry);

/** Value of a nodal load.
 * @param model handle; null: silent @param loadCase nodal case @param entry zero-based entry
 * @return force or force length; 0.0 for a bad case or entry. @since 0.1, slot 95 */
QDL_API double QDL_GetModalLoadNodalLoad(QDL_Record *model, int32_t loadCase, int32_t entry);

/** @} */
/** @defgroup monitors Monitor points
 * Named output locations with modal operators: 1 displacement, 2 velocity, 3 acceleration, 4 load.
 * Each operator has one row per digit of the point's component and one column per mode; the load
 * operator has as many such matrices, one after another, as the point's load operator count.
 * Points are addressed by a zero-based index; "out of range" includes a null handle. Getters give
 * no message.
 * @{ */

/** Appends a monitor point.
 * @param model handle; null: reported @param type 1 MONPNT1, 2 MONPNT2, 3 MONPNT3, 4 MONDSP1
 * @param resultType 1 displacement, 2 stress, 3 strain, 4 force, 5 general
 * @param component number whose decimal digits are the components (1-3 translational, 4-6
 *   rotational), such as 123 @param loadOperatorCount matrices of the load operator
 * @param location3 position, 3 values (length); null: origin. Files do not hold it: a point that
 *   was read is at the origin @param name up to 8 characters (7 survive in a file); null: empty
 * @param label up to 56 characters (55 survive in a file); null: empty
 * @return index of the point, or -1. @since 0.1, slot 146 */
QDL_API int32_t QDL_SetMonitorPointInfo(QDL_Record *model, int32_t type, int32_t resultType,
                                        int32_t component, int32_t loadOperatorCount,
                                        const double *location3, const char *name,
                                        const char *label);

/** Sets or replaces an operator of a monitor point; all modes must exist by then.
 * @param model handle @param point point index; out of range: reported
 * @param op 1 to 4, else reported
 * @param data rows x M values, for the load operator once per load matrix
 * @return 0; -1 also for no size (allocation message) or null data. @since 0.1, slot 147 */
QDL_API int32_t QDL_SetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op,
                                            const double *data);

/** Number of monitor points.
 * @param model handle @return the count; -1 for null, silent. @since 0.1, slot 148 */
QDL_API int32_t QDL_GetMonitorPointCount(QDL_Record *model);

/** Type of a monitor point.
 * @param model handle @param point point index
 * @return the type; -1 out of range. @since 0.1, slot 149 */
QDL_API int32_t QDL_GetMonitorPointType(QDL_Record *model, int32_t point);

/** Result type of a monitor point.
 * @param model handle @param point point index
 * @return the result type; -1 out of range. @since 0.1, slot 150 */
QDL_API int32_t QDL_GetMonitorPointResultType(QDL_Record *model, int32_t point);

/** Component number of a monitor point.
 * @param model handle @param point point index
 * @return the component number; -1 out of range. @since 0.1, slot 151 */
QDL_API int32_t QDL_GetMonitorPointComponent(QDL_Record *model, int32_t point);

/** Position of a monitor point.
 * @param model handle @param point point index @param location3 receives 3 values (length)
 * @return 0; -1 out of range. @since 0.1 */
QDL_API int32_t QDL_GetMonitorPointLocation(QDL_Record *model, int32_t point, double *location3);

/** Name and label of a monitor point.
 * @param model handle @param point point index
 * @param name9 receives up to 9 characters; may be null
 * @param label57 receives up to 57 characters; may be null
 * @return 0; -1 out of range. @since 0.1, slot 152 */
QDL_API int32_t QDL_GetMonitorPointNameLabel(QDL_Record *model, int32_t point, char *name9,
                                             char *label57);

/** Load operator count of a monitor point.
 * @param model handle @param point point index
 * @return the count; 0 out of range. @since 0.1, slot 154 */
QDL_API int32_t QDL_GetMonitorPointNumLoadOperator(QDL_Record *model, int32_t point);

/** Shape of the operators of a monitor point.
 * @param model handle @param point point index @param rows receives the rows of one matrix
 * @param columns receives M @return 0; -1 out of range, outputs untouched. @since 0.1, slot 153 */
QDL_API int32_t QDL_GetMonitorPointOperatorSize(QDL_Record *model, int32_t point, int32_t *rows,
                                                int32_t *columns);

/** Tells whether a monitor point has an operator.
 * @param model handle @param point point index @param op 1 to 4
 * @return 1, 2, 4 or 8 for a present operator 1, 2, 3 or 4; else 0. @since 0.1, slot 156 */
QDL_API int32_t QDL_MonitorPointHasOperator(QDL_Record *model, int32_t point, int32_t op);

/** Copies an operator of a monitor point.
 * @param model handle @param point point index @param op 1 to 4
 * @param data receives rows x M values, for the load operator once per load matrix
 * @return 0; -1 out of range or absent. @since 0.1, slot 155 */
QDL_API int32_t QDL_GetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op,
                                            double *data);

/** @} */
/** @defgroup operators Matrix operators
 * Named matrices with labelled rows, each a list of tagged column blocks (sub-operators); changes
 * of units leave them alone. Operators and sub-operators are addressed by zero-based
 * indices; "out of range" includes a null handle. Getters give no message.
 * @{ */

/** Appends a matrix operator.
 * @param model handle; null: reported
 * @param name up to 79 characters (7 survive in a file); null: empty
 * @param labels `rows` texts of up to 79 characters; the array or a text may be null: empty
 * @param rows number of rows, not negative
 * @return index of the operator, or -1. @since 0.1, slot 167 */
QDL_API int32_t QDL_SetMatrixOperatorInfo(QDL_Record *model, const char *name,
                                          const char *const *labels, int32_t rows);

/** Appends a sub-operator. An index out of range is reported with the text for monitor points,
 * `Invalid monitor point index: %d.`.
 * @param model handle @param op operator index @param tag up to 7 characters; null: empty
 * @param columns number of columns @param data rows x columns values
 * @return index of the sub-operator; -1 also for no rows or columns (allocation message) or
 *   null data. @since 0.1, slot 168 */
QDL_API int32_t QDL_SetMatrixOperatorData(QDL_Record *model, int32_t op, const char *tag,
                                          int32_t columns, const double *data);

/** Number of matrix operators.
 * @param model handle @return the count; -1 for null, silent. @since 0.1, slot 169 */
QDL_API int32_t QDL_GetMatrixOperatorCount(QDL_Record *model);

/** Name of a matrix operator.
 * @param model handle @param op operator index @param name80 receives up to 80 characters
 * @return 0; -1 out of range. @since 0.1, slot 171 */
QDL_API int32_t QDL_GetMatrixOperatorName(QDL_Record *model, int32_t op, char *name80);

/** Row labels of a matrix operator.
 * @param model handle @param op operator index
 * @param labels80 one buffer per row, each receives up to 80 characters
 * @return 0; -1 out of range. @since 0.1, slot 172 */
QDL_API int32_t QDL_GetMatrixOperatorLabels(QDL_Record *model, int32_t op, char **labels80);

/** Row count of a matrix operator.
 * @param model handle @param op operator index
 * @return the count; -1 out of range. @since 0.1, slot 170 */
QDL_API int32_t QDL_GetMatrixOperatorNumRows(QDL_Record *model, int32_t op);

/** Number of sub-operators of a matrix operator.
 * @param model handle @param op operator index
 * @return the count; 0 out of range. @since 0.1, slot 173 */
QDL_API int32_t QDL_GetMatrixOperatorNumSubOperator(QDL_Record *model, int32_t op);

/** Tag of a sub-operator.
 * @param model handle @param op operator index @param sub sub-operator index
 * @param tag8 receives up to 8 characters @return 0; -1 out of range. @since 0.1, slot 175 */
QDL_API int32_t QDL_GetMatrixOperatorSubTag(QDL_Record *model, int32_t op, int32_t sub, char *tag8);

/** Column count of a sub-operator.
 * @param model handle @param op operator index @param sub sub-operator index
 * @param columns receives the count @return 0; -1 out of range. @since 0.1, slot 174 */
QDL_API int32_t QDL_GetMatrixOperatorSubNumCols(QDL_Record *model, int32_t op, int32_t sub,
                                                int32_t *columns);

/** Copies a sub-operator.
 * @param model handle @param op operator index @param sub sub-operator index
 * @param data receives rows x columns values @return 0; -1 out of range. @since 0.1, slot 176 */
QDL_API int32_t QDL_GetMatrixOperatorSubData(QDL_Record *model, int32_t op, int32_t sub,
                                             double *data);

/** @} */
/** @defgroup units Units
 * A model has four unit names of up to 15 characters: mass, length, time, force. Changing them
 * converts every stored number; mode data is converted when fetched. Unit names are accepted in any
 * case and rewritten to the spelling of the tables; a host that supplies
 * `int QDL_ConvertUnitsLabel(char *label16)` decides about names itself.
 * @{ */

/** Known mass units (to kilogram), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_MassUnits[13];
/** Known force units (to newton), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_ForceUnits[11];
/** Known length units (to metre), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_LengthUnits[14];
/** Known time units (to second), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_TimeUnits[8];

/** Declares the units of a model that has none, or converts the model to other units.
 * @param model handle; null: reported
 * @param mass,length,time,force unit names; characters beyond 15 are ignored
 * @return 1; 0, silent, nothing changed, for a null or unknown name. @since 0.1, slot 13 */
QDL_API int32_t QDL_SetUnits(QDL_Record *model, const char *mass, const char *length,
                             const char *time, const char *force);

/** QDL_SetUnits() with the units whose factors are within 1e-4 (relative) of the given ones.
 * @param model handle; null: reported @param mass,length,time,force SI value of one unit
 * @return 1; 0, nothing changed, when a factor matches no unit. @since 0.1, slot 14 */
QDL_API int32_t QDL_SetUnitsByMultiplierOnSI(QDL_Record *model, double mass, double length,
                                             double time, double force);

/** Unit names of a model; "KILOGRAM", "METER", "SECOND" and "NEWTON" stand for names not set.
 * @param model handle; null: silent, buffers untouched
 * @param mass16,length16,time16,force16 each receives up to 16 characters; may be null
 * @return 1; 0 for null. @since 0.1, slot 15 */
QDL_API int32_t QDL_Units(QDL_Record *model, char *mass16, char *length16, char *time16,
                          char *force16);

/** Factor of a unit to SI.
 * @param name unit name, in any case @param table one of the unit tables
 * @return the factor; 1.0 for a null or empty name; 0.0 for an unknown name or null table.
 *   @since 0.1 */
QDL_API double QDL_UnitsDivider(const char *name, const QDL_UnitEntry *table);

/** Name of the first unit whose factor is within 1e-4 (relative) of the given one.
 * @param factor SI value of one unit @param table one of the unit tables
 * @return name in the table, not to be released; null when nothing matches. @since 0.1 */
QDL_API const char *QDL_UnitsLabel(double factor, const QDL_UnitEntry *table);

/** Converts a mass to kilogram.
 * @param model handle; null: silent @param value mass in the model's unit
 * @return kilogram, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 16 */
QDL_API double QDL_Mass2Kilogram(QDL_Record *model, double value);

/** Converts a length to metre.
 * @param model handle; null: silent @param value length in the model's unit
 * @return metre, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 18 */
QDL_API double QDL_Length2Meter(QDL_Record *model, double value);

/** Converts a time to second.
 * @param model handle; null: silent @param value time in the model's unit
 * @return second, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 19 */
QDL_API double QDL_Time2Second(QDL_Record *model, double value);

/** Converts a force to newton.
 * @param model handle; null: silent @param value force in the model's unit
 * @return newton, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 17 */
QDL_API double QDL_Force2Newton(QDL_Record *model, double value);

/** Unit consistency factor: force time^2 / (length mass) in SI values of the model's units.
 * @param model handle; null: silent
 * @return the factor, 1 for consistent units and for a model without units; 0.0 for null.
 *   @since 0.1, slot 128 */
QDL_API double QDL_UCF(QDL_Record *model);

/** Multiplies values in place by the decimal method of unit changes: exponents and mantissas are
 * multiplied separately, so the last digits differ from a plain product. Denormal values become 0.
 * @param values array of `count` values @param count number of values; below 1: nothing done
 * @param factor factor @return `values`. @since 0.1 */
QDL_API double *QDL_Convert_Units(double *values, int32_t count, double factor);

/** Applies the ratios of the last unit change to every stored number. QDL_SetUnits() does this
 * itself; a further call scales the stored numbers once more, and mode data not at all.
 * @param model handle; null: reported @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_ScaleDatabase(QDL_Record *model);

/** @} */
/** @defgroup transformation Transformation of modes
 *
 * Every function writes the new mode data of a kind to a temporary file of its own before anything
 * changes; on failure the modes are as they were. The file's name is fresh, with the prefix "qdl_"
 * in the directory of temporary files.
 * @{ */

/** Replaces the modes of a kind by linear combinations of themselves: new mode j is the sum of
 * `coefficients[i * newModeCount + j]` times old mode i, added in ascending order of i; a
 * coefficient of exactly 0 adds nothing. Together with the mode shapes (kind 0) every modal inertia
 * invariant that the model or its file holds is carried over. The modal statistics of the kind are
 * forgotten. The number of modes, the eigenvalue table, generalized matrices and loads stay as they
 * are; with fewer new modes than before, the last modes can no longer be fetched. Progress is given
 * to QDL_TimeMonitor and QDL_TimeMonitorStamp where a companion library or the host has them,
 * unless the environment variable ZEB_NO_TIME_MONITOR_STAMP is set.
 * @param model handle; null: reported @param kind #QDL_MODE_SHAPE and so on
 * @param newModeCount number of new modes @param coefficients a row of `newModeCount` values for
 *   each mode in the order of the modes; null: nothing done
 * @return 1, also for a model without modes; 0 for null, another kind, a negative count, and after
 *   a failure, which is reported. @since 0.1 */
QDL_API int32_t QDL_TransformModes(QDL_Record *model, int32_t kind, int32_t newModeCount,
                                   const double *coefficients);

/** Carries the operators of all monitor points over to new modes: every row is multiplied by the
 * matrix.
 * @param model handle; null: reported @param coefficients square, row by row, as for
 *   QDL_TransformModes(); null: nothing done
 * @return 1, or 0 for null. @since 0.1 */
QDL_API int32_t QDL_TransformMonitorPoints(QDL_Record *model, const double *coefficients);

/** Multiplies every mode of a kind by a factor; with the stress or strain modes the pre-stress or
 * pre-strain too, with the mode shapes the modal inertia invariants that the model or its file
 * holds. The modal statistics of the kind are forgotten. Without modes of the kind there is a
 * warning, and only the pre-stress or pre-strain is scaled.
 * @param model handle; null: reported @param kind #QDL_MODE_SHAPE and so on @param factor factor
 * @return 1; 0 for null, another kind and after a failure, which is reported.
 *   @since 0.1, slot 132 */
QDL_API int32_t QDL_ScaleModes(QDL_Record *model, int32_t kind, double factor);

/** Moves the local body reference frame to the centre of the nodal masses, which is subtracted from
 * all node coordinates. Of the global mass data only x of the centre becomes 0. With exactly six
 * rigid-body modes the moments (entries 3 to 5) of the modal preload and of each modal load case
 * are taken about the new origin. The inertia invariants that the model or its file holds follow as
 * by QDL_Translate(), but one that can't stays without an error. Mode shapes stay as they are.
 * Nothing happens where the nodal masses sum up to 0 or their centre is not finite.
 * @param model handle; null: reported
 * @return 1; 0 for null, and where memory is lacking or invariants or mode shapes that they depend
 *   on can't be read: reported, with the model as it was. @since 0.1 */
QDL_API int32_t QDL_ShiftLBRFtoCM(QDL_Record *model);

/** @} */
/** @defgroup invariants Inertia invariants
 * Sums over the nodes (mass m, position r, inertia J, mode translations p and rotations q): 1: m.
 * 2: m r. 3: m p_j. 4: m r x p_j + J^T q_j. 5: m p_i x p_j. 6: the generalized mass. 7: inertia
 * about the origin, m ((r . r) E - r r^T) + J. 8: m ~r ~p_j. 9: m ~p_i ~p_j, where ~a b = a x b. A
 * getter answers with what a setter or the file supplied, else with the sums, for 1, 2 and 7 else
 * with the global mass properties, else with zeros. Where the file has a block that can't be read
 * nothing takes its place: the getter then gives null, that of invariant 1 zero. Setters for modes
 * come after all modes exist.
 * @{ */

/** Sets invariant 1, the total mass.
 * @param model handle; null: reported @param value mass, above 0 (else reported)
 * @return 1 or 0. @since 0.1, slot 4 */
QDL_API int32_t QDL_SetInvar1(QDL_Record *model, double value);

/** Sets invariant 2.
 * @param model handle; null: reported @param v3 3 values (mass length)
 * @return 1 or 0. @since 0.1, slot 5 */
QDL_API int32_t QDL_SetInvar2(QDL_Record *model, const double *v3);

/** Sets invariant 3 of a mode.
 * @param model handle; null: reported @param modeNumber mode number; unknown: reported, not added
 * @param v3 3 values (mass length) @return 1 or 0. @since 0.1, slot 6 */
QDL_API int32_t QDL_SetInvar3(QDL_Record *model, int32_t modeNumber, const double *v3);

/** Sets invariant 4 of a mode.
 * @param model handle; null: reported @param modeNumber mode number; unknown: reported, not added
 * @param v3 3 values (mass length^2) @return 1 or 0. @since 0.1, slot 7 */
QDL_API int32_t QDL_SetInvar4(QDL_Record *model, int32_t modeNumber, const double *v3);

/** Sets invariant 5 of a pair of modes: the values for (i, j), then their negatives for (j, i).
 * Two equal modes ought to have zeros, otherwise a warning is given and the negatives are stored.
 * @param model handle; null: reported
 * @param modeI,modeJ mode numbers; unknown: reported, not added @param v3 3 values (mass length^2)
 * @return 1 or 0. @since 0.1, slot 8 */
QDL_API int32_t QDL_SetInvar5(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *v3);

/** Records that invariant 6 is the identity: appends unit entries to the generalized mass.
 * @param model handle; null: reported @param diagonal M values, each exactly 1.0
 * @return 1, also without modes; 0 at the first other value (reported; entries so far stay).
 *   @since 0.1, slot 9 */
QDL_API int32_t QDL_SetInvar6(QDL_Record *model, const double *diagonal);

/** Sets invariant 7, the inertia tensor about the origin.
 * @param model handle; null: reported
 * @param xx_yy_zz_xy_xz_yz 6 tensor entries (mass length^2); off-diagonal entries are the negated
 *   products of inertia @return 1 or 0. @since 0.1, slot 10 */
QDL_API int32_t QDL_SetInvar7(QDL_Record *model, const double *xx_yy_zz_xy_xz_yz);

/** Sets invariant 8 of a mode.
 * @param model handle; null: reported @param modeNumber mode number; unknown: reported, not added
 * @param m9 3 x 3 values (mass length^2) @return 1 or 0. @since 0.1, slot 11 */
QDL_API int32_t QDL_SetInvar8(QDL_Record *model, int32_t modeNumber, const double *m9);

/** Sets invariant 9 of a pair of modes: the matrix for (i, j) and its transpose for (j, i). Two
 * equal modes ought to have a symmetric matrix, otherwise a warning is given and the lower
 * triangle wins.
 * @param model handle; null: reported
 * @param modeI,modeJ mode numbers; unknown: reported, not added
 * @param m9 3 x 3 values (mass length^2) @return 1 or 0. @since 0.1, slot 12 */
QDL_API int32_t QDL_SetInvar9(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *m9);

/** Invariant 1, the total mass.
 * @param model handle; null: reported
 * @return mass; 0.0 when nothing is known, the file's block can't be read or memory runs out.
 *   @since 0.1, slot 114 */
QDL_API double QDL_Invar1(QDL_Record *model);

/** Invariant 2.
 * @param model handle; null: reported
 * @return new array of 3 values (mass length); null on failure and where the file's block can't be
 *   read. @since 0.1, slot 115 */
QDL_API double *QDL_Invar2(QDL_Record *model);

/** Invariant 3: for each mode its first moment.
 * @param model handle; null: reported
 * @return new array of 3 x M values (mass length), component c of mode index j at c * M + j; null
 * without modes and where the file's block can't be read. @since 0.1, slot 116 */
QDL_API double *QDL_Invar3(QDL_Record *model);

/** Invariant 4: for each mode its angular moment about the origin.
 * @param model handle; null: reported
 * @return new array of 3 x M values (mass length^2), component c of mode index j at c * M + j; null
 * without modes and where the file's block can't be read. @since 0.1, slot 117 */
QDL_API double *QDL_Invar4(QDL_Record *model);

/** Invariant 5 of one mode with every mode. Derived together with invariant 9: getting either one
 * from the nodes replaces the other, whatever it was, and takes one walk through all modes.
 * @param model handle; null: reported @param mode_index index k of the first mode
 * @return new array of 3 x M values (mass length^2), component c of the pair (k, j) at c * M + j;
 * null without modes, for an index outside them and where the file's block can't be read.
 * @since 0.1, slot 118 */
QDL_API double *QDL_Invar5(QDL_Record *model, int32_t mode_index);

/** Invariant 6, the full generalized mass as QDL_GenMassFull() gives it.
 * @param model handle; null: reported
 * @return new array of M x M values (mass length^2); null without modes. @since 0.1, slot 119 */
QDL_API double *QDL_Invar6(QDL_Record *model);

/** Invariant 7, the inertia tensor about the origin.
 * @param model handle; null: reported
 * @return new array of 3 x 3 values (mass length^2); null on failure and where the file's block
 *   can't be read. @since 0.1, slot 120 */
QDL_API double *QDL_Invar7(QDL_Record *model);

/** Invariant 8 of one mode.
 * @param model handle; null: reported @param mode_index index of the mode
 * @return new array of 3 x 3 values (mass length^2); null without modes, for an index outside them,
 * where the file's block can't be read and, reported, without nodes to sum over.
 * @since 0.1, slot 121 */
QDL_API double *QDL_Invar8(QDL_Record *model, int32_t mode_index);

/** Invariant 9 of a pair of modes; that of the pair in reverse order is its transpose. See
 * QDL_Invar5().
 * @param model handle; null: reported @param index_i,index_k indices of the two modes
 * @return new array of 3 x 3 values (mass length^2); null without modes, for an index outside them
 * and where the file's block can't be read. @since 0.1, slot 122 */
QDL_API double *QDL_Invar9(QDL_Record *model, int32_t index_i, int32_t index_k);

/** Obtains invariants 1, 2, 3, 4, 7 and 8, which the getters then answer at once; the information
 * "Computing fast set of invariants" is given. Without nodal masses, and with some of them neither
 * supplied nor in the file, the error "There is insufficient mass data to compute a partial set of
 * mass invariants.\\nSome or all mass invariants will be set to zero." comes before it. A mode that
 * can't be read is reported and counts as zero.
 * @param model handle; null: reported. @since 0.1 */
QDL_API void QDL_FastComputeInvars(QDL_Record *model);

/** The same for all invariants, with "Computing *all* invariants" and "There is insufficient mass
 * data to compute a full set of mass invariants.\\nSome or all mass invariants will be set to
 * zero." Takes time in proportion to nodes times the square of the modes.
 * @param model handle; null: reported. @since 0.1 */
QDL_API void QDL_FullComputeInvars(QDL_Record *model);

/** The same for invariants 1, 2, 3 and 7, with "Computing *rigid* invariants"; the error is that of
 * the full set, and modes are not asked for.
 * @param model handle; null: reported. @since 0.1 */
QDL_API void QDL_RigidComputeInvars(QDL_Record *model);

/** acc += s ~a ~b, where ~a b = a x b.
 * @param acc 3 x 3 values @param s factor @param a,b vectors of 3 values; a null array: nothing is
 * done. @since 0.1 */
QDL_API void incr_scalar_tilde_tilde(double acc[9], double s, const double a[3], const double b[3]);

/** acc += s (a x b).
 * @param acc 3 values @param s factor @param a,b vectors of 3 values; a null array: nothing is
 * done. @since 0.1 */
QDL_API void incr_scalar_tilde_vec(double acc[3], double s, const double a[3], const double b[3]);

/** @} */
/** @defgroup generalized Generalized matrices, statistics, rigid-body modes
 * Symmetric matrices as lists of entries (row and column are mode indices; an off-diagonal entry
 * stands for both places). Without stored entries stiffness and mass are diagonal, from the
 * eigenvalue table. Units: stiffness force length, mass mass length^2, damping force length time.
 * Entries outside a matrix are skipped; of several entries for one place the last is taken.
 * @{ */

/** Number of generalized stiffness entries.
 * @param model handle; null: silent
 * @return stored entries, or M when none are stored. @since 0.1, slot 66 */
QDL_API int32_t QDL_NumberOfGenStiff(QDL_Record *model);

/** Number of generalized mass entries.
 * @param model handle; null: silent
 * @return stored entries, or M when none are stored. @since 0.1, slot 70 */
QDL_API int32_t QDL_NumberOfGenMass(QDL_Record *model);

/** Number of generalized damping entries.
 * @param model handle; null: silent @return stored entries. @since 0.1, slot 75 */
QDL_API int32_t QDL_NumberOfGenDamp(QDL_Record *model);

/** Tells whether the model has generalized damping.
 * @param model handle; null: silent @return 1 or 0. @since 0.1, slot 74 */
QDL_API int32_t QDL_GenDampExist(QDL_Record *model);

/** Entries of the generalized stiffness.
 * @param model handle; null: silent @param values receives QDL_NumberOfGenStiff() values
 * @param rows,columns receive as many mode indices @return 1; 0 for null. @since 0.1, slot 69 */
QDL_API int32_t QDL_GenStiffSparse(QDL_Record *model, double *values, int32_t *rows,
                                   int32_t *columns);

/** Entries of the generalized mass.
 * @param model handle; null: silent @param values receives QDL_NumberOfGenMass() values
 * @param rows,columns receive as many mode indices @return 1; 0 for null. @since 0.1, slot 72 */
QDL_API int32_t QDL_GenMassSparse(QDL_Record *model, double *values, int32_t *rows,
                                  int32_t *columns);

/** Entries of the generalized damping.
 * @param model handle; null: silent @param values receives QDL_NumberOfGenDamp() values
 * @param rows,columns receive as many indices
 * @return 1; 0 for null or without damping. @since 0.1, slot 77 */
QDL_API int32_t QDL_GenDampSparse(QDL_Record *model, double *values, int32_t *rows,
                                  int32_t *columns);

/** Generalized stiffness as a full matrix.
 * @param model handle; null: silent @param matrix receives n x n values @param n order, usually M
 * @return 1; 0 and zeros without any entry; 0 for null. @since 0.1, slot 68 */
QDL_API int32_t QDL_GenStiffFull(QDL_Record *model, double *matrix, int32_t n);

/** Generalized mass as a full matrix.
 * @param model handle; null: silent @param matrix receives n x n values @param n order, usually M
 * @return 1; 0 and zeros without any entry; 0 for null. @since 0.1, slot 73 */
QDL_API int32_t QDL_GenMassFull(QDL_Record *model, double *matrix, int32_t n);

/** Generalized damping as a full matrix.
 * @param model handle; null: silent @param matrix receives n x n values @param n order, usually M
 * @return 1; 0 and zeros without any entry; 0 for null. @since 0.1, slot 78 */
QDL_API int32_t QDL_GenDampFull(QDL_Record *model, double *matrix, int32_t n);

/** Generalized stiffness of selected modes.
 * @param model handle; null: silent @param matrix n rows of n values each @param n selected modes
 * @param mode_numbers n mode numbers, ascending; entries of other modes are dropped
 * @return 1; 0 without any entry or for null. @since 0.1, slot 67 */
QDL_API int32_t QDL_GenStiffSelected(QDL_Record *model, double **matrix, int32_t n,
                                     const int32_t *mode_numbers);

/** Generalized mass of selected modes.
 * @param model handle; null: silent @param matrix n rows of n values each @param n selected modes
 * @param mode_numbers n mode numbers, ascending; entries of other modes are dropped
 * @return 1; 0 without any entry or for null. @since 0.1, slot 71 */
QDL_API int32_t QDL_GenMassSelected(QDL_Record *model, double **matrix, int32_t n,
                                    const int32_t *mode_numbers);

/** Tells whether the model holds modal statistics (block 30 of a file).
 * @param model handle; null: silent @return 1 or 0. @since 0.1, slot 96 */
QDL_API int32_t QDL_ModalStatisticsExist(QDL_Record *model);

/** Largest nodal displacement of a mode, as stored or found by search (the first of equal nodes).
 * @param model handle; null: reported @param mode_number mode number
 * @param node_id receives the node identifier, 0 for a mode that is zero; may be null
 * @param value receives the length; may be null
 * @return 1; 0 for an unknown mode, unreadable data or stored statistics of another mode count
 *   (reported). @since 0.1, slot 97 */
QDL_API int32_t QDL_GetMaxModeDisplacement(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                           double *value);

/** Largest nodal rotation of a mode; otherwise as QDL_GetMaxModeDisplacement().
 * @param model handle; null: reported @param mode_number mode number
 * @param node_id receives the node identifier; may be null
 * @param value receives the rotation in radians; may be null
 * @return 1 or 0. @since 0.1, slot 98 */
QDL_API int32_t QDL_GetMaxModeRotation(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                       double *value);

/** Largest von Mises stress of a mode; otherwise as QDL_GetMaxModeDisplacement().
 * @param model handle; null: reported @param mode_number mode number
 * @param node_id receives the node identifier; may be null
 * @param value receives the stress (force / length^2); may be null
 * @return 1 or 0. @since 0.1, slot 99 */
QDL_API int32_t QDL_GetMaxVonMisesStress(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                         double *value);

/** Largest von Mises strain of a mode; otherwise as QDL_GetMaxModeDisplacement().
 * @param model handle; null: reported @param mode_number mode number
 * @param node_id receives the node identifier; may be null
 * @param value receives the strain; may be null @return 1 or 0. @since 0.1, slot 100 */
QDL_API int32_t QDL_GetMaxVonMisesStrain(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                         double *value);

/** Number of rigid-body modes. With more than six modes: those of the first six whose frequency is
 * at most QDL_RIGID_BODY_THRESHOLD, by default 0.001 max(1, frequency of the seventh mode). With
 * six or fewer: the modes before the last jump in frequency.
 * @param model handle; null: silent @return 0 to 6. @since 0.1, slot 123 */
QDL_API int32_t QDL_RigidBodyModeCount(QDL_Record *model);

/** Tells how much of the six rigid motions of the body (translations along x, y and z, rotations
 * about them through the origin) the translations of the first modes carry: the projection
 * (motion . mode) / (mode . mode), weighted with the nodal masses. What is not above 1e-10 is 0.
 * @param model handle; null: reported @param table six rows, one per motion, of `n` values each
 * @param n modes to project; below 1: nothing to do, success
 * @return 1; 0 without nodes (reported as missing memory) or for a mode that can't be read
 *   (reported). @since 0.1 */
QDL_API int32_t QDL_RigidModes2KORVO(QDL_Record *model, double **table, int32_t n);

/** Moves the generalized damping onto the axes of rigid-body motion: the first r modes, which are
 * rigid (QDL_RigidBodyModeCount()), are replaced by the six axes. Entries then have the indices 0
 * to 5 for the axes and 6 + f for mode index r + f; those not above 1e-10 are left out. Nothing
 * happens without damping or when it was done before.
 * @param model handle; null: reported
 * @return 1; 0 with the damping as it was when a mode can't be read (reported). @since 0.1,
 *   slot 125 */
QDL_API int32_t QDL_DampingOnPrincipalAxes(QDL_Record *model);

/** Generalized damping of the axes of rigid-body motion and of selected modes, after
 * QDL_DampingOnPrincipalAxes(). Selected rigid modes are warned about. With coupled modes, whose
 * generalized stiffness or mass has entries off the diagonal, a warning says that the damping
 * counts as that of modes behind six rigid ones.
 * @param model handle; null: silent @param matrix n + 6 rows of n + 6 values each
 * @param n selected modes, may be 0
 * @param mode_numbers n mode numbers, ascending; entries of other modes are dropped
 * @return 1; 0 and zeros without damping or when it can't be moved; 0 for null. @since 0.1,
 *   slot 76 */
QDL_API int32_t QDL_GenDampPrincipalAndSelected(QDL_Record *model, double **matrix, int32_t n,
                                                const int32_t *mode_numbers);

/** Replaces the rigid-body part of the modal preload and of every modal load, each once, by the
 * force and the moment about the origin that it stands for: they take the first six entries, also
 * when fewer modes are rigid, which is warned about. Values not above 1e-10 become 0. A preload
 * with a rigid-body part is warned about. The masses are those of the nodes; without nodal masses,
 * or with ZEB_MFORCE_NO_FEA_MASS set, the motion of each rigid mode is fitted to its nodes and the
 * momentum is that of the body with its total mass, centre and inertia.
 * A failure is reported; the vectors then stay unprocessed. So does, unreported, a vector whose
 * force or moment is not finite.
 * @param model handle; null: reported. @since 0.1, slot 124 */
QDL_API void QDL_RigidBodyForcesOnPrincipalAxes(QDL_Record *model);

/** Adds the generalized masses that couple the modes numbered 1 to p with those numbered p + 1 to
 * p + q, at both places, from the nodal masses and inertias. A mode that can't be read (reported)
 * gets zeros.
 * @param model handle; null: reported @param normal_modes p
 * @param additional_modes q; p + q other than M: reported
 * @return 1; 0 for another number of modes. @since 0.1, slot 112 */
QDL_API int32_t QDL_AnsysAddGenMass(QDL_Record *model, int32_t normal_modes,
                                    int32_t additional_modes);

/** @} */
/** @defgroup dense Eigen solver and dense algebra
 * The eigenproblem A x = lambda B x of two real square matrices, which need neither be symmetric
 * nor definite, is solved in four stages, called in the order QDL_QZHESS(), QDL_QZITT(),
 * QDL_QZVALL(), QDL_QZVECC() with the same arrays. Their arguments are passed by address and no
 * pointer is checked. Matrices are stored column by column: element (i, j), counted from one, is
 * at (j - 1) * nm + i - 1. `nm` is the leading dimension, `n` (at most `nm`) the order; below 1
 * nothing is done. With `matz` 0 there will be no eigenvectors, and `z` is not used: may be null.
 * @{ */

/** Unit roundoff: halves a value until adding it to 1 makes no difference.
 * @param x where to start, usually 1; receives the result
 * @return the result; from 1 on 2^-53. Not above 0: `x` as it is. @since 0.1 */
QDL_API double EIGPSN(double *x);

/** First stage: makes A upper Hessenberg and B upper triangular.
 * @param nm leading dimension @param n order @param a,b matrices, overwritten
 * @param matz not 0: collect the transformations @param z receives them. @since 0.1 */
QDL_API void QDL_QZHESS(const int32_t *nm, const int32_t *n, double *a, double *b,
                        const int32_t *matz, double *z);

/** Second stage: makes A quasi-triangular, with blocks of order one and two on its diagonal.
 * @param nm leading dimension @param n order
 * @param a,b matrices of the first stage, overwritten; element (n, 1) of B receives the size below
 *   which elements of B count as zero, which the next stages need
 * @param eps1 relative size below which elements count as zero; not above 0: the unit roundoff
 * @param matz as in the first stage @param z transformations so far, updated
 * @param ierr receives 0, or the one-based index of the eigenvalue being sought when the limit of
 *   30 n steps was reached (at once for n above 2 and values that are not finite). @since 0.1 */
QDL_API void QDL_QZITT(const int32_t *nm, const int32_t *n, double *a, double *b,
                       const double *eps1, const int32_t *matz, double *z, int32_t *ierr);

/** Third stage: eigenvalues (alfr + i alfi) / beta, in no particular order; those of a diagonal
 * pair keep their order.
 * @param nm leading dimension @param n order @param a,b matrices of the second stage, overwritten
 * @param alfr,alfi receive n values; of a complex pair the positive imaginary part comes first
 * @param beta receives n values, none negative; 0 stands for an infinite eigenvalue
 * @param matz as in the first stage @param z transformations so far, updated. @since 0.1 */
QDL_API void QDL_QZVALL(const int32_t *nm, const int32_t *n, double *a, double *b, double *alfr,
                        double *alfi, double *beta, const int32_t *matz, double *z);

/** Last stage: eigenvectors, the component of largest modulus being of modulus 1.
 * @param nm leading dimension @param n order @param a,b matrices of the third stage; B is
 *   overwritten @param alfr,alfi,beta eigenvalues of the third stage
 * @param z transformations of the three stages; receives the vector of eigenvalue j in column j,
 *   for a complex pair real and imaginary parts of the first one's in its two columns. @since 0.1
 */
QDL_API void QDL_QZVECC(const int32_t *nm, const int32_t *n, double *a, double *b,
                        const double *alfr, const double *alfi, const double *beta, double *z);

/** LU factors of a matrix, with row exchanges for the largest pivot.
 * @param matrix n rows of n values; receives L below the diagonal (its own, all ones, is not
 *   stored) and U on and above it
 * @param n order; below 1: nothing done
 * @param permutation receives for each row of the factors the index of the matrix's row
 * @return 1; 0 when a pivot is exactly zero, for n above 1. @since 0.1 */
QDL_API int32_t QDL_LUPDecomposition(double **matrix, int32_t n, int32_t *permutation);

/** Solves a linear system.
 * @param factors,permutation results of QDL_LUPDecomposition()
 * @param n order; below 1: nothing done
 * @param rhs right-hand side, n values; receives the solution @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_LUPSolve(double **factors, int32_t n, const int32_t *permutation, double *rhs);

/** Inverts a matrix.
 * @param factors,permutation results of QDL_LUPDecomposition(); the factors become the inverse
 * @param n order; below 1: nothing done @return 1; 0, nothing changed. @since 0.1 */
QDL_API int32_t QDL_LUPInvert(double **factors, int32_t n, const int32_t *permutation);

/** @} */
/** @defgroup orthonormal Orthonormal modes
 * New modes in place of the present ones: orthogonal with respect to generalized mass and
 * stiffness, of unit generalized mass, in ascending order of eigenvalue. New mode k is the sum over
 * the present modes a of t[a][k] times mode a, where t is the matrix of QDL_Transformation().
 * @{ */

/** Makes the modes orthonormal.
 *
 * With generalized stiffness or mass entries the eigenproblem of these matrices is solved. Modes,
 * stress and strain modes, monitor points, loads, preload and invariants are carried over to the
 * new modes (forces already on the principal axes of the body stay), modes are numbered from 1, the
 * eigenvalue table is made anew and the entries are discarded; generalized damping is not
 * transformed. Modes of infinite eigenvalue (singular mass) are dropped; an eigenvalue that is not
 * real loses its imaginary part. Both are warned about, and all eigenvalues reported.
 *
 * Without such entries the modes stay what they are, and the transformation becomes the identity if
 * there is none; where QDL_SetShouldMassNormalizeModes() asks for it, modes of another generalized
 * mass than 1 are scaled.
 * @param model handle; null: reported
 * @return 1; 0 for null, without modes, for entries that are not finite, and when modes can't be
 *   read or written or memory runs out. The model is unchanged then. @since 0.1 */
QDL_API int32_t QDL_OrthoNormalize(QDL_Record *model);

/** Makes the eigenvalue table anew from diagonal generalized stiffness and mass, as
 * build_eigenvalue_table() does. A table without any such entries is kept.
 * @param model handle; null: reported @return 1; 0 for null or without memory. @since 0.1, slot 131
 */
QDL_API int32_t QDL_RebuildEigenvalues(QDL_Record *model);

/** Makes the eigenvalue table from diagonal generalized stiffness and mass, numbers the modes from
 * 1 and discards the entries; nothing where there is a table. A generalized mass of at most 1e-15
 * is warned about and gets the eigenvalue 1.2345e20; an entry off the diagonal is an error for
 * every mode behind it, whose mass is then taken to be 0. Unless mass normalization is requested
 * the stored masses become 1.
 * @param model handle; null: reported @return 1; 0 for null or without memory. @since 0.1 */
QDL_API int32_t build_eigenvalue_table(QDL_Record *model);

/** Scales the entries of the eigenvalue table to a generalized mass of 1, but for masses that are
 * not positive and finite. Modes are left alone.
 * @param model handle; null: reported
 * @param scales receives a new array of M values that the modes are to be divided by
 * @return 1; 0 and a null array for null or without memory. @since 0.1 */
QDL_API int32_t mass_normalize_modes(QDL_Record *model, double **scales);
/** @} */
/** @defgroup motion Rigid transformations and renumbering
 * Moving a body with everything that belongs to it. Matrices are 3 x 3, row by row. Turning a body
 * by a matrix M takes every vector v to M^T v and every tensor T to M^T T M: node coordinates,
 * nodal inertias, centre and inertia of the global mass properties, mode shapes, modal stress and
 * strain with pre-stress and pre-strain, and every inertia invariant that the model holds or its
 * file has. Under a mirror the rotations of mode shapes keep the sense of turning, so they are
 * negated as well; so are invariants 4 and 5 as the library computes them and 4 where the model has
 * nodal masses. Invariants 5 and, without nodal masses, 4 from a setter or a file are turned like
 * other vectors: their sign is then that of a body that was not mirrored. Loads, faces (whose
 * normals point inwards after a mirror), monitor points and the rotor axis stay as they are.
 *
 * A zero vector, and a component, angle or distance that is not finite, make a function fail
 * without a message; so does a null array. A failure to read or write mode data is reported. The
 * model is then as it was.
 * @{ */

/** C = A B. C may be A or B. @param A,B,C 3 x 3 matrices; any null: nothing happens. @since 0.1 */
QDL_API void Matrix_Multiply(const double *A, const double *B, double *C);

/** v = s (M^T v). @param v 3 values, in place @param M 3 x 3 matrix; any null: nothing happens
 * @param s any integer factor. @since 0.1 */
QDL_API void Vector_Transform(double *v, const double *M, int32_t s);

/** T = M^T T M. @param T 3 x 3 values, in place @param M 3 x 3 matrix; any null: nothing happens
 * @param s -1 negates the result, anything else does not. @since 0.1 */
QDL_API void Tensor_Transform(double *T, const double *M, int32_t s);

/** v = v + d. @param v 3 values, in place @param d 3 values; any null: nothing happens.
 * @since 0.1 */
QDL_API void Move_Vector(double *v, const double *d);

/** Mirrors the body in the plane through the origin.
 * @param model handle; null: reported @param normal of the plane, any length @return 1 or 0.
 *   @since 0.1 */
QDL_API int32_t QDL_Mirror_Origin(QDL_Record *model, const double *normal);

/** Mirrors the body in a plane. A point of the plane at a distance above 5e-11 from the plane's
 * parallel through the origin makes QDL_Translate()'s changes too, with its messages.
 * @param model handle; null: reported @param normal of the plane, any length
 * @param point of the plane (length) @return 1; 0 also as QDL_Translate(). @since 0.1, slot 157 */
QDL_API int32_t QDL_Mirror(QDL_Record *model, const double *normal, const double *point);

/** Turns the body about an axis through the origin by the NEGATIVE angle under the right-hand rule:
 * this re-expresses the body in a frame turned by the angle. QDL_Rotate() has the opposite sense.
 * @param model handle; null: reported @param axis direction of any length @param angleDeg degrees
 * @param R takes the matrix M (9 values), or null @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_Rotate_Origin(QDL_Record *model, const double *axis, double angleDeg,
                                  double *R);

/** Turns the body about an axis by the angle under the right-hand rule. An axis that misses the
 * origin makes QDL_Translate()'s changes too, with its messages.
 * @param model handle; null: reported @param axis direction of any length
 * @param point of the axis (length) @param angleDeg degrees
 * @return 1; 0 also as QDL_Translate(). @since 0.1, slot 158 */
QDL_API int32_t QDL_Rotate(QDL_Record *model, const double *axis, const double *point,
                           double angleDeg);

/** Moves the body. The global mass properties are brought up to date with invariants 1, 2 and 7
 * first, as by QDL_CalculateGlobalMassFromNodeMass(). Invariants that the library computed follow
 * exactly. Of those that a setter or a file supplied, 2, 4 and 7 are summed anew over the nodal
 * masses, which are not the whole body's in a file whose writer discarded nodes; 8, or 4 without
 * nodal masses, follow with the help of invariant 3. Where something is missing an error is
 * reported for each and the invariant stays, while everything else is moved.
 * @param model handle; null: reported @param direction any length @param distance length
 * @return 1; 0 also when an invariant stays behind. @since 0.1, slot 159 */
QDL_API int32_t QDL_Translate(QDL_Record *model, const double *direction, double distance);

/** Gives the interface nodes new identifiers, in their order. A node that has such an identifier
 * gets the interface node's in exchange. Entries that refer to no node are passed over.
 * @param model handle; null: reported @param count number of identifiers; those beyond the
 *   interface nodes are ignored (warning); interface nodes beyond them keep theirs
 * @param ids identifiers, any values
 * @return 1; 0 for a null array, unless count is 0 or less. @since 0.1, slot 160 */
QDL_API int32_t QDL_RenumberInterfaceNodes(QDL_Record *model, int32_t count, const int32_t *ids);

/** Adds an offset to every node identifier.
 * @param model handle; null: reported @param offset any value
 * @return 1; 0 without changes or a message when an identifier would fall below 1 or overflow.
 *   @since 0.1, slot 161 */
QDL_API int32_t QDL_RenumberNodes(QDL_Record *model, int32_t offset);

/** @} */
/** @defgroup pruning Removing inner nodes
 * @{ */

/** Removes the inner faces and then every node that the geometry does not use:
 * QDL_StripCommonFaces(), then QDL_DiscardUnreferencedNodes(). Does nothing once the faces have
 * been stripped, by whichever function.
 * @param model handle; null: reported @return whether the faces have been stripped: 1, also when
 *   nodes could not be discarded. @since 0.1, slot 48 */
QDL_API int32_t QDL_RemoveInternalGeometry(QDL_Record *model);

/** Discards every node that is none of QDL_GeometryNodes(), with its share of mode data, nodal
 * masses and inertias, pre-stress and pre-strain. The others keep their order; node indices
 * change. Each rewritten kind of mode data is told as information. Stress or strain modes that lose
 * all their nodes are dropped, with a warning, and so is a pre-stress or pre-strain.
 * Inertia invariants and global mass properties are those of the whole body: they are not changed,
 * but what is not known yet would be computed from the nodes that are left.
 * OXR_A2A_BDF2SHL_PID set: mode shapes that can't be rewritten are lost instead of making the
 * function fail.
 * @param model handle; null: reported
 * @return 1; 0 with nothing changed when mode data can't be read or written (reported).
 *   @since 0.1 */
QDL_API int32_t QDL_DiscardUnreferencedNodes(QDL_Record *model);

/** Expresses the model in another frame and other modes. Nodal masses and inertias are multiplied
 * by the factor; the mode data of all kinds is combined; the origin is subtracted from the centre
 * of mass and the node coordinates, which are then turned by the matrix. Directions in mode data
 * and nodal inertias are not turned, generalized matrices not changed. What is known of invariants
 * and maxima is forgotten, blocks of the file included.
 * @param model handle; null: reported @param origin 3 values (length); null: not moved
 * @param newModeCount number of modes afterwards, 0 or more
 * @param massFactor factor of nodal masses and inertias
 * @param coeff M x newModeCount coefficients, row by row, a column for each new mode; null: mode
 *   data stays, and the mode count only ever shrinks
 * @param rotation 3 x 3 matrix, used as by Vector_Transform(); null: not turned
 * @return 1; 0 with nothing changed. @since 0.1, slot 165 */
QDL_API int32_t QDL_PermuteQDL(QDL_Record *model, const double *origin, int32_t newModeCount,
                               double massFactor, const double *coeff, const double *rotation);

/** Empties the eigenvalue table, the mode-shape transformation and the generalized stiffness, mass
 * and damping, and lowers the presence flags of nodal masses and inertias, so that they can be set
 * anew.
 * @param model handle; null: reported @return 1 or 0. @since 0.1, slot 166 */
QDL_API int32_t QDL_PreprocessKVTQDL(QDL_Record *model);

/** @} */
/** @defgroup files Files
 * Blocks are addressed by their index, 0 to 36: one less than their number in the format.
 * @{ */

/** Checks a handle for null.
 * @param model handle; null: reported @return 1 or 0. @since 0.1 */
QDL_API int32_t CheckQDL(QDL_Record *model);

/** Tells whether the model holds the data of a block.
 * @param model handle; null: reported @param index block index
 * @return 1 for indices 0 to 2, the presence byte for 3 to 36, else 0. @since 0.1, slot 126 */
QDL_API int32_t QDL_Exists(QDL_Record *model, int32_t index);

/** Moves the model's file to the start of a block.
 * @param model handle; null: reported @param index block index
 * @return 1; 0 without moving when there is no file or no such block in it. @since 0.1 */
QDL_API int32_t QDL_goto_block(QDL_Record *model, int32_t index);

/** Size of a block in the model's file.
 * @param model handle; null: reported @param index block index
 * @return bytes; 0 for an absent block, one that can't be measured, and index 36. Without a
 *   file 4, 544 and 100 for indices 0 to 2. @since 0.1 */
QDL_API int64_t QDL_size_of_block(QDL_Record *model, int32_t index);

/** Reads a QDL file into a new, empty model, which from then on owns the stream and closes it when
 * it ends. Mode data stays in the file.
 * @param model handle, new from QDL_Create(); null: reported
 * @param stream file opened with File_Open() in mode "rb"; null: "Not a valid QDL format."
 * @param fileName name to keep, for QDL_FindQDL(); null: none
 * @return 1; 0 after a message, the caller then ends the model. @since 0.1 */
QDL_API int32_t QDL_ReadQDL(QDL_Record *model, FILE *stream, const char *fileName);

/** Reads the generalized stiffness from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedStiffness(QDL_Record *model);

/** Reads the generalized mass from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedMass(QDL_Record *model);

/** Reads the generalized damping from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedDamping(QDL_Record *model);

/** Writes the model to a file, as the words of ZEB_QDLWRITE_OPTIONS say (found anywhere in the
 * text, case-sensitive). By default the modes are orthonormalized and the file has version 60, XDR
 * encoding and double precision. In the order in which they act:
 * - Edits: `lbrf2cm` QDL_ShiftLBRFtoCM(), without which there is no file, `sketch(FILE)`
 *   QDL_SketchGrid(), `strip_face` QDL_StripCommonFaces(), `coarsen(ARGUMENTS)` QDL_TrimGeometry().
 * - Form: `single`: single precision. `no_xdr`: native encoding. `full_str`: version 41, stress and
 *   strain at every node; with `single` 51, with `no_xdr` 40, with both 50. `82_comp`, `81_comp`:
 *   version 20, 10. `sparse_str` (the default) fails together with `full_str`, `82_comp` or
 *   `81_comp`; `single` and the invariants fail with the last two.
 * - Modes: QDL_OrthoNormalize(), then the modes between the frequencies of `highpass(F)` and
 *   `lowpass(F)` alone, numbered from 1. `no_ortho`: all modes as they are, with generalized
 *   stiffness and mass in place of eigenvalues.
 * - Invariants: `full_invar` all of them, `fast_invar` without 5 and 9. With either, and where the
 *   model has invariant 3 already, loads and damping are brought to principal axes, nodes that the
 *   geometry does not use are dropped and the global mass properties come from the invariants.
 * - `empty`: no modes; geometry, masses, units, interface nodes and rigid invariants alone.
 * - `MKS`: the model is converted to KILOGRAM, METER, SECOND, NEWTON.
 *
 * Writing edits the model where these functions do; the edits stay also when it fails.
 * @param model handle; null: reported
 * @param path output file; refused when it is the file the model was read from, under any name
 * @return 1; 0 after a message, no file is left behind. @since 0.1, slot 101 */
QDL_API int32_t QDL_write_QDL(QDL_Record *model, const char *path);

/** Prints one block of the model, as it stands in memory, for people to read.
 * @param model handle; null: reported
 * @param blockId 1 to 37; others, and 33, only flush the stream
 * @param stream open for writing; null: nothing happens. @since 0.1, slot 113 */
QDL_API void QDL_Contents(QDL_Record *model, int32_t blockId, FILE *stream);

/** Solver-database export, which this library does not have: always reports an error.
 * @param model handle; null: reported @param path not used @return 0. @since 0.1, slot 102 */
QDL_API int32_t QDL_write_DB(QDL_Record *model, const char *path);

/** Opens a file by its UTF-8 name.
 * @param name path @param mode as for fopen
 * @return stream, to be closed with fclose; null on failure, no message. @since 0.1 */
QDL_API FILE *File_Open(const char *name, const char *mode);

/** Tells whether a text goes beyond ASCII.
 * @param text text, or null @return 1 when a byte is 128 or above, else 0. @since 0.1 */
QDL_API int32_t is_utf8_included(const char *text);

/** Converts UTF-8 to UTF-16; malformed sequences become U+FFFD.
 * @param text text, or null
 * @return new array with a terminating 0; null for null or when memory runs out. @since 0.1 */
QDL_API uint16_t *get_unicode_from_utf8(const char *text);

/** Moves the position of a stream, with 64-bit offsets on every platform.
 * @param stream stream @param offset bytes
 * @param whence 0 from the start, 1 from the current position, 2 from the end
 * @return 0; not 0 on failure: 1 for a bad whence, -1 for a null stream. @since 0.1 */
QDL_API int32_t FileSeek_Win32(FILE *stream, int64_t offset, int32_t whence);

/** Position of a stream, 64-bit on every platform.
 * @param stream stream @return bytes from the start; -1 on failure. @since 0.1 */
QDL_API int64_t FileTell_Win32(FILE *stream);

/** Widens floats to doubles, last to first, so that floats in the first half of the destination
 * are widened in place.
 * @param destination receives `count` doubles @param source `count` floats
 * @param count number of values; below 1: nothing done @return `destination`. @since 0.1 */
QDL_API double *float2double(double *destination, const float *source, int32_t count);

/** Narrows doubles to floats, first to last; may be done in place.
 * @param destination receives `count` floats @param source `count` doubles
 * @param count number of values; below 1: nothing done @return `destination`. @since 0.1 */
QDL_API float *double2float(float *destination, const double *source, int32_t count);

/** Cleans a fixed-width text in place: terminates it, cuts trailing blanks, deletes control
 * characters.
 * @param buffer `n` characters; null: nothing done @param n width; below 1: nothing done
 * @return `buffer`. @since 0.1 */
QDL_API char *terminate_string(char *buffer, int32_t n);

/** @} */
/** @defgroup platform Platform services
 * @{ */

/** Local date and time, such as "2026-11-15 09:30 +0100".
 * @param mode 1 date, 2 time with offset from UTC, any other both; negative: the same for its
 *   absolute value, and a trace of two lines on standard output
 * @param text receives up to 23 characters; null: nothing done @return 0. @since 0.1 */
QDL_API int32_t QDL_localtime_ISO8601(int32_t mode, char *text);

/** Processor time used by the process.
 * @return seconds. @since 0.1 */
QDL_API double QDL_cputime(void);

/** Describes the operating system by name, release and platform number, such as "Linux 6_1 0".
 * @param mode 2 name and release, 3 all three, 12 and 13 the same joined by "_", any other the
 *   name @param text receives the text; 128 characters are enough
 * @return 0; 1 and an empty text when the system does not tell. @since 0.1 */
QDL_API int32_t QDL_uname(int32_t mode, char *text);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
