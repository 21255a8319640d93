#include "soak/browse_actions.h"

namespace soak {

namespace {

using controls::BoundRecord;
using runtime::ErrorNumber;

enum Column : int { Number, Level, Type, Time, Comment, kColumns };

std::array<QString, kColumns> textsOf(qint32 number, const Reading& reading)
{
    return {QString::number(number), QString::number(reading.level, 'g', 15), QString::number(reading.type),
            textOf(reading.time), reading.comment};
}

/// What is typed into a box, and what the record holds then; no effect where the text is refused.
struct Correction {
    int column = 0;
    QString text;
    std::function<void(Reading&)> effect;
};

Correction correction(Scene& scene)
{
    const bool refused = scene.dice.oneIn(8);
    switch (scene.dice.below(4)) {
    case 0: {
        if (refused)
            return {Level, QStringLiteral("five"), {}};
        const double level = scene.level();
        return {Level, QString::number(level, 'g', 15), [level](Reading& reading) { reading.level = level; }};
    }
    case 1: {
        if (refused)
            return {Type, QStringLiteral("Meal"), {}};
        const int type = scene.dice.between(0, 12);
        return {Type, QString::number(type), [type](Reading& reading) { reading.type = type; }};
    }
    case 2: {
        if (refused)
            return {Time, QStringLiteral("31/02/2026"), {}};
        const Minute time = scene.moment();
        return {Time, textOf(time), [time](Reading& reading) { reading.time = time; }};
    }
    default: {
        if (refused)
            return {Comment, QString(51, u'x'), {}};
        const QString comment = scene.comment();
        return {Comment, comment, [comment](Reading& reading) { reading.comment = comment; }};
    }
    }
}

} // namespace

void ReadingBrowser::act(Scene& scene)
{
    if (!record_ || scene.dice.oneIn(15))
        open(scene);
    else if (scene.dice.oneIn(2))
        move(scene);
    else
        correct(scene);
}

void ReadingBrowser::open(Scene& scene)
{
    scene.action = "open the window of stored readings";
    record_.emplace(scene.path, QStringLiteral("BloodSugarLevels"));
    for (const char* field : {"BloodSugerNo", "BloodSugerLevel", "ReadingType", "ReadingTime", "Comment"})
        static_cast<void>(record_->bind(QString::fromLatin1(field), QString::fromLatin1(field)));
    require(record_->count() == static_cast<qsizetype>(scene.expected.readings.size()),
            "it shows " + std::to_string(record_->count()) + " readings");
    if (record_->isEmpty())
        close();
    else
        requireShown(scene);
}

void ReadingBrowser::move(Scene& scene)
{
    static const std::vector<BoundRecord::Move> moves{BoundRecord::Move::First, BoundRecord::Move::Previous,
                                                      BoundRecord::Move::Next, BoundRecord::Move::Last};
    const BoundRecord::Move move = scene.dice.oneOf(moves);
    scene.action = "move to another stored reading";
    if (!record_->canMove(move))
        return;
    const int error = errorOf([&] { static_cast<void>(record_->move(move)); });
    if (error == 0) {
        requireShown(scene);
        return;
    }
    // Those that way were all deleted meanwhile; the user opens the window anew.
    require(error == static_cast<int>(ErrorNumber::RecordDeleted),
            "to move ended with the run-time error " + std::to_string(error));
    close();
}

void ReadingBrowser::correct(Scene& scene)
{
    const Correction typed = correction(scene);
    const qint32 number = record_->text(Number).toInt();
    const QString seen = record_->text(typed.column);
    scene.action = "correct reading " + std::to_string(number) + " from \"" + seen.toStdString() + "\" to \"" +
                   typed.text.toStdString() + '"';
    record_->edit(typed.column, typed.text);
    if (scene.dice.oneIn(6)) {
        scene.action += " and take it back";
        record_->cancel();
        return;
    }
    if (typed.text == seen) {
        require(!record_->isEdited(), "the same text counts as an edit");
        return;
    }

    const auto reading = scene.expected.readings.find(number);
    std::optional<BoundRecord::Refusal> refusal;
    const auto store = [&] { refusal = record_->store(); };
    if (reading == scene.expected.readings.end()) {
        requireError(ErrorNumber::RecordDeleted, store);
        close();
        return;
    }
    const QString now = textsOf(number, reading->second).at(static_cast<std::size_t>(typed.column));
    if (now != seen && now != typed.text) {
        requireError(ErrorNumber::DataChanged, store);
        if (scene.dice.oneIn(2)) {
            record_->cancel();
            return;
        }
    }
    store(); // once more, over what others stored
    require(refusal.has_value() == !typed.effect, refusal ? "the text was refused" : "the text was not refused");
    if (typed.effect) {
        typed.effect(reading->second);
        requireShown(scene);
    }
    record_->cancel();
}

void ReadingBrowser::requireShown(const Scene& scene) const
{
    const qint32 number = record_->text(Number).toInt();
    const auto reading = scene.expected.readings.find(number);
    require(reading != scene.expected.readings.end(), "reading " + std::to_string(number) + " is shown");
    const auto expected = textsOf(number, reading->second);
    for (int column = 0; column < kColumns; ++column) {
        const QString& text = expected.at(static_cast<std::size_t>(column));
        require(record_->text(column) == text, "the window shows \"" + record_->text(column).toStdString() +
                                                   "\" and not \"" + text.toStdString() + '"');
    }
}

void editMealTime(Scene& scene)
{
    scene.action = "edit a meal's time";
    BoundRecord record(scene.path, QStringLiteral("Meals"));
    const int numberColumn = record.bind(QStringLiteral("MealNo"), QStringLiteral("Number"));
    const int timeColumn = record.bind(QStringLiteral("MealTime"), QStringLiteral("Meal Time"));
    require(record.count() == static_cast<qsizetype>(scene.expected.meals.size()),
            "there are " + std::to_string(record.count()) + " meals");
    if (record.isEmpty())
        return;
    for (int step = scene.dice.below(static_cast<int>(record.count())); step > 0; --step)
        require(!record.move(BoundRecord::Move::Next), "the move was refused");
    Meal& meal = scene.expected.meals.at(record.text(numberColumn).toInt());
    require(record.text(timeColumn) == textOf(meal.time), "the window shows another time");
    const Minute time = scene.moment();
    scene.action += " from " + textOf(meal.time).toStdString() + " to " + textOf(time).toStdString();
    record.edit(timeColumn, textOf(time));
    require(!record.store(), "the time was refused");
    meal.time = time;
}

} // namespace soak
