#include "data/engine/table_module.h"

#include "data/engine/search_key.h"
#include "data/engine/sqlite_value.h"
#include "data/engine/table_cursor.h"
#include "data/engine/value_conversion.h"
#include "data/types/expression_type.h"

#include <algorithm>

namespace data {
namespace {

struct VirtualTable : sqlite3_vtab {
    explicit VirtualTable(TableBinding& source) : sqlite3_vtab{}, binding(source) {}
    TableBinding& binding;
};

struct VirtualCursor : sqlite3_vtab_cursor {
    explicit VirtualCursor(TableBinding& source) : sqlite3_vtab_cursor{}, binding(source), rows(source) {}
    TableBinding& binding;
    TableCursor rows;
};

TableBinding& bindingOf(sqlite3_vtab* table)
{
    return static_cast<VirtualTable*>(table)->binding;
}

VirtualCursor& cursorOf(sqlite3_vtab_cursor* cursor)
{
    return *static_cast<VirtualCursor*>(cursor);
}

/// The index as the planner sees it, or null when it cannot be searched.
std::optional<SearchableIndex> searchableIndex(const jet::Table& table, std::size_t position,
                                               const std::vector<jet::Column>& columns)
{
    if (!table.isSearchable(position)) {
        return std::nullopt;
    }
    const jet::RealIndex& real = table.definition().realIndexes[position];
    SearchableIndex index;
    index.realIndex = position;
    index.unique = real.isUnique();
    index.required = real.isRequired();
    index.ignoresNulls = real.ignoresNulls();
    if (real.distinctKeys != 0) {
        index.rowsPerKey = std::max(1.0, static_cast<double>(table.rowCount()) / real.distinctKeys);
    }
    for (const jet::KeyColumn& key : real.columns) {
        const auto column = std::find_if(columns.begin(), columns.end(), [&](const jet::Column& candidate) {
            return candidate.number == key.columnNumber;
        });
        if (column == columns.end() || !isSearchableType(column->type)) {
            return std::nullopt;
        }
        index.keys.push_back({static_cast<int>(column - columns.begin()), key.ascending});
        index.keepsOrder = index.keepsOrder && column->type != jet::ColumnType::Memo;
    }
    return index;
}

/// Whether an index refuses null in the column. Knowing it, SQLite finds the least value at the beginning of an index.
bool isNeverNull(int column, const std::vector<SearchableIndex>& indexes)
{
    return std::any_of(indexes.begin(), indexes.end(), [&](const SearchableIndex& index) {
        return index.required && std::any_of(index.keys.begin(), index.keys.end(),
                                             [&](const SearchableIndex::Key& key) { return key.column == column; });
    });
}

/// "CREATE TABLE t(c0 INTEGER NOT NULL, c1 TEXT COLLATE jet_text, ..., row INTEGER)".
QByteArray declarationOf(const TableBinding& binding)
{
    const std::vector<jet::Column>& columns = binding.columns;
    QString sql = QStringLiteral("CREATE TABLE t(");
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ExpressionType type = typeOf(fieldOf(columns[i]).type);
        QString declared = QStringLiteral("REAL");
        if (type.isText()) {
            declared = QStringLiteral("TEXT COLLATE ") + kTextCollation;
        } else if (type.isWhole()) {
            declared = QStringLiteral("INTEGER");
        } else if (type.is(FieldType::Binary)) {
            declared = QStringLiteral("BLOB");
        }
        if (isNeverNull(static_cast<int>(i), binding.indexes)) {
            declared += QStringLiteral(" NOT NULL");
        }
        sql += columnAlias(i) + u' ' + declared + QStringLiteral(", ");
    }
    return (sql + QStringLiteral("row INTEGER NOT NULL)")).toUtf8();
}

int connectTable(sqlite3* connection, void* context, int, const char* const*, sqlite3_vtab** table, char**)
{
    auto& binding = *static_cast<TableBinding*>(context);
    return binding.pending.guard([&] {
        if (sqlite3_declare_vtab(connection, declarationOf(binding).constData()) != SQLITE_OK) {
            throw std::bad_alloc();
        }
        *table = std::make_unique<VirtualTable>(binding).release();
    });
}

int disconnectTable(sqlite3_vtab* table)
{
    const std::unique_ptr<VirtualTable> owner(static_cast<VirtualTable*>(table));
    return SQLITE_OK;
}

/// Null for a comparison that no index helps with.
std::optional<PlanQuestion::Comparison> comparisonOf(unsigned char constraint)
{
    switch (constraint) {
    case SQLITE_INDEX_CONSTRAINT_EQ:
        return PlanQuestion::Comparison::Equal;
    case SQLITE_INDEX_CONSTRAINT_GT:
    case SQLITE_INDEX_CONSTRAINT_GE:
        return PlanQuestion::Comparison::Lower;
    case SQLITE_INDEX_CONSTRAINT_LT:
    case SQLITE_INDEX_CONSTRAINT_LE:
        return PlanQuestion::Comparison::Upper;
    default:
        return std::nullopt;
    }
}

PlanQuestion questionOf(const TableBinding& binding, const sqlite3_index_info& info)
{
    PlanQuestion question;
    question.addressColumn = static_cast<int>(binding.columns.size());
    question.rowCount = binding.table.rowCount();
    for (int i = 0; i < info.nConstraint; ++i) {
        const auto& constraint = info.aConstraint[i];
        const auto comparison = comparisonOf(constraint.op);
        if (constraint.usable != 0 && constraint.iColumn >= 0 && comparison) {
            question.constraints.push_back({constraint.iColumn, *comparison, i});
        }
    }
    for (int i = 0; i < info.nOrderBy; ++i) {
        const int column = info.aOrderBy[i].iColumn;
        question.order.push_back({column < 0 ? question.addressColumn : column, info.aOrderBy[i].desc != 0});
    }
    return question;
}

int bestIndex(sqlite3_vtab* table, sqlite3_index_info* info)
{
    TableBinding& binding = bindingOf(table);
    return binding.pending.guard([&] {
        const IndexPlan plan = bestPlan(questionOf(binding, *info), binding.indexes);
        int argument = 0;
        for (const int number : plan.constraints) {
            info->aConstraintUsage[number].argvIndex = ++argument;
        }
        info->idxNum = plan.number;
        info->idxStr = sqlite3_mprintf("%s", plan.values.c_str());
        if (info->idxStr == nullptr) {
            throw std::bad_alloc();
        }
        info->needToFreeIdxStr = 1;
        info->orderByConsumed = plan.ordered ? 1 : 0;
        info->estimatedCost = plan.cost;
        info->estimatedRows = static_cast<sqlite3_int64>(plan.rows);
    });
}

int openCursor(sqlite3_vtab* table, sqlite3_vtab_cursor** cursor)
{
    TableBinding& binding = bindingOf(table);
    return binding.pending.guard([&] { *cursor = std::make_unique<VirtualCursor>(binding).release(); });
}

int closeCursor(sqlite3_vtab_cursor* cursor)
{
    const std::unique_ptr<VirtualCursor> owner(static_cast<VirtualCursor*>(cursor));
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* base, int number, const char* codes, int count, sqlite3_value** arguments)
{
    VirtualCursor& cursor = cursorOf(base);
    const std::span<sqlite3_value* const> values(arguments, static_cast<std::size_t>(count));
    return cursor.binding.pending.guard([&] { cursor.rows.search(number, codes, values); });
}

int next(sqlite3_vtab_cursor* base)
{
    VirtualCursor& cursor = cursorOf(base);
    return cursor.binding.pending.guard([&] { cursor.rows.next(); });
}

int atEnd(sqlite3_vtab_cursor* cursor)
{
    return cursorOf(cursor).rows.atEnd() ? 1 : 0;
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int position)
{
    VirtualCursor& cursor = cursorOf(base);
    return cursor.binding.pending.guard([&] {
        const auto index = static_cast<std::size_t>(position);
        if (index >= cursor.binding.columns.size()) {
            sqlite3_result_int64(context, rowIdOf(cursor.rows.address()));
        } else {
            setResult(context, cursor.rows.value(index));
        }
    });
}

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id)
{
    VirtualCursor& cursor = cursorOf(base);
    return cursor.binding.pending.guard([&] { *id = rowIdOf(cursor.rows.address()); });
}

/// No xCreate: the module's name is the table's, and nothing has to be created.
const sqlite3_module& module()
{
    static const sqlite3_module module = [] {
        sqlite3_module result{};
        result.iVersion = 1;
        result.xConnect = connectTable;
        result.xBestIndex = bestIndex;
        result.xDisconnect = disconnectTable;
        result.xOpen = openCursor;
        result.xClose = closeCursor;
        result.xFilter = filter;
        result.xNext = next;
        result.xEof = atEnd;
        result.xColumn = column;
        result.xRowid = rowId;
        return result;
    }();
    return module;
}

} // namespace

TableBinding::TableBinding(jet::Table& source, PendingError& errors) : table(source), pending(errors)
{
    for (const jet::Column* column : source.definition().displayOrder()) {
        columns.push_back(*column);
    }
    for (std::size_t i = 0; i < source.definition().realIndexes.size(); ++i) {
        if (std::optional<SearchableIndex> index = searchableIndex(source, i, columns)) {
            indexes.push_back(*std::move(index));
        }
    }
}

int registerTable(sqlite3* connection, const QString& name, TableBinding& binding)
{
    return sqlite3_create_module_v2(connection, name.toUtf8().constData(), &module(), &binding, nullptr);
}

} // namespace data
