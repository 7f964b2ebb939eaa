// Faces from a sketch file, good and bad.
#include <gtest/gtest.h>

#include <utility>

#include "geometry/surface_fixture.h"

namespace {

using qdltest::Ints;
using Faces = std::vector<Ints>;

const Faces kOldFaces = {{3, 3, 2, 1}, {3, 0, 1, 2}};
const std::string kStartsBadly = " does not start with a face count";

class Sketch : public qdltest::SurfaceFixture {
 protected:
  // Four nodes with identifiers 1 to 4, the old faces, and geometry nodes known.
  static QDL_Record *body() {
    QDL_Record *model = model_with(4, kOldFaces);
    QDL_FreeMemory(QDL_GeometryNodes(model, nullptr));
    return model;
  }

  std::string sketch(const std::string &text) const {
    return file("sketch.txt", {text.begin(), text.end()});
  }

  std::string using_sketch(const std::string &path, int faces) const {
    return "Using sketch file " + path + " to replace 2 faces with " + std::to_string(faces);
  }

  void expect_old_faces(QDL_Record *model) const {
    EXPECT_EQ(faces_of(model), kOldFaces);
    EXPECT_EQ(QDL_IsCoarsened(model), 0);
    EXPECT_TRUE(model->geometry_nodes.has_value());
  }
};

}  // namespace

TEST_F(Sketch, ReplacesTheFaces) {
  const std::pair<const char *, Faces> cases[] = {
      {"2\n3 1 2 3\n4 1 2 3 4\n", {{3, 0, 1, 2}, {4, 0, 1, 2, 3}}},
      {"\t\v\f\r 1 \n+2 4\r\n+1 7 words and 8 numbers", {{2, 3, 0}}},
      {"4 0 -3 1 2 2 4 4 ", {{0}, {-3}, {1, 1}, {2, 3, 3}}},
      {"0", {}},
      {"-1 3 1 2 3", {}},
  };
  for (const auto &[text, faces] : cases) {
    SCOPED_TRACE(text);
    QDL_Record *model = body();
    const std::string path = sketch(text);
    QDL_SketchGrid(model, path.c_str());
    EXPECT_EQ(faces_of(model), faces);
    EXPECT_EQ(QDL_ElementFaces(model, Ints(99).data()), 1);
    EXPECT_EQ(QDL_IsCoarsened(model), 1);
    EXPECT_EQ(QDL_Exists(model, 13), 1);
    EXPECT_FALSE(model->geometry_nodes.has_value());
    EXPECT_EQ(infos, std::vector<std::string>{using_sketch(path, std::stoi(text))});
    expect_only_warnings({});
    clear_messages();
  }
}

TEST_F(Sketch, KeepsTheFacesWhenTheFileIsBad) {
  const auto incomplete = [](int face) {
    return "Incorrect definition of face " + std::to_string(face) + ".  Aborting.";
  };
  struct Case {
    std::string text;
    int faces;
    std::string warning;
  };
  const Case cases[] = {
      {"1 3 1 2 99", 1, "Incorrect definition of face 1.  No node 99. Aborting."},
      {"2 1 1 2 1 -2147483648", 2,
       "Incorrect definition of face 2.  No node -2147483648. Aborting."},
      {"1", 1, incomplete(1)},
      {"2147483647 3 1 2 3", 2147483647, incomplete(2)},
      {"3 3 1 2 3 3 1 2", 3, incomplete(2)},
      {"1 2147483647 1 2 3", 1, incomplete(1)},
      {"1 2 1 2147483648", 1, incomplete(1)},
      {"1 2 1 99999999999999999999999", 1, incomplete(1)},
      {"2 1 1 x", 2, incomplete(2)},
      {"1 2 1. 2", 1, incomplete(1)},
      {"1 2 1 - 2", 1, incomplete(1)},
      {std::string("1 1 \0 1", 7), 1, incomplete(1)},
  };
  QDL_Record *model = body();
  for (const Case &bad : cases) {
    SCOPED_TRACE(bad.text);
    const std::string path = sketch(bad.text);
    const qdltest::PeakMemory peak;
    QDL_SketchGrid(model, path.c_str());
    EXPECT_LT(peak.bytes(), 1U << 17);
    EXPECT_EQ(infos, std::vector<std::string>{using_sketch(path, bad.faces)});
    expect_only_warnings({bad.warning});
    expect_old_faces(model);
    clear_messages();
  }
}

TEST_F(Sketch, TellsWhyAFileCannotBeUsed) {
  QDL_Record *model = body();
  QDL_SketchGrid(model, nullptr);
  const std::string missing = path("missing.txt");
  QDL_SketchGrid(model, missing.c_str());
  std::vector<std::string> warnings = {"Failed to apply sketch file.  Usage: sketch(filename)",
                                       "Failed to open sketch file " + missing};
  const std::string no_file = directory().string();
  QDL_SketchGrid(model, no_file.c_str());
  warnings.push_back("Sketch file " + no_file + kStartsBadly);
  for (const char *text : {"", " \n", "faces 3", "-", "2147483648", "-2147483649",
                           "\x7f"
                           "ELF\1"}) {
    const std::string path = sketch(text);
    QDL_SketchGrid(model, path.c_str());
    warnings.push_back("Sketch file " + path + kStartsBadly);
  }
  expect_only_warnings(warnings);
  EXPECT_EQ(infos, std::vector<std::string>{});
  expect_old_faces(model);
}

// Larger than any buffer, with numbers across its borders.
TEST_F(Sketch, ReadsALongFile) {
  constexpr int kFaces = 40000;
  std::string text = std::to_string(kFaces) + std::string(200000, ' ');
  for (int face = 0; face < kFaces; ++face)
    text += "\n3 0001 2 003";
  QDL_Record *model = body();
  QDL_SketchGrid(model, sketch(text).c_str());
  EXPECT_EQ(faces_of(model), Faces(kFaces, Ints{3, 0, 1, 2}));
}

TEST_F(Sketch, ReadsIdentifiersAsTheLookUpAnswersAfterASwap) {
  QDL_Record *model = body();
  QDL_SwapNodesByID(model, 1, 4);
  QDL_SketchGrid(model, sketch("1 2 1 4").c_str());
  EXPECT_EQ(faces_of(model), (Faces{{2, 0, 3}}));
}

TEST_F(Sketch, KeepsTheFacesWhenMemoryRunsOut) {
  const std::string path = sketch("2 3 1 2 3 4 1 2 3 4");
  sweep_job(
      body,
      [&](QDL_Record *model) {
        QDL_SketchGrid(model, path.c_str());
        return QDL_IsCoarsened(model);
      },
      [&](QDL_Record *model, bool done) {
        if (done)
          return;
        expect_old_faces(model);
        expect_no_memory("qdltools");
      },
      {qdltest::Door::kMemory});
}

TEST_F(Sketch, KeepsTheFacesWhenTheFileFails) {
  const std::string path = sketch("1 3 1 2 3");
  QDL_Record *model = body();
  const std::string texts[] = {"Failed to open sketch file " + path,
                               "Sketch file " + path + kStartsBadly};
  for (std::size_t operation = 0; operation < 2; ++operation) {
    const qdltest::FailFileOperation fault(operation + 1);
    QDL_SketchGrid(model, path.c_str());
    expect_only_warnings({texts[operation]});
    expect_old_faces(model);
    clear_messages();
  }
}
