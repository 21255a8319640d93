// The check of one column's long values: that each part is there, belongs to one value alone, and that none is left
// over.
#pragma once

#include "jet/check_ledger.h"

#include <cstdint>
#include <vector>

namespace jet {

class LongValueCheck
{
public:
    /// The pages that the column owns, which the ledger has under `owner`.
    LongValueCheck(Pager& pager, const PageLedger& ledger, std::uint32_t owner, std::uint16_t columnNumber,
                   std::vector<PageNumber> pages)
        : pager_(&pager), ledger_(&ledger), owner_(owner), columnNumber_(columnNumber), pages_(std::move(pages))
    {
    }

    [[nodiscard]] std::uint16_t columnNumber() const { return columnNumber_; }
    [[nodiscard]] const std::vector<PageNumber>& pages() const { return pages_; }

    /// Throws Corrupt unless the page is a sound page of long values.
    void checkPage(PageNumber page) const;
    /// Follows the value of a row's slot from part to part and enters each as used, so that none is taken for part of
    /// two values and no chain is followed in a circle. Throws Corrupt.
    void follow(ByteView slot);
    /// What no value that was followed consists of. Requires pages that are sound.
    [[nodiscard]] std::vector<RowPointer> unused() const;

private:
    Pager* pager_;
    const PageLedger* ledger_;
    std::uint32_t owner_;
    std::uint16_t columnNumber_;
    std::vector<PageNumber> pages_;
    RowSet used_;
};

} // namespace jet
