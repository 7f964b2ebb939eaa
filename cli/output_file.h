#pragma once

#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace qdlflex::cli {

/// A file being written, removed again unless it is finished. Every function throws a Failure that
/// names the file when the system refuses.
class OutputFile {
 public:
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;

  void write(std::string_view bytes);

  template <class Value>
  void write_values(std::span<const Value> values) {
    write({reinterpret_cast<const char *>(values.data()), values.size_bytes()});
  }

  /// Replaces bytes written before.
  void overwrite(long offset, std::string_view bytes);

  void finish();

 private:
  struct Close {
    void operator()(std::FILE *file) const { std::fclose(file); }
  };

  [[noreturn]] void fail() const;

  std::string path_;
  std::unique_ptr<std::FILE, Close> file_;
};

}  // namespace qdlflex::cli
