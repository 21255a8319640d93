// One page of an index tree (FORMAT.md, "Index pages").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/table_definition.h"

#include <cstdint>
#include <string>
#include <vector>

namespace jet {

enum class IndexPageKind : std::uint8_t { Node = 3, Leaf = 4 };

/// Bytes of a page that entries may fill: all behind the header and the mask.
inline constexpr std::size_t kIndexEntryArea = 3616;
/// The longest entry of either kind: any two fit on a page, so that every overfull page can be split in two.
inline constexpr std::size_t kMaximumIndexEntry = kIndexEntryArea / 2;
/// The longest key: a node's entry adds a row and a child to it.
inline constexpr std::size_t kMaximumKeyLength = kMaximumIndexEntry - 8;

/// What an index page says about itself besides its entries.
struct IndexPageHeader {
    IndexPageKind kind = IndexPageKind::Leaf;
    PageNumber owner = 0;    ///< the table's definition page
    PageNumber previous = 0; ///< of the same level; 0: none
    PageNumber next = 0;
    PageNumber tail = 0; ///< nodes over leaves: the last child, which no entry names; 0: none
};

/// A page as it lies in the file, made ready for binary search; entries are not copied. It holds the page.
class IndexPage
{
public:
    /// Checks the frame (type, free count, mask, prefix, the length of every entry). Throws Corrupt.
    IndexPage(PageRef page, PageNumber number);

    [[nodiscard]] PageNumber number() const { return number_; }
    [[nodiscard]] const PageRef& page() const { return page_; }
    [[nodiscard]] const IndexPageHeader& header() const { return header_; }
    [[nodiscard]] bool isLeaf() const { return header_.kind == IndexPageKind::Leaf; }
    [[nodiscard]] std::size_t size() const { return ends_.size(); }
    [[nodiscard]] std::size_t prefixLength() const { return prefix_; }

    /// The first entry that is not before the key and row; size() when there is none.
    [[nodiscard]] std::size_t lowerBound(ByteView key, RowPointer row) const;
    /// Below, equal to or above 0, as the entry stands to the key and row.
    [[nodiscard]] int compare(std::size_t entry, ByteView key, RowPointer row) const;

    /// Replaces the buffer's content by the entry's key.
    void copyKey(std::size_t entry, Bytes& key) const;
    /// Appends the whole entry, prefix included.
    void appendEntry(std::size_t entry, Bytes& bytes) const;
    [[nodiscard]] RowPointer row(std::size_t entry) const;
    /// The child that the entry names (nodes only).
    [[nodiscard]] PageNumber child(std::size_t entry) const;

    // Small changes are made in the page's bytes, which are far fewer than its entries written out: `page` is the page
    // for changing, with the same content. A new entry must find room and share the prefix.
    [[nodiscard]] bool hasRoomInPlace(std::size_t position, ByteView entry) const;
    void insertInPlace(Page& page, std::size_t position, ByteView entry) const;
    /// Not the last entry of all, nor the one that carries the prefix of others.
    [[nodiscard]] bool canEraseInPlace(std::size_t position) const;
    void eraseInPlace(Page& page, std::size_t position) const;

private:
    [[nodiscard]] std::size_t start(std::size_t entry) const { return entry == 0 ? 0 : ends_[entry - 1]; }
    [[nodiscard]] std::size_t used() const { return ends_.empty() ? 0 : ends_.back(); }
    /// What the entry shares with the first one and does not store.
    [[nodiscard]] ByteView shared(std::size_t entry) const;
    /// What the entry stores.
    [[nodiscard]] ByteView stored(std::size_t entry) const;
    [[nodiscard]] std::size_t keyLength(std::size_t entry) const;
    /// Four bytes of the whole entry as a number, most significant byte first.
    [[nodiscard]] std::uint32_t numberAt(std::size_t entry, std::size_t offset) const;
    void readEntries();
    [[noreturn]] void refuse(const std::string& what) const;

    PageRef page_;
    PageNumber number_ = 0;
    IndexPageHeader header_;
    std::size_t prefix_ = 0;
    std::vector<std::uint16_t> ends_; ///< where each entry ends, counted from the start of the entry area
};

/// A page's content for changing: whole entries without a common prefix, back to back. It may hold more than fits a
/// page.
class IndexPageContent
{
public:
    explicit IndexPageContent(const IndexPageHeader& pageHeader) : header(pageHeader) {}
    explicit IndexPageContent(const IndexPage& page);

    IndexPageHeader header;

    [[nodiscard]] std::size_t size() const { return ends_.size(); }
    [[nodiscard]] bool isEmpty() const { return ends_.empty(); }
    [[nodiscard]] ByteView entry(std::size_t position) const;
    void insert(std::size_t position, ByteView entry);
    void replace(std::size_t position, ByteView entry);
    void erase(std::size_t position);
    /// Moves the first `count` entries to a content with the same header.
    [[nodiscard]] IndexPageContent takeFirst(std::size_t count);

    /// Whether the entries fit a page, with a common prefix where they need one.
    [[nodiscard]] bool fits() const;
    /// For content that does not fit: how many leading entries to split off so that both parts fit and are about as
    /// long.
    [[nodiscard]] std::size_t middle() const;
    /// For the same content: how many leading entries fit a page, so that as few as can be are split off behind them.
    [[nodiscard]] std::size_t leadingThatFit() const;
    /// Writes everything the page says; what other programs keep in its unknown bytes stays. Requires fits().
    void encode(Page& page) const;

private:
    [[nodiscard]] std::size_t start(std::size_t position) const { return position == 0 ? 0 : ends_[position - 1]; }
    /// The longest start that all entries of the run share and that leaves something of each.
    [[nodiscard]] std::size_t commonPrefix(std::size_t first, std::size_t count) const;
    /// Bytes that the run of entries takes with its common prefix stored once.
    [[nodiscard]] std::size_t compactSize(std::size_t first, std::size_t count) const;

    Bytes bytes_;
    std::vector<std::uint32_t> ends_;
};

/// Changes nothing but the link.
void setPrevious(Page& page, PageNumber previous);
void setNext(Page& page, PageNumber next);

/// A leaf's entry: key, page and row, the page most significant byte first.
[[nodiscard]] Bytes makeLeafEntry(ByteView key, RowPointer row);
/// A node's entry for the child whose last leaf entry this is.
[[nodiscard]] Bytes makeNodeEntry(ByteView lastLeafEntry, PageNumber child);
/// The two parts of a node's entry.
[[nodiscard]] ByteView leafEntryOf(ByteView nodeEntry);
[[nodiscard]] PageNumber childOf(ByteView nodeEntry);

} // namespace jet
