#include "data/support/query_rows.h"

#include <algorithm>

namespace data::test {
namespace {

constexpr std::uint8_t kStart = 0;
constexpr std::uint8_t kType = 1;
constexpr std::uint8_t kOptions = 3;
constexpr std::uint8_t kSource = 5;
constexpr std::uint8_t kColumn = 6;
constexpr std::uint8_t kJoin = 7;
constexpr std::uint8_t kWhere = 8;
constexpr std::uint8_t kGroup = 9;
constexpr std::uint8_t kOrder = 11;
constexpr std::uint8_t kEnd = 255;

std::optional<std::u16string> given(const std::u16string& text)
{
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace

QueryRows::QueryRows(std::string name)
{
    query_.name = std::move(name);
    add(kStart).flag = 0;
    add(kType).flag = 1;
    add(kEnd);
}

jet::QueryRow& QueryRows::add(std::uint8_t attribute)
{
    jet::QueryRow row;
    row.attribute = attribute;
    row.order = 1 + static_cast<std::uint32_t>(
                        std::count_if(query_.rows.begin(), query_.rows.end(),
                                      [&](const jet::QueryRow& known) { return known.attribute == attribute; }));
    query_.rows.push_back(row);
    return query_.rows.back();
}

QueryRows& QueryRows::column(const std::u16string& expression, const std::u16string& alias)
{
    jet::QueryRow& row = add(kColumn);
    row.flag = 0;
    row.expression = expression;
    row.name1 = given(alias);
    return *this;
}

QueryRows& QueryRows::source(const std::u16string& name, const std::u16string& alias)
{
    jet::QueryRow& row = add(kSource);
    row.name1 = name;
    row.name2 = given(alias);
    return *this;
}

QueryRows& QueryRows::join(std::int16_t kind, const std::u16string& on, const std::u16string& left,
                           const std::u16string& right)
{
    jet::QueryRow& row = add(kJoin);
    row.flag = kind;
    row.expression = on;
    row.name1 = left;
    row.name2 = right;
    return *this;
}

QueryRows& QueryRows::where(const std::u16string& condition)
{
    add(kWhere).expression = condition;
    return *this;
}

QueryRows& QueryRows::groupBy(const std::u16string& expression)
{
    jet::QueryRow& row = add(kGroup);
    row.flag = 0;
    row.expression = expression;
    return *this;
}

QueryRows& QueryRows::orderBy(const std::u16string& expression, bool descending)
{
    jet::QueryRow& row = add(kOrder);
    row.expression = expression;
    if (descending) {
        row.name1 = u"D";
    }
    return *this;
}

QueryRows& QueryRows::options(std::int16_t bits)
{
    options_ = bits;
    return *this;
}

jet::SavedQuery QueryRows::query() const
{
    jet::SavedQuery result = query_;
    jet::QueryRow options;
    options.attribute = kOptions;
    options.order = 1;
    options.flag = options_;
    result.rows.push_back(options);
    std::sort(result.rows.begin(), result.rows.end(), [](const jet::QueryRow& left, const jet::QueryRow& right) {
        return std::pair(left.attribute, left.order) < std::pair(right.attribute, right.order);
    });
    return result;
}

} // namespace data::test
