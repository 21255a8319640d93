// Which pages are worth trying when something is to be stored; shared by rows and long values.
#pragma once

#include "jet/format/data_page.h"
#include "jet/store/usage_map.h"

#include <optional>

namespace jet {

/// A page with less room than this is not worth trying.
inline constexpr std::size_t kWorthTrying = 64;
/// Pages that are tried before a new one is taken; the search must not grow with the file.
inline constexpr int kMaximumTries = 8;

[[nodiscard]] inline bool isWorthTrying(const DataPage& page)
{
    return page.fits(kWorthTrying - DataPage::kSlotSize);
}

/// A page of the map that has room for a row of that length, the highest pages tried first.
[[nodiscard]] inline std::optional<PageNumber> pageWithRoom(Pager& pager, const UsageMap& withSpace,
                                                            std::uint32_t owner, std::size_t length)
{
    PageNumber page = withSpace.last();
    for (int tries = 0; page != 0 && tries < kMaximumTries; ++tries) {
        const PageRef bytes = pager.read(page);
        if (isDataPageOf(*bytes, owner) && DataPage(*bytes, page).fits(length)) {
            return page;
        }
        page = withSpace.previous(page);
    }
    return std::nullopt;
}

/// Makes the map tell the truth about the page.
inline void noteSpaceOf(Pager& pager, UsageMap& withSpace, PageNumber page)
{
    const bool has = isWorthTrying(DataPage(*pager.read(page), page));
    if (has == withSpace.contains(page)) {
        return;
    }
    if (has) {
        withSpace.add(page);
    } else {
        withSpace.remove(page);
    }
}

} // namespace jet
