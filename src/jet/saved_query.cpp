// Rebuilds the SQL of a saved query from its rows (FORMAT.md, "Saved queries").
#include "jet/schema.h"

#include "jet/disk/error.h"
#include "jet/query_rows.h"
#include "jet/query_sources.h"

#include <cstddef>
#include <stdexcept>

namespace jet {

namespace {

using namespace query_attribute;
using namespace query_option;

// Flags of output columns.
constexpr int kPlain = 0;
constexpr int kPivot = 1;
constexpr int kRowHeading = 2;
constexpr int kAppendedValue = -0x8000;

std::string withoutSemicolon(std::string sql)
{
    const std::size_t last = sql.find_last_not_of("; \t\r\n");
    sql.resize(last == std::string::npos ? 0 : last + 1);
    return sql;
}

void append(std::string& list, const std::string& element)
{
    list += (list.empty() ? "" : ", ") + element;
}

/// The word for a parameter's type in a PARAMETERS declaration.
const char* typeName(int code)
{
    switch (code) {
    case 1:
        return "Bit";
    case 2:
        return "Byte";
    case 3:
        return "Short";
    case 4:
        return "Long";
    case 5:
        return "Currency";
    case 6:
        return "IEEESingle";
    case 7:
        return "IEEEDouble";
    case 8:
        return "DateTime";
    case 9:
        return "Binary";
    case 10:
    case 12:
        return "Text";
    case 11:
        return "LongBinary";
    case 15:
        return "Guid";
    default:
        return "Value";
    }
}

/// Writes one query. What makes no statement throws std::invalid_argument with words that go on from "The saved
/// query ...".
class Writer
{
public:
    explicit Writer(const SavedQuery& query) : rows_(query) {}

    [[nodiscard]] std::string statement() const
    {
        switch (rows_.kind()) {
        case QueryKind::DataDefinition:
        case QueryKind::PassThrough:
            return storedStatement();
        case QueryKind::Select:
            return whole(selection("") + tail());
        case QueryKind::MakeTable:
            return whole(selection("\nINTO " + target()) + tail());
        case QueryKind::Append:
            return whole(appending());
        case QueryKind::Update:
            return whole(updating());
        case QueryKind::Delete:
            return whole(deleting());
        case QueryKind::Crosstab:
            return whole(crosstab());
        case QueryKind::Union:
            return whole(unionOfParts());
        }
        return {};
    }

private:
    // --- Names and expressions ---

    /// Brackets every name, because many a good column name is a word of SQL.
    [[nodiscard]] static std::string bracketed(const std::string& name)
    {
        if (name.size() > 2 && name.front() == '[' && name.find_first_of("[]", 1) == name.size() - 1) {
            return name;
        }
        if (name.empty() || name.find_first_of("[]") != std::string::npos) {
            throw std::invalid_argument("has a name that cannot be written: \"" + name + "\"");
        }
        return "[" + name + "]";
    }

    /// A column that may have its table's name before it.
    [[nodiscard]] static std::string bracketedColumn(const std::string& column)
    {
        if (column.find_first_of("[]") != std::string::npos) {
            return column; // is stored ready to use
        }
        const std::size_t dot = column.find('.');
        if (dot == std::string::npos) {
            return bracketed(column);
        }
        return bracketed(column.substr(0, dot)) + "." + bracketed(column.substr(dot + 1));
    }

    /// Expressions are stored ready to use.
    [[nodiscard]] static std::string expression(const QueryRow& row)
    {
        std::string result = queryText(row.expression);
        if (result.empty()) {
            throw std::invalid_argument("has a row without its expression");
        }
        return result;
    }

    [[nodiscard]] static std::string withAlias(const std::string& sql, const std::optional<std::u16string>& name)
    {
        const std::string alias = queryText(name);
        return alias.empty() ? sql : sql + " AS " + bracketed(alias);
    }

    [[nodiscard]] std::string target() const
    {
        const QueryRow* row = rows_.first(kType);
        return bracketed(row == nullptr ? std::string() : queryText(row->name1));
    }

    // --- Clauses ---

    [[nodiscard]] std::string parameters() const
    {
        std::string declared;
        for (const QueryRow* row : rows_.all(kParameter)) {
            append(declared, bracketed(queryText(row->name1)) + " " + typeName(row->flag.value_or(0)));
        }
        return declared.empty() ? "" : "PARAMETERS " + declared + ";\n";
    }

    [[nodiscard]] std::string whole(const std::string& statement) const
    {
        return parameters() + statement + (rows_.has(kOwnerAccess) ? "\nWITH OWNERACCESS OPTION;" : ";");
    }

    [[nodiscard]] std::string predicate() const
    {
        std::string result;
        if (rows_.has(kDistinct)) {
            result += "DISTINCT ";
        }
        if (rows_.has(kDistinctRow)) {
            result += "DISTINCTROW ";
        }
        if (rows_.has(kTop)) {
            const std::string count = queryText(rows_.first(kOptions)->name1);
            if (count.empty() || count.find_first_not_of("0123456789") != std::string::npos) {
                throw std::invalid_argument("says TOP without a number");
            }
            result += "TOP " + count + (rows_.has(kPercent) ? " PERCENT " : " ");
        }
        return result;
    }

    /// The output columns of that flag; of all flags when there is none.
    [[nodiscard]] std::string columns(std::optional<int> flag) const
    {
        std::string result;
        for (const QueryRow* row : rows_.all(kOutput)) {
            if (!flag || row->flag.value_or(kPlain) == *flag) {
                append(result, withAlias(expression(*row), row->name1));
            }
        }
        return result;
    }

    [[nodiscard]] std::string columnsOrAll() const
    {
        std::string result = columns(std::nullopt);
        if (rows_.has(kAllColumns)) {
            append(result, "*");
        }
        return result;
    }

    [[nodiscard]] std::string selection(const std::string& into) const
    {
        const std::string list = columnsOrAll();
        if (list.empty()) {
            throw std::invalid_argument("selects no columns");
        }
        return "SELECT " + predicate() + list + into + from();
    }

    [[nodiscard]] std::string sources() const
    {
        QuerySources sources;
        for (const QueryRow* row : rows_.all(kInput)) {
            const std::string name = queryText(row->name1);
            const std::string alias = queryText(row->name2);
            sources.add(alias.empty() ? name : alias, withAlias(source(*row, name), row->name2));
        }
        for (const QueryRow* row : rows_.all(kJoin)) {
            sources.join(joinOf(*row), queryText(row->name1), queryText(row->name2), expression(*row));
        }
        return sources.sql();
    }

    [[nodiscard]] static std::string source(const QueryRow& row, const std::string& name)
    {
        if (name.empty()) {
            return "(" + withoutSemicolon(expression(row)) + ")"; // a query inside the query
        }
        const std::string otherFile = queryText(row.expression);
        return otherFile.empty() ? bracketed(name) : bracketed(otherFile) + "." + bracketed(name);
    }

    [[nodiscard]] static QuerySources::Join joinOf(const QueryRow& row)
    {
        switch (row.flag.value_or(0)) {
        case 1:
            return QuerySources::Join::Inner;
        case 2:
            return QuerySources::Join::Left;
        case 3:
            return QuerySources::Join::Right;
        default:
            throw std::invalid_argument("has a join of an unknown kind");
        }
    }

    [[nodiscard]] std::string from() const
    {
        const std::string list = sources();
        if (list.empty()) {
            return {};
        }
        const QueryRow* other = rows_.first(kExternalDatabase);
        return "\nFROM " + list +
               (other == nullptr ? "" : " IN '" + queryText(other->name1) + "' [" + queryText(other->expression) + "]");
    }

    [[nodiscard]] std::string condition(const char* words, std::uint8_t attribute) const
    {
        const QueryRow* row = rows_.first(attribute);
        return row == nullptr ? "" : words + expression(*row);
    }

    [[nodiscard]] std::string groupBy(std::optional<int> flag) const
    {
        std::string list;
        for (const QueryRow* row : rows_.all(kGroupBy)) {
            if (!flag || row->flag.value_or(kPlain) == *flag) {
                append(list, expression(*row));
            }
        }
        return list.empty() ? "" : "\nGROUP BY " + list;
    }

    [[nodiscard]] std::string orderBy() const
    {
        std::string list;
        for (const QueryRow* row : rows_.all(kOrderBy)) {
            append(list, expression(*row) + (row->name1 == u"D" ? " DESC" : ""));
        }
        return list.empty() ? "" : "\nORDER BY " + list;
    }

    /// What follows the sources of a select.
    [[nodiscard]] std::string tail() const
    {
        return condition("\nWHERE ", kWhere) + groupBy(std::nullopt) + condition("\nHAVING ", kHaving) + orderBy();
    }

    // --- Kinds ---

    [[nodiscard]] std::string storedStatement() const
    {
        const QueryRow* row = rows_.first(kType);
        if (row == nullptr) {
            throw std::invalid_argument("has lost its statement");
        }
        return expression(*row);
    }

    [[nodiscard]] std::string appending() const
    {
        std::string targets;
        bool values = false;
        for (const QueryRow* row : rows_.all(kOutput)) {
            if (const std::string column = queryText(row->name2); !column.empty()) {
                append(targets, bracketedColumn(column));
            }
            values = values || row->flag == kAppendedValue;
        }
        const std::string into = "INSERT INTO " + target() + (targets.empty() ? "" : " (" + targets + ")");
        return into + (values ? "\nVALUES (" + columns(std::nullopt) + ")" : "\n" + selection("") + tail());
    }

    [[nodiscard]] std::string updating() const
    {
        std::string changes;
        for (const QueryRow* row : rows_.all(kOutput)) {
            append(changes, bracketedColumn(queryText(row->name2)) + " = " + expression(*row));
        }
        const std::string tables = sources();
        if (changes.empty() || tables.empty()) {
            throw std::invalid_argument("updates nothing");
        }
        return "UPDATE " + tables + "\nSET " + changes + condition("\nWHERE ", kWhere);
    }

    [[nodiscard]] std::string deleting() const
    {
        const std::string list = columnsOrAll();
        const std::string tables = from();
        if (tables.empty()) {
            throw std::invalid_argument("deletes from no table");
        }
        return "DELETE " + predicate() + (list.empty() ? "*" : list) + tables + condition("\nWHERE ", kWhere);
    }

    [[nodiscard]] std::string crosstab() const
    {
        const std::string cells = columns(kPlain);
        const std::string headings = columns(kRowHeading);
        const std::string pivot = columns(kPivot);
        if (cells.empty() || headings.empty() || pivot.empty()) {
            throw std::invalid_argument("is a crosstab without cells, row headings or column headings");
        }
        return "TRANSFORM " + cells + "\nSELECT " + headings + from() + condition("\nWHERE ", kWhere) +
               groupBy(kRowHeading) + condition("\nHAVING ", kHaving) + orderBy() + "\nPIVOT " + pivot;
    }

    [[nodiscard]] std::string unionOfParts() const
    {
        std::string result;
        for (const QueryRow* row : rows_.all(kInput)) {
            const std::string part = withoutSemicolon(expression(*row));
            result += (result.empty() ? "" : rows_.has(kDistinct) ? "\nUNION " : "\nUNION ALL ") + part;
        }
        if (result.empty()) {
            throw std::invalid_argument("is a union of nothing");
        }
        return result + orderBy();
    }

    QueryRows rows_;
};

} // namespace

std::string sqlOf(const SavedQuery& query)
{
    try {
        return Writer(query).statement();
    } catch (const std::invalid_argument& fault) {
        throw Error(ErrorCode::Corrupt, "The saved query \"" + query.name + "\" " + fault.what());
    }
}

} // namespace jet
