#include "runtime/date_pattern.h"

#include "runtime/conversions.h"
#include "runtime/number_pattern.h"

#include <QDate>
#include <QVarLengthArray>

#include <algorithm>

namespace runtime {
namespace {

enum class Part { Literal, Day, WeekdayName, Month, MonthName, Year, Hour, Minute, Second };

struct Token {
    Part part = Part::Literal;
    QStringView text; ///< as it stands in the pattern; its length is the number of digits, or tells short from full
};

/// A pattern is read anew for each date, and a report has thousands of them: so many tokens need no memory of the heap.
using Tokens = QVarLengthArray<Token, 16>;

/// What a run of one letter stands for, e.g. "mmm".
Part partOf(QChar letter, qsizetype length, Part previous)
{
    const bool digits = length <= 2;
    const bool name = length == 3 || length == 4;
    switch (letter.unicode()) {
    case u'd':
        return digits ? Part::Day : name ? Part::WeekdayName : Part::Literal;
    case u'm':
        return digits ? (previous == Part::Hour ? Part::Minute : Part::Month) : name ? Part::MonthName : Part::Literal;
    case u'y':
        return length == 2 || length == 4 ? Part::Year : Part::Literal;
    case u'h':
        return digits ? Part::Hour : Part::Literal;
    case u'n':
        return digits ? Part::Minute : Part::Literal;
    case u's':
        return digits ? Part::Second : Part::Literal;
    default:
        return Part::Literal;
    }
}

Tokens readPattern(QStringView pattern)
{
    Tokens tokens;
    Part previous = Part::Literal; // the last part of a date, whatever stands between
    qsizetype start = 0;
    while (start < pattern.size()) {
        const QChar letter = pattern[start].toLower();
        qsizetype end = start + 1;
        while (end < pattern.size() && pattern[end].toLower() == letter) {
            ++end;
        }
        const Token token{partOf(letter, end - start, previous), pattern.sliced(start, end - start)};
        if (token.part != Part::Literal) {
            previous = token.part;
        }
        tokens.append(token);
        start = end;
    }
    return tokens;
}

QString digits(int number, qsizetype width)
{
    return QString::number(number).rightJustified(width, QLatin1Char('0'));
}

} // namespace

bool isDatePattern(const QString& pattern)
{
    if (isNumberPattern(pattern)) {
        return false;
    }
    const Tokens tokens = readPattern(pattern);
    return std::any_of(tokens.begin(), tokens.end(), [](const Token& token) { return token.part != Part::Literal; });
}

QString formatDate(Date date, const QString& pattern, const QLocale& locale)
{
    const DateParts parts = partsOf(date);
    const Tokens tokens = readPattern(pattern);
    const bool hasDay =
        std::any_of(tokens.begin(), tokens.end(), [](const Token& token) { return token.part == Part::Day; });

    QString text;
    for (const Token& token : tokens) {
        const qsizetype length = token.text.size();
        const auto form = length == 3 ? QLocale::ShortFormat : QLocale::LongFormat;
        switch (token.part) {
        case Part::Literal:
            text += token.text;
            break;
        case Part::Day:
            text += digits(parts.day, length);
            break;
        case Part::WeekdayName:
            text += locale.dayName(QDate(parts.year, parts.month, parts.day).dayOfWeek(), form);
            break;
        case Part::Month:
            text += digits(parts.month, length);
            break;
        case Part::MonthName:
            text += hasDay ? locale.monthName(parts.month, form) : locale.standaloneMonthName(parts.month, form);
            break;
        case Part::Year:
            text += digits(length == 2 ? parts.year % 100 : parts.year, length);
            break;
        case Part::Hour:
            text += digits(parts.hour, length);
            break;
        case Part::Minute:
            text += digits(parts.minute, length);
            break;
        case Part::Second:
            text += digits(parts.second, length);
            break;
        }
    }
    return text;
}

} // namespace runtime
