// What the check says of pages and usage maps that are broken.
#include "jet/database/breakable_diary.h"
#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/format/usage_map_codec.h"
#include "jet/store/page_allocator.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::vector<Breakage> kPagesAndMaps{
    {"CatalogueOnAPageThatIsNotThere",
     [](BreakableDiary& diary) -> PageNumber {
         HeaderPage header = decodeHeaderPage(*diary.pager().read(0));
         header.systemTables[0] = 9999;
         diary.modify(0) = encodeHeaderPage(header);
         return 9999;
     },
     "Table \"MSysObjects\": its definition cannot be read"},
    {"GlobalMapPageOfAnotherOwner",
     [](BreakableDiary& diary) -> PageNumber {
         putU32(diary.modify(1), 4, 7);
         return 1;
     },
     "The page of the global map: it has the owner of another page"},
    {"UsedPageMarkedFree",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map({.page = 1, .row = 0}).add(page);
         return page;
     },
     "in use, but the global map has it as free"},
    {"LostPage",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = PageAllocator(diary.pager()).allocate();
         DataPageEditor::initialize(diary.modify(page), 999);
         return page;
     },
     "neither in use nor free", Fault::Kind::Leftover},
    {"PageOfTwoTables",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map(diary.definition("Meals").ownedPages).add(page);
         return page;
     },
     "also a data page of table"},
    {"DefinitionPageAsDataPage",
     [](BreakableDiary& diary) -> PageNumber {
         diary.map(diary.definition("Meals").ownedPages).add(diary.page("Foods"));
         return diary.page("Foods");
     },
     "The page is a data page of table \"Meals\" and also a definition page of table \"Foods\""},
    {"SpaceMapWithAForeignPage",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map(diary.definition("Meals").pagesWithSpace).add(page);
         return page;
     },
     "in the map of its pages with space, but is none of them"},
    {"OneRowForTwoMaps",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.pagesWithSpace = table.ownedPages; });
         return diary.definition("Meals").ownedPages.page;
     },
     "and also another map"},
    {"MapThatNobodyUses",
     [](BreakableDiary& diary) -> PageNumber { return createUsageMaps(diary.pager(), 1).front().page; },
     "neither in use nor free", Fault::Kind::Leftover},
    {"MapRowThatNobodyUses",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.definition("Meals").ownedPages.page;
         DataPageEditor(diary.modify(page), page).append(Bytes(UsageMapRow::kUsualSize));
         return page;
     },
     "is no map of anything", Fault::Kind::Leftover},
    {"MapPointerIntoARow",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.setDefinition("Meals", [page](TableDefinition& table) { table.ownedPages = {.page = page, .row = 0}; });
         return page;
     },
     "also a map page"},
    {"MapPageOfAnotherOwner",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.definition("Meals").ownedPages.page;
         putU32(diary.modify(page), 4, 7);
         return page;
     },
     "owner"},
    {"DataPageOfAnotherOwner",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU32(diary.modify(page), 4, diary.page("Foods"));
         return page;
     },
     "Table \"Meals\": a data page: it is no data page of the table"},
    {"WrongFreeCount",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU16(diary.modify(page), 2, 17);
         return page;
     },
     "Table \"Meals\": a data page"},
    {"SlotThatOverlapsTheNext",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU16(diary.modify(page), DataPage::kHeaderSize, 20);
         return page;
     },
     "Table \"Meals\": a data page"},
    {"LongValuePageOfAnotherOwner",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = diary.longValuePage();
         putU32(diary.modify(page), 4, diary.page("Readings"));
         return page;
     },
     "it is no long-value page"},
};

INSTANTIATE_TEST_SUITE_P(PagesAndMaps, BrokenFile, testing::ValuesIn(kPagesAndMaps), nameOfBreakage);

} // namespace
} // namespace jet::test
