#include "support/harness.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>

namespace qdlfuzz {

namespace {

Messages counted;
std::array<char, 200> last_error;

std::int64_t count_error(const char *text) {
  require(text != nullptr, "an error without text");
  std::snprintf(last_error.data(), last_error.size(), "%s", text);
  return ++counted.errors;
}
std::int64_t count_warning(const char *text) {
  require(text != nullptr, "a warning without text");
  return ++counted.warnings;
}
std::int64_t count_info(const char *text) {
  require(text != nullptr, "an information without text");
  if (std::strstr(text, "co-linear vertex removal") != nullptr)
    counted.tell_of_dropped_corners = true;
  return ++counted.infos;
}

// The folder of this process with one for the library's temporary files in it.
class Folder {
 public:
  Folder() {
    const char *parent = std::getenv("TMPDIR");
    std::string name =
        std::string(parent != nullptr ? parent : "/dev/shm") + "/qdlflex-fuzz-XXXXXX";
    require(::mkdtemp(name.data()) != nullptr, "no folder for the files of the fuzz target");
    path_ = name;
    std::filesystem::create_directory(temporary());
    ::setenv("TMP", temporary().c_str(), 1);
    // Relative names in options and decks stay in here.
    require(::chdir(path_.c_str()) == 0, "the folder of the fuzz target can't be entered");
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  const std::string &path() const { return path_; }
  std::string temporary() const { return path_ + "/tmp"; }

 private:
  std::string path_;
};

const Folder &folder() {
  static const Folder instance;
  return instance;
}

std::size_t temporary_files() {
  static DIR *const directory = ::opendir(folder().temporary().c_str());
  require(directory != nullptr, "the folder of temporary files can't be read");
  ::rewinddir(directory);
  std::size_t count = 0;
  while (const dirent *entry = ::readdir(directory))
    count += entry->d_name[0] == '.' ? 0 : 1;
  return count;
}

int next_descriptor() {
  const int descriptor = ::dup(0);
  if (descriptor >= 0)
    ::close(descriptor);
  return descriptor;
}

constexpr std::size_t kLongestOptions = 1 << 16;
constexpr std::string_view kOptions = "ZEB_QDLWRITE_OPTIONS=";
std::array<char, kOptions.size() + kLongestOptions + 1> options_place;

}  // namespace

void violated(std::string_view what) {
  std::fprintf(stderr, "property violated: %.*s\n", static_cast<int>(what.size()), what.data());
  if (counted.errors > 0)
    std::fprintf(stderr, "last error: %s\n", last_error.data());
  std::abort();
}

const Messages &messages() {
  return counted;
}

namespace {
int descriptor_before;
}

Execution::Execution() {
  temporary_files();  // opens the folder before descriptors are counted
  counted = {};
  descriptor_before = next_descriptor();
}

Execution::~Execution() {
  QDL_Terminate();
  require(temporary_files() == 0, "a temporary file is left");
  require(next_descriptor() == descriptor_before, "a descriptor is left open");
}

std::string path_of(const char *name) {
  return folder().path() + '/' + name;
}

std::string write_file(const char *name, const void *bytes, std::size_t size) {
  std::string path = path_of(name);
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  require(file >= 0 && ::write(file, bytes, size) == static_cast<ssize_t>(size),
          "an input can't be written");
  ::close(file);
  return path;
}

std::string read_file(const std::string &path) {
  std::string bytes;
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0)
    return bytes;
  std::array<char, 1 << 14> buffer;
  for (ssize_t got = 0; (got = ::read(file, buffer.data(), buffer.size())) > 0;)
    bytes.append(buffer.data(), static_cast<std::size_t>(got));
  ::close(file);
  return bytes;
}

bool exists(const std::string &path) {
  return ::access(path.c_str(), F_OK) == 0;
}

void set_write_options(std::string_view options) {
  char *const text = std::ranges::copy(kOptions, options_place.data()).out;
  const std::size_t length = std::min(options.size(), kLongestOptions);
  std::copy_n(options.data(), length, text);
  text[length] = '\0';
  ::putenv(options_place.data());
}

std::uint8_t Bytes::byte() {
  if (left_ == 0)
    return 0;
  --left_;
  return *data_++;
}

std::int32_t Bytes::small(std::int32_t least, std::int32_t most) {
  return least + byte() % (most - least + 1);
}

std::int32_t Bytes::i32() {
  const std::uint8_t first = byte();
  if (first < 250)
    return first - 4;
  std::array<std::uint8_t, 4> raw{};
  std::ranges::generate(raw, [this] { return byte(); });
  std::int32_t value = 0;
  std::memcpy(&value, raw.data(), sizeof value);
  return value;
}

double Bytes::real() {
  const std::uint8_t first = byte();
  if (first < 160)
    return (first - 80) / 4.0;
  if (first < 240)
    return std::ldexp(first % 2 == 0 ? 1.0 : -1.0, (first - 200) * 4) * byte();
  std::array<std::uint8_t, 8> raw{};
  std::ranges::generate(raw, [this] { return byte(); });
  double value = 0.0;
  std::memcpy(&value, raw.data(), sizeof value);
  // Arithmetic would make a signalling one quiet, which is no change that matters.
  return std::isnan(value) ? std::copysign(std::numeric_limits<double>::quiet_NaN(), value) : value;
}

std::string_view Bytes::text(std::size_t most) {
  const std::size_t length = std::min({most, std::size_t{byte()}, left_});
  const std::string_view taken(reinterpret_cast<const char *>(data_), length);
  data_ += length;
  left_ -= length;
  return taken;
}

std::string_view Bytes::rest() {
  const std::string_view taken(reinterpret_cast<const char *>(data_), left_);
  data_ += left_;
  left_ = 0;
  return taken;
}

}  // namespace qdlfuzz

extern "C" int LLVMFuzzerInitialize(int *, char ***);

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  using namespace qdlfuzz;
  const std::array<QDL_MessageHandler, 3> handlers = {count_error, count_warning, count_info};
  SetMessageHandlers(handlers.data());
  for (const char *name :
       {"QDL_MAX_MODE_MEMORY", "QDL_MAX_SMODE_MEMORY", "ZEB_TMP_MOD", "ZEB_TMP_STR", "ZEB_TMP_STN",
        "OXR_A2A_BDF2SHL_PID", "QDL_RIGID_BODY_THRESHOLD", "ZEB_MFORCE_NO_FEA_MASS"})
    ::unsetenv(name);
  folder();
  set_write_options("");
  return 0;
}
