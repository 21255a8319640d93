// Table definitions over their chain of pages (FORMAT.md, "Table definitions").
#pragma once

#include "jet/disk/pager.h"
#include "jet/format/table_definition.h"

#include <vector>

namespace jet {

class TableDefinitionStore
{
public:
    explicit TableDefinitionStore(Pager& pager) : pager_(&pager) {}

    /// Requires a read. Throws Corrupt, naming the page, for a chain that loops, ends early or leads elsewhere.
    [[nodiscard]] TableDefinition load(PageNumber first) const;
    /// The pages of the definition, first page first. Requires a read.
    [[nodiscard]] std::vector<PageNumber> pages(PageNumber first) const;

    // Changes; each requires a transaction.

    /// Writes a new definition on pages of its own and returns the first: the table's identity.
    [[nodiscard]] PageNumber create(const TableDefinition& definition);
    /// Writes a changed definition. The first page stays; continuation pages are added and freed as needed.
    void save(PageNumber first, const TableDefinition& definition);
    /// Writes rowCount, lastAutoNumber and the indexes' distinctKeys alone, all on the first page. The definition must
    /// otherwise be as stored.
    void saveCounters(PageNumber first, const TableDefinition& definition);

private:
    Pager* pager_;
};

} // namespace jet
