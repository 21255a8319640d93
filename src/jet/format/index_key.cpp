#include "jet/format/index_key.h"

#include "jet/format/index_page.h"
#include "jet/format/text_key.h"

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>

namespace jet {

namespace {

constexpr std::byte kAscendingNull{0x00};
constexpr std::byte kDescendingNull{0xFF};
constexpr std::byte kAscendingValue{0x7F};
constexpr std::byte kDescendingValue{0x80};

[[noreturn]] void refuse(const Column& column, const std::string& why)
{
    throw Error(ErrorCode::InvalidArgument, "The value for column " + column.name + " " + why);
}

template <typename Content>
const Content& contentOf(const Column& column, const Value& value)
{
    const Content* content = std::get_if<Content>(&value);
    if (content == nullptr) {
        refuse(column, "is not of the column's type");
    }
    return *content;
}

template <std::unsigned_integral Number>
void appendNumber(Number number, bool ascending, Bytes& key)
{
    std::array<std::byte, sizeof(Number)> bytes{};
    putBigEndian(MutableBytes(bytes), 0, ascending ? number : static_cast<Number>(~number));
    append(key, bytes);
}

template <std::signed_integral Number>
void appendSigned(Number number, bool ascending, Bytes& key)
{
    using Unsigned = std::make_unsigned_t<Number>;
    constexpr auto kSign = static_cast<Unsigned>(Unsigned{1} << (8 * sizeof(Number) - 1));
    appendNumber(static_cast<Unsigned>(static_cast<Unsigned>(number) ^ kSign), ascending, key);
}

template <std::unsigned_integral Bits, std::floating_point Number>
void appendFloating(Number number, bool ascending, Bytes& key)
{
    constexpr Bits kSign = Bits{1} << (8 * sizeof(Bits) - 1);
    const Bits bits = std::bit_cast<Bits>(number);
    appendNumber((bits & kSign) != 0 ? ~bits : bits ^ kSign, ascending, key);
}

void appendNumeric(const Column& column, const Numeric& number, bool ascending, Bytes& key)
{
    if (number.scale != column.scale) {
        refuse(column, "has another scale than the column");
    }
    const bool complement = number.negative == ascending;
    // The sign has a byte of its own that stays the same in descending order.
    key.push_back(number.negative ? std::byte{0x00} : std::byte{0xFF});
    for (const std::uint32_t word : number.magnitude) {
        appendNumber(word, !complement, key);
    }
}

/// Groups of 8 bytes, each with a byte behind it that tells how many of them count, or that more groups follow.
void appendGroups(ByteView bytes, bool ascending, Bytes& key)
{
    constexpr std::size_t kGroup = 8;
    constexpr std::byte kMore{9};
    const auto ordered = [ascending](std::byte byte) { return ascending ? byte : ~byte; };
    while (!bytes.empty()) {
        const std::size_t length = std::min(kGroup, bytes.size());
        for (std::size_t i = 0; i < kGroup; ++i) {
            key.push_back(ordered(i < length ? bytes[i] : std::byte{0}));
        }
        bytes = bytes.subspan(length);
        key.push_back(bytes.empty() ? ordered(static_cast<std::byte>(length)) : kMore);
    }
}

} // namespace

bool canEncode(const Column& column)
{
    switch (column.type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::DateTime:
    case ColumnType::Binary:
    case ColumnType::Guid:
    case ColumnType::Numeric:
        return true;
    case ColumnType::Text:
    case ColumnType::Memo:
        return column.sortOrder == SortOrder{.language = 1033, .version = 0};
    case ColumnType::Ole:
    case ColumnType::Block:
        break;
    }
    return false; // also for type codes that no enumerator names
}

void appendKeyPart(const Column& column, bool ascending, const Value& value, Bytes& key)
{
    if (!canEncode(column)) {
        throw Error(ErrorCode::IndexNotSupported, "The keys of column " + column.name + " cannot be computed");
    }
    if (isNull(value)) {
        key.push_back(ascending ? kAscendingNull : kDescendingNull);
        return;
    }
    key.push_back(ascending ? kAscendingValue : kDescendingValue);
    switch (column.type) {
    case ColumnType::Boolean:
        appendNumber<std::uint8_t>(contentOf<bool>(column, value) ? 0x00 : 0xFF, ascending, key);
        break;
    case ColumnType::Byte:
        appendNumber(contentOf<std::uint8_t>(column, value), ascending, key);
        break;
    case ColumnType::Integer:
        appendSigned(contentOf<std::int16_t>(column, value), ascending, key);
        break;
    case ColumnType::Long:
        appendSigned(contentOf<std::int32_t>(column, value), ascending, key);
        break;
    case ColumnType::Currency:
        appendSigned(contentOf<Currency>(column, value).tenThousandths, ascending, key);
        break;
    case ColumnType::Single:
        appendFloating<std::uint32_t>(contentOf<float>(column, value), ascending, key);
        break;
    case ColumnType::Double:
        appendFloating<std::uint64_t>(contentOf<double>(column, value), ascending, key);
        break;
    case ColumnType::DateTime:
        appendFloating<std::uint64_t>(contentOf<DateTime>(column, value).days, ascending, key);
        break;
    case ColumnType::Binary:
        appendGroups(contentOf<Bytes>(column, value), ascending, key);
        break;
    case ColumnType::Guid:
        appendGroups(contentOf<Guid>(column, value).bytes, ascending, key);
        break;
    case ColumnType::Numeric:
        appendNumeric(column, contentOf<Numeric>(column, value), ascending, key);
        break;
    case ColumnType::Text:
    case ColumnType::Memo:
        appendTextKey(contentOf<std::u16string>(column, value), ascending, key);
        break;
    case ColumnType::Ole:
    case ColumnType::Block:
        break; // canEncode refused them
    }
}

IndexKeyEncoder::IndexKeyEncoder(const TableDefinition& definition, const RealIndex& index)
{
    for (const KeyColumn& keyColumn : index.columns) {
        const Column* column = definition.columnByNumber(keyColumn.columnNumber);
        if (column == nullptr) {
            throw Error(ErrorCode::Corrupt,
                        "An index names column " + std::to_string(keyColumn.columnNumber) + ", which is not there");
        }
        canEncode_ = canEncode_ && jet::canEncode(*column);
        parts_.push_back({.column = *column, .ascending = keyColumn.ascending});
        columnNumbers_.push_back(keyColumn.columnNumber);
    }
    searchable_ = canEncode_;
    for (const Part& part : parts_) {
        const bool last = &part == &parts_.back();
        const bool signsKeepTheirOrder = part.column.type == ColumnType::Numeric && !part.ascending;
        const bool noEndMark = part.column.type == ColumnType::Binary && (!part.ascending || !last);
        searchable_ = searchable_ && !signsKeepTheirOrder && !noEndMark;
    }
}

Bytes IndexKeyEncoder::encodeLeading(std::span<const Value> values) const
{
    if (values.size() > parts_.size()) {
        throw Error(ErrorCode::InvalidArgument, "There are more values than the index has columns");
    }
    Bytes key;
    for (std::size_t i = 0; i < values.size(); ++i) {
        appendKeyPart(parts_[i].column, parts_[i].ascending, values[i], key);
    }
    return key;
}

IndexKey IndexKeyEncoder::encode(std::span<const Value> values) const
{
    if (values.size() != parts_.size()) {
        throw Error(ErrorCode::InvalidArgument, "There are not as many values as the index has columns");
    }
    IndexKey key{.bytes = encodeLeading(values),
                 .anyNull = std::any_of(values.begin(), values.end(), isNull),
                 .allNull = std::all_of(values.begin(), values.end(), isNull)};
    if (key.bytes.size() > kMaximumKeyLength) {
        throw Error(ErrorCode::ValueTooLong, "The values of column " + parts_.front().column.name +
                                                 (parts_.size() > 1 ? " and the others of its index" : "") +
                                                 " are too long for an index");
    }
    return key;
}

Bytes IndexKeyEncoder::lowerEnd(std::span<const Value> values, bool inclusive) const
{
    Bytes key = encodeLeading(values);
    if (inclusive) {
        return key;
    }
    // Nothing is above: an end that no key reaches.
    return justAbove(std::move(key), values.size()).value_or(Bytes(kMaximumKeyLength + 1, std::byte{0xFF}));
}

std::optional<Bytes> IndexKeyEncoder::upperEnd(std::span<const Value> values, bool inclusive) const
{
    Bytes key = encodeLeading(values);
    if (!inclusive) {
        return key;
    }
    return justAbove(std::move(key), values.size());
}

/// The lowest run of bytes above every key that these values stand for; none when there is no such run.
std::optional<Bytes> IndexKeyEncoder::justAbove(Bytes key, std::size_t valueCount) const
{
    if (valueCount == parts_.size()) {
        key.push_back(std::byte{0}); // the values stand for one key
        return key;
    }
    while (!key.empty() && key.back() == std::byte{0xFF}) {
        key.pop_back();
    }
    if (key.empty()) {
        return std::nullopt;
    }
    key.back() = static_cast<std::byte>(std::to_integer<unsigned>(key.back()) + 1);
    return key;
}

} // namespace jet
