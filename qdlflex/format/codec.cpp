#include "format/codec.h"

namespace qdlflex {
namespace {

/// The loops are separate for each width and order, so that each vectorises.
template <class Word, class Real>
void decode_as(double *values, const unsigned char *bytes, std::size_t count, bool swapped) {
  static_assert(sizeof(Word) == sizeof(Real));
  if (swapped) {
    for (std::size_t i = 0; i < count; ++i) {
      values[i] = std::bit_cast<Real>(load_word<Word>(bytes + i * sizeof(Word), true));
    }
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      values[i] = std::bit_cast<Real>(load_word<Word>(bytes + i * sizeof(Word), false));
    }
  }
}

template <class Word, class Real>
void encode_as(unsigned char *bytes, const double *values, std::size_t count, bool swapped) {
  static_assert(sizeof(Word) == sizeof(Real));
  if (swapped) {
    for (std::size_t i = 0; i < count; ++i) {
      const auto word = std::bit_cast<Word>(static_cast<Real>(values[i]));
      store_word(bytes + i * sizeof(Word), word, true);
    }
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      const auto word = std::bit_cast<Word>(static_cast<Real>(values[i]));
      store_word(bytes + i * sizeof(Word), word, false);
    }
  }
}

}  // namespace

std::int32_t decode_i32(const unsigned char *bytes, const Encoding &encoding) {
  return static_cast<std::int32_t>(load_word<std::uint32_t>(bytes, encoding.swapped()));
}

double decode_real(const unsigned char *bytes, const Encoding &encoding) {
  double value = 0.0;
  decode_reals(&value, bytes, 1, encoding);
  return value;
}

char decode_character(const unsigned char *bytes, const Encoding &encoding) {
  return static_cast<char>(encoding.xdr ? bytes[3] : bytes[0]);
}

void decode_reals(double *values, const unsigned char *bytes, std::size_t count,
                  const Encoding &encoding) {
  if (encoding.double_precision) {
    decode_as<std::uint64_t, double>(values, bytes, count, encoding.swapped());
  } else {
    decode_as<std::uint32_t, float>(values, bytes, count, encoding.swapped());
  }
}

void encode_reals(unsigned char *bytes, const double *values, std::size_t count,
                  const Encoding &encoding) {
  if (encoding.double_precision) {
    encode_as<std::uint64_t, double>(bytes, values, count, encoding.swapped());
  } else {
    encode_as<std::uint32_t, float>(bytes, values, count, encoding.swapped());
  }
}

void decode_i32s(std::int32_t *values, const unsigned char *bytes, std::size_t count,
                 const Encoding &encoding) {
  for (std::size_t i = 0; i < count; ++i)
    values[i] = decode_i32(bytes + 4 * i, encoding);
}

void encode_i32s(unsigned char *bytes, const std::int32_t *values, std::size_t count,
                 const Encoding &encoding) {
  const bool swapped = encoding.swapped();
  for (std::size_t i = 0; i < count; ++i) {
    store_word(bytes + 4 * i, static_cast<std::uint32_t>(values[i]), swapped);
  }
}

}  // namespace qdlflex
