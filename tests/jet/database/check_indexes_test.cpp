// What the check says of indexes that are broken.
#include "jet/database/breakable_diary.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::vector<Breakage> kIndexes{
    {"EntryMissing",
     [](BreakableDiary& diary) -> PageNumber {
         EXPECT_TRUE(diary.tree("Meals", 1).erase(diary.key("Meals", 1, 0).bytes, diary.row("Meals", 0).address));
         return diary.index("Meals", 1).root;
     },
     "Table \"Meals\": index 1 has no entry for row 0"},
    {"EntryOfNoRow",
     [](BreakableDiary& diary) -> PageNumber {
         diary.tree("Meals", 1).insert(diary.key("Meals", 1, 0).bytes, {.page = diary.dataPage("Meals"), .row = 77});
         return diary.index("Meals", 1).root;
     },
     "index 1 has an entry for row 77"},
    {"RowWithTwoEntries",
     [](BreakableDiary& diary) -> PageNumber {
         diary.tree("Meals", 1).insert(diary.key("Meals", 1, 0).bytes, diary.row("Meals", 1).address);
         return diary.index("Meals", 1).root;
     },
     "index 1 has two entries for row 1"},
    {"EntryWithAnotherKeyThanTheRow",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setValue("Meals", 0, "Title", u"Brunch");
         return diary.index("Meals", 1).root;
     },
     "index 1 has another key for row 0"},
    {"DuplicateInAUniqueIndex",
     [](BreakableDiary& diary) -> PageNumber {
         IndexTree tree = diary.tree("Readings", 2);
         const RowPointer address = diary.row("Readings", 2).address;
         EXPECT_TRUE(tree.erase(diary.key("Readings", 2, 2).bytes, address));
         diary.setValue("Readings", 2, "Code", u"LONG");
         tree.insert(diary.key("Readings", 2, 2).bytes, address);
         return diary.index("Readings", 2).root;
     },
     "index 2 allows no duplicates"},
    {"NullInThePrimaryKey",
     [](BreakableDiary& diary) -> PageNumber {
         IndexTree tree = diary.tree("Meals", 0);
         const RowPointer address = diary.row("Meals", 1).address;
         EXPECT_TRUE(tree.erase(diary.key("Meals", 0, 1).bytes, address));
         diary.setValue("Meals", 1, "MealNo", Null{});
         tree.insert(diary.key("Meals", 0, 1).bytes, address);
         return diary.index("Meals", 0).root;
     },
     "index 0 allows no nulls"},
    {"RootNotInTheIndexsMap",
     [](BreakableDiary& diary) -> PageNumber {
         const RealIndex index = diary.index("Meals", 0);
         diary.map(index.pages).remove(index.root);
         return index.root;
     },
     "index 0"},
    {"IndexPageOfAnotherOwner",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber root = diary.index("Meals", 0).root;
         putU32(diary.modify(root), 4, diary.page("Foods"));
         return root;
     },
     "Table \"Meals\": index 0"},
    {"EntriesOutOfOrder",
     [](BreakableDiary& diary) -> PageNumber {
         // Entries of the primary key are nine bytes each: flag, number, page, row.
         const PageNumber root = diary.index("Meals", 0).root;
         Page& page = diary.modify(root);
         std::swap_ranges(page.begin() + 480, page.begin() + 489, page.begin() + 489);
         return root;
     },
     "Table \"Meals\": index 0"},
};

INSTANTIATE_TEST_SUITE_P(Indexes, BrokenFile, testing::ValuesIn(kIndexes), nameOfBreakage);

} // namespace
} // namespace jet::test
