// The encodings against libtirpc's own routines and against bytes spelled out.

#include <gtest/gtest.h>
#include <rpc/xdr.h>

#include <qdlflex/qdlflex.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "format/codec.h"
#include "format/sink.h"
#include "format/source.h"
#include "support/fixture.h"

namespace qdltest {
namespace {

using qdlflex::File;
using qdlflex::Sink;
using qdlflex::Source;

std::vector<double> awkward_reals() {
  std::vector<double> values = {
      0.0, -0.0, 1.0, -2.5, 1e-310, 1e300, std::nan("7"), std::numeric_limits<double>::infinity()};
  std::mt19937_64 random(11);
  for (int i = 0; i < 20000; ++i)
    values.push_back(std::bit_cast<double>(random()));
  return values;
}

class Encodings : public MessageFixture {
 protected:
  template <class Write>
  std::vector<std::uint8_t> written(bool xdr, bool double_precision, Write write) {
    const auto file = File::open(path("out.bin"), File::Access::kWrite);
    Sink sink(*file, {xdr, double_precision});
    EXPECT_TRUE(write(sink));
    sink.finish();
    EXPECT_TRUE(file->close());
    return read_file(path("out.bin"));
  }

  template <class Write>
  std::vector<std::uint8_t> by_library(Write write) {
    std::FILE *file = std::fopen(path("peer.bin").c_str(), "wb");
    XDR xdr;
    xdrstdio_create(&xdr, file, XDR_ENCODE);
    write(&xdr);
    xdr_destroy(&xdr);
    std::fclose(file);
    return read_file(path("peer.bin"));
  }
};

TEST_F(Encodings, XdrIsWhatTheXdrLibraryWrites) {
  std::vector<double> reals = awkward_reals();
  std::vector<float> singles(reals.begin(), reals.end());
  std::vector<std::int32_t> integers = {0, -1, 7, INT32_MIN, INT32_MAX};
  std::string text = "name \xC3\xBC\n\x7F";
  text.resize(16, '\0');

  const auto doubles = written(true, true, [&](Sink &sink) {
    return sink.i32s(integers.data(), integers.size()) && sink.i32(-7) &&
           sink.characters(text, 16) && sink.byte(6) && sink.reals(reals.data(), reals.size());
  });
  EXPECT_EQ(doubles, by_library([&](XDR *xdr) {
              int number = -7;
              char byte = 6;
              xdr_vector(xdr, reinterpret_cast<char *>(integers.data()), 5, 4,
                         reinterpret_cast<xdrproc_t>(xdr_int));
              xdr_int(xdr, &number);
              // What xdr_char() does where a character has a sign; files have it everywhere.
              for (int extended : std::vector<signed char>(text.begin(), text.end()))
                xdr_int(xdr, &extended);
              xdr_char(xdr, &byte);
              xdr_vector(xdr, reinterpret_cast<char *>(reals.data()),
                         static_cast<u_int>(reals.size()), 8,
                         reinterpret_cast<xdrproc_t>(xdr_double));
            }));
  EXPECT_EQ(
      written(true, false, [&](Sink &sink) { return sink.reals(reals.data(), reals.size()); }),
      by_library([&](XDR *xdr) {
        xdr_vector(xdr, reinterpret_cast<char *>(singles.data()),
                   static_cast<u_int>(singles.size()), 4, reinterpret_cast<xdrproc_t>(xdr_float));
      }));
}

TEST_F(Encodings, NativeIsLittleEndianAndPacked) {
  const auto bytes = written(false, true, [](Sink &sink) {
    return sink.i32(0x01020304) && sink.byte(5) && sink.characters("ab", 4) && sink.real(1.0);
  });
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{4, 3, 2, 1, 5, 'a', 'b', 0, 0, 0, 0, 0, 0, 0, 0, 0xF0,
                                              0x3F}));
  const auto single = written(false, false, [](Sink &sink) { return sink.real(-2.0); });
  EXPECT_EQ(single, (std::vector<std::uint8_t>{0, 0, 0, 0xC0}));
}

TEST_F(Encodings, WhatIsWrittenReadsBackBitForBit) {
  const std::vector<double> reals = awkward_reals();
  for (const bool xdr : {false, true}) {
    written(xdr, true, [&](Sink &sink) {
      return sink.i32(-5) && sink.reals(reals.data(), reals.size()) && sink.characters("end", 8);
    });
    const auto file = File::open(path("out.bin"), File::Access::kRead);
    Source source(*file, {xdr, true});
    std::int32_t number = 0;
    std::vector<double> read(reals.size());
    char text[8];
    ASSERT_TRUE(source.i32(number) && source.reals(read.data(), read.size()));
    ASSERT_TRUE(source.characters(text, 8));
    EXPECT_EQ(number, -5);
    EXPECT_EQ(std::memcmp(read.data(), reals.data(), 8 * reals.size()), 0);
    EXPECT_STREQ(text, "end");
    EXPECT_FALSE(source.i32(number));
    EXPECT_FALSE(source.fits(1, 1));
    EXPECT_FALSE(source.fits(-1, 1));
  }
}

TEST_F(Encodings, RealsDecodeInPlaceAsTheyDoApart) {
  const std::vector<double> reals = awkward_reals();
  for (const qdlflex::Encoding &encoding :
       {qdlflex::Encoding{false, true}, {false, false}, {true, true}, {true, false}}) {
    std::vector<unsigned char> bytes(reals.size() *
                                     static_cast<std::size_t>(encoding.real_bytes()));
    qdlflex::encode_reals(bytes.data(), reals.data(), reals.size(), encoding);
    std::vector<double> apart(reals.size());
    qdlflex::decode_reals(apart.data(), bytes.data(), apart.size(), encoding);
    std::vector<double> in_place(reals.size());
    std::memcpy(qdlflex::packed_reals(in_place.data(), in_place.size(), encoding), bytes.data(),
                bytes.size());
    qdlflex::decode_packed_reals(in_place.data(), in_place.size(), encoding);
    EXPECT_EQ(std::memcmp(apart.data(), in_place.data(), 8 * apart.size()), 0);
  }
}

TEST(Precision, ConversionsWorkInPlace) {
  std::vector<double> buffer(1000);
  auto *floats = reinterpret_cast<float *>(buffer.data());
  for (int i = 0; i < 1000; ++i) {
    const float value = 0.1f * static_cast<float>(i);
    std::memcpy(floats + i, &value, 4);
  }
  EXPECT_EQ(float2double(buffer.data(), floats, 1000), buffer.data());
  for (int i = 0; i < 1000; ++i)
    ASSERT_EQ(buffer[static_cast<std::size_t>(i)], 0.1f * static_cast<float>(i));
  EXPECT_EQ(double2float(floats, buffer.data(), 1000), floats);
  for (int i = 0; i < 1000; ++i) {
    float value;
    std::memcpy(&value, floats + i, 4);
    ASSERT_EQ(value, 0.1f * static_cast<float>(i));
  }
  double untouched = 5.0;
  EXPECT_EQ(float2double(&untouched, floats, 0), &untouched);
  EXPECT_EQ(float2double(&untouched, floats, -3), &untouched);
  EXPECT_EQ(untouched, 5.0);
}

TEST(TextFields, AreCleaned) {
  struct Case {
    std::string field;
    std::string cleaned;
  };
  const std::string nul(1, '\0');
  for (const Case &each : std::vector<Case>{
           {"abcdefgh", "abcdefg"},
           {"abc     ", "abc"},
           {"        ", ""},
           {"a\tb\n\x01 c ", "ab c"},
           {"abc  " + nul + nul + nul, "abc  "},  // blanks before a NUL stay
           {"ab \t    ", "ab "},                  // the control character stops the blanks
           {"\x7F\x7Fx\x7Fyz" + nul + nul, "xyz"},
           {"\xC3\xA4\xC3\xB6   z", "\xC3\xA4\xC3\xB6"},
       }) {
    std::string buffer = each.field;
    ASSERT_EQ(terminate_string(buffer.data(), static_cast<int32_t>(buffer.size())), buffer.data());
    EXPECT_STREQ(buffer.c_str(), each.cleaned.c_str());
  }
  char kept = 'k';
  EXPECT_EQ(terminate_string(&kept, 0), &kept);
  EXPECT_EQ(kept, 'k');
  EXPECT_EQ(terminate_string(nullptr, 8), nullptr);
}

TEST(Utf8, BecomesUtf16) {
  struct Case {
    const char *text;
    std::u16string expected;
  };
  for (const Case &each : std::vector<Case>{
           {"", u""},
           {"plain", u"plain"},
           {"\xC3\xA9", u"\u00E9"},
           {"\xE2\x82\xAC", u"\u20AC"},
           {"\xF0\x9F\x98\x80", u"\U0001F600"},
           {"a\x80"
            "b",
            u"a\uFFFD"
            u"b"},
           {"\xE2\x82", u"\uFFFD\uFFFD"},
           {"\xC0\xAF", u"\uFFFD\uFFFD"},                     // overlong
           {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // surrogate
           {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}  // beyond the last code point
       }) {
    uint16_t *units = get_unicode_from_utf8(each.text);
    ASSERT_NE(units, nullptr);
    std::u16string text;
    for (const uint16_t *unit = units; *unit != 0; ++unit)
      text.push_back(*unit);
    EXPECT_EQ(text, each.expected);
    QDL_FreeMemory(units);
  }
  EXPECT_EQ(get_unicode_from_utf8(nullptr), nullptr);
  EXPECT_EQ(is_utf8_included("ascii \x7F"), 0);
  EXPECT_EQ(is_utf8_included("\xC3\xA9"), 1);
  EXPECT_EQ(is_utf8_included(""), 0);
  EXPECT_EQ(is_utf8_included(nullptr), 0);
}

TEST_F(Encodings, PositionsAreSetFromStartHereAndEnd) {
  write_file(path("ten.bin"), std::vector<std::uint8_t>(10, 'x'));
  std::FILE *file = File_Open(path("ten.bin").c_str(), "rb");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(FileSeek_Win32(file, 4, 0), 0);
  EXPECT_EQ(FileSeek_Win32(file, 3, 1), 0);
  EXPECT_EQ(FileTell_Win32(file), 7);
  EXPECT_EQ(FileSeek_Win32(file, -1, 2), 0);
  EXPECT_EQ(FileTell_Win32(file), 9);
  EXPECT_NE(FileSeek_Win32(file, -10, 1), 0);
  EXPECT_NE(FileSeek_Win32(file, INT64_MAX, 1), 0);
  EXPECT_EQ(FileSeek_Win32(file, 0, 3), 1);
  EXPECT_EQ(FileSeek_Win32(nullptr, 0, 0), -1);
  EXPECT_EQ(FileTell_Win32(nullptr), -1);
  std::fclose(file);
  EXPECT_EQ(File_Open(nullptr, "rb"), nullptr);
  EXPECT_EQ(File_Open(path("ten.bin").c_str(), nullptr), nullptr);
}

}  // namespace
}  // namespace qdltest
