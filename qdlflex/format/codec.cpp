#include "format/codec.h"

#include "support/vector_clones.h"

namespace qdlflex {
namespace {

// Swapping the bytes of a word takes one instruction for four words where the processor has wide
// registers, and a dozen where it hasn't: these loops are built for both. The results are the same.

QDLFLEX_VECTOR_CLONES void decode_swapped_doubles(double *values, const unsigned char *bytes,
                                                  std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = std::bit_cast<double>(load_word<std::uint64_t>(bytes + 8 * i, true));
  }
}

QDLFLEX_VECTOR_CLONES void decode_swapped_floats(double *values, const unsigned char *bytes,
                                                 std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = std::bit_cast<float>(load_word<std::uint32_t>(bytes + 4 * i, true));
  }
}

QDLFLEX_VECTOR_CLONES void encode_swapped_doubles(unsigned char *bytes, const double *values,
                                                  std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    store_word(bytes + 8 * i, std::bit_cast<std::uint64_t>(values[i]), true);
  }
}

QDLFLEX_VECTOR_CLONES void encode_swapped_floats(unsigned char *bytes, const double *values,
                                                 std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    store_word(bytes + 4 * i, std::bit_cast<std::uint32_t>(static_cast<float>(values[i])), true);
  }
}

QDLFLEX_VECTOR_CLONES void swap_doubles(double *values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = std::bit_cast<double>(swap_bytes(std::bit_cast<std::uint64_t>(values[i])));
  }
}

void decode_floats(double *values, const unsigned char *bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = std::bit_cast<float>(load_word<std::uint32_t>(bytes + 4 * i, false));
  }
}

void encode_floats(unsigned char *bytes, const double *values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    store_word(bytes + 4 * i, std::bit_cast<std::uint32_t>(static_cast<float>(values[i])), false);
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
  if (count == 0)
    return;
  if (encoding.double_precision && encoding.swapped()) {
    decode_swapped_doubles(values, bytes, count);
  } else if (encoding.double_precision) {
    std::memcpy(values, bytes, 8 * count);
  } else if (encoding.swapped()) {
    decode_swapped_floats(values, bytes, count);
  } else {
    decode_floats(values, bytes, count);
  }
}

unsigned char *packed_reals(double *values, std::size_t count, const Encoding &encoding) {
  const std::size_t bytes = count * static_cast<std::size_t>(encoding.real_bytes());
  return reinterpret_cast<unsigned char *>(values + count) - bytes;
}

void decode_packed_reals(double *values, std::size_t count, const Encoding &encoding) {
  if (!encoding.double_precision) {
    // No value is written over one that is still to come.
    const unsigned char *bytes = packed_reals(values, count, encoding);
    for (std::size_t i = 0; i < count; ++i) {
      const auto word = load_word<std::uint32_t>(bytes + 4 * i, encoding.swapped());
      const double value = std::bit_cast<float>(word);
      std::memcpy(values + i, &value, sizeof value);
    }
  } else if (encoding.swapped()) {
    swap_doubles(values, count);
  }
}

void encode_reals(unsigned char *bytes, const double *values, std::size_t count,
                  const Encoding &encoding) {
  if (count == 0)
    return;
  if (encoding.double_precision && encoding.swapped()) {
    encode_swapped_doubles(bytes, values, count);
  } else if (encoding.double_precision) {
    std::memcpy(bytes, values, 8 * count);
  } else if (encoding.swapped()) {
    encode_swapped_floats(bytes, values, count);
  } else {
    encode_floats(bytes, values, count);
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
