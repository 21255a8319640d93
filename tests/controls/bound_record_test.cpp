#include "controls/bound_record.h"

#include "runtime/conversions.h"
#include "support/file_content.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace controls {
namespace {

using runtime::RunTimeError;
using testing::ElementsAre;
using testing::IsEmpty;
using Move = BoundRecord::Move;

/// Three readings: 5.1, 5.2 and 5.3 at 08:00, 09:00 and 10:00 of 5 March 2002, their types 1, 2 and 3.
class BoundRecordTest : public testing::Test
{
protected:
    BoundRecordTest()
    {
        diary.addReading("05/03/2002 08:00", 5.1, 1, QString("one"));
        diary.addReading("05/03/2002 09:00", 5.2, 2);
        diary.addReading("05/03/2002 10:00", 5.3, 3, QString("three"));
    }

    /// Opened by the first use.
    BoundRecord& record()
    {
        if (!record_) {
            record_.emplace(diary.path(), "BloodSugarLevels");
            mmol = record_->bind("BloodSugerLevel", "Mmol");
            type = record_->bind("ReadingType", "Type");
            time = record_->bind("ReadingTime", "Time");
            comment = record_->bind("Comment", "Comments");
        }
        return *record_;
    }

    std::string texts()
    {
        record();
        QStringList all;
        for (const int column : {mmol, type, time, comment}) {
            all.append(record().text(column));
        }
        return all.join(" | ").toStdString();
    }

    void move(Move where) { EXPECT_FALSE(record().move(where)) << "refused"; }
    void store() { EXPECT_FALSE(record().store()) << "refused"; }

    /// Run-time error that an action raises, with its hint.
    template <typename Action>
    std::string errorText(const Action& action)
    {
        try {
            static_cast<void>(action());
            return "no error";
        } catch (const RunTimeError& error) {
            return error.text().toStdString();
        }
    }

    /// As another connection reads them.
    std::vector<std::string> stored()
    {
        data::Database database(diary.path());
        data::Recordset readings = database.openRecordset("BloodSugarLevels");
        std::vector<std::string> lines;
        for (; !readings.eof(); readings.moveNext()) {
            QStringList fields;
            for (const char* name : {"BloodSugerLevel", "ReadingType", "ReadingTime", "Comment"}) {
                fields.append(runtime::toText(readings.value(QLatin1String(name))));
            }
            lines.push_back(fields.join(" | ").toStdString());
        }
        return lines;
    }

    /// By another connection.
    void change(qsizetype position, const char* field, const runtime::Value& value)
    {
        data::Database database(diary.path());
        data::Recordset readings = database.openRecordset("BloodSugarLevels");
        readings.moveTo(position);
        readings.edit();
        readings.set(QLatin1String(field), value);
        readings.update();
    }
    void erase(const char* condition)
    {
        data::Database(diary.path()).execute(QStringLiteral("Delete * from BloodSugarLevels where ") + condition);
    }

    TestDiary diary;
    int mmol = 0;
    int type = 0;
    int time = 0;
    int comment = 0;

private:
    std::optional<BoundRecord> record_;
};

TEST_F(BoundRecordTest, StandsOnTheFirstRecordAndShowsItAsPlainText)
{
    EXPECT_EQ(texts(), "5.1 | 1 | 05/03/2002 08:00:00 | one");
    EXPECT_EQ(record().position(), 0);
    EXPECT_EQ(record().count(), 3);
    EXPECT_TRUE(record().isUpdatable());
}

TEST_F(BoundRecordTest, MovesInTheStoredOrder)
{
    diary.addReading("01/01/2001 00:00", 9.9, 0); // the earliest, entered last
    EXPECT_EQ(texts(), "5.1 | 1 | 05/03/2002 08:00:00 | one");
    move(Move::Next);
    EXPECT_EQ(texts(), "5.2 | 2 | 05/03/2002 09:00:00 | ");
    move(Move::Last);
    EXPECT_EQ(texts(), "9.9 | 0 | 01/01/2001 | ");
    EXPECT_EQ(record().position(), 3);
    move(Move::Previous);
    EXPECT_EQ(texts(), "5.3 | 3 | 05/03/2002 10:00:00 | three");
    move(Move::First);
    EXPECT_EQ(record().position(), 0);
    EXPECT_EQ(texts(), "5.1 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(BoundRecordTest, CanMoveOnlyWhereThereAreRecords)
{
    const auto ways = [this] {
        std::string list;
        for (const Move move : {Move::First, Move::Previous, Move::Next, Move::Last}) {
            list += record().canMove(move) ? '+' : '-';
        }
        return list;
    };
    EXPECT_EQ(ways(), "--++");
    move(Move::Next);
    EXPECT_EQ(ways(), "++++");
    move(Move::Next);
    EXPECT_EQ(ways(), "++--");
}

TEST_F(BoundRecordTest, AnEmptyTableHasNoTextsAndNowhereToGo)
{
    erase("True");
    EXPECT_TRUE(record().isEmpty());
    EXPECT_EQ(texts(), " |  |  | ");
    EXPECT_FALSE(record().canMove(Move::First));
    EXPECT_FALSE(record().canMove(Move::Last));
    store();
}

TEST_F(BoundRecordTest, WhatCannotBeOpenedOrBoundIsAnError)
{
    EXPECT_EQ(errorNumberOf([] { return BoundRecord("/nowhere/Nutrition.mdb", "BloodSugarLevels").count(); }), 3024);
    EXPECT_EQ(errorNumberOf([&] { return BoundRecord(diary.path(), "NoSuchTable").count(); }), 3078);
    EXPECT_EQ(errorNumberOf([&] { return record().bind("NoSuchField", "Nothing"); }), 3265);
}

TEST_F(BoundRecordTest, AnEditIsStoredByTheMoveToAnotherRecord)
{
    record().edit(mmol, "6.5");
    EXPECT_EQ(texts(), "6.5 | 1 | 05/03/2002 08:00:00 | one");
    EXPECT_THAT(stored()[0], "5.1 | 1 | 05/03/2002 08:00:00 | one") << "not yet";
    move(Move::Next);
    EXPECT_THAT(stored(), ElementsAre("6.5 | 1 | 05/03/2002 08:00:00 | one", "5.2 | 2 | 05/03/2002 09:00:00 | ",
                                      "5.3 | 3 | 05/03/2002 10:00:00 | three"));
}

TEST_F(BoundRecordTest, EveryFieldOfARecordCanBeEditedAtOnce)
{
    move(Move::Next);
    record().edit(mmol, "12");
    record().edit(type, "8");
    record().edit(time, "6 mar 2002 7:30");
    record().edit(comment, "after a walk");
    store();
    EXPECT_FALSE(record().isEdited());
    EXPECT_EQ(texts(), "12 | 8 | 06/03/2002 07:30:00 | after a walk") << "as it is stored now";
    EXPECT_EQ(stored()[1], "12 | 8 | 06/03/2002 07:30:00 | after a walk");
}

TEST_F(BoundRecordTest, ValuesAreConvertedWithTheDecimalSignOfTheLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(texts(), "5,1 | 1 | 05/03/2002 08:00:00 | one");
    record().edit(mmol, "6,5");
    store();
    record().edit(mmol, "6.5");
    EXPECT_TRUE(record().store()) << "a point separates groups of three digits there: this is no number";
    QLocale::setDefault(before);
    EXPECT_EQ(stored()[0], "6.5 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(BoundRecordTest, AnEmptiedTextBecomesNull)
{
    record().edit(comment, "");
    store();
    data::Database database(diary.path());
    EXPECT_TRUE(runtime::isNull(database.openRecordset("BloodSugarLevels").value("Comment")));
}

TEST_F(BoundRecordTest, MovingWithNothingChangedNeverWrites)
{
    const QByteArray before = contentOf(diary.path());
    record().edit(mmol, "6.5");
    record().edit(mmol, "5.1"); // typed back
    EXPECT_FALSE(record().isEdited());
    for (const Move where : {Move::Next, Move::Last, Move::Previous, Move::First}) {
        move(where);
    }
    store();
    EXPECT_EQ(contentOf(diary.path()), before);
}

TEST_F(BoundRecordTest, CancelTakesTheEditsOfTheRecordBack)
{
    record().edit(mmol, "6.5");
    record().edit(comment, "");
    record().cancel();
    EXPECT_FALSE(record().isEdited());
    EXPECT_EQ(texts(), "5.1 | 1 | 05/03/2002 08:00:00 | one");
    store();
    EXPECT_EQ(stored()[0], "5.1 | 1 | 05/03/2002 08:00:00 | one");
}

class Refused : public BoundRecordTest
{
protected:
    /// Edits a column and expects that storing it is refused with this text.
    void expectRefusal(int column, const QString& text, const char* error)
    {
        const std::string before = texts();
        record().edit(column, text);
        const std::optional<BoundRecord::Refusal> refusal = record().store();
        ASSERT_TRUE(refusal) << text.toStdString();
        EXPECT_EQ(refusal->column, column);
        EXPECT_EQ(refusal->error.text().toStdString(), error);
        EXPECT_EQ(texts(), before);
        EXPECT_EQ(stored()[0], before);
    }
};

TEST_F(Refused, ALevelThatIsNoNumber)
{
    const char* error = "Run-time error '13':\n\nType mismatch\n\n"
                        "Mmol must be a number such as 5.6. Nothing was stored; the old value is back.";
    record();
    expectRefusal(mmol, "five", error);
    expectRefusal(mmol, "5,6", error);
    expectRefusal(mmol, "", error);
}

TEST_F(Refused, ATypeThatIsNoWholeNumberThatTheFieldHolds)
{
    const char* hint = "Type must be a whole number such as 3. Nothing was stored; the old value is back.";
    record();
    expectRefusal(type, "Meal", ("Run-time error '13':\n\nType mismatch\n\n" + std::string(hint)).c_str());
    expectRefusal(type, "", ("Run-time error '13':\n\nType mismatch\n\n" + std::string(hint)).c_str());
    expectRefusal(type, "3000000000", ("Run-time error '6':\n\nOverflow\n\n" + std::string(hint)).c_str());
}

TEST_F(Refused, ATimeThatIsNoDate)
{
    const char* error = "Run-time error '13':\n\nType mismatch\n\nTime must be a date and time, day first, such as "
                        "31/12/2002 08:15. Nothing was stored; the old value is back.";
    record();
    expectRefusal(time, "soon", error);
    expectRefusal(time, "31/02/2002 08:00", error);
    expectRefusal(time, "03/13/2002 08:00", error);
    expectRefusal(time, "", error);
}

TEST_F(Refused, ACommentThatIsTooLong)
{
    record();
    expectRefusal(
        comment, QString(51, 'x'),
        "Run-time error '3163':\n\nThe field is too small for the data.\n\nComments must be no longer than 50 "
        "characters. Nothing was stored; the old value is back.");
    record().edit(comment, QString(50, 'x'));
    store();
    EXPECT_EQ(stored()[0], "5.1 | 1 | 05/03/2002 08:00:00 | " + std::string(50, 'x'));
}

TEST_F(Refused, NothingOfTheRecordIsStoredAndTheOtherEditsStay)
{
    record().edit(mmol, "6.5");
    record().edit(time, "soon");
    record().edit(comment, "changed");
    EXPECT_TRUE(record().move(Move::Next));
    EXPECT_EQ(record().position(), 0) << "the move did not happen";
    EXPECT_EQ(texts(), "6.5 | 1 | 05/03/2002 08:00:00 | changed");
    EXPECT_EQ(stored()[0], "5.1 | 1 | 05/03/2002 08:00:00 | one");
    move(Move::Next);
    EXPECT_EQ(stored()[0], "6.5 | 1 | 05/03/2002 08:00:00 | changed");
}

TEST_F(Refused, AllTextsThatDoNotFitAreNamedAtOnce)
{
    record().edit(time, "soon");
    record().edit(mmol, "five");
    const std::optional<BoundRecord::Refusal> refusal = record().store();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->column, mmol) << "the first box";
    EXPECT_EQ(refusal->error.hint().toStdString(),
              "Mmol must be a number such as 5.6. Time must be a date and time, day first, such as 31/12/2002 08:15. "
              "Nothing was stored; the old value is back.");
    EXPECT_FALSE(record().isEdited());
}

class Shared : public BoundRecordTest
{
};

TEST_F(Shared, NoLockIsHeldWhileTheBrowserIsOpen)
{
    record();
    diary.addReading("05/03/2002 11:00", 7.7, 4);
    change(1, "BloodSugerLevel", 8.8);
    move(Move::Next);
    EXPECT_EQ(texts(), "8.8 | 2 | 05/03/2002 09:00:00 | ") << "a record is read when it is moved to";
    change(1, "BloodSugerLevel", 9.9);
    diary.addReading("05/03/2002 12:00", 6.6, 5);
    EXPECT_THAT(stored(), testing::SizeIs(5));
}

TEST_F(Shared, OnlyChangedFieldsAreWritten)
{
    record();
    change(0, "Comment", QString("theirs"));
    record().edit(mmol, "6.5");
    move(Move::Next);
    EXPECT_EQ(stored()[0], "6.5 | 1 | 05/03/2002 08:00:00 | theirs");
}

TEST_F(Shared, AFieldThatSomebodyElseChangedIsWrittenOverOnlyWhenTheUserInsists)
{
    record().edit(mmol, "6.5");
    change(0, "BloodSugerLevel", 9.9);
    EXPECT_EQ(errorText([&] { return record().move(Move::Next); }),
              "Run-time error '3197':\n\nData has changed; operation stopped.\n\n"
              "Another program changed Mmol to \"9.9\" meanwhile. Your change is not stored yet: go on to store it all "
              "the same, or press Escape to take it back.");
    EXPECT_EQ(record().position(), 0);
    EXPECT_EQ(texts(), "6.5 | 1 | 05/03/2002 08:00:00 | one");
    EXPECT_EQ(stored()[0], "9.9 | 1 | 05/03/2002 08:00:00 | one");
    move(Move::Next);
    EXPECT_EQ(stored()[0], "6.5 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(Shared, AfterSomebodyElsesChangeCancelShowsTheirs)
{
    record().edit(mmol, "6.5");
    change(0, "BloodSugerLevel", 9.9);
    EXPECT_EQ(errorNumberOf([&] { return record().store(); }), 3197);
    record().cancel();
    EXPECT_EQ(texts(), "9.9 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(Shared, ALockedFileKeepsTheEditForTheNextTry)
{
    record().edit(mmol, "6.5");
    {
        data::Database other(diary.path());
        const data::Database::Batch changes(other);
        EXPECT_THAT(errorText([&] { return record().store(); }), testing::EndsWith(" The change was not stored."));
    }
    EXPECT_EQ(texts(), "6.5 | 1 | 05/03/2002 08:00:00 | one");
    store();
    EXPECT_EQ(stored()[0], "6.5 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(Shared, DeletedRecordsArePassedOver)
{
    diary.addReading("05/03/2002 11:00", 5.4, 4);
    record();
    erase("ReadingType = 2");
    move(Move::Next);
    EXPECT_EQ(texts(), "5.3 | 3 | 05/03/2002 10:00:00 | three");
    erase("ReadingType = 4");
    EXPECT_EQ(errorText([&] { return record().move(Move::Next); }),
              "Run-time error '3167':\n\nRecord is deleted.\n\nAnother program deleted the records there.");
    EXPECT_EQ(texts(), "5.3 | 3 | 05/03/2002 10:00:00 | three");
    move(Move::Previous);
    EXPECT_EQ(texts(), "5.1 | 1 | 05/03/2002 08:00:00 | one");
}

TEST_F(Shared, TheEditOfADeletedRecordIsReportedAndTheNextOneShown)
{
    record().edit(mmol, "6.5");
    erase("ReadingType = 1");
    EXPECT_EQ(errorText([&] { return record().move(Move::Last); }),
              "Run-time error '3167':\n\nRecord is deleted.\n\nAnother program deleted the record while you were "
              "changing it. The change could not be stored; another record is shown now.");
    EXPECT_FALSE(record().isEdited());
    EXPECT_EQ(texts(), "5.2 | 2 | 05/03/2002 09:00:00 | ");
    EXPECT_THAT(stored(), ElementsAre("5.2 | 2 | 05/03/2002 09:00:00 | ", "5.3 | 3 | 05/03/2002 10:00:00 | three"));
}

TEST_F(Shared, TheEditOfTheLastRecordWhenItIsDeletedShowsTheOneBefore)
{
    move(Move::Last);
    record().edit(mmol, "6.5");
    erase("ReadingType = 3");
    EXPECT_EQ(errorNumberOf([&] { return record().store(); }), 3167);
    EXPECT_EQ(texts(), "5.2 | 2 | 05/03/2002 09:00:00 | ");
    EXPECT_EQ(record().position(), 1);
}

TEST_F(Shared, WhenAllRecordsAreDeletedTheBrowserIsEmpty)
{
    record().edit(mmol, "6.5");
    erase("True");
    EXPECT_EQ(errorNumberOf([&] { return record().store(); }), 3167);
    EXPECT_TRUE(record().isEmpty());
    EXPECT_EQ(texts(), " |  |  | ");
    EXPECT_FALSE(record().canMove(Move::Next));
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(BoundRecordTest, AQueryOverSeveralTablesCanBeBrowsedAndNotChanged)
{
    BoundRecord history(diary.path(), "ExcelHistory");
    const int name = history.bind("Type", "Type");
    EXPECT_FALSE(history.isUpdatable());
    EXPECT_FALSE(history.move(Move::Last));
    EXPECT_EQ(history.text(name).toStdString(), "Meal + 2");
    history.edit(name, "Meal");
    EXPECT_EQ(errorNumberOf([&] { return history.store(); }), 3027);
}

TEST_F(BoundRecordTest, ATimeThatIsNoneIsMarkedAndLeftAsItIs)
{
    // Days of the year 12000, where another program's fault has put them.
    const double day = runtime::toDate(QString("05/03/2002 09:00")).days;
    const double faulty = 3700000.5;
    QByteArray bytes = contentOf(diary.path());
    const QByteArray sound(reinterpret_cast<const char*>(&day), sizeof day);
    ASSERT_GE(bytes.count(sound), 1);
    bytes.replace(sound, QByteArray(reinterpret_cast<const char*>(&faulty), sizeof faulty));
    QFile file(diary.path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_EQ(file.write(bytes), bytes.size());
    file.close();

    move(Move::Next);
    EXPECT_EQ(texts(), "5.2 | 2 | #Error | ");
    move(Move::Next);
    EXPECT_EQ(contentOf(diary.path()), bytes);
}

} // namespace
} // namespace controls
