/** @file
 * Generalized matrices, eigen solver, dense algebra and orthonormal modes. */
#ifndef QDLFLEX_MATRICES_H
#define QDLFLEX_MATRICES_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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
 * real loses its imaginary part. Both are warned about, and all eigenvalues reported. Where memory
 * runs out in the step that makes the eigenvectors orthonormal, that is reported and the step
 * skipped: they are then scaled to a largest component of 1.
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

#ifdef __cplusplus
}
#endif

#endif
