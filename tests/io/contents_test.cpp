// The report of a model's contents: that of a complete file as it is kept in the tree, that of a
// model without any, and streams and handles that are not there.

#include <qdlflex/qdlflex.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/fault.h"
#include "support/read_fixture.h"

namespace {

using namespace qdltest;

const std::string kGolden = QDLFLEX_SOURCE_DIR "/tests/golden/";

std::string report(QDL_Record *model, int block) {
  char *text = nullptr;
  std::size_t size = 0;
  std::FILE *stream = open_memstream(&text, &size);
  QDL_Contents(model, block, stream);
  std::fclose(stream);
  std::string result(text, size);
  std::free(text);
  return result;
}

class Contents : public ReadFixture {};

TEST_F(Contents, NewModel) {
  QDL_Record *model = QDL_Create(0, 0);
  const std::pair<int, std::string> absent[] = {
      {1,
       "QDL version: 3.1\nPrecision: Double   \n"
       "Platform independent (XDR encoded): Yes \nCoarsened or sketched mesh: No \n\n"},
      {6, "No global body property information\n"},
      {7, "No eigenvalue information\n"},
      {8, "Number of Mode Shapes 0\n"},
      {10, "\tNo Nodal Inertia information.\n"},
      {12, "No generalized stiffness information.\n"},
      {13, "No generalized mass information in QDL\n"},
      {14, "number of faces 0\n\n"},
      {15, "No generalized damping information in QDL.\n"},
      {16, "\tNo Mode Shape Transformation, modes used as is.\n\n"},
      {18, "\tNo Modal Stress Information\n\n"},
      {20, "\tNo Invariant 2 information\n\n"},
      {24, "\tNo Invariant 7 information\n\n"},
      {27, "\tNo Preload information.\n\n"},
      {28, "\tNo Modal Load information.\n\n"},
      {29, "\tNo Modal Strain Information\n\n"},
      {30, "\tNo Modal Statistic Information\n\n"},
      {31, "\tNo Nodal Pre-Stress Information\n\n"},
      {32, "\tNo Nodal Pre-Strain Information\n\n"},
      {34, "\tNo Matrix Operator Information.\n\n"},
      {35, "\tNo Modal Load Nodal Information.\n\n"},
      {36, "\tNo Monitor Point Information\n\n"},
      {37, "\tNo Rotor Dynamics Information\n\n"},
  };
  for (const auto &[block, text] : absent) {
    const std::string found = report(model, block);
    EXPECT_EQ(found.substr(found.find("-\n\n\n") + 4), text) << block;
  }
  for (const int block : {-1, 0, 33, 38})
    EXPECT_EQ(report(model, block), "") << block;
  EXPECT_EQ(errors, std::vector<std::string>{});
}

// The kept text was read line by line against the builder's numbers before it was put there.
TEST_F(Contents, CompleteFile) {
  QDL_Record *model = QDL_CreateFromQDL((kGolden + "60_xdr_double.qdl").c_str());
  std::string found;
  for (int block = 1; block <= 37; ++block)
    found += report(model, block);
  const std::vector<std::uint8_t> kept = read_file(kGolden + "60_xdr_double.contents.txt");
  EXPECT_EQ(found, std::string(kept.begin(), kept.end()));
  EXPECT_EQ(errors, std::vector<std::string>{});
}

TEST_F(Contents, EigenvaluesOfSomeModes) {
  QDL_Record *model = QDL_Create(0, 2);
  QDL_SetGeneralizedMass(model, 1, 1, 1.0);
  QDL_SetGeneralizedMass(model, 2, 2, 1.0);
  QDL_SetGeneralizedStiffness(model, 2, 2, 4.0);
  QDL_SetGeneralizedStiffness(model, 1, 2, 1.0);
  ASSERT_EQ(QDL_Eigenvalue(model, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_NE(report(model, 7).find("=\n    2 "), std::string::npos) << report(model, 7);
}

TEST_F(Contents, FlushesWhenMemoryRunsOut) {
  QDL_Record *model = QDL_Create(1, 1);
  std::FILE *stream = std::fopen(path("report").c_str(), "wb");
  ASSERT_NE(stream, nullptr);
  std::fputs("before", stream);
  {
    const FailAllocation fault(1);
    QDL_Contents(model, 1, stream);
    EXPECT_TRUE(fault.fired());
  }
  EXPECT_EQ(read_file(path("report")).size(), 6U);
  std::fclose(stream);
  EXPECT_EQ(errors.size(), 1U);
}

TEST_F(Contents, NoModelNoStream) {
  QDL_Contents(QDL_Create(1, 1), 1, nullptr);
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(report(nullptr, 1), "");
  EXPECT_EQ(errors, std::vector<std::string>{"The database has not been initialized."});
}

}  // namespace
