// Rules that a row must keep, and what remains after a change that broke one.
#include "jet/database/builders.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/support/error_matchers.h"

#include <gtest/gtest.h>
#include <limits>

namespace jet::test {
namespace {

class Constraints : public testing::Test
{
protected:
    Constraints() : database_(Database::create(files_, "/a.mdb", DateTime{36900}))
    {
        database_->createTable({"T",
                                {counter("Id"), column("Code", ColumnType::Text, 10), column("Kind", ColumnType::Long),
                                 column("Level", ColumnType::Double), column("Note", ColumnType::Memo)},
                                {primaryKey({{"Id"}}), uniqueIndex("Code", {{"Code"}}),
                                 uniqueIndex("CodeKind", {{"Code"}, {"Kind"}}), index("Level", {{"Level"}})}});
    }

    ~Constraints() override { EXPECT_EQ(faultsOf(*database_), ""); }

    Table& table() { return database_->table("T"); }
    RowPointer insert(std::initializer_list<std::pair<const char*, Value>> named)
    {
        return table().insert(values(table(), named));
    }
    void update(RowPointer row, std::initializer_list<std::pair<const char*, Value>> named)
    {
        table().update(row, values(table(), named));
    }

    MemoryFileSystem files_;
    std::unique_ptr<Database> database_;
};

TEST_F(Constraints, AnAutoNumberCountsFromOne)
{
    insert({{"Code", u"a"}});
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "1 a - - -\n2 b - - -\n");
}

TEST_F(Constraints, AFailedInsertUsesUpItsAutoNumber)
{
    insert({{"Code", u"a"}});
    EXPECT_THAT([&] { insert({{"Code", u"a"}}); }, throwsError(ErrorCode::DuplicateKey, "Code"));
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "1 a - - -\n3 b - - -\n");
}

TEST_F(Constraints, AnAutoNumberIsNotHandedOutAgainAfterADelete)
{
    const RowPointer row = insert({{"Code", u"a"}});
    table().erase(row);
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "2 b - - -\n");
}

TEST_F(Constraints, AnAutoNumberIsNotHandedOutAgainAfterARollback)
{
    database_->begin();
    insert({{"Code", u"a"}});
    database_->rollback();
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "2 b - - -\n");
}

TEST_F(Constraints, AnAutoNumberIsNotHandedOutAgainAfterTheFileWasClosed)
{
    const RowPointer row = insert({{"Code", u"a"}});
    table().erase(row);
    database_.reset();
    database_ = Database::open(files_, "/a.mdb");
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "2 b - - -\n");
}

TEST_F(Constraints, AnExplicitLargerNumberRaisesTheCounter)
{
    insert({{"Id", 41}, {"Code", u"a"}});
    insert({{"Code", u"b"}});
    insert({{"Id", 7}, {"Code", u"c"}});
    insert({{"Code", u"d"}});
    EXPECT_EQ(listed(table()), "41 a - - -\n42 b - - -\n7 c - - -\n43 d - - -\n");
}

TEST_F(Constraints, AnExplicitNumberOfAFailedInsertDoesNotRaiseTheCounter)
{
    insert({{"Code", u"a"}});
    EXPECT_THAT([&] { insert({{"Id", 1000}, {"Code", u"a"}}); }, throwsError(ErrorCode::DuplicateKey));
    insert({{"Code", u"b"}});
    EXPECT_EQ(listed(table()), "1 a - - -\n2 b - - -\n");
}

TEST_F(Constraints, TheEndOfTheAutoNumbersIsAnOverflow)
{
    insert({{"Id", std::numeric_limits<std::int32_t>::max()}});
    EXPECT_THAT([&] { insert({}); }, throwsError(ErrorCode::Overflow));
    EXPECT_EQ(table().rowCount(), 1U);
}

TEST_F(Constraints, AnAutoNumberCannotBeChangedLater)
{
    const RowPointer row = insert({});
    EXPECT_THAT([&] { update(row, {{"Id", 9}}); }, throwsError(ErrorCode::ReadOnly, "Id"));
    update(row, {{"Id", 1}, {"Code", u"same"}});
    EXPECT_EQ(listed(table()), "1 same - - -\n");
}

TEST_F(Constraints, APrimaryKeyIsUniqueAndNeverNull)
{
    database_->createTable({"K", {column("Key", ColumnType::Text, 5)}, {primaryKey({{"Key"}})}});
    Table& keys = database_->table("K");
    keys.insert(values(keys, {{"Key", u"x"}}));
    EXPECT_THAT(
        [&] {
            keys.insert(values(keys, {{"Key", u"x"}}));
        },
        throwsError(ErrorCode::DuplicateKey, "PrimaryKey"));
    EXPECT_THAT([&] { keys.insert({}); }, throwsError(ErrorCode::NullNotAllowed, "PrimaryKey"));
    EXPECT_EQ(listed(keys), "x\n");
}

TEST_F(Constraints, AUniqueTextIsComparedWithoutCaseAndTrailingBlanks)
{
    insert({{"Code", u"Caf\u00E9"}});
    EXPECT_THAT([&] { insert({{"Code", u"CAF\u00C9  "}}); }, throwsError(ErrorCode::DuplicateKey));
    insert({{"Code", u"cafe"}});
    EXPECT_EQ(table().rowCount(), 2U);
}

TEST_F(Constraints, AUniqueIndexTakesAnyNumberOfNullKeys)
{
    insert({});
    insert({});
    EXPECT_EQ(table().rowCount(), 2U);
}

TEST_F(Constraints, PartlyNullKeysOfAUniqueIndexCollide)
{
    database_->createTable({"P",
                            {column("A", ColumnType::Long), column("B", ColumnType::Long)},
                            {uniqueIndex("AB", {{"A"}, {"B", false}})}});
    Table& pairs = database_->table("P");
    pairs.insert(values(pairs, {{"B", 1}}));
    EXPECT_THAT([&] { pairs.insert(values(pairs, {{"B", 1}})); }, throwsError(ErrorCode::DuplicateKey, "AB"));
    pairs.insert({});
    pairs.insert({});
    EXPECT_EQ(pairs.rowCount(), 3U);
}

TEST_F(Constraints, AnUpdateMayKeepItsOwnKey)
{
    const RowPointer row = insert({{"Code", u"a"}});
    insert({{"Code", u"b"}});
    update(row, {{"Code", u"A"}});
    EXPECT_EQ(listed(table()), "1 A - - -\n2 b - - -\n");
    EXPECT_THAT([&] { update(row, {{"Code", u"B"}}); }, throwsError(ErrorCode::DuplicateKey));
}

TEST_F(Constraints, AnIndexThatIgnoresNullsHoldsTheOthers)
{
    IndexSpec spec = index("Kind", {{"Kind"}});
    spec.ignoreNulls = true;
    database_->createTable({"I", {column("Kind", ColumnType::Long)}, {spec}});
    Table& kinds = database_->table("I");
    const RowPointer row = kinds.insert({});
    kinds.insert(values(kinds, {{"Kind", 3}}));
    EXPECT_EQ(listed(*kinds.range(0, {}), kinds.definition()), "3\n");
    kinds.update(row, values(kinds, {{"Kind", 2}}));
    EXPECT_EQ(listed(*kinds.range(0, {}), kinds.definition()), "2\n3\n");
    kinds.update(row, values(kinds, {{"Kind", Null{}}}));
    EXPECT_EQ(listed(*kinds.range(0, {}), kinds.definition()), "3\n");
    kinds.erase(row);
}

TEST_F(Constraints, ValuesOfAnotherTypeAreRefused)
{
    EXPECT_THAT([&] { insert({{"Level", u"high"}}); }, throwsError(ErrorCode::InvalidArgument, "Level"));
    EXPECT_THAT([&] { insert({{"Code", 5}}); }, throwsError(ErrorCode::InvalidArgument, "Code"));
    EXPECT_THAT([&] { insert({{"Note", 5}}); }, throwsError(ErrorCode::InvalidArgument, "Note"));
    EXPECT_THAT(
        [&] {
            insert({{"Level", std::numeric_limits<double>::quiet_NaN()}});
        },
        throwsError(ErrorCode::InvalidArgument, "Level"));
    EXPECT_EQ(listed(table()), "");
}

TEST_F(Constraints, ATextThatIsTooLongIsRefused)
{
    insert({{"Code", std::u16string(10, u'x')}});
    EXPECT_THAT([&] { insert({{"Code", std::u16string(11, u'x')}}); }, throwsError(ErrorCode::ValueTooLong, "Code"));
    EXPECT_EQ(table().rowCount(), 1U);
}

TEST_F(Constraints, ANumberThatDoesNotFitIsAnOverflow)
{
    database_->createTable({"B", {column("Small", ColumnType::Byte)}, {}});
    Table& small = database_->table("B");
    small.insert(values(small, {{"Small", 255}}));
    EXPECT_THAT([&] { small.insert(values(small, {{"Small", 256}})); }, throwsError(ErrorCode::Overflow, "Small"));
    EXPECT_EQ(listed(small), "255\n");
}

TEST_F(Constraints, ARowThatDoesNotFitIsRefusedAndLeavesNothing)
{
    TableSpec spec{"Wide", {counter("Id")}, {primaryKey({{"Id"}})}};
    for (int i = 0; i < 12; ++i) {
        spec.columns.push_back(column("T" + std::to_string(i), ColumnType::Text, 255));
    }
    spec.columns.push_back(column("M", ColumnType::Memo));
    database_->createTable(spec);
    Table& wide = database_->table("Wide");
    std::vector<ColumnValue> row = values(wide, {{"M", std::u16string(9000, u'm')}});
    for (int i = 0; i < 12; ++i) {
        row.push_back(
            {wide.definition().columnByName("T" + std::to_string(i))->number, std::u16string(255, u'\u0416')});
    }
    EXPECT_THAT([&] { wide.insert(row); }, throwsError(ErrorCode::ValueTooLong));
    EXPECT_EQ(wide.rowCount(), 0U);
}

TEST_F(Constraints, TwoValuesForOneColumnAreRefused)
{
    EXPECT_THAT([&] { insert({{"Code", u"a"}, {"Code", u"b"}}); }, throwsError(ErrorCode::InvalidArgument));
    EXPECT_THAT([&] { table().insert(std::vector<ColumnValue>{{99, 1}}); }, throwsError(ErrorCode::NoSuchObject));
}

TEST_F(Constraints, MinusZeroIsStoredAsZero)
{
    insert({{"Level", -0.0}});
    const KeyBound zero{{0.0}, true};
    EXPECT_EQ(listed(*table().range(3, {zero, zero}), table().definition()), "1 - - 0 -\n");
}

TEST_F(Constraints, AFailedChangeLeavesTheRestOfItsTransaction)
{
    database_->begin();
    const RowPointer first = insert({{"Code", u"a"}, {"Note", std::u16string(6000, u'a')}});
    EXPECT_THAT([&] { insert({{"Code", u"a"}}); }, throwsError(ErrorCode::DuplicateKey));
    EXPECT_THAT(
        [&] {
            update(first, {{"Note", u"new"}, {"Code", std::u16string(99, u'x')}});
        },
        throwsError(ErrorCode::ValueTooLong));
    insert({{"Code", u"b"}});
    database_->commit();
    EXPECT_EQ(listed(table()), "1 a - - " + std::string(6000, 'a') + "\n3 b - - -\n");
}

TEST_F(Constraints, AFailedChangeByItselfLeavesTheFileAsItWas)
{
    insert({{"Code", u"a"}});
    const Bytes before = files_.content("/a.mdb");
    EXPECT_THAT([&] { insert({{"Code", u"a"}}); }, throwsError(ErrorCode::DuplicateKey));
    EXPECT_THAT([&] { table().erase({table().scan() ? 4000000U : 0U, 0}); }, testing::Throws<Error>());
    EXPECT_EQ(files_.content("/a.mdb"), before);
    EXPECT_FALSE(database_->inTransaction());
}

TEST_F(Constraints, ARowThatIsGoneCannotBeChanged)
{
    const RowPointer row = insert({});
    table().erase(row);
    EXPECT_THAT([&] { table().erase(row); }, throwsError(ErrorCode::NoSuchObject));
    EXPECT_THAT([&] { update(row, {{"Kind", 1}}); }, throwsError(ErrorCode::NoSuchObject));
    EXPECT_EQ(table().read(row), nullptr);
}

TEST_F(Constraints, SystemTablesAreReadOnly)
{
    Table& objects = database_->table("MSysObjects");
    EXPECT_NE(objects.whyReadOnly(), "");
    EXPECT_THAT([&] { objects.erase({14, 0}); }, throwsError(ErrorCode::ReadOnly, "MSysObjects"));
    EXPECT_EQ(table().whyReadOnly(), "");
}

TEST_F(Constraints, AFileOpenedForReadingIsNotChanged)
{
    const auto reader = Database::open(files_, "/a.mdb", OpenMode::ReadOnly);
    EXPECT_TRUE(reader->isReadOnly());
    Table& same = reader->table("T");
    EXPECT_NE(same.whyReadOnly(), "");
    EXPECT_THAT([&] { same.insert({}); }, throwsError(ErrorCode::ReadOnly));
    EXPECT_THAT([&] { reader->createTable({"X", {counter("Id")}, {}}); }, throwsError(ErrorCode::ReadOnly));
}

} // namespace
} // namespace jet::test
