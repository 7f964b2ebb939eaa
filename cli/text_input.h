#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qdlflex::cli {

/// What went wrong, in words for the user. The command prints it and ends with exit code 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string_view trim(std::string_view text);
std::string upper(std::string_view text);

/// The trimmed fields between the separators; a text without separator is one field.
std::vector<std::string_view> split(std::string_view text, char separator);

/// The words of a line, divided by blanks.
std::vector<std::string_view> words(std::string_view text);

/// Numbers as solvers write them, whatever the locale: blanks around, a sign, and "D" as well as
/// "E" before the exponent. Empty if the text is anything else, or not finite.
std::optional<double> parse_real(std::string_view text);
std::optional<int32_t> parse_integer(std::string_view text);

/// Reads a text file line by line and knows where it is.
class LineReader {
 public:
  struct Place {
    int64_t offset = 0;
    int64_t line = 0;
  };

  explicit LineReader(std::string path);

  /// The next line without its end ("\n" or "\r\n"), valid until the next call; empty at the end
  /// of the file.
  std::optional<std::string_view> next();

  /// Where the line read last begins, for `go_to`: the line read after that is this one again.
  Place place() const { return line_start_; }
  void go_to(const Place &place);

  const std::string &path() const { return path_; }

  /// Throws a Failure that names the file and the line read last.
  [[noreturn]] void fail(const std::string &text) const;

  /// The number in `text`, or a Failure that names it.
  double real(std::string_view text) const;
  int32_t integer(std::string_view text) const;

 private:
  struct Close {
    void operator()(std::FILE *file) const { std::fclose(file); }
  };

  bool refill();

  std::string path_;
  std::unique_ptr<std::FILE, Close> file_;
  std::vector<char> buffer_;
  size_t begin_ = 0;
  size_t end_ = 0;
  std::string line_;
  Place line_start_;
  Place place_;
};

}  // namespace qdlflex::cli
