// The option text: what it makes of the version code, which texts contradict each other, and how
// arguments are read.

#include <gtest/gtest.h>

#include <cmath>

#include <optional>

#include "io/write_fixture.h"
#include "io/write_options.h"

namespace {

using namespace qdltest;

const std::string kFullAndSparse = "Cannot specify full and sparse stress and strain modes.";
const std::string kNoVersion = "Problem writing version number.";
std::string refusal(const std::string &release, const std::string &what) {
  return release + " compatible QDL cannot " + what;
}

const std::string kInvariants = "contain Invariants";
const std::string kSingle = "be single precision";
const std::string kSparse = "have sparse stress or strain modes";

struct Text {
  std::string options;
  std::int32_t code;                // of the file, if there is one
  std::vector<std::string> errors;  // those that refuse it
};

const std::vector<Text> &texts() {
  static const std::vector<Text> all = {
      {"", 316, {}},
      {"nothing that is known here", 316, {}},
      {"sparse_str", 316, {}},
      {"singlesingle, single", 828, {}},
      {"xsinglex;no_xdrno_xdr", 572, {}},
      {"SINGLE No_Xdr", 316, {}},
      {"no_xdr_full_str_single", 50, {}},
      {"82_comp 81_comp", 10, {}},
      {"81_comp", 10, {}},
      {"82_comp no_xdr", 20, {}},
      {"82_comp full_str", 20, {}},
      {"81_comp full_str no_xdr", 10, {}},
      {"full_str sparse_str", 0, {kFullAndSparse}},
      {"sparse_strfull_str single no_xdr", 0, {kFullAndSparse}},
      {"82_comp fast_invar", 0, {refusal("8.2", kInvariants)}},
      {"82_comp invar", 0, {refusal("8.2", kInvariants)}},
      {"82_comp single", 0, {refusal("8.2", kSingle)}},
      {"82_comp sparse_str", 0, {refusal("8.2", kSparse)}},
      {"81_comp full_invar", 0, {refusal("8.1", kInvariants)}},
      {"81_comp single", 0, {refusal("8.1", kSingle)}},
      {"81_comp sparse_str", 0, {refusal("8.1", kSparse)}},
      {"single sparse_str invar 81_comp",
       0,
       {refusal("8.1", kInvariants), refusal("8.1", kSingle), refusal("8.1", kSparse)}},
      {"full_str sparse_str single invar 81_comp 82_comp",
       0,
       {kFullAndSparse, refusal("8.2", kInvariants), refusal("8.2", kSingle),
        refusal("8.2", kSparse), refusal("8.1", kInvariants), refusal("8.1", kSingle),
        refusal("8.1", kSparse)}},
      // An argument's words count too.
      {"sketch(/bodies/single.txt) 82_comp", 0, {refusal("8.2", kSingle)}},
  };
  return all;
}

class WriteOptions : public WriteFixture {
 protected:
  static QDL_Record *body() { return build_record(body_with_modes({0, 1}, 1), {4, 7, 8, 11}); }
};

TEST_F(WriteOptions, VersionCodes) {
  for (const Text &text : texts()) {
    SCOPED_TRACE(text.options);
    QDL_Terminate();
    clear_messages();
    QDL_Record *record = body();
    if (!text.errors.empty()) {
      std::vector<std::string> errors_and_end = text.errors;
      errors_and_end.push_back(kNoVersion);
      expect_refused(record, text.options, errors_and_end);
      EXPECT_EQ(infos, std::vector<std::string>{});
      continue;
    }
    EXPECT_EQ(write(record, text.options), 1);
    EXPECT_EQ(errors, std::vector<std::string>{});
    SampleFile written{};
    written.encoding = encoding_of(text.code);
    written.bytes = read_file(path("written.qdl"));
    EXPECT_EQ(written.i32_at(0), text.code);
    std::filesystem::remove(path("written.qdl"));
  }
}

TEST_F(WriteOptions, VariableMayBeMissing) {
  QDL_Record *record = body();
  EXPECT_EQ(QDL_write_QDL(record, path("written.qdl").c_str()), 1);
  QDL_Record *copy = QDL_CreateFromQDL(path("written.qdl").c_str());
  EXPECT_EQ(QDL_Version(copy), 60);
  EXPECT_EQ(QDL_Version(record), 31) << "the record keeps its own version";
}

TEST_F(WriteOptions, TextOfAMegabyte) {
  std::string options = "sketch " + std::string(1 << 20, '(') + "single no_xdr";
  EXPECT_EQ(write(body(), options), 1);
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(read_file(path("written.qdl"))[1], 0x02);
}

struct Argument {
  std::string text;
  std::optional<std::string> expected;
};

TEST_F(WriteOptions, SketchFile) {
  const std::vector<Argument> cases = {
      {"sketch(\"a file (1).txt\") single", "a file (1).txt"},
      {"sketch('a file (1).txt')", "a file (1).txt"},
      {"sketch(/bodies/a b.txt) x)", "/bodies/a b.txt"},
      {"sketch(open", "open"},
      {"sketch(\"open", "open"},
      {"sketch(\"\")", "\"\""},
      {"sketch('')", "''"},
      {"sketch()", std::nullopt},
      {"sketch(", std::nullopt},
      {"sketch (a)", std::nullopt},
      {"sketch", std::nullopt},
      {"sketch sketch(a)", std::nullopt},
      {"sketch(a)sketch(b)", "a"},
      {"no such word", std::nullopt},
  };
  for (const Argument &c : cases)
    EXPECT_EQ(qdlflex::parse_write_options(c.text).sketch, c.expected) << c.text;
}

TEST_F(WriteOptions, CoarseningArgument) {
  const std::vector<Argument> cases = {
      {"coarsen(0.1,10,1)", "0.1,10,1"},
      {"coarsen( 0.05 20 0 preserve_str) single", " 0.05 20 0 preserve_str"},
      {"coarsen(0.1,10,1", "0.1,10,1"},
      {"coarsen(-0.1,10,1)", std::nullopt},
      {"coarsen()", std::nullopt},
      {"coarsen 0.1", std::nullopt},
      {"coarsen", std::nullopt},
  };
  for (const Argument &c : cases)
    EXPECT_EQ(qdlflex::parse_write_options(c.text).coarsen, c.expected) << c.text;
}

TEST_F(WriteOptions, FrequencyLimits) {
  struct Case {
    std::string argument;
    double expected;
  };
  const std::vector<Case> cases = {{"100", 100.0},
                                   {"100)", 100.0},
                                   {"  2.5e2 )", 250.0},
                                   {"-1.5)", -1.5},
                                   {"1e-3)", 0.001},
                                   {"1e+3)", 1.0},
                                   {"1,5)", 1.0},
                                   {"abc)", 0.0},
                                   {")", 0.0},
                                   {"", 0.0},
                                   {"- 5)", 0.0},
                                   {".5)", 0.5},
                                   {"1 2)", 1.0},
                                   {"7 Hz)", 7.0},
                                   {"e5)", 0.0},
                                   {"1e)", 1.0},
                                   {"100lowpass(7", 100.0},
                                   {"1e999", HUGE_VAL},
                                   {"-1e999", -HUGE_VAL},
                                   {"1e-999", 0.0}};
  for (const Case &c : cases) {
    SCOPED_TRACE(c.argument);
    EXPECT_EQ(qdlflex::parse_write_options("x lowpass(" + c.argument).lowpass, c.expected);
    EXPECT_EQ(qdlflex::parse_write_options("highpass(" + c.argument).highpass, c.expected);
  }
  EXPECT_EQ(qdlflex::parse_write_options("lowpass 7 highpass").lowpass, std::nullopt);
}

}  // namespace
