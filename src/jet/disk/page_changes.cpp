#include "jet/disk/page_changes.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace jet {

void PageChanges::reset(PageNumber pageCount)
{
    pageCountBefore_ = pageCount;
    pageCount_ = pageCount;
    pages_.clear();
    savepoints_.clear();
}

PageRef PageChanges::find(PageNumber number) const
{
    const auto found = pages_.find(number);
    return found == pages_.end() ? nullptr : found->second.now;
}

Page& PageChanges::modify(PageNumber number)
{
    Entry& entry = pages_.at(number);
    remember(number, entry.now);
    if (entry.now.use_count() > 1) {
        entry.now = std::make_shared<Page>(*entry.now);
    }
    return *entry.now;
}

Page& PageChanges::modifyFirst(PageNumber number, PageRef before)
{
    assert(!pages_.contains(number) && number < pageCount_);
    auto copy = std::make_shared<Page>(*before);
    remember(number, nullptr);
    return *pages_.emplace(number, Entry{.before = std::move(before), .now = std::move(copy)}).first->second.now;
}

PageNumber PageChanges::append()
{
    const PageNumber number = pageCount_;
    remember(number, nullptr);
    pages_.emplace(number, Entry{.before = nullptr, .now = std::make_shared<Page>()});
    ++pageCount_;
    return number;
}

std::size_t PageChanges::savepoint()
{
    savepoints_.push_back(Savepoint{.pageCount = pageCount_, .pages = {}});
    return savepoints_.size() - 1;
}

bool PageChanges::rollbackTo(std::size_t savepoint)
{
    bool changed = false;
    while (savepoints_.size() > savepoint) {
        Savepoint& last = savepoints_.back();
        for (auto& [number, page] : last.pages) {
            changed = true;
            if (page) {
                pages_.at(number).now = std::move(page);
            } else {
                pages_.erase(number);
            }
        }
        pageCount_ = last.pageCount;
        savepoints_.pop_back();
    }
    savepoints_.push_back(Savepoint{.pageCount = pageCount_, .pages = {}});
    return changed;
}

void PageChanges::release(std::size_t savepoint)
{
    while (savepoints_.size() > savepoint) {
        Savepoint last = std::move(savepoints_.back());
        savepoints_.pop_back();
        if (!savepoints_.empty()) {
            savepoints_.back().pages.merge(last.pages); // keeps what the older savepoint knows
        }
    }
}

void PageChanges::remember(PageNumber number, std::shared_ptr<Page> page)
{
    if (!savepoints_.empty()) {
        savepoints_.back().pages.try_emplace(number, std::move(page));
    }
}

std::vector<ChangedPage> PageChanges::collect() const
{
    std::vector<ChangedPage> changed;
    changed.reserve(pages_.size());
    for (const auto& [number, entry] : pages_) {
        if (!entry.before || *entry.before != *entry.now) {
            changed.push_back(ChangedPage{.number = number, .before = entry.before, .after = entry.now});
        }
    }
    std::ranges::sort(changed, {}, &ChangedPage::number);
    return changed;
}

} // namespace jet
