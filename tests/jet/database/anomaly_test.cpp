// Changes of a diary that are cut short: by a power failure at any moment, or by any single call that fails. Whatever
// happens, the file holds the state before or the state after, whole, and its structure is sound.
#include "jet/database/diary_content.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/disk/page.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/journal_referee_file_system.h"
#include "jet/support/power_failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>

namespace jet {

namespace {

using testing::AnyOf;
using testing::Eq;
using testing::IsEmpty;

struct Scenario {
    const char* name;
    std::function<void(Database&)> change;
    std::function<void(Database&)> prepare = {}; ///< before, on top of the small diary
};

void PrintTo(const Scenario& scenario, std::ostream* out)
{
    *out << scenario.name;
}

RowPointer firstRow(Table& table)
{
    const auto cursor = table.scan();
    EXPECT_TRUE(cursor->next());
    return cursor->row().address();
}

void insertReading(Database& diary, double level)
{
    Table& readings = diary.table("Readings");
    readings.insert(test::values(
        readings, {{"When", DateTime{37000 + level}}, {"Level", level}, {"Comment", std::u16string(40, u'c')}}));
}

void insertFood(Database& diary, int meal, int position, char16_t name)
{
    Table& foods = diary.table("Foods");
    foods.insert(test::values(foods, {{"MealNo", std::int32_t{meal}},
                                      {"Position", static_cast<std::int16_t>(position)},
                                      {"Name", std::u16string(100, name)}}));
}

void replaceFirstMeal(Database& diary)
{
    diary.begin();
    Table& meals = diary.table("Meals");
    meals.erase(firstRow(meals)); // and its foods, by cascade
    meals.insert(test::values(meals, {{"When", DateTime{36901.5}}, {"Title", u"Lunch, corrected"}}));
    for (int position = 1; position <= 3; ++position) {
        insertFood(diary, 3, position, u'b');
    }
    diary.commit();
}

void growMemo(Database& diary)
{
    Table& readings = diary.table("Readings");
    readings.update(firstRow(readings), test::values(readings, {{"Notes", std::u16string(9000, u'n')}}));
}

void insertFoods(Database& diary, int first, int count)
{
    diary.begin();
    for (int i = first; i < first + count; ++i) {
        insertFood(diary, 1, 10 + i, static_cast<char16_t>(u'a' + i % 26));
    }
    diary.commit();
}

void createTable(Database& diary)
{
    diary.begin();
    TableSpec spec;
    spec.name = "Weights";
    spec.columns.resize(2);
    spec.columns[0].name = "Id";
    spec.columns[0].autoNumber = true;
    spec.columns[1].name = "Remark";
    spec.columns[1].type = ColumnType::Memo;
    spec.indexes.resize(1);
    spec.indexes[0].name = "PrimaryKey";
    spec.indexes[0].keys = {{"Id"}};
    spec.indexes[0].primaryKey = true;
    diary.createTable(spec);
    Table& weights = diary.table("Weights");
    weights.insert(test::values(weights, {{"Remark", std::u16string(200, u'w')}}));
    diary.commit();
}

void insertTwoHundredReadings(Database& diary)
{
    diary.begin();
    for (int i = 0; i < 200; ++i) {
        insertReading(diary, 4 + 0.01 * i);
    }
    diary.commit();
}

void eraseAllReadings(Database& diary)
{
    diary.begin();
    Table& readings = diary.table("Readings");
    std::vector<RowPointer> addresses;
    for (const auto cursor = readings.scan(); cursor->next();) {
        addresses.push_back(cursor->row().address());
    }
    for (const RowPointer& address : addresses) {
        readings.erase(address);
    }
    diary.commit();
}

Bytes contentOfFile(FileSystem& disk)
{
    const auto file = disk.open(test::kDiaryPath, OpenMode::ReadOnly);
    Bytes content(file->size());
    file->readAt(0, content);
    return content;
}

class CutShort : public testing::TestWithParam<Scenario>
{
protected:
    void SetUp() override
    {
        MemoryFileSystem disk;
        {
            const auto diary = test::createSmallDiary(disk);
            test::fillSmallDiary(*diary);
            if (GetParam().prepare) {
                GetParam().prepare(*diary);
            }
            before_ = test::contentOf(*diary);
        }
        start_ = disk.content(test::kDiaryPath);
        change(disk);
        after_ = read(disk);
        ASSERT_NE(before_, after_);
    }

    /// Puts the file there, durably.
    void prepare(FileSystem& disk) const
    {
        const auto file = disk.open(test::kDiaryPath, OpenMode::Create);
        file->writeAt(0, start_);
        file->sync();
        disk.syncFolderOf(test::kDiaryPath);
    }

    /// What the tests cut short; the referee sees to the rules of the journal all the while.
    static void change(FileSystem& disk)
    {
        test::JournalRefereeFileSystem referee(disk, test::kDiaryPath);
        const auto diary = Database::open(referee, test::kDiaryPath);
        GetParam().change(*diary);
    }

    static void recover(FileSystem& disk)
    {
        test::JournalRefereeFileSystem referee(disk, test::kDiaryPath);
        static_cast<void>(Database::open(referee, test::kDiaryPath));
    }

    /// Opens the file, which recovers it, and gives its content once it is known to be sound. Files that were looked at
    /// before are known by their bytes.
    std::string read(FileSystem& disk)
    {
        const auto diary = Database::open(disk, test::kDiaryPath);
        const auto [known, isNew] = known_.try_emplace(contentOfFile(disk));
        if (isNew) {
            EXPECT_THAT(diary->check(), IsEmpty());
            known->second = test::contentOf(*diary);
        }
        return known->second;
    }

    void expectOldOrNew(FileSystem& disk, bool finished)
    {
        const std::string content = read(disk);
        if (finished) {
            EXPECT_EQ(content, after_);
        } else {
            EXPECT_THAT(content, AnyOf(Eq(before_), Eq(after_)));
        }
    }

    Bytes start_;
    std::string before_;
    std::string after_;
    std::map<Bytes, std::string> known_;
};

TEST_P(CutShort, ByAPowerFailureAtAnyMomentAlsoOfTheRecovery)
{
    const std::size_t states = test::forEachPowerFailure({
        .prepare = [this](FileSystem& disk) { prepare(disk); },
        .body = [](FileSystem& disk) { change(disk); },
        .recover = [](FileSystem& disk) { recover(disk); },
        .check = [this](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); },
        .choices = test::seedCount(2),
        .recoveryChoices = test::seedCount(1),
    });
    EXPECT_GT(states, 50U);
}

TEST_P(CutShort, ByAnyCallThatFails)
{
    const std::size_t faults = test::forEachFault({
        .prepare = [this](FileSystem& disk) { prepare(disk); },
        .body = [](FileSystem& disk) { change(disk); },
        .check = [this](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); },
        .call = {},
    });
    EXPECT_GT(faults, 50U);
}

TEST_P(CutShort, ByADiskThatIsFull)
{
    const std::size_t faults = test::forEachFault({
        .prepare = [this](FileSystem& disk) { prepare(disk); },
        .body = [](FileSystem& disk) { change(disk); },
        .check = [this](FileSystem& disk, bool finished) { expectOldOrNew(disk, finished); },
        .call = test::Call::Write,
        .code = ErrorCode::DiskFull,
    });
    EXPECT_GT(faults, 3U);
}

/// Index pages that are nodes.
std::size_t nodePages(const Bytes& file)
{
    std::size_t nodes = 0;
    for (std::size_t page = 0; page < file.size(); page += kPageSize) {
        nodes += file[page] == std::byte{3} ? 1U : 0U;
    }
    return nodes;
}

TEST(CutShortScenarios, TheFoodsOfTheSplitDoSplitAnIndex)
{
    MemoryFileSystem disk;
    const auto diary = test::createSmallDiary(disk);
    test::fillSmallDiary(*diary);
    insertFoods(*diary, 0, 25);
    const std::size_t before = nodePages(disk.content(test::kDiaryPath));
    insertFoods(*diary, 25, 15);
    EXPECT_GT(nodePages(disk.content(test::kDiaryPath)), before);
}

const std::vector<Scenario> kScenarios{
    {"InsertAReading", [](Database& diary) { insertReading(diary, 5.5); }},
    {"ReplaceAMeal", replaceFirstMeal},
    {"GrowAMemo", growMemo},
    {"SplitAnIndex", [](Database& diary) { insertFoods(diary, 25, 15); },
     [](Database& diary) { insertFoods(diary, 0, 25); }},
    {"CreateATable", createTable},
    {"InsertTwoHundredReadings", insertTwoHundredReadings},
    {"EraseAllReadings", eraseAllReadings},
};

INSTANTIATE_TEST_SUITE_P(Scenarios, CutShort, testing::ValuesIn(kScenarios),
                         [](const auto& scenario) { return std::string(scenario.param.name); });

} // namespace
} // namespace jet
