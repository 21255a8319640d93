// Rows of a table, a saved query or an SQL text, walked with one current record.
#pragma once

#include "data/types/field.h"
#include "runtime/value.h"

#include <QString>

#include <memory>

namespace data {

/// The cursor stands before the first record (bof), on a record, or after the last (eof); on an empty result both hold.
/// A new recordset stands on its first record. It holds no lock between calls.
/// Errors are runtime::RunTimeError: 3021 without a current record, 3265 for a field that is not there, 3027 where the
/// recordset cannot be changed.
class Recordset
{
public:
    class Source; ///< where the rows come from
    explicit Recordset(std::unique_ptr<Source> source);
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    [[nodiscard]] bool bof() const;
    [[nodiscard]] bool eof() const;
    void moveFirst(); ///< 3021 when there is no record; so do all moves
    void moveLast();
    void moveNext();                 ///< from the last record to eof; 3021 when at eof
    void movePrevious();             ///< from the first record to bof; 3021 when at bof
    void moveTo(qsizetype position); ///< counted from 0; 3021 when there are fewer records
    [[nodiscard]] qsizetype recordCount() const;

    [[nodiscard]] int fieldCount() const;
    [[nodiscard]] const Field& field(int position) const;
    [[nodiscard]] const Field& field(const QString& name) const; ///< without regard to case
    /// For value() of many records: a name is looked for anew at each.
    [[nodiscard]] int positionOf(const QString& name) const;
    /// Of the current record; between addNew or edit and update, what is set already counts (null in a new record).
    [[nodiscard]] runtime::Value value(int position) const;
    [[nodiscard]] runtime::Value value(const QString& name) const;

    // A recordset over one table can be changed. addNew or edit, set, update; the change is durable when update
    // returns.
    [[nodiscard]] bool isUpdatable() const;
    void addNew();
    void edit(); ///< reads the current record again: another connection may have changed it, or deleted it (3167)
    void set(const QString& name, const runtime::Value& value); ///< converts as far as the field's type allows, else 13
    void update(); ///< a new record joins at the end; the current record stays what it was
    void cancelUpdate();
    void close(); ///< further use is error 3420 ("Object invalid or no longer set.")

private:
    struct State;
    [[nodiscard]] State& open() const;
    void requireUpdatable() const;

    std::unique_ptr<State> state_;
};

} // namespace data
