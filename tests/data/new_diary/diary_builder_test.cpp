#include "data/new_diary/diary_builder.h"

#include "data/database.h"
#include "data/new_diary/foods_csv.h"
#include "runtime/run_time_error.h"
#include "support/file_content.h"

#include <QDir>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using data::createDiary;
using data::Database;
using data::NewDiary;
using data::Recordset;

constexpr double kNoon = 46347.5; // 21 November 2026 12:00

QString output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished()) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

class DiaryBuilder : public testing::Test
{
protected:
    [[nodiscard]] QString path() const { return folder_.filePath(QStringLiteral("Nutrition.mdb")); }
    [[nodiscard]] QDir folder() const { return QDir(folder_.path()); }
    data::NewDiaryContent create(const QString& foods, int days) { return createDiary({path(), foods, days}, clock_); }
    [[nodiscard]] QList<runtime::Value> column(const QString& source, const QString& field) const
    {
        QList<runtime::Value> values;
        Database database(path());
        for (Recordset rows = database.openRecordset(source); !rows.eof(); rows.moveNext()) {
            values.append(rows.value(field));
        }
        return values;
    }
    [[nodiscard]] QString text(const QString& source, const QString& field) const
    {
        return std::get<QString>(column(source, field).at(0));
    }

    /// A food table of five, as the whole one takes its time.
    [[nodiscard]] QString fewFoods() const
    {
        const QString path = folder().filePath(QStringLiteral("few.csv"));
        writeFile(path, "NDB_No,Shrt_Desc,Energ_Kcal,Protein,Tot_Lipid,Carbohydrt,Cholestrl\n"
                        "9040,\"BANANAS,RAW\",89,1.09,0.33,22.84,0\n"
                        "1009,\"CHEESE,CHEDDAR\",404,22.87,33.31,3.09,99\n"
                        "1001,\"BUTTER,WITH SALT\",717,0.85,81.11,0.06,215\n"
                        "9003,\"APPLES,RAW,WITH SKIN\",52,0.26,0.17,13.81,0\n"
                        "8020,CORN FLAKES,357,7.50,0.40,84.10,0\n");
        return path;
    }

private:
    QTemporaryDir folder_;
    runtime::FixedClock clock_{runtime::Date{kNoon}};
};

TEST_F(DiaryBuilder, ANewDiaryHasTheFiveTablesAndIsSound)
{
    create({}, 0);
    Database database(path());
    EXPECT_EQ(database.tableNames(), QStringList({"BloodSugarLevels", "BloodSugarReadingTypes", "MealContent", "Meals",
                                                  "NutritionalInformation"}));
    EXPECT_TRUE(database.check().empty());
}

TEST_F(DiaryBuilder, TheCodeListHoldsTheEightReadingTypes)
{
    create({}, 0);
    const QString types = output(QStringLiteral(MDB_EXPORT), {"-H", path(), "BloodSugarReadingTypes"});
    EXPECT_EQ(types.toStdString(), "1,\"Getting Up\"\n2,\"Meal\"\n3,\"Meal + 2\"\n4,\"Meal + 3\"\n5,\"Pre Bed\"\n"
                                   "6,\"Calibration\"\n7,\"Exercise\"\n8,\"Other\"\n");
}

TEST_F(DiaryBuilder, AnotherProgramListsTheFiveSavedQueries)
{
    create({}, 0);
    QStringList names =
        output(QStringLiteral(MDB_QUERIES), {"-L", "-1", path()}).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    names.sort();
    EXPECT_EQ(names, QStringList({"ExcelHistory", "ExistingMeals", "LastBldReading", "MealDetails", "Min(NDB)"}));
}

TEST_F(DiaryBuilder, EveryFoodOfTheTableIsThereWithItsFigures)
{
    EXPECT_EQ(create(QStringLiteral(QUILLON_FOODS), 0).foods, 8789);
    // Another program's sum over each nutrient against the sum over the table.
    const data::FoodTable foods = data::readFoods(QUILLON_FOODS);
    const QStringList lines =
        output(QStringLiteral(MDB_EXPORT), {"-H", "-d", "\t", "-Q", path(), "NutritionalInformation"})
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 8789);
    for (std::size_t nutrient = 0; nutrient < foods.nutrients.size(); ++nutrient) {
        double expected = 0;
        int expectedUnknown = 0;
        for (const data::Food& food : foods.foods) {
            expected += food.nutrients[nutrient].value_or(0);
            expectedUnknown += food.nutrients[nutrient] ? 0 : 1;
        }
        double sum = 0;
        int unknown = 0;
        for (const QString& line : lines) {
            const QString field = line.section(QLatin1Char('\t'), static_cast<qsizetype>(nutrient) + 2,
                                               static_cast<qsizetype>(nutrient) + 2);
            sum += field.toDouble();
            unknown += field.isEmpty() ? 1 : 0;
        }
        EXPECT_NEAR(sum, expected, std::abs(expected) * 1e-6) << foods.nutrients[nutrient];
        EXPECT_EQ(unknown, expectedUnknown) << foods.nutrients[nutrient];
    }
}

TEST_F(DiaryBuilder, SampleDaysEndYesterday)
{
    const data::NewDiaryContent content = create(QStringLiteral(QUILLON_FOODS), 14);
    const QList<runtime::Value> times = column(QStringLiteral("ExcelHistory"), QStringLiteral("When"));
    EXPECT_EQ(times.size(), content.readings);
    EXPECT_EQ(std::floor(std::get<runtime::Date>(times.first()).days), 46333);
    EXPECT_EQ(std::floor(std::get<runtime::Date>(times.last()).days), 46346);
    EXPECT_EQ(column(QStringLiteral("Meals"), QStringLiteral("MealNo")).size(), content.meals);
    Database database(path());
    EXPECT_TRUE(database.check().empty());
}

TEST_F(DiaryBuilder, TheHistoryShowsWhatTheBasicReportIsMadeFor)
{
    create({}, 1);
    Database database(path());
    const Recordset history = database.openRecordset(QStringLiteral("ExcelHistory"));
    ASSERT_EQ(history.fieldCount(), 4);
    EXPECT_EQ(history.field(0).name, "Mmol");
    EXPECT_EQ(history.field(1).name, "When");
    EXPECT_EQ(history.field(2).name, "Type");
    EXPECT_EQ(history.field(3).name, "Comment");
    EXPECT_EQ(history.field(1).type, data::FieldType::Date);
}

/// Adds a reading the way the windows do.
void addReading(Database& database, double level, double when, int type)
{
    Recordset rows = database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    rows.addNew();
    rows.set(QStringLiteral("BloodSugerLevel"), level);
    rows.set(QStringLiteral("ReadingTime"), runtime::Date{when});
    rows.set(QStringLiteral("ReadingType"), type);
    rows.update();
}

TEST_F(DiaryBuilder, ReadingTypeZeroAndUnknownCodesReadUnclassified)
{
    create({}, 0);
    {
        Database database(path());
        addReading(database, 5.0, kNoon, 0);
        addReading(database, 6.0, kNoon + 1, 99);
        addReading(database, 7.0, kNoon + 2, 3);
    }
    const QList<runtime::Value> types = column(QStringLiteral("ExcelHistory"), QStringLiteral("Type"));
    EXPECT_EQ(types, QList<runtime::Value>({QString("Unclassified"), QString("Unclassified"), QString("Meal + 2")}));
}

TEST_F(DiaryBuilder, ReadingsComeInOrderOfTimeAndEqualTimesInOrderOfEntry)
{
    create({}, 0);
    {
        Database database(path());
        addReading(database, 5.0, kNoon, 2);
        addReading(database, 6.0, kNoon - 1, 2);
        addReading(database, 4.0, kNoon, 2);
    }
    EXPECT_EQ(column(QStringLiteral("ExcelHistory"), QStringLiteral("Mmol")), QList<runtime::Value>({6.0, 5.0, 4.0}));
}

TEST_F(DiaryBuilder, TheLatestReadingAndTheSmallestFoodNumberComeFromTheirQueries)
{
    create(fewFoods(), 0);
    {
        Database database(path());
        addReading(database, 5.0, kNoon, 2);
        addReading(database, 6.0, kNoon - 1, 2);
    }
    EXPECT_EQ(column(QStringLiteral("LastBldReading"), QStringLiteral("LastReading")).at(0),
              runtime::Value(runtime::Date{kNoon}));
    Database database(path());
    EXPECT_EQ(database.openRecordset(QStringLiteral("Min(NDB)")).value(0), runtime::Value(1001));
}

/// A meal with its foods, rows added the way the meal builder does.
void addMeal(Database& database, double when, int type, const QList<std::pair<int, double>>& foods)
{
    Recordset meals = database.openRecordset(QStringLiteral("Select * from Meals where MealNo = -999999"));
    meals.addNew();
    meals.set(QStringLiteral("MealTime"), runtime::Date{when});
    meals.set(QStringLiteral("MealDescription"), type);
    meals.set(QStringLiteral("Insulin Dosage"), 6);
    meals.update();
    meals.moveFirst();
    const runtime::Value number = meals.value(QStringLiteral("MealNo"));
    Recordset content = database.openRecordset(QStringLiteral("Select * from MealContent where MealID = -999999"));
    for (const auto& [food, grams] : foods) {
        content.addNew();
        content.set(QStringLiteral("MealID"), number);
        content.set(QStringLiteral("NDB_No"), food);
        content.set(QStringLiteral("Quantity"), grams);
        content.update();
    }
}

TEST_F(DiaryBuilder, MealDetailsHasOneRowAFoodInTheOrderStored)
{
    create(fewFoods(), 0);
    {
        Database database(path());
        addMeal(database, kNoon, 2, {{9040, 110}, {1009, 30}, {9003, 150}});
        addMeal(database, kNoon - 0.25, 1, {{8020, 40}});
    }
    EXPECT_EQ(column(QStringLiteral("MealDetails"), QStringLiteral("Desc")),
              QList<runtime::Value>({QString("CORN FLAKES"), QString("BANANAS,RAW"), QString("CHEESE,CHEDDAR"),
                                     QString("APPLES,RAW,WITH SKIN")}));
    EXPECT_EQ(column(QStringLiteral("MealDetails"), QStringLiteral("Carb")),
              QList<runtime::Value>({84.10, 22.84, 3.09, 13.81}));
    EXPECT_EQ(column(QStringLiteral("MealDetails"), QStringLiteral("MealType")),
              QList<runtime::Value>({QString("Breakfast"), QString("Lunch"), QString("Lunch"), QString("Lunch")}));
}

TEST_F(DiaryBuilder, AMealKeepsALineWhoseFoodIsNotInTheTable)
{
    create({}, 0);
    {
        Database database(path());
        addMeal(database, kNoon, 0, {{4711, 80}});
    }
    EXPECT_EQ(text(QStringLiteral("MealDetails"), QStringLiteral("Desc")), "Food number 4711");
    EXPECT_EQ(text(QStringLiteral("MealDetails"), QStringLiteral("MealType")), "");
    EXPECT_TRUE(runtime::isNull(column(QStringLiteral("MealDetails"), QStringLiteral("kCal")).at(0)));
}

TEST_F(DiaryBuilder, ExistingMealsNamesTheMealsTypes)
{
    create({}, 0);
    {
        Database database(path());
        addMeal(database, kNoon, 4, {{1, 1}});
        addMeal(database, kNoon - 1, 3, {{1, 1}});
    }
    EXPECT_EQ(column(QStringLiteral("Select * from ExistingMeals order by MTime"), QStringLiteral("MDesc")),
              QList<runtime::Value>({QString("Dinner"), QString("Snack")}));
}

TEST_F(DiaryBuilder, RefusesToOverwriteAnything)
{
    writeFile(path(), "precious");
    try {
        create({}, 0);
        FAIL() << "no error";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 58);
    }
    EXPECT_EQ(contentOf(path()), "precious");
}

TEST_F(DiaryBuilder, TheJournalOfALostDiaryIsNotGivenToANewOne)
{
    const QString journal = path() + QStringLiteral("-journal");
    writeFile(journal, "of another file");
    try {
        create({}, 0);
        FAIL() << "no error";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 58);
        EXPECT_TRUE(error.hint().contains(journal)) << error.hint().toStdString();
    }
    EXPECT_EQ(contentOf(journal), "of another file");
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(DiaryBuilder, WhatAMakingThatWasCutShortHasLeftIsReplaced)
{
    writeFile(path() + QStringLiteral("-unfinished"), "half a diary");
    writeFile(path() + QStringLiteral("-unfinished-journal"), "and its journal");
    create({}, 0);
    EXPECT_EQ(folder().entryList(QDir::Files), QStringList("Nutrition.mdb"));
    EXPECT_TRUE(Database(path()).check().empty());
}

TEST_F(DiaryBuilder, WhileAnotherProgramMakesTheDiaryItIsLeftAlone)
{
    const QString unfinished = path() + QStringLiteral("-unfinished");
    writeFile(unfinished, "what the other has made so far");
    QLockFile other(unfinished + QStringLiteral(".lock"));
    ASSERT_TRUE(other.tryLock());
    try {
        create({}, 0);
        FAIL() << "no error";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3045);
        EXPECT_EQ(error.hint(), QStringLiteral("Another program is making this diary."));
    }
    EXPECT_EQ(contentOf(unfinished), "what the other has made so far");
    other.unlock();
    create({}, 0);
    EXPECT_EQ(folder().entryList(QDir::Files), QStringList("Nutrition.mdb"));
}

TEST_F(DiaryBuilder, AFaultyFoodTableLeavesNoFileBehind)
{
    const QString foods = folder().filePath(QStringLiteral("foods.csv"));
    writeFile(foods, "NDB_No,Shrt_Desc,Energ_Kcal,Protein,Tot_Lipid,Carbohydrt,Cholestrl\n1,A,1,2,3,4,many\n");
    EXPECT_THROW(create(foods, 0), runtime::RunTimeError);
    EXPECT_EQ(folder().entryList(QDir::Files), QStringList("foods.csv"));
}

TEST_F(DiaryBuilder, AFolderThatIsNotThereIsAnErrorAndNotACrash)
{
    const runtime::FixedClock clock(runtime::Date{kNoon});
    EXPECT_THROW(createDiary({folder().filePath(QStringLiteral("no/such/Nutrition.mdb")), {}, 0}, clock),
                 runtime::RunTimeError);
}

} // namespace
