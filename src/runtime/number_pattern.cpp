#include "runtime/number_pattern.h"

#include "runtime/conversions.h"
#include "runtime/decimal.h"
#include "runtime/number_text.h"

#include <cmath>
#include <optional>
#include <string>

namespace runtime {
namespace {

QString groupByThree(const std::string& digits, const QString& separator)
{
    QString grouped = QLatin1String(digits);
    for (qsizetype position = grouped.size() - 3; position > 0; position -= 3) {
        grouped.insert(position, separator);
    }
    return grouped;
}

} // namespace

bool isNumberPattern(const QString& pattern)
{
    return pattern.contains(u'0') || pattern.contains(u'#');
}

NumberPattern::NumberPattern(const QString& pattern) : NumberPattern(pattern, currentLocale()) {}

NumberPattern::NumberPattern(const QString& pattern, const QLocale& locale)
    : locale_(locale), decimalPoint_(locale.decimalPoint())
{
    read(pattern);
}

void NumberPattern::read(const QString& pattern)
{
    bool started = false;
    for (const QChar character : pattern) {
        if (character == u'0' || character == u'#') {
            started = true;
            if (hasPoint_) {
                ++places_;
                if (character == u'0') {
                    fractionDigits_ = static_cast<std::size_t>(places_);
                }
            } else if (character == u'0' || wholeDigits_ > 0) {
                ++wholeDigits_; // a place after a required one is required too
            }
        } else if (character == u'.' && !hasPoint_) {
            started = true;
            hasPoint_ = true;
        } else if (character == u',' && started && !hasPoint_) {
            grouped_ = true;
        } else {
            percentSigns_ += character == u'%' ? 1 : 0;
            (started ? after_ : before_) += character;
        }
    }
}

QString NumberPattern::format(double number) const
{
    QString text;
    append(text, number);
    return text;
}

void NumberPattern::append(QString& text, double number) const
{
    if (!std::isfinite(number)) {
        text += numberToText(number, locale_);
        return;
    }
    Decimal decimal(number);
    decimal.timesTenToThe(2 * percentSigns_);
    decimal.round(places_);

    std::string whole = decimal.wholeDigits();
    if (whole.size() < wholeDigits_) {
        whole.insert(0, wholeDigits_ - whole.size(), '0');
    }
    if (decimal.isNegative()) {
        text += u'-';
    }
    text += before_;
    if (grouped_) {
        text += groupByThree(whole, locale_.groupSeparator());
    } else {
        text += QLatin1String(whole);
    }
    if (hasPoint_) {
        std::string fraction = decimal.fractionDigits();
        if (fraction.size() < fractionDigits_) {
            fraction.resize(fractionDigits_, '0');
        }
        text += decimalPoint_;
        text += QLatin1String(fraction);
    }
    text += after_;
}

void NumberPattern::append(QString& text, const Value& value) const
{
    if (isNull(value)) {
        return;
    }
    if (const auto* written = std::get_if<QString>(&value)) {
        if (const std::optional<double> number = parseNumber(*written, locale_)) {
            append(text, *number);
        } else {
            text += *written;
        }
        return;
    }
    append(text, toDouble(value));
}

} // namespace runtime
