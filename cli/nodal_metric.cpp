#include "nodal_metric.h"

#include <algorithm>
#include <utility>

#include "mode_fields.h"

namespace qdlflex::cli {

NodalMetric::NodalMetric(QDL_Record *record, Weights weights) : record_(record) {
  const int32_t count = std::min(QDL_NodeCount(record), QDL_ModeNodeCount(record, QDL_MODE_SHAPE));
  for (int32_t index = 0; index < count; ++index) {
    Vector3 place{};
    QDL_NodeCoordinates(record, index, place.data());
    coordinates_.insert(coordinates_.end(), place.begin(), place.end());
    masses_.push_back(weights == Weights::kMasses ? QDL_NodalMass(record, index) : 1.0);
    Inertia inertia{static_cast<size_t>(index), {}};
    if (weights == Weights::kMasses &&
        QDL_NodalInertia(record, index, inertia.tensor.data()) != 0) {
      inertias_.push_back(inertia);
    }
  }
}

std::vector<double> NodalMetric::mode(int32_t number) const {
  std::vector<double> motion;
  read_half_mode(record_, number, QDL_MODE_SHAPE, 0, motion);
  motion.resize(3 * masses_.size());
  if (!inertias_.empty()) {
    std::vector<double> rotations;
    read_half_mode(record_, number, QDL_MODE_SHAPE, 1, rotations);
    motion.reserve(size());
    for (const Inertia &inertia : inertias_) {
      const auto *const at = &rotations[3 * inertia.node];
      motion.insert(motion.end(), at, at + 3);
    }
  }
  return motion;
}

std::vector<double> NodalMetric::rigid_motion(size_t direction, const Vector3 &centre) const {
  const bool turns = direction >= 3;
  Vector3 axis{};
  axis[direction % 3] = 1.0;
  std::vector<double> motion;
  motion.reserve(size());
  for (size_t at = 0; at < coordinates_.size(); at += 3) {
    const Vector3 arm = {coordinates_[at] - centre[0], coordinates_[at + 1] - centre[1],
                         coordinates_[at + 2] - centre[2]};
    const Vector3 translation = turns ? cross(axis, arm) : axis;
    motion.insert(motion.end(), translation.begin(), translation.end());
  }
  const Vector3 rotation = turns ? axis : Vector3{};
  while (motion.size() < size()) {
    motion.insert(motion.end(), rotation.begin(), rotation.end());
  }
  return motion;
}

std::vector<double> NodalMetric::weighed(std::vector<double> motion) const {
  for (size_t node = 0; node < masses_.size(); ++node) {
    for (size_t k = 3 * node; k < 3 * node + 3; ++k) {
      motion[k] *= masses_[node];
    }
  }
  size_t at = 3 * masses_.size();
  for (const Inertia &inertia : inertias_) {
    const Vector3 q = {motion[at], motion[at + 1], motion[at + 2]};
    for (size_t row = 0; row < 3; ++row) {
      const auto *const j = &inertia.tensor[3 * row];
      motion[at + row] = j[0] * q[0] + j[1] * q[1] + j[2] * q[2];
    }
    at += 3;
  }
  return motion;
}

void for_each_product(const NodalMetric &metric, size_t count,
                      const std::function<std::vector<double>(size_t)> &fetch,
                      const std::function<void(size_t, size_t, double)> &visit, size_t memory) {
  const size_t bytes = sizeof(double) * std::max<size_t>(metric.size(), 1);
  const size_t block = std::max<size_t>(memory / bytes, 1);
  for (size_t first = 0; first < count; first += block) {
    const size_t end = std::min(first + block, count);
    std::vector<std::vector<double>> held;
    for (size_t k = first; k < count; ++k) {
      std::vector<double> motion = fetch(k);
      const std::vector<double> weighed = metric.weighed(motion);
      if (k < end) {
        held.push_back(std::move(motion));
      }
      for (size_t i = 0; i < held.size(); ++i) {
        visit(first + i, k, dot(held[i].data(), weighed.data(), weighed.size()));
      }
    }
  }
}

}  // namespace qdlflex::cli
