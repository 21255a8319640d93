#include "jet/database/sample_dump.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace jet::test {

namespace {

std::uint32_t number(const std::string& text)
{
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::runtime_error("Not a number in a dump: " + text);
    }
    return value;
}

std::string afterEquals(const std::string& text)
{
    return text.substr(text.find('=') + 1);
}

std::string utf8OfUnit(unsigned unit)
{
    std::string result;
    if (unit < 0x80) {
        result += static_cast<char>(unit);
    } else if (unit < 0x800) {
        result += static_cast<char>(0xC0U | (unit >> 6U));
        result += static_cast<char>(0x80U | (unit & 0x3FU));
    } else {
        result += static_cast<char>(0xE0U | (unit >> 12U));
        result += static_cast<char>(0x80U | ((unit >> 6U) & 0x3FU));
        result += static_cast<char>(0x80U | (unit & 0x3FU));
    }
    return result;
}

} // namespace

const DumpedTable* Dump::find(const std::string& table) const
{
    const auto found = std::find_if(tables.begin(), tables.end(), [&](const auto& each) { return each.name == table; });
    return found == tables.end() ? nullptr : &*found;
}

Fields split(const std::string& text, char separator)
{
    Fields fields;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, start)) {
        fields.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    fields.push_back(text.substr(start));
    return fields;
}

std::string unescaped(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        switch (text.at(++i)) {
        case 't':
            result += '\t';
            break;
        case 'n':
            result += '\n';
            break;
        case 'r':
            result += '\r';
            break;
        case 'u': {
            unsigned unit = 0;
            std::from_chars(text.data() + i + 1, text.data() + std::min(i + 5, text.size()), unit, 16);
            result += utf8OfUnit(unit);
            i += 4;
            break;
        }
        default:
            result += text[i];
        }
    }
    return result;
}

Dump readDump(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("Cannot read " + path.string());
    }
    Dump dump;
    std::vector<std::string>* keys = nullptr;
    for (std::string line; std::getline(file, line);) {
        const Fields fields = split(line, '\t');
        const std::string& record = fields.front();
        const Fields rest(fields.begin() + 1, fields.end());
        if (record == "TABLE") {
            DumpedTable table;
            table.name = unescaped(rest.at(0));
            table.rowCount = number(afterEquals(rest.at(1)));
            table.system = rest.size() > 2 && rest[2] == "system";
            dump.tables.push_back(std::move(table));
        } else if (record == "COLUMN") {
            dump.tables.back().columns.push_back(rest);
        } else if (record == "INDEX") {
            dump.tables.back().indexes.push_back(rest);
        } else if (record == "ROW") {
            dump.tables.back().rows.push_back(line.substr(4));
        } else if (record == "END") {
            dump.tables.back().scannedRowCount = number(rest.at(1));
        } else if (record == "KEYS") {
            const std::size_t index = number(rest.at(1));
            keys = &dump.tables.back().keys[index];
            dump.tables.back().roots[index] = afterEquals(rest.at(2));
        } else if (record == "KEY") {
            keys->push_back(rest.at(0) + " " + rest.at(1));
        } else if (record == "QUERY") {
            dump.queries.push_back(rest);
        } else if (record == "RELATION") {
            dump.relations.push_back(rest);
        } else if (record != "FORMAT" && record != "SORTORDER" && record != "CODEPAGE") {
            throw std::runtime_error("Unknown record in a dump: " + record);
        }
    }
    return dump;
}

std::string essence(const std::string& sql)
{
    std::string lower;
    for (const char c : sql) {
        const char small = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        lower += small == '\n' || small == '\r' || small == '\t' ? ' ' : small;
    }
    // "on (b) and (a)" and "on (a) and (b)" are the same; sorted while the parentheses still show where each begins.
    for (std::size_t on = lower.find(" on ("); on != std::string::npos; on = lower.find(" on (", on + 1)) {
        std::vector<std::string> conditions;
        std::size_t at = on + 4;
        std::size_t end = at;
        while (lower.compare(at, 1, "(") == 0) {
            const std::size_t close = lower.find(')', at);
            if (close == std::string::npos) {
                break;
            }
            conditions.push_back(lower.substr(at, close + 1 - at));
            end = close + 1;
            if (lower.compare(end, 5, " and ") != 0) {
                break;
            }
            at = end + 5;
        }
        if (conditions.size() > 1) {
            std::sort(conditions.begin(), conditions.end());
            std::string sorted;
            for (const std::string& condition : conditions) {
                sorted += (sorted.empty() ? "" : " and ") + condition;
            }
            lower.replace(on + 4, end - (on + 4), sorted);
        }
    }
    std::string result;
    for (const char c : lower) {
        if (std::string_view("[]() \0", 6).find(c) == std::string_view::npos) {
            result += c;
        }
    }
    return result;
}

} // namespace jet::test
