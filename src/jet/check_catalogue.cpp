#include "jet/check_catalogue.h"

#include "jet/disk/error.h"
#include "jet/format/index_key.h"
#include "jet/format/utf.h"
#include "jet/names.h"
#include "jet/store/index_tree.h"
#include "jet/store/long_value_store.h"
#include "jet/store/row_store.h"
#include "jet/system_tables.h"

#include <algorithm>
#include <set>
#include <utility>

namespace jet {

namespace {

bool isOf(ObjectType type, std::int32_t stored)
{
    return stored == static_cast<std::int32_t>(type);
}

template <typename Number>
std::optional<std::int32_t> number(const TableDefinition& definition, const RowView& row, const char* column)
{
    const Column* found = definition.columnByName(column);
    if (found == nullptr) {
        return std::nullopt;
    }
    const Value value = row.value(*found);
    const auto* held = std::get_if<Number>(&value);
    return held == nullptr ? std::nullopt : std::optional<std::int32_t>(*held);
}

std::string text(const TableDefinition& definition, const RowView& row, const char* column)
{
    const Column* found = definition.columnByName(column);
    if (found == nullptr || found->type != ColumnType::Text) {
        return {};
    }
    const Value value = row.value(*found);
    const auto* held = std::get_if<std::u16string>(&value);
    return held == nullptr ? std::string() : toUtf8(*held);
}

const LogicalIndex* indexNumbered(const TableDefinition& definition, std::int32_t number)
{
    for (const LogicalIndex& index : definition.logicalIndexes) {
        if (static_cast<std::int64_t>(index.number) == number) {
            return &index;
        }
    }
    return nullptr;
}

} // namespace

void CatalogueCheck::addObject(const TableCheck& objects, RowPointer address, const RowView& row)
{
    const TableDefinition& definition = objects.definition();
    const auto id = number<std::int32_t>(definition, row, "Id");
    const auto parent = number<std::int32_t>(definition, row, "ParentId");
    const auto type = number<std::int16_t>(definition, row, "Type");
    const std::string name = text(definition, row, "Name");
    if (!id || !parent || !type) {
        faults_->add(address.page,
                     "The catalogue's row " + std::to_string(address.row) + " lacks an id, a parent or a type");
        return;
    }
    if (!objects_.insert({*id, Object{address, *parent, *type, name}}).second) {
        faults_->add(address.page, "The catalogue has the id " + std::to_string(*id) + " twice");
        return;
    }
    if (isOf(ObjectType::Table, *type)) {
        tables_.push_back({name, static_cast<PageNumber>(*id)});
    }
}

void CatalogueCheck::addPermission(const TableCheck& permissions, RowPointer address, const RowView& row)
{
    if (const auto object = number<std::int32_t>(permissions.definition(), row, "ObjectId")) {
        permissions_.push_back({address, *object});
    }
}

void CatalogueCheck::addQueryRow(const TableCheck& queries, RowPointer address, const RowView& row)
{
    if (const auto object = number<std::int32_t>(queries.definition(), row, "ObjectId")) {
        queryRows_.push_back({address, *object});
    }
}

void CatalogueCheck::addRelationshipRow(const TableCheck& relationships, RowPointer address, const RowView& row)
{
    const TableDefinition& definition = relationships.definition();
    relationshipRows_.push_back(
        {address, text(definition, row, "szRelationship"), number<std::int32_t>(definition, row, "grbit").value_or(0),
         number<std::int32_t>(definition, row, "ccolumn").value_or(0),
         number<std::int32_t>(definition, row, "icolumn").value_or(-1), text(definition, row, "szObject"),
         text(definition, row, "szColumn"), text(definition, row, "szReferencedObject"),
         text(definition, row, "szReferencedColumn")});
}

void CatalogueCheck::run(const std::vector<std::unique_ptr<TableCheck>>& tables)
{
    checked_ = &tables;
    checkObjects();
    checkReferences();
    checkRelationships();
    for (const auto& table : tables) {
        checkEnforcement(*table);
    }
}

const TableCheck* CatalogueCheck::tableAt(PageNumber page) const
{
    const auto found =
        std::find_if(checked_->begin(), checked_->end(), [&](const auto& table) { return table->firstPage() == page; });
    return found == checked_->end() ? nullptr : found->get();
}

const TableCheck* CatalogueCheck::tableNamed(const std::string& name) const
{
    const auto found = std::find_if(checked_->begin(), checked_->end(),
                                    [&](const auto& table) { return sameName(table->name(), name); });
    return found == checked_->end() ? nullptr : found->get();
}

void CatalogueCheck::checkObjects()
{
    for (const auto& [id, object] : objects_) {
        if (object.parent != object_id::kRoot && !objects_.contains(object.parent)) {
            faults_->add(object.address.page,
                         "The catalogue's \"" + object.name + "\" is in a container that is not there");
        }
        if (object.name.empty()) {
            faults_->add(object.address.page, "The catalogue has an object without a name");
        }
    }
}

void CatalogueCheck::checkReferences()
{
    for (const Reference& row : queryRows_) {
        const auto found = objects_.find(row.object);
        if (found == objects_.end() || !isOf(ObjectType::Query, found->second.type)) {
            faults_->add(row.address.page,
                         "Row " + std::to_string(row.address.row) + " of MSysQueries belongs to no query");
        }
    }
    for (const Reference& row : permissions_) {
        if (!objects_.contains(row.object)) {
            faults_->add(row.address.page,
                         "Row " + std::to_string(row.address.row) + " of MSysACEs belongs to no object",
                         Fault::Kind::Leftover);
        }
    }
}

// --- Relationships -------------------------------------------------------------------------------------------------

void CatalogueCheck::checkRelationships()
{
    std::map<std::string, std::set<std::int32_t>> positions;
    for (const RelationshipRow& row : relationshipRows_) {
        const std::string what = "Relationship \"" + row.name + "\" ";
        if (row.position < 0 || row.position >= row.columns || !positions[row.name].insert(row.position).second) {
            faults_->add(row.address.page, what + "does not number its columns from 0 to their count");
        }
        if (std::none_of(objects_.begin(), objects_.end(), [&](const auto& object) {
                return isOf(ObjectType::Relationship, object.second.type) && sameName(object.second.name, row.name);
            })) {
            faults_->add(row.address.page, what + "is not in the catalogue");
        }
        checkRelationshipSide(row, row.referencingTable, row.referencingColumn);
        checkRelationshipSide(row, row.referencedTable, row.referencedColumn);
        const TableCheck* referencing = tableNamed(row.referencingTable);
        if ((static_cast<std::uint32_t>(row.flags) & relationship_flag::kNotEnforced) == 0 && referencing != nullptr &&
            std::none_of(referencing->definition().logicalIndexes.begin(),
                         referencing->definition().logicalIndexes.end(), [&](const LogicalIndex& index) {
                             return index.kind == LogicalIndex::Kind::ForeignKey && sameName(index.name, row.name);
                         })) {
            faults_->add(row.address.page,
                         what + "is enforced, but \"" + row.referencingTable + "\" has no index for it");
        }
    }
    for (const RelationshipRow& row : relationshipRows_) {
        if (row.position == 0 && static_cast<std::int64_t>(positions[row.name].size()) != row.columns) {
            faults_->add(row.address.page, "Relationship \"" + row.name + "\" lacks a row for each of its columns");
        }
    }
}

void CatalogueCheck::checkRelationshipSide(const RelationshipRow& row, const std::string& table,
                                           const std::string& column)
{
    const std::string what = "Relationship \"" + row.name + "\" ";
    const TableCheck* found = tableNamed(table);
    if (found == nullptr) {
        faults_->add(row.address.page, what + "names the table \"" + table + "\", which is not there");
    } else if (found->definition().columnByName(column) == nullptr) {
        faults_->add(row.address.page, what + "names the column \"" + column + "\", which is not in \"" + table + "\"");
    }
}

/// Both sides of an enforced relationship name each other.
void CatalogueCheck::checkEnforcement(const TableCheck& table)
{
    for (const LogicalIndex& index : table.definition().logicalIndexes) {
        if (index.kind != LogicalIndex::Kind::ForeignKey) {
            continue;
        }
        const std::string what = "Table \"" + table.name() + "\": the relationship of index \"" + index.name + "\" ";
        const TableCheck* other = tableAt(index.otherTable);
        const LogicalIndex* back =
            other == nullptr ? nullptr : indexNumbered(other->definition(), index.otherIndexNumber);
        if (back == nullptr) {
            faults_->add(table.firstPage(), what + "leads to an index that is not there");
            continue;
        }
        const bool opposite =
            (index.role == LogicalIndex::Role::Referenced && back->role == LogicalIndex::Role::Referencing) ||
            (index.role == LogicalIndex::Role::Referencing && back->role == LogicalIndex::Role::Referenced);
        if (back->kind != LogicalIndex::Kind::ForeignKey || back->otherTable != table.firstPage() || !opposite ||
            back->otherIndexNumber < 0 || static_cast<std::uint32_t>(back->otherIndexNumber) != index.number) {
            faults_->add(table.firstPage(), what + "leads to an index that does not lead back");
        } else if (back->cascadeUpdates != index.cascadeUpdates || back->cascadeDeletes != index.cascadeDeletes) {
            faults_->add(table.firstPage(), what + "cascades in one of its tables in another way than in the other");
        } else if (index.role == LogicalIndex::Role::Referencing && table.isSound() && other->isSound()) {
            faults_->guard(table.firstPage(), what, [&] { checkParents(table, index, *other, *back); });
        }
    }
}

void CatalogueCheck::checkParents(const TableCheck& child, const LogicalIndex& index, const TableCheck& parent,
                                  const LogicalIndex& parentIndex)
{
    const TableDefinition& definition = child.definition();
    const RealIndex& parentReal = parent.definition().realIndexes.at(parentIndex.realIndex);
    const IndexKeyEncoder own(definition, definition.realIndexes.at(index.realIndex));
    const IndexKeyEncoder encoder(parent.definition(), parentReal);
    if (own.columnNumbers().size() != encoder.columnNumbers().size()) {
        throw Error(ErrorCode::Corrupt, "has another number of columns on either side");
    }
    if (!encoder.canEncode()) {
        return;
    }
    const IndexTree keys(*pager_, parent.firstPage(), parentReal.root, parentReal.pages);
    const RowStore store(*pager_, child.firstPage(), definition.ownedPages, definition.pagesWithSpace);
    const RowLayout layout(definition);
    for (RowStore::Cursor rows = store.scan(); rows.next();) {
        const RowView row(layout, rows.row().bytes);
        std::vector<Value> values;
        for (const std::uint16_t column : own.columnNumbers()) {
            values.push_back(readValue(*pager_, row, *definition.columnByNumber(column)));
        }
        const IndexKey key = encoder.encode(values);
        if (!key.allNull && !keys.find(key.bytes)) {
            faults_->add(rows.row().address.page,
                         "Table \"" + child.name() + "\": row " + std::to_string(rows.row().address.row) +
                             " refers to a row of \"" + parent.name() + "\" that is not there");
        }
    }
}

} // namespace jet
