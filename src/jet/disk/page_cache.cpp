#include "jet/disk/page_cache.h"

#include <algorithm>
#include <utility>

namespace jet {

PageCache::PageCache(std::size_t capacity) : capacity_(std::max<std::size_t>(capacity, 1)) {}

PageRef PageCache::find(PageNumber number)
{
    const auto found = slotOf_.find(number);
    if (found == slotOf_.end()) {
        return nullptr;
    }
    Slot& slot = slots_[found->second];
    slot.asked = true;
    return slot.page;
}

void PageCache::put(PageNumber number, PageRef page)
{
    if (const auto found = slotOf_.find(number); found != slotOf_.end()) {
        slots_[found->second].page = std::move(page);
        return;
    }
    if (slots_.size() < capacity_) {
        slotOf_.emplace(number, slots_.size());
        slots_.push_back(Slot{.number = number, .page = std::move(page)});
        return;
    }
    while (std::exchange(slots_[hand_].asked, false)) {
        hand_ = (hand_ + 1) % slots_.size();
    }
    slotOf_.erase(slots_[hand_].number);
    slotOf_.emplace(number, hand_);
    slots_[hand_] = Slot{.number = number, .page = std::move(page)};
    hand_ = (hand_ + 1) % slots_.size();
}

void PageCache::clear()
{
    slots_.clear();
    slotOf_.clear();
    hand_ = 0;
}

} // namespace jet
