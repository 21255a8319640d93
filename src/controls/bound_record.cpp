#include "controls/bound_record.h"

#include "runtime/conversions.h"
#include "runtime/error_hints.h"

#include <QStringList>

#include <algorithm>

namespace controls {

using runtime::ErrorNumber;
using runtime::RunTimeError;

namespace {

/// For a value that is none, such as a date in the year 12000; it stays in the file unless it is typed over.
const QString kNotShowable = QStringLiteral("#Error");

QString shown(const runtime::Value& value)
{
    try {
        return runtime::toText(value);
    } catch (const RunTimeError&) {
        return kNotShowable;
    }
}

bool isText(const data::Field& field)
{
    return field.type == data::FieldType::Text || field.type == data::FieldType::Memo;
}

/// An emptied text becomes null: not every column takes an empty text.
runtime::Value typed(const data::Field& field, const QString& text)
{
    return text.isEmpty() && isText(field) ? runtime::Value(runtime::Null{}) : runtime::Value(text);
}

/// What the field takes, behind "must be".
QString demandOf(const data::Field& field)
{
    switch (field.type) {
    case data::FieldType::Boolean:
        return QStringLiteral("True or False");
    case data::FieldType::Byte:
        return QStringLiteral("a whole number from 0 to 255");
    case data::FieldType::Integer:
    case data::FieldType::Long:
        return QStringLiteral("a whole number such as 3");
    case data::FieldType::Currency:
    case data::FieldType::Single:
    case data::FieldType::Double:
    case data::FieldType::Decimal:
        return QStringLiteral("a number such as %1").arg(runtime::toText(5.6));
    case data::FieldType::Date:
        return QStringLiteral("a date and time, day first, such as 31/12/2002 08:15");
    case data::FieldType::Text:
        return QStringLiteral("no longer than %1 characters").arg(field.size);
    case data::FieldType::Memo:
        return QStringLiteral("a text");
    case data::FieldType::Binary:
        return QStringLiteral("left as it is: its bytes cannot be typed");
    case data::FieldType::Guid:
        return QStringLiteral("a GUID such as {00000000-0000-0000-0000-000000000000}");
    }
    return {};
}

/// Whether the error says that the field does not take what was typed.
bool isRefusal(const RunTimeError& error)
{
    switch (error.code()) {
    case ErrorNumber::TypeMismatch:
    case ErrorNumber::Overflow:
    case ErrorNumber::InvalidUseOfNull:
    case ErrorNumber::FieldTooSmall:
        return true;
    default:
        return false;
    }
}

} // namespace

BoundRecord::BoundRecord(const QString& databasePath, const QString& recordSource)
    : database_(databasePath), records_(database_.openRecordset(recordSource)), updatable_(records_.isUpdatable())
{
    if (records_.eof()) {
        return;
    }
    records_.moveLast(); // now the list of records is complete and stays what it is
    count_ = records_.recordCount();
    records_.moveFirst();
}

int BoundRecord::bind(const QString& field, const QString& name)
{
    static_cast<void>(records_.field(field));
    columns_.push_back({field, name, isEmpty() ? QString() : shown(records_.value(field)), {}});
    return static_cast<int>(columns_.size()) - 1;
}

bool BoundRecord::canMove(Move move) const
{
    return move == Move::First || move == Move::Previous ? position_ > 0 : position_ + 1 < count_;
}

const QString& BoundRecord::text(int number) const
{
    const Column& shown = column(number);
    return shown.edited ? *shown.edited : shown.stored;
}

void BoundRecord::edit(int number, const QString& text)
{
    Column& edited = columns_.at(static_cast<std::size_t>(number));
    edited.edited = text == edited.stored ? std::nullopt : std::optional(text);
}

bool BoundRecord::isEdited() const
{
    return std::any_of(columns_.begin(), columns_.end(),
                       [](const Column& column) { return column.edited.has_value(); });
}

void BoundRecord::cancel()
{
    for (Column& column : columns_) {
        column.edited.reset();
    }
}

std::optional<BoundRecord::Refusal> BoundRecord::store()
{
    if (!isEdited()) {
        return std::nullopt;
    }
    try {
        return write();
    } catch (const RunTimeError& error) {
        records_.cancelUpdate();
        if (error.code() == ErrorNumber::DataChanged) {
            throw;
        }
        if (error.code() != ErrorNumber::RecordDeleted) {
            throw error.withAddedHint(QStringLiteral("The change was not stored."));
        }
    }
    leaveDeleted();
    throw RunTimeError(ErrorNumber::RecordDeleted)
        .withHint(QStringLiteral("Another program deleted the record while you were changing it. "
                                 "The change could not be stored; another record is shown now."));
}

std::optional<BoundRecord::Refusal> BoundRecord::move(Move move)
{
    if (std::optional<Refusal> refusal = store()) {
        return refusal;
    }
    bool moved = false;
    switch (move) {
    case Move::First:
        moved = standOnNearest(0, +1);
        break;
    case Move::Previous:
        moved = standOnNearest(position_ - 1, -1);
        break;
    case Move::Next:
        moved = standOnNearest(position_ + 1, +1);
        break;
    case Move::Last:
        moved = standOnNearest(count_ - 1, -1);
        break;
    }
    if (!moved) {
        throw RunTimeError(ErrorNumber::RecordDeleted)
            .withHint(QStringLiteral("Another program deleted the records there."));
    }
    return std::nullopt;
}

std::optional<BoundRecord::Refusal> BoundRecord::write()
{
    records_.edit();
    noticeOthersChanges();
    if (std::optional<Refusal> refusal = setEdits()) {
        records_.cancelUpdate();
        return refusal;
    }
    const std::vector<QString> texts = readTexts(); // as they will be stored
    records_.update();
    show(texts);
    return std::nullopt;
}

/// Compares what the record holds now with what the user saw when he began to change it.
void BoundRecord::noticeOthersChanges()
{
    QStringList changes;
    for (Column& column : columns_) {
        QString now = shown(records_.value(column.field));
        if (column.edited && now != column.stored && now != *column.edited) {
            changes.append(QStringLiteral("%1 to \"%2\"").arg(column.name, now));
        }
        column.stored = std::move(now);
    }
    if (!changes.isEmpty()) {
        throw RunTimeError(ErrorNumber::DataChanged)
            .withHint(QStringLiteral("Another program changed %1 meanwhile. Your change is not stored yet: go on to "
                                     "store it all the same, or press Escape to take it back.")
                          .arg(changes.join(QStringLiteral(" and "))));
    }
}

std::optional<BoundRecord::Refusal> BoundRecord::setEdits()
{
    std::optional<Refusal> refusal;
    std::vector<Column*> refused;
    for (Column& column : columns_) {
        if (!column.edited) {
            continue;
        }
        try {
            records_.set(column.field, typed(records_.field(column.field), *column.edited));
        } catch (const RunTimeError& error) {
            if (!isRefusal(error)) {
                throw;
            }
            if (!refusal) {
                refusal = Refusal{error, static_cast<int>(&column - columns_.data())};
            }
            refused.push_back(&column);
        }
    }
    if (!refusal) {
        return std::nullopt;
    }
    QString hint;
    for (Column* column : refused) {
        hint += QStringLiteral("%1 must be %2. ").arg(column->name, demandOf(records_.field(column->field)));
        column->edited.reset();
    }
    refusal->error = refusal->error.withHint(hint + QStringLiteral("Nothing was stored; the old value is back."));
    return refusal;
}

void BoundRecord::leaveDeleted()
{
    cancel();
    if (standOnNearest(position_ + 1, +1) || standOnNearest(position_ - 1, -1)) {
        return;
    }
    count_ = 0;
    position_ = 0;
    show(std::vector<QString>(columns_.size()));
}

/// False when the record was deleted meanwhile.
bool BoundRecord::standOn(qsizetype position)
{
    try {
        records_.moveTo(position);
        show(readTexts());
        position_ = position;
        return true;
    } catch (const RunTimeError& error) {
        records_.moveTo(position_);
        if (error.code() != ErrorNumber::RecordDeleted) {
            throw;
        }
        return false;
    }
}

bool BoundRecord::standOnNearest(qsizetype position, int step)
{
    for (; position >= 0 && position < count_; position += step) {
        if (standOn(position)) {
            return true;
        }
    }
    return false;
}

std::vector<QString> BoundRecord::readTexts() const
{
    std::vector<QString> texts;
    for (const Column& column : columns_) {
        texts.push_back(shown(records_.value(column.field)));
    }
    return texts;
}

void BoundRecord::show(const std::vector<QString>& texts)
{
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        columns_[i].stored = texts[i];
        columns_[i].edited.reset();
    }
}

} // namespace controls
