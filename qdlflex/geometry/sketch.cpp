#include "geometry/sketch.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "record/derived.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";
constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

/// The decimal integers of a text file, one by one, whatever the file's size.
class Integers {
 public:
  explicit Integers(File &file) : file_(file), buffer_(1 << 16) { advance(); }

  /// None at the end, at anything else than an integer, and beyond 32 bits.
  std::optional<std::int32_t> next() {
    while (is_space(character_))
      advance();
    const bool negative = character_ == '-';
    if (negative || character_ == '+')
      advance();
    if (!is_digit(character_))
      return std::nullopt;
    const std::int64_t most = negative ? kLargest + 1 : kLargest;
    std::int64_t magnitude = 0;
    for (; is_digit(character_); advance()) {
      magnitude = 10 * magnitude + (character_ - '0');
      if (magnitude > most)
        return std::nullopt;
    }
    return static_cast<std::int32_t>(negative ? -magnitude : magnitude);
  }

 private:
  static constexpr int kEnd = -1;

  static bool is_space(int character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
  }
  static bool is_digit(int character) { return character >= '0' && character <= '9'; }

  void advance() {
    if (next_ == end_) {
      next_ = 0;
      end_ = file_.read_some(buffer_.data(), buffer_.size());
    }
    character_ = next_ == end_ ? kEnd : static_cast<unsigned char>(buffer_[next_++]);
  }

  File &file_;
  std::vector<char> buffer_;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  int character_ = kEnd;
};

void append(std::vector<std::int32_t> &list, std::int32_t value) {
  if (list.size() == static_cast<std::size_t>(kLargest))
    throw std::length_error("face list");
  list.push_back(value);
}

/// Appends the next face of the sketch; `number` counts from 1. Room is only taken for what has
/// been read, as a count may say anything.
bool read_face(QDL_Record &record, Integers &integers, std::int32_t number,
               std::vector<std::int32_t> &list) {
  std::optional<std::int32_t> read = integers.next();
  const std::int32_t count = read.value_or(0);
  if (read)
    append(list, count);
  for (std::int32_t i = 0; i < count; ++i) {
    read = integers.next();
    if (!read)
      break;
    const std::int32_t node = find_node(record, *read);
    if (node == kUnknownNode) {
      QDL_Warning("Incorrect definition of face %d.  No node %d. Aborting.", number, *read);
      return false;
    }
    append(list, node);
  }
  if (!read)
    QDL_Warning("Incorrect definition of face %d.  Aborting.", number);
  return read.has_value();
}

bool apply_sketch(QDL_Record &record, const char *path) {
  if (path == nullptr) {
    QDL_Warning("Failed to apply sketch file.  Usage: sketch(filename)");
    return false;
  }
  const std::shared_ptr<File> file = File::open(path, File::Access::kRead);
  if (file == nullptr) {
    QDL_Warning("Failed to open sketch file %s", path);
    return false;
  }
  Integers integers(*file);
  const std::optional<std::int32_t> count = integers.next();
  if (!count) {
    QDL_Warning("Sketch file %s does not start with a face count", path);
    return false;
  }
  QDL_Info("Using sketch file %s to replace %d faces with %d", path, record.faces.count, *count);
  FaceList faces{{}, 0, true};
  while (faces.count < *count) {
    if (!read_face(record, integers, ++faces.count, faces.list))
      return false;
  }
  record.faces = std::move(faces);
  record.coarsened = true;
  raise(record, Block::kElementFaces);
  note_faces_changed(record);
  return true;
}

}  // namespace

bool sketch_grid(QDL_Record &record, const char *path) {
  return guarded(kArea, false, [&] { return apply_sketch(record, path); });
}

}  // namespace qdlflex

void QDL_SketchGrid(QDL_Record *model, const char *path) {
  qdlflex::with_model(model, qdlflex::kArea, false,
                      [&](QDL_Record &record) { return qdlflex::sketch_grid(record, path); });
}
