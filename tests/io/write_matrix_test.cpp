// Bodies of every kind, written with every pair of options: the files and messages are those that
// the rules of writing give for the same body.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

#include "io/write_matrix_bodies.h"

namespace {

using namespace qdltest;

// --- Which combinations ------------------------------------------------------------------------

enum Factor { kForm, kOrtho, kInvariants, kBand, kEmpty, kUnits, kEdit, kSparse, kNodes, kSource };
constexpr std::size_t kFactors = 10;
using Choice = std::array<std::size_t, kFactors>;

const std::vector<Band> kBands = {{"", -1.0, 1.0e8},
                                  {"lowpass(100)", -1.0, 100.0},
                                  {"highpass(1)lowpass(25)", 1.0, 25.0},
                                  {"highpass(500)", 500.0, 1.0e8},
                                  {"highpass(5)lowpass(50)", 5.0, 50.0},
                                  {"lowpass(0.1)", -1.0, 0.1}};

const Choice kLevels = {10, 2, 5, 6, 2, 2, 6, 2, 2, 3};

// The refusals and the body without modes leave most other options without effect.
bool is_effective(const Choice &choice) {
  const bool oldest = choice[kForm] >= 8;
  const bool refused =
      (choice[kSparse] == 1 && choice[kForm] >= 4) || (oldest && choice[kInvariants] > 0);
  return !refused && choice[kEmpty] == 0;
}

// Every pair of levels of two factors, for every kind of body, at least once, and where that is
// possible in a write that neither is refused nor leaves the modes out. Greedy: each round takes an
// open pair and, of some random combinations with it, the one that closes the most.
std::vector<Choice> choose_combinations(unsigned seed) {
  std::set<std::array<std::size_t, 4>> open;
  const auto for_each_pair = [](const Choice &choice, auto function) {
    for (std::size_t i = 0; i < kFactors; ++i)
      for (std::size_t j = i + 1; j < kFactors; ++j)
        function({i, choice[i], j, choice[j]});
  };
  for (std::size_t i = 0; i < kFactors; ++i)
    for (std::size_t j = i + 1; j < kFactors; ++j)
      for (std::size_t a = 0; a < kLevels[i]; ++a)
        for (std::size_t b = 0; b < kLevels[j]; ++b)
          open.insert({i, a, j, b});
  std::minstd_rand random(seed);
  std::vector<Choice> chosen;
  while (!open.empty()) {
    const std::array<std::size_t, 4> pair = *open.begin();
    Choice best{};
    std::size_t most = 0;
    for (int attempt = 0; attempt < 60; ++attempt) {
      Choice choice{};
      for (std::size_t i = 0; i < kFactors; ++i)
        choice[i] = random() % kLevels[i];
      choice[pair[0]] = pair[1];
      choice[pair[2]] = pair[3];
      std::size_t closed = 1;
      if (is_effective(choice))
        for_each_pair(choice,
                      [&](const std::array<std::size_t, 4> &p) { closed += open.count(p); });
      if (closed > most) {
        most = closed;
        best = choice;
      }
    }
    chosen.push_back(best);
    open.erase(pair);
    if (is_effective(best))
      for_each_pair(best, [&](const std::array<std::size_t, 4> &p) { open.erase(p); });
  }
  return chosen;
}

Wishes wishes_of(const Choice &choice) {
  Wishes wishes{};
  wishes.form = every_write_form()[choice[kForm]];
  wishes.no_ortho = choice[kOrtho] == 1;
  wishes.invariants = static_cast<InvariantWish>(choice[kInvariants]);
  wishes.band = kBands[choice[kBand]];
  wishes.empty = choice[kEmpty] == 1;
  wishes.mks = choice[kUnits] == 1;
  wishes.edit = static_cast<Edit>(choice[kEdit]);
  wishes.sparse = choice[kSparse] == 1;
  wishes.skip_load_nodes = choice[kNodes] == 1;
  return wishes;
}

std::string text_of(const Wishes &wishes, const std::string &sketch) {
  const std::array<std::string, 5> invariants = {"", "full_invar", "fast_invar",
                                                 "fast_invar full_invar", "invar"};
  const std::array<std::string, 6> edits = {"",
                                            "lbrf2cm",
                                            "strip_face",
                                            "coarsen(0.3,10,0)",
                                            "sketch(" + sketch + ")",
                                            "strip_face lbrf2cm"};
  return wishes.band.options + (wishes.mks ? " MKS " : " ") +
         invariants.at(static_cast<std::size_t>(wishes.invariants)) +
         (wishes.empty ? " empty " : " ") + edits.at(static_cast<std::size_t>(wishes.edit)) +
         (wishes.no_ortho ? " no_ortho " : " ") + (wishes.sparse ? "sparse_str " : "") +
         (wishes.skip_load_nodes ? "optimize_mforce_nodes " : "") + wishes.form.options;
}

// --- Comparison --------------------------------------------------------------------------------

// Rounding of computed numbers is free: such a difference is taken out of the expectation.
void forgive_rounding(SampleFile &expected, const std::vector<std::uint8_t> &written,
                      bool single_modes) {
  SampleFile actual = expected;
  actual.bytes = written;
  const bool single = expected.precision == Precision::kSingle;
  std::size_t next = 0;
  for (std::size_t block = 4; block <= 37; ++block) {
    // Sums lose what cancels; the numbers of a mode are far apart and none of them is a sum.
    const bool of_modes = block == 7;
    const double unit = single || single_modes ? 2e-7 : of_modes ? 1e-9 : 1e-11;
    const double noise = of_modes ? 0.0 : single_modes ? 1e-6 : 1e-13;
    const std::size_t first = next;
    double largest = 1.0;
    for (; next < expected.reals.size() && expected.reals[next] < expected.offset[block + 1];
         ++next)
      largest = std::max(largest, std::abs(expected.real_at(expected.reals[next])));
    for (std::size_t i = first; i < next; ++i) {
      const std::size_t at = expected.reals[i];
      if (at + 8 > written.size())
        return;
      const double value = expected.real_at(at);
      if (std::abs(actual.real_at(at) - value) <= unit * std::abs(value) + noise * largest)
        std::copy_n(written.begin() + static_cast<std::ptrdiff_t>(at), single ? 4 : 8,
                    expected.bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
  }
}

// The sign of a number that rounds to zero is free.
std::string without_signed_zeros(std::string text) {
  const std::string zero = "-0.000000";
  for (std::size_t at = 0; (at = text.find(zero, at)) != std::string::npos;)
    text.erase(at, 1);
  return text;
}

bool stands_for(const std::string &expected, const std::string &actual) {
  return expected.ends_with('*')
             ? actual.starts_with(std::string_view(expected).substr(0, expected.size() - 1))
             : without_signed_zeros(actual) == without_signed_zeros(expected);
}

void expect_messages(const std::vector<std::string> &actual,
                     const std::vector<std::string> &expected) {
  const auto [a, b] = std::ranges::mismatch(
      actual, expected, [](const auto &x, const auto &y) { return stands_for(y, x); });
  EXPECT_EQ(a == actual.end() ? "no more" : *a, b == expected.end() ? "no more" : *b);
}

class WriteMatrix : public WriteFixture, public testing::WithParamInterface<std::size_t> {
 protected:
  void SetUp() override {
    WriteFixture::SetUp();
    faces_ = {path("sketch.txt"),
              {4, 4, 0, 2, 3, 4, 6, 0, 4, 5, 4, 8, 1, 2, 0, 4, 8, 0, 6, 7},
              {8, 8, 1, 2, 3, 4, 5, 6, 7, 3, 9, 10, 11, 3, 11, 10, 9},
              {3, 0, 1, 2, 4, 9, 10, 11, 1}};
    std::ofstream(faces_.sketch_file) << "2 3 101 7 40 4 90 91 92 7";
  }

  QDL_Record *record_of(const Body &body, std::size_t source) {
    if (source == 0)
      return build_record(body.content, body.blocks);
    return open(build_file(source == 1 ? 60 : 828, body.blocks, body.content));
  }

  void expect_write(QDL_Record *record, Body &body, const Wishes &wishes) {
    const std::string options = text_of(wishes, faces_.sketch_file);
    SCOPED_TRACE("written with \"" + options + "\"");
    std::filesystem::remove(path("written.qdl"));
    clear_messages();
    const std::int32_t result = write(record, options);
    std::vector<double> found;
    if (const std::int32_t modes = QDL_ModeCount(record); modes > 0) {
      found.resize(static_cast<std::size_t>(modes) * static_cast<std::size_t>(modes));
      if (QDL_Transformation(record, found.data()) == 0)
        found.clear();
    }
    const Outcome outcome = write_by_the_rules(body, wishes, faces_, found);
    expect_messages(errors, outcome.errors);
    expect_messages(warnings, outcome.warnings);
    expect_messages(infos, outcome.infos);
    EXPECT_EQ(result, outcome.written ? 1 : 0);
    ASSERT_EQ(exists("written.qdl"), outcome.written);
    if (!outcome.written)
      return;
    const auto written = read_file(path("written.qdl"));
    SampleFile expected = build_file(outcome.code, outcome.blocks, outcome.content);
    if (outcome.computed || computed_)
      forgive_rounding(expected, written, body.single);
    computed_ = computed_ || outcome.computed;
    EXPECT_EQ(difference(written, expected), "");
    expect_readable(expected, outcome);
  }

  // The reader takes the file without a word. The oldest versions hold more than it looks for.
  void expect_readable(const SampleFile &file, const Outcome &outcome) {
    clear_messages();
    QDL_Record *copy = QDL_CreateFromQDL(path("written.qdl").c_str());
    ASSERT_NE(copy, nullptr);
    expect_no_messages();
    for (int id = 4; id <= ((file.version_code & 0xff) < 40 ? 18 : 37); ++id)
      EXPECT_EQ(QDL_Exists(copy, id - 1), outcome.blocks.contains(id) ? 1 : 0) << "block " << id;
    if (outcome.blocks.contains(8)) {
      EXPECT_EQ(QDL_ModeCount(copy), static_cast<std::int32_t>(outcome.content.mode_count));
    }
    QDL_UnLink(copy);
  }

  EditedFaces faces_;
  bool computed_ = false;
};

TEST_P(WriteMatrix, FollowsTheRules) {
  const Kind &kind = every_kind()[GetParam()];
  std::vector<Choice> choices = choose_combinations(static_cast<unsigned>(GetParam()) + 1);
  // What computes most, with every band.
  for (std::size_t band = 0; band < kBands.size(); ++band)
    choices.push_back({0, 0, 1, band, 0, 1});
  for (std::size_t i = 0; i < choices.size(); ++i) {
    QDL_Terminate();
    Body body = body_of(kind);
    SCOPED_TRACE(testing::Message() << "source " << choices[i][kSource]);
    computed_ = false;
    body.single = choices[i][kSource] == 2;
    QDL_Record *record = record_of(body, choices[i][kSource]);
    ASSERT_NE(record, nullptr);
    Wishes wishes = wishes_of(choices[i]);
    if (body.content.nodes.empty())
      wishes.edit = Edit::kNone;
    expect_write(record, body, wishes);
    if (i % 4 == 0) {
      SCOPED_TRACE("again, after " + text_of(wishes, faces_.sketch_file));
      wishes = wishes_of(choices[(i + 1) % choices.size()]);
      wishes.edit = Edit::kNone;
      expect_write(record, body, wishes);
    }
    if (HasFailure())
      return;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, WriteMatrix, testing::Range(std::size_t{0}, every_kind().size()),
                         [](const auto &info) { return every_kind()[info.param].name; });

}  // namespace
