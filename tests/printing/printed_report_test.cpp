// A report of several pages from its list to paper: printed as the program does, read by poppler.
#include "printing/pdf_printer.h"
#include "printing/pdf_reading.h"
#include "reports/modDisp.h"

#include <QHash>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace printing {
namespace {

constexpr double kMargin = 12 / 25.4 * 72; ///< in points of 1/72 inch
constexpr double kTwipsPerPoint = 20;
constexpr int kReadings = 300;
const QString kHeading = QStringLiteral("Blood Sugar Readings\r\nPrinted today\r\n\r\n");

/// Words without blanks, so that poppler finds a column as one word; all different.
QString whenOf(int reading)
{
    return QStringLiteral("%1-07:15:00").arg(reading, 4, 10, QLatin1Char('0'));
}

QString mmolOf(int reading)
{
    return QStringLiteral("m%1").arg(reading);
}

class PrintedReport : public testing::Test
{
protected:
    PrintedReport()
    {
        constexpr int styles[] = {reports::Red, reports::Blue, reports::Green, reports::Plain};
        for (int reading = 1; reading <= kReadings; ++reading) {
            list_.addItem(whenOf(reading) + u'\t' + mmolOf(reading), styles[reading % 4]);
        }
    }

    void print()
    {
        const auto printer = pdfPrinter(path_, QStringLiteral("Blood Sugar Readings"));
        qint16 lineCounter = 0;
        reports::PrintList(*printer, {.list = list_, .columns = {1000, 3000}, .heading = kHeading, .selectedLines = {}},
                           lineCounter);
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("report.pdf"));
    reports::ReportList list_;
};

TEST_F(PrintedReport, HoldsEachLineOnceAndInItsOrder)
{
    print();
    QStringList expected;
    for (int reading = 1; reading <= kReadings; ++reading) {
        expected.append(whenOf(reading) + u' ' + mmolOf(reading));
    }

    QStringList found;
    for (const QStringList& page : pdf_reading::lines(path_)) {
        for (const QString& line : page) {
            if (line.contains(QStringLiteral("-07:15:00"))) {
                found.append(line.simplified());
            }
        }
    }
    EXPECT_EQ(found, expected);
}

TEST_F(PrintedReport, HasItsColumnsOnEachPageAtTheirPositions)
{
    print();
    int columns = 0;
    for (const pdf_reading::Word& word : pdf_reading::words(path_)) {
        if (word.text.endsWith(QStringLiteral("-07:15:00"))) {
            EXPECT_NEAR(word.box.left(), kMargin + 1000 / kTwipsPerPoint, 0.1) << word.text.toStdString();
            EXPECT_LT(word.box.right(), kMargin + 3000 / kTwipsPerPoint);
            ++columns;
        } else if (word.text.startsWith(u'm')) {
            EXPECT_NEAR(word.box.left(), kMargin + 3000 / kTwipsPerPoint, 0.1) << word.text.toStdString();
            ++columns;
        }
    }
    EXPECT_EQ(columns, 2 * kReadings);
}

TEST_F(PrintedReport, EndsItsPagesWithTheirNumbersAndBeginsTheNextWithTheHeading)
{
    print();
    const QList<QStringList> pages = pdf_reading::lines(path_);
    ASSERT_GE(pages.size(), 3);
    EXPECT_TRUE(pages.first().first().startsWith(whenOf(1))) << "the first page has no heading";
    EXPECT_EQ(pages.first().last(), QStringLiteral("Page - 1"));
    EXPECT_EQ(pages.last().last(), QStringLiteral("Page - %1").arg(pages.size()));
    for (qsizetype page = 1; page < pages.size(); ++page) {
        // A page that runs over has no number: its last lines and the number stand on a page without a heading.
        const bool previousRanOver = !pages[page - 1].last().startsWith(QStringLiteral("Page - "));
        EXPECT_EQ(pages[page].first() == QStringLiteral("Blood Sugar Readings"), !previousRanOver) << page + 1;
        EXPECT_TRUE(!previousRanOver || pages[page].last() == QStringLiteral("Page - %1").arg(page + 1));
    }
}

TEST_F(PrintedReport, StaysWithinTheMargins)
{
    print();
    for (int page = 1; page <= pdf_reading::info(path_).pages; ++page) {
        QImage image = pdf_reading::image(path_, page, 72);
        QImage blank = image;
        blank.fill(Qt::white);
        QPainter(&image).fillRect(image.rect().adjusted(33, 33, -33, -33), Qt::white); // 12 mm are 34 points
        EXPECT_EQ(image, blank) << page;
    }
}

TEST_F(PrintedReport, HasEachLineInItsColour)
{
    print();
    const QHash<int, QRgb> colours{
        {0, qRgb(255, 0, 0)}, {1, qRgb(0, 0, 255)}, {2, qRgb(0, 255, 0)}, {3, qRgb(0, 0, 0)}};
    const QImage page = pdf_reading::image(path_, 1, 144);
    int checked = 0;
    for (const pdf_reading::Word& word : pdf_reading::words(path_)) {
        if (word.page != 1 || !word.text.startsWith(u'm')) {
            continue;
        }
        const QRgb expected = colours.value(word.text.mid(1).toInt() % 4);
        const double middle = word.box.center().y() * 2; // 144 dots to 72 points
        for (int x = static_cast<int>(word.box.left() * 2); x < word.box.right() * 2; ++x) {
            const QRgb dot = page.pixel(x, static_cast<int>(middle));
            if (dot != qRgb(255, 255, 255)) {
                ASSERT_EQ(dot, expected) << word.text.toStdString();
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 4 * 50);
}

TEST_F(PrintedReport, OfAnEmptyListIsOnePageWithItsNumberAlone)
{
    list_.clear();
    print();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("Page - 1")}});
}

} // namespace
} // namespace printing
