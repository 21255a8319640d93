#include "jet/store/page_allocator.h"

#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/store/map_reader.h"

#include <algorithm>

namespace jet {
namespace {

constexpr PageNumber kFirstAllocatable = 2;
constexpr std::byte kFreedFlag{0x08}; // in the type of a page
constexpr std::size_t kGrowthBits = 32;

// The map of free pages. What it does not tell of is in use inside the file, and free past its end.
class GlobalMap
{
public:
    explicit GlobalMap(Pager& pager) : pager_(pager), where_(globalMapOf(*pager.read(0))), map_(pager, where_) {}

    [[nodiscard]] bool isFree(PageNumber page) const
    {
        const std::optional<MapStretch> stretch = map_.stretch(map_.stretchOf(page));
        return stretch && stretch->contains(page);
    }

    // The lowest free page of the file at or above `from`.
    [[nodiscard]] std::optional<PageNumber> firstFree(PageNumber from) const
    {
        for (std::size_t i = map_.stretchOf(from); i < map_.stretchCount(); ++i) {
            if (const std::optional<MapStretch> stretch = map_.stretch(i)) {
                const std::optional<std::int64_t> page = stretch->firstFrom(from);
                if (page && *page < pager_.pageCount()) {
                    return static_cast<PageNumber>(*page);
                }
            }
        }
        return std::nullopt;
    }

    // Each of these is the last use of the object: it does not see its own change.
    void setFree(PageNumber page)
    {
        if (!changeMapBit(pager_, where_, page, true)) {
            if (map_.isInline()) {
                cover(page);
            } else {
                addBitmap(page);
            }
            changeMapBit(pager_, where_, page, true);
        }
    }

    void setUsed(PageNumber page)
    {
        // A reference map that says nothing of a page says what is wanted. An inline map must come to cover the page:
        // other programs take what is above it for free.
        if (!changeMapBit(pager_, where_, page, false) && map_.isInline()) {
            cover(page);
        }
    }

private:
    // What a new form of the map says of a page; `known` is the old form there.
    [[nodiscard]] bool bitFor(const std::optional<MapStretch>& known, PageNumber page) const
    {
        return known && known->covers(page) ? known->contains(page) : page >= pager_.pageCount();
    }

    // Lengthens an inline map in both directions as needed, or makes it a reference map when its page is full.
    void cover(PageNumber page)
    {
        const std::int64_t oldStart = map_.row().startPage();
        const std::int64_t oldEnd = oldStart + static_cast<std::int64_t>(map_.row().bits().size() * 8);
        const std::int64_t start = std::clamp<std::int64_t>(oldStart, 0, page) / 8 * 8;
        const auto needed = static_cast<std::size_t>(std::max<std::int64_t>(oldEnd, std::int64_t{page} + 1) - start);
        const std::size_t size = (needed + kGrowthBits - 1) / kGrowthBits * (kGrowthBits / 8);
        const std::size_t room = DataPage(*pager_.read(where_.page), where_.page).room(where_.row);
        if (UsageMapRow::kInlineHeader + size > room) {
            makeReferenceMap();
            return;
        }
        Bytes row(UsageMapRow::kInlineHeader + size);
        initializeInlineMap(row, static_cast<PageNumber>(start));
        const MutableBytes bits = MutableBytes(row).subspan(UsageMapRow::kInlineHeader);
        const std::optional<MapStretch> known = map_.stretch(0);
        for (std::size_t i = 0; i < size * 8; ++i) {
            setBit(bits, i, bitFor(known, static_cast<PageNumber>(start) + static_cast<PageNumber>(i)));
        }
        DataPageEditor(pager_.modify(where_.page), where_.page).replace(where_.row, row, SlotKind::Row);
    }

    void makeReferenceMap()
    {
        std::vector<PageNumber> bitmaps;
        while (bitmaps.size() * kPagesPerBitmap < pager_.pageCount()) {
            bitmaps.push_back(pager_.append());
        }
        if (bitmaps.size() > map_.row().pointerCount()) {
            throw Error(ErrorCode::Corrupt, where_.page, "The map of free pages is too short for the file");
        }
        initializeReferenceMap(modifyMapRow(pager_, where_));
        for (std::size_t i = 0; i < bitmaps.size(); ++i) {
            fillBitmap(bitmaps[i], i);
            putBitmapPointer(modifyMapRow(pager_, where_), i, bitmaps[i]);
        }
        for (const PageNumber bitmap : bitmaps) {
            GlobalMap(pager_).setUsed(bitmap);
        }
    }

    void addBitmap(PageNumber page)
    {
        const std::size_t index = page / kPagesPerBitmap;
        if (index >= map_.row().pointerCount()) {
            throw Error(ErrorCode::Corrupt, where_.page, "The map of free pages is too short for the file");
        }
        const PageNumber bitmap = pager_.append();
        fillBitmap(bitmap, index);
        putBitmapPointer(modifyMapRow(pager_, where_), index, bitmap);
        GlobalMap(pager_).setUsed(bitmap);
    }

    void fillBitmap(PageNumber bitmap, std::size_t index)
    {
        Page page{};
        initializeBitmapPage(page);
        const auto first = static_cast<PageNumber>(index * kPagesPerBitmap);
        const std::optional<MapStretch> known = map_.stretch(map_.stretchOf(first));
        for (std::size_t i = 0; i < kPagesPerBitmap; ++i) {
            setBit(bitmapOf(MutableBytes(page)), i, bitFor(known, first + static_cast<PageNumber>(i)));
        }
        pager_.modify(bitmap) = page;
    }

    Pager& pager_;
    RowPointer where_;
    MapReader map_;
};

} // namespace

PageAllocator::PageAllocator(Pager& pager) : pager_(&pager) {}

PageNumber PageAllocator::allocate(PageNumber after)
{
    GlobalMap map(*pager_);
    if (const std::optional<PageNumber> page = map.firstFree(std::max(after + 1, kFirstAllocatable))) {
        map.setUsed(*page);
        pager_->modify(*page).fill(std::byte{0});
        return *page;
    }
    const PageNumber page = pager_->append();
    GlobalMap(*pager_).setUsed(page);
    return page;
}

void PageAllocator::free(PageNumber page)
{
    if (page < kFirstAllocatable || page >= pager_->pageCount()) {
        throw Error(ErrorCode::InvalidArgument, page, "A page that cannot be given back");
    }
    if (isFree(page)) {
        throw Error(ErrorCode::Corrupt, page, "A page is to be given back that is free already");
    }
    pager_->modify(page)[0] |= kFreedFlag;
    GlobalMap(*pager_).setFree(page);
}

bool PageAllocator::isFree(PageNumber page) const
{
    return page < pager_->pageCount() && GlobalMap(*pager_).isFree(page);
}

void PageAllocator::initialize(Pager& pager)
{
    Bytes global(UsageMapRow::kUsualSize);
    initializeInlineMap(global, 0);
    const MutableBytes bits = MutableBytes(global).subspan(UsageMapRow::kInlineHeader);
    for (std::size_t page = kFirstAllocatable; page < bits.size() * 8; ++page) {
        setBit(bits, page, true);
    }
    constexpr PageNumber mapPage = 1;
    Page& page = pager.modify(mapPage);
    DataPageEditor::initialize(page, kGlobalMapPageOwner);
    DataPageEditor editor(page, mapPage);
    editor.append(global);
    editor.append(Bytes(UsageMapRow::kUsualSize));
}

} // namespace jet
