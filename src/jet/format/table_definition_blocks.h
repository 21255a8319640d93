// The parts of a table definition that are as long in every one (FORMAT.md, "Table definitions"). Decoding requires
// blocks of their length. Encoding starts from the bytes that the part was read from, so that what is not known of them
// is kept, and appends.
#pragma once

#include "jet/format/table_definition.h"

namespace jet {

// Bytes.
inline constexpr std::size_t kColumnBlockSize = 25;
inline constexpr std::size_t kIndexHeadSize = 12;
inline constexpr std::size_t kIndexBlockSize = 52;
inline constexpr std::size_t kLogicalBlockSize = 28;
inline constexpr std::size_t kLongValueBlockSize = 10;
inline constexpr std::size_t kDistinctKeysInHead = 4; ///< where an index's head has them

/// The mark that the head, columns and logical indexes of a new table get.
inline constexpr std::uint32_t kDefinitionMark = 0x659;

// The names of columns and logical indexes stand elsewhere and are left alone.

[[nodiscard]] Column decodeColumn(ByteView block);
void encodeColumn(Bytes& out, const Column& column);

/// A real index has a head near the start of the definition, and a block behind the names of the columns.
[[nodiscard]] RealIndex decodeIndex(ByteView head, ByteView block);
/// Appends the block and writes the head, which is all zero before. Throws InvalidArgument for too many key columns.
void encodeIndex(MutableBytes head, Bytes& out, const RealIndex& index);

[[nodiscard]] LogicalIndex decodeLogicalIndex(ByteView block);
void encodeLogicalIndex(Bytes& out, const LogicalIndex& index);

[[nodiscard]] LongValueMaps decodeLongValueMaps(ByteView block);
void encodeLongValueMaps(Bytes& out, const LongValueMaps& maps);

} // namespace jet
