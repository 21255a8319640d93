#include "runtime/number_text.h"

#include "runtime/decimal.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace runtime {
namespace {

constexpr qsizetype kGroupDigits = 3;
constexpr int kMostWholeDigits = 15;
constexpr int kMostLeadingZeros = 4;

/// Blanks of several widths and both apostrophes separate groups too; nobody types the exact one.
QChar plainSeparator(QChar separator)
{
    if (separator.isSpace()) {
        return QLatin1Char(' ');
    }
    return separator == QChar(0x2019) ? QLatin1Char('\'') : separator;
}

/// Reads a number from the front and writes it as from_chars takes it.
class NumberReader
{
public:
    NumberReader(QStringView text, const QLocale& locale) : rest_(text), locale_(locale) {}

    std::optional<double> read()
    {
        readSign();
        const qsizetype wholeDigits = readWhole();
        if (wholeDigits < 0) {
            return std::nullopt;
        }
        qsizetype fractionDigits = 0;
        if (skip(locale_.decimalPoint())) {
            ascii_ += '.';
            fractionDigits = readDigits();
        }
        if (wholeDigits + fractionDigits == 0 || !readExponent() || !rest_.isEmpty()) {
            return std::nullopt;
        }
        return convert();
    }

private:
    bool skip(QStringView what)
    {
        if (what.isEmpty() || !rest_.startsWith(what)) {
            return false;
        }
        rest_ = rest_.mid(what.size());
        return true;
    }

    void readSign()
    {
        if (skip(u"-") || skip(u"\u2212")) {
            ascii_ += '-';
        } else {
            skip(u"+");
        }
    }

    qsizetype readDigits()
    {
        qsizetype count = 0;
        while (!rest_.isEmpty() && rest_.front().isDigit()) {
            ascii_ += static_cast<char>('0' + rest_.front().digitValue());
            rest_ = rest_.mid(1);
            ++count;
        }
        return count;
    }

    [[nodiscard]] bool atGroupSeparator() const
    {
        const QString separator = locale_.groupSeparator();
        return separator.size() == 1 && rest_.size() > 1 &&
               plainSeparator(rest_.front()) == plainSeparator(separator.front()) && rest_[1].isDigit();
    }

    /// How many digits; -1 when the groups are not three digits each.
    qsizetype readWhole()
    {
        qsizetype count = readDigits();
        if (count == 0 || !atGroupSeparator()) {
            return count;
        }
        if (count > kGroupDigits) {
            return -1;
        }
        while (atGroupSeparator()) {
            rest_ = rest_.mid(1);
            if (readDigits() != kGroupDigits) {
                return -1;
            }
            count += kGroupDigits;
        }
        return count;
    }

    bool readExponent()
    {
        if (!skip(u"e") && !skip(u"E")) {
            return true;
        }
        ascii_ += 'e';
        if (skip(u"-") || skip(u"\u2212")) {
            ascii_ += '-';
            exponentIsNegative_ = true;
        } else {
            skip(u"+");
        }
        return readDigits() > 0;
    }

    [[nodiscard]] std::optional<double> convert() const
    {
        double number = 0;
        const auto [end, error] = std::from_chars(ascii_.data(), ascii_.data() + ascii_.size(), number);
        if (error == std::errc::result_out_of_range) {
            return exponentIsNegative_ ? 0.0 : std::numeric_limits<double>::infinity();
        }
        if (error != std::errc() || end != ascii_.data() + ascii_.size()) {
            return std::nullopt;
        }
        return number;
    }

    QStringView rest_;
    const QLocale& locale_;
    std::string ascii_;
    bool exponentIsNegative_ = false;
};

} // namespace

std::optional<double> parseNumber(QStringView text, const QLocale& locale)
{
    return NumberReader(text.trimmed(), locale).read();
}

QString numberToText(double number, const QLocale& locale)
{
    if (std::isnan(number)) {
        return QStringLiteral("NaN");
    }
    if (std::isinf(number)) {
        return number < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    }
    Decimal decimal(number);
    if (decimal.isZero()) {
        return QStringLiteral("0");
    }
    int power = 0;
    if (decimal.exponent() > kMostWholeDigits || decimal.exponent() < -kMostLeadingZeros) {
        power = decimal.exponent() - 1;
        decimal.timesTenToThe(-power);
    }
    const std::string whole = decimal.wholeDigits();
    const std::string fraction = decimal.fractionDigits();
    QString text = decimal.isNegative() ? QStringLiteral("-") : QString();
    text += whole.empty() ? QStringLiteral("0") : QString::fromStdString(whole);
    if (!fraction.empty()) {
        text += locale.decimalPoint() + QString::fromStdString(fraction);
    }
    if (power != 0) {
        text += (power < 0 ? QStringLiteral("E-") : QStringLiteral("E+")) +
                QStringLiteral("%1").arg(std::abs(power), 2, 10, QLatin1Char('0'));
    }
    return text;
}

} // namespace runtime
