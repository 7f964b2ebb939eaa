#include "io/write_plan.h"

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <utility>

#include "format/version.h"
#include "geometry/coarsened.h"
#include "numerics/eigenvalue_lookup.h"
#include "numerics/global_mass.h"
#include "numerics/qdlinvar.h"

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

bool has_generalized_entries(const QDL_Record &record) {
  return !record.stiffness.entries.empty() || !record.mass.entries.empty();
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

/// Modes with an eigenvalue table and no generalized entries are orthonormal already: they stay as
/// they are, and their transformation is the identity where the record has none.
bool orthonormalize(QDL_Record &record) {
  if (mode_count(record) == 0)
    return true;
  if (record.eigenvalues.empty() || has_generalized_entries(record)) {
    QDL_Error("Modes that are not orthonormal can only be written with the option no_ortho.");
    return false;
  }
  Transformation &transformation = record.transformation;
  if (transformation.present)
    return true;
  const auto modes = static_cast<std::size_t>(mode_count(record));
  transformation = {mode_count(record), std::vector<double>(modes * modes),
                    std::vector<std::int32_t>(modes), true};
  for (std::size_t mode = 0; mode < modes; ++mode)
    transformation.matrix[mode * (modes + 1)] = 1.0;
  return true;
}

bool plan_modes(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  if (options.no_ortho) {
    plan_unsolved(record, plan);
    return true;
  }
  if (!orthonormalize(record))
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

/// Options that cannot be honoured must not be ignored in silence.
bool report_unavailable(const WriteOptions &options) {
  const std::pair<bool, const char *> unavailable[] = {
      {options.shift_frame, "lbrf2cm"},
      {options.sketch.has_value(), "sketch"},
      {options.strip_faces, "strip_face"},
      {options.coarsen.has_value(), "coarsen"},
      {options.full_invariants, "full_invar"},
      {options.fast_invariants, "fast_invar"},
      {options.empty, "empty"},
  };
  const auto *found = std::ranges::find(unavailable, true, &std::pair<bool, const char *>::first);
  if (found == std::end(unavailable))
    return false;
  QDL_Error("Write option %s is not available in this build.", found->second);
  return true;
}

/// Invariants asked for without saying which ones.
bool report_illegal_invariants(const WriteOptions &options) {
  if (!options.invariants || options.full_invariants || options.fast_invariants)
    return false;
  QDL_Error("Illegal invariants option, use full_invar or fast_invar.");
  return true;
}

/// Damping beside invariants is taken to be projected on principal axes by whoever reads the file.
bool damping_needs_projection(const QDL_Record &record, const WritePlan &plan) {
  const bool beside = plan.writes(Block::kInvariant3) && plan.writes(Block::kGeneralizedDamping);
  if (!beside || record.damping_on_principal_axes || record.damping.entries.empty())
    return false;
  QDL_Error("Projecting the damping on principal axes is not available in this build.");
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

bool prepare_blocks(QDL_Record &record, const WriteOptions &options, WritePlan &plan) {
  if (report_unavailable(options))
    return false;
  plan_stored_blocks(record, plan);
  if (!plan_modes(record, options, plan))
    return false;
  const bool illegal_invariants = report_illegal_invariants(options);
  copy_presence(record, plan,
                {Block::kInvariant1, Block::kInvariant2, Block::kInvariant3, Block::kInvariant4,
                 Block::kInvariant5, Block::kInvariant7, Block::kInvariant8, Block::kInvariant9});
  if (damping_needs_projection(record, plan))
    return false;
  plan_global_mass(record, present(record, Block::kInvariant3), plan);
  plan_modal_data(record, plan);
  plan.statistics.resize(static_cast<std::size_t>(plan.modes()));
  plan.set(Block::kModalStatistics, plan.modes() > 0);
  drop_blocks_without_modes(plan);
  if (options.mks && !illegal_invariants)
    QDL_SetUnits(&record, "KILOGRAM", "METER", "SECOND", "NEWTON");
  return true;
}

}  // namespace qdlflex
