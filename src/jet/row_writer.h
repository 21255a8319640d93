// Changes of rows with all their rules: types, keys, relationships, auto-numbers (FORMAT.md, "Changing data").
#pragma once

#include "jet/foreign_keys.h"
#include "jet/table.h"

#include <span>
#include <string>

namespace jet {

/// The name of an index that cannot be kept up and so forbids changes of the table; empty when there is none.
[[nodiscard]] std::string unsupportedIndexOf(const LoadedTable& table);

/// All functions require a transaction. When one throws, nothing has changed.
class RowWriter
{
public:
    explicit RowWriter(StoredTables& tables) : tables_(&tables), foreignKeys_(tables) {}

    RowPointer insert(StoredTable& table, std::span<const ColumnValue> values);
    void update(StoredTable& table, RowPointer address, std::span<const ColumnValue> values);
    void erase(StoredTable& table, RowPointer address);

private:
    struct KeyChange {
        std::size_t index = 0;
        IndexKey before;
        IndexKey after;
    };
    /// What an update does to the row's keys.
    struct RowChange {
        RowValues before; ///< of the columns of all indexes that have a changed column; the others are null
        RowValues after;  ///< the same, with the changes
        std::vector<KeyChange> keys;

        [[nodiscard]] bool changesKey(std::size_t index) const;
    };
    /// A row of another table, or of the same one, and the relationship by which it refers to the row at hand.
    struct ReferringRow {
        RelationshipEnd relationship;
        RowPointer address;
    };
    struct RowAt {
        StoredTable* table = nullptr;
        RowPointer address;
    };

    [[nodiscard]] const std::vector<ColumnRules>& rulesOf(StoredTable& table);
    [[nodiscard]] RowValues newRow(StoredTable& table, std::span<const ColumnValue> values);
    /// The new values as the columns take them.
    [[nodiscard]] std::vector<ColumnValue> checkedChanges(StoredTable& table, const LoadedTable& loaded,
                                                          const RowView& row, std::span<const ColumnValue> values);
    [[nodiscard]] RowChange rowChange(const LoadedTable& table, const RowView& row,
                                      std::span<const ColumnValue> changes);
    /// Throws MissingParent where a new key refers to no row.
    void requireParents(StoredTable& table, RowPointer address, const RowChange& change);
    /// The rows whose reference follows the key that changes. Throws HasChildren where a relationship does not allow
    /// it.
    [[nodiscard]] std::vector<ReferringRow> rowsToFollow(StoredTable& table, RowPointer address,
                                                         const RowChange& change);
    /// `depth`: updates that set this one off.
    void update(StoredTable& table, RowPointer address, std::span<const ColumnValue> values, unsigned depth);
    void eraseOne(const RowAt& row, const StoredRow& stored, std::vector<RowAt>& doomed);
    void removeEntry(LoadedTable& table, std::size_t index, const IndexKey& key, RowPointer address);
    [[nodiscard]] Value slotValue(const LoadedTable& table, const Column& column, const Value& value);
    void freeLongValue(const LoadedTable& table, const Column& column, const RowView& row);
    void saveCounters(StoredTable& table, const LoadedTable& loaded);

    StoredTables* tables_;
    ForeignKeys foreignKeys_;
};

} // namespace jet
