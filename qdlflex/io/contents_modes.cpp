#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "io/contents.h"
#include "modes/mode_store.h"
#include "numerics/eigenvalue_lookup.h"
#include "record/lookups.h"

namespace qdlflex {
namespace {

constexpr const char *kShapeHeading =
    "     ID            dx               dy               dz               ax               ay   "
    "            az\n";
constexpr const char *kStressHeading =
    "       ID       sigma_x          sigma_y          sigma_z           tau_xy           tau_xz  "
    "         tau_yz\n";
constexpr const char *kStrainHeading =
    "       ID     epsilon_x        epsilon_y        epsilon_z         gamma_xy         gamma_xz  "
    "       gamma_yz\n";
constexpr std::size_t kTableWidth = 112;

}  // namespace

void ContentsReport::eigenvalues() {
  const auto modes = all_eigenvalues(record_);
  if (std::ranges::none_of(modes, [](const auto &mode) { return mode.has_value(); })) {
    std::fprintf(out_, "No eigenvalue information\n");
    return;
  }
  std::fprintf(out_,
               " Mode      Eigenvalue    Natural Freq.     Natural Freq.      Generalized       "
               "Generalized\n"
               "                             (Hz)            (Rad/Sec)           Mass            "
               "Stiffness\n"
               "===== ================= ================= ================= ================= "
               "=================\n");
  const double factor = QDL_UCF(&record_);
  for (std::size_t mode = 0; mode < modes.size(); ++mode) {
    if (!modes[mode])
      continue;
    const EigenEntry &entry = modes[mode]->entry;
    std::fprintf(out_, "%5d % 17.10le % 17.10le % 17.10le % 17.10le % 17.10le\n", mode_number(mode),
                 entry.eigenvalue * factor, entry.frequency, entry.circular_frequency,
                 entry.generalized_mass, entry.generalized_stiffness);
  }
}

void ContentsReport::six_columns(std::int32_t kind) {
  const char *const heading = kind == kModeShapes    ? kShapeHeading
                              : kind == kModalStress ? kStressHeading
                                                     : kStrainHeading;
  std::fprintf(out_, "%s%s\n\n", heading, std::string(kTableWidth, '~').c_str());
}

void ContentsReport::six_values(std::int32_t kind, std::int32_t node_id, const double *six) {
  std::fprintf(out_, "%9d", node_id);
  // Displacements leave room for a sign.
  if (kind == kModeShapes) {
    std::fprintf(out_, " % 16.9e % 16.9e % 16.9e", six[0], six[1], six[2]);
    std::fprintf(out_, " % 16.9e % 16.9e % 16.9e\n", six[3], six[4], six[5]);
  } else {
    std::fprintf(out_, " %16.9e %16.9e %16.9e", six[0], six[1], six[2]);
    std::fprintf(out_, " %16.9e %16.9e %16.9e\n", six[3], six[4], six[5]);
  }
}

/// One mode is in memory at a time. One that can't be read has been reported and shows no nodes.
void ContentsReport::mode_tables(std::int32_t kind, const char *name) {
  const auto nodes = static_cast<std::size_t>(mode_node_count(record_, kind));
  std::vector<double> values(nodes * kComponents);
  for (std::size_t mode = 0; mode < record_.mode_numbers.size(); ++mode) {
    std::fprintf(out_, "\n%s NUMBER %d=================================\n\n", name,
                 mode_number(mode));
    six_columns(kind);
    if (!fetch_mode(record_, kind, static_cast<std::int32_t>(mode), values.data()))
      continue;
    for (std::size_t node = 0; node < nodes; ++node) {
      six_values(kind, mode_node_id(record_, kind, static_cast<std::int32_t>(node)),
                 &values[node * kComponents]);
    }
  }
}

void ContentsReport::mode_shapes() {
  const bool exist = QDL_ModeExist(&record_, kModeShapes) != 0;
  std::fprintf(out_, "Number of Mode Shapes %d\n", exist ? mode_count() : 0);
  if (exist)
    mode_tables(kModeShapes, "MODE");
}

void ContentsReport::modal_stress() {
  if (QDL_ModeExist(&record_, kModalStress) == 0) {
    std::fprintf(out_, "\tNo Modal Stress Information\n\n");
    return;
  }
  std::fprintf(out_, "Number of Stress Shapes %d\n", mode_count());
  mode_tables(kModalStress, "STRESS SHAPE");
}

void ContentsReport::modal_strain() {
  if (QDL_ModeExist(&record_, kModalStrain) == 0) {
    std::fprintf(out_, "\tNo Modal Strain Information\n\n");
    return;
  }
  std::fprintf(out_, "Number of Strain Shapes %d\n", mode_count());
  mode_tables(kModalStrain, "STRAIN SHAPE");
}

void ContentsReport::pre_vectors(std::int32_t kind, std::span<const Vector6> vectors) {
  six_columns(kind);
  for (std::size_t slot = 0; slot < vectors.size(); ++slot) {
    six_values(kind, mode_node_id(record_, kind, static_cast<std::int32_t>(slot)),
               vectors[slot].data());
  }
}

void ContentsReport::pre_stress() {
  if (present(record_, Block::kPreStress))
    pre_vectors(kModalStress, record_.pre_stress);
  else
    std::fprintf(out_, "\tNo Nodal Pre-Stress Information\n\n");
}

void ContentsReport::pre_strain() {
  if (present(record_, Block::kPreStrain))
    pre_vectors(kModalStrain, record_.pre_strain);
  else
    std::fprintf(out_, "\tNo Nodal Pre-Strain Information\n\n");
}

void ContentsReport::modal_statistics() {
  if (QDL_ModalStatisticsExist(&record_) == 0) {
    std::fprintf(out_, "\tNo Modal Statistic Information\n\n");
    return;
  }
  struct Line {
    const char *label;
    std::int32_t (*get)(QDL_Record *, std::int32_t, std::int32_t *, double *);
  };
  constexpr Line kLines[] = {{"Max. Trans. Magnitude:      ", &QDL_GetMaxModeDisplacement},
                             {"Max. Small Rot. Magnitude:  ", &QDL_GetMaxModeRotation},
                             {"Max. Von Mises Stress:      ", &QDL_GetMaxVonMisesStress},
                             {"Max. Von Mises Strain:      ", &QDL_GetMaxVonMisesStrain}};
  std::fprintf(out_, "Number of Modes %d\n", mode_count());
  for (const std::int32_t mode : record_.mode_numbers) {
    for (const Line &line : kLines) {
      std::int32_t node = 0;
      double value = 0.0;
      line.get(&record_, mode, &node, &value);
      std::fprintf(out_, "%sNode ID = %d  Magnitude = %12.6e\n", line.label, node, value);
    }
  }
}

}  // namespace qdlflex
