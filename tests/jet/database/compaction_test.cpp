// A file written afresh, without the room that deleted rows left.
#include "jet/catalogue_writer.h"
#include "jet/compaction.h"
#include "jet/compaction_proof.h"
#include "jet/database/diary_content.h"
#include "jet/database/mdbtools.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"
#include "jet/format/header_page.h"
#include "jet/support/error_matchers.h"
#include "jet/support/fault_file_system.h"
#include "jet/support/power_failure.h"
#include "jet/support/sample_files.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace jet::test {
namespace {

using testing::AnyOf;
using testing::Eq;
using testing::IsEmpty;

const std::string kDiary = kDiaryPath;

Bytes bytesOf(FileSystem& disk, const std::string& path)
{
    const auto file = disk.open(path, OpenMode::ReadOnly);
    Bytes content(file->size());
    file->readAt(0, content);
    return content;
}

std::string contentAt(FileSystem& disk)
{
    return contentOf(*Database::open(disk, kDiary));
}

void compact(FileSystem& disk)
{
    Database::compact(disk, kDiary);
}

/// The small diary, which has deleted rows, a row that moved and long memos.
class Compaction : public testing::Test
{
protected:
    Compaction()
    {
        const auto diary = createSmallDiary(disk);
        fillSmallDiary(*diary);
        content = contentOf(*diary);
    }

    MemoryFileSystem disk;
    std::string content;
};

TEST_F(Compaction, KeepsAllRowsInTheirOrder)
{
    compact(disk);
    EXPECT_EQ(contentAt(disk), content);
    EXPECT_EQ(disk.files().size(), 1U) << "nothing else is left behind";
}

TEST_F(Compaction, MakesASoundFileThatIsSmaller)
{
    const std::size_t before = disk.content(kDiary).size();
    compact(disk);
    EXPECT_LT(disk.content(kDiary).size(), before);
    EXPECT_THAT(Database::open(disk, kDiary)->check(), IsEmpty());
}

TEST_F(Compaction, OfACompactedFileLeavesItsSize)
{
    compact(disk);
    const std::size_t before = disk.content(kDiary).size();
    compact(disk);
    EXPECT_EQ(disk.content(kDiary).size(), before);
    EXPECT_EQ(contentAt(disk), content);
}

TEST_F(Compaction, LetsAutoNumbersGoOnWhereTheyWere)
{
    const auto insert = [](Database& diary) {
        Table& readings = diary.table("Readings");
        const RowPointer added = readings.insert(values(readings, {{"Level", 5.5}}));
        return readings.read(added)->value(*readings.definition().columnByName("Id"));
    };
    EXPECT_EQ(insert(*Database::open(disk, kDiary)), Value(std::int32_t{101})) << "a hundred were entered";
    compact(disk);
    EXPECT_EQ(insert(*Database::open(disk, kDiary)), Value(std::int32_t{102}));
}

TEST_F(Compaction, KeepsIndexesRelationshipsAndQueriesAtWork)
{
    compact(disk);
    const auto diary = Database::open(disk, kDiary);
    Table& foods = diary->table("Foods");
    const auto anyFood = values(foods, {{"MealNo", std::int32_t{99}}, {"Position", std::int16_t{1}}});
    EXPECT_THAT([&] { foods.insert(anyFood); }, throwsError(ErrorCode::MissingParent));
    Table& meals = diary->table("Meals");
    const auto cursor = meals.scan();
    ASSERT_TRUE(cursor->next());
    const RowPointer meal = cursor->row().address();
    const std::uint32_t foodsBefore = foods.rowCount();
    meals.erase(meal);
    EXPECT_EQ(foods.rowCount(), foodsBefore - 2) << "the two foods went with their meal";
    ASSERT_EQ(diary->queries().size(), 1U);
    EXPECT_EQ(diary->queries().front().name, "Menu");
    EXPECT_THAT(diary->check(), IsEmpty());
}

TEST_F(Compaction, CanBeReadByMdbtoolsAsTheOriginal)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("Nutrition.mdb");
    fillSmallDiary(*createSmallDiary(posixFileSystem(), path));
    const auto exported = [&path] {
        std::string all = runMdbtool("mdb-schema", {path}) + runMdbtool("mdb-queries", {"-L", path});
        for (const char* table : {"Readings", "Meals", "Foods"}) {
            // It prints a row that moved where its data is; a set of lines has no such order.
            const std::string lines = runMdbtool("mdb-export", {"-H", path, table});
            std::vector<std::string> rows;
            for (std::size_t at = 0; at < lines.size();) {
                const std::size_t end = std::min(lines.find('\n', at), lines.size() - 1);
                rows.push_back(lines.substr(at, end + 1 - at));
                at = end + 1;
            }
            std::sort(rows.begin(), rows.end());
            for (const std::string& row : rows) {
                all += row;
            }
        }
        return all;
    };
    const std::string before = exported();
    EXPECT_GT(before.size(), 1000U);
    Database::compact(posixFileSystem(), path);
    EXPECT_EQ(exported(), before);
    const auto compacted = Database::open(posixFileSystem(), path);
    EXPECT_GT(expectSameRowsAsMdbExport(path, compacted->table("Readings")), 0U);
}

TEST_F(Compaction, IsNoticedByConnectionsToTheOldFile)
{
    const auto browser = Database::open(disk, kDiary);
    EXPECT_EQ(contentOf(*browser), content);
    compact(disk);
    EXPECT_THAT([&] { static_cast<void>(contentOf(*browser)); }, throwsError(ErrorCode::Replaced, "replaced"));
}

// --- The proof ---

/// A new file that somebody has tampered with before it is looked at.
class CompactionProof : public Compaction
{
protected:
    void expectRefusedAfter(const std::function<void(Database&)>& tamper)
    {
        Pager source(disk, kDiary, OpenMode::ReadOnly);
        Catalogue catalogue(source, HeaderPage{}.systemTables);
        const ReadGuard reading(source);
        std::vector<MovedTable> tables = tablesToCarryOver(catalogue);
        disk.setContent("new.mdb", {});
        {
            Pager target(disk, "new.mdb", OpenMode::ReadWrite);
            carryOver(catalogue, target, tables);
            const ReadGuard guard(target);
            EXPECT_NO_THROW(requireCarriedOver(catalogue, target, tables));
        }
        tamper(*Database::open(disk, "new.mdb"));
        Pager target(disk, "new.mdb", OpenMode::ReadOnly);
        const ReadGuard guard(target);
        EXPECT_THAT([&] { requireCarriedOver(catalogue, target, tables); },
                    throwsError(ErrorCode::Corrupt, "the new one differs in"));
    }

    static RowPointer firstReading(Database& diary)
    {
        const auto cursor = diary.table("Readings").scan();
        EXPECT_TRUE(cursor->next());
        return cursor->row().address();
    }
};

TEST_F(CompactionProof, FindsAValueThatDiffers)
{
    expectRefusedAfter([](Database& diary) {
        Table& readings = diary.table("Readings");
        readings.update(firstReading(diary), values(readings, {{"Level", 5.4999}}));
    });
}

TEST_F(CompactionProof, FindsALongValueThatDiffers)
{
    expectRefusedAfter([](Database& diary) {
        Table& readings = diary.table("Readings");
        readings.update(firstReading(diary), values(readings, {{"Notes", std::u16string(5000, u'n')}}));
    });
}

TEST_F(CompactionProof, FindsARowThatIsMissing)
{
    expectRefusedAfter([](Database& diary) { diary.table("Readings").erase(firstReading(diary)); });
}

TEST_F(CompactionProof, FindsARowTooMany)
{
    expectRefusedAfter([](Database& diary) {
        Table& readings = diary.table("Readings");
        readings.insert(values(readings, {{"Level", 5.5}}));
    });
}

TEST_F(CompactionProof, FindsAnotherCounterOfAutoNumbers)
{
    expectRefusedAfter([](Database& diary) {
        Table& readings = diary.table("Readings");
        const RowPointer added = readings.insert(values(readings, {{"Level", 5.5}}));
        readings.erase(added);
    });
}

TEST_F(CompactionProof, FindsATableOrAQueryTooMany)
{
    expectRefusedAfter([](Database& diary) {
        SavedQuery query = diary.queries().front();
        query.name = "Second menu";
        diary.createQuery(query);
    });
}

// --- What is refused ---

TEST_F(Compaction, OfADamagedFileIsRefused)
{
    Bytes bytes = disk.content(kDiary);
    std::fill(bytes.end() - kPageSize, bytes.end(), std::byte{0x55});
    disk.setContent(kDiary, bytes);
    EXPECT_THAT([&] { compact(disk); }, throwsError(ErrorCode::Corrupt, "damaged"));
    EXPECT_EQ(disk.content(kDiary), bytes);
    EXPECT_EQ(disk.files().size(), 1U);
}

TEST_F(Compaction, OfAFileWithAFormAReportOrALinkedTableIsRefused)
{
    constexpr std::int16_t kForm = -32768;
    constexpr std::int16_t kReport = -32764;
    constexpr std::int16_t kLinkedTable = 6;
    const Bytes start = disk.content(kDiary);
    for (const std::int16_t type : {kForm, kReport, kLinkedTable}) {
        disk.setContent(kDiary, start);
        {
            Pager pager(disk, kDiary, OpenMode::ReadWrite);
            Catalogue catalogue(pager, HeaderPage{}.systemTables);
            pager.begin();
            CatalogueWriter writer(catalogue);
            writer.addUserObject(
                {.id = writer.nextId(), .parent = object_id::kTables, .name = "Something else", .type = type});
            pager.commit();
        }
        const Bytes bytes = disk.content(kDiary);
        EXPECT_THAT([&] { compact(disk); }, throwsError(ErrorCode::ReadOnly, "Something else"));
        EXPECT_EQ(disk.content(kDiary), bytes);
    }
}

TEST_F(Compaction, WaitsForReadersAndThenGivesUp)
{
    const auto reader = Database::open(disk, kDiary);
    reader->beginRead();
    EXPECT_THAT([&] { compact(disk); }, throwsError(ErrorCode::Locked));
    reader->endRead();
    EXPECT_EQ(contentAt(disk), content);
    EXPECT_EQ(disk.files().size(), 1U);
}

TEST_F(Compaction, WaitsForAWriterSoThatNoChangeIsLost)
{
    const auto writer = Database::open(disk, kDiary);
    writer->begin();
    EXPECT_THAT([&] { compact(disk); }, throwsError(ErrorCode::Locked));
    writer->rollback();
}

// --- Cut short ---

TEST_F(Compaction, IsTheOldOrTheNewFileWhereverThePowerFails)
{
    const Bytes old = disk.content(kDiary);
    const std::size_t states = forEachPowerFailure({
        .prepare = [&old](FileSystem& other) { other.open(kDiary, OpenMode::Create)->writeAt(0, old); },
        .body = compact,
        .check =
            [&](FileSystem& other, bool finished) {
                EXPECT_FALSE(other.exists(kDiary + "-journal"));
                const Bytes found = bytesOf(other, kDiary);
                EXPECT_FALSE(finished && found == old);
                if (found != old) {
                    EXPECT_EQ(contentAt(other), content);
                    EXPECT_THAT(Database::open(other, kDiary)->check(), IsEmpty());
                }
            },
        .choices = 2,
    });
    EXPECT_GT(states, 200U);
}

TEST_F(Compaction, IsTheOldOrTheNewFileOnADiskThatIsFull)
{
    const Bytes old = disk.content(kDiary);
    const std::size_t faults = forEachFault({
        .prepare = [&old](FileSystem& other) { other.open(kDiary, OpenMode::Create)->writeAt(0, old); },
        .body = compact,
        .check =
            [&](FileSystem& other, bool finished) {
                EXPECT_EQ(bytesOf(other, kDiary) == old, !finished);
                EXPECT_EQ(contentAt(other), content);
                EXPECT_FALSE(other.exists(kDiary + "-unfinished"));
            },
        .call = Call::Write,
        .code = ErrorCode::DiskFull,
    });
    EXPECT_GT(faults, 10U);
}

// --- Files of other programs ---

class SampleCompaction : public testing::TestWithParam<std::filesystem::path>
{
};

TEST_P(SampleCompaction, KeepsEverythingOrIsRefusedAndChangesNothing)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("copy.mdb");
    std::ofstream(path, std::ios::binary) << std::ifstream(GetParam(), std::ios::binary).rdbuf();
    const Bytes old = bytesOf(posixFileSystem(), path);
    const std::string before = contentOf(*Database::open(posixFileSystem(), path));
    try {
        Database::compact(posixFileSystem(), path);
    } catch (const Error& error) {
        EXPECT_THAT(error.code(),
                    AnyOf(Eq(ErrorCode::ReadOnly), Eq(ErrorCode::IndexNotSupported), Eq(ErrorCode::Corrupt)))
            << error.what();
        EXPECT_EQ(bytesOf(posixFileSystem(), path), old);
        std::cout << "refused: " << error.what() << '\n';
        return;
    }
    const auto compacted = Database::open(posixFileSystem(), path);
    EXPECT_EQ(contentOf(*compacted), before);
    EXPECT_THAT(compacted->check(), IsEmpty());
    constexpr std::size_t kLarge = 1 << 20; // takes too long for every run
    for (const TableEntry& table : compacted->tables()) {
        if (!table.system && old.size() < kLarge) {
            expectSameRowsAsMdbExport(path, compacted->table(table.name));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleCompaction, testing::ValuesIn(sampleFiles()), sampleName);

} // namespace
} // namespace jet::test
