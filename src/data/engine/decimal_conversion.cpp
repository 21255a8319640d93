#include "data/engine/decimal_conversion.h"

#include "runtime/run_time_error.h"

#include <QByteArray>
#include <QString>

#include <algorithm>

namespace data {
namespace {

constexpr std::uint64_t kTen = 10;

/// Divides the magnitude by ten; returns the remainder.
char takeLastDigit(std::array<std::uint32_t, 4>& magnitude)
{
    std::uint64_t remainder = 0;
    for (std::uint32_t& word : magnitude) {
        const std::uint64_t part = (remainder << 32U) | word;
        word = static_cast<std::uint32_t>(part / kTen);
        remainder = part % kTen;
    }
    return static_cast<char>('0' + remainder);
}

/// Times ten plus the digit; false when that is too large.
bool addDigit(std::array<std::uint32_t, 4>& magnitude, char digit)
{
    auto carry = static_cast<std::uint64_t>(digit - '0');
    for (std::size_t i = magnitude.size(); i-- > 0;) {
        const std::uint64_t part = magnitude[i] * kTen + carry;
        magnitude[i] = static_cast<std::uint32_t>(part & 0xFFFFFFFFU);
        carry = part >> 32U;
    }
    return carry == 0;
}

} // namespace

double numberOf(const jet::Numeric& numeric)
{
    std::array<std::uint32_t, 4> magnitude = numeric.magnitude;
    QByteArray digits;
    while (std::any_of(magnitude.begin(), magnitude.end(), [](std::uint32_t word) { return word != 0; })) {
        digits.prepend(takeLastDigit(magnitude));
    }
    if (digits.isEmpty()) {
        return 0;
    }
    const QByteArray text = digits + 'e' + QByteArray::number(-int{numeric.scale});
    return numeric.negative ? -text.toDouble() : text.toDouble();
}

jet::Numeric numericOf(double number, std::uint8_t precision, std::uint8_t scale)
{
    constexpr int kSignificant = 15;
    // "d.dddddddddddddde+xx": the digits, and where the point stands among them.
    const QByteArray text = QByteArray::number(number, 'e', kSignificant - 1);
    const qsizetype exponentAt = text.indexOf('e');
    QByteArray digits = text.left(exponentAt);
    jet::Numeric result;
    result.scale = scale;
    result.negative = digits.startsWith('-');
    digits.replace("-", "").replace(".", "");
    const int wholeDigits = text.mid(exponentAt + 1).toInt() + 1;
    const int kept = wholeDigits + scale;
    const bool roundsUp = kept >= 0 && kept < digits.size() && digits.at(kept) >= '5';
    digits = kept <= 0 ? QByteArray() : digits.leftJustified(kept, '0', true);
    bool fits = true;
    for (const char digit : digits) {
        fits = fits && addDigit(result.magnitude, digit);
    }
    if (roundsUp) {
        for (std::size_t i = result.magnitude.size(); i-- > 0 && ++result.magnitude[i] == 0;) {
        }
    }
    QByteArray needed;
    for (std::array<std::uint32_t, 4> rest = result.magnitude;
         std::any_of(rest.begin(), rest.end(), [](std::uint32_t word) { return word != 0; });) {
        needed.prepend(takeLastDigit(rest));
    }
    if (!fits || needed.size() > precision) {
        throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
    }
    result.negative = result.negative && !needed.isEmpty();
    return result;
}

} // namespace data
