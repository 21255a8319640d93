#include "jet/store/long_value_store.h"

#include "jet/format/text_codec.h"
#include "jet/store/page_allocator.h"
#include "jet/store/space_policy.h"

#include <algorithm>
#include <set>

namespace jet {
namespace {

constexpr std::size_t kChainData = kMaximumLongValueRow - kRowPointerSize;

[[noreturn]] void throwCorrupt(PageNumber page, const char* message)
{
    throw Error(ErrorCode::Corrupt, page, message);
}

// Walks the parts of a value that is outside its row, as many as its length takes, and hands each to the function as
// its address and its share of the value.
template <typename Function>
void forEachPart(Pager& pager, const LongValue& value, Function&& function)
{
    if (value.length > std::uint64_t{pager.pageCount()} * kPageSize) {
        throwCorrupt(value.first.page, "A long value is longer than the file");
    }
    std::size_t left = value.length;
    std::set<RowPointer> seen;
    for (RowPointer at = value.first; left > 0;) {
        if (!seen.insert(at).second) {
            throwCorrupt(at.page, "The parts of a long value lead in a circle");
        }
        const PageRef page = pager.read(at.page);
        if (!isDataPageOf(*page, kLongValueOwner)) {
            throwCorrupt(at.page, "A long value leads to a page of another kind");
        }
        const DataPage rows(*page, at.page);
        if (rows.kind(at.row) != SlotKind::Row) {
            throwCorrupt(at.page, "A long value leads to a row that is deleted");
        }
        ByteView data = rows.bytes(at.row);
        RowPointer next;
        if (value.storage == LongValue::Storage::Chain) {
            next = rows.target(at.row);
            data = data.subspan(kRowPointerSize);
        }
        data = data.first(std::min(data.size(), left));
        left -= data.size();
        if (left > 0 && (data.empty() || next.page == 0)) {
            throwCorrupt(at.page, "A long value ends early");
        }
        function(at, data);
        at = next;
    }
}

} // namespace

Bytes readLongValue(Pager& pager, ByteView slot)
{
    const LongValue value = decodeLongValue(slot);
    if (value.storage == LongValue::Storage::Inline) {
        return {value.inlineBytes.begin(), value.inlineBytes.end()};
    }
    Bytes bytes;
    forEachPart(pager, value, [&](RowPointer, ByteView data) {
        if (bytes.empty()) {
            bytes.reserve(value.length); // the first part is there, and the file is long enough
        }
        append(bytes, data);
    });
    return bytes;
}

Value readValue(Pager& pager, const RowView& row, const Column& column)
{
    if (!column.isLongValue()) {
        return row.value(column);
    }
    const std::optional<ByteView> slot = row.raw(column);
    if (!slot) {
        return Null{};
    }
    Bytes bytes = readLongValue(pager, *slot);
    return column.type == ColumnType::Memo ? Value(decodeText(bytes)) : Value(std::move(bytes));
}

LongValueStore::LongValueStore(Pager& pager, const LongValueMaps& maps) : pager_(&pager), owned_(pager, maps.owned)
{
    if (maps.withSpace.page != 0) {
        withSpace_.emplace(pager, maps.withSpace);
    }
}

Bytes LongValueStore::write(ByteView value)
{
    if (value.size() > kMaximumLongValueLength) {
        throw Error(ErrorCode::ValueTooLong, "A long value has at most a gigabyte");
    }
    LongValue stored;
    stored.length = static_cast<std::uint32_t>(value.size());
    if (value.size() <= kMaximumInlineLongValue) {
        stored.inlineBytes = value;
    } else if (value.size() <= kMaximumLongValueRow) {
        stored.storage = LongValue::Storage::OneRow;
        stored.first = writeRow(value);
    } else {
        stored.storage = LongValue::Storage::Chain;
        // Each part names the one after it, so the last is written first; all but that one fill a page.
        std::size_t begin = (value.size() - 1) / kChainData * kChainData;
        for (std::size_t end = value.size(); end > 0; end = begin, begin -= std::min(begin, kChainData)) {
            Bytes part(kRowPointerSize);
            putRowPointer(part, 0, stored.first);
            append(part, value.subspan(begin, end - begin));
            stored.first = writeRow(part);
        }
    }
    return encodeLongValue(stored);
}

Bytes LongValueStore::write(const Column& column, const Value& value)
{
    if (column.type == ColumnType::Memo) {
        if (const auto* text = std::get_if<std::u16string>(&value)) {
            return write(encodeText(*text, column.isCompressible()));
        }
    } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
        return write(*bytes);
    }
    throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " does not take a value of this type");
}

void LongValueStore::free(ByteView slot)
{
    const LongValue value = decodeLongValue(slot);
    if (value.storage == LongValue::Storage::Inline) {
        return;
    }
    std::vector<RowPointer> parts;
    forEachPart(*pager_, value, [&](RowPointer at, ByteView) { parts.push_back(at); });
    for (const RowPointer part : parts) {
        freeRow(part);
    }
}

RowPointer LongValueStore::writeRow(ByteView row)
{
    std::optional<PageNumber> page;
    if (withSpace_ && row.size() < kMaximumLongValueRow) {
        page = pageWithRoom(*pager_, *withSpace_, kLongValueOwner, row.size());
    }
    if (!page) {
        page = PageAllocator(*pager_).allocate();
        DataPageEditor::initialize(pager_->modify(*page), kLongValueOwner);
        owned_.add(*page);
    }
    const std::uint8_t slot = DataPageEditor(pager_->modify(*page), *page).append(row);
    noteSpace(*page);
    return RowPointer{.page = *page, .row = slot};
}

void LongValueStore::noteSpace(PageNumber page)
{
    if (withSpace_) {
        noteSpaceOf(*pager_, *withSpace_, page);
    }
}

void LongValueStore::freeRow(RowPointer row)
{
    DataPageEditor(pager_->modify(row.page), row.page).remove(row.row);
    if (!DataPage(*pager_->read(row.page), row.page).isEmpty() || !owned_.contains(row.page)) {
        noteSpace(row.page);
        return;
    }
    owned_.remove(row.page);
    if (withSpace_) {
        withSpace_->remove(row.page);
    }
    PageAllocator(*pager_).free(row.page);
}

} // namespace jet
