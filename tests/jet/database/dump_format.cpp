#include "jet/database/dump_format.h"

#include "jet/format/utf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <type_traits>

namespace jet::test {

namespace {

std::string padded(std::int64_t number, std::size_t width)
{
    std::string digits = std::to_string(number);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

/// The shortest digits that read back as the same number; from 0.001 to below 10,000,000 plain, else with an exponent.
template <typename Real>
std::string shortest(Real number)
{
    if (number == 0) {
        return std::signbit(number) ? "-0.0" : "0.0";
    }
    std::array<char, 64> buffer{};
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::scientific);
    const std::string text(buffer.data(), result.ptr);
    const std::size_t e = text.find('e');
    const bool negative = text.front() == '-';
    std::string digits = text.substr(negative ? 1 : 0, e - (negative ? 1 : 0));
    digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
    const int exponent = std::stoi(text.substr(e + 1));

    std::string plain;
    if (exponent >= -3 && exponent < 7) {
        if (exponent < 0) {
            plain = "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
        } else {
            const auto whole = static_cast<std::size_t>(exponent) + 1;
            digits.resize(std::max(digits.size(), whole + 1), '0');
            plain = digits.substr(0, whole) + "." + digits.substr(whole);
        }
    } else {
        digits.resize(std::max<std::size_t>(digits.size(), 2), '0');
        plain = digits.substr(0, 1) + "." + digits.substr(1) + "E" + std::to_string(exponent);
    }
    return (negative ? "-" : "") + plain;
}

std::string dateText(DateTime date)
{
    using namespace std::chrono;
    double whole = 0;
    const double fraction = std::abs(std::modf(date.days, &whole));
    const auto time = milliseconds(std::llround(fraction * 86'400'000.0));
    const auto moment = sys_days(year(1899) / December / 30) + days(static_cast<int>(whole)) + time;
    const auto day = floor<days>(moment);
    const year_month_day ymd(day);
    const hh_mm_ss clock(moment - day);
    return padded(static_cast<int>(ymd.year()), 4) + "-" + padded(static_cast<unsigned>(ymd.month()), 2) + "-" +
           padded(static_cast<unsigned>(ymd.day()), 2) + "T" + padded(clock.hours().count(), 2) + ":" +
           padded(clock.minutes().count(), 2) + ":" + padded(clock.seconds().count(), 2) + "." +
           padded(clock.subseconds().count(), 3);
}

std::string decimal(std::string digits, bool negative, std::size_t scale)
{
    if (digits.size() <= scale) {
        digits.insert(0, scale + 1 - digits.size(), '0');
    }
    if (scale > 0) {
        digits.insert(digits.size() - scale, ".");
    }
    return (negative ? "-" : "") + digits;
}

std::string numericText(Numeric number)
{
    std::string digits;
    while (
        std::any_of(number.magnitude.begin(), number.magnitude.end(), [](std::uint32_t word) { return word != 0; })) {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : number.magnitude) {
            const std::uint64_t dividend = (remainder << 32U) | word;
            word = static_cast<std::uint32_t>(dividend / 10);
            remainder = dividend % 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    }
    return decimal(digits.empty() ? "0" : digits, number.negative, number.scale);
}

std::string currencyText(Currency amount)
{
    const bool negative = amount.tenThousandths < 0;
    const auto magnitude = static_cast<std::uint64_t>(amount.tenThousandths);
    return decimal(std::to_string(negative ? ~magnitude + 1 : magnitude), negative, 4);
}

std::string guidText(const Guid& guid)
{
    std::string digits = hex(guid.bytes);
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return "{" + digits.substr(0, 8) + "-" + digits.substr(8, 4) + "-" + digits.substr(12, 4) + "-" +
           digits.substr(16, 4) + "-" + digits.substr(20) + "}";
}

std::string escaped(const std::u16string& text)
{
    std::u16string result;
    for (const char16_t unit : text) {
        switch (unit) {
        case u'\\':
            result += u"\\\\";
            break;
        case u'\t':
            result += u"\\t";
            break;
        case u'\n':
            result += u"\\n";
            break;
        case u'\r':
            result += u"\\r";
            break;
        default:
            if (unit < 0x20 || unit == 0x7F) {
                constexpr std::u16string_view digits = u"0123456789abcdef";
                result += u"\\u00";
                result += digits[unit >> 4U];
                result += digits[unit & 0xFU];
            } else {
                result += unit;
            }
        }
    }
    return toUtf8(result);
}

struct Writer {
    std::string operator()(Null) const { return "\\N"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::uint8_t value) const { return std::to_string(value); }
    std::string operator()(std::int16_t value) const { return std::to_string(value); }
    std::string operator()(std::int32_t value) const { return std::to_string(value); }
    std::string operator()(Currency value) const { return currencyText(value); }
    std::string operator()(float value) const { return shortest(value); }
    std::string operator()(double value) const { return shortest(value); }
    std::string operator()(DateTime value) const { return dateText(value); }
    std::string operator()(const std::u16string& value) const { return escaped(value); }
    std::string operator()(const Bytes& value) const { return "0x" + hex(value); }
    std::string operator()(const Guid& value) const { return guidText(value); }
    std::string operator()(const Numeric& value) const { return numericText(value); }
};

std::string typeName(ColumnType type)
{
    switch (type) {
    case ColumnType::Boolean:
        return "BOOLEAN";
    case ColumnType::Byte:
        return "BYTE";
    case ColumnType::Integer:
        return "INT";
    case ColumnType::Long:
        return "LONG";
    case ColumnType::Currency:
        return "MONEY";
    case ColumnType::Single:
        return "FLOAT";
    case ColumnType::Double:
        return "DOUBLE";
    case ColumnType::DateTime:
        return "SHORT_DATE_TIME";
    case ColumnType::Binary:
        return "BINARY";
    case ColumnType::Text:
        return "TEXT";
    case ColumnType::Ole:
        return "OLE";
    case ColumnType::Memo:
        return "MEMO";
    case ColumnType::Guid:
        return "GUID";
    case ColumnType::Numeric:
        return "NUMERIC";
    case ColumnType::Block:
        return "UNKNOWN_11"; // hexadecimal
    }
    return "?";
}

std::string yesOrNo(bool value)
{
    return value ? "true" : "false";
}

} // namespace

std::string hex(ByteView bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const std::byte byte : bytes) {
        result += digits[std::to_integer<std::size_t>(byte >> 4U)];
        result += digits[std::to_integer<std::size_t>(byte & std::byte{0xF})];
    }
    return result;
}

std::string dumped(const Value& value)
{
    return std::visit(Writer(), value);
}

std::string dumped(const Column& column)
{
    std::string line =
        escaped(toUtf16(column.name)) + "\t" + typeName(column.type) + "\tlen=" + std::to_string(column.length);
    if (column.type == ColumnType::Text) {
        line += " chars=" + std::to_string(column.length / 2);
    }
    if (column.type == ColumnType::Numeric) {
        line += " prec=" + std::to_string(column.precision) + " scale=" + std::to_string(column.scale);
    }
    line += column.isFixed() ? " fixed" : " var";
    line += column.isAutoNumber() ? " auto" : "";
    line += column.isText() && (column.extraFlags & Column::kCompressible) != 0 ? " compressed" : "";
    line += " number=" + std::to_string(column.number);
    line += column.isFixed() ? " offset=" + std::to_string(column.fixedOffset)
                             : " varindex=" + std::to_string(column.variableSlot);
    if (column.isText()) {
        line += " sort=" + std::to_string(column.sortOrder.language) + "/" + std::to_string(column.sortOrder.version);
    }
    return line;
}

std::string dumped(const LogicalIndex& index, const TableDefinition& definition)
{
    const RealIndex& real = definition.realIndexes.at(index.realIndex);
    std::string columns;
    for (const KeyColumn& key : real.columns) {
        const Column* column = definition.columnByNumber(key.columnNumber);
        columns += (columns.empty() ? "" : ",") + (column == nullptr ? "?" : column->name) +
                   (key.ascending ? " asc" : " desc");
    }
    return index.name + "\t" + columns + "\tprimary=" + yesOrNo(index.kind == LogicalIndex::Kind::PrimaryKey) +
           " unique=" + yesOrNo(real.isUnique()) + " ignoreNulls=" + yesOrNo(real.ignoresNulls()) +
           " required=" + yesOrNo(real.isRequired()) +
           " foreign=" + yesOrNo(index.kind == LogicalIndex::Kind::ForeignKey) +
           " data=" + std::to_string(index.realIndex) + " flags=0x" + hex(Bytes{std::byte{real.flags}});
}

std::string dumped(const Relationship& relationship)
{
    std::string referenced;
    std::string referencing;
    for (const Relationship::Pair& pair : relationship.columns) {
        referenced += (referenced.empty() ? "" : ",") + pair.referenced;
        referencing += (referencing.empty() ? "" : ",") + pair.referencing;
    }
    return relationship.name + "\t" + relationship.referencedTable + "(" + referenced + ")\t" +
           relationship.referencingTable + "(" + referencing + ")\tintegrity=" + yesOrNo(relationship.enforced) +
           " oneToOne=" + yesOrNo(relationship.oneToOne) + " cascadeUpdate=" + yesOrNo(relationship.cascadeUpdates) +
           " cascadeDelete=" + yesOrNo(relationship.cascadeDeletes) + " join=INNER";
}

} // namespace jet::test
