#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "body_measures.h"
#include "record.h"

namespace qdlflex::cli {

/// The inner product of two motions of a body's nodes, weighted with their masses and rotary
/// inertias. A motion holds the translations of all nodes with mode shapes, then the rotations of
/// those with a rotary inertia.
class NodalMetric {
 public:
  enum class Weights { kMasses, kEqual };

  NodalMetric(QDL_Record *record, Weights weights);

  /// Number of values in a motion.
  size_t size() const { return 3 * (masses_.size() + inertias_.size()); }

  /// The shape of a mode. Throws a Failure if it cannot be read.
  std::vector<double> mode(int32_t number) const;

  /// A unit translation along an axis (0 to 2) or a rotation by 1 radian about it (3 to 5).
  std::vector<double> rigid_motion(size_t direction, const Vector3 &centre) const;

  /// A motion times masses and inertias.
  std::vector<double> weighed(std::vector<double> motion) const;

 private:
  struct Inertia {
    size_t node;
    Matrix3 tensor;
  };

  QDL_Record *record_;
  std::vector<double> coordinates_;
  std::vector<double> masses_;
  std::vector<Inertia> inertias_;
};

constexpr size_t kMotionMemory = size_t{512} << 20;

/// Calls `visit(i, k, product)` for all i <= k < `count` with the inner product of two motions.
/// `fetch` gives a motion as often as needed: of all motions only as many as fit into `memory` are
/// held at a time.
void for_each_product(const NodalMetric &metric, size_t count,
                      const std::function<std::vector<double>(size_t)> &fetch,
                      const std::function<void(size_t, size_t, double)> &visit,
                      size_t memory = kMotionMemory);

}  // namespace qdlflex::cli
