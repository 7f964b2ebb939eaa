// The mode list, the matrices over all modes, and the flags about modes.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <vector>

#include "record/record.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

using Matrix = std::vector<double>;

class ModeInfo : public MessageFixture {
 protected:
  QDL_Record *with_modes(std::int32_t count) {
    QDL_Record *model = QDL_Create(1, 10);
    for (std::int32_t number = 1; number <= count; ++number)
      QDL_AddMode(model, number);
    return model;
  }

  QDL_Record *golden() {
    return QDL_CreateFromQDL(QDLFLEX_SOURCE_DIR "/tests/golden/60_native_double.qdl");
  }
};

std::vector<std::int32_t> mode_nodes(QDL_Record *model, std::int32_t kind) {
  std::vector<std::int32_t> ids;
  for (std::int32_t i = 0; i < QDL_ModeNodeCount(model, kind); ++i)
    ids.push_back(QDL_ModeNodeID(model, kind, i));
  return ids;
}

TEST_F(ModeInfo, TellsTheNodesOfEachKind) {
  QDL_Record *model = golden();
  EXPECT_EQ(QDL_ModeCount(model), 2);
  EXPECT_EQ(mode_nodes(model, 0), (std::vector<std::int32_t>{101, 7, 40, 23}));
  EXPECT_EQ(mode_nodes(model, 1), (std::vector<std::int32_t>{40, 7, 23}));
  EXPECT_EQ(mode_nodes(model, 2), (std::vector<std::int32_t>{23, 101}));
  for (const std::int32_t kind : {-1, 0, 1, 2, 3}) {
    EXPECT_EQ(QDL_ModeExist(model, kind), kind >= 0 && kind <= 2 ? 1 : 0);
    EXPECT_EQ(QDL_ModeNodeID(model, kind, -1), 0);
    EXPECT_EQ(QDL_ModeNodeID(model, kind, 4), 0);
  }
  EXPECT_EQ(QDL_ModeNodeCount(model, 3), 0);
  EXPECT_EQ(QDL_GetFlexType(model), 1);
  EXPECT_EQ(QDL_DiscreteMethod(model), 0);
  expect_no_messages();
}

TEST_F(ModeInfo, ModeDataExistsOnceAVectorIsSet) {
  QDL_Record *model = with_modes(1);
  const std::array<double, 6> values{};
  EXPECT_EQ(QDL_GetFlexType(model), 0);
  for (const std::int32_t kind : {0, 1, 2}) {
    EXPECT_EQ(QDL_ModeExist(model, kind), 0);
    QDL_SetModeVec(model, 1, 5, kind, values.data());
    EXPECT_EQ(QDL_ModeExist(model, kind), 1);
  }
  EXPECT_EQ(QDL_GetFlexType(model), 1);
}

TEST_F(ModeInfo, NullHandleIsSilent) {
  std::array<double, 1> matrix{};
  EXPECT_EQ(QDL_ModeCount(nullptr), 0);
  EXPECT_EQ(QDL_ModeExist(nullptr, 0), 0);
  EXPECT_EQ(QDL_ModeNodeCount(nullptr, 0), 0);
  EXPECT_EQ(QDL_ModeNodeID(nullptr, 0, 0), 0);
  EXPECT_EQ(QDL_Transformation(nullptr, matrix.data()), 0);
  EXPECT_EQ(QDL_GetFlexType(nullptr), 0);
  EXPECT_EQ(QDL_DiscreteMethod(nullptr), 0);
  expect_no_messages();
}

TEST_F(ModeInfo, TransformationFollowsTheModeCount) {
  QDL_Record *model = with_modes(2);
  Matrix matrix{9, 9, 9, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(QDL_Transformation(model, matrix.data()), 0);
  const Matrix set{1, 2, 3, 4};
  EXPECT_EQ(QDL_SetTransformation(model, set.data()), 1);
  EXPECT_EQ(QDL_Exists(model, 15), 1);
  EXPECT_EQ(QDL_Transformation(model, matrix.data()), 1);
  EXPECT_EQ(matrix, (Matrix{1, 2, 3, 4, 9, 9, 9, 9, 9}));

  QDL_AddMode(model, 3);
  matrix.assign(9, 9.0);
  EXPECT_EQ(QDL_Transformation(model, matrix.data()), 0);
  EXPECT_EQ(matrix, Matrix(9, 9.0));
  model->mode_numbers = {1};
  EXPECT_EQ(QDL_Transformation(model, matrix.data()), 1);
  EXPECT_EQ(matrix, (Matrix{1, 9, 9, 9, 9, 9, 9, 9, 9}));

  EXPECT_EQ(QDL_SetTransformation(model, nullptr), 0);
  EXPECT_EQ(QDL_Transformation(model, nullptr), 0);
  EXPECT_EQ(QDL_SetTransformation(with_modes(0), set.data()), 0);
  expect_no_messages();
  expect_no_model(QDL_SetTransformation(nullptr, set.data()));
}

TEST_F(ModeInfo, MassNormalizationIsARequest) {
  QDL_Record *model = with_modes(1);
  EXPECT_FALSE(model->mass_normalize_modes);
  EXPECT_EQ(QDL_SetShouldMassNormalizeModes(model, -3), 1);
  EXPECT_TRUE(model->mass_normalize_modes);
  EXPECT_EQ(QDL_SetShouldMassNormalizeModes(model, 0), 1);
  EXPECT_FALSE(model->mass_normalize_modes);
  expect_no_model(QDL_SetShouldMassNormalizeModes(nullptr, 1));
}

}  // namespace
