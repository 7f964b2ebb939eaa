#include "format/toc.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>

#include <qdlflex/qdlflex.h>

#include "format/source.h"
#include "format/version.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltoc";

/// A sum of products of counts. It stays invalid once a factor was negative or the sum left 64
/// bits.
class ByteCount {
 public:
  ByteCount &add(std::initializer_list<std::int64_t> factors) {
    std::int64_t product = 1;
    for (const std::int64_t factor : factors) {
      if (factor < 0 || __builtin_mul_overflow(product, factor, &product))
        valid_ = false;
    }
    if (__builtin_add_overflow(bytes_, product, &bytes_))
      valid_ = false;
    return *this;
  }
  bool valid() const { return valid_; }
  std::int64_t bytes() const { return bytes_; }

 private:
  std::int64_t bytes_ = 0;
  bool valid_ = true;
};

/// Measures blocks from the counts at their heads and, where entries differ in length, by walking
/// over them. A negative result means that the block cannot be measured.
class Measure {
 public:
  static constexpr std::int64_t kUnknown = -1;

  Measure(QDL_Record &record, Source &source)
      : record_(record),
        source_(source),
        real_(source.encoding().real_bytes()),
        character_(source.encoding().character_bytes()) {}

  std::int64_t block(Block block);

 private:
  template <std::size_t N>
  bool head(std::array<std::int32_t, N> &counts) {
    return source_.i32s(counts.data(), N);
  }

  /// Size from the first `N` integers of the block.
  template <std::size_t N, class Formula>
  std::int64_t from_head(Formula formula) {
    std::array<std::int32_t, N> counts{};
    if (!head(counts))
      return kUnknown;
    ByteCount size;
    formula(size, counts);
    return size.valid() ? size.bytes() : kUnknown;
  }

  bool skip(const ByteCount &bytes) { return bytes.valid() && source_.skip(bytes.bytes()); }

  /// Walks over `count` entries with `entry` and gives the bytes passed since `start`.
  template <class Entry>
  std::int64_t walk(std::int64_t start, std::int32_t count, Entry entry) {
    if (count < 0)
      return kUnknown;
    for (std::int32_t i = 0; i < count; ++i) {
      if (!entry())
        return kUnknown;
    }
    return source_.tell() - start;
  }

  std::int64_t mode_shapes();
  std::int64_t element_topology();
  std::int64_t matrix_operators();
  bool matrix_operator();
  std::int64_t nodal_loads();
  std::int64_t monitor_points();

  QDL_Record &record_;
  Source &source_;
  std::int64_t real_;
  std::int64_t character_;
};

std::int64_t Measure::mode_shapes() {
  const std::int64_t number = has_mode_numbers(record_.file_version_code) ? 4 : 0;
  return from_head<2>([&](ByteCount &size, const auto &counts) {
    const std::int64_t modes = counts[0];
    const std::int64_t nodes = counts[1];
    size.add({8}).add({4, nodes}).add({number, modes}).add({6, nodes, real_, modes});
  });
}

std::int64_t Measure::element_topology() {
  const std::int64_t start = source_.tell();
  std::array<std::int32_t, 2> counts{};
  if (!head(counts))
    return kUnknown;
  return walk(start, counts[1], [&] {
    std::array<std::int32_t, 3> group{};  // kind, elements, nodes per element
    if (!head(group) || group[2] < 0)
      return false;
    return skip(ByteCount().add({4, group[1], group[2] + std::int64_t{2}}));
  });
}

bool Measure::matrix_operator() {
  std::int32_t rows = 0;
  std::int32_t sub_operators = 0;
  if (!source_.i32(rows))
    return false;
  if (!skip(ByteCount().add({8, character_}).add({80, character_, rows})))
    return false;
  if (!source_.i32(sub_operators) || sub_operators < 0)
    return false;
  for (std::int32_t i = 0; i < sub_operators; ++i) {
    std::int32_t columns = 0;
    if (!source_.i32(columns))
      return false;
    if (!skip(ByteCount().add({8, character_}).add({columns, rows, real_})))
      return false;
  }
  return true;
}

std::int64_t Measure::matrix_operators() {
  const std::int64_t start = source_.tell();
  std::array<std::int32_t, 1> count{};
  if (!head(count))
    return kUnknown;
  return walk(start, count[0], [&] { return matrix_operator(); });
}

std::int64_t Measure::nodal_loads() {
  const std::int64_t start = source_.tell();
  std::array<std::int32_t, 1> count{};
  if (!head(count))
    return kUnknown;
  return walk(start, count[0], [&] {
    std::int32_t entries = 0;
    return source_.i32(entries) && skip(ByteCount().add({entries, 8 + real_}));
  });
}

std::int64_t Measure::monitor_points() {
  const std::int64_t start = source_.tell();
  std::array<std::int32_t, 1> count{};
  if (!head(count))
    return kUnknown;
  return walk(start, count[0], [&] {
    std::array<std::int32_t, 3> sizes{};  // rows, row blocks, operator mask
    if (!skip(ByteCount().add({12}).add({8 + 56, character_})) || !head(sizes))
      return false;
    return skip(ByteCount().add({record_.file_mode_count, sizes[0], sizes[1], real_}));
  });
}

std::int64_t Measure::block(Block block) {
  const std::int64_t real = real_;
  const std::int64_t character = character_;
  switch (block) {
    case Block::kVersionCode:
      return kVersionCodeBytes;
    case Block::kHeader:
      return kHeaderCharacters * character;
    case Block::kContentSummary:
      return static_cast<std::int64_t>(kSummaryBytes) * character;
    case Block::kNodalCoordinates:
      return from_head<2>([&](ByteCount &size, const auto &n) {
        size.add({8}).add({4, n[0]}).add({n[0], n[1], real});
      });
    case Block::kElementTopology:
      return element_topology();
    case Block::kGlobalBodyProperties:
      return 13 * real;
    case Block::kEigenvalues:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({n[0], 5 * real + 4});
      });
    case Block::kModeShapes:
    case Block::kModalStress:
    case Block::kModalStrain:
      return mode_shapes();
    case Block::kNodalMasses:
      return from_head<2>([&](ByteCount &size, const auto &n) {
        size.add({8}).add({4, n[0]}).add({n[0], n[1], real});
      });
    case Block::kNodalInertias:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({n[0], 4 + 2 * character + real});
      });
    case Block::kUnits:
      return 64 * character;
    case Block::kGeneralizedStiffness:
    case Block::kGeneralizedMass:
    case Block::kGeneralizedDamping:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({8}).add({n[0], 12 + real});
      });
    case Block::kElementFaces:
      return from_head<1>([&](ByteCount &size, const auto &n) { size.add({n[0]}); });
    case Block::kModeShapeTransformation:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({4, n[0]}).add({n[0], n[0], real});
      });
    case Block::kInterfaceNodes:
      return from_head<1>([&](ByteCount &size, const auto &n) { size.add({4}).add({4, n[0]}); });
    case Block::kInvariant1:
      return real;
    case Block::kInvariant2:
      return 3 * real;
    case Block::kInvariant7:
      return 9 * real;
    case Block::kInvariant3:
    case Block::kInvariant4:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({3, n[0], real});
      });
    case Block::kInvariant5:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({3, n[0], n[0], real});
      });
    case Block::kInvariant8:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({9, n[0], real});
      });
    case Block::kInvariant9:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({9, n[0], n[0], real});
      });
    case Block::kModalPreload:
      return from_head<1>([&](ByteCount &size, const auto &n) { size.add({8}).add({n[0], real}); });
    case Block::kModalLoads:
      return from_head<2>([&](ByteCount &size, const auto &n) {
        size.add({8}).add({n[1], n[0], real}).add({n[1], 4 + 256 * character});
      });
    case Block::kModalStatistics:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({13, n[0], real + 4});
      });
    case Block::kPreStress:
    case Block::kPreStrain:
      return from_head<1>([&](ByteCount &size, const auto &n) {
        size.add({4}).add({6, n[0], real});
      });
    case Block::kOldMonitorPoints:
    case Block::kMonitorPoints:
      return monitor_points();
    case Block::kMatrixOperators:
      return matrix_operators();
    case Block::kModalLoadNodal:
      return nodal_loads();
    case Block::kRotorDynamics:
      return 0;  // always the last block
  }
  return kUnknown;
}

bool has_file(const QDL_Record &record) {
  return record.source.file != nullptr;
}

/// The count at the head of the first block that tells it: the file's own, which stays as it is
/// whatever becomes of the record's modes. None when that head can't be read.
std::optional<std::int32_t> read_file_mode_count(QDL_Record &record, Source &source) {
  for (const Block block : {Block::kModeShapes, Block::kEigenvalues, Block::kModalStress,
                            Block::kModalStrain, Block::kModalStatistics}) {
    if (!in_file(record, block))
      continue;
    std::int32_t count = 0;
    const auto index = static_cast<std::size_t>(block_index(block));
    if (!source.seek(record.contents.offsets[index]) || !source.i32(count))
      return std::nullopt;
    return std::max(count, 0);
  }
  return 0;
}

std::int64_t measure_at(QDL_Record &record, Source &source, Block block, std::int64_t start) {
  return source.seek(start) ? Measure(record, source).block(block) : Measure::kUnknown;
}

/// Blocks come in the order of the file: those that tell the mode count stand before those whose
/// sizes depend on it.
std::int64_t measure_next(QDL_Record &record, Source &source, Block block, std::int64_t start) {
  if (block == Block::kOldMonitorPoints) {
    const std::optional<std::int32_t> modes = read_file_mode_count(record, source);
    if (!modes)
      return Measure::kUnknown;
    record.file_mode_count = *modes;
  }
  return in_file(record, block) ? measure_at(record, source, block, start) : 0;
}

}  // namespace

void build_table_of_contents(QDL_Record &record) {
  TableOfContents &contents = record.contents;
  contents = TableOfContents{};
  contents.unknown_from = 1;
  Source source(*record.source.file, source_encoding(record));
  for (std::int32_t index = 0; index + 1 < kBlockCount; ++index) {
    const auto entry = static_cast<std::size_t>(index);
    const Block block = block_at(index);
    const std::int64_t start = contents.offsets[entry];
    const std::int64_t size = measure_next(record, source, block, start);
    if (size < 0 || size > INT64_MAX - start) {
      std::fill(contents.offsets.begin() + index + 1, contents.offsets.end(), start);
      return;
    }
    contents.offsets[entry + 1] = start + size;
    contents.unknown_from = index + 2;
  }
}

bool seek_block(QDL_Record &record, Block block) {
  if (!has_file(record) || !present(record, block) || !in_file(record, block))
    return false;
  const auto index = static_cast<std::size_t>(block_index(block));
  return has_known_offset(record, block) &&
         record.source.file->seek(record.contents.offsets[index]);
}

}  // namespace qdlflex

using namespace qdlflex;

namespace {

bool is_block_index(std::int32_t index) {
  return index >= 0 && index < kBlockCount;
}

std::int64_t size_without_file(const QDL_Record &record, Block block) {
  const std::int64_t character = source_encoding(record).character_bytes();
  switch (block) {
    case Block::kVersionCode:
      return kVersionCodeBytes;
    case Block::kHeader:
      return kHeaderCharacters * character;
    case Block::kContentSummary:
      return static_cast<std::int64_t>(kSummaryBytes) * character;
    default:
      return 0;
  }
}

/// What the table of contents tells: nothing for the last block and for one that could not be
/// measured.
std::int64_t size_in_file(const QDL_Record &record, Block block) {
  if (!present(record, block) || !in_file(record, block))
    return 0;
  const auto next = static_cast<std::size_t>(block_index(block)) + 1;
  const bool measured = static_cast<std::int32_t>(next) < record.contents.unknown_from;
  return measured ? record.contents.offsets[next] - record.contents.offsets[next - 1] : 0;
}

}  // namespace

int32_t QDL_Exists(QDL_Record *model, int32_t index) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) -> int {
    if (!is_block_index(index))
      return 0;
    const Block block = block_at(index);
    return always_present(block) ? 1 : record.summary[summary_position(block)];
  });
}

int32_t QDL_goto_block(QDL_Record *model, int32_t index) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return is_block_index(index) && seek_block(record, block_at(index));
  });
}

int64_t QDL_size_of_block(QDL_Record *model, int32_t index) {
  return with_model(model, kArea, int64_t{0}, [&](QDL_Record &record) -> std::int64_t {
    if (!is_block_index(index))
      return 0;
    const Block block = block_at(index);
    return record.source.file == nullptr ? size_without_file(record, block)
                                         : size_in_file(record, block);
  });
}
