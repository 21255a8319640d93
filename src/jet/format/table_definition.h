// A table's definition as stored (FORMAT.md, "Table definitions").
#pragma once

#include "jet/format/row_pointer.h"
#include "jet/format/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jet {

/// The language and version whose rules order a text; only 1033 version 0 ("General legacy") can be written in an
/// index.
struct SortOrder {
    std::uint16_t language = 1033;
    std::uint8_t version = 0;
    bool operator==(const SortOrder&) const = default;
};

/// Limits of the format, of which Access makes no exception.
inline constexpr std::size_t kMaximumColumns = 255;
inline constexpr std::size_t kMaximumKeyColumns = 10; ///< of an index

struct Column {
    std::string name; ///< UTF-8
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0;       ///< identity; the bit in the null mask; never reused
    std::uint16_t variableSlot = 0; ///< variable columns: place in the row's offset table
    std::uint16_t fixedOffset = 0;  ///< fixed columns: place in the row's fixed part
    std::uint16_t ordinal = 0;      ///< display order
    std::uint16_t length = 0;       ///< bytes: width, or the maximum of Text and Binary; 0 for Memo and Ole
    std::uint8_t flags = 0;         ///< as stored; see the constants below
    std::uint8_t extraFlags = 0;    ///< as stored; kCompressible
    SortOrder sortOrder;            ///< Text and Memo
    std::uint8_t precision = 0;     ///< Numeric
    std::uint8_t scale = 0;         ///< Numeric
    Bytes preserved;                ///< the descriptor as read, for its unknown bytes; empty for a new column

    static constexpr std::uint8_t kFixed = 0x01;
    static constexpr std::uint8_t kOrdinary = 0x02;
    static constexpr std::uint8_t kAutoNumber = 0x04;
    static constexpr std::uint8_t kSystem = 0x10;
    static constexpr std::uint8_t kScrambled = 0x20;
    static constexpr std::uint8_t kGuidAutoNumber = 0x40;
    static constexpr std::uint8_t kHyperlink = 0x80;
    static constexpr std::uint8_t kCompressible = 0x01; ///< in extraFlags

    [[nodiscard]] bool isFixed() const { return (flags & kFixed) != 0; }
    /// Whether a row's fixed part holds its value; a fixed Boolean is a bit of the null mask.
    [[nodiscard]] bool takesFixedRoom() const { return isFixed() && type != ColumnType::Boolean; }
    [[nodiscard]] bool isAutoNumber() const { return (flags & kAutoNumber) != 0; }
    [[nodiscard]] bool isLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
    [[nodiscard]] bool isText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
    [[nodiscard]] bool isCompressible() const { return (extraFlags & kCompressible) != 0; }
};

struct KeyColumn {
    std::uint16_t columnNumber = 0;
    bool ascending = true;
    bool operator==(const KeyColumn&) const = default;
};

/// A B+tree that is really there. Several logical indexes may share one.
struct RealIndex {
    std::vector<KeyColumn> columns; ///< 1 to 10
    RowPointer pages;               ///< the usage map of the tree's pages
    PageNumber root = 0;            ///< never changes
    std::uint8_t flags = 0;
    std::uint32_t distinctKeys = 0; ///< a statistic: keys ever inserted
    Bytes preserved;                ///< both its blocks as read, for their unknown bytes; empty for a new index

    static constexpr std::uint8_t kUnique = 0x01;
    static constexpr std::uint8_t kIgnoreNulls = 0x02;
    static constexpr std::uint8_t kRequired = 0x08;
    static constexpr std::uint8_t kAlways = 0x80;

    [[nodiscard]] bool isUnique() const { return (flags & kUnique) != 0; }
    [[nodiscard]] bool ignoresNulls() const { return (flags & kIgnoreNulls) != 0; }
    [[nodiscard]] bool isRequired() const { return (flags & kRequired) != 0; }
};

/// A name for a real index, as primary key, ordinary index or one side of an enforced relationship.
struct LogicalIndex {
    enum class Kind : std::uint8_t { Ordinary = 0, PrimaryKey = 1, ForeignKey = 2 };
    enum class Role : std::uint8_t { None = 0, Referenced = 1, Referencing = 2 };

    std::string name; ///< UTF-8
    std::uint32_t number = 0;
    std::uint32_t realIndex = 0; ///< position in TableDefinition::realIndexes
    Kind kind = Kind::Ordinary;
    Role role = Role::None;
    std::int32_t otherIndexNumber = -1; ///< relationships: the logical index in the other table
    PageNumber otherTable = 0;          ///< relationships: the other table's definition page
    std::uint8_t cascadeUpdates = 0;    ///< as stored: bit 0
    std::uint8_t cascadeDeletes = 0;    ///< as stored: bit 0 delete, bit 1 set null
    Bytes preserved;                    ///< the block as read, for its unknown bytes; empty for a new index
};

/// The usage maps of one Memo or Ole column's pages.
struct LongValueMaps {
    std::uint16_t columnNumber = 0;
    RowPointer owned;
    RowPointer withSpace; ///< page 0: there is none
};

/// Real indexes of one table, those of relationships included.
inline constexpr std::size_t kMaximumIndexes = 32;

struct TableDefinition {
    static constexpr std::uint8_t kUserTable = 0x4E;   ///< "N" in the file
    static constexpr std::uint8_t kSystemTable = 0x53; ///< "S"

    std::uint32_t rowCount = 0;
    std::int32_t lastAutoNumber = 0;
    std::uint8_t kind = kUserTable;
    std::uint16_t maximumColumns = 0;         ///< columns ever created
    std::uint16_t maximumVariableColumns = 0; ///< variable columns ever created
    RowPointer ownedPages;
    RowPointer pagesWithSpace;
    std::vector<Column> columns; ///< in stored order
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> logicalIndexes;
    std::vector<LongValueMaps> longValues;
    Bytes preserved; ///< the head as read, for its unknown bytes; empty for a new table

    /// The column of that number, or null.
    [[nodiscard]] const Column* columnByNumber(std::uint16_t number) const;
    /// The column of that name without regard to ASCII case, or null.
    [[nodiscard]] const Column* columnByName(const std::string& name) const;
    /// Columns in the order in which a person sees them: by ordinal where these differ, else by number.
    [[nodiscard]] std::vector<const Column*> displayOrder() const;

    /// Throws Corrupt when its parts contradict one another: numbers given twice, columns that share bytes of a row,
    /// indexes over what is not there.
    void validate() const;
};

} // namespace jet
