#include "jet/catalogue.h"

#include "jet/format/property_blob.h"
#include "jet/format/text_key.h"
#include "jet/format/utf.h"
#include "jet/row_reader.h"

#include <algorithm>
#include <map>

namespace jet {

namespace {

[[nodiscard]] CatalogueEntry entryOf(const SystemRow& row)
{
    const std::optional<std::int32_t> id = row.get<std::int32_t>(ObjectColumn::Id);
    if (!id.has_value()) {
        throw Error(ErrorCode::Corrupt, row.address().page, "An object of the catalogue has no id");
    }
    return {.id = *id,
            .parent = row.get<std::int32_t>(ObjectColumn::ParentId).value_or(0),
            .name = row.text(ObjectColumn::Name),
            .type = row.get<std::int16_t>(ObjectColumn::Type).value_or(0),
            .flags = static_cast<std::uint32_t>(row.get<std::int32_t>(ObjectColumn::Flags).value_or(0))};
}

[[nodiscard]] bool namesBefore(const std::string& a, const std::string& b)
{
    const int order = compareTexts(toUtf16(a), toUtf16(b));
    return order != 0 ? order < 0 : a < b;
}

template <typename Named>
void sortByName(std::vector<Named>& items)
{
    std::sort(items.begin(), items.end(), [](const Named& a, const Named& b) { return namesBefore(a.name, b.name); });
}

/// A query's rows are counted by up to four bytes, most significant first.
[[nodiscard]] std::uint32_t orderOf(const SystemRow& row)
{
    std::uint32_t order = 0;
    for (const std::byte byte : row.get<Bytes>(QueryColumn::Order).value_or(Bytes{})) {
        order = (order << 8U) | std::to_integer<std::uint32_t>(byte);
    }
    return order;
}

[[nodiscard]] QueryRow queryRowOf(const SystemRow& row)
{
    return {.attribute = row.get<std::uint8_t>(QueryColumn::Attribute).value_or(0),
            .order = orderOf(row),
            .flag = row.get<std::int16_t>(QueryColumn::Flag),
            .expression = row.get<std::u16string>(QueryColumn::Expression),
            .name1 = row.get<std::u16string>(QueryColumn::Name1),
            .name2 = row.get<std::u16string>(QueryColumn::Name2)};
}

[[nodiscard]] Relationship relationshipOf(const SystemRow& row)
{
    using namespace relationship_flag;
    const auto flags = static_cast<std::uint32_t>(row.get<std::int32_t>(RelationshipColumn::Flags).value_or(0));
    Relationship relationship;
    relationship.name = row.text(RelationshipColumn::Name);
    relationship.referencingTable = row.text(RelationshipColumn::Object);
    relationship.referencedTable = row.text(RelationshipColumn::ReferencedObject);
    relationship.enforced = (flags & kNotEnforced) == 0;
    relationship.oneToOne = (flags & kOneToOne) != 0;
    relationship.cascadeUpdates = (flags & kCascadeUpdates) != 0;
    relationship.cascadeDeletes = (flags & kCascadeDeletes) != 0;
    relationship.setNullOnDelete = (flags & kSetNullOnDelete) != 0;
    return relationship;
}

/// The index whose leading columns are those of the key, if keys can be searched there.
[[nodiscard]] std::optional<std::size_t> indexFor(const LoadedTable& table, std::span<const ColumnValue> key)
{
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        const IndexKeyEncoder& encoder = table.indexes[i].encoder;
        const std::vector<std::uint16_t>& columns = encoder.columnNumbers();
        if (encoder.isSearchable() && columns.size() >= key.size() &&
            std::equal(key.begin(), key.end(), columns.begin(),
                       [](const ColumnValue& part, std::uint16_t column) { return part.columnNumber == column; })) {
            return i;
        }
    }
    return std::nullopt;
}

[[nodiscard]] bool matches(const LoadedTable& table, const Row& row, const ColumnValue& wanted)
{
    const Column* column = table.definition.columnByNumber(wanted.columnNumber);
    const Value value = column == nullptr ? Value{Null{}} : row.value(*column);
    const std::u16string* text = std::get_if<std::u16string>(&value);
    const std::u16string* other = std::get_if<std::u16string>(&wanted.value);
    return text != nullptr && other != nullptr ? textsEqual(*text, *other) : value == wanted.value;
}

} // namespace

PageNumber CatalogueEntry::definitionPage() const
{
    if (id <= 0) {
        throw Error(ErrorCode::Corrupt, "The table \"" + name + "\" has an id that is no page");
    }
    return static_cast<PageNumber>(id);
}

void Catalogue::noteChange()
{
    ++changes_;
    tables_.forget();
}

void Catalogue::visitAll(StoredTable& table, const Visitor& visit)
{
    const std::shared_ptr<LoadedTable> loaded = table.loaded();
    const std::unique_ptr<RowCursor> cursor = scanRows(*pager_, table);
    while (cursor->next() && visit(SystemRow(loaded->definition, cursor->row()))) {
    }
}

void Catalogue::visitObjects(std::span<const ColumnValue> key, const Visitor& visit)
{
    const std::shared_ptr<LoadedTable> loaded = objects().loaded();
    const std::optional<std::size_t> index = indexFor(*loaded, key);
    std::unique_ptr<RowCursor> cursor;
    if (index.has_value()) {
        KeyBound bound;
        for (const ColumnValue& part : key) {
            bound.values.push_back(part.value);
        }
        cursor = rangeOfRows(*pager_, objects(), *index, {.from = bound, .to = bound});
    } else {
        cursor = scanRows(*pager_, objects());
    }
    while (cursor->next()) {
        const Row& row = cursor->row();
        if (std::all_of(key.begin(), key.end(), [&](const ColumnValue& part) { return matches(*loaded, row, part); }) &&
            !visit(SystemRow(loaded->definition, row))) {
            return;
        }
    }
}

std::optional<CatalogueEntry> Catalogue::find(std::int32_t parent, const std::string& name)
{
    const std::array key{systemValue(ObjectColumn::ParentId, parent), systemValue(ObjectColumn::Name, toUtf16(name))};
    std::optional<CatalogueEntry> found;
    visitObjects(key, [&found](const SystemRow& row) {
        found = entryOf(row);
        return false;
    });
    return found;
}

std::optional<CatalogueEntry> Catalogue::byId(std::int32_t id)
{
    const std::array key{systemValue(ObjectColumn::Id, id)};
    std::optional<CatalogueEntry> found;
    visitObjects(key, [&found](const SystemRow& row) {
        found = entryOf(row);
        return false;
    });
    return found;
}

std::vector<CatalogueEntry> Catalogue::childrenOf(std::int32_t parent)
{
    const std::array key{systemValue(ObjectColumn::ParentId, parent)};
    std::vector<CatalogueEntry> children;
    visitObjects(key, [&children](const SystemRow& row) {
        children.push_back(entryOf(row));
        return true;
    });
    sortByName(children);
    return children;
}

std::optional<std::int32_t> Catalogue::highestSyntheticId()
{
    std::optional<std::int32_t> highest;
    visitAll(objects(), [&highest](const SystemRow& row) {
        const std::int32_t id = entryOf(row).id;
        if (id < 0) {
            highest = std::max(id, highest.value_or(id));
        }
        return true;
    });
    return highest;
}

std::optional<Bytes> Catalogue::ownerOf(std::int32_t parent, const std::string& name)
{
    const std::array key{systemValue(ObjectColumn::ParentId, parent), systemValue(ObjectColumn::Name, toUtf16(name))};
    std::optional<Bytes> owner;
    visitObjects(key, [&owner](const SystemRow& row) {
        owner = row.get<Bytes>(ObjectColumn::Owner);
        return false;
    });
    return owner;
}

std::vector<SavedQuery> Catalogue::queries()
{
    std::map<std::int32_t, SavedQuery> byObject;
    for (const CatalogueEntry& entry : childrenOf(object_id::kTables)) {
        if (entry.is(ObjectType::Query) && !entry.name.starts_with('~')) {
            byObject[entry.id] = {.name = entry.name, .flags = static_cast<std::int32_t>(entry.flags), .rows = {}};
        }
    }
    if (byObject.empty()) {
        return {};
    }
    visitAll(queryRows(), [&byObject](const SystemRow& row) {
        const auto query = byObject.find(row.get<std::int32_t>(QueryColumn::ObjectId).value_or(0));
        if (query != byObject.end()) {
            query->second.rows.push_back(queryRowOf(row));
        }
        return true;
    });
    std::vector<SavedQuery> queries;
    for (auto& [id, query] : byObject) {
        std::stable_sort(query.rows.begin(), query.rows.end(), [](const QueryRow& a, const QueryRow& b) {
            return std::pair(a.attribute, a.order) < std::pair(b.attribute, b.order);
        });
        queries.push_back(std::move(query));
    }
    sortByName(queries);
    return queries;
}

std::vector<Relationship> Catalogue::relationships()
{
    struct Gathered {
        Relationship relationship;
        std::map<std::int32_t, Relationship::Pair> columns;
    };
    std::map<std::string, Gathered> byName;
    visitAll(relationshipRows(), [&byName](const SystemRow& row) {
        Relationship relationship = relationshipOf(row);
        Gathered& gathered = byName[relationship.name];
        gathered.relationship = std::move(relationship);
        gathered.columns[row.get<std::int32_t>(RelationshipColumn::ColumnIndex).value_or(0)] = {
            row.text(RelationshipColumn::Column), row.text(RelationshipColumn::ReferencedColumn)};
        return true;
    });
    std::vector<Relationship> relationships;
    for (auto& [name, gathered] : byName) {
        const std::optional<CatalogueEntry> table = find(object_id::kTables, gathered.relationship.referencingTable);
        if (table.has_value() && table->isSystem()) {
            continue; // Between tables that Access keeps for itself.
        }
        for (auto& [order, pair] : gathered.columns) {
            gathered.relationship.columns.push_back(std::move(pair));
        }
        relationships.push_back(std::move(gathered.relationship));
    }
    sortByName(relationships);
    return relationships;
}

std::string Catalogue::nameOf(PageNumber definitionPage)
{
    const std::optional<CatalogueEntry> entry = byId(static_cast<std::int32_t>(definitionPage));
    return entry.has_value() ? entry->name : "(page " + std::to_string(definitionPage) + ")";
}

std::vector<ColumnRules> Catalogue::rulesOf(PageNumber definitionPage, const LoadedTable& table)
{
    std::vector<ColumnRules> rules(table.emptyRow().size());
    if (isSystemTable(definitionPage)) {
        return rules;
    }
    const std::array key{systemValue(ObjectColumn::Id, static_cast<std::int32_t>(definitionPage))};
    visitObjects(key, [&](const SystemRow& row) {
        const PropertyBlob blob = decodePropertyBlob(row.get<Bytes>(ObjectColumn::LvProp).value_or(Bytes{}));
        for (const Column& column : table.definition.columns) {
            if (const PropertySet* properties = blob.find(column.name); properties != nullptr) {
                rules[column.number].required = properties->boolean("Required").value_or(false);
                rules[column.number].allowsZeroLength = properties->boolean("AllowZeroLength").value_or(true);
            }
        }
        return false;
    });
    return rules;
}

bool Catalogue::isSystemTable(PageNumber page) const
{
    return std::find(pages_.begin(), pages_.end(), page) != pages_.end();
}

} // namespace jet
