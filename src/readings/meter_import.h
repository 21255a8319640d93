// Readings from a blood glucose meter's export: a text file of lines with comma-separated fields.
#pragma once

#include <QString>

namespace readings {

/// The moment of the latest stored reading as "dd/mm/yyyy hh:mm"; empty when there is none.
[[nodiscard]] QString latestReading(const QString& diaryPath);

struct MeterImport {
    QString diaryPath;
    QString meterPath; ///< an existing file
    QString after;     ///< the cut-off as typed: readings at this moment or before it are passed over
};

/// Adds the file's readings that are later than the cut-off, as unclassified ones, and returns how many. Lines that do
/// not begin with a date are passed over. All in one transaction, which is committed at the end and also when a line
/// stops the import: what was added before it stays.
/// Errors name the line by number and text: 13 for a cut-off that is no date or a text that is no time or number,
/// 9 for too few fields, 6 after 32,767 readings. 53 when the file cannot be read.
int ImportReadings(const MeterImport& import);

} // namespace readings
