#include "jet/check_long_values.h"

#include "jet/format/data_page.h"
#include "jet/format/long_value.h"

#include <algorithm>

namespace jet {

void LongValueCheck::checkPage(PageNumber page) const
{
    const PageRef content = pager_->read(page);
    if (!isDataPageOf(*content, kLongValueOwner)) {
        throw Error(ErrorCode::Corrupt, page, "it is no long-value page");
    }
    DataPage(*content, page).validate();
}

void LongValueCheck::follow(ByteView slot)
{
    const LongValue value = decodeLongValue(slot);
    if (value.storage == LongValue::Storage::Inline) {
        return;
    }
    const bool chained = value.storage == LongValue::Storage::Chain;
    std::size_t remaining = value.length;
    RowPointer part = value.first;
    do {
        if (!ledger_->has(part.page, PageLedger::Use::LongValues, owner_)) {
            throw Error(ErrorCode::Corrupt,
                        "its long value is at " + wordsFor(part) + ", which is not a long-value page of the column");
        }
        const PageRef content = pager_->read(part.page);
        const DataPage data(*content, part.page);
        if (part.row >= data.slotCount() || data.kind(part.row) != SlotKind::Row) {
            throw Error(ErrorCode::Corrupt, "its long value is at " + wordsFor(part) + ", where nothing is");
        }
        if (!used_.insert(part)) {
            throw Error(ErrorCode::Corrupt, "its long value is at " + wordsFor(part) + ", which has another use");
        }
        const ByteView bytes = data.bytes(part.row);
        const std::size_t length = bytes.size() - (chained ? std::min(bytes.size(), kRowPointerSize) : 0);
        if (length == 0 && remaining > 0) {
            throw Error(ErrorCode::Corrupt, "its long value has an empty part at " + wordsFor(part));
        }
        remaining -= std::min(remaining, length);
        if (!chained && remaining > 0) {
            throw Error(ErrorCode::Corrupt, "its long value at " + wordsFor(part) + " is too short");
        }
        part = chained ? getRowPointer(bytes, 0) : part;
    } while (remaining > 0);
}

std::vector<RowPointer> LongValueCheck::unused() const
{
    std::vector<RowPointer> rows;
    for (const PageNumber page : pages_) {
        const PageRef content = pager_->read(page);
        const DataPage data(*content, page);
        for (std::size_t slot = 0; slot < data.slotCount(); ++slot) {
            const RowPointer row{.page = page, .row = static_cast<std::uint8_t>(slot)};
            if (data.kind(slot) != SlotKind::Deleted && !used_.contains(row)) {
                rows.push_back(row);
            }
        }
    }
    return rows;
}

} // namespace jet
