#include "data/engine/search_key.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace data {
namespace {

std::optional<double> numberIn(const runtime::Value& value)
{
    if (const double* number = std::get_if<double>(&value)) {
        return *number;
    }
    if (const qint32* number = std::get_if<qint32>(&value)) {
        return *number;
    }
    return std::nullopt;
}

/// The whole numbers on both sides of a number, brought into the type's range.
template <typename Integer>
KeyInterval wholeNumbers(double number)
{
    constexpr auto kLeast = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto kMost = static_cast<double>(std::numeric_limits<Integer>::max());
    const double low = std::clamp(std::floor(number), kLeast, kMost);
    const double high = std::clamp(std::ceil(number), kLeast, kMost);
    return {static_cast<Integer>(low), static_cast<Integer>(high)};
}

KeyInterval singles(double number)
{
    constexpr float kMost = std::numeric_limits<float>::max();
    const auto nearest = static_cast<float>(std::clamp(number, -double{kMost}, double{kMost}));
    return {std::nextafter(nearest, -kMost), std::nextafter(nearest, kMost)};
}

/// With room for what is lost when ten-thousandths become a double.
KeyInterval amounts(double number)
{
    const double scaled = number * 10000;
    const double room = 1 + std::abs(scaled) * 1e-15;
    const auto bound = [](double amount) {
        constexpr double kMost = 9.2e18;
        return jet::Currency{static_cast<std::int64_t>(std::clamp(amount, -kMost, kMost))};
    };
    return {bound(std::floor(scaled - room)), bound(std::ceil(scaled + room))};
}

} // namespace

bool isSearchableType(jet::ColumnType type)
{
    switch (type) {
    case jet::ColumnType::Boolean:
    case jet::ColumnType::Byte:
    case jet::ColumnType::Integer:
    case jet::ColumnType::Long:
    case jet::ColumnType::Currency:
    case jet::ColumnType::Single:
    case jet::ColumnType::Double:
    case jet::ColumnType::DateTime:
    case jet::ColumnType::Text:
    case jet::ColumnType::Memo:
        return true;
    default:
        return false;
    }
}

std::optional<KeyInterval> keysEqualTo(const runtime::Value& value, jet::ColumnType type)
{
    if (type == jet::ColumnType::Text || type == jet::ColumnType::Memo) {
        const QString* text = std::get_if<QString>(&value);
        if (text == nullptr) {
            return std::nullopt;
        }
        return KeyInterval{text->toStdU16String(), text->toStdU16String()};
    }
    const std::optional<double> number = numberIn(value);
    if (!number || !std::isfinite(*number)) {
        return std::nullopt;
    }
    switch (type) {
    case jet::ColumnType::Boolean:
        if (*number != 0 && *number != -1) {
            return std::nullopt;
        }
        return KeyInterval{*number != 0, *number != 0};
    case jet::ColumnType::Byte:
        return wholeNumbers<std::uint8_t>(*number);
    case jet::ColumnType::Integer:
        return wholeNumbers<std::int16_t>(*number);
    case jet::ColumnType::Long:
        return wholeNumbers<std::int32_t>(*number);
    case jet::ColumnType::Currency:
        return amounts(*number);
    case jet::ColumnType::Single:
        return singles(*number);
    case jet::ColumnType::Double:
        return KeyInterval{*number, *number};
    case jet::ColumnType::DateTime:
        return KeyInterval{jet::DateTime{*number}, jet::DateTime{*number}};
    default:
        return std::nullopt;
    }
}

std::optional<jet::KeyRange> keyRange(std::string_view codes, const std::vector<runtime::Value>& values,
                                      const std::vector<KeyPart>& parts)
{
    if (std::any_of(values.begin(), values.end(), runtime::isNull)) {
        return std::nullopt;
    }
    jet::KeyBound from;
    jet::KeyBound to;
    bool exact = true; // every value so far bounds the keys; after one that does not, only what stands before it counts
    std::size_t part = 0;
    for (std::size_t i = 0; i < codes.size() && exact; ++i) {
        const KeyPart& key = parts[part];
        const std::optional<KeyInterval> keys = keysEqualTo(values[i], key.type);
        exact = keys.has_value();
        if (!exact) {
            break;
        }
        const jet::Value& first = key.ascending ? keys->low : keys->high;
        const jet::Value& last = key.ascending ? keys->high : keys->low;
        // In a descending index the lower bound ends the range.
        const bool startsRange = codes[i] == '=' || (codes[i] == '>') == key.ascending;
        const bool endsRange = codes[i] == '=' || (codes[i] == '<') == key.ascending;
        if (startsRange) {
            from.values.push_back(first);
        }
        if (endsRange) {
            to.values.push_back(last);
        }
        if (codes[i] == '=') {
            ++part;
        }
    }
    jet::KeyRange range;
    if (!from.values.empty()) {
        range.from = from;
    }
    if (!to.values.empty()) {
        range.to = to;
    }
    return range;
}

} // namespace data
