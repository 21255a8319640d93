// What a database is made of besides rows: descriptions of tables, relationships and saved queries.
#pragma once

#include "jet/format/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jet {

// --- Tables to be made -------------------------------------------------------------------------------------------

struct ColumnSpec {
    std::string name; ///< UTF-8, at most 64 characters
    ColumnType type = ColumnType::Long;
    std::uint16_t characters = 0; ///< Text and Binary: the maximum (Text counts UTF-16 units)
    bool autoNumber = false;      ///< Long only
    bool compressible = true;     ///< Text and Memo: Latin text may be stored one byte a character
    std::uint8_t precision = 18;  ///< Numeric
    std::uint8_t scale = 0;       ///< Numeric
};

struct IndexSpec {
    struct Key {
        std::string column;
        bool ascending = true;
    };
    std::string name;
    std::vector<Key> keys;
    bool primaryKey = false; ///< implies unique and required
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
};

struct TableSpec {
    std::string name;
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
};

// --- Relationships -----------------------------------------------------------------------------------------------

struct Relationship {
    struct Pair {
        std::string referencing; ///< column of the "many" table
        std::string referenced;  ///< column of the "one" table
    };
    std::string name;
    std::string referencingTable;
    std::string referencedTable;
    std::vector<Pair> columns;
    bool enforced = false;
    bool oneToOne = false;
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool setNullOnDelete = false;
};

// --- Saved queries -----------------------------------------------------------------------------------------------

/// What a row of a saved query is about: its attribute, as stored.
namespace query_attribute {
inline constexpr std::uint8_t kStart = 0;
inline constexpr std::uint8_t kType = 1;
inline constexpr std::uint8_t kParameter = 2;
inline constexpr std::uint8_t kOptions = 3;
inline constexpr std::uint8_t kExternalDatabase = 4;
inline constexpr std::uint8_t kInput = 5;
inline constexpr std::uint8_t kOutput = 6;
inline constexpr std::uint8_t kJoin = 7;
inline constexpr std::uint8_t kWhere = 8;
inline constexpr std::uint8_t kGroupBy = 9;
inline constexpr std::uint8_t kHaving = 10;
inline constexpr std::uint8_t kOrderBy = 11;
inline constexpr std::uint8_t kEnd = 255;
} // namespace query_attribute

/// One row of a saved query as stored (FORMAT.md, "Saved queries").
struct QueryRow {
    std::uint8_t attribute = 0;
    std::uint32_t order = 0; ///< counted from 1 for each attribute
    std::optional<std::int16_t> flag;
    std::optional<std::u16string> expression;
    std::optional<std::u16string> name1;
    std::optional<std::u16string> name2;
};

struct SavedQuery {
    std::string name;
    std::int32_t flags = 0;     ///< the kind in the bits 0xF0, as stored
    std::vector<QueryRow> rows; ///< ordered by attribute and order
};

/// The query's SQL in Jet's dialect, rebuilt from its rows, with names in brackets. Throws Corrupt for rows that make
/// no statement.
[[nodiscard]] std::string sqlOf(const SavedQuery& query);

} // namespace jet
