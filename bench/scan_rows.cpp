// Every value of every row of every table, beside mdb-export.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "shell.h"

#include "jet/database.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kDays = 3650;
constexpr double kMostRatio = 0.2; // five times as fast

using Names = std::vector<std::string>;

Names tablesOf(const std::string& diary)
{
    Names names;
    for (const jet::TableEntry& entry :
         jet::Database::open(jet::posixFileSystem(), diary, jet::OpenMode::ReadOnly)->tables()) {
        if (!entry.system) {
            names.push_back(entry.name);
        }
    }
    return names;
}

/// Returns how many rows.
std::int64_t scan(const std::string& diary, const Names& tables)
{
    const auto file = jet::Database::open(jet::posixFileSystem(), diary, jet::OpenMode::ReadOnly);
    std::int64_t count = 0;
    for (const std::string& name : tables) {
        const jet::Table& table = file->table(name);
        const auto columns = table.definition().displayOrder();
        for (const auto rows = table.scan(); rows->next(); ++count) {
            for (const jet::Column* column : columns) {
                benchmark::DoNotOptimize(rows->row().value(*column));
            }
        }
    }
    return count;
}

enum class Program { Quillonctl, MdbExport };

void writeOut(Program program, const std::string& diary, const Names& tables, const std::string& to)
{
    const std::string start = program == Program::Quillonctl ? QUILLONCTL " dump " : MDB_EXPORT " ";
    for (const std::string& table : tables) {
        runInShell(start + quotedForShell(diary) + ' ' + table + " >> " + quotedForShell(to));
    }
}

/// A line for each row, and one for the names of each table's columns: no text of an invented diary has a line break.
std::int64_t rowsWritten(Program program, const std::string& diary, const Names& tables)
{
    const std::string path = diaries().pathFor("rows-" + std::to_string(static_cast<int>(program)) + ".txt");
    writeOut(program, diary, tables, path);
    std::ifstream file(path, std::ios::binary);
    const auto lines = std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n');
    return lines - static_cast<std::int64_t>(tables.size());
}

} // namespace

void compareScan(ComparisonTable& table)
{
    const std::string diary = diaries().ofDays(kDays);
    const Names tables = tablesOf(diary);
    const std::int64_t rows = scan(diary, tables);
    if (rows != rowsWritten(Program::MdbExport, diary, tables) ||
        rows != rowsWritten(Program::Quillonctl, diary, tables)) {
        throw std::runtime_error("scan: different numbers of rows");
    }
    const auto theirs = [&] {
        return processorTimeOf([&] { writeOut(Program::MdbExport, diary, tables, "/dev/null"); });
    };
    table.add({.what = "scan of every table",
               .ours = [&] { return processorTimeOf([&] { benchmark::DoNotOptimize(scan(diary, tables)); }); },
               .theirs = theirs,
               .mostRatio = kMostRatio,
               .note = std::to_string(rows) + " rows of " + std::to_string(tables.size()) +
                       " tables: the engine decodes every value, mdb-export writes them to /dev/null as text"});
    table.add(
        {.what = "every table written as text",
         .ours = [&] { return processorTimeOf([&] { writeOut(Program::Quillonctl, diary, tables, "/dev/null"); }); },
         .theirs = theirs,
         .mostRatio = {},
         .note = "the same rows by quillonctl dump and by mdb-export, a process for each table"});
}

} // namespace bench
