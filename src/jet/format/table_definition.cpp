#include "jet/format/table_definition.h"

#include "jet/disk/page.h"

#include <algorithm>
#include <set>

namespace jet {
namespace {

bool sameName(const std::string& left, const std::string& right)
{
    const auto lower = [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

[[noreturn]] void throwCorrupt(const std::string& message)
{
    throw Error(ErrorCode::Corrupt, message);
}

void checkColumns(const TableDefinition& definition)
{
    std::set<std::uint16_t> numbers;
    for (const Column& column : definition.columns) {
        if (!numbers.insert(column.number).second) {
            throwCorrupt("Two columns of a table have the number " + std::to_string(column.number));
        }
        if (column.number >= definition.maximumColumns) {
            throwCorrupt("Column " + column.name + " has a number that its table never gave out");
        }
        if (!column.isFixed() && column.variableSlot >= definition.maximumVariableColumns) {
            throwCorrupt("Column " + column.name + " has a slot that its table never gave out");
        }
        if (column.takesFixedRoom() && std::size_t{column.fixedOffset} + column.length > kPageSize) {
            throwCorrupt("Column " + column.name + " reaches past the end of a row");
        }
    }
}

/// Changing one of two columns that share bytes would change the other behind its indexes' back.
void checkFixedParts(const TableDefinition& definition)
{
    std::vector<const Column*> fixed;
    for (const Column& column : definition.columns) {
        if (column.takesFixedRoom()) {
            fixed.push_back(&column);
        }
    }
    std::sort(fixed.begin(), fixed.end(),
              [](const Column* a, const Column* b) { return a->fixedOffset < b->fixedOffset; });
    for (std::size_t i = 1; i < fixed.size(); ++i) {
        if (fixed[i - 1]->fixedOffset + fixed[i - 1]->length > fixed[i]->fixedOffset) {
            throwCorrupt("The columns " + fixed[i - 1]->name + " and " + fixed[i]->name + " share bytes of a row");
        }
    }
}

void checkIndexes(const TableDefinition& definition)
{
    for (const RealIndex& index : definition.realIndexes) {
        if (index.columns.empty()) {
            throwCorrupt("An index has no columns");
        }
        for (const KeyColumn& key : index.columns) {
            if (definition.columnByNumber(key.columnNumber) == nullptr) {
                throwCorrupt("An index names a column that its table does not have");
            }
        }
    }
    for (const LogicalIndex& index : definition.logicalIndexes) {
        if (index.realIndex >= definition.realIndexes.size()) {
            throwCorrupt("Index " + index.name + " stands for one that is not there");
        }
    }
}

} // namespace

const Column* TableDefinition::columnByNumber(std::uint16_t number) const
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [number](const Column& column) { return column.number == number; });
    return found == columns.end() ? nullptr : &*found;
}

const Column* TableDefinition::columnByName(const std::string& name) const
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&name](const Column& column) { return sameName(column.name, name); });
    return found == columns.end() ? nullptr : &*found;
}

std::vector<const Column*> TableDefinition::displayOrder() const
{
    std::vector<const Column*> order;
    order.reserve(columns.size());
    for (const Column& column : columns) {
        order.push_back(&column);
    }
    std::sort(order.begin(), order.end(), [](const Column* left, const Column* right) {
        return left->ordinal != right->ordinal ? left->ordinal < right->ordinal : left->number < right->number;
    });
    return order;
}

void TableDefinition::validate() const
{
    checkColumns(*this);
    checkFixedParts(*this);
    checkIndexes(*this);
}

} // namespace jet
