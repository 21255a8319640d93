// Any text as a statement over a small diary: it ends in rows or in a run-time error, and a statement that is not
// committed leaves the diary as it was.
//
// In the input a byte from 0x80 on stands for a word of the dialect or a name of the diary, so that a changed byte is
// often another statement and not just a misspelt one; any other byte is the character.
#include "fuzz/fuzz_driver.h"

#include "data/database.h"
#include "data/language/sql_lexer.h"
#include "fuzz/diary_template.h"
#include "runtime/run_time_error.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <span>

namespace {

using runtime::RunTimeError;

constexpr std::size_t kLongestStatement = 2000;
/// Each source multiplies the rows that a statement looks at.
constexpr int kMostSources = 4;

constexpr std::array<const char16_t*, 128> kWords{u"Select ",
                                                  u" from ",
                                                  u" where ",
                                                  u" order by ",
                                                  u" group by ",
                                                  u" having ",
                                                  u"Delete ",
                                                  u" union ",
                                                  u" union all ",
                                                  u" distinct ",
                                                  u" distinctrow ",
                                                  u" top 3 ",
                                                  u" top 50 percent ",
                                                  u" inner join ",
                                                  u" left join ",
                                                  u" right join ",
                                                  u" on ",
                                                  u" as ",
                                                  u" and ",
                                                  u" or ",
                                                  u" not ",
                                                  u" xor ",
                                                  u" eqv ",
                                                  u" imp ",
                                                  u" like ",
                                                  u" between ",
                                                  u" in (",
                                                  u" is null",
                                                  u" is not null",
                                                  u" exists (",
                                                  u" desc",
                                                  u" asc",
                                                  u" null ",
                                                  u" true ",
                                                  u" false ",
                                                  u" mod ",
                                                  u" \\ ",
                                                  u" ^ ",
                                                  u" & ",
                                                  u" <> ",
                                                  u" <= ",
                                                  u" >= ",
                                                  u" * ",
                                                  u" - ",
                                                  u" + ",
                                                  u" / ",
                                                  u" = ",
                                                  u"(",
                                                  u")",
                                                  u", ",
                                                  u".",
                                                  u"[",
                                                  u"]",
                                                  u"'",
                                                  u"\"",
                                                  u"#",
                                                  u"?",
                                                  u"!",
                                                  u";",
                                                  u" when ",
                                                  u"[when]",
                                                  u"BloodSugarLevels",
                                                  u"BloodSugerNo",
                                                  u"BloodSugerLevel",
                                                  u"ReadingTime",
                                                  u"ReadingType",
                                                  u"Comment",
                                                  u"BloodSugerReadingTypes",
                                                  u"Meals",
                                                  u"MealNo",
                                                  u"MealTime",
                                                  u"MealDescription",
                                                  u"[Insulin Dosage]",
                                                  u"MealContent",
                                                  u"MealID",
                                                  u"NDB_No",
                                                  u"Quantity",
                                                  u"NutritionalInformation",
                                                  u"Shrt_Desc",
                                                  u"Carbohydrt",
                                                  u"ExcelHistory",
                                                  u"MealDetails",
                                                  u"ExistingMeals",
                                                  u"LastBldReading",
                                                  u"Mmol",
                                                  u"Type",
                                                  u"IIf(",
                                                  u"Nz(",
                                                  u"Choose(",
                                                  u"Switch(",
                                                  u"Format(",
                                                  u"CDate(",
                                                  u"CDbl(",
                                                  u"CLng(",
                                                  u"CInt(",
                                                  u"CStr(",
                                                  u"DateAdd('d', ",
                                                  u"DateDiff('m', ",
                                                  u"DatePart('ww', ",
                                                  u"DateSerial(",
                                                  u"Now()",
                                                  u"Date()",
                                                  u"Left$(",
                                                  u"Mid(",
                                                  u"Right(",
                                                  u"InStr(",
                                                  u"Replace(",
                                                  u"String(",
                                                  u"Space(",
                                                  u"Len(",
                                                  u"Round(",
                                                  u"Int(",
                                                  u"Val(",
                                                  u"Sqr(",
                                                  u"Count(",
                                                  u"Sum(",
                                                  u"Avg(",
                                                  u"First(",
                                                  u"Last(",
                                                  u"Min(",
                                                  u"StDev(",
                                                  u"#5/3/2002#",
                                                  u"#2002-03-05 10:15#",
                                                  u"'*a[!b-d]?#'",
                                                  u"\u00DF\u00E9\U0001D11E",
                                                  u"-32768",
                                                  u"2147483648",
                                                  u"1e308"};

QString statementOf(std::span<const std::uint8_t> input)
{
    QString sql;
    for (const std::uint8_t byte : input) {
        if (byte < kWords.size()) {
            sql += QChar(char16_t{byte});
        } else {
            sql += QString::fromUtf16(kWords.at(byte - kWords.size()));
        }
    }
    return sql;
}

[[noreturn]] void fail(const char* what, const QString& sql, const QString& more = {})
{
    std::cerr << what << ": " << sql.toStdString() << "\n" << more.toStdString() << "\n";
    std::abort();
}

const DiaryTemplate& smallDiary()
{
    static const DiaryTemplate made([](TestDiary& diary) {
        diary.addReading("05/03/2002 08:15", 5.6, 1);
        diary.addReading("05/03/2002 10:15", 8.25, 3, QString("it's [high] at 50%"));
        diary.addReading("06/03/2002", 4.0, 0, QString());
        reports::addFood(diary.path(), 1001, {"BUTTER,WITH SALT", 717.0, 0.06, 81.1, 0.85});
        reports::addFood(diary.path(), -1, {"Porridge", {}, {}, {}, {}});
        reports::addMeal(diary.path(), {"05/03/2002 08:30", 1, 7, {{1001, 10.0}, {-1, 150.0}}});
        reports::addMeal(diary.path(), {"", 0, {}, {{1001, {}}}});
    });
    return made;
}

int sourcesIn(const QString& sql)
{
    static const QStringList kSources{"bloodsugarlevels", "bloodsugerreadingtypes", "meals",
                                      "mealcontent",      "nutritionalinformation", "excelhistory",
                                      "mealdetails",      "existingmeals",          "lastbldreading",
                                      "min(ndb)"};
    int count = 0;
    for (const data::Token& token : data::tokensOf(sql)) {
        if (kSources.contains(token.text.toLower())) {
            ++count;
        }
    }
    return count;
}

/// The statement was understood, and then SQLite did not understand ours: a mistake in the translation.
bool isRefusedBySqlite(const RunTimeError& error)
{
    if (error.code() != runtime::ErrorNumber::QueryTooComplex) {
        return false;
    }
    for (const char* mistake : {"syntax error", "no such", "misuse", "ambiguous", "unrecognized", "not authorized"}) {
        if (error.hint().contains(QLatin1String(mistake))) {
            return true;
        }
    }
    return false;
}

template <typename Work>
void attempt(const QString& sql, Work&& work)
{
    try {
        work();
    } catch (const RunTimeError& error) {
        if (isRefusedBySqlite(error)) {
            fail("SQLite refuses the translation", sql, error.text());
        }
    }
}

void readAll(data::Recordset rows)
{
    for (; !rows.eof(); rows.moveNext()) {
        for (int column = 0; column < rows.fieldCount(); ++column) {
            static_cast<void>(rows.field(column));
            static_cast<void>(rows.value(column));
        }
    }
}

void run(const QString& sql)
{
    data::Database diary(smallDiary().fresh());
    attempt(sql, [&] { readAll(diary.openRecordset(sql)); });
    {
        const data::Database::Batch givenUp(diary);
        attempt(sql, [&] { diary.execute(sql); });
    }
    if (diary.openRecordset(QStringLiteral("BloodSugarLevels")).recordCount() != 3) {
        fail("A statement that was given up changed the readings", sql);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > kLongestStatement) {
        return 0;
    }
    const QString sql = statementOf({data, size});
    attempt(sql, [&] {
        if (sourcesIn(sql) <= kMostSources) {
            run(sql);
        }
    });
    return 0;
}
