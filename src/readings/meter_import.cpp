#include "readings/meter_import.h"

#include "data/database.h"
#include "readings/text_lines.h"
#include "runtime/conversions.h"
#include "runtime/error_hints.h"
#include "runtime/format.h"
#include "runtime/number_text.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace readings {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

constexpr int kMostReadings = std::numeric_limits<qint16>::max(); // they are counted in 16 bits
constexpr qint32 kUnclassified = 0;

enum FieldPosition { DateField, TimeField, LevelField };

/// The line's whole fields: the one in which a long line was cut off could end in a shorter number.
QStringList fieldsOf(const TextLines& lines)
{
    QStringList fields = lines.text().split(u',');
    if (lines.isCut()) {
        fields.removeLast();
    }
    return fields;
}

const QString& fieldAt(FieldPosition position, const QStringList& fields)
{
    if (position >= fields.size()) {
        throw RunTimeError(ErrorNumber::SubscriptOutOfRange).withHint(QStringLiteral("It has too few fields."));
    }
    return fields.at(position);
}

/// A meter writes a point whatever the user's locale is; what the user types follows the locale.
double levelIn(const QString& text)
{
    const std::optional<double> level = runtime::parseNumber(text, QLocale::c());
    if (!level) {
        throw RunTimeError(ErrorNumber::TypeMismatch).withHint(QStringLiteral("Its reading is not a number."));
    }
    if (!std::isfinite(*level)) {
        throw RunTimeError(ErrorNumber::Overflow).withHint(QStringLiteral("Its reading is too large."));
    }
    return *level;
}

/// One run over the lines of a file.
class Pass
{
public:
    Pass(data::Recordset readings, const QString& after) : readings_(std::move(readings)), after_(after) {}

    void take(const QStringList& fields)
    {
        const QString date = fields.value(DateField).mid(1);
        if (!runtime::isDate(date)) {
            return;
        }
        const QString moment = date + u' ' + fieldAt(TimeField, fields).mid(1);
        const runtime::Date time = runtime::withHintOnError(
            QStringLiteral("Its date and time together are not a moment."), [&] { return runtime::toDate(moment); });
        if (cutOff().days < time.days) {
            add(time, levelIn(fieldAt(LevelField, fields)));
        }
    }

    [[nodiscard]] int added() const { return added_; }
    [[nodiscard]] QString latestAdded() const { return added_ == 0 ? after_ : runtime::toText(latestAdded_); }

private:
    /// Converted at the first reading: a file without one needs no cut-off.
    runtime::Date cutOff()
    {
        if (!cutOff_) {
            cutOff_ = runtime::withHintOnError(QStringLiteral("The cut-off \"%1\" is not a date and time.").arg(after_),
                                               [&] { return runtime::toDate(after_); });
        }
        return *cutOff_;
    }

    void add(runtime::Date time, double level)
    {
        if (added_ == kMostReadings) {
            throw RunTimeError(ErrorNumber::Overflow)
                .withHint(QStringLiteral("One import adds at most %1 readings.").arg(kMostReadings));
        }
        readings_.addNew();
        readings_.set(QStringLiteral("ReadingTime"), time);
        readings_.set(QStringLiteral("BloodSugerLevel"), level);
        readings_.set(QStringLiteral("ReadingType"), kUnclassified);
        readings_.update();
        latestAdded_.days = added_ == 0 ? time.days : std::max(latestAdded_.days, time.days);
        ++added_;
    }

    data::Recordset readings_;
    QString after_;
    std::optional<runtime::Date> cutOff_;
    int added_ = 0;
    runtime::Date latestAdded_; ///< once a reading was added
};

/// The latest stored moment; empty when there is none.
QString latestIn(data::Database& database, const QString& pattern)
{
    const data::Recordset latest = database.openRecordset(QStringLiteral("LastBldReading"));
    return latest.eof() ? QString() : runtime::format(latest.value(QStringLiteral("LastReading")), pattern);
}

/// As it may stand within a sentence.
QString quoted(QString line)
{
    constexpr qsizetype kMostCharacters = 60;
    if (line.size() > kMostCharacters) {
        line = line.left(kMostCharacters) + QStringLiteral("...");
    }
    std::replace_if(
        line.begin(), line.end(), [](QChar character) { return !character.isPrint(); }, u' ');
    return u'"' + line + u'"';
}

/// Errors of a line's text or of the cut-off. All others are of the meter's file or the diary, which then is not
/// written.
bool isOfText(const RunTimeError& error)
{
    return error.code() == ErrorNumber::TypeMismatch || error.code() == ErrorNumber::SubscriptOutOfRange ||
           error.code() == ErrorNumber::Overflow;
}

RunTimeError withNothingAdded(const RunTimeError& error)
{
    return error.withHint(QStringLiteral("No reading was added. ") + error.hint());
}

void commit(data::Database::Batch& batch)
{
    try {
        batch.commit();
    } catch (const RunTimeError& error) {
        throw withNothingAdded(error);
    }
}

ImportStopped stoppedAt(const TextLines& lines, const RunTimeError& error, const Pass& pass)
{
    const QString place = QStringLiteral("The import stopped at line %1, ").arg(lines.number()) + quoted(lines.text());
    const QString outcome =
        pass.added() == 0
            ? QStringLiteral("Nothing was added.")
            : QStringLiteral("Readings added before it: %1. Importing again with the cut-off %2 goes on from there, if "
                             "the oldest readings of the file come first.")
                  .arg(pass.added())
                  .arg(pass.latestAdded());
    return {error.withHint(place + QStringLiteral(". ") + error.hint() + u' ' + outcome), pass.latestAdded()};
}

} // namespace

QString latestReading(const QString& diaryPath)
{
    data::Database database(diaryPath);
    return latestIn(database, QStringLiteral("dd/mm/yyyy hh:mm"));
}

int ImportReadings(const MeterImport& import)
{
    TextLines lines(import.meterPath);
    data::Database database(import.diaryPath);
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    data::Database::Batch batch(database);
    Pass pass(std::move(readings),
              import.after ? *import.after : latestIn(database, QStringLiteral("dd/mm/yyyy hh:mm:ss")));
    try {
        while (lines.next()) {
            pass.take(fieldsOf(lines));
        }
    } catch (const RunTimeError& error) {
        if (!isOfText(error)) {
            throw withNothingAdded(error);
        }
        commit(batch);
        throw stoppedAt(lines, error, pass);
    }
    commit(batch);
    return pass.added();
}

} // namespace readings
