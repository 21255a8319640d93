#include "jet/format/index_page.h"

#include "jet/format/index_entry.h"
#include "jet/format/index_page_layout.h"

#include <algorithm>
#include <bit>

namespace jet {

using namespace index_page_layout;

namespace {

constexpr std::size_t kUsualEntries = 512; // room for what most pages hold

/// Bytes behind the key of an entry.
std::size_t trailerSize(IndexPageKind kind)
{
    return kind == IndexPageKind::Leaf ? kIndexEntryRowSize : kIndexEntryRowSize + kIndexEntryChildSize;
}

} // namespace

IndexPage::IndexPage(PageRef page, PageNumber number) : page_(std::move(page)), number_(number)
{
    const ByteView bytes(*page_);
    const std::uint8_t kind = getU8(bytes, kKind);
    const bool isIndexPage = kind == static_cast<std::uint8_t>(IndexPageKind::Leaf) ||
                             kind == static_cast<std::uint8_t>(IndexPageKind::Node);
    if (!isIndexPage || getU8(bytes, kInUse) != 1) {
        refuse("is not an index page");
    }
    header_.kind = static_cast<IndexPageKind>(kind);
    header_.owner = getU32(bytes, kOwner);
    header_.previous = getU32(bytes, kPrevious);
    header_.next = getU32(bytes, kNext);
    header_.tail = isLeaf() ? 0 : getU32(bytes, kTail);
    readEntries();
    if (ends_.empty() && !isLeaf() && header_.tail == 0) {
        refuse("is a node without children");
    }
    if (getU16(bytes, kFree) != kIndexEntryArea - used()) {
        refuse("states a wrong free count");
    }
}

void IndexPage::readEntries()
{
    const ByteView bytes(*page_);
    const std::size_t prefix = getU16(bytes, kPrefix);
    const std::size_t trailer = trailerSize(header_.kind);
    ends_.reserve(kUsualEntries);
    std::size_t start = 0;
    for (std::size_t bit = 0; bit < 8 * kMaskSize; bit += 64) {
        // The last word reaches into the first entry.
        const std::size_t valid = 8 * kMaskSize - bit;
        std::uint64_t word = getU64(bytes, kMask + bit / 8);
        if (valid < 64) {
            word &= (std::uint64_t{1} << valid) - 1;
        }
        for (; word != 0; word &= word - 1) {
            const std::size_t end = bit + static_cast<std::size_t>(std::countr_zero(word));
            const std::size_t length = end - start + (ends_.empty() ? 0 : prefix);
            if (length <= trailer) {
                refuse("holds an entry without a key");
            }
            ends_.push_back(static_cast<std::uint16_t>(end));
            start = end;
        }
    }
    if (used() > kIndexEntryArea) {
        refuse("marks an entry behind its end");
    }
    if (!ends_.empty() && prefix >= ends_.front()) {
        refuse("states a prefix that leaves nothing of its first entry");
    }
    prefix_ = ends_.empty() ? 0 : prefix;
}

void IndexPage::refuse(const std::string& what) const
{
    throw Error(ErrorCode::Corrupt, number_, "A page of an index " + what);
}

ByteView IndexPage::shared(std::size_t entry) const
{
    return ByteView(*page_).subspan(kEntries, entry == 0 ? 0 : prefix_);
}

ByteView IndexPage::stored(std::size_t entry) const
{
    return ByteView(*page_).subspan(kEntries + start(entry), ends_[entry] - start(entry));
}

std::size_t IndexPage::keyLength(std::size_t entry) const
{
    return shared(entry).size() + stored(entry).size() - trailerSize(header_.kind);
}

std::size_t IndexPage::lowerBound(ByteView key, RowPointer row) const
{
    std::size_t low = 0;
    std::size_t high = size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (compare(middle, key, row) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

int IndexPage::compare(std::size_t entry, ByteView key, RowPointer wantedRow) const
{
    // The entry's key is what it shares, as far as that is key, and the start of what it stores.
    const std::size_t length = keyLength(entry);
    const ByteView head = shared(entry).first(std::min(shared(entry).size(), length));
    const std::size_t common = std::min(head.size(), key.size());
    if (const int order = compareBytes(head.first(common), key.first(common)); order != 0) {
        return order;
    }
    if (common < head.size()) {
        return 1; // the wanted key ends first
    }
    if (const int order = compareBytes(stored(entry).first(length - head.size()), key.subspan(common)); order != 0) {
        return order;
    }
    const RowPointer entryRow = row(entry);
    if (entryRow == wantedRow) {
        return 0;
    }
    return entryRow < wantedRow ? -1 : 1;
}

void IndexPage::copyKey(std::size_t entry, Bytes& key) const
{
    key.clear();
    appendEntry(entry, key);
    key.erase(key.end() - static_cast<std::ptrdiff_t>(trailerSize(header_.kind)), key.end());
}

void IndexPage::appendEntry(std::size_t entry, Bytes& bytes) const
{
    for (const ByteView part : {shared(entry), stored(entry)}) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
}

std::uint32_t IndexPage::numberAt(std::size_t entry, std::size_t offset) const
{
    const ByteView head = shared(entry);
    const ByteView body = stored(entry);
    if (offset >= head.size()) {
        return getBigEndian<std::uint32_t>(body, offset - head.size());
    }
    std::uint32_t number = 0; // a prefix may end inside the number
    for (std::size_t i = offset; i < offset + 4; ++i) {
        const std::byte byte = i < head.size() ? head[i] : body[i - head.size()];
        number = (number << 8U) | std::to_integer<std::uint32_t>(byte);
    }
    return number;
}

RowPointer IndexPage::row(std::size_t entry) const
{
    const std::uint32_t number = numberAt(entry, keyLength(entry));
    return RowPointer{.page = number >> 8U, .row = static_cast<std::uint8_t>(number & 0xFFU)};
}

PageNumber IndexPage::child(std::size_t entry) const
{
    return numberAt(entry, keyLength(entry) + kIndexEntryRowSize);
}

bool IndexPage::hasRoomInPlace(std::size_t position, ByteView entry) const
{
    const bool sharesPrefix =
        prefix_ == 0 || (position > 0 && entry.size() > prefix_ && compareBytes(entry.first(prefix_), shared(1)) == 0);
    return sharesPrefix && used() + entry.size() - prefix_ <= kIndexEntryArea;
}

void IndexPage::insertInPlace(Page& page, std::size_t position, ByteView entry) const
{
    const ByteView rest = entry.subspan(prefix_);
    const std::size_t start = this->start(position);
    const MutableBytes bytes(page);
    putBytes(bytes, kEntries + start + rest.size(), slice(ByteView(page), kEntries + start, used() - start));
    putBytes(bytes, kEntries + start, rest);
    for (std::size_t i = position; i < size(); ++i) {
        markEnd(page, ends_[i], false);
    }
    markEnd(page, start + rest.size(), true);
    for (std::size_t i = position; i < size(); ++i) {
        markEnd(page, ends_[i] + rest.size(), true);
    }
    putU16(bytes, kFree, static_cast<std::uint16_t>(kIndexEntryArea - used() - rest.size()));
    // What a page without entries states of a prefix means nothing; from now on it would.
    putU16(bytes, kPrefix, static_cast<std::uint16_t>(prefix_));
}

bool IndexPage::canEraseInPlace(std::size_t position) const
{
    return size() > 1 && (prefix_ == 0 || position > 0);
}

void IndexPage::eraseInPlace(Page& page, std::size_t position) const
{
    const std::size_t start = this->start(position);
    const std::size_t end = ends_[position];
    const std::size_t length = end - start;
    const MutableBytes bytes(page);
    putBytes(bytes, kEntries + start, slice(ByteView(page), kEntries + end, used() - end));
    const MutableBytes released = slice(bytes, kEntries + used() - length, length);
    std::fill(released.begin(), released.end(), std::byte{0});
    for (std::size_t i = position; i < size(); ++i) {
        markEnd(page, ends_[i], false);
    }
    for (std::size_t i = position + 1; i < size(); ++i) {
        markEnd(page, ends_[i] - length, true);
    }
    putU16(bytes, kFree, static_cast<std::uint16_t>(kIndexEntryArea - used() + length));
}

void setPrevious(Page& page, PageNumber previous)
{
    putU32(MutableBytes(page), kPrevious, previous);
}

void setNext(Page& page, PageNumber next)
{
    putU32(MutableBytes(page), kNext, next);
}

} // namespace jet
