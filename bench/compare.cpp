// compare [GROUP...]: prints the comparison, or those groups of it. It works in the folder in which it is started,
// which must be on a real disk; bench/compare sees to that.

#include "comparison_rows.h"

#include <array>
#include <exception>
#include <iostream>
#include <string_view>
#include <vector>

namespace {

struct Group {
    std::string_view name;
    void (*compare)(bench::ComparisonTable& table);
};

constexpr std::array kGroups{
    Group{"scan", bench::compareScan},          Group{"queries", bench::compareQueries},
    Group{"diary", bench::compareOverallDiary}, Group{"add", bench::compareDurableAdd},
    Group{"import", bench::compareImport},      Group{"foods", bench::compareFoodSearch},
    Group{"list", bench::compareList},          Group{"paint", bench::compareFirstPaint},
};

const Group* findGroup(std::string_view name)
{
    for (const Group& group : kGroups) {
        if (group.name == name) {
            return &group;
        }
    }
    return nullptr;
}

int explain(std::string_view unknown)
{
    std::cerr << "There is no group '" << unknown << "'. Groups:";
    for (const Group& group : kGroups) {
        std::cerr << ' ' << group.name;
    }
    std::cerr << '\n';
    return 2;
}

} // namespace

int main(int argc, char* argv[])
try {
    std::vector<Group> wanted(kGroups.begin(), kGroups.end());
    if (argc > 1) {
        wanted.clear();
    }
    for (int i = 1; i < argc; ++i) {
        const Group* group = findGroup(argv[i]);
        if (group == nullptr) {
            return explain(argv[i]);
        }
        wanted.push_back(*group);
    }
    bench::ComparisonTable table;
    for (const Group& group : wanted) {
        group.compare(table);
    }
    table.printNotes();
    return 0;
} catch (const std::exception& error) {
    std::cerr << "The comparison failed: " << error.what() << '\n';
    return 1;
}
