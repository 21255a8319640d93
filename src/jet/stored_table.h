// The tables of an open file as their stores know them: definitions, rows and indexes, without names and rules.
#pragma once

#include "jet/format/index_key.h"
#include "jet/format/row_codec.h"
#include "jet/store/index_tree.h"
#include "jet/store/row_store.h"
#include "jet/value_check.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace jet {

/// A row's values by column number; numbers that no column has hold null.
using RowValues = std::vector<Value>;

/// A real index, ready for use.
struct TableIndex {
    std::string name; ///< of the logical index that best tells a person which one this is
    IndexTree tree;
    IndexKeyEncoder encoder;
    bool unique = false;
    bool required = false;
    bool ignoresNulls = false;

    [[nodiscard]] IndexKey keyOf(const RowValues& row) const;
    /// Whether a row with this key has an entry.
    [[nodiscard]] bool holds(const IndexKey& key) const { return !(ignoresNulls && key.allNull); }
    /// Whether another row with this key must not exist.
    [[nodiscard]] bool mustBeAlone(const IndexKey& key) const { return unique && !key.allNull; }
    [[nodiscard]] bool uses(std::uint16_t columnNumber) const;
};

/// An enforced relationship as one of its tables sees it.
struct RelationshipEnd {
    std::size_t ownIndex = 0; ///< positions in LoadedTable::indexes
    std::size_t otherIndex = 0;
    PageNumber otherTable = 0; ///< definition page
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool setNullOnDelete = false;
};

/// A definition, decoded, with what stands on it. Readers that outlive a change of the definition keep the old one.
struct LoadedTable {
    LoadedTable(Pager& pager, PageNumber page);
    LoadedTable(const LoadedTable&) = delete;
    LoadedTable& operator=(const LoadedTable&) = delete;

    std::uint64_t generation; ///< of the pager's pages
    TableDefinition definition;
    RowLayout layout;
    RowStore rows;
    std::vector<TableIndex> indexes; ///< as TableDefinition::realIndexes

    // Learned from elsewhere when the first change is made.
    std::optional<std::vector<ColumnRules>> rules; ///< by column number
    std::optional<std::vector<RelationshipEnd>> parents;
    std::optional<std::vector<RelationshipEnd>> children;

    /// Adds a row's entry to an index, unless it has none there, and counts its key where it is the first of its kind.
    void addEntry(std::size_t index, const IndexKey& key, RowPointer row);

    /// The values of a stored row that the index's key is made of; the others are null.
    [[nodiscard]] RowValues keyValues(Pager& pager, const TableIndex& index, const RowView& row) const;
    [[nodiscard]] RowValues emptyRow() const { return RowValues(columnNumbers_); }

private:
    std::size_t columnNumbers_ = 0;
};

/// A table by its definition page; loads the definition when it is first needed and again when it may have changed.
class StoredTable
{
public:
    StoredTable(Pager& pager, PageNumber page) : pager_(&pager), page_(page) {}

    [[nodiscard]] PageNumber page() const { return page_; }
    /// Requires a read.
    [[nodiscard]] const std::shared_ptr<LoadedTable>& loaded();
    /// Makes the next call of loaded() read the definition again.
    void forget() { loaded_.reset(); }

    /// The next auto-number: above the stored one and above all that were handed out before, also when their rows were
    /// never stored. Throws Overflow at the end of the numbers.
    [[nodiscard]] std::int32_t nextAutoNumber();

    /// Rises with every change of the table's rows by this connection.
    [[nodiscard]] std::uint64_t changes() const { return changes_; }
    void noteChange() { ++changes_; }

private:
    Pager* pager_;
    PageNumber page_;
    std::shared_ptr<LoadedTable> loaded_;
    std::optional<std::int32_t> highestAutoNumber_;
    std::uint64_t changes_ = 0;
};

/// What the catalogue tells of a table.
class TableFacts
{
public:
    virtual ~TableFacts() = default;
    [[nodiscard]] virtual std::string nameOf(PageNumber definitionPage) = 0;
    /// By column number, as RowValues.
    [[nodiscard]] virtual std::vector<ColumnRules> rulesOf(PageNumber definitionPage, const LoadedTable& table) = 0;
};

/// All tables that a connection has come across, one object each.
class StoredTables
{
public:
    StoredTables(Pager& pager, TableFacts& facts) : pager_(&pager), facts_(&facts) {}

    [[nodiscard]] Pager& pager() const { return *pager_; }
    [[nodiscard]] TableFacts& facts() const { return *facts_; }
    /// Good as long as this object.
    [[nodiscard]] StoredTable& at(PageNumber page);
    /// Makes every table read its definition again, after definitions changed or a change was taken back.
    void forget();

private:
    Pager* pager_;
    TableFacts* facts_;
    std::unordered_map<PageNumber, std::unique_ptr<StoredTable>> tables_;
};

} // namespace jet
