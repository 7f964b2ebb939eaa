// Mode data replaced as a whole, and records that get another number of modes.

#include "modes/mode_rewrite.h"

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "modes/mode_count.h"
#include "record/record.h"
#include "support/fault.h"
#include "support/qdl_bytes.h"
#include "support/read_fixture.h"

namespace qdltest {
namespace {

using qdlflex::ModeRewrite;
using Rows = std::vector<double>;

class Rewrite : public ReadFixture {
 protected:
  QDL_Record *built(int nodes, int modes, int planned_nodes, int planned_modes) {
    QDL_Record *model = QDL_Create(planned_nodes, planned_modes);
    for (int mode = 1; mode <= modes; ++mode)
      for (int node = 1; node <= nodes; ++node)
        QDL_SetMode(model, mode, node, QDL_MODE_SHAPE, mode, node, 0, 0, 0, 0);
    clear_messages();
    return model;
  }

  // Gives every value of every mode the number `first`, `first` + 1 and so on.
  static bool replace(QDL_Record *model, int kind, int modes, int nodes, double first,
                      ModeRewrite::Measure measure = ModeRewrite::Measure::kCurrentUnits) {
    auto rewrite = ModeRewrite::begin(*model, kind, modes, nodes, measure);
    if (!rewrite)
      return false;
    for (int mode = 0; mode < modes; ++mode) {
      Rows six(6 * static_cast<std::size_t>(nodes));
      for (double &value : six)
        value = first++;
      if (!rewrite->write_rows(mode, 0, nodes, six.data()))
        return false;
    }
    if (!rewrite->finish())
      return false;
    rewrite->adopt(*model);
    return true;
  }

  static Rows fetched(QDL_Record *model, int mode_number, int kind, int part, int nodes) {
    Rows half(3 * static_cast<std::size_t>(nodes), -1.0);
    return QDL_Mode(model, mode_number, kind, half.data(), part) == 1 ? half : Rows{};
  }
};

}  // namespace

TEST_F(Rewrite, ReplacesModesAndDropsWhatIsCached) {
  QDL_Record *model = built(2, 2, 2, 2);
  EXPECT_EQ(fetched(model, 1, QDL_MODE_SHAPE, 0, 2), (Rows{1, 1, 0, 1, 2, 0}));
  EXPECT_TRUE(replace(model, QDL_MODE_SHAPE, 2, 2, 10.0));
  EXPECT_EQ(fetched(model, 1, QDL_MODE_SHAPE, 0, 2), (Rows{10, 11, 12, 16, 17, 18}));
  EXPECT_EQ(fetched(model, 2, QDL_MODE_SHAPE, 1, 2), (Rows{25, 26, 27, 31, 32, 33}));
  EXPECT_EQ(temporary_files().size(), 1u);
  expect_no_messages();
}

TEST_F(Rewrite, FewerModesLeaveTheOthersOutUntilTheyAreSetAgain) {
  QDL_Record *model = built(2, 3, 4, 4);
  EXPECT_TRUE(replace(model, QDL_MODE_SHAPE, 1, 2, 10.0));
  EXPECT_EQ(fetched(model, 2, QDL_MODE_SHAPE, 0, 2), Rows{});
  expect_only_error("Problem reading mode shape 2");
  // A node within the room planned for, and one beyond it.
  EXPECT_EQ(QDL_SetMode(model, 3, 4, QDL_MODE_SHAPE, 7, 8, 9, 0, 0, 0), 1);
  EXPECT_EQ(QDL_SetMode(model, 4, 9, QDL_MODE_SHAPE, 1, 2, 3, 0, 0, 0), 1);
  EXPECT_EQ(fetched(model, 1, QDL_MODE_SHAPE, 0, 4),
            (Rows{10, 11, 12, 16, 17, 18, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(fetched(model, 2, QDL_MODE_SHAPE, 0, 4), Rows(12));
  EXPECT_EQ(fetched(model, 3, QDL_MODE_SHAPE, 0, 4), (Rows{0, 0, 0, 0, 0, 0, 7, 8, 9, 0, 0, 0}));
  EXPECT_EQ(fetched(model, 4, QDL_MODE_SHAPE, 0, 4), (Rows{0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3}));
}

TEST_F(Rewrite, KeepsThePrecisionAndTheSourceOfAReadModel) {
  QDL_Record *model = open(build_file(60 | kXdrBit | kSingleBit));
  const std::string source = path("body.qdl");
  EXPECT_TRUE(replace(model, QDL_MODE_STRESS, 2, 3, 0.1));
  EXPECT_EQ(fetched(model, 7, QDL_MODE_STRESS, 0, 3)[1], static_cast<float>(1.1));
  EXPECT_EQ(fetched(model, 7, QDL_MODE_SHAPE, 0, 4)[0], 2048.25);
  EXPECT_TRUE(std::filesystem::exists(source));
  EXPECT_EQ(temporary_files().size(), 1u);
}

TEST_F(Rewrite, MeasuresInCurrentUnitsOrAsTheFileDid) {
  for (const auto measure :
       {ModeRewrite::Measure::kCurrentUnits, ModeRewrite::Measure::kAsStored}) {
    QDL_Record *model = open(build_file(60));
    EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    EXPECT_TRUE(replace(model, QDL_MODE_SHAPE, 2, 4, 1000.0, measure));
    const double factor = measure == ModeRewrite::Measure::kAsStored ? 0.001 : 1.0;
    EXPECT_EQ(fetched(model, 7, QDL_MODE_SHAPE, 0, 4)[1], 1001.0 * factor);
    EXPECT_EQ(fetched(model, 7, QDL_MODE_SHAPE, 1, 4)[1], 1004.0);
    EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "CENTIMETER", "SECOND", "NEWTON"), 1);
    EXPECT_DOUBLE_EQ(fetched(model, 7, QDL_MODE_SHAPE, 0, 4)[1], 1001.0 * factor * 100.0);
  }
}

TEST_F(Rewrite, NamesTheFileThatCannotBeMade) {
  QDL_Record *model = built(1, 1, 1, 1);
  const ScopedEnvironment nowhere("TMP", "/no/such/directory");
  EXPECT_FALSE(replace(model, QDL_MODE_SHAPE, 1, 1, 1.0));
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_TRUE(errors[0].starts_with("Unable to open /no/such/directory/qdl_"));
  EXPECT_TRUE(errors[0].ends_with(
      " for write.  Specify different temporary file directory by\nsetting the TMP environment "
      "variable."));
}

TEST_F(Rewrite, FailingDisksLeaveTheModesAndNoFile) {
  QDL_Record *model = built(2, 1, 2, 1);
  const std::string own = temporary_files()[0];
  const std::size_t faults = sweep(
      Door::kFile, Persistence::kOnce,
      [&] {
        auto rewrite =
            ModeRewrite::begin(*model, QDL_MODE_SHAPE, 1, 2, ModeRewrite::Measure::kCurrentUnits);
        const Rows six(12, 5.0);
        return rewrite && rewrite->write_rows(0, 0, 2, six.data()) && rewrite->finish();
      },
      [&](bool done, bool fired) {
        // Without a mapping the file serves as well.
        EXPECT_TRUE(done || fired);
        EXPECT_EQ(errors.size(), done ? 0u : 1u);
        if (!done && !errors[0].starts_with("Unable")) {
          EXPECT_TRUE(errors[0].starts_with("Insufficient disk space for file " + path("qdl_")));
          EXPECT_TRUE(errors[0].ends_with(
              ".  Specify different temporary\nfile directory by setting the TMP environment "
              "variable"));
        }
        clear_messages();
        EXPECT_EQ(fetched(model, 1, QDL_MODE_SHAPE, 0, 2), (Rows{1, 1, 0, 1, 2, 0}));
        // Nothing but a failed removal leaves a file.
        EXPECT_LE(temporary_files().size(), done && fired ? 2u : 1u);
        for (const std::string &name : temporary_files()) {
          if (name != own)
            std::filesystem::remove(name);
        }
      });
  EXPECT_GE(faults, 5u) << "open, reserve, map, write, flush";
}

using ModeCount = ReadFixture;

TEST_F(ModeCount, FewerModesCutEverythingHeldPerMode) {
  SampleModel sample = sample_model();
  QDL_Record *model = open(build_file(60, usual_blocks(60), sample));
  qdlflex::change_mode_count(*model, 1);

  EXPECT_EQ(QDL_ModeCount(model), 1);
  EXPECT_EQ(model->mode_numbers, std::vector<std::int32_t>{7});
  EXPECT_EQ(model->eigenvalues.size(), 1u);
  EXPECT_EQ(model->transformation.matrix, Rows{sample.transformation[0].values[0]});
  EXPECT_EQ(model->preload.values, Rows{sample.preload[0]});
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(model->modal_loads[i].values, Rows{sample.load_cases[i].values[0]});
    EXPECT_EQ(model->rotor.matrices[i].values, Rows{sample.rotor_matrices[i].values[0]});
  }
  EXPECT_EQ(model->statistics.modes.size(), 1u);
  EXPECT_EQ(model->stiffness.entries.size(), 1u);
  EXPECT_TRUE(model->mass.entries.empty());
  const Rows &points = sample.monitor_points[0].values;
  EXPECT_EQ(model->monitor_points[0].operators[0], (Rows{points[0], points[2]}));
  EXPECT_EQ(QDL_SetModeVec(model, 9, 101, QDL_MODE_SHAPE, points.data()), 0);
  std::array<double, 12> half{};
  EXPECT_EQ(QDL_Mode(model, 7, QDL_MODE_SHAPE, half.data(), 0), 1);
  EXPECT_EQ(QDL_Mode(model, 9, QDL_MODE_SHAPE, half.data(), 0), 0);
}

TEST_F(ModeCount, InvariantsLoseTheLastModes) {
  QDL_Record *model = QDL_Create(0, 2);
  const double v[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  for (const int mode : {4, 5})
    QDL_AddMode(model, mode);
  for (const int mode : {4, 5}) {
    QDL_SetInvar3(model, mode, v + mode - 4);
    QDL_SetInvar8(model, mode, v);
    QDL_SetInvar5(model, 4, mode, v);
  }
  const double symmetric[] = {1, 2, 3, 2, 5, 6, 3, 6, 9};
  QDL_SetInvar9(model, 4, 4, symmetric);
  clear_messages();
  qdlflex::change_mode_count(*model, 1);
  EXPECT_EQ(model->invariants[3].values, (Rows{1, 2, 3}));
  EXPECT_EQ(model->invariants[5].values, (Rows{-1, -2, -3}));
  EXPECT_EQ(model->invariants[8].values, Rows(v, v + 9));
  EXPECT_EQ(model->invariants[9].values, Rows(symmetric, symmetric + 9));
  expect_no_messages();
}

TEST_F(ModeCount, DampingOnThePrincipalAxesLosesModesOnly) {
  QDL_Record *model = QDL_Create(0, 5);
  for (int mode = 1; mode <= 5; ++mode)
    QDL_AddMode(model, mode);
  // Two rigid-body modes: places 6, 7 and 8 are modes 2, 3 and 4.
  model->damping_on_principal_axes = true;
  for (const int place : {0, 5, 6, 7, 8})
    model->damping.entries.push_back({place, place, 1.0 + place, 0});
  qdlflex::change_mode_count(*model, 3, 2);
  ASSERT_EQ(model->damping.entries.size(), 3u);
  EXPECT_EQ(model->damping.entries[2].row, 6);
}

TEST_F(ModeCount, MoreModesGetFreeNumbersAndZeros) {
  QDL_Record *model = QDL_Create(1, 4);
  for (const int mode : {3, 4}) {
    QDL_SetMode(model, mode, 1, QDL_MODE_SHAPE, mode, 0, 0, 0, 0, 0);
    QDL_SetModalPreload(model, mode, mode);
  }
  qdlflex::change_mode_count(*model, 1);
  qdlflex::change_mode_count(*model, 4);
  EXPECT_EQ(model->mode_numbers, (std::vector<std::int32_t>{3, 2, 4, 5}));
  // What the file still has of the mode that was cut is not seen again.
  QDL_SetMode(model, 2, 1, QDL_MODE_SHAPE, 0, 7, 0, 0, 0, 0);
  std::array<double, 3> half{};
  EXPECT_EQ(QDL_Mode(model, 2, QDL_MODE_SHAPE, half.data(), 0), 1);
  EXPECT_EQ(half, (std::array{0.0, 7.0, 0.0}));
  EXPECT_EQ(model->preload.values, Rows{3.0});
}

}  // namespace qdltest
