// What rigid motions make of inertia invariants that a setter or a file supplied, and of the global
// mass properties.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <vector>

#include "geometry/body.h"
#include "numerics/qdlinvar.h"
#include "support/read_fixture.h"

namespace {

using namespace qdltest;

constexpr Vec kX = {1, 0, 0};
constexpr Vec kPoint = {2, 0, 0};

std::vector<double> invariant_of(QDL_Record *model, int number) {
  return qdlflex::obtain_invariant(*model, number).values;
}

// Two modes, 3 values each, of which every one is different.
std::vector<double> columns(double first) {
  return {first, first + 1, first + 2, first + 3, first + 4, first + 5};
}

class SuppliedInvariants : public ReadFixture {
 protected:
  QDL_Record *two_modes() {
    QDL_Record *model = QDL_Create(1, 2);
    QDL_SetNodeCoordinates(model, 1, 1, 2, 3);
    for (const int number : {1, 2}) {
      const Six six = {1.0 * number, 2, -1, 0.5, 0.25, 1};
      QDL_SetModeVec(model, number, 1, 0, six.data());
    }
    clear_messages();
    return model;
  }
  static void set_3(QDL_Record *model) {
    const Vec first = {1, 3, 5};
    const Vec second = {2, 4, 6};
    EXPECT_EQ(QDL_SetInvar3(model, 1, first.data()), 1);
    EXPECT_EQ(QDL_SetInvar3(model, 2, second.data()), 1);
  }
  static void set_4(QDL_Record *model) {
    const Vec first = {11, 13, 15};
    const Vec second = {12, 14, 16};
    EXPECT_EQ(QDL_SetInvar4(model, 1, first.data()), 1);
    EXPECT_EQ(QDL_SetInvar4(model, 2, second.data()), 1);
  }
};

// 4 and 5 have the sign of a rotation; the supplier's are turned like any vector all the same.
TEST_F(SuppliedInvariants, AreMirroredAsVectorsAndTensors) {
  QDL_Record *model = two_modes();
  const Vec second = {7, 8, 9};
  const Six tensor = {1, 2, 3, 4, 5, 6};
  const std::vector<double> nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  set_3(model);
  set_4(model);
  QDL_SetInvar2(model, second.data());
  QDL_SetInvar5(model, 1, 2, second.data());
  QDL_SetInvar7(model, tensor.data());
  QDL_SetInvar8(model, 2, nine.data());
  QDL_SetInvar9(model, 1, 2, nine.data());
  ASSERT_EQ(QDL_Mirror_Origin(model, kX.data()), 1);
  EXPECT_EQ(invariant_of(model, 2), (std::vector<double>{-7, 8, 9}));
  EXPECT_EQ(invariant_of(model, 3), (std::vector<double>{-1, -2, 3, 4, 5, 6}));
  EXPECT_EQ(invariant_of(model, 4), (std::vector<double>{-11, -12, 13, 14, 15, 16}));
  EXPECT_EQ(invariant_of(model, 5), (std::vector<double>{0, -7, 0, 8, 0, 9, 7, 0, -8, 0, -9, 0}));
  EXPECT_EQ(invariant_of(model, 7), (std::vector<double>{1, -4, -5, -4, 2, 6, -5, 6, 3}));
  EXPECT_EQ(invariant_of(model, 8), (std::vector<double>{0, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                                         1, -2, -3, -4, 5, 6, -7, 8, 9}));
  const std::vector<double> pairs = invariant_of(model, 9);
  EXPECT_EQ(std::vector<double>(pairs.begin() + 9, pairs.begin() + 18),
            (std::vector<double>{1, -2, -3, -4, 5, 6, -7, 8, 9}));
}

// With nodal masses invariant 4 is a sum over nodes, whoever gave it.
TEST_F(SuppliedInvariants, FourFollowsTheMirrorOfTheNodesWhereThereAreMasses) {
  QDL_Record *model = two_modes();
  set_4(model);
  QDL_SetNodalMass(model, 1, 2.0);
  ASSERT_EQ(QDL_Mirror_Origin(model, kX.data()), 1);
  EXPECT_EQ(invariant_of(model, 4), (std::vector<double>{11, 12, -13, -14, -15, -16}));
}

TEST_F(SuppliedInvariants, OfAFileAreTurnedEvenIfNobodyAskedForThemBefore) {
  constexpr std::array<int, 8> kAll = {1, 2, 3, 4, 5, 7, 8, 9};
  const auto turned = [&](std::int32_t code, bool asked) {
    QDL_Record *model = open(build_file(code));
    for (const int number : kAll) {
      if (asked)
        invariant_of(model, number);
    }
    EXPECT_EQ(QDL_Mirror_Origin(model, kX.data()), 1);
    std::vector<std::vector<double>> values;
    for (const int number : kAll)
      values.push_back(invariant_of(model, number));
    return values;
  };
  for (const std::int32_t code : {60, 60 | kXdrBit | kSingleBit})
    EXPECT_EQ(turned(code, false), turned(code, true));
}

TEST_F(SuppliedInvariants, CannotFollowATranslationWithoutMasses) {
  QDL_Record *model = two_modes();
  const Vec second = {7, 8, 9};
  const Six tensor = {1, 2, 3, 0, 0, 0};
  QDL_SetInvar2(model, second.data());
  set_4(model);
  QDL_SetInvar7(model, tensor.data());
  const std::vector<double> nine(9, 1.0);
  QDL_SetInvar8(model, 1, nine.data());
  clear_messages();
  EXPECT_EQ(QDL_Translate(model, kX.data(), 2.0), 0);
  EXPECT_EQ(errors, (std::vector<std::string>{
                        "Can not Compute Invar2.\n",
                        "Can not compute Invar4. \nInvar3 or Nodal Mass inforamtion is needed to "
                        "compute Invar4.",
                        "Can not Compute Invar7.\n",
                        "Can not compute Invar8. \nInvar3 is needed to compute Invar8."}));
  EXPECT_EQ(model->nodes[0].xyz, (Vec{3, 2, 3}));
  EXPECT_EQ(invariant_of(model, 2), (std::vector<double>{7, 8, 9}));
  EXPECT_EQ(invariant_of(model, 4), columns(11));

  // The rest of a rotation about a distant axis is done as well.
  clear_messages();
  EXPECT_EQ(QDL_Rotate(model, Vec{0, 0, 1}.data(), kPoint.data(), 180.0), 0);
  EXPECT_EQ(errors.size(), 4U);
  expect_near({model->nodes[0].xyz.begin(), model->nodes[0].xyz.end()}, {1, -2, 3}, 1e-15);
}

TEST_F(SuppliedInvariants, FourAndEightFollowATranslationWithInvariantThree) {
  QDL_Record *model = two_modes();
  set_3(model);
  set_4(model);
  const std::vector<double> nine(9, 1.0);
  QDL_SetInvar8(model, 1, nine.data());
  EXPECT_EQ(QDL_Translate(model, kX.data(), 2.0), 1);
  // 4: plus (2, 0, 0) x (1, 3, 5) and (2, 0, 0) x (2, 4, 6).
  EXPECT_EQ(invariant_of(model, 4), (std::vector<double>{11, 12, 3, 2, 21, 24}));
  // 8: plus ~(2, 0, 0) ~(1, 3, 5) and ~(2, 0, 0) ~(2, 4, 6).
  EXPECT_EQ(invariant_of(model, 8), (std::vector<double>{1, 1, 1, 7, -1, 1, 11, 1, -1,  //
                                                         0, 0, 0, 8, -4, 0, 12, 0, -4}));
  expect_no_messages();
}

TEST_F(SuppliedInvariants, AreSummedAnewOverTheNodesByATranslation) {
  const Body body = sample_body();
  QDL_Record *model = build(body, 3);
  const Vec wrong = {7, 8, 9};
  const Six wrong_tensor = {1, 2, 3, 0, 0, 0};
  QDL_SetInvar2(model, wrong.data());
  QDL_SetInvar4(model, 4, wrong.data());
  QDL_SetInvar7(model, wrong_tensor.data());
  const Vec axis = {1, 2, -1};
  ASSERT_EQ(QDL_Mirror(model, axis.data(), kPoint.data()), 1);
  const Body expected = moved(body, mirror(axis, kPoint));
  for (const int number : {2, 4, 7})
    expect_near(invariant_of(model, number), invariant(expected, number), 1e-13);
}

TEST_F(SuppliedInvariants, OfAFileFollowTheBody) {
  QDL_Record *written = build(sample_body(), 3);
  const std::vector<std::int32_t> face = {12, 5, 31};
  QDL_SetFaceList(written, 3, face.data());
  for (const std::int32_t mode : {4, 9}) {
    QDL_SetGeneralizedMass(written, mode, mode, 1.0);
    QDL_SetGeneralizedStiffness(written, mode, mode, 1e6);
  }
  const ScopedEnvironment options("ZEB_QDLWRITE_OPTIONS", "full_invar no_ortho");
  const std::string name = path("whole.qdl");
  ASSERT_EQ(QDL_write_QDL(written, name.c_str()), 1);
  QDL_Record *model = QDL_CreateFromQDL(name.c_str());
  clear_messages();

  const auto expect_invariants_of = [&](const Body &body) {
    for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
      SCOPED_TRACE(testing::Message() << "invariant " << number);
      expect_near(invariant_of(model, number), invariant(body, number), 1e-13, 100.0);
    }
  };
  const Vec direction = {1, -2, 2};
  ASSERT_EQ(QDL_Translate(model, direction.data(), 6.0), 1);
  Body body = moved(sample_body(), shift(direction, 6.0));
  expect_invariants_of(body);

  double mass = 0.0;
  Vec to_centre{};
  for (const qdlflex::Node &node : model->nodes) {
    mass += node.mass;
    for (std::size_t c = 0; c < 3; ++c)
      to_centre[c] -= node.mass * node.xyz[c];
  }
  for (double &component : to_centre)
    component /= mass;
  ASSERT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  expect_invariants_of(moved(body, {shift(direction, 0.0).matrix, to_centre}));
  EXPECT_TRUE(errors.empty());
  EXPECT_TRUE(warnings.empty());
}

TEST_F(SuppliedInvariants, StayBehindASilentShiftOfTheFrame) {
  QDL_Record *model = two_modes();
  QDL_SetNodalMass(model, 1, 2.0);
  const Vec second = {7, 8, 9};
  QDL_SetInvar2(model, second.data());
  QDL_PreprocessKVTQDL(model);  // there are masses, but they do not count as such any more
  clear_messages();
  EXPECT_EQ(QDL_ShiftLBRFtoCM(model), 1);
  EXPECT_TRUE(errors.empty());
  EXPECT_EQ(model->nodes[0].xyz, (Vec{0, 0, 0}));
  EXPECT_EQ(invariant_of(model, 2), (std::vector<double>{7, 8, 9}));
}

TEST_F(SuppliedInvariants, EightNeedsThreeAlsoWhereThereAreMasses) {
  QDL_Record *model = two_modes();
  QDL_SetNodalMass(model, 1, 2.0);
  const std::vector<double> nine(9, 1.0);
  QDL_SetInvar8(model, 1, nine.data());
  clear_messages();
  EXPECT_EQ(QDL_Translate(model, kX.data(), 2.0), 0);
  expect_only_error("Can not compute Invar8. \nInvar3 is needed to compute Invar8.");
}

// A transformation to fewer modes leaves the record with numbers of modes that it has no values of.
TEST_F(SuppliedInvariants, FourIsSummedOverTheModesThatHaveValues) {
  QDL_Record *model = two_modes();
  QDL_SetNodalMass(model, 1, 2.0);
  set_4(model);
  const std::array<double, 2> first_only = {1, 0};
  ASSERT_EQ(QDL_TransformModes(model, 0, 1, first_only.data()), 1);
  EXPECT_EQ(QDL_Translate(model, kX.data(), 2.0), 1);
  // 2 (3, 2, 3) x (1, 2, -1)
  EXPECT_EQ(invariant_of(model, 4), (std::vector<double>{-16, 0, 12, 0, 8, 0}));
  EXPECT_TRUE(errors.empty());
}

// The stored products of inertia are positive: the tensor has their negatives.
TEST_F(SuppliedInvariants, NoneLeavesTheGlobalMassToBeMoved) {
  Body body;
  for (const Vec &place : {Vec{2, 1, 1}, Vec{0, 3, -3}})
    body.nodes.push_back({1, place, 1.0, false, {}});
  const auto stored_inertia = [&] {
    std::vector<double> values = invariant(body, 7);
    for (std::size_t i = 0; i < 9; ++i)
      values[i] *= i % 4 == 0 ? 1.0 : -1.0;
    return values;
  };
  QDL_Record *model = QDL_Create(0, 0);
  std::vector<double> centre = {1, 2, -1};
  ASSERT_EQ(QDL_SetGlobalMass(model, 2.0, centre.data(), stored_inertia().data()), 1);
  clear_messages();
  const Vec axis = {1, 1, 2};
  const Vec point = {0, 3, 1};
  for (const bool known_invariants : {false, true}) {
    if (known_invariants)
      qdlflex::obtain_invariant(*model, 7);
    ASSERT_EQ(QDL_Rotate(model, axis.data(), point.data(), 77.0), 1);
    body = moved(body, turn(axis, point, 77.0));
  }
  double mass = 0.0;
  std::vector<double> inertia(9);
  ASSERT_EQ(QDL_TotalMassInertia(model, &mass, centre.data(), inertia.data()), 1);
  EXPECT_EQ(mass, 2.0);
  for (double &component : centre)
    component *= mass;
  expect_near(centre, invariant(body, 2), 1e-14);
  expect_near(inertia, stored_inertia(), 1e-13);
  expect_no_messages();
}

}  // namespace
