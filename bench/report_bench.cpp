// Reports, from opening the file to the last line of the list.

#include "bench_diaries.h"

#include "reports/all_reports.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using bench::diaries;

QString diaryOf(const benchmark::State& state)
{
    return QString::fromStdString(diaries().ofDays(static_cast<int>(state.range(0))));
}

void report(benchmark::State& state, const char* name, const reports::DateFilter& filter = {})
{
    const runtime::SystemClock clock;
    const reports::Report* report = reports::findReport(QString::fromLatin1(name));
    reports::ReportState window(clock);
    window.strPath = diaryOf(state);
    window.fields = filter;
    window.strWhere = filter.isComplete() ? filter.strWhere() : QString();
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

} // namespace
