// A page of rows and its slots (FORMAT.md, "Data pages and rows").
#pragma once

#include "jet/disk/page.h"
#include "jet/format/row_pointer.h"

#include <cstdint>

namespace jet {

/// Owners of data pages that hold no table's rows.
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C; ///< "LVAL" in the file
inline constexpr std::uint32_t kMapPageOwner = 0;
inline constexpr std::uint32_t kGlobalMapPageOwner = 1;

enum class SlotKind {
    Row,
    Pointer, ///< the row has moved: the slot begins with the pointer to its data
    Moved,   ///< data of a row whose address is a Pointer slot elsewhere
    Deleted, ///< the slot number is not used again while the page lives
};

/// Whether the page is a data page in use of that owner. False, not an error, for anything else.
[[nodiscard]] bool isDataPageOf(ByteView page, std::uint32_t owner);

/// Reads a data page in place; the bytes must outlive it. Each slot is checked when it is asked for, so that looking at
/// one row costs the same on every page.
class DataPage
{
public:
    // In bytes, but for the number of slots: a row pointer has one byte for the slot.
    static constexpr std::size_t kHeaderSize = 14;
    static constexpr std::size_t kSlotSize = 2;
    static constexpr std::size_t kMaximumSlots = 255;
    static constexpr std::size_t kCapacity = kPageSize - kHeaderSize; ///< free bytes of an empty page

    /// Throws Corrupt when this is no data page in use or its slot table does not fit.
    DataPage(ByteView page, PageNumber number);

    [[nodiscard]] PageNumber number() const { return number_; }
    [[nodiscard]] std::uint32_t owner() const { return getU32(page_, kOwner); }
    [[nodiscard]] std::size_t slotCount() const { return slots_; }
    /// As the page says.
    [[nodiscard]] std::size_t storedFreeBytes() const { return getU16(page_, kFreeBytes); }
    /// As the slots say: between the slot table and the lowest row.
    [[nodiscard]] std::size_t freeBytes() const;
    /// Free bytes once what deleted slots still hold is given up.
    [[nodiscard]] std::size_t reclaimableBytes() const;
    /// Whether a new row of that many bytes has room, deleted rows' bytes given up.
    [[nodiscard]] bool fits(std::size_t length) const;
    /// How long the row could become.
    [[nodiscard]] std::size_t room(std::size_t row) const;
    [[nodiscard]] bool isEmpty() const; ///< every slot is deleted, or there is none

    [[nodiscard]] SlotKind kind(std::size_t row) const;
    /// The slot's bytes, whatever its kind. Throws Corrupt for a row past the slot table or bounds that contradict.
    [[nodiscard]] ByteView bytes(std::size_t row) const;
    /// Where the data of a Pointer slot is.
    [[nodiscard]] RowPointer target(std::size_t row) const;

    /// Checks everything: all slots, the stored free count. Throws Corrupt.
    void validate() const;

private:
    friend class DataPageEditor;
    friend bool isDataPageOf(ByteView page, std::uint32_t owner);

    // Offsets in the page.
    static constexpr std::size_t kMark = 0;
    static constexpr std::size_t kFreeBytes = 2;
    static constexpr std::size_t kOwner = 4;
    static constexpr std::size_t kSlotCount = 12;

    [[nodiscard]] static std::size_t slotAt(std::size_t row) { return kHeaderSize + kSlotSize * row; }
    [[nodiscard]] std::size_t word(std::size_t row) const;
    [[nodiscard]] std::size_t start(std::size_t row) const;
    [[nodiscard]] std::size_t end(std::size_t row) const;

    ByteView page_;
    PageNumber number_;
    std::size_t slots_;
};

/// Changes a data page in place. Rows stay packed at the end of the page and the free count is kept exact.
class DataPageEditor
{
public:
    /// Turns any bytes into an empty data page.
    static void initialize(MutableBytes page, std::uint32_t owner);

    /// Throws Corrupt when the page does not hold together; nothing is moved on such a page.
    DataPageEditor(MutableBytes page, PageNumber number);

    [[nodiscard]] DataPage view() const { return DataPage(page_, number_); }

    /// Appends a slot. Requires view().fits(row.size()).
    std::uint8_t append(ByteView row, SlotKind kind = SlotKind::Row);
    /// Gives the slot new bytes and a kind; rows below move. Requires view().room(row) >= bytes.size().
    void replace(std::uint8_t row, ByteView bytes, SlotKind kind);
    /// Marks the slot as deleted and closes the gap.
    void remove(std::uint8_t row) { replace(row, {}, SlotKind::Deleted); }
    /// Bytes of the slot for changes that keep the length.
    [[nodiscard]] MutableBytes bytes(std::uint8_t row);

private:
    void resize(std::size_t row, std::size_t length);
    void closeGaps();
    void putFreeBytes();

    MutableBytes page_;
    PageNumber number_;
};

} // namespace jet
