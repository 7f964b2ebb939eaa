// Setters for everything but mode data: nodes, faces, generalized entries, interface, rotor,
// header.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using qdlflex::Block;

std::string no_room_for(int mode) {
  return "Insufficient room for mode " + std::to_string(mode) +
         " in temporary mode shape file.  \nSpecify larger number of modes in QDL_Create.\n";
}

class Setters : public qdltest::MessageFixture {
 protected:
  static bool exists(QDL_Record *model, Block block) {
    return QDL_Exists(model, qdlflex::block_index(block)) == 1;
  }

  static std::array<double, 3> coordinates(QDL_Record *model, int index) {
    std::array<double, 3> xyz{};
    EXPECT_EQ(QDL_NodeCoordinates(model, index, xyz.data()), 1);
    return xyz;
  }

  static std::vector<std::int32_t> faces(QDL_Record *model, int expected_count) {
    std::int32_t count = -1;
    std::int32_t length = -1;
    QDL_FaceListSize(model, &count, &length);
    EXPECT_EQ(count, expected_count);
    std::vector<std::int32_t> list(static_cast<std::size_t>(length));
    QDL_ElementFaces(model, list.data());
    return list;
  }
};

struct Entry {
  std::int32_t row, column;
  double value;
  bool operator==(const Entry &) const = default;
};

std::vector<Entry> entries_of(const qdlflex::GeneralizedMatrix &matrix) {
  std::vector<Entry> entries;
  for (const auto &entry : matrix.entries)
    entries.push_back({entry.row, entry.column, entry.value});
  return entries;
}

}  // namespace

TEST_F(Setters, ReportANullHandle) {
  const double values[9] = {};
  const std::int32_t ids[3] = {1, 2, 3};
  expect_no_model(QDL_SetHeader(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
  expect_no_model(QDL_AddNode(nullptr, 1), -1);
  expect_no_model(QDL_LookupOrAddNode(nullptr, 1), -1);
  expect_no_model(QDL_AddMode(nullptr, 1), -1);
  expect_no_model(QDL_LookupOrAddMode(nullptr, 1), -1);
  expect_no_model(QDL_SetNodeCoordinates(nullptr, 1, 0, 0, 0));
  expect_no_model(QDL_SetNodalMass(nullptr, 1, 1));
  expect_no_model(QDL_AddNodalMass(nullptr, 1, 1));
  expect_no_model(QDL_SetNodalInertia(nullptr, 1, 1, 1, 1, 0, 0, 0));
  expect_no_model(QDL_SetNodalInertiaEntry(nullptr, 1, 1, 1, 1));
  expect_no_model(QDL_SetFace(nullptr, 3, 1, 2, 3));
  expect_no_model(QDL_SetFaceList(nullptr, 3, ids));
  expect_no_model(QDL_SetGeneralizedStiffness(nullptr, 1, 1, 1));
  expect_no_model(QDL_SetGeneralizedMass(nullptr, 1, 1, 1));
  expect_no_model(QDL_SetGeneralizedDamping(nullptr, 1, 1, 1));
  expect_no_model(QDL_SetGlobalMass(nullptr, 1, values, values));
  expect_no_model(QDL_SetInterfaceNode(nullptr, 1));
  expect_no_model(QDL_SetModeVec(nullptr, 1, 1, 0, values));
  expect_no_model(QDL_SetMode(nullptr, 1, 1, 0, 1, 2, 3, 4, 5, 6));
  expect_no_model(QDL_SetModeEntry(nullptr, 1, 1, 0, 0, 1));
  expect_no_model(QDL_SetRotorDynamicsAxis(nullptr, values, values));
  expect_no_model(QDL_SetRotorDynamicsMatrix(nullptr, 0, 0, 0, 1));
  expect_no_model(QDL_CalculateGlobalMassFromNodeMass(nullptr));
}

TEST_F(Setters, RefuseNullArraysSilentlyAndChangeNothing) {
  QDL_Record *model = QDL_Create(4, 2);
  const double values[9] = {};
  EXPECT_EQ(QDL_SetFaceList(model, 3, nullptr), 0);
  EXPECT_EQ(QDL_SetGlobalMass(model, 1, nullptr, values), 0);
  EXPECT_EQ(QDL_SetGlobalMass(model, 1, values, nullptr), 0);
  EXPECT_EQ(QDL_SetModeVec(model, 1, 1, 0, nullptr), 0);
  EXPECT_EQ(QDL_SetRotorDynamicsAxis(model, nullptr, values), 0);
  EXPECT_EQ(QDL_SetRotorDynamicsAxis(model, values, nullptr), 0);
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_ModeCount(model), 0);
  EXPECT_EQ(model->summary, qdlflex::Summary{});
  expect_no_messages();
}

TEST_F(Setters, AddNodesOnDemand) {
  QDL_Record *model = QDL_Create(2, 0);
  EXPECT_EQ(QDL_SetNodeCoordinates(model, 70, 1, 2, 3), 1);
  EXPECT_EQ(QDL_SetNodalMass(model, -5, 4.0), 1);
  EXPECT_EQ(QDL_AddNodalMass(model, -5, 0.5), 1);
  EXPECT_EQ(QDL_AddNodalMass(model, 9, 2.0), 1);
  EXPECT_EQ(QDL_SetNodeCoordinates(model, 70, 7, 8, 9), 1);
  ASSERT_EQ(QDL_NodeCount(model), 3);
  EXPECT_EQ(QDL_NodeID(model, 1), -5);
  EXPECT_EQ(QDL_NodeIndex(model, 9), 2);
  EXPECT_EQ(coordinates(model, 0), (std::array<double, 3>{7, 8, 9}));
  EXPECT_EQ(coordinates(model, 1), (std::array<double, 3>{0, 0, 0}));
  EXPECT_EQ(QDL_NodalMass(model, 0), 0.0);
  EXPECT_EQ(QDL_NodalMass(model, 1), 4.5);
  EXPECT_EQ(QDL_NodalMass(model, 2), 2.0);
  EXPECT_TRUE(exists(model, Block::kNodalCoordinates));
  EXPECT_TRUE(exists(model, Block::kNodalMasses));
  EXPECT_FALSE(exists(model, Block::kNodalInertias));
  expect_no_messages();
}

TEST_F(Setters, AnswerForTheFirstOfTwoEqualNodesAndModes) {
  QDL_Record *model = QDL_Create(4, 4);
  EXPECT_EQ(QDL_AddNode(model, 5), 0);
  EXPECT_EQ(QDL_AddNode(model, 5), 1);
  EXPECT_EQ(QDL_AddNode(model, 6), 2);
  EXPECT_EQ(QDL_LookupOrAddNode(model, 5), 0);
  EXPECT_EQ(QDL_LookupOrAddNode(model, 6), 2);
  EXPECT_EQ(QDL_AddMode(model, 0), 0);
  EXPECT_EQ(QDL_AddMode(model, 0), 1);
  EXPECT_EQ(QDL_AddMode(model, -3), 2);
  EXPECT_EQ(QDL_LookupOrAddMode(model, 0), 0);
  EXPECT_EQ(QDL_LookupOrAddMode(model, -3), 2);
  EXPECT_EQ(QDL_LookupOrAddMode(model, 8), 3);
  EXPECT_EQ(model->summary, qdlflex::Summary{});
}

TEST_F(Setters, FindEveryNodeAndModeInAnyOrder) {
  constexpr std::int32_t kNodes = 5000;
  constexpr std::int32_t kModes = 100;
  QDL_Record *model = QDL_Create(1, kModes);
  std::vector<std::int32_t> order(kNodes);
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), std::mt19937(7));
  for (std::int32_t i = 0; i < kNodes; ++i) {
    ASSERT_EQ(QDL_LookupOrAddNode(model, 3 * order[static_cast<std::size_t>(i)] - 4000), i);
  }
  for (std::int32_t i = kNodes - 1; i >= 0; --i) {
    ASSERT_EQ(QDL_LookupOrAddNode(model, 3 * order[static_cast<std::size_t>(i)] - 4000), i);
  }
  for (std::int32_t i = 0; i < kModes; ++i) {
    ASSERT_EQ(QDL_LookupOrAddMode(model, 1000 - i), i);
  }
  for (std::int32_t i = kModes - 1; i >= 0; --i) {
    ASSERT_EQ(QDL_LookupOrAddMode(model, 1000 - i), i);
  }
}

TEST_F(Setters, RefuseModesBeyondThePlan) {
  QDL_Record *model = QDL_Create(4, 1);
  EXPECT_EQ(QDL_AddMode(model, 11), 0);
  EXPECT_EQ(QDL_LookupOrAddMode(model, 11), 0);
  expect_no_messages();
  EXPECT_EQ(QDL_AddMode(model, 12), -1);
  expect_only_error(no_room_for(12));
  clear_messages();
  EXPECT_EQ(QDL_LookupOrAddMode(model, 13), -1);
  expect_only_error(no_room_for(13));
  EXPECT_EQ(QDL_ModeCount(model), 1);

  clear_messages();
  EXPECT_EQ(QDL_AddMode(QDL_Create(4, -2), 1), -1);
  expect_only_error(no_room_for(1));
}

TEST_F(Setters, StoreNodalInertiasByEntry) {
  QDL_Record *model = QDL_Create(1, 0);
  double tensor[9];
  EXPECT_EQ(QDL_SetNodalInertia(model, 1, 11, 22, 33, 12, 13, 23), 1);
  ASSERT_EQ(QDL_NodalInertia(model, 0, tensor), 1);
  EXPECT_EQ(std::vector<double>(tensor, tensor + 9),
            (std::vector<double>{11, 12, 13, 12, 22, 23, 13, 23, 33}));

  // Each of the nine places of a new node, later ones over earlier ones of the same pair.
  for (std::int32_t row = 1; row <= 3; ++row) {
    for (std::int32_t column = 1; column <= 3; ++column) {
      EXPECT_EQ(QDL_SetNodalInertiaEntry(model, 2, row, column, 10.0 * row + column), 1);
    }
  }
  ASSERT_EQ(QDL_NodalInertia(model, 1, tensor), 1);
  EXPECT_EQ(std::vector<double>(tensor, tensor + 9),
            (std::vector<double>{11, 21, 31, 21, 22, 32, 31, 32, 33}));
  EXPECT_EQ(QDL_SetNodalInertiaEntry(model, 3, 2, 2, 5.0), 1);
  ASSERT_EQ(QDL_NodalInertia(model, 2, tensor), 1);
  EXPECT_EQ(std::vector<double>(tensor, tensor + 9),
            (std::vector<double>{0, 0, 0, 0, 5, 0, 0, 0, 0}));

  for (const auto &[row, column] :
       {std::pair{0, 1}, std::pair{4, 1}, std::pair{1, 0}, std::pair{1, 4}})
    EXPECT_EQ(QDL_SetNodalInertiaEntry(model, 99, row, column, 1.0), 0);
  EXPECT_EQ(QDL_NodeCount(model), 3);
  expect_no_messages();
}

TEST_F(Setters, StoreFacesWithoutRepeatedNodes) {
  QDL_Record *model = QDL_Create(9, 0);
  const auto set = [&](const std::vector<std::int32_t> &ids) {
    return QDL_SetFaceList(model, static_cast<std::int32_t>(ids.size()), ids.data());
  };
  EXPECT_EQ(set({7, 7, 8, 9, 7}), 1);
  EXPECT_EQ(faces(model, 1), (std::vector<std::int32_t>{3, 0, 1, 2}));
  EXPECT_EQ(set({7, 8, 9, 7, 7}), 1);  // closed, and the closing node repeated
  EXPECT_EQ(set({8, 7, 8}), 1);
  EXPECT_EQ(set({7, 8, 7, 9}), 1);  // not neighbours
  EXPECT_EQ(QDL_SetFace(model, 5, 7, 8, 8, 10, 7), 1);
  EXPECT_EQ(faces(model, 5), (std::vector<std::int32_t>{3, 0, 1, 2, 3, 0, 1, 2, 2, 1,
                                                        0, 4, 0, 1, 0, 2, 3, 0, 1, 3}));
  expect_no_messages();
}

TEST_F(Setters, RejectFacesOfFewerThanTwoNodes) {
  QDL_Record *model = QDL_Create(9, 0);
  const std::int32_t ids[] = {5, 5};
  EXPECT_EQ(QDL_SetFaceList(model, 0, ids), 0);
  EXPECT_EQ(QDL_SetFaceList(model, -1, ids), 0);
  EXPECT_EQ(QDL_SetFace(model, 0), 0);
  EXPECT_EQ(QDL_SetFace(model, -7), 0);
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_SetFaceList(model, 2, ids), 0);
  EXPECT_EQ(QDL_SetFace(model, 1, 6), 0);
  EXPECT_EQ(QDL_NodeCount(model), 2) << "nodes are added while the face is looked at";
  EXPECT_EQ(faces(model, 0), std::vector<std::int32_t>{});
  EXPECT_FALSE(exists(model, Block::kElementFaces));
}

TEST_F(Setters, AppendGeneralizedEntries) {
  QDL_Record *model = QDL_Create(0, 2);
  model->damping_on_principal_axes = true;
  EXPECT_EQ(QDL_SetGeneralizedStiffness(model, 7, 9, 2.5), 1);
  EXPECT_EQ(QDL_SetGeneralizedStiffness(model, 7, 9, 2.5), 1);
  EXPECT_EQ(QDL_SetGeneralizedMass(model, 9, 9, 1.0), 1);
  EXPECT_EQ(QDL_SetGeneralizedDamping(model, 9, 7, 0.1), 1);
  EXPECT_EQ(entries_of(model->stiffness), (std::vector<Entry>{{0, 1, 2.5}, {0, 1, 2.5}}));
  EXPECT_EQ(entries_of(model->mass), (std::vector<Entry>{{1, 1, 1.0}}));
  EXPECT_EQ(entries_of(model->damping), (std::vector<Entry>{{1, 0, 0.1}}));
  EXPECT_TRUE(exists(model, Block::kGeneralizedStiffness));
  EXPECT_TRUE(exists(model, Block::kGeneralizedMass));
  EXPECT_TRUE(exists(model, Block::kGeneralizedDamping));
  EXPECT_FALSE(model->damping_on_principal_axes) << "new damping is not projected yet";
  model->damping_on_principal_axes = true;
  EXPECT_EQ(QDL_SetGeneralizedDamping(model, 9, 9, 0.1), 1);
  EXPECT_TRUE(model->damping_on_principal_axes) << "only the first entry of a list clears it";
  expect_no_messages();

  // A refused mode leaves its entry without an index; each of the two look-ups reports.
  EXPECT_EQ(QDL_SetGeneralizedMass(model, 5, 7, 3.0), 1);
  expect_only_error(no_room_for(5));
  EXPECT_EQ(entries_of(model->mass).back(), (Entry{-1, 0, 3.0}));
  clear_messages();
  EXPECT_EQ(QDL_SetGeneralizedMass(model, 5, 6, 3.0), 1);
  EXPECT_EQ(errors, (std::vector<std::string>{no_room_for(5), no_room_for(6)}));
}

TEST_F(Setters, ListInterfaceNodesOnce) {
  QDL_Record *model = QDL_Create(3, 0);
  EXPECT_EQ(QDL_SetInterfaceNode(model, 4), 0);
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_FALSE(exists(model, Block::kInterfaceNodes));
  for (const std::int32_t id : {4, 5, 6})
    QDL_AddNode(model, id);
  for (const std::int32_t id : {6, 4, 6}) {
    EXPECT_EQ(QDL_SetInterfaceNode(model, id), 1);
  }
  QDL_AddNode(model, 7);
  EXPECT_EQ(QDL_SetInterfaceNode(model, 7), 1);
  std::int32_t count = 0;
  std::int32_t *ids = QDL_InterfaceNodeIDs(model, &count);
  ASSERT_EQ(count, 3);
  EXPECT_EQ(std::vector<std::int32_t>(ids, ids + 3), (std::vector<std::int32_t>{6, 4, 7}));
  QDL_FreeMemory(ids);
  EXPECT_TRUE(exists(model, Block::kInterfaceNodes));
  expect_no_messages();
}

TEST_F(Setters, StoreRotorDataByModeIndex) {
  QDL_Record *model = QDL_Create(0, 3);
  const double centre[] = {1, 2, 3};
  const double vector[] = {0, 0, 5};
  double axis[2][3];
  EXPECT_EQ(QDL_RotorDynamicsAxis(model, axis[0], axis[1]), 0);
  EXPECT_EQ(QDL_RotorDynamicsMatrix(model, 0, axis[0]), 0);
  EXPECT_EQ(QDL_SetRotorDynamicsAxis(model, centre, vector), 1);
  ASSERT_EQ(QDL_RotorDynamicsAxis(model, axis[0], axis[1]), 1);
  EXPECT_EQ(std::to_array(axis[0]), std::to_array(centre));
  EXPECT_EQ(std::to_array(axis[1]), std::to_array(vector));
  EXPECT_EQ(QDL_RotorDynamicsAxis(model, nullptr, axis[1]), 0);

  QDL_AddMode(model, 10);
  QDL_AddMode(model, 20);
  for (const auto &[matrix, row, column] :
       {std::array{-1, 0, 0}, {3, 0, 0}, {0, -1, 0}, {0, 2, 0}, {0, 0, -1}, {0, 0, 2}})
    EXPECT_EQ(QDL_SetRotorDynamicsMatrix(model, matrix, row, column, 1.0), 0);
  double values[9] = {};
  EXPECT_EQ(QDL_RotorDynamicsMatrix(model, 0, values), 0);
  EXPECT_EQ(QDL_SetRotorDynamicsMatrix(model, 2, 0, 1, 3.5), 1);
  EXPECT_EQ(QDL_SetRotorDynamicsMatrix(model, 2, 1, 0, -3.5), 1);
  ASSERT_EQ(QDL_RotorDynamicsMatrix(model, 2, values), 1);
  EXPECT_EQ(std::vector<double>(values, values + 4), (std::vector<double>{0, 3.5, -3.5, 0}));
  for (const std::int32_t absent : {0, 1, -1, 3})
    EXPECT_EQ(QDL_RotorDynamicsMatrix(model, absent, values), 0) << absent;
  EXPECT_EQ(QDL_RotorDynamicsMatrix(model, 2, nullptr), 0);

  QDL_AddMode(model, 30);
  ASSERT_EQ(QDL_RotorDynamicsMatrix(model, 2, values), 1);
  EXPECT_EQ(std::vector<double>(values, values + 9),
            (std::vector<double>{0, 3.5, 0, -3.5, 0, 0, 0, 0, 0}));
  EXPECT_EQ(QDL_SetRotorDynamicsMatrix(model, 2, 2, 2, 9.0), 1);
  ASSERT_EQ(QDL_RotorDynamicsMatrix(model, 2, values), 1);
  EXPECT_EQ(std::vector<double>(values, values + 9),
            (std::vector<double>{0, 3.5, 0, -3.5, 0, 0, 0, 0, 9}));
  model->mode_numbers.resize(1);
  values[1] = 7.0;
  ASSERT_EQ(QDL_RotorDynamicsMatrix(model, 2, values), 1);
  EXPECT_EQ(values[1], 7.0) << "one value is written";
  EXPECT_TRUE(exists(model, Block::kRotorDynamics));
  expect_no_messages();
  expect_no_model(QDL_RotorDynamicsAxis(nullptr, axis[0], axis[1]));
  expect_no_model(QDL_RotorDynamicsMatrix(nullptr, 2, values));
}

TEST_F(Setters, StoreTheHeaderAndRepeatIt) {
  QDL_Record *model = QDL_Create(0, 0);
  std::string title = "two\nlines";
  std::string name = "input.dat";
  std::string type = "deck";
  char comment1[] = "";
  char comment2[] = "\n\n";
  const std::time_t before = std::time(nullptr);
  ASSERT_EQ(
      QDL_SetHeader(model, title.data(), name.data(), type.data(), comment1, comment2, nullptr), 1);
  const std::time_t after = std::time(nullptr);
  EXPECT_EQ(title, "two lines");
  EXPECT_STREQ(comment2, "  ");
  EXPECT_EQ(infos, (std::vector<std::string>{"Title: two lines", "Name : input.dat", "Type : deck",
                                             "Comment 1: ", "Comment 2:   ", "Comment 3: "}));
  expect_only_warnings({});

  char title_out[128], date[32], name_out[128], type_out[16], comments[3][80];
  ASSERT_EQ(
      QDL_Header(model, title_out, date, name_out, type_out, comments[0], comments[1], comments[2]),
      1);
  EXPECT_STREQ(title_out, "two lines");
  EXPECT_STREQ(name_out, "input.dat");
  EXPECT_STREQ(type_out, "deck");
  EXPECT_STREQ(comments[1], "  ");
  std::vector<std::string> possible;
  for (std::time_t moment = before; moment <= after; ++moment) {
    std::string text = std::asctime(std::localtime(&moment));
    text.back() = ' ';
    possible.push_back(text);
  }
  EXPECT_NE(std::ranges::find(possible, date), possible.end()) << date;
  EXPECT_EQ(model->summary, qdlflex::Summary{});
}

TEST_F(Setters, CutLongHeaderTexts) {
  QDL_Record *model = QDL_Create(0, 0);
  std::string title(200, 't');
  title[150] = '\n';
  std::string name(128, 'n'), type(16, 'y'), comment1(80, '1'), comment2(79, '2'),
      comment3(1000, '3');
  ASSERT_EQ(QDL_SetHeader(model, title.data(), name.data(), type.data(), comment1.data(),
                          comment2.data(), comment3.data()),
            1);
  expect_only_warnings(
      {"Title too big: max size 127, specified size 200.\nTruncating title.",
       "Input file name too big: max size 127, specified size 128.\nTruncating input file name.",
       "Input file type spec too big: max size 15, specified size 16.\nTruncating input file type.",
       "Comment 1 too big: max size 79, specified size 80.\nTruncating Comment 1.",
       "Comment 3 too big: max size 79, specified size 1000.\nTruncating Comment 3."});
  EXPECT_EQ(infos[0], "Title: " + std::string(127, 't'));
  EXPECT_EQ(infos[2], "Type : " + std::string(15, 'y'));
  EXPECT_EQ(infos[4], "Comment 2: " + std::string(79, '2'));
  EXPECT_EQ(title[150], ' ') << "newlines beyond the limit are replaced too";

  // A shorter text leaves nothing of a longer one behind it.
  char text[] = "x";
  ASSERT_EQ(QDL_SetHeader(model, text, text, text, text, text, text), 1);
  EXPECT_EQ(std::string(model->header.title.data(), 128), "x" + std::string(127, '\0'));
}

// Every setter in a row; the results that told a failure, and what the model has afterwards.
struct Outcome {
  int failures = 0;
  bool created = false;
};

TEST_F(Setters, FailCleanlyWithoutMemory) {
  const auto build = [&] {
    Outcome outcome;
    QDL_Record *model = QDL_Create(2, 2);
    outcome.created = model != nullptr;
    if (!outcome.created)
      return outcome;
    const std::int32_t face[] = {1, 2, 3, 4};
    const double vector[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const auto expect_success = [&](bool success) { outcome.failures += success ? 0 : 1; };
    expect_success(QDL_SetFaceList(model, 4, face) == 1);
    expect_success(QDL_SetFace(model, 3, 3, 4, 5) == 1);
    expect_success(QDL_SetNodeCoordinates(model, 1, 1, 2, 3) == 1);
    expect_success(QDL_SetNodalMass(model, 2, 1) == 1);
    expect_success(QDL_SetNodalInertiaEntry(model, 3, 1, 1, 1) == 1);
    expect_success(QDL_LookupOrAddNode(model, 6) >= 0);
    expect_success(QDL_LookupOrAddMode(model, 1) >= 0);
    expect_success(QDL_SetGeneralizedStiffness(model, 1, 2, 1) == 1);
    expect_success(QDL_SetGlobalMass(model, 1, vector, vector) == 1);
    expect_success(QDL_SetModeVec(model, 1, 1, 0, vector) == 1);
    expect_success(QDL_SetModeVec(model, 1, 3, 1, vector) == 1);
    expect_success(QDL_SetModeEntry(model, 0, 4, 1, 2, 1.0) == 1);
    if (QDL_NodeCount(model) > 0)
      expect_success(QDL_SetInterfaceNode(model, QDL_NodeID(model, 0)) == 1);
    if (QDL_ModeCount(model) > 0)
      expect_success(QDL_SetRotorDynamicsMatrix(model, 0, 0, 0, 1.0) == 1);
    return outcome;
  };
  for (const auto persistence : {qdltest::Persistence::kOnce, qdltest::Persistence::kEverAfter}) {
    qdltest::sweep(
        qdltest::Door::kMemory, persistence, build, [&](const Outcome &outcome, bool fired) {
          if (!fired) {
            EXPECT_EQ(outcome.failures, 0);
          }
          if (outcome.created) {
            EXPECT_EQ(errors.size(), static_cast<std::size_t>(outcome.failures));
          }
          for (const std::string &error : errors) {
            EXPECT_TRUE(error.starts_with("Failed to allocate memory at line ")) << error;
          }
          QDL_Terminate();
          clear_messages();
        });
  }
}
