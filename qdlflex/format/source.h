#pragma once

#include <rpc/xdr.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "format/codec.h"
#include "support/file.h"

namespace qdlflex {

/// Reads the values of a file in its encoding, from the current position of the stream on. Every
/// function is false when the file ends early or a read fails. Single values of an XDR file go
/// through the XDR stream, which holds no data of its own; arrays are read in blocks.
class Source {
 public:
  Source(File &file, const Encoding &encoding);
  ~Source();
  Source(const Source &) = delete;
  Source &operator=(const Source &) = delete;

  const Encoding &encoding() const { return encoding_; }
  bool seek(std::int64_t position) { return file_.seek(position); }
  bool skip(std::int64_t bytes);
  std::int64_t tell() const { return file_.tell(); }

  /// Whether `count` records of `bytes` each can still be in the file. To be asked before anything
  /// is allocated for them. False for a negative count.
  bool fits(std::int64_t count, std::int64_t bytes) const;

  bool i32(std::int32_t &value);
  bool real(double &value);
  bool i32s(std::int32_t *values, std::size_t count);
  bool reals(double *values, std::size_t count);
  /// A character field, not terminated.
  bool characters(char *text, std::size_t count);

  /// Calls visit(bytes) for each of `count` records of `record_bytes` and stops when it returns
  /// false.
  template <class Visit>
  bool records(std::int64_t count, std::int64_t record_bytes, Visit visit) {
    const std::int64_t per_block = std::max<std::int64_t>(1, kBlockBytes / record_bytes);
    while (count > 0) {
      const std::int64_t now = std::min(count, per_block);
      const unsigned char *bytes = block(now * record_bytes);
      if (bytes == nullptr)
        return false;
      for (std::int64_t i = 0; i < now; ++i) {
        if (!visit(bytes + i * record_bytes))
          return false;
      }
      count -= now;
    }
    return true;
  }

 private:
  static constexpr std::int64_t kBlockBytes = 1 << 16;

  /// The next bytes of the file; null when there are not as many.
  const unsigned char *block(std::int64_t bytes);

  File &file_;
  Encoding encoding_;
  XDR xdr_{};
  std::vector<unsigned char> block_;
};

}  // namespace qdlflex
