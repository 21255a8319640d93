// The structural check: a sound file has no fault; with one thing broken, the fault names it and its page.
#include "jet/check.h"
#include "jet/database/diary_content.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/format/data_page.h"
#include "jet/format/header_page.h"
#include "jet/format/index_key.h"
#include "jet/format/long_value.h"
#include "jet/format/row_codec.h"
#include "jet/format/usage_map_codec.h"
#include "jet/format/utf.h"
#include "jet/store/index_tree.h"
#include "jet/store/long_value_store.h"
#include "jet/store/row_store.h"
#include "jet/store/table_definition_store.h"
#include "jet/store/usage_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace jet {

using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// The small diary under the hands of somebody who writes its pages without the engine's rules.
class Diary
{
public:
    Diary()
    {
        const auto diary = test::createSmallDiary(disk);
        test::fillSmallDiary(*diary);
        for (const auto cursor = diary->table("MSysObjects").scan(); cursor->next();) {
            const auto value = [&](const char* column) {
                return cursor->row().value(*diary->table("MSysObjects").definition().columnByName(column));
            };
            if (value("Type") == Value(std::int16_t{1})) {
                pages_[toUtf8(std::get<std::u16string>(value("Name")))] =
                    static_cast<PageNumber>(std::get<std::int32_t>(value("Id")));
            }
        }
    }

    std::vector<Fault> check()
    {
        Pager other(disk, test::kDiaryPath, OpenMode::ReadOnly);
        return checkFile(other);
    }

    void begin()
    {
        pager_ = std::make_unique<Pager>(disk, test::kDiaryPath, OpenMode::ReadWrite);
        pager_->begin();
    }
    void commit()
    {
        pager_->commit();
        pager_.reset();
    }
    Pager& pager() { return *pager_; }

    // --- Where things are ---

    PageNumber page(const std::string& table) const { return pages_.at(table); }
    TableDefinition definition(const std::string& table) { return TableDefinitionStore(*pager_).load(page(table)); }
    RealIndex index(const std::string& table, std::size_t position)
    {
        return definition(table).realIndexes.at(position);
    }
    UsageMap map(RowPointer where) { return {*pager_, where}; }
    PageNumber dataPage(const std::string& table) { return map(definition(table).ownedPages).pages().front(); }
    PageNumber longValuePage() { return map(definition("Readings").longValues.front().owned).pages().front(); }
    RowStore rows(const std::string& table)
    {
        const TableDefinition found = definition(table);
        return {*pager_, page(table), found.ownedPages, found.pagesWithSpace};
    }
    IndexTree tree(const std::string& table, std::size_t position)
    {
        const RealIndex found = index(table, position);
        return {*pager_, page(table), found.root, found.pages};
    }
    StoredRow row(const std::string& table, int number)
    {
        const RowStore store = rows(table);
        RowStore::Cursor cursor = store.scan();
        for (int i = 0; i <= number; ++i) {
            EXPECT_TRUE(cursor.next());
        }
        return cursor.row();
    }
    IndexKey key(const std::string& table, std::size_t position, int rowNumber)
    {
        const TableDefinition found = definition(table);
        const IndexKeyEncoder encoder(found, found.realIndexes.at(position));
        const StoredRow stored = row(table, rowNumber);
        const RowLayout layout(found);
        const RowView view(layout, stored.bytes);
        std::vector<Value> values;
        for (const std::uint16_t column : encoder.columnNumbers()) {
            values.push_back(view.value(*found.columnByNumber(column)));
        }
        return encoder.encode(values);
    }

    // --- Changes ---

    Page& modify(PageNumber number) { return pager_->modify(number); }
    void setDefinition(const std::string& table, const std::function<void(TableDefinition&)>& change)
    {
        TableDefinition changed = definition(table);
        change(changed);
        TableDefinitionStore(*pager_).save(page(table), changed);
    }
    /// Changes one value of a row and nothing else; gives the row's address.
    RowPointer setValue(const std::string& table, int number, const char* column, const Value& value)
    {
        const TableDefinition found = definition(table);
        const StoredRow stored = row(table, number);
        const RowLayout layout(found);
        RowBuilder builder(found, RowView(layout, stored.bytes));
        builder.set(*found.columnByName(column), value);
        rows(table).update(stored.address, builder.encode());
        return stored.address;
    }
    RowPointer eraseRow(const std::string& table, int number)
    {
        const RowPointer address = row(table, number).address;
        rows(table).erase(address);
        return address;
    }
    /// The slot of a memo that lies outside its row.
    Bytes memoSlot(int rowNumber)
    {
        const TableDefinition found = definition("Readings");
        const StoredRow stored = row("Readings", rowNumber);
        const RowLayout layout(found);
        const RowView view(layout, stored.bytes);
        const auto slot = view.raw(*found.columnByName("Notes"));
        return {slot->begin(), slot->end()};
    }
    /// The row of MSysObjects of that name.
    int catalogueRow(const std::u16string& name)
    {
        const TableDefinition found = definition("MSysObjects");
        const RowLayout layout(found);
        const RowStore store = rows("MSysObjects");
        int number = 0;
        for (RowStore::Cursor cursor = store.scan(); cursor.next(); ++number) {
            if (RowView(layout, cursor.row().bytes).value(*found.columnByName("Name")) == Value(name)) {
                return number;
            }
        }
        ADD_FAILURE() << "not in the catalogue";
        return 0;
    }

    MemoryFileSystem disk;

private:
    std::map<std::string, PageNumber> pages_;
    std::unique_ptr<Pager> pager_;
};

TEST(Check, TheSmallDiaryIsSound)
{
    EXPECT_THAT(Diary().check(), IsEmpty());
}

TEST(Check, TheSmallDiaryHasWhatTheCasesBreak)
{
    Diary diary;
    diary.begin();
    EXPECT_EQ(decodeLongValue(diary.memoSlot(1)).storage, LongValue::Storage::Chain);
    EXPECT_EQ(decodeLongValue(diary.memoSlot(2)).storage, LongValue::Storage::OneRow);
    const StoredRow moved = diary.row("Readings", 3);
    EXPECT_NE(moved.dataPage, moved.address.page);
}

TEST(Check, AnEmptyDatabaseIsSound)
{
    MemoryFileSystem disk;
    EXPECT_THAT(Database::create(disk, "New.mdb", DateTime{40000})->check(), IsEmpty());
}

TEST(Check, StopsAfterAThousandFaults)
{
    // One table whose every row has lost its memo's page.
    MemoryFileSystem disk;
    const auto database = Database::create(disk, "New.mdb", DateTime{40000});
    TableSpec spec;
    spec.name = "T";
    spec.columns.resize(1);
    spec.columns.front().name = "M";
    spec.columns.front().type = ColumnType::Memo;
    database->begin();
    database->createTable(spec);
    Table& table = database->table("T");
    for (int i = 0; i < 1200; ++i) {
        table.insert(test::values(table, {{"M", std::u16string(60, u'x')}}));
    }
    database->commit();
    const RowPointer map = table.definition().longValues.front().owned;
    {
        Pager pager(disk, "New.mdb", OpenMode::ReadWrite);
        pager.begin();
        UsageMap owned(pager, map);
        for (const PageNumber page : owned.pages()) {
            owned.remove(page);
        }
        pager.commit();
    }
    const std::vector<Fault> faults = database->check();
    EXPECT_EQ(faults.size(), kMaximumFaults);
    EXPECT_EQ(faults.back().text, "There are more faults; the check stopped here");
}

// --- One thing broken ----------------------------------------------------------------------------------------------

struct Case {
    const char* name;
    /// Breaks one thing and gives the page that the check must name.
    std::function<PageNumber(Diary&)> breakOne;
    std::string text;
    Fault::Kind kind = Fault::Kind::Damage;
};

void PrintTo(const Case& broken, std::ostream* out)
{
    *out << broken.name;
}

class BrokenFile : public testing::TestWithParam<Case>
{
};

TEST_P(BrokenFile, IsToldWithItsPage)
{
    Diary diary;
    diary.begin();
    const PageNumber page = GetParam().breakOne(diary);
    diary.commit();
    EXPECT_THAT(diary.check(), Contains(AllOf(Field("page", &Fault::page, page),
                                              Field("text", &Fault::text, HasSubstr(GetParam().text)),
                                              Field("kind", &Fault::kind, GetParam().kind))));
}

std::string nameOf(const testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

const std::vector<Case> kPagesAndMaps{
    {"CatalogueOnAPageThatIsNotThere",
     [](Diary& diary) -> PageNumber {
         HeaderPage header = decodeHeaderPage(*diary.pager().read(0));
         header.systemTables[0] = 9999;
         diary.modify(0) = encodeHeaderPage(header);
         return 9999;
     },
     "Table \"MSysObjects\": its definition cannot be read"},
    {"GlobalMapPageOfAnotherOwner",
     [](Diary& diary) -> PageNumber {
         putU32(diary.modify(1), 4, 7);
         return 1;
     },
     "The page of the global map: it has the owner of another page"},
    {"UsedPageMarkedFree",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map({.page = 1, .row = 0}).add(page);
         return page;
     },
     "in use, but the global map has it as free"},
    {"LostPage",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = PageAllocator(diary.pager()).allocate();
         DataPageEditor::initialize(diary.modify(page), 999);
         return page;
     },
     "neither in use nor free", Fault::Kind::Leftover},
    {"PageOfTwoTables",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map(diary.definition("Meals").ownedPages).add(page);
         return page;
     },
     "also a data page of table"},
    {"DefinitionPageAsDataPage",
     [](Diary& diary) -> PageNumber {
         diary.map(diary.definition("Meals").ownedPages).add(diary.page("Foods"));
         return diary.page("Foods");
     },
     "The page is a data page of table \"Meals\" and also a definition page of table \"Foods\""},
    {"SpaceMapWithAForeignPage",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.map(diary.definition("Meals").pagesWithSpace).add(page);
         return page;
     },
     "in the map of its pages with space, but is none of them"},
    {"OneRowForTwoMaps",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.pagesWithSpace = table.ownedPages; });
         return diary.definition("Meals").ownedPages.page;
     },
     "and also another map"},
    {"MapThatNobodyUses", [](Diary& diary) -> PageNumber { return createUsageMaps(diary.pager(), 1).front().page; },
     "neither in use nor free", Fault::Kind::Leftover},
    {"MapRowThatNobodyUses",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.definition("Meals").ownedPages.page;
         DataPageEditor(diary.modify(page), page).append(Bytes(UsageMapRow::kUsualSize));
         return page;
     },
     "is no map of anything", Fault::Kind::Leftover},
    {"MapPointerIntoARow",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Readings");
         diary.setDefinition("Meals", [page](TableDefinition& table) { table.ownedPages = {.page = page, .row = 0}; });
         return page;
     },
     "also a map page"},
    {"MapPageOfAnotherOwner",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.definition("Meals").ownedPages.page;
         putU32(diary.modify(page), 4, 7);
         return page;
     },
     "owner"},
    {"DataPageOfAnotherOwner",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU32(diary.modify(page), 4, diary.page("Foods"));
         return page;
     },
     "Table \"Meals\": a data page: it is no data page of the table"},
    {"WrongFreeCount",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU16(diary.modify(page), 2, 17);
         return page;
     },
     "Table \"Meals\": a data page"},
    {"SlotThatOverlapsTheNext",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.dataPage("Meals");
         putU16(diary.modify(page), DataPage::kHeaderSize, 20);
         return page;
     },
     "Table \"Meals\": a data page"},
    {"LongValuePageOfAnotherOwner",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = diary.longValuePage();
         putU32(diary.modify(page), 4, diary.page("Readings"));
         return page;
     },
     "it is no long-value page"},
};

const std::vector<Case> kRows{
    {"RowCutShort",
     [](Diary& diary) -> PageNumber {
         const StoredRow row = diary.row("Meals", 0);
         diary.rows("Meals").update(row.address, row.bytes.first(8));
         return row.address.page;
     },
     "Table \"Meals\": row 0"},
    {"RowOfNonsense",
     [](Diary& diary) -> PageNumber {
         const RowPointer address = diary.row("Meals", 1).address;
         diary.rows("Meals").update(address, Bytes(30, std::byte{0xFF}));
         return address.page;
     },
     "Table \"Meals\": row 1"},
    {"MovedRowGone",
     [](Diary& diary) -> PageNumber {
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
     [](Diary& diary) -> PageNumber {
         const StoredRow row = diary.row("Readings", 3);
         Bytes pointer(4);
         putRowPointer(pointer, 0, {.page = diary.dataPage("Meals"), .row = 0});
         DataPageEditor(diary.modify(row.address.page), row.address.page)
             .replace(row.address.row, pointer, SlotKind::Pointer);
         return row.address.page;
     },
     "that page is not the table's"},
    {"TwoRowsMovedToOnePlace",
     [](Diary& diary) -> PageNumber {
         const RowPointer moved = diary.row("Readings", 3).address;
         DataPageEditor page(diary.modify(moved.page), moved.page);
         const ByteView slot = page.view().bytes(moved.row);
         page.replace(0, Bytes(slot.begin(), slot.end()), SlotKind::Pointer);
         return moved.page;
     },
     "another row has moved to the same place"},
    {"MovedDataOfNoRow",
     [](Diary& diary) -> PageNumber {
         const StoredRow row = diary.row("Readings", 3);
         DataPageEditor(diary.modify(row.address.page), row.address.page).remove(row.address.row);
         return row.dataPage;
     },
     "is moved data of no row"},
    {"WrongRowCount",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.rowCount = 3; });
         return diary.page("Meals");
     },
     "Table \"Meals\": it counts 3 rows and has 2"},
    {"WrongRowCountOfASystemTable",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("MSysQueries", [](TableDefinition& table) { table.rowCount = 3; });
         return diary.page("MSysQueries");
     },
     "Table \"MSysQueries\": it counts 3 rows and has 10", Fault::Kind::Leftover},
    {"AutoNumberBehind",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) { table.lastAutoNumber = 1; });
         return diary.page("Meals");
     },
     "Table \"Meals\": the last auto-number is 1, but a row has 2"},
};

const std::vector<Case> kLongValues{
    {"MemoOfTwoRows",
     [](Diary& diary) -> PageNumber { return diary.setValue("Readings", 0, "Notes", diary.memoSlot(2)).page; },
     "which has another use"},
    {"MemoThatIsNotThere",
     [](Diary& diary) -> PageNumber {
         const Bytes slot = diary.memoSlot(2);
         LongValueStore(diary.pager(), diary.definition("Readings").longValues.front()).free(slot);
         return diary.row("Readings", 2).dataPage;
     },
     "its long value is at"},
    {"MemoOnATablesPage",
     [](Diary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(2);
         putRowPointer(slot, 4, {.page = diary.dataPage("Meals"), .row = 0});
         return diary.setValue("Readings", 2, "Notes", slot).page;
     },
     "which is not a long-value page of the column"},
    {"MemoLongerThanWhatIsThere",
     [](Diary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(2);
         putU32(slot, 0, getU32(slot, 0) + 1);
         return diary.setValue("Readings", 2, "Notes", slot).page;
     },
     "is too short"},
    {"ChainThatRunsInACircle",
     [](Diary& diary) -> PageNumber {
         Bytes slot = diary.memoSlot(1);
         putU32(slot, 0, 100'000);
         const RowPointer first = decodeLongValue(slot).first;
         DataPageEditor page(diary.modify(first.page), first.page);
         putRowPointer(page.bytes(first.row), 0, first);
         return diary.setValue("Readings", 1, "Notes", slot).page;
     },
     "which has another use"},
    {"MemoThatNoRowHas",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = decodeLongValue(diary.memoSlot(2)).first.page;
         diary.setValue("Readings", 2, "Notes", Null{});
         return page;
     },
     "is part of no long value", Fault::Kind::Leftover},
    {"MemoColumnWithoutMaps",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Readings", [](TableDefinition& table) { table.longValues.clear(); });
         return diary.page("Readings");
     },
     "column \"Notes\" has no maps for its long values"},
};

const std::vector<Case> kIndexes{
    {"EntryMissing",
     [](Diary& diary) -> PageNumber {
         EXPECT_TRUE(diary.tree("Meals", 1).erase(diary.key("Meals", 1, 0).bytes, diary.row("Meals", 0).address));
         return diary.index("Meals", 1).root;
     },
     "Table \"Meals\": index 1 has no entry for row 0"},
    {"EntryOfNoRow",
     [](Diary& diary) -> PageNumber {
         diary.tree("Meals", 1).insert(diary.key("Meals", 1, 0).bytes, {.page = diary.dataPage("Meals"), .row = 77});
         return diary.index("Meals", 1).root;
     },
     "index 1 has an entry for row 77"},
    {"RowWithTwoEntries",
     [](Diary& diary) -> PageNumber {
         diary.tree("Meals", 1).insert(diary.key("Meals", 1, 0).bytes, diary.row("Meals", 1).address);
         return diary.index("Meals", 1).root;
     },
     "index 1 has two entries for row 1"},
    {"EntryWithAnotherKeyThanTheRow",
     [](Diary& diary) -> PageNumber {
         diary.setValue("Meals", 0, "Title", u"Brunch");
         return diary.index("Meals", 1).root;
     },
     "index 1 has another key for row 0"},
    {"DuplicateInAUniqueIndex",
     [](Diary& diary) -> PageNumber {
         IndexTree tree = diary.tree("Readings", 2);
         const RowPointer address = diary.row("Readings", 2).address;
         EXPECT_TRUE(tree.erase(diary.key("Readings", 2, 2).bytes, address));
         diary.setValue("Readings", 2, "Code", u"LONG");
         tree.insert(diary.key("Readings", 2, 2).bytes, address);
         return diary.index("Readings", 2).root;
     },
     "index 2 allows no duplicates"},
    {"NullInThePrimaryKey",
     [](Diary& diary) -> PageNumber {
         IndexTree tree = diary.tree("Meals", 0);
         const RowPointer address = diary.row("Meals", 1).address;
         EXPECT_TRUE(tree.erase(diary.key("Meals", 0, 1).bytes, address));
         diary.setValue("Meals", 1, "MealNo", Null{});
         tree.insert(diary.key("Meals", 0, 1).bytes, address);
         return diary.index("Meals", 0).root;
     },
     "index 0 allows no nulls"},
    {"RootNotInTheIndexsMap",
     [](Diary& diary) -> PageNumber {
         const RealIndex index = diary.index("Meals", 0);
         diary.map(index.pages).remove(index.root);
         return index.root;
     },
     "index 0"},
    {"IndexPageOfAnotherOwner",
     [](Diary& diary) -> PageNumber {
         const PageNumber root = diary.index("Meals", 0).root;
         putU32(diary.modify(root), 4, diary.page("Foods"));
         return root;
     },
     "Table \"Meals\": index 0"},
    {"EntriesOutOfOrder",
     [](Diary& diary) -> PageNumber {
         // Entries of the primary key are nine bytes each: flag, number, page, row.
         const PageNumber root = diary.index("Meals", 0).root;
         Page& page = diary.modify(root);
         std::swap_ranges(page.begin() + 480, page.begin() + 489, page.begin() + 489);
         return root;
     },
     "Table \"Meals\": index 0"},
};

const std::vector<Case> kCatalogue{
    {"TableThatTheCatalogueForgot",
     [](Diary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Foods"));
         return diary.page("Foods");
     },
     "the catalogue knows no such table"},
    {"TableWithoutDefinition",
     [](Diary& diary) -> PageNumber {
         const PageNumber page = PageAllocator(diary.pager()).allocate();
         diary.setValue("MSysObjects", diary.catalogueRow(u"Foods"), "Id", static_cast<std::int32_t>(page));
         return page;
     },
     "Table \"Foods\": its definition cannot be read"},
    {"TwoTablesWithOneDefinition",
     [](Diary& diary) -> PageNumber {
         diary.setValue("MSysObjects", diary.catalogueRow(u"Foods"), "Id",
                        static_cast<std::int32_t>(diary.page("Meals")));
         return diary.dataPage("MSysObjects");
     },
     "The catalogue has the id "},
    {"QueryThatTheCatalogueForgot",
     [](Diary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Menu"));
         return diary.dataPage("MSysQueries");
     },
     "of MSysQueries belongs to no query"},
    {"PermissionsOfNothing",
     [](Diary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"Menu"));
         return diary.dataPage("MSysACEs");
     },
     "of MSysACEs belongs to no object", Fault::Kind::Leftover},
    {"ObjectInNoContainer",
     [](Diary& diary) -> PageNumber {
         return diary.setValue("MSysObjects", diary.catalogueRow(u"Menu"), "ParentId", std::int32_t{123}).page;
     },
     "\"Menu\" is in a container that is not there"},
    {"TwoObjectsWithOneName",
     [](Diary& diary) -> PageNumber {
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
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals",
                             [](TableDefinition& table) { table.columns[1].number = table.columns[0].number; });
         return diary.page("Meals");
     },
     "Table \"Meals\": "},
    {"IndexOnNoColumn",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals",
                             [](TableDefinition& table) { table.realIndexes[1].columns[0].columnNumber = 40; });
         return diary.page("Meals");
     },
     "Table \"Meals\": "},
};

const std::vector<Case> kRelationships{
    {"ChildWithoutParent",
     [](Diary& diary) -> PageNumber {
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
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Foods", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.otherIndexNumber = index.kind == LogicalIndex::Kind::ForeignKey ? 99 : index.otherIndexNumber;
             }
         });
         return diary.page("Foods");
     },
     "leads to an index that is not there"},
    {"SideThatDoesNotLeadBack",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Meals", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.otherTable = index.kind == LogicalIndex::Kind::ForeignKey ? 2 : index.otherTable;
             }
         });
         return diary.page("Foods");
     },
     "leads to an index that does not lead back"},
    {"SidesThatCascadeDifferently",
     [](Diary& diary) -> PageNumber {
         diary.setDefinition("Foods", [](TableDefinition& table) {
             for (LogicalIndex& index : table.logicalIndexes) {
                 index.cascadeDeletes = 0;
             }
         });
         return diary.page("Foods");
     },
     "cascades in one of its tables in another way"},
    {"EnforcedWithoutIndexes",
     [](Diary& diary) -> PageNumber {
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
     [](Diary& diary) -> PageNumber {
         diary.eraseRow("MSysObjects", diary.catalogueRow(u"MealsFoods"));
         return diary.dataPage("MSysRelationships");
     },
     "Relationship \"MealsFoods\" is not in the catalogue"},
    {"RelationshipOfNoTable",
     [](Diary& diary) -> PageNumber {
         return diary.setValue("MSysRelationships", 0, "szReferencedObject", u"Dishes").page;
     },
     "names the table \"Dishes\", which is not there"},
    {"RelationshipOfNoColumn",
     [](Diary& diary) -> PageNumber { return diary.setValue("MSysRelationships", 0, "szColumn", u"Dish").page; },
     "names the column \"Dish\", which is not in \"Foods\""},
    {"RelationshipThatMiscountsItsColumns",
     [](Diary& diary) -> PageNumber { return diary.setValue("MSysRelationships", 0, "ccolumn", std::int32_t{2}).page; },
     "lacks a row for each of its columns"},
};

INSTANTIATE_TEST_SUITE_P(PagesAndMaps, BrokenFile, testing::ValuesIn(kPagesAndMaps), nameOf);
INSTANTIATE_TEST_SUITE_P(Rows, BrokenFile, testing::ValuesIn(kRows), nameOf);
INSTANTIATE_TEST_SUITE_P(LongValues, BrokenFile, testing::ValuesIn(kLongValues), nameOf);
INSTANTIATE_TEST_SUITE_P(Indexes, BrokenFile, testing::ValuesIn(kIndexes), nameOf);
INSTANTIATE_TEST_SUITE_P(Catalogue, BrokenFile, testing::ValuesIn(kCatalogue), nameOf);
INSTANTIATE_TEST_SUITE_P(Relationships, BrokenFile, testing::ValuesIn(kRelationships), nameOf);

} // namespace
} // namespace jet
