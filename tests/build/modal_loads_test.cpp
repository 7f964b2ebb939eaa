#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace {

constexpr std::int32_t kPreloadFlag = 26;
constexpr std::int32_t kModalLoadsFlag = 27;
constexpr std::int32_t kNodalLoadsFlag = 34;

class ModalLoads : public qdltest::MessageFixture {
 protected:
  static QDL_Record *model_with_modes(int modes, int room = 10) {
    QDL_Record *model = QDL_Create(10, room);
    for (int mode = 1; mode <= modes; ++mode)
      QDL_AddMode(model, mode);
    return model;
  }

  static std::string label(QDL_Record *model, int load_case) {
    char text[256] = {};
    EXPECT_EQ(QDL_GetModalLoadCaseLabel(model, load_case, text), 1);
    return {text, ::strnlen(text, sizeof text)};
  }

  static std::vector<double> taken(double *values, std::int32_t count) {
    std::vector<double> copy;
    if (values != nullptr)
      copy.assign(values, values + count);
    QDL_FreeMemory(values);
    return copy;
  }

  static std::vector<double> load(QDL_Record *model, int load_case) {
    std::int32_t count = -1;
    double *values = QDL_GetModalLoad(model, load_case, &count);
    return taken(values, count);
  }

  static std::vector<double> preload(QDL_Record *model) {
    std::int32_t count = -1;
    double *values = QDL_GetModalPreload(model, &count);
    return taken(values, count);
  }

  void expect_illegal(int load_case) {
    expect_only_error("The load case index " + std::to_string(load_case) +
                      " is illegal.\nThe load case index must be non-negative.");
    clear_messages();
  }
};

}  // namespace

TEST_F(ModalLoads, CreateAllCasesUpToTheirOwn) {
  QDL_Record *model = model_with_modes(2);
  EXPECT_EQ(QDL_Exists(model, kModalLoadsFlag), 0);
  EXPECT_EQ(QDL_SetModalLoad(model, 3, 2, 5.5), 1);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 4);
  for (int load_case = 0; load_case < 4; ++load_case) {
    EXPECT_EQ(label(model, load_case), "Load Case " + std::to_string(load_case + 1));
    EXPECT_EQ(QDL_ModalLoadProcessed(model, load_case), 0);
    EXPECT_EQ(load(model, load_case), (std::vector<double>{0.0, load_case == 3 ? 5.5 : 0.0}));
  }
  EXPECT_EQ(QDL_SetModalLoad(model, 1, 1, -2.0), 1);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 4);
  EXPECT_EQ(load(model, 1), (std::vector<double>{-2.0, 0.0}));
  EXPECT_EQ(QDL_Exists(model, kModalLoadsFlag), 1);
  EXPECT_EQ(QDL_Exists(model, kNodalLoadsFlag), 0);
  EXPECT_EQ(QDL_GetModalLoadNodalCaseCount(model), 0);
  expect_no_messages();
}

TEST_F(ModalLoads, AddModesAndFollowTheirNumber) {
  QDL_Record *model = model_with_modes(0, 3);
  EXPECT_EQ(QDL_SetModalLoadLabel(model, 0, "before there are modes"), 1);
  EXPECT_EQ(load(model, 0), std::vector<double>{});
  EXPECT_EQ(QDL_SetModalLoad(model, 0, 17, 1.0), 1);
  EXPECT_EQ(QDL_SetModalLoad(model, 1, 5, 2.0), 1);
  EXPECT_EQ(QDL_SetModalLoad(model, 0, 5, 3.0), 1);
  EXPECT_EQ(load(model, 0), (std::vector<double>{1.0, 3.0}));
  EXPECT_EQ(load(model, 1), (std::vector<double>{0.0, 2.0}));
  EXPECT_EQ(label(model, 0), "before there are modes");
}

TEST_F(ModalLoads, ARefusedModeCreatesNoCase) {
  QDL_Record *model = model_with_modes(1, 1);
  EXPECT_EQ(QDL_SetModalLoad(model, 2, 9, 1.0), 0);
  EXPECT_EQ(errors.size(), 1U);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 0);
  EXPECT_EQ(QDL_Exists(model, kModalLoadsFlag), 0);
  EXPECT_EQ(QDL_SetModalPreload(model, 9, 1.0), 0);
  EXPECT_EQ(errors.size(), 2U);
  EXPECT_EQ(QDL_ModalPreloadExist(model), 0);
  EXPECT_EQ(QDL_Exists(model, kPreloadFlag), 0);
}

TEST_F(ModalLoads, NegativeCasesAreIllegalBeforeAnythingIsAdded) {
  QDL_Record *model = model_with_modes(1);
  for (const int load_case : {-1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(QDL_SetModalLoad(model, load_case, 9, 1.0), 0);
    expect_illegal(load_case);
    EXPECT_EQ(QDL_SetModalLoadLabel(model, load_case, "text"), 0);
    expect_illegal(load_case);
    EXPECT_EQ(QDL_SetModalLoadNodal(model, load_case, 9, 7, 1.0), 0);
    expect_illegal(load_case);
  }
  EXPECT_EQ(QDL_ModeCount(model), 1);
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 0);
}

TEST_F(ModalLoads, LabelsAreKeptCutOrMadeUp) {
  QDL_Record *model = model_with_modes(1);
  EXPECT_EQ(QDL_SetModalLoadLabel(model, 2, ""), 1);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 3);
  EXPECT_EQ(label(model, 0), "Load Case 1");
  EXPECT_EQ(label(model, 2), "3");
  EXPECT_EQ(QDL_Exists(model, kModalLoadsFlag), 0);
  const std::string longest(255, 'a');
  EXPECT_EQ(QDL_SetModalLoadLabel(model, 0, longest.c_str()), 1);
  EXPECT_EQ(label(model, 0), longest);
  expect_no_messages();

  EXPECT_EQ(QDL_SetModalLoadLabel(model, 1, (longest + "bc").c_str()), 1);
  EXPECT_EQ(label(model, 1), longest);
  expect_only_warnings(
      {"Modal load label too big: max size 255, specified size 257.  Truncating label."});
  clear_messages();
  EXPECT_EQ(QDL_SetModalLoadLabel(model, 0, "short"), 1);
  EXPECT_EQ(label(model, 0), "short");
  EXPECT_EQ(QDL_SetModalLoadLabel(model, 0, nullptr), 1);
  EXPECT_EQ(label(model, 0), "1");
  expect_no_messages();
}

TEST_F(ModalLoads, NodalLoadsAreAppendedToTheirOwnCases) {
  QDL_Record *model = model_with_modes(1);
  EXPECT_EQ(QDL_SetModalLoadNodal(model, 1, 40, 6, 2.5), 1);
  EXPECT_EQ(QDL_SetModalLoadNodal(model, 1, 30, 1, 3.5), 1);
  EXPECT_EQ(QDL_SetModalLoadNodal(model, 1, 40, 6, 2.5), 1);
  EXPECT_EQ(QDL_GetModalLoadNodalCaseCount(model), 2);
  EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 0), 0);
  EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 1), 3);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 1, 1), 30);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 1, 2), 40);
  EXPECT_EQ(QDL_GetModalLoadNodalCoord(model, 1, 0), 6);
  EXPECT_EQ(QDL_GetModalLoadNodalLoad(model, 1, 1), 3.5);
  EXPECT_EQ(QDL_NodeCount(model), 2);
  EXPECT_EQ(QDL_Exists(model, kNodalLoadsFlag), 1);
  EXPECT_EQ(QDL_Exists(model, kModalLoadsFlag), 0);
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 0);
  expect_no_messages();
}

TEST_F(ModalLoads, NodalCoordinatesOutsideOneToSixAddNoNode) {
  QDL_Record *model = model_with_modes(1);
  for (const int coordinate : {0, 7, -1}) {
    EXPECT_EQ(QDL_SetModalLoadNodal(model, 0, 40, coordinate, 1.0), 0);
    expect_only_error("The coordinate number " + std::to_string(coordinate) +
                      " is illegal.\nThe coordinate number must be 1 to 6.");
    clear_messages();
  }
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_GetModalLoadNodalCaseCount(model), 0);
  EXPECT_EQ(QDL_Exists(model, kNodalLoadsFlag), 0);
}

TEST_F(ModalLoads, OnlyTheFirstPreloadClearsItsMarker) {
  QDL_Record *model = model_with_modes(2);
  EXPECT_EQ(QDL_SetModalPreloadProcessed(model, 1), 1);
  EXPECT_EQ(QDL_SetModalPreload(model, 2, 4.5), 1);
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 0);
  EXPECT_EQ(preload(model), (std::vector<double>{0.0, 4.5}));
  EXPECT_EQ(QDL_SetModalPreloadProcessed(model, 1), 1);
  EXPECT_EQ(QDL_SetModalPreload(model, 77, -1.0), 1);
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 1);
  EXPECT_EQ(preload(model), (std::vector<double>{0.0, 4.5, -1.0}));
  EXPECT_EQ(QDL_Exists(model, kPreloadFlag), 1);
  expect_no_messages();
}

TEST_F(ModalLoads, ExtendWhatAFileHolds) {
  QDL_Record *model = QDL_CreateFromQDL(file("body.qdl", qdltest::build_file(60).bytes).c_str());
  ASSERT_NE(model, nullptr);
  const std::vector<double> first = load(model, 0);
  const std::vector<double> preloaded = preload(model);
  EXPECT_EQ(QDL_SetModalLoad(model, 0, 9, 1.25), 1);
  EXPECT_EQ(load(model, 0), (std::vector<double>{first[0], 1.25}));
  EXPECT_EQ(label(model, 0), "gravity along x");
  EXPECT_EQ(QDL_SetModalPreload(model, 7, 1.75), 1);
  EXPECT_EQ(preload(model), (std::vector<double>{1.75, preloaded[1]}));
  EXPECT_EQ(QDL_ModalPreloadProcessed(model), 1);
  EXPECT_EQ(QDL_SetModalLoadNodal(model, 1, 7, 2, 6.5), 1);
  EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 1), 2);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 1, 0), 40);
}

TEST_F(ModalLoads, NullHandles) {
  expect_no_model(QDL_SetModalLoad(nullptr, 0, 1, 1.0));
  expect_no_model(QDL_SetModalLoadLabel(nullptr, 0, "text"));
  expect_no_model(QDL_SetModalLoadNodal(nullptr, 0, 1, 1, 1.0));
  expect_no_model(QDL_SetModalPreload(nullptr, 1, 1.0));
}

TEST_F(ModalLoads, AFailedAllocationIsReportedAndLeavesTheListsConsistent) {
  const auto count = qdltest::sweep(
      qdltest::Door::kMemory, qdltest::Persistence::kOnce,
      [&] {
        clear_messages();
        QDL_Record *model = QDL_Create(4, 4);
        QDL_SetModalLoad(model, 2, 1, 1.5);
        QDL_SetModalLoadNodal(model, 2, 1, 1, 2.5);
        QDL_SetModalPreload(model, 2, 3.5);
        return model;
      },
      [&](QDL_Record *model, bool fired) {
        EXPECT_EQ(errors.empty(), !fired);
        if (model == nullptr)
          return;
        // A flag promises the datum.
        const bool has_load = QDL_Exists(model, kModalLoadsFlag) != 0;
        EXPECT_TRUE(has_load || fired);
        EXPECT_EQ(has_load ? load(model, 2).at(0) : 1.5, 1.5);
        EXPECT_EQ(QDL_Exists(model, kNodalLoadsFlag) != 0,
                  QDL_GetModalLoadNodalCount(model, 2) == 1);
        EXPECT_EQ(QDL_Exists(model, kPreloadFlag) != 0, QDL_ModalPreloadExist(model) != 0);
        QDL_DeReference(model);
      });
  EXPECT_GT(count, 5U);
}

// More cases than memory could ever hold: asked for in one step, so that nothing changes.
TEST_F(ModalLoads, AHugeCaseNumberFailsAtOnce) {
  QDL_Record *model = model_with_modes(1);
  EXPECT_EQ(QDL_SetModalLoad(model, 0, 1, 1.0), 1);
  const qdltest::FailAllocation fault(1);
  EXPECT_EQ(QDL_SetModalLoad(model, std::numeric_limits<int>::max(), 1, 1.0), 0);
  EXPECT_TRUE(fault.fired());
  expect_no_memory("qdlset");
  EXPECT_EQ(QDL_GetModalLoadCaseCount(model), 1);
}
