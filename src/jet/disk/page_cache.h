// A bounded set of unchanged pages, kept so that they need not be read again.
#pragma once

#include "jet/disk/error.h"
#include "jet/disk/page.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace jet {

/// When it is full, the clock rule picks the page that makes room: a hand goes round the slots, passes once over those
/// that were asked for since its last round, and stops at the first other one. A hit costs one hash look-up and a flag.
class PageCache
{
public:
    /// At least one page.
    explicit PageCache(std::size_t capacity);

    /// The page, or null.
    [[nodiscard]] PageRef find(PageNumber number);
    [[nodiscard]] bool contains(PageNumber number) const { return slotOf_.contains(number); }
    /// Adds or replaces a page.
    void put(PageNumber number, PageRef page);
    void clear();

    [[nodiscard]] std::size_t size() const { return slots_.size(); }
    [[nodiscard]] std::size_t capacity() const { return capacity_; }

private:
    struct Slot {
        PageNumber number = 0;
        PageRef page;
        bool asked = false;
    };

    std::size_t capacity_;
    std::vector<Slot> slots_;
    std::unordered_map<PageNumber, std::size_t> slotOf_;
    std::size_t hand_ = 0;
};

} // namespace jet
