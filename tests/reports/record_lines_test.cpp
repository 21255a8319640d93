#include "data/database.h"
#include "reports/modDisp.h"
#include "reports/modTabs.h"
#include "runtime/run_time_error.h"
#include "support/test_diary.h"

#include <QLocale>

#include <gtest/gtest.h>

namespace reports {
namespace {

class RecordLines : public testing::Test
{
protected:
    RecordLines() { QLocale::setDefault(QLocale::c()); }

    TestDiary diary_;
};

TEST_F(RecordLines, FieldNamesStandInTheirOrder)
{
    data::Database database(diary_.path());
    EXPECT_EQ(FieldNamesLine(database.openRecordset(QStringLiteral("BloodSugarLevels"))).toStdString(),
              "BloodSugerNo\tBloodSugerLevel\tReadingTime\tReadingType\tComment");
    EXPECT_EQ(FieldNamesLine(database.openRecordset(QStringLiteral("ExcelHistory"))).toStdString(),
              "Mmol\tWhen\tType\tComment");
}

TEST_F(RecordLines, ADoubleHasTwoDigitsAndOneDecimalAndAnyOtherValueIsPlain)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 5.2, 3, QStringLiteral("fine"));
    data::Database database(diary_.path());
    EXPECT_EQ(FormatRecordLine(database.openRecordset(QStringLiteral("BloodSugarLevels"))).toStdString(),
              "1\t05.2\t05/03/2002 07:30:00\t3\tfine");
}

TEST_F(RecordLines, ANullIsAnEmptyColumnExceptInAFieldOfTypeDouble)
{
    diary_.addReading(QStringLiteral("05/03/2002 07:30"), 12, 3);
    data::Database database(diary_.path());
    EXPECT_EQ(FormatRecordLine(database.openRecordset(QStringLiteral(
                                   "Select Comment, BloodSugerLevel, Comment as Again from BloodSugarLevels")))
                  .toStdString(),
              "\t12.0\t");

    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    readings.edit();
    readings.set(QStringLiteral("BloodSugerLevel"), runtime::Null{});
    readings.update();
    try {
        static_cast<void>(FormatRecordLine(readings));
        ADD_FAILURE() << "a null level has a line";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 94);
    }
}

TEST_F(RecordLines, WithoutACurrentRecordThereIsNoLine)
{
    data::Database database(diary_.path());
    const data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    try {
        static_cast<void>(FormatRecordLine(readings));
        ADD_FAILURE() << "an empty table has a line";
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.number(), 3021);
    }
}

} // namespace
} // namespace reports
