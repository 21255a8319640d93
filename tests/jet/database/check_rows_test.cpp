// What the check says of rows and long values that are broken.
#include "jet/database/breakable_diary.h"
#include "jet/format/data_page.h"
#include "jet/format/long_value.h"
#include "jet/store/long_value_store.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::vector<Breakage> kRows{
    {"RowCutShort",
     [](BreakableDiary& diary) -> PageNumber {
         const StoredRow row = diary.row("Meals", 0);
         diary.rows("Meals").update(row.address, row.bytes.first(8));
         return row.address.page;
     },
     "Table \"Meals\": row 0"},
    {"RowOfNonsense",
     [](BreakableDiary& diary) -> PageNumber {
         const RowPointer address = diary.row("Meals", 1).address;
         diary.rows("Meals").update(address, Bytes(30, std::byte{0xFF}));
         return address.page;
     },
     "Table \"Meals\": row 1"},
    {"MovedRowGone",
     [](BreakableDiary& diary) -> PageNumber {
         const StoredRow row = diary.row("Readings", 3);
         DataPageEditor page(diary.modify(row.dataPage), row.dataPage);
         for (std::size_t slot = 0; slot < page.view().slotCount(); ++slot) {
             if (page.view().kind(slot) == SlotKind::Moved) {
                 page.remove(static_cast<std::uint8_t>(slot));
             }
         }
         return row.address.page;
     },
     "there is no moved row"},
    {"MovedRowOnAForeignPage",
     [](BreakableDiary& diary) -> PageNumber {
         const StoredRow row = diary.row("Readings", 3);
         Bytes pointer(4);
         putRowPointer(pointer, 0, {.page = diary.dataPage("Meals"), .row = 0});
         DataPageEditor(diary.modify(row.address.page), row.address.page)
             .replace(row.address.row, pointer, SlotKind::Pointer);
         return row.address.page;
     },
     "that page is not the table's"},
    {"TwoRowsMovedToOnePlace",
     [](BreakableDiary& diary) -> PageNumber {
         const RowPointer moved = diary.row("Readings", 3).address;
         DataPageEditor page(diary.modify(moved.page), moved.page);
         const ByteView slot = page.view().bytes(moved.row);
         page.replace(0, Bytes(slot.begin(), slot.end()), SlotKind::Pointer);
         return moved.page;
     },
     "another row has moved to the same place"},
    {"MovedDataOfNoRow",
     [](BreakableDiary& diary) -> PageNumber {
         const StoredRow row = diary.row("Readings", 3);
         DataPageEditor(diary.modify(row.address.page), row.address.page).remove(row.address.row);
         return row.dataPage;
     },
     "is moved data of no row"},
    {"WrongRowCount",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.rowCount = 3; });
         return diary.page("Meals");
     },
     "Table \"Meals\": it counts 3 rows and has 2"},
    {"WrongRowCountOfASystemTable",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("MSysQueries", [](TableDefinition& table) { table.rowCount = 3; });
         return diary.page("MSysQueries");
     },
     "Table \"MSysQueries\": it counts 3 rows and has 10", Fault::Kind::Leftover},
    {"AutoNumberBehind",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.lastAutoNumber = 1; });
         return diary.page("Meals");
     },
     "Table \"Meals\": the last auto-number is 1, but a row has 2"},
};

INSTANTIATE_TEST_SUITE_P(Rows, BrokenFile, testing::ValuesIn(kRows), nameOfBreakage);

const std::vector<Breakage> kLongValues{
    {"MemoOfTwoRows",
     [](BreakableDiary& diary) -> PageNumber { return diary.setValue("Readings", 0, "Notes", diary.memoSlot(2)).page; },
     "which has another use"},
    {"MemoThatIsNotThere",
     [](BreakableDiary& diary) -> PageNumber {
         const Bytes slot = diary.memoSlot(2);
         LongValueStore(diary.pager(), diary.definition("Readings").longValues.front()).free(slot);
         return diary.row("Readings", 2).dataPage;
     },
     "its long value is at"},
    {"MemoOnATablesPage",
     [](BreakableDiary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(2);
         putRowPointer(slot, 4, {.page = diary.dataPage("Meals"), .row = 0});
         return diary.setValue("Readings", 2, "Notes", slot).page;
     },
     "which is not a long-value page of the column"},
    {"MemoLongerThanWhatIsThere",
     [](BreakableDiary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(2);
         putU32(slot, 0, getU32(slot, 0) + 1);
         return diary.setValue("Readings", 2, "Notes", slot).page;
     },
     "is too short"},
    {"ChainThatRunsInACircle",
     [](BreakableDiary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(1);
         putU32(slot, 0, 100'000);
         const RowPointer first = decodeLongValue(slot).first;
         DataPageEditor page(diary.modify(first.page), first.page);
         putRowPointer(page.bytes(first.row), 0, first);
         return diary.setValue("Readings", 1, "Notes", slot).page;
     },
     "which has another use"},
    {"MemoThatNoRowHas",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = decodeLongValue(diary.memoSlot(2)).first.page;
         diary.setValue("Readings", 2, "Notes", Null{});
         return page;
     },
     "is part of no long value", Fault::Kind::Leftover},
    {"MemoColumnWithoutMaps",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Readings", [](TableDefinition& table) { table.longValues.clear(); });
         return diary.page("Readings");
     },
     "column \"Notes\" has no maps for its long values"},
};

INSTANTIATE_TEST_SUITE_P(LongValues, BrokenFile, testing::ValuesIn(kLongValues), nameOfBreakage);

} // namespace
} // namespace jet::test
