// What a file says of its own content: objects by name, saved queries, relationships (FORMAT.md, "System tables").
#pragma once

#include "jet/schema.h"
#include "jet/stored_table.h"
#include "jet/system_tables.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace jet {

/// One row of MSysObjects.
struct CatalogueEntry {
    std::int32_t id = 0; ///< of a table: its definition page
    std::int32_t parent = 0;
    std::string name;
    std::int16_t type = 0;
    std::uint32_t flags = 0;

    [[nodiscard]] bool is(ObjectType wanted) const { return type == static_cast<std::int16_t>(wanted); }
    [[nodiscard]] bool isSystem() const { return (flags & (kSystemObject | kAccessObject)) != 0; }
    /// Of a local table. Throws Corrupt when the id cannot be a page.
    [[nodiscard]] PageNumber definitionPage() const;
};

/// All functions but version() and tables() require a read.
class Catalogue final : public TableFacts
{
public:
    using SystemPages = std::array<PageNumber, 4>;

    Catalogue(Pager& pager, const SystemPages& pages) : pager_(&pager), pages_(pages), tables_(pager, *this) {}
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    [[nodiscard]] Pager& pager() const { return *pager_; }
    [[nodiscard]] StoredTables& tables() { return tables_; }
    [[nodiscard]] StoredTable& objects() { return tables_.at(pages_[0]); }
    [[nodiscard]] StoredTable& permissions() { return tables_.at(pages_[1]); }
    [[nodiscard]] StoredTable& queryRows() { return tables_.at(pages_[2]); }
    [[nodiscard]] StoredTable& relationshipRows() { return tables_.at(pages_[3]); }

    /// Rises with every change of definitions by this connection, and with each change of the file by others.
    [[nodiscard]] std::uint64_t version() const { return changes_ + pager_->generation(); }
    /// Tells of a change of definitions by this connection.
    void noteChange();

    /// The object of that name, without regard to case.
    [[nodiscard]] std::optional<CatalogueEntry> find(std::int32_t parent, const std::string& name);
    [[nodiscard]] std::optional<CatalogueEntry> byId(std::int32_t id);
    /// The objects in a container, by name.
    [[nodiscard]] std::vector<CatalogueEntry> childrenOf(std::int32_t parent);
    /// The highest id that is not a page or of the first containers, if there is one.
    [[nodiscard]] std::optional<std::int32_t> highestSyntheticId();
    /// The scrambled account that owns an object; nothing when there is none.
    [[nodiscard]] std::optional<Bytes> ownerOf(std::int32_t parent, const std::string& name);

    [[nodiscard]] std::vector<SavedQuery> queries();
    [[nodiscard]] std::vector<Relationship> relationships();

    [[nodiscard]] std::string nameOf(PageNumber definitionPage) override;
    [[nodiscard]] std::vector<ColumnRules> rulesOf(PageNumber definitionPage, const LoadedTable& table) override;

private:
    using Visitor = std::function<bool(const SystemRow& row)>; ///< false ends the walk

    /// Visits the rows of MSysObjects whose leading key columns have these values, through an index where one serves.
    void visitObjects(std::span<const ColumnValue> key, const Visitor& visit);
    void visitAll(StoredTable& table, const Visitor& visit);
    [[nodiscard]] bool isSystemTable(PageNumber page) const;

    Pager* pager_;
    SystemPages pages_;
    StoredTables tables_;
    std::uint64_t changes_ = 0;
};

} // namespace jet
