// The current record of a table as texts that the user reads and changes.
#pragma once

#include "data/database.h"
#include "runtime/run_time_error.h"

#include <QString>

#include <optional>
#include <vector>

namespace controls {

/// Walks records through a connection of its own, which holds no lock between calls. The list of records is that of the
/// opening; a record's texts are as of the move to it. Edits wait until they are stored: all of a record or none, and
/// nothing but what was changed is written. After an error everything is as before, except where a function says more.
class BoundRecord
{
public:
    enum class Move { First, Previous, Next, Last };

    /// Texts that their fields do not take.
    struct Refusal {
        runtime::RunTimeError error; ///< the database's, of the first of them; its hint speaks of all
        int column = 0;              ///< the first of them
    };

    /// Stands on the first record. `recordSource`: the name of a table or query, or an SQL text.
    BoundRecord(const QString& databasePath, const QString& recordSource);

    /// Adds a column that shows the field and returns its number, counted from 0. `name` is what the user knows it by.
    /// 3265 for a field that is not there.
    int bind(const QString& field, const QString& name);

    [[nodiscard]] bool isEmpty() const { return count_ == 0; }
    [[nodiscard]] bool isUpdatable() const { return updatable_; }
    [[nodiscard]] qsizetype count() const { return count_; }
    [[nodiscard]] qsizetype position() const { return position_; } ///< counted from 0
    [[nodiscard]] bool canMove(Move move) const;

    /// With the user's edit; empty where there is no record.
    [[nodiscard]] const QString& text(int column) const;
    /// To type what is stored is no edit.
    void edit(int column, const QString& text);
    [[nodiscard]] bool isEdited() const;
    /// Takes the record's edits back.
    void cancel();

    /// Writes the edits; they are durable on return. Where texts are refused nothing is written, and just their edits
    /// are taken back. 3197 when another connection changed an edited field since the move to the record: text() then
    /// still has the edit, and storing it again writes over the other's. 3167 when the record was deleted: its edits
    /// are lost and the next record is the current one.
    [[nodiscard]] std::optional<Refusal> store();
    /// Stores and, where nothing was refused, moves, past records that were deleted meanwhile; 3167 when none is left
    /// that way.
    [[nodiscard]] std::optional<Refusal> move(Move move);

private:
    struct Column {
        QString field;
        QString name;
        QString stored;
        std::optional<QString> edited;
    };

    [[nodiscard]] std::optional<Refusal> write();
    void noticeOthersChanges();
    [[nodiscard]] std::optional<Refusal> setEdits();
    void leaveDeleted();
    [[nodiscard]] bool standOn(qsizetype position);
    [[nodiscard]] bool standOnNearest(qsizetype position, int step);
    [[nodiscard]] std::vector<QString> readTexts() const;
    void show(const std::vector<QString>& texts);
    [[nodiscard]] const Column& column(int number) const { return columns_.at(static_cast<std::size_t>(number)); }

    data::Database database_;
    data::Recordset records_;
    bool updatable_ = false;
    qsizetype count_ = 0;
    qsizetype position_ = 0;
    std::vector<Column> columns_;
};

} // namespace controls
