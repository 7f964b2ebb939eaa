// Lets the memory and the files of the command fail (support/fault.h). It lives on the shared
// library, whose hooks are hidden; so what both use of the C library is replaced here. Nothing is
// done by what fails, but for a stream that cannot be closed: it is gone.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "support/failing_operators.h"

namespace {

bool fails() {
  if (!must_fail(qdltest::Door::kFile))
    return false;
  errno = EIO;
  return true;
}

bool stream_fails(std::FILE *stream) {
  const bool failed = fails();
  if (failed)
    stream->_flags |= _IO_ERR_SEEN;
  return failed;
}

// The function of the C library that has this name.
template <class Function>
Function *original(Function *, const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define ORIGINAL(name) static const auto call = original(&name, #name)

extern "C" {

std::FILE *fopen(const char *name, const char *mode) {
  ORIGINAL(fopen);
  return fails() ? nullptr : call(name, mode);
}

std::FILE *fdopen(int descriptor, const char *mode) noexcept {
  ORIGINAL(fdopen);
  return fails() ? nullptr : call(descriptor, mode);
}

std::size_t fread(void *data, std::size_t size, std::size_t count, std::FILE *stream) {
  ORIGINAL(fread);
  return stream_fails(stream) ? 0 : call(data, size, count, stream);
}

std::size_t fwrite(const void *data, std::size_t size, std::size_t count, std::FILE *stream) {
  ORIGINAL(fwrite);
  return stream_fails(stream) ? 0 : call(data, size, count, stream);
}

int fflush(std::FILE *stream) {
  ORIGINAL(fflush);
  return stream != stdout && stream_fails(stream) ? EOF : call(stream);
}

int fseeko(std::FILE *stream, off_t offset, int origin) {
  ORIGINAL(fseeko);
  return fails() ? -1 : call(stream, offset, origin);
}

int fclose(std::FILE *stream) {
  ORIGINAL(fclose);
  const bool failed = fails();
  const int result = call(stream);
  return failed ? EOF : result;
}

int open(const char *name, int flags, ...) {
  ORIGINAL(open);
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return fails() ? -1 : call(name, flags, mode);
}

int mkostemp(char *name, int flags) {
  ORIGINAL(mkostemp);
  return fails() ? -1 : call(name, flags);
}

ssize_t pread(int descriptor, void *data, std::size_t bytes, off_t offset) {
  ORIGINAL(pread);
  return fails() ? -1 : call(descriptor, data, bytes, offset);
}

ssize_t write(int descriptor, const void *data, std::size_t bytes) {
  ORIGINAL(write);
  return fails() ? -1 : call(descriptor, data, bytes);
}

ssize_t pwrite(int descriptor, const void *data, std::size_t bytes, off_t offset) {
  ORIGINAL(pwrite);
  return fails() ? -1 : call(descriptor, data, bytes, offset);
}

int posix_fallocate(int descriptor, off_t offset, off_t bytes) {
  ORIGINAL(posix_fallocate);
  return fails() ? ENOSPC : call(descriptor, offset, bytes);
}

void *mmap(void *place, std::size_t bytes, int access, int flags, int descriptor,
           off_t offset) noexcept {
  ORIGINAL(mmap);
  return fails() ? MAP_FAILED : call(place, bytes, access, flags, descriptor, offset);
}

}  // extern "C"
