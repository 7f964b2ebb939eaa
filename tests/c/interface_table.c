/* The function table against symbol look-up: every slot holds the function of its name, all others
 * keep what the host put there. */
#define _GNU_SOURCE
#include <qdlflex/qdlflex.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

static const struct {
  int number;
  const char *name;
} kSlots[] = {
    {0, "QDL_Create"},
    {1, "QDL_FindQDL"},
    {2, "QDL_CreateFromQDL"},
    {3, "QDL_CreateFromQDL_SurfaceMesh"},
    {4, "QDL_SetInvar1"},
    {5, "QDL_SetInvar2"},
    {6, "QDL_SetInvar3"},
    {7, "QDL_SetInvar4"},
    {8, "QDL_SetInvar5"},
    {9, "QDL_SetInvar6"},
    {10, "QDL_SetInvar7"},
    {11, "QDL_SetInvar8"},
    {12, "QDL_SetInvar9"},
    {13, "QDL_SetUnits"},
    {14, "QDL_SetUnitsByMultiplierOnSI"},
    {15, "QDL_Units"},
    {16, "QDL_Mass2Kilogram"},
    {17, "QDL_Force2Newton"},
    {18, "QDL_Length2Meter"},
    {19, "QDL_Time2Second"},
    {20, "QDL_SetHeader"},
    {21, "QDL_Header"},
    {22, "QDL_SetGlobalMass"},
    {23, "QDL_TotalMassInertia"},
    {24, "QDL_BodySize"},
    {25, "QDL_NodeIndex"},
    {26, "QDL_NodeID"},
    {27, "QDL_ModeIndex"},
    {28, "QDL_ModeNumber"},
    {29, "QDL_ModeNodeCount"},
    {30, "QDL_ModeNodeIndex"},
    {31, "QDL_ModeNodeID"},
    {32, "QDL_NodeCount"},
    {33, "QDL_SetNodeCoordinates"},
    {34, "QDL_NodeCoordinates"},
    {35, "QDL_NodeCoordinateList"},
    {36, "QDL_ClosestNode"},
    {37, "QDL_ClosestNodes"},
    {38, "QDL_ClosestNodesInNeighborhood"},
    {39, "QDL_SetNodalMass"},
    {40, "QDL_NodalMass"},
    {41, "QDL_SetNodalInertia"},
    {42, "QDL_NodalInertia"},
    {43, "QDL_SetNodalInertiaEntry"},
    {44, "QDL_SetFaceList"},
    {46, "QDL_FaceListSize"},
    {47, "QDL_ElementFaces"},
    {48, "QDL_RemoveInternalGeometry"},
    {49, "QDL_IsCoarsened"},
    {50, "QDL_SetInterfaceNode"},
    {51, "QDL_InterfaceNodeIDs"},
    {52, "QDL_SetModeVec"},
    {53, "QDL_SetMode"},
    {54, "QDL_ModeCount"},
    {55, "QDL_ModeExist"},
    {56, "QDL_Mode"},
    {57, "QDL_Double_Prec"},
    {58, "QDL_Read_Mode_Single"},
    {59, "QDL_Read_Mode_Double"},
    {60, "QDL_ModeByNode"},
    {61, "QDL_ModeByNodeWithoutCache"},
    {62, "QDL_SetModeEntry"},
    {63, "QDL_SetGeneralizedMass"},
    {64, "QDL_SetGeneralizedStiffness"},
    {65, "QDL_SetGeneralizedDamping"},
    {66, "QDL_NumberOfGenStiff"},
    {67, "QDL_GenStiffSelected"},
    {68, "QDL_GenStiffFull"},
    {69, "QDL_GenStiffSparse"},
    {70, "QDL_NumberOfGenMass"},
    {71, "QDL_GenMassSelected"},
    {72, "QDL_GenMassSparse"},
    {73, "QDL_GenMassFull"},
    {74, "QDL_GenDampExist"},
    {75, "QDL_NumberOfGenDamp"},
    {76, "QDL_GenDampPrincipalAndSelected"},
    {77, "QDL_GenDampSparse"},
    {78, "QDL_GenDampFull"},
    {79, "QDL_Eigenvalue"},
    {80, "QDL_Transformation"},
    {81, "QDL_SetTransformation"},
    {82, "QDL_SetModalPreload"},
    {83, "QDL_GetModalPreload"},
    {84, "QDL_ModalPreloadExist"},
    {85, "QDL_SetModalLoadLabel"},
    {86, "QDL_GetModalLoadCaseLabel"},
    {87, "QDL_SetModalLoad"},
    {88, "QDL_GetModalLoad"},
    {89, "QDL_GetModalLoadCaseCount"},
    {90, "QDL_SetModalLoadNodal"},
    {91, "QDL_GetModalLoadNodalCaseCount"},
    {92, "QDL_GetModalLoadNodalCount"},
    {93, "QDL_GetModalLoadNodalNode"},
    {94, "QDL_GetModalLoadNodalCoord"},
    {95, "QDL_GetModalLoadNodalLoad"},
    {96, "QDL_ModalStatisticsExist"},
    {97, "QDL_GetMaxModeDisplacement"},
    {98, "QDL_GetMaxModeRotation"},
    {99, "QDL_GetMaxVonMisesStress"},
    {100, "QDL_GetMaxVonMisesStrain"},
    {101, "QDL_write_QDL"},
    {102, "QDL_write_DB"},
    {103, "QDL_Version"},
    {104, "QDL_Destroy"},
    {105, "QDL_UnLink"},
    {106, "QDL_DeReference"},
    {107, "QDL_Terminate"},
    {108, "QDL_FreeMemory"},
    {112, "QDL_AnsysAddGenMass"},
    {113, "QDL_Contents"},
    {114, "QDL_Invar1"},
    {115, "QDL_Invar2"},
    {116, "QDL_Invar3"},
    {117, "QDL_Invar4"},
    {118, "QDL_Invar5"},
    {119, "QDL_Invar6"},
    {120, "QDL_Invar7"},
    {121, "QDL_Invar8"},
    {122, "QDL_Invar9"},
    {123, "QDL_RigidBodyModeCount"},
    {124, "QDL_RigidBodyForcesOnPrincipalAxes"},
    {125, "QDL_DampingOnPrincipalAxes"},
    {126, "QDL_Exists"},
    {128, "QDL_UCF"},
    {129, "QDL_ModalLoadProcessed"},
    {130, "QDL_InterfaceNodes"},
    {131, "QDL_RebuildEigenvalues"},
    {132, "QDL_ScaleModes"},
    {133, "QDL_SetVersion"},
    {134, "QDL_SetModalLoadProcessed"},
    {135, "QDL_ModalPreloadProcessed"},
    {136, "QDL_SetModalPreloadProcessed"},
    {137, "QDL_SetShouldMassNormalizeModes"},
    {142, "QDL_IsValid"},
    {143, "QDL_ModeByRef"},
    {144, "QDL_SModeByRef"},
    {145, "QDL_GetFlexType"},
    {146, "QDL_SetMonitorPointInfo"},
    {147, "QDL_SetMonitorPointOperator"},
    {148, "QDL_GetMonitorPointCount"},
    {149, "QDL_GetMonitorPointType"},
    {150, "QDL_GetMonitorPointResultType"},
    {151, "QDL_GetMonitorPointComponent"},
    {152, "QDL_GetMonitorPointNameLabel"},
    {153, "QDL_GetMonitorPointOperatorSize"},
    {154, "QDL_GetMonitorPointNumLoadOperator"},
    {155, "QDL_GetMonitorPointOperator"},
    {156, "QDL_MonitorPointHasOperator"},
    {157, "QDL_Mirror"},
    {158, "QDL_Rotate"},
    {159, "QDL_Translate"},
    {160, "QDL_RenumberInterfaceNodes"},
    {161, "QDL_RenumberNodes"},
    {162, "QDL_GetFreeEdgeCount"},
    {163, "QDL_GetFreeEdgeSize"},
    {164, "QDL_GetFreeEdge"},
    {165, "QDL_PermuteQDL"},
    {166, "QDL_PreprocessKVTQDL"},
    {167, "QDL_SetMatrixOperatorInfo"},
    {168, "QDL_SetMatrixOperatorData"},
    {169, "QDL_GetMatrixOperatorCount"},
    {170, "QDL_GetMatrixOperatorNumRows"},
    {171, "QDL_GetMatrixOperatorName"},
    {172, "QDL_GetMatrixOperatorLabels"},
    {173, "QDL_GetMatrixOperatorNumSubOperator"},
    {174, "QDL_GetMatrixOperatorSubNumCols"},
    {175, "QDL_GetMatrixOperatorSubTag"},
    {176, "QDL_GetMatrixOperatorSubData"},
    {184, "QDL_SetRotorDynamicsAxis"},
    {185, "QDL_SetRotorDynamicsMatrix"},
    {186, "QDL_RotorDynamicsAxis"},
    {187, "QDL_RotorDynamicsMatrix"},
};

static void marker(void) {}

/* The table gives functions, the linker objects: compared as bytes. */
static int is_symbol(QDL_Function function, const char *name) {
  void *symbol = dlsym(RTLD_DEFAULT, name);
  return symbol != NULL && memcmp(&function, &symbol, sizeof symbol) == 0;
}

int main(void) {
  const int count = (int)(sizeof kSlots / sizeof kSlots[0]);
  QDL_Function table[QDL_INTERFACE_SLOTS];
  int failures = 0;
  int i;
  for (i = 0; i < QDL_INTERFACE_SLOTS; ++i)
    table[i] = marker;
  if (PopulateInterface(table) != 1 || PopulateInterface(NULL) != 0)
    ++failures;
  for (i = 0; i < count; ++i) {
    if (!is_symbol(table[kSlots[i].number], kSlots[i].name)) {
      printf("slot %d does not hold %s\n", kSlots[i].number, kSlots[i].name);
      ++failures;
    }
    table[kSlots[i].number] = marker;
  }
  for (i = 0; i < QDL_INTERFACE_SLOTS; ++i) {
    if (table[i] != marker) {
      printf("slot %d was written\n", i);
      ++failures;
    }
  }
  return failures;
}
