#include "io/contents.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "format/version.h"
#include "record/faces.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltoc";
constexpr int kFrameWidth = 74;

const char *yes_or_no(bool yes) {
  return yes ? "Yes" : "No";
}

struct Label {
  Block block;
  const char *text;
};

constexpr Label kSummaryLabels[] = {
    {Block::kVersionCode, "Version code (1)"},
    {Block::kHeader, "Header (2)"},
    {Block::kContentSummary, "Content_summary (3)"},
    {Block::kNodalCoordinates, "Nodal_coords (4)"},
    {Block::kElementTopology, "Element_topology (5)"},
    {Block::kGlobalBodyProperties, "Global_body_props (6)"},
    {Block::kEigenvalues, "Eigenvalues (7)"},
    {Block::kModeShapes, "Mode_shapes (8)"},
    {Block::kNodalMasses, "Nodal_masses (9)"},
    {Block::kNodalInertias, "Nodal_inertias (10)"},
    {Block::kUnits, "Units (11)"},
    {Block::kGeneralizedStiffness, "Generalized_stiffness (12)"},
    {Block::kGeneralizedMass, "Generalized_mass (13)"},
    {Block::kElementFaces, "Element_faces (14)"},
    {Block::kGeneralizedDamping, "Generalized_damping (15)"},
    {Block::kModeShapeTransformation, "Mode_Shape_Transformation (16)"},
    {Block::kInterfaceNodes, "Interface_Nodes (17)"},
    {Block::kModalStress, "Modal Stress (18)"},
    {Block::kInvariant1, "Invariants 1 (19)"},
    {Block::kInvariant2, "Invariants 2 (20)"},
    {Block::kInvariant3, "Invariants 3 (21)"},
    {Block::kInvariant4, "Invariants 4 (22)"},
    {Block::kInvariant5, "Invariants 5 (23)"},
    {Block::kInvariant7, "Invariants 7 (24)"},
    {Block::kInvariant8, "Invariants 8 (25)"},
    {Block::kInvariant9, "Invariants 9 (26)"},
    {Block::kModalPreload, "Modal Preload (27)"},
    {Block::kModalLoads, "Modal Loads (28)"},
    {Block::kModalStrain, "Modal Strain (29)"},
    {Block::kModalStatistics, "Modal Statistics (30)"},
    {Block::kPreStress, "Nodal Pre-Stress (31)"},
    {Block::kPreStrain, "Nodal Pre-Strain (32)"},
    {Block::kMatrixOperators, "Matrix Operator (34)"},
    {Block::kModalLoadNodal, "Modal Load Nodal (35)"},
    {Block::kMonitorPoints, "Monitor Points (36)"},
    {Block::kRotorDynamics, "Rotor Dynamics (37)"},
};

}  // namespace

std::span<const ContentsReport::Entry> ContentsReport::entries() {
  using R = ContentsReport;
  static constexpr Entry kEntries[] = {
      {Block::kVersionCode, "Version Code:", &R::version_code},
      {Block::kHeader, "Header:", &R::header},
      {Block::kContentSummary, "Content Summary:", &R::content_summary},
      {Block::kNodalCoordinates, "Nodal Coords:", &R::nodal_coordinates},
      {Block::kElementTopology, "Element Topology:", &R::element_topology},
      {Block::kGlobalBodyProperties, "Global Body Properties:", &R::global_body_properties},
      {Block::kEigenvalues, "Eigenvalues:", &R::eigenvalues},
      {Block::kModeShapes, "Mode Shapes:", &R::mode_shapes},
      {Block::kNodalMasses, "Nodal Masses:", &R::nodal_masses},
      {Block::kNodalInertias, "Nodal Inertias:", &R::nodal_inertias},
      {Block::kUnits, "QDL Default Units:", &R::units},
      {Block::kGeneralizedStiffness, "Generalized Stiffness:", &R::generalized_stiffness},
      {Block::kGeneralizedMass, "Generalized Mass:", &R::generalized_mass},
      {Block::kElementFaces, "Element Faces:", &R::element_faces},
      {Block::kGeneralizedDamping, "Generalized Damping:", &R::generalized_damping},
      {Block::kModeShapeTransformation, "Mode Shape Transformation:", &R::transformation},
      {Block::kInterfaceNodes, "Interface Nodes:", &R::interface_nodes},
      {Block::kModalStress, "Node Stress per Mode:", &R::modal_stress},
      {Block::kInvariant1, "Invariant 1:", &R::invariant_1},
      {Block::kInvariant2, "Invariant 2:", &R::invariant_2},
      {Block::kInvariant3, "Invariant 3:", &R::invariant_3},
      {Block::kInvariant4, "Invariant 4:", &R::invariant_4},
      {Block::kInvariant5, "Invariant 5:", &R::invariant_5},
      {Block::kInvariant7, "Invariant 7:", &R::invariant_7},
      {Block::kInvariant8, "Invariant 8:", &R::invariant_8},
      {Block::kInvariant9, "Invariant 9:", &R::invariant_9},
      {Block::kModalPreload, "Modal Preload:", &R::modal_preload},
      {Block::kModalLoads, "Modal Loads:", &R::modal_loads},
      {Block::kModalStrain, "Node Strain per Mode:", &R::modal_strain},
      {Block::kModalStatistics, "Modal Statistics:", &R::modal_statistics},
      {Block::kPreStress, "Nodal Pre-Stress:", &R::pre_stress},
      {Block::kPreStrain, "Nodal Pre-Strain:", &R::pre_strain},
      {Block::kMatrixOperators, "Matrix Operator:", &R::matrix_operators},
      {Block::kModalLoadNodal, "Modal Load Nodal:", &R::nodal_loads},
      {Block::kMonitorPoints, "Monitor Point:", &R::monitor_points},
      {Block::kRotorDynamics, "Rotor Dynamics:", &R::rotor_dynamics},
  };
  return kEntries;
}

void ContentsReport::print(std::int32_t block_id) {
  const auto all = entries();
  const auto found = std::ranges::find(all, static_cast<Block>(block_id), &Entry::block);
  if (found == all.end())
    return;
  frame(block_id, found->title);
  (this->*found->content)();
}

void ContentsReport::frame(std::int32_t block_id, const char *title) {
  const std::string dashes(kFrameWidth, '-');
  const std::string blank = "|" + std::string(kFrameWidth - 2, ' ') + "|";
  std::fprintf(out_, "\n\n%s\n%s\n", dashes.c_str(), blank.c_str());
  std::fprintf(out_, "|    Block %3d:      %-30s                      |\n", block_id, title);
  std::fprintf(out_, "%s\n%s\n\n\n", blank.c_str(), dashes.c_str());
}

void ContentsReport::version_code() {
  const std::uint32_t code = record_.version_code;
  std::fprintf(out_, "QDL version:%4.1f\n", version_number(code) / 10.0);
  std::fprintf(out_, "Precision: %s   \n", is_single_precision(code) ? "Single" : "Double");
  std::fprintf(out_, "Platform independent (XDR encoded): %s \n", yes_or_no(uses_xdr(code)));
  std::fprintf(out_, "Coarsened or sketched mesh: %s \n\n", yes_or_no((code & kCoarsenedBit) != 0));
}

void ContentsReport::header() {
  char title[128], date[32], input_name[128], input_type[16], comments[3][80];
  QDL_Header(&record_, title, date, input_name, input_type, comments[0], comments[1], comments[2]);
  std::fprintf(out_, "Title: %s\nDate: %s\nInput file name: %s\nInput file type: %s\nComments:\n",
               title, date, input_name, input_type);
  for (const char *comment : comments)
    std::fprintf(out_, "  %s\n", comment);
}

void ContentsReport::content_summary() {
  std::fprintf(out_, "Existence:\n");
  for (const Label &label : kSummaryLabels)
    std::fprintf(out_, "%30s %s\n", label.text, yes_or_no(present(record_, label.block)));
}

void ContentsReport::nodal_coordinates() {
  for (const Node &node : record_.nodes) {
    std::fprintf(out_, "%9d ", node.id);
    for (const double x : node.xyz)
      std::fprintf(out_, "%20.10le ", x);
    std::fprintf(out_, "\n");
  }
}

void ContentsReport::element_topology() {
  std::fprintf(out_, "Obsolete: Reported as part of face list, block 14\n");
}

/// The two rows below a first row that follows a label of this width.
void ContentsReport::inertia_rows(const double *nine, int indent) {
  for (int row = 0; row < 3; ++row, nine += 3)
    std::fprintf(out_, "%*s% 17.10lf % 17.10lf % 17.10lf\n", row == 0 ? 0 : indent, "", nine[0],
                 nine[1], nine[2]);
}

void ContentsReport::global_body_properties() {
  if (!present(record_, Block::kGlobalBodyProperties) && !present(record_, Block::kNodalMasses) &&
      !present(record_, Block::kInvariant1)) {
    std::fprintf(out_, "No global body property information\n");
    return;
  }
  double mass = 0.0;
  Vector3 centre{};
  Matrix3 inertia{};
  QDL_TotalMassInertia(&record_, &mass, centre.data(), inertia.data());
  std::fprintf(out_, "Mass: % 17.10lf\n", mass);
  std::fprintf(out_, "Center of Mass: % 17.10lf % 17.10lf % 17.10lf\n", centre[0], centre[1],
               centre[2]);
  inertia_rows(inertia.data(), std::fprintf(out_, "Inertia Tensor: "));
}

void ContentsReport::nodal_masses() {
  for (const Node &node : record_.nodes)
    std::fprintf(out_, "%9d\t%le\n", node.id, node.mass);
}

void ContentsReport::nodal_inertias() {
  bool any = false;
  for (const Node &node : record_.nodes) {
    if (node.inertia == nullptr)
      continue;
    any = true;
    inertia_rows(symmetric_matrix(*node.inertia).data(),
                 std::fprintf(out_, "Inertia Tensor of Node %9d: ", node.id));
  }
  if (!any)
    std::fprintf(out_, "\tNo Nodal Inertia information.\n");
}

void ContentsReport::units() {
  std::array<char, 16> mass{}, length{}, time{}, force{};
  QDL_Units(&record_, mass.data(), length.data(), time.data(), force.data());
  std::fprintf(out_,
               "Units:\nMass Units    %s\nLength Units  %s\nTime Units    %s\nForce Units   %s\n",
               mass.data(), length.data(), time.data(), force.data());
}

void ContentsReport::element_faces() {
  std::fprintf(out_, "number of faces %d\n\n", record_.faces.count);
  for_each_face(record_.faces, [this](std::span<const std::int32_t> face) {
    for (const std::int32_t node : face)
      std::fprintf(out_, "%9d      ", node_id(record_, node));
    std::fprintf(out_, "\n");
  });
}

void ContentsReport::interface_nodes() {
  for (std::size_t i = 0; i < record_.interface_nodes.size(); ++i) {
    std::fprintf(out_, "%4d %9d \n", static_cast<int>(i),
                 node_id(record_, record_.interface_nodes[i]));
  }
}

}  // namespace qdlflex

void QDL_Contents(QDL_Record *model, int32_t blockId, FILE *stream) {
  using namespace qdlflex;
  with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (stream == nullptr)
      return 0;
    ContentsReport(record, stream).print(blockId);
    return 1;
  });
  // Also what stood there before memory ran out.
  if (model != nullptr && stream != nullptr)
    std::fflush(stream);
}
