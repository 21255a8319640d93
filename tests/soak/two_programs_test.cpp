// A window that stays open and quillonctl write the same diary: by turns, and at the same moment.
#include "cli/quillonctl.h"
#include "data/database.h"
#include "readings/reading_entry.h"
#include "runtime/run_time_error.h"
#include "soak/browse_actions.h"
#include "soak/contents.h"
#include "soak/meal_actions.h"
#include "soak/reading_actions.h"
#include "soak/rounds.h"
#include "soak/scene.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>

namespace soak {

namespace {

using testing::HasSubstr;

constexpr qint32 kFood = 1001;
constexpr Minute kFirst = 46000LL * 24 * 60;

void writeMeterFile(const QString& path, const std::vector<Reading>& readings)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const Reading& reading : readings) {
        const QString line = u' ' + dayOf(reading.time) + QStringLiteral(", ") + timeOf(reading.time) +
                             QStringLiteral(", ") + tenths(reading.level) + u'\n';
        file.write(line.toUtf8());
    }
}

QStringList importCommand(const QString& diaryPath, const QString& meterPath)
{
    return {QStringLiteral("import"), diaryPath, meterPath, QStringLiteral("--after"), QStringLiteral("01/01/2000")};
}

// --- By turns ---

void importByShell(Scene& scene)
{
    scene.action = "quillonctl import";
    std::vector<Reading> readings;
    for (int count = scene.dice.between(1, 20); count > 0; --count)
        readings.push_back({scene.level(), scene.moment(), 0, {}});
    const QString meterPath = scene.folder + QStringLiteral("/shell.csv");
    writeMeterFile(meterPath, readings);
    const Outcome outcome = quillonctl(importCommand(scene.path, meterPath));
    require(outcome.status == 0, outcome.err);
    require(outcome.out == std::to_string(readings.size()) + " readings added\n", outcome.out);
    for (const Reading& reading : readings)
        scene.expected.readings.emplace(++scene.lastReading, reading);
}

void deleteByShell(Scene& scene)
{
    if (scene.expected.readings.empty())
        return;
    const qint32 number = scene.dice.keyOf(scene.expected.readings);
    scene.action = "quillonctl sql: delete reading " + std::to_string(number);
    const Outcome outcome =
        quillonctl({QStringLiteral("sql"), scene.path,
                    QStringLiteral("Delete * from BloodSugarLevels where BloodSugerNo = %1").arg(number)});
    require(outcome.status == 0 && outcome.out == "1 record deleted\n", outcome.out + outcome.err);
    scene.expected.readings.erase(number);
}

void countByShell(Scene& scene)
{
    scene.action = "quillonctl sql: count";
    const Outcome outcome =
        quillonctl({QStringLiteral("sql"), scene.path, QStringLiteral("Select count(*) as N from BloodSugarLevels")});
    require(outcome.out == "N\n" + std::to_string(scene.expected.readings.size()) + '\n', outcome.out + outcome.err);
}

void compare(const Scene& scene)
{
    data::Database database(scene.path);
    EXPECT_TRUE(database.check().empty());
    EXPECT_EQ(difference(linesOf(scene.expected), linesIn(database)), "");
}

TEST(TwoPrograms, ByTurnsEachSeesWhatTheOtherStored)
{
    const quint64 seed = seedInForce();
    const TestDiary diary;
    const QTemporaryDir folder;
    reports::addFood(diary.path(), kFood, {QStringLiteral("BREAD"), 250, 50, 1, 8});
    Scene scene{folder.path(), diary.path(), Dice(seed), {}, 0, 0, {}, {}};
    scene.expected.foods.emplace(kFood, Food{QStringLiteral("BREAD"), false, false, 50, 250});
    ReadingBrowser browser; // with its connection open all the time

    const std::vector<Action> ofShell{importByShell, deleteByShell, deleteByShell, countByShell};
    const std::vector<Action> ofWindow{typeReading, saveMeal, deleteReadings, changeInBatch, editMealTime};
    for (int round = 0, rounds = roundsOr(15); round < rounds; ++round) {
        try {
            scene.dice.oneOf(ofShell)(scene);
            for (int i = 0; i < 3; ++i)
                browser.act(scene);
            scene.dice.oneOf(ofWindow)(scene);
            countReadings(scene);
        } catch (const std::exception& error) {
            FAIL() << "seed " << seed << ", round " << round << ", " << scene.action << ":\n" << error.what();
        }
    }
    compare(scene);
}

// --- At the same moment ---

/// Readings that are in no other writer's hands: each has a minute of its own.
std::vector<Reading> freshReadings(Minute& next, int count)
{
    std::vector<Reading> readings;
    for (; count > 0; --count, ++next)
        readings.push_back({5.5, next, 0, {}});
    return readings;
}

/// quillonctl at work, and what it adds and takes away when it succeeds.
struct ShellWriter {
    std::unique_ptr<QProcess> process;
    std::set<Minute> added;
    std::set<Minute> deleted;
    std::string saysWhenDone;
};

ShellWriter startShell(const QStringList& arguments)
{
    ShellWriter writer{std::make_unique<QProcess>(), {}, {}, {}};
    writer.process->start(QStringLiteral(QUILLONCTL), arguments);
    return writer;
}

ShellWriter startImport(const TestDiary& diary, const QString& meterPath, const std::vector<Reading>& readings)
{
    writeMeterFile(meterPath, readings);
    ShellWriter writer = startShell(importCommand(diary.path(), meterPath));
    for (const Reading& reading : readings)
        writer.added.insert(reading.time);
    writer.saysWhenDone = std::to_string(readings.size()) + " readings added\n";
    return writer;
}

ShellWriter startDelete(const TestDiary& diary, Minute time)
{
    ShellWriter writer = startShell(
        {QStringLiteral("sql"), diary.path(),
         QStringLiteral("Delete * from BloodSugarLevels where ReadingTime = Cdate('%1')").arg(textOf(time))});
    writer.deleted.insert(time);
    writer.saysWhenDone = "1 record deleted\n";
    return writer;
}

bool isRunning(QProcess& process, int milliseconds)
{
    static_cast<void>(process.waitForFinished(milliseconds)); // false also for one that has ended before
    return process.state() != QProcess::NotRunning;
}

/// Whether the program ended with what it was to do; where not, it must have said that another one had the file.
bool succeeded(ShellWriter& writer)
{
    if (isRunning(*writer.process, 60000)) {
        ADD_FAILURE() << "quillonctl hangs";
        return false;
    }
    const std::string errors = writer.process->readAllStandardError().toStdString();
    if (writer.process->exitCode() == 0) {
        EXPECT_EQ(errors, "");
        EXPECT_EQ(writer.process->readAllStandardOutput().toStdString(), writer.saysWhenDone);
        return true;
    }
    EXPECT_EQ(writer.process->exitCode(), 1);
    EXPECT_THAT(errors, HasSubstr("Run-time error '3045'"));
    return false;
}

/// The window's own entry; false where the diary was in use for too long.
bool typed(const TestDiary& diary, Minute time)
{
    try {
        readings::saveReading(diary.path(), {QStringLiteral("6.5"), dayOf(time), timeOf(time), 1, {}});
        return true;
    } catch (const runtime::RunTimeError& error) {
        EXPECT_EQ(error.code(), runtime::ErrorNumber::FileInUse) << error.text().toStdString();
        return false;
    }
}

std::set<Minute> storedTimes(const TestDiary& diary)
{
    data::Database database(diary.path());
    EXPECT_TRUE(database.check().empty());
    data::Recordset readings = database.openRecordset(QStringLiteral("BloodSugarLevels"));
    std::set<Minute> times;
    std::set<qint32> numbers;
    for (; !readings.eof(); readings.moveNext()) {
        const auto time = std::get<runtime::Date>(readings.value(QStringLiteral("ReadingTime")));
        EXPECT_TRUE(times.insert(qRound64(time.days * 24 * 60)).second) << "a reading is there twice";
        EXPECT_TRUE(numbers.insert(std::get<qint32>(readings.value(QStringLiteral("BloodSugerNo")))).second)
            << "a number was given twice";
    }
    return times;
}

TEST(TwoPrograms, AtTheSameMomentNothingIsLostAndNothingHangs)
{
    Dice dice(seedInForce());
    const TestDiary diary;
    const QTemporaryDir folder;
    data::Database window(diary.path()); // open all the time
    std::set<Minute> expected;
    Minute next = kFirst;
    int refused = 0;
    int byWindow = 0;
    for (int round = 0, rounds = roundsOr(8); round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        std::array<ShellWriter, 2> shells;
        for (std::size_t i = 0; i < shells.size(); ++i) {
            // Each import, and each delete, has readings of its own.
            shells.at(i) = expected.size() > 100 && i == 0 ? startDelete(diary, *expected.begin())
                                                           : startImport(diary, folder.filePath(QString::number(i)),
                                                                         freshReadings(next, dice.between(1, 40)));
        }
        bool areRunning = true;
        for (int entries = 0; areRunning && entries < 100; ++entries) {
            const Minute time = next++;
            if (typed(diary, time)) {
                expected.insert(time);
                ++byWindow;
            } else {
                ++refused;
            }
            static_cast<void>(window.openRecordset(QStringLiteral("LastBldReading")).value(0));
            areRunning = false;
            for (const ShellWriter& shell : shells)
                areRunning = isRunning(*shell.process, 0) || areRunning;
        }
        for (ShellWriter& shell : shells) {
            if (succeeded(shell)) {
                expected.insert(shell.added.begin(), shell.added.end());
                for (const Minute time : shell.deleted)
                    expected.erase(time);
            } else {
                ++refused;
            }
        }
        ASSERT_EQ(storedTimes(diary), expected);
    }
    std::cout << expected.size() << " readings, " << byWindow << " of them typed in the window meanwhile; " << refused
              << " writers waited in vain and said so\n";
}

TEST(TwoPrograms, WhoeverWaitsInVainSaysSoInPlainWordsAndStoresNothing)
{
    TestDiary diary;
    const QTemporaryDir folder;
    diary.addReading(QStringLiteral("01/03/2026 08:00"), 5.5, 1);
    data::Database window(diary.path());
    {
        const data::Database::Batch unfinished(window);
        data::Recordset readings = window.openRecordset(QStringLiteral("BloodSugarLevels"));
        readings.addNew();
        readings.set(QStringLiteral("BloodSugerLevel"), 7.5);
        readings.update();

        Minute next = kFirst;
        ShellWriter shell = startImport(diary, folder.filePath(QStringLiteral("meter")), freshReadings(next, 3));
        EXPECT_FALSE(succeeded(shell));
        EXPECT_EQ(quillonctl({QStringLiteral("sql"), diary.path(),
                              QStringLiteral("Select count(*) as N from BloodSugarLevels")})
                      .out,
                  "N\n1\n")
            << "who only reads need not wait";
    }
    EXPECT_EQ(storedTimes(diary).size(), 1U);
}

} // namespace

} // namespace soak
