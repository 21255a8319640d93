#include "jet/format/data_page.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint16_t kDataPageMark = 0x0101;

// A slot's word: where the row begins, and what it is.
constexpr std::size_t kOffsetMask = 0x1FFF;
constexpr std::size_t kPointerFlag = 0x4000;
constexpr std::size_t kMovedFlag = 0x8000;

std::size_t flagsOf(SlotKind kind)
{
    switch (kind) {
    case SlotKind::Row:
        return 0;
    case SlotKind::Pointer:
        return kPointerFlag;
    case SlotKind::Moved:
        return kMovedFlag;
    case SlotKind::Deleted:
        break;
    }
    return kPointerFlag | kMovedFlag;
}

} // namespace

bool isDataPageOf(ByteView page, std::uint32_t owner)
{
    return page.size() == kPageSize && getU16(page, DataPage::kMark) == kDataPageMark &&
           getU32(page, DataPage::kOwner) == owner;
}

DataPage::DataPage(ByteView page, PageNumber number) : page_(page), number_(number)
{
    if (page.size() != kPageSize || getU16(page, kMark) != kDataPageMark) {
        throw Error(ErrorCode::Corrupt, number, "A page that should hold rows does not");
    }
    slots_ = getU16(page, kSlotCount);
    if (slots_ > kMaximumSlots) {
        throw Error(ErrorCode::Corrupt, number, "A page names " + std::to_string(slots_) + " rows");
    }
}

std::size_t DataPage::word(std::size_t row) const
{
    if (row >= slots_) {
        throw Error(ErrorCode::Corrupt, number_, "There is no row " + std::to_string(row));
    }
    return getU16(page_, slotAt(row));
}

std::size_t DataPage::start(std::size_t row) const
{
    return word(row) & kOffsetMask;
}

std::size_t DataPage::end(std::size_t row) const
{
    return row == 0 ? kPageSize : start(row - 1);
}

SlotKind DataPage::kind(std::size_t row) const
{
    switch (word(row) & (kPointerFlag | kMovedFlag)) {
    case 0:
        return SlotKind::Row;
    case kPointerFlag:
        return SlotKind::Pointer;
    case kMovedFlag:
        return SlotKind::Moved;
    default:
        return SlotKind::Deleted;
    }
}

ByteView DataPage::bytes(std::size_t row) const
{
    const std::size_t from = start(row);
    const std::size_t to = end(row);
    if (from > to || to > kPageSize || from < slotAt(slots_)) {
        throw Error(ErrorCode::Corrupt, number_, "The bounds of row " + std::to_string(row) + " contradict its page");
    }
    return page_.subspan(from, to - from);
}

RowPointer DataPage::target(std::size_t row) const
{
    const ByteView slot = bytes(row);
    if (slot.size() < kRowPointerSize) {
        throw Error(ErrorCode::Corrupt, number_, "The pointer in row " + std::to_string(row) + " is cut short");
    }
    return getRowPointer(slot, 0);
}

std::size_t DataPage::freeBytes() const
{
    const std::size_t table = slotAt(slots_);
    const std::size_t lowest = slots_ == 0 ? kPageSize : start(slots_ - 1);
    return lowest > table ? lowest - table : 0;
}

std::size_t DataPage::reclaimableBytes() const
{
    std::size_t total = freeBytes();
    for (std::size_t row = 0; row < slots_; ++row) {
        if (kind(row) == SlotKind::Deleted) {
            total += bytes(row).size();
        }
    }
    return total;
}

bool DataPage::fits(std::size_t length) const
{
    return slots_ < kMaximumSlots && reclaimableBytes() >= length + kSlotSize;
}

std::size_t DataPage::room(std::size_t row) const
{
    return reclaimableBytes() + (kind(row) == SlotKind::Deleted ? 0 : bytes(row).size());
}

bool DataPage::isEmpty() const
{
    for (std::size_t row = 0; row < slots_; ++row) {
        if (kind(row) != SlotKind::Deleted) {
            return false;
        }
    }
    return true;
}

void DataPage::validate() const
{
    for (std::size_t row = 0; row < slots_; ++row) {
        static_cast<void>(bytes(row));
        if (kind(row) == SlotKind::Pointer) {
            static_cast<void>(target(row));
        }
    }
    if (storedFreeBytes() != freeBytes()) {
        throw Error(ErrorCode::Corrupt, number_, "A page counts its free bytes wrongly");
    }
}

void DataPageEditor::initialize(MutableBytes page, std::uint32_t owner)
{
    std::fill(page.begin(), page.end(), std::byte{0});
    putU16(page, DataPage::kMark, kDataPageMark);
    putU16(page, DataPage::kFreeBytes, DataPage::kCapacity);
    putU32(page, DataPage::kOwner, owner);
}

DataPageEditor::DataPageEditor(MutableBytes page, PageNumber number) : page_(page), number_(number)
{
    const DataPage before = view();
    for (std::size_t row = 0; row < before.slotCount(); ++row) {
        static_cast<void>(before.bytes(row));
    }
}

std::uint8_t DataPageEditor::append(ByteView row, SlotKind kind)
{
    if (!view().fits(row.size())) {
        throw Error(ErrorCode::InvalidArgument, number_, "A row does not fit on its page");
    }
    if (view().freeBytes() < row.size() + DataPage::kSlotSize) {
        closeGaps();
    }
    const std::size_t slot = view().slotCount();
    const std::size_t begin = (slot == 0 ? kPageSize : view().start(slot - 1)) - row.size();
    putU16(page_, DataPage::kSlotCount, static_cast<std::uint16_t>(slot + 1));
    putU16(page_, DataPage::slotAt(slot), static_cast<std::uint16_t>(begin | flagsOf(kind)));
    putBytes(page_, begin, row);
    putFreeBytes();
    return static_cast<std::uint8_t>(slot);
}

void DataPageEditor::replace(std::uint8_t row, ByteView bytes, SlotKind kind)
{
    if (view().room(row) < bytes.size()) {
        throw Error(ErrorCode::InvalidArgument, number_, "A row does not fit on its page");
    }
    const std::size_t held = view().bytes(row).size();
    if (bytes.size() > held && bytes.size() - held > view().freeBytes()) {
        closeGaps();
    }
    resize(row, bytes.size());
    const std::size_t begin = view().start(row);
    putU16(page_, DataPage::slotAt(row), static_cast<std::uint16_t>(begin | flagsOf(kind)));
    putBytes(page_, begin, bytes);
    putFreeBytes();
}

MutableBytes DataPageEditor::bytes(std::uint8_t row)
{
    const std::size_t length = view().bytes(row).size();
    return slice(page_, view().start(row), length);
}

// Moves the rows below so that the slot gets the length; the slot keeps its end.
void DataPageEditor::resize(std::size_t row, std::size_t length)
{
    const std::size_t end = view().end(row);
    const std::size_t oldStart = view().start(row);
    const std::size_t newStart = end - length;
    if (oldStart == newStart) {
        return;
    }
    const std::size_t slots = view().slotCount();
    const std::size_t lowest = view().start(slots - 1);
    const std::size_t newLowest = lowest + newStart - oldStart;
    putBytes(page_, newLowest, slice(ByteView(page_), lowest, oldStart - lowest));
    for (std::size_t i = row; i < slots; ++i) {
        const std::size_t word = view().word(i);
        const std::size_t moved = (word & kOffsetMask) + newStart - oldStart;
        putU16(page_, DataPage::slotAt(i), static_cast<std::uint16_t>(moved | (word & ~kOffsetMask)));
    }
}

// Takes from deleted slots what they still hold.
void DataPageEditor::closeGaps()
{
    const std::size_t slots = view().slotCount();
    for (std::size_t row = 0; row < slots; ++row) {
        if (view().kind(row) == SlotKind::Deleted) {
            resize(row, 0);
        }
    }
}

void DataPageEditor::putFreeBytes()
{
    putU16(page_, DataPage::kFreeBytes, static_cast<std::uint16_t>(view().freeBytes()));
}

} // namespace jet
