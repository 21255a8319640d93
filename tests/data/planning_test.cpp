// Which index answers which question, and how few pages a question on a large diary reads.
#include "data/engine/index_plan.h"
#include "data/engine/search_key.h"
#include "data/engine/session.h"
#include "data/row_sources.h"
#include "data/support/small_diary.h"
#include "jet/support/forwarding_file_system.h"

#include <cmath>
#include <limits>

namespace data::test {
namespace {

using Comparison = PlanQuestion::Comparison;

constexpr int kAddress = 3;

PlanQuestion question(std::vector<PlanQuestion::Constraint> constraints, std::vector<PlanQuestion::Order> order = {})
{
    PlanQuestion result;
    result.constraints = std::move(constraints);
    result.order = std::move(order);
    result.addressColumn = kAddress;
    result.rowCount = 1000;
    return result;
}

/// Over the columns 0 and 1, in this order.
SearchableIndex twoColumns()
{
    SearchableIndex index;
    index.keys = {{0, true}, {1, true}};
    return index;
}

TEST(IndexPlan, WithoutAConstraintOrAnOrderTheTableIsWalked)
{
    const IndexPlan plan = bestPlan(question({}), {twoColumns()});
    EXPECT_EQ(plan.number, 0);
    EXPECT_TRUE(plan.constraints.empty());
    EXPECT_FALSE(plan.ordered);
}

TEST(IndexPlan, EqualLeadingColumnsAndARangeOfTheNextAreUsedTogether)
{
    const IndexPlan plan = bestPlan(
        question({{1, Comparison::Upper, 0}, {1, Comparison::Lower, 1}, {0, Comparison::Equal, 2}}), {twoColumns()});
    EXPECT_EQ(plan.number, 1);
    EXPECT_EQ(plan.values, "=><");
    EXPECT_EQ(plan.constraints, (std::vector<int>{2, 1, 0}));
}

TEST(IndexPlan, AConstraintOnALaterColumnAloneDoesNotHelp)
{
    EXPECT_EQ(bestPlan(question({{1, Comparison::Equal, 0}}), {twoColumns()}).number, 0);
}

TEST(IndexPlan, AnIndexWithoutNullsIsUsedOnlyWhereAllItsColumnsAreAskedFor)
{
    SearchableIndex index = twoColumns();
    index.ignoresNulls = true;
    EXPECT_EQ(bestPlan(question({{0, Comparison::Equal, 0}}), {index}).number, 0);
    EXPECT_EQ(bestPlan(question({{0, Comparison::Equal, 0}, {1, Comparison::Lower, 1}}), {index}).number, 1);
}

TEST(IndexPlan, TheOrderOfAnIndexIsUsedWhereItIsTheOneAskedFor)
{
    EXPECT_TRUE(bestPlan(question({}, {{0, false}, {1, false}, {kAddress, false}}), {twoColumns()}).ordered);
    EXPECT_TRUE(
        bestPlan(question({{0, Comparison::Equal, 0}}, {{1, false}, {kAddress, false}}), {twoColumns()}).ordered);
    EXPECT_TRUE(bestPlan(question({{0, Comparison::Equal, 0}}, {{0, true}, {1, false}}), {twoColumns()}).ordered);
    EXPECT_FALSE(bestPlan(question({{0, Comparison::Equal, 0}}, {{kAddress, false}}), {twoColumns()}).ordered);
    EXPECT_FALSE(bestPlan(question({{0, Comparison::Lower, 0}}, {{0, false}, {1, true}}), {twoColumns()}).ordered);
    EXPECT_FALSE(bestPlan(question({{0, Comparison::Lower, 0}}, {{1, false}}), {twoColumns()}).ordered);
}

TEST(IndexPlan, BackwardsEqualKeysComeInTheWrongOrderOfEntryUnlessThereAreNone)
{
    SearchableIndex index = twoColumns();
    const PlanQuestion descending = question({{0, Comparison::Lower, 0}}, {{0, true}, {1, true}, {kAddress, false}});
    EXPECT_FALSE(bestPlan(descending, {index}).ordered);
    index.unique = true;
    index.required = true;
    const IndexPlan plan = bestPlan(descending, {index});
    EXPECT_TRUE(plan.ordered);
    EXPECT_EQ(plan.number, 1 | IndexPlan::kBackwards);
}

TEST(IndexPlan, AWalkIsInTheOrderOfEntry)
{
    EXPECT_TRUE(bestPlan(question({}, {{kAddress, false}}), {}).ordered);
    EXPECT_FALSE(bestPlan(question({}, {{kAddress, true}}), {}).ordered);
}

// --- Bounds ------------------------------------------------------------------------------------------------------

TEST(SearchKey, AFractionLiesBetweenTwoWholeNumbers)
{
    const auto keys = keysEqualTo(2.5, jet::ColumnType::Long);
    ASSERT_TRUE(keys);
    EXPECT_EQ(keys->low, jet::Value(std::int32_t{2}));
    EXPECT_EQ(keys->high, jet::Value(std::int32_t{3}));
}

TEST(SearchKey, NumbersBeyondATypesRangeAreBroughtIntoIt)
{
    EXPECT_EQ(keysEqualTo(1e300, jet::ColumnType::Long)->low, jet::Value(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(keysEqualTo(-40000, jet::ColumnType::Integer)->high,
              jet::Value(std::numeric_limits<std::int16_t>::min()));
    EXPECT_EQ(keysEqualTo(-1, jet::ColumnType::Byte)->low, jet::Value(std::uint8_t{0}));
}

TEST(SearchKey, SinglesAndAmountsGetRoomOnBothSides)
{
    const auto single = keysEqualTo(0.1, jet::ColumnType::Single);
    EXPECT_LT(std::get<float>(single->low), 0.1F);
    EXPECT_GT(std::get<float>(single->high), 0.1F);
    const auto amount = keysEqualTo(1.5, jet::ColumnType::Currency);
    EXPECT_LT(std::get<jet::Currency>(amount->low).tenThousandths, 15000);
    EXPECT_GT(std::get<jet::Currency>(amount->high).tenThousandths, 15000);
}

TEST(SearchKey, AValueOfAnotherKindBoundsNothing)
{
    EXPECT_FALSE(keysEqualTo(QStringLiteral("5"), jet::ColumnType::Long));
    EXPECT_FALSE(keysEqualTo(5, jet::ColumnType::Text));
    EXPECT_FALSE(keysEqualTo(2, jet::ColumnType::Boolean));
    EXPECT_FALSE(keysEqualTo(std::numeric_limits<double>::infinity(), jet::ColumnType::Double));
}

TEST(SearchKey, InADescendingIndexTheLowerBoundEndsTheRange)
{
    const auto range = keyRange("=>", {1, 5}, {{jet::ColumnType::Long, true}, {jet::ColumnType::Long, false}});
    ASSERT_TRUE(range && range->from && range->to);
    EXPECT_EQ(range->from->values, (std::vector<jet::Value>{std::int32_t{1}}));
    EXPECT_EQ(range->to->values, (std::vector<jet::Value>{std::int32_t{1}, std::int32_t{5}}));
}

TEST(SearchKey, NoRowComparesWithNullAndAnUnusableValueLeavesTheRangeOpen)
{
    EXPECT_FALSE(keyRange("=", {runtime::Null{}}, {{jet::ColumnType::Long, true}}));
    const auto open = keyRange("=", {QStringLiteral("x")}, {{jet::ColumnType::Long, true}});
    ASSERT_TRUE(open);
    EXPECT_FALSE(open->from || open->to);
}

// --- Pages -------------------------------------------------------------------------------------------------------

/// Counts the pages that are read from the file.
class CountingFileSystem : public jet::test::ForwardingFileSystem
{
public:
    CountingFileSystem() : ForwardingFileSystem(jet::posixFileSystem()) {}

    [[nodiscard]] std::unique_ptr<jet::File> open(const std::string& path, jet::OpenMode mode) override
    {
        class CountingFile : public jet::test::ForwardingFile
        {
        public:
            CountingFile(std::unique_ptr<File> file, int& count) : ForwardingFile(std::move(file)), count_(count) {}
            void readAt(std::uint64_t offset, jet::MutableBytes buffer) override
            {
                count_ += static_cast<int>((buffer.size() + 4095) / 4096);
                ForwardingFile::readAt(offset, buffer);
            }

        private:
            int& count_;
        };
        return std::make_unique<CountingFile>(ForwardingFileSystem::open(path, mode), pages);
    }

    int pages = 0;
};

/// Ten years with four readings a day, from 1 January 2014 on.
class TenYears : public SmallDiary
{
protected:
    static constexpr int kDays = 3650;

    TenYears()
    {
        const auto file = engine();
        jet::Transaction transaction(*file);
        jet::Table& readings = file->table("BloodSugarLevels");
        const std::vector<const jet::Column*> columns = readings.definition().displayOrder();
        for (int i = 0; i < kDays; ++i) {
            for (const int hour : {7, 12, 18, 22}) {
                const std::vector<jet::ColumnValue> values{
                    {columns[1]->number, 5.5},
                    {columns[2]->number, jet::DateTime{day(2014, 1, 1) + i + hour / 24.0}},
                    {columns[3]->number, std::int32_t{1 + hour % 8}},
                    {columns[4]->number, std::u16string(u"a comment of some length")},
                };
                readings.insert(values);
            }
        }
        transaction.commit();
    }

    /// Rows and pages read; the session is opened and knows the catalogue before the count begins.
    struct Cost {
        std::size_t rows = 0;
        int pages = 0;
    };
    [[nodiscard]] Cost costOf(const char* sql) const
    {
        CountingFileSystem fileSystem;
        Session session(path(), fileSystem);
        const ReadScope reading(session.database());
        const QString text = QString::fromLatin1(sql);
        const TranslatedQuery query = translateQuery(text, session.catalogue(), session.clock());
        fileSystem.pages = 0;
        Cost cost;
        session.connection().run(query.rows, [&](const ResultRow&) { ++cost.rows; });
        cost.pages = fileSystem.pages;
        return cost;
    }
};

TEST_F(TenYears, AFilterOfThreeDaysThroughASavedQueryReadsOnlyTheirPages)
{
    const Cost all = costOf("Select * from ExcelHistory");
    EXPECT_EQ(all.rows, std::size_t{4 * kDays + 7});
    EXPECT_GT(all.pages, 200);
    const Cost few =
        costOf("Select * from ExcelHistory where When > Cdate('01/06/2018') and When < Cdate('04/06/2018')");
    EXPECT_EQ(few.rows, 12U);
    EXPECT_LT(few.pages, 12);
}

TEST_F(TenYears, AKeyAndTheLatestTimeAreFoundInAFewPages)
{
    const Cost one = costOf("Select * from BloodSugarLevels where BloodSugerNo = 9000");
    EXPECT_EQ(one.rows, 1U);
    EXPECT_LT(one.pages, 8);
    const Cost latest = costOf("Select * from LastBldReading");
    EXPECT_EQ(latest.rows, 1U);
    EXPECT_LT(latest.pages, 8);
}

TEST_F(TenYears, OpeningATableAndAddingToItDoesNotReadItsRows)
{
    CountingFileSystem fileSystem;
    const auto session = std::make_shared<Session>(path(), fileSystem);
    Recordset meals(rowsOfTable(session, QStringLiteral("Meals"))); // knows the catalogue now
    fileSystem.pages = 0;
    Recordset readings(rowsOfTable(session, QStringLiteral("BloodSugarLevels")));
    EXPECT_EQ(readings.recordCount(), 4 * kDays + 7);
    EXPECT_EQ(textOf(readings.value(0)), QStringLiteral("1"));
    readings.addNew();
    readings.set(QStringLiteral("BloodSugerLevel"), 6.5);
    readings.update();
    EXPECT_LT(fileSystem.pages, 40);
    readings.moveLast();
    EXPECT_EQ(textOf(readings.value(0)), QString::number(4 * kDays + 8));
}

} // namespace
} // namespace data::test
