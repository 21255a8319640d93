#include "jet/foreign_keys.h"

#include "jet/row_reader.h"

#include <algorithm>

namespace jet {

namespace {

/// The row's key in the other table's index: its values for its own index's columns, one by one.
[[nodiscard]] IndexKey keyAcross(const TableIndex& own, const TableIndex& other, const RowValues& row)
{
    std::vector<Value> values;
    for (const std::uint16_t number : own.encoder.columnNumbers()) {
        values.push_back(row[number]);
    }
    return other.encoder.encode(values);
}

} // namespace

const std::vector<RelationshipEnd>& ForeignKeys::parentsOf(StoredTable& table)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    if (!loaded->parents.has_value()) {
        loaded->parents = ends(table, LogicalIndex::Role::Referencing);
    }
    return *loaded->parents;
}

const std::vector<RelationshipEnd>& ForeignKeys::childrenOf(StoredTable& table)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    if (!loaded->children.has_value()) {
        loaded->children = ends(table, LogicalIndex::Role::Referenced);
    }
    return *loaded->children;
}

std::vector<RelationshipEnd> ForeignKeys::ends(StoredTable& table, LogicalIndex::Role role)
{
    constexpr std::uint8_t kCascade = 0x01;
    constexpr std::uint8_t kSetNull = 0x02;
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    std::vector<RelationshipEnd> result;
    for (const LogicalIndex& own : loaded->definition.logicalIndexes) {
        if (own.kind != LogicalIndex::Kind::ForeignKey || own.role != role) {
            continue;
        }
        const std::shared_ptr<LoadedTable> otherTable = tables_->at(own.otherTable).loaded();
        const std::vector<LogicalIndex>& others = otherTable->definition.logicalIndexes;
        const auto other = std::find_if(others.begin(), others.end(), [&own](const LogicalIndex& candidate) {
            return candidate.kind == LogicalIndex::Kind::ForeignKey && own.otherIndexNumber >= 0 &&
                   candidate.number == static_cast<std::uint32_t>(own.otherIndexNumber);
        });
        if (other == others.end() || indexAt(*loaded, own.realIndex).encoder.columnNumbers().size() !=
                                         indexAt(*otherTable, other->realIndex).encoder.columnNumbers().size()) {
            throw Error(ErrorCode::Corrupt, table.page(),
                        "The two sides of the relationship \"" + own.name + "\" do not fit");
        }
        result.push_back({.ownIndex = own.realIndex,
                          .otherIndex = other->realIndex,
                          .otherTable = own.otherTable,
                          .cascadeUpdates = (own.cascadeUpdates & kCascade) != 0,
                          .cascadeDeletes = (own.cascadeDeletes & kCascade) != 0,
                          .setNullOnDelete = (own.cascadeDeletes & kSetNull) != 0});
    }
    return result;
}

void ForeignKeys::requireParent(StoredTable& table, const RelationshipEnd& parent, const RowValues& row,
                                std::optional<RowPointer> rekeyed)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    const std::shared_ptr<LoadedTable> otherTable = tables_->at(parent.otherTable).loaded();
    const TableIndex& referenced = otherTable->indexes[parent.otherIndex];
    const IndexKey key = keyAcross(loaded->indexes[parent.ownIndex], referenced, row);
    if (key.allNull || referenced.tree.isTaken(key.bytes, rekeyed)) {
        return;
    }
    if (parent.otherTable == table.page() && referenced.keyOf(row).bytes == key.bytes) {
        return;
    }
    throw Error(ErrorCode::MissingParent, "The row needs a related row in the table \"" +
                                              tables_->facts().nameOf(parent.otherTable) + "\", which is not there");
}

std::vector<RowPointer> ForeignKeys::rowsReferringTo(StoredTable& table, const RelationshipEnd& child,
                                                     const RowValues& row)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    const std::shared_ptr<LoadedTable> otherTable = tables_->at(child.otherTable).loaded();
    const TableIndex& referencing = otherTable->indexes[child.otherIndex];
    const IndexKey key = keyAcross(loaded->indexes[child.ownIndex], referencing, row);
    std::vector<RowPointer> rows;
    if (!key.allNull) {
        for (IndexCursor cursor = referencing.tree.range(exactly(key.bytes)); cursor.next();) {
            rows.push_back(cursor.row());
        }
    }
    return rows;
}

void ForeignKeys::refuseBecauseOf(const RelationshipEnd& child)
{
    throw Error(ErrorCode::HasChildren, "The row cannot be deleted or get another key while rows of the table \"" +
                                            tables_->facts().nameOf(child.otherTable) + "\" refer to it");
}

} // namespace jet
