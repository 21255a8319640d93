#include "jet/carried_table.h"

#include <algorithm>

namespace jet {

std::optional<std::uint16_t> idColumnOf(Catalogue& source, PageNumber table)
{
    if (table == source.objects().page()) {
        return static_cast<std::uint16_t>(ObjectColumn::Id);
    }
    if (table == source.permissions().page()) {
        return static_cast<std::uint16_t>(AceColumn::ObjectId);
    }
    if (table == source.queryRows().page()) {
        return static_cast<std::uint16_t>(QueryColumn::ObjectId);
    }
    return std::nullopt;
}

std::int32_t carriedId(std::int32_t id, const std::vector<MovedTable>& tables)
{
    const auto moved = std::find_if(tables.begin(), tables.end(), [id](const MovedTable& table) {
        return static_cast<std::int32_t>(table.from) == id;
    });
    return moved == tables.end() ? id : static_cast<std::int32_t>(moved->to);
}

TableDefinition withoutPages(TableDefinition definition, const std::vector<MovedTable>& tables)
{
    definition.rowCount = 0;
    definition.ownedPages = {};
    definition.pagesWithSpace = {};
    for (LongValueMaps& maps : definition.longValues) {
        maps.owned = {};
        maps.withSpace = {};
    }
    for (RealIndex& index : definition.realIndexes) {
        index.pages = {};
        index.root = 0;
        index.distinctKeys = 0;
    }
    for (LogicalIndex& index : definition.logicalIndexes) {
        index.otherTable = static_cast<PageNumber>(carriedId(static_cast<std::int32_t>(index.otherTable), tables));
    }
    return definition;
}

} // namespace jet
