// The overall diary with all lines, beside SQLite producing the rows that it is made of.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "read_records.h"
#include "sqlite_copy.h"

#include "data/database.h"
#include "reports/all_reports.h"

#include <stdexcept>

namespace bench {

namespace {

constexpr int kDays = 3650;
constexpr double kMostRatio = 2;

/// The readings that the report asks for: from the day before the first meal on.
constexpr const char* kReadings =
    R"(SELECT * FROM ExcelHistory WHERE "When" > (SELECT CAST(min(MealTime) AS INTEGER) - 1 FROM Meals))";
constexpr const char* kMeals = "SELECT * FROM MealDetails";

template <typename Taker>
void readForReport(sqlite3* connection, Taker& taker)
{
    readRecords(connection, kMeals, taker);
    readRecords(connection, kReadings, taker);
}

/// What the report reads.
Content contentForReport(const QString& diary)
{
    data::Database database(diary);
    Content content;
    data::Recordset meals = database.openRecordset(QStringLiteral("MealDetails"));
    const double firstMeal = std::get<runtime::Date>(meals.value(QStringLiteral("When"))).days;
    readRecords(meals, content);
    data::Recordset readings = database.openRecordset(QStringLiteral("Select * from ExcelHistory where When > ") +
                                                      QString::number(static_cast<qint64>(firstMeal) - 1));
    readRecords(readings, content);
    return content;
}

} // namespace

void compareOverallDiary(ComparisonTable& table)
{
    const QString diary = QString::fromStdString(diaries().ofDays(kDays));
    const std::string copy = diaries().sqliteOfDays(kDays);
    const Content ours = contentForReport(diary);
    Content theirs;
    readForReport(openSqlite(copy).get(), theirs);
    requireSame(ours, theirs, "overall diary");

    const runtime::SystemClock clock;
    const reports::Report& report = *reports::findReport(QStringLiteral("diary"));
    reports::ReportState window(clock);
    window.strPath = diary;
    report.build(window);
    if (window.lstView.size() <= ours.rows()) {
        throw std::runtime_error("overall diary: not every food and reading has a line");
    }
    const std::string lines = std::to_string(window.lstView.size());

    Untouched taker;
    table.add({.what = "overall diary, all lines",
               .ours =
                   [&] {
                       window.lstView.clear();
                       return processorTimeOf([&] { report.build(window); });
                   },
               .theirs = [&] { return processorTimeOf([&] { readForReport(openSqlite(copy).get(), taker); }); },
               .mostRatio = kMostRatio,
               .note = lines + " lines made from " + std::to_string(ours.rows()) +
                       " rows of MealDetails and ExcelHistory; SQLite opens its file and reads all columns of those "
                       "rows, in two statements as the report does"});
}

} // namespace bench
