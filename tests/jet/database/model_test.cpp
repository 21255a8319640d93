// Random changes of a table, done to the file and to a plain model of it alike. After each batch both must hold the
// same, read in every order, and the file must be sound.
#include "jet/database/builders.h"
#include "jet/database/diary_content.h"
#include "jet/database/dump_format.h"
#include "jet/database/mdbtools.h"
#include "jet/database/small_diary.h"
#include "jet/disk/memory_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace jet {

namespace {

using testing::IsEmpty;

const std::string kPath = "Model.mdb";
const std::string kTable = "Things";

// Columns by position.
enum : std::size_t { kId, kNumber, kAmount, kLevel, kMoment, kName, kNotes, kChecked, kCode, kColumns };

struct ModelIndex {
    std::string name;
    std::vector<std::pair<std::size_t, bool>> keys; ///< column, ascending
    bool primaryKey = false;
    bool unique = false;
    bool ignoreNulls = false;
};

const std::vector<ModelIndex> kIndexes{
    {"PrimaryKey", {{kId, true}}, true},
    {"Number", {{kNumber, true}}},
    {"LevelName", {{kLevel, false}, {kName, true}}},
    {"Name", {{kName, true}}},
    {"NameDown", {{kName, false}, {kMoment, true}}},
    {"Amount", {{kAmount, false}}, false, false, true},
    {"Code", {{kCode, true}}, false, true},
    {"Moment", {{kMoment, true}}},
};

TableSpec tableSpec()
{
    TableSpec spec;
    spec.name = kTable;
    spec.columns = {test::counter("Id"),
                    test::column("Number", ColumnType::Integer),
                    test::column("Amount", ColumnType::Currency),
                    test::column("Level", ColumnType::Double),
                    test::column("Moment", ColumnType::DateTime),
                    test::column("Name", ColumnType::Text, 120),
                    test::column("Notes", ColumnType::Memo),
                    test::column("Checked", ColumnType::Boolean),
                    test::column("Code", ColumnType::Text, 20)};
    for (const ModelIndex& model : kIndexes) {
        std::vector<IndexSpec::Key> keys;
        for (const auto& [column, ascending] : model.keys) {
            keys.push_back({spec.columns[column].name, ascending});
        }
        IndexSpec index = test::index(model.name, keys);
        index.primaryKey = model.primaryKey;
        index.unique = model.unique;
        index.ignoreNulls = model.ignoreNulls;
        spec.indexes.push_back(index);
    }
    return spec;
}

using Row = std::vector<Value>;
using Rows = std::map<RowPointer, Row>; ///< by address, which is the order of entry

/// Null before everything else; texts hold digits and small letters only, whose order is that of their codes.
int compare(const Value& a, const Value& b)
{
    const auto order = [](const auto& x, const auto& y) { return x < y ? -1 : (y < x ? 1 : 0); };
    if (isNull(a) || isNull(b)) {
        return order(!isNull(a), !isNull(b));
    }
    if (const auto* number = std::get_if<std::int32_t>(&a)) {
        return order(*number, std::get<std::int32_t>(b));
    }
    if (const auto* number = std::get_if<std::int16_t>(&a)) {
        return order(*number, std::get<std::int16_t>(b));
    }
    if (const auto* number = std::get_if<double>(&a)) {
        return order(*number, std::get<double>(b));
    }
    if (const auto* amount = std::get_if<Currency>(&a)) {
        return order(amount->tenThousandths, std::get<Currency>(b).tenThousandths);
    }
    if (const auto* moment = std::get_if<DateTime>(&a)) {
        return order(moment->days, std::get<DateTime>(b).days);
    }
    return order(std::get<std::u16string>(a), std::get<std::u16string>(b));
}

bool comesBefore(const ModelIndex& index, const Row& a, const Row& b)
{
    for (const auto& [column, ascending] : index.keys) {
        if (const int order = compare(a[column], b[column]); order != 0) {
            return ascending == (order < 0);
        }
    }
    return false;
}

/// What an index must give: the rows that have an entry, by key, equal keys in the order of entry.
std::vector<RowPointer> inOrder(const Rows& rows, const ModelIndex& index)
{
    std::vector<RowPointer> addresses;
    for (const auto& [address, row] : rows) {
        const bool allNull = std::all_of(index.keys.begin(), index.keys.end(),
                                         [&fields = row](const auto& key) { return isNull(fields[key.first]); });
        if (!(index.ignoreNulls && allNull)) {
            addresses.push_back(address);
        }
    }
    std::stable_sort(addresses.begin(), addresses.end(), [&](const RowPointer& a, const RowPointer& b) {
        return comesBefore(index, rows.at(a), rows.at(b));
    });
    return addresses;
}

std::vector<RowPointer> addressesOf(RowCursor& cursor)
{
    std::vector<RowPointer> addresses;
    while (cursor.next()) {
        addresses.push_back(cursor.row().address());
    }
    return addresses;
}

std::string textOf(const Row& row)
{
    std::string text;
    for (const Value& value : row) {
        text += test::dumped(value) + "|";
    }
    return text;
}

class Model : public testing::TestWithParam<std::uint64_t>
{
protected:
    void SetUp() override
    {
        Database::create(disk_, kPath, DateTime{40000})->createTable(tableSpec());
        connections_.resize(2);
        reopen();
    }

    // --- Chance ---

    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }
    bool oneIn(std::size_t times) { return below(times) == 0; }

    std::u16string word(std::size_t longest)
    {
        std::u16string text;
        for (std::size_t length = below(longest + 1); length > 0; --length) {
            text += u"0123456789abcdefghijklmnopqrstuvwxyz"[below(36)];
        }
        return text;
    }

    std::u16string notes()
    {
        // Inline, one row, a chain; of Latin letters, which are compressed, or others.
        const std::size_t length = below(oneIn(4) ? 9000 : (oneIn(2) ? 1500 : 40));
        return std::u16string(length, static_cast<char16_t>(oneIn(3) ? 0x0431 : u'm'));
    }

    Value randomValue(std::size_t column)
    {
        if (column != kChecked && oneIn(6)) {
            return Null{};
        }
        switch (column) {
        case kNumber:
            return static_cast<std::int16_t>(static_cast<int>(below(40)) - 20);
        case kAmount:
            return Currency{static_cast<std::int64_t>(below(2'000'000)) - 1'000'000};
        case kLevel:
            return static_cast<double>(below(100)) / 8 - 6;
        case kMoment:
            return DateTime{36900 + static_cast<double>(below(2000)) / 16};
        case kName:
            return word(oneIn(5) ? 120 : 6);
        case kNotes:
            return notes();
        case kChecked:
            return oneIn(2);
        default:
            return word(20);
        }
    }

    RowPointer anyRow() { return std::next(rows_.begin(), static_cast<std::ptrdiff_t>(below(rows_.size())))->first; }

    // --- Changes ---

    Database& database() { return *connections_[current_]; }
    Table& table() { return database().table(kTable); }

    /// Whether another row has the code, which must be unique.
    bool codeIsTaken(const Value& code, const RowPointer* except)
    {
        return !isNull(code) && std::any_of(rows_.begin(), rows_.end(), [&](const auto& row) {
            return row.second[kCode] == code && (except == nullptr || row.first != *except);
        });
    }

    void insert()
    {
        Row row(kColumns, Value(Null{}));
        std::vector<ColumnValue> values;
        row[kChecked] = false;
        for (std::size_t column = kNumber; column < kColumns; ++column) {
            if (!oneIn(5)) {
                row[column] = randomValue(column);
                values.push_back({static_cast<std::uint16_t>(column), row[column]});
            }
        }
        if (codeIsTaken(row[kCode], nullptr)) {
            expectDuplicate([&] { table().insert(values); });
            return;
        }
        const RowPointer address = table().insert(values);
        row[kId] = table().read(address)->value(*table().definition().columnByName("Id"));
        for (const auto& [other, fields] : rows_) {
            ASSERT_LT(std::get<std::int32_t>(fields[kId]), std::get<std::int32_t>(row[kId]));
            ASSERT_LT(other, address) << "the new row must be the last of the scan";
        }
        rows_[address] = row;
    }

    void update()
    {
        const RowPointer address = anyRow();
        Row row = rows_.at(address);
        std::vector<ColumnValue> values;
        for (std::size_t column = kNumber; column < kColumns; ++column) {
            if (oneIn(3)) {
                row[column] = randomValue(column);
                values.push_back({static_cast<std::uint16_t>(column), row[column]});
            }
        }
        if (codeIsTaken(row[kCode], &address)) {
            expectDuplicate([&] { table().update(address, values); });
            return;
        }
        table().update(address, values);
        rows_[address] = row;
    }

    void erase()
    {
        const RowPointer address = anyRow();
        table().erase(address);
        rows_.erase(address);
    }

    /// A change that a unique index refuses, part of the way through a transaction or on its own.
    void insertDuplicate()
    {
        for (const auto& [address, row] : rows_) {
            if (!isNull(row[kCode])) {
                const std::vector<ColumnValue> values{{kNotes, notes()}, {kCode, row[kCode]}};
                expectDuplicate([&] { table().insert(values); });
                return;
            }
        }
    }

    template <typename Change>
    void expectDuplicate(Change change)
    {
        try {
            change();
            ADD_FAILURE() << "a duplicate was taken";
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::DuplicateKey) << error.what();
        }
    }

    void changeSomething()
    {
        const std::size_t chance = below(20);
        if (rows_.empty() || chance < (rows_.size() < 120 ? 9U : 4U)) {
            insert();
        } else if (chance < 14) {
            update();
        } else if (chance < 19) {
            erase();
        } else {
            insertDuplicate();
        }
    }

    /// Some changes, each on its own or all in one transaction that is kept or not.
    void batch()
    {
        const bool together = !oneIn(4);
        const Rows before = rows_;
        if (together) {
            database().begin();
        }
        for (std::size_t changes = 1 + below(30); changes > 0; --changes) {
            ASSERT_NO_FATAL_FAILURE(changeSomething());
        }
        if (together && oneIn(3)) {
            if (oneIn(2)) {
                expectSame(); // the connection itself sees what is not committed
            }
            database().rollback();
            rows_ = before;
        } else if (together) {
            database().commit();
        }
        if (oneIn(5)) {
            reopen();
        }
        current_ = below(connections_.size());
    }

    void reopen()
    {
        for (auto& connection : connections_) {
            connection.reset();
            connection = Database::open(disk_, kPath);
        }
    }

    // --- Comparison ---

    void expectSame()
    {
        const Table& things = table();
        EXPECT_EQ(things.rowCount(), rows_.size());
        std::vector<std::string> actual;
        std::vector<std::string> expected;
        for (const auto cursor = things.scan(); cursor->next();) {
            Row row;
            for (const char* name : {"Id", "Number", "Amount", "Level", "Moment", "Name", "Notes", "Checked", "Code"}) {
                row.push_back(cursor->row().value(*things.definition().columnByName(name)));
            }
            actual.push_back(textOf(row));
        }
        for (const auto& [address, row] : rows_) {
            expected.push_back(textOf(row));
        }
        ASSERT_EQ(actual, expected);
        for (const ModelIndex& index : kIndexes) {
            SCOPED_TRACE(index.name);
            expectSameThrough(things, index);
        }
    }

    void expectSameThrough(const Table& things, const ModelIndex& index)
    {
        const auto& logical = things.definition().logicalIndexes;
        const auto found =
            std::find_if(logical.begin(), logical.end(), [&](const auto& each) { return each.name == index.name; });
        ASSERT_NE(found, logical.end());
        const std::size_t position = found->realIndex;
        std::vector<RowPointer> expected = inOrder(rows_, index);
        ASSERT_EQ(addressesOf(*things.range(position, {})), expected);

        // All rows with the leading value of some row, and all from there on.
        if (!expected.empty()) {
            const std::size_t column = index.keys.front().first;
            const Value value = rows_.at(expected[below(expected.size())])[column];
            const auto differs = [&](const RowPointer& address) {
                return compare(rows_.at(address)[column], value) != 0;
            };
            const auto first = std::find_if_not(expected.begin(), expected.end(), differs);
            const auto last = std::find_if(first, expected.end(), differs);
            const KeyBound bound{{value}, true};
            ASSERT_EQ(addressesOf(*things.range(position, {bound, bound})), std::vector<RowPointer>(first, last));
            ASSERT_EQ(addressesOf(*things.range(position, {bound, std::nullopt})),
                      std::vector<RowPointer>(first, expected.end()));
            ASSERT_EQ(addressesOf(*things.range(position, {std::nullopt, KeyBound{{value}, false}})),
                      std::vector<RowPointer>(expected.begin(), first));
        }
        std::reverse(expected.begin(), expected.end());
        ASSERT_EQ(addressesOf(*things.range(position, {}, Direction::Backwards)), expected);
    }

    MemoryFileSystem disk_;
    std::vector<std::unique_ptr<Database>> connections_;
    std::size_t current_ = 0;
    Rows rows_;
    std::mt19937_64 random_{GetParam()};
};

TEST_P(Model, AndFileHoldTheSameAfterEachBatchOfChanges)
{
    constexpr int kBatches = 40;
    for (int number = 0; number < kBatches && !HasFatalFailure(); ++number) {
        SCOPED_TRACE("batch " + std::to_string(number));
        ASSERT_NO_FATAL_FAILURE(batch());
        ASSERT_NO_FATAL_FAILURE(expectSame());
        ASSERT_THAT(database().check(), IsEmpty());
    }

    // An independent reader finds the same rows.
    const test::TemporaryFolder folder;
    const std::string path = folder.path("Model.mdb");
    const Bytes content = disk_.content(kPath);
    std::ofstream file(path, std::ios::binary);
    for (const std::byte byte : content) {
        file.put(static_cast<char>(byte));
    }
    file.close();
    const auto database = Database::open(posixFileSystem(), path, OpenMode::ReadOnly);
    EXPECT_EQ(test::expectSameRowsAsMdbExport(path, database->table(kTable)), rows_.size());
}

INSTANTIATE_TEST_SUITE_P(Seeds, Model, testing::Range<std::uint64_t>(1, 1 + test::seedCount(3)));

} // namespace
} // namespace jet
