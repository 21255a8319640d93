// What a user waits for, measured beside other programs on the same data: run it where the disk is a real one.

#include "bench_diaries.h"

#include "data/database.h"
#include "jet/database.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

using bench::diaries;

// --- Opening, and one food by its key ---

void openAndReadOneFood(benchmark::State& state)
{
    const QString path = QString::fromStdString(diaries().ofDays(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        data::Database database(path);
        const data::Recordset food =
            database.openRecordset(QStringLiteral("Select * from NutritionalInformation where NDB_No = 9040"));
        benchmark::DoNotOptimize(food.value(QStringLiteral("Carbohydrt")));
    }
}
BENCHMARK(openAndReadOneFood)->Arg(30)->Arg(3650)->Unit(benchmark::kMicrosecond);

void openAndReadOneFoodInTheEngine(benchmark::State& state)
{
    const std::string path = diaries().ofDays(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto file = jet::Database::open(jet::posixFileSystem(), path);
        const jet::Table& foods = file->table("NutritionalInformation");
        const jet::KeyBound key{{std::int32_t{9040}}, true};
        const auto rows = foods.range(0, {key, key});
        if (!rows->next()) {
            state.SkipWithError("the food is not there");
            return;
        }
        benchmark::DoNotOptimize(rows->row().value(*foods.definition().columnByName("Carbohydrt")));
    }
}
BENCHMARK(openAndReadOneFoodInTheEngine)->Arg(30)->Arg(3650)->Unit(benchmark::kMicrosecond);

// --- Scanning a whole table, every column of every row ---

void scan(benchmark::State& state, const std::string& path, const std::string& tableName)
{
    std::int64_t rowCount = 0;
    for (auto _ : state) {
        const auto file = jet::Database::open(jet::posixFileSystem(), path, jet::OpenMode::ReadOnly);
        const jet::Table& table = file->table(tableName);
        const auto columns = table.definition().displayOrder();
        for (const auto rows = table.scan(); rows->next(); ++rowCount) {
            for (const jet::Column* column : columns) {
                benchmark::DoNotOptimize(rows->row().value(*column));
            }
        }
    }
    state.SetItemsProcessed(rowCount);
}

void exportWithMdbTools(benchmark::State& state, const std::string& path, const std::string& tableName)
{
    const std::string command = std::string(MDB_EXPORT) + " '" + path + "' " + tableName + " > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("mdb-export failed");
            return;
        }
    }
}

constexpr int kManyReadings = 100000;

void scanFoods(benchmark::State& state)
{
    scan(state, diaries().ofDays(30), "NutritionalInformation");
}
void scanFoodsWithMdbTools(benchmark::State& state)
{
    exportWithMdbTools(state, diaries().ofDays(30), "NutritionalInformation");
}
void scanReadings(benchmark::State& state)
{
    scan(state, diaries().ofReadings(kManyReadings), "BloodSugarLevels");
}
void scanReadingsWithMdbTools(benchmark::State& state)
{
    exportWithMdbTools(state, diaries().ofReadings(kManyReadings), "BloodSugarLevels");
}
BENCHMARK(scanFoods)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(scanFoodsWithMdbTools)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(scanReadings)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(scanReadingsWithMdbTools)->UseRealTime()->Unit(benchmark::kMillisecond);

// --- From the start of the process to the first painted window ---

void firstPaint(benchmark::State& state, const char* program)
{
    const std::string command =
        std::string("QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} ") + program + " 2> /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("the program failed");
            return;
        }
    }
}

void firstPaintOfTheProgram(benchmark::State& state)
{
    firstPaint(state, FIRST_PAINT);
}
void firstPaintOfAnEmptyWindow(benchmark::State& state)
{
    firstPaint(state, FIRST_PAINT_EMPTY);
}
BENCHMARK(firstPaintOfTheProgram)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(firstPaintOfAnEmptyWindow)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
