#include "bench_diaries.h"

#include "sqlite_copy.h"

#include "data/new_diary/diary_builder.h"
#include "jet/database.h"

#include <QDir>

#include <array>
#include <random>
#include <stdexcept>

namespace bench {

namespace {

constexpr double kFirstDay = 45000; // 15 March 2023; any day will do

std::uint16_t columnNumber(const jet::Table& table, const std::string& name)
{
    return table.definition().columnByName(name)->number;
}

void fillReadings(const std::string& path, int count)
{
    const auto file = jet::Database::open(jet::posixFileSystem(), path);
    jet::Table& table = file->table("BloodSugarLevels");
    const std::array columns{columnNumber(table, "BloodSugerLevel"), columnNumber(table, "ReadingTime"),
                             columnNumber(table, "ReadingType"), columnNumber(table, "Comment")};
    std::mt19937 random(1);
    jet::Transaction transaction(*file);
    for (int i = 0; i < count; ++i) {
        const double level = 3.0 + static_cast<double>(random() % 120) / 10;
        std::array<jet::ColumnValue, 4> values{{{columns[0], level},
                                                {columns[1], jet::DateTime{timeOfReading(i).days}},
                                                {columns[2], std::int32_t{1 + i % 6}},
                                                {columns[3], jet::Null{}}}};
        if (i % 4 == 0) {
            values[3].value = std::u16string(u"after a walk");
        }
        table.insert(values);
    }
    transaction.commit();
}

} // namespace

runtime::Date timeOfReading(int number)
{
    return {kFirstDay + static_cast<double>(number) / kReadingsADay};
}

// Beside the program and not in /tmp, which may be kept in memory: syncing must cost what it costs.
Diaries::Diaries() : folder_(QDir::currentPath() + QStringLiteral("/bench-XXXXXX"))
{
    if (!folder_.isValid()) {
        throw std::runtime_error("cannot make a folder for the benchmarks here");
    }
}

std::string Diaries::pathFor(const std::string& name) const
{
    return folder_.filePath(QString::fromStdString(name)).toStdString();
}

const std::string& Diaries::made(const std::string& name, const std::function<void(const std::string& path)>& make)
{
    std::string& path = made_[name];
    if (path.empty()) {
        path = pathFor(name);
        make(path);
    }
    return path;
}

std::string Diaries::ofDays(int days)
{
    return made("days-" + std::to_string(days) + ".mdb", [&](const std::string& path) {
        const runtime::FixedClock clock(runtime::Date{kFirstDay});
        data::createDiary({QString::fromStdString(path), QStringLiteral(QUILLON_FOODS), days}, clock);
    });
}

std::string Diaries::ofReadings(int readings)
{
    return made("readings-" + std::to_string(readings) + ".mdb", [&](const std::string& path) {
        const runtime::FixedClock clock(runtime::Date{kFirstDay});
        data::createDiary({QString::fromStdString(path), {}, 0}, clock);
        fillReadings(path, readings);
    });
}

std::string Diaries::sqliteOfDays(int days)
{
    return made("days-" + std::to_string(days) + ".sqlite",
                [&](const std::string& path) { static_cast<void>(copyDiary(ofDays(days), path)); });
}

std::string Diaries::sqliteOfReadings(int readings)
{
    return made("readings-" + std::to_string(readings) + ".sqlite",
                [&](const std::string& path) { static_cast<void>(copyDiary(ofReadings(readings), path)); });
}

Diaries& diaries()
{
    static Diaries instance;
    return instance;
}

} // namespace bench
