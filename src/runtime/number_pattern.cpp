#include "runtime/number_pattern.h"

#include "runtime/decimal.h"
#include "runtime/number_text.h"

#include <cmath>
#include <string>

namespace runtime {
namespace {

struct NumberPattern {
    QString before;
    QString after;
    std::size_t wholeDigits = 0;    ///< at least so many before the point
    std::size_t fractionDigits = 0; ///< at least so many after it
    int places = 0;                 ///< at most so many after it
    int percentSigns = 0;
    bool hasPoint = false;
    bool grouped = false;
};

NumberPattern readPattern(const QString& text)
{
    NumberPattern pattern;
    bool started = false;
    for (const QChar character : text) {
        if (character == u'0' || character == u'#') {
            started = true;
            if (pattern.hasPoint) {
                ++pattern.places;
                if (character == u'0') {
                    pattern.fractionDigits = static_cast<std::size_t>(pattern.places);
                }
            } else if (character == u'0' || pattern.wholeDigits > 0) {
                ++pattern.wholeDigits; // a place after a required one is required too
            }
        } else if (character == u'.' && !pattern.hasPoint) {
            started = true;
            pattern.hasPoint = true;
        } else if (character == u',' && started && !pattern.hasPoint) {
            pattern.grouped = true;
        } else {
            pattern.percentSigns += character == u'%' ? 1 : 0;
            (started ? pattern.after : pattern.before) += character;
        }
    }
    return pattern;
}

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

QString formatNumber(double number, const QString& pattern, const QLocale& locale)
{
    if (!std::isfinite(number)) {
        return numberToText(number, locale);
    }
    const NumberPattern places = readPattern(pattern);
    Decimal decimal(number);
    decimal.timesTenToThe(2 * places.percentSigns);
    decimal.round(places.places);

    std::string whole = decimal.wholeDigits();
    if (whole.size() < places.wholeDigits) {
        whole.insert(0, places.wholeDigits - whole.size(), '0');
    }
    std::string fraction = decimal.fractionDigits();
    if (fraction.size() < places.fractionDigits) {
        fraction.resize(places.fractionDigits, '0');
    }

    QString text = decimal.isNegative() ? QStringLiteral("-") : QString();
    text += places.before;
    text += places.grouped ? groupByThree(whole, locale.groupSeparator()) : QLatin1String(whole);
    if (places.hasPoint) {
        text += locale.decimalPoint();
        text += QLatin1String(fraction);
    }
    return text + places.after;
}

} // namespace runtime
