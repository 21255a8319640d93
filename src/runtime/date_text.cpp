#include "runtime/date_text.h"

#include "runtime/calendar.h"
#include "runtime/date_pattern.h"

#include <QStringList>

#include <algorithm>
#include <vector>

namespace runtime {
namespace {

struct WrittenNumber {
    int value = 0;
    qsizetype digits = 0;
};

struct MonthName {
    QString text;
    int month = 0;
    bool operator==(const MonthName&) const = default;
};

/// Short and full, as they stand beside a day and alone; a short name's dot may be left out.
QStringList namesOf(int month, const QLocale& locale)
{
    QStringList names;
    for (const auto form : {QLocale::ShortFormat, QLocale::LongFormat}) {
        names << locale.monthName(month, form) << locale.standaloneMonthName(month, form);
    }
    for (const QString& name : QStringList(names)) {
        if (name.endsWith(u'.')) {
            names << name.chopped(1);
        }
    }
    return names;
}

/// The locale's names and the English ones, the longest first.
std::vector<MonthName> allMonthNames(const QLocale& locale)
{
    std::vector<MonthName> names;
    for (const QLocale& language : {locale, QLocale::c(), QLocale(QLocale::English, QLocale::UnitedKingdom)}) {
        for (int month = 1; month <= 12; ++month) {
            for (const QString& text : namesOf(month, language)) {
                const MonthName name{text, month};
                if (!text.isEmpty() && std::find(names.begin(), names.end(), name) == names.end()) {
                    names.push_back(name);
                }
            }
        }
    }
    std::stable_sort(names.begin(), names.end(), [](const MonthName& left, const MonthName& right) {
        return left.text.size() > right.text.size();
    });
    return names;
}

/// Made once for the locale in force: making them takes far longer than reading a date.
const std::vector<MonthName>& monthNames(const QLocale& locale)
{
    thread_local QLocale of = locale;
    thread_local std::vector<MonthName> names = allMonthNames(locale);
    if (of != locale) {
        of = locale;
        names = allMonthNames(locale);
    }
    return names;
}

/// Takes parts from the front of a text.
class DateReader
{
public:
    DateReader(QStringView text, const QLocale& locale) : rest_(text), locale_(locale) {}

    std::optional<Date> read()
    {
        DateParts parts;
        const QStringView start = rest_;
        if (readTime(parts) && rest_.isEmpty()) {
            return dateFromParts(parts);
        }
        rest_ = start;
        parts = {};
        if (!readDay(parts)) {
            return std::nullopt;
        }
        if (!rest_.isEmpty() && !(skipBlanks() && readTime(parts) && rest_.isEmpty())) {
            return std::nullopt;
        }
        return dateFromParts(parts);
    }

private:
    bool readDay(DateParts& parts)
    {
        const WrittenNumber first = readNumber();
        if (first.digits == 0 || !skipSeparator() || !readMonth(parts) || !skipSeparator()) {
            return false;
        }
        const WrittenNumber last = readNumber();
        const bool yearFirst = first.digits == 4;
        const WrittenNumber& day = yearFirst ? last : first;
        parts.day = day.value;
        return day.digits >= 1 && day.digits <= 2 && takeYear(yearFirst ? first : last, parts);
    }

    static bool takeYear(const WrittenNumber& year, DateParts& parts)
    {
        if (year.digits == 2) {
            parts.year = yearOfTwoDigits(year.value);
            return true;
        }
        parts.year = year.value;
        return year.digits == 4;
    }

    bool readMonth(DateParts& parts)
    {
        if (readMonthName(parts)) {
            return true;
        }
        const WrittenNumber month = readNumber();
        parts.month = month.value;
        return month.digits >= 1 && month.digits <= 2;
    }

    /// Names can hold blanks, marks and digits ("1-р сар"), so they are looked for whole and before numbers; the
    /// longest that fits is meant.
    bool readMonthName(DateParts& parts)
    {
        const bool isNumber = !rest_.isEmpty() && rest_.front().isDigit();
        for (const MonthName& name : monthNames(locale_)) {
            // Most months are numbers and most names begin with none: the first character tells them apart.
            if (name.text.front().isDigit() == isNumber && rest_.startsWith(name.text, Qt::CaseInsensitive) &&
                endsAtSeparator(name.text.size())) {
                rest_ = rest_.mid(name.text.size());
                parts.month = name.month;
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] bool endsAtSeparator(qsizetype position) const
    {
        return position < rest_.size() && (isMark(rest_[position]) || rest_[position].isSpace());
    }

    /// h:mm or h:mm:ss, then AM or PM or neither.
    bool readTime(DateParts& parts)
    {
        const WrittenNumber hour = readNumber();
        const bool hasMinute = skip(u':');
        const WrittenNumber minute = readNumber();
        if (hour.digits < 1 || hour.digits > 2 || !hasMinute || minute.digits != 2) {
            return false;
        }
        parts.hour = hour.value;
        parts.minute = minute.value;
        if (skip(u':')) {
            const WrittenNumber second = readNumber();
            parts.second = second.value;
            if (second.digits != 2) {
                return false;
            }
        }
        return rest_.isEmpty() || readHalfOfDay(parts);
    }

    bool readHalfOfDay(DateParts& parts)
    {
        skipBlanks();
        const bool afternoon = rest_.compare(u"pm", Qt::CaseInsensitive) == 0;
        if (!afternoon && rest_.compare(u"am", Qt::CaseInsensitive) != 0) {
            return false;
        }
        rest_ = {};
        if (parts.hour < 1 || parts.hour > 12) {
            return false;
        }
        parts.hour = parts.hour % 12 + (afternoon ? 12 : 0);
        return true;
    }

    /// At most four digits: no part of a date has more, and more would not fit the number.
    WrittenNumber readNumber()
    {
        WrittenNumber number;
        while (number.digits < 4 && !rest_.isEmpty() && rest_.front().isDigit()) {
            number.value = number.value * 10 + rest_.front().digitValue();
            ++number.digits;
            rest_ = rest_.mid(1);
        }
        return number;
    }

    static bool isMark(QChar character) { return character == u'/' || character == u'-' || character == u'.'; }

    bool skip(QChar character)
    {
        if (!rest_.startsWith(character)) {
            return false;
        }
        rest_ = rest_.mid(1);
        return true;
    }

    bool skipBlanks()
    {
        const qsizetype before = rest_.size();
        while (!rest_.isEmpty() && rest_.front().isSpace()) {
            rest_ = rest_.mid(1);
        }
        return rest_.size() < before;
    }

    /// One mark with or without blanks around it, or blanks alone.
    bool skipSeparator()
    {
        const bool blanks = skipBlanks();
        if (!rest_.isEmpty() && isMark(rest_.front())) {
            rest_ = rest_.mid(1);
            skipBlanks();
            return true;
        }
        return blanks;
    }

    QStringView rest_;
    const QLocale& locale_;
};

} // namespace

std::optional<Date> parseDate(QStringView text, const QLocale& locale)
{
    return DateReader(text.trimmed(), locale).read();
}

QString dateToText(Date date)
{
    static const DatePattern day(QStringLiteral("dd/mm/yyyy"), QLocale::c());
    static const DatePattern dayAndTime(QStringLiteral("dd/mm/yyyy hh:nn:ss"), QLocale::c());
    const DateParts parts = partsOf(date);
    const bool midnight = parts.hour == 0 && parts.minute == 0 && parts.second == 0;
    return (midnight ? day : dayAndTime).format(date);
}

} // namespace runtime
