#include "data/language/date_literal.h"

#include "runtime/calendar.h"
#include "runtime/conversions.h"

#include <QRegularExpression>

#include <algorithm>

namespace data {
namespace {

/// "10:30:15 PM" as parts of a day; false when it is no time.
bool readTime(const QString& text, runtime::DateParts& parts)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{1,2})(?::(\\d{1,2}))?(?::(\\d{1,2}))?\\s*([AaPp][Mm])?$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch() || (match.capturedLength(2) == 0 && match.capturedLength(4) == 0)) {
        return false;
    }
    parts.hour = match.captured(1).toInt();
    parts.minute = match.captured(2).toInt();
    parts.second = match.captured(3).toInt();
    if (match.capturedLength(4) > 0) {
        if (parts.hour < 1 || parts.hour > 12) {
            return false;
        }
        const bool afternoon = match.captured(4).front().toLower() == u'p';
        parts.hour = parts.hour % 12 + (afternoon ? 12 : 0);
    }
    return parts.hour < 24 && parts.minute < 60 && parts.second < 60;
}

/// The two halves of "date time", either of them empty where it is not there.
struct Halves {
    QString date;
    QString time;
};

Halves halvesOf(const QString& text)
{
    const qsizetype colon = text.indexOf(u':');
    static const QRegularExpression bareHour(QStringLiteral("(?:^|\\s)\\d{1,2}\\s*[AaPp][Mm]$"));
    const qsizetype hour = colon < 0 ? text.indexOf(bareHour) : std::max<qsizetype>(text.lastIndexOf(u' ', colon), 0);
    if (hour < 0) {
        return {text, {}};
    }
    return {text.left(hour).trimmed(), text.mid(hour).trimmed()};
}

/// Month/day/year; only called for texts of that shape.
std::optional<runtime::Date> monthFirst(const QRegularExpressionMatch& match, const runtime::DateParts& time)
{
    runtime::DateParts parts = time;
    parts.month = match.captured(1).toInt();
    parts.day = match.captured(2).toInt();
    if (parts.month > 12) {
        std::swap(parts.month, parts.day);
    }
    const QString year = match.captured(3);
    parts.year = year.size() == 2 ? runtime::yearOfTwoDigits(year.toInt()) : year.toInt();
    return runtime::dateFromParts(parts);
}

} // namespace

std::optional<runtime::Date> dateOfLiteral(QStringView content)
{
    const QString text = content.trimmed().toString();
    const Halves halves = halvesOf(text);
    runtime::DateParts time;
    if (!halves.time.isEmpty() && !readTime(halves.time, time)) {
        return std::nullopt;
    }
    if (halves.date.isEmpty()) {
        return halves.time.isEmpty() ? std::nullopt : runtime::dateFromParts(time);
    }
    static const QRegularExpression numeric(QStringLiteral("^(\\d{1,2})[/\\-.](\\d{1,2})[/\\-.](\\d{2}|\\d{4})$"));
    const QRegularExpressionMatch match = numeric.match(halves.date);
    if (match.hasMatch()) {
        return monthFirst(match, time);
    }
    if (!runtime::isDate(halves.date)) {
        return std::nullopt;
    }
    runtime::DateParts parts = runtime::partsOf(runtime::toDate(halves.date));
    parts.hour = time.hour;
    parts.minute = time.minute;
    parts.second = time.second;
    return runtime::dateFromParts(parts);
}

} // namespace data
