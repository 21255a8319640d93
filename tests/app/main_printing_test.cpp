// What the main window's print entries put on paper.
#include "app/main_window.h"

#include "controls/report_list_view.h"

#include <QApplication>
#include <QMenuBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class MainPrinting : public MainWindow
{
protected:
    controls::ReportListView& view() { return testing_windows::child<controls::ReportListView>(*window, "lstView"); }

    void print(const char* entry) { choose("mnuPrntReports", entry); }

    void expectPrinterError()
    {
        EXPECT_CALL(dialogs, showError(&*window, testing::Truly([](const QString& text) {
                        return text.startsWith("Run-time error '482':");
                    }),
                                       QString("Quillon")))
            .WillOnce([] { EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "no hourglass over the box"; });
    }
};

TEST_F(MainPrinting, TheDisplayedReportIsPrintedInItsColumnsAndColours)
{
    diary.addReading("02/03/2002 08:15", 3.5, 1);
    choose("mnuReports", "mnuBasicBloodSugar");
    print("mnuPrintCurrent");
    const PrintedPage& page = printers.onlyPage();
    EXPECT_THAT(page.words(), ElementsAre("Mmol", "When", "Type", "Comment", " ", "03.5", "02/03/2002 08:15:00",
                                          "Getting Up", "", "Page - 1"));
    EXPECT_TRUE(page.texts[0].bold);
    EXPECT_EQ(page.texts[6].x, 2000) << "the second column";
    EXPECT_EQ(page.texts[6].colour, reports::Printer::Colour::Red);
    EXPECT_THAT(printers.documents, ElementsAre("All Blood Sugar Readings"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(MainPrinting, SelectedLinesAlonePrintInTheOrderOfTheList)
{
    for (const char* line : {"one", "two", "three", "four"}) {
        state().lstView.addItem(QString::fromLatin1(line));
    }
    state().PrintTabs = {1000};
    view().addToSelection(3);
    view().addToSelection(1);
    print("mnuSelCurr");
    EXPECT_THAT(printers.onlyPage().words(), ElementsAre("two", "four", "Page - 1"));
}

TEST_F(MainPrinting, WithNothingSelectedThereIsNoPrintoutAndNoQuestionForAPrinter)
{
    state().lstView.addItem(QStringLiteral("one"));
    print("mnuSelCurr");
    EXPECT_THAT(printers.printout, IsEmpty());
    EXPECT_THAT(printers.documents, IsEmpty());
}

TEST_F(MainPrinting, AnEmptyListPrintsItsPageNumber)
{
    print("mnuPrintCurrent");
    EXPECT_THAT(printers.onlyPage().words(), ElementsAre("Page - 1"));
    EXPECT_THAT(printers.documents, ElementsAre("Report")) << "a document has a name";
}

TEST_F(MainPrinting, TheLineCounterGoesOnFromJobToJob)
{
    // 64 lines high: 64 - 3 = 61 lines a page, and the break comes behind line 61 + 2.
    state().PrintTabs = {1000};
    for (int line = 0; line < 40; ++line) {
        state().lstView.addItem(QStringLiteral("x"));
    }
    print("mnuPrintCurrent");
    print("mnuPrintCurrent");
    ASSERT_THAT(printers.printout, SizeIs(2));
    EXPECT_THAT(printers.printout[0].pages, SizeIs(1));
    ASSERT_THAT(printers.printout[1].pages, SizeIs(2));
    EXPECT_THAT(printers.printout[1].pages[0].texts, SizeIs(63 - 40 + 1)) << "and the page's number";
}

TEST_F(MainPrinting, AFailingPrinterIsReportedAndPrintingWorksAgain)
{
    state().PrintTabs = {1000};
    state().lstView.addItem(QStringLiteral("one"));
    printers.failAtOutput = 1;
    expectPrinterError();
    print("mnuPrintCurrent");
    print("mnuPrintCurrent");
    ASSERT_FALSE(printers.printout.empty());
    EXPECT_TRUE(printers.printout.back().isPrinted());
    EXPECT_THAT(printers.printout.back().pages[0].words(), ElementsAre("one", "Page - 1"));
}

TEST_F(MainPrinting, WhoWantsNoPrinterGetsNoPrintout)
{
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    printers.cancelled = true;
    for (const char* entry : {"mnuPrntBasicBloodSugar", "mnuPrintDailyAnalysis", "mnuPrintCurrent"}) {
        print(entry);
    }
    EXPECT_THAT(printers.documents, SizeIs(3));
    EXPECT_THAT(printers.printout, IsEmpty());
}

TEST_F(MainPrinting, TheBasicReportOnPaperHasTheWholeHistoryWhateverTheFilter)
{
    diary.addReading("28/02/1990 12:00", 7.0, 2);
    diary.addReading("02/03/2002 08:15", 5.6, 2);
    print("mnuPrntBasicBloodSugar");
    EXPECT_THAT(printers.onlyPage().words(),
                ElementsAre("Mmol\tWhen\tType\tComment", "", "\t07.0\t28/02/1990 12:00:00\tMeal\t",
                            "\t05.6\t02/03/2002 08:15:00\tMeal\t"));
    EXPECT_TRUE(state().lstView.isEmpty()) << "the screen stays as it was";
}

TEST_F(MainPrinting, TheBasicReportOnPaperWithoutReadingsIsAnErrorAndPrintsNothing)
{
    EXPECT_CALL(dialogs, showError(&*window, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '3021':");
                }),
                                   QString("Quillon")));
    print("mnuPrntBasicBloodSugar");
    for (const PrintedDocument& document : printers.printout) {
        EXPECT_FALSE(document.isPrinted());
    }
}

TEST_F(MainPrinting, ThePrintedWindowStandsInTheMiddleUnderItsCaption)
{
    print("mnuPrintDailyAnalysis");
    const PrintedPage& page = printers.onlyPage();
    ASSERT_THAT(page.words(), ElementsAre("Quillon - Daily Meal Blood Sugar Change"));
    ASSERT_THAT(page.images, SizeIs(1));
    const PrintedImage& image = page.images[0];
    EXPECT_NEAR(image.x + image.size.width() / 2, 9000.0 / 2, 15) << "to a pixel of the screen";
    EXPECT_NEAR(image.y + image.size.height() / 2, 64 * 200.0 / 2, 15);
    EXPECT_EQ(page.texts[0].y + 200, image.y);
}

TEST_F(MainPrinting, AfterPrintingItTheWindowIsWhatItWas)
{
    const QSize size = window->size();
    print("mnuPrintDailyAnalysis");
    EXPECT_EQ(window->windowTitle().toStdString(), "Quillon");
    EXPECT_EQ(window->size(), size);
    for (const QAction* menu : window->menuBar()->actions()) {
        EXPECT_TRUE(menu->isVisible()) << menu->text().toStdString();
    }
}

TEST_F(MainPrinting, AFailureWhileItPrintsTheWindowLeavesTheWindowAsItWas)
{
    const QSize size = window->size();
    printers.failAtOutput = 2;
    expectPrinterError();
    print("mnuPrintDailyAnalysis");
    EXPECT_EQ(window->windowTitle().toStdString(), "Quillon");
    EXPECT_EQ(window->size(), size);
    for (const QAction* menu : window->menuBar()->actions()) {
        EXPECT_TRUE(menu->isVisible()) << menu->text().toStdString();
    }
}

} // namespace
} // namespace app
