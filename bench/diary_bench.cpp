// Opening a diary and finding one food by its key, through the data layer and in the engine alone.

#include "bench_diaries.h"

#include "data/database.h"
#include "jet/database.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using bench::diaries;

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

} // namespace

BENCHMARK_MAIN();
