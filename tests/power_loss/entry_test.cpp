// The power fails while readings and foods are entered: what was entered is there whole or not at all.
#include "data/database.h"
#include "meals/new_food.h"
#include "power_loss/diaries.h"
#include "readings/meter_import.h"
#include "readings/reading_entry.h"
#include "support/diary_content.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace power_loss {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// Readings at noon on the first three days of March 2024 (day 45352 on), and two foods.
Files diary()
{
    return programDiary([] {
        for (const char* date : {"01/03/2024", "02/03/2024", "03/03/2024"}) {
            readings::saveReading(diaryPath(), {"5.5", date, "12:00", 1, ""});
        }
        reports::addFood(diaryPath(), 1001, {"BUTTER,WITH SALT", 717, 0, 80, 1});
        reports::addFood(diaryPath(), 1002, {"BREAD,WHITE", 250, 50, 4, 8});
    });
}

TEST(PowerLoss, WhileAReadingIsAddedLeavesItThereOrNot)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) {
        readings::saveReading(diaryPath(), {"6.5", "04/03/2024", "12:00", 3, "after a walk"});
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    const std::string before = "1 5.5 @45352.5 1 \n2 5.5 @45353.5 1 \n3 5.5 @45354.5 1 \n";
    EXPECT_EQ(rowsIn(findings.history[0], "BloodSugarLevels"), before);
    EXPECT_EQ(rowsIn(findings.history[1], "BloodSugarLevels"), before + "4 6.5 @45355.5 3 after a walk\n");
}

TEST(PowerLoss, WhileAReadingIsChangedLeavesTheOldOrTheNew)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) {
        data::Database database(diaryPath());
        data::Recordset reading =
            database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = 2"));
        reading.edit();
        reading.set(QStringLiteral("BloodSugerLevel"), 7.25);
        reading.set(QStringLiteral("Comment"), QStringLiteral("before the meal"));
        reading.update();
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_THAT(rowsIn(findings.history[0], "BloodSugarLevels"), HasSubstr("\n2 5.5 @45353.5 1 \n"));
    EXPECT_EQ(rowsIn(findings.history[1], "BloodSugarLevels"),
              "1 5.5 @45352.5 1 \n2 7.25 @45353.5 1 before the meal\n3 5.5 @45354.5 1 \n");
}

TEST(PowerLoss, WhileReadingsAreDeletedDeletesAllOfThemOrNone)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) {
        data::Database(diaryPath())
            .execute(QStringLiteral("Delete * from BloodSugarLevels where ReadingTime < #3/3/2024#"));
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_EQ(rowCountIn(findings.history[0], "BloodSugarLevels"), 3U);
    EXPECT_EQ(rowsIn(findings.history[1], "BloodSugarLevels"), "3 5.5 @45354.5 1 \n");
}

TEST(PowerLoss, WhileAThousandReadingsAreImportedLeavesAllOfThemOrNone)
{
    const QTemporaryDir folder;
    const QString meterPath = folder.filePath(QStringLiteral("meter.csv"));
    QFile meter(meterPath);
    ASSERT_TRUE(meter.open(QIODevice::WriteOnly));
    for (int reading = 0; reading < 1000; ++reading) {
        const QString line = QStringLiteral(" %1/%2/2025, %3:15, 5.%4\n");
        meter.write(
            line.arg(1 + reading % 28).arg(1 + reading / 28 % 12).arg(reading / 336 * 7).arg(reading % 10).toUtf8());
    }
    meter.close();
    const Findings findings = losePowerDuring(diary(), [&](jet::FileSystem&) {
        EXPECT_EQ(readings::ImportReadings({diaryPath(), meterPath, "03/03/2024 12:00"}), 1000);
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    EXPECT_EQ(rowCountIn(findings.history[0], "BloodSugarLevels"), 3U);
    EXPECT_EQ(rowCountIn(findings.history[1], "BloodSugarLevels"), 1003U);
}

TEST(PowerLoss, WhileAFoodIsAddedLeavesItThereOrNot)
{
    const Findings findings = losePowerDuring(diary(), [](jet::FileSystem&) {
        EXPECT_EQ(meals::SaveIngredient(diaryPath(), {"Stew", true, false, {{"Carbohydrt", "12.5"}}}), 1000);
    });
    ASSERT_THAT(findings.history, SizeIs(2));
    const std::string before = rowsIn(findings.history[0], "NutritionalInformation");
    const std::string after = rowsIn(findings.history[1], "NutritionalInformation");
    EXPECT_EQ(rowCountIn(findings.history[0], "NutritionalInformation"), 2U);
    EXPECT_EQ(after.substr(0, before.size()), before);
    EXPECT_THAT(after.substr(before.size()), testing::StartsWith("1000 Stew "));
}

} // namespace
} // namespace power_loss
