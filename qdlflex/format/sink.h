#pragma once

#include <rpc/xdr.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "format/codec.h"
#include "support/file.h"

namespace qdlflex {

/// Writes values to a file in its encoding. Every function is false when the write fails; as the
/// stream is buffered, a full disk may show only in `flush`. Single integers and characters of an
/// XDR file go through the XDR stream, which holds no data of its own; arrays go out in blocks.
class Sink {
 public:
  Sink(File &file, const Encoding &encoding);
  ~Sink() { finish(); }
  Sink(const Sink &) = delete;
  Sink &operator=(const Sink &) = delete;

  const Encoding &encoding() const { return encoding_; }

  bool i32(std::int32_t value);
  bool real(double value) { return reals(&value, 1); }
  bool i32s(const std::int32_t *values, std::size_t count);
  bool reals(const double *values, std::size_t count);
  /// A character field: the text cut or filled with NULs to the width.
  bool characters(std::string_view text, std::size_t width);
  /// A field of one byte, such as a presence byte.
  bool byte(char value);
  bool flush() { return file_.flush(); }
  /// Ends the XDR stream, which has to happen before the file is closed. Nothing is written after.
  void finish();

 private:
  File &file_;
  Encoding encoding_;
  XDR xdr_{};
  bool streaming_ = false;
  std::vector<unsigned char> block_;
};

}  // namespace qdlflex
