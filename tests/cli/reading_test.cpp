// The commands that read and delete: check, tables, queries, dump, sql.

#include "cli/quillonctl.h"
#include "support/test_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Reading : public testing::Test
{
protected:
    Outcome onDiary(const char* command, const char* text = nullptr, const Circumstances& circumstances = {}) const
    {
        QStringList arguments{QString::fromLatin1(command), diary_.path()};
        if (text != nullptr) {
            arguments.append(QString::fromUtf8(text));
        }
        return quillonctl(arguments, circumstances);
    }

    TestDiary diary_;
};

TEST_F(Reading, CheckSaysThatASoundFileIsSound)
{
    const Outcome outcome = onDiary("check");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, diary_.path().toStdString() + ": sound\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Reading, TablesAreListedByName)
{
    const Outcome outcome = onDiary("tables");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(linesOf(outcome.out), ElementsAre("BloodSugarLevels", "BloodSugarReadingTypes", "MealContent", "Meals",
                                                  "NutritionalInformation"));
}

TEST_F(Reading, QueriesAreListedWithTheirSql)
{
    const Outcome outcome = onDiary("queries");
    EXPECT_EQ(outcome.status, 0);
    std::vector<std::string> names;
    for (const std::string& line : linesOf(outcome.out)) {
        const std::size_t tab = line.find('\t');
        ASSERT_NE(tab, std::string::npos) << line;
        names.push_back(line.substr(0, tab));
        EXPECT_THAT(line.substr(tab + 1), testing::ContainsRegex("^[Ss][Ee][Ll][Ee][Cc][Tt] "));
    }
    EXPECT_THAT(names, ElementsAre("ExcelHistory", "ExistingMeals", "LastBldReading", "MealDetails", "Min(NDB)"));
}

TEST_F(Reading, DumpWritesATableUnderItsColumns)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1, QStringLiteral("a\tb\\c\nd"));
    diary_.addReading(QStringLiteral("06/03/2002"), 12, 0);
    const Outcome outcome = onDiary("dump", "BloodSugarLevels");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(linesOf(outcome.out),
                ElementsAre("BloodSugerNo\tBloodSugerLevel\tReadingTime\tReadingType\tComment",
                            "1\t5.6\t05/03/2002 07:30:00\t1\ta\\tb\\\\c\\nd", "2\t12\t06/03/2002 00:00:00\t0\t"));
}

TEST_F(Reading, DumpTakesSavedQueriesAndAnyCase)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1);
    EXPECT_THAT(linesOf(onDiary("dump", "excelhistory").out),
                ElementsAre("Mmol\tWhen\tType\tComment", "5.6\t05/03/2002 07:30:00\tGetting Up\t"));
}

TEST_F(Reading, DumpOfAnEmptyTableIsItsHeaderAlone)
{
    const Outcome outcome = onDiary("dump", "MealContent");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "MealID\tNDB_No\tQuantity\n");
}

TEST_F(Reading, DumpOfAnUnknownNameIsARunTimeError)
{
    for (const char* name : {"Readings", "Select * from Meals"}) {
        const Outcome outcome = onDiary("dump", name);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '3078': ")) << name;
        EXPECT_THAT(outcome.err, HasSubstr(name));
    }
}

TEST_F(Reading, TheOutputIsUtf8InEveryLocale)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1, QStringLiteral("Caf\u00e9 \u20ac"));
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "de_DE.UTF-8"}) {
        const Outcome outcome = onDiary("dump", "ExcelHistory", {QString::fromLatin1(locale), {}});
        EXPECT_EQ(linesOf(outcome.out).at(1), "5.6\t05/03/2002 07:30:00\tGetting Up\tCaf\u00e9 \u20ac") << locale;
        EXPECT_EQ(outcome.err, "") << locale;
    }
}

TEST_F(Reading, SqlWritesWhatASelectYields)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 3.6, 1);
    diary_.addReading(QStringLiteral("05/03/2002 08:30"), 5.6, 1);
    const Outcome outcome = onDiary(
        "sql", "select count(*) as Low, max(BloodSugerLevel) as Most from BloodSugarLevels where BloodSugerLevel < 4");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Low\tMost\n1\t3.6\n");
}

TEST_F(Reading, SqlDeletesAndSaysHowManyRecordsWent)
{
    for (const char* time : {"07:00", "08:00", "09:00"}) {
        diary_.addReading(QStringLiteral("05/03/2002 ") + QString::fromLatin1(time), 5.6, 1);
    }
    EXPECT_EQ(onDiary("sql", "Delete * from BloodSugarLevels where BloodSugerNo = 2").out, "1 record deleted\n");
    EXPECT_EQ(linesOf(onDiary("dump", "BloodSugarLevels").out).size(), 3U);
    EXPECT_EQ(onDiary("sql", " DELETE from BloodSugarLevels").out, "2 records deleted\n");
    EXPECT_EQ(onDiary("sql", "delete * from BloodSugarLevels").out, "0 records deleted\n");
    EXPECT_EQ(onDiary("check").status, 0);
}

TEST_F(Reading, SqlThatIsWrongIsARunTimeError)
{
    for (const char* text : {"select from where", "select (1", "Delete * from Meals where ("}) {
        const Outcome outcome = onDiary("sql", text);
        EXPECT_EQ(outcome.status, 1) << text;
        EXPECT_EQ(outcome.out, "") << text;
        EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '")) << text;
    }
    EXPECT_THAT(onDiary("sql", "select * from Readings").err, HasSubstr("'3078'"));
    EXPECT_THAT(onDiary("sql", "Delete * from Readings").err, HasSubstr("'3078'"));
}

TEST_F(Reading, SqlChangesNothingButByDelete)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.6, 1);
    for (const char* text :
         {"insert into BloodSugarReadingTypes values (9, 'x')", "update BloodSugarLevels set BloodSugerLevel = 1",
          "drop table Meals", "pragma user_version"}) {
        EXPECT_EQ(onDiary("sql", text).status, 1) << text;
    }
    EXPECT_EQ(linesOf(onDiary("dump", "BloodSugarLevels").out).at(1), "1\t5.6\t05/03/2002 07:30:00\t1\t");
    EXPECT_EQ(linesOf(onDiary("tables").out).size(), 5U);
}

} // namespace
