// The files of this folder are kept for ever: what could be read once has to be readable always.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/expect_record.h"
#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace {

using namespace qdltest;

struct Golden {
  std::string name;
  SampleFile file;
};

std::vector<Golden> golden_files() {
  std::vector<Golden> files;
  std::vector<std::int32_t> codes = every_version_code();
  codes.push_back(60 | kCoarsenedBit);
  for (const std::int32_t code : codes)
    files.push_back({version_name(code), build_file(code)});
  // Monitor points under their earlier id, and faces from the older element topology.
  auto earlier_ids = [](std::int32_t code) {
    std::set<int> blocks = usual_blocks(code);
    blocks.erase(14);
    blocks.insert(5);
    blocks.erase(36);
    blocks.insert(33);
    return build_file(code, blocks);
  };
  files.push_back({"60_native_double_earlier_ids", earlier_ids(60)});
  files.push_back({"60_xdr_single_earlier_ids", earlier_ids(60 | kXdrBit | kSingleBit)});
  files.push_back({"60_native_double_bare", build_file(60, {})});
  return files;
}

void PrintTo(const Golden &golden, std::ostream *stream) {
  *stream << golden.name;
}

std::filesystem::path stored(const Golden &golden) {
  return std::filesystem::path(QDLFLEX_SOURCE_DIR) / "tests" / "golden" / (golden.name + ".qdl");
}

class GoldenFile : public MessageFixture, public testing::WithParamInterface<Golden> {};

// QDLFLEX_ADD_GOLDEN in the environment stores a file that is not there yet; none is ever changed.
TEST_P(GoldenFile, HasTheBytesOfTheBuilder) {
  const std::filesystem::path name = stored(GetParam());
  if (!std::filesystem::exists(name) && std::getenv("QDLFLEX_ADD_GOLDEN") != nullptr)
    write_file(name, GetParam().file.bytes);
  ASSERT_TRUE(std::filesystem::exists(name)) << name;
  EXPECT_EQ(read_file(name), GetParam().file.bytes);
}

TEST_P(GoldenFile, ReadsBackWhole) {
  QDL_Record *record = QDL_CreateFromQDL(stored(GetParam()).c_str());
  expect_no_messages();
  expect_record(record, sample_model(), GetParam().file);
}

INSTANTIATE_TEST_SUITE_P(EveryVersion, GoldenFile, testing::ValuesIn(golden_files()),
                         [](const auto &info) { return info.param.name; });

}  // namespace
