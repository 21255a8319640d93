// What the check says of a catalogue, of definitions and of relationships that are broken.
#include "jet/database/breakable_diary.h"
#include "jet/store/page_allocator.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

const std::vector<Breakage> kCatalogue{
    {"TableThatTheCatalogueForgot",
     [](BreakableDiary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Foods"));
         return diary.page("Foods");
     },
     "the catalogue knows no such table"},
    {"TableWithoutDefinition",
     [](BreakableDiary& diary) -> PageNumber {
         const PageNumber page = PageAllocator(diary.pager()).allocate();
         diary.setValue("MSysObjects", diary.catalogueRow(u"Foods"), "Id", static_cast<std::int32_t>(page));
         return page;
     },
     "Table \"Foods\": its definition cannot be read"},
    {"TwoTablesWithOneDefinition",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setValue("MSysObjects", diary.catalogueRow(u"Foods"), "Id",
                        static_cast<std::int32_t>(diary.page("Meals")));
         return diary.dataPage("MSysObjects");
     },
     "The catalogue has the id "},
    {"QueryThatTheCatalogueForgot",
     [](BreakableDiary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Menu"));
         return diary.dataPage("MSysQueries");
     },
     "of MSysQueries belongs to no query"},
    {"PermissionsOfNothing",
     [](BreakableDiary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Menu"));
         return diary.dataPage("MSysACEs");
     },
     "of MSysACEs belongs to no object", Fault::Kind::Leftover},
    {"ObjectInNoContainer",
     [](BreakableDiary& diary) -> PageNumber {
         return diary.setValue("MSysObjects", diary.catalogueRow(u"Menu"), "ParentId", std::int32_t{123}).page;
     },
     "\"Menu\" is in a container that is not there"},
    {"TwoObjectsWithOneName",
     [](BreakableDiary& diary) -> PageNumber {
         IndexTree tree = diary.tree("MSysObjects", 0);
         const int number = diary.catalogueRow(u"Menu");
         const RowPointer address = diary.row("MSysObjects", number).address;
         EXPECT_TRUE(tree.erase(diary.key("MSysObjects", 0, number).bytes, address));
         diary.setValue("MSysObjects", number, "Name", u"FOODS");
         tree.insert(diary.key("MSysObjects", 0, number).bytes, address);
         return diary.index("MSysObjects", 0).root;
     },
     "Table \"MSysObjects\": index 0 allows no duplicates"},
    {"TwoColumnsOfOneNumber",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals",
                             [](TableDefinition& table) { table.columns[1].number = table.columns[0].number; });
         return diary.page("Meals");
     },
     "Table \"Meals\": its definition cannot be read: Two columns of a table have the number 0"},
    {"IndexOnNoColumn",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals",
                             [](TableDefinition& table) { table.realIndexes[1].columns[0].columnNumber = 40; });
         return diary.page("Meals");
     },
     "Table \"Meals\": its definition cannot be read: An index names a column that its table does not have"},
};

INSTANTIATE_TEST_SUITE_P(Catalogue, BrokenFile, testing::ValuesIn(kCatalogue), nameOfBreakage);

const std::vector<Breakage> kRelationships{
    {"ChildWithoutParent",
     [](BreakableDiary& diary) -> PageNumber {
         const RowPointer address = diary.row("Foods", 3).address;
         const std::size_t indexes = diary.definition("Foods").realIndexes.size();
         for (std::size_t i = 0; i < indexes; ++i) {
             EXPECT_TRUE(diary.tree("Foods", i).erase(diary.key("Foods", i, 3).bytes, address));
         }
         diary.setValue("Foods", 3, "MealNo", std::int32_t{55});
         for (std::size_t i = 0; i < indexes; ++i) {
             diary.tree("Foods", i).insert(diary.key("Foods", i, 3).bytes, address);
         }
         return address.page;
     },
     "Table \"Foods\": row 3 refers to a row of \"Meals\" that is not there"},
    {"SideThatLeadsNowhere",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Foods", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.otherIndexNumber = index.kind == LogicalIndex::Kind::ForeignKey ? 99 : index.otherIndexNumber;
             }
         });
         return diary.page("Foods");
     },
     "leads to an index that is not there"},
    {"SideThatDoesNotLeadBack",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.otherTable = index.kind == LogicalIndex::Kind::ForeignKey ? 2 : index.otherTable;
             }
         });
         return diary.page("Foods");
     },
     "leads to an index that does not lead back"},
    {"SidesThatCascadeDifferently",
     [](BreakableDiary& diary) -> PageNumber {
         diary.setDefinition("Foods", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.cascadeDeletes = 0;
             }
         });
         return diary.page("Foods");
     },
     "cascades in one of its tables in another way"},
    {"EnforcedWithoutIndexes",
     [](BreakableDiary& diary) -> PageNumber {
         for (const char* table : {"Meals", "Foods"}) {
             diary.setDefinition(table, [](TableDefinition& definition) {
                 std::erase_if(definition.logicalIndexes,
                               [](const LogicalIndex& index) { return index.kind == LogicalIndex::Kind::ForeignKey; });
             });
         }
         return diary.dataPage("MSysRelationships");
     },
     "Relationship \"MealsFoods\" is enforced, but \"Foods\" has no index for it"},
    {"RelationshipThatTheCatalogueForgot",
     [](BreakableDiary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"MealsFoods"));
         return diary.dataPage("MSysRelationships");
     },
     "Relationship \"MealsFoods\" is not in the catalogue"},
    {"RelationshipOfNoTable",
     [](BreakableDiary& diary) -> PageNumber {
         return diary.setValue("MSysRelationships", 0, "szReferencedObject", u"Dishes").page;
     },
     "names the table \"Dishes\", which is not there"},
    {"RelationshipOfNoColumn",
     [](BreakableDiary& diary) -> PageNumber {
         return diary.setValue("MSysRelationships", 0, "szColumn", u"Dish").page;
     },
     "names the column \"Dish\", which is not in \"Foods\""},
    {"RelationshipThatMiscountsItsColumns",
     [](BreakableDiary& diary) -> PageNumber {
         return diary.setValue("MSysRelationships", 0, "ccolumn", std::int32_t{2}).page;
     },
     "lacks a row for each of its columns"},
};

INSTANTIATE_TEST_SUITE_P(Relationships, BrokenFile, testing::ValuesIn(kRelationships), nameOfBreakage);

} // namespace
} // namespace jet::test
