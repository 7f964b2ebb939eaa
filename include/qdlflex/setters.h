/** @file
 * Filling a model. */
#ifndef QDLFLEX_SETTERS_H
#define QDLFLEX_SETTERS_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
}
#endif

#endif
