#include "format/source.h"

namespace qdlflex {

Source::Source(File &file, const Encoding &encoding) : file_(file), encoding_(encoding) {
  if (encoding_.xdr)
    xdrstdio_create(&xdr_, file_.stream(), XDR_DECODE);
}

Source::~Source() {
  if (encoding_.xdr)
    xdr_destroy(&xdr_);
}

bool Source::skip(std::int64_t bytes) {
  // Seeking drops what the stream has buffered, so short gaps are read over.
  constexpr std::int64_t kShort = 4096;
  const std::int64_t position = tell();
  if (bytes < 0)
    return false;
  if (bytes <= kShort && block(bytes) != nullptr)
    return true;
  return position >= 0 && bytes <= INT64_MAX - position && seek(position + bytes);
}

bool Source::fits(std::int64_t count, std::int64_t bytes) const {
  const std::int64_t left = file_.size() - tell();
  if (count < 0 || left < 0)
    return false;
  return bytes <= 0 ? true : count <= left / bytes;
}

bool Source::i32(std::int32_t &value) {
  if (encoding_.xdr)
    return !file_fault(FileOperation::kRead) && xdr_int(&xdr_, &value) != 0;
  unsigned char bytes[4];
  if (!file_.read(bytes, sizeof bytes))
    return false;
  value = decode_i32(bytes, encoding_);
  return true;
}

bool Source::real(double &value) {
  return reals(&value, 1);
}

bool Source::i32s(std::int32_t *values, std::size_t count) {
  return records(static_cast<std::int64_t>(count), 4, [&](const unsigned char *bytes) {
    *values++ = decode_i32(bytes, encoding_);
    return true;
  });
}

bool Source::reals(double *values, std::size_t count) {
  const auto width = static_cast<std::size_t>(encoding_.real_bytes());
  if (encoding_.double_precision && !encoding_.swapped())
    return file_.read(values, count * width);
  constexpr std::size_t kPerBlock = static_cast<std::size_t>(kBlockBytes) / 8;
  while (count > 0) {
    const std::size_t now = std::min(count, kPerBlock);
    const unsigned char *bytes = block(static_cast<std::int64_t>(now * width));
    if (bytes == nullptr)
      return false;
    decode_reals(values, bytes, now, encoding_);
    values += now;
    count -= now;
  }
  return true;
}

bool Source::characters(char *text, std::size_t count) {
  if (!encoding_.xdr)
    return file_.read(text, count);
  return !file_fault(FileOperation::kRead) &&
         xdr_vector(&xdr_, text, static_cast<u_int>(count), 1,
                    reinterpret_cast<xdrproc_t>(xdr_char)) != 0;
}

const unsigned char *Source::block(std::int64_t bytes) {
  // Never empty, so that no bytes at all have an address too.
  block_.resize(std::max({block_.size(), static_cast<std::size_t>(bytes), std::size_t{1}}));
  return file_.read(block_.data(), static_cast<std::size_t>(bytes)) ? block_.data() : nullptr;
}

}  // namespace qdlflex
