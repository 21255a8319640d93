#include "soak/reading_actions.h"

#include "readings/meter_import.h"
#include "readings/reading_entry.h"
#include "runtime/conversions.h"

#include <QFile>

#include <algorithm>

namespace soak {

namespace {

constexpr std::size_t kMostReadings = 500;

void expectReading(Scene& scene, const Reading& reading)
{
    scene.expected.readings.emplace(++scene.lastReading, reading);
}

readings::ReadingEntry entryFor(const Reading& reading)
{
    return {tenths(reading.level), dayOf(reading.time), timeOf(reading.time), reading.type, reading.comment};
}

Reading anyReading(Scene& scene)
{
    return {scene.level(), scene.moment(), scene.dice.between(1, 8), scene.comment()};
}

std::optional<Minute> latestReading(const Scene& scene)
{
    std::optional<Minute> latest;
    for (const auto& [number, reading] : scene.expected.readings)
        latest = std::max(latest.value_or(reading.time), reading.time);
    return latest;
}

/// A line of a meter's file that is no reading, and whose import ends with an error where it has one.
struct OddLine {
    const char* text = nullptr;
    int error = 0;
};

const std::vector<OddLine>& oddLines()
{
    static const std::vector<OddLine> lines{
        {"", 0},
        {"Date,Time,Result", 0},
        {" 31/02/2026, 10:00, 5.5", 0},
        {" 13/14/2026, 10:00, 5.5", 0},
        {" 31/12/2030", 9},
        {" 31/12/2030, 08:00", 9},
        {" 31/12/2030, 25:00, 5.5", 13},
        {" 31/12/2030, 08:00, high", 13},
    };
    return lines;
}

void writeFile(const QString& path, const QStringList& lines, const QString& lineEnd)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "the meter's file cannot be written");
    file.write((lines.join(lineEnd) + lineEnd).toUtf8());
}

/// Gives the reading's number.
qint32 addReading(data::Database& database, const Reading& reading)
{
    data::Recordset readings =
        database.openRecordset(QStringLiteral("Select * from BloodSugarLevels where BloodSugerNo = -1"));
    readings.addNew();
    readings.set(QStringLiteral("BloodSugerLevel"), reading.level);
    readings.set(QStringLiteral("ReadingTime"), runtime::Date{daysOf(reading.time)});
    readings.set(QStringLiteral("ReadingType"), reading.type);
    readings.set(QStringLiteral("Comment"), reading.comment);
    readings.update();
    readings.moveFirst();
    return runtime::toLong(readings.value(QStringLiteral("BloodSugerNo")));
}

} // namespace

void typeReading(Scene& scene)
{
    const Reading reading = anyReading(scene);
    scene.action =
        "type the reading " + tenths(reading.level).toStdString() + " of " + textOf(reading.time).toStdString();
    readings::saveReading(scene.path, entryFor(reading));
    expectReading(scene, reading);
}

void typeWrongReading(Scene& scene)
{
    readings::ReadingEntry entry = entryFor(anyReading(scene));
    runtime::ErrorNumber error = runtime::ErrorNumber::TypeMismatch;
    switch (scene.dice.below(4)) {
    case 0:
        entry.level = QStringLiteral("five");
        break;
    case 1:
        entry.date = QStringLiteral("31/02/2026");
        break;
    case 2:
        entry.time = QString();
        break;
    default:
        entry.comment = QString(51, u'x');
        error = runtime::ErrorNumber::FieldTooSmall;
    }
    scene.action = "type a reading that is none";
    requireError(error, [&] { readings::saveReading(scene.path, entry); });
}

void importReadings(Scene& scene)
{
    const std::optional<Minute> latest = latestReading(scene);
    const Minute cutOff = latest && scene.dice.oneIn(2) ? *latest : scene.moment();
    scene.action = "import after " + textOf(cutOff).toStdString();
    if (latest) {
        require(readings::latestReading(scene.path) == dayOf(*latest) + u' ' + timeOf(*latest),
                "the latest reading is not what it should be");
    }

    QStringList lines;
    std::vector<Reading> added;
    int error = 0;
    const int lineCount = scene.dice.oneIn(6) ? scene.dice.between(50, 150) : scene.dice.below(8);
    for (int i = 0; i < lineCount; ++i) {
        if (scene.dice.oneIn(10)) {
            const OddLine& odd = scene.dice.oneOf(oddLines());
            lines.append(QString::fromLatin1(odd.text));
            error = error == 0 ? odd.error : error;
            continue;
        }
        const Reading reading{scene.level(), scene.moment(), 0, {}};
        lines.append(u' ' + dayOf(reading.time) + QStringLiteral(", ") + timeOf(reading.time) + QStringLiteral(", ") +
                     tenths(reading.level) + (scene.dice.oneIn(3) ? QStringLiteral(",mmol/l") : QString()));
        if (error == 0 && reading.time > cutOff)
            added.push_back(reading);
    }
    scene.action += ", " + std::to_string(added.size()) + " readings, error " + std::to_string(error);

    const QString meterFile = scene.folder + QStringLiteral("/meter.csv");
    writeFile(meterFile, lines, scene.dice.oneIn(2) ? QStringLiteral("\r\n") : QStringLiteral("\n"));
    int count = 0;
    const int found = errorOf([&] {
        count = readings::ImportReadings({scene.path, meterFile, dayOf(cutOff) + u' ' + timeOf(cutOff)});
    });
    require(found == error, "the import ended with the run-time error " + std::to_string(found));
    require(error != 0 || count == static_cast<int>(added.size()),
            "the import says that it added " + std::to_string(count));
    for (const Reading& reading : added)
        expectReading(scene, reading);
}

void deleteReadings(Scene& scene)
{
    auto& readings = scene.expected.readings;
    if (readings.empty())
        return;
    QString condition;
    std::function<bool(qint32, const Reading&)> isMeant;
    if (readings.size() > kMostReadings) {
        const qint32 first = scene.dice.oneIn(2) ? readings.begin()->first : scene.dice.keyOf(readings);
        condition = QStringLiteral("BloodSugerNo >= %1").arg(first);
        isMeant = [first](qint32 number, const Reading&) { return number >= first; };
    } else if (scene.dice.oneIn(10)) {
        const Minute from = scene.moment();
        const Minute to = from + 3 * 24 * 60;
        condition = QStringLiteral("ReadingTime > Cdate('%1 %2') and ReadingTime < Cdate('%3 %4')")
                        .arg(dayOf(from), timeOf(from), dayOf(to), timeOf(to));
        isMeant = [from, to](qint32, const Reading& reading) { return reading.time > from && reading.time < to; };
    } else {
        const qint32 one = scene.dice.keyOf(readings);
        condition = QStringLiteral("BloodSugerNo = %1").arg(one);
        isMeant = [one](qint32 number, const Reading&) { return number == one; };
    }
    scene.action = "delete the readings where " + condition.toStdString();
    const qsizetype count =
        scene.connection().execute(QStringLiteral("Delete * from BloodSugarLevels where ") + condition);
    const std::size_t meant =
        std::erase_if(readings, [&](const auto& entry) { return isMeant(entry.first, entry.second); });
    require(count == static_cast<qsizetype>(meant),
            std::to_string(count) + " readings were deleted and " + std::to_string(meant) + " were meant");
}

void changeInBatch(Scene& scene)
{
    const bool takenBack = scene.dice.oneIn(2);
    scene.action = takenBack ? "change in a batch that is taken back" : "change in a batch";
    const Contents before = scene.expected;
    const qint32 lastBefore = scene.lastReading;
    data::Database& database = scene.connection();
    data::Database::Batch batch(database);
    for (int change = scene.dice.between(1, 6); change > 0; --change) {
        if (scene.expected.readings.empty() || !scene.dice.oneIn(3)) {
            const Reading reading = anyReading(scene);
            // A connection gives no number twice, also when the batch was taken back that had it.
            const qint32 number = addReading(database, reading);
            require(number > scene.lastReading, "the number " + std::to_string(number) + " was given before");
            scene.lastReading = number;
            scene.expected.readings.emplace(number, reading);
        } else {
            const qint32 number = scene.dice.keyOf(scene.expected.readings);
            database.execute(QStringLiteral("Delete * from BloodSugarLevels where BloodSugerNo = %1").arg(number));
            scene.expected.readings.erase(number);
        }
    }
    if (scene.dice.oneIn(4)) {
        data::Database other(scene.path);
        const std::string seen = difference(linesOf(before), linesIn(other));
        require(seen.empty(), "another connection sees a change that is not committed:\n" + seen);
    }
    if (takenBack) {
        scene.expected = before;
        scene.lastReading = lastBefore;
    } else {
        batch.commit();
    }
}

void cancelChange(Scene& scene)
{
    scene.action = "begin a change and give it up";
    data::Database& database = scene.connection();
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    if (readings.eof() || scene.dice.oneIn(2)) {
        readings.addNew();
    } else {
        readings.moveTo(scene.dice.below(static_cast<int>(scene.expected.readings.size())));
        readings.edit();
    }
    readings.set(QStringLiteral("BloodSugerLevel"), scene.level());
    if (scene.dice.oneIn(2))
        readings.cancelUpdate();
}

void countReadings(Scene& scene)
{
    const double level = scene.level();
    scene.action = "count the readings below " + tenths(level).toStdString();
    data::Recordset counted = scene.connection().openRecordset(
        QStringLiteral("Select count(*) as N from BloodSugarLevels where BloodSugerLevel < ") + tenths(level));
    const auto meant = std::count_if(scene.expected.readings.begin(), scene.expected.readings.end(),
                                     [&](const auto& entry) { return entry.second.level < level; });
    const qint32 found = runtime::toLong(counted.value(0));
    require(found == meant, "the count is " + std::to_string(found) + " and not " + std::to_string(meant));
}

} // namespace soak
