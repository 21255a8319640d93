#include "jet/database/builders.h"

#include "jet/format/utf.h"

#include <sstream>

namespace jet::test {

namespace {

struct Printer {
    std::ostream& out;

    void operator()(Null) const { out << "-"; }
    void operator()(bool value) const { out << (value ? "true" : "false"); }
    void operator()(std::uint8_t value) const { out << unsigned{value}; }
    void operator()(const Currency& value) const { out << value.tenThousandths << "e-4"; }
    void operator()(const DateTime& value) const { out << "@" << value.days; }
    void operator()(const std::u16string& value) const { out << toUtf8(value); }
    void operator()(const Bytes& value) const { out << "bytes:" << value.size(); }
    void operator()(const Guid&) const { out << "guid"; }
    void operator()(const Numeric& value) const
    {
        out << (value.negative ? "-" : "") << value.magnitude[3] << "e-" << unsigned{value.scale};
    }
    template <typename Number>
    void operator()(Number value) const
    {
        out << value;
    }
};

} // namespace

std::string listed(RowCursor& cursor, const TableDefinition& definition)
{
    std::ostringstream out;
    while (cursor.next()) {
        bool first = true;
        for (const Column* column : definition.displayOrder()) {
            out << (first ? "" : " ");
            std::visit(Printer{out}, cursor.row().value(*column));
            first = false;
        }
        out << "\n";
    }
    return out.str();
}

std::string listed(const Table& table)
{
    return listed(*table.scan(), table.definition());
}

std::string faultsOf(Database& database)
{
    std::ostringstream out;
    for (const Fault& fault : database.check()) {
        out << fault.page << ": " << fault.text << "\n";
    }
    return out.str();
}

} // namespace jet::test
