#include "text_input.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>

namespace qdlflex::cli {

namespace {

constexpr size_t kBufferSize = 1 << 16;
// No line of a text file read here comes near; a binary file may have no line end at all.
constexpr size_t kLongestLine = 1 << 16;

constexpr std::string_view kBlanks = " \t\r\n\f\v";

}  // namespace

std::string_view trim(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string upper(std::string_view text) {
  std::string result(text);
  for (char &c : result) {
    if (c >= 'a' && c <= 'z') {
      c = static_cast<char>(c - 'a' + 'A');
    }
  }
  return result;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> fields;
  for (;;) {
    const size_t end = text.find(separator);
    fields.push_back(trim(text.substr(0, end)));
    if (end == std::string_view::npos) {
      return fields;
    }
    text.remove_prefix(end + 1);
  }
}

std::vector<std::string_view> words(std::string_view text) {
  std::vector<std::string_view> result;
  size_t end = 0;
  for (;;) {
    const size_t begin = text.find_first_not_of(kBlanks, end);
    if (begin == std::string_view::npos) {
      return result;
    }
    end = std::min(text.find_first_of(kBlanks, begin), text.size());
    result.push_back(text.substr(begin, end - begin));
  }
}

std::optional<double> parse_real(std::string_view text) {
  text = trim(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) {
      return {};
    }
  }
  std::string fortran;
  if (text.find_first_of("dD") != std::string_view::npos) {
    fortran = text;
    std::replace_if(
        fortran.begin(), fortran.end(), [](char c) { return c == 'd' || c == 'D'; }, 'E');
    text = fortran;
  }
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return {};
  }
  return value;
}

std::optional<int32_t> parse_integer(std::string_view text) {
  text = trim(text);
  int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    return {};
  }
  return value;
}

LineReader::LineReader(std::string path)
    : path_(std::move(path)), file_(std::fopen(path_.c_str(), "rb")), buffer_(kBufferSize) {
  if (!file_) {
    throw Failure(path_ + ": " + std::strerror(errno));
  }
}

bool LineReader::refill() {
  begin_ = 0;
  end_ = std::fread(buffer_.data(), 1, buffer_.size(), file_.get());
  if (end_ == 0 && std::ferror(file_.get())) {
    throw Failure(path_ + ": " + std::strerror(errno));
  }
  return end_ > 0;
}

std::optional<std::string_view> LineReader::next() {
  line_.clear();
  line_start_ = place_;
  bool any = false;
  while (begin_ < end_ || refill()) {
    any = true;
    const char *const start = buffer_.data() + begin_;
    const void *const found = std::memchr(start, '\n', end_ - begin_);
    const size_t length =
        found ? static_cast<size_t>(static_cast<const char *>(found) - start) : end_ - begin_;
    line_.append(start, length);
    begin_ += length + (found ? 1 : 0);
    place_.offset += static_cast<int64_t>(length + (found ? 1 : 0));
    if (found) {
      break;
    }
    if (line_.size() > kLongestLine) {
      ++place_.line;
      fail("this is not a text file: the line does not end");
    }
  }
  if (!any) {
    return {};
  }
  ++place_.line;
  if (line_.ends_with('\r')) {
    line_.pop_back();
  }
  return line_;
}

void LineReader::go_to(const Place &place) {
  if (fseeko(file_.get(), place.offset, SEEK_SET) != 0) {
    throw Failure(path_ + ": " + std::strerror(errno));
  }
  begin_ = end_ = 0;
  line_start_ = place_ = place;
}

void LineReader::fail(const std::string &text) const {
  throw Failure(path_ + ":" + std::to_string(place_.line) + ": " + text);
}

double LineReader::real(std::string_view text) const {
  if (const auto value = parse_real(text)) {
    return *value;
  }
  fail("\"" + std::string(trim(text)) + "\" is not a number");
}

int32_t LineReader::integer(std::string_view text) const {
  if (const auto value = parse_integer(text)) {
    return *value;
  }
  fail("\"" + std::string(trim(text)) + "\" is not an integer");
}

}  // namespace qdlflex::cli
