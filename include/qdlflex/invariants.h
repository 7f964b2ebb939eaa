/** @file
 * Inertia invariants. */
#ifndef QDLFLEX_INVARIANTS_H
#define QDLFLEX_INVARIANTS_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
}
#endif

#endif
