// Whole jobs in which one allocation or one file operation after the other fails: once, once more
// while the failure is being handled, and for ever after. Each must end with a clear message and a
// usable model, and nothing may be left behind. What an operation leaves in the model when it fails
// is tested with the operation.

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "faults/full_body.h"
#include "support/exercise.h"
#include "support/fault.h"
#include "support/fixture.h"

namespace {

using namespace qdltest;

struct Files {
  std::string source;   // a full body, to be opened
  std::string written;  // to be written
};

bool write(QDL_Record *model, const Files &files, const char *options) {
  std::optional<ScopedEnvironment> variable;
  {
    const PauseFaults pause;
    variable.emplace("ZEB_QDLWRITE_OPTIONS", options);
  }
  const bool done = QDL_write_QDL(model, files.written.c_str()) == 1;
  const PauseFaults pause;
  variable.reset();
  return done;
}

QDL_Record *built_body(const Files &) {
  QDL_Record *model = QDL_Create(kFullBodyNodes, kFullBodyModes);
  return fill_full_body(model) ? model : nullptr;
}

QDL_Record *opened_body(const Files &files) {
  return QDL_CreateFromQDL(files.source.c_str());
}

QDL_Record *nothing(const Files &) {
  return nullptr;
}

bool query(QDL_Record *model) {
  try {
    exercise(model);
    return true;
  } catch (const std::bad_alloc &) {  // an array of the test's own
    return false;
  }
}

// What is prepared without faults, and the job that meets them.
struct Scenario {
  const char *name;
  QDL_Record *(*prepare)(const Files &);
  bool (*job)(QDL_Record *, const Files &);
  // Among the functions is one that by its description may fail without a message.
  bool may_be_silent = false;
  // The second one tells which block could not be written.
  std::size_t most_errors = 2;
};

// Invariants are computed in three passes over the modes, and each names every mode that it can't
// read.
constexpr std::size_t kEachModeInEachPass = 3 * kFullBodyModes + 2;

constexpr std::array<double, 3> kAxis = {1, 2, 2};
constexpr std::array<double, 3> kPoint = {0.5, 0, -1};

std::array<double, kFullBodyModes * kFullBodyModes> mixing() {
  std::array<double, kFullBodyModes * kFullBodyModes> matrix{};
  for (std::size_t i = 0; i < matrix.size(); ++i)
    matrix[i] = i % (kFullBodyModes + 1) == 0 ? 2.0 : 0.125 * static_cast<double>(i % 3);
  return matrix;
}

const Scenario kScenarios[] = {
    {"OpenAndQuery", nothing,
     [](QDL_Record *, const Files &files) {
       QDL_Record *model = opened_body(files);
       return model != nullptr && query(model);
     },
     true, 1000},
    {"OpenSurface", nothing,
     [](QDL_Record *, const Files &files) {
       return QDL_CreateFromQDL_SurfaceMesh(files.source.c_str()) != nullptr;
     },
     true},
    {"Build", nothing,
     [](QDL_Record *, const Files &) {
       QDL_Record *model = QDL_Create(kFullBodyNodes, kFullBodyModes);
       return model != nullptr && fill_full_body(model);
     }},
    {"WriteSolved", built_body,
     [](QDL_Record *model, const Files &files) { return write(model, files, ""); }},
    {"WriteWithEverything", built_body,
     [](QDL_Record *model, const Files &files) {
       return write(model, files, "strip_face coarsen(0.5,20,1) full_invar lbrf2cm MKS");
     },
     false, kEachModeInEachPass},
    {"WriteNativeSingleBand", opened_body,
     [](QDL_Record *model, const Files &files) {
       return write(model, files, "no_xdr single fast_invar highpass(0.1) lowpass(0.3)");
     },
     false, kEachModeInEachPass},
    {"WriteFullStress", opened_body,
     [](QDL_Record *model, const Files &files) { return write(model, files, "full_str no_ortho"); },
     false, kEachModeInEachPass},
    {"OrthoNormalize", built_body,
     [](QDL_Record *model, const Files &) { return QDL_OrthoNormalize(model) == 1; }},
    {"Transform", opened_body,
     [](QDL_Record *model, const Files &) {
       return QDL_TransformModes(model, QDL_MODE_SHAPE, kFullBodyModes, mixing().data()) == 1;
     }},
    {"Scale", built_body,
     [](QDL_Record *model, const Files &) {
       return QDL_ScaleModes(model, QDL_MODE_STRESS, 3.0) == 1;
     }},
    {"Rotate", opened_body,
     [](QDL_Record *model, const Files &) {
       return QDL_Rotate(model, kAxis.data(), kPoint.data(), 30.0) == 1;
     }},
    {"ChangeUnits", opened_body,
     [](QDL_Record *model, const Files &) {
       return QDL_SetUnits(model, "MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON") == 1;
     }},
    {"Permute", built_body,
     [](QDL_Record *model, const Files &) {
       return QDL_PermuteQDL(model, kPoint.data(), kFullBodyModes, 2.0, mixing().data(), nullptr) ==
              1;
     }},
    {"Coarsen", built_body,
     [](QDL_Record *model, const Files &) {
       QDL_StripCommonFaces(model);
       return QDL_TrimGeometry(model, "0.5,20,1") == 1;
     },
     false, 3},
    {"Prune", built_body,
     [](QDL_Record *model, const Files &) { return QDL_RemoveInternalGeometry(model) == 1; }},
    {"FreeEdges", built_body,
     [](QDL_Record *model, const Files &) { return QDL_GenerateFreeEdges(model) == 1; }, true},
};

void PrintTo(const Scenario &scenario, std::ostream *out) {
  *out << scenario.name;
}

using Parameters = std::tuple<Scenario, Door, Persistence>;

class Scenarios : public MessageFixture, public testing::WithParamInterface<Parameters> {
 protected:
  void SetUp() override {
    MessageFixture::SetUp();
    QDL_Record *body = built_body(files_);
    ASSERT_NE(body, nullptr);
    const ScopedEnvironment variable("ZEB_QDLWRITE_OPTIONS", "full_invar");
    ASSERT_EQ(QDL_write_QDL(body, files_.source.c_str()), 1);
    start_anew();
  }

  void start_anew() {
    QDL_Terminate();
    std::filesystem::remove(files_.written);
    const std::vector<std::string> left = temporary_files();
    EXPECT_LE(left.size(), most_leftovers_) << testing::PrintToString(left);
    for (const std::string &name : left)
      std::filesystem::remove(name);
    clear_messages();
  }

  void expect_clear_message(const Scenario &scenario) {
    if (!scenario.may_be_silent) {
      EXPECT_GE(errors.size(), 1U) << "failed without a word";
    }
    EXPECT_LE(errors.size(), scenario.most_errors) << testing::PrintToString(errors);
  }

  void expect_usable() {
    clear_messages();
    if (model_ != nullptr)
      exercise(model_);
    EXPECT_NE(opened_body(files_), nullptr);
  }

  Files files_{path("source.qdl"), path("written.qdl")};
  QDL_Record *model_ = nullptr;
  std::size_t most_leftovers_ = 0;
};

TEST_P(Scenarios, FailClearlyAndLeaveNothing) {
  const auto &[scenario, door, persistence] = GetParam();
  // The removal of a file may be what fails. A job has at most six temporary files.
  if (door == Door::kFile)
    most_leftovers_ = std::array<std::size_t, 3>{1, 2, 6}[static_cast<std::size_t>(persistence)];
  const std::size_t descriptors = open_descriptors();
  const std::size_t faults = sweep(
      door, persistence,
      [&, &scenario = scenario] {
        {
          const PauseFaults pause;
          start_anew();
          model_ = scenario.prepare(files_);
          clear_messages();
        }
        return scenario.job(model_, files_);
      },
      [&, &scenario = scenario](bool done, bool fired) {
        EXPECT_TRUE(done || fired);
        if (!done)
          expect_clear_message(scenario);
        expect_usable();
        start_anew();
        EXPECT_EQ(open_descriptors(), descriptors);
      });
  RecordProperty("faults", static_cast<int>(faults));
  if (door == Door::kMemory) {
    EXPECT_GT(faults, 0U);
  }
}

std::string name_of(const testing::TestParamInfo<Parameters> &info) {
  const auto &[scenario, door, persistence] = info.param;
  const std::array<const char *, 3> ends = {"Once", "Twice", "EverAfter"};
  return scenario.name + std::string(door == Door::kMemory ? "Memory" : "File") +
         ends[static_cast<std::size_t>(persistence)];
}

INSTANTIATE_TEST_SUITE_P(All, Scenarios,
                         testing::Combine(testing::ValuesIn(kScenarios),
                                          testing::Values(Door::kMemory, Door::kFile),
                                          testing::Values(Persistence::kOnce, Persistence::kTwice,
                                                          Persistence::kEverAfter)),
                         name_of);

}  // namespace
