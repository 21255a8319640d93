#include "cli/quillonctl.h"
#include "printing/pdf_reading.h"
#include "support/file_content.h"
#include "support/test_diary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class PrintCommand : public testing::Test
{
protected:
    Outcome printTo(const QString& pdf, const char* names, const char* options = "",
                    const Circumstances& circumstances = {}) const
    {
        return quillonctl(QStringList{QStringLiteral("print"), diary_.path(), QString::fromLatin1(names),
                                      QStringLiteral("--pdf"), pdf} +
                              QString::fromLatin1(options).split(u' ', Qt::SkipEmptyParts),
                          circumstances);
    }

    Outcome print(const char* names, const char* options = "", const Circumstances& circumstances = {}) const
    {
        return printTo(pdf_, names, options, circumstances);
    }

    void addThreeReadings()
    {
        diary_.addReading(QStringLiteral("05/03/2002 07:15"), 3.9, 1);
        diary_.addReading(QStringLiteral("06/03/2002 12:30"), 8, 2, QStringLiteral("soup"));
        diary_.addReading(QStringLiteral("07/03/2002 18:00"), 12.25, 2);
    }

    /// The lines of a printed page, from 1, a blank between words.
    std::vector<std::string> linesOfPage(int page) const
    {
        std::vector<std::string> lines;
        const QStringList printed = pdf_reading::lines(pdf_).at(page - 1);
        for (const QString& line : printed) {
            lines.push_back(line.simplified().toStdString());
        }
        return lines;
    }

    QStringList files() const
    {
        return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    TestDiary diary_;
    QTemporaryDir folder_;
    QString pdf_ = folder_.filePath(QStringLiteral("week.pdf"));
};

constexpr const char* kHeading = "Mmol When Type Comment";

TEST_F(PrintCommand, PrintsTheLinesOfTheReportAndTheNumberOfThePage)
{
    addThreeReadings();
    const Outcome outcome = print("basic");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    const pdf_reading::Info info = pdf_reading::info(pdf_);
    EXPECT_EQ(info.pages, 1);
    EXPECT_EQ(info.title, QStringLiteral("Basic Blood Sugar Data"));
    EXPECT_THAT(linesOfPage(1),
                ElementsAre(kHeading, "03.9 05/03/2002 07:15:00 Getting Up", "08.0 06/03/2002 12:30:00 Meal soup",
                            "12.3 07/03/2002 18:00:00 Meal", "Page - 1"));
}

TEST_F(PrintCommand, ColumnsStandAtTheReportsPrintPositions)
{
    addThreeReadings();
    print("basic");
    const QList<pdf_reading::Word> words = pdf_reading::words(pdf_);
    const auto left = [&](const char* text) {
        const auto found = std::find_if(words.begin(), words.end(), [&](const pdf_reading::Word& word) {
            return word.text == QString::fromLatin1(text);
        });
        return found == words.end() ? -1 : found->box.left();
    };
    // Measured from the first column, which is at 1000 twips; a point is 20 twips.
    EXPECT_NEAR(left("When") - left("Mmol"), (2000 - 1000) / 20, 1);
    EXPECT_NEAR(left("Type") - left("Mmol"), (4000 - 1000) / 20, 1);
    EXPECT_NEAR(left("soup") - left("Mmol"), (5500 - 1000) / 20, 1);
}

TEST_F(PrintCommand, ReadingsHaveTheirColours)
{
    addThreeReadings();
    print("basic");
    const QImage page = pdf_reading::image(pdf_, 1, 100);
    const auto has = [&](QRgb colour) {
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                if (page.pixel(x, y) == colour) {
                    return true;
                }
            }
        }
        return false;
    };
    EXPECT_TRUE(has(qRgb(255, 0, 0)));
    EXPECT_TRUE(has(qRgb(0, 0, 255)));
    EXPECT_TRUE(has(qRgb(0, 255, 0)));
}

TEST_F(PrintCommand, APageThatFollowsHasTheHeading)
{
    for (int reading = 0; reading < 100; ++reading) {
        diary_.addReading(QStringLiteral("%1/%2/2002 07:15").arg(reading % 28 + 1).arg(reading / 28 + 1), 5, 1);
    }
    print("basic");
    ASSERT_GE(pdf_reading::info(pdf_).pages, 2);
    EXPECT_EQ(linesOfPage(1).back(), "Page - 1");
    EXPECT_EQ(linesOfPage(2).at(0), "All Blood Sugar Readings");
    EXPECT_EQ(linesOfPage(2).at(1), diary_.path().toStdString());
    EXPECT_THAT(linesOfPage(2).at(2), StartsWith("Printed - "));
}

TEST_F(PrintCommand, FromAndToFilterStrictly)
{
    addThreeReadings();
    print("basic", "--from 06/03/2002 --to 07/03/2002");
    EXPECT_THAT(linesOfPage(1), ElementsAre(kHeading, StartsWith("08.0"), "Page - 1"));
}

TEST_F(PrintCommand, SeveralReportsArePrintedAsTheyStandInOneWindow)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:15"), 5, 1);
    diary_.addReading(QStringLiteral("06/03/2002 07:15"), 7, 1);
    EXPECT_EQ(print("basic,stats", "--from 05/03/2002 --to 07/03/2002").status, 0);
    EXPECT_EQ(pdf_reading::info(pdf_).title, QStringLiteral("Basic Blood Sugar Data, Stats"));
    const std::vector<std::string> lines = linesOfPage(1);
    EXPECT_EQ(lines.at(0), kHeading);
    EXPECT_EQ(lines.at(3), "Statistics for 05/03/2002 to 07/03/2002");
}

TEST_F(PrintCommand, WhatAFailedReportHasLeftIsPrinted)
{
    const Outcome outcome = print("basic");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '3021': No current record. The diary holds no"));
    EXPECT_THAT(linesOfPage(1), ElementsAre(kHeading, "Page - 1"));
}

TEST_F(PrintCommand, AFailedReportEndsTheRunUnlessItKeepsGoing)
{
    EXPECT_EQ(linesOf(print("basic,basic").err).size(), 1U);
    const Outcome keptGoing = print("basic,basic", "--keep-going");
    EXPECT_EQ(keptGoing.status, 1);
    EXPECT_EQ(linesOf(keptGoing.err).size(), 2U);
}

TEST_F(PrintCommand, AReportThatFailsBeforeItsFirstLineLeavesNothingToPrint)
{
    const Outcome outcome = quillonctl({QStringLiteral("print"), diary_.path() + QStringLiteral(".missing"),
                                        QStringLiteral("basic"), QStringLiteral("--pdf"), pdf_});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '3024'"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(PrintCommand, StatisticsAloneHaveNoPrintPositions)
{
    addThreeReadings();
    const Outcome outcome = print("stats");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '9': Subscript out of range. No report has set"));
    EXPECT_THAT(files(), IsEmpty());
}

// The file

TEST_F(PrintCommand, AnOlderFileIsReplaced)
{
    addThreeReadings();
    writeFile(pdf_, "old");
    EXPECT_EQ(print("basic").status, 0);
    EXPECT_EQ(linesOfPage(1).back(), "Page - 1");
    EXPECT_THAT(files(), ElementsAre(QStringLiteral("week.pdf")));
}

TEST_F(PrintCommand, AFileThatCannotBeMadeIsNamed)
{
    addThreeReadings();
    writeFile(pdf_, "no folder");
    for (const QString& path :
         {folder_.filePath(QStringLiteral("missing/week.pdf")), pdf_ + QStringLiteral("/w.pdf"), folder_.path()}) {
        const Outcome outcome = printTo(path, "basic");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '482': Printer error. "));
        EXPECT_THAT(outcome.err, HasSubstr(path.toStdString()));
    }
    EXPECT_THAT(files(), ElementsAre(QStringLiteral("week.pdf")));
}

TEST_F(PrintCommand, OnAFullDiskAnOlderFileStaysAndNoHalfOneAppears)
{
    addThreeReadings();
    writeFile(pdf_, "old");
    const Outcome outcome = print("basic", "", {QStringLiteral("C.UTF-8"), [] {
                                                    std::signal(SIGXFSZ, SIG_IGN);
                                                    const rlimit limit{1000, 1000};
                                                    setrlimit(RLIMIT_FSIZE, &limit);
                                                }});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillonctl: Run-time error '482': Printer error. "));
    EXPECT_EQ(contentOf(pdf_), QByteArray("old"));
    EXPECT_THAT(files(), ElementsAre(QStringLiteral("week.pdf")));
}

TEST_F(PrintCommand, TheDiaryItselfIsNoFileToPrintTo)
{
    addThreeReadings();
    const QByteArray before = contentOf(diary_.path());
    ASSERT_TRUE(QFile::link(diary_.path(), pdf_));
    for (const QString& path : {diary_.path(), pdf_}) {
        const Outcome outcome = printTo(path, "basic");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr("--pdf names the diary itself."));
    }
    EXPECT_EQ(contentOf(diary_.path()), before);
}

TEST_F(PrintCommand, WhatIsThereAndIsNoPdfIsNeverReplaced)
{
    addThreeReadings();
    const QString copy = folder_.filePath(QStringLiteral("Nutrition 2002-03-07.mdb"));
    ASSERT_TRUE(QFile::copy(diary_.path(), copy));
    const QString pipe = folder_.filePath(QStringLiteral("pipe.pdf"));
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), S_IRUSR | S_IWUSR), 0);
    for (const QString& path : {copy, pipe}) {
        const Outcome outcome = printTo(path, "basic");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr("'" + path.toStdString() + "', which is there and is no PDF file"));
    }
    EXPECT_EQ(contentOf(copy), contentOf(diary_.path()));
    EXPECT_FALSE(QFileInfo(pipe).isFile());
}

TEST_F(PrintCommand, APdfOfAnotherNameAndAnEmptyFileAreReplaced)
{
    addThreeReadings();
    const QString week = folder_.filePath(QStringLiteral("week"));
    QFile empty(week);
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_EQ(printTo(week, "basic").status, 0);
    EXPECT_EQ(printTo(week, "basic").status, 0);
    EXPECT_TRUE(contentOf(week).startsWith("%PDF-"));
}

} // namespace
