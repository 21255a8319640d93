// One reading, on the disk when the call returns.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "counted_writes.h"
#include "sqlite_copy.h"

#include "data/database.h"

#include <filesystem>
#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace bench {

namespace {

constexpr double kMostRatio = 1.5;
constexpr int kRounds = 101;
constexpr int kCounted = 20;

constexpr double kLevel = 5.6;
constexpr double kTime = 45001.25;
constexpr qint32 kType = 2;

class OurReadings
{
public:
    explicit OurReadings(const std::string& diary)
        : database_(QString::fromStdString(diary)),
          readings_(database_.openRecordset(QStringLiteral("BloodSugarLevels")))
    {
    }

    void add()
    {
        readings_.addNew();
        readings_.set(QStringLiteral("BloodSugerLevel"), kLevel);
        readings_.set(QStringLiteral("ReadingTime"), runtime::Date{kTime});
        readings_.set(QStringLiteral("ReadingType"), kType);
        readings_.update();
    }
    [[nodiscard]] qsizetype count() const { return readings_.recordCount(); }

private:
    data::Database database_;
    data::Recordset readings_;
};

class TheirReadings
{
public:
    explicit TheirReadings(Sqlite connection)
        : connection_(std::move(connection)),
          insert_(prepare(connection_.get(),
                          "INSERT INTO BloodSugarLevels(BloodSugerLevel, ReadingTime, ReadingType) VALUES(?, ?, ?)"))
    {
        sqlite3_bind_double(insert_.get(), 1, kLevel);
        sqlite3_bind_double(insert_.get(), 2, kTime);
        sqlite3_bind_int(insert_.get(), 3, kType);
    }

    void add()
    {
        static_cast<void>(step(insert_.get()));
        sqlite3_reset(insert_.get());
    }
    [[nodiscard]] qsizetype count() const
    {
        const Statement statement = prepare(connection_.get(), "SELECT count(*) FROM BloodSugarLevels");
        static_cast<void>(step(statement.get()));
        return sqlite3_column_int(statement.get(), 0);
    }

private:
    Sqlite connection_;
    Statement insert_;
};

/// What one of several additions in a row hands to the disk.
template <typename Readings>
std::string writesOfAdding(Readings& readings)
{
    const WriteCount before = writesOfProcess();
    for (int i = 0; i < kCounted; ++i) {
        readings.add();
    }
    const WriteCount count = writesOfProcess() - before;
    constexpr double kPage = 4096;
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << static_cast<double>(count.syncs) / kCounted << " syncs, "
         << static_cast<double>(count.bytes) / kPage / kCounted << " pages of 4 KiB in "
         << static_cast<double>(count.writes) / kCounted << " writes";
    return text.str();
}

void compareAdding(ComparisonTable& table, const std::string& what, const std::string& diary)
{
    const std::string copy = diaries().pathFor("add.mdb");
    std::filesystem::copy_file(diary, copy, std::filesystem::copy_options::overwrite_existing);
    OurReadings ours(copy);
    TheirReadings theirs(copyDiary(diary, diaries().pathFor("add.sqlite")));
    const auto requireSameCount = [&] {
        if (ours.count() != theirs.count()) {
            throw std::runtime_error(what + ": different numbers of readings");
        }
    };

    requireSameCount();
    const std::string ourWrites = writesOfAdding(ours);
    const std::string theirWrites = writesOfAdding(theirs);
    table.add({.what = what,
               .ours = [&] { return wallTimeOf([&] { ours.add(); }); },
               .theirs = [&] { return wallTimeOf([&] { theirs.add(); }); },
               .mostRatio = kMostRatio,
               .note = "a reading ours: " + ourWrites + "; theirs: " + theirWrites +
                       "; SQLite with a rollback journal and synchronous=FULL, "
                       "which leaves the removal of the journal unsynced; ours syncs it",
               .rounds = kRounds});
    requireSameCount();
}

} // namespace

void compareDurableAdd(ComparisonTable& table)
{
    compareAdding(table, "durable reading, diary of 30 days", diaries().ofDays(30));
    compareAdding(table, "durable reading, diary of 3,650 days", diaries().ofDays(3650));
    compareAdding(table, "durable reading, diary of 1,000,000 readings", diaries().ofReadings(1000000));
}

} // namespace bench
