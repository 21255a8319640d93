#include "jet/store/usage_map.h"

#include "jet/format/data_page.h"
#include "jet/store/map_reader.h"
#include "jet/store/page_allocator.h"

#include <algorithm>

namespace jet {
namespace {

// A member as a page of the file.
PageNumber checkedMember(const Pager& pager, RowPointer where, std::int64_t member)
{
    if (member < 1 || member >= pager.pageCount()) {
        throw Error(ErrorCode::Corrupt, where.page, "A usage map names pages past the end of the file");
    }
    return static_cast<PageNumber>(member);
}

// Gives a reference map a bitmap page for the page.
void addBitmap(Pager& pager, RowPointer where, PageNumber page)
{
    const std::size_t index = page / kPagesPerBitmap;
    if (index >= MapReader(pager, where).row().pointerCount()) {
        throw Error(ErrorCode::Corrupt, where.page, "A usage map is too short for the file");
    }
    const PageNumber bitmap = PageAllocator(pager).allocate();
    initializeBitmapPage(pager.modify(bitmap));
    putBitmapPointer(modifyMapRow(pager, where), index, bitmap);
}

// Turns an inline map whose members and the new page lie too far apart into a reference map.
void makeReferenceMap(Pager& pager, RowPointer where, const std::vector<PageNumber>& members)
{
    initializeReferenceMap(modifyMapRow(pager, where));
    for (const PageNumber member : members) {
        if (!changeMapBit(pager, where, member, true)) {
            addBitmap(pager, where, member);
            changeMapBit(pager, where, member, true);
        }
    }
}

} // namespace

std::vector<RowPointer> createUsageMaps(Pager& pager, std::size_t count)
{
    constexpr std::size_t perPage = DataPage::kCapacity / (UsageMapRow::kUsualSize + DataPage::kSlotSize);
    const Bytes emptyMap(UsageMapRow::kUsualSize);
    std::vector<RowPointer> maps;
    while (maps.size() < count) {
        const PageNumber number = PageAllocator(pager).allocate();
        Page& page = pager.modify(number);
        DataPageEditor::initialize(page, kMapPageOwner);
        DataPageEditor editor(page, number);
        const std::size_t here = std::min(count - maps.size(), perPage);
        for (std::size_t i = 0; i < here; ++i) {
            maps.push_back(RowPointer{.page = number, .row = editor.append(emptyMap)});
        }
    }
    return maps;
}

bool UsageMap::contains(PageNumber page) const
{
    const MapReader map(*pager_, where_);
    const std::optional<MapStretch> stretch = map.stretch(map.stretchOf(page));
    return stretch && stretch->contains(page);
}

std::vector<PageNumber> UsageMap::pages() const
{
    const MapReader map(*pager_, where_);
    std::vector<PageNumber> members;
    for (std::size_t i = 0; i < map.stretchCount(); ++i) {
        const std::optional<MapStretch> stretch = map.stretch(i);
        if (!stretch) {
            continue;
        }
        std::optional<std::int64_t> member = stretch->firstFrom(stretch->firstPage);
        for (; member; member = stretch->firstFrom(*member + 1)) {
            members.push_back(checkedMember(*pager_, where_, *member));
        }
    }
    return members;
}

PageNumber UsageMap::last() const
{
    return previous(static_cast<PageNumber>(-1));
}

PageNumber UsageMap::next(PageNumber page) const
{
    const MapReader map(*pager_, where_);
    const std::int64_t from = std::int64_t{page} + 1;
    for (std::size_t i = map.stretchOf(page); i < map.stretchCount(); ++i) {
        if (const std::optional<MapStretch> stretch = map.stretch(i)) {
            if (const std::optional<std::int64_t> member = stretch->firstFrom(from)) {
                return checkedMember(*pager_, where_, *member);
            }
        }
    }
    return 0;
}

PageNumber UsageMap::previous(PageNumber page) const
{
    const MapReader map(*pager_, where_);
    for (std::size_t i = std::min(map.stretchCount(), map.stretchOf(page) + 1); i-- > 0;) {
        if (const std::optional<MapStretch> stretch = map.stretch(i)) {
            if (const std::optional<std::int64_t> member = stretch->lastBefore(page)) {
                return checkedMember(*pager_, where_, *member);
            }
        }
    }
    return 0;
}

std::vector<PageNumber> UsageMap::bitmapPages() const
{
    const MapReader map(*pager_, where_);
    std::vector<PageNumber> bitmaps;
    if (!map.isInline()) {
        for (std::size_t i = 0; i < map.stretchCount(); ++i) {
            if (map.stretch(i)) {
                bitmaps.push_back(map.row().pointer(i));
            }
        }
    }
    return bitmaps;
}

void UsageMap::add(PageNumber page)
{
    if (page == 0 || page >= pager_->pageCount()) {
        throw Error(ErrorCode::InvalidArgument, page, "There is no such page to be noted in a usage map");
    }
    if (changeMapBit(*pager_, where_, page, true)) {
        return;
    }
    const MapReader map(*pager_, where_);
    if (!map.isInline()) {
        addBitmap(*pager_, where_, page);
        changeMapBit(*pager_, where_, page, true);
        return;
    }
    std::vector<PageNumber> members = pages();
    members.insert(std::upper_bound(members.begin(), members.end(), page), page);
    const PageNumber start = members.front() / 8 * 8;
    if (members.back() - start >= map.row().bits().size() * 8) {
        makeReferenceMap(*pager_, where_, members);
        return;
    }
    const MutableBytes row = modifyMapRow(*pager_, where_);
    initializeInlineMap(row, start);
    for (const PageNumber member : members) {
        setBit(row.subspan(UsageMapRow::kInlineHeader), member - start, true);
    }
}

void UsageMap::remove(PageNumber page)
{
    changeMapBit(*pager_, where_, page, false);
}

} // namespace jet
