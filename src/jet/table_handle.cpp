#include "jet/table_handle.h"

#include "jet/change.h"
#include "jet/row_reader.h"

namespace jet {

TableHandle::TableHandle(Catalogue& catalogue, const CatalogueEntry& entry)
    : catalogue_(&catalogue), name_(entry.name), table_(&catalogue.tables().at(entry.definitionPage())),
      system_(entry.isSystem()), version_(catalogue.version())
{
}

StoredTable& TableHandle::current() const
{
    if (version_ != catalogue_->version()) {
        const std::optional<CatalogueEntry> entry = catalogue_->find(object_id::kTables, name_);
        if (!entry.has_value() || !entry->is(ObjectType::Table)) {
            throw Error(ErrorCode::NoSuchObject, "There is no table called \"" + name_ + "\" any more");
        }
        table_ = &catalogue_->tables().at(entry->definitionPage());
        system_ = entry->isSystem();
        version_ = catalogue_->version();
    }
    return *table_;
}

const TableDefinition& TableHandle::definition() const
{
    const ReadGuard guard(catalogue_->pager());
    return current().loaded()->definition;
}

std::string TableHandle::whyReadOnly() const
{
    const ReadGuard guard(catalogue_->pager());
    if (catalogue_->pager().isReadOnly()) {
        return "The file is open for reading only";
    }
    const std::shared_ptr<LoadedTable>& loaded = current().loaded();
    if (system_ || loaded->definition.kind == TableDefinition::kSystemTable) {
        return "The table \"" + name_ + "\" is one of the system's own";
    }
    if (const std::string index = unsupportedIndexOf(*loaded); !index.empty()) {
        return "The index \"" + index + "\" of the table \"" + name_ + "\" cannot be kept up";
    }
    return {};
}

void TableHandle::requireWritable() const
{
    const std::string why = whyReadOnly();
    if (!why.empty()) {
        const bool index = !unsupportedIndexOf(*current().loaded()).empty();
        throw Error(index ? ErrorCode::IndexNotSupported : ErrorCode::ReadOnly, why);
    }
}

std::unique_ptr<RowCursor> TableHandle::scan() const
{
    const ReadGuard guard(catalogue_->pager());
    return scanRows(catalogue_->pager(), current());
}

std::unique_ptr<RowCursor> TableHandle::range(std::size_t realIndex, const KeyRange& keys, Direction direction) const
{
    const ReadGuard guard(catalogue_->pager());
    return rangeOfRows(catalogue_->pager(), current(), realIndex, keys, direction);
}

bool TableHandle::isSearchable(std::size_t realIndex) const
{
    const ReadGuard guard(catalogue_->pager());
    return indexAt(*current().loaded(), realIndex).encoder.isSearchable();
}

std::unique_ptr<Row> TableHandle::read(RowPointer address) const
{
    const ReadGuard guard(catalogue_->pager());
    return readRow(catalogue_->pager(), current(), address);
}

RowPointer TableHandle::insert(std::span<const ColumnValue> values)
{
    RowPointer address;
    runChange(catalogue_->pager(), [&] {
        requireWritable();
        address = RowWriter(catalogue_->tables()).insert(current(), values);
    });
    return address;
}

void TableHandle::update(RowPointer address, std::span<const ColumnValue> values)
{
    runChange(catalogue_->pager(), [&] {
        requireWritable();
        RowWriter(catalogue_->tables()).update(current(), address, values);
    });
}

void TableHandle::erase(RowPointer address)
{
    runChange(catalogue_->pager(), [&] {
        requireWritable();
        RowWriter(catalogue_->tables()).erase(current(), address);
    });
}

} // namespace jet
