// Date patterns such as "dd/mm/yyyy" and "dddd dd mmmm yyyy hh:mm".
#pragma once

#include "runtime/value.h"

#include <QLocale>
#include <QString>
#include <QVarLengthArray>

namespace runtime {

/// A pattern without a place for a number's digits, read once, for as many dates as a report has: the same texts as
/// format() gives. Letters count without regard to case. A month's name beside a day of the month stands in the form
/// that the language uses there ("05 marca 2002"), else in its own ("marzec 2002").
class DatePattern
{
public:
    /// In the locale in force, or in another; a change of the locale in force later changes nothing here.
    explicit DatePattern(const QString& pattern);
    DatePattern(const QString& pattern, const QLocale& locale);

    /// Whether the pattern names a part of a date or time.
    [[nodiscard]] bool hasParts() const;

    [[nodiscard]] QString format(Date date) const;
    void append(QString& text, Date date) const;

private:
    enum class Part { Literal, Day, WeekdayName, Month, MonthName, Year, Hour, Minute, Second };

    struct Token {
        Part part = Part::Literal;
        qsizetype start = 0;
        qsizetype length = 0; ///< the number of digits, or tells a short name from a full one
    };

    static Part partOf(QChar letter, qsizetype length, Part previous);
    void read();
    [[nodiscard]] bool has(Part part) const;

    QString pattern_;
    QLocale locale_;
    QVarLengthArray<Token, 16> tokens_; ///< a pattern read for one date needs no memory of the heap for them
    bool hasDay_ = false;
};

} // namespace runtime
