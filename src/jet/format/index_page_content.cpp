#include "jet/format/index_page_content.h"

#include "jet/format/index_page_layout.h"

#include <algorithm>
#include <cstring>

namespace jet {

using namespace index_page_layout;

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
        markEnd(page, used, true);
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

} // namespace jet
