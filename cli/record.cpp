#include "record.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr int32_t kHeaderIndex = 1;
constexpr int64_t kNativeHeaderSize = 544;  // one byte per character; XDR takes four

}  // namespace

Record open_record(const std::string &path) {
  // The library is silent about a file that it cannot open.
  FILE *const file = File_Open(path.c_str(), "rb");
  if (file == nullptr) {
    throw Failure(path + ": " + std::strerror(errno));
  }
  std::fclose(file);
  Record record(QDL_CreateFromQDL(path.c_str()));
  if (!record) {
    throw Failure(path + " is not a QDL file that can be read");
  }
  return record;
}

bool is_xdr(QDL_Record *record) {
  return QDL_size_of_block(record, kHeaderIndex) != kNativeHeaderSize;
}

void check_output_is_not(const std::string &input, const std::string &output) {
  std::error_code none;
  if (!input.empty() && std::filesystem::equivalent(input, output, none)) {
    throw Failure("the output " + output + " is also an input");
  }
}

}  // namespace qdlflex::cli
