// The text beside each sample file: what an independent reader found in it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace jet::test {

/// Fields of one line.
using Fields = std::vector<std::string>;

struct DumpedTable {
    std::string name;
    bool system = false;
    std::uint32_t rowCount = 0;        ///< as the definition says
    std::uint32_t scannedRowCount = 0; ///< as counted
    std::vector<Fields> columns;
    std::vector<Fields> indexes;
    std::vector<std::string> rows;                        ///< whole lines without their first word
    std::map<std::size_t, std::vector<std::string>> keys; ///< by real index: "hex page:row"
    std::map<std::size_t, std::string> roots;             ///< by real index
};

struct Dump {
    std::vector<DumpedTable> tables;
    std::vector<Fields> queries;   ///< name, kind, SQL with escapes
    std::vector<Fields> relations; ///< name, referenced, referencing, attributes

    [[nodiscard]] const DumpedTable* find(const std::string& table) const;
};

[[nodiscard]] Dump readDump(const std::filesystem::path& path);
[[nodiscard]] Fields split(const std::string& text, char separator);
/// Undoes the escapes of a text value.
[[nodiscard]] std::string unescaped(const std::string& text);

/// What two texts of the same statement have in common: no brackets, parentheses, blanks, line ends or capitals, and
/// the conditions of a join in alphabetical order.
[[nodiscard]] std::string essence(const std::string& sql);

} // namespace jet::test
