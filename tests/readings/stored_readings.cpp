#include "readings/stored_readings.h"

#include "data/database.h"
#include "runtime/conversions.h"

std::vector<std::string> storedReadings(const QString& diaryPath)
{
    data::Database database(diaryPath);
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    std::vector<std::string> lines;
    for (; !readings.eof(); readings.moveNext()) {
        QStringList fields;
        for (const char* name : {"BloodSugerLevel", "ReadingTime", "ReadingType", "Comment"}) {
            fields.append(runtime::toText(readings.value(QLatin1String(name))));
        }
        lines.push_back(fields.join(QStringLiteral(" | ")).toStdString());
    }
    return lines;
}
