#include "support/test_diary.h"

#include "data/database.h"
#include "data/new_diary/diary_builder.h"
#include "runtime/conversions.h"

TestDiary::TestDiary() : path_(folder_.filePath(QStringLiteral("Nutrition.mdb")))
{
    data::createDiary({path_, {}, 0}, runtime::FixedClock(runtime::Date{46000}));
}

void TestDiary::addReading(const QString& when, double mmol, int type, const runtime::Value& comment)
{
    data::Database database(path_);
    data::Recordset readings =
        database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    readings.addNew();
    readings.set(QStringLiteral("BloodSugerLevel"), mmol);
    readings.set(QStringLiteral("ReadingTime"), runtime::toDate(when));
    readings.set(QStringLiteral("ReadingType"), qint32{type});
    if (!runtime::isNull(comment)) {
        readings.set(QStringLiteral("Comment"), comment);
    }
    readings.update();
}
