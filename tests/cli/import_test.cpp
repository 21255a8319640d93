// import: the readings of a meter's file.

#include "cli/quillonctl.h"
#include "support/file_content.h"
#include "support/test_diary.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class Import : public testing::Test
{
protected:
    Outcome import(const QByteArray& content, const QStringList& options = {}, const Circumstances& circumstances = {})
    {
        writeFile(meterPath(), content);
        return quillonctl(QStringList{QStringLiteral("import"), diary_.path(), meterPath()} + options, circumstances);
    }

    QString meterPath() const { return folder_.filePath(QStringLiteral("meter.csv")); }
    std::vector<std::string> readings() const
    {
        return linesOf(quillonctl({QStringLiteral("sql"), diary_.path(),
                                   QStringLiteral("select BloodSugerLevel, ReadingTime, ReadingType "
                                                  "from BloodSugarLevels order by ReadingTime")})
                           .out);
    }

    static QStringList after(const char* date) { return {QStringLiteral("--after"), QString::fromLatin1(date)}; }

    TestDiary diary_;
    QTemporaryDir folder_;
};

TEST_F(Import, AddsWhatIsLaterThanTheLatestReading)
{
    diary_.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray content = "Date, Time, mmol/l\r\n 05/03/2002, 08:15, 5.6\r\n 05/03/2002, 12:00, 6.6\r\n";
    const Outcome first = import(content);
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.out, "1 readings added\n");
    EXPECT_EQ(import(content).out, "0 readings added\n") << "the same file twice";
    EXPECT_THAT(readings(), ElementsAre("BloodSugerLevel\tReadingTime\tReadingType", "5.6\t05/03/2002 08:15:00\t1",
                                        "6.6\t05/03/2002 12:00:00\t0"));
}

TEST_F(Import, OfTheSameFileTwiceAddsNoReadingTwiceWhoseTimeHasSeconds)
{
    diary_.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray content = " 05/03/2002, 12:00:30, 6.6\n";
    EXPECT_EQ(import(content).out, "1 readings added\n");
    EXPECT_EQ(import(content).out, "0 readings added\n");
}

TEST_F(Import, AddsWhatIsLaterThanTheGivenMoment)
{
    diary_.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QByteArray content = " 03/03/2002, 08:15, 3.6\n 04/03/2002, 08:15, 4.6\n";
    EXPECT_EQ(import(content, after("03/03/2002 08:15")).out, "1 readings added\n");
    EXPECT_THAT(readings(), SizeIs(1 + 2));
}

TEST_F(Import, ReadsThePointInEveryLocale)
{
    const Outcome outcome =
        import(" 05/03/2002, 08:15, 5.600\n", after("01/01/2002"), {QStringLiteral("de_DE.UTF-8"), {}});
    EXPECT_EQ(outcome.out, "1 readings added\n") << outcome.err;
    EXPECT_THAT(readings(), testing::Contains("5.6\t05/03/2002 08:15:00\t0"));
}

TEST_F(Import, IntoAnEmptyDiaryNeedsAMoment)
{
    const QByteArray content = " 05/03/2002, 08:15, 5.6\n";
    const Outcome outcome = import(content);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err,
                AllOf(HasSubstr("The diary has no reading yet"), HasSubstr("--after \"dd/mm/yyyy hh:mm\"")));
    EXPECT_THAT(readings(), SizeIs(1));
    EXPECT_EQ(import(content, after("01/01/2002 00:00")).out, "1 readings added\n");
}

TEST_F(Import, RefusesAMomentThatIsNone)
{
    for (const char* date : {"", "31/02/2002", "yesterday", "08:00"}) {
        const Outcome outcome = import(" 05/03/2002, 08:15, 5.6\n", after(date));
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr("'" + std::string(date) + "' is no date and time"));
    }
    EXPECT_THAT(readings(), SizeIs(1));
}

TEST_F(Import, NamesTheLineThatStopsItAndKeepsWhatWasAdded)
{
    const Outcome outcome =
        import(" 05/03/2002, 08:15, 5.6\n 06/03/2002, 08:15, LO\n 07/03/2002, 08:15, 7.6\n", after("01/01/2002"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err,
                AllOf(StartsWith("quillonctl: Run-time error '13': Type mismatch"),
                      HasSubstr("at line 2, \" 06/03/2002, 08:15, LO\""), HasSubstr("Readings added before it: 1.")));
    EXPECT_THAT(readings(), SizeIs(1 + 1));
}

TEST_F(Import, AMissingFileIsNamed)
{
    diary_.addReading(QStringLiteral("05/03/2002 08:15"), 5.6, 1);
    const QString missing = folder_.filePath(QStringLiteral("missing.csv"));
    const Outcome outcome = quillonctl({QStringLiteral("import"), diary_.path(), missing});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                AllOf(StartsWith("quillonctl: Run-time error '53': File not found"), HasSubstr(missing.toStdString())));
}

TEST_F(Import, OnAFullDiskAddsNothingAndLeavesASoundDiary)
{
    QByteArray content;
    for (int day = 1; day <= 28; ++day) {
        for (int hour = 0; hour < 24; ++hour) {
            content += ' ' + QByteArray::number(day) + "/03/2002, " + QByteArray::number(hour) + ":15, 5.6\n";
        }
    }
    static const rlimit limit{static_cast<rlim_t>(QFile(diary_.path()).size()), RLIM_INFINITY};
    const Circumstances fullDisk{QStringLiteral("C.UTF-8"), [] {
                                     std::signal(SIGXFSZ, SIG_IGN);
                                     setrlimit(RLIMIT_FSIZE, &limit);
                                 }};
    const Outcome outcome = import(content, after("01/01/2002"), fullDisk);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("No reading was added. "));
    EXPECT_THAT(readings(), SizeIs(1));
    EXPECT_EQ(quillonctl({QStringLiteral("check"), diary_.path()}).out, diary_.path().toStdString() + ": sound\n");
    EXPECT_EQ(import(content, after("01/01/2002")).out, "672 readings added\n");
}

} // namespace
