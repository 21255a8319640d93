// What stands on the pages of a PDF file, read by poppler.
#include "printing/pdf_printer.h"
#include "printing/pdf_reading.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace printing {
namespace {

using Colour = reports::Printer::Colour;

// A4 paper with margins of 12 mm, in points of 1/72 inch. A twip is 1/20 of a point.
constexpr double kMargin = 12 / 25.4 * 72;
constexpr double kPaperWidth = 595;
constexpr double kPaperHeight = 842;
constexpr double kTwipsPerPoint = 20;
/// A dot of the printer is 0.06 points; widths and positions are rounded to it.
constexpr double kNear = 0.1;

class PdfPage : public testing::Test
{
protected:
    void put(double x, double y, const QString& text)
    {
        printer_->setCurrentX(x);
        printer_->setCurrentY(y);
        printer_->print(text);
    }

    pdf_reading::Word word(const QString& text)
    {
        const QList<pdf_reading::Word> words = pdf_reading::words(path_);
        const auto found =
            std::find_if(words.begin(), words.end(), [&text](const auto& each) { return each.text == text; });
        if (found == words.end()) {
            throw std::invalid_argument("not on the pages: " + text.toStdString());
        }
        return *found;
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("pages.pdf"));
    std::unique_ptr<reports::Printer> printer_ = pdfPrinter(path_, QStringLiteral("Pages"));
};

bool isPaper(QRgb dot)
{
    return (dot & RGB_MASK) == (qRgb(255, 255, 255) & RGB_MASK);
}

QSet<QRgb> inks(const QImage& image)
{
    QSet<QRgb> inks;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!isPaper(image.pixel(x, y))) {
                inks.insert(image.pixel(x, y));
            }
        }
    }
    return inks;
}

/// The smallest rectangle that holds all dots of a colour.
QRect extentOf(const QImage& image, QRgb colour)
{
    QRect extent;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == colour) {
                extent |= QRect(x, y, 1, 1);
            }
        }
    }
    return extent;
}

int dotsOf(const QImage& image)
{
    int dots = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            dots += isPaper(image.pixel(x, y)) ? 0 : 1;
        }
    }
    return dots;
}

/// The longest run of painted dots in a row.
int longestRun(const QImage& image)
{
    int longest = 0;
    for (int y = 0; y < image.height(); ++y) {
        int run = 0;
        for (int x = 0; x < image.width(); ++x) {
            run = isPaper(image.pixel(x, y)) ? 0 : run + 1;
            longest = std::max(longest, run);
        }
    }
    return longest;
}

TEST_F(PdfPage, ThePrintableAreaIsAnA4PageWithinMarginsOfTwelveMillimetres)
{
    EXPECT_NEAR(printer_->scaleWidth() / kTwipsPerPoint, kPaperWidth - 2 * kMargin, 1);
    EXPECT_NEAR(printer_->scaleHeight() / kTwipsPerPoint, kPaperHeight - 2 * kMargin, 1);
}

TEST_F(PdfPage, ATextTooWideForItsColumnIsMadeNarrowerAndKeepsItsLetters)
{
    put(0, 0, QStringLiteral("Beef,ground,crumbles,cooked,pan-browned-1"));
    put(9000, 0, QStringLiteral("far"));
    put(0, 400, QStringLiteral("Beef,ground,crumbles,cooked,pan-browned-2"));
    put(2500, 400, QStringLiteral("202.7"));
    printer_->endDocument();

    EXPECT_GT(word(QStringLiteral("Beef,ground,crumbles,cooked,pan-browned-1")).box.width(), 2500 / kTwipsPerPoint);
    const pdf_reading::Word narrowed = word(QStringLiteral("Beef,ground,crumbles,cooked,pan-browned-2"));
    EXPECT_NEAR(narrowed.box.left(), kMargin, kNear);
    EXPECT_NEAR(narrowed.box.right(), kMargin + (2500 - 40) / kTwipsPerPoint, kNear);
    EXPECT_NEAR(word(QStringLiteral("202.7")).box.left(), kMargin + 2500 / kTwipsPerPoint, kNear);
}

TEST_F(PdfPage, ATextTooWideForTheLastColumnStaysInThePrintableArea)
{
    put(9500, 0, QStringLiteral("took-two-biscuits"));
    printer_->endDocument();
    EXPECT_NEAR(word(QStringLiteral("took-two-biscuits")).box.right(), kPaperWidth - kMargin, 1);
}

TEST_F(PdfPage, AnEmptyColumnLeavesItsRoomToTheTextBeforeIt)
{
    put(0, 0, QStringLiteral("description-1"));
    put(500, 0, QString());
    put(4000, 0, QStringLiteral("12"));
    put(0, 400, QStringLiteral("description-2"));
    printer_->endDocument();
    EXPECT_NEAR(word(QStringLiteral("description-1")).box.width(), word(QStringLiteral("description-2")).box.width(),
                kNear);
}

TEST_F(PdfPage, NoTextIsMadeNarrowerThanHalfItsWidth)
{
    put(0, 0, QStringLiteral("description-1"));
    put(200, 0, QStringLiteral("12"));
    put(0, 400, QStringLiteral("description-2"));
    printer_->endDocument();
    EXPECT_NEAR(word(QStringLiteral("description-1")).box.width(),
                word(QStringLiteral("description-2")).box.width() / 2, kNear);
}

TEST_F(PdfPage, TextAt1440TwipsStandsAnInchFromThePrintableAreasLeftEdge)
{
    put(0, 0, QStringLiteral("edge"));
    put(1440, 0, QStringLiteral("inch"));
    printer_->endDocument();
    EXPECT_NEAR(word(QStringLiteral("edge")).box.left(), kMargin, kNear);
    EXPECT_NEAR(word(QStringLiteral("inch")).box.left(), kMargin + 72, kNear);
}

TEST_F(PdfPage, TextStandsBelowTheHeightThatIsSet)
{
    put(0, 0, QStringLiteral("top"));
    put(0, 1440, QStringLiteral("lower"));
    printer_->endDocument();
    const QRectF top = word(QStringLiteral("top")).box;
    const double line = printer_->textHeight({}) / kTwipsPerPoint;
    EXPECT_GE(top.top(), kMargin - kNear);
    EXPECT_LE(top.bottom(), kMargin + line + kNear);
    EXPECT_NEAR(word(QStringLiteral("lower")).box.top(), top.top() + 72, kNear);
}

TEST_F(PdfPage, AFootersLineEndsAtThePrintableAreasLowerEdge)
{
    put(0, printer_->scaleHeight() - printer_->textHeight(QStringLiteral("I")), QStringLiteral("Footer"));
    printer_->endDocument();
    const pdf_reading::Word footer = word(QStringLiteral("Footer"));
    EXPECT_EQ(footer.page, 1);
    EXPECT_LE(footer.box.bottom(), kPaperHeight - kMargin + 1);
    EXPECT_GE(footer.box.bottom(), kPaperHeight - kMargin - 4);
}

TEST_F(PdfPage, ADateWithItsTimeFitsWithin2000TwipsInBoldToo)
{
    put(0, 0, QStringLiteral("05/03/2002-07:15:00"));
    printer_->setBold(true);
    put(0, 1000, QStringLiteral("06/03/2002-07:15:00"));
    printer_->endDocument();
    EXPECT_LT(word(QStringLiteral("05/03/2002-07:15:00")).box.width(), 1800 / kTwipsPerPoint);
    EXPECT_LT(word(QStringLiteral("06/03/2002-07:15:00")).box.width(), 1950 / kTwipsPerPoint);
}

TEST_F(PdfPage, ALineIsAsHighAsItsLettersNeed)
{
    // Between eight and nine points, and lines that do not touch.
    EXPECT_GE(printer_->textHeight({}), 8 * kTwipsPerPoint);
    EXPECT_LE(printer_->textHeight({}), 11 * kTwipsPerPoint);
}

TEST_F(PdfPage, BoldTextIsDarkerAndOfTheSameHeight)
{
    const double height = printer_->textHeight(QStringLiteral("I"));
    put(0, 0, QStringLiteral("Getting Up"));
    printer_->setBold(true);
    EXPECT_EQ(printer_->textHeight(QStringLiteral("I")), height);
    put(0, 1440, QStringLiteral("Getting Up"));
    printer_->endDocument();

    const QImage page = pdf_reading::image(path_, 1, 144);
    const int plain = dotsOf(page.copy(0, 0, page.width(), 144));
    const int bold = dotsOf(page.copy(0, 144, page.width(), 144));
    EXPECT_GT(plain, 0);
    EXPECT_GT(bold, plain * 1.2);
}

TEST_F(PdfPage, UnderlinedTextStandsOnALineOfItsWidth)
{
    put(0, 0, QStringLiteral("Printed"));
    printer_->setUnderlined(true);
    put(0, 1440, QStringLiteral("Underlined"));
    printer_->endDocument();

    const QImage page = pdf_reading::image(path_, 1, 144);
    const double width = word(QStringLiteral("Underlined")).box.width() * 2; // 144 dots to 72 points
    EXPECT_LT(longestRun(page.copy(0, 0, page.width(), 144)), width / 4);
    EXPECT_NEAR(longestRun(page.copy(0, 144, page.width(), 144)), width, 3);
}

struct Ink {
    const char* name;
    Colour colour;
    QRgb dot;
};

class PdfColour : public PdfPage, public testing::WithParamInterface<Ink>
{
};

TEST_P(PdfColour, IsPureOnPaper)
{
    printer_->setColour(GetParam().colour);
    printer_->setBold(true);
    printer_->setUnderlined(true);
    put(0, 0, QStringLiteral("4.0 Getting Up"));
    printer_->endDocument();
    EXPECT_EQ(inks(pdf_reading::image(path_, 1, 144)), QSet<QRgb>{GetParam().dot});
}

INSTANTIATE_TEST_SUITE_P(Colours, PdfColour,
                         testing::Values(Ink{"Black", Colour::Black, 0xff000000}, Ink{"Red", Colour::Red, 0xffff0000},
                                         Ink{"Blue", Colour::Blue, 0xff0000ff},
                                         Ink{"Green", Colour::Green, 0xff00ff00}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(PdfPage, ATabGoesToTheSamePlaceWhateverStandsBeforeIt)
{
    put(0, 0, QStringLiteral("iii\tfirst"));
    put(0, 400, QStringLiteral("WWW\tsecond"));
    put(0, 800, QStringLiteral("\tthird"));
    put(0, 1200, QStringLiteral("iii\t\tfourth"));
    put(0, 1600, QStringLiteral("eight or more characters\tfifth"));
    put(700, 2000, QStringLiteral("iii\tsixth"));
    printer_->endDocument();

    const double tab = word(QStringLiteral("first")).box.left() - kMargin;
    EXPECT_GT(tab, 8 * 3); // eight characters of at least three points
    EXPECT_LT(tab, 8 * 8);
    EXPECT_NEAR(word(QStringLiteral("second")).box.left(), kMargin + tab, kNear);
    EXPECT_NEAR(word(QStringLiteral("third")).box.left(), kMargin + tab, kNear);
    EXPECT_NEAR(word(QStringLiteral("fourth")).box.left(), kMargin + 2 * tab, kNear);
    const double tabs = (word(QStringLiteral("fifth")).box.left() - kMargin) / tab;
    EXPECT_NEAR(tabs, std::round(tabs), 0.01);
    EXPECT_GT(word(QStringLiteral("fifth")).box.left(), word(QStringLiteral("characters")).box.right());
    EXPECT_NEAR(word(QStringLiteral("sixth")).box.left(), kMargin + 35 + tab, kNear) << "tabs count from the text";
}

TEST_F(PdfPage, TextWithLineBreaksStaysOneLine)
{
    put(0, 0, QStringLiteral("before\r\nafter"));
    printer_->endDocument();
    EXPECT_NEAR(word(QStringLiteral("after")).box.top(), word(QStringLiteral("before")).box.top(), kNear);
    EXPECT_GT(word(QStringLiteral("after")).box.left(), word(QStringLiteral("before")).box.right());
}

TEST_F(PdfPage, TextBeyondTheLatinAlphabetIsKept)
{
    const QString text = QStringLiteral("Müsli-Žluťoučký-Καλημέρα");
    put(0, 0, text);
    printer_->endDocument();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{text}});
}

TEST_F(PdfPage, NoLettersAreJoinedSoThatWordsAreFound)
{
    put(0, 0, QStringLiteral("first-coffee-flour"));
    printer_->endDocument();
    EXPECT_EQ(pdf_reading::lines(path_), QList<QStringList>{{QStringLiteral("first-coffee-flour")}});
}

TEST_F(PdfPage, APictureHas96PixelsToTheInchAndItsOwnColours)
{
    QImage image(96, 48, QImage::Format_RGB32);
    image.fill(QColor(10, 200, 30));
    printer_->setCurrentX(1440);
    printer_->setCurrentY(2880);
    printer_->printImage(image);
    printer_->endDocument();

    const QImage page = pdf_reading::image(path_, 1, 96);
    EXPECT_EQ(inks(page), QSet<QRgb>{qRgb(10, 200, 30)});
    const QRect extent = extentOf(page, qRgb(10, 200, 30));
    const double margin = kMargin / 72 * 96;
    EXPECT_NEAR(extent.left(), margin + 96, 1);
    EXPECT_NEAR(extent.top(), margin + 192, 1);
    EXPECT_NEAR(extent.width(), 96, 1);
    EXPECT_NEAR(extent.height(), 48, 1);
}

TEST_F(PdfPage, ALargePictureIsMadeSmallerUntilThePageHoldsIt)
{
    QImage image(1366, 768, QImage::Format_RGB32);
    image.fill(Qt::red);
    printer_->printImage(image);
    printer_->endDocument();

    const QRect extent = extentOf(pdf_reading::image(path_, 1, 96), qRgb(255, 0, 0));
    const double width = (kPaperWidth - 2 * kMargin) / 72 * 96;
    EXPECT_NEAR(extent.width(), width, 2);
    EXPECT_NEAR(extent.height(), width * 768 / 1366, 2);
}

TEST_F(PdfPage, FiveHundredLinesAreAllPrintedInTheirOrder)
{
    QStringList expected;
    for (int line = 1; line <= 500; ++line) {
        expected.append(QStringLiteral("Reading %1").arg(line));
        printer_->print(expected.last());
    }
    const int pages = printer_->page();
    printer_->endDocument();

    QStringList found;
    const QList<QStringList> printed = pdf_reading::lines(path_);
    for (const QStringList& page : printed) {
        EXPECT_FALSE(page.isEmpty());
        found += page;
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(printed.size(), pages);
    EXPECT_EQ(pdf_reading::info(path_).pages, pages);
    for (const pdf_reading::Word& word : pdf_reading::words(path_)) {
        EXPECT_GE(word.box.top(), kMargin - kNear);
        EXPECT_LE(word.box.bottom(), kPaperHeight - kMargin + 1);
    }
}

} // namespace
} // namespace printing
