#include "cli/quillonctl.h"
#include "support/file_content.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Create : public testing::Test
{
protected:
    QString path(const char* name) const { return folder_.filePath(QString::fromUtf8(name)); }

    static Outcome create(const QString& file, const QStringList& options)
    {
        return quillonctl(QStringList{QStringLiteral("create"), file} + options);
    }

    static std::vector<std::string> dump(const QString& file, const char* name)
    {
        const Outcome outcome = quillonctl({QStringLiteral("dump"), file, QString::fromLatin1(name)});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return linesOf(outcome.out);
    }

    QStringList files() const { return QDir(folder_.path()).entryList(QDir::Files); }

    QTemporaryDir folder_;
};

TEST_F(Create, MakesASoundDiaryWithTheSuppliedFoods)
{
    const QString file = path("Nutrition.mdb");
    const Outcome outcome = create(file, {});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, file.toStdString() + ": 8789 foods, 0 readings, 0 meals\n");
    EXPECT_EQ(quillonctl({QStringLiteral("check"), file}).out, file.toStdString() + ": sound\n");
    EXPECT_EQ(dump(file, "NutritionalInformation").size(), 1U + 8789U);
    EXPECT_EQ(dump(file, "BloodSugarLevels").size(), 1U);
}

TEST_F(Create, MakesADiaryWithoutFoods)
{
    const QString file = path("Nutrition.mdb");
    EXPECT_EQ(create(file, {QStringLiteral("--no-foods")}).status, 0);
    EXPECT_EQ(dump(file, "NutritionalInformation").size(), 1U);
    EXPECT_EQ(dump(file, "BloodSugarReadingTypes").size(), 1U + 8U);
}

TEST_F(Create, FillsInAnotherFoodTable)
{
    writeFile(path("foods.csv"), "NDB_No,Shrt_Desc,Energ_Kcal,Carbohydrt,Tot_Lipid,Protein,Cholestrl,GmWt_1,GmWt_Desc1,"
                                 "GmWt_2,GmWt_Desc2,Refuse_Pct\n"
                                 "7,\"PORRIDGE, OATS\",71,12,1.5,2.5,0,234,1 cup,,,0\n");
    const QString file = path("Nutrition.mdb");
    const Outcome outcome = create(file, {QStringLiteral("--foods"), path("foods.csv")});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const Outcome foods =
        quillonctl({QStringLiteral("sql"), file,
                    QStringLiteral("select NDB_No, Shrt_Desc, Tot_Lipid, GmWt_2 from NutritionalInformation")});
    EXPECT_EQ(foods.out, "NDB_No\tShrt_Desc\tTot_Lipid\tGmWt_2\n7\tPORRIDGE, OATS\t1.5\t\n");
}

TEST_F(Create, RefusesToOverwrite)
{
    const QString file = path("Nutrition.mdb");
    writeFile(file, "not to be lost");
    const Outcome outcome = create(file, {QStringLiteral("--no-foods")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '58': "));
    EXPECT_EQ(contentOf(file), "not to be lost");
}

TEST_F(Create, LeavesNothingBehindWhenTheFoodTableIsMissing)
{
    const Outcome outcome = create(path("Nutrition.mdb"), {QStringLiteral("--foods"), path("missing.csv")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("Run-time error '53'"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Create, LeavesNothingBehindWhenTheFoodTableIsWrong)
{
    writeFile(path("foods.csv"), "NDB_No,Shrt_Desc\n7\n");
    EXPECT_EQ(create(path("Nutrition.mdb"), {QStringLiteral("--foods"), path("foods.csv")}).status, 1);
    EXPECT_EQ(files(), QStringList(QStringLiteral("foods.csv")));
}

TEST_F(Create, AFolderThatIsNotThereIsAFault)
{
    const Outcome outcome = create(path("no/such/Nutrition.mdb"), {QStringLiteral("--no-foods")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '"));
}

TEST_F(Create, SampleDaysEndYesterday)
{
    const QString file = path("Nutrition.mdb");
    const QDate today = QDate::currentDate();
    const Outcome outcome = create(file, {QStringLiteral("--sample"), QStringLiteral("5")});
    ASSERT_EQ(outcome.status, 0) << outcome.err;

    std::set<std::string> days;
    std::set<std::string> types;
    const std::vector<std::string> readings = dump(file, "BloodSugarLevels");
    for (std::size_t line = 1; line < readings.size(); ++line) {
        const QStringList columns = QString::fromStdString(readings[line]).split(u'\t');
        ASSERT_EQ(columns.size(), 5);
        days.insert(columns[2].left(10).toStdString());
        types.insert(columns[3].toStdString());
    }
    EXPECT_EQ(days.size(), 5U);
    for (const std::string& type : types) {
        EXPECT_THAT(type, testing::MatchesRegex("[1-6]"));
    }
    // The clock may have passed midnight meanwhile.
    const auto hasDay = [&](const QDate& day) {
        return days.count(day.toString(QStringLiteral("dd/MM/yyyy")).toStdString()) == 1;
    };
    EXPECT_TRUE(hasDay(today.addDays(-1)) || hasDay(QDate::currentDate().addDays(-1)));
    EXPECT_TRUE(hasDay(today.addDays(-5)) || hasDay(QDate::currentDate().addDays(-5)));
    EXPECT_GT(dump(file, "Meals").size(), 5U);
    EXPECT_GT(dump(file, "MealContent").size(), 5U);
    EXPECT_EQ(quillonctl({QStringLiteral("check"), file}).status, 0);
}

TEST_F(Create, SampleDaysAreTheSameOnTheSameDay)
{
    QDate day;
    std::vector<std::string> histories[2];
    do { // again if midnight came between
        day = QDate::currentDate();
        for (auto& history : histories) {
            QFile::remove(path("Nutrition.mdb"));
            ASSERT_EQ(create(path("Nutrition.mdb"), {QStringLiteral("--sample"), QStringLiteral("2")}).status, 0);
            history = dump(path("Nutrition.mdb"), "ExcelHistory");
        }
    } while (day != QDate::currentDate());
    EXPECT_EQ(histories[0], histories[1]);
}

} // namespace
