// Any text as a number, a date and a pattern, in any locale: a conversion ends in a value or in a run-time error, and
// what the program shows of a value it takes back as the same value.
//
// The input is text: on the first line the name of a locale, on the second a pattern, on the others what the user
// types. The first eight bytes of that are also a number, bit by bit.
#include "fuzz/fuzz_driver.h"

#include "runtime/conversions.h"
#include "runtime/format.h"
#include "runtime/locale_in_force.h"
#include "runtime/run_time_error.h"

#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>

namespace {

using namespace runtime;

/// A pattern's work grows with its length; users' patterns are short.
constexpr qsizetype kLongestPattern = 200;

[[noreturn]] void fail(const char* what, const QString& text)
{
    std::cerr << what << ": " << text.toStdString() << "\n";
    std::abort();
}

/// What the conversion gives; nothing for a run-time error.
template <typename Conversion>
auto attempt(Conversion&& conversion) -> std::optional<decltype(conversion())>
{
    try {
        return conversion();
    } catch (const RunTimeError&) {
        return std::nullopt;
    }
}

/// A date is shown to the second, and each second of the calendar is one that can be typed.
void showAndTakeBack(Date date)
{
    const auto shown = attempt([&] { return toText(date); });
    if (!shown) {
        return;
    }
    const auto taken = attempt([&] { return toDate(*shown); });
    if (!taken) {
        fail("A date is shown as a text that is no date", *shown);
    }
    if (toText(*taken) != *shown) {
        fail("A date that is shown is taken back as another", *shown);
    }
}

void showAndTakeBack(double number)
{
    const QString shown = toText(number);
    if (!std::isfinite(number)) {
        return;
    }
    const auto taken = attempt([&] { return toDouble(shown); });
    // The largest numbers are rounded up beyond the largest of all.
    if (!taken && std::abs(number) < 1e308) {
        fail("A number is shown as a text that is no number", shown);
    }
    if (taken && std::isfinite(*taken) && toText(*taken) != shown) {
        fail("A number that is shown is taken back as another", shown);
    }
}

void convertText(const QString& text)
{
    const auto date = attempt([&] { return toDate(text); });
    if (date.has_value() != isDate(text)) {
        fail("isDate and toDate disagree", text);
    }
    if (date) {
        showAndTakeBack(*date);
    }
    const auto number = attempt([&] { return toDouble(text); });
    if (number.has_value() != isNumeric(text)) {
        fail("isNumeric and toDouble disagree", text);
    }
    if (number) {
        if (!std::isfinite(*number)) {
            fail("A text becomes a number without end", text);
        }
        showAndTakeBack(*number);
    }
    attempt([&] { return toLong(text); });
    attempt([&] { return toInteger(text); });
}

void convertNumber(double number, const QString& pattern)
{
    showAndTakeBack(number);
    showAndTakeBack(Date{number});
    attempt([&] { return format(number, pattern); });
    attempt([&] { return format(Date{number}, pattern); });
    const auto wide = attempt([&] { return toLong(number); });
    const auto narrow = attempt([&] { return toInteger(number); });
    if (narrow && wide != qint32{*narrow}) {
        fail("A number is one integer in 16 bits and another in 32", toText(number));
    }
    if (wide && !(std::abs(number - *wide) <= 0.5)) {
        fail("A number is rounded to an integer that is not beside it", toText(number));
    }
}

double bitsOf(const QByteArray& text)
{
    double number = 0;
    std::memcpy(&number, text.constData(), std::min<std::size_t>(sizeof number, static_cast<std::size_t>(text.size())));
    return number;
}

QByteArray takeLine(QByteArray& rest)
{
    const qsizetype end = rest.indexOf('\n');
    const QByteArray line = end < 0 ? rest : rest.left(end);
    rest = end < 0 ? QByteArray() : rest.mid(end + 1);
    return line;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray rest(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const LocaleInForce inForce{QLocale(QString::fromLatin1(takeLine(rest)))};
    const QString pattern = QString::fromUtf8(takeLine(rest)).left(kLongestPattern);
    const QString text = QString::fromUtf8(rest);
    convertText(text);
    convertNumber(bitsOf(rest), pattern);
    if (const auto number = attempt([&] { return toDouble(text); })) {
        convertNumber(*number, pattern);
    }
    if (const auto date = attempt([&] { return toDate(text); })) {
        convertNumber(date->days, pattern);
    }
    attempt([&] { return format(text, pattern); });
    return 0;
}
