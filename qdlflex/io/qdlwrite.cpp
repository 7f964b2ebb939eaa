#include <qdlflex/qdlflex.h>

#include <memory>
#include <string>

#include "format/version.h"
#include "geometry/coarsened.h"
#include "io/block_writer.h"
#include "io/write_options.h"
#include "io/write_plan.h"
#include "record/open_models.h"
#include "support/boundary.h"
#include "support/environment.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdlwrite";

/// Mode data may still have to be read from the model's own file or from that of another open
/// model, whatever name the output gives it.
bool would_destroy_open_data(const QDL_Record &record, const std::string &path) {
  const bool same_name = !record.file_name.empty() && record.file_name == path;
  if (!same_name && !in_use_by_open_model(identity_of(path)))
    return false;
  QDL_Error(
      "The output QDL name must be different than the current QDL name.\n"
      "  Current QDL name:  %s\n  Output QDL name:  %s",
      record.file_name.c_str(), path.c_str());
  return true;
}

void report_unable_to_open(const char *path) {
  QDL_Error("Unable to open %s for write. Please check write permissions.", path);
}

/// Which lines the summary has and whose presence each shows.
void announce_contents(const QDL_Record &record, const WritePlan &plan) {
  const auto line = [](const char *label, bool shown) {
    QDL_Info("%30s %s", label, shown ? "Yes" : "No");
  };
  QDL_Info("\nCreating a QDL File with the following information:\n");
  line("Nodal Coords", plan.writes(Block::kNodalCoordinates));
  line("Element Faces", plan.writes(Block::kElementFaces));
  line("Eigenvalues", plan.writes(Block::kEigenvalues));
  line("Mode Shapes", plan.writes(Block::kModeShapes));
  line("Global Mass Properties", plan.writes(Block::kGlobalBodyProperties));
  line("Nodal Masses", plan.writes(Block::kNodalMasses));
  line("Nodal Inertias", plan.writes(Block::kNodalInertias));
  // These two show what the record holds, not what is written.
  line("Generalized Stiffness", present(record, Block::kGeneralizedStiffness));
  line("Generalized Mass", present(record, Block::kGeneralizedMass));
  line("Generalized Damping", plan.writes(Block::kGeneralizedDamping));
  line("Mode Transformation", plan.writes(Block::kModeShapeTransformation));
  line("Stress Modes", plan.writes(Block::kModalStress));
  line("Interface Nodes", plan.writes(Block::kInterfaceNodes));
  line("Inertia Invariants", plan.writes(Block::kInvariant1));
  line("Modal Preload", plan.writes(Block::kModalPreload));
  line("Modal Loads", plan.writes(Block::kModalLoads));
  line("Strain Modes", plan.writes(Block::kModalStrain));
  line("Nodal Pre-Stress", plan.writes(Block::kPreStress));
  line("Nodal Pre-Strain", plan.writes(Block::kPreStrain));
  line("Matrix Operators", plan.writes(Block::kMatrixOperators));
  line("Modal Load Nodal", plan.writes(Block::kModalLoadNodal));
  line("Monitor Points", plan.writes(Block::kMonitorPoints));
  line("Rotor Dynamics", plan.writes(Block::kRotorDynamics));
}

/// Everything between opening and closing the output.
bool write_contents(QDL_Record &record, File &file) {
  const WriteOptions options = parse_write_options(environment_text("ZEB_QDLWRITE_OPTIONS"));
  if (!edit_model(record, options))
    return false;
  const std::optional<std::uint32_t> code = choose_version_code(options);
  if (!code) {
    QDL_Error("Problem writing version number.");
    return false;
  }
  WritePlan plan;
  plan.version_code = is_coarsened(record) ? *code | kCoarsenedBit : *code;
  BlockWriter writer(record, plan, file);
  if (!writer.version_code() || !writer.header())
    return false;
  if (!prepare_blocks(record, options, plan))
    return false;
  announce_contents(record, plan);
  return writer.summary() && writer.blocks() && writer.close();
}

bool write_file(QDL_Record &record, const std::string &path) {
  if (would_destroy_open_data(record, path))
    return false;
  const FileSizeSignalBlock no_signal;
  const std::shared_ptr<File> file = File::open(path, File::Access::kWrite);
  if (file == nullptr) {
    report_unable_to_open(path.c_str());
    return false;
  }
  const bool written = guarded(kArea, false, [&] { return write_contents(record, *file); });
  if (!written) {
    file->close();
    remove_regular_file(path);
  }
  return written;
}

}  // namespace

int32_t QDL_write_QDL(QDL_Record *model, const char *path) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (path == nullptr || path[0] == '\0') {
      report_unable_to_open("");
      return false;
    }
    return write_file(record, path);
  });
}
