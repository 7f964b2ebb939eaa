#include "format/sink.h"

#include <algorithm>
#include <string>
#include <vector>

namespace qdlflex {
namespace {

/// Encoded they are a large piece for the file in either precision.
constexpr std::size_t kValuesPerBlock = 1 << 15;

}  // namespace

Sink::Sink(File &file, const Encoding &encoding)
    : file_(file), encoding_(encoding), streaming_(encoding.xdr) {
  if (streaming_)
    xdrstdio_create(&xdr_, file_.stream(), XDR_ENCODE);
}

void Sink::finish() {
  if (streaming_)
    xdr_destroy(&xdr_);
  streaming_ = false;
}

bool Sink::i32(std::int32_t value) {
  if (encoding_.xdr)
    return !file_fault(FileOperation::kWrite) && xdr_int(&xdr_, &value) != 0;
  unsigned char bytes[4];
  encode_i32s(bytes, &value, 1, encoding_);
  return file_.write(bytes, sizeof bytes);
}

bool Sink::i32s(const std::int32_t *values, std::size_t count) {
  while (count > 0) {
    const std::size_t now = std::min(count, kValuesPerBlock);
    block_.resize(std::max(block_.size(), now * 4));
    encode_i32s(block_.data(), values, now, encoding_);
    if (!file_.write(block_.data(), now * 4))
      return false;
    values += now;
    count -= now;
  }
  return true;
}

bool Sink::reals(const double *values, std::size_t count) {
  const auto width = static_cast<std::size_t>(encoding_.real_bytes());
  if (encoding_.double_precision && !encoding_.swapped())
    return file_.write(values, count * width);
  while (count > 0) {
    const std::size_t now = std::min(count, kValuesPerBlock);
    block_.resize(std::max(block_.size(), now * width));
    encode_reals(block_.data(), values, now, encoding_);
    if (!file_.write(block_.data(), now * width))
      return false;
    values += now;
    count -= now;
  }
  return true;
}

bool Sink::characters(std::string_view text, std::size_t width) {
  std::string field(text.substr(0, width));
  field.resize(width, '\0');
  if (!encoding_.xdr)
    return file_.write(field.data(), width);
  // The file's characters are widened with their sign; xdr_char() widens as the host's char is.
  std::vector<std::int32_t> words(width);
  std::transform(field.begin(), field.end(), words.begin(),
                 [](char character) { return static_cast<signed char>(character); });
  return i32s(words.data(), width);
}

bool Sink::byte(char value) {
  return characters(std::string_view(&value, 1), 1);
}

}  // namespace qdlflex
