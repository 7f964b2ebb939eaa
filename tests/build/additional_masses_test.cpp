// Generalized masses between the modes of a set and those added to it.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

using Six = std::array<double, 6>;

constexpr const char *kMismatch =
    "Mode count mismatch while generating additional generalized masses.";

// Some value that differs from place to place.
double number(std::int32_t a, std::int32_t b, std::int32_t c) {
  return static_cast<double>((a * 37 + b * 101 + c * 13) % 64 - 20) / 16.0;
}

double mass(std::int32_t node) {
  return number(node, 1, 2) + 2.0;
}

Six inertia(std::int32_t node) {
  Six six{};
  for (std::int32_t c = 0; c < 6; ++c)
    six[static_cast<std::size_t>(c)] = number(node, c, 5);
  return six;
}

Six shape(std::int32_t mode, std::int32_t node) {
  Six six{};
  for (std::int32_t c = 0; c < 6; ++c)
    six[static_cast<std::size_t>(c)] = number(mode, node, c);
  return six;
}

bool has_inertia(std::int32_t node) {
  return node % 3 == 0;
}

// The sum as it stands in books; every number is a multiple of 1/16, so it has no rounding.
double coupling(std::int32_t a, std::int32_t b, std::int32_t nodes) {
  double sum = 0.0;
  for (std::int32_t node = 1; node <= nodes; ++node) {
    const Six phi = shape(a, node);
    const Six psi = shape(b, node);
    sum += mass(node) * (phi[0] * psi[0] + phi[1] * psi[1] + phi[2] * psi[2]);
    if (!has_inertia(node))
      continue;
    const auto [xx, yy, zz, xy, xz, yz] = inertia(node);
    sum += psi[3] * (xx * phi[3] + xy * phi[4] + xz * phi[5]) +
           psi[4] * (xy * phi[3] + yy * phi[4] + yz * phi[5]) +
           psi[5] * (xz * phi[3] + yz * phi[4] + zz * phi[5]);
  }
  return sum;
}

class AdditionalMasses : public MessageFixture {
 protected:
  QDL_Record *make(std::int32_t modes, std::int32_t nodes, bool with_shapes = true) {
    QDL_Record *model = QDL_Create(nodes, modes);
    for (std::int32_t node = 1; node <= nodes; ++node) {
      const Six j = inertia(node);
      QDL_SetNodalMass(model, node, mass(node));
      if (has_inertia(node))
        QDL_SetNodalInertia(model, node, j[0], j[1], j[2], j[3], j[4], j[5]);
    }
    for (std::int32_t mode = 1; mode <= modes; ++mode) {
      QDL_AddMode(model, mode);
      for (std::int32_t node = 1; with_shapes && node <= nodes; ++node)
        QDL_SetModeVec(model, mode, node, QDL_MODE_SHAPE, shape(mode, node).data());
    }
    infos.clear();
    return model;
  }
};

// More modes and nodes than are worked on at a time, and no multiples of it.
TEST_F(AdditionalMasses, AreSetAtBothPlaces) {
  constexpr std::int32_t kNormal = 9;
  constexpr std::int32_t kAdditional = 11;
  constexpr std::int32_t kNodes = 1100;
  QDL_Record *model = make(kNormal + kAdditional, kNodes);
  QDL_SetGeneralizedMass(model, 1, 1, 1.0);
  EXPECT_EQ(QDL_AnsysAddGenMass(model, kNormal, kAdditional), 1);
  ASSERT_EQ(QDL_NumberOfGenMass(model), 1 + 2 * kNormal * kAdditional);
  const auto *entry = model->mass.entries.data();
  for (std::int32_t a = 1; a <= kNormal; ++a) {
    for (std::int32_t b = kNormal + 1; b <= kNormal + kAdditional; ++b) {
      const double wanted = coupling(a, b, kNodes);
      for (const bool transposed : {false, true}) {
        ++entry;
        EXPECT_EQ(entry->row, (transposed ? b : a) - 1);
        EXPECT_EQ(entry->column, (transposed ? a : b) - 1);
        EXPECT_EQ(entry->value, wanted) << a << ' ' << b;
      }
    }
  }
  expect_no_messages();
}

TEST_F(AdditionalMasses, AreRefusedForAnotherNumberOfModes) {
  QDL_Record *model = make(3, 2);
  for (const auto &[normal, additional] : {std::pair(1, 1), {3, 1}, {0x7FFFFFFF, 0x7FFFFFFF}}) {
    EXPECT_EQ(QDL_AnsysAddGenMass(model, normal, additional), 0);
    expect_only_error(kMismatch);
    clear_messages();
  }
  for (const auto &[normal, additional] : {std::pair(3, 0), {0, 3}, {-1, 4}, {4, -1}})
    EXPECT_EQ(QDL_AnsysAddGenMass(model, normal, additional), 1);
  EXPECT_TRUE(model->mass.entries.empty());
  expect_no_messages();
  expect_no_model(QDL_AnsysAddGenMass(nullptr, 0, 0));
}

TEST_F(AdditionalMasses, AreZeroForModesThatCannotBeRead) {
  QDL_Record *model = make(3, 2);
  model->mode_numbers[1] = 7;  // so that there is no mode 2
  model->planned_modes = 4;
  EXPECT_EQ(QDL_AnsysAddGenMass(model, 2, 1), 1);
  expect_only_error("Problem reading mode shape 2");
  ASSERT_EQ(model->mass.entries.size(), 4U);
  EXPECT_EQ(model->mass.entries[0].value, coupling(1, 3, 2));
  EXPECT_EQ(model->mass.entries[2].value, 0.0);
  EXPECT_EQ(model->mass.entries[2].row, 3);  // the setter has added it
  clear_messages();
  QDL_Record *shapeless = make(2, 2, false);
  EXPECT_EQ(QDL_AnsysAddGenMass(shapeless, 1, 1), 1);
  EXPECT_EQ(errors.size(), 2U);
  EXPECT_EQ(shapeless->mass.entries[1].value, 0.0);
}

TEST_F(AdditionalMasses, AreAllThereOrNoneWhenMemoryRunsOut) {
  QDL_Record *model = make(5, 4);
  const std::size_t faults = sweep(
      Door::kMemory, Persistence::kOnce, [&] { return QDL_AnsysAddGenMass(model, 2, 3); },
      [&](std::int32_t result, bool fired) {
        EXPECT_EQ(result, fired ? 0 : 1);
        EXPECT_EQ(model->mass.entries.size(), fired ? 0U : 12U);
        EXPECT_EQ(errors.size(), fired ? 1U : 0U);
        clear_messages();
      });
  EXPECT_GT(faults, 4U);
}

}  // namespace
