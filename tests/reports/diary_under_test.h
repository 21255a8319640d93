// The diaries on a diary of three foods, for tests.
#pragma once

#include "reports/diary_report.h"
#include "reports/report_under_test.h"
#include "support/diary_content.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace reports {

enum MealType : int { NoType, Breakfast, Lunch, Dinner, Snack };
enum Food : qint32 { Bread = 1, Apple, Water };

inline constexpr const char* kReadingColumns = "\t\tTime\tMmol\tDrop\tReading Type";

class DiaryTest : public testing::Test, protected ReportUnderTest
{
protected:
    explicit DiaryTest(void (*builder)(ReportState&)) : ReportUnderTest(builder)
    {
        addFood(diary_.path(), Bread, {QStringLiteral("BREAD,WHITE"), 250, 50, 4, 8});
        addFood(diary_.path(), Apple, {QStringLiteral("APPLE,RAW"), 52, 14, 0.2, 0.3});
        addFood(diary_.path(), Water, {QStringLiteral("WATER,TAP"), {}, {}, {}, {}});
    }

    void eat(const char* when, MealType type, std::optional<int> dose, const std::vector<MealRow::Portion>& portions)
    {
        addMeal(diary_.path(), {QString::fromLatin1(when), type, dose, portions});
    }

    /// 100 g of bread at 08:00 with 4 units, 5.0 before it and 7.0 two hours after it.
    void addBreakfast()
    {
        eat("05/03/2002 08:00", Breakfast, 4, {{Bread, 100}});
        add("05/03/2002 07:50", 5.0, Meal);
        add("05/03/2002 10:00", 7.0, MealPlus2);
    }

    /// The styles of the lines that begin with this, in their order.
    [[nodiscard]] std::vector<int> stylesOf(const char* beginning) const
    {
        std::vector<int> styles;
        for (qsizetype line = 0; line < state_.lstView.size(); ++line) {
            if (state_.lstView.at(line).text.startsWith(QString::fromLatin1(beginning))) {
                styles.push_back(state_.lstView.at(line).style);
            }
        }
        return styles;
    }

    [[nodiscard]] bool dayIsEmpty() const
    {
        const NutrientTotals& day = state_.dayTotals;
        return day.carbohydrate == 0 && day.protein == 0 && day.fat == 0 && day.energy == 0;
    }
};

class OverallDiary : public DiaryTest
{
protected:
    OverallDiary() : DiaryTest([](ReportState& state) { DisplayDiary(state, true); }) {}
};

class OverallDiarySummary : public DiaryTest
{
protected:
    OverallDiarySummary() : DiaryTest([](ReportState& state) { DisplayDiary(state, false); }) {}
};

class InsulinDiary : public DiaryTest
{
protected:
    InsulinDiary() : DiaryTest(DisplayInsulinDiary) {}
};

} // namespace reports
