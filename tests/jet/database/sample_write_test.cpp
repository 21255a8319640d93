// Changes to copies of files that other programs wrote.
#include "jet/database/builders.h"
#include "jet/database/mdbtools.h"
#include "jet/database/small_diary.h"
#include "jet/support/sample_files.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace jet::test {
namespace {

class SampleWrites : public testing::TestWithParam<std::filesystem::path>
{
protected:
    SampleWrites() : path_(folder_.path("copy.mdb"))
    {
        std::ofstream(path_, std::ios::binary) << std::ifstream(GetParam(), std::ios::binary).rdbuf();
        open();
        faultsBefore_ = faults();
    }

    void open() { database_ = Database::open(posixFileSystem(), path_); }

    /// Without numbers: a count of rows that Access left wrong goes on being wrong by the same amount.
    [[nodiscard]] std::set<std::string> faults()
    {
        std::set<std::string> found;
        for (const Fault& fault : database_->check()) {
            std::string text = std::to_string(fault.page) + ": ";
            std::copy_if(fault.text.begin(), fault.text.end(), std::back_inserter(text),
                         [](char letter) { return letter < '0' || letter > '9'; });
            found.insert(text);
        }
        return found;
    }

    /// The file is as sound as it was, and both readers see the same in all its tables.
    void expectSound()
    {
        database_.reset();
        open();
        for (const std::string& fault : faults()) {
            EXPECT_TRUE(faultsBefore_.contains(fault)) << fault;
        }
        for (const std::string& name : userTables()) {
            expectSameRowsAsMdbExport(path_, database_->table(name));
        }
    }

    [[nodiscard]] std::vector<std::string> userTables() const
    {
        std::vector<std::string> names;
        for (const TableEntry& entry : database_->tables()) {
            if (!entry.system) {
                names.push_back(entry.name);
            }
        }
        return names;
    }

    [[nodiscard]] static std::vector<RowPointer> rowsOf(const Table& table)
    {
        std::vector<RowPointer> rows;
        for (const auto cursor = table.scan(); cursor->next();) {
            rows.push_back(cursor->row().address());
        }
        return rows;
    }

    [[nodiscard]] static bool isUnique(const TableDefinition& definition, std::uint16_t column)
    {
        return std::any_of(definition.realIndexes.begin(), definition.realIndexes.end(),
                           [column](const RealIndex& index) {
                               return index.isUnique() && index.columns.front().columnNumber == column;
                           });
    }

    /// Values for one more row: texts and numbers by its number, what is referenced elsewhere left null.
    [[nodiscard]] static std::vector<ColumnValue> newRow(const TableDefinition& definition, std::int32_t number)
    {
        std::set<std::uint16_t> referencing;
        for (const LogicalIndex& logical : definition.logicalIndexes) {
            if (logical.role == LogicalIndex::Role::Referencing) {
                for (const KeyColumn& key : definition.realIndexes[logical.realIndex].columns) {
                    referencing.insert(key.columnNumber);
                }
            }
        }
        std::vector<ColumnValue> row;
        for (const Column& column : definition.columns) {
            if (column.isAutoNumber() || referencing.contains(column.number)) {
                continue;
            }
            const std::u16string digits(1, static_cast<char16_t>(u'a' + number % 26));
            switch (column.type) {
            case ColumnType::Boolean:
                row.push_back({column.number, number % 2 == 0});
                break;
            case ColumnType::Integer:
                row.push_back({column.number, static_cast<std::int16_t>(number % 30000)});
                break;
            case ColumnType::Long:
                row.push_back({column.number, 1000000 + number});
                break;
            case ColumnType::Double:
                row.push_back({column.number, number / 7.0});
                break;
            case ColumnType::DateTime:
                row.push_back({column.number, DateTime{40000.0 + number / 16.0}});
                break;
            case ColumnType::Text:
                row.push_back({column.number, textOf(number).substr(0, column.length / 2U)});
                break;
            case ColumnType::Memo:
                row.push_back({column.number, std::u16string(static_cast<std::size_t>(number % 10) * 700, u'm')});
                break;
            default:
                break;
            }
        }
        return row;
    }

    [[nodiscard]] static std::u16string textOf(std::int32_t number)
    {
        std::u16string text = u"n";
        for (; number > 0; number /= 10) {
            text.push_back(static_cast<char16_t>(u'0' + number % 10));
        }
        return text;
    }

    TemporaryFolder folder_;
    std::string path_;
    std::unique_ptr<Database> database_;
    std::set<std::string> faultsBefore_;
};

TEST_P(SampleWrites, OpeningAndClosingLeavesTheBytesAlone)
{
    database_->begin();
    database_->commit();
    database_.reset();
    const auto content = [](const std::filesystem::path& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ(content(path_), content(GetParam()));
}

TEST_P(SampleWrites, BothReadersSeeTheSameToBeginWith)
{
    expectSound();
}

TEST_P(SampleWrites, RowsAreAdded)
{
    for (const std::string& name : userTables()) {
        Table& table = database_->table(name);
        const std::size_t before = rowsOf(table).size();
        database_->begin();
        for (std::int32_t i = 1; i <= 300; ++i) {
            table.insert(newRow(table.definition(), i));
        }
        database_->commit();
        EXPECT_EQ(rowsOf(table).size(), before + 300);
    }
    expectSound();
}

TEST_P(SampleWrites, RowsAreChangedAndGrow)
{
    for (const std::string& name : userTables()) {
        Table& table = database_->table(name);
        const TableDefinition definition = table.definition();
        const std::vector<RowPointer> rows = rowsOf(table);
        database_->begin();
        for (std::size_t i = 0; i < rows.size(); i += rows.size() / 200 + 1) {
            std::vector<ColumnValue> changes;
            for (const Column& column : definition.columns) {
                if (!isUnique(definition, column.number) && column.type == ColumnType::Text) {
                    changes.push_back({column.number, std::u16string(column.length / 2U, u'\u0416')});
                } else if (column.type == ColumnType::Memo) {
                    changes.push_back({column.number, std::u16string(5000, u'M')});
                }
                if (changes.size() == 5) {
                    break; // Enough to outgrow the slot, and short of the longest row.
                }
            }
            table.update(rows[i], changes);
            const auto changed = table.read(rows[i]);
            ASSERT_NE(changed, nullptr);
            for (const ColumnValue& change : changes) {
                EXPECT_EQ(changed->value(*definition.columnByNumber(change.columnNumber)), change.value);
            }
        }
        database_->commit();
        EXPECT_EQ(rowsOf(table), rows);
    }
    expectSound();
}

TEST_P(SampleWrites, RowsAreErased)
{
    for (const std::string& name : userTables()) {
        Table& table = database_->table(name);
        const std::vector<RowPointer> rows = rowsOf(table);
        std::size_t refused = 0;
        database_->begin();
        for (std::size_t i = 0; i < rows.size(); i += 3) {
            try {
                table.erase(rows[i]);
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorCode::HasChildren) << error.what();
                ++refused;
            }
        }
        database_->commit();
        EXPECT_EQ(rowsOf(table).size(), rows.size() - (rows.size() + 2) / 3 + refused);
    }
    expectSound();
}

TEST_P(SampleWrites, EveryRowIsErasedAndNewOnesFollow)
{
    std::vector<std::string> names = userTables();
    for (const std::string& name : names) {
        Table& table = database_->table(name);
        database_->begin();
        for (const RowPointer row : rowsOf(table)) {
            if (table.read(row) != nullptr) { // A row that refers to itself or another may have gone already.
                table.erase(row);
            }
        }
        for (std::int32_t i = 1; i <= 20; ++i) {
            table.insert(newRow(table.definition(), i));
        }
        database_->commit();
        EXPECT_EQ(rowsOf(table).size(), 20U);
    }
    expectSound();
}

TEST_P(SampleWrites, TablesQueriesAndRelationshipsAreAdded)
{
    database_->createTable(
        {"New parents", {counter("Id"), column("Name", ColumnType::Text, 50)}, {primaryKey({{"Id"}})}});
    database_->createTable({"New children",
                            {counter("Id"), column("Parent", ColumnType::Long), column("Notes", ColumnType::Memo)},
                            {primaryKey({{"Id"}})}});
    database_->createRelationship(relationship("NewPair", "New children", "Parent", "New parents", "Id"));
    SavedQuery query;
    query.name = "New query";
    query.rows = {{0, 1, 0, {}, {}, {}},
                  {1, 1, 1, {}, {}, {}},
                  {5, 1, {}, {}, u"New parents", {}},
                  {6, 1, 0, u"[New parents].Name", {}, {}},
                  {255, 1, {}, {}, {}, {}}};
    database_->createQuery(query);
    Table& parents = database_->table("new PARENTS");
    parents.insert(values(parents, {{"Name", u"first"}}));
    Table& children = database_->table("New children");
    children.insert(values(children, {{"Parent", 1}, {"Notes", std::u16string(9000, u'n')}}));
    expectSound();
    EXPECT_EQ(expectSameRowsAsMdbExport(path_, database_->table("New children")), 1U);
    const std::vector<SavedQuery> queries = database_->queries();
    EXPECT_TRUE(
        std::any_of(queries.begin(), queries.end(), [](const SavedQuery& each) { return each.name == "New query"; }));
}

TEST_P(SampleWrites, ANewTableBelongsToTheAccountOfTheFilesOwnTables)
{
    // Access's own objects of the same account, where there are any, and the row "MSysDb", which is in every file.
    database_->createTable({"Mine", {counter("Id")}, {}});
    Table& objects = database_->table("MSysObjects");
    const TableDefinition& definition = objects.definition();
    std::map<std::u16string, Bytes> owners;
    for (const auto cursor = objects.scan(); cursor->next();) {
        const Value owner = cursor->row().value(*definition.columnByName("Owner"));
        if (std::holds_alternative<Bytes>(owner)) {
            owners[std::get<std::u16string>(cursor->row().value(*definition.columnByName("Name")))] =
                std::get<Bytes>(owner);
        }
    }
    EXPECT_EQ(owners[u"Mine"], owners[u"MSysDb"]);
    EXPECT_EQ(owners[u"Mine"].size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleWrites, testing::ValuesIn(sampleFiles()), sampleName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleWrites);

} // namespace
} // namespace jet::test
