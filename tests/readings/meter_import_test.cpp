#include "readings/meter_import.h"

#include "data/before_change.h"
#include "data/database.h"
#include "readings/stored_readings.h"
#include "readings/text_lines.h"
#include "runtime/conversions.h"
#include "support/file_size_limit.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace readings {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const char* const kLongAgo = "01/01/2000 00:00";

class MeterImports : public testing::Test
{
protected:
    void write(const QByteArray& content) const
    {
        QFile file(meterPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    /// How many readings the content adds.
    int import(const QByteArray& content, const QString& after = QString::fromLatin1(kLongAgo)) const
    {
        write(content);
        return ImportReadings({diary.path(), meterPath, after});
    }

    /// The error of an import that must fail.
    runtime::RunTimeError errorOfImport(const QByteArray& content,
                                        const QString& after = QString::fromLatin1(kLongAgo)) const
    {
        return requiredErrorOf([&] { return import(content, after); });
    }

    /// What stopped an import, and the cut-off that goes on from there.
    std::pair<std::string, QString> stopOf(const QByteArray& content, const QString& after) const
    {
        try {
            import(content, after);
        } catch (const ImportStopped& stopped) {
            return {stopped.hint().toStdString(), stopped.goOnAfter()};
        }
        ADD_FAILURE() << "it did not stop";
        return {};
    }

    std::vector<std::string> stored() const { return storedReadings(diary.path()); }

    QTemporaryDir folder;
    QString meterPath = folder.filePath(QStringLiteral("meter.csv"));
    TestDiary diary;
};

TEST_F(MeterImports, AddEachLaterReadingAsUnclassified)
{
    EXPECT_EQ(import(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 12:00, 11\n"), 2);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "11 | 06/03/2002 12:00:00 | 0 | "));
}

TEST_F(MeterImports, AreReadByAnotherProgramToo)
{
    import(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 12:00, 11\n");
    QProcess mdbExport;
    mdbExport.start(QStringLiteral(QUILLON_MDB_EXPORT),
                    {QStringLiteral("-H"), QStringLiteral("-T"), QStringLiteral("%d/%m/%Y %H:%M:%S"), diary.path(),
                     QStringLiteral("BloodSugarLevels")});
    ASSERT_TRUE(mdbExport.waitForFinished());
    EXPECT_EQ(mdbExport.readAllStandardOutput().toStdString(),
              "1,5.6,\"05/03/2002 08:15:00\",0,\n2,11,\"06/03/2002 12:00:00\",0,\n");
}

TEST_F(MeterImports, OfTheSameFileTwiceAddEveryReadingOnce)
{
    const QByteArray content = " 05/03/2002, 08:15, 5.6\n 05/03/2002, 12:10, 7.1\n 06/03/2002, 07:59, 4.9\n";
    EXPECT_EQ(import(content), 3);
    EXPECT_EQ(import(content, latestReading(diary.path())), 0);
    EXPECT_THAT(stored(), SizeIs(3));
}

TEST_F(MeterImports, WithoutACutOffGoOnAfterTheLatestReadingToTheSecond)
{
    diary.addReading("05/03/2002 08:15:30", 5.6, 1);
    write(" 05/03/2002, 08:15:30, 5.6\n 05/03/2002, 08:15:31, 7.1\n");
    EXPECT_EQ(ImportReadings({diary.path(), meterPath, std::nullopt}), 1);
    EXPECT_EQ(ImportReadings({diary.path(), meterPath, std::nullopt}), 0);
    EXPECT_THAT(stored(), SizeIs(2));
}

TEST_F(MeterImports, WithoutACutOffAddNothingThatAnotherProgramHasJustAdded)
{
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    write(" 05/03/2002, 12:10, 7.1\n 06/03/2002, 07:59, 4.9\n");
    const MeterImport sameFile{diary.path(), meterPath, std::nullopt};
    int addedByTheOther = -1;
    const data::BeforeChange other([&](const QString&) {
        if (addedByTheOther == -1) {
            addedByTheOther = 0; // its own change is announced, too
            addedByTheOther = ImportReadings(sameFile);
        }
    });
    EXPECT_EQ(ImportReadings(sameFile), 0);
    EXPECT_EQ(addedByTheOther, 2);
    EXPECT_THAT(stored(), SizeIs(3));
}

TEST_F(MeterImports, TakeTheReadingsInAnyOrder)
{
    EXPECT_EQ(import(" 06/03/2002, 08:00, 6\n 05/03/2002, 08:00, 5\n 04/03/2002, 08:00, 4\n", "04/03/2002 12:00"), 2);
    EXPECT_THAT(stored(), ElementsAre("6 | 06/03/2002 08:00:00 | 0 | ", "5 | 05/03/2002 08:00:00 | 0 | "));
}

TEST_F(MeterImports, PassOverAReadingExactlyAtTheCutOff)
{
    EXPECT_EQ(import(" 05/03/2002, 08:14, 4\n 05/03/2002, 08:15, 5\n 05/03/2002, 08:16, 6\n", "05/03/2002 08:15"), 1);
    EXPECT_THAT(stored(), ElementsAre("6 | 05/03/2002 08:16:00 | 0 | "));
}

TEST_F(MeterImports, PassOverBlankAndHeaderLinesAnywhere)
{
    EXPECT_EQ(import("\nMeter readings of A. Person\n Date, Time, mmol/l\n\n 05/03/2002, 08:15, 5.6\n,,,\n \n"
                     " Date, Time, mmol/l\n 06/03/2002, 08:15, 6.6\n\n"),
              2);
    EXPECT_THAT(stored(), SizeIs(2));
}

TEST_F(MeterImports, DropTheFirstCharacterOfDateAndTimeWhateverItIs)
{
    EXPECT_EQ(import("\"05/03/2002,\"08:15, 5.6\nx05/03/2002,108:16, 5.7\n\xE9"
                     "05/03/2002,\xE9"
                     "08:17, 5.8\n"),
              3);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "5.7 | 05/03/2002 08:16:00 | 0 | ",
                                      "5.8 | 05/03/2002 08:17:00 | 0 | "));
}

TEST_F(MeterImports, TakeTheReadingAsItStands)
{
    EXPECT_EQ(import(" 05/03/2002, 08:15,5.6\n 05/03/2002, 08:16,  5.7 \n"), 2) << "no character of it is dropped";
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "5.7 | 05/03/2002 08:16:00 | 0 | "));
    EXPECT_EQ(errorOfImport("\"06/03/2002,\"08:15,\"5.6\n").number(), 13) << "a quotation mark is part of it";
    EXPECT_EQ(errorOfImport("\"06/03/2002,\"08:15,\"5.6\"\n").number(), 13);
    EXPECT_THAT(stored(), SizeIs(2));
}

TEST_F(MeterImports, IgnoreTheFieldsAfterTheThird)
{
    EXPECT_EQ(import(" 05/03/2002, 08:15, 5.6, mmol/l,,\"before, breakfast\"\n"), 1);
    EXPECT_EQ(import(" 06/03/2002, 08:15, 5,6\n"), 1) << "a decimal comma ends the field";
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "5 | 06/03/2002 08:15:00 | 0 | "));
}

TEST_F(MeterImports, ReadTheNumberWithAPointInEveryLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(import(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15, 5.600\n"), 2);
    QLocale::setDefault(before);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "5.6 | 06/03/2002 08:15:00 | 0 | "));
}

TEST_F(MeterImports, TakeALineWithoutATimeForMidnight)
{
    EXPECT_EQ(import(" 05/03/2002,, 5.6\n"), 1);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 | 0 | "));
}

TEST_F(MeterImports, StopWithoutACutOffAtTheFirstReading)
{
    for (const char* after : {"", "yesterday", "31/02/2002 08:00"}) {
        const runtime::RunTimeError error =
            errorOfImport("Date\n 05/03/2002, 08:15, 5.6\n", QString::fromLatin1(after));
        EXPECT_EQ(error.number(), 13);
        EXPECT_EQ(error.hint().toStdString(), "The import stopped at line 2, \" 05/03/2002, 08:15, 5.6\". The cut-off "
                                              "\"" +
                                                  std::string(after) + "\" is not a date and time. Nothing was added.");
    }
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(MeterImports, NeedNoCutOffWhereThereIsNoReading)
{
    EXPECT_EQ(import("Date, Time, mmol/l\n", ""), 0);
    EXPECT_EQ(import("", ""), 0);
}

TEST_F(MeterImports, StopAtALineWithTooFewFieldsAndKeepWhatWasAdded)
{
    for (const char* line : {" 06/03/2002", " 06/03/2002, 08:15"}) {
        const TestDiary fresh;
        write(QByteArray(" 05/03/2002, 08:15, 5.6\n") + line + "\n 07/03/2002, 08:15, 7.6\n");
        try {
            ImportReadings({fresh.path(), meterPath, QString::fromLatin1(kLongAgo)});
            ADD_FAILURE() << "no error";
        } catch (const ImportStopped& stopped) {
            EXPECT_EQ(stopped.number(), 9);
            EXPECT_EQ(stopped.hint().toStdString(),
                      "The import stopped at line 2, \"" + std::string(line) +
                          "\". It has too few fields. Readings added before it: 1. Importing again with the cut-off "
                          "05/03/2002 08:15:00 goes on from there, if the oldest readings of the file come first.");
        }
        EXPECT_THAT(storedReadings(fresh.path()), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | "));
    }
}

TEST_F(MeterImports, LookForTheReadingOnlyInALineAfterTheCutOff)
{
    EXPECT_EQ(import(" 05/03/2002, 08:15\n 05/03/2002, 08:16, none\n", "05/03/2002 12:00"), 0);
    EXPECT_EQ(errorOfImport(" 05/03/2002\n", "05/03/2002 12:00").number(), 9) << "there is no time to compare";
}

TEST_F(MeterImports, StopAtAReadingThatIsNoNumberAndKeepWhatWasAdded)
{
    for (const char* text : {" LO", "", " ", " 5.6 mmol/l", " 5 6"}) {
        const TestDiary fresh;
        write(QByteArray(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15,") + text + "\n 07/03/2002, 08:15, 7.6\n");
        EXPECT_THROW(ImportReadings({fresh.path(), meterPath, QString::fromLatin1(kLongAgo)}), ImportStopped);
        EXPECT_THAT(storedReadings(fresh.path()), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ")) << text;
    }
    const runtime::RunTimeError error = errorOfImport(" 05/03/2002, 08:15, HI\n");
    EXPECT_EQ(error.number(), 13);
    EXPECT_THAT(error.hint().toStdString(), HasSubstr("Its reading is not a number."));
    EXPECT_EQ(errorOfImport(" 05/03/2002, 08:15, 1e999\n").number(), 6);
}

TEST_F(MeterImports, StopAtAReadingThatNoNumberHolds)
{
    EXPECT_EQ(errorOfImport(" 05/03/2002, 08:15, 1e309\n").number(), 6);
    EXPECT_EQ(errorOfImport(" 05/03/2002, 08:15, nan\n").number(), 13);
    EXPECT_EQ(errorOfImport(" 05/03/2002, 08:15, -inf\n").number(), 13);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_EQ(import(" 05/03/2002, 08:15, 1e308\n 05/03/2002, 08:16, -0\n"), 2);
    EXPECT_THAT(stored(), ElementsAre("1E+308 | 05/03/2002 08:15:00 | 0 | ", "0 | 05/03/2002 08:16:00 | 0 | "));
}

TEST_F(MeterImports, PassOverDaysThatTheCalendarHasNot)
{
    EXPECT_EQ(import(" 29/02/2001, 08:15, 5.6\n 01/01/10000, 08:15, 5.6\n 31/12/0099, 08:15, 5.6\n"), 0);
    EXPECT_EQ(import(" 31/12/9999, 23:59:59, 5.6\n"), 1);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 31/12/9999 23:59:59 | 0 | "));
}

TEST_F(MeterImports, PassOverNullCharactersWhereNoReadingIs)
{
    const QByteArray nulls(10, '\0');
    EXPECT_EQ(import(" 05/03/2002, 08:15, 5.6\n" + nulls + "\n 06/03/2002, 08:15, 6.6," + nulls + "\n"), 2);
    EXPECT_EQ(errorOfImport(" 07/03/2002, 08:" + nulls + "15, 7.6\n").number(), 13);
    EXPECT_EQ(errorOfImport(" 07/03/2002, 08:15, 7" + nulls + ".6\n").number(), 13);
    EXPECT_THAT(stored(), SizeIs(2));
}

TEST_F(MeterImports, StopAtATimeThatIsNone)
{
    for (const char* time : {" 8 h", " 25:00", " \"08:15\"", " 08:15, 5.6"}) {
        const runtime::RunTimeError error = errorOfImport(QByteArray(" 05/03/2002 08:15,") + time + ", 5.6\n");
        EXPECT_EQ(error.number(), 13) << time;
        EXPECT_THAT(error.hint().toStdString(), HasSubstr("Its date and time together are not a moment.")) << time;
    }
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(MeterImports, GoOnWhereTheyStoppedOnceTheLineIsMended)
{
    const QByteArray before = " 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15, 6.6\n";
    const QByteArray after = " 08/03/2002, 08:15, 8.6\n";
    const auto [hint, goOnAfter] = stopOf(before + " 07/03/2002, 08:15, LO\n" + after, "05/03/2002 08:00");
    EXPECT_THAT(hint, HasSubstr("Readings added before it: 2. "));
    EXPECT_EQ(import(before + " 07/03/2002, 08:15, 1.1\n" + after, goOnAfter), 2);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "6.6 | 06/03/2002 08:15:00 | 0 | ",
                                      "1.1 | 07/03/2002 08:15:00 | 0 | ", "8.6 | 08/03/2002 08:15:00 | 0 | "));
}

TEST_F(MeterImports, StopWithTheSameCutOffWhenNothingWasAdded)
{
    EXPECT_EQ(stopOf(" 05/03/2002, 08:15, LO\n", "05/03/2002 08:00").second, "05/03/2002 08:00");
}

TEST_F(MeterImports, NameALongLineByItsBeginning)
{
    const runtime::RunTimeError error =
        errorOfImport(" 05/03/2002, 08:15, \x01<b>LO</b>, " + QByteArray(1000, 'x') + "\n");
    EXPECT_THAT(error.hint().toStdString(), AllOf(HasSubstr("\" 05/03/2002, 08:15,  <b>LO</b>, xxxxx"),
                                                  HasSubstr("xxx...\". "), Not(HasSubstr(std::string(60, 'x')))));
}

TEST_F(MeterImports, AddAtMostWhatSixteenBitsCount)
{
    QByteArray content;
    const double start = runtime::toDate(QStringLiteral("01/01/2001")).days;
    constexpr int kLines = 32769;
    for (int line = 0; line < kLines; ++line) {
        content += ' ' + runtime::toText(runtime::Date{start + line / 24}).toLatin1() + ", " +
                   QByteArray::number(line % 24) + ":30, 5.6\n";
    }
    const auto [hint, goOnAfter] = stopOf(content, QString::fromLatin1(kLongAgo));
    EXPECT_THAT(hint, AllOf(HasSubstr("at line 32768, "), HasSubstr("One import adds at most 32767 readings."),
                            HasSubstr("Readings added before it: 32767.")));
    EXPECT_THAT(stored(), SizeIs(32767));
    EXPECT_EQ(import(content, goOnAfter), 2) << "importing again continues";
    EXPECT_EQ(import(content, latestReading(diary.path())), 0);
    EXPECT_TRUE(data::Database(diary.path()).check().empty());
}

TEST_F(MeterImports, ReadEveryKindOfLineEnd)
{
    for (const char* end : {"\n", "\r\n", "\r"}) {
        const TestDiary fresh;
        write(QByteArray("Date") + end + " 05/03/2002, 08:15, 5.6" + end + end + " 06/03/2002, 08:15, 6.6");
        EXPECT_EQ(ImportReadings({fresh.path(), meterPath, QString::fromLatin1(kLongAgo)}), 2);
        EXPECT_THAT(storedReadings(fresh.path()),
                    ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | ", "6.6 | 06/03/2002 08:15:00 | 0 | "));
    }
}

TEST_F(MeterImports, ReadTheFirstLineBehindAMarkOfByteOrder)
{
    EXPECT_EQ(import("\xEF\xBB\xBF 05/03/2002, 08:15, 5.6\n"), 1);
    EXPECT_THAT(stored(), ElementsAre("5.6 | 05/03/2002 08:15:00 | 0 | "));
}

TEST_F(MeterImports, ReadEightBitCharactersOfBothKinds)
{
    EXPECT_EQ(import("Messger\xE4t\n 05/03/2002, 08:15, 5.6, f\xFCr\nMessger\xC3\xA4t\n"
                     " 06/03/2002, 08:15, 6.6, f\xC3\xBCr\n"),
              2);
    EXPECT_THAT(errorOfImport(" 07/03/2002, 08:15, \xE9\n").hint().toStdString(), HasSubstr(", \u00E9\"."));
    EXPECT_THAT(errorOfImport(" 07/03/2002, 08:15, \xC3\xA9\n").hint().toStdString(), HasSubstr(", \u00E9\"."));
}

TEST_F(MeterImports, RefuseSixteenBitCharacters)
{
    const QString line = QStringLiteral(" 05/03/2002, 08:15, 5.6\n");
    const QByteArray little(reinterpret_cast<const char*>(line.utf16()), 2 * line.size());
    QByteArray big = little;
    for (qsizetype i = 0; i < big.size(); i += 2) {
        std::swap(big[i], big[i + 1]);
    }
    for (const QByteArray& content : {"\xFF\xFE" + little, "\xFE\xFF" + big, little, big}) {
        const runtime::RunTimeError error = errorOfImport(content);
        EXPECT_EQ(error.number(), 321);
        EXPECT_THAT(error.hint().toStdString(), HasSubstr("Save it as plain text"));
    }
}

TEST_F(MeterImports, IgnoreTheEndOfALongLine)
{
    EXPECT_EQ(import(" 05/03/2002, 08:15, 5.6," + QByteArray(1000000, 'x') + "\n 06/03/2002, 08:15, 6.6\n"), 2);
    EXPECT_EQ(import(QByteArray(1000000, 'x') + "\n 07/03/2002, 08:15, 7.6\n"), 1);
    EXPECT_THAT(stored(), SizeIs(3));
}

TEST_F(MeterImports, NeverTakeAReadingThatALongLineCutsOff)
{
    const QByteArray start = " 05/03/2002, 08:15,";
    for (const qsizetype kept : {0, 1, 2, 3}) {
        const QByteArray blanks(TextLines::kMostBytes - start.size() - kept, ' ');
        EXPECT_EQ(errorOfImport(start + blanks + "12.5\n").number(), 9)
            << kept << " of its characters are within the bounds";
        EXPECT_EQ(errorOfImport(start + blanks + "12.5,\n").number(), 9) << kept;
    }
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_EQ(import(start + QByteArray(TextLines::kMostBytes - start.size() - 4, ' ') + "12.5\n"), 1);
    EXPECT_THAT(stored(), ElementsAre("12.5 | 05/03/2002 08:15:00 | 0 | "));
}

TEST_F(MeterImports, AreAllOrNothingOnAFullDisk)
{
    QByteArray content;
    for (int minute = 0; minute < 60; ++minute) {
        for (int hour = 0; hour < 24; ++hour) {
            content += " 05/03/2002, " + QByteArray::number(hour) + ':' +
                       QByteArray::number(minute).rightJustified(2, '0') + ", 5.6\n";
        }
    }
    import(" 04/03/2002, 08:15, 4.6\n");
    for (const char* end : {"", " 06/03/2002, 08:15, LO\n"}) {
        write(content + end);
        std::optional<FileSizeLimit> limit(QFile(diary.path()).size());
        try {
            ImportReadings({diary.path(), meterPath, QString::fromLatin1(kLongAgo)});
            ADD_FAILURE() << "no error";
        } catch (const runtime::RunTimeError& error) {
            EXPECT_THAT(error.hint().toStdString(), testing::StartsWith("No reading was added. "));
        }
        limit.reset();
        EXPECT_THAT(stored(), ElementsAre("4.6 | 04/03/2002 08:15:00 | 0 | "));
        EXPECT_TRUE(data::Database(diary.path()).check().empty());
    }
    EXPECT_EQ(import(content), 1440) << "with room on the disk";
}

/// Spoils the first leaf of each index that has several: a page of kind 4 that only a next one is linked to.
void spoilFirstLeaves(const QString& path)
{
    constexpr qint64 kPageBytes = 4096;
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    int spoiled = 0;
    for (qint64 start = 0; start < file.size(); start += kPageBytes) {
        file.seek(start);
        const QByteArray page = file.read(kPageBytes);
        const bool isFirst = page.mid(12, 4) == QByteArray(4, '\0') && page.mid(16, 4) != QByteArray(4, '\0');
        if (page.at(0) == 4 && isFirst) {
            file.seek(start + 2);
            file.write(QByteArray(2, '\xFF')); // more free bytes than a page has
            ++spoiled;
        }
    }
    ASSERT_GT(spoiled, 0);
}

TEST_F(MeterImports, AddNothingToADiaryThatShowsItselfDamagedOnTheWay)
{
    QByteArray content;
    for (int day = 1; day <= 28; ++day) {
        for (int hour = 0; hour < 24; ++hour) {
            content += QStringLiteral(" %1/02/2002, %2:00, 5.6\n").arg(day).arg(hour).toLatin1();
        }
    }
    ASSERT_EQ(import(content), 672);
    spoilFirstLeaves(diary.path());
    // The later reading goes to the last leaf of the times, which is sound, the earlier one to the first.
    const runtime::RunTimeError error = errorOfImport(" 05/03/2002, 08:15, 4.6\n 01/01/2002, 08:15, 4.7\n");
    EXPECT_EQ(error.number(), 3343);
    EXPECT_THAT(error.hint().toStdString(), testing::StartsWith("No reading was added. A page of an index "));
    EXPECT_EQ(data::Database(diary.path())
                  .openRecordset(QStringLiteral("Select Count(*) as N from BloodSugarLevels"))
                  .value(QStringLiteral("N")),
              runtime::Value(672));
}

TEST_F(MeterImports, NeedTheFileAndTheDiary)
{
    const auto errorOfPaths = [](const QString& diaryPath, const QString& meter) {
        try {
            ImportReadings({diaryPath, meter, QString::fromLatin1(kLongAgo)});
            return 0;
        } catch (const runtime::RunTimeError& error) {
            return error.number();
        }
    };
    write("");
    EXPECT_EQ(errorOfPaths(diary.path(), folder.filePath("missing.csv")), 53);
    EXPECT_EQ(errorOfPaths(diary.path(), folder.path()), 3043) << "a folder";
    EXPECT_EQ(errorOfPaths(folder.filePath("missing.mdb"), meterPath), 3024);
}

TEST(LatestReading, IsEmptyInAnEmptyDiary)
{
    EXPECT_EQ(latestReading(TestDiary().path()), "");
}

TEST(LatestReading, IsTheLatestMomentToTheMinute)
{
    TestDiary diary;
    diary.addReading("05/03/2002 08:15", 5.6, 1);
    diary.addReading("06/03/2002 07:05:30", 5.6, 1);
    diary.addReading("04/03/2002 23:15", 5.6, 1);
    EXPECT_EQ(latestReading(diary.path()), "06/03/2002 07:05");
}

} // namespace
} // namespace readings
