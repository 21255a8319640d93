// The rows that a search finds, and those that are kept between searches.
#include "data/engine/table_cursor.h"
#include "data/engine/table_module.h"
#include "data/support/small_diary.h"

namespace data::test {
namespace {

/// A whole number as SQLite hands it to a virtual table.
class Number
{
public:
    explicit Number(int number)
    {
        sqlite3_open(":memory:", &connection_);
        const std::string sql = "SELECT " + std::to_string(number);
        sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement_, nullptr);
        sqlite3_step(statement_);
        value_ = sqlite3_column_value(statement_, 0);
    }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number()
    {
        sqlite3_finalize(statement_);
        sqlite3_close(connection_);
    }

    [[nodiscard]] std::span<sqlite3_value* const> asArgument() const { return {&value_, 1}; }

private:
    sqlite3* connection_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
    sqlite3_value* value_ = nullptr;
};

/// A table with two keys: rows (A, B) are (5, 1) and (9, 5).
class TwoKeys : public SmallDiary
{
protected:
    static constexpr int kByA = 1; ///< numbers of plans
    static constexpr int kByB = 2;

    TwoKeys() : file_(engine())
    {
        const auto key = [](const char* column) {
            jet::IndexSpec index;
            index.name = column;
            index.keys = {{column, true}};
            index.unique = true;
            return index;
        };
        file_->createTable({"T", {{"A", jet::ColumnType::Long}, {"B", jet::ColumnType::Long}}, {key("A"), key("B")}});
        insert(5, 1);
        insert(9, 5);
    }

    [[nodiscard]] jet::Table& table() const { return file_->table("T"); }

    /// A table with one memo a row.
    jet::Table& withLetters(const std::vector<std::u16string>& letters)
    {
        file_->createTable({"Letters", {{"Letter", jet::ColumnType::Memo}}, {}});
        jet::Table& table = file_->table("Letters");
        for (const std::u16string& letter : letters) {
            table.insert(std::vector<jet::ColumnValue>{{table.definition().columns.front().number, letter}});
        }
        return table;
    }

    /// The rows that a search finds, "A,B" each.
    static QString found(TableCursor& cursor, int plan, int key)
    {
        QStringList rows;
        const Number number(key);
        for (cursor.search(plan, "=", number.asArgument()); !cursor.atEnd(); cursor.next()) {
            const auto value = [&](std::size_t column) {
                return QString::number(std::get<std::int32_t>(cursor.value(column)));
            };
            rows.append(value(0) + u',' + value(1));
        }
        return rows.join(QStringLiteral(" | "));
    }

private:
    void insert(std::int32_t a, std::int32_t b) const
    {
        const std::vector<const jet::Column*> columns = table().definition().displayOrder();
        table().insert(std::vector<jet::ColumnValue>{{columns[0]->number, a}, {columns[1]->number, b}});
    }

    std::unique_ptr<jet::Database> file_;
};

TEST_F(TwoKeys, AKeyAskedForAgainFindsItsRowAgainAndAMissingOneNone)
{
    PendingError errors;
    const TableBinding binding(table(), errors);
    TableCursor cursor(binding);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(found(cursor, kByA, 5), QStringLiteral("5,1"));
        EXPECT_EQ(found(cursor, kByA, 9), QStringLiteral("9,5"));
        EXPECT_EQ(found(cursor, kByA, 7), QString());
    }
}

TEST_F(TwoKeys, TheSameNumberInAnotherIndexIsAnotherKey)
{
    PendingError errors;
    const TableBinding binding(table(), errors);
    TableCursor cursor(binding);
    EXPECT_EQ(found(cursor, kByA, 5), QStringLiteral("5,1"));
    EXPECT_EQ(found(cursor, kByB, 5), QStringLiteral("9,5"));
    EXPECT_EQ(found(cursor, kByA, 5), QStringLiteral("5,1"));
}

TEST_F(TwoKeys, EachRowWalkedHasItsOwnValuesHoweverOftenTheyAreAskedFor)
{
    constexpr int kAll = 0;
    PendingError errors;
    const TableBinding binding(table(), errors);
    TableCursor cursor(binding);
    std::vector<std::int32_t> values;
    for (cursor.search(kAll, {}, {}); !cursor.atEnd(); cursor.next()) {
        for (const std::size_t column : {0U, 1U, 0U, 1U}) {
            values.push_back(std::get<std::int32_t>(cursor.value(column)));
        }
    }
    EXPECT_EQ(values, (std::vector<std::int32_t>{5, 1, 5, 1, 9, 5, 9, 5}));
}

TEST_F(TwoKeys, ALongValueIsReadForEachRowThatItIsAskedOf)
{
    constexpr int kAll = 0;
    jet::Table& letters = withLetters({std::u16string(5000, u'a'), std::u16string(3000, u'b')});
    PendingError errors;
    const TableBinding binding(letters, errors);
    TableCursor cursor(binding);
    cursor.search(kAll, {}, {});
    for (const std::u16string& letter : {std::u16string(5000, u'a'), std::u16string(3000, u'b')}) {
        ASSERT_FALSE(cursor.atEnd());
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(std::get<std::u16string>(cursor.value(0)), letter);
        }
        cursor.next();
    }
    EXPECT_TRUE(cursor.atEnd());
}

} // namespace
} // namespace data::test
