#include "jet/compaction.h"

#include "jet/format/at_page.h"
#include "jet/format/header_page.h"
#include "jet/new_table.h"
#include "jet/row_reader.h"
#include "jet/row_writer.h"
#include "jet/store/long_value_store.h"
#include "jet/store/page_allocator.h"
#include "jet/store/table_definition_store.h"

#include <algorithm>
#include <array>

namespace jet {

namespace {

/// Objects of a database's own: the summary of its properties and the like; rows without anything elsewhere.
constexpr std::int16_t kDocument = -32757;

[[nodiscard]] bool isKnown(std::int16_t type)
{
    constexpr std::array kKnown{
        static_cast<std::int16_t>(ObjectType::Table),        static_cast<std::int16_t>(ObjectType::Database),
        static_cast<std::int16_t>(ObjectType::Container),    static_cast<std::int16_t>(ObjectType::Query),
        static_cast<std::int16_t>(ObjectType::Relationship), kDocument};
    return std::find(kKnown.begin(), kKnown.end(), type) != kKnown.end();
}

/// The pages of the frame are where this engine puts them, and the header is carried over as it is.
void requireUsualFrame(const HeaderPage& header)
{
    const HeaderPage usual;
    if (header.globalMap != usual.globalMap || header.secondMap != usual.secondMap ||
        header.systemTables != usual.systemTables) {
        throw Error(ErrorCode::ReadOnly, "The file has its own tables in unusual places, so it cannot be rewritten");
    }
}

void makeFrame(Pager& source, Pager& target)
{
    static_cast<void>(target.append());
    static_cast<void>(target.append());
    target.modify(0) = *source.read(0);
    PageAllocator::initialize(target);
}

/// Fills one table.
class TableFiller
{
public:
    TableFiller(Pager& source, const LoadedTable& from, Pager& target, LoadedTable& to)
        : source_(&source), from_(&from), to_(&to)
    {
        for (const LongValueMaps& maps : to.definition.longValues) {
            longValues_.emplace_back(maps.columnNumber, LongValueStore(target, maps));
        }
    }

    /// `id` is the column whose ids change.
    void add(const StoredRow& row, std::optional<std::uint16_t> id, const std::vector<MovedTable>& tables)
    {
        const RowView view = atPage(row.dataPage, [&] { return RowView(from_->layout, row.bytes); });
        RowBuilder builder(to_->definition, view);
        for (auto& [number, store] : longValues_) {
            const Column& column = *from_->definition.columnByNumber(number);
            if (const std::optional<ByteView> slot = view.raw(column);
                slot.has_value() && decodeLongValue(*slot).storage != LongValue::Storage::Inline) {
                builder.set(column, store.write(readLongValue(*source_, *slot)));
            }
        }
        std::optional<std::int32_t> newId;
        if (id.has_value()) {
            const Column& column = *from_->definition.columnByNumber(*id);
            const Value value = view.value(column);
            if (const std::int32_t* old = std::get_if<std::int32_t>(&value)) {
                newId = carriedId(*old, tables);
                builder.set(column, *newId);
            }
        }
        const RowPointer address = to_->rows.insert(builder.encode());
        for (std::size_t i = 0; i < to_->indexes.size(); ++i) {
            RowValues values = from_->keyValues(*source_, from_->indexes[i], view);
            if (newId.has_value()) {
                values[*id] = *newId;
            }
            to_->addEntry(i, to_->indexes[i].keyOf(values), address);
        }
        ++to_->definition.rowCount;
    }

private:
    Pager* source_;
    const LoadedTable* from_;
    LoadedTable* to_;
    std::vector<std::pair<std::uint16_t, LongValueStore>> longValues_;
};

} // namespace

std::vector<MovedTable> tablesToCarryOver(Catalogue& source)
{
    const HeaderPage header = decodeHeaderPage(*source.pager().read(0));
    requireUsualFrame(header);
    std::vector<MovedTable> tables;
    for (const PageNumber page : header.systemTables) {
        tables.push_back({.from = page, .to = page});
    }
    std::vector<std::int32_t> parents;
    const std::shared_ptr<LoadedTable> objects = source.objects().loaded();
    const std::unique_ptr<RowCursor> cursor = scanRows(source.pager(), source.objects());
    while (cursor->next()) {
        const SystemRow row(objects->definition, cursor->row());
        const std::string name = row.text(ObjectColumn::Name);
        const std::int16_t type = row.get<std::int16_t>(ObjectColumn::Type).value_or(0);
        if (!isKnown(type)) {
            throw Error(ErrorCode::ReadOnly, "The file holds \"" + name +
                                                 "\", which is neither a table nor a query and cannot be carried over");
        }
        parents.push_back(row.get<std::int32_t>(ObjectColumn::ParentId).value_or(0));
        const auto id = static_cast<PageNumber>(row.get<std::int32_t>(ObjectColumn::Id).value_or(0));
        const bool isListed =
            std::any_of(tables.begin(), tables.end(), [id](const MovedTable& table) { return table.from == id; });
        if (type != static_cast<std::int16_t>(ObjectType::Table) || isListed) {
            continue;
        }
        if (const std::string index = unsupportedIndexOf(*source.tables().at(id).loaded()); !index.empty()) {
            throw Error(ErrorCode::IndexNotSupported, "The index \"" + index + "\" of the table \"" + name +
                                                          "\" cannot be kept up, so the table cannot be carried over");
        }
        tables.push_back({.from = id, .to = 0});
    }
    if (std::any_of(tables.begin(), tables.end(), [&parents](const MovedTable& table) {
            return std::find(parents.begin(), parents.end(), static_cast<std::int32_t>(table.from)) != parents.end();
        })) {
        throw Error(ErrorCode::ReadOnly, "The file holds an object that belongs to a table and cannot be carried over");
    }
    return tables;
}

void carryOver(Catalogue& source, Pager& target, std::vector<MovedTable>& tables)
{
    target.begin();
    makeFrame(source.pager(), target);
    constexpr std::size_t kSystemTables = std::tuple_size_v<Catalogue::SystemPages>;
    std::vector<TableDefinition> definitions;
    for (const MovedTable& table : tables) {
        definitions.push_back(withoutPages(source.tables().at(table.from).loaded()->definition, {}));
    }
    const std::span all(definitions);
    std::vector<PageNumber> pages = storeNewTables(target, all.first(kSystemTables));
    for (TableDefinition& definition : all.subspan(kSystemTables)) {
        pages.push_back(storeNewTables(target, {&definition, 1}).front());
    }
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (i < kSystemTables && pages[i] != tables[i].from) {
            throw Error(ErrorCode::ReadOnly, "The file's own tables are longer than usual, so it cannot be rewritten");
        }
        tables[i].to = pages[i];
    }
    for (std::size_t i = 0; i < tables.size(); ++i) {
        for (LogicalIndex& index : definitions[i].logicalIndexes) {
            index.otherTable = static_cast<PageNumber>(carriedId(static_cast<std::int32_t>(index.otherTable), tables));
        }
        TableDefinitionStore(target).save(tables[i].to, definitions[i]);
    }
    target.commit();

    for (const MovedTable& table : tables) {
        target.begin();
        const std::shared_ptr<LoadedTable> from = source.tables().at(table.from).loaded();
        LoadedTable to(target, table.to);
        TableFiller filler(source.pager(), *from, target, to);
        for (RowStore::Cursor cursor = from->rows.scan(); cursor.next();) {
            filler.add(cursor.row(), idColumnOf(source, table.from), tables);
        }
        TableDefinitionStore(target).saveCounters(table.to, to.definition);
        target.commit();
    }
}

} // namespace jet
