// Where a printer puts what it is given, before any device is involved.
#include "printing/page_printer.h"
#include "runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace printing {
namespace {

using Colour = reports::Printer::Colour;

constexpr double kWidth = 6000;
constexpr double kHeight = 1000;
constexpr double kLine = 100; ///< ten lines a page

class PagePrinterTest : public testing::Test
{
protected:
    std::unique_ptr<PagePrinter> newPrinter()
    {
        return std::make_unique<PagePrinter>(PageMetrics{kWidth, kHeight, kLine}, [this](const Pages& pages) {
            ++deliveries_;
            pages_ = pages;
            if (error_) {
                throw *error_;
            }
        });
    }

    const PlacedText& text(std::size_t page, std::size_t mark = 0)
    {
        return std::get<PlacedText>(pages_.at(page).at(mark));
    }

    const PlacedPicture& picture(std::size_t page, std::size_t mark = 0)
    {
        return std::get<PlacedPicture>(pages_.at(page).at(mark));
    }

    /// Where a picture of that many pixels goes.
    QRectF placeOf(const QImage& image)
    {
        printer_->printImage(image);
        printer_->endDocument();
        return picture(pages_.size() - 1).place;
    }

    int deliveries_ = 0;
    Pages pages_; ///< of the document that was delivered last
    std::optional<runtime::RunTimeError> error_;
    std::unique_ptr<PagePrinter> printer_ = newPrinter();
};

QImage pixels(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

TEST_F(PagePrinterTest, ADocumentBeginsAtTheCornerOfPageOne)
{
    EXPECT_EQ(printer_->page(), 1);
    EXPECT_EQ(printer_->currentX(), 0);
    EXPECT_EQ(printer_->currentY(), 0);
    EXPECT_EQ(printer_->scaleWidth(), kWidth);
    EXPECT_EQ(printer_->scaleHeight(), kHeight);
    EXPECT_EQ(printer_->textHeight(QStringLiteral("I")), kLine);
    EXPECT_EQ(printer_->textHeight(QStringLiteral("several words")), kLine);
}

TEST_F(PagePrinterTest, ALineStandsAtTheCurrentPositionAndTheNextOneBelowItAtTheLeft)
{
    printer_->setCurrentX(1440);
    printer_->setCurrentY(250);
    printer_->print(QStringLiteral("first"));
    EXPECT_EQ(printer_->currentX(), 0);
    EXPECT_EQ(printer_->currentY(), 350);

    printer_->print(QStringLiteral("second"));
    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 1U);
    ASSERT_EQ(pages_.front().size(), 2U);
    EXPECT_EQ(text(0, 0).corner, QPointF(1440, 250));
    EXPECT_EQ(text(0, 0).text, QStringLiteral("first"));
    EXPECT_EQ(text(0, 1).corner, QPointF(0, 350));
    EXPECT_EQ(text(0, 1).text, QStringLiteral("second"));
}

TEST_F(PagePrinterTest, TextHasTheLookThatWasSetWhenItWasPrinted)
{
    printer_->print(QStringLiteral("plain"));
    printer_->setBold(true);
    printer_->setUnderlined(true);
    printer_->setColour(Colour::Green);
    printer_->print(QStringLiteral("emphasised"));
    printer_->setBold(false);
    printer_->setUnderlined(false);
    printer_->setColour(Colour::Black);
    printer_->endDocument();

    EXPECT_FALSE(text(0, 0).style.bold);
    EXPECT_FALSE(text(0, 0).style.underlined);
    EXPECT_EQ(text(0, 0).style.colour, Colour::Black);
    EXPECT_TRUE(text(0, 1).style.bold);
    EXPECT_TRUE(text(0, 1).style.underlined);
    EXPECT_EQ(text(0, 1).style.colour, Colour::Green);
}

TEST_F(PagePrinterTest, ALineThatIsNotWhollyOnThePageStandsAtTheTopOfTheNext)
{
    for (int line = 0; line < 10; ++line) {
        printer_->print(QStringLiteral("on page one"));
    }
    EXPECT_EQ(printer_->page(), 1);
    printer_->setCurrentX(300);
    printer_->print(QStringLiteral("on page two"));
    EXPECT_EQ(printer_->page(), 2);
    EXPECT_EQ(printer_->currentY(), kLine);

    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 2U);
    EXPECT_EQ(pages_[0].size(), 10U);
    ASSERT_EQ(pages_[1].size(), 1U);
    EXPECT_EQ(text(1).corner, QPointF(300, 0));
}

TEST_F(PagePrinterTest, ALineStaysOnThePageThatItExceedsByARoundingOfOneTwip)
{
    printer_->setCurrentY(kHeight - kLine + 1);
    printer_->makeRoomForLine();
    EXPECT_EQ(printer_->page(), 1);
    printer_->setCurrentY(kHeight - kLine + 1.5);
    printer_->makeRoomForLine();
    EXPECT_EQ(printer_->page(), 2);
    EXPECT_EQ(printer_->currentY(), 0);
}

TEST_F(PagePrinterTest, RoomForALineKeepsItsTextsTogetherOnTheNewPage)
{
    printer_->print(QStringLiteral("above"));
    printer_->setCurrentY(950);
    printer_->makeRoomForLine();
    const double y = printer_->currentY();
    for (const double x : {1000, 3000}) {
        printer_->setCurrentX(x);
        printer_->setCurrentY(y);
        printer_->print(QStringLiteral("piece"));
    }
    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 2U);
    ASSERT_EQ(pages_[1].size(), 2U);
    EXPECT_EQ(text(1, 0).corner, QPointF(1000, 0));
    EXPECT_EQ(text(1, 1).corner, QPointF(3000, 0));
}

TEST_F(PagePrinterTest, ANewPageBeginsAtItsCorner)
{
    printer_->print(QStringLiteral("one"));
    printer_->setCurrentX(500);
    printer_->newPage();
    EXPECT_EQ(printer_->page(), 2);
    EXPECT_EQ(printer_->currentX(), 0);
    EXPECT_EQ(printer_->currentY(), 0);
    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 2U);
    EXPECT_TRUE(pages_[1].empty());
}

TEST_F(PagePrinterTest, ANewPageBeforeAnyTextLeavesAnEmptyPageOne)
{
    printer_->newPage();
    printer_->print(QStringLiteral("two"));
    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 2U);
    EXPECT_TRUE(pages_[0].empty());
    EXPECT_EQ(text(1).text, QStringLiteral("two"));
}

TEST_F(PagePrinterTest, APictureHas96PixelsToTheInch)
{
    printer_->setCurrentX(200);
    printer_->setCurrentY(300);
    EXPECT_EQ(placeOf(pixels(96, 24)), QRectF(200, 300, 1440, 360));
}

TEST_F(PagePrinterTest, APictureOfAFinerScreenIsNoLarger)
{
    QImage image = pixels(192, 48);
    image.setDevicePixelRatio(2);
    EXPECT_EQ(placeOf(image), QRectF(0, 0, 1440, 360));
}

TEST_F(PagePrinterTest, TheLineAfterAPictureBeginsBelowIt)
{
    printer_->setCurrentX(200);
    printer_->setCurrentY(300);
    printer_->printImage(pixels(96, 24));
    EXPECT_EQ(printer_->currentX(), 0);
    EXPECT_EQ(printer_->currentY(), 660);
}

TEST_F(PagePrinterTest, APictureThatIsTooWideIsMadeSmallerInProportion)
{
    printer_->setCurrentX(3000);
    EXPECT_EQ(placeOf(pixels(400, 40)), QRectF(3000, 0, 3000, 300)); // 6000 x 600 twips at full size
}

TEST_F(PagePrinterTest, APictureThatIsTooHighIsMadeSmallerInProportion)
{
    printer_->setCurrentY(400);
    EXPECT_EQ(placeOf(pixels(40, 80)), QRectF(0, 400, 300, 600)); // 600 x 1200 twips at full size
}

TEST_F(PagePrinterTest, APictureThatBeginsBeforeThePageIsMovedOntoIt)
{
    // Centring what is larger than the page gives positions below zero.
    printer_->setCurrentX(-1500);
    printer_->setCurrentY(-50);
    EXPECT_EQ(placeOf(pixels(600, 40)), QRectF(0, 0, 6000, 400)); // 9000 x 600 twips at full size
}

TEST_F(PagePrinterTest, APictureAtTheFootOfAPageGoesToTheNext)
{
    printer_->setCurrentY(950);
    EXPECT_EQ(placeOf(pixels(96, 24)), QRectF(0, 0, 1440, 360));
    EXPECT_EQ(pages_.size(), 2U);
}

TEST_F(PagePrinterTest, APictureWithoutPixelsPrintsNothing)
{
    printer_->printImage({});
    printer_->endDocument();
    EXPECT_EQ(deliveries_, 0);
}

TEST_F(PagePrinterTest, NothingReachesTheDeviceBeforeTheDocumentEnds)
{
    printer_->print(QStringLiteral("one"));
    printer_->newPage();
    printer_->print(QStringLiteral("two"));
    EXPECT_EQ(deliveries_, 0);
    printer_->endDocument();
    EXPECT_EQ(deliveries_, 1);
}

TEST_F(PagePrinterTest, ADocumentWithoutOutputIsNotPrinted)
{
    printer_->setCurrentX(1000);
    printer_->setBold(true);
    printer_->makeRoomForLine();
    printer_->endDocument();
    EXPECT_EQ(deliveries_, 0);
}

TEST_F(PagePrinterTest, ADocumentThatIsNotEndedIsNeverPrinted)
{
    printer_->print(QStringLiteral("one"));
    printer_.reset();
    EXPECT_EQ(deliveries_, 0);
}

TEST_F(PagePrinterTest, WhatIsPrintedAfterTheEndIsADocumentOfItsOwn)
{
    printer_->newPage();
    printer_->setCurrentX(500);
    printer_->endDocument();
    EXPECT_EQ(printer_->page(), 1);
    EXPECT_EQ(printer_->currentX(), 0);
    EXPECT_EQ(printer_->currentY(), 0);

    printer_->print(QStringLiteral("again"));
    printer_->endDocument();
    EXPECT_EQ(deliveries_, 2);
    ASSERT_EQ(pages_.size(), 1U);
    EXPECT_EQ(text(0).text, QStringLiteral("again"));
    EXPECT_EQ(text(0).corner, QPointF(0, 0));
}

TEST_F(PagePrinterTest, AFailureEndsTheDocument)
{
    error_.emplace(runtime::ErrorNumber::PrinterError);
    printer_->print(QStringLiteral("lost"));
    EXPECT_THROW(printer_->endDocument(), runtime::RunTimeError);

    error_.reset();
    printer_->endDocument();
    EXPECT_EQ(deliveries_, 1) << "the failed document was printed once more";
    printer_->print(QStringLiteral("kept"));
    printer_->endDocument();
    ASSERT_EQ(pages_.size(), 1U);
    ASSERT_EQ(pages_[0].size(), 1U);
    EXPECT_EQ(text(0).text, QStringLiteral("kept"));
}

} // namespace
} // namespace printing
