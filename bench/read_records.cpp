#include "read_records.h"

#include "sqlite_copy.h"

#include <stdexcept>

namespace bench {

namespace {

template <typename Taker>
struct TakeValue {
    Taker& taker;

    void operator()(runtime::Null) const { taker.takeNull(); }
    void operator()(bool flag) const { taker.take(flag ? 1.0 : 0.0); }
    void operator()(qint32 number) const { taker.take(static_cast<double>(number)); }
    void operator()(double number) const { taker.take(number); }
    void operator()(runtime::Date date) const { taker.take(date.days); }
    void operator()(const QString& text) const { taker.take(text); }
    void operator()(const QByteArray&) const { throw std::runtime_error("a diary holds no bytes"); }
};

template <typename Taker>
void takeColumn(sqlite3_stmt* statement, int column, Taker& taker)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
        taker.takeNull();
        break;
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
        taker.take(std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))));
        break;
    }
    default:
        taker.take(sqlite3_column_double(statement, column));
    }
}

} // namespace

template <typename Taker>
void readRecords(data::Recordset& records, Taker& taker)
{
    const int fields = records.fieldCount();
    for (; !records.eof(); records.moveNext()) {
        for (int field = 0; field < fields; ++field) {
            std::visit(TakeValue<Taker>{taker}, records.value(field));
        }
        taker.endRow();
    }
}

template <typename Taker>
void readRecords(sqlite3* connection, const std::string& sql, Taker& taker)
{
    const Statement statement = prepare(connection, sql);
    const int columns = sqlite3_column_count(statement.get());
    while (step(statement.get())) {
        for (int column = 0; column < columns; ++column) {
            takeColumn(statement.get(), column, taker);
        }
        taker.endRow();
    }
}

template void readRecords(data::Recordset&, Untouched&);
template void readRecords(data::Recordset&, Content&);
template void readRecords(sqlite3*, const std::string&, Untouched&);
template void readRecords(sqlite3*, const std::string&, Content&);

void requireSame(const Content& ours, const Content& theirs, const std::string& what)
{
    if (ours.rows() == 0 || ours != theirs) {
        throw std::runtime_error(what + ": different rows, ours " + std::to_string(ours.rows()) + ", theirs " +
                                 std::to_string(theirs.rows()));
    }
}

} // namespace bench
