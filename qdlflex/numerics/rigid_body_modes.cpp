#include "numerics/rigid_body_modes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <span>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "numerics/eigenvalue_lookup.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

using Frequencies = std::vector<std::optional<double>>;

/// None for a mode whose generalized stiffness and mass are not diagonal.
Frequencies frequencies_of(const QDL_Record &record) {
  Frequencies frequencies;
  frequencies.reserve(record.mode_numbers.size());
  for (const std::optional<ModeEigenvalue> &mode : all_eigenvalues(record)) {
    frequencies.push_back(mode ? std::optional(mode->entry.frequency) : std::nullopt);
  }
  return frequencies;
}

double rigid_body_threshold(double first_flexible_frequency) {
  if (const char *value = std::getenv("QDL_RIGID_BODY_THRESHOLD"))
    return std::strtod(value, nullptr);
  return 0.001 * std::max(1.0, first_flexible_frequency);
}

/// With more than six modes: those of the first six that lie below the threshold.
std::int32_t count_below_threshold(std::span<const std::optional<double>> frequencies) {
  const std::optional<double> seventh = frequencies[kRigidBodyAxes];
  if (!seventh)
    return 0;
  const double threshold = rigid_body_threshold(*seventh);
  return static_cast<std::int32_t>(std::ranges::count_if(
      frequencies.first(kRigidBodyAxes),
      [&](std::optional<double> frequency) { return frequency && *frequency <= threshold; }));
}

bool is_jump(double first, double previous, double frequency) {
  return (std::fabs(first) < 0.1 && frequency > 10.0) ||
         std::fabs(frequency) > 10000.0 * std::fabs(previous);
}

/// With six modes or fewer: those before the last jump. After a first mode near zero every mode
/// above 10 Hz is one.
std::int32_t count_before_last_jump(std::span<const std::optional<double>> frequencies) {
  if (std::ranges::any_of(frequencies, [](const auto &frequency) { return !frequency; }))
    return 0;
  std::size_t count = 0;
  for (std::size_t mode = 1; mode < frequencies.size(); ++mode) {
    if (is_jump(*frequencies[0], *frequencies[mode - 1], *frequencies[mode]))
      count = mode;
  }
  return static_cast<std::int32_t>(count);
}

std::int32_t count_rigid(const Frequencies &frequencies) {
  return frequencies.size() > kRigidBodyAxes ? count_below_threshold(frequencies)
                                             : count_before_last_jump(frequencies);
}

}  // namespace

std::int32_t rigid_body_mode_count(const QDL_Record &record) {
  return count_rigid(frequencies_of(record));
}

std::int32_t rigid_body_mode_count(const std::vector<EigenEntry> &table, std::size_t modes) {
  Frequencies frequencies;
  frequencies.reserve(table.size());
  for (const EigenEntry &entry : table)
    frequencies.emplace_back(entry.frequency);
  frequencies.resize(modes, 0.0);
  return count_rigid(frequencies);
}

}  // namespace qdlflex

int32_t QDL_RigidBodyModeCount(QDL_Record *model) {
  return qdlflex::with_model_or(model, qdlflex::kArea, 0, [](const QDL_Record &record) {
    return qdlflex::rigid_body_mode_count(record);
  });
}
