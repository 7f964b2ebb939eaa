/** @file
 * The C interface of qdlflex.
 */
#ifndef QDLFLEX_QDLFLEX_H
#define QDLFLEX_QDLFLEX_H

#include <stdint.h>
#include <stdio.h>

#define QDLFLEX_VERSION_MAJOR 0
#define QDLFLEX_VERSION_MINOR 1
#define QDLFLEX_VERSION_PATCH 0
#define QDLFLEX_VERSION_STRING "0.1.0"

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

typedef struct QDL_Record QDL_Record;
typedef int64_t (*QDL_MessageHandler)(const char *text);
typedef void (*QDL_Function)(void);

typedef struct QDL_UnitEntry {
  const char *name;
  double factor;
} QDL_UnitEntry;

enum QDL_ModeKind { QDL_MODE_SHAPE = 0, QDL_MODE_STRESS = 1, QDL_MODE_STRAIN = 2 };
enum QDL_Limit { QDL_BLOCK_COUNT = 37, QDL_INTERFACE_SLOTS = 188 };

/* Records */
QDL_API QDL_Record *QDL_Create(int32_t plannedNodes, int32_t plannedModes);
QDL_API QDL_Record *QDL_CreateFromQDL(const char *fileName);
QDL_API QDL_Record *QDL_FindQDL(const char *fileName);
QDL_API int32_t QDL_IsValid(const QDL_Record *model);
QDL_API int32_t QDL_DeReference(QDL_Record *model);
QDL_API void QDL_UnLink(QDL_Record *model);
QDL_API void QDL_Terminate(void);
QDL_API void QDL_Destroy(QDL_Record *model);
QDL_API void QDL_FreeMemory(void *pointer);

/* Messages and function table */
QDL_API int32_t SetMessageHandlers(const QDL_MessageHandler *table);
QDL_API int32_t PopulateInterface(QDL_Function *table);
QDL_API int64_t QDL_Error(const char *format, ...) QDL_PRINTF(1, 2);
QDL_API int64_t QDL_Warning(const char *format, ...) QDL_PRINTF(1, 2);
QDL_API int64_t QDL_Info(const char *format, ...) QDL_PRINTF(1, 2);

/* Mode data */
QDL_API int32_t QDL_Mode(QDL_Record *model, int32_t modeNumber, int32_t kind, double *values,
                         int32_t part);
QDL_API int32_t QDL_ModeByNode(QDL_Record *model, int32_t modeNumber, int32_t kind, int32_t node,
                               double *values, int32_t part);
QDL_API int32_t QDL_ModeByNodeWithoutCache(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                           int32_t node, double *values, int32_t part);
QDL_API int32_t QDL_ModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, double **values,
                              int32_t part);
QDL_API int32_t QDL_SModeByRef(QDL_Record *model, int32_t modeNumber, int32_t kind, float **values,
                               int32_t part);
QDL_API int32_t QDL_Read_Mode_Double(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                     double *values, int32_t part);
QDL_API int32_t QDL_Read_Mode_Single(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                     float *values, int32_t part);
QDL_API int32_t QDL_ModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                 const double *values, int32_t part);
QDL_API int32_t QDL_SModetoMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                  const float *values, int32_t part);
QDL_API int32_t QDL_ModeFromMemory(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                   double *values, int32_t part);
QDL_API int32_t QDL_ModeFromMemoryByNode(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                         int32_t node, double *values, int32_t part);
QDL_API int32_t QDL_ModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                        double **values, int32_t part);
QDL_API int32_t QDL_SModeFromMemoryByRef(QDL_Record *model, int32_t modeNumber, int32_t kind,
                                         float **values, int32_t part);
QDL_API int32_t QDL_InitializeModeMemory(QDL_Record *model);
QDL_API int32_t QDL_InitializeSModeMemory(QDL_Record *model, int32_t kind, int32_t part);
QDL_API int32_t QDL_SetKeepModesInMemory(QDL_Record *model, int32_t keep);
QDL_API int32_t QDL_GetKeepModesInMemory(QDL_Record *model, int32_t *flag);
QDL_API int32_t QDL_CleanModesInMemory(QDL_Record *model);
QDL_API int32_t QDL_CleanSModesInMemory(QDL_Record *model);

/* Data access */
QDL_API int32_t QDL_NodeCount(QDL_Record *model);
QDL_API int32_t QDL_NodeID(QDL_Record *model, int32_t index);
QDL_API int32_t QDL_NodeIndex(QDL_Record *model, int32_t nodeId);
QDL_API int32_t QDL_NodeCoordinates(QDL_Record *model, int32_t index, double *xyz);
QDL_API int32_t QDL_NodeCoordinateList(QDL_Record *model, double *xyz, int32_t *count);
QDL_API double QDL_NodalMass(QDL_Record *model, int32_t index);
QDL_API int32_t QDL_NodalInertia(QDL_Record *model, int32_t index, double *tensor);
QDL_API int32_t QDL_NodalMassAndGeometry(QDL_Record *model, int32_t index, double *mass,
                                         double *xyz);
QDL_API int32_t *QDL_InterfaceNodeIDs(QDL_Record *model, int32_t *count);
QDL_API int32_t *QDL_InterfaceNodes(QDL_Record *model, int32_t *count);
QDL_API void QDL_SwapNodesByID(QDL_Record *model, int32_t idA, int32_t idB);
QDL_API double QDL_BodySize(QDL_Record *model);
QDL_API int32_t QDL_TotalMassInertia(QDL_Record *model, double *mass, double *centre,
                                     double *inertia);
QDL_API int32_t QDL_CalculateGlobalMassFromNodeMass(QDL_Record *model);
QDL_API int32_t QDL_Header(QDL_Record *model, char *title, char *date, char *inputName,
                           char *inputType, char *comment1, char *comment2, char *comment3);
QDL_API int32_t QDL_Eigenvalue(QDL_Record *model, int32_t modeNumber, double *eigenvalue,
                               double *frequency, double *circularFrequency,
                               double *generalizedMass, double *generalizedStiffness);
QDL_API int32_t QDL_ModeCount(QDL_Record *model);
QDL_API int32_t QDL_ModeIndex(QDL_Record *model, int32_t modeNumber);
QDL_API int32_t QDL_ModeNumber(QDL_Record *model, int32_t modeIndex);
QDL_API int32_t QDL_ModeExist(QDL_Record *model, int32_t kind);
QDL_API int32_t QDL_ModeNodeCount(QDL_Record *model, int32_t kind);
QDL_API int32_t QDL_ModeNodeID(QDL_Record *model, int32_t kind, int32_t position);
QDL_API int32_t QDL_ModeNodeIndex(QDL_Record *model, int32_t kind, int32_t nodeId);
QDL_API int32_t QDL_FaceListSize(QDL_Record *model, int32_t *faceCount, int32_t *listLength);
QDL_API int32_t QDL_ElementFaces(QDL_Record *model, int32_t *list);
QDL_API int32_t QDL_IsCoarsened(QDL_Record *model);
QDL_API int32_t QDL_Transformation(QDL_Record *model, double *matrix);
QDL_API int32_t QDL_SetTransformation(QDL_Record *model, const double *matrix);
QDL_API int32_t QDL_NumberOfGenStiff(QDL_Record *model);
QDL_API int32_t QDL_NumberOfGenMass(QDL_Record *model);
QDL_API int32_t QDL_NumberOfGenDamp(QDL_Record *model);
QDL_API int32_t QDL_GenDampExist(QDL_Record *model);
QDL_API int32_t QDL_RotorDynamicsAxis(QDL_Record *model, double *point, double *direction);
QDL_API int32_t QDL_RotorDynamicsMatrix(QDL_Record *model, int32_t matrix, double *values);
QDL_API double *QDL_GetModalPreload(QDL_Record *model, int32_t *count);
QDL_API int32_t QDL_ModalPreloadExist(QDL_Record *model);
QDL_API int32_t QDL_ModalPreloadProcessed(QDL_Record *model);
QDL_API int32_t QDL_SetModalPreloadProcessed(QDL_Record *model, int32_t processed);
QDL_API int32_t QDL_GetModalLoadCaseCount(QDL_Record *model);
QDL_API double *QDL_GetModalLoad(QDL_Record *model, int32_t loadCase, int32_t *count);
QDL_API int32_t QDL_GetModalLoadCaseLabel(QDL_Record *model, int32_t loadCase, char *label);
QDL_API int32_t QDL_ModalLoadProcessed(QDL_Record *model, int32_t loadCase);
QDL_API int32_t QDL_SetModalLoadProcessed(QDL_Record *model, int32_t loadCase, int32_t processed);
QDL_API int32_t QDL_GetModalLoadNodalCaseCount(QDL_Record *model);
QDL_API int32_t QDL_GetModalLoadNodalCount(QDL_Record *model, int32_t loadCase);
QDL_API int32_t QDL_GetModalLoadNodalNode(QDL_Record *model, int32_t loadCase, int32_t entry);
QDL_API int32_t QDL_GetModalLoadNodalCoord(QDL_Record *model, int32_t loadCase, int32_t entry);
QDL_API double QDL_GetModalLoadNodalLoad(QDL_Record *model, int32_t loadCase, int32_t entry);
QDL_API int32_t QDL_ModalStatisticsExist(QDL_Record *model);
QDL_API int32_t QDL_Version(QDL_Record *model);
QDL_API int32_t QDL_SetVersion(QDL_Record *model, int32_t version);
QDL_API int32_t QDL_Double_Prec(QDL_Record *model);
QDL_API int32_t QDL_DiscreteMethod(QDL_Record *model);
QDL_API int32_t QDL_GetFlexType(QDL_Record *model);
QDL_API int32_t QDL_SetShouldMassNormalizeModes(QDL_Record *model, int32_t flag);

/* Platform services */
QDL_API int32_t QDL_localtime_ISO8601(int32_t mode, char *text);
QDL_API double QDL_cputime(void);
QDL_API int32_t QDL_uname(int32_t mode, char *text);

/* Files and encoding */
QDL_API int32_t CheckQDL(QDL_Record *model);
QDL_API FILE *File_Open(const char *name, const char *mode);
QDL_API int32_t is_utf8_included(const char *text);
QDL_API uint16_t *get_unicode_from_utf8(const char *text);
QDL_API int32_t FileSeek_Win32(FILE *stream, int64_t offset, int32_t whence);
QDL_API int64_t FileTell_Win32(FILE *stream);
QDL_API double *float2double(double *destination, const float *source, int32_t count);
QDL_API float *double2float(float *destination, const double *source, int32_t count);
QDL_API char *terminate_string(char *buffer, int32_t n);
QDL_API int32_t QDL_Exists(QDL_Record *model, int32_t index);
QDL_API int32_t QDL_goto_block(QDL_Record *model, int32_t index);
QDL_API int64_t QDL_size_of_block(QDL_Record *model, int32_t index);
QDL_API int32_t QDL_ReadQDL(QDL_Record *model, FILE *stream, const char *fileName);
QDL_API int32_t QDL_ReadGeneralizedStiffness(QDL_Record *model);
QDL_API int32_t QDL_ReadGeneralizedMass(QDL_Record *model);
QDL_API int32_t QDL_ReadGeneralizedDamping(QDL_Record *model);
QDL_API int32_t QDL_write_QDL(QDL_Record *model, const char *path);
QDL_API int32_t QDL_write_DB(QDL_Record *model, const char *path);

/* Setters */
QDL_API int32_t QDL_SetHeader(QDL_Record *model, char *title, char *inputName, char *inputType,
                              char *comment1, char *comment2, char *comment3);
QDL_API int32_t QDL_AddNode(QDL_Record *model, int32_t nodeId);
QDL_API int32_t QDL_LookupOrAddNode(QDL_Record *model, int32_t nodeId);
QDL_API int32_t QDL_AddMode(QDL_Record *model, int32_t modeNumber);
QDL_API int32_t QDL_LookupOrAddMode(QDL_Record *model, int32_t modeNumber);
QDL_API int32_t QDL_SetNodeCoordinates(QDL_Record *model, int32_t nodeId, double x, double y,
                                       double z);
QDL_API int32_t QDL_SetNodalMass(QDL_Record *model, int32_t nodeId, double mass);
QDL_API int32_t QDL_AddNodalMass(QDL_Record *model, int32_t nodeId, double mass);
QDL_API int32_t QDL_SetNodalInertia(QDL_Record *model, int32_t nodeId, double xx, double yy,
                                    double zz, double xy, double xz, double yz);
QDL_API int32_t QDL_SetNodalInertiaEntry(QDL_Record *model, int32_t nodeId, int32_t row,
                                         int32_t column, double value);
QDL_API int32_t QDL_SetFace(QDL_Record *model, int32_t count, ...);
QDL_API int32_t QDL_SetFaceList(QDL_Record *model, int32_t count, const int32_t *nodeIds);
QDL_API int32_t QDL_SetGeneralizedStiffness(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                            double value);
QDL_API int32_t QDL_SetGeneralizedMass(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                       double value);
QDL_API int32_t QDL_SetGeneralizedDamping(QDL_Record *model, int32_t modeI, int32_t modeJ,
                                          double value);
QDL_API int32_t QDL_SetGlobalMass(QDL_Record *model, double mass, const double *centre3,
                                  const double *inertia9);
QDL_API int32_t QDL_SetInterfaceNode(QDL_Record *model, int32_t nodeId);
QDL_API int32_t QDL_SetModeVec(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                               const double *values6);
QDL_API int32_t QDL_SetMode(QDL_Record *model, int32_t modeNumber, int32_t nodeId, int32_t kind,
                            double v0, double v1, double v2, double v3, double v4, double v5);
QDL_API int32_t QDL_SetModeEntry(QDL_Record *model, int32_t modeNumber, int32_t nodeId,
                                 int32_t kind, int32_t component, double value);
QDL_API int32_t QDL_SetRotorDynamicsAxis(QDL_Record *model, const double *centre3,
                                         const double *vector3);
QDL_API int32_t QDL_SetRotorDynamicsMatrix(QDL_Record *model, int32_t matrix, int32_t rowModeIndex,
                                           int32_t columnModeIndex, double value);

/* Monitor points */
QDL_API int32_t QDL_SetMonitorPointInfo(QDL_Record *model, int32_t type, int32_t resultType,
                                        int32_t component, int32_t loadOperatorCount,
                                        const double *location3, const char *name,
                                        const char *label);
QDL_API int32_t QDL_SetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op,
                                            const double *data);
QDL_API int32_t QDL_GetMonitorPointCount(QDL_Record *model);
QDL_API int32_t QDL_GetMonitorPointType(QDL_Record *model, int32_t point);
QDL_API int32_t QDL_GetMonitorPointResultType(QDL_Record *model, int32_t point);
QDL_API int32_t QDL_GetMonitorPointComponent(QDL_Record *model, int32_t point);
QDL_API int32_t QDL_GetMonitorPointLocation(QDL_Record *model, int32_t point, double *location3);
QDL_API int32_t QDL_GetMonitorPointNameLabel(QDL_Record *model, int32_t point, char *name9,
                                             char *label57);
QDL_API int32_t QDL_GetMonitorPointNumLoadOperator(QDL_Record *model, int32_t point);
QDL_API int32_t QDL_GetMonitorPointOperatorSize(QDL_Record *model, int32_t point, int32_t *rows,
                                                int32_t *columns);
QDL_API int32_t QDL_MonitorPointHasOperator(QDL_Record *model, int32_t point, int32_t op);
QDL_API int32_t QDL_GetMonitorPointOperator(QDL_Record *model, int32_t point, int32_t op,
                                            double *data);

/* Matrix operators */
QDL_API int32_t QDL_SetMatrixOperatorInfo(QDL_Record *model, const char *name,
                                          const char *const *labels, int32_t rows);
QDL_API int32_t QDL_SetMatrixOperatorData(QDL_Record *model, int32_t op, const char *tag,
                                          int32_t columns, const double *data);
QDL_API int32_t QDL_GetMatrixOperatorCount(QDL_Record *model);
QDL_API int32_t QDL_GetMatrixOperatorName(QDL_Record *model, int32_t op, char *name80);
QDL_API int32_t QDL_GetMatrixOperatorLabels(QDL_Record *model, int32_t op, char **labels80);
QDL_API int32_t QDL_GetMatrixOperatorNumRows(QDL_Record *model, int32_t op);
QDL_API int32_t QDL_GetMatrixOperatorNumSubOperator(QDL_Record *model, int32_t op);
QDL_API int32_t QDL_GetMatrixOperatorSubTag(QDL_Record *model, int32_t op, int32_t sub, char *tag8);
QDL_API int32_t QDL_GetMatrixOperatorSubNumCols(QDL_Record *model, int32_t op, int32_t sub,
                                                int32_t *columns);
QDL_API int32_t QDL_GetMatrixOperatorSubData(QDL_Record *model, int32_t op, int32_t sub,
                                             double *data);

/* Units */
QDL_API extern const QDL_UnitEntry QDL_MassUnits[13];
QDL_API extern const QDL_UnitEntry QDL_ForceUnits[11];
QDL_API extern const QDL_UnitEntry QDL_LengthUnits[14];
QDL_API extern const QDL_UnitEntry QDL_TimeUnits[8];
QDL_API int32_t QDL_SetUnits(QDL_Record *model, const char *mass, const char *length,
                             const char *time, const char *force);
QDL_API int32_t QDL_SetUnitsByMultiplierOnSI(QDL_Record *model, double mass, double length,
                                             double time, double force);
QDL_API int32_t QDL_Units(QDL_Record *model, char *mass16, char *length16, char *time16,
                          char *force16);
QDL_API double QDL_UnitsDivider(const char *name, const QDL_UnitEntry *table);
QDL_API const char *QDL_UnitsLabel(double factor, const QDL_UnitEntry *table);
QDL_API double QDL_Mass2Kilogram(QDL_Record *model, double value);
QDL_API double QDL_Length2Meter(QDL_Record *model, double value);
QDL_API double QDL_Time2Second(QDL_Record *model, double value);
QDL_API double QDL_Force2Newton(QDL_Record *model, double value);
QDL_API double QDL_UCF(QDL_Record *model);
QDL_API double *QDL_Convert_Units(double *values, int32_t count, double factor);
QDL_API int32_t QDL_ScaleDatabase(QDL_Record *model);

/* Invariants, loads, preload, pre-stress: setters */
QDL_API int32_t QDL_SetInvar1(QDL_Record *model, double value);
QDL_API int32_t QDL_SetInvar2(QDL_Record *model, const double *v3);
QDL_API int32_t QDL_SetInvar3(QDL_Record *model, int32_t modeNumber, const double *v3);
QDL_API int32_t QDL_SetInvar4(QDL_Record *model, int32_t modeNumber, const double *v3);
QDL_API int32_t QDL_SetInvar5(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *v3);
QDL_API int32_t QDL_SetInvar6(QDL_Record *model, const double *diagonal);
QDL_API int32_t QDL_SetInvar7(QDL_Record *model, const double *xx_yy_zz_xy_xz_yz);
QDL_API int32_t QDL_SetInvar8(QDL_Record *model, int32_t modeNumber, const double *m9);
QDL_API int32_t QDL_SetInvar9(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *m9);
QDL_API int32_t QDL_SetModalLoad(QDL_Record *model, int32_t loadCase, int32_t modeNumber,
                                 double value);
QDL_API int32_t QDL_SetModalLoadLabel(QDL_Record *model, int32_t loadCase, const char *label);
QDL_API int32_t QDL_SetModalLoadNodal(QDL_Record *model, int32_t loadCase, int32_t nodeId,
                                      int32_t coordinate, double value);
QDL_API int32_t QDL_SetModalPreload(QDL_Record *model, int32_t modeNumber, double value);
QDL_API int32_t QDL_SetPreStressVec(QDL_Record *model, int32_t nodeId, const double *v6);
QDL_API int32_t QDL_SetPreStrainVec(QDL_Record *model, int32_t nodeId, const double *v6);

/* Invariants: getters */
QDL_API double QDL_Invar1(QDL_Record *model);
QDL_API double *QDL_Invar2(QDL_Record *model);
QDL_API double *QDL_Invar7(QDL_Record *model);

/* Generalized matrices, statistics, rigid-body modes */
QDL_API int32_t QDL_GenStiffSparse(QDL_Record *model, double *values, int32_t *rows,
                                   int32_t *columns);
QDL_API int32_t QDL_GenMassSparse(QDL_Record *model, double *values, int32_t *rows,
                                  int32_t *columns);
QDL_API int32_t QDL_GenDampSparse(QDL_Record *model, double *values, int32_t *rows,
                                  int32_t *columns);
QDL_API int32_t QDL_GenStiffFull(QDL_Record *model, double *matrix, int32_t n);
QDL_API int32_t QDL_GenMassFull(QDL_Record *model, double *matrix, int32_t n);
QDL_API int32_t QDL_GenDampFull(QDL_Record *model, double *matrix, int32_t n);
QDL_API int32_t QDL_GenStiffSelected(QDL_Record *model, double **matrix, int32_t n,
                                     const int32_t *mode_numbers);
QDL_API int32_t QDL_GenMassSelected(QDL_Record *model, double **matrix, int32_t n,
                                    const int32_t *mode_numbers);
QDL_API int32_t QDL_GetMaxModeDisplacement(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                           double *value);
QDL_API int32_t QDL_GetMaxModeRotation(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                       double *value);
QDL_API int32_t QDL_GetMaxVonMisesStress(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                         double *value);
QDL_API int32_t QDL_GetMaxVonMisesStrain(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                         double *value);
QDL_API int32_t QDL_RigidBodyModeCount(QDL_Record *model);

#ifdef __cplusplus
}
#endif

#endif
