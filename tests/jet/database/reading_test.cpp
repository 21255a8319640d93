// Cursors, ranges of keys, and rows that are held while the table changes.
#include "jet/database/builders.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/support/error_matchers.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class Reading : public testing::Test
{
protected:
    Reading() : database_(Database::create(files_, "/a.mdb", DateTime{36900}))
    {
        database_->createTable({"T",
                                {counter("Id"), column("A", ColumnType::Long), column("B", ColumnType::Text, 10),
                                 column("M", ColumnType::Memo)},
                                {primaryKey({{"Id"}}), index("AB", {{"A"}, {"B", false}})}});
        for (const auto& [a, b] : std::vector<std::pair<Value, Value>>{
                 {2, u"x"}, {1, u"y"}, {Null{}, u"x"}, {2, u"z"}, {3, Null{}}, {2, u"x"}}) {
            rows_.push_back(table().insert(values(table(), {{"A", a}, {"B", b}})));
        }
    }

    Table& table() { return database_->table("T"); }

    /// Ids of the rows of a range of the index AB.
    std::string range(const std::optional<KeyBound>& from, const std::optional<KeyBound>& to,
                      Direction direction = Direction::Forwards)
    {
        std::string ids;
        const auto cursor = table().range(1, {from, to}, direction);
        while (cursor->next()) {
            ids +=
                std::to_string(std::get<std::int32_t>(cursor->row().value(*table().definition().columnByName("Id"))));
        }
        return ids;
    }

    MemoryFileSystem files_;
    std::unique_ptr<Database> database_;
    std::vector<RowPointer> rows_;
};

TEST_F(Reading, AnOpenRangeIsTheWholeIndexInItsOwnOrder)
{
    EXPECT_EQ(range({}, {}), "324165"); // null first; within 2 the texts descend; equal keys in the order of entry
    EXPECT_EQ(range({}, {}, Direction::Backwards), "561423");
}

TEST_F(Reading, BoundsMayNameTheLeadingColumnsAlone)
{
    const KeyBound two{{2}, true};
    const KeyBound notTwo{{2}, false};
    EXPECT_EQ(range(two, two), "416");
    EXPECT_EQ(range(two, two, Direction::Backwards), "614");
    EXPECT_EQ(range(notTwo, {}), "5");
    EXPECT_EQ(range({}, notTwo), "32");
    EXPECT_EQ(range(notTwo, notTwo), "");
    EXPECT_EQ(range(KeyBound{{4}, true}, {}), "");
}

TEST_F(Reading, BoundsOfAllColumnsAndOfNull)
{
    const KeyBound twoX{{2, u"X"}, true};
    EXPECT_EQ(range(twoX, twoX), "16");
    EXPECT_EQ(range(twoX, {}), "165");
    EXPECT_EQ(range({}, KeyBound{{2, u"x"}, false}), "324");
    const KeyBound null{{Null{}}, true};
    EXPECT_EQ(range(null, null), "3");
    EXPECT_EQ(range(KeyBound{{Null{}}, false}, {}), "24165");
}

TEST_F(Reading, BoundsOfAnotherTypeAreRefused)
{
    EXPECT_THAT(
        [&] {
            static_cast<void>(range(KeyBound{{u"two"}, true}, {}));
        },
        throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { static_cast<void>(table().range(2, {})); }, throwsError(ErrorCode::NoSuchObject));
}

TEST_F(Reading, ACursorGoesOnWhileItsRowsAreErased)
{
    std::size_t count = 0;
    for (const auto cursor = table().range(1, {}); cursor->next(); ++count) {
        table().erase(cursor->row().address());
    }
    EXPECT_EQ(count, 6U);
    EXPECT_EQ(table().rowCount(), 0U);
    EXPECT_EQ(faultsOf(*database_), "");
}

TEST_F(Reading, AScanGoesOnWhileRowsAreErasedAndChanged)
{
    std::size_t count = 0;
    for (const auto cursor = table().scan(); cursor->next(); ++count) {
        if (count % 2 == 0) {
            table().erase(cursor->row().address());
        } else {
            table().update(cursor->row().address(), values(table(), {{"M", std::u16string(5000, u'm')}}));
        }
    }
    EXPECT_EQ(count, 6U);
    EXPECT_EQ(table().rowCount(), 3U);
    EXPECT_EQ(faultsOf(*database_), "");
}

TEST_F(Reading, ARowThatWasReadStaysAsItWas)
{
    const auto row = table().read(rows_[1]);
    ASSERT_NE(row, nullptr);
    const Column b = *table().definition().columnByName("B");
    table().update(rows_[1], values(table(), {{"B", u"new"}}));
    table().erase(rows_[1]);
    EXPECT_EQ(row->value(b), Value(u"y"));
    EXPECT_EQ(table().read(rows_[1]), nullptr);
}

TEST_F(Reading, ALongValueThatIsGoneIsAnErrorAndNeverAnother)
{
    table().update(rows_[0], values(table(), {{"M", std::u16string(9000, u'a')}}));
    const Column m = *table().definition().columnByName("M");
    const auto row = table().read(rows_[0]);
    table().update(rows_[0], values(table(), {{"A", 9}}));
    EXPECT_EQ(row->value(m), Value(std::u16string(9000, u'a'))) << "the row still refers to it";
    table().update(rows_[0], values(table(), {{"M", std::u16string(9000, u'b')}}));
    EXPECT_THAT([&] { static_cast<void>(row->value(m)); }, throwsError(ErrorCode::NoSuchObject));
}

TEST_F(Reading, AReadThatIsHeldKeepsOtherConnectionsFromCommitting)
{
    const auto other = Database::open(files_, "/a.mdb");
    Table& theirs = other->table("T");
    {
        const auto cursor = table().scan();
        ASSERT_TRUE(cursor->next());
        EXPECT_THAT([&] { theirs.insert({}); }, throwsError(ErrorCode::Locked));
    }
    theirs.insert({});
    EXPECT_EQ(table().rowCount(), 7U);
}

TEST_F(Reading, WhatAnotherConnectionCommitsIsSeen)
{
    const auto other = Database::open(files_, "/a.mdb");
    other->table("T").update(rows_[0], values(other->table("T"), {{"A", 77}}));
    EXPECT_EQ(range(KeyBound{{77}, true}, {}), "1");
}

TEST_F(Reading, AnAddressOfAnotherTableOrOutsideTheFileHasNoRow)
{
    EXPECT_EQ(table().read({0, 0}), nullptr);
    EXPECT_EQ(table().read({14, 0}), nullptr) << "a row of MSysObjects";
    EXPECT_EQ(table().read({rows_[0].page, 200}), nullptr);
}

} // namespace
} // namespace jet::test
