/** @file
 * Bodies and modes moved, scaled, combined and pruned. */
#ifndef QDLFLEX_TRANSFORMATION_H
#define QDLFLEX_TRANSFORMATION_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
}
#endif

#endif
