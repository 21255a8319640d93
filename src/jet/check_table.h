// The check of one table: its definition, pages, rows, long values and indexes.
#pragma once

#include "jet/check_ledger.h"
#include "jet/check_long_values.h"
#include "jet/format/row_codec.h"
#include "jet/format/table_definition.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace jet {

class TableCheck
{
public:
    TableCheck(Pager& pager, FaultList& faults, PageLedger& ledger, std::string name, PageNumber first);

    /// Called for each row that can be read.
    using RowSink = std::function<void(RowPointer address, const RowView& row)>;

    /// Checks everything about the table by itself. False when even its definition cannot be read.
    bool run(const RowSink& sink = {});

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] PageNumber firstPage() const { return first_; }
    [[nodiscard]] const TableDefinition& definition() const { return definition_; }
    /// Whether nothing was found damaged, so that reading it again will not throw.
    [[nodiscard]] bool isSound() const { return sound_; }

private:
    void damage(PageNumber page, const std::string& text);
    void leftover(PageNumber page, const std::string& text);
    bool guard(PageNumber page, const std::string& what, const std::function<void()>& function);

    bool loadDefinition();
    void checkDefinition();
    [[nodiscard]] std::vector<PageNumber> claimMap(RowPointer map, std::uint32_t owner, const std::string& what);
    [[nodiscard]] std::vector<PageNumber> claimPages(RowPointer map, PageLedger::Use use, std::uint32_t owner,
                                                     const std::string& what);
    void claimSpaceMap(RowPointer map, PageLedger::Use use, std::uint32_t owner, const std::string& what);
    void claimEverything();
    void checkLongValuePages();
    void checkDataPages(const RowSink& sink);
    void checkDataPage(PageNumber page, const RowSink& sink);
    void checkPointer(RowPointer address, RowPointer target, const RowSink& sink);
    void checkMovedRows();
    void checkRow(RowPointer address, PageNumber dataPage, ByteView bytes, const RowSink& sink);
    void checkUnreferencedLongValues();
    void checkCounters();
    void checkIndexes();

    Pager* pager_;
    FaultList* faults_;
    PageLedger* ledger_;
    std::string name_;
    PageNumber first_;
    std::uint32_t owner_ = 0;
    TableDefinition definition_;
    std::optional<RowLayout> layout_;
    bool sound_ = true;
    bool rowsAreSound_ = false;

    std::vector<PageNumber> dataPages_;
    std::vector<LongValueCheck> longColumns_;
    std::vector<std::uint32_t> indexOwners_;
    RowSet rows_;    ///< all rows, by address
    RowSet badRows_; ///< those that cannot be read in full
    RowSet moved_;   ///< slots of moved data
    RowSet targets_; ///< slots that a pointer row refers to
    std::vector<RowPointer> movedRows_;
    std::int64_t highestAutoNumber_ = 0;
};

} // namespace jet
