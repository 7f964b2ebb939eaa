// What a record holds per mode, carried over to orthonormal modes: a file with every block, in
// single precision and other units than the model.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "numerics/modal_body.h"
#include "numerics/qdlinvar.h"
#include "record/invariant_layout.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/qdl_bytes.h"
#include "support/read_fixture.h"

namespace {

using namespace qdltest;

constexpr std::size_t kModes = 2;  // of the file

// What the tests compare of a record.
struct Contents {
  std::vector<std::vector<Values>> modes;  // by kind
  std::vector<Values> forces;              // preload, then the load cases
  std::vector<Values> operators;           // of the monitor points
  std::vector<Values> invariants;          // 3, 4, 5, 8, 9
  std::vector<std::int32_t> numbers;
  Values stiffness, mass, damping, eigenvalues, transformation, pre_stress;

  bool operator==(const Contents &) const = default;
};

template <Values Contents::*kMember>
void take_entries(Contents &contents, const qdlflex::GeneralizedMatrix &matrix) {
  for (const auto &entry : matrix.entries)
    (contents.*kMember).push_back(entry.value);
}

Contents contents_of(QDL_Record *model) {
  Contents contents;
  for (const std::int32_t kind : {QDL_MODE_SHAPE, QDL_MODE_STRESS, QDL_MODE_STRAIN})
    contents.modes.push_back(modes_of(model, kind));
  contents.forces.push_back(model->preload.values);
  for (const auto &load : model->modal_loads)
    contents.forces.push_back(load.values);
  for (const auto &point : model->monitor_points)
    contents.operators.insert(contents.operators.end(), point.operators.begin(),
                              point.operators.end());
  for (const int number : {3, 4, 5, 8, 9}) {
    qdlflex::load_invariant(*model, number);
    contents.invariants.push_back(model->invariants[static_cast<std::size_t>(number)].values);
  }
  contents.numbers = model->mode_numbers;
  take_entries<&Contents::stiffness>(contents, model->stiffness);
  take_entries<&Contents::mass>(contents, model->mass);
  take_entries<&Contents::damping>(contents, model->damping);
  for (const auto &entry : model->eigenvalues)
    contents.eigenvalues.push_back(entry.eigenvalue);
  contents.transformation = model->transformation.matrix;
  for (const auto &six : model->pre_stress)
    contents.pre_stress.insert(contents.pre_stress.end(), six.begin(), six.end());
  return contents;
}

// Shares of the file's two modes in the new ones, by new mode.
using Shares = std::vector<Values>;

// Rows of one value per mode.
Values carried_rows(const Values &rows, const Shares &t) {
  Values carried;
  for (std::size_t row = 0; row < rows.size(); row += kModes)
    for (const Values &shares : t)
      carried.push_back(rows[row] * shares[0] + rows[row + 1] * shares[1]);
  return carried;
}

// One row for every mode.
Values carried_blocks(const Values &blocks, const Shares &t) {
  const std::size_t width = blocks.size() / kModes;
  Values carried;
  for (const Values &shares : t)
    for (std::size_t i = 0; i < width; ++i)
      carried.push_back(blocks[i] * shares[0] + blocks[width + i] * shares[1]);
  return carried;
}

Values carried_invariant(std::size_t place, const Values &values, const Shares &t) {
  if (place == 3)  // number 8
    return carried_blocks(values, t);
  if (place < 2)
    return carried_rows(values, t);
  // Both modes of a pair, one after the other.
  const Values half = carried_blocks(values, t);
  if (place == 2)
    return carried_rows(half, t);
  Values carried;
  for (std::size_t k = 0; k < t.size(); ++k) {
    const auto row = half.begin() + static_cast<std::ptrdiff_t>(k * 9 * kModes);
    const Values pairs =
        carried_blocks(Values(row, row + static_cast<std::ptrdiff_t>(9 * kModes)), t);
    carried.insert(carried.end(), pairs.begin(), pairs.end());
  }
  return carried;
}

double largest(const Values &values) {
  double found = 0.0;
  for (const double value : values)
    found = std::max(found, std::fabs(value));
  return found;
}

void expect_close(const Values &got, const Values &wanted, double tolerance) {
  expect_near(got, wanted, tolerance * largest(wanted));
}

class OrthonormalCarry : public ReadFixture {
 protected:
  // The sample with these matrices of order two, in metres instead of millimetres.
  QDL_Record *open_body(const Values &stiffness, const Values &mass) {
    SampleModel model = sample_model();
    model.stiffness.entries = {
        {1, 1, stiffness[0], 0}, {1, 2, stiffness[1], 0}, {2, 2, stiffness[2], 0}};
    model.mass.entries = {{1, 1, mass[0], 0}, {1, 2, mass[1], 0}, {2, 2, mass[2], 0}};
    const std::int32_t code = 60 | kXdrBit | kSingleBit;
    QDL_Record *record = open(build_file(code, usual_blocks(code), model));
    EXPECT_EQ(QDL_SetUnits(record, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    return record;
  }

  // One rigid mode beside a stiff one.
  QDL_Record *open_half_rigid() { return open_body({4e6, 2e6, 1e6}, {2.0, 0.5, 1.0}); }

  void expect_carried(const Contents &before, const Contents &after, const Shares &t) {
    for (std::size_t kind = 0; kind < before.modes.size(); ++kind)
      for (std::size_t k = 0; k < t.size(); ++k) {
        const Values &first = before.modes[kind][0];
        Values wanted(first.size());
        for (std::size_t i = 0; i < wanted.size(); ++i)
          wanted[i] = t[k][0] * first[i] + t[k][1] * before.modes[kind][1][i];
        expect_close(after.modes[kind][k], wanted, 2e-7);
      }
    for (std::size_t i = 0; i < before.operators.size(); ++i)
      expect_close(after.operators[i], carried_rows(before.operators[i], t), 1e-14);
    for (std::size_t i = 0; i < before.invariants.size(); ++i)
      expect_close(after.invariants[i], carried_invariant(i, before.invariants[i], t), 1e-14);
    EXPECT_EQ(after.pre_stress, before.pre_stress);
    EXPECT_TRUE(after.stiffness.empty());
    EXPECT_TRUE(after.mass.empty());
  }
};

TEST_F(OrthonormalCarry, TakesEverythingAlong) {
  const Contents before = contents_of(open_half_rigid());
  QDL_Record *record = open_half_rigid();
  ASSERT_EQ(QDL_OrthoNormalize(record), 1);
  const Contents after = contents_of(record);
  const Matrix t = transformation_of(record);
  const Values scaled = {1e-6 * 2.0, 1e-6 * 0.5, 1e-6 * 1.0};  // kg mm^2 in kg m^2
  EXPECT_LE(mass_error(Matrix::of_rows({{scaled[0], scaled[1]}, {scaled[1], scaled[2]}}), t),
            1e-13);
  expect_carried(before, after, {{t(0, 0), t(1, 0)}, {t(0, 1), t(1, 1)}});
  EXPECT_EQ(after.numbers, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(after.damping, before.damping);

  // The preload and the second case are on principal axes: their first entry is not a mode's.
  ASSERT_EQ(QDL_RigidBodyModeCount(record), 1);
  for (const std::size_t processed : {0u, 2u}) {
    const Values &old = before.forces[processed];
    EXPECT_EQ(after.forces[processed], (Values{old[0], t(1, 1) * old[1]}));
  }
  for (const std::size_t usual : {1u, 3u})
    expect_close(after.forces[usual],
                 carried_rows(before.forces[usual], {{t(0, 0), t(1, 0)}, {t(0, 1), t(1, 1)}}),
                 1e-14);
  for (const auto &mode : record->statistics.modes)
    for (const std::size_t slot : {0u, 1u, 2u, 3u})
      EXPECT_EQ(mode.node_ids[slot], 0);

  // Fetched once more they are the same, and so they are after a second call.
  ASSERT_EQ(QDL_OrthoNormalize(record), 1);
  EXPECT_TRUE(contents_of(record) == after);
}

TEST_F(OrthonormalCarry, LeavesOutDroppedModes) {
  const auto singular = [&] { return open_body({3.0, 1.0, 2.0}, {1.0, 2.0, 4.0}); };
  const Contents before = contents_of(singular());
  QDL_Record *record = singular();
  ASSERT_EQ(QDL_OrthoNormalize(record), 1);
  const Contents after = contents_of(record);
  ASSERT_EQ(QDL_ModeCount(record), 1);
  // The mode that is left: half the second one in the file's units, either way round.
  const double sign = after.modes[0][0][0] * before.modes[0][1][0] < 0.0 ? -1.0 : 1.0;
  const double share = sign * 500.0;
  expect_carried(before, after, {{0.0, share}});
  for (const std::size_t usual : {1u, 3u})
    expect_close(after.forces[usual], {share * before.forces[usual][1]}, 1e-13);
  // A mode of infinite frequency makes the one before it a rigid one.
  for (const std::size_t processed : {0u, 2u})
    EXPECT_EQ(after.forces[processed], Values{before.forces[processed][0]});
  EXPECT_EQ(record->statistics.modes.size(), 1u);
  EXPECT_EQ(record->eigenvalues.size(), 1u);
  EXPECT_EQ(record->transformation.dimension, 1);
}

// Nothing is combined then, but what the file lays out for all modes has to be read all the same.
TEST_F(OrthonormalCarry, LeavesOutDroppedModesBehindUnchangedOnes) {
  SampleModel sample = sample_model();
  sample.stiffness.entries = {{1, 1, 100.0, 0}, {2, 2, 200.0, 0}};
  sample.mass.entries = {{1, 1, 1.0, 0}};
  const SampleFile unchanged = build_file(60, usual_blocks(60), sample);
  const Contents before = contents_of(open(unchanged));
  QDL_Record *record = open(unchanged);
  ASSERT_EQ(QDL_OrthoNormalize(record), 1);
  ASSERT_EQ(QDL_ModeCount(record), 1);
  expect_carried(before, contents_of(record), {{1.0, 0.0}});
  EXPECT_TRUE(errors.empty());

  record = open(unchanged);
  std::filesystem::resize_file(path("body.qdl"), unchanged.offset[26]);
  EXPECT_EQ(QDL_OrthoNormalize(record), 0);
  EXPECT_EQ(errors, std::vector<std::string>{"Failed to extract mode information for QDL.\n"});
  EXPECT_EQ(QDL_ModeCount(record), 2);
}

TEST_F(OrthonormalCarry, FaultsLeaveTheRecordAsItWas) {
  const Contents before = contents_of(open_half_rigid());
  QDL_Record *record = open_half_rigid();
  ASSERT_EQ(QDL_OrthoNormalize(record), 1);
  const Contents after = contents_of(record);
  const auto run = [&] {
    {
      const PauseFaults pause;
      record = open_half_rigid();
      clear_messages();
    }
    return QDL_OrthoNormalize(record);
  };
  int skipped = 0;
  const auto check = [&](std::int32_t result, bool fired) {
    EXPECT_TRUE(fired || result == 1);
    EXPECT_EQ(errors.empty(), result == 1 && record->transformation.matrix == after.transformation);
    if (result == 1 && !errors.empty()) {
      // Gram-Schmidt is left out: the vectors are those of the solver.
      ++skipped;
      EXPECT_EQ(errors.size(), 1u);
      EXPECT_TRUE(errors[0].starts_with("Failed to allocate memory at line ")) << errors[0];
      EXPECT_EQ(largest(record->transformation.matrix), 1.0);
      EXPECT_TRUE(record->mass.entries.empty());
    } else {
      EXPECT_TRUE(contents_of(record) == (result == 1 ? after : before));
    }
    QDL_Terminate();
    // Removing a file is one of the operations that fail.
    EXPECT_LE(temporary_files().size(), result == 1 ? 1u : 0u);
    for (const std::string &name : temporary_files())
      std::filesystem::remove(name);
  };
  for (const Persistence persistence : {Persistence::kOnce, Persistence::kEverAfter})
    EXPECT_GE(sweep(Door::kMemory, persistence, run, check), 20u);
  EXPECT_GT(skipped, 3);
  EXPECT_GE(sweep(Door::kFile, Persistence::kOnce, run, check), 20u);
}

}  // namespace
