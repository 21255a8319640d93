// The results of the saved queries that reports stand on, every column of every row.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "read_records.h"
#include "sqlite_copy.h"

#include "data/database.h"

#include <memory>

namespace bench {

namespace {

constexpr int kDays = 3650;
constexpr double kMostRatio = 1.5;

template <typename Taker>
void readQuery(data::Database& database, const std::string& name, Taker& taker)
{
    data::Recordset records = database.openRecordset(QString::fromStdString(name));
    readRecords(records, taker);
}

template <typename Taker>
void readQuery(sqlite3* connection, const std::string& name, Taker& taker)
{
    readRecords(connection, "SELECT * FROM " + name, taker);
}

void compareQuery(ComparisonTable& table, const std::string& name)
{
    const QString diary = QString::fromStdString(diaries().ofDays(kDays));
    const std::string copy = diaries().sqliteOfDays(kDays);
    const auto database = std::make_shared<data::Database>(diary);
    const std::shared_ptr<sqlite3> connection = openSqlite(copy);

    Content ours;
    Content theirs;
    readQuery(*database, name, ours);
    readQuery(connection.get(), name, theirs);
    requireSame(ours, theirs, name);

    Untouched taker;
    table.add({.what = name + ", new connection",
               .ours =
                   [&] {
                       return processorTimeOf([&] {
                           data::Database opened(diary);
                           readQuery(opened, name, taker);
                       });
                   },
               .theirs = [&] { return processorTimeOf([&] { readQuery(openSqlite(copy).get(), name, taker); }); },
               .mostRatio = kMostRatio,
               .note = std::to_string(ours.rows()) + " rows, all columns; SQLite reads the same from a view over "
                                                     "tables with the same indexes"});
    table.add({.what = name + ", open connection",
               .ours = [&] { return processorTimeOf([&] { readQuery(*database, name, taker); }); },
               .theirs = [&] { return processorTimeOf([&] { readQuery(connection.get(), name, taker); }); },
               .mostRatio = kMostRatio,
               .note = "the same again in a connection that has read it before"});
}

} // namespace

void compareQueries(ComparisonTable& table)
{
    compareQuery(table, "MealDetails");
    compareQuery(table, "ExcelHistory");
}

} // namespace bench
