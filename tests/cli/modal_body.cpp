#include "modal_body.h"

#include <cmath>

using qdlflex::cli::Record;

double shape(int32_t mode, int32_t node, int32_t component) {
  return std::cos(0.7 * (mode + 1) * node + 0.9 * component * (mode + 2));
}

namespace {

constexpr int32_t kNodes = 6;

void set_mode_values(QDL_Record *record, int32_t number, int32_t mode, double factor) {
  for (int32_t node = 1; node <= kNodes; ++node) {
    std::array<double, 6> motion{};
    std::array<double, 6> stress{};
    for (int32_t k = 0; k < 6; ++k) {
      motion[static_cast<size_t>(k)] = factor * shape(mode, node, k);
      stress[static_cast<size_t>(k)] = factor * 1e3 * shape(mode, node, k + 6);
    }
    QDL_SetModeVec(record, number, node, QDL_MODE_SHAPE, motion.data());
    if (node > 3) {
      QDL_SetModeVec(record, number, node, QDL_MODE_STRESS, stress.data());
    }
  }
}

void set_modal_data(QDL_Record *record, const Body &body) {
  constexpr std::array<double, 2 *kModes> kTip = {1, -2, 4, 5, 0.5, -3};
  std::array<double, 2 * kModes> tip{};
  for (size_t i = 0; i < kModes; ++i) {
    const auto number_i = static_cast<int32_t>(i) + 7;
    const auto old_i = static_cast<size_t>(body.order[i]);
    const double load = 10.0 + static_cast<double>(old_i);
    set_mode_values(record, number_i, body.order[i], body.factors[i]);
    if (body.loads) {
      QDL_SetModalLoad(record, 0, number_i, body.factors[i] * load);
      QDL_SetModalPreload(record, number_i, -body.factors[i] * load);
    }
    for (size_t row = 0; row < 2; ++row) {
      tip[row * kModes + i] = body.factors[i] * kTip[row * kModes + old_i];
    }
    for (size_t k = 0; k <= i; ++k) {
      const auto old_k = static_cast<size_t>(body.order[k]);
      const double product = body.factors[i] * body.factors[k];
      const auto number_k = static_cast<int32_t>(k) + 7;
      const double sum = static_cast<double>(old_i + old_k);
      QDL_SetGeneralizedDamping(record, number_i, number_k, product * (1.0 + sum));
      QDL_SetRotorDynamicsMatrix(record, 0, static_cast<int32_t>(i), static_cast<int32_t>(k),
                                 product * (2.0 + sum));
      QDL_SetRotorDynamicsMatrix(record, 0, static_cast<int32_t>(k), static_cast<int32_t>(i),
                                 product * (2.0 + sum));
      if (i == k) {
        QDL_SetGeneralizedMass(record, number_i, number_i, product);
        QDL_SetGeneralizedStiffness(record, number_i, number_i,
                                    product * (sum > 0.0 ? std::pow(100.0, sum) : body.softest));
      }
    }
  }
  const int32_t point = QDL_SetMonitorPointInfo(record, 4, 1, 13, 0, nullptr, "tip", "the tip");
  QDL_SetMonitorPointOperator(record, point, 1, tip.data());
}

}  // namespace

Record make_body(const Body &body) {
  Record record(QDL_Create(kNodes, kModes));
  QDL_SetUnits(record.get(), "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON");
  for (int32_t k = 1; k <= kNodes; ++k) {
    const int32_t node = body.nodes_reversed ? kNodes + 1 - k : k;
    QDL_SetNodeCoordinates(record.get(), node, 10.0 * node, node % 2, -0.25 * node * node);
    QDL_SetNodalMass(record.get(), node, 0.125 * node);
    QDL_SetNodalInertia(record.get(), node, node, 2, 3, 0.25, 0.5, 0);
  }
  // The same faces from other nodes on, in another order.
  const bool other = body.nodes_reversed;
  QDL_SetFace(record.get(), 4, other ? 5 : 1, other ? 4 : 2, other ? 6 : 5, other ? 3 : 4);
  other ? QDL_SetFace(record.get(), 4, 5, 4, 1, 2) : QDL_SetFace(record.get(), 4, 3, 5, 4, 6);
  QDL_SetInterfaceNode(record.get(), other ? 6 : 1);
  QDL_SetInterfaceNode(record.get(), other ? 1 : 6);
  QDL_SetModalLoadNodal(record.get(), 0, other ? 3 : 2, other ? 1 : 6, other ? 5.0 : -4.0);
  QDL_SetModalLoadNodal(record.get(), 0, other ? 2 : 3, other ? 6 : 1, other ? -4.0 : 5.0);
  const std::array<double, 6> tension = {1, 2, 3, 4, 5, 6};
  set_modal_data(record.get(), body);
  QDL_SetPreStressVec(record.get(), 5, tension.data());
  QDL_SetRotorDynamicsAxis(record.get(), tension.data(), tension.data() + 3);
  return record;
}
