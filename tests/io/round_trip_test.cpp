// Files of every version read, written in every form, and read and written again.

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "io/write_fixture.h"
#include "support/expect_record.h"

namespace {

using namespace qdltest;

bool is_oldest(std::int32_t code) {
  return (code & 0xff) == 10 || (code & 0xff) == 20;
}

// What a reader makes of the oldest versions: mode numbers come from the eigenvalues alone, and of
// those, in the very oldest, only the eigenvalue itself counts.
SampleModel as_read(SampleModel model, std::int32_t code, const std::set<int> &blocks) {
  if (is_oldest(code) && !blocks.contains(7)) {
    for (ModeTable *table : {&model.mode_shapes, &model.stress, &model.strain})
      std::iota(table->numbers.begin(), table->numbers.end(), 1);
  }
  if ((code & 0xff) != 10)
    return model;
  for (Eigenvalue &mode : model.eigenvalues) {
    mode.circular_frequency = std::sqrt(mode.eigenvalue);
    mode.frequency = mode.circular_frequency / 6.28318530718;
    mode.mass = 1.0;
    mode.stiffness = mode.eigenvalue;
  }
  return model;
}

struct Source {
  std::string name;
  std::int32_t code;
  std::set<int> blocks;
};

class RoundTrip : public WriteFixture {
 protected:
  // The blocks that come out of those read, in one form.
  static std::set<int> blocks_of_copy(const Source &source, std::int32_t code, bool solved) {
    std::set<int> blocks = source.blocks;
    if (blocks.contains(5) || blocks.contains(14))
      blocks.insert({5, 14});
    if (blocks.contains(33))
      blocks.insert(36);
    blocks.insert(11);
    if (!solved)
      blocks.insert({12, 13});
    std::set<int> written;
    for (const int id : written_blocks(code, solved))
      if (blocks.contains(id) || (id == 30 && source.blocks.contains(8)))
        written.insert(id);
    return written;
  }

  void expect_round_trip(const Source &source, const WriteForm &form, bool solved) {
    const std::int32_t coarsened = source.code & kCoarsenedBit;
    const std::int32_t code = form.code | coarsened;
    const std::string options = form.options + (solved ? "" : " no_ortho");
    SampleModel model = body_with_modes({0, 1}, 1);
    // Statistics are the writer's own, whatever the file had.
    model.statistics.assign(2, {{9, 9, 9, 9, 9}, {1e6, 1e6, 1e6, 1e6, 1e6}});
    QDL_Record *record = open(build_file(source.code, source.blocks, model));
    expect_no_messages();
    ASSERT_NE(record, nullptr);

    model = as_read(model, source.code, source.blocks);
    model.statistics = statistics_of(model, source.blocks);
    const SampleFile first =
        build_file(code, blocks_of_copy(source, code, solved), in_version(model, code));
    expect_written(record, options, first);

    record = open(first);
    expect_no_messages();
    // The older versions tell nothing of coarsening, the oldest nothing beyond block 18.
    const std::int32_t second_code = (code & 0xff) < 60 ? form.code : code;
    Source second{"", second_code, first.blocks};
    if ((code & 0xff) < 40)
      std::erase_if(second.blocks, [](int id) { return id > 18; });
    SampleModel read = as_read(in_version(model, code), code, first.blocks);
    read.statistics = statistics_of(model, second.blocks);
    expect_written(record, options,
                   build_file(second_code, blocks_of_copy(second, code, solved), read),
                   "second.qdl");
  }
};

std::vector<Source> sources(bool solved) {
  // Generalized matrices differ from other blocks in nothing but the layout.
  std::vector<std::int32_t> codes =
      solved ? every_version_code() : std::vector<std::int32_t>{10, 20, 41, 50, 60 | kXdrBit};
  codes.push_back(60 | kCoarsenedBit);
  const std::set<int> matrices = solved ? std::set<int>{12, 13} : std::set<int>{};
  std::vector<Source> all;
  for (const std::int32_t code : codes)
    all.push_back({version_name(code), code, without(usual_blocks(code), matrices)});
  for (const std::int32_t code : {60, 60 | kXdrBit | kSingleBit}) {
    Source earlier{"earlier ids " + version_name(code), code,
                   without(without(usual_blocks(code), {14, 36}), matrices)};
    earlier.blocks.insert({5, 33});
    all.push_back(earlier);
  }
  return all;
}

TEST_F(RoundTrip, EveryVersionInEveryForm) {
  for (const bool solved : {true, false}) {
    for (const Source &source : sources(solved)) {
      for (const WriteForm &form : every_write_form()) {
        SCOPED_TRACE(source.name + " written with \"" + form.options + "\"");
        expect_round_trip(source, form, solved);
      }
    }
  }
}

}  // namespace
