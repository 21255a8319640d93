#include "jet/check_table.h"

#include "jet/check_index.h"
#include "jet/disk/error.h"
#include "jet/format/data_page.h"
#include "jet/store/long_value_store.h"
#include "jet/store/table_definition_store.h"
#include "jet/store/usage_map.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace jet {

namespace {

std::string rowText(std::uint8_t row)
{
    return "row " + std::to_string(row);
}

} // namespace

TableCheck::TableCheck(Pager& pager, FaultList& faults, PageLedger& ledger, std::string name, PageNumber first)
    : pager_(&pager), faults_(&faults), ledger_(&ledger), name_(std::move(name)), first_(first)
{
    owner_ = ledger_->addOwner("table \"" + name_ + "\"");
}

void TableCheck::damage(PageNumber page, const std::string& text)
{
    sound_ = false;
    faults_->add(page, "Table \"" + name_ + "\": " + text);
}

void TableCheck::leftover(PageNumber page, const std::string& text)
{
    faults_->add(page, "Table \"" + name_ + "\": " + text, Fault::Kind::Leftover);
}

bool TableCheck::guard(PageNumber page, const std::string& what, const std::function<void()>& function)
{
    if (faults_->guard(page, "Table \"" + name_ + "\": " + what, function)) {
        return true;
    }
    sound_ = false;
    return false;
}

bool TableCheck::run(const RowSink& sink)
{
    if (!loadDefinition()) {
        return false;
    }
    checkDefinition();
    claimEverything();
    checkLongValuePages();
    checkDataPages(sink);
    checkMovedRows();
    rowsAreSound_ = sound_;
    checkUnreferencedLongValues();
    checkCounters();
    checkIndexes();
    return true;
}

// --- Definition and maps ---------------------------------------------------------------------------------------

bool TableCheck::loadDefinition()
{
    const TableDefinitionStore store(*pager_);
    return guard(first_, "its definition cannot be read", [&] {
        for (const PageNumber page : store.pages(first_)) {
            if (!ledger_->claim(page, PageLedger::Use::Definition, owner_)) {
                throw Error(ErrorCode::Corrupt, page, "a page of the definition has another use");
            }
        }
        definition_ = store.load(first_);
        layout_.emplace(definition_);
    });
}

/// What else may be wrong with a definition keeps it from being read.
void TableCheck::checkDefinition()
{
    for (const Column& column : definition_.columns) {
        const bool hasMaps = std::any_of(definition_.longValues.begin(), definition_.longValues.end(),
                                         [&](const LongValueMaps& maps) { return maps.columnNumber == column.number; });
        if (column.isLongValue() && !hasMaps) {
            damage(first_, "column \"" + column.name + "\" has no maps for its long values");
        }
    }
}

/// The members of a map, once its row and bitmap pages are entered in the ledger.
std::vector<PageNumber> TableCheck::claimMap(RowPointer map, std::uint32_t owner, const std::string& what)
{
    std::vector<PageNumber> members;
    if (!ledger_->claimMap(map, owner)) {
        sound_ = false;
        return members;
    }
    guard(map.page, "the map of " + what, [&] {
        const UsageMap pages(*pager_, map);
        for (const PageNumber bitmap : pages.bitmapPages()) {
            if (!ledger_->claim(bitmap, PageLedger::Use::Bitmap, owner)) {
                sound_ = false;
            }
        }
        members = pages.pages();
    });
    return members;
}

std::vector<PageNumber> TableCheck::claimPages(RowPointer map, PageLedger::Use use, std::uint32_t owner,
                                               const std::string& what)
{
    std::vector<PageNumber> pages = claimMap(map, owner, what);
    const auto taken = [&](PageNumber page) { return !ledger_->claim(page, use, owner); };
    const auto removed = std::remove_if(pages.begin(), pages.end(), taken);
    sound_ = sound_ && removed == pages.end();
    pages.erase(removed, pages.end());
    return pages;
}

void TableCheck::claimSpaceMap(RowPointer map, PageLedger::Use use, std::uint32_t owner, const std::string& what)
{
    for (const PageNumber page : claimMap(map, owner, what)) {
        if (!ledger_->has(page, use, owner)) {
            damage(page, "the page is in the map of " + what + ", but is none of them");
        }
    }
}

void TableCheck::claimEverything()
{
    dataPages_ = claimPages(definition_.ownedPages, PageLedger::Use::Data, owner_, "its pages");
    claimSpaceMap(definition_.pagesWithSpace, PageLedger::Use::Data, owner_, "its pages with space");
    for (const LongValueMaps& maps : definition_.longValues) {
        const Column* column = definition_.columnByNumber(maps.columnNumber);
        const std::string name = column != nullptr ? "column \"" + column->name + "\""
                                                   : "column number " + std::to_string(maps.columnNumber);
        const std::uint32_t owner = ledger_->addOwner(name + " of table \"" + name_ + "\"");
        longColumns_.emplace_back(
            *pager_, *ledger_, owner, maps.columnNumber,
            claimPages(maps.owned, PageLedger::Use::LongValues, owner, "the long-value pages of " + name));
        if (maps.withSpace.page != 0) {
            claimSpaceMap(maps.withSpace, PageLedger::Use::LongValues, owner,
                          "the long-value pages with space of " + name);
        }
    }
    for (std::size_t i = 0; i < definition_.realIndexes.size(); ++i) {
        const std::string name = "index " + std::to_string(i);
        indexOwners_.push_back(ledger_->addOwner(name + " of table \"" + name_ + "\""));
        // Which of the pages the tree really uses is found by walking it.
        static_cast<void>(claimPages(definition_.realIndexes[i].pages, PageLedger::Use::Index, indexOwners_.back(),
                                     "the pages of " + name));
    }
}

// --- Rows --------------------------------------------------------------------------------------------------------

void TableCheck::checkLongValuePages()
{
    for (const LongValueCheck& column : longColumns_) {
        for (const PageNumber page : column.pages()) {
            guard(page, "a long-value page", [&] { column.checkPage(page); });
        }
    }
}

void TableCheck::checkDataPages(const RowSink& sink)
{
    for (const PageNumber page : dataPages_) {
        guard(page, "a data page", [&] { checkDataPage(page, sink); });
    }
}

void TableCheck::checkDataPage(PageNumber page, const RowSink& sink)
{
    const PageRef content = pager_->read(page);
    if (!isDataPageOf(*content, first_)) {
        throw Error(ErrorCode::Corrupt, page, "it is no data page of the table");
    }
    const DataPage data(*content, page);
    data.validate();
    for (std::size_t slot = 0; slot < data.slotCount(); ++slot) {
        const RowPointer address{.page = page, .row = static_cast<std::uint8_t>(slot)};
        switch (data.kind(slot)) {
        case SlotKind::Row:
            rows_.insert(address);
            checkRow(address, page, data.bytes(slot), sink);
            break;
        case SlotKind::Pointer:
            rows_.insert(address);
            checkPointer(address, data.target(slot), sink);
            break;
        case SlotKind::Moved:
            moved_.insert(address);
            movedRows_.push_back(address);
            break;
        case SlotKind::Deleted:
            break;
        }
    }
}

void TableCheck::checkPointer(RowPointer address, RowPointer target, const RowSink& sink)
{
    const std::string what = rowText(address.row) + ", which has moved to " + wordsFor(target);
    const bool readable = guard(address.page, what, [&] {
        if (!ledger_->has(target.page, PageLedger::Use::Data, owner_)) {
            throw Error(ErrorCode::Corrupt, address.page, "that page is not the table's");
        }
        const PageRef content = pager_->read(target.page);
        const DataPage data(*content, target.page);
        if (target.row >= data.slotCount() || data.kind(target.row) != SlotKind::Moved) {
            throw Error(ErrorCode::Corrupt, address.page, "there is no moved row");
        }
        if (!targets_.insert(target)) {
            throw Error(ErrorCode::Corrupt, address.page, "another row has moved to the same place");
        }
        checkRow(address, target.page, data.bytes(target.row), sink);
    });
    if (!readable) {
        badRows_.insert(address);
    }
}

void TableCheck::checkMovedRows()
{
    for (const RowPointer& row : movedRows_) {
        if (!targets_.contains(row)) {
            damage(row.page, rowText(row.row) + " is moved data of no row");
        }
    }
}

void TableCheck::checkRow(RowPointer address, PageNumber dataPage, ByteView bytes, const RowSink& sink)
{
    const bool readable = guard(dataPage, rowText(address.row), [&] {
        const RowView row(*layout_, bytes);
        for (const Column& column : definition_.columns) {
            if (!column.isLongValue()) {
                const Value value = row.value(column);
                const auto* number = std::get_if<std::int32_t>(&value);
                if (column.isAutoNumber() && number != nullptr) {
                    highestAutoNumber_ = std::max<std::int64_t>(highestAutoNumber_, *number);
                }
            } else if (const auto slot = row.raw(column)) {
                const auto values =
                    std::find_if(longColumns_.begin(), longColumns_.end(),
                                 [&](const LongValueCheck& each) { return each.columnNumber() == column.number; });
                if (values != longColumns_.end()) {
                    values->follow(*slot);
                }
                static_cast<void>(readValue(*pager_, row, column));
            }
        }
        if (sink) {
            sink(address, row);
        }
    });
    if (!readable) {
        badRows_.insert(address);
    }
}

void TableCheck::checkUnreferencedLongValues()
{
    if (!rowsAreSound_) {
        return; // what a row that cannot be read refers to is unknown
    }
    for (const LongValueCheck& column : longColumns_) {
        for (const RowPointer& row : column.unused()) {
            leftover(row.page, rowText(row.row) + " is part of no long value");
        }
    }
}

void TableCheck::checkCounters()
{
    if (definition_.rowCount != rows_.size()) {
        const std::string text =
            "it counts " + std::to_string(definition_.rowCount) + " rows and has " + std::to_string(rows_.size());
        // The counts of system tables are wrong in files of every origin.
        if (definition_.kind == TableDefinition::kUserTable) {
            damage(first_, text);
        } else {
            leftover(first_, text);
        }
    }
    if (definition_.lastAutoNumber < highestAutoNumber_) {
        damage(first_, "the last auto-number is " + std::to_string(definition_.lastAutoNumber) + ", but a row has " +
                           std::to_string(highestAutoNumber_));
    }
}

// --- Indexes -----------------------------------------------------------------------------------------------------

void TableCheck::checkIndexes()
{
    const CheckedRows rows{.all = rows_, .unreadable = badRows_, .complete = rowsAreSound_};
    const std::size_t faultsBefore = faults_->size();
    for (std::size_t i = 0; i < definition_.realIndexes.size(); ++i) {
        const std::string index = "index " + std::to_string(i);
        guard(definition_.realIndexes[i].root, index, [&] {
            IndexCheck(*pager_, *faults_, first_, definition_, *layout_, i, rows, "Table \"" + name_ + "\": " + index)
                .run();
        });
    }
    sound_ = sound_ && faults_->size() == faultsBefore;
}

} // namespace jet
