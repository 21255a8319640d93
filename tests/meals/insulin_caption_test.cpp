#include "meals/insulin_caption.h"

#include "meals/meal_sheet.h"
#include "meals/meal_type.h"
#include "runtime/locale_in_force.h"

#include <gtest/gtest.h>

namespace meals {
namespace {

constexpr int kBreakfast = 1;

/// A font whose dots are half as wide as its other characters.
double width(const QString& text)
{
    return 2.0 * static_cast<double>(text.size()) - static_cast<double>(text.count(u'.'));
}

QString withDots(const char* text, int dots)
{
    return QString::fromLatin1(text) + QString(dots, u'.');
}

class InsulinCaptionTest : public testing::Test
{
protected:
    InsulinCaptionTest() { sheet.add({2001, QStringLiteral("Rice"), {20, 1, 2, 100, 0}}, 2.5); } // 50 g carbohydrate

    /// The label's caption after the dose was changed to this text.
    QString after(const char* dose, std::optional<int> mealType)
    {
        if (const std::optional<QString> changed =
                insulinCaption(caption, QString::fromUtf8(dose), mealType, sheet, width)) {
            caption = *changed;
        }
        return caption;
    }

    const LocaleInForce locale{kBritish};
    MealSheet sheet;
    QString caption = withDots("Insulin ", 40); // 16 and 40 wide
};

TEST_F(InsulinCaptionTest, ShowsTheCarbohydrateToAUnitPaddedToTheWidthBefore)
{
    // 50 g / 4 units. "Insulin 12.50 gms/unit" has 21 characters and a dot, 43 wide; the caption before is 56 wide.
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 12.50 gms/unit", 13));
}

TEST_F(InsulinCaptionTest, HasTwoDecimalsRoundedHalfAway)
{
    caption.clear();
    EXPECT_EQ(after("3", kBreakfast), withDots("Insulin 16.67 gms/unit", 1));
    EXPECT_EQ(after("16", kBreakfast), withDots("Insulin 3.13 gms/unit", 3)) << "3.125";
}

TEST_F(InsulinCaptionTest, ATextWiderThanTheCaptionBeforeGetsOneDot)
{
    caption = QStringLiteral("Insulin ...");
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 12.50 gms/unit", 1));
}

TEST_F(InsulinCaptionTest, ATextOfExactlyTheWidthBeforeGetsOneDotMore)
{
    caption = withDots("Insulin ", 28); // 44 wide, as the text with one dot is
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 12.50 gms/unit", 1));
    caption = withDots("Insulin ", 29);
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 12.50 gms/unit", 2));
}

TEST_F(InsulinCaptionTest, ForASnackEachChangeAppendsADotToTheCaptionBefore)
{
    EXPECT_EQ(after("2", kSnack), withDots("Insulin ", 41));
    EXPECT_EQ(after("25", kSnack), withDots("Insulin ", 42));
    EXPECT_EQ(after("5", kSnack), withDots("Insulin ", 43));
    caption = QStringLiteral("Insulin 12.50 gms/unit.");
    EXPECT_EQ(after("2", kSnack), QStringLiteral("Insulin 12.50 gms/unit.."));
    caption.clear();
    EXPECT_EQ(after("2", kSnack), QStringLiteral("Insulin .")) << "an empty text becomes the word";
}

TEST_F(InsulinCaptionTest, WithoutADoseAFoodOrAMealTypeItIsTheWordWithDots)
{
    const QString word = withDots("Insulin ", 40);
    EXPECT_EQ(after("0", kBreakfast), word) << "padded to the width before, which it had already";
    EXPECT_EQ(after("0", kSnack), word);
    EXPECT_EQ(after("4", std::nullopt), word);
    sheet.clear();
    EXPECT_EQ(after("4", kBreakfast), word);
    EXPECT_EQ(after("4", kSnack), word);
}

TEST_F(InsulinCaptionTest, ADoseThatIsNoNumberLeavesTheCaption)
{
    for (const char* dose : {"", "-", "abc", "4 units", "4,5"}) {
        EXPECT_FALSE(insulinCaption(caption, QString::fromUtf8(dose), kBreakfast, sheet, width)) << dose;
    }
}

TEST_F(InsulinCaptionTest, NeverGetsNarrower)
{
    double widest = width(caption);
    for (const char* dose : {"4", "0.001", "", "0", "7", "1e9", "x", "12", "0"}) {
        for (const std::optional<int> type : {std::optional<int>(), std::optional(kBreakfast), std::optional(kSnack)}) {
            const double now = width(after(dose, type));
            EXPECT_GE(now, widest) << dose;
            widest = now;
        }
    }
}

TEST_F(InsulinCaptionTest, FollowsTheMeal)
{
    caption.clear();
    sheet.add({2001, QStringLiteral("Rice"), {20, 1, 2, 100, 0}}, 0.5);
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 15.00 gms/unit", 1)); // 60 g
    sheet.change(2, {2001, QStringLiteral("Rice"), {20, 1, 2, 100, 0}}, 0);
    EXPECT_EQ(after("4", kBreakfast), withDots("Insulin 2.50 gms/unit", 3)) << "10 g, as wide as before";
}

TEST_F(InsulinCaptionTest, NumbersAreTypedAndShownAsTheLocaleHasThem)
{
    const LocaleInForce german(kGerman);
    caption.clear();
    EXPECT_EQ(after("2,5", kBreakfast), withDots("Insulin 20,00 gms/unit", 1));
}

} // namespace
} // namespace meals
