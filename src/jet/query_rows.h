// The rows of a saved query, by what they are about (FORMAT.md, "Saved queries").
#pragma once

#include "jet/schema.h"

#include <cstdint>
#include <string>
#include <vector>

namespace jet {

/// Bits of the options row's flag.
namespace query_option {
inline constexpr unsigned kAllColumns = 1;
inline constexpr unsigned kDistinct = 2; ///< of a union: no row twice
inline constexpr unsigned kOwnerAccess = 4;
inline constexpr unsigned kDistinctRow = 8;
inline constexpr unsigned kTop = 16;
inline constexpr unsigned kPercent = 32;
} // namespace query_option

enum class QueryKind { Select, MakeTable, Append, Update, Delete, Crosstab, DataDefinition, PassThrough, Union };

/// The query must outlive it.
class QueryRows
{
public:
    explicit QueryRows(const SavedQuery& query) : query_(&query) {}

    /// Those of one attribute, in their order.
    [[nodiscard]] std::vector<const QueryRow*> all(std::uint8_t attribute) const;
    /// The first of them, or null.
    [[nodiscard]] const QueryRow* first(std::uint8_t attribute) const;
    /// Whether the options row has that bit.
    [[nodiscard]] bool has(unsigned option) const;
    /// By the query's flags, or by the type row where these say nothing. Throws std::invalid_argument with words that
    /// go on from "The saved query ..." for a kind unknown.
    [[nodiscard]] QueryKind kind() const;

private:
    [[nodiscard]] QueryKind kindOfTypeRow() const;

    const SavedQuery* query_;
};

/// A cell as UTF-8, without the blanks, line ends and NULs that may stand at its end; null is empty.
[[nodiscard]] std::string queryText(const std::optional<std::u16string>& cell);

} // namespace jet
