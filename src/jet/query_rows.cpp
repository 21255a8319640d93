#include "jet/query_rows.h"

#include "jet/format/utf.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace jet {

std::vector<const QueryRow*> QueryRows::all(std::uint8_t attribute) const
{
    std::vector<const QueryRow*> found;
    for (const QueryRow& row : query_->rows) {
        if (row.attribute == attribute) {
            found.push_back(&row);
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const QueryRow* a, const QueryRow* b) { return a->order < b->order; });
    return found;
}

const QueryRow* QueryRows::first(std::uint8_t attribute) const
{
    const std::vector<const QueryRow*> found = all(attribute);
    return found.empty() ? nullptr : found.front();
}

bool QueryRows::has(unsigned option) const
{
    const QueryRow* row = first(query_attribute::kOptions);
    return row != nullptr && (static_cast<unsigned>(row->flag.value_or(0)) & option) != 0;
}

QueryKind QueryRows::kind() const
{
    switch (static_cast<unsigned>(query_->flags) & 0xF0U) {
    case 0x00:
        return kindOfTypeRow();
    case 0x10:
        return QueryKind::Crosstab;
    case 0x20:
        return QueryKind::Delete;
    case 0x30:
        return QueryKind::Update;
    case 0x40:
        return QueryKind::Append;
    case 0x50:
        return QueryKind::MakeTable;
    case 0x60:
        return QueryKind::DataDefinition;
    case 0x70:
        return QueryKind::PassThrough;
    case 0x80:
        return QueryKind::Union;
    default:
        throw std::invalid_argument("is of an unknown kind");
    }
}

QueryKind QueryRows::kindOfTypeRow() const
{
    const QueryRow* row = first(query_attribute::kType);
    switch (row == nullptr ? 1 : row->flag.value_or(1)) {
    case 1:
        return QueryKind::Select;
    case 2:
        return QueryKind::MakeTable;
    case 3:
        return QueryKind::Append;
    case 4:
        return QueryKind::Update;
    case 5:
        return QueryKind::Delete;
    case 6:
        return QueryKind::Crosstab;
    case 7:
        return QueryKind::DataDefinition;
    case 8:
        return QueryKind::PassThrough;
    case 9:
        return QueryKind::Union;
    default:
        throw std::invalid_argument("is of an unknown kind");
    }
}

std::string queryText(const std::optional<std::u16string>& cell)
{
    std::string result = cell ? toUtf8(*cell) : std::string();
    const std::size_t last = result.find_last_not_of(std::string_view(" \t\r\n\0", 5));
    result.resize(last == std::string::npos ? 0 : last + 1);
    return result;
}

} // namespace jet
