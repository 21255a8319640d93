#include "jet/store/row_store.h"

#include "jet/store/page_allocator.h"
#include "jet/store/space_policy.h"

namespace jet {
namespace {

// Other programs may leave a pointer that leads to another pointer; more than a few in a row is a loop.
constexpr std::size_t kMaximumHops = 16;

} // namespace

RowStore::RowStore(Pager& pager, PageNumber owner, RowPointer ownedPages, RowPointer pagesWithSpace)
    : pager_(&pager), owner_(owner), owned_(pager, ownedPages), withSpace_(pager, pagesWithSpace)
{
}

// --- Reading ---

bool RowStore::Cursor::next()
{
    for (;;) {
        if (page_) {
            const std::size_t slots = DataPage(*page_, pageNumber_).slotCount();
            while (nextSlot_ < slots) {
                const auto slot = static_cast<std::uint8_t>(nextSlot_++);
                if (auto row = store_->resolve(RowPointer{.page = pageNumber_, .row = slot}, page_)) {
                    row_ = *std::move(row);
                    return true;
                }
            }
        }
        page_.reset();
        const PageNumber following = store_->owned_.next(pageNumber_);
        if (following == 0) {
            return false;
        }
        page_ = store_->readMember(following);
        pageNumber_ = following;
        nextSlot_ = 0;
    }
}

std::optional<StoredRow> RowStore::read(RowPointer address) const
{
    const PageRef page = readOwned(address.page);
    if (!page || address.row >= DataPage(*page, address.page).slotCount()) {
        return std::nullopt;
    }
    return resolve(address, page);
}

PageRef RowStore::readOwned(PageNumber page) const
{
    if (page >= pager_->pageCount()) {
        return nullptr;
    }
    PageRef bytes = pager_->read(page);
    return isDataPageOf(*bytes, owner_) ? bytes : nullptr;
}

PageRef RowStore::readMember(PageNumber page) const
{
    PageRef bytes = readOwned(page);
    if (!bytes) {
        throw Error(ErrorCode::Corrupt, page, "A table's map names a page that is not the table's");
    }
    return bytes;
}

std::optional<StoredRow> RowStore::resolve(RowPointer address, const PageRef& page) const
{
    const DataPage home(*page, address.page);
    switch (home.kind(address.row)) {
    case SlotKind::Row:
        return StoredRow{.address = address, .dataPage = address.page, .page = page, .bytes = home.bytes(address.row)};
    case SlotKind::Moved:
    case SlotKind::Deleted:
        return std::nullopt;
    case SlotKind::Pointer:
        break;
    }
    RowPointer target = home.target(address.row);
    for (std::size_t hop = 0; hop < kMaximumHops; ++hop) {
        PageRef bytes = readOwned(target.page);
        if (!bytes) {
            throw Error(ErrorCode::Corrupt, address.page, "A moved row is not where its pointer says");
        }
        const DataPage data(*bytes, target.page);
        switch (data.kind(target.row)) {
        case SlotKind::Row:
        case SlotKind::Moved:
            return StoredRow{
                .address = address, .dataPage = target.page, .page = std::move(bytes), .bytes = data.bytes(target.row)};
        case SlotKind::Pointer:
            target = data.target(target.row);
            break;
        case SlotKind::Deleted:
            throw Error(ErrorCode::Corrupt, address.page, "The data of a moved row is deleted");
        }
    }
    throw Error(ErrorCode::Corrupt, address.page, "The pointers of a moved row lead in a circle");
}

std::vector<RowPointer> RowStore::slotsOf(RowPointer address) const
{
    if (!read(address)) { // throws where the pointers do not hold together
        return {};
    }
    std::vector<RowPointer> slots{address};
    for (;;) {
        const RowPointer slot = slots.back();
        const PageRef page = pager_->read(slot.page);
        const DataPage data(*page, slot.page);
        if (data.kind(slot.row) != SlotKind::Pointer) {
            return slots;
        }
        slots.push_back(data.target(slot.row));
    }
}

// --- Changing ---

RowPointer RowStore::insert(ByteView row)
{
    const PageNumber last = owned_.last();
    if (last != 0) {
        const PageRef page = readMember(last);
        if (DataPage(*page, last).fits(row.size())) {
            return append(last, row, SlotKind::Row);
        }
    }
    return append(addPage(last), row, SlotKind::Row);
}

void RowStore::update(RowPointer address, ByteView row)
{
    const std::vector<RowPointer> slots = slotsOf(address);
    if (slots.empty()) {
        throw Error(ErrorCode::NoSuchObject, address.page, "The row is not there any more");
    }
    std::size_t obsolete = 1; // the first slot whose data the row leaves behind
    if (!replaceWhereRoom(address, row, SlotKind::Row)) {
        RowPointer data = slots.back();
        if (slots.size() > 1 && replaceWhereRoom(data, row, SlotKind::Moved)) {
            obsolete = slots.size();
        } else {
            data = appendMoved(row);
        }
        Bytes pointer(kRowPointerSize);
        putRowPointer(pointer, 0, data);
        replace(address, pointer, SlotKind::Pointer);
    }
    for (; obsolete < slots.size(); ++obsolete) {
        remove(slots[obsolete]);
    }
}

void RowStore::erase(RowPointer address)
{
    const std::vector<RowPointer> slots = slotsOf(address);
    if (slots.empty()) {
        throw Error(ErrorCode::NoSuchObject, address.page, "The row is not there any more");
    }
    for (const RowPointer slot : slots) {
        remove(slot);
    }
}

RowPointer RowStore::append(PageNumber page, ByteView row, SlotKind kind)
{
    const std::uint8_t slot = DataPageEditor(pager_->modify(page), page).append(row, kind);
    noteSpace(page);
    return RowPointer{.page = page, .row = slot};
}

RowPointer RowStore::appendMoved(ByteView row)
{
    const std::optional<PageNumber> page = pageWithRoom(*pager_, withSpace_, owner_, row.size());
    return append(page ? *page : addPage(0), row, SlotKind::Moved);
}

bool RowStore::replaceWhereRoom(RowPointer slot, ByteView row, SlotKind kind)
{
    if (DataPage(*pager_->read(slot.page), slot.page).room(slot.row) < row.size()) {
        return false;
    }
    replace(slot, row, kind);
    return true;
}

void RowStore::replace(RowPointer slot, ByteView bytes, SlotKind kind)
{
    DataPageEditor(pager_->modify(slot.page), slot.page).replace(slot.row, bytes, kind);
    noteSpace(slot.page);
}

void RowStore::remove(RowPointer slot)
{
    DataPageEditor(pager_->modify(slot.page), slot.page).remove(slot.row);
    noteSpace(slot.page);
    freeIfEmpty(slot.page);
}

PageNumber RowStore::addPage(PageNumber after)
{
    const PageNumber last = owned_.last();
    const PageNumber page = PageAllocator(*pager_).allocate(after);
    DataPageEditor::initialize(pager_->modify(page), owner_);
    owned_.add(page);
    withSpace_.add(page);
    if (last != 0 && last < page) {
        freeIfEmpty(last); // it was kept only for being the highest
    }
    return page;
}

void RowStore::freeIfEmpty(PageNumber page)
{
    if (page == owned_.last() || !DataPage(*pager_->read(page), page).isEmpty()) {
        return;
    }
    owned_.remove(page);
    withSpace_.remove(page);
    PageAllocator(*pager_).free(page);
}

void RowStore::noteSpace(PageNumber page)
{
    noteSpaceOf(*pager_, withSpace_, page);
}

} // namespace jet
