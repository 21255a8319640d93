// A process that writes is killed at any moment: nothing that it reported is lost, and what was under way is done to
// the end of one of its steps.
#include "data/database.h"
#include "soak/dice.h"
#include "soak/rounds.h"
#include "soak/work.h"
#include "support/diary_content.h"
#include "support/test_diary.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <chrono>
#include <thread>

namespace soak {

namespace {

/// Where it was when it was killed.
struct Killed {
    int done = 0; ///< the number of the last work that it reported; one less than the first where it reported none
    std::string errors;
};

/// Waits for a while at most, and without a pause: what is waited for is over soon.
template <typename Condition>
void waitUntil(Condition holds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 1000 && !holds()) {
    }
}

/// Lets the process die at its first write beyond that size of a file.
void dieAtSize(QProcess& process, qint64 bytes)
{
    process.setChildProcessModifier([bytes] {
        const rlimit noCore{0, 0};
        const rlimit size{static_cast<rlim_t>(bytes), static_cast<rlim_t>(bytes)};
        setrlimit(RLIMIT_CORE, &noCore);
        setrlimit(RLIMIT_FSIZE, &size);
    });
}

/// While it starts, and takes back what the one before it left; amid its work; amid a commit.
void killSometime(QProcess& writer, const QString& diaryPath, Dice& dice)
{
    int mostMicroseconds = 60000;
    if (!dice.oneIn(4))
        static_cast<void>(writer.waitForReadyRead(20000)); // it is at work
    if (dice.oneIn(2)) {
        waitUntil([&] { return QFileInfo::exists(diaryPath + QStringLiteral("-journal")); });
        mostMicroseconds = 1000;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(dice.below(mostMicroseconds)));
    writer.kill();
}

/// At a moment by chance; or, as no other process is quick enough for that, amid the writing of a commit's pages, where
/// the diary grows.
Killed writeAndBeKilled(const QString& diaryPath, quint64 seed, int first, Dice& dice)
{
    constexpr qint64 kPage = 4096;
    QProcess writer;
    const bool diesByItself = dice.oneIn(3);
    if (diesByItself)
        dieAtSize(writer, QFileInfo(diaryPath).size() + dice.below(20) * kPage);
    writer.start(QStringLiteral(SOAK_WRITER), {diaryPath, QString::number(seed), QString::number(first)});
    // What grows no more within the time is killed like the others.
    if (!diesByItself || !writer.waitForFinished(2000))
        killSometime(writer, diaryPath, dice);
    if (writer.state() != QProcess::NotRunning) {
        EXPECT_TRUE(writer.waitForFinished(60000));
    }
    EXPECT_EQ(writer.exitStatus(), QProcess::CrashExit);

    Killed killed{first - 1, writer.readAllStandardError().toStdString()};
    const QList<QByteArray> lines = writer.readAllStandardOutput().split('\n');
    if (lines.size() > 1)
        killed.done = lines.at(lines.size() - 2).toInt(); // behind the last line end is a part at most
    return killed;
}

/// The state among them that the diary is in; none where it is in none of them.
const DiaryState* stateOf(const Lines& found, const std::vector<DiaryState>& states)
{
    for (const DiaryState& state : states) {
        if (linesOf(state.contents) == found)
            return &state;
    }
    return nullptr;
}

TEST(KilledWriter, LosesNothingThatItReportedAndLeavesNoStepHalfDone)
{
    const quint64 seed = seedInForce();
    TestDiary diary;
    reports::addFood(diary.path(), kWorkFood, {QStringLiteral("BREAD"), 250, 50, 1, 8});
    DiaryState state;
    state.contents.foods.emplace(kWorkFood, Food{QStringLiteral("BREAD"), false, false, 50, 250});

    Dice dice(seed);
    int first = 1;
    int works = 0;
    int journals = 0;
    int underWay = 0;
    for (int round = 0, rounds = roundsOr(10); round < rounds; ++round) {
        const Killed killed = writeAndBeKilled(diary.path(), seed, first, dice);
        const bool leftJournal = QFileInfo::exists(diary.path() + QStringLiteral("-journal"));
        for (int number = first; number <= killed.done; ++number)
            state = statesDuring(workNumbered(seed, number), state).back();
        const Work last = workNumbered(seed, killed.done + 1);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round) + ", killed in work " +
                     std::to_string(killed.done + 1) + ": " + last.describe());
        ASSERT_EQ(killed.errors, "");

        data::Database database(diary.path());
        EXPECT_TRUE(database.check().empty());
        const Lines found = linesIn(database);
        const std::vector<DiaryState> states = statesDuring(last, state);
        const DiaryState* reached = stateOf(found, states);
        ASSERT_NE(reached, nullptr) << "before it:\n"
                                    << difference(linesOf(states.front().contents), found) << "after it:\n"
                                    << difference(linesOf(states.back().contents), found);
        works += killed.done - first + 1;
        journals += leftJournal ? 1 : 0;
        underWay += reached != &states.front() ? 1 : 0;
        state = DiaryState(*reached);
        first = killed.done + 2;
    }
    std::cout << works << " works were reported; " << journals << " kills left a journal to take back, " << underWay
              << " left a work that was further than its beginning\n";
}

} // namespace

} // namespace soak
