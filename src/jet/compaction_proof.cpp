#include "jet/compaction_proof.h"

#include "jet/disk/file_version.h"
#include "jet/format/at_page.h"
#include "jet/format/table_definition_codec.h"
#include "jet/store/long_value_store.h"

#include <algorithm>

namespace jet {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw Error(ErrorCode::Corrupt, "The file was not rewritten: the new one differs in " + what);
}

/// A row's stored bytes of one column, long values in full; nothing for null.
[[nodiscard]] std::optional<Bytes> storedValue(Pager& pager, const RowView& row, const Column& column)
{
    const std::optional<ByteView> raw = row.raw(column);
    if (!raw.has_value()) {
        return std::nullopt;
    }
    return column.isLongValue() ? readLongValue(pager, *raw) : Bytes(raw->begin(), raw->end());
}

[[nodiscard]] bool sameValue(Pager& source, const RowView& one, Pager& target, const RowView& other,
                             const Column& column)
{
    if (column.type == ColumnType::Boolean) {
        return one.value(column) == other.value(column);
    }
    return storedValue(source, one, column) == storedValue(target, other, column);
}

[[nodiscard]] bool sameId(const RowView& one, const RowView& other, const Column& column,
                          const std::vector<MovedTable>& tables)
{
    Value value = one.value(column);
    if (std::int32_t* id = std::get_if<std::int32_t>(&value)) {
        *id = carriedId(*id, tables);
    }
    return value == other.value(column);
}

void requireSameRows(Catalogue& source, Pager& target, const MovedTable& table, const std::vector<MovedTable>& tables)
{
    const std::shared_ptr<LoadedTable> from = source.tables().at(table.from).loaded();
    const LoadedTable to(target, table.to);
    const std::optional<std::uint16_t> id = idColumnOf(source, table.from);
    const std::string name = "the rows of \"" + source.nameOf(table.from) + "\"";
    RowStore::Cursor one = from->rows.scan();
    RowStore::Cursor other = to.rows.scan();
    std::uint32_t count = 0;
    while (one.next()) {
        if (!other.next()) {
            fail(name);
        }
        const RowView row = atPage(one.row().dataPage, [&] { return RowView(from->layout, one.row().bytes); });
        const RowView copy = atPage(other.row().dataPage, [&] { return RowView(to.layout, other.row().bytes); });
        const auto differs = [&](const Column& column) {
            return column.number == id ? !sameId(row, copy, column, tables)
                                       : !sameValue(source.pager(), row, target, copy, column);
        };
        const std::vector<Column>& columns = from->definition.columns;
        if (std::any_of(columns.begin(), columns.end(), differs)) {
            fail(name);
        }
        ++count;
    }
    if (other.next() || to.definition.rowCount != count) {
        fail(name);
    }
}

void requireSameDefinition(Catalogue& source, Pager& target, const MovedTable& table,
                           const std::vector<MovedTable>& tables)
{
    const TableDefinition& from = source.tables().at(table.from).loaded()->definition;
    const LoadedTable to(target, table.to);
    if (encodeTableDefinition(withoutPages(from, tables)) != encodeTableDefinition(withoutPages(to.definition, {}))) {
        fail("the definition of \"" + source.nameOf(table.from) + "\"");
    }
}

void requireSameHeader(const Page& one, const Page& other)
{
    constexpr std::size_t kCounted = FileVersion::kCommitPairsOffset;
    const ByteView before(one);
    const ByteView after(other);
    // The first byte of the first pair counts commits.
    if (!std::ranges::equal(before.first(kCounted), after.first(kCounted)) ||
        !std::ranges::equal(before.subspan(kCounted + 1), after.subspan(kCounted + 1))) {
        fail("its header");
    }
}

} // namespace

void requireCarriedOver(Catalogue& source, Pager& target, const std::vector<MovedTable>& tables)
{
    requireSameHeader(*source.pager().read(0), *target.read(0));
    for (const MovedTable& table : tables) {
        requireSameDefinition(source, target, table, tables);
        requireSameRows(source, target, table, tables);
    }
}

} // namespace jet
