#pragma once

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace qdlflex {

/// Everything the library does with files goes through this class, so that a test can make any
/// single operation fail.
enum class FileOperation { kOpen, kSeek, kRead, kWrite, kReserve, kMap, kFlush, kClose, kRemove };

/// For tests: asked before each operation; true makes it fail.
using FileFault = bool (*)(FileOperation operation);
void set_file_fault(FileFault fault);
bool file_fault(FileOperation operation);

/// fopen with the descriptor closed on exec; null for a null or failing argument.
std::FILE *open_stream(const char *name, const char *mode);

/// Device and file number: two names of one file have one identity.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  bool known = false;

  bool same_as(const FileIdentity &other) const {
    return known && other.known && device == other.device && number == other.number;
  }
};
FileIdentity identity_of(const std::string &name);

/// Removes `name` if it is a regular file; a device or a pipe given as a name stays.
void remove_regular_file(const std::string &name);

/// While it lives, a write beyond the process's limit of file sizes fails like one on a full disk
/// instead of ending the process with a signal.
class FileSizeSignalBlock {
 public:
  FileSizeSignalBlock();
  ~FileSizeSignalBlock();
  FileSizeSignalBlock(const FileSizeSignalBlock &) = delete;
  FileSizeSignalBlock &operator=(const FileSizeSignalBlock &) = delete;

 private:
  sigset_t before_{};
};

/// An open file. Positions are 64-bit. The stream operations move the file position; the `_at`
/// operations don't, bypass the stream's buffer and are retried until done, end of file or error.
class File {
 public:
  explicit File(std::string name);
  /// Closes; a temporary file is removed as well.
  ~File();
  File(const File &) = delete;
  File &operator=(const File &) = delete;

  /// Takes over an open stream, which is closed when memory for the rest can't be had.
  static std::shared_ptr<File> adopt(std::FILE *stream, const char *name);
  enum class Access { kRead, kWrite };
  /// Null when it can't be opened. Never waits for the other end of a pipe. A file that is opened
  /// for writing is emptied.
  static std::shared_ptr<File> open(const std::string &name, Access access);
  /// A new temporary file, readable by the owner only: `name` when it is not empty (emptied if it
  /// exists), else a fresh name with the prefix "qdl_" in the temporary directory. `name` receives
  /// the name tried. Null on failure.
  static std::shared_ptr<File> create_temporary(std::string &name);

  std::FILE *stream() const { return stream_; }
  const std::string &name() const { return name_; }
  bool temporary() const { return temporary_; }
  FileIdentity identity() const;

  bool seek(std::int64_t position);
  std::int64_t tell() const;
  /// -1 when it cannot be told.
  std::int64_t size() const;
  bool read(void *data, std::size_t bytes);
  /// As many bytes as there are, at most so many; 0 at the end of the file and on failure.
  std::size_t read_some(void *data, std::size_t bytes);
  bool write(const void *data, std::size_t bytes);
  bool flush();
  /// Flushes and closes; false if anything written may not have arrived.
  bool close();

  bool read_at(std::int64_t position, void *data, std::size_t bytes) const;
  bool write_at(std::int64_t position, const void *data, std::size_t bytes);
  bool zero_at(std::int64_t position, std::int64_t bytes);
  /// Whether the position can be gone to; some devices always stay where they are.
  bool reaches(std::int64_t position);

  /// Makes the file `bytes` long, new bytes zero and their disk space really taken, so that a full
  /// disk shows here and not later. Never shortens.
  bool reserve(std::int64_t bytes);
  /// The first `bytes` of the file in memory, shared with the file, or null. Only for space that
  /// was reserved: touching a page without disk space behind it would end the process. Replaces an
  /// earlier mapping.
  std::byte *map(std::int64_t bytes);

 private:
  void unmap();

  std::FILE *stream_ = nullptr;
  std::string name_;
  bool temporary_ = false;
  std::byte *mapping_ = nullptr;
  std::size_t mapped_bytes_ = 0;
};

}  // namespace qdlflex
