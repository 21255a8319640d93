#include "runtime/date_pattern.h"

#include "runtime/calendar.h"
#include "runtime/conversions.h"

#include <QDate>

#include <algorithm>
#include <array>
#include <charconv>

namespace runtime {
namespace {

void appendDigits(QString& text, int number, qsizetype width)
{
    std::array<char, 12> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const qsizetype count = end - digits.data();
    for (qsizetype position = count; position < width; ++position) {
        text += u'0';
    }
    text += QLatin1String(digits.data(), count);
}

} // namespace

DatePattern::DatePattern(const QString& pattern) : DatePattern(pattern, currentLocale()) {}

DatePattern::DatePattern(const QString& pattern, const QLocale& locale) : pattern_(pattern), locale_(locale)
{
    read();
    hasDay_ = has(Part::Day);
}

/// What a run of one letter stands for, e.g. "mmm".
DatePattern::Part DatePattern::partOf(QChar letter, qsizetype length, Part previous)
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

void DatePattern::read()
{
    Part previous = Part::Literal; // the last part of a date, whatever stands between
    qsizetype start = 0;
    while (start < pattern_.size()) {
        const QChar letter = pattern_.at(start).toLower();
        qsizetype end = start + 1;
        while (end < pattern_.size() && pattern_.at(end).toLower() == letter) {
            ++end;
        }
        const Token token{partOf(letter, end - start, previous), start, end - start};
        if (token.part != Part::Literal) {
            previous = token.part;
        }
        tokens_.append(token);
        start = end;
    }
}

bool DatePattern::has(Part part) const
{
    return std::any_of(tokens_.begin(), tokens_.end(), [part](const Token& token) { return token.part == part; });
}

bool DatePattern::hasParts() const
{
    return std::any_of(tokens_.begin(), tokens_.end(), [](const Token& token) { return token.part != Part::Literal; });
}

QString DatePattern::format(Date date) const
{
    QString text;
    append(text, date);
    return text;
}

void DatePattern::append(QString& text, Date date) const
{
    const DateParts parts = partsOf(date);
    for (const Token& token : tokens_) {
        const auto form = token.length == 3 ? QLocale::ShortFormat : QLocale::LongFormat;
        switch (token.part) {
        case Part::Literal:
            text += QStringView(pattern_).sliced(token.start, token.length);
            break;
        case Part::Day:
            appendDigits(text, parts.day, token.length);
            break;
        case Part::WeekdayName:
            text += locale_.dayName(QDate(parts.year, parts.month, parts.day).dayOfWeek(), form);
            break;
        case Part::Month:
            appendDigits(text, parts.month, token.length);
            break;
        case Part::MonthName:
            text += hasDay_ ? locale_.monthName(parts.month, form) : locale_.standaloneMonthName(parts.month, form);
            break;
        case Part::Year:
            appendDigits(text, token.length == 2 ? parts.year % 100 : parts.year, token.length);
            break;
        case Part::Hour:
            appendDigits(text, parts.hour, token.length);
            break;
        case Part::Minute:
            appendDigits(text, parts.minute, token.length);
            break;
        case Part::Second:
            appendDigits(text, parts.second, token.length);
            break;
        }
    }
}

} // namespace runtime
