#include "jet/row_reader.h"

#include "jet/format/at_page.h"
#include "jet/store/long_value_store.h"

#include <algorithm>

namespace jet {

namespace {

/// A row and what is needed to decode it.
///
/// The bytes of a long value lie outside the row's page. When the table may have changed since the row was read, they
/// may be gone; so they are only read while the row still refers to them.
class HeldRow final : public Row
{
public:
    HeldRow(Pager& pager, StoredTable& table, const std::shared_ptr<LoadedTable>& loaded, StoredRow row)
        : pager_(&pager), table_(&table), loaded_(loaded), row_(std::move(row)),
          view_(atPage(row_.dataPage, [this] { return RowView(loaded_->layout, row_.bytes); })),
          changes_(table.changes())
    {
    }

    [[nodiscard]] RowPointer address() const override { return row_.address; }

    [[nodiscard]] Value value(const Column& column) const override
    {
        return atPage(row_.dataPage, [this, &column]() -> Value {
            if (!column.isLongValue()) {
                return view_.value(column);
            }
            const ReadGuard guard(*pager_);
            requireUnchanged(column);
            return readValue(*pager_, view_, column);
        });
    }

private:
    void requireUnchanged(const Column& column) const
    {
        const std::optional<ByteView> mine = view_.raw(column);
        const bool unchanged = changes_ == table_->changes() && loaded_->generation == pager_->generation();
        if (unchanged || !mine.has_value() || decodeLongValue(*mine).storage == LongValue::Storage::Inline) {
            return;
        }
        const std::optional<StoredRow> now = loaded_->rows.read(row_.address);
        const std::optional<ByteView> theirs =
            now.has_value() ? RowView(loaded_->layout, now->bytes).raw(column) : std::nullopt;
        if (!theirs.has_value() || !std::equal(mine->begin(), mine->end(), theirs->begin(), theirs->end())) {
            throw Error(ErrorCode::NoSuchObject, "The value was changed after its row was read");
        }
    }

    Pager* pager_;
    StoredTable* table_;
    std::shared_ptr<LoadedTable> loaded_;
    StoredRow row_;
    RowView view_;
    std::uint64_t changes_;
};

/// What all cursors hold, in this order: the lock is the last to go.
class CursorBase : public RowCursor
{
public:
    CursorBase(Pager& pager, StoredTable& table)
        : pager_(&pager), guard_(pager), table_(&table), loaded_(table.loaded())
    {
    }

    [[nodiscard]] const Row& row() const override { return row_.value(); }

protected:
    void show(StoredRow row) { row_.emplace(*pager_, *table_, loaded_, std::move(row)); }
    [[nodiscard]] const LoadedTable& loaded() const { return *loaded_; }
    [[nodiscard]] const StoredTable& table() const { return *table_; }

private:
    Pager* pager_;
    ReadGuard guard_;
    StoredTable* table_;
    std::shared_ptr<LoadedTable> loaded_;
    std::optional<HeldRow> row_;
};

class ScanCursor final : public CursorBase
{
public:
    ScanCursor(Pager& pager, StoredTable& table) : CursorBase(pager, table), cursor_(loaded().rows.scan()) {}

    bool next() override
    {
        if (!cursor_.next()) {
            return false;
        }
        show(cursor_.row());
        return true;
    }

private:
    RowStore::Cursor cursor_;
};

class RangeCursor final : public CursorBase
{
public:
    RangeCursor(Pager& pager, StoredTable& table, std::size_t realIndex, const KeyRange& keys, Direction direction)
        : CursorBase(pager, table),
          cursor_(treeOf(realIndex).range(intervalOf(indexAt(loaded(), realIndex).encoder, keys), direction)),
          changes_(table.changes())
    {
    }

    bool next() override
    {
        while (cursor_.next()) {
            if (std::optional<StoredRow> row = loaded().rows.read(cursor_.row())) {
                show(std::move(*row));
                return true;
            }
            if (changes_ == table().changes()) {
                throw Error(ErrorCode::Corrupt, cursor_.row().page,
                            "An index has an entry for a row that is not there");
            }
        }
        return false;
    }

private:
    [[nodiscard]] const IndexTree& treeOf(std::size_t realIndex) const
    {
        const TableIndex& index = indexAt(loaded(), realIndex);
        if (!index.encoder.isSearchable()) {
            throw Error(ErrorCode::IndexNotSupported, "The index \"" + index.name + "\" cannot be searched");
        }
        return index.tree;
    }

    [[nodiscard]] static KeyInterval intervalOf(const IndexKeyEncoder& encoder, const KeyRange& keys)
    {
        KeyInterval interval;
        if (keys.from.has_value()) {
            interval.from = encoder.lowerEnd(keys.from->values, keys.from->inclusive);
        }
        if (keys.to.has_value()) {
            interval.to = encoder.upperEnd(keys.to->values, keys.to->inclusive);
        }
        return interval;
    }

    IndexCursor cursor_;
    std::uint64_t changes_; ///< before the first step; rows may go under the cursor only when they are changed
};

} // namespace

std::unique_ptr<RowCursor> scanRows(Pager& pager, StoredTable& table)
{
    return std::make_unique<ScanCursor>(pager, table);
}

std::unique_ptr<RowCursor> rangeOfRows(Pager& pager, StoredTable& table, std::size_t realIndex, const KeyRange& keys,
                                       Direction direction)
{
    return std::make_unique<RangeCursor>(pager, table, realIndex, keys, direction);
}

std::unique_ptr<Row> readRow(Pager& pager, StoredTable& table, RowPointer address)
{
    const ReadGuard guard(pager);
    const std::shared_ptr<LoadedTable>& loaded = table.loaded();
    std::optional<StoredRow> row = loaded->rows.read(address);
    if (!row.has_value()) {
        return nullptr;
    }
    return std::make_unique<HeldRow>(pager, table, loaded, std::move(*row));
}

const TableIndex& indexAt(const LoadedTable& table, std::size_t realIndex)
{
    if (realIndex >= table.indexes.size()) {
        throw Error(ErrorCode::NoSuchObject, "The table has no index number " + std::to_string(realIndex));
    }
    return table.indexes[realIndex];
}

} // namespace jet
