// The check of what the system tables say, against each other and against the tables that are there.
#pragma once

#include "jet/check_table.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace jet {

/// Collects the rows of the system tables as their own check meets them, then compares.
class CatalogueCheck
{
public:
    CatalogueCheck(Pager& pager, FaultList& faults) : pager_(&pager), faults_(&faults) {}

    /// A table that the catalogue names.
    struct NamedTable {
        std::string name;
        PageNumber firstPage = 0;
    };

    void addObject(const TableCheck& objects, RowPointer address, const RowView& row);
    void addPermission(const TableCheck& permissions, RowPointer address, const RowView& row);
    void addQueryRow(const TableCheck& queries, RowPointer address, const RowView& row);
    void addRelationshipRow(const TableCheck& relationships, RowPointer address, const RowView& row);

    [[nodiscard]] const std::vector<NamedTable>& tables() const { return tables_; }
    /// Compares, once all tables have been checked.
    void run(const std::vector<std::unique_ptr<TableCheck>>& tables);

private:
    struct Object {
        RowPointer address;
        std::int32_t parent = 0;
        std::int32_t type = 0;
        std::string name;
    };
    struct Reference {
        RowPointer address;
        std::int32_t object = 0;
    };
    struct RelationshipRow {
        RowPointer address;
        std::string name;
        std::int32_t flags = 0;
        std::int32_t columns = 0;
        std::int32_t position = 0;
        std::string referencingTable;
        std::string referencingColumn;
        std::string referencedTable;
        std::string referencedColumn;
    };

    void checkObjects();
    void checkReferences();
    void checkRelationships();
    void checkRelationshipSide(const RelationshipRow& row, const std::string& table, const std::string& column);
    void checkEnforcement(const TableCheck& table);
    void checkParents(const TableCheck& child, const LogicalIndex& index, const TableCheck& parent,
                      const LogicalIndex& parentIndex);
    [[nodiscard]] const TableCheck* tableAt(PageNumber page) const;
    [[nodiscard]] const TableCheck* tableNamed(const std::string& name) const;

    Pager* pager_;
    FaultList* faults_;
    std::map<std::int32_t, Object> objects_;
    std::vector<NamedTable> tables_;
    std::vector<Reference> permissions_;
    std::vector<Reference> queryRows_;
    std::vector<RelationshipRow> relationshipRows_;
    const std::vector<std::unique_ptr<TableCheck>>* checked_ = nullptr;
};

} // namespace jet
