// Files made to harm, memory that runs out and disks that fail: opening gives one clear error or a
// usable model, keeps its memory in proportion to the file, and leaves nothing behind.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "support/exercise.h"
#include "support/expect_record.h"
#include "support/fault.h"
#include "support/read_fixture.h"

namespace {

using namespace qdltest;

// The newer and the older ids of faces and monitor points side by side.
SampleFile file_with_every_block(std::int32_t code) {
  std::set<int> blocks = usual_blocks(code);
  blocks.insert({5, 14});
  if (blocks.contains(36))
    blocks.insert(33);
  return build_file(code, blocks);
}

constexpr std::array<std::uint8_t, 4> kExtremes = {0x00, 0x7f, 0x80, 0xff};

class Hostile : public ReadFixture {
 protected:
  // Opens and uses a damaged file.
  void expect_error_or_usable(const std::string &name, std::size_t file_bytes) {
    clear_messages();
    const PeakMemory peak;
    QDL_Record *record = QDL_CreateFromQDL(name.c_str());
    EXPECT_LE(peak.bytes(), kConstantBytes + kBytesPerFileByte * file_bytes);
    if (record == nullptr) {
      // A wrong row and a wrong column of an inertia, or a wrong number of coordinates and what
      // follows from it, are reported one after the other.
      EXPECT_GE(errors.size(), 1U);
      EXPECT_LE(errors.size(), 2U);
    } else {
      EXPECT_LE(errors.size(), 1U);
      exercise(record);
      QDL_UnLink(record);
    }
  }

  static constexpr std::size_t kConstantBytes = 64 * 1024;
  static constexpr std::size_t kBytesPerFileByte = 16;
};

TEST_F(Hostile, BytesSetToExtremes) {
  for (const std::int32_t code : {10, 31, 60, 60 | kXdrBit | kSingleBit}) {
    SCOPED_TRACE(version_name(code));
    const SampleFile sample = file_with_every_block(code);
    const std::string name = file("damaged.qdl", sample.bytes);
    const std::string good = file("good.qdl", sample.bytes);
    std::fstream stream(name, std::ios::binary | std::ios::in | std::ios::out);
    const auto overwrite = [&](std::size_t at, std::uint8_t value) {
      stream.seekp(static_cast<std::streamoff>(at)).put(static_cast<char>(value)).flush();
      ASSERT_TRUE(stream);
    };
    for (const std::size_t at : telling_places(sample)) {
      for (const std::uint8_t value : kExtremes) {
        if (value == sample.bytes[at])
          continue;
        SCOPED_TRACE(testing::Message() << "byte " << at << " = " << int{value});
        overwrite(at, value);
        expect_error_or_usable(name, sample.bytes.size());
        if (HasFailure())
          return;
      }
      overwrite(at, sample.bytes[at]);
    }
    clear_messages();
    expect_record(QDL_CreateFromQDL(good.c_str()), sample_model(), sample);
    expect_no_messages();
    QDL_Terminate();
  }
}

TEST_F(Hostile, EveryCountSetToExtremes) {
  for (const std::int32_t code : every_version_code()) {
    SCOPED_TRACE(version_name(code));
    const SampleFile good = file_with_every_block(code);
    for (const CountField &count : good.counts) {
      const std::int32_t actual = good.i32_at(count.offset);
      for (const std::int32_t value : {-1, 0, INT_MIN, INT_MAX, 0x10000000, 0x20000000, 0x3fffffff,
                                       0x40000001, 65536, actual - 1, actual + 1, 2 * actual}) {
        SCOPED_TRACE(count.name + " = " + std::to_string(value));
        SampleFile bad = good;
        bad.patch_i32(count.offset, value);
        expect_error_or_usable(file("damaged.qdl", bad.bytes), bad.bytes.size());
        if (HasFailure())
          return;
      }
    }
    expect_record(open(good), sample_model(), good);
  }
}

// Two counts of one file at a time, where their product decides.
TEST_F(Hostile, ProductsOfCountsOverflow) {
  const std::vector<std::array<std::string, 2>> pairs = {
      {"4.N", "4.d"},   {"5.e", "5.k"},   {"8.M", "8.N"},   {"9.N", "9.k"},
      {"18.M", "18.N"}, {"28.M", "28.L"}, {"29.M", "29.N"}, {"36.a", "36.b"},
      {"33.a", "33.b"}, {"34.r", "34.c"}, {"7.M", "8.M"}};
  const std::vector<std::int32_t> values = {
      0, 1, 65536, 46341, 0x10000000, 0x20000000, 0x40000000, 0x7fffffff, -0x40000000, INT_MIN};
  for (const std::int32_t code : {60, 60 | kXdrBit | kSingleBit}) {
    for (const auto &[first, second] : pairs) {
      for (const std::int32_t a : values) {
        for (const std::int32_t b : values) {
          SCOPED_TRACE(testing::Message() << first << " = " << a << ", " << second << " = " << b);
          SampleFile bad = file_with_every_block(code);
          bad.patch_count(first, a);
          bad.patch_count(second, b);
          expect_error_or_usable(file("damaged.qdl", bad.bytes), bad.bytes.size());
          if (HasFailure())
            return;
        }
      }
    }
  }
}

// A file shortened while its model is open: mode data can no longer be fetched, the rest stays.
TEST_F(Hostile, FileShortenedWhileOpen) {
  const SampleFile sample = build_file(60);
  QDL_Record *record = open(sample);
  ASSERT_NE(record, nullptr);
  std::filesystem::resize_file(path("body.qdl"), sample.offset[8] + 100);
  exercise(record);
  EXPECT_GT(std::ranges::count(errors, "Problem reading modal strain vector 9"), 0);
}

// The texts of the blocks that have one of their own for memory that could not be had.
const std::set<std::string> kOutOfMemory = {
    "Out of memory while reading Nodal Coordinate block",
    "Out of memory while reading Eigenvalues block",
    "Out of memory while reading Mode Shape block",
    "Out of memory while reading Generalized Stiffness block",
    "Out of memory while reading Generalized Mass block",
    "Out of memory while reading Element Faces Block",
    "Out of memory while reading Element Topology Block",
    "Out of memory while reading Generalized Damping Block",
    "Out of memory while reading Mode Shape Transformation Block",
    "Out of memory while reading Interface Nodes block",
    "Out of memory while reading Modal Stress Block",
    "Out of memory while reading Modal Preload Block",
    "Out of memory while reading Modal Loads Block",
    "Out of memory while reading Modal Strain Block",
    "Out of memory while reading Modal Statistics Block",
    "Out of memory while processing Pre-Stress Block",
    "Out of memory while processing Pre-Strain Block",
    "Error allocating memory for inertia matrix for node 7\n",
};

bool is_allocation_error(const std::string &text) {
  return kOutOfMemory.contains(text) || text.starts_with("Failed to allocate memory at line ") ||
         text == "Error allocating memory for inertia matrix for node 23\n";
}

class ReadFaults : public Hostile {
 protected:
  // Opens each of the files with one use of the door after the other failing.
  void sweep_open(Door door) {
    for (const std::int32_t code : {10, 31, 60, 60 | kXdrBit | kSingleBit}) {
      SCOPED_TRACE(version_name(code));
      const SampleFile sample = build_file(code);
      const std::string name = file("body.qdl", sample.bytes);
      QDL_Terminate();
      const std::size_t descriptors = open_descriptors();
      const std::size_t faults = sweep(
          door, Persistence::kOnce, [&] { return QDL_CreateFromQDL(name.c_str()); },
          [&](QDL_Record *record, bool fired) {
            // A block that could not be measured hides those after it; nothing else is wrong then.
            if (record == nullptr)
              EXPECT_TRUE(fired);
            else if (fired && door == Door::kFile)
              expect_content(record, sample_model(), sample);
            else
              expect_record(record, sample_model(), sample);
            judge_messages(door, record != nullptr);
            QDL_Terminate();
            EXPECT_EQ(open_descriptors(), descriptors);
            clear_messages();
            expect_record(QDL_CreateFromQDL(name.c_str()), sample_model(), sample);
            expect_no_messages();
            QDL_Terminate();
          });
      EXPECT_GT(faults, 10U);
    }
  }

  void judge_messages(Door door, bool opened) {
    if (opened) {
      EXPECT_EQ(errors, std::vector<std::string>{});
    } else {
      // A file that cannot be opened is the caller's to report.
      EXPECT_LE(errors.size(), 1U) << testing::PrintToString(errors);
      if (door == Door::kMemory) {
        EXPECT_EQ(errors.size(), 1U);
      }
    }
    for (const std::string &text : errors) {
      if (door == Door::kMemory) {
        EXPECT_TRUE(is_allocation_error(text)) << text;
      }
      seen.insert(text);
    }
  }

  std::set<std::string> seen;
};

TEST_F(ReadFaults, AllocationsFail) {
  sweep_open(Door::kMemory);
  for (const std::string &text : kOutOfMemory)
    EXPECT_TRUE(seen.contains(text)) << text;
}

TEST_F(ReadFaults, FileOperationsFail) {
  sweep_open(Door::kFile);
}

}  // namespace
