// A meter's file of a million lines, the last of which are new to the diary.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "read_records.h"
#include "sqlite_copy.h"

#include "data/database.h"
#include "readings/meter_import.h"
#include "runtime/format.h"

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kLines = 1000000;
constexpr int kNew = 30000;
constexpr int kStored = 1000000; // the older lines are among them

double levelOf(int reading)
{
    return static_cast<double>(30 + reading % 120) / 10;
}

void writeMeterFile(const std::string& path)
{
    std::ofstream file(path);
    file << std::setfill('0');
    std::string day;
    for (int reading = kStored + kNew - kLines; reading < kStored + kNew; ++reading) {
        const int inDay = reading % kReadingsADay;
        if (day.empty() || inDay == 0) {
            day = runtime::format(timeOfReading(reading), QStringLiteral("dd/mm/yyyy")).toStdString();
        }
        const int minute = inDay * 24 * 60 / kReadingsADay;
        file << "D" << day << ",T" << std::setw(2) << minute / 60 << ':' << std::setw(2) << minute % 60 << ','
             << levelOf(reading) << '\n';
    }
}

void insertWithSqlite(sqlite3* connection)
{
    execute(connection, "BEGIN");
    const Statement insert =
        prepare(connection, "INSERT INTO BloodSugarLevels(BloodSugerLevel, ReadingTime, ReadingType) VALUES(?, ?, 0)");
    for (int reading = kStored; reading < kStored + kNew; ++reading) {
        sqlite3_bind_double(insert.get(), 1, levelOf(reading));
        sqlite3_bind_double(insert.get(), 2, timeOfReading(reading).days);
        static_cast<void>(step(insert.get()));
        sqlite3_reset(insert.get());
    }
    execute(connection, "COMMIT");
}

void copyFile(const std::string& from, const std::string& to)
{
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
}

/// The times differ in the last bit, as they were made from text here and computed there.
void requireSameReadings(const QString& diary, const std::string& copy)
{
    const std::string sql = "SELECT BloodSugerLevel, ReadingType FROM BloodSugarLevels ORDER BY BloodSugerNo";
    Content ours;
    Content theirs;
    data::Database database(diary);
    data::Recordset readings = database.openRecordset(QString::fromStdString(sql));
    readRecords(readings, ours);
    readRecords(openSqlite(copy).get(), sql, theirs);
    requireSame(ours, theirs, "meter import");
    if (ours.rows() != kStored + kNew) {
        throw std::runtime_error("meter import: not all new readings were added");
    }
}

} // namespace

void compareImport(ComparisonTable& table)
{
    const std::string diary = diaries().ofReadings(kStored);
    const std::string sqlite = diaries().sqliteOfReadings(kStored);
    const std::string importedDiary = diaries().pathFor("import.mdb");
    const std::string importedSqlite = diaries().pathFor("import.sqlite");
    const std::string meterFile = diaries().pathFor("meter.csv");
    writeMeterFile(meterFile);
    const readings::MeterImport import{QString::fromStdString(importedDiary), QString::fromStdString(meterFile),
                                       readings::latestReading(QString::fromStdString(diary))};

    table.add({.what = "meter file of 1,000,000 lines, 30,000 of them new",
               .ours =
                   [&] {
                       copyFile(diary, importedDiary);
                       return processorTimeOf([&] { readings::ImportReadings(import); });
                   },
               .theirs =
                   [&] {
                       copyFile(sqlite, importedSqlite);
                       return processorTimeOf(
                           [&] { insertWithSqlite(openSqlite(importedSqlite, Access::Write).get()); });
                   },
               .mostRatio = {},
               .note = "ours reads the file of dates and times and adds what the diary has not; SQLite has no file to "
                       "read and inserts the new readings alone; both durable in one transaction, into 1,000,000 "
                       "readings that are there",
               .rounds = 3});
    requireSameReadings(import.diaryPath, importedSqlite);
}

} // namespace bench
