// Enforced relationships: what a row refers to and what refers to it (FORMAT.md, "Relationships").
#pragma once

#include "jet/stored_table.h"

#include <vector>

namespace jet {

/// All functions require a read. They throw Corrupt for a relationship whose two sides do not fit, and
/// IndexNotSupported when keys of the other side cannot be computed.
class ForeignKeys
{
public:
    explicit ForeignKeys(StoredTables& tables) : tables_(&tables) {}

    /// Relationships in which rows of the table refer to others.
    [[nodiscard]] const std::vector<RelationshipEnd>& parentsOf(StoredTable& table);
    /// Relationships in which rows of others refer to the table's.
    [[nodiscard]] const std::vector<RelationshipEnd>& childrenOf(StoredTable& table);

    /// Throws MissingParent when the row that `row` refers to is not there. A row may refer to itself. `rekeyed` is a
    /// row of the referenced table whose stored key does not count because it is about to change.
    void requireParent(StoredTable& table, const RelationshipEnd& parent, const RowValues& row,
                       std::optional<RowPointer> rekeyed = std::nullopt);
    /// The rows that refer to `row`.
    [[nodiscard]] std::vector<RowPointer> rowsReferringTo(StoredTable& table, const RelationshipEnd& child,
                                                          const RowValues& row);
    [[noreturn]] void refuseBecauseOf(const RelationshipEnd& child);

private:
    [[nodiscard]] std::vector<RelationshipEnd> ends(StoredTable& table, LogicalIndex::Role role);

    StoredTables* tables_;
};

} // namespace jet
