// The search for a food, as the meal window runs it for each text that is searched for.

#include "bench_diaries.h"
#include "comparison_rows.h"
#include "read_records.h"
#include "sqlite_copy.h"

#include "meals/food.h"
#include "reports/shown_description.h"

#include <array>
#include <map>
#include <stdexcept>

namespace bench {

namespace {

constexpr int kDays = 30;
constexpr std::array kTexts{"che", "chee", "chees", "cheese"};

using Foods = std::map<qint32, QString>; ///< by number: a table of SQLite keeps no order of entry

Foods found(const QString& diary, const char* text)
{
    Foods foods;
    for (const meals::FoundFood& food : meals::searchFoods(diary, QString::fromLatin1(text))) {
        foods[food.number] = food.description;
    }
    return foods;
}

std::string statement(const char* text)
{
    return "SELECT NDB_No, Shrt_Desc FROM NutritionalInformation WHERE Shrt_Desc LIKE '%" + std::string(text) + "%'";
}

/// With the descriptions as they are shown.
Foods foundBySqlite(const std::string& copy, const char* text)
{
    const Sqlite connection = openSqlite(copy);
    Foods foods;
    const Statement rows = prepare(connection.get(), statement(text));
    while (step(rows.get())) {
        const auto* description = reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), 1));
        foods[sqlite3_column_int(rows.get(), 0)] = reports::shownDescription(QString::fromUtf8(description));
    }
    return foods;
}

} // namespace

void compareFoodSearch(ComparisonTable& table)
{
    const QString diary = QString::fromStdString(diaries().ofDays(kDays));
    const std::string copy = diaries().sqliteOfDays(kDays);
    std::size_t rows = 0;
    for (const char* text : kTexts) {
        const Foods foods = found(diary, text);
        if (foods.empty() || foods != foundBySqlite(copy, text)) {
            throw std::runtime_error(std::string("food search: different foods for ") + text);
        }
        rows += foods.size();
    }

    Untouched taker;
    table.add({.what = "food search, four texts of a word",
               .ours =
                   [&] {
                       return processorTimeOf([&] {
                           for (const char* text : kTexts) {
                               benchmark::DoNotOptimize(meals::searchFoods(diary, QString::fromLatin1(text)));
                           }
                       });
                   },
               .theirs =
                   [&] {
                       return processorTimeOf([&] {
                           for (const char* text : kTexts) {
                               readRecords(openSqlite(copy).get(), statement(text), taker);
                           }
                       });
                   },
               .mostRatio = {},
               .note = "\"che\" to \"cheese\" among 8,789 foods, " + std::to_string(rows) +
                       " found in all; each step opens the file, as the window does"});
}

} // namespace bench
