/* The function table against symbol look-up: every slot holds the function of its name, all others
 * keep what the host put there. */
#define _GNU_SOURCE
#include <qdlflex/qdlflex.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

/* Functions in consecutive slots from the given one on, without the "QDL_" that all begin with. */
static const struct {
  int first;
  const char *names;
} kRuns[] = {
    {0, "Create FindQDL CreateFromQDL CreateFromQDL_SurfaceMesh"},
    {4, "SetInvar1 SetInvar2 SetInvar3 SetInvar4 SetInvar5 SetInvar6 SetInvar7 SetInvar8"},
    {12, "SetInvar9"},
    {13, "SetUnits SetUnitsByMultiplierOnSI Units Mass2Kilogram Force2Newton Length2Meter"},
    {19, "Time2Second"},
    {20, "SetHeader Header SetGlobalMass TotalMassInertia BodySize"},
    {25, "NodeIndex NodeID ModeIndex ModeNumber ModeNodeCount ModeNodeIndex ModeNodeID NodeCount"},
    {33, "SetNodeCoordinates NodeCoordinates NodeCoordinateList ClosestNode ClosestNodes"},
    {38, "ClosestNodesInNeighborhood"},
    {39, "SetNodalMass NodalMass SetNodalInertia NodalInertia SetNodalInertiaEntry SetFaceList"},
    {46, "FaceListSize ElementFaces RemoveInternalGeometry IsCoarsened"},
    {50, "SetInterfaceNode InterfaceNodeIDs"},
    {52, "SetModeVec SetMode ModeCount ModeExist Mode Double_Prec Read_Mode_Single"},
    {59, "Read_Mode_Double ModeByNode ModeByNodeWithoutCache SetModeEntry"},
    {63, "SetGeneralizedMass SetGeneralizedStiffness SetGeneralizedDamping"},
    {66, "NumberOfGenStiff GenStiffSelected GenStiffFull GenStiffSparse"},
    {70, "NumberOfGenMass GenMassSelected GenMassSparse GenMassFull"},
    {74, "GenDampExist NumberOfGenDamp GenDampPrincipalAndSelected GenDampSparse GenDampFull"},
    {79, "Eigenvalue Transformation SetTransformation"},
    {82, "SetModalPreload GetModalPreload ModalPreloadExist"},
    {85, "SetModalLoadLabel GetModalLoadCaseLabel SetModalLoad GetModalLoad GetModalLoadCaseCount"},
    {90, "SetModalLoadNodal GetModalLoadNodalCaseCount GetModalLoadNodalCount"},
    {93, "GetModalLoadNodalNode GetModalLoadNodalCoord GetModalLoadNodalLoad"},
    {96, "ModalStatisticsExist GetMaxModeDisplacement GetMaxModeRotation GetMaxVonMisesStress"},
    {100, "GetMaxVonMisesStrain"},
    {101, "write_QDL write_DB Version Destroy UnLink DeReference Terminate FreeMemory"},
    {112, "AnsysAddGenMass Contents"},
    {114, "Invar1 Invar2 Invar3 Invar4 Invar5 Invar6 Invar7 Invar8 Invar9"},
    {123, "RigidBodyModeCount RigidBodyForcesOnPrincipalAxes DampingOnPrincipalAxes Exists"},
    {128, "UCF ModalLoadProcessed InterfaceNodes RebuildEigenvalues ScaleModes SetVersion"},
    {134, "SetModalLoadProcessed ModalPreloadProcessed SetModalPreloadProcessed"},
    {137, "SetShouldMassNormalizeModes"},
    {142, "IsValid ModeByRef SModeByRef GetFlexType"},
    {146, "SetMonitorPointInfo SetMonitorPointOperator GetMonitorPointCount GetMonitorPointType"},
    {150, "GetMonitorPointResultType GetMonitorPointComponent GetMonitorPointNameLabel"},
    {153, "GetMonitorPointOperatorSize GetMonitorPointNumLoadOperator GetMonitorPointOperator"},
    {156, "MonitorPointHasOperator"},
    {157, "Mirror Rotate Translate RenumberInterfaceNodes RenumberNodes"},
    {162, "GetFreeEdgeCount GetFreeEdgeSize GetFreeEdge PermuteQDL PreprocessKVTQDL"},
    {167, "SetMatrixOperatorInfo SetMatrixOperatorData GetMatrixOperatorCount"},
    {170, "GetMatrixOperatorNumRows GetMatrixOperatorName GetMatrixOperatorLabels"},
    {173, "GetMatrixOperatorNumSubOperator GetMatrixOperatorSubNumCols GetMatrixOperatorSubTag"},
    {176, "GetMatrixOperatorSubData"},
    {184, "SetRotorDynamicsAxis SetRotorDynamicsMatrix RotorDynamicsAxis RotorDynamicsMatrix"},
};

static int failures = 0;
static QDL_Function table[QDL_INTERFACE_SLOTS];

static void marker(void) {}

static void fail(int slot, const char *expected) {
  printf("slot %d does not hold %s\n", slot, expected);
  ++failures;
}

/* The table gives functions, the linker objects: compared as bytes. */
static int is_symbol(QDL_Function function, const char *name) {
  void *symbol = dlsym(RTLD_DEFAULT, name);
  return symbol != NULL && memcmp(&function, &symbol, sizeof symbol) == 0;
}

/* Checks the slots of a run and marks them again. */
static void check_run(int slot, const char *names) {
  for (; *names != '\0'; ++slot) {
    char name[64];
    const int length = (int)strcspn(names, " ");
    snprintf(name, sizeof name, "QDL_%.*s", length, names);
    if (!is_symbol(table[slot], name))
      fail(slot, name);
    table[slot] = marker;
    names += length + (names[length] == ' ');
  }
}

int main(void) {
  size_t run;
  int slot;
  for (slot = 0; slot < QDL_INTERFACE_SLOTS; ++slot)
    table[slot] = marker;
  failures += PopulateInterface(table) != 1 || PopulateInterface(NULL) != 0;
  for (run = 0; run < sizeof kRuns / sizeof kRuns[0]; ++run)
    check_run(kRuns[run].first, kRuns[run].names);
  for (slot = 0; slot < QDL_INTERFACE_SLOTS; ++slot) {
    if (table[slot] != marker)
      fail(slot, "what the host put there");
  }
  return failures;
}
