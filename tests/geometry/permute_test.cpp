// A model in a new frame and new modes, and one that is made ready for new masses.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <vector>

#include "geometry/body.h"
#include "geometry/job_fixture.h"
#include "numerics/qdlinvar.h"
#include "record/record.h"

namespace {

using namespace qdltest;

// Row by row: two present modes, three new ones.
constexpr std::array<double, 6> kCoefficients = {1, 2, -0.5, 0.25, -1, 3};
constexpr Vec kOrigin = {1, -2, 0.5};
constexpr std::array<double, 9> kQuarterTurn = {0, 1, 0, -1, 0, 0, 0, 0, 1};  // transposed

Body permuted(const Body &body) {
  Body result = body;
  for (BodyNode &node : result.nodes) {
    node.mass *= 3.0;
    for (double &value : node.inertia)
      value *= 3.0;
    const Vec r = {node.xyz[0] - kOrigin[0], node.xyz[1] - kOrigin[1], node.xyz[2] - kOrigin[2]};
    node.xyz = {-r[1], r[0], r[2]};
  }
  // Modes 4 and 9 stay the first two; the third has a number that was free.
  for (ModeValues &data : result.kinds) {
    const auto old = data.modes;
    data.modes.assign(3, std::vector<Six>(data.node_ids.size()));
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t row = 0; row < data.node_ids.size(); ++row) {
        for (std::size_t c = 0; c < 6; ++c) {
          data.modes[j][row][c] =
              kCoefficients[j] * old[0][row][c] + kCoefficients[3 + j] * old[1][row][c];
        }
      }
    }
  }
  return result;
}

class Permutation : public JobFixture {
 protected:
  static int permute(QDL_Record *model) {
    return QDL_PermuteQDL(model, kOrigin.data(), 3, 3.0, kCoefficients.data(), kQuarterTurn.data());
  }
};

TEST_F(Permutation, CombinesModesAndMovesTheFrame) {
  QDL_Record *model = build(sample_body(), 3);
  model->global_mass = {2.0, {3, 4, 5}, {}};
  for (const int number : {1, 4, 9})
    qdlflex::obtain_invariant(*model, number);
  ASSERT_EQ(permute(model), 1);
  Body expected = permuted(sample_body());
  ASSERT_EQ(QDL_ModeCount(model), 3);
  expected.mode_numbers.push_back(QDL_ModeNumber(model, 2));
  expect_body(model, expected, 1e-14);
  expect_invariants(model, expected, 1e-13);
  EXPECT_EQ(model->global_mass.centre, (Vec{-6, 2, 4.5}));
  EXPECT_TRUE(errors.empty());
}

// Neither a block nor a maximum of the file describes the new modes.
TEST_F(Permutation, DisownsInvariantsAndMaximaOfTheFile) {
  QDL_Record *model = open(build_file(60 | kXdrBit));
  ASSERT_EQ(QDL_PermuteQDL(model, nullptr, 1, 1.0, kCoefficients.data(), nullptr), 1);
  for (int block = 19; block <= 26; ++block)
    EXPECT_EQ(QDL_Exists(model, block - 1), 0) << block;
  const Body before = body_of(sample_model());
  Body expected = before;
  expected.mode_numbers.resize(1);
  for (std::size_t kind = 0; kind < 3; ++kind) {
    ModeValues &data = expected.kinds[kind];
    data.modes.resize(1);
    for (std::size_t row = 0; row < data.node_ids.size(); ++row) {
      for (std::size_t c = 0; c < 6; ++c)
        data.modes[0][row][c] += 2.0 * before.kinds[kind].modes[1][row][c];
    }
  }
  expect_body(model, expected, 1e-14);
  expect_invariants(model, expected, 1e-13);
}

TEST_F(Permutation, LeavesOutWhatIsNull) {
  QDL_Record *model = build(sample_body(), 3);
  ASSERT_EQ(QDL_PermuteQDL(model, nullptr, 5, 1.0, nullptr, nullptr), 1);
  expect_body(model, sample_body(), 0.0);
  EXPECT_EQ(QDL_ModeCount(model), 2);
  ASSERT_EQ(QDL_PermuteQDL(model, nullptr, 1, 1.0, nullptr, nullptr), 1);
  EXPECT_EQ(QDL_ModeCount(model), 1);
  EXPECT_EQ(QDL_PermuteQDL(model, nullptr, -1, 1.0, nullptr, nullptr), 0);
  EXPECT_EQ(QDL_ModeCount(model), 1);
}

TEST_F(Permutation, ChangesNothingWhenItFails) {
  sweep_job([] { return build(sample_body(), 3); }, permute,
            [&](QDL_Record *model, bool done) {
              EXPECT_EQ(QDL_ModeCount(model), done ? 3 : 2);
              Body expected = done ? permuted(sample_body()) : sample_body();
              if (done)
                expected.mode_numbers.push_back(QDL_ModeNumber(model, 2));
              expect_body(model, expected, 1e-14);
            });
}

TEST_F(Permutation, PreparesForNewMasses) {
  QDL_Record *model = open(build_file(60));
  model->mass_pruned = true;
  ASSERT_EQ(QDL_PreprocessKVTQDL(model), 1);
  EXPECT_FALSE(model->mass_pruned);
  EXPECT_TRUE(model->stiffness.entries.empty());
  EXPECT_TRUE(model->mass.entries.empty());
  EXPECT_TRUE(model->damping.entries.empty());
  EXPECT_TRUE(model->eigenvalues.empty());
  EXPECT_TRUE(model->transformation.matrix.empty());
  EXPECT_EQ(QDL_Exists(model, 8), 0);
  EXPECT_EQ(QDL_Exists(model, 9), 0);
  EXPECT_EQ(QDL_ModeCount(model), 2);
  EXPECT_EQ(QDL_NodalMass(model, 1), sample_model().nodal_masses[1].values[0]);
  std::vector<double> values(12);
  EXPECT_EQ(QDL_Mode(model, 7, 0, values.data(), 0), 1);
  expect_no_messages();
}

}  // namespace
