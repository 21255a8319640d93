// The cursor of a recordset, and changes made through it.
#include "data/support/query_rows.h"
#include "data/support/small_diary.h"

#include "jet/disk/error.h"
#include "jet/disk/file.h"
#include "runtime/run_time_error.h"
#include "support/file_content.h"

#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <functional>

namespace data::test {
namespace {

#define SQL(text) QStringLiteral(text)

int errorIn(const std::function<void()>& work)
{
    try {
        work();
    } catch (const runtime::RunTimeError& error) {
        return error.number();
    }
    return 0;
}

class RecordsetCursor : public SmallDiary
{
};

TEST_F(RecordsetCursor, ANewRecordsetStandsOnItsFirstRecord)
{
    Database database = open();
    const Recordset meals = database.openRecordset(SQL("Meals"));
    EXPECT_FALSE(meals.bof());
    EXPECT_FALSE(meals.eof());
    EXPECT_EQ(textOf(meals.value(0)), SQL("1"));
    EXPECT_EQ(meals.recordCount(), 4);
}

TEST_F(RecordsetCursor, MovesPastBothEndsAndBack)
{
    Database database = open();
    for (const QString& source :
         {SQL("Meals"), SQL("select * from Meals order by MealNo"), SQL("select MealNo + 0 from Meals")}) {
        Recordset meals = database.openRecordset(source);
        meals.movePrevious();
        EXPECT_TRUE(meals.bof());
        EXPECT_FALSE(meals.eof());
        EXPECT_EQ(errorIn([&] { meals.movePrevious(); }), 3021);
        EXPECT_EQ(errorIn([&] { static_cast<void>(meals.value(0)); }), 3021);
        meals.moveNext();
        EXPECT_EQ(textOf(meals.value(0)), SQL("1"));
        meals.moveLast();
        EXPECT_EQ(textOf(meals.value(0)), SQL("4"));
        meals.moveNext();
        EXPECT_TRUE(meals.eof());
        EXPECT_FALSE(meals.bof());
        EXPECT_EQ(errorIn([&] { meals.moveNext(); }), 3021);
        meals.movePrevious();
        EXPECT_EQ(textOf(meals.value(0)), SQL("4"));
        meals.moveFirst();
        EXPECT_EQ(textOf(meals.value(0)), SQL("1"));
    }
}

TEST_F(RecordsetCursor, MovesToARecordByItsPosition)
{
    Database database = open();
    for (const QString& source :
         {SQL("Meals"), SQL("select * from Meals order by MealNo"), SQL("select MealNo + 0 from Meals")}) {
        Recordset meals = database.openRecordset(source);
        meals.moveTo(2);
        EXPECT_EQ(textOf(meals.value(0)), SQL("3"));
        meals.moveTo(0);
        EXPECT_EQ(textOf(meals.value(0)), SQL("1"));
        meals.moveTo(3);
        EXPECT_EQ(errorIn([&] { meals.moveTo(4); }), 3021);
        EXPECT_EQ(errorIn([&] { meals.moveTo(-1); }), 3021);
        EXPECT_EQ(textOf(meals.value(0)), SQL("4")) << "a move that fails leaves the record";
    }
}

TEST_F(RecordsetCursor, OnAnEmptyResultBothEndsHoldAndNoMoveWorks)
{
    Database database = open();
    for (const QString& source :
         {SQL("select * from Meals where MealNo = -1"), SQL("select MealNo + 0 from Meals where False")}) {
        Recordset meals = database.openRecordset(source);
        EXPECT_TRUE(meals.bof());
        EXPECT_TRUE(meals.eof());
        EXPECT_EQ(meals.recordCount(), 0);
        EXPECT_EQ(errorIn([&] { meals.moveFirst(); }), 3021);
        EXPECT_EQ(errorIn([&] { meals.moveLast(); }), 3021);
        EXPECT_EQ(errorIn([&] { meals.moveNext(); }), 3021);
        EXPECT_EQ(errorIn([&] { meals.movePrevious(); }), 3021);
        EXPECT_EQ(errorIn([&] { static_cast<void>(meals.value(0)); }), 3021);
    }
}

TEST_F(RecordsetCursor, FieldsHaveNamesTypesAndSizes)
{
    Database database = open();
    const Recordset readings = database.openRecordset(SQL("BloodSugarLevels"));
    ASSERT_EQ(readings.fieldCount(), 5);
    EXPECT_EQ(readings.field(4).name, SQL("Comment"));
    EXPECT_EQ(readings.field(4).type, FieldType::Text);
    EXPECT_EQ(readings.field(4).size, 50);
    EXPECT_EQ(readings.field(SQL("READINGTIME")).type, FieldType::Date);
    EXPECT_EQ(errorIn([&] { static_cast<void>(readings.field(5)); }), 3265);
    EXPECT_EQ(errorIn([&] { static_cast<void>(readings.field(-1)); }), 3265);
    EXPECT_EQ(errorIn([&] { static_cast<void>(readings.value(SQL("Nothing"))); }), 3265);
    EXPECT_EQ(errorIn([&] { static_cast<void>(readings.positionOf(SQL("Nothing"))); }), 3265);
}

TEST_F(RecordsetCursor, UseAfterCloseIsAnInvalidObject)
{
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Meals"));
    Recordset snapshot = database.openRecordset(SQL("MealDetails"));
    meals.close();
    EXPECT_EQ(errorIn([&] { static_cast<void>(meals.eof()); }), 3420);
    EXPECT_EQ(errorIn([&] { meals.close(); }), 3420);
    database.close();
    EXPECT_EQ(errorIn([&] { static_cast<void>(snapshot.value(0)); }), 3420);
    EXPECT_EQ(errorIn([&] { static_cast<void>(database.openRecordset(SQL("Meals"))); }), 3420);
}

TEST_F(RecordsetCursor, OnlyRowsOfOneTableCanBeChanged)
{
    addQuery(QueryRows("Snacks").options(QueryRows::kAllColumns).source(u"Meals").where(u"MealDescription=4").query());
    Database database = open();
    EXPECT_TRUE(database.openRecordset(SQL("Meals")).isUpdatable());
    EXPECT_TRUE(
        database.openRecordset(SQL("select MealNo, MealTime as t from Meals order by MealTime desc")).isUpdatable());
    EXPECT_TRUE(database.openRecordset(SQL("Snacks")).isUpdatable());
    EXPECT_TRUE(database.openRecordset(SQL("select top 2 * from Snacks where MealNo > 0")).isUpdatable());
    for (const char* sql : {"select distinct MealNo from Meals", "select Count(*) from Meals", "MealDetails",
                            "select MealNo + 1 from Meals", "select * from Meals, MealContent",
                            "select MealNo from Meals union select MealNo from Meals"}) {
        Recordset fixed = database.openRecordset(QString::fromLatin1(sql));
        EXPECT_FALSE(fixed.isUpdatable()) << sql;
        EXPECT_EQ(errorIn([&] { fixed.addNew(); }), 3027) << sql;
        EXPECT_EQ(errorIn([&] { fixed.edit(); }), 3027) << sql;
    }
}

class RecordsetChange : public SmallDiary
{
};

TEST_F(RecordsetChange, ANewMealIsFoundByMovingToTheFirstRecordOfTheEmptyResult)
{
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Select * from Meals where MealNo = -999999"));
    meals.addNew();
    meals.set(SQL("MealTime"), runtime::Date{day(2024, 1, 12, 8)});
    meals.set(SQL("MealDescription"), 2);
    meals.set(SQL("insulin dosage"), SQL("11"));
    meals.update();
    EXPECT_TRUE(meals.eof());
    EXPECT_EQ(meals.recordCount(), 1);
    meals.moveFirst();
    EXPECT_EQ(textOf(meals.value(SQL("MealNo"))), SQL("5"));
    EXPECT_EQ(rows(SQL("select * from Meals where MealNo = 5")), SQL("5, 12/01/2024 08:00:00, 2, 11"));
}

TEST_F(RecordsetChange, ANewRecordJoinsAtTheEndAndTheCurrentOneStays)
{
    Database database = open();
    for (const QString& source : {SQL("MealContent"), SQL("select * from MealContent")}) {
        Recordset foods = database.openRecordset(source);
        const qsizetype before = foods.recordCount();
        foods.moveNext();
        foods.addNew();
        foods.set(SQL("MealID"), 4);
        foods.set(SQL("Quantity"), 12.5);
        foods.update();
        EXPECT_EQ(textOf(foods.value(SQL("NDB_No"))), SQL("1001"));
        EXPECT_EQ(foods.recordCount(), before + 1);
        foods.moveLast();
        EXPECT_EQ(textOf(foods.value(SQL("MealID"))), SQL("4"));
        EXPECT_EQ(textOf(foods.value(SQL("NDB_No"))), SQL("null"));
        foods.moveNext();
        foods.addNew();
        foods.update();
        EXPECT_TRUE(foods.eof());
    }
}

TEST_F(RecordsetChange, AddingToATableThatWasOnlyOpenedPutsTheRowLast)
{
    Database database = open();
    Recordset readings = database.openRecordset(SQL("BloodSugarLevels"));
    for (int i = 0; i < 3; ++i) {
        readings.addNew();
        readings.set(SQL("BloodSugerLevel"), 4.5 + i);
        readings.update();
    }
    EXPECT_EQ(readings.recordCount(), 10);
    readings.moveLast();
    EXPECT_EQ(textOf(readings.value(SQL("BloodSugerNo"))), SQL("10"));
    EXPECT_EQ(textOf(readings.value(SQL("BloodSugerLevel"))), SQL("6.5"));
}

TEST_F(RecordsetChange, AnEditChangesOnlyTheFieldsThatAreSet)
{
    Database database = open();
    Recordset readings = database.openRecordset(SQL("select * from BloodSugarLevels where BloodSugerNo = 4"));
    readings.edit();
    readings.set(SQL("BloodSugerLevel"), SQL("3.25"));
    EXPECT_EQ(textOf(readings.value(SQL("BloodSugerLevel"))), SQL("3.25"));
    readings.update();
    EXPECT_EQ(textOf(readings.value(SQL("BloodSugerLevel"))), SQL("3.25"));
    EXPECT_EQ(rows(SQL("select * from BloodSugarLevels where BloodSugerNo = 4")),
              SQL("4, 3.25, 11/01/2024 07:30:00, 1, 'It's high'"));
}

TEST_F(RecordsetChange, AChangeGivenUpLeavesNothing)
{
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Meals"));
    meals.edit();
    meals.set(SQL("MealDescription"), 3);
    meals.cancelUpdate();
    EXPECT_EQ(textOf(meals.value(SQL("MealDescription"))), SQL("1"));
    meals.edit();
    meals.set(SQL("MealDescription"), 3);
    meals.moveNext();
    EXPECT_EQ(errorIn([&] { meals.update(); }), 3020);
    EXPECT_EQ(errorIn([&] { meals.set(SQL("MealDescription"), 3); }), 3020);
    EXPECT_TRUE(rows(SQL("Meals")).startsWith(SQL("1, 10/01/2024 08:00:00, 1, 7")));
}

TEST_F(RecordsetChange, ACommentOfFiftyCharactersIsStoredWholeAndOneMoreIsRefused)
{
    Database database = open();
    Recordset readings = database.openRecordset(SQL("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    const QString fifty(50, u'x');
    readings.addNew();
    readings.set(SQL("Comment"), fifty);
    EXPECT_EQ(errorIn([&] { readings.set(SQL("Comment"), fifty + u'y'); }), 3163);
    readings.update();
    EXPECT_EQ(rows(SQL("select Comment from BloodSugarLevels where BloodSugerNo = 8")), u'\'' + fifty + u'\'');
}

TEST_F(RecordsetChange, ValuesAreConvertedAsFarAsTheFieldsTypeAllows)
{
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Meals"));
    meals.edit();
    meals.set(SQL("MealDescription"), 2.5);
    EXPECT_EQ(textOf(meals.value(SQL("MealDescription"))), SQL("2"));
    meals.set(SQL("MealTime"), SQL("13/02/2024 10:30"));
    EXPECT_EQ(textOf(meals.value(SQL("MealTime"))), SQL("13/02/2024 10:30:00"));
    EXPECT_EQ(errorIn([&] { meals.set(SQL("MealTime"), SQL("02/13/2024")); }), 13);
    EXPECT_EQ(errorIn([&] { meals.set(SQL("MealDescription"), SQL("many")); }), 13);
    EXPECT_EQ(errorIn([&] { meals.set(SQL("MealDescription"), 40000); }), 6);
    EXPECT_EQ(errorIn([&] { meals.set(SQL("Nothing"), 1); }), 3265);
    meals.cancelUpdate();

    Recordset foods = database.openRecordset(SQL("NutritionalInformation"));
    foods.edit();
    foods.set(SQL("Recipe"), 5);
    EXPECT_EQ(textOf(foods.value(SQL("Recipe"))), SQL("True"));
    EXPECT_EQ(errorIn([&] { foods.set(SQL("Recipe"), runtime::Null{}); }), 94);
    foods.set(SQL("Shrt_Desc"), 12.5);
    EXPECT_EQ(textOf(foods.value(SQL("Shrt_Desc"))), SQL("'12.5'"));
}

TEST_F(RecordsetChange, AKeyThatIsThereOrMissingIsRefusedAndNothingIsAdded)
{
    Database database = open();
    Recordset foods = database.openRecordset(SQL("Select * from NutritionalInformation where NDB_No = -999999"));
    foods.addNew();
    foods.set(SQL("NDB_No"), 1001);
    EXPECT_EQ(errorIn([&] { foods.update(); }), 3022);
    foods.cancelUpdate();
    foods.addNew();
    EXPECT_EQ(errorIn([&] { foods.update(); }), 3058);
    EXPECT_EQ(foods.recordCount(), 0);
    EXPECT_EQ(rows(SQL("select count(*) from NutritionalInformation")), SQL("4"));
}

TEST_F(RecordsetChange, TheFirstFoodsOfTheUserCountDownwardsBelowEveryOther)
{
    Database database = open();
    for (const char* expected : {"1000", "999"}) {
        const Recordset least = database.openRecordset(SQL("Min(NDB)"));
        const qint32 number = std::get<qint32>(least.value(0)) - 1;
        EXPECT_EQ(QString::number(number), QString::fromLatin1(expected));
        Recordset foods = database.openRecordset(SQL("Select * from NutritionalInformation where NDB_No = -999999"));
        foods.addNew();
        foods.set(SQL("NDB_No"), number);
        foods.update();
    }
}

TEST_F(RecordsetChange, RowsDeletedMeanwhileAreReportedAndNewOnesAreNotInTheList)
{
    Database database = open();
    Recordset foods = database.openRecordset(SQL("select * from MealContent where MealID < 3"));
    Recordset same = database.openRecordset(SQL("MealContent"));
    EXPECT_EQ(database.execute(SQL("delete from MealContent where MealID = 1")), 2);
    EXPECT_EQ(errorIn([&] { static_cast<void>(foods.value(0)); }), 3167);
    EXPECT_EQ(errorIn([&] { foods.edit(); }), 3167);
    foods.moveLast();
    EXPECT_EQ(textOf(foods.value(SQL("Quantity"))), SQL("200.0"));
    EXPECT_EQ(errorIn([&] { static_cast<void>(same.value(0)); }), 3167);
}

TEST_F(RecordsetChange, TwoRecordsetsSeeEachOthersChanges)
{
    Database database = open();
    Recordset first = database.openRecordset(SQL("Meals"));
    Recordset second = database.openRecordset(SQL("select * from Meals where MealNo = 1"));
    EXPECT_EQ(textOf(second.value(SQL("Insulin Dosage"))), SQL("7"));
    first.edit();
    first.set(SQL("Insulin Dosage"), 8);
    first.update();
    EXPECT_EQ(textOf(second.value(SQL("Insulin Dosage"))), SQL("8"));
}

TEST_F(RecordsetChange, AnEditSeesWhatAnotherConnectionMadeOfTheRecordSinceItWasRead)
{
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Meals"));
    EXPECT_EQ(textOf(meals.value(SQL("Insulin Dosage"))), SQL("7"));
    Database other = open();
    Recordset same = other.openRecordset(SQL("Meals"));
    same.edit();
    same.set(SQL("Insulin Dosage"), 8);
    same.update();
    meals.edit();
    EXPECT_EQ(textOf(meals.value(SQL("Insulin Dosage"))), SQL("8"));
    meals.cancelUpdate();
    EXPECT_EQ(other.execute(SQL("delete from Meals where MealNo = 1")), 1);
    EXPECT_EQ(errorIn([&] { meals.edit(); }), 3167);
}

TEST_F(RecordsetChange, AChangeOfTheFileByAnotherConnectionIsSeen)
{
    Database database = open();
    EXPECT_EQ(database.openRecordset(SQL("Meals")).recordCount(), 4);
    {
        Database other = open();
        other.execute(SQL("delete from Meals where MealNo = 4"));
    }
    EXPECT_EQ(database.openRecordset(SQL("Meals")).recordCount(), 3);
    addQuery(QueryRows("Late").options(QueryRows::kAllColumns).source(u"Meals").where(u"MealNo>2").query());
    EXPECT_EQ(database.openRecordset(SQL("Late")).recordCount(), 1);
}

TEST_F(RecordsetChange, ABatchIsKeptWholeOrNotAtAll)
{
    Database database = open();
    {
        Database::Batch batch(database);
        Recordset foods = database.openRecordset(SQL("MealContent"));
        foods.addNew();
        foods.set(SQL("MealID"), 77);
        foods.update();
        EXPECT_EQ(database.execute(SQL("delete from Meals")), 4);
        EXPECT_EQ(database.openRecordset(SQL("select * from MealContent where MealID = 77")).recordCount(), 1);
    }
    EXPECT_EQ(database.openRecordset(SQL("Meals")).recordCount(), 4);
    EXPECT_EQ(database.openRecordset(SQL("select * from MealContent where MealID = 77")).recordCount(), 0);
    {
        Database::Batch batch(database);
        database.execute(SQL("delete from Meals where MealNo = 1"));
        batch.commit();
    }
    EXPECT_EQ(rows(SQL("select Count(*) from Meals")), SQL("3"));
}

/// Whether another program could write to the file right now.
bool canBeWritten(const QString& path)
{
    const std::unique_ptr<jet::File> file = jet::posixFileSystem().open(path.toStdString(), jet::OpenMode::ReadWrite);
    try {
        file->lock(jet::LockLevel::Exclusive, std::chrono::milliseconds(0));
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.code(), jet::ErrorCode::Locked);
        return false;
    }
    return true;
}

TEST_F(RecordsetChange, ManyReadsAsOneHoldOffOtherProgramsUntilTheyEnd)
{
    Database database = open();
    {
        const Database::Reading reading(database);
        Recordset meals = database.openRecordset(SQL("Meals"));
        EXPECT_FALSE(canBeWritten(path()));
        meals.moveLast();
        EXPECT_EQ(textOf(meals.value(0)), SQL("4"));
        EXPECT_FALSE(canBeWritten(path())) << "between two reads";
    }
    EXPECT_TRUE(canBeWritten(path()));
    const Recordset meals = database.openRecordset(SQL("Meals"));
    EXPECT_TRUE(canBeWritten(path())) << "a recordset alone holds no lock between calls";
}

TEST_F(RecordsetChange, ManyReadsAsOneMayHaveAChangeOfTheirOwnAmongThem)
{
    Database database = open();
    const Database::Reading reading(database);
    EXPECT_EQ(database.execute(SQL("delete from Meals where MealNo = 4")), 1);
    EXPECT_EQ(database.openRecordset(SQL("Meals")).recordCount(), 3);
}

TEST_F(RecordsetChange, ClosingTheFileEndsManyReadsAsOne)
{
    Database database = open();
    const Database::Reading reading(database);
    database.close();
    EXPECT_TRUE(canBeWritten(path()));
    EXPECT_EQ(errorIn([&] { const Database::Reading another(database); }), 3420);
}

TEST_F(RecordsetChange, AnEnforcedRelationshipIsKept)
{
    jet::Relationship relationship;
    relationship.name = "MealsFoods";
    relationship.referencingTable = "MealContent";
    relationship.referencedTable = "Meals";
    relationship.columns = {{"MealID", "MealNo"}};
    relationship.enforced = true;
    engine()->createRelationship(relationship);
    Database database = open();
    EXPECT_EQ(errorIn([&] { database.execute(SQL("delete from Meals where MealNo = 1")); }), 3200);
    Recordset foods = database.openRecordset(SQL("MealContent"));
    foods.addNew();
    foods.set(SQL("MealID"), 99);
    EXPECT_EQ(errorIn([&] { foods.update(); }), 3201);
}

class DeleteStatement : public SmallDiary
{
protected:
    qsizetype deleted(const QString& sql)
    {
        Database database = open();
        return database.execute(sql);
    }
};

TEST_F(DeleteStatement, TakesTheRowsOfTheTableThatIsNamed)
{
    EXPECT_EQ(
        deleted(SQL("DELETE MealContent.* FROM MealContent INNER JOIN Meals ON MealContent.MealID = Meals.MealNo WHERE "
                    "Meals.MealDescription = 1")),
        2);
    EXPECT_EQ(rows(SQL("select count(*) from Meals")), SQL("4"));
    EXPECT_EQ(deleted(SQL("delete from Meals")), 4);
}

TEST_F(DeleteStatement, TakesRowsThroughAConditionOnOtherTables)
{
    EXPECT_EQ(
        deleted(SQL("delete * from NutritionalInformation where NDB_No not in (select NDB_No from MealContent where "
                    "MealID > 1)")),
        2);
    EXPECT_EQ(rows(SQL("select NDB_No from NutritionalInformation")), SQL("1002 | 2000"));
}

TEST_F(DeleteStatement, OfNothingTakesNothing)
{
    EXPECT_EQ(deleted(SQL("Delete * from Meals where MealNo = 99")), 0);
}

TEST_F(DeleteStatement, IsRefusedWhereItIsNotClear)
{
    EXPECT_EQ(errorIn([&] { deleted(SQL("delete * from Meals, MealContent")); }), 3128);
    EXPECT_EQ(errorIn([&] { deleted(SQL("delete * from MealDetails")); }), 3027);
    EXPECT_EQ(errorIn([&] { deleted(SQL("select * from Meals")); }), 3065);
    EXPECT_EQ(errorIn([&] { deleted(SQL("delete * from Meals where Nothing = 1")); }), 3061);
    EXPECT_EQ(errorIn([&] { deleted(SQL("delete * from Nothing")); }), 3078);
    EXPECT_EQ(errorIn([&] { deleted(SQL("delete")); }), 3075);
    EXPECT_EQ(rows(SQL("select count(*) from Meals")), SQL("4"));
}

class OpeningTheFile : public SmallDiary
{
protected:
    [[nodiscard]] runtime::RunTimeError errorFor(const QString& path) const
    {
        try {
            const Database database(path);
        } catch (const runtime::RunTimeError& error) {
            return error;
        }
        throw std::runtime_error("no error");
    }
};

TEST_F(OpeningTheFile, ThatIsNotThereSaysWhichFile)
{
    const QString missing = path() + SQL(".missing");
    EXPECT_EQ(errorFor(missing).number(), 3024);
    EXPECT_EQ(errorFor(missing).words(), SQL("Could not find file '%1'.").arg(missing));
}

TEST_F(OpeningTheFile, ThatIsNoDatabaseIsAnUnrecognisedFormat)
{
    const QString other = path() + SQL(".txt");
    writeFile(other, QByteArray(8192, 'x'));
    EXPECT_EQ(errorFor(other).number(), 3343);
    EXPECT_FALSE(errorFor(other).hint().isEmpty());
}

TEST_F(OpeningTheFile, ThatIsReadOnlyAllowsReadingAlone)
{
    QFile::setPermissions(path(), QFileDevice::ReadOwner);
    if (QFileInfo(path()).isWritable()) {
        GTEST_SKIP() << "this user may write everything";
    }
    Database database = open();
    Recordset meals = database.openRecordset(SQL("Meals"));
    EXPECT_EQ(textOf(meals.value(0)), SQL("1"));
    EXPECT_FALSE(meals.isUpdatable());
    EXPECT_EQ(errorIn([&] { meals.addNew(); }), 3027);
    EXPECT_EQ(errorIn([&] { database.execute(SQL("delete from Meals")); }), 3027);
}

TEST_F(OpeningTheFile, ShowsItsTablesAndQueriesAndIsSound)
{
    Database database = open();
    EXPECT_EQ(database.tableNames().join(u','),
              SQL("BloodSugarLevels,BloodSugarReadingTypes,MealContent,Meals,NutritionalInformation"));
    QStringList names;
    for (const Database::Query& query : database.queries()) {
        names.append(query.name);
    }
    EXPECT_EQ(names.join(u','), SQL("ExcelHistory,ExistingMeals,LastBldReading,MealDetails,Min(NDB)"));
    EXPECT_TRUE(database.check().empty());
}

} // namespace
} // namespace data::test
