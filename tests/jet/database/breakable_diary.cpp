#include "jet/database/breakable_diary.h"

#include "jet/database/small_diary.h"
#include "jet/format/row_codec.h"
#include "jet/format/utf.h"
#include "jet/store/table_definition_store.h"

namespace jet::test {

BreakableDiary::BreakableDiary()
{
    const auto diary = createSmallDiary(disk_);
    fillSmallDiary(*diary);
    for (const auto cursor = diary->table("MSysObjects").scan(); cursor->next();) {
        const auto value = [&](const char* column) {
            return cursor->row().value(*diary->table("MSysObjects").definition().columnByName(column));
        };
        if (value("Type") == Value(std::int16_t{1})) {
            pages_[toUtf8(std::get<std::u16string>(value("Name")))] =
                static_cast<PageNumber>(std::get<std::int32_t>(value("Id")));
        }
    }
}

std::vector<Fault> BreakableDiary::check()
{
    Pager other(disk_, kDiaryPath, OpenMode::ReadOnly);
    return checkFile(other);
}

void BreakableDiary::begin()
{
    pager_ = std::make_unique<Pager>(disk_, kDiaryPath, OpenMode::ReadWrite);
    pager_->begin();
}

void BreakableDiary::commit()
{
    pager_->commit();
    pager_.reset();
}

TableDefinition BreakableDiary::definition(const std::string& table)
{
    return TableDefinitionStore(*pager_).load(page(table));
}

RealIndex BreakableDiary::index(const std::string& table, std::size_t position)
{
    return definition(table).realIndexes.at(position);
}

PageNumber BreakableDiary::dataPage(const std::string& table)
{
    return map(definition(table).ownedPages).pages().front();
}

PageNumber BreakableDiary::longValuePage()
{
    return map(definition("Readings").longValues.front().owned).pages().front();
}

RowStore BreakableDiary::rows(const std::string& table)
{
    const TableDefinition found = definition(table);
    return {*pager_, page(table), found.ownedPages, found.pagesWithSpace};
}

IndexTree BreakableDiary::tree(const std::string& table, std::size_t position)
{
    const RealIndex found = index(table, position);
    return {*pager_, page(table), found.root, found.pages};
}

StoredRow BreakableDiary::row(const std::string& table, int number)
{
    const RowStore store = rows(table);
    RowStore::Cursor cursor = store.scan();
    for (int i = 0; i <= number; ++i) {
        EXPECT_TRUE(cursor.next());
    }
    return cursor.row();
}

IndexKey BreakableDiary::key(const std::string& table, std::size_t position, int rowNumber)
{
    const TableDefinition found = definition(table);
    const IndexKeyEncoder encoder(found, found.realIndexes.at(position));
    const StoredRow stored = row(table, rowNumber);
    const RowLayout layout(found);
    const RowView view(layout, stored.bytes);
    std::vector<Value> values;
    for (const std::uint16_t column : encoder.columnNumbers()) {
        values.push_back(view.value(*found.columnByNumber(column)));
    }
    return encoder.encode(values);
}

Bytes BreakableDiary::memoSlot(int rowNumber)
{
    const TableDefinition found = definition("Readings");
    const StoredRow stored = row("Readings", rowNumber);
    const RowLayout layout(found);
    const RowView view(layout, stored.bytes);
    const auto slot = view.raw(*found.columnByName("Notes"));
    return {slot->begin(), slot->end()};
}

int BreakableDiary::catalogueRow(const std::u16string& name)
{
    const TableDefinition found = definition("MSysObjects");
    const RowLayout layout(found);
    const RowStore store = rows("MSysObjects");
    int number = 0;
    for (RowStore::Cursor cursor = store.scan(); cursor.next(); ++number) {
        if (RowView(layout, cursor.row().bytes).value(*found.columnByName("Name")) == Value(name)) {
            return number;
        }
    }
    ADD_FAILURE() << "not in the catalogue";
    return 0;
}

void BreakableDiary::setDefinition(const std::string& table, const std::function<void(TableDefinition&)>& change)
{
    TableDefinition changed = definition(table);
    change(changed);
    TableDefinitionStore(*pager_).save(page(table), changed);
}

RowPointer BreakableDiary::setValue(const std::string& table, int number, const char* column, const Value& value)
{
    const TableDefinition found = definition(table);
    const StoredRow stored = row(table, number);
    const RowLayout layout(found);
    RowBuilder builder(found, RowView(layout, stored.bytes));
    builder.set(*found.columnByName(column), value);
    rows(table).update(stored.address, builder.encode());
    return stored.address;
}

RowPointer BreakableDiary::eraseRow(const std::string& table, int number)
{
    const RowPointer address = row(table, number).address;
    rows(table).erase(address);
    return address;
}

void PrintTo(const Breakage& broken, std::ostream* out)
{
    *out << broken.name;
}

std::string nameOfBreakage(const testing::TestParamInfo<Breakage>& info)
{
    return info.param.name;
}

} // namespace jet::test
