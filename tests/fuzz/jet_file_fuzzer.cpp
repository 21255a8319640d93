// Any bytes as a database: opening, reading, checking and changing them ends in a result or in jet::Error.
//
// An input that begins like an Access file is the file. Any other is a list of patches to a small diary of our own:
// offset (4 bytes, least significant first), count (1 byte), that many bytes.
#include "fuzz/fuzz_driver.h"

#include "jet/database.h"
#include "jet/database/small_diary.h"
#include "jet/disk/error.h"
#include "jet/disk/memory_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <span>

namespace {

using namespace jet;

constexpr std::size_t kLargestFile = 512 * 1024;
/// Of each table: enough to reach every kind of row, few enough for some hundred inputs a second.
constexpr int kRowsRead = 2000;

const Bytes& smallDiary()
{
    static const Bytes content = [] {
        MemoryFileSystem disk;
        const auto diary = test::createSmallDiary(disk);
        test::fillSmallDiary(*diary);
        return disk.content(test::kDiaryPath);
    }();
    return content;
}

bool looksLikeAFile(ByteView input)
{
    constexpr std::array<unsigned, 4> kStart{0, 1, 0, 0};
    return input.size() >= kStart.size() && std::equal(kStart.begin(), kStart.end(), input.begin(), [](auto a, auto b) {
               return a == std::to_integer<unsigned>(b);
           });
}

Bytes fileOf(ByteView input)
{
    if (looksLikeAFile(input)) {
        return {input.begin(), input.end()};
    }
    Bytes file = smallDiary();
    for (std::size_t at = 0; at + 5 <= input.size();) {
        const std::size_t offset = getU32(input, at) % file.size();
        const std::size_t count =
            std::min<std::size_t>({getU8(input, at + 4), input.size() - at - 5, file.size() - offset});
        putBytes(file, offset, input.subspan(at + 5, count));
        at += 5 + count;
    }
    return file;
}

/// Runs the function; an Error is a good end.
template <typename Function>
bool attempt(Function&& function)
{
    try {
        function();
        return true;
    } catch (const Error&) {
        return false;
    }
}

void readRows(const Table& table, RowCursor& cursor)
{
    for (int rows = 0; rows < kRowsRead && cursor.next(); ++rows) {
        for (const Column& column : table.definition().columns) {
            attempt([&] { static_cast<void>(cursor.row().value(column)); });
        }
    }
}

void readTable(const Table& table)
{
    static_cast<void>(table.whyReadOnly());
    attempt([&] { readRows(table, *table.scan()); });
    for (std::size_t index = 0; index < table.definition().realIndexes.size(); ++index) {
        attempt([&] { readRows(table, *table.range(index, {})); });
        attempt([&] { readRows(table, *table.range(index, {}, Direction::Backwards)); });
    }
}

void readEverything(Database& database)
{
    attempt([&] {
        for (const TableEntry& entry : database.tables()) {
            attempt([&] { readTable(database.table(entry.name)); });
        }
    });
    attempt([&] {
        for (const SavedQuery& query : database.queries()) {
            attempt([&] { static_cast<void>(sqlOf(query)); });
        }
    });
    attempt([&] { static_cast<void>(database.relationships()); });
}

Value valueFor(const Column& column)
{
    switch (column.type) {
    case ColumnType::Text:
        return std::u16string(10, u'x');
    case ColumnType::Memo:
        return std::u16string(5000, u'm');
    case ColumnType::Ole:
        return Bytes(300);
    case ColumnType::Long:
        return std::int32_t{1};
    case ColumnType::Integer:
        return std::int16_t{7};
    case ColumnType::Double:
        return 2.5;
    case ColumnType::DateTime:
        return DateTime{40000};
    case ColumnType::Boolean:
        return true;
    default:
        return Null{};
    }
}

void changeTable(Table& table)
{
    std::vector<ColumnValue> values;
    for (const Column& column : table.definition().columns) {
        if (!column.isAutoNumber()) {
            values.push_back({column.number, valueFor(column)});
        }
    }
    attempt([&] { static_cast<void>(table.insert({})); });
    attempt([&] { static_cast<void>(table.insert(values)); });
    std::vector<RowPointer> addresses;
    attempt([&] {
        for (const auto cursor = table.scan(); addresses.size() < 6 && cursor->next();) {
            addresses.push_back(cursor->row().address());
        }
    });
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        attempt([&] {
            if (i % 2 == 0) {
                table.update(addresses[i], values);
            } else {
                table.erase(addresses[i]);
            }
        });
    }
}

void changeEverything(Database& database)
{
    attempt([&] {
        for (const TableEntry& entry : database.tables()) {
            if (!entry.system) {
                attempt([&] {
                    Transaction transaction(database);
                    changeTable(database.table(entry.name));
                    transaction.commit();
                });
            }
        }
    });
    attempt([&] {
        TableSpec spec;
        spec.name = "Fresh";
        spec.columns.resize(1);
        spec.columns.front().name = "A";
        database.createTable(spec);
        static_cast<void>(database.table("Fresh").insert({}));
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > kLargestFile) {
        return 0;
    }
    MemoryFileSystem disk;
    disk.setContent(test::kDiaryPath, fileOf(std::as_bytes(std::span(data, size))));
    attempt([&] {
        const auto database = Database::open(disk, test::kDiaryPath);
        const bool sound = database->check().empty();
        readEverything(*database);
        changeEverything(*database);
        const auto faults = database->check();
        if (sound && !faults.empty()) {
            std::cerr << "A sound file was damaged by changes: page " << faults.front().page << ": "
                      << faults.front().text << "\n";
            std::abort();
        }
    });
    return 0;
}
