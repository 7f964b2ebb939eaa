// What the fuzz targets share: a violated property ends the process, files live in a folder in
// memory, and no execution leaves anything behind.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qdlfuzz {

// Prints the text and aborts, which the fuzzer takes for a find.
[[noreturn]] void violated(std::string_view what);

inline void require(bool holds, std::string_view what) {
  if (!holds)
    violated(what);
}

struct Messages {
  int errors = 0, warnings = 0, infos = 0;
  bool tell_of_dropped_corners = false;  // coarsening drops co-linear ones
};

// One execution. At its end every model is destroyed; then no temporary file and no descriptor may
// be left.
class Execution {
 public:
  Execution();
  ~Execution();
  Execution(const Execution &) = delete;
  Execution &operator=(const Execution &) = delete;
};

// The messages of this execution so far.
const Messages &messages();

// The full name of a file in the folder of this process.
std::string path_of(const char *name);

// Writes the bytes to a file of the folder and returns its full name.
std::string write_file(const char *name, const void *bytes, std::size_t size);

// The bytes of a file; empty when it isn't there.
std::string read_file(const std::string &path);

bool exists(const std::string &path);

// Sets ZEB_QDLWRITE_OPTIONS, cut to what its place holds and at the first NUL. The environment's
// own functions would take memory in every execution.
void set_write_options(std::string_view options);

// Takes values from the front of an input; zeros once it is used up.
class Bytes {
 public:
  Bytes(const std::uint8_t *data, std::size_t size) : data_(data), left_(size) {}

  bool empty() const { return left_ == 0; }
  std::uint8_t byte();
  std::int32_t small(std::int32_t least, std::int32_t most);  // from one byte
  std::int32_t i32();  // mostly small, now and then any: one or five bytes
  double real();       // mostly a small integer or fraction, now and then any bits
  std::string_view text(std::size_t most);  // a length byte and the text
  std::string_view rest();

 private:
  const std::uint8_t *data_;
  std::size_t left_;
};

}  // namespace qdlfuzz
