/** @file
 * Loads, monitor points and matrix operators. */
#ifndef QDLFLEX_LOADS_H
#define QDLFLEX_LOADS_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

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

/** Labels a modal load case; the cases up to it are created. A label alone is not written.
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

#ifdef __cplusplus
}
#endif

#endif
