// Number patterns such as "#0.0" and "#0%".
#pragma once

#include "runtime/value.h"

#include <QLocale>
#include <QString>

#include <cstddef>

namespace runtime {

/// Whether the pattern has a place for a digit.
[[nodiscard]] bool isNumberPattern(const QString& pattern);

/// A pattern read once, for as many numbers as a report has: the same texts as format() gives. A comma between digit
/// places groups the digits by three; what is no number (NaN) or infinite shows as plain text.
class NumberPattern
{
public:
    /// In the locale in force, or in another; a change of the locale in force later changes nothing here.
    explicit NumberPattern(const QString& pattern);
    NumberPattern(const QString& pattern, const QLocale& locale);

    [[nodiscard]] QString format(double number) const;
    void append(QString& text, double number) const;
    /// Appends nothing for null. A text that is no number is appended as it is; another value that is none is an error
    /// as for toDouble().
    void append(QString& text, const Value& value) const;

private:
    void read(const QString& pattern);

    QLocale locale_;
    QString decimalPoint_;
    QString before_;
    QString after_;
    std::size_t wholeDigits_ = 0;    ///< at least so many before the point
    std::size_t fractionDigits_ = 0; ///< at least so many after it
    int places_ = 0;                 ///< at most so many after it
    int percentSigns_ = 0;
    bool hasPoint_ = false;
    bool grouped_ = false;
};

} // namespace runtime
