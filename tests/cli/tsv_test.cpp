#include "cli/tsv.h"

#include "cli/output.h"
#include "runtime/run_time_error.h"
#include "support/test_diary.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <filesystem>

namespace cli {
namespace {

using data::FieldType;

std::string shown(const runtime::Value& value, FieldType type)
{
    return column(value, type).toStdString();
}

TEST(Tsv, EscapesWhatWouldBreakALine)
{
    EXPECT_EQ(escaped(QStringLiteral("a\tb\nc\rd\\e")).toStdString(), "a\\tb\\nc\\rd\\\\e");
    EXPECT_EQ(escaped(QStringLiteral("Caf\u00e9 \"x\", y")).toStdString(), "Caf\u00e9 \"x\", y");
    EXPECT_EQ(shown(QStringLiteral("\\n"), FieldType::Text), "\\\\n") << "not to be taken for a line feed";
}

TEST(Tsv, ANumberIsTheShortestThatReadsBackInEveryLocale)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(shown(5.6, FieldType::Double), "5.6");
    EXPECT_EQ(shown(0.1 + 0.2, FieldType::Double), "0.30000000000000004");
    EXPECT_EQ(shown(12.0, FieldType::Double), "12");
    EXPECT_EQ(shown(-1234567.25, FieldType::Currency), "-1234567.25");
    EXPECT_EQ(shown(static_cast<double>(0.1F), FieldType::Single), "0.1");
    EXPECT_EQ(shown(qint32{-7}, FieldType::Long), "-7");
    QLocale::setDefault(QLocale::c());
}

TEST(Tsv, ADateHasItsTimeAlsoAtMidnight)
{
    EXPECT_EQ(shown(runtime::Date{37320}, FieldType::Date), "05/03/2002 00:00:00");
    EXPECT_EQ(shown(runtime::Date{37320.75}, FieldType::Date), "05/03/2002 18:00:00");
    EXPECT_EQ(shown(runtime::Date{1e9}, FieldType::Date), "1e+09") << "no such day";
}

TEST(Tsv, OtherValues)
{
    EXPECT_EQ(shown(runtime::Null{}, FieldType::Double), "");
    EXPECT_EQ(shown(true, FieldType::Boolean), "True");
    EXPECT_EQ(shown(false, FieldType::Boolean), "False");
    EXPECT_EQ(shown(QByteArray("\x01\xfe", 2), FieldType::Binary), "01fe");
}

TEST(Tsv, RecordsBeforeOneThatCannotBeReadAreWritten)
{
    TestDiary diary;
    for (const double level : {4.5, 5.5, 6.5}) {
        diary.addReading(QStringLiteral("05/03/2002 07:30"), level, 1);
    }
    data::Database database(diary.path());
    data::Recordset readings = database.openRecordset(QStringLiteral("select BloodSugerLevel from BloodSugarLevels"));
    data::Database(diary.path()).execute(QStringLiteral("Delete * from BloodSugarLevels where BloodSugerLevel = 6.5"));

    Output output;
    testing::internal::CaptureStdout();
    EXPECT_THROW(writeRecords(database, readings, output), runtime::RunTimeError);
    output.flush();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "BloodSugerLevel\n4.5\n5.5\n");
}

TEST(Tsv, ComputedRecordsAreWrittenAlsoWhenTheFileIsReplacedMeanwhile)
{
    TestDiary diary;
    diary.addReading(QStringLiteral("05/03/2002 07:30"), 4.5, 1);
    diary.addReading(QStringLiteral("05/03/2002 12:30"), 5.5, 2);
    data::Database database(diary.path());
    data::Recordset levels =
        database.openRecordset(QStringLiteral("select BloodSugerLevel + 1 as Level from BloodSugarLevels"));
    const std::string path = diary.path().toStdString();
    std::filesystem::copy_file(path, path + ".new");
    std::filesystem::rename(path + ".new", path);

    Output output;
    testing::internal::CaptureStdout();
    writeRecords(database, levels, output);
    output.flush();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Level\n5.5\n6.5\n");
}

} // namespace
} // namespace cli
