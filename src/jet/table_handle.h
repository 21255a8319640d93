// The tables that a Database hands out.
#pragma once

#include "jet/catalogue.h"
#include "jet/row_writer.h"
#include "jet/table.h"

namespace jet {

/// Finds its table again by name when definitions may have changed.
class TableHandle final : public Table
{
public:
    /// Requires a read.
    TableHandle(Catalogue& catalogue, const CatalogueEntry& entry);

    [[nodiscard]] const std::string& name() const override { return name_; }
    [[nodiscard]] const TableDefinition& definition() const override;
    [[nodiscard]] std::uint32_t rowCount() const override { return definition().rowCount; }
    [[nodiscard]] std::string whyReadOnly() const override;

    [[nodiscard]] std::unique_ptr<RowCursor> scan() const override;
    [[nodiscard]] std::unique_ptr<RowCursor> range(std::size_t realIndex, const KeyRange& keys,
                                                   Direction direction) const override;
    [[nodiscard]] bool isSearchable(std::size_t realIndex) const override;
    [[nodiscard]] std::unique_ptr<Row> read(RowPointer address) const override;

    RowPointer insert(std::span<const ColumnValue> values) override;
    void update(RowPointer address, std::span<const ColumnValue> values) override;
    void erase(RowPointer address) override;

private:
    /// Requires a read. Throws NoSuchObject when the table is gone.
    [[nodiscard]] StoredTable& current() const;
    void requireWritable() const;

    Catalogue* catalogue_;
    std::string name_;
    // What was found at the last look.
    mutable StoredTable* table_;
    mutable bool system_;
    mutable std::uint64_t version_;
};

} // namespace jet
