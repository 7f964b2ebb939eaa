// What a write warns of, and the refusal of names.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "io/write_fixture.h"
#include "record/record.h"

namespace {

using namespace qdltest;
namespace fs = std::filesystem;

class WriteMessages : public WriteFixture {};

TEST_F(WriteMessages, WarnsOfNodesAtTheOriginAndWithoutMass) {
  SampleModel content = body_with_modes({0, 1}, 1);
  content.nodes[1].xyz = {0.0, -0.0, 0.0};
  content.nodes[3].xyz = {0.0, 0.0, 0.0};
  content.nodal_masses[0].values[0] = 0.0;
  content.nodal_masses[2].values[0] = -0.0;
  QDL_Record *record = build_record(content, {4, 7, 8, 9, 11});
  ASSERT_EQ(write(record, ""), 1);
  expect_only_warnings({"Found 2 node(s) with coordinates (0,0,0).  They are:", "   7", "   23",
                        "Found 2 massless node(s)"});
}

TEST_F(WriteMessages, WarnsOfZeroModesAndWritesThem) {
  SampleModel content = body_with_modes({0, 1, 2}, 4);
  for (double &value : content.mode_shapes.values[1])
    value = 0.0;
  for (double &value : content.stress.values[2])
    value = 1e-170;  // its square is no number any more
  for (double &value : content.strain.values[0])
    value = 0.0;
  content.strain.values[0][11] = 1e-150;
  for (double &value : content.strain.values[1])
    value = -0.0;
  SampleModel written = body_with_modes({0, 1, 2}, 1);
  written.mode_shapes.values = content.mode_shapes.values;
  written.stress.values = content.stress.values;
  written.strain.values = content.strain.values;
  const std::set<int> blocks = {4, 7, 8, 11, 16, 18, 29, 30};
  written.statistics = statistics_of(written, blocks);
  QDL_Record *record = build_record(content, blocks);
  expect_written(record, "", build_file(316, blocks, written));
  expect_only_warnings({"The mode shape for mode 3 has only zero entries\n",
                        "The modal stresses for mode 5 have only zero entries\n",
                        "The modal strains for mode 3 have only zero entries\n"});
}

// --- Names ------------------------------------------------------------------------------------

std::string same_name(const std::string &current, const std::string &output) {
  return "The output QDL name must be different than the current QDL name.\n"
         "  Current QDL name:  " +
         current + "\n  Output QDL name:  " + output;
}

class OutputName : public WriteFixture {
 protected:
  const SampleFile source_ =
      build_file(316, without(usual_blocks(316), {12, 13}), body_with_modes({0, 1}, 1));

  // Expects the refusal, and that nothing became of any file.
  void expect_protected(QDL_Record *record, const std::string &current, const std::string &output) {
    SCOPED_TRACE(output);
    clear_messages();
    const auto before = read_file(output);
    EXPECT_EQ(QDL_write_QDL(record, output.c_str()), 0);
    expect_only_error(same_name(current, output));
    EXPECT_EQ(infos, std::vector<std::string>{});
    EXPECT_EQ(read_file(output), before);
  }
};

TEST_F(OutputName, FileOfTheModelIsProtectedUnderEveryName) {
  QDL_Record *record = open(source_);
  const std::string current = path("body.qdl");
  fs::create_hard_link(current, path("hard.qdl"));
  fs::create_symlink(current, path("soft.qdl"));
  for (const std::string &name : {current, path("./body.qdl"), path("hard.qdl"), path("soft.qdl")})
    expect_protected(record, current, name);
  EXPECT_EQ(write(record, "", "other.qdl"), 1);
}

TEST_F(OutputName, FilesOfOtherModelsAreProtected) {
  QDL_Record *other = open(source_);
  ASSERT_NE(other, nullptr);
  QDL_Record *record = build_record(body_with_modes({0, 1}, 1), {4, 7, 8, 11});
  expect_protected(record, "", path("body.qdl"));
  // The modes of the model that was built lie in a file too.
  for (QDL_Record *writer : {record, other}) {
    std::string temporary;
    for (const fs::directory_entry &entry : fs::directory_iterator(directory()))
      if (entry.path().filename().string().starts_with("qdl_"))
        temporary = entry.path().string();
    ASSERT_NE(temporary, "");
    expect_protected(writer, writer == other ? path("body.qdl") : "", temporary);
  }
  QDL_UnLink(other);
  EXPECT_EQ(QDL_write_QDL(record, path("body.qdl").c_str()), 1) << "nobody needs it any more";
}

// The name counts, even when the file behind it has been replaced.
TEST_F(OutputName, NameOfTheModelIsProtected) {
  QDL_Record *record = open(source_);
  const std::string current = path("body.qdl");
  fs::remove(current);
  file("body.qdl", {1, 2, 3});
  expect_protected(record, current, current);
  fs::remove(current);
  EXPECT_EQ(QDL_write_QDL(record, current.c_str()), 0);
  EXPECT_FALSE(exists("body.qdl"));
}

TEST_F(OutputName, NamesThatCannotBeOpened) {
  QDL_Record *record = build_record(body_with_modes({0, 1}, 1), {4, 7, 8, 11});
  const auto unable = [](const std::string &name) {
    return "Unable to open " + name + " for write. Please check write permissions.";
  };
  const std::string pipe = path("pipe");  // without anybody at its other end
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string &name : {std::string(), path("missing/body.qdl"), directory().string(),
                                  path(std::string(300, 'x')), pipe}) {
    SCOPED_TRACE(name);
    clear_messages();
    EXPECT_EQ(QDL_write_QDL(record, name.c_str()), 0);
    expect_only_error(unable(name));
    EXPECT_EQ(infos, std::vector<std::string>{});
  }
  clear_messages();
  EXPECT_EQ(QDL_write_QDL(record, nullptr), 0);
  expect_only_error(unable(""));
  EXPECT_FALSE(exists("missing"));

  clear_messages();
  EXPECT_EQ(QDL_write_QDL(nullptr, path("written.qdl").c_str()), 0);
  expect_only_error("The database has not been initialized.");
  EXPECT_FALSE(exists("written.qdl"));
}

// Messages are cut, whatever is put into them.
TEST_F(OutputName, LongNames) {
  QDL_Record *record = build_record(body_with_modes({0, 1}, 1), {4, 7, 8, 11});
  clear_messages();
  EXPECT_EQ(QDL_write_QDL(record, path(std::string(100000, '%')).c_str()), 0);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_LE(errors[0].size(), 1008U);
}

TEST_F(OutputName, AFailedWriteThroughALinkRemovesWhatItLeadsTo) {
  const std::string target = file("target.qdl", {1, 2, 3});
  fs::create_symlink(target, path("link.qdl"));
  EXPECT_EQ(write(QDL_Create(0, 0), "full_str sparse_str", "link.qdl"), 0);
  EXPECT_FALSE(fs::exists(target));
  EXPECT_TRUE(fs::is_symlink(path("link.qdl")));
}

TEST_F(OutputName, AnExistingFileIsReplaced) {
  file("written.qdl", std::vector<std::uint8_t>(100000, 7));
  const SampleModel content = body_with_modes({0, 1}, 1);
  expect_written(build_record(content, written_blocks(60)), "",
                 build_file(316, written_blocks(316), content));
  // A name in UTF-8.
  expect_written(build_record(content, written_blocks(60)), "",
                 build_file(316, written_blocks(316), content), "k\xc3\xb6rper.qdl");
}

}  // namespace
