#include "modes/mode_rewrite.h"

#include <algorithm>
#include <array>
#include <span>

#include "modes/mode_cache.h"
#include "modes/mode_store.h"
#include "modes/temporary_backing.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kDirectoryVariable = "TMP";

void report_unable_to_write(const std::string &name, const char *closing) {
  QDL_Error(
      "Unable to open %s for write.  Specify different temporary file directory by\n"
      "setting the %s environment variable%s",
      name.c_str(), kDirectoryVariable, closing);
}

void report_insufficient_space(const std::string &name) {
  QDL_Error(
      "Insufficient disk space for file %s.  Specify different temporary\n"
      "file directory by setting the %s environment variable",
      name.c_str(), kDirectoryVariable);
}

/// Single-precision values are narrowed in pieces that stay in the processor's cache.
bool write_encoded(File &file, std::int64_t position, std::span<const double> values,
                   const Encoding &encoding) {
  constexpr std::size_t kPiece = 8192;
  std::array<unsigned char, kPiece * sizeof(double)> bytes;
  while (!values.empty()) {
    const auto piece = values.first(std::min(values.size(), kPiece));
    const std::size_t length = piece.size() * static_cast<std::size_t>(encoding.real_bytes());
    encode_reals(bytes.data(), piece.data(), piece.size(), encoding);
    if (!file.write_at(position, bytes.data(), length))
      return false;
    position += static_cast<std::int64_t>(length);
    values = values.subspan(piece.size());
  }
  return true;
}

}  // namespace

std::optional<ModeRewrite> ModeRewrite::begin(const QDL_Record &record, std::int32_t kind,
                                              std::int32_t modes, std::int32_t nodes,
                                              Measure measure, const char *closing,
                                              void (*opened)(const std::string &file)) {
  const Backing &present = record.mode_data[static_cast<std::size_t>(kind)].backing;
  Backing made;
  made.channel.double_precision = present.channel.double_precision;
  made.base = measure == Measure::kAsStored ? present.base : record.units.cumulative;
  std::string name;
  made.channel.file = File::create_temporary(name);
  if (made.channel.file == nullptr) {
    report_unable_to_write(name, closing);
    return std::nullopt;
  }
  if (opened != nullptr)
    opened(name);
  if (!lay_out(made, modes, std::max(nodes, record.planned_nodes))) {
    report_insufficient_space(name);
    return std::nullopt;
  }
  return ModeRewrite(kind, std::move(made));
}

bool ModeRewrite::write_rows(std::int32_t mode_index, std::int64_t first, std::int64_t rows,
                             const double *six) {
  File &file = *backing_.channel.file;
  const Encoding encoding = encoding_of(backing_.channel);
  const std::int64_t row_bytes = kComponents * encoding.real_bytes();
  const std::int64_t position =
      backing_.starts[static_cast<std::size_t>(mode_index)] + first * row_bytes;
  const std::span<const double> values(six, static_cast<std::size_t>(rows * kComponents));
  const bool written = stands_as_in_memory(encoding)
                           ? file.write_at(position, values.data(), values.size_bytes())
                           : write_encoded(file, position, values, encoding);
  if (!written)
    report_insufficient_space(file.name());
  return written;
}

bool ModeRewrite::finish() {
  if (backing_.channel.file->flush())
    return true;
  report_insufficient_space(file_name());
  return false;
}

void ModeRewrite::adopt(QDL_Record &record) noexcept {
  mode_data(record, kind_).backing = std::move(backing_);
  note_mode_layout_changed(record);
}

}  // namespace qdlflex
