// The four tables in which a file describes itself (FORMAT.md, "System tables").
#pragma once

#include "jet/format/table_definition.h"
#include "jet/table.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace jet {

/// In the order in which the header lists their pages.
inline constexpr std::array<const char*, 4> kSystemTableNames{"MSysObjects", "MSysACEs", "MSysQueries",
                                                              "MSysRelationships"};

// Columns by number; the same in every file.
enum class ObjectColumn : std::uint16_t {
    Id,
    ParentId,
    Name,
    Type,
    DateCreate,
    DateUpdate,
    Owner,
    Flags,
    Database,
    Connect,
    ForeignName,
    RmtInfoShort,
    RmtInfoLong,
    Lv,
    LvProp,
    LvModule,
    LvExtra,
};
enum class AceColumn : std::uint16_t { ObjectId, Sid, Acm, Inheritable };
enum class QueryColumn : std::uint16_t { ObjectId, Attribute, Order, Name1, Name2, Expression, Flag, LvExtra };
enum class RelationshipColumn : std::uint16_t {
    Name,
    Flags,
    ColumnCount,
    ColumnIndex,
    Object,
    Column,
    ReferencedObject,
    ReferencedColumn,
};

enum class ObjectType : std::int16_t { Table = 1, Database = 2, Container = 3, Query = 5, Relationship = 8 };

/// Ids of objects that every file has.
namespace object_id {
inline constexpr std::int32_t kRoot = 0x0F000000; ///< has no row of its own
inline constexpr std::int32_t kTables = 0x0F000001;
inline constexpr std::int32_t kDatabases = 0x0F000002;
inline constexpr std::int32_t kRelationships = 0x0F000003;
inline constexpr std::int32_t kMSysDb = 0x10000000;
} // namespace object_id

/// Bits of an object's Flags.
inline constexpr std::uint32_t kSystemObject = 0x80000000U;
inline constexpr std::uint32_t kAccessObject = 0x00000002U;

/// Bits of a relationship's Flags.
namespace relationship_flag {
inline constexpr std::uint32_t kOneToOne = 0x00000001;
inline constexpr std::uint32_t kNotEnforced = 0x00000002;
inline constexpr std::uint32_t kCascadeUpdates = 0x00000100;
inline constexpr std::uint32_t kCascadeDeletes = 0x00001000;
inline constexpr std::uint32_t kSetNullOnDelete = 0x00002000;
} // namespace relationship_flag

/// A column of a system table with the value for a new row.
template <typename ColumnName>
[[nodiscard]] ColumnValue systemValue(ColumnName column, Value value)
{
    return {static_cast<std::uint16_t>(column), std::move(value)};
}

/// The values of one row of a system table.
class SystemRow
{
public:
    SystemRow(const TableDefinition& definition, const Row& row) : definition_(&definition), row_(&row) {}

    [[nodiscard]] RowPointer address() const { return row_->address(); }

    /// The value, or nothing for null. Throws Corrupt when the column is missing or of another type.
    template <typename T, typename ColumnName>
    [[nodiscard]] std::optional<T> get(ColumnName name) const
    {
        const Value value = valueOf(static_cast<std::uint16_t>(name));
        if (isNull(value)) {
            return std::nullopt;
        }
        if (!std::holds_alternative<T>(value)) {
            refuse();
        }
        return std::get<T>(value);
    }

    /// The text as UTF-8; null is empty.
    template <typename ColumnName>
    [[nodiscard]] std::string text(ColumnName name) const
    {
        return textOf(static_cast<std::uint16_t>(name));
    }

private:
    [[nodiscard]] Value valueOf(std::uint16_t columnNumber) const;
    [[nodiscard]] std::string textOf(std::uint16_t columnNumber) const;
    [[noreturn]] void refuse() const;

    const TableDefinition* definition_;
    const Row* row_;
};

/// The definitions of MSysObjects, MSysACEs, MSysQueries and MSysRelationships for a new file, without pages.
[[nodiscard]] std::array<TableDefinition, 4> systemTableDefinitions();

} // namespace jet
