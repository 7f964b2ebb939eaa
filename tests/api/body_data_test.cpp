// Size, mass, header, faces and properties of the whole body.

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "record/record.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

class BodyData : public MessageFixture {
 protected:
  QDL_Record *with_nodes(const std::vector<std::array<double, 3>> &points) {
    QDL_Record *model = QDL_Create(0, 0);
    std::int32_t id = 0;
    for (const auto &point : points)
      QDL_SetNodeCoordinates(model, ++id, point[0], point[1], point[2]);
    return model;
  }

  static void set_faces(QDL_Record *model, const std::vector<std::int32_t> &list) {
    model->faces.list = list;
    model->faces.present = true;
  }
};

TEST_F(BodyData, SizeIsTheDiagonalOfTheBoxAroundFacesAndFirstNode) {
  QDL_Record *model = with_nodes({{1, 1, 1}, {4, 5, 1}, {4, 1, 13}, {-900, 900, 900}});
  EXPECT_EQ(QDL_BodySize(model), 0.0);  // the first node alone; asked again below
  const std::array<std::int32_t, 2> edge = {2, 3};
  QDL_SetFaceList(model, 2, edge.data());
  EXPECT_EQ(QDL_BodySize(model), 13.0);  // 3, 4, 12
}

TEST_F(BodyData, SizeIsKeptOnceItIsKnown) {
  QDL_Record *model = with_nodes({{0, 0, 0}, {0, 3, 4}});
  const std::array<std::int32_t, 2> edge = {1, 2};
  QDL_SetFaceList(model, 2, edge.data());
  EXPECT_EQ(QDL_BodySize(model), 5.0);
  QDL_SetNodeCoordinates(model, 2, 0, 30, 40);
  EXPECT_EQ(QDL_BodySize(model), 5.0);
}

TEST_F(BodyData, SizeTakesFaceEntriesOutsideTheNodesAsTheOrigin) {
  const std::vector<std::vector<std::int32_t>> lists = {
      {2, 0, 7},                   // an index that no node has
      {2, -1, 0},                  // a negative index
      {kLargest, 0, 99},           // a face longer than the list
      {-5, 0, 3, 0, 0, kLargest},  // faces without nodes before it
      {std::numeric_limits<std::int32_t>::min(), 1, 5},
  };
  for (const auto &list : lists) {
    QDL_Record *model = with_nodes({{0, 6, 8}});
    set_faces(model, list);
    EXPECT_EQ(QDL_BodySize(model), 10.0);
  }
}

TEST_F(BodyData, SizeIsZeroWithoutNodes) {
  QDL_Record *model = QDL_Create(0, 0);
  set_faces(model, {3, 0, 1, 2});
  EXPECT_EQ(QDL_BodySize(model), 0.0);
  EXPECT_EQ(QDL_BodySize(nullptr), 0.0);
}

struct MassProperties {
  double mass = -1.0;
  std::array<double, 3> centre{-1, -1, -1};
  std::array<double, 9> inertia{-1, -1, -1, -1, -1, -1, -1, -1, -1};
};

// Mass 2 at (1, 2, 3) and mass 3 at (-1, 0, 2), worked out by hand.
TEST_F(BodyData, TotalMassFollowsTheNodes) {
  QDL_Record *model = with_nodes({{1, 2, 3}, {-1, 0, 2}});
  QDL_SetNodalMass(model, 1, 2.0);
  QDL_SetNodalMass(model, 2, 3.0);
  MassProperties total;
  EXPECT_EQ(QDL_TotalMassInertia(model, &total.mass, total.centre.data(), total.inertia.data()), 1);
  EXPECT_EQ(total.mass, 5.0);
  EXPECT_DOUBLE_EQ(total.centre[0], -0.2);
  EXPECT_DOUBLE_EQ(total.centre[1], 0.8);
  EXPECT_DOUBLE_EQ(total.centre[2], 2.4);
  EXPECT_EQ(total.inertia, (std::array<double, 9>{38, 4, 0, 4, 35, 12, 0, 12, 13}));

  QDL_SetNodalMass(model, 2, 0.0);
  EXPECT_EQ(QDL_TotalMassInertia(model, nullptr, total.centre.data(), total.inertia.data()), 1);
  EXPECT_EQ(total.centre, (std::array<double, 3>{1, 2, 3}));
  expect_no_messages();
}

TEST_F(BodyData, TotalMassIsZeroForNull) {
  MassProperties total;
  EXPECT_EQ(QDL_TotalMassInertia(nullptr, &total.mass, total.centre.data(), total.inertia.data()),
            0);
  EXPECT_EQ(total.mass, 0.0);
  EXPECT_EQ(total.centre, (std::array<double, 3>{}));
  EXPECT_EQ(total.inertia, (std::array<double, 9>{}));
  EXPECT_EQ(QDL_TotalMassInertia(with_nodes({{1, 2, 3}}), nullptr, nullptr, nullptr), 0);
  expect_no_messages();
}

TEST_F(BodyData, HeaderFieldsAreCopiedWhole) {
  QDL_Record *model = QDL_Create(0, 0);
  qdlflex::Header &header = model->header;
  const auto fill = [](auto &...fields) {
    ((std::ranges::fill(fields, 'x'), fields.back() = '\0'), ...);
  };
  fill(header.title, header.input_name, header.input_type, header.comments[0], header.comments[1],
       header.comments[2]);
  std::copy_n("Mon Jan  5\n", 12, header.date.begin());
  header.date.back() = 'e';

  constexpr std::size_t kWidths[] = {128, 32, 128, 16, 80, 80, 80};
  std::array<std::array<char, 129>, 7> b{};
  for (auto &buffer : b)
    buffer.fill('!');
  EXPECT_EQ(QDL_Header(model, b[0].data(), b[1].data(), b[2].data(), b[3].data(), b[4].data(),
                       b[5].data(), b[6].data()),
            1);
  for (std::size_t i = 0; i < b.size(); ++i) {
    EXPECT_EQ(b[i][kWidths[i]], '!') << i;
    EXPECT_EQ(std::string(b[i].data()), i == 1 ? "Mon Jan  5" : std::string(kWidths[i] - 1, 'x'));
  }
  EXPECT_EQ(b[1][31], 'e');

  std::array<char, 16> again{};
  EXPECT_EQ(QDL_Header(model, nullptr, nullptr, nullptr, again.data(), nullptr, nullptr, nullptr),
            1);
  EXPECT_EQ(std::string(again.data()), std::string(15, 'x'));
  EXPECT_EQ(QDL_Header(nullptr, again.data(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            0);
  expect_no_messages();
}

TEST_F(BodyData, AnEmptyFaceListDiffersFromNone) {
  QDL_Record *model = QDL_Create(0, 0);
  std::array<std::int32_t, 1> list{};
  EXPECT_EQ(QDL_ElementFaces(model, list.data()), 0);
  set_faces(model, {});
  EXPECT_EQ(QDL_ElementFaces(model, list.data()), 1);
  EXPECT_EQ(QDL_ElementFaces(model, nullptr), 0);
  EXPECT_EQ(QDL_FaceListSize(model, nullptr, nullptr), 1);

  std::int32_t faces = -1;
  std::int32_t length = -1;
  EXPECT_EQ(QDL_FaceListSize(nullptr, &faces, &length), 0);
  EXPECT_EQ(faces, 0);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(QDL_ElementFaces(nullptr, list.data()), 0);
  expect_no_messages();
}

TEST_F(BodyData, FacesOfMoreThanFourNodesAreCoarse) {
  QDL_Record *model = QDL_Create(0, 0);
  EXPECT_EQ(QDL_IsCoarsened(model), 0);
  set_faces(model, {4, 0, 1, 2, 3, 3, 0, 1, 2, 2, 0, 1, 0, -7});
  EXPECT_EQ(QDL_IsCoarsened(model), 0);
  set_faces(model, {3, 0, 1, 2, kLargest, 0, 1});  // cut short by the end of the list
  EXPECT_EQ(QDL_IsCoarsened(model), 0);
  set_faces(model, {3, 0, 1, 2, 5, 0, 1, 2, 3, 4});
  EXPECT_EQ(QDL_IsCoarsened(model), 1);
  set_faces(model, {});
  EXPECT_EQ(QDL_IsCoarsened(model), 1);  // the flag stays
  EXPECT_EQ(QDL_IsCoarsened(nullptr), 0);
  expect_no_messages();
}

TEST_F(BodyData, OldVersionsClearTheFlags) {
  for (const std::int32_t old : {10, 20, 30, 31, 40, 41, 50, 51}) {
    QDL_Record *model = QDL_Create(0, 0);
    model->version_code = 0x73C;
    EXPECT_EQ(QDL_SetVersion(model, old), 1);
    EXPECT_EQ(model->version_code, static_cast<std::uint32_t>(old));
    EXPECT_EQ(QDL_Version(model), old);
  }
  struct {
    std::int32_t version;
    std::uint32_t code;
  } const kept[] = {{60, 0x73C}, {0, 0x700}, {0x1FF, 0x7FF}, {-1, 0x7FF}, {61, 0x73D}};
  for (const auto &[version, code] : kept) {
    QDL_Record *model = QDL_Create(0, 0);
    model->version_code = 0x73C;
    EXPECT_EQ(QDL_SetVersion(model, version), 1);
    EXPECT_EQ(model->version_code, code) << version;
  }
  EXPECT_EQ(QDL_Version(QDL_Create(0, 0)), 31);
  EXPECT_EQ(QDL_Version(nullptr), 0);
  expect_no_messages();
  expect_no_model(QDL_SetVersion(nullptr, 60));
}

TEST_F(BodyData, PrecisionIsThatOfTheModeShapes) {
  const std::string golden = QDLFLEX_SOURCE_DIR "/tests/golden/";
  EXPECT_EQ(QDL_Double_Prec(QDL_CreateFromQDL((golden + "60_xdr_single.qdl").c_str())), 0);
  QDL_Record *model = QDL_CreateFromQDL((golden + "60_native_double.qdl").c_str());
  EXPECT_EQ(QDL_Double_Prec(model), 1);
  QDL_SetVersion(model, 50);
  EXPECT_EQ(QDL_Double_Prec(model), 1);
  EXPECT_EQ(QDL_Double_Prec(QDL_Create(0, 0)), 1);
  EXPECT_EQ(QDL_Double_Prec(nullptr), 0);
}

TEST_F(BodyData, SolverDatabaseExportIsRefused) {
  EXPECT_EQ(QDL_write_DB(QDL_Create(0, 0), "body.db"), 0);
  expect_only_error("Solver-database export is not available in this build.");
  clear_messages();
  expect_no_model(QDL_write_DB(nullptr, nullptr));
}

}  // namespace
