// The diaries of meals and insulin in the main window.
#include "app/main_window.h"

#include "support/diary_content.h"

#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class MainDiaries : public MainWindow
{
protected:
    MainDiaries()
    {
        reports::addFood(diary.path(), 18064, {"BREAD,WHITE", 250, 50, 2, 9});
        diary.addReading("02/03/2002 07:45", 5.0, 2);
    }
    ~MainDiaries() override
    {
        while (QApplication::overrideCursor() != nullptr) {
            QApplication::restoreOverrideCursor();
        }
    }

    /// 60 g of bread: 150 kCal, 30 g of carbohydrate, 1.2 g of fat and 5.4 g of protein, which make
    /// 120 + 10.8 + 21.6 = 152.4 kCal.
    void addBreakfast() { reports::addMeal(diary.path(), {"02/03/2002 08:00", 1, 6, {{18064, 60.0}}}); }
    void addReadingAfter() { diary.addReading("02/03/2002 10:00", 8.5, 3); }

    void show(const char* entry) { choose("mnuReports", entry); }
    static bool showsHourglass()
    {
        const QCursor* pointer = QApplication::overrideCursor();
        return pointer != nullptr && pointer->shape() == Qt::WaitCursor;
    }
};

TEST_F(MainDiaries, TheOverallDiaryListsAMealItsFoodsItsReadingsAndItsDay)
{
    addBreakfast();
    addReadingAfter();
    show("mnuDairy");
    EXPECT_THAT(
        lines(),
        ElementsAre("Breakfast\tSaturday 02 March 2002 08:00\tkCal\tCarb\tFat\tProt\tGrams", "",
                    "\tBread,white\t150.0\t30.0\t1.2\t5.4\t60.0", "", //
                    "\tTotal\t150.0\t30.0\t1.2\t5.4", "\tCalc Total kCal/kCal/kCal/kCal\t152.4\t120.0\t10.8\t21.6",
                    "\tTotal %\t152.4\t79%\t7%\t14%", "", "***\tInsulin (I) = 6 units, Carbs (C) = 30.0 g, C/I = 5.00",
                    "\t\tTime\tMmol\tDrop\tReading Type", "\t02 Mar 07:45 pre meal by\t0:15\t5.0\t0.0\tMeal\t",
                    "\t02 Mar 10:00\t2:00\t8.5\t3.5\tMeal + 2\t", "", "",
                    "\tDay Total kCal/gms/gms/gms\t150.0\t30.0\t1.2\t5.4",
                    "\tCalc Total kCal/kCal/kCal/kCal\t152.4\t120.0\t10.8\t21.6", "\tDay Total %\t152.4\t79%\t7%\t14%",
                    "", "=========================================================", ""));
}

TEST_F(MainDiaries, TheSummaryLeavesTheFoodsOut)
{
    addBreakfast();
    addReadingAfter();
    show("mnuDairySummary");
    const auto shown = lines();
    EXPECT_EQ(shown.size(), 18U) << "the food and the empty line below it are missing";
    EXPECT_THAT(shown, Not(Contains(StartsWith("\tBread"))));
    EXPECT_THAT(shown, Contains("\tDay Total %\t152.4\t79%\t7%\t14%"));
}

TEST_F(MainDiaries, TheInsulinDiaryShowsNoTotalsAndItsMealsCountInTheNextOverallDiary)
{
    addBreakfast();
    addReadingAfter();
    show("mnuInsulinDiary");
    EXPECT_EQ(lines().size(), 7U);
    EXPECT_THAT(lines(), Not(Contains(testing::HasSubstr("Total"))));
    EXPECT_FALSE(showsHourglass());

    show("mnuDairySummary");
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t300.0\t60.0\t2.4\t10.8")) << "twice the breakfast";
    show("mnuDairySummary");
    EXPECT_THAT(lines(), Contains("\tDay Total kCal/gms/gms/gms\t150.0\t30.0\t1.2\t5.4"));
}

TEST_F(MainDiaries, WithoutMealsNothingIsAdded)
{
    addReadingAfter();
    for (const char* entry : {"mnuDairy", "mnuDairySummary", "mnuInsulinDiary"}) {
        show(entry);
        EXPECT_THAT(lines(), IsEmpty()) << entry;
        EXPECT_FALSE(showsHourglass()) << entry;
    }
}

TEST_F(MainDiaries, AnInsulinDiaryThatFailsLeavesTheHourglassUntilTheNextActionEnds)
{
    addBreakfast();
    EXPECT_CALL(dialogs, showError(&*window, testing::Truly([](const QString& text) {
                    return text.startsWith("Run-time error '3021':\n\nNo current record.");
                }),
                                   QString("Quillon")));
    show("mnuInsulinDiary");
    EXPECT_THAT(lines(), IsEmpty()) << "the reading before the first meal is looked for first";
    EXPECT_TRUE(showsHourglass());

    show("mnuBasicBloodSugar");
    EXPECT_FALSE(showsHourglass());
}

} // namespace
} // namespace app
