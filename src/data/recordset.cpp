#include "data/recordset.h"

#include "data/recordset_source.h"
#include "runtime/run_time_error.h"

namespace data {

using runtime::ErrorNumber;
using runtime::RunTimeError;

struct Recordset::State {
    /// Nowhere: opened without a record and not moved since, so both before the first and after the last.
    enum class Place { Nowhere, BeforeFirst, OnRecord, AfterLast };
    enum class Change { None, Add, Edit };

    std::unique_ptr<Source> source; ///< null when closed
    Place place = Place::OnRecord;
    qsizetype row = 0; ///< counts only on a record
    Change change = Change::None;
    FieldValues values; ///< set since addNew or edit

    explicit State(std::unique_ptr<Source> rows) : source(std::move(rows))
    {
        if (!source->hasRow(0)) {
            place = Place::Nowhere;
        }
    }

    [[nodiscard]] bool isAtEnd() const { return place == Place::Nowhere || place == Place::AfterLast; }

    void requireRecord() const
    {
        if (place != Place::OnRecord) {
            throw RunTimeError(ErrorNumber::NoCurrentRecord);
        }
    }

    /// Before every move: 3021 when there is no record at all. A change in progress is given up.
    void beginMove()
    {
        if (!source->hasRow(0)) {
            throw RunTimeError(ErrorNumber::NoCurrentRecord);
        }
        change = Change::None;
        values.clear();
    }

    void moveTo(qsizetype number)
    {
        place = Place::OnRecord;
        row = number;
    }
};

Recordset::Recordset(std::unique_ptr<Source> source) : state_(std::make_unique<State>(std::move(source))) {}
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

Recordset::State& Recordset::open() const
{
    if (state_ == nullptr || state_->source == nullptr) {
        throw RunTimeError(ErrorNumber::ObjectInvalid);
    }
    state_->source->requireOpen();
    return *state_;
}

bool Recordset::bof() const
{
    const State::Place place = open().place;
    return place == State::Place::Nowhere || place == State::Place::BeforeFirst;
}

bool Recordset::eof() const
{
    return open().isAtEnd();
}

void Recordset::moveFirst()
{
    State& state = open();
    state.beginMove();
    state.moveTo(0);
}

void Recordset::moveLast()
{
    State& state = open();
    state.beginMove();
    state.moveTo(state.source->lastRow());
}

void Recordset::moveNext()
{
    State& state = open();
    if (state.isAtEnd()) {
        throw RunTimeError(ErrorNumber::NoCurrentRecord);
    }
    state.beginMove();
    const qsizetype next = state.place == State::Place::BeforeFirst ? 0 : state.row + 1;
    if (state.source->hasRow(next)) {
        state.moveTo(next);
    } else {
        state.place = State::Place::AfterLast;
    }
}

void Recordset::movePrevious()
{
    State& state = open();
    if (bof()) {
        throw RunTimeError(ErrorNumber::NoCurrentRecord);
    }
    state.beginMove();
    if (state.place == State::Place::AfterLast) {
        state.moveTo(state.source->lastRow());
    } else if (state.row > 0) {
        state.moveTo(state.row - 1);
    } else {
        state.place = State::Place::BeforeFirst;
    }
}

void Recordset::moveTo(qsizetype position)
{
    State& state = open();
    if (position < 0 || !state.source->hasRow(position)) {
        throw RunTimeError(ErrorNumber::NoCurrentRecord);
    }
    state.beginMove();
    state.moveTo(position);
}

qsizetype Recordset::recordCount() const
{
    return open().source->rowCount();
}

int Recordset::fieldCount() const
{
    return static_cast<int>(open().source->fields().size());
}

const Field& Recordset::field(int position) const
{
    const std::vector<Field>& fields = open().source->fields();
    if (position < 0 || position >= static_cast<int>(fields.size())) {
        throw RunTimeError(ErrorNumber::ItemNotFound);
    }
    return fields[static_cast<std::size_t>(position)];
}

int Recordset::positionOf(const QString& name) const
{
    const std::vector<Field>& fields = open().source->fields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].name.compare(name, Qt::CaseInsensitive) == 0) {
            return static_cast<int>(i);
        }
    }
    throw RunTimeError(ErrorNumber::ItemNotFound).withHint(QStringLiteral("There is no field called '%1'.").arg(name));
}

const Field& Recordset::field(const QString& name) const
{
    return field(positionOf(name));
}

runtime::Value Recordset::value(int position) const
{
    const State& state = open();
    if (position < 0 || position >= static_cast<int>(state.source->fields().size())) {
        throw RunTimeError(ErrorNumber::ItemNotFound);
    }
    if (state.change != State::Change::None) {
        if (const auto changed = state.values.find(position); changed != state.values.end()) {
            return changed->second;
        }
        if (state.change == State::Change::Add) {
            return runtime::Null{};
        }
    }
    state.requireRecord();
    return state.source->value(state.row, position);
}

runtime::Value Recordset::value(const QString& name) const
{
    return value(positionOf(name));
}

bool Recordset::isUpdatable() const
{
    return open().source->whyReadOnly().isEmpty();
}

void Recordset::requireUpdatable() const
{
    const QString why = open().source->whyReadOnly();
    if (!why.isEmpty()) {
        throw RunTimeError(ErrorNumber::ReadOnly).withHint(why);
    }
}

void Recordset::addNew()
{
    requireUpdatable();
    State& state = open();
    state.values.clear();
    state.change = State::Change::Add;
}

void Recordset::edit()
{
    requireUpdatable();
    State& state = open();
    state.requireRecord();
    state.source->readAgain(state.row);
    state.values.clear();
    state.change = State::Change::Edit;
}

void Recordset::set(const QString& name, const runtime::Value& value)
{
    State& state = open();
    const int position = positionOf(name);
    requireUpdatable();
    if (state.change == State::Change::None) {
        throw RunTimeError(ErrorNumber::UpdateWithoutEdit);
    }
    state.values[position] = state.source->stored(position, value);
}

void Recordset::update()
{
    State& state = open();
    if (state.change == State::Change::None) {
        throw RunTimeError(ErrorNumber::UpdateWithoutEdit);
    }
    if (state.change == State::Change::Add) {
        state.source->add(state.values);
    } else {
        state.source->change(state.row, state.values);
    }
    state.change = State::Change::None;
    state.values.clear();
}

void Recordset::cancelUpdate()
{
    State& state = open();
    state.change = State::Change::None;
    state.values.clear();
}

void Recordset::close()
{
    static_cast<void>(open());
    state_->source.reset();
}

} // namespace data
