#include "support/round_trip.h"

#include <algorithm>
#include <cstddef>
#include <set>

#include "support/harness.h"
#include "support/snapshot.h"

namespace qdlfuzz {

namespace {

void require_same_bytes(const std::string &first, const std::string &second) {
  const std::size_t same =
      static_cast<std::size_t>(std::ranges::mismatch(first, second).in1 - first.begin());
  require(first.size() == second.size() && same == first.size(),
          "a copy of the copy differs at byte " + std::to_string(same) + ", sizes " +
              std::to_string(first.size()) + " and " + std::to_string(second.size()));
}

struct Kinds {
  bool nodes, masses, shapes, stress, strain;
};

// The sections of a snapshot that a copy need not share.
std::set<std::string_view> left_out(std::string_view options, bool whole, const Kinds &kinds) {
  // Statistics of displacements are left for the reader of the copy to find.
  std::set<std::string_view> sections = {"version", "statistics"};
  if (options.find("no_ortho") != std::string_view::npos)
    sections.insert({"eigenvalues", "transformation"});
  // Mode numbers stand with the eigenvalues and the mode shapes.
  if (options.find("no_ortho") != std::string_view::npos && !kinds.shapes)
    sections.insert("modes");
  // Without nodal masses invariants and global mass are derived from one another. A rigid motion
  // moves all of them, which is the same but for rounding, or reports what it can't move.
  if (!kinds.masses)
    sections.insert({"global", "invariants"});
  // Pre-stress stands at the nodes of the stress modes, pre-strain at those of the strain modes.
  if (!kinds.stress)
    sections.insert("prestress");
  if (!kinds.strain)
    sections.insert("prestrain");
  // Modes end at the first one without generalized mass. What belongs to modes is not written
  // without any, and nodes that only they name go with them.
  if (!whole && !kinds.nodes)
    sections.insert("nodes");
  if (!whole)
    sections.insert({"modes", "eigenvalues", "transformation", "stiffness", "mass", "damping",
                     "shapes", "stress", "strain", "prestress", "prestrain", "invariants",
                     "preload", "loads", "rotor", "monitors"});
  return sections;
}

}  // namespace

std::string write_bytes(QDL_Record *model, std::string_view options, const char *name) {
  const std::string path = path_of(name);
  const int errors = messages().errors;
  set_write_options(options);
  const bool written = QDL_write_QDL(model, path.c_str()) == 1;
  set_write_options("");
  require(written == exists(path), "a write succeeds without a file, or leaves one when it fails");
  require(written || messages().errors > errors, "a write fails without an error");
  return written ? read_file(path) : "";
}

void require_round_trip(QDL_Record *model, std::string_view options) {
  const std::string first = write_bytes(model, options, "first.qdl");
  if (first.empty())
    return;
  // Some getters derive data that a later write would then hold.
  const std::int32_t had_modes = QDL_ModeCount(model);
  constexpr std::int32_t kCoordinates = 3, kNodalMasses = 8;
  const Kinds kinds = {QDL_Exists(model, kCoordinates) != 0, QDL_Exists(model, kNodalMasses) != 0,
                       QDL_ModeExist(model, QDL_MODE_SHAPE) != 0,
                       QDL_ModeExist(model, QDL_MODE_STRESS) != 0,
                       QDL_ModeExist(model, QDL_MODE_STRAIN) != 0};
  // Readers refuse stress and strain modes beside neither eigenvalues nor mode shapes.
  const bool unsolved = options.find("no_ortho") != std::string_view::npos;
  if (unsolved && !kinds.shapes && (kinds.stress || kinds.strain))
    return;
  const Snapshot before = snapshot(model);
  QDL_UnLink(model);
  QDL_Record *const copy = QDL_CreateFromQDL(path_of("first.qdl").c_str());
  require(copy != nullptr, "a file that was written can't be opened");
  require_same_bytes(first, write_bytes(copy, options, "second.qdl"));
  const std::string changed = before.difference(
      snapshot(copy), left_out(options, had_modes > 0 && QDL_ModeCount(copy) == had_modes, kinds));
  require(changed.empty(), "the copy differs in " + changed);
}

}  // namespace qdlfuzz
