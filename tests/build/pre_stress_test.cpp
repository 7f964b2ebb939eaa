#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <vector>

#include "record/record.h"
#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace {

// Pre-stress or pre-strain: what belongs together.
struct PreVector {
  std::int32_t (*set)(QDL_Record *, std::int32_t, const double *);
  std::vector<qdlflex::Vector6> QDL_Record::*stored;
  std::int32_t kind;
  std::int32_t flag;
};

constexpr PreVector kPreVectors[] = {
    {QDL_SetPreStressVec, &QDL_Record::pre_stress, 1, 30},
    {QDL_SetPreStrainVec, &QDL_Record::pre_strain, 2, 31},
};

constexpr qdlflex::Vector6 kFirst = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5};
constexpr qdlflex::Vector6 kSecond = {-1, -2, -3, -4, -5, -6};
constexpr qdlflex::Vector6 kZeros = {};

using PreStress = qdltest::MessageFixture;

}  // namespace

TEST_F(PreStress, SharesTheSlotsOfTheStressModes) {
  for (const PreVector &pre : kPreVectors) {
    SCOPED_TRACE(pre.kind);
    QDL_Record *model = QDL_Create(4, 1);
    QDL_AddNode(model, 5);
    QDL_SetModeVec(model, 1, 30, pre.kind, kFirst.data());
    EXPECT_EQ(QDL_Exists(model, pre.flag), 0);
    EXPECT_EQ(pre.set(model, 20, kSecond.data()), 1);
    EXPECT_EQ(pre.set(model, 5, kFirst.data()), 1);
    EXPECT_EQ(QDL_Exists(model, pre.flag), 1);

    EXPECT_EQ(QDL_NodeCount(model), 3);
    EXPECT_EQ(QDL_ModeNodeCount(model, pre.kind), 3);
    for (std::int32_t slot = 0; slot < 3; ++slot) {
      const std::int32_t ids[] = {30, 20, 5};
      EXPECT_EQ(QDL_ModeNodeID(model, pre.kind, slot), ids[slot]);
    }
    EXPECT_EQ(model->*pre.stored, (std::vector<qdlflex::Vector6>{kZeros, kSecond, kFirst}));
    EXPECT_EQ(pre.set(model, 20, kFirst.data()), 1);
    EXPECT_EQ((model->*pre.stored)[1], kFirst);

    // The modes have zeros at the new nodes, and the other kind knows none of them.
    double stress[9] = {};
    EXPECT_EQ(QDL_Mode(model, 1, pre.kind, stress, 0), 1);
    EXPECT_EQ(stress[2], 3.5);
    EXPECT_EQ(stress[3], 0.0);
    EXPECT_EQ(stress[8], 0.0);
    EXPECT_EQ(QDL_ModeNodeCount(model, 3 - pre.kind), 0);
    EXPECT_EQ(QDL_ModeCount(model), 1);
  }
  expect_only_warnings({});
}

TEST_F(PreStress, ANewNodeOfAReadModelGetsASlotBehindThoseOfTheFile) {
  for (const PreVector &pre : kPreVectors) {
    SCOPED_TRACE(pre.kind);
    QDL_Terminate();
    QDL_Record *model = QDL_CreateFromQDL(file("body.qdl", qdltest::build_file(60).bytes).c_str());
    ASSERT_NE(model, nullptr);
    const std::vector<qdlflex::Vector6> before = model->*pre.stored;
    const std::int32_t slots = QDL_ModeNodeCount(model, pre.kind);
    ASSERT_EQ(static_cast<std::size_t>(slots), before.size());
    EXPECT_EQ(pre.set(model, 999, kFirst.data()), 1);
    EXPECT_EQ(pre.set(model, QDL_ModeNodeID(model, pre.kind, 1), kSecond.data()), 1);

    const auto &after = model->*pre.stored;
    ASSERT_EQ(after.size(), before.size() + 1);
    EXPECT_EQ(after[0], before[0]);
    EXPECT_EQ(after[1], kSecond);
    EXPECT_EQ(after.back(), kFirst);
    EXPECT_EQ(QDL_ModeNodeID(model, pre.kind, slots), 999);
    std::vector<double> stress(static_cast<std::size_t>(3 * (slots + 1)), -1.0);
    EXPECT_EQ(QDL_Mode(model, 7, pre.kind, stress.data(), 1), 1);
    EXPECT_EQ(stress.back(), 0.0);
  }
}

TEST_F(PreStress, RefusesNullWithoutAddingANode) {
  QDL_Record *model = QDL_Create(1, 1);
  for (const PreVector &pre : kPreVectors) {
    EXPECT_EQ(pre.set(model, 1, nullptr), 0);
    expect_no_messages();
    expect_no_model(pre.set(nullptr, 1, kFirst.data()));
    EXPECT_EQ(QDL_Exists(model, pre.flag), 0);
  }
  EXPECT_EQ(QDL_NodeCount(model), 0);
}
