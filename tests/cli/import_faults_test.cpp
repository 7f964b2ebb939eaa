// The import of a solver's files in which one allocation or one operation on a file after the other
// fails: once, once more, and for ever after.

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "cli_support.h"
#include "command_line.h"
#include "support/fault.h"

namespace {

using qdltest::Door;
using qdltest::PauseFaults;
using qdltest::Persistence;

std::string every_field(int mode) {
  return frd_block(mode, "DISP") + frd_block(mode, "STRESS") + frd_block(mode, "TOSTRAIN");
}

// A mass of 2 at each of the four nodes, in every direction.
void write_mass_matrix(const TemporaryFolder &folder) {
  std::string rows;
  std::string matrix;
  for (int row = 0; row < 12; ++row) {
    rows += std::to_string(row / 3 + 1) + "." + std::to_string(row % 3 + 1) + "\n";
    matrix += std::to_string(row + 1) + " " + std::to_string(row + 1) + " 2.0\n";
  }
  folder.write("job.dof", rows);
  folder.write("job.mas", matrix);
}

class ImportFaults : public testing::TestWithParam<std::tuple<Door, Persistence>> {
 protected:
  void SetUp() override {
    folder_.write("job.frd", frd_text(every_field(1) + every_field(2)));
    folder_.write("job.inp", "*INCLUDE,INPUT=mesh.inp\n*NSET,NSET=INTERFACE\n3,2\n");
    folder_.write("mesh.inp", "*NODE\n4,1,0,1.000004\n");
    folder_.write("job.dat",
                  "     E I G E N V A L U E   O U T P U T\n\n"
                  "      1   0.1000000E+04\n      2   0.2000000E+04\n");
    write_mass_matrix(folder_);
    setenv("TMP", folder_.path("").c_str(), 1);
    words_ = {"qdlflex",  "import",
              "ccx",      folder_.path("job.frd"),
              "--inp",    folder_.path("job.inp"),
              "--dat",    folder_.path("job.dat"),
              "--mass",   folder_.path("job.mas"),
              "--dof",    folder_.path("job.dof"),
              "--units",  "mm-N-t-s",
              "--output", folder_.path("out.qdl")};
    for (std::string &word : words_) {
      arguments_.push_back(word.data());
    }
    inputs_ = files();
  }

  void TearDown() override { unsetenv("TMP"); }

  int run() {
    std::optional<PauseFaults> pause(std::in_place);
    std::filesystem::remove(folder_.path("out.qdl"));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    pause.reset();
    const int exit_code =
        qdlflex::cli::run_command_line(static_cast<int>(arguments_.size()), arguments_.data());
    pause.emplace();
    output_ = testing::internal::GetCapturedStdout();
    errors_ = testing::internal::GetCapturedStderr();
    return exit_code;
  }

  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder_.path(""))) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  // Without the header, in which the time stands.
  std::string body() const { return read_text(folder_.path("out.qdl")).substr(2180); }

  TemporaryFolder folder_;
  std::vector<std::string> words_;
  std::vector<char *> arguments_;
  std::set<std::string> inputs_;
  std::string output_;
  std::string errors_;
};

size_t open_files() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(descriptors), end(descriptors)));
}

size_t count(const std::string &text, const std::string &part) {
  size_t found = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++found;
  }
  return found;
}

}  // namespace

TEST_P(ImportFaults, EndWithOneAMessageAndNoFile) {
  ASSERT_EQ(run(), 0) << errors_;
  const std::string good_body = body();
  const size_t open_before = open_files();
  const auto &[door, persistence] = GetParam();
  const size_t faults = qdltest::sweep(
      door, persistence, [&] { return run(); },
      [&](int exit_code, bool fired) {
        EXPECT_EQ(open_files(), open_before);
        if (exit_code == 0) {
          EXPECT_EQ(errors_, "");
          EXPECT_EQ(body(), good_body);
          return;
        }
        EXPECT_TRUE(fired);
        EXPECT_EQ(exit_code, 1);
        EXPECT_EQ(output_, "");
        EXPECT_EQ(files(), inputs_) << errors_;
        // What the library says, and what became of the command.
        EXPECT_TRUE(errors_.starts_with("qdlflex: error: ")) << errors_;
        EXPECT_LE(count(errors_, "qdlflex: "), 3U) << errors_;
      });
  EXPECT_GT(faults, door == Door::kFile ? 50U : 1000U);
  RecordProperty("faults", static_cast<int>(faults));
}

INSTANTIATE_TEST_SUITE_P(All, ImportFaults,
                         testing::Combine(testing::Values(Door::kMemory, Door::kFile),
                                          testing::Values(Persistence::kOnce, Persistence::kTwice,
                                                          Persistence::kEverAfter)));
