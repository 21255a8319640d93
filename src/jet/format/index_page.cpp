#include "jet/format/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jet {

namespace {

// Offsets in the page.
constexpr std::size_t kKind = 0;
constexpr std::size_t kInUse = 1;
constexpr std::size_t kFree = 2;
constexpr std::size_t kOwner = 4;
constexpr std::size_t kPrevious = 12;
constexpr std::size_t kNext = 16;
constexpr std::size_t kTail = 20;
constexpr std::size_t kPrefix = 24;
constexpr std::size_t kMask = 27;
constexpr std::size_t kEntries = 480;
constexpr std::size_t kMaskSize = kEntries - kMask;

constexpr std::size_t kUsualEntries = 512; // room for what most pages hold

constexpr std::size_t kRowSize = 4;
constexpr std::size_t kChildSize = 4;

int compareBytes(ByteView a, ByteView b)
{
    const std::size_t common = std::min(a.size(), b.size());
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0 || a.size() == b.size()) {
        return order;
    }
    return a.size() < b.size() ? -1 : 1;
}

/// Sets or clears the bit that tells that an entry ends there.
void mark(Page& page, std::size_t end, bool on)
{
    std::byte& bits = page[kMask + end / 8];
    const std::byte bit = std::byte{1} << static_cast<int>(end % 8);
    bits = on ? bits | bit : bits & ~bit;
}

/// Bytes behind the key of an entry.
std::size_t trailerSize(IndexPageKind kind)
{
    return kind == IndexPageKind::Leaf ? kRowSize : kRowSize + kChildSize;
}

} // namespace

// --- A page as it lies in the file ---------------------------------------------------------------------------------

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
    key.resize(key.size() - trailerSize(header_.kind));
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
    return numberAt(entry, keyLength(entry) + kRowSize);
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
        mark(page, ends_[i], false);
    }
    mark(page, start + rest.size(), true);
    for (std::size_t i = position; i < size(); ++i) {
        mark(page, ends_[i] + rest.size(), true);
    }
    putU16(bytes, kFree, static_cast<std::uint16_t>(kIndexEntryArea - used() - rest.size()));
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
        mark(page, ends_[i], false);
    }
    for (std::size_t i = position + 1; i < size(); ++i) {
        mark(page, ends_[i] - length, true);
    }
    putU16(bytes, kFree, static_cast<std::uint16_t>(kIndexEntryArea - used() + length));
}

// --- A page's content for changing -----------------------------------------------------------------------------------

IndexPageContent::IndexPageContent(const IndexPage& page) : header(page.header())
{
    bytes_.reserve(2 * kIndexEntryArea);
    ends_.reserve(page.size() + 1);
    for (std::size_t entry = 0; entry < page.size(); ++entry) {
        page.appendEntry(entry, bytes_);
        ends_.push_back(static_cast<std::uint32_t>(bytes_.size()));
    }
}

ByteView IndexPageContent::entry(std::size_t position) const
{
    return slice(ByteView(bytes_), start(position), ends_[position] - start(position));
}

void IndexPageContent::insert(std::size_t position, ByteView entry)
{
    const std::size_t offset = start(position);
    bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), entry.begin(), entry.end());
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(position), static_cast<std::uint32_t>(offset));
    for (std::size_t i = position; i < ends_.size(); ++i) {
        ends_[i] += static_cast<std::uint32_t>(entry.size());
    }
}

void IndexPageContent::erase(std::size_t position)
{
    const std::size_t offset = start(position);
    const std::size_t length = ends_[position] - offset;
    const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(offset);
    bytes_.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
    ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(position));
    for (std::size_t i = position; i < ends_.size(); ++i) {
        ends_[i] -= static_cast<std::uint32_t>(length);
    }
}

void IndexPageContent::replace(std::size_t position, ByteView entry)
{
    erase(position);
    insert(position, entry);
}

IndexPageContent IndexPageContent::takeFirst(std::size_t count)
{
    IndexPageContent taken(header);
    const std::size_t length = start(count);
    const auto bytesEnd = bytes_.begin() + static_cast<std::ptrdiff_t>(length);
    const auto endsEnd = ends_.begin() + static_cast<std::ptrdiff_t>(count);
    taken.bytes_.assign(bytes_.begin(), bytesEnd);
    taken.ends_.assign(ends_.begin(), endsEnd);
    bytes_.erase(bytes_.begin(), bytesEnd);
    ends_.erase(ends_.begin(), endsEnd);
    for (std::uint32_t& end : ends_) {
        end -= static_cast<std::uint32_t>(length);
    }
    return taken;
}

std::size_t IndexPageContent::commonPrefix(std::size_t first, std::size_t count) const
{
    const ByteView pattern = entry(first);
    std::size_t prefix = pattern.size() - 1;
    for (std::size_t i = first + 1; i < first + count; ++i) {
        const ByteView other = entry(i);
        prefix = std::min(prefix, other.size() - 1);
        if (std::memcmp(pattern.data(), other.data(), prefix) != 0) {
            const auto difference = std::mismatch(pattern.begin(), pattern.end(), other.begin(), other.end());
            prefix = static_cast<std::size_t>(difference.first - pattern.begin());
        }
    }
    return prefix;
}

std::size_t IndexPageContent::compactSize(std::size_t first, std::size_t count) const
{
    if (count == 0) {
        return 0;
    }
    return start(first + count) - start(first) - commonPrefix(first, count) * (count - 1);
}

bool IndexPageContent::fits() const
{
    return bytes_.size() <= kIndexEntryArea || compactSize(0, size()) <= kIndexEntryArea;
}

std::size_t IndexPageContent::middle() const
{
    // The left part grows and the right part shrinks with the number of entries: look for where they meet.
    const auto left = [this](std::size_t count) { return compactSize(0, count); };
    const auto right = [this](std::size_t count) { return compactSize(count, size() - count); };
    std::size_t low = 1;
    std::size_t high = size() - 1;
    while (low < high) {
        const std::size_t count = low + (high - low) / 2;
        if (left(count) < right(count)) {
            low = count + 1;
        } else {
            high = count;
        }
    }
    return low > 1 && right(low - 1) < left(low) ? low - 1 : low;
}

std::size_t IndexPageContent::leadingThatFit() const
{
    std::size_t low = 1;
    std::size_t high = size() - 1;
    while (low < high) {
        const std::size_t count = high - (high - low) / 2;
        if (compactSize(0, count) <= kIndexEntryArea) {
            low = count;
        } else {
            high = count - 1;
        }
    }
    return low;
}

void IndexPageContent::encode(Page& page) const
{
    std::size_t prefix = 0;
    if (bytes_.size() > kIndexEntryArea) {
        prefix = commonPrefix(0, size());
        if (bytes_.size() - prefix * (size() - 1) > kIndexEntryArea) {
            throw Error(ErrorCode::InvalidArgument, "The entries of an index page do not fit it");
        }
    }
    const MutableBytes bytes(page);
    std::fill(bytes.begin() + kMask, bytes.end(), std::byte{0});
    std::size_t used = 0;
    for (std::size_t i = 0; i < size(); ++i) {
        const ByteView rest = entry(i).subspan(i == 0 ? 0 : prefix);
        putBytes(bytes, kEntries + used, rest);
        used += rest.size();
        mark(page, used, true);
    }
    putU8(bytes, kKind, static_cast<std::uint8_t>(header.kind));
    putU8(bytes, kInUse, 1);
    putU16(bytes, kFree, static_cast<std::uint16_t>(kIndexEntryArea - used));
    putU32(bytes, kOwner, header.owner);
    putU32(bytes, kPrevious, header.previous);
    putU32(bytes, kNext, header.next);
    putU32(bytes, kTail, header.tail);
    putU16(bytes, kPrefix, static_cast<std::uint16_t>(prefix));
}

void setPrevious(Page& page, PageNumber previous)
{
    putU32(MutableBytes(page), kPrevious, previous);
}

void setNext(Page& page, PageNumber next)
{
    putU32(MutableBytes(page), kNext, next);
}

// --- Entries ---------------------------------------------------------------------------------------------------------

Bytes makeLeafEntry(ByteView key, RowPointer row)
{
    if (row.page > 0xFFFFFF) {
        throw Error(ErrorCode::InvalidArgument, "A row's page number does not fit an index entry");
    }
    Bytes entry(key.begin(), key.end());
    entry.resize(key.size() + kRowSize);
    putBigEndian<std::uint32_t>(MutableBytes(entry), key.size(), (row.page << 8U) | row.row);
    return entry;
}

Bytes makeNodeEntry(ByteView lastLeafEntry, PageNumber child)
{
    Bytes entry(lastLeafEntry.begin(), lastLeafEntry.end());
    entry.resize(lastLeafEntry.size() + kChildSize);
    putBigEndian<std::uint32_t>(MutableBytes(entry), lastLeafEntry.size(), child);
    return entry;
}

ByteView leafEntryOf(ByteView nodeEntry)
{
    return slice(nodeEntry, 0, nodeEntry.size() - kChildSize);
}

PageNumber childOf(ByteView nodeEntry)
{
    return getBigEndian<std::uint32_t>(nodeEntry, nodeEntry.size() - kChildSize);
}

} // namespace jet
