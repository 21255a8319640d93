// Reports, and the two queries behind them beside SQLite's own file with the same rows and indexes.

#include "bench_diaries.h"
#include "sqlite_copy.h"

#include "data/database.h"
#include "reports/report_runner.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using bench::diaries;

QString diaryOf(const benchmark::State& state)
{
    return QString::fromStdString(diaries().ofDays(static_cast<int>(state.range(0))));
}

// --- From opening the file to the last line of the list ---

void report(benchmark::State& state, const char* name, const reports::DateFilter& filter = {})
{
    const runtime::SystemClock clock;
    const reports::Report* report = reports::findReport(QString::fromLatin1(name));
    reports::ReportState window;
    window.strPath = diaryOf(state);
    window.fields = filter;
    window.strWhere = filter.isComplete() ? filter.strWhere() : QString();
    window.clock = &clock;
    std::int64_t lines = 0;
    for (auto _ : state) {
        window.lstView.clear();
        report->build(window);
        lines += window.lstView.size();
    }
    state.SetItemsProcessed(lines);
}

void overallDiary(benchmark::State& state)
{
    report(state, "diary");
}
/// The filter at the start of the program.
void overallDiaryOfThreeDays(benchmark::State& state)
{
    report(state, "diary", {QStringLiteral("13/03/2023"), QStringLiteral("16/03/2023")});
}
void insulinDiary(benchmark::State& state)
{
    report(state, "insulin");
}
void dailyAnalysis(benchmark::State& state)
{
    report(state, "daily");
}
BENCHMARK(overallDiary)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(overallDiaryOfThreeDays)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(insulinDiary)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(dailyAnalysis)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);

// --- Every column of every row of a query, opening the file included ---

void query(benchmark::State& state, const char* name)
{
    std::int64_t rows = 0;
    for (auto _ : state) {
        data::Database database(diaryOf(state));
        data::Recordset records = database.openRecordset(QString::fromLatin1(name));
        for (; !records.eof(); records.moveNext(), ++rows) {
            for (int field = 0; field < records.fieldCount(); ++field) {
                benchmark::DoNotOptimize(records.value(field));
            }
        }
    }
    state.SetItemsProcessed(rows);
}

void queryWithSqlite(benchmark::State& state, const char* name)
{
    const std::string copy = diaries().pathFor("queries-" + std::to_string(state.range(0)) + ".sqlite");
    static_cast<void>(bench::copyDiary(diaryOf(state).toStdString(), copy));
    std::int64_t rows = 0;
    for (auto _ : state) {
        const bench::Sqlite connection = bench::openSqlite(copy);
        rows += bench::readAll(connection.get(), std::string("SELECT * FROM ") + name);
    }
    state.SetItemsProcessed(rows);
}

void mealDetails(benchmark::State& state)
{
    query(state, "MealDetails");
}
void mealDetailsWithSqlite(benchmark::State& state)
{
    queryWithSqlite(state, "MealDetails");
}
void excelHistory(benchmark::State& state)
{
    query(state, "ExcelHistory");
}
void excelHistoryWithSqlite(benchmark::State& state)
{
    queryWithSqlite(state, "ExcelHistory");
}
BENCHMARK(mealDetails)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(mealDetailsWithSqlite)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(excelHistory)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);
BENCHMARK(excelHistoryWithSqlite)->Arg(30)->Arg(3650)->Unit(benchmark::kMillisecond);

} // namespace
