#include "sqlite_copy.h"

#include "jet/database.h"

#include <filesystem>
#include <stdexcept>
#include <variant>

namespace bench {

namespace {

void check(int result, sqlite3* connection)
{
    if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
        throw std::runtime_error(sqlite3_errmsg(connection));
    }
}

void bind(sqlite3_stmt* statement, int position, const jet::Value& value)
{
    if (const auto* flag = std::get_if<bool>(&value)) {
        sqlite3_bind_int(statement, position, *flag ? 1 : 0);
    } else if (const auto* small = std::get_if<std::int16_t>(&value)) {
        sqlite3_bind_int(statement, position, *small);
    } else if (const auto* number = std::get_if<std::int32_t>(&value)) {
        sqlite3_bind_int(statement, position, *number);
    } else if (const auto* real = std::get_if<double>(&value)) {
        sqlite3_bind_double(statement, position, *real);
    } else if (const auto* date = std::get_if<jet::DateTime>(&value)) {
        sqlite3_bind_double(statement, position, date->days);
    } else if (const auto* text = std::get_if<std::u16string>(&value)) {
        sqlite3_bind_text16(statement, position, text->data(), static_cast<int>(text->size() * 2), SQLITE_TRANSIENT);
    } else {
        sqlite3_bind_null(statement, position);
    }
}

Sqlite open(const std::string& path, int flags)
{
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    Sqlite connection(opened);
    check(result, connection.get());
    return connection;
}

std::string quoted(const std::string& name)
{
    return '"' + name + '"';
}

const char* typeOf(jet::ColumnType type)
{
    switch (type) {
    case jet::ColumnType::Boolean:
    case jet::ColumnType::Byte:
    case jet::ColumnType::Integer:
    case jet::ColumnType::Long:
        return " INTEGER";
    case jet::ColumnType::Text:
    case jet::ColumnType::Memo:
        return " TEXT";
    default:
        return " REAL";
    }
}

/// Every key and index of a diary is of one column, and every key is a number.
const jet::Column& columnOf(const jet::TableDefinition& table, const jet::LogicalIndex& index)
{
    return *table.columnByNumber(table.realIndexes.at(index.realIndex).columns.front().columnNumber);
}

void makeTable(sqlite3* connection, const std::string& name, const jet::TableDefinition& table)
{
    std::string columns;
    for (const jet::Column* column : table.displayOrder()) {
        columns += (columns.empty() ? "" : ", ") + quoted(column->name) + typeOf(column->type);
        for (const jet::LogicalIndex& index : table.logicalIndexes) {
            if (index.kind == jet::LogicalIndex::Kind::PrimaryKey && &columnOf(table, index) == column) {
                columns += " PRIMARY KEY";
            }
        }
    }
    execute(connection, "CREATE TABLE " + quoted(name) + '(' + columns + ')');
    for (const jet::LogicalIndex& index : table.logicalIndexes) {
        if (index.kind == jet::LogicalIndex::Kind::Ordinary) {
            execute(connection, "CREATE INDEX " + quoted(name + ' ' + index.name) + " ON " + quoted(name) + '(' +
                                    quoted(columnOf(table, index).name) + ')');
        }
    }
}

void copyRows(sqlite3* connection, const jet::Table& table)
{
    const auto columns = table.definition().displayOrder();
    std::string places(columns.size() * 2 - 1, ',');
    for (std::size_t i = 0; i < places.size(); i += 2) {
        places[i] = '?';
    }
    const Statement insert = prepare(connection, "INSERT INTO " + quoted(table.name()) + " VALUES(" + places + ')');
    for (const auto rows = table.scan(); rows->next();) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            bind(insert.get(), static_cast<int>(i) + 1, rows->row().value(*columns[i]));
        }
        static_cast<void>(step(insert.get()));
        sqlite3_reset(insert.get());
    }
}

constexpr const char* kDurably = "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL";

/// As the diary's saved queries have them.
constexpr const char* kViews = R"(
    CREATE VIEW ExcelHistory AS
        SELECT r.BloodSugerLevel AS Mmol, r.ReadingTime AS "When", coalesce(t.Text, 'Unclassified') AS Type, r.Comment
        FROM BloodSugarLevels r LEFT JOIN BloodSugarReadingTypes t ON r.ReadingType = t.Type
        ORDER BY r.ReadingTime, r.BloodSugerNo;
    CREATE VIEW MealDetails AS
        SELECT m.MealTime AS "When",
               CASE m.MealDescription WHEN 1 THEN 'Breakfast' WHEN 2 THEN 'Lunch' WHEN 3 THEN 'Dinner'
                                      WHEN 4 THEN 'Snack' ELSE '' END AS MealType,
               m."Insulin Dosage" AS InsulinDosage, c.Quantity,
               coalesce(f.Shrt_Desc, 'Food number ' || c.NDB_No) AS "Desc", f.Energ_Kcal AS kCal,
               f.Carbohydrt AS Carb, f.Tot_Lipid AS Fat, f.Protein AS Prot
        FROM Meals m JOIN MealContent c ON m.MealNo = c.MealID
             LEFT JOIN NutritionalInformation f ON c.NDB_No = f.NDB_No
        ORDER BY m.MealTime, m.MealNo;
)";

} // namespace

void execute(sqlite3* connection, const std::string& sql)
{
    check(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), connection);
}

Statement prepare(sqlite3* connection, const std::string& sql)
{
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr), connection);
    return Statement(statement);
}

bool step(sqlite3_stmt* statement)
{
    const int result = sqlite3_step(statement);
    check(result, sqlite3_db_handle(statement));
    return result == SQLITE_ROW;
}

Sqlite copyDiary(const std::string& diary, const std::string& sqliteFile)
{
    std::filesystem::remove(sqliteFile); // the benchmark may run more than once
    Sqlite connection = open(sqliteFile, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    execute(connection.get(), kDurably);
    execute(connection.get(), "PRAGMA page_size=4096; BEGIN");
    const auto file = jet::Database::open(jet::posixFileSystem(), diary, jet::OpenMode::ReadOnly);
    for (const jet::TableEntry& entry : file->tables()) {
        if (!entry.system) {
            makeTable(connection.get(), entry.name, file->table(entry.name).definition());
            copyRows(connection.get(), file->table(entry.name));
        }
    }
    execute(connection.get(), kViews);
    execute(connection.get(), "COMMIT");
    return connection;
}

Sqlite openSqlite(const std::string& sqliteFile, Access access)
{
    if (access == Access::Read) {
        Sqlite connection = open(sqliteFile, SQLITE_OPEN_READONLY);
        execute(connection.get(), "PRAGMA cache_size=-8192"); // KiB: as many pages as the engine keeps
        return connection;
    }
    Sqlite connection = open(sqliteFile, SQLITE_OPEN_READWRITE);
    execute(connection.get(), kDurably);
    return connection;
}

} // namespace bench
