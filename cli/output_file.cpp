#include "output_file.h"

#include <qdlflex/qdlflex.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "text_input.h"

namespace qdlflex::cli {

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)), file_(File_Open(path_.c_str(), "wb")) {
  if (!file_) {
    fail();
  }
}

OutputFile::~OutputFile() {
  std::error_code ignored;
  if (file_ && std::filesystem::is_regular_file(path_, ignored)) {
    file_.reset();
    std::filesystem::remove(path_, ignored);
  }
}

void OutputFile::write(std::string_view bytes) {
  // An empty list may have no place in memory, which the C library must not be given.
  if (bytes.empty()) {
    return;
  }
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    fail();
  }
}

void OutputFile::overwrite(long offset, std::string_view bytes) {
  if (std::fseek(file_.get(), offset, SEEK_SET) != 0) {
    fail();
  }
  write(bytes);
}

void OutputFile::finish() {
  if (std::fflush(file_.get()) != 0) {
    fail();
  }
  if (std::fclose(file_.release()) != 0) {
    const int reason = errno;
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    errno = reason;
    fail();
  }
}

void OutputFile::fail() const {
  throw Failure(path_ + ": " + std::strerror(errno));
}

}  // namespace qdlflex::cli
