#pragma once

#include <algorithm>
#include <cstring>
#include <string>

namespace qdlflex {

// Texts that callers fetch into buffers of a fixed size.

/// At most `longest` characters of a text; null counts as empty.
inline std::string bounded_text(const char *text, std::size_t longest) {
  return text == nullptr ? std::string() : std::string(text, ::strnlen(text, longest));
}

/// Copies at most `longest` characters and a terminator into a caller's buffer, if there is one.
inline void copy_text(const std::string &text, char *buffer, std::size_t longest) {
  if (buffer == nullptr)
    return;
  const std::size_t length = std::min(text.size(), longest);
  std::copy_n(text.data(), length, buffer);
  buffer[length] = '\0';
}

}  // namespace qdlflex
