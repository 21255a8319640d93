#include "jet/database/mdbtools.h"

#include "jet/format/utf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iomanip>
#include <locale>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace jet::test {

namespace {

constexpr char kFieldEnd = '\x1F';
constexpr char kRowEnd = '\x1E';
constexpr char kNull = '\x1D';

[[nodiscard]] std::string quoted(const std::string& argument)
{
    std::string result = "'";
    for (const char letter : argument) {
        result += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return result + "'";
}

[[nodiscard]] std::vector<std::string> splitAt(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

[[nodiscard]] std::ostringstream plainStream()
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    return out;
}

[[nodiscard]] std::string hexOf(ByteView bytes)
{
    auto out = plainStream();
    out << std::hex << std::uppercase << std::setfill('0');
    for (const std::byte byte : bytes) {
        out << std::setw(2) << std::to_integer<unsigned>(byte);
    }
    return out.str();
}

/// digits / 10^scale
[[nodiscard]] std::string decimal(bool negative, std::string digits, std::size_t scale)
{
    if (digits.size() <= scale) {
        digits.insert(0, scale + 1 - digits.size(), '0');
    }
    if (scale > 0) {
        digits.insert(digits.size() - scale, ".");
    }
    return (negative ? "-" : "") + digits;
}

[[nodiscard]] std::string digitsOf(std::array<std::uint32_t, 4> magnitude)
{
    std::string digits;
    do {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : magnitude) {
            const std::uint64_t dividend = (remainder << 32U) | word;
            word = static_cast<std::uint32_t>(dividend / 10);
            remainder = dividend % 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    } while (magnitude != std::array<std::uint32_t, 4>{});
    return digits;
}

/// yyyy-mm-dd hh:mm:ss
[[nodiscard]] std::string dateText(double days)
{
    const auto seconds = static_cast<std::int64_t>(std::llround(days * 86400));
    const std::chrono::sys_days day(std::chrono::days(seconds / 86400 - 25569));
    const std::chrono::year_month_day date(day);
    const std::int64_t time = seconds % 86400;
    auto out = plainStream();
    out << std::setfill('0') << std::setw(4) << static_cast<int>(date.year()) << '-' << std::setw(2)
        << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << static_cast<unsigned>(date.day()) << ' '
        << std::setw(2) << time / 3600 << ':' << std::setw(2) << time / 60 % 60 << ':' << std::setw(2) << time % 60;
    return out.str();
}

/// As mdb-export prints a value; nothing where it is known to be wrong: for dates before 1900 and for bytes after a
/// zero. It takes no bytes for null, and prints a GUID in hexadecimal twice.
struct Printer {
    using Printed = std::optional<std::string>;

    Printed operator()(Null) const { return std::string(1, kNull); }
    Printed operator()(bool value) const { return value ? "1" : "0"; }
    Printed operator()(std::uint8_t value) const { return std::to_string(value); }
    Printed operator()(std::int16_t value) const { return std::to_string(value); }
    Printed operator()(std::int32_t value) const { return std::to_string(value); }
    Printed operator()(const Currency& value) const
    {
        const bool negative = value.tenThousandths < 0;
        const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
        return decimal(negative, std::to_string(negative ? std::uint64_t{0} - bits : bits), 4);
    }
    Printed operator()(float value) const { return number(static_cast<double>(value), 8); }
    Printed operator()(double value) const { return number(value, 16); }
    Printed operator()(const DateTime& value) const
    {
        return value.days < 2 ? std::nullopt : Printed(dateText(value.days));
    }
    Printed operator()(const std::u16string& value) const
    {
        return value.empty() ? std::string(1, kNull) : toUtf8(value);
    }
    Printed operator()(const Bytes& value) const
    {
        return std::find(value.begin(), value.end(), std::byte{0}) != value.end() ? std::nullopt
                                                                                  : Printed(hexOf(value));
    }
    Printed operator()(const Guid& value) const
    {
        const std::string text = hexOf(value.bytes);
        const std::string shown =
            "{" + text.substr(0, 8) + "-" + text.substr(8, 4) + "-" + text.substr(12, 4) + "-" + text.substr(16) + "}";
        return hexOf(std::as_bytes(std::span(shown)));
    }
    Printed operator()(const Numeric& value) const
    {
        return decimal(value.negative, digitsOf(value.magnitude), value.scale);
    }

    [[nodiscard]] static std::string number(double value, int digits)
    {
        auto out = plainStream();
        out << std::setprecision(digits) << value;
        return out.str();
    }
};

} // namespace

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "quillon-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("No temporary folder");
    }
    folder_ = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string runMdbtool(const std::string& program, const std::vector<std::string>& arguments)
{
    std::string command = quoted(std::string(QUILLON_MDBTOOLS_FOLDER) + "/" + program);
    for (const std::string& argument : arguments) {
        command += " " + quoted(argument);
    }
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("Cannot run " + command);
    }
    std::array<char, 65536> buffer{};
    for (std::size_t count = 0; (count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        output.append(buffer.data(), count);
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

std::size_t expectSameRowsAsMdbExport(const std::string& file, const Table& table)
{
    const std::vector<std::string> rows =
        splitAt(runMdbtool("mdb-export", {"-H", "-Q", "-d", std::string(1, kFieldEnd), "-R", std::string(1, kRowEnd),
                                          "-0", std::string(1, kNull), "-b", "hex", "-D", "%Y-%m-%d %H:%M:%S", "-T",
                                          "%Y-%m-%d %H:%M:%S", file, table.name()}),
                kRowEnd);
    // Its columns are in the order of their numbers, its rows in that of their data: a row that moved comes later.
    std::vector<Column> columns = table.definition().columns;
    std::sort(columns.begin(), columns.end(), [](const Column& a, const Column& b) { return a.number < b.number; });
    std::vector<std::vector<std::optional<std::string>>> ours;
    std::vector<bool> comparable(columns.size(), true);
    for (const auto cursor = table.scan(); cursor->next();) {
        ours.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            ours.back().push_back(std::visit(Printer{}, cursor->row().value(columns[i])));
            comparable[i] = comparable[i] && ours.back().back().has_value();
        }
    }
    std::vector<std::string> expected;
    for (const auto& fields : ours) {
        std::string& line = expected.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            line += comparable[i] ? *fields[i] + "\n" : "";
        }
    }
    std::vector<std::string> found;
    for (const std::string& row : rows) {
        std::vector<std::string> fields = splitAt(row, kFieldEnd);
        fields.resize(columns.size()); // an empty last field ends the line
        std::string& line = found.emplace_back();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            line += comparable[i] ? fields[i] + "\n" : "";
        }
    }
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(expected.size(), found.size()) << table.name();
    const auto [one, other] = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
    if (one != expected.end() && other != found.end()) {
        EXPECT_EQ(*one, *other) << table.name();
    }
    return expected.size();
}

} // namespace jet::test
