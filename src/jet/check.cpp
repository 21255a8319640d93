#include "jet/check.h"

#include "jet/check_catalogue.h"
#include "jet/check_ledger.h"
#include "jet/check_table.h"
#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/store/page_allocator.h"
#include "jet/store/usage_map.h"
#include "jet/system_tables.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace jet {

namespace {

/// The type of a definition page in use.
constexpr std::byte kDefinitionPage{2};

class FileCheck
{
public:
    explicit FileCheck(Pager& pager) : pager_(&pager), ledger_(pager.pageCount(), faults_), catalogue_(pager, faults_)
    {
    }

    std::vector<Fault> run()
    {
        try {
            if (checkHeader() && checkSystemTables()) {
                checkUserTables();
                catalogue_.run(tables_);
                checkPages();
            }
        } catch (const EnoughFaults&) {
            // The list says so.
        }
        return faults_.take();
    }

private:
    bool checkHeader()
    {
        fileOwner_ = ledger_.addOwner("the file");
        if (pager_->pageCount() == 0) {
            faults_.add(0, "The file is empty");
            return false;
        }
        ledger_.claim(0, PageLedger::Use::Header, fileOwner_);
        return faults_.guard(0, "The header", [&] {
            header_ = decodeHeaderPage(*pager_->read(0));
            ledger_.claimMap(header_.globalMap, fileOwner_);
            checkGlobalMapPage();
            ledger_.claimMap(header_.secondMap, fileOwner_);
            for (const RowPointer& map : {header_.globalMap, header_.secondMap}) {
                faults_.guard(map.page, "A map of the whole file", [&] {
                    for (const PageNumber bitmap : UsageMap(*pager_, map).bitmapPages()) {
                        ledger_.claim(bitmap, PageLedger::Use::Bitmap, fileOwner_);
                    }
                });
            }
        });
    }

    void checkGlobalMapPage()
    {
        const PageNumber page = header_.globalMap.page;
        faults_.guard(page, "The page of the global map", [&] {
            const PageRef content = pager_->read(page);
            DataPage(*content, page).validate();
            if (!isDataPageOf(*content, kGlobalMapPageOwner)) {
                throw Error(ErrorCode::Corrupt, page, "it has the owner of another page");
            }
        });
    }

    /// False when the catalogue cannot be read: nothing can be said of the rest then.
    bool checkSystemTables()
    {
        for (std::size_t i = 0; i < kSystemTableNames.size(); ++i) {
            auto table =
                std::make_unique<TableCheck>(*pager_, faults_, ledger_, kSystemTableNames[i], header_.systemTables[i]);
            const bool readable = table->run([&](RowPointer address, const RowView& row) {
                switch (i) {
                case 0:
                    catalogue_.addObject(*table, address, row);
                    break;
                case 1:
                    catalogue_.addPermission(*table, address, row);
                    break;
                case 2:
                    catalogue_.addQueryRow(*table, address, row);
                    break;
                default:
                    catalogue_.addRelationshipRow(*table, address, row);
                }
            });
            if (!readable && i == 0) {
                return false;
            }
            allTablesRead_ = allTablesRead_ && readable;
            tables_.push_back(std::move(table));
        }
        return true;
    }

    void checkUserTables()
    {
        for (const CatalogueCheck::NamedTable& entry : catalogue_.tables()) {
            const auto& system = header_.systemTables;
            if (std::find(system.begin(), system.end(), entry.firstPage) == system.end()) {
                auto table = std::make_unique<TableCheck>(*pager_, faults_, ledger_, entry.name, entry.firstPage);
                if (table->run()) {
                    tables_.push_back(std::move(table));
                } else {
                    allTablesRead_ = false;
                }
            }
        }
    }

    /// Every page has one use or is free, and map rows are all some table's.
    void checkPages()
    {
        const PageAllocator allocator(*pager_);
        for (PageNumber page = 0; page < ledger_.pageCount(); ++page) {
            bool free = false;
            if (!faults_.guard(header_.globalMap.page, "The global map", [&] { free = allocator.isFree(page); })) {
                return; // would be the same for every page
            }
            if (ledger_.use(page) == PageLedger::Use::Map) {
                checkMapPage(page);
            }
            if (ledger_.use(page) != PageLedger::Use::None && free) {
                faults_.add(page, "The page is in use, but the global map has it as free");
            } else if (ledger_.use(page) == PageLedger::Use::None && !free && allTablesRead_) {
                checkUnusedPage(page);
            }
        }
    }

    /// Lost pages are common in files of Access and harmless, but a definition may be that of a lost table.
    void checkUnusedPage(PageNumber page)
    {
        if (pager_->read(page)->front() == kDefinitionPage) {
            faults_.add(page, "The page is a table's definition, but the catalogue knows no such table");
        } else {
            faults_.add(page, "The page is neither in use nor free", Fault::Kind::Leftover);
        }
    }

    void checkMapPage(PageNumber page)
    {
        faults_.guard(page, "A map page", [&] {
            const PageRef content = pager_->read(page);
            const DataPage rows(*content, page);
            rows.validate();
            if (rows.owner() != kMapPageOwner && rows.owner() != kGlobalMapPageOwner) {
                throw Error(ErrorCode::Corrupt, page, "it has the owner of another page");
            }
            for (std::size_t slot = 0; slot < rows.slotCount(); ++slot) {
                const RowPointer row{.page = page, .row = static_cast<std::uint8_t>(slot)};
                if (allTablesRead_ && rows.kind(slot) != SlotKind::Deleted && !ledger_.mapRows().contains(row)) {
                    faults_.add(page, "Row " + std::to_string(slot) + " of the map page is no map of anything",
                                Fault::Kind::Leftover);
                }
            }
        });
    }

    Pager* pager_;
    FaultList faults_;
    PageLedger ledger_;
    CatalogueCheck catalogue_;
    HeaderPage header_;
    std::uint32_t fileOwner_ = 0;
    bool allTablesRead_ = true; ///< else nothing can be said of pages that no table claims
    std::vector<std::unique_ptr<TableCheck>> tables_;
};

} // namespace

std::vector<Fault> checkFile(Pager& pager)
{
    const ReadGuard guard(pager);
    return FileCheck(pager).run();
}

} // namespace jet
