#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qdlflex {

static_assert(std::endian::native == std::endian::little ||
              std::endian::native == std::endian::big);

/// How values stand in a file. Native is little-endian whatever the host; XDR is big-endian with
/// every character and byte widened to four bytes.
struct Encoding {
  bool xdr = false;
  bool double_precision = true;

  std::int32_t real_bytes() const { return double_precision ? 8 : 4; }
  std::int32_t character_bytes() const { return xdr ? 4 : 1; }
  std::endian order() const { return xdr ? std::endian::big : std::endian::little; }
  bool swapped() const { return order() != std::endian::native; }
};

template <class Word>
Word swap_bytes(Word word) {
  static_assert(sizeof(Word) == 4 || sizeof(Word) == 8);
  if constexpr (sizeof(Word) == 4) {
    return __builtin_bswap32(word);
  } else {
    return __builtin_bswap64(word);
  }
}

template <class Word>
Word load_word(const unsigned char *bytes, bool swapped) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return swapped ? swap_bytes(word) : word;
}

template <class Word>
void store_word(unsigned char *bytes, Word word, bool swapped) {
  if (swapped)
    word = swap_bytes(word);
  std::memcpy(bytes, &word, sizeof word);
}

/// Decoders of single values from raw bytes. A byte of a character is the low byte of its word.
std::int32_t decode_i32(const unsigned char *bytes, const Encoding &encoding);
double decode_real(const unsigned char *bytes, const Encoding &encoding);
char decode_character(const unsigned char *bytes, const Encoding &encoding);

/// Decoders and encoders of arrays: reals move as integers, so that every bit of a NaN survives.
/// Source and destination must not overlap.
void decode_reals(double *values, const unsigned char *bytes, std::size_t count,
                  const Encoding &encoding);

/// Decoding without a second buffer: the place of `count` reals at the end of an array of as many
/// doubles, and what turns the reals that were read there into those doubles.
unsigned char *packed_reals(double *values, std::size_t count, const Encoding &encoding);
void decode_packed_reals(double *values, std::size_t count, const Encoding &encoding);

void encode_reals(unsigned char *bytes, const double *values, std::size_t count,
                  const Encoding &encoding);
void decode_i32s(std::int32_t *values, const unsigned char *bytes, std::size_t count,
                 const Encoding &encoding);
void encode_i32s(unsigned char *bytes, const std::int32_t *values, std::size_t count,
                 const Encoding &encoding);

}  // namespace qdlflex
