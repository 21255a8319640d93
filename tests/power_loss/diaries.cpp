#include "power_loss/diaries.h"

#include "data/new_diary/diary_schema.h"
#include "data/new_diary/foods_csv.h"
#include "jet/database/builders.h"
#include "jet/database/diary_content.h"
#include "jet/database/small_diary.h"
#include "power_loss/disk_in_force.h"

#include <gtest/gtest.h>

#include <iostream>

namespace power_loss {

namespace {

const std::string kPath = jet::test::kDiaryPath;

std::unique_ptr<jet::Database> opened(jet::MemoryFileSystem& disk, const jet::Bytes& diary)
{
    disk.setContent(kPath, diary);
    return jet::Database::open(disk, kPath);
}

} // namespace

QString diaryPath()
{
    return QString::fromStdString(kPath);
}

Files programDiary(const std::function<void()>& fill)
{
    jet::MemoryFileSystem disk;
    {
        const auto diary = jet::Database::create(disk, kPath, jet::DateTime{46000});
        for (const jet::TableSpec& table : data::diaryTables(data::requiredNutrients())) {
            diary->createTable(table);
        }
        for (const jet::Relationship& relationship : data::diaryRelationships()) {
            diary->createRelationship(relationship);
        }
        for (const jet::SavedQuery& query : data::diaryQueries()) {
            diary->createQuery(query);
        }
    }
    const DiskInForce inForce(disk);
    fill();
    return {{kPath, disk.content(kPath)}};
}

Files smallDiary(const std::function<void(jet::Database&)>& fill)
{
    jet::MemoryFileSystem disk;
    const auto diary = jet::test::createSmallDiary(disk, kPath);
    jet::test::fillSmallDiary(*diary);
    fill(*diary);
    return {{kPath, disk.content(kPath)}};
}

std::string rowsIn(const jet::Bytes& diary, const std::string& table)
{
    jet::MemoryFileSystem disk;
    return jet::test::listed(opened(disk, diary)->table(table));
}

std::size_t rowCountIn(const jet::Bytes& diary, const std::string& table)
{
    jet::MemoryFileSystem disk;
    const auto database = opened(disk, diary);
    std::size_t count = 0;
    for (const auto cursor = database->table(table).scan(); cursor->next();) {
        ++count;
    }
    return count;
}

void addSomeReading(jet::Database& diary)
{
    if (diary.hasTable("BloodSugarLevels")) {
        jet::Table& readings = diary.table("BloodSugarLevels");
        readings.insert(jet::test::values(readings, {{"BloodSugerLevel", 5.5}, {"ReadingTime", jet::DateTime{46001}}}));
    } else {
        jet::Table& readings = diary.table("Readings");
        readings.insert(jet::test::values(readings, {{"Level", 5.5}, {"When", jet::DateTime{46001}}}));
    }
}

Effort usualEffort()
{
    const auto seeds = static_cast<std::size_t>(jet::test::seedCount(2));
    return {.choices = seeds, .recoveries = 1 + seeds / 10};
}

void expectNoLoss(const Findings& findings)
{
    const Count& program = findings.program;
    const Count& recoveries = findings.recoveries;
    std::cout << "The power failed at " << program.calls << " calls, in " << program.states
              << " states; in recoveries at " << recoveries.calls << " calls, in " << recoveries.states << " states\n";
    for (const std::string& loss : findings.losses) {
        ADD_FAILURE() << loss;
    }
}

Findings losePowerDuring(const Files& start, const std::function<void(jet::FileSystem&)>& action, const Effort& effort)
{
    RecordingFileSystem disk(start);
    {
        const DiskInForce inForce(disk);
        action(disk);
    }
    Findings findings = Trial(kPath, addSomeReading, effort).run(disk);
    expectNoLoss(findings);
    return findings;
}

} // namespace power_loss
