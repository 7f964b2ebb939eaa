#pragma once

#include <cstdint>

namespace qdlflex {

// The version code is the first word of a file: the format version times ten in the low byte and,
// from version 6.0 on, flags above it.
constexpr std::uint32_t kXdrBit = 0x100;
constexpr std::uint32_t kSingleBit = 0x200;
constexpr std::uint32_t kCoarsenedBit = 0x400;
constexpr std::uint32_t kCurrentVersion = 60;

constexpr std::uint32_t version_number(std::uint32_t code) {
  return code & 0xFF;
}

/// Versions of old that exist in the native encoding only.
constexpr bool is_old_native(std::uint32_t number) {
  return number == 10 || number == 20 || number == 30 || number == 40 || number == 50;
}

/// Versions of old that exist in the XDR encoding only.
constexpr bool is_old_xdr(std::uint32_t number) {
  return number == 31 || number == 41 || number == 51;
}

/// For the old versions the bits above the low byte carry nothing and are cleared.
constexpr std::uint32_t kept_version_code(std::uint32_t code) {
  const std::uint32_t number = version_number(code);
  return is_old_native(number) || is_old_xdr(number) ? number : code;
}

constexpr bool uses_xdr(std::uint32_t code) {
  return is_old_xdr(code) || (code & kXdrBit) != 0;
}

constexpr bool is_single_precision(std::uint32_t code) {
  return code == 50 || code == 51 || (code & kSingleBit) != 0;
}

constexpr bool is_coarsened_code(std::uint32_t code) {
  return (code & kCoarsenedBit) != 0;
}

/// In files of version 1.0 no mode number stands before the values of a mode.
constexpr bool has_mode_numbers(std::uint32_t code) {
  return version_number(code) != 10;
}

/// Files of versions 1.0 to 3.1 end their content summary after byte 16.
constexpr bool has_short_summary(std::uint32_t code) {
  return code == 10 || code == 20 || code == 30 || code == 31;
}

}  // namespace qdlflex
