#include "numerics/rigid_projection.h"

#include <algorithm>
#include <span>

#include <qdlflex/qdlflex.h>

#include "modes/mode_store.h"
#include "numerics/rigid_body_modes.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

void add_translation(MassWeightedMode &sums, double mass, const Vector3 &r, const double *phi) {
  for (std::size_t c = 0; c < 3; ++c)
    sums.along_axes[c] += mass * phi[c];
  sums.along_axes[3] += mass * (r[1] * phi[2] - r[2] * phi[1]);
  sums.along_axes[4] += mass * (r[2] * phi[0] - r[0] * phi[2]);
  sums.along_axes[5] += mass * (r[0] * phi[1] - r[1] * phi[0]);
  sums.square += mass * (phi[0] * phi[0] + phi[1] * phi[1] + phi[2] * phi[2]);
}

/// A mode without any mass in motion carries nothing.
double coefficient(const MassWeightedMode &mode, std::size_t axis) {
  return mode.square == 0.0 ? 0.0 : significant(mode.along_axes[axis] / mode.square);
}

bool has_rows(double *const *table) {
  if (table == nullptr)
    return false;
  const std::span<double *const> rows(table, kRigidBodyAxes);
  return std::ranges::find(rows, nullptr) == rows.end();
}

}  // namespace

ModeShapes::ModeShapes(QDL_Record &record)
    : record_(record),
      nodes_(static_cast<std::size_t>(mode_node_count(record, kModeShapes))),
      buffer_(std::max<std::size_t>(nodes_, 1) * kComponents) {}

const double *ModeShapes::view(std::int32_t mode_index) {
  if (mode_index >= mode_count(record_)) {
    report_unreadable_mode(kModeShapes, -1);
    return nullptr;
  }
  return view_mode(record_, kModeShapes, mode_index, buffer_.data());
}

std::optional<MassWeightedMode> weigh_mode(const QDL_Record &record, ModeShapes &shapes,
                                           std::int32_t mode_index) {
  const double *six = shapes.view(mode_index);
  if (six == nullptr)
    return std::nullopt;
  MassWeightedMode sums;
  for (std::size_t i = 0; i < shapes.nodes(); ++i, six += kComponents)
    add_translation(sums, record.nodes[i].mass, record.nodes[i].xyz, six);
  return sums;
}

bool project_on_rigid_body_axes(QDL_Record &record, std::int32_t modes, double *const *table) {
  if (modes < 1)
    return true;
  if (record.nodes.empty()) {
    report_allocation_failure(__LINE__, kArea);
    return false;
  }
  ModeShapes shapes(record);
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    const auto weighed = weigh_mode(record, shapes, mode);
    if (!weighed)
      return false;
    for (std::size_t axis = 0; axis < kRigidBodyAxes; ++axis)
      table[axis][mode] = coefficient(*weighed, axis);
  }
  return true;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_RigidModes2KORVO(QDL_Record *model, double **table, int32_t n) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return (n < 1 || has_rows(table)) && project_on_rigid_body_axes(record, n, table) ? 1 : 0;
  });
}
