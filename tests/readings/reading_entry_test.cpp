#include "readings/reading_entry.h"

#include "readings/stored_readings.h"
#include "runtime/conversions.h"
#include "runtime/run_time_error.h"
#include "support/run_time_errors.h"
#include "support/test_diary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace readings {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int errorOfSaving(const QString& path, const ReadingEntry& entry)
{
    return errorNumberOf([&] { saveReading(path, entry); });
}

TEST(ReadingTypes, AreTheEightInTheOrderOfTheirCodes)
{
    std::vector<std::string> types;
    for (const ReadingType& type : readingTypes()) {
        types.push_back(std::to_string(type.code) + " " + type.name.toStdString());
    }
    EXPECT_THAT(types, ElementsAre("1 Getting Up", "2 Meal", "3 Meal + 2", "4 Meal + 3", "5 Pre Bed", "6 Calibration",
                                   "7 Exercise", "8 Other"));
}

TEST(LikelyReadingType, FollowsTheHourOfTheDay)
{
    const auto at = [](const char* time) {
        return likelyReadingType(runtime::toDate(QStringLiteral("03/03/2002 ") + QLatin1String(time)));
    };
    EXPECT_EQ(at("00:00"), 1);
    EXPECT_EQ(at("08:59"), 1) << "08:59 is getting up";
    EXPECT_EQ(at("09:00"), 2) << "09:00 is a meal";
    EXPECT_EQ(at("21:59"), 2) << "21:59 is a meal";
    EXPECT_EQ(at("22:00"), 5) << "22:00 is pre bed";
    EXPECT_EQ(at("23:59"), 5);
}

TEST(SaveReading, StoresTheSumOfDateAndTime)
{
    const TestDiary diary;
    saveReading(diary.path(), {"5.6", "03/Mar/2002", "08:15", 3, "after a walk"});
    EXPECT_THAT(storedReadings(diary.path()), ElementsAre("5.6 | 03/03/2002 08:15:00 | 3 | after a walk"));
}

TEST(SaveReading, StoresACommentOfFiftyCharactersWhole)
{
    const TestDiary diary;
    const std::string fifty = "12345678901234567890123456789012345678901234567890";
    saveReading(diary.path(), {"5.6", "03/03/2002", "08:15", 3, QString::fromStdString(fifty)});
    EXPECT_THAT(storedReadings(diary.path()), ElementsAre("5.6 | 03/03/2002 08:15:00 | 3 | " + fifty));
}

TEST(SaveReading, ATextThatIsNoNumberOrDateStoresNothing)
{
    const TestDiary diary;
    EXPECT_EQ(errorOfSaving(diary.path(), {"five", "03/03/2002", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {"", "03/03/2002", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "31/02/2002", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "03/03/2002", "25:00", 3, ""}), 13);
    EXPECT_THAT(storedReadings(diary.path()), IsEmpty());
}

TEST(SaveReading, ANumberBeyondAllNumbersOrNoneStoresNothing)
{
    const TestDiary diary;
    EXPECT_EQ(errorOfSaving(diary.path(), {"1e309", "03/03/2002", "08:15", 3, ""}), 6);
    EXPECT_EQ(errorOfSaving(diary.path(), {"nan", "03/03/2002", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {"inf", "03/03/2002", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {QString(10000, u'9'), "03/03/2002", "08:15", 3, ""}), 6);
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "03/03/2002", "08:15", 3, QString(10000, u'x')}), 3163);
    EXPECT_THAT(storedReadings(diary.path()), IsEmpty());
}

TEST(SaveReading, AMomentOutsideTheCalendarStoresNothing)
{
    const TestDiary diary;
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "01/01/10000", "08:15", 3, ""}), 13);
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "31/12/9999", "01/01/1900 08:15", 3, ""}), 6) << "their sum";
    EXPECT_EQ(errorOfSaving(diary.path(), {"5.6", "01/01/0100", "01/01/1800 08:15", 3, ""}), 6) << "their sum";
    EXPECT_THAT(storedReadings(diary.path()), IsEmpty());
}

TEST(SaveReading, StoresTheLargestNumberAndMinusZeroAsZero)
{
    const TestDiary diary;
    saveReading(diary.path(), {"1e308", "31/12/9999", "23:59", 3, "it's [50]% \"*?#\""});
    saveReading(diary.path(), {"-0", "01/01/0100", "00:00", 3, "\t\u00e9\u4e2d"});
    EXPECT_THAT(storedReadings(diary.path()), ElementsAre("1E+308 | 31/12/9999 23:59:00 | 3 | it's [50]% \"*?#\"",
                                                          "0 | 01/01/0100 | 3 | \t\u00e9\u4e2d"));
}

TEST(SaveReading, WithoutAFileIsAnError)
{
    EXPECT_EQ(errorOfSaving("/nowhere/Nutrition.mdb", {"5.6", "3/3/2002", "8:15", 3, ""}), 3024);
}

} // namespace
} // namespace readings
