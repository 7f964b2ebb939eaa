#include <gtest/gtest.h>

#include <qdlflex/qdlflex.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace qdltest {
namespace {

class Lifecycle : public MessageFixture {
 protected:
  std::string sample(const std::string &name) { return file(name, build_file(60).bytes); }
};

TEST_F(Lifecycle, OneNameIsOneModel) {
  const std::string name = sample("body.qdl");
  EXPECT_EQ(QDL_FindQDL(name.c_str()), nullptr);
  QDL_Record *first = QDL_CreateFromQDL(name.c_str());
  ASSERT_NE(first, nullptr);
  // The second call must not read again: the name no longer leads to the file.
  std::filesystem::remove(name);
  EXPECT_EQ(QDL_CreateFromQDL(name.c_str()), first);
  EXPECT_EQ(QDL_FindQDL(name.c_str()), first);
  // Nothing counts the users: the first release ends the model.
  EXPECT_EQ(QDL_DeReference(first), 0);
  EXPECT_EQ(QDL_IsValid(first), 0);
  EXPECT_EQ(QDL_FindQDL(name.c_str()), nullptr);
}

TEST_F(Lifecycle, AnotherSpellingOfTheNameIsAnotherModel) {
  const std::string name = sample("body.qdl");
  const std::string dotted = path("./body.qdl");
  QDL_Record *first = QDL_CreateFromQDL(name.c_str());
  QDL_Record *second = QDL_CreateFromQDL(dotted.c_str());
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
}

TEST_F(Lifecycle, ASurfaceMeshIsAModelOfItsOwn) {
  SampleModel sample = sample_model();
  // The two faces in the middle go, and with them the node that nothing else uses.
  sample.faces = {3, 0, 1, 2, 3, 2, 1, 0, 3, 0, 1, 3};
  const std::string name = file("body.qdl", build_file(60, {1, 2, 3, 4, 14}, sample).bytes);
  QDL_Record *surface = QDL_CreateFromQDL_SurfaceMesh(name.c_str());
  ASSERT_NE(surface, nullptr);
  EXPECT_EQ(QDL_CreateFromQDL_SurfaceMesh(name.c_str()), surface);
  EXPECT_EQ(QDL_FindQDL(name.c_str()), nullptr);
  EXPECT_EQ(QDL_NodeCount(surface), 3);
  EXPECT_EQ(QDL_NodeIndex(surface, sample.nodes[2].id), -1);
  std::int32_t list[4] = {};
  std::int32_t length = 0;
  QDL_FaceListSize(surface, nullptr, &length);
  ASSERT_EQ(length, 4);
  QDL_ElementFaces(surface, list);
  EXPECT_EQ(QDL_NodeID(surface, list[1]), sample.nodes[3].id);

  QDL_Record *whole = QDL_CreateFromQDL(name.c_str());
  EXPECT_NE(whole, surface);
  EXPECT_EQ(QDL_FindQDL(name.c_str()), whole);
  EXPECT_EQ(QDL_NodeCount(whole), 4);
}

TEST_F(Lifecycle, NamesBeyondAscii) {
  const std::string name = sample("k\xC3\xB6rper \xE2\x88\x9A.qdl");
  EXPECT_NE(QDL_CreateFromQDL(name.c_str()), nullptr);
}

TEST_F(Lifecycle, WhatCannotBeOpenedGivesNothingAndSaysNothing) {
  for (const char *name : {static_cast<const char *>(nullptr), "", "/nowhere/body.qdl"}) {
    EXPECT_EQ(QDL_CreateFromQDL(name), nullptr);
    EXPECT_EQ(QDL_CreateFromQDL_SurfaceMesh(name), nullptr);
    EXPECT_EQ(QDL_FindQDL(name), nullptr);
  }
  expect_no_messages();
}

TEST_F(Lifecycle, ModelsEndInAnyOrder) {
  std::vector<QDL_Record *> models;
  for (int i = 0; i < 5; ++i)
    models.push_back(QDL_Create(i, i));
  for (const std::size_t end : {std::size_t{2}, std::size_t{0}, std::size_t{4}}) {
    QDL_UnLink(models[end]);
    EXPECT_EQ(QDL_IsValid(models[end]), 0);
    QDL_UnLink(models[end]);  // a handle that is no longer valid is ignored
    EXPECT_EQ(QDL_DeReference(models[end]), 0);
  }
  EXPECT_EQ(QDL_IsValid(models[1]), 1);
  EXPECT_EQ(QDL_IsValid(models[3]), 1);
  QDL_Destroy(models[1]);
  EXPECT_EQ(QDL_IsValid(models[1]), 1);
  QDL_Terminate();
  EXPECT_EQ(QDL_IsValid(models[1]), 0);
  QDL_Terminate();
  EXPECT_EQ(QDL_IsValid(nullptr), 0);
  QDL_UnLink(nullptr);
  QDL_FreeMemory(nullptr);
  expect_no_messages();
}

TEST_F(Lifecycle, ANewModelHasTheDefaults) {
  QDL_Record *model = QDL_Create(-5, -5);
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(QDL_Version(model), 31);
  EXPECT_EQ(QDL_Double_Prec(model), 1);
  EXPECT_EQ(QDL_GetKeepModesInMemory(model, nullptr), 1);
  EXPECT_EQ(QDL_NodeCount(model), 0);
  EXPECT_EQ(QDL_ModeCount(model), 0);
  EXPECT_EQ(QDL_AddMode(model, 1), -1);  // negative plans are plans for nothing
}

TEST_F(Lifecycle, TenThousandOpenAndClose) {
  const std::string name = sample("body.qdl");
  const std::size_t before = open_descriptors();
  for (int i = 0; i < 10'000; ++i)
    QDL_UnLink(QDL_CreateFromQDL(name.c_str()));
  EXPECT_EQ(open_descriptors(), before);
}

// The host may end its models after the library's own list has been cleared.
TEST(Exit, ModelsMayBeEndedAtTheEndOfTheProcess) {
  EXPECT_EXIT(
      {
        std::atexit([] {
          QDL_Terminate();
          QDL_Create(1, 1);
          QDL_Terminate();
        });
        QDL_Create(1, 1);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

// Messages.

std::vector<std::string> heard;

int64_t hear_error(const char *text) {
  heard.push_back(std::string("E:") + text);
  return 0x123456789abcdef0;
}
int64_t hear_warning(const char *text) {
  heard.push_back(std::string("W:") + text);
  return -2;
}
int64_t hear_info(const char *text) {
  heard.push_back(std::string("I:") + text);
  return 3;
}

TEST_F(Lifecycle, MessagesReachTheirHandlersAndBringBackTheirResults) {
  heard.clear();
  const QDL_MessageHandler handlers[3] = {hear_error, hear_warning, hear_info};
  EXPECT_EQ(SetMessageHandlers(handlers), 1);
  EXPECT_EQ(QDL_Error("%s %d\n", "e", 1), 0x123456789abcdef0);
  EXPECT_EQ(QDL_Warning("%05.2f", 1.5), -2);
  EXPECT_EQ(QDL_Info("%s", std::string(5000, 'x').c_str()), 3);
  ASSERT_EQ(heard.size(), 3u);
  EXPECT_EQ(heard[0], "E:e 1\n");
  EXPECT_EQ(heard[1], "W:01.50");
  EXPECT_EQ(heard[2], "I:" + std::string(1007, 'x'));

  EXPECT_EQ(SetMessageHandlers(nullptr), 0);  // changes nothing
  EXPECT_EQ(QDL_Info("still here"), 3);
  const QDL_MessageHandler none[3] = {};
  EXPECT_EQ(SetMessageHandlers(none), 1);
  EXPECT_EQ(QDL_Error("nobody listens"), 0);
}

}  // namespace
}  // namespace qdltest
