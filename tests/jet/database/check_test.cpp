// The structural check: a sound file has no fault; with one thing broken, the fault names it and its page.
#include "jet/check.h"
#include "jet/database/breakable_diary.h"
#include "jet/database/diary_content.h"
#include "jet/database/small_diary.h"
#include "jet/format/long_value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace jet::test {

using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

TEST(Check, TheSmallDiaryIsSound)
{
    EXPECT_THAT(BreakableDiary().check(), IsEmpty());
}

TEST(Check, TheSmallDiaryHasWhatTheCasesBreak)
{
    BreakableDiary diary;
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
        table.insert(values(table, {{"M", std::u16string(60, u'x')}}));
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

} // namespace

TEST_P(BrokenFile, IsToldWithItsPage)
{
    BreakableDiary diary;
    diary.begin();
    const PageNumber page = GetParam().breakOne(diary);
    diary.commit();
    EXPECT_THAT(diary.check(), Contains(AllOf(Field("page", &Fault::page, page),
                                              Field("text", &Fault::text, HasSubstr(GetParam().text)),
                                              Field("kind", &Fault::kind, GetParam().kind))));
}

} // namespace jet::test
