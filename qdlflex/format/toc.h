#pragma once

#include <cstdint>

#include "format/codec.h"
#include "record/record.h"

namespace qdlflex {

constexpr std::int64_t kVersionCodeBytes = 4;
constexpr std::int64_t kHeaderCharacters = 128 + 32 + 128 + 16 + 80 + 80 + 80;

/// The encoding of the file that the record was read from.
inline Encoding source_encoding(const QDL_Record &record) {
  return {record.source.xdr, record.source.double_precision};
}

/// Measures the blocks of the record's file one after the other and fills the table of contents
/// and the file's mode count. Where a block cannot be measured the table ends; that is no failure.
void build_table_of_contents(QDL_Record &record);

/// Whether the position of a block is known.
inline bool has_known_offset(const QDL_Record &record, Block block) {
  return block_index(block) < record.contents.unknown_from;
}

/// Moves the record's file to a block that both the file and the record still hold. False, without
/// moving, when there is none.
bool seek_block(QDL_Record &record, Block block);

}  // namespace qdlflex
