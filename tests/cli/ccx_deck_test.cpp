#include "ccx_deck.h"

#include <gtest/gtest.h>

#include "cli_support.h"

using namespace qdlflex::cli;

namespace {

class CcxDeckTest : public ::testing::Test {
 protected:
  CcxDeck read(const std::string &text) { return read_ccx_deck(folder_.write("job.inp", text)); }

  std::string failure(const std::string &text) {
    const std::string path = folder_.write("job.inp", text);
    const std::string message = failure_of([&] { read_ccx_deck(path); });
    return message.starts_with(path) ? message.substr(path.size()) : message;
  }

  TemporaryFolder folder_;
};

using Ids = std::vector<int32_t>;

}  // namespace

TEST_F(CcxDeckTest, ReadsNodesSetsAndDensities) {
  const CcxDeck deck = read(
      "** a comment, *NODE\r\n"
      "*Heading\r\n"
      " 5, not a node\r\n"
      "\r\n"
      "*Node, nset = All\r\n"
      "1, 1.25, -2.D-1, +3e0\r\n"
      "  2 , 7\r\n"
      "*ELEMENT, TYPE=C3D4, ELSET=E\r\n"
      "1, 1, 2, 3, 4\r\n"
      "*NSET,NSET=rim\r\n"
      "5, 3,\r\n"
      "9\r\n"
      "*NSET,NSET=MORE,GENERATE\r\n"
      "10, 14, 2\r\n"
      "20, 21\r\n"
      "*NSET,NSET=Both\r\n"
      "Rim, more, 1\r\n"
      "*MATERIAL,NAME=Steel\r\n"
      "*ELASTIC\r\n"
      "210000., 0.3\r\n"
      "*DENSITY\r\n"
      "7.85E-9, 20.\r\n"
      "7.80E-9, 200.\r\n"
      "*MATERIAL,NAME=\"light alloy\"\r\n"
      "*DENSITY\r\n"
      "2.7E-9\r\n");
  ASSERT_EQ(deck.nodes.size(), 2U);
  EXPECT_EQ(deck.nodes.at(1), (Point{1.25, -0.2, 3.0}));
  EXPECT_EQ(deck.nodes.at(2), (Point{7.0, 0.0, 0.0}));
  EXPECT_EQ(deck.node_sets.at("ALL"), (Ids{1, 2}));
  EXPECT_EQ(deck.node_sets.at("RIM"), (Ids{5, 3, 9}));
  EXPECT_EQ(deck.node_sets.at("MORE"), (Ids{10, 12, 14, 20, 21}));
  EXPECT_EQ(deck.node_sets.at("BOTH"), (Ids{5, 3, 9, 10, 12, 14, 20, 21, 1}));
  EXPECT_EQ(deck.densities,
            (std::map<std::string, double>{{"STEEL", 7.85e-9}, {"LIGHT ALLOY", 2.7e-9}}));
}

TEST_F(CcxDeckTest, FollowsIncludesBesideTheDeck) {
  folder_.write("mesh.inp", "*NODE\n4,1,2,3\n");
  const CcxDeck deck = read("*INCLUDE, INPUT=mesh.inp\n*NSET,NSET=A\n4\n");
  EXPECT_EQ(deck.nodes.at(4), (Point{1, 2, 3}));
  EXPECT_EQ(deck.node_sets.at("A"), (Ids{4}));
}

TEST_F(CcxDeckTest, SaysWhatIsWrongAndWhere) {
  EXPECT_EQ(failure("*NODE\n1,0,0,zero\n"), ":2: \"zero\" is not a number");
  EXPECT_EQ(failure("*NODE\nx,0,0,0\n"), ":2: \"x\" is not an integer");
  EXPECT_EQ(failure("*NSET\n1\n"), ":1: *NSET without a name");
  EXPECT_EQ(failure("*NSET,NSET=A\n1,B\n"), ":2: there is no node set B above this line");
  EXPECT_EQ(failure("*MATERIAL,NAME=M\n*DENSITY\n,\n"), ":3: \"\" is not a number");
  EXPECT_EQ(failure("*INCLUDE,INPUT=none.inp\n"),
            ":1: the included file " + folder_.path("none.inp") + " does not exist");
  EXPECT_EQ(failure("*INCLUDE\n"), ":1: *INCLUDE without INPUT=");
  EXPECT_EQ(failure("*INCLUDE,INPUT=job.inp\n"), ":1: files include one another too deeply");
  for (const char *const range : {"1,5,0", "1,5,-1", "5,1"}) {
    EXPECT_EQ(failure("*NSET,NSET=A,GENERATE\n" + std::string(range) + "\n"),
              ":2: these nodes cannot be generated");
  }
}

TEST_F(CcxDeckTest, RefusesShortDecksThatAskForTooMuch) {
  EXPECT_EQ(failure("*NSET,NSET=A,GENERATE\n1,2147483647\n"), ":2: the node sets are too large");
  const auto repeated = [](const std::string &text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
      result += text;
    }
    return result;
  };
  EXPECT_EQ(failure("*NSET,NSET=A\n1\n" + repeated("A,A,A,A,A,A,A,A\n", 4)),
            ":5: the node sets are too large");
  folder_.write("nothing.inp", "**\n");
  folder_.write("more.inp", repeated("*INCLUDE,INPUT=nothing.inp\n", 40));
  EXPECT_EQ(failure(repeated("*INCLUDE,INPUT=more.inp\n", 40)),
            folder_.path("more.inp") + ":16: too many files are included");
}
