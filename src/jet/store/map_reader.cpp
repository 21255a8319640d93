#include "jet/store/map_reader.h"

#include "jet/format/at_page.h"
#include "jet/format/data_page.h"

#include <algorithm>

namespace jet {

std::optional<std::int64_t> MapStretch::firstFrom(std::int64_t number) const
{
    const auto from = static_cast<std::size_t>(std::max<std::int64_t>(number - firstPage, 0));
    const std::optional<std::size_t> bit = BitView(bits).firstFrom(from);
    return bit ? std::optional(firstPage + static_cast<std::int64_t>(*bit)) : std::nullopt;
}

std::optional<std::int64_t> MapStretch::lastBefore(std::int64_t number) const
{
    const auto end = static_cast<std::size_t>(std::max<std::int64_t>(number - firstPage, 0));
    const std::optional<std::size_t> bit = BitView(bits).lastBefore(end);
    return bit ? std::optional(firstPage + static_cast<std::int64_t>(*bit)) : std::nullopt;
}

MapReader::MapReader(Pager& pager, RowPointer where) : pager_(&pager), page_(pager.read(where.page))
{
    const DataPage rows(*page_, where.page);
    if (rows.kind(where.row) != SlotKind::Row) {
        throw Error(ErrorCode::Corrupt, where.page, "A usage map is not where it should be");
    }
    row_ = atPage(where.page, [&] { return UsageMapRow::decode(rows.bytes(where.row)); });
    if (isInline()) {
        stretches_ = 1;
    } else {
        const std::size_t needed = (pager.pageCount() + kPagesPerBitmap - 1) / kPagesPerBitmap;
        stretches_ = std::min(row_.pointerCount(), needed);
    }
}

std::optional<MapStretch> MapReader::stretch(std::size_t index) const
{
    if (index >= stretches_) {
        return std::nullopt;
    }
    if (isInline()) {
        return MapStretch{.page = page_, .firstPage = row_.startPage(), .bits = row_.bits()};
    }
    const PageNumber bitmap = row_.pointer(index);
    if (bitmap == 0 || bitmap >= pager_->pageCount()) {
        return std::nullopt;
    }
    PageRef page = pager_->read(bitmap);
    if (!isBitmapPage(*page)) {
        throw Error(ErrorCode::Corrupt, bitmap, "A usage map names a page that is no bitmap");
    }
    const ByteView bits = bitmapOf(ByteView(*page));
    return MapStretch{
        .page = std::move(page), .firstPage = static_cast<std::int64_t>(index * kPagesPerBitmap), .bits = bits};
}

bool changeMapBit(Pager& pager, RowPointer where, PageNumber page, bool member)
{
    const MapReader map(pager, where);
    const std::size_t index = map.stretchOf(page);
    const std::optional<MapStretch> stretch = map.stretch(index);
    if (!stretch || !stretch->covers(page)) {
        return false;
    }
    if (stretch->contains(page) == member) {
        return true;
    }
    const auto bit = static_cast<std::size_t>(page - stretch->firstPage);
    if (map.isInline()) {
        setBit(modifyMapRow(pager, where).subspan(UsageMapRow::kInlineHeader), bit, member);
    } else {
        setBit(bitmapOf(MutableBytes(pager.modify(map.row().pointer(index)))), bit, member);
    }
    return true;
}

MutableBytes modifyMapRow(Pager& pager, RowPointer where)
{
    return DataPageEditor(pager.modify(where.page), where.page).bytes(where.row);
}

} // namespace jet
