#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "record/record.h"

namespace qdlflex {

/// One kind of mode data on its way to a new temporary file. The record keeps the modes that it has
/// until the new ones are adopted; a rewrite that ends before that removes its file. An operation
/// on several kinds finishes all their rewrites before it adopts the first one.
class ModeRewrite {
 public:
  /// What the written values are measured in.
  enum class Measure {
    kCurrentUnits,  // as the mode store delivers them
    kAsStored,      // as the present backing holds them: values are copied, not rounded again
  };

  /// A fresh file for so many modes of so many nodes, all zero, in the host's byte order and with
  /// the kind's own precision. A record under construction keeps the room for nodes that it has
  /// planned. `opened` is told of the file before its space is taken, `closing` ends the error
  /// text of a file that can't be made. None after a reported failure.
  static std::optional<ModeRewrite> begin(const QDL_Record &record, std::int32_t kind,
                                          std::int32_t modes, std::int32_t nodes, Measure measure,
                                          const char *closing = ".",
                                          void (*opened)(const std::string &file) = nullptr);

  const std::string &file_name() const { return backing_.channel.file->name(); }

  /// Six components of `rows` nodes from `first` on. A failure is reported. Few large pieces are
  /// much faster than many small ones.
  bool write_rows(std::int32_t mode_index, std::int64_t first, std::int64_t rows,
                  const double *six);

  /// To be called once after the last row. A failure is reported.
  bool finish();

  /// Makes the new modes the record's own and drops what is cached of the old ones. The old
  /// temporary file is removed; the record's source file is only let go of.
  void adopt(QDL_Record &record) noexcept;

 private:
  ModeRewrite(std::int32_t kind, Backing backing) : kind_(kind), backing_(std::move(backing)) {}

  std::int32_t kind_;
  Backing backing_;
};

}  // namespace qdlflex
