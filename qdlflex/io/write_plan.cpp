#include "io/write_plan.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <utility>

#include "format/version.h"
#include "geometry/coarsened.h"
#include "geometry/prune.h"
#include "numerics/eigenvalue_lookup.h"
#include "numerics/global_mass.h"
#include "numerics/orthonormalize.h"
#include "numerics/principal_damping.h"
#include "numerics/principal_forces.h"
#include "numerics/qdlinvar.h"
#include "numerics/rigid_body_modes.h"

namespace qdlflex {
namespace {

void copy_presence(const QDL_Record &record, WritePlan &plan, std::initializer_list<Block> blocks) {
  for (const Block block : blocks)
    plan.set(block, present(record, block));
}

/// Faces go to the block that the version's readers know.
void plan_faces(const QDL_Record &record, WritePlan &plan) {
  const bool has_faces = record.faces.present || present(record, Block::kElementFaces) ||
                         present(record, Block::kElementTopology);
  const std::uint32_t version = version_number(plan.version_code);
  const bool old_block = version == 10 || version == 20;
  plan.set(Block::kElementTopology, has_faces && old_block);
  plan.set(Block::kElementFaces, has_faces && !old_block);
}

void plan_stored_blocks(const QDL_Record &record, WritePlan &plan) {
  plan.set(Block::kUnits, true);
  copy_presence(record, plan,
                {Block::kNodalCoordinates, Block::kModeShapes, Block::kNodalMasses,
                 Block::kNodalInertias, Block::kGeneralizedDamping, Block::kInterfaceNodes});
  plan_faces(record, plan);
}

void plan_all_modes(const QDL_Record &record, WritePlan &plan) {
  plan.first_mode = 0;
  plan.end_mode = mode_count(record);
}

/// Generalized matrices instead of eigenvalues, and every mode.
void plan_unsolved(const QDL_Record &record, WritePlan &plan) {
  plan.set(Block::kGeneralizedStiffness, true);
  plan.set(Block::kGeneralizedMass, true);
  plan_all_modes(record, plan);
}

/// The modes between the frequency limits, up to the first one without generalized mass.
void plan_frequency_band(const QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  const double lower = options.highpass.value_or(-1.0);
  const double upper = options.lowpass.value_or(1.0e8);
  QDL_Info("Exporting frequency range [%le,%le]\n", lower, upper);
  const auto modes = all_eigenvalues(record);
  const auto frequency = [&](std::size_t mode) {
    return modes[mode] ? modes[mode]->entry.frequency : 0.0;
  };
  const auto massless = [&](std::size_t mode) {
    return !modes[mode] || modes[mode]->entry.generalized_mass == 0.0;
  };
  std::size_t first = 0;
  while (first < modes.size() && !(frequency(first) > lower))
    ++first;
  if (first == modes.size())
    first = 0;
  std::size_t end = 0;
  while (end < modes.size() && !(frequency(end) > upper) && !massless(end))
    ++end;
  plan.first_mode = static_cast<std::int32_t>(first);
  plan.end_mode = static_cast<std::int32_t>(std::max(first, end));
}

/// The first exported mode becomes mode 1.
void renumber_modes(QDL_Record &record, std::int32_t first_mode) {
  if (record.mode_numbers.empty())
    return;
  // Numbers from a file may be any, so the differences wrap around.
  const auto first =
      static_cast<std::uint32_t>(record.mode_numbers[static_cast<std::size_t>(first_mode)]);
  const auto renumbered = [&](std::int32_t number) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number) - first + 1u);
  };
  for (std::int32_t &number : record.mode_numbers)
    number = renumbered(number);
  for (EigenEntry &entry : record.eigenvalues)
    entry.mode_number = renumbered(entry.mode_number);
}

bool plan_modes(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  if (options.no_ortho) {
    plan_unsolved(record, plan);
    return true;
  }
  if (mode_count(record) > 0 && !orthonormalize(record))
    return false;
  plan.set(Block::kEigenvalues, mode_count(record) > 0);
  plan.set(Block::kModeShapeTransformation, record.transformation.present);
  plan_frequency_band(record, options, plan);
  renumber_modes(record, plan.first_mode);
  return true;
}

/// Mass, centre and inertia come from the invariants where those are known, else they are the
/// record's own, else they are derived from the nodes by every write anew, so that masses set in
/// between count.
void plan_global_mass(QDL_Record &record, bool invariants_known, WritePlan &plan) {
  const bool own = present(record, Block::kGlobalBodyProperties);
  const bool from_nodes =
      present(record, Block::kNodalCoordinates) && present(record, Block::kNodalMasses);
  if (invariants_known || (!own && from_nodes))
    update_global_mass(record);
  if (invariants_known)
    raise(record, Block::kGlobalBodyProperties);
  plan.set(Block::kGlobalBodyProperties, invariants_known || own || from_nodes);
}

void plan_modal_data(const QDL_Record &record, WritePlan &plan) {
  copy_presence(record, plan,
                {Block::kModalPreload, Block::kModalLoads, Block::kModalStress, Block::kModalStrain,
                 Block::kPreStress, Block::kPreStrain, Block::kMatrixOperators,
                 Block::kModalLoadNodal, Block::kRotorDynamics});
  const bool points =
      present(record, Block::kMonitorPoints) || present(record, Block::kOldMonitorPoints);
  plan.set(Block::kMonitorPoints, points && !record.monitor_points.empty());
}

/// A file without modes has none of the blocks that belong to them. Pre-stress needs the nodes of
/// the stress modes, pre-strain those of the strain modes.
void drop_blocks_without_modes(WritePlan &plan) {
  if (plan.modes() == 0) {
    for (const Block block :
         {Block::kEigenvalues, Block::kModeShapes, Block::kGeneralizedDamping,
          Block::kModeShapeTransformation, Block::kModalStress, Block::kInvariant3,
          Block::kInvariant4, Block::kInvariant5, Block::kInvariant8, Block::kInvariant9,
          Block::kModalPreload, Block::kModalLoads, Block::kModalStrain, Block::kModalStatistics}) {
      plan.set(block, false);
    }
  }
  if (!plan.writes(Block::kModalStress))
    plan.set(Block::kPreStress, false);
  if (!plan.writes(Block::kModalStrain))
    plan.set(Block::kPreStrain, false);
}

/// Which invariants the file gets: those that the record holds, and those that are asked for.
enum class InvariantOutcome { kAsHeld, kComputed, kIllegal };

InvariantOutcome plan_invariants(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  copy_presence(record, plan,
                {Block::kInvariant1, Block::kInvariant2, Block::kInvariant3, Block::kInvariant4,
                 Block::kInvariant5, Block::kInvariant7, Block::kInvariant8, Block::kInvariant9});
  if (!options.invariants)
    return InvariantOutcome::kAsHeld;
  if (!options.full_invariants && !options.fast_invariants) {
    QDL_Error("Illegal invariants option, use full_invar or fast_invar.");
    return InvariantOutcome::kIllegal;
  }
  if (options.full_invariants)
    QDL_FullComputeInvars(&record);
  else
    QDL_FastComputeInvars(&record);
  for (const Block block : {Block::kInvariant1, Block::kInvariant2, Block::kInvariant3,
                            Block::kInvariant4, Block::kInvariant7, Block::kInvariant8})
    plan.set(block, true);
  for (const Block block : {Block::kInvariant5, Block::kInvariant9})
    plan.set(block, options.full_invariants);
  return InvariantOutcome::kComputed;
}

/// Loads and damping beside invariants are on principal axes for whoever reads the file.
bool project_on_principal_axes(QDL_Record &record) {
  forces_on_principal_axes(record);
  return damping_on_principal_axes(record);
}

/// Geometry, masses and rigid invariants alone.
void prepare_empty_body(QDL_Record &record, WritePlan &plan) {
  plan.set(Block::kUnits, true);
  copy_presence(record, plan,
                {Block::kNodalCoordinates, Block::kNodalMasses, Block::kNodalInertias,
                 Block::kInterfaceNodes});
  plan_faces(record, plan);
  QDL_RigidComputeInvars(&record);
  for (const Block block : {Block::kInvariant1, Block::kInvariant2, Block::kInvariant7})
    plan.set(block, true);
  plan_global_mass(record, true, plan);
}

/// Everything that the record holds. False when the write has to fail.
bool prepare_body(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  plan_stored_blocks(record, plan);
  if (!plan_modes(record, options, plan))
    return false;
  const InvariantOutcome outcome = plan_invariants(record, options, plan);
  const bool invariants_known =
      outcome == InvariantOutcome::kComputed || present(record, Block::kInvariant3);
  if (invariants_known && !project_on_principal_axes(record))
    return false;
  plan.may_convert_units = outcome != InvariantOutcome::kIllegal;
  if (invariants_known && plan.may_convert_units) {
    // The mass of the discarded nodes stays in the global mass properties.
    for (const int number : {1, 2, 7})
      obtain_invariant(record, number);
    plan.may_convert_units = discard_unreferenced_nodes(record);
  }
  plan_global_mass(record, invariants_known, plan);
  plan_modal_data(record, plan);
  plan.statistics.resize(static_cast<std::size_t>(plan.modes()));
  plan.set(Block::kModalStatistics, plan.modes() > 0);
  drop_blocks_without_modes(plan);
  if (record.damping_on_principal_axes)
    plan.rigid_modes = rigid_body_mode_count(record);
  return true;
}

}  // namespace

Encoding WritePlan::encoding() const {
  const std::uint32_t code = version_code & ~kCoarsenedBit;
  return {uses_xdr(code), !is_single_precision(code)};
}

bool WritePlan::full_stress() const {
  return version_number(version_code) < kCurrentVersion;
}

bool edit_model(QDL_Record &record, const WriteOptions &options) {
  if (options.shift_frame && QDL_ShiftLBRFtoCM(&record) == 0)
    return false;
  if (options.sketch)
    QDL_SketchGrid(&record, options.sketch->c_str());
  if (options.strip_faces)
    QDL_StripCommonFaces(&record);
  if (options.coarsen)
    QDL_TrimGeometry(&record, options.coarsen->c_str());
  return true;
}

bool prepare_blocks(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  if (options.empty)
    prepare_empty_body(record, plan);
  else if (!prepare_body(record, options, plan))
    return false;
  if (options.mks && plan.may_convert_units)
    QDL_SetUnits(&record, "KILOGRAM", "METER", "SECOND", "NEWTON");
  return true;
}

}  // namespace qdlflex
