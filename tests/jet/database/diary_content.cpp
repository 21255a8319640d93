#include "jet/database/diary_content.h"

#include "jet/database/dump_format.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace jet::test {

std::string contentOf(Database& database)
{
    std::string content;
    for (const TableEntry& entry : database.tables()) {
        if (entry.system) {
            continue;
        }
        const Table& table = database.table(entry.name);
        content += entry.name + ", " + std::to_string(table.rowCount()) + " rows\n";
        for (const auto cursor = table.scan(); cursor->next();) {
            for (const Column& column : table.definition().columns) {
                content += dumped(cursor->row().value(column)) + "\t";
            }
            content += "\n";
        }
    }
    for (const SavedQuery& query : database.queries()) {
        content += query.name + ": " + sqlOf(query) + "\n";
    }
    for (const Relationship& relationship : database.relationships()) {
        content += relationship.name + "\n";
    }
    return content;
}

std::uint64_t seedCount(std::uint64_t usual)
{
    if (const char* text = std::getenv("QUILLON_TEST_SEEDS")) {
        const std::string_view digits = text;
        std::from_chars(digits.data(), digits.data() + digits.size(), usual);
    }
    return usual;
}

} // namespace jet::test
