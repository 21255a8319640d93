#include "jet/check_ledger.h"

#include "jet/check.h"
#include "jet/disk/error.h"

#include <utility>

namespace jet {

namespace {

const char* words(PageLedger::Use use)
{
    switch (use) {
    case PageLedger::Use::None:
        return "unused";
    case PageLedger::Use::Header:
        return "the header";
    case PageLedger::Use::Map:
        return "a map page";
    case PageLedger::Use::Bitmap:
        return "a bitmap page";
    case PageLedger::Use::Definition:
        return "a definition page";
    case PageLedger::Use::Data:
        return "a data page";
    case PageLedger::Use::LongValues:
        return "a long-value page";
    case PageLedger::Use::Index:
        return "an index page";
    }
    return "";
}

} // namespace

std::string wordsFor(RowPointer row)
{
    return "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
}

void FaultList::add(PageNumber page, std::string text, Fault::Kind kind)
{
    faults_.push_back({page, std::move(text), kind});
    if (faults_.size() + 1 >= kMaximumFaults) {
        faults_.push_back({0, "There are more faults; the check stopped here"});
        throw EnoughFaults();
    }
}

bool FaultList::guard(PageNumber page, const std::string& what, const std::function<void()>& function)
{
    try {
        function();
        return true;
    } catch (const Error& error) {
        switch (error.code()) {
        case ErrorCode::Io:
        case ErrorCode::Locked:
        case ErrorCode::DiskFull:
            throw;
        default:
            add(error.page().value_or(page), what + ": " + error.what());
            return false;
        }
    }
}

bool RowSet::insert(RowPointer row)
{
    std::bitset<256>& rows = pages_[row.page];
    if (rows.test(row.row)) {
        return false;
    }
    rows.set(row.row);
    ++size_;
    return true;
}

bool RowSet::contains(RowPointer row) const
{
    const auto found = pages_.find(row.page);
    return found != pages_.end() && found->second.test(row.row);
}

PageLedger::PageLedger(PageNumber pageCount, FaultList& faults) : entries_(pageCount), faults_(&faults) {}

std::uint32_t PageLedger::addOwner(std::string name)
{
    owners_.push_back(std::move(name));
    return static_cast<std::uint32_t>(owners_.size() - 1);
}

bool PageLedger::claim(PageNumber page, Use use, std::uint32_t owner)
{
    if (page >= entries_.size()) {
        faults_->add(page, "The page is past the end of the file, but is " + std::string(words(use)) + " of " +
                               owners_.at(owner));
        return false;
    }
    Entry& entry = entries_[page];
    if (entry.use != Use::None) {
        faults_->add(page, "The page is " + std::string(words(entry.use)) + " of " + owners_.at(entry.owner) +
                               " and also " + words(use) + " of " + owners_.at(owner));
        return false;
    }
    entry = {use, owner};
    return true;
}

bool PageLedger::claimMap(RowPointer row, std::uint32_t owner)
{
    if (row.page < entries_.size() && entries_[row.page].use == Use::Map) {
        // Many maps share a page.
    } else if (!claim(row.page, Use::Map, owner)) {
        return false;
    }
    if (!mapRows_.insert(row)) {
        faults_->add(row.page,
                     "Row " + std::to_string(row.row) + " is a map of " + owners_.at(owner) + " and also another map");
        return false;
    }
    return true;
}

bool PageLedger::has(PageNumber page, Use use, std::uint32_t owner) const
{
    return page < entries_.size() && entries_[page].use == use && entries_[page].owner == owner;
}

} // namespace jet
