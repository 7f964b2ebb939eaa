// Mirrors, rotations and translations: a moved model must be the model of the moved body.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "geometry/body.h"
#include "geometry/job_fixture.h"
#include "numerics/qdlinvar.h"
#include "record/record.h"

namespace {

using namespace qdltest;

struct Move {
  std::string name;
  Motion motion;
  std::function<int(QDL_Record *)> apply;
};

std::vector<Move> moves() {
  std::mt19937 random(20260);
  std::uniform_real_distribution<double> number(-3.0, 3.0);
  const auto vector = [&] { return Vec{number(random), number(random), number(random)}; };
  std::vector<Vec> directions = {{0, 0, 2}, {0, 0, -1}, {1, 0, 0}, {0, -3, 0}};
  for (int i = 0; i < 4; ++i)
    directions.push_back(vector());
  std::vector<Move> all;
  for (const Vec &a : directions) {
    const Vec p = vector();
    const double angle = 120.0 * number(random);
    all.push_back({"rotation about the origin", turn(a, -angle), [=](QDL_Record *model) {
                     return QDL_Rotate_Origin(model, a.data(), angle, nullptr);
                   }});
    all.push_back({"rotation", turn(a, p, angle), [=](QDL_Record *model) {
                     return QDL_Rotate(model, a.data(), p.data(), angle);
                   }});
    all.push_back({"mirror through the origin", mirror(a, {}),
                   [=](QDL_Record *model) { return QDL_Mirror_Origin(model, a.data()); }});
    all.push_back({"mirror", mirror(a, p),
                   [=](QDL_Record *model) { return QDL_Mirror(model, a.data(), p.data()); }});
    all.push_back({"translation", shift(a, angle),
                   [=](QDL_Record *model) { return QDL_Translate(model, a.data(), angle); }});
  }
  return all;
}

void ask_for_invariants(QDL_Record *model) {
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9})
    qdlflex::obtain_invariant(*model, number);
}

// A file without invariants and statistics, which would stand for what the nodes say.
SampleFile nodal_file(std::int32_t code) {
  std::set<int> blocks = usual_blocks(code);
  for (const int block : {19, 20, 21, 22, 23, 24, 25, 26, 30})
    blocks.erase(block);
  return build_file(code, blocks);
}

class RigidMotion : public JobFixture {};

TEST_F(RigidMotion, MovesAModelInMemory) {
  const Body body = sample_body();
  for (const Move &move : moves()) {
    for (const bool known_invariants : {false, true}) {
      SCOPED_TRACE(move.name + (known_invariants ? ", invariants known before" : ""));
      QDL_Record *model = build(body, 2);
      if (known_invariants)
        ask_for_invariants(model);
      ASSERT_EQ(move.apply(model), 1);
      const Body expected = moved(body, move.motion);
      expect_body(model, expected, 1e-13);
      expect_invariants(model, expected, 1e-12);
      QDL_Destroy(model);
    }
  }
  EXPECT_TRUE(errors.empty());
}

TEST_F(RigidMotion, MovesAModelReadFromEveryEncodingAlsoInOtherUnits) {
  const std::vector<Move> all = moves();
  std::size_t next = 0;
  for (const std::int32_t code : every_version_code()) {
    if ((code & 0xff) < 60)
      continue;  // the modal stress and strain of the body came with later versions
    const SampleFile sample = nodal_file(code);
    for (const bool units_first : {false, true}) {
      for (std::size_t i = 0; i < 5; ++i) {
        const Move &move = all[(next += 7) % all.size()];
        SCOPED_TRACE(version_name(code) + " " + move.name);
        QDL_Record *model = open(sample);
        ASSERT_NE(model, nullptr);
        Body expected = body_of(sample_model());
        const auto change_units = [&] {
          ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "KNEWTON"), 1);
          expected = scaled(expected, 1e-3, 1e-3, 1.0);
        };
        if (units_first)
          change_units();
        ASSERT_EQ(move.apply(model), 1);
        expected = moved(expected, move.motion);
        if (!units_first)
          change_units();
        const bool single = precision_of(code) == Precision::kSingle;
        expect_body(model, expected, single ? 3e-7 : 1e-13);
        expect_invariants(model, expected, single ? 1e-6 : 1e-12);
        EXPECT_EQ(QDL_Double_Prec(model), single ? 0 : 1);
        EXPECT_TRUE(errors.empty());
      }
    }
  }
}

TEST_F(RigidMotion, HasTheStatedSenseAndReturnsTheMatrix) {
  const Vec z = {0, 0, 1};
  const Vec origin = {};
  QDL_Record *model = QDL_Create(1, 0);
  QDL_SetNodeCoordinates(model, 1, 1, 0, 0);
  std::vector<double> matrix(9);
  EXPECT_EQ(QDL_Rotate_Origin(model, z.data(), 90.0, matrix.data()), 1);
  expect_near(matrix, {0, -1, 0, 1, 0, 0, 0, 0, 1}, 1e-15);
  const auto &node = model->nodes[0].xyz;
  expect_near({node.begin(), node.end()}, {0, -1, 0}, 1e-15);
  EXPECT_EQ(QDL_Rotate(model, z.data(), origin.data(), 180.0), 1);
  expect_near({node.begin(), node.end()}, {0, 1, 0}, 1e-15);
  const Vec x = {1, 0, 0};
  EXPECT_EQ(QDL_Mirror(model, x.data(), x.data()), 1);
  expect_near({node.begin(), node.end()}, {2, 1, 0}, 1e-15);
  expect_no_messages();
}

// Magnitudes do not depend on the frame.
TEST_F(RigidMotion, KeepsTheMaximaOfTheModes) {
  QDL_Record *model = open(build_file(60));
  const auto before = model->statistics.modes;
  ASSERT_EQ(before.size(), 2U);
  const Vec axis = {1, 2, -2};
  EXPECT_EQ(QDL_Mirror_Origin(model, axis.data()), 1);
  for (std::size_t mode = 0; mode < 2; ++mode) {
    EXPECT_EQ(model->statistics.modes[mode].node_ids, before[mode].node_ids);
    EXPECT_EQ(model->statistics.modes[mode].values, before[mode].values);
  }
}

// Squares of these components leave the range of numbers.
TEST_F(RigidMotion, TakesDirectionsOfAnyLength) {
  const Body body = sample_body();
  for (const double length : {1e-300, 1e300}) {
    QDL_Record *model = build(body, 3);
    const Vec axis = {length, -2 * length, 0.5 * length};
    EXPECT_EQ(QDL_Rotate_Origin(model, axis.data(), 40.0, nullptr), 1);
    EXPECT_EQ(QDL_Mirror_Origin(model, axis.data()), 1);
    EXPECT_EQ(QDL_Translate(model, axis.data(), 3.0), 1);
    const Vec same = {1, -2, 0.5};
    const Body expected =
        moved(moved(moved(body, turn(same, -40.0)), mirror(same, {})), shift(same, 3.0));
    expect_body(model, expected, 1e-13);
  }
}

TEST_F(RigidMotion, RefusesWhatHasNoDirectionOrIsNotFinite) {
  const Body body = sample_body();
  QDL_Record *model = build(body, 3);
  clear_messages();
  const Vec good = {1, 2, 3};
  const double infinite = std::numeric_limits<double>::infinity();
  std::vector<double> matrix(9, 7.0);
  for (const Vec &bad : {Vec{}, Vec{0, std::nan(""), 1}, Vec{infinite, 0, 0}}) {
    EXPECT_EQ(QDL_Mirror_Origin(model, bad.data()), 0);
    EXPECT_EQ(QDL_Mirror(model, bad.data(), good.data()), 0);
    EXPECT_EQ(QDL_Rotate_Origin(model, bad.data(), 10.0, matrix.data()), 0);
    EXPECT_EQ(QDL_Rotate(model, bad.data(), good.data(), 10.0), 0);
    EXPECT_EQ(QDL_Translate(model, bad.data(), 1.0), 0);
  }
  const Vec bad_point = {0, 0, infinite};
  EXPECT_EQ(QDL_Mirror(model, good.data(), bad_point.data()), 0);
  EXPECT_EQ(QDL_Rotate(model, good.data(), bad_point.data(), 10.0), 0);
  EXPECT_EQ(QDL_Rotate(model, good.data(), good.data(), infinite), 0);
  EXPECT_EQ(QDL_Rotate_Origin(model, good.data(), std::nan(""), matrix.data()), 0);
  EXPECT_EQ(QDL_Translate(model, good.data(), infinite), 0);
  EXPECT_EQ(QDL_Mirror(model, nullptr, good.data()), 0);
  EXPECT_EQ(QDL_Mirror(model, good.data(), nullptr), 0);
  EXPECT_EQ(QDL_Rotate(model, good.data(), nullptr, 10.0), 0);
  EXPECT_EQ(QDL_Translate(model, nullptr, 1.0), 0);
  EXPECT_EQ(matrix, std::vector<double>(9, 7.0));
  expect_no_messages();
  expect_body(model, body, 0.0);
}

// A model under construction keeps taking nodes, modes and vectors after it was turned.
TEST_F(RigidMotion, LetsAModelUnderConstructionGrow) {
  Body body = sample_body();
  QDL_Record *model = build(body, 3);
  const Vec axis = {2, 1, -1};
  EXPECT_EQ(QDL_Rotate_Origin(model, axis.data(), 50.0, nullptr), 1);
  body = moved(body, turn(axis, -50.0));
  const Six six = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(QDL_SetModeVec(model, 17, 99, 0, six.data()), 1);
  EXPECT_EQ(QDL_SetModeVec(model, 17, 99, 1, six.data()), 1);
  body.nodes.push_back({99, {}, 0.0, false, {}});
  body.mode_numbers.push_back(17);
  for (std::size_t kind = 0; kind < 2; ++kind) {
    ModeValues &data = body.kinds[kind];
    data.node_ids.push_back(99);
    data.modes.emplace_back(data.node_ids.size() - 1);
    for (auto &mode : data.modes)
      mode.push_back(Six{});
    data.modes.back().back() = six;
  }
  expect_body(model, body, 1e-13);
}

TEST_F(RigidMotion, LeavesTheModelAloneWhenItFails) {
  const Vec axis = {1, 2, -2};
  const Vec point = {3, -1, 2};
  const auto sweep_mirror = [&](const Body &body, const std::function<QDL_Record *()> &make) {
    sweep_job(
        make, [&](QDL_Record *model) { return QDL_Mirror(model, axis.data(), point.data()); },
        [&](QDL_Record *model, bool done) {
          expect_body(model, done ? moved(body, mirror(axis, point)) : body, 1e-12);
        });
  };
  sweep_mirror(sample_body(), [] { return build(sample_body(), 3); });
  const SampleFile sample = nodal_file(60 | kXdrBit);
  sweep_mirror(body_of(sample_model()), [&] { return open(sample); });
}

}  // namespace
