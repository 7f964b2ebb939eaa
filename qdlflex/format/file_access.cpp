#include <cstring>

#include <qdlflex/qdlflex.h>

#include "support/allocate.h"
#include "support/boundary.h"
#include "support/file.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdlread";
constexpr char32_t kReplacement = 0xFFFD;

bool is_control(char c) {
  return (c >= 0x01 && c <= 0x1F) || c == 0x7F;
}

/// Reads one UTF-8 sequence and moves past it; a malformed one gives the replacement character and
/// moves past its first byte.
char32_t next_code_point(const unsigned char *&text) {
  const unsigned char lead = *text++;
  if (lead < 0x80)
    return lead;
  const int length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4)
    return kReplacement;
  char32_t code = lead & (0x3Fu >> length);
  for (int i = 0; i < length; ++i) {
    if ((text[i] & 0xC0) != 0x80)
      return kReplacement;
    code = (code << 6) | (text[i] & 0x3Fu);
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kSmallest[length] || code > 0x10FFFF || surrogate)
    return kReplacement;
  text += length;
  return code;
}

std::int64_t base_position(std::FILE *stream, std::int32_t whence) {
  if (whence == 0)
    return 0;
  if (whence == 2 && ::fseeko(stream, 0, SEEK_END) != 0)
    return -1;
  return ::ftello(stream);
}

}  // namespace

FILE *File_Open(const char *name, const char *mode) {
  return guarded(kArea, static_cast<FILE *>(nullptr), [&] { return open_stream(name, mode); });
}

int32_t is_utf8_included(const char *text) {
  if (text == nullptr)
    return 0;
  for (; *text != '\0'; ++text) {
    if (static_cast<unsigned char>(*text) >= 0x80)
      return 1;
  }
  return 0;
}

uint16_t *get_unicode_from_utf8(const char *text) {
  if (text == nullptr)
    return nullptr;
  return guarded(kArea, static_cast<uint16_t *>(nullptr), [&] {
    // A sequence never gives more units than it has bytes.
    auto units = caller_array<uint16_t>(std::strlen(text) + 1);
    std::size_t count = 0;
    const auto *rest = reinterpret_cast<const unsigned char *>(text);
    while (*rest != 0) {
      const char32_t code = next_code_point(rest);
      if (code < 0x10000) {
        units[count++] = static_cast<uint16_t>(code);
      } else {
        units[count++] = static_cast<uint16_t>(0xD800 + ((code - 0x10000) >> 10));
        units[count++] = static_cast<uint16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
      }
    }
    units[count] = 0;
    return units.release();
  });
}

int32_t FileSeek_Win32(FILE *stream, int64_t offset, int32_t whence) {
  if (stream == nullptr)
    return -1;
  if (whence < 0 || whence > 2)
    return 1;
  const std::int64_t base = base_position(stream, whence);
  std::int64_t position = 0;
  if (base < 0 || __builtin_add_overflow(base, offset, &position) || position < 0)
    return -1;
  return ::fseeko(stream, position, SEEK_SET);
}

int64_t FileTell_Win32(FILE *stream) {
  return stream == nullptr ? -1 : ::ftello(stream);
}

// Both conversions may be asked to work in place, where source and destination hold different
// types: the values are moved as bytes.

double *float2double(double *destination, const float *source, int32_t count) {
  for (int32_t i = count - 1; i >= 0; --i) {
    float narrow = 0.0f;
    std::memcpy(&narrow, source + i, sizeof narrow);
    const double wide = narrow;
    std::memcpy(destination + i, &wide, sizeof wide);
  }
  return destination;
}

float *double2float(float *destination, const double *source, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    double wide = 0.0;
    std::memcpy(&wide, source + i, sizeof wide);
    const auto narrow = static_cast<float>(wide);
    std::memcpy(destination + i, &narrow, sizeof narrow);
  }
  return destination;
}

char *terminate_string(char *buffer, int32_t n) {
  if (buffer == nullptr || n < 1)
    return buffer;
  buffer[n - 1] = '\0';
  for (int32_t i = n - 2; i >= 0 && buffer[i] == ' '; --i)
    buffer[i] = '\0';
  char *kept = buffer;
  for (const char *c = buffer; *c != '\0'; ++c) {
    if (!is_control(*c))
      *kept++ = *c;
  }
  *kept = '\0';
  return buffer;
}

int32_t CheckQDL(QDL_Record *model) {
  if (model != nullptr)
    return 1;
  report_null_handle();
  return 0;
}
