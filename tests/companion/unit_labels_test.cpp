// A host that brings its own QDL_ConvertUnitsLabel: this program, by nothing but defining it.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::string> labels_seen;

}  // namespace

// Knows a few names of its own, refuses "REFUSED" and lets everything else through as it is.
extern "C" QDL_API int QDL_ConvertUnitsLabel(char *label) {
  labels_seen.emplace_back(label, ::strnlen(label, 16));
  const std::string text = labels_seen.back();
  if (text == "mm")
    std::strcpy(label, "MILLIMETER");
  else if (text == "m")
    std::strcpy(label, "METER");
  else if (text == "full")
    std::memset(label, 'F', 16);
  return text == "REFUSED" ? 0 : 1;
}

namespace {

class CompanionLabels : public testing::Test {
 protected:
  void SetUp() override { labels_seen.clear(); }
  void TearDown() override { QDL_Terminate(); }

  static std::string length_unit(QDL_Record *model) {
    char text[17] = {};
    QDL_Units(model, nullptr, text, nullptr, nullptr);
    return text;
  }
};

using Labels = std::vector<std::string>;

}  // namespace

TEST_F(CompanionLabels, DecidesAndRewrites) {
  QDL_Record *model = QDL_Create(1, 0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "mm", "SECOND", "NEWTON"), 1);
  EXPECT_EQ(labels_seen, (Labels{"KILOGRAM", "mm", "SECOND", "NEWTON"}));
  EXPECT_EQ(length_unit(model), "MILLIMETER");
  QDL_SetNodeCoordinates(model, 1, 1500.0, 0.0, 0.0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "m", "SECOND", "NEWTON"), 1);
  double xyz[3] = {};
  QDL_NodeCoordinates(model, 0, xyz);
  EXPECT_EQ(xyz[0], 1.5);
}

TEST_F(CompanionLabels, ARefusedLabelChangesNothing) {
  QDL_Record *model = QDL_Create(1, 0);
  QDL_SetUnits(model, "KILOGRAM", "mm", "SECOND", "NEWTON");
  for (const auto &[mass, length] : {std::pair{"REFUSED", "m"}, {"GRAM", "REFUSED"}})
    EXPECT_EQ(QDL_SetUnits(model, mass, length, "SECOND", "NEWTON"), 0);
  EXPECT_EQ(length_unit(model), "MILLIMETER");
  EXPECT_EQ(QDL_Mass2Kilogram(model, 1.0), 1.0);
}

// The first units of a model are taken without a look into the tables.
TEST_F(CompanionLabels, AnAcceptedNameNeedNotBeInTheTables) {
  QDL_Record *model = QDL_Create(1, 0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "Meter", "KILOGRAM", "anything"), 1);
  EXPECT_EQ(length_unit(model), "Meter");
  EXPECT_EQ(QDL_Length2Meter(model, 2.0), 2.0);
  EXPECT_EQ(QDL_Time2Second(model, 2.0), 0.0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "m", "SECOND", "NEWTON"), 0)
      << "an unknown old unit has no factor";
  EXPECT_EQ(length_unit(model), "Meter");
}

TEST_F(CompanionLabels, NamesAreCutToFifteenCharactersBeforeAndAfter) {
  QDL_Record *model = QDL_Create(1, 0);
  EXPECT_EQ(QDL_SetUnits(model, "12345678901234567890", "full", "SECOND", "NEWTON"), 1);
  EXPECT_EQ(labels_seen[0], "123456789012345");
  EXPECT_EQ(length_unit(model), std::string(15, 'F'));
}
