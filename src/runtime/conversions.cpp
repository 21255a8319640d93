#include "runtime/conversions.h"

#include "runtime/calendar.h"
#include "runtime/date_text.h"
#include "runtime/number_text.h"
#include "runtime/run_time_error.h"

#include <cmath>
#include <limits>

namespace runtime {
namespace {

double numberIn(const QString& text)
{
    const std::optional<double> number = parseNumber(text, currentLocale());
    if (!number) {
        throw RunTimeError(ErrorNumber::TypeMismatch);
    }
    if (!std::isfinite(*number)) {
        throw RunTimeError(ErrorNumber::Overflow);
    }
    return *number;
}

Date dateIn(const QString& text)
{
    const std::optional<Date> date = parseDate(text, currentLocale());
    if (!date) {
        throw RunTimeError(ErrorNumber::TypeMismatch);
    }
    return *date;
}

Date dateOfNumber(double days)
{
    const Date date{days};
    static_cast<void>(partsOf(date)); // throws where there is no such day
    return date;
}

template <typename Integer>
Integer toWhole(const Value& value)
{
    const double number = toDouble(value);
    const double floor = std::floor(number);
    const double fraction = number - floor;
    const bool up = fraction > 0.5 || (fraction == 0.5 && std::fmod(floor, 2) != 0);
    const double whole = up ? floor + 1 : floor;
    if (!(whole >= std::numeric_limits<Integer>::min() && whole <= std::numeric_limits<Integer>::max())) {
        throw RunTimeError(ErrorNumber::Overflow);
    }
    return static_cast<Integer>(whole);
}

/// A member for each kind of value, so that a new kind does not compile until it is thought of here.
struct ToDouble {
    double operator()(Null /*value*/) const { throw RunTimeError(ErrorNumber::InvalidUseOfNull); }
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(qint32 value) const { return value; }
    double operator()(double value) const { return value; }
    double operator()(Date value) const { return value.days; }
    double operator()(const QString& value) const { return numberIn(value); }
    double operator()(const QByteArray& /*value*/) const { throw RunTimeError(ErrorNumber::TypeMismatch); }
};

struct ToText {
    QString operator()(Null /*value*/) const { return {}; }
    QString operator()(bool value) const { return value ? QStringLiteral("True") : QStringLiteral("False"); }
    QString operator()(qint32 value) const { return QString::number(value); }
    QString operator()(double value) const { return numberToText(value, currentLocale()); }
    QString operator()(Date value) const { return dateToText(value); }
    QString operator()(const QString& value) const { return value; }
    QString operator()(const QByteArray& value) const { return QString::fromLatin1(value.toHex()); }
};

} // namespace

QLocale currentLocale()
{
    return QLocale();
}

bool isNumeric(const QString& text)
{
    const std::optional<double> number = parseNumber(text, currentLocale());
    return number && std::isfinite(*number);
}

bool isDate(const QString& text)
{
    return parseDate(text, currentLocale()).has_value();
}

double toDouble(const Value& value)
{
    return std::visit(ToDouble{}, value);
}

Date toDate(const Value& value)
{
    if (const auto* date = std::get_if<Date>(&value)) {
        return *date;
    }
    if (const auto* text = std::get_if<QString>(&value)) {
        return dateIn(*text);
    }
    return dateOfNumber(toDouble(value));
}

qint32 toLong(const Value& value)
{
    return toWhole<qint32>(value);
}

qint16 toInteger(const Value& value)
{
    return toWhole<qint16>(value);
}

std::optional<qint32> asLong(double wholeNumber)
{
    using Long = std::numeric_limits<qint32>;
    const bool fits = wholeNumber >= Long::min() && wholeNumber <= Long::max();
    return fits ? std::optional(static_cast<qint32>(wholeNumber)) : std::nullopt;
}

QString toText(const Value& value)
{
    return std::visit(ToText{}, value);
}

} // namespace runtime
