// The check of one index of a table against the table's rows.
#pragma once

#include "jet/check_ledger.h"
#include "jet/format/index_key.h"
#include "jet/format/row_codec.h"
#include "jet/format/table_definition.h"
#include "jet/store/index_tree.h"
#include "jet/store/row_store.h"

#include <string>

namespace jet {

/// What the check of the table knows of its rows by then.
struct CheckedRows {
    const RowSet& all;
    const RowSet& unreadable; ///< those of `all` that cannot be read in full
    bool complete = false;    ///< whether the table's pages are sound, so that `all` is indeed all
};

class IndexCheck
{
public:
    /// `table` is the page of the definition, `position` the place of the real index in it, `title` how a fault's text
    /// begins. All arguments must outlive the check.
    IndexCheck(Pager& pager, FaultList& faults, PageNumber table, const TableDefinition& definition,
               const RowLayout& layout, std::size_t position, CheckedRows rows, std::string title);

    /// Walks the tree. Every entry must be the key of the row that it names; as no entry is there twice, rows and
    /// entries are one to one when besides every row that needs an entry has one. Throws what reading the table throws.
    void run();

private:
    void damage(const std::string& text);
    [[nodiscard]] bool isPrimaryKey() const;
    [[nodiscard]] IndexKey keyOf(const StoredRow& row) const;
    void checkEntry(ByteView key, RowPointer row);
    void checkKey(ByteView key, RowPointer row, const IndexKey& expected);
    void checkRowsWithoutEntry();

    Pager* pager_;
    FaultList* faults_;
    const TableDefinition* definition_;
    const RowLayout* layout_;
    const RealIndex* index_;
    std::size_t position_;
    CheckedRows rows_;
    std::string title_;
    IndexTree tree_;
    RowStore store_;
    IndexKeyEncoder encoder_;
    bool allowsNulls_;
    bool allowsDuplicates_;

    RowSet entries_; ///< the rows that entries were found for
    Bytes previous_; ///< the key of the row before, in the order of the index
};

} // namespace jet
