/** @file
 * Mode data and the list of modes. */
#ifndef QDLFLEX_MODES_H
#define QDLFLEX_MODES_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
}
#endif

#endif
