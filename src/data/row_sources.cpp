#include "data/row_sources.h"

#include "data/change_announcement.h"
#include "data/engine/error_translation.h"
#include "data/engine/row_sorter.h"
#include "data/engine/session.h"
#include "data/engine/snapshot.h"
#include "data/engine/value_conversion.h"

#include <algorithm>
#include <numeric>

namespace data {
namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

class SnapshotRows final : public Recordset::Source
{
public:
    SnapshotRows(std::shared_ptr<Session> session, const TranslatedQuery& query)
        : session_(std::move(session)), rows_(query.columns.size())
    {
        for (const OutputColumn& column : query.columns) {
            fields_.push_back({column.name, column.type.type.value_or(FieldType::Text), column.type.size});
        }
        RowSorter sorter(query.order);
        session_->connection().run(query.rows, [&](const ResultRow& row) {
            for (std::size_t i = 0; i < query.columns.size(); ++i) {
                row.copyTo(rows_, static_cast<int>(i), query.columns[i].type.type);
            }
            sorter.add(row);
        });
        if (const std::vector<qsizetype> places = sorter.sorted(); !places.empty()) {
            rows_.arrange(places);
        }
    }

    void requireOpen() const override { static_cast<void>(session_->database()); }
    const std::vector<Field>& fields() const override { return fields_; }
    bool hasRow(qsizetype row) override { return row < rows_.rowCount(); }
    qsizetype rowCount() override { return rows_.rowCount(); }
    qsizetype lastRow() override { return rows_.rowCount() - 1; }
    runtime::Value value(qsizetype row, int field) override { return rows_.value(row, field); }
    void readAgain(qsizetype) override {}

    QString whyReadOnly() const override
    {
        return QStringLiteral("The records come from several tables or are computed, so they cannot be changed.");
    }
    runtime::Value stored(int, const runtime::Value& value) const override { return value; }
    void add(const FieldValues&) override { throw RunTimeError(ErrorNumber::ReadOnly); }
    void change(qsizetype, const FieldValues&) override { throw RunTimeError(ErrorNumber::ReadOnly); }

private:
    std::shared_ptr<Session> session_;
    std::vector<Field> fields_;
    Snapshot rows_;
};

/// Rows of one table by their addresses; each is read when it is asked for.
class TableRowsSource final : public Recordset::Source
{
public:
    /// The rows at these addresses, or all rows of the table where none are given.
    TableRowsSource(std::shared_ptr<Session> session, const QString& name, const std::vector<int>& columns,
                    std::optional<std::vector<qint64>> addresses)
        : session_(std::move(session)), table_(session_->database().table(name.toStdString())),
          isComplete_(addresses.has_value()), addresses_(std::move(addresses).value_or(std::vector<qint64>()))
    {
        const std::vector<const jet::Column*> shown = table().definition().displayOrder();
        for (const int column : columns) {
            columns_.push_back(*shown[static_cast<std::size_t>(column)]);
            fields_.push_back(fieldOf(columns_.back()));
        }
    }

    void requireOpen() const override { static_cast<void>(session_->database()); }
    const std::vector<Field>& fields() const override { return fields_; }

    bool hasRow(qsizetype row) override
    {
        if (row == 0 && addresses_.empty() && !isComplete_) {
            findFirst();
        }
        if (row >= static_cast<qsizetype>(addresses_.size())) {
            findAll();
        }
        return row < static_cast<qsizetype>(addresses_.size());
    }

    qsizetype rowCount() override
    {
        return isComplete_ ? static_cast<qsizetype>(addresses_.size())
                           : translating(session_->path(), [&] { return qsizetype{table().rowCount()}; });
    }

    qsizetype lastRow() override
    {
        findAll();
        return static_cast<qsizetype>(addresses_.size()) - 1;
    }

    runtime::Value value(qsizetype row, int field) override
    {
        return translating(session_->path(), [&] {
            const jet::Column& column = columns_[static_cast<std::size_t>(field)];
            return asFieldType(fromFile(read(row).value(column)), fields_[static_cast<std::size_t>(field)].type);
        });
    }

    void readAgain(qsizetype row) override
    {
        translating(session_->path(), [&] {
            forget();
            static_cast<void>(read(row));
        });
    }

    QString whyReadOnly() const override
    {
        return translating(session_->path(), [&] { return QString::fromStdString(table().whyReadOnly()); });
    }

    runtime::Value stored(int field, const runtime::Value& value) const override
    {
        const auto index = static_cast<std::size_t>(field);
        return asFieldType(fromFile(toFile(value, columns_[index])), fields_[index].type);
    }

    void add(const FieldValues& values) override
    {
        translating(session_->path(), [&] {
            announceChange(*session_);
            const qint64 address = rowIdOf(table().insert(columnValues(values)));
            session_->countChange();
            if (isComplete_) {
                addresses_.push_back(address);
            } else {
                added_.push_back(address);
            }
        });
    }

    void change(qsizetype row, const FieldValues& values) override
    {
        translating(session_->path(), [&] {
            announceChange(*session_);
            readAgain(row);
            forget();
            table().update(addressOf(addresses_[static_cast<std::size_t>(row)]), columnValues(values));
            session_->countChange();
        });
    }

private:
    [[nodiscard]] jet::Table& table() const
    {
        requireOpen();
        return table_;
    }

    std::vector<jet::ColumnValue> columnValues(const FieldValues& values) const
    {
        std::vector<jet::ColumnValue> result;
        for (const auto& [field, value] : values) {
            const jet::Column& column = columns_[static_cast<std::size_t>(field)];
            result.push_back({column.number, toFile(value, column)});
        }
        return result;
    }

    void forget() { current_.reset(); }

    /// The row, read again only when another one was read last or something was changed since.
    const jet::Row& read(qsizetype row)
    {
        if (current_ == nullptr || currentRow_ != row || currentChanges_ != session_->changes()) {
            current_ = table().read(addressOf(addresses_[static_cast<std::size_t>(row)]));
            currentRow_ = row;
            currentChanges_ = session_->changes();
        }
        if (current_ == nullptr) {
            throw RunTimeError(ErrorNumber::RecordDeleted);
        }
        return *current_;
    }

    void findFirst()
    {
        translating(session_->path(), [&] {
            const std::unique_ptr<jet::RowCursor> rows = table().scan();
            if (rows->next()) {
                addresses_.push_back(rowIdOf(rows->row().address()));
            }
        });
    }

    /// Rows added through this recordset come last, wherever they are in the table.
    void findAll()
    {
        if (isComplete_) {
            return;
        }
        translating(session_->path(), [&] {
            std::vector<qint64> found;
            const std::unique_ptr<jet::RowCursor> rows = table().scan();
            while (rows->next()) {
                const qint64 address = rowIdOf(rows->row().address());
                if (std::find(added_.begin(), added_.end(), address) == added_.end()) {
                    found.push_back(address);
                }
            }
            found.insert(found.end(), added_.begin(), added_.end());
            addresses_ = std::move(found);
            added_.clear();
            isComplete_ = true;
        });
    }

    std::shared_ptr<Session> session_;
    jet::Table& table_;                ///< found once: it lives as long as the file is open
    std::vector<jet::Column> columns_; ///< of the fields
    std::vector<Field> fields_;
    bool isComplete_; ///< addresses_ has all rows, not just the first
    std::vector<qint64> addresses_;
    std::vector<qint64> added_; ///< while not complete
    std::unique_ptr<jet::Row> current_;
    qsizetype currentRow_ = -1;
    quint64 currentChanges_ = 0;
};

} // namespace

std::unique_ptr<Recordset::Source> rowsOfTable(std::shared_ptr<Session> session, const QString& table)
{
    std::vector<int> columns(session->database().table(table.toStdString()).definition().columns.size());
    std::iota(columns.begin(), columns.end(), 0);
    return std::make_unique<TableRowsSource>(std::move(session), table, columns, std::nullopt);
}

std::unique_ptr<Recordset::Source> rowsOfQuery(std::shared_ptr<Session> session, const TranslatedQuery& query)
{
    if (!query.tableRows) {
        return std::make_unique<SnapshotRows>(std::move(session), query);
    }
    std::vector<qint64> addresses = session->addresses(query.tableRows->addresses);
    return std::make_unique<TableRowsSource>(std::move(session), query.tableRows->table, query.tableRows->columns,
                                             std::move(addresses));
}

} // namespace data
