// One page of an index tree, read and changed in place (FORMAT.md, "Index pages").
#pragma once

#include "jet/disk/page.h"
#include "jet/format/index_entry.h"
#include "jet/format/row_pointer.h"

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
inline constexpr std::size_t kMaximumKeyLength = kMaximumIndexEntry - kIndexEntryRowSize - kIndexEntryChildSize;

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

/// Changes nothing but the link.
void setPrevious(Page& page, PageNumber previous);
void setNext(Page& page, PageNumber next);

} // namespace jet
