#include "support/file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>
#include <vector>

#include "support/environment.h"

namespace qdlflex {
namespace {

FileFault installed_fault = nullptr;

FileIdentity identity_from(const struct stat &status) {
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
          true};
}

/// Creates the file behind a temporary stream; -1 on failure.
int create_descriptor(std::string &name) {
  constexpr mode_t kOwnerOnly = 0600;
  if (!name.empty())
    return ::open(name.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, kOwnerOnly);
  name = temporary_directory() + "/qdl_XXXXXX";
  return ::mkostemp(name.data(), O_CLOEXEC);
}

/// A write past the process's limit raises a signal; the limit is therefore asked first.
bool within_size_limit(std::int64_t bytes) {
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
    return true;
  return static_cast<std::uint64_t>(bytes) <= limit.rlim_cur;
}

bool write_all(int descriptor, const void *data, std::size_t bytes) {
  const auto *source = static_cast<const std::byte *>(data);
  while (bytes > 0) {
    const ssize_t put = ::write(descriptor, source, bytes);
    if (put < 0 && errno == EINTR)
      continue;
    if (put <= 0)
      return false;
    source += put;
    bytes -= static_cast<std::size_t>(put);
  }
  return true;
}

}  // namespace

void set_file_fault(FileFault fault) {
  installed_fault = fault;
}

bool file_fault(FileOperation operation) {
  return installed_fault != nullptr && installed_fault(operation);
}

std::FILE *open_stream(const char *name, const char *mode) {
  if (name == nullptr || mode == nullptr || file_fault(FileOperation::kOpen))
    return nullptr;
  const std::string given(mode);
  const std::size_t options = std::min(given.find(','), given.size());
  return std::fopen(name, (given.substr(0, options) + 'e' + given.substr(options)).c_str());
}

FileIdentity identity_of(const std::string &name) {
  struct stat status {};
  return ::stat(name.c_str(), &status) == 0 ? identity_from(status) : FileIdentity{};
}

void remove_regular_file(const std::string &name) {
  struct stat status {};
  // Nothing is allocated: a file must go when there is no memory left, too.
  char target[PATH_MAX];
  if (file_fault(FileOperation::kRemove))
    return;
  // A link stays, what it leads to goes.
  if (::realpath(name.c_str(), target) != nullptr && ::stat(target, &status) == 0 &&
      S_ISREG(status.st_mode)) {
    ::unlink(target);
  }
}

FileSizeSignalBlock::FileSizeSignalBlock() {
  sigset_t signal;
  ::sigemptyset(&signal);
  ::sigaddset(&signal, SIGXFSZ);
  ::pthread_sigmask(SIG_BLOCK, &signal, &before_);
}

FileSizeSignalBlock::~FileSizeSignalBlock() {
  sigset_t signal;
  ::sigemptyset(&signal);
  ::sigaddset(&signal, SIGXFSZ);
  // One that is pending now came from here, unless the host had it blocked itself.
  constexpr timespec kNoWait{};
  if (::sigismember(&before_, SIGXFSZ) == 0)
    ::sigtimedwait(&signal, nullptr, &kNoWait);
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

File::File(std::string name) : name_(std::move(name)) {}

File::~File() {
  unmap();
  close();
  if (temporary_)
    remove_regular_file(name_);
}

std::shared_ptr<File> File::adopt(std::FILE *stream, const char *name) {
  std::unique_ptr<std::FILE, int (*)(std::FILE *)> owned(stream, &std::fclose);
  auto file = std::make_shared<File>(name);
  file->stream_ = owned.release();
  return file;
}

std::shared_ptr<File> File::open(const std::string &name, Access access) {
  auto file = std::make_shared<File>(name);
  if (file_fault(FileOperation::kOpen))
    return nullptr;
  const bool writing = access == Access::kWrite;
  constexpr mode_t kAsTheUserMasks = 0666;
  // A pipe must not keep the caller waiting for its other end: it can't be read as a file anyway.
  const int flags = (writing ? O_WRONLY | O_CREAT | O_TRUNC : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
  const int descriptor = ::open(name.c_str(), flags, kAsTheUserMasks);
  if (descriptor < 0)
    return nullptr;
  // Somebody reads the other end: a pipe that is full has to be waited for.
  if (writing)
    ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK);
  file->stream_ = ::fdopen(descriptor, writing ? "wb" : "rb");
  if (file->stream_ == nullptr) {
    ::close(descriptor);
    if (writing)
      remove_regular_file(name);
    return nullptr;
  }
  // Files are written in many small pieces.
  constexpr std::size_t kWriteBuffer = 1 << 18;
  if (writing)
    std::setvbuf(file->stream_, nullptr, _IOFBF, kWriteBuffer);
  return file;
}

std::shared_ptr<File> File::create_temporary(std::string &name) {
  auto file = std::make_shared<File>(name);
  if (file_fault(FileOperation::kOpen))
    return nullptr;
  const int descriptor = create_descriptor(file->name_);
  if (descriptor >= 0) {
    file->stream_ = ::fdopen(descriptor, "wb+");
    file->temporary_ = true;
    if (file->stream_ == nullptr)
      ::close(descriptor);
  }
  // From here on the file removes itself, also when there is no memory left to copy its name.
  name = file->name_;
  return file->stream_ == nullptr ? nullptr : file;
}

FileIdentity File::identity() const {
  struct stat status {};
  const bool told = stream_ != nullptr && ::fstat(::fileno(stream_), &status) == 0;
  return told ? identity_from(status) : FileIdentity{};
}

bool File::seek(std::int64_t position) {
  return !file_fault(FileOperation::kSeek) && ::fseeko(stream_, position, SEEK_SET) == 0;
}

std::int64_t File::tell() const {
  return ::ftello(stream_);
}

std::int64_t File::size() const {
  struct stat status {};
  return ::fstat(::fileno(stream_), &status) == 0 ? status.st_size : -1;
}

bool File::read(void *data, std::size_t bytes) {
  if (bytes == 0)
    return true;
  return !file_fault(FileOperation::kRead) && std::fread(data, 1, bytes, stream_) == bytes;
}

std::size_t File::read_some(void *data, std::size_t bytes) {
  return file_fault(FileOperation::kRead) ? 0 : std::fread(data, 1, bytes, stream_);
}

bool File::write(const void *data, std::size_t bytes) {
  if (bytes == 0)
    return true;
  if (file_fault(FileOperation::kWrite))
    return false;
  // Large pieces go past the stream's buffer, which would only copy them.
  constexpr std::size_t kLarge = 1 << 17;
  if (bytes < kLarge)
    return std::fwrite(data, 1, bytes, stream_) == bytes;
  return std::fflush(stream_) == 0 && write_all(::fileno(stream_), data, bytes);
}

bool File::flush() {
  return !file_fault(FileOperation::kFlush) && std::fflush(stream_) == 0 &&
         std::ferror(stream_) == 0;
}

bool File::close() {
  if (stream_ == nullptr)
    return true;
  const bool fault = file_fault(FileOperation::kClose);
  return std::fclose(std::exchange(stream_, nullptr)) == 0 && !fault;
}

bool File::read_at(std::int64_t position, void *data, std::size_t bytes) const {
  if (file_fault(FileOperation::kRead))
    return false;
  auto *target = static_cast<std::byte *>(data);
  while (bytes > 0) {
    const ssize_t got = ::pread(::fileno(stream_), target, bytes, position);
    if (got < 0 && errno == EINTR)
      continue;
    if (got <= 0)
      return false;
    target += got;
    position += got;
    bytes -= static_cast<std::size_t>(got);
  }
  return true;
}

bool File::write_at(std::int64_t position, const void *data, std::size_t bytes) {
  if (file_fault(FileOperation::kWrite))
    return false;
  const auto *source = static_cast<const std::byte *>(data);
  while (bytes > 0) {
    const ssize_t put = ::pwrite(::fileno(stream_), source, bytes, position);
    if (put < 0 && errno == EINTR)
      continue;
    if (put <= 0)
      return false;
    source += put;
    position += put;
    bytes -= static_cast<std::size_t>(put);
  }
  return true;
}

bool File::zero_at(std::int64_t position, std::int64_t bytes) {
  constexpr std::int64_t kBlock = 1 << 20;
  const std::vector<std::byte> zeros(static_cast<std::size_t>(std::min(bytes, kBlock)));
  while (bytes > 0) {
    const std::int64_t part = std::min(bytes, kBlock);
    if (!write_at(position, zeros.data(), static_cast<std::size_t>(part)))
      return false;
    position += part;
    bytes -= part;
  }
  return true;
}

bool File::reaches(std::int64_t position) {
  return !file_fault(FileOperation::kSeek) &&
         ::lseek(::fileno(stream_), position, SEEK_SET) == position;
}

bool File::reserve(std::int64_t bytes) {
  const std::int64_t present = size();
  if (file_fault(FileOperation::kReserve) || present < 0 || !within_size_limit(bytes))
    return false;
  if (bytes <= present)
    return true;
  int failure = 0;
  do {
    failure = ::posix_fallocate(::fileno(stream_), present, bytes - present);
  } while (failure == EINTR);
  if (failure == 0)
    return true;
  // Where the file system can't reserve, writing the zeros takes the space as well.
  if (failure != EOPNOTSUPP && failure != EINVAL && failure != ENODEV)
    return false;
  return zero_at(present, bytes - present);
}

std::byte *File::map(std::int64_t bytes) {
  unmap();
  if (bytes <= 0 || file_fault(FileOperation::kMap))
    return nullptr;
  const auto length = static_cast<std::size_t>(bytes);
  void *mapping = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, ::fileno(stream_), 0);
  if (mapping == MAP_FAILED)
    return nullptr;
  mapping_ = static_cast<std::byte *>(mapping);
  mapped_bytes_ = length;
  return mapping_;
}

void File::unmap() {
  if (mapping_ != nullptr)
    ::munmap(mapping_, mapped_bytes_);
  mapping_ = nullptr;
}

}  // namespace qdlflex
