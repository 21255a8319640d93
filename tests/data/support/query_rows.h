// Saved queries for tests, written down as their parts.
#pragma once

#include "jet/schema.h"

namespace data::test {

class QueryRows
{
public:
    explicit QueryRows(std::string name);
    QueryRows& column(const std::u16string& expression, const std::u16string& alias = {});
    QueryRows& source(const std::u16string& name, const std::u16string& alias = {});
    QueryRows& join(std::int16_t kind, const std::u16string& on, const std::u16string& left,
                    const std::u16string& right);
    QueryRows& where(const std::u16string& condition);
    QueryRows& groupBy(const std::u16string& expression);
    QueryRows& orderBy(const std::u16string& expression, bool descending = false);
    QueryRows& options(std::int16_t bits);

    static constexpr std::int16_t kInner = 1;
    static constexpr std::int16_t kLeft = 2;
    static constexpr std::int16_t kAllColumns = 1;

    [[nodiscard]] jet::SavedQuery query() const;

private:
    jet::QueryRow& add(std::uint8_t attribute);

    jet::SavedQuery query_;
    std::int16_t options_ = 0;
};

} // namespace data::test
