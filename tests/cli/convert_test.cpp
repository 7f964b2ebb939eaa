// The command that writes a file again: forms, and what becomes of files that exist.

#include <gtest/gtest.h>

#include <filesystem>

#include "cli_support.h"
#include "geometry_models.h"

namespace {

using namespace std::string_literals;

class ConvertTest : public ::testing::Test {
 protected:
  void SetUp() override { write_box(folder_.path("box.qdl")); }

  std::string quoted(const std::string &name) const { return "'" + folder_.path(name) + "'"; }

  CommandResult convert(const std::string &output, const std::string &options = {}) {
    return run_qdlflex("convert " + quoted("box.qdl") + " -o " + output + " " + options);
  }

  size_t file_count() const {
    const std::filesystem::directory_iterator files(folder_.path(""));
    return static_cast<size_t>(std::distance(begin(files), end(files)));
  }

  TemporaryFolder folder_;
};

TEST_F(ConvertTest, WritesTheFormThatTheOptionsAskFor) {
  const struct {
    std::string options;
    std::string head;
  } cases[] = {
      {"", "\x3c\2\0\0"s},
      {"--options no_ortho", "\0\0\1\x3c"s},
      {"--options no_ortho,single", "\0\0\3\x3c"s},
      {"--options no_ortho,no_xdr", "\x3c\0\0\0"s},
      {"--options no_ortho,full_str", "\0\0\0\x29"s},
      {"--options no_ortho,full_str,single,no_xdr", "\x32\0\0\0"s},
      {"--options no_ortho,82_comp", "\x14\0\0\0"s},
  };
  for (const auto &c : cases) {
    const CommandResult result = convert(quoted("out.qdl"), c.options);
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(result.output,
              folder_.path("out.qdl") + ": 14 nodes (before: 14), 12 faces (before: 12)\n");
    EXPECT_EQ(read_text(folder_.path("out.qdl")).substr(0, 4), c.head) << c.options;
  }
  EXPECT_EQ(file_count(), 2u);
}

TEST_F(ConvertTest, RefusesItsInputUnderAnyName) {
  std::filesystem::create_symlink("box.qdl", folder_.path("link.qdl"));
  std::filesystem::create_hard_link(folder_.path("box.qdl"), folder_.path("same.qdl"));
  std::filesystem::create_directory(folder_.path("sub"));
  const std::string before = read_text(folder_.path("box.qdl"));
  for (const char *const name :
       {"box.qdl", "./box.qdl", "sub/../box.qdl", "link.qdl", "same.qdl"}) {
    const CommandResult result = convert(quoted(name), "--options single");
    EXPECT_EQ(result.exit_code, 1) << name;
    EXPECT_EQ(result.errors,
              "qdlflex: error: the output " + folder_.path(name) + " is also an input\n");
    EXPECT_EQ(read_text(folder_.path("box.qdl")), before) << name;
  }
}

TEST_F(ConvertTest, ReplacesAFileOnlyByAWholeOne) {
  folder_.write("old.qdl", "old");
  std::filesystem::create_symlink("old.qdl", folder_.path("link.qdl"));
  const CommandResult refused = convert(quoted("old.qdl"), "--options full_str,sparse_str");
  EXPECT_EQ(refused.exit_code, 1);
  EXPECT_EQ(refused.errors,
            "qdlflex: error: Cannot specify full and sparse stress and strain modes.\n"
            "qdlflex: error: Problem writing version number.\n"
            "qdlflex: error: " +
                folder_.path("old.qdl") + " was not written\n");
  EXPECT_EQ(read_text(folder_.path("old.qdl")), "old");

  std::filesystem::permissions(folder_.path("old.qdl"), std::filesystem::perms(0640));
  EXPECT_EQ(convert(quoted("link.qdl")).exit_code, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.path("link.qdl")));
  EXPECT_EQ(std::filesystem::status(folder_.path("old.qdl")).permissions(),
            std::filesystem::perms(0640));
  EXPECT_EQ(read_text(folder_.path("old.qdl")).substr(0, 4), "\x3c\2\0\0"s);

  EXPECT_EQ(convert("/dev/full").exit_code, 1);
  EXPECT_EQ(convert(quoted("none/out.qdl")).exit_code, 1);
  EXPECT_EQ(file_count(), 3u);
}

}  // namespace
