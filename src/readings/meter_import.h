// Readings from a blood glucose meter's export: a text file of lines with comma-separated fields.
#pragma once

#include "runtime/run_time_error.h"

#include <QString>

#include <optional>

namespace readings {

/// The moment of the latest stored reading as "dd/mm/yyyy hh:mm"; empty when there is none.
[[nodiscard]] QString latestReading(const QString& diaryPath);

struct MeterImport {
    QString diaryPath;
    QString meterPath; ///< an existing file
    /// The cut-off as typed: readings at this moment or before it are passed over. Without it the diary's latest
    /// reading is the cut-off, to the second, and is looked up when no other program can add one any more.
    std::optional<QString> after;
};

/// A line that cannot be taken ended an import; the hint names it by number and text, and what was added before it.
class ImportStopped : public runtime::RunTimeError
{
public:
    ImportStopped(const runtime::RunTimeError& error, QString goOnAfter)
        : RunTimeError(error), goOnAfter_(std::move(goOnAfter))
    {
    }

    /// The cut-off that goes on where the import stopped: the latest moment that it added, or, when it added nothing,
    /// the cut-off that it was given.
    [[nodiscard]] const QString& goOnAfter() const { return goOnAfter_; }

private:
    QString goOnAfter_;
};

/// Adds the file's readings that are later than the cut-off, as unclassified ones, and returns how many. Lines that do
/// not begin with a date are passed over. The number has a point in every locale.
/// All in one transaction, which is committed at the end and also when a line stops the import: what was added before
/// it stays. Any other error adds nothing. Throws ImportStopped with 13 for a cut-off that is no date or a text that is
/// no time or number, 9 for too few fields, 6 after 32,767 readings; the errors of TextLines; and those of the diary.
int ImportReadings(const MeterImport& import);

} // namespace readings
