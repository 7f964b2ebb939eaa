// The builder of test files against bytes spelled out here, the sizes of the layout, and the XDR
// routines of the system.

#include <gtest/gtest.h>
#include <rpc/rpc.h>

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "support/qdl_bytes.h"

namespace {

using namespace qdltest;
using Bytes = std::vector<std::uint8_t>;

TEST(QdlBytes, EncodesNativeDouble) {
  QdlBytes out(Encoding::kNative, Precision::kDouble);
  out.put_i32(-2);
  out.put_real(-1.5);
  out.put_chars("a\xc3", 3);
  out.put_byte(6);
  EXPECT_EQ(out.bytes(),
            (Bytes{0xfe, 0xff, 0xff, 0xff, 0, 0, 0, 0, 0, 0, 0xf8, 0xbf, 'a', 0xc3, 0, 6}));
}

TEST(QdlBytes, EncodesNativeSingle) {
  QdlBytes out(Encoding::kNative, Precision::kSingle);
  out.put_real(-1.5);
  EXPECT_EQ(out.bytes(), (Bytes{0, 0, 0xc0, 0xbf}));
}

TEST(QdlBytes, EncodesLikeTheXdrRoutines) {
  std::array<char, 64> buffer{};
  XDR stream{};
  xdrmem_create(&stream, buffer.data(), buffer.size(), XDR_ENCODE);
  int integer = -0x123456;
  double wide = 1.0 / 3.0;
  float narrow = 1.0F / 3.0F;
  // Where char has no sign the system's routine leaves it out; files have it everywhere.
  constexpr char kUpper = std::is_signed_v<char> ? '\xc3' : 'C';
  std::array<char, 3> text = {'a', kUpper, '\0'};
  char byte = 5;
  ASSERT_TRUE(xdr_int(&stream, &integer));
  ASSERT_TRUE(xdr_double(&stream, &wide));
  ASSERT_TRUE(xdr_float(&stream, &narrow));
  ASSERT_TRUE(
      xdr_vector(&stream, text.data(), text.size(), 1, reinterpret_cast<xdrproc_t>(xdr_char)));
  ASSERT_TRUE(xdr_char(&stream, &byte));
  const Bytes expected(buffer.begin(), buffer.begin() + xdr_getpos(&stream));
  xdr_destroy(&stream);

  QdlBytes out(Encoding::kXdr, Precision::kDouble);
  out.put_i32(integer);
  out.put_real(wide);
  QdlBytes single(Encoding::kXdr, Precision::kSingle);
  single.put_real(narrow);
  single.put_chars({text.data(), 2}, 3);
  single.put_byte(5);
  Bytes built = out.bytes();
  built.insert(built.end(), single.bytes().begin(), single.bytes().end());
  EXPECT_EQ(built, expected);
}

struct SizeCase {
  int id;
  std::size_t native_double, native_single, xdr_double, xdr_single;
};

// From the size table of the layout with the sample's counts put in.
const std::vector<SizeCase> kSizes = {
    {1, 4, 4, 4, 4},
    {2, 544, 544, 2176, 2176},
    {3, 100, 100, 400, 400},
    {4, 8 + 4 * 28, 8 + 4 * 16, 8 + 4 * 28, 8 + 4 * 16},
    {5, 8 + (12 + 24) + (12 + 40), 96, 96, 96},
    {6, 104, 52, 104, 52},
    {7, 4 + 2 * 44, 4 + 2 * 24, 4 + 2 * 44, 4 + 2 * 24},
    {8, 24 + 2 * (4 + 192), 24 + 2 * (4 + 96), 24 + 2 * (4 + 192), 24 + 2 * (4 + 96)},
    {9, 8 + 4 * 12, 8 + 4 * 8, 8 + 4 * 12, 8 + 4 * 8},
    {10, 4 + 7 * 14, 4 + 7 * 10, 4 + 7 * 20, 4 + 7 * 16},
    {11, 64, 64, 256, 256},
    {12, 8 + 2 * 20, 8 + 2 * 16, 8 + 2 * 20, 8 + 2 * 16},
    {13, 8 + 20, 8 + 16, 8 + 20, 8 + 16},
    {14, 4 + 13 * 4, 56, 56, 56},
    {15, 8 + 3 * 20, 8 + 3 * 16, 8 + 3 * 20, 8 + 3 * 16},
    {16, 4 + 2 * 20, 4 + 2 * 12, 4 + 2 * 20, 4 + 2 * 12},
    {17, 12, 12, 12, 12},
    {18, 20 + 2 * (4 + 144), 20 + 2 * (4 + 72), 20 + 2 * (4 + 144), 20 + 2 * (4 + 72)},
    {19, 8, 4, 8, 4},
    {20, 24, 12, 24, 12},
    {21, 4 + 48, 4 + 24, 4 + 48, 4 + 24},
    {22, 4 + 48, 4 + 24, 4 + 48, 4 + 24},
    {23, 4 + 96, 4 + 48, 4 + 96, 4 + 48},
    {24, 72, 36, 72, 36},
    {25, 4 + 144, 4 + 72, 4 + 144, 4 + 72},
    {26, 4 + 288, 4 + 144, 4 + 288, 4 + 144},
    {27, 8 + 16, 8 + 8, 8 + 16, 8 + 8},
    {28, 8 + 3 * (16 + 260), 8 + 3 * (8 + 260), 8 + 3 * (16 + 1028), 8 + 3 * (8 + 1028)},
    {29, 16 + 2 * (4 + 96), 16 + 2 * (4 + 48), 16 + 2 * (4 + 96), 16 + 2 * (4 + 48)},
    {30, 4 + 26 * 12, 4 + 26 * 8, 4 + 26 * 12, 4 + 26 * 8},
    {31, 4 + 18 * 8, 4 + 18 * 4, 4 + 18 * 8, 4 + 18 * 4},
    {32, 4 + 12 * 8, 4 + 12 * 4, 4 + 12 * 8, 4 + 12 * 4},
    {33, 4 + 2 * 88 + 16 * 8, 4 + 2 * 88 + 16 * 4, 4 + 2 * 280 + 16 * 8, 4 + 2 * 280 + 16 * 4},
    {34, 4 + (16 + 160 + 12 + 16 + 12 + 48) + (16 + 80), 4 + (16 + 160 + 24 + 32) + (16 + 80),
     4 + (40 + 640 + 72 + 64) + (40 + 320), 4 + (40 + 640 + 72 + 32) + (40 + 320)},
    {35, 4 + (4 + 32) + (4 + 16), 4 + (4 + 24) + (4 + 12), 4 + (4 + 32) + (4 + 16),
     4 + (4 + 24) + (4 + 12)},
    {36, 4 + 2 * 88 + 16 * 8, 4 + 2 * 88 + 16 * 4, 4 + 2 * 280 + 16 * 8, 4 + 2 * 280 + 16 * 4},
    {37, 4 + 48 + 3 * (4 + 32), 4 + 24 + 3 * (4 + 16), 4 + 48 + 3 * (4 + 32),
     4 + 24 + 3 * (4 + 16)},
};

TEST(QdlBytes, MakesBlocksOfTheSizesOfTheLayout) {
  std::set<int> blocks;
  for (int id = 4; id <= 37; ++id)
    blocks.insert(id);
  const std::array<std::int32_t, 4> codes = {60, 60 | kSingleBit, 60 | kXdrBit,
                                             60 | kXdrBit | kSingleBit};
  const std::array<std::size_t SizeCase::*, 4> columns = {
      &SizeCase::native_double, &SizeCase::native_single, &SizeCase::xdr_double,
      &SizeCase::xdr_single};
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const SampleFile file = build_file(codes[i], blocks);
    for (const SizeCase &size : kSizes) {
      SCOPED_TRACE(version_name(codes[i]) + ", block " + std::to_string(size.id));
      const auto slot = static_cast<std::size_t>(size.id);
      EXPECT_EQ(file.offset[slot + 1] - file.offset[slot], size.*columns[i]);
    }
  }
}

TEST(QdlBytes, LeavesModeNumbersOutOfVersionTen) {
  const SampleFile file = build_file(10, {8, 18});
  EXPECT_EQ(file.offset[9] - file.offset[8], 8U + 4 * 4 + 2 * 6 * 4 * 8);
  EXPECT_EQ(file.offset[19] - file.offset[18], 8U + 4 * 3 + 2 * 6 * 3 * 8);
}

TEST(QdlBytes, PutsVersionHeaderAndSummaryFirst) {
  const SampleFile native = build_file(60 | kSingleBit, {4, 10, 11, 13, 14, 37});
  EXPECT_EQ(Bytes(native.bytes.begin(), native.bytes.begin() + 6),
            (Bytes{0x3c, 0x02, 0, 0, 'S', 'a'}));
  std::set<std::size_t> present;
  for (std::size_t i = 0; i < 100; ++i)
    if (native.bytes[548 + i] != 0)
      present.insert(i);
  EXPECT_EQ(present, (std::set<std::size_t>{0, 6, 8, 10, 12, 35}));

  const SampleFile xdr = build_file(60 | kXdrBit, {4});
  EXPECT_EQ(Bytes(xdr.bytes.begin(), xdr.bytes.begin() + 8),
            (Bytes{0, 0, 0x01, 0x3c, 0, 0, 0, 'S'}));
  EXPECT_EQ(Bytes(xdr.bytes.begin() + 2180, xdr.bytes.begin() + 2188),
            (Bytes{0, 0, 0, 1, 0, 0, 0, 0}));
}

TEST(QdlBytes, PatchesCountsInTheEncodingOfTheFile) {
  for (const std::int32_t code : {60, 60 | kXdrBit}) {
    SampleFile file = build_file(code, {7});
    EXPECT_EQ(file.i32_at(file.count_offset("7.M")), 2);
    file.patch_count("7.M", -7);
    EXPECT_EQ(file.i32_at(file.count_offset("7.M")), -7);
    EXPECT_EQ(file.count_offset("7.M"), file.offset[7]);
  }
}

}  // namespace
