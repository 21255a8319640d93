// The rows of one table, as bytes, over its data pages (FORMAT.md, "Data pages and rows" and "Changing data").
//
// Invariants:
//  1. Scan order is the order of entry. Scanning walks pages in ascending order and slots in order; a new row is always
//     appended to the table's highest page, or to a page allocated above it. Room inside earlier pages is used only for
//     rows that grow there and for the data of moved rows, which scans skip.
//  2. A row's address is never given to another row. Slot numbers are not used again while their page lives, and the
//     highest page is kept even when it is empty, so new rows never return to a page number that the table once had.
//  3. A moved row is one Pointer slot and one Moved slot; what this store writes never chains.
//  4. Every owned page is in the map of owned pages; those in which another row might fit are in the map of pages with
//     space as well, and no others.
//
// Adding a row reads the maps' ends and the last page alone, whatever the size of the table.
#pragma once

#include "jet/format/data_page.h"
#include "jet/store/usage_map.h"

#include <optional>
#include <vector>

namespace jet {

/// A row as it was when it was read; holds its page.
struct StoredRow {
    RowPointer address;      ///< the row's identity, also when its data moved
    PageNumber dataPage = 0; ///< where the bytes are; for error messages
    PageRef page;
    ByteView bytes; ///< lies in `page`
};

class RowStore
{
public:
    /// `owner` is the table's definition page.
    RowStore(Pager& pager, PageNumber owner, RowPointer ownedPages, RowPointer pagesWithSpace);

    /// Walks all rows; starts before the first. Requires a read or transaction for each call of next(). The page at
    /// hand is seen as it was when the cursor reached it; changes of later pages are seen.
    class Cursor
    {
    public:
        /// Moves to the next row; false at the end.
        bool next();
        [[nodiscard]] const StoredRow& row() const { return row_; }

    private:
        friend class RowStore;
        explicit Cursor(const RowStore& store) : store_(&store) {}

        const RowStore* store_;
        PageNumber pageNumber_ = 0;
        PageRef page_;
        std::size_t nextSlot_ = 0;
        StoredRow row_;
    };
    /// The store must outlive the cursor.
    [[nodiscard]] Cursor scan() const { return Cursor(*this); }

    /// The row at the address; nothing when there is none (deleted, or the page is not this table's any more).
    [[nodiscard]] std::optional<StoredRow> read(RowPointer address) const;

    // Changes; each requires a transaction. Rows are at most kMaximumRowSize bytes and at least 4.
    RowPointer insert(ByteView row);
    /// Throws NoSuchObject when there is no row at the address.
    void update(RowPointer address, ByteView row);
    void erase(RowPointer address);

private:
    /// The page when it holds rows of this table, else null.
    [[nodiscard]] PageRef readOwned(PageNumber page) const;
    /// A page of the map of owned pages. Throws Corrupt when it does not hold rows of this table.
    [[nodiscard]] PageRef readMember(PageNumber page) const;
    /// The row whose slot is on the page, if the slot is the address of one.
    [[nodiscard]] std::optional<StoredRow> resolve(RowPointer address, const PageRef& page) const;
    /// The slots from the row's address to its data; one for a row that never moved, none for no row.
    [[nodiscard]] std::vector<RowPointer> slotsOf(RowPointer address) const;

    RowPointer append(PageNumber page, ByteView row, SlotKind kind);
    RowPointer appendMoved(ByteView row);
    [[nodiscard]] bool replaceWhereRoom(RowPointer slot, ByteView row, SlotKind kind);
    void replace(RowPointer slot, ByteView bytes, SlotKind kind);
    void remove(RowPointer slot);
    [[nodiscard]] PageNumber addPage(PageNumber after);
    void freeIfEmpty(PageNumber page);
    void noteSpace(PageNumber page);

    Pager* pager_;
    PageNumber owner_;
    UsageMap owned_;
    UsageMap withSpace_;
};

} // namespace jet
