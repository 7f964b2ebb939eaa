#include "io/block_writer.h"

#include <qdlflex/qdlflex.h>

#include <cstring>

#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlwrite";

}  // namespace

/// In the order of the file.
const BlockWriter::Entry BlockWriter::kBlocks[] = {
    {Block::kNodalCoordinates, &BlockWriter::nodal_coordinates,
     "Problem writing nodal coordinates.\n"},
    {Block::kElementTopology, &BlockWriter::element_topology,
     "Problem writing element topology map."},
    {Block::kGlobalBodyProperties, &BlockWriter::global_body_properties,
     "Problem writing Global Body Properties."},
    {Block::kEigenvalues, &BlockWriter::eigenvalues, "Problem writing eigenvalues."},
    {Block::kModeShapes, &BlockWriter::mode_shapes, "Problem writing Mode Shapes."},
    {Block::kNodalMasses, &BlockWriter::nodal_masses, "Problem writing Nodal Masses.\n"},
    {Block::kNodalInertias, &BlockWriter::nodal_inertias, "Problem writing Nodal Inertia info."},
    {Block::kUnits, &BlockWriter::units, "Problem writing Units strings."},
    {Block::kGeneralizedStiffness, &BlockWriter::generalized_stiffness,
     "Problem writing Generalized Stiffness info."},
    {Block::kGeneralizedMass, &BlockWriter::generalized_mass,
     "Problem writing Generalized Mass info."},
    {Block::kElementFaces, &BlockWriter::element_faces, "Problem writing element face info."},
    {Block::kGeneralizedDamping, &BlockWriter::generalized_damping,
     "Problem writing Generalized Damping info."},
    {Block::kModeShapeTransformation, &BlockWriter::transformation,
     "Problem writing Mode Shape Transformation."},
    {Block::kInterfaceNodes, &BlockWriter::interface_nodes, "Problem writing Interface Nodes."},
    {Block::kModalStress, &BlockWriter::modal_stress, "Problem writing Modal Stress.\n"},
    {Block::kInvariant1, &BlockWriter::invariant_1, "Problem writing Invariant 1.\n"},
    {Block::kInvariant2, &BlockWriter::invariant_2, "Problem writing Invariant 2.\n"},
    {Block::kInvariant3, &BlockWriter::invariant_3, "Problem writing Invariant 3.\n"},
    {Block::kInvariant4, &BlockWriter::invariant_4, "Problem writing Invariant 4.\n"},
    {Block::kInvariant5, &BlockWriter::invariant_5, "Problem writing Invariant 5.\n"},
    {Block::kInvariant7, &BlockWriter::invariant_7, "Problem writing Invariant 7.\n"},
    {Block::kInvariant8, &BlockWriter::invariant_8, "Problem writing Invariant 8.\n"},
    {Block::kInvariant9, &BlockWriter::invariant_9, "Problem writing Invariant 9.\n"},
    {Block::kModalPreload, &BlockWriter::modal_preload, "Problem writing Preload.\n"},
    {Block::kModalLoads, &BlockWriter::modal_loads, "Problem writing Modal Loads.\n"},
    {Block::kModalStrain, &BlockWriter::modal_strain, "Problem writing Modal Strain."},
    {Block::kModalStatistics, &BlockWriter::modal_statistics,
     "Problem writing Modal Statistics.\n"},
    {Block::kPreStress, &BlockWriter::pre_stress, "Problem writing Pre-Stress.\n"},
    {Block::kPreStrain, &BlockWriter::pre_strain, "Problem writing Pre-Strain.\n"},
    {Block::kMatrixOperators, &BlockWriter::matrix_operators,
     "Problem writing Matrix Operator Data.\n"},
    {Block::kModalLoadNodal, &BlockWriter::nodal_loads, "Problem writing Modal Load Nodal.\n"},
    {Block::kMonitorPoints, &BlockWriter::monitor_points, "Problem writing Monitor Point Data.\n"},
    {Block::kRotorDynamics, &BlockWriter::rotor_dynamics, "Problem writing Rotor Dynamics Data.\n"},
};

bool BlockWriter::run(Step step, const char *failure, int line) {
  bool written = false;
  failure_of_last_step_ = failure;
  const bool had_memory = with_memory([&] { written = (this->*step)(); });
  if (!had_memory)
    report_allocation_failure(line, kArea);
  if (had_memory && written && sink_.flush())
    return true;
  QDL_Error("%s", failure);
  return false;
}

bool BlockWriter::version_code() {
  return run(&BlockWriter::write_version_code, "Problem writing version number.");
}

bool BlockWriter::header() {
  return run(&BlockWriter::write_header, "Problem writing header information.");
}

bool BlockWriter::summary() {
  return run(&BlockWriter::write_summary, "Problem writing content summary.\n");
}

bool BlockWriter::blocks() {
  for (const Entry &entry : kBlocks) {
    if (plan_.writes(entry.block) && !run(entry.step, entry.failure))
      return false;
  }
  return true;
}

bool BlockWriter::close() {
  sink_.finish();
  if (file_.close())
    return true;
  QDL_Error("%s", failure_of_last_step_);
  return false;
}

bool BlockWriter::write_version_code() {
  return sink_.i32(static_cast<std::int32_t>(plan_.version_code));
}

bool BlockWriter::write_header() {
  Header header{};
  QDL_Header(&record_, header.title.data(), header.date.data(), header.input_name.data(),
             header.input_type.data(), header.comments[0].data(), header.comments[1].data(),
             header.comments[2].data());
  const auto field = [&](const auto &text) {
    return sink_.characters(std::string_view(text.data(), ::strnlen(text.data(), text.size())),
                            text.size());
  };
  return field(header.title) && field(header.date) && field(header.input_name) &&
         field(header.input_type) && field(header.comments[0]) && field(header.comments[1]) &&
         field(header.comments[2]);
}

bool BlockWriter::write_summary() {
  const auto &bytes = plan_.summary;
  return sink_.characters(
      std::string_view(reinterpret_cast<const char *>(bytes.data()), bytes.size()), bytes.size());
}

bool BlockWriter::mode_range(const double *values, std::size_t count) {
  std::vector<double> range(static_cast<std::size_t>(modes()), 0.0);
  const auto first = static_cast<std::size_t>(plan_.first_mode);
  for (std::size_t i = 0; i < range.size() && first + i < count; ++i)
    range[i] = values[first + i];
  return sink_.reals(range.data(), range.size());
}

}  // namespace qdlflex
