#include "jet/format/value_codec.h"

#include "jet/format/text_codec.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <optional>

namespace jet {
namespace {

constexpr std::size_t kGuidSize = 16;
constexpr std::size_t kNumericSize = 17;
constexpr std::byte kNegative{0x80};

// The days that other programs show: 1 January 100 up to 31 December 9999.
constexpr double kFirstDay = -657434;
constexpr double kAfterLastDay = 2958466;

ByteView exactly(const Column& column, ByteView bytes, std::size_t size)
{
    if (bytes.size() != size) {
        throw Error(ErrorCode::Corrupt, "A value of column " + column.name + " has " + std::to_string(bytes.size()) +
                                            " bytes in place of " + std::to_string(size));
    }
    return bytes;
}

[[noreturn]] void throwWrongType(const Column& column)
{
    throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " does not take a value of this type");
}

[[noreturn]] void throwOverflow(const Column& column)
{
    throw Error(ErrorCode::Overflow, "The value is out of the range of column " + column.name);
}

[[noreturn]] void throwTooLong(const Column& column, std::size_t maximum, const char* units)
{
    throw Error(ErrorCode::ValueTooLong,
                "Column " + column.name + " takes at most " + std::to_string(maximum) + " " + units);
}

template <typename Wanted>
const Wanted& wanted(const Column& column, const Value& value)
{
    const Wanted* found = std::get_if<Wanted>(&value);
    if (found == nullptr) {
        throwWrongType(column);
    }
    return *found;
}

template <std::unsigned_integral Number>
Bytes littleEndian(Number number)
{
    Bytes bytes(sizeof(Number));
    putLittleEndian(bytes, 0, number);
    return bytes;
}

std::optional<std::int64_t> wholeNumber(const Value& value)
{
    if (const auto* byte = std::get_if<std::uint8_t>(&value)) {
        return *byte;
    }
    if (const auto* integer = std::get_if<std::int16_t>(&value)) {
        return *integer;
    }
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        return *number;
    }
    return std::nullopt;
}

template <std::integral Number>
Bytes encodeWhole(const Column& column, const Value& value)
{
    const std::optional<std::int64_t> number = wholeNumber(value);
    if (!number) {
        throwWrongType(column);
    }
    if (*number < std::numeric_limits<Number>::min() || *number > std::numeric_limits<Number>::max()) {
        throwOverflow(column);
    }
    return littleEndian(static_cast<std::make_unsigned_t<Number>>(*number));
}

double realNumber(const Column& column, const Value& value)
{
    double number = 0;
    if (const std::optional<std::int64_t> whole = wholeNumber(value)) {
        number = static_cast<double>(*whole);
    } else if (const auto* single = std::get_if<float>(&value)) {
        number = *single;
    } else {
        number = wanted<double>(column, value);
    }
    if (!std::isfinite(number)) {
        throw Error(ErrorCode::InvalidArgument, "Column " + column.name + " takes numbers only");
    }
    return number;
}

Bytes encodeSingle(const Column& column, const Value& value)
{
    const double number = realNumber(column, value);
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        throwOverflow(column);
    }
    return littleEndian(std::bit_cast<std::uint32_t>(static_cast<float>(number)));
}

Bytes encodeDateTime(const Column& column, const Value& value)
{
    const double days = wanted<DateTime>(column, value).days;
    if (!(days > kFirstDay - 1 && days < kAfterLastDay)) { // not a number fails too
        throw Error(ErrorCode::Overflow, "Column " + column.name + " takes dates of the years 100 to 9999");
    }
    return littleEndian(std::bit_cast<std::uint64_t>(days));
}

// --- GUIDs: the first three groups are stored as numbers, so their bytes are turned round ---

Guid turned(Guid guid)
{
    std::reverse(guid.bytes.begin(), guid.bytes.begin() + 4);
    std::reverse(guid.bytes.begin() + 4, guid.bytes.begin() + 6);
    std::reverse(guid.bytes.begin() + 6, guid.bytes.begin() + 8);
    return guid;
}

Guid decodeGuid(ByteView bytes)
{
    Guid guid;
    std::copy(bytes.begin(), bytes.end(), guid.bytes.begin());
    return turned(guid);
}

Bytes encodeGuid(const Guid& guid)
{
    const Guid stored = turned(guid);
    return {stored.bytes.begin(), stored.bytes.end()};
}

// --- Numerics: a sign byte and four words, the most significant first ---

Numeric decodeNumeric(const Column& column, ByteView bytes)
{
    Numeric numeric{.negative = (bytes[0] & kNegative) != std::byte{0}, .magnitude = {}, .scale = column.scale};
    for (std::size_t i = 0; i < numeric.magnitude.size(); ++i) {
        numeric.magnitude[i] = getU32(bytes, 1 + 4 * i);
    }
    return numeric;
}

// Whether the magnitude has at most that many decimal digits.
bool hasDigits(std::array<std::uint32_t, 4> magnitude, std::size_t digits)
{
    for (std::size_t i = 0; i < digits; ++i) {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : magnitude) {
            const std::uint64_t part = (rest << 32U) | word;
            word = static_cast<std::uint32_t>(part / 10);
            rest = part % 10;
        }
    }
    return std::all_of(magnitude.begin(), magnitude.end(), [](std::uint32_t word) { return word == 0; });
}

Bytes encodeNumeric(const Column& column, const Numeric& numeric)
{
    if (numeric.scale != column.scale) {
        throw Error(ErrorCode::InvalidArgument,
                    "Column " + column.name + " takes " + std::to_string(column.scale) + " decimal places");
    }
    if (!hasDigits(numeric.magnitude, column.precision)) {
        throwOverflow(column);
    }
    Bytes bytes(kNumericSize);
    const bool zero = hasDigits(numeric.magnitude, 0);
    bytes[0] = numeric.negative && !zero ? kNegative : std::byte{0};
    for (std::size_t i = 0; i < numeric.magnitude.size(); ++i) {
        putU32(bytes, 1 + 4 * i, numeric.magnitude[i]);
    }
    return bytes;
}

// --- Texts and bytes ---

Bytes encodeTextValue(const Column& column, const std::u16string& text)
{
    const std::size_t maximum = column.length / std::size_t{2};
    if (text.size() > maximum) {
        throwTooLong(column, maximum, "characters");
    }
    if (!column.isFixed()) {
        return encodeText(text, column.isCompressible());
    }
    std::u16string padded = text;
    padded.resize(maximum, u' ');
    Bytes bytes = encodePlainText(padded);
    bytes.resize(column.length);
    return bytes;
}

Bytes encodeBinary(const Column& column, const Bytes& value)
{
    if (value.size() > column.length) {
        throwTooLong(column, column.length, "bytes");
    }
    Bytes bytes = value;
    if (column.isFixed()) {
        bytes.resize(column.length);
    }
    return bytes;
}

} // namespace

Value decodeValue(const Column& column, ByteView bytes)
{
    const auto word = [&]<std::unsigned_integral Number>(Number) {
        return getLittleEndian<Number>(exactly(column, bytes, sizeof(Number)), 0);
    };
    switch (column.type) {
    case ColumnType::Byte:
        return word(std::uint8_t{});
    case ColumnType::Integer:
        return static_cast<std::int16_t>(word(std::uint16_t{}));
    case ColumnType::Long:
        return static_cast<std::int32_t>(word(std::uint32_t{}));
    case ColumnType::Currency:
        return Currency{static_cast<std::int64_t>(word(std::uint64_t{}))};
    case ColumnType::Single:
        return std::bit_cast<float>(word(std::uint32_t{}));
    case ColumnType::Double:
        return std::bit_cast<double>(word(std::uint64_t{}));
    case ColumnType::DateTime:
        return DateTime{std::bit_cast<double>(word(std::uint64_t{}))};
    case ColumnType::Text:
        return column.isFixed() ? decodePlainText(bytes) : decodeText(bytes);
    case ColumnType::Guid:
        return decodeGuid(exactly(column, bytes, kGuidSize));
    case ColumnType::Numeric:
        return decodeNumeric(column, exactly(column, bytes, kNumericSize));
    case ColumnType::Boolean:
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::Memo:
    case ColumnType::Block:
        break;
    }
    return Bytes(bytes.begin(), bytes.end());
}

Bytes encodeValue(const Column& column, const Value& value)
{
    switch (column.type) {
    case ColumnType::Byte:
        return encodeWhole<std::uint8_t>(column, value);
    case ColumnType::Integer:
        return encodeWhole<std::int16_t>(column, value);
    case ColumnType::Long:
        return encodeWhole<std::int32_t>(column, value);
    case ColumnType::Currency:
        return littleEndian(static_cast<std::uint64_t>(wanted<Currency>(column, value).tenThousandths));
    case ColumnType::Single:
        return encodeSingle(column, value);
    case ColumnType::Double:
        return littleEndian(std::bit_cast<std::uint64_t>(realNumber(column, value)));
    case ColumnType::DateTime:
        return encodeDateTime(column, value);
    case ColumnType::Binary:
        return encodeBinary(column, wanted<Bytes>(column, value));
    case ColumnType::Text:
        return encodeTextValue(column, wanted<std::u16string>(column, value));
    case ColumnType::Guid:
        return encodeGuid(wanted<Guid>(column, value));
    case ColumnType::Numeric:
        return encodeNumeric(column, wanted<Numeric>(column, value));
    case ColumnType::Boolean:
    case ColumnType::Ole:
    case ColumnType::Memo:
    case ColumnType::Block:
        break;
    }
    throwWrongType(column);
}

} // namespace jet
