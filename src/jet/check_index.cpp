#include "jet/check_index.h"

#include "jet/store/long_value_store.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace jet {

IndexCheck::IndexCheck(Pager& pager, FaultList& faults, PageNumber table, const TableDefinition& definition,
                       const RowLayout& layout, std::size_t position, CheckedRows rows, std::string title)
    : pager_(&pager), faults_(&faults), definition_(&definition), layout_(&layout),
      index_(&definition.realIndexes[position]), position_(position), rows_(rows), title_(std::move(title)),
      tree_(pager, table, index_->root, index_->pages),
      store_(pager, table, definition.ownedPages, definition.pagesWithSpace), encoder_(definition, *index_),
      allowsNulls_(!index_->isRequired() && !isPrimaryKey()), allowsDuplicates_(!index_->isUnique() && !isPrimaryKey())
{
}

void IndexCheck::run()
{
    const auto faults = tree_.check([this](ByteView key, RowPointer row) {
        faults_->guard(index_->root, title_ + ", entry for " + wordsFor(row), [&] { checkEntry(key, row); });
    });
    for (const TreeFault& fault : faults) {
        faults_->add(fault.page, title_ + ": " + fault.text);
    }
    if (rows_.complete && entries_.size() != rows_.all.size()) {
        checkRowsWithoutEntry();
    }
}

void IndexCheck::damage(const std::string& text)
{
    faults_->add(index_->root, title_ + " " + text);
}

bool IndexCheck::isPrimaryKey() const
{
    return std::any_of(definition_->logicalIndexes.begin(), definition_->logicalIndexes.end(),
                       [this](const LogicalIndex& logical) {
                           return logical.realIndex == position_ && logical.kind == LogicalIndex::Kind::PrimaryKey;
                       });
}

IndexKey IndexCheck::keyOf(const StoredRow& row) const
{
    const RowView view(*layout_, row.bytes);
    std::vector<Value> values;
    for (const std::uint16_t number : encoder_.columnNumbers()) {
        values.push_back(readValue(*pager_, view, *definition_->columnByNumber(number)));
    }
    return encoder_.encode(values);
}

void IndexCheck::checkEntry(ByteView key, RowPointer row)
{
    if (!rows_.all.contains(row)) {
        damage("has an entry for " + wordsFor(row) + ", where no row is");
    } else if (!entries_.insert(row)) {
        damage("has two entries for " + wordsFor(row));
    } else if (encoder_.canEncode() && !rows_.unreadable.contains(row)) {
        const std::optional<StoredRow> stored = store_.read(row);
        checkKey(key, row, stored ? keyOf(*stored) : IndexKey{});
    }
}

void IndexCheck::checkKey(ByteView key, RowPointer row, const IndexKey& expected)
{
    const std::string where = wordsFor(row);
    if (!std::equal(key.begin(), key.end(), expected.bytes.begin(), expected.bytes.end())) {
        damage("has another key for " + where + " than the row");
    } else if (!allowsNulls_ && expected.anyNull) {
        damage("allows no nulls, but " + where + " has one");
    } else if (index_->ignoresNulls() && expected.allNull) {
        damage("leaves out nulls, but has an entry for " + where);
    } else if (!allowsDuplicates_ && !expected.allNull && expected.bytes == previous_) {
        damage("allows no duplicates, but " + where + " has the key of the row before it");
    }
    previous_ = expected.bytes;
}

void IndexCheck::checkRowsWithoutEntry()
{
    for (RowStore::Cursor rows = store_.scan(); rows.next();) {
        const RowPointer address = rows.row().address;
        const bool wanted = !index_->ignoresNulls() || (encoder_.canEncode() && !keyOf(rows.row()).allNull);
        if (wanted && !entries_.contains(address)) {
            damage("has no entry for " + wordsFor(address));
        }
    }
}

} // namespace jet
