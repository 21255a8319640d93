#include "data/functions/field_conversions.h"

#include "runtime/conversions.h"
#include "runtime/run_time_error.h"

#include <cmath>
#include <limits>

namespace data {
namespace {

[[noreturn]] void overflow()
{
    throw runtime::RunTimeError(runtime::ErrorNumber::Overflow);
}

} // namespace

bool toBoolean(const runtime::Value& value)
{
    if (const QString* text = std::get_if<QString>(&value)) {
        const QString word = text->trimmed();
        if (word.compare(u"true", Qt::CaseInsensitive) == 0) {
            return true;
        }
        if (word.compare(u"false", Qt::CaseInsensitive) == 0) {
            return false;
        }
    }
    return runtime::toDouble(value) != 0;
}

quint8 toByte(const runtime::Value& value)
{
    const qint32 number = runtime::toLong(value);
    if (number < 0 || number > std::numeric_limits<quint8>::max()) {
        overflow();
    }
    return static_cast<quint8>(number);
}

float toSingle(const runtime::Value& value)
{
    const double number = runtime::toDouble(value);
    if (std::abs(number) > std::numeric_limits<float>::max()) {
        overflow();
    }
    return static_cast<float>(number);
}

double toCurrency(const runtime::Value& value)
{
    constexpr double kMost = 922337203685477.0;
    constexpr qint32 kPlaces = 4;
    const double number = finite(runtime::toDouble(value));
    if (std::abs(number) > kMost) {
        overflow();
    }
    return roundedToEven(number, kPlaces);
}

double roundedToEven(double number, qint32 places)
{
    constexpr int kSignificant = 15;
    const double scale = std::pow(10.0, places);
    const double scaled = number * scale;
    if (places > kSignificant || std::abs(scaled) >= 1e15) {
        return number; // no digit is left to round
    }
    const double decimal = QString::number(scaled, 'g', kSignificant).toDouble();
    const double floor = std::floor(decimal);
    const double fraction = decimal - floor;
    const bool up = fraction > 0.5 || (fraction == 0.5 && std::fmod(floor, 2) != 0);
    return (up ? floor + 1 : floor) / scale;
}

double finite(double number)
{
    if (!std::isfinite(number)) {
        overflow();
    }
    return number;
}

} // namespace data
